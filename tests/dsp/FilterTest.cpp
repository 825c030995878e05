#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "core/LMemorySound.h"
#include "dsp/LFFT.h"
#include "dsp/LSRCEq.h"
#include "dsp/LSRCHighPassIIR2.h"

namespace {

constexpr double kAmplitude = 100000;

// Level change in dB that a stage makes to a steady tone, measured away from the edges.
template <class MakeStage> double ToneGainDb(double fHz, int32_t nRate, uint8_t nChans, MakeStage make)
{
    const int32_t nFrames = nRate;
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * nChans);
    for (int32_t i = 0; i < nFrames; ++i)
        for (uint8_t c = 0; c < nChans; ++c)
            v[static_cast<size_t>(i) * nChans + c] = static_cast<int32_t>(std::lrint(kAmplitude * std::sin(2 * M_PI * fHz * i / nRate + c)));
    LSoundSourcePtr pSrc(new LSRCMemory(v, nRate, nChans, 0x200000));
    LSoundSourcePtr pStage = make(pSrc.Get());
    std::vector<int32_t> vOut(v.size());
    pStage->Read(vOut.data(), nFrames);
    double fI = 0, fQ = 0;
    for (int32_t i = nFrames / 4; i < nFrames - nFrames / 4; ++i) {
        const double fPhase = 2 * M_PI * fHz * i / nRate + nChans - 1;
        fI += vOut[static_cast<size_t>(i) * nChans + nChans - 1] * std::cos(fPhase);
        fQ += vOut[static_cast<size_t>(i) * nChans + nChans - 1] * std::sin(fPhase);
    }
    return 20 * std::log10(2 * std::hypot(fI, fQ) / (nFrames / 2) / kAmplitude + 1e-12);
}

LPointList Curve(std::initializer_list<LPoint> points)
{
    LPointList list;
    for (const LPoint& p : points)
        EXPECT_TRUE(list.Add(p.x, p.y));
    return list;
}

} // namespace

TEST(HighPassIIR2, CutsHumAndPassesTheVoiceBand)
{
    auto make = [](LSoundSourceBase* p) { return LSoundSourcePtr(new LSRCHighPassIIR2(p, 250)); };
    EXPECT_LT(ToneGainDb(50, 44100, 1, make), -20.0);
    EXPECT_NEAR(ToneGainDb(250, 44100, 2, make), -3.0, 0.2);
    EXPECT_NEAR(ToneGainDb(2000, 44100, 2, make), 0.0, 0.5);
    EXPECT_NEAR(ToneGainDb(2000, 8000, 1, make), 0.0, 0.5);
}

TEST(HighPassIIR2, SeekForgetsTheFilterMemory)
{
    std::vector<int32_t> v(5000, 0x10000);
    LSoundSourcePtr pSrc(new LSRCMemory(v, 22050, 1));
    LSoundSourcePtr pHp(new LSRCHighPassIIR2(pSrc.Get(), 300));
    std::vector<int32_t> vA(100), vB(100);
    pHp->Read(vA.data(), 100);
    pHp->Read(vB.data(), 100);
    EXPECT_NE(vA, vB);
    pHp->SetPosition(0);
    pHp->Read(vB.data(), 100);
    EXPECT_EQ(vA, vB);
}

TEST(PointList, KeepsAscendingPointsAndInterpolates)
{
    LPointList list;
    EXPECT_TRUE(list.Validate());
    EXPECT_TRUE(list.Add(100, 0));
    EXPECT_FALSE(list.Add(100, 5));
    EXPECT_TRUE(list.Add(300, 10));
    EXPECT_DOUBLE_EQ(list.YAt(200), 5.0);
    EXPECT_DOUBLE_EQ(list.YAt(10), 0.0);
    EXPECT_DOUBLE_EQ(list.YAt(1000), 10.0);
    for (int32_t i = 2; i < POINTLISTMAX - 1; ++i)
        EXPECT_TRUE(list.Add(300 + i, 0));
    EXPECT_FALSE(list.Add(100000, 0));
    EXPECT_TRUE(list.Validate());
    list.aPoints[3].x = 1;
    EXPECT_FALSE(list.Validate());
    list.nPoints = POINTLISTMAX;
    EXPECT_FALSE(list.Validate());
}

TEST(Equalizer, FollowsItsCurveAtThePoints)
{
    const LPointList list = Curve({{100, 6}, {500, 0}, {1000, -6}, {3000, 3}, {8000, -10}, {12000, 0}});
    for (uint8_t nChans : {1, 2}) {
        auto make = [&](LSoundSourceBase* p) { return LSoundSourcePtr(new LSRCEq(p, list)); };
        for (int32_t i = 0; i < list.nPoints; ++i)
            EXPECT_NEAR(ToneGainDb(list.aPoints[i].x, 44100, nChans, make), list.aPoints[i].y, 1.0)
                << list.aPoints[i].x << " Hz, " << int(nChans) << " channels";
        // Between points the curve runs straight on a logarithmic axis: halfway down at 707 Hz.
        EXPECT_NEAR(ToneGainDb(707, 44100, nChans, make), -3.0, 1.0);
    }
}

