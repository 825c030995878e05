#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "core/LMemorySound.h"
#include "core/LPRSourceToSink.h"
#include "core/LSRCConvertRate.h"
#include "work/LPumpProcess.h"

namespace {

constexpr double kAmplitude = 0x40000;

std::vector<int32_t> Sine(int32_t nRate, int32_t nFrames, double fHz, uint8_t nChans = 1)
{
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * nChans);
    for (int32_t i = 0; i < nFrames; ++i)
        v[static_cast<size_t>(i) * nChans] = static_cast<int32_t>(std::lrint(kAmplitude * std::sin(2 * M_PI * fHz * i / nRate)));
    return v;
}

std::vector<int32_t> ReadDoc(LSoundSourceBase* p)
{
    std::vector<int32_t> v(static_cast<size_t>(p->GetLength()) * p->GetChannels());
    p->Read(v.data(), p->GetLength());
    return v;
}

struct Response
{
    double fToneDb;  // level of the tone at its own frequency
    double fTotalDb; // level of everything in the output
};

// Converts two seconds of a sine through the pump's adapter and measures the middle of the
// output against the input amplitude (edges are left out: they hold the filter's run-in).
Response Convert(int32_t nInRate, int32_t nOutRate, double fHz)
{
    LSoundSourcePtr pSrc(new LSRCMemory(Sine(nInRate, 2 * nInRate, fHz), nInRate, 1));
    LSoundSourcePtr pOut = LPRSourceToSink::Adapt(pSrc.Get(), nOutRate, 1);
    EXPECT_EQ(pOut->GetSampleRate(), nOutRate);
    const std::vector<int32_t> v = ReadDoc(pOut.Get());
    const size_t nFrom = v.size() / 10, nTo = v.size() - v.size() / 10;
    double fI = 0, fQ = 0, fSquares = 0;
    for (size_t i = nFrom; i < nTo; ++i) {
        const double fPhase = 2 * M_PI * fHz * static_cast<double>(i) / nOutRate;
        fI += v[i] * std::cos(fPhase);
        fQ += v[i] * std::sin(fPhase);
        fSquares += static_cast<double>(v[i]) * v[i];
    }
    const double n = static_cast<double>(nTo - nFrom);
    return {20 * std::log10(2 * std::hypot(fI, fQ) / n / kAmplitude),
            20 * std::log10(std::sqrt(2 * fSquares / n) / kAmplitude + 1e-9)};
}

} // namespace

TEST(ConvertRate, PassesTonesInsideTheNewBandWithinATenthOfADecibel)
{
    const struct { int32_t nIn, nOut; double fHz; } aCases[] = {
        {44100, 22050, 1000}, {44100, 22050, 9000}, {48000, 44100, 440}, {48000, 44100, 18000},
        {22050, 44100, 100},  {22050, 44100, 9500}, {44100, 8000, 300},   {44100, 8000, 3400},
        // The edge of the passband: 90 % of the lower Nyquist frequency.
        {44100, 22050, 9922.5}, {44100, 48000, 19845}, {48000, 44100, 19845},
    };
    for (const auto& c : aCases) {
        const Response r = Convert(c.nIn, c.nOut, c.fHz);
        EXPECT_NEAR(r.fToneDb, 0.0, 0.1) << c.nIn << " -> " << c.nOut << " at " << c.fHz << " Hz";
        // Nothing else of note comes out: no images, no aliases.
        EXPECT_NEAR(r.fTotalDb, r.fToneDb, 0.01) << c.nIn << " -> " << c.nOut << " at " << c.fHz << " Hz";
    }
}

TEST(ConvertRate, RemovesTonesAboveTheNewNyquistFrequencyByNinetyDecibels)
{
    const struct { int32_t nIn, nOut; double fHz; } aCases[] = {
        {44100, 22050, 11060}, {44100, 22050, 11300}, {44100, 22050, 15000}, {44100, 22050, 21000},
        {48000, 44100, 22100}, {48000, 44100, 22600}, {44100, 8000, 4100},   {44100, 8000, 9000},
        {44100, 8000, 20000},
    };
    for (const auto& c : aCases)
        EXPECT_LT(Convert(c.nIn, c.nOut, c.fHz).fTotalDb, -90.0) << c.nIn << " -> " << c.nOut << " at " << c.fHz << " Hz";
}

TEST(ConvertRate, LengthIsTheInputLengthScaledAndThePumpWritesExactlyThat)
{
    LSoundSourcePtr pSrc(new LSRCMemory(Sine(44100, 44101, 1000), 44100, 1));
    LSoundSourcePtr pConv(new LSRCConvertRate(pSrc.Get(), 48000));
    EXPECT_EQ(pConv->GetLength(), static_cast<int32_t>(44101LL * 48000 / 44100));

    LCountedPtr<LSNKMemory> pSink(new LSNKMemory(8000, 1));
    LPumpProcess pump("Saving", pSrc.Get(), pSink.Get());
    ASSERT_EQ(pump.Run(), 0);
    EXPECT_EQ(pSink->GetSamples().size(), static_cast<size_t>(44101LL * 8000 / 44100));
}

