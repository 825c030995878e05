// The spectrogram's numbers: where a tone lands and how loud it reads for every window and
// scale, by both the sample path and the block path; a chirp's track; the floor of silence; and
// a document of shared segments against the same audio flattened.
#include <gtest/gtest.h>

#include <cmath>

#include "core/LMemorySound.h"
#include "dsp/LSpectroCache.h"
#include "dsp/LSpectroColours.h"
#include "dsp/LSpectroColumns.h"
#include "support/DocSupport.h"

namespace {
constexpr double kFullScale = 524272.0;
constexpr int32_t kRate = 48000;
constexpr int32_t B = LSpectroBlocks::kBlockFrames;

// 1500 Hz lies on a bin centre of every window size at 48 kHz.
constexpr double kToneHz = 1500.0;

std::vector<int32_t> Sine(double fHz, double fDb, int64_t nFrames, int nChans = 1, int64_t nFrom = 0)
{
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * nChans);
    const double fAmp = kFullScale * std::pow(10.0, fDb / 20.0);
    for (int64_t i = 0; i < nFrames; ++i)
        for (int c = 0; c < nChans; ++c)
            v[i * nChans + c] = static_cast<int32_t>(std::lround(fAmp * std::sin(2 * M_PI * fHz * (i + nFrom) / kRate)));
    return v;
}

LSpectroFrame Frame(int64_t sFrom, int64_t sTo, int nCols, int nRows, uint8_t nChans = 1, bool bPerChannel = false)
{
    LSpectroFrame f;
    for (int x = 0; x <= nCols; ++x)
        f.vEdges.push_back(sFrom + (sTo - sFrom) * x / nCols);
    f.nRows = nRows;
    f.nRate = kRate;
    f.nChans = nChans;
    f.bPerChannel = bPerChannel;
    return f;
}

struct Peak
{
    int32_t nRow = -1;
    float fDb = -1000;
};

Peak Loudest(const float* pRows, int32_t nRows)
{
    Peak p;
    for (int32_t r = 0; r < nRows; ++r)
        if (pRows[r] > p.fDb)
            p = {r, pRows[r]};
    return p;
}

struct Case
{
    LSpectroWindowFn eWindow;
    LSpectroScale eScale;
    int32_t nWindow;
};

std::vector<Case> AllCases()
{
    std::vector<Case> v;
    for (int w = SpectroHann; w <= SpectroRectangular; ++w)
        for (int s = SpectroLinear; s <= SpectroMel; ++s)
            for (int32_t n : {256, 2048, 8192})
                v.push_back({static_cast<LSpectroWindowFn>(w), static_cast<LSpectroScale>(s), n});
    return v;
}

std::string Name(const Case& c)
{
    return std::string(LSpectroSettings::WindowName(c.eWindow)) + "/" + LSpectroSettings::ScaleName(c.eScale) + "/" +
           std::to_string(c.nWindow);
}

LSpectroSettings SettingsOf(const Case& c)
{
    LSpectroSettings s;
    s.eWindow = c.eWindow;
    s.eScale = c.eScale;
    s.nWindow = c.nWindow;
    return s;
}

// Documents in a private tank, and no segment left counted after each test.
class SpectrogramDoc : public ::testing::Test
{
protected:
    void SetUp() override { testsupport::UsePrivateTankFolder(); }
    void TearDown() override { EXPECT_EQ(LAudioCutTank::Instance().CountUsedRefs(), 0); }
};
} // namespace

TEST(Spectrogram, ToneLandsInItsRowAtItsLevelFromSamples)
{
    const std::vector<int32_t> v = Sine(kToneHz, -12.0, kRate);
    for (const Case& c : AllCases()) {
        LSRCMemory src(v, kRate, 1);
        LSpectroColumns columns(SettingsOf(c));
        const LSpectroFrame frame = Frame(10000, 38000, 5, 240);
        std::vector<float> vOut(frame.GetCells());
        ASSERT_TRUE(columns.FromSource(src, frame, vOut.data(), nullptr));
        const int32_t nRow = columns.RowsFor(frame, false).RowOf(kToneHz);
        for (int x = 0; x < frame.GetColumns(); ++x) {
            const Peak p = Loudest(vOut.data() + x * frame.nRows, frame.nRows);
            EXPECT_LE(std::abs(p.nRow - nRow), 1) << Name(c) << " column " << x;
            EXPECT_NEAR(p.fDb, -12.0, 1.0) << Name(c) << " column " << x;
        }
    }
}

