#include <gtest/gtest.h>

#include <algorithm>

#include "core/LMemorySound.h"
#include "core/LPRSourceToSink.h"
#include "core/LSRCConvertChannels.h"
#include "work/LPumpProcess.h"

namespace {

class ScriptedDialog : public LProgressDialog
{
public:
    ScriptedDialog() : LProgressDialog("test") {}
    int32_t Process() override { return 0; }
};

std::vector<int32_t> Ramp(int nFrames, int nChans, int32_t nStep = 16)
{
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * nChans);
    for (size_t i = 0; i < v.size(); ++i)
        v[i] = static_cast<int32_t>(i) * nStep % 0x7FFF0;
    return v;
}

int32_t PumpAll(LSoundSourceBase* pSrc, LSoundSinkBase* pSink)
{
    ScriptedDialog dlg;
    return LPRSourceToSink::Pump(dlg, "Saving", pSrc, pSink);
}

} // namespace

TEST(Pump, CopiesExactlyTheSourceLengthAcrossBlockBoundaries)
{
    for (int nFrames : {0, 1, 8191, 8192, 8193, 3 * 8192, 20000}) {
        auto vIn = Ramp(nFrames, 2);
        LSoundSourcePtr pSrc(new LSRCMemory(vIn, 44100, 2));
        LCountedPtr<LSNKMemory> pSink(new LSNKMemory(44100, 2));
        EXPECT_EQ(PumpAll(pSrc.Get(), pSink.Get()), 0);
        EXPECT_EQ(pSink->GetSamples(), vIn) << nFrames;
    }
}

TEST(Pump, RefusesLatchedSourceOrMissingSink)
{
    LSoundSourcePtr pSilent(new LSRCSilence);
    LCountedPtr<LSNKMemory> pSink(new LSNKMemory(44100, 1));
    EXPECT_EQ(PumpAll(pSilent.Get(), pSink.Get()), 2);
    LSoundSourcePtr pSrc(new LSRCMemory(Ramp(10, 1), 44100, 1));
    EXPECT_EQ(PumpAll(pSrc.Get(), nullptr), 2);
}

TEST(Pump, ChannelConversionMixesStereoAndDuplicatesMono)
{
    // Halves round up, as the writers round; sums past 32 bits (headroom) do not wrap.
    std::vector<int32_t> vStereo = {1, 100, 2, 201, -3, -300, 7, -8, 0x7FFFFFFF, 0x7FFFFFFF, -0x7FFFFFFF, -0x7FFFFFFF - 1};
    LSoundSourcePtr pSrc(new LSRCMemory(vStereo, 8000, 2, 0x7FFFFFFF));
    LCountedPtr<LSNKMemory> pMono(new LSNKMemory(8000, 1));
    ASSERT_EQ(LPRSourceToSink::Adapt(pSrc.Get(), 8000, 1)->GetChannels(), 1);
    LSoundSourcePtr pMix(new LSRCConvertChannels(pSrc.Get(), 1));
    std::vector<int32_t> vOut(6);
    pMix->Read(vOut.data(), 6);
    EXPECT_EQ(vOut, (std::vector<int32_t>{51, 102, -151, 0, 0x7FFFFFFF, -0x7FFFFFFF}));

    // Through the pump across blocks: each frame is the mix of its own two channels.
    std::vector<int32_t> vLong(2 * 20000);
    for (size_t i = 0; i < vLong.size(); i += 2) {
        vLong[i] = static_cast<int32_t>(i % 977) * 16;
        vLong[i + 1] = -static_cast<int32_t>(i % 313) * 16;
    }
    LSoundSourcePtr pLong(new LSRCMemory(vLong, 8000, 2));
    ASSERT_EQ(PumpAll(pLong.Get(), pMono.Get()), 0);
    ASSERT_EQ(pMono->GetSamples().size(), 20000u);
    for (size_t f = 0; f < 20000; f += 997)
        EXPECT_EQ(pMono->GetSamples()[f], (vLong[2 * f] + vLong[2 * f + 1]) / 2) << f;

    LSoundSourcePtr pMonoSrc(new LSRCMemory({5, 6}, 8000, 1));
    LCountedPtr<LSNKMemory> pStereo(new LSNKMemory(8000, 2));
    ASSERT_EQ(PumpAll(pMonoSrc.Get(), pStereo.Get()), 0);
    EXPECT_EQ(pStereo->GetSamples(), (std::vector<int32_t>{5, 5, 6, 6}));
}

TEST(Pump, WrapsOnlySourcesAboveSixteenBitFullScaleInTheLimiter)
{
    LSoundSourcePtr p16(new LSRCMemory({1}, 44100, 1, 0x7FFF0));
    EXPECT_EQ(LPRSourceToSink::Adapt(p16.Get(), 44100, 1).Get(), p16.Get());
    LSoundSourcePtr pDoc(new LSRCMemory({1}, 44100, 1, 0x200000));
    LSoundSourcePtr pAdapted = LPRSourceToSink::Adapt(pDoc.Get(), 44100, 1);
    EXPECT_NE(pAdapted.Get(), pDoc.Get());
    EXPECT_LE(pAdapted->GetMaxAmplitude(), 0x7FFF0);
}