TEST(Equalizer, FlatCurveKeepsTimingAndSeeksExactly)
{
    std::vector<int32_t> v(30000, 0);
    v[10000] = 500000;
    LSoundSourcePtr pSrc(new LSRCMemory(v, 22050, 1));
    LSoundSourcePtr pEq(new LSRCEq(pSrc.Get(), Curve({{1000, 0}})));
    std::vector<int32_t> vOut(30000);
    pEq->Read(vOut.data(), 30000);
    EXPECT_EQ(pEq->GetPosition(), 30000);
    EXPECT_EQ(pEq->GetLength(), 30000);
    EXPECT_NEAR(vOut[10000], 500000, 5000);
    EXPECT_LT(std::abs(vOut[9990]), 5000);

    std::vector<int32_t> vAgain(500);
    pEq->SetPosition(9800);
    pEq->Read(vAgain.data(), 500);
    for (size_t i = 0; i < vAgain.size(); ++i)
        ASSERT_NEAR(vAgain[i], vOut[9800 + i], 1) << i;
}

TEST(Equalizer, RefusesMoreThanTwoChannels)
{
    LSoundSourcePtr pSrc(new LSRCMemory(std::vector<int32_t>(300, 1), 44100, 3));
    LSoundSourcePtr pEq(new LSRCEq(pSrc.Get(), Curve({{1000, 0}})));
    EXPECT_TRUE(pEq->IsError());
    EXPECT_STREQ(LSRCEq::kMsgTooManyChannels, "Does not support more than 2 channels");
    std::vector<int32_t> vOut(300, 5);
    pEq->Read(vOut.data(), 100);
    EXPECT_EQ(vOut, std::vector<int32_t>(300, 0));
}

TEST(FFT, MatchesTheDirectTransformAndInvertsAtEverySize)
{
    // Both parities of the stage count, with and without the wide paths.
    for (int32_t n : {2, 4, 8, 16, 32, 64, 128, 1024, 2048}) {
        std::vector<std::complex<double>> v(n), vDirect(n);
        for (int32_t i = 0; i < n; ++i)
            v[i] = {std::sin(0.37 * i) + 0.25 * (i % 3), std::cos(1.3 * i * i)};
        for (int32_t k = 0; k < n; ++k)
            for (int32_t i = 0; i < n; ++i)
                vDirect[k] += v[i] * std::polar(1.0, -2.0 * M_PI * k * i / n);
        const std::vector<std::complex<double>> vIn = v;
        LFFT fft(n);
        fft.Forward(v.data());
        for (int32_t k = 0; k < n; ++k)
            ASSERT_LT(std::abs(v[k] - vDirect[k]), 1e-9 * n) << n << " bin " << k;
        fft.Inverse(v.data());
        for (int32_t i = 0; i < n; ++i)
            ASSERT_LT(std::abs(v[i] / static_cast<double>(n) - vIn[i]), 1e-12 * n) << n << " at " << i;
        // The scrambled pair holds the same bins in bit-reversed order, and undoes itself.
        fft.ForwardScrambled(v.data());
        for (int32_t k = 0; k < n; ++k) {
            int32_t r = 0;
            for (int32_t nBit = 1, nMirror = n / 2; nBit < n; nBit *= 2, nMirror /= 2)
                r |= (k & nBit) ? nMirror : 0;
            ASSERT_LT(std::abs(v[r] / static_cast<double>(n) - vDirect[k]), 1e-9 * n) << n << " bin " << k;
        }
        fft.InverseScrambled(v.data());
        for (int32_t i = 0; i < n; ++i)
            ASSERT_LT(std::abs(v[i] / static_cast<double>(n * n) - vIn[i]), 1e-12 * n) << n << " at " << i;
    }
}

TEST(FFT, MultiplyIsTheComplexProductEntryByEntry)
{
    for (int32_t n : {1, 2, 3, 7, 8, 33}) {
        std::vector<std::complex<double>> v(n), vBy(n);
        for (int32_t i = 0; i < n; ++i) {
            v[i] = {std::sin(0.7 * i) * 1e5, std::cos(0.3 * i) - 2};
            vBy[i] = {0.5 - 0.01 * i, std::sin(2.1 * i)};
        }
        std::vector<std::complex<double>> vOut = v;
        LFFT::Multiply(vOut.data(), vBy.data(), n);
        for (int32_t i = 0; i < n; ++i) {
            const double fRe = v[i].real() * vBy[i].real() - v[i].imag() * vBy[i].imag();
            const double fIm = v[i].real() * vBy[i].imag() + v[i].imag() * vBy[i].real();
            EXPECT_EQ(vOut[i], std::complex<double>(fRe, fIm)) << n << " at " << i;
        }
    }
}