TEST_F(SpectrogramDoc, ToneLandsInItsRowAtItsLevelFromBlocks)
{
    // Six blocks, in stereo with the right channel 20 dB below the left.
    const int64_t nFrames = 6 * B;
    std::vector<int32_t> v = Sine(kToneHz, -6.0, nFrames, 2);
    for (int64_t i = 0; i < nFrames; ++i)
        v[2 * i + 1] /= 10;
    LCutListAudioPtr pDoc = testsupport::MakeDoc(v, 2, kRate);
    for (const Case& c : AllCases()) {
        LSpectroColumns columns(SettingsOf(c));
        const LSpectroFrame frame = Frame(0, nFrames, 3, 200, 2, true);
        ASSERT_TRUE(LSpectroColumns::UsesBlocks(frame));
        std::vector<float> vOut(frame.GetCells());
        ASSERT_TRUE(columns.FromDocument(*pDoc, nullptr, frame, vOut.data(), nullptr));
        const int32_t nRow = columns.RowsFor(frame, true).RowOf(kToneHz);
        for (int x = 0; x < frame.GetColumns(); ++x) {
            const Peak left = Loudest(vOut.data() + (2 * x) * frame.nRows, frame.nRows);
            const Peak right = Loudest(vOut.data() + (2 * x + 1) * frame.nRows, frame.nRows);
            EXPECT_LE(std::abs(left.nRow - nRow), 1) << Name(c);
            EXPECT_NEAR(left.fDb, -6.0, 1.0) << Name(c);
            EXPECT_LE(std::abs(right.nRow - nRow), 1) << Name(c);
            EXPECT_NEAR(right.fDb, -26.0, 1.0) << Name(c);
        }
    }
}

TEST(Spectrogram, ChirpFollowsItsLine)
{
    // A linear sweep from 500 Hz to 12 kHz over two seconds.
    const int64_t nFrames = 2 * kRate;
    const double f0 = 500.0, f1 = 12000.0, T = 2.0;
    std::vector<int32_t> v(nFrames);
    for (int64_t i = 0; i < nFrames; ++i) {
        const double t = static_cast<double>(i) / kRate;
        v[i] = static_cast<int32_t>(0.5 * kFullScale * std::sin(2 * M_PI * (f0 * t + (f1 - f0) * t * t / (2 * T))));
    }
    for (LSpectroScale eScale : {SpectroLinear, SpectroLog, SpectroMel}) {
        LSpectroSettings s;
        s.eScale = eScale;
        s.nWindow = 1024;
        LSRCMemory src(v, kRate, 1);
        LSpectroColumns columns(s);
        const LSpectroFrame frame = Frame(2048, nFrames - 2048, 40, 300);
        std::vector<float> vOut(frame.GetCells());
        ASSERT_TRUE(columns.FromSource(src, frame, vOut.data(), nullptr));
        const LSpectroRows rows = columns.RowsFor(frame, false);
        for (int x = 0; x < frame.GetColumns(); ++x) {
            const double t = (frame.vEdges[x] + frame.vEdges[x + 1]) / 2.0 / kRate;
            const double fHz = f0 + (f1 - f0) * t / T;
            const Peak p = Loudest(vOut.data() + x * frame.nRows, frame.nRows);
            // Within two rows, or a bin and a half plus how far the sweep moves in half a column.
            const double fSweep = (f1 - f0) / T * (frame.vEdges[x + 1] - frame.vEdges[x]) / 2.0 / kRate;
            const double fTolerance = std::max(rows.HzAt(rows.RowOf(fHz) + 2) - fHz, 1.5 * kRate / 1024.0 + fSweep);
            EXPECT_NEAR(rows.HzAt(p.nRow + 0.5), fHz, fTolerance) << LSpectroSettings::ScaleName(eScale) << " " << x;
        }
    }
}

TEST_F(SpectrogramDoc, SilenceIsTheFloor)
{
    LSpectroSettings s;
    LCutListAudioPtr pDoc(new LCutListAudio(kRate, 2));
    pDoc->InsertSilence(0, 4 * B);
    for (int nCols : {4, 400}) {
        LSpectroColumns columns(s);
        const LSpectroFrame frame = Frame(0, 4 * B, nCols, 64, 2);
        std::vector<float> vOut(frame.GetCells());
        ASSERT_TRUE(columns.FromDocument(*pDoc, nullptr, frame, vOut.data(), nullptr));
        for (float f : vOut) {
            EXPECT_LE(f, -300.0f);
            EXPECT_EQ(LSpectroLevelByte(f, s), 0);
        }
    }
}

