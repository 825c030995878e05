// Stereo to mono, wherever the tool makes it: each mono sample is the mix of its left and right
// samples, so a stereo file whose channels differ keeps both in the result.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "support/CliTest.h"

using testsupport::ReadFileBytes;
using testsupport::ReadWavSamples16;
using testsupport::TempDir;

namespace {

constexpr int kRate = 8000;
constexpr int kFrames = 12000;

class MonoMixCli : public testsupport::CliTest
{
protected:
    void SetUp() override
    {
        // Two unrelated tones of unequal level: a left-only result correlates with the mix by 0.8 at most.
        vLeft = testsupport::Sine16(kRate, 1, kFrames, 300.0, 9000.0);
        vRight = testsupport::Sine16(kRate, 1, kFrames, 1130.0, 7000.0);
        std::vector<int32_t> vStereo;
        for (int i = 0; i < kFrames; ++i) {
            vStereo.push_back(vLeft[i]);
            vStereo.push_back(vRight[i]);
            // (L + R) / 2 with the half rounded up, as a 16-bit writer rounds.
            vMix.push_back(static_cast<int16_t>((vLeft[i] + vRight[i] + 1) >> 1));
        }
        testsupport::WriteSimpleWav(dir.File("st.wav"), kRate, 2, 16, vStereo);
    }
    // The mono WAV a file decodes to, by the tool itself.
    std::vector<int16_t> Decoded(const std::string& szFile, const std::string& szRaw = "")
    {
        const std::string szWav = szFile + ".back.wav";
        EXPECT_EQ(Cli("convert '" + szFile + "' '" + szWav + "'" + szRaw), 0) << szLog;
        return ReadWavSamples16(szWav);
    }

    std::vector<int32_t> vLeft, vRight;
    std::vector<int16_t> vMix;
};

double Correlation(const std::vector<int16_t>& a, const std::vector<int32_t>& b)
{
    double fAB = 0, fAA = 0, fBB = 0;
    for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        fAB += double(a[i]) * b[i];
        fAA += double(a[i]) * a[i];
        fBB += double(b[i]) * b[i];
    }
    return fAA > 0 && fBB > 0 ? fAB / std::sqrt(fAA * fBB) : 0;
}

std::vector<int32_t> Widen(const std::vector<int16_t>& v)
{
    return std::vector<int32_t>(v.begin(), v.end());
}

} // namespace

TEST_F(MonoMixCli, ConvertAndTheMonoEffectMixBothChannels)
{
    ASSERT_EQ(Cli("convert '" + dir.File("st.wav") + "' '" + dir.File("m.wav") + "' --channels 1"), 0) << szLog;
    EXPECT_EQ(ReadWavSamples16(dir.File("m.wav")), vMix);
    ASSERT_EQ(Cli("effect '" + dir.File("st.wav") + "' '" + dir.File("e.wav") + "' mono"), 0) << szLog;
    EXPECT_EQ(ReadWavSamples16(dir.File("e.wav")), vMix);
}

TEST_F(MonoMixCli, SavingIntoMonoOnlyFormatsMixesBothChannels)
{
    // 16-bit PCM in a ".vox" file: exact.
    ASSERT_EQ(Cli("convert '" + dir.File("st.wav") + "' '" + dir.File("pcm.vox") + "' --raw-format s16le"), 0) << szLog;
    EXPECT_EQ(Decoded(dir.File("pcm.vox"), " --raw-format s16le"), vMix);

    // GSM: the same frames as coding the mixed mono file.
    ASSERT_EQ(Cli("convert '" + dir.File("st.wav") + "' '" + dir.File("st.gsm") + "'"), 0) << szLog;
    ASSERT_EQ(Cli("convert '" + dir.File("st.wav") + "' '" + dir.File("m.wav") + "' --channels 1"), 0) << szLog;
    ASSERT_EQ(Cli("convert '" + dir.File("m.wav") + "' '" + dir.File("m.gsm") + "'"), 0) << szLog;
    EXPECT_EQ(ReadFileBytes(dir.File("st.gsm")), ReadFileBytes(dir.File("m.gsm")));
    EXPECT_EQ(ReadFileBytes(dir.File("st.gsm")).size(), size_t(kFrames / 160 * 33));

    // Dialogic ADPCM is lossy: what it holds follows the mix, not one side.
    ASSERT_EQ(Cli("convert '" + dir.File("st.wav") + "' '" + dir.File("adpcm.vox") + "' --raw-format vox"), 0) << szLog;
    const std::vector<int16_t> vVox = Decoded(dir.File("adpcm.vox"), " --raw-format vox");
    ASSERT_EQ(vVox.size(), size_t(kFrames));
    EXPECT_GT(Correlation(vVox, Widen(vMix)), 0.95);
    EXPECT_LT(Correlation(vVox, vLeft), 0.85);
    EXPECT_LT(Correlation(vVox, vRight), 0.85);
}

TEST_F(MonoMixCli, TheBatchConverterMixesBothChannels)
{
    const std::string szMono = dir.File("mono.snb");
    const std::string szKeep = dir.File("keep.snb");
    ASSERT_EQ(Cli("script new '" + szMono + "' mono"), 0) << szLog;
    // A stereo document stays stereo through this script; the save into ".vox" makes it mono.
    ASSERT_EQ(Cli("script new '" + szKeep + "' stereo"), 0) << szLog;
    ASSERT_EQ(Cli("batch '" + szMono + "' '" + dir.File("st.wav") + "' --to wav --out '" + dir.File("a") + "' --jobs 1"),
              0)
        << szLog;
    EXPECT_EQ(ReadWavSamples16(dir.File("a/st.wav")), vMix);
    ASSERT_EQ(Cli("batch '" + szKeep + "' '" + dir.File("st.wav") + "' --to vox --out '" + dir.File("b") +
                  "' --jobs 1 --raw-format s16le"),
              0)
        << szLog;
    EXPECT_EQ(Decoded(dir.File("b/st.vox"), " --raw-format s16le"), vMix);
}