TEST(Pump, CancelBeforeFirstBlockWritesNothing)
{
    class CancelHost : public LQuietProgressHost
    {
    public:
        bool Pump() override { return false; }
    };
    class CancelFactory : public LProgressHostFactory
    {
    public:
        std::unique_ptr<LProgressHost> Create() override { return std::make_unique<CancelHost>(); }
    } factory;
    LSoundSourcePtr pSrc(new LSRCMemory(Ramp(100, 1), 44100, 1));
    LCountedPtr<LSNKMemory> pSink(new LSNKMemory(44100, 1));
    LPumpProcess pump("Saving", pSrc.Get(), pSink.Get());
    EXPECT_EQ(pump.Run(&factory), 1);
    EXPECT_TRUE(pSink->GetSamples().empty());
}

TEST(Pump, ReportsToAnyProgressDisplayAndStopsWhenItCancels)
{
    // A display of the stream layer's own: no dialog behind it.
    class Report : public LProgressReport
    {
    public:
        void SetText(const std::string& szText, int nLine) override { vLines.push_back(szText); }
        void SetProgress(double fFraction) override { vFractions.push_back(fFraction); }
        bool IsCancelled() override { return ++nAsked > nCancelAt; }
        std::vector<std::string> vLines;
        std::vector<double> vFractions;
        int nAsked = 0;
        int nCancelAt = 1000;
    };
    const int nFrames = 3 * LPRSourceToSink::kBlockFrames + 5;
    LSoundSourcePtr pSrc(new LSRCMemory(Ramp(nFrames, 1), 44100, 1));
    LCountedPtr<LSNKMemory> pSink(new LSNKMemory(44100, 1));
    Report whole;
    EXPECT_EQ(LPRSourceToSink::Pump(whole, "Saving", pSrc.Get(), pSink.Get()), LProgressReport::ResultDone);
    EXPECT_EQ(whole.vLines, (std::vector<std::string>{"Saving", "Please wait..."}));
    ASSERT_EQ(whole.vFractions.size(), 4u); // 0, then after each full block
    EXPECT_TRUE(std::is_sorted(whole.vFractions.begin(), whole.vFractions.end()));
    EXPECT_LT(whole.vFractions.back(), 1.0);
    EXPECT_EQ(pSink->GetSamples().size(), static_cast<size_t>(nFrames));

    LSoundSourcePtr pAgain(new LSRCMemory(Ramp(nFrames, 1), 44100, 1));
    LCountedPtr<LSNKMemory> pPart(new LSNKMemory(44100, 1));
    Report stopped;
    stopped.nCancelAt = 2;
    EXPECT_EQ(LPRSourceToSink::Pump(stopped, "Saving", pAgain.Get(), pPart.Get()), LProgressReport::ResultCancelled);
    EXPECT_EQ(pPart->GetSamples().size(), static_cast<size_t>(2 * LPRSourceToSink::kBlockFrames));
}

namespace {
// Takes nGood writes, then fails every one after; counts what it was given.
class FailingSink : public LSoundSinkBase
{
public:
    FailingSink(int nGood) : LSoundSinkBase(44100, 1), nGood(nGood) {}
    void Write(const int32_t*, int32_t nFrames) override
    {
        ++nWrites;
        if (nWrites > nGood)
            SetError();
        else
            sPosition += nFrames;
    }
    bool Complete() override { return !IsError(); }
    int nGood;
    int nWrites = 0;
};

// Counts the frames read from it.
class CountingSource : public LSRCMemory
{
public:
    using LSRCMemory::LSRCMemory;
    void Read(int32_t* pBuffer, int32_t nFrames) override
    {
        ++nReads;
        LSRCMemory::Read(pBuffer, nFrames);
    }
    int nReads = 0;
};
} // namespace

TEST(Pump, StopsAtTheSinksFirstFailure)
{
    for (int nGood : {0, 1, 3}) {
        LCountedPtr<CountingSource> pSrc(new CountingSource(Ramp(10 * 8192, 1), 44100, 1));
        LCountedPtr<FailingSink> pSink(new FailingSink(nGood));
        EXPECT_EQ(PumpAll(pSrc.Get(), pSink.Get()), 2);
        EXPECT_EQ(pSink->nWrites, nGood + 1);
        EXPECT_EQ(pSrc->nReads, nGood + 1);
        EXPECT_EQ(pSink->GetPosition(), nGood * 8192);
    }
    // A failure on the last, partial block fails the pump too.
    LCountedPtr<CountingSource> pSrc(new CountingSource(Ramp(8192 + 100, 1), 44100, 1));
    LCountedPtr<FailingSink> pSink(new FailingSink(1));
    EXPECT_EQ(PumpAll(pSrc.Get(), pSink.Get()), 2);
}