TEST_F(SpectrogramDoc, SharedSegmentsGiveTheColumnsOfTheFlattenedAudio)
{
    // A segment of three blocks with a different tone in each.
    std::vector<int32_t> v;
    for (int k = 0; k < 3; ++k) {
        const std::vector<int32_t> vBlock = Sine(750.0 * (k + 1), -6.0 - 10 * k, B, 2, k * B);
        v.insert(v.end(), vBlock.begin(), vBlock.end());
    }
    LSpectroCache::Instance().Clear();
    const int64_t nBefore = LSpectroCache::Instance().GetBlocksAnalysed();
    LCutListAudioPtr pSource = testsupport::MakeDoc(v, 2, kRate);
    // Cuts over the one segment: blocks 1-2, block 0, a block of silence, blocks 0-1 at half gain.
    LCutListAudioPtr pDoc(new LCutListAudio(kRate, 2));
    LCutListAudio part(kRate, 2);
    pSource->EfCopy(B, 3 * B, part);
    pDoc->Insert(0, part);
    pSource->EfCopy(0, B, part);
    pDoc->Insert(2 * B, part);
    pDoc->InsertSilence(3 * B, B);
    pSource->EfCopy(0, 2 * B, part);
    part.EfAmplifyAll(50);
    pDoc->Insert(4 * B, part);
    ASSERT_EQ(pDoc->GetLength(), 6 * B);
    ASSERT_GE(pDoc->GetCutCount(), 4u);
    LCutListAudioPtr pFlat = testsupport::MakeDoc(testsupport::ReadDoc(*pDoc), 2, kRate);

    LSpectroSettings s;
    s.nWindow = 4096;
    const LSpectroFrame frame = Frame(0, 6 * B, 4, 128, 2, true);
    std::vector<float> vCuts(frame.GetCells()), vFlat(frame.GetCells());
    LSpectroColumns columns(s);
    ASSERT_TRUE(columns.FromDocument(*pDoc, nullptr, frame, vCuts.data(), nullptr));
    EXPECT_EQ(LSpectroCache::Instance().GetBlocksAnalysed() - nBefore, 3) << "the shared segment is analysed once";
    ASSERT_TRUE(columns.FromDocument(*pFlat, nullptr, frame, vFlat.data(), nullptr));
    // Flattening rounds the half-gain samples, which lifts the empty bins from nothing to the
    // rounding noise far below the range shown: compare what is shown.
    for (size_t i = 0; i < vCuts.size(); ++i)
        ASSERT_NEAR(LSpectroLevelByte(vCuts[i], s), LSpectroLevelByte(vFlat[i], s), 1) << "cell " << i;
    // The picture holds what was put in: the half-gain copy of block 0 sits 6 dB under it.
    const int32_t nRow = columns.RowsFor(frame, true).RowOf(750.0);
    const LSpectroFrame one = Frame(2 * B, 3 * B, 1, 128, 2, true);
    const LSpectroFrame half = Frame(4 * B, 5 * B, 1, 128, 2, true);
    std::vector<float> vOne(one.GetCells()), vHalf(half.GetCells());
    ASSERT_TRUE(columns.FromDocument(*pDoc, nullptr, one, vOne.data(), nullptr));
    ASSERT_TRUE(columns.FromDocument(*pDoc, nullptr, half, vHalf.data(), nullptr));
    EXPECT_NEAR(vOne[nRow], -6.0, 1.0);
    EXPECT_NEAR(vHalf[nRow], -6.0 - 6.02, 1.0);
}