TEST(ConvertRate, SeekingGivesTheSameFramesAsReadingThrough)
{
    LSoundSourcePtr pSrc(new LSRCMemory(Sine(22050, 30000, 777, 2), 22050, 2));
    LSoundSourcePtr pConv(new LSRCConvertRate(pSrc.Get(), 32000));
    const std::vector<int32_t> vAll = ReadDoc(pConv.Get());
    for (int32_t sAt : {0, 1, 5000, 12345, 40000}) {
        pConv->SetPosition(sAt);
        EXPECT_EQ(pConv->GetPosition(), sAt);
        std::vector<int32_t> v(2 * 300);
        pConv->Read(v.data(), 300);
        EXPECT_TRUE(std::equal(v.begin(), v.end(), vAll.begin() + 2 * sAt)) << "at " << sAt;
        EXPECT_EQ(pConv->GetPosition(), sAt + 300);
    }
}

TEST(ConvertRate, KeepsChannelsApartAndReadsSilenceAfterTheEnd)
{
    LSoundSourcePtr pSrc(new LSRCMemory(Sine(44100, 4410, 500, 2), 44100, 2));
    LSoundSourcePtr pConv(new LSRCConvertRate(pSrc.Get(), 11025));
    std::vector<int32_t> v(2 * 3000);
    pConv->Read(v.data(), 3000);
    for (size_t i = 1; i < v.size(); i += 2)
        ASSERT_EQ(v[i], 0);
    for (size_t i = 2 * 1300; i < v.size(); ++i)
        ASSERT_EQ(v[i], 0) << i;
}

TEST(ConvertRate, EachChannelOfStereoIsWhatItsOwnMonoConversionGives)
{
    // Whole steps down (one folded kernel) and a fractional step, each channel a different tone.
    for (const auto [nIn, nOut] : {std::pair{44100, 22050}, std::pair{48000, 16000}, std::pair{44100, 32000}}) {
        SCOPED_TRACE(std::to_string(nIn) + " to " + std::to_string(nOut));
        const std::vector<int32_t> vLeft = Sine(nIn, nIn / 2, 440), vRight = Sine(nIn, nIn / 2, 3100);
        std::vector<int32_t> vStereo;
        for (size_t i = 0; i < vLeft.size(); ++i) {
            vStereo.push_back(vLeft[i]);
            vStereo.push_back(vRight[i]);
        }
        LSoundSourcePtr pStereo(new LSRCConvertRate(new LSRCMemory(vStereo, nIn, 2), nOut));
        LSoundSourcePtr pLeft(new LSRCConvertRate(new LSRCMemory(vLeft, nIn, 1), nOut));
        LSoundSourcePtr pRight(new LSRCConvertRate(new LSRCMemory(vRight, nIn, 1), nOut));
        const std::vector<int32_t> vBoth = ReadDoc(pStereo.Get()), vL = ReadDoc(pLeft.Get()), vR = ReadDoc(pRight.Get());
        ASSERT_EQ(vBoth.size(), 2 * vL.size());
        for (size_t i = 0; i < vL.size(); ++i) {
            ASSERT_EQ(vBoth[2 * i], vL[i]) << i;
            ASSERT_EQ(vBoth[2 * i + 1], vR[i]) << i;
        }
    }
}

TEST(ConvertRate, ContractValues)
{
    LSoundSourcePtr pDoc(new LSRCMemory({1, 2, 3}, 22050, 1, 0x100000));
    LSoundSourcePtr pConv(new LSRCConvertRate(pDoc.Get(), 44100));
    EXPECT_FALSE(pConv->IsError());
    EXPECT_EQ(pConv->GetMaxAmplitude(), 0x200000);

    LSoundSourcePtr pLoud(new LSRCMemory({1, 2, 3}, 22050, 1, 0x100001));
    EXPECT_EQ(LSoundSourcePtr(new LSRCConvertRate(pLoud.Get(), 44100))->GetMaxAmplitude(), 0x100001);

    LSoundSourcePtr pBadRate(new LSRCConvertRate(pDoc.Get(), 0));
    EXPECT_TRUE(pBadRate->IsError());
    EXPECT_EQ(pBadRate->GetSampleRate(), 44100);

    LSoundSourcePtr pLatched(new LSRCConvertRate(LSoundSourcePtr(new LSRCSilence).Get(), 8000));
    EXPECT_TRUE(pLatched->IsError());
    std::vector<int32_t> v(100, 7);
    pLatched->Read(v.data(), 100);
    EXPECT_EQ(v, std::vector<int32_t>(100, 0));
}