TEST_F(SpectrogramDoc, AnEditElsewhereAnalysesOnlyTheNewAudio)
{
    LCutListAudioPtr pDoc = testsupport::MakeDoc(Sine(kToneHz, -6.0, 8 * B, 2), 2, kRate);
    LSpectroSettings s;
    LSpectroColumns columns(s);
    const LSpectroFrame frame = Frame(0, 8 * B, 8, 100, 2);
    std::vector<float> vOut(frame.GetCells());
    ASSERT_TRUE(columns.FromDocument(*pDoc, nullptr, frame, vOut.data(), nullptr));
    const int64_t nFirst = LSpectroCache::Instance().GetBlocksAnalysed();
    ASSERT_TRUE(columns.FromDocument(*pDoc, nullptr, frame, vOut.data(), nullptr));
    EXPECT_EQ(LSpectroCache::Instance().GetBlocksAnalysed(), nFirst) << "a second look reads nothing";
    // A new segment of one block replaces block 3.
    LCutListAudioPtr pNew = testsupport::MakeDoc(Sine(3000.0, -6.0, B, 2), 2, kRate);
    pDoc->Replace(3 * B, 4 * B, *pNew);
    ASSERT_TRUE(columns.FromDocument(*pDoc, nullptr, frame, vOut.data(), nullptr));
    EXPECT_EQ(LSpectroCache::Instance().GetBlocksAnalysed(), nFirst + 1);
    const int32_t nRow = columns.RowsFor(frame, true).RowOf(3000.0);
    EXPECT_NEAR(Loudest(vOut.data() + 3 * frame.nRows, frame.nRows).nRow, nRow, 1);
}

TEST(Spectrogram, ColourMapsRiseInLightnessAndLevelsMapToBytes)
{
    for (LSpectroColourMap e : {SpectroColoursUniform, SpectroColoursGrey}) {
        const LSpectroPalette& p = LSpectroColours(e);
        double fLast = -1;
        for (const LSpectroRgb& c : p) {
            const double fLuma = 0.2126 * c.r + 0.7152 * c.g + 0.0722 * c.b;
            EXPECT_GE(fLuma, fLast - 0.75); // rounding to bytes may dip a hair
            fLast = fLuma;
        }
        EXPECT_LT(0.2126 * p[0].r + 0.7152 * p[0].g + 0.0722 * p[0].b, 60);
        EXPECT_GT(0.2126 * p[255].r + 0.7152 * p[255].g + 0.0722 * p[255].b, 200);
    }
    LSpectroSettings s;
    s.nRangeDb = 90;
    s.nGainDb = 10;
    EXPECT_EQ(LSpectroLevelByte(-100.0f, s), 0);
    EXPECT_EQ(LSpectroLevelByte(-10.0f, s), 255);
    EXPECT_EQ(LSpectroLevelByte(5.0f, s), 255);
    for (float f = -99.0f; f < -10.0f; f += 7.3f)
        EXPECT_NEAR(LSpectroByteDb(LSpectroLevelByte(f, s), s), f, 90.0 / 255.0);
}

TEST_F(SpectrogramDoc, AnAnalysisGivenUpResumesWhereItStopped)
{
    LCutListAudioPtr pDoc = testsupport::MakeDoc(Sine(kToneHz, -6.0, 6 * B, 1), 1, kRate);
    LSpectroCache::Instance().Clear();
    const int64_t nBefore = LSpectroCache::Instance().GetBlocksAnalysed();
    LSpectroColumns columns{LSpectroSettings()};
    std::vector<LSpectroPiece> vPieces;
    int nAsked = 0;
    EXPECT_FALSE(columns.PiecesOf(*pDoc, vPieces, [&] { return ++nAsked >= 2; })) << "stopped after two blocks";
    EXPECT_EQ(LSpectroCache::Instance().GetBlocksAnalysed() - nBefore, 2);
    ASSERT_TRUE(columns.PiecesOf(*pDoc, vPieces, nullptr));
    EXPECT_EQ(LSpectroCache::Instance().GetBlocksAnalysed() - nBefore, 6) << "no block analysed twice";
    ASSERT_EQ(vPieces.size(), 1u);
    EXPECT_EQ(vPieces[0].pBlocks->GetBlockCount(), 6);
}

TEST(Spectrogram, RowsAndFrequenciesAreInversesOnEveryScale)
{
    for (LSpectroScale e : {SpectroLinear, SpectroLog, SpectroMel}) {
        const LSpectroRows rows(e, 44100, 300, 44100.0 / 2048, 1025);
        EXPECT_NEAR(rows.HzAt(300), 22050.0, 1e-6);
        EXPECT_NEAR(rows.HzAt(0), e == SpectroLog ? LSpectroRows::kLogLowestHz : 0.0, 1e-6);
        double fLast = -1;
        for (int r = 0; r < 300; ++r) {
            const double fHz = rows.HzAt(r + 0.5);
            EXPECT_GT(fHz, fLast);
            EXPECT_EQ(rows.RowOf(fHz), r) << LSpectroSettings::ScaleName(e);
            fLast = fHz;
        }
        EXPECT_EQ(rows.RowOf(-5.0), 0);
        EXPECT_EQ(rows.RowOf(1e6), 299);
    }
}
