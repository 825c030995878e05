// End to end: `sonitra-cli effect IN OUT NAME [PARAM=VALUE ...] [--range S,E]`.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/LFixed.h"
#include "core/LMemorySound.h"
#include "dsp/effects/LSRCEcho.h"
#include "support/CliTest.h"

namespace {

class EffectCli : public testsupport::CliTest
{
protected:
    void SetUp() override
    {
        vIn = testsupport::Sine16(8000, 2, 8000, 300.0, 6000.0);
        testsupport::WriteSimpleWav(In(), 8000, 2, 16, vIn);
    }
    std::string In() const { return dir.File("in.wav"); }
    std::string Out() const { return dir.File("out.wav"); }
    int Run(const std::string& szArgs, std::string* pErr = nullptr)
    {
        const int n = CliApart("effect " + szArgs);
        if (pErr)
            *pErr = Err();
        return n;
    }

    std::vector<int32_t> vIn;
};

} // namespace

TEST_F(EffectCli, EchoRunsTheSameStageAsTheEditor)
{
    ASSERT_EQ(Run(In() + " " + Out() + " echo EchoTime=100 EchoGain=40"), 0);
    std::vector<int32_t> vInternal;
    for (int32_t s : vIn)
        vInternal.push_back(LFrom16(static_cast<int16_t>(s)));
    LSoundSourcePtr pSrc(new LSRCMemory(vInternal, 8000, 2));
    LSRCEcho echo(pSrc.Get(), 40, 100);
    std::vector<int32_t> v(vInternal.size());
    echo.Read(v.data(), 8000);
    auto vOut = testsupport::ReadWavSamples16(Out());
    ASSERT_EQ(vOut.size(), v.size());
    for (size_t i = 0; i < v.size(); ++i)
        ASSERT_EQ(vOut[i], LTo16(v[i])) << i;
}

TEST_F(EffectCli, RangeLimitsTheEffectAndDefaultsApply)
{
    ASSERT_EQ(Run(In() + " " + Out() + " reverse --range 1000,3000"), 0);
    auto vOut = testsupport::ReadWavSamples16(Out());
    ASSERT_EQ(vOut.size(), vIn.size());
    EXPECT_EQ(vOut[0], vIn[0]);
    EXPECT_EQ(vOut[2 * 1000], vIn[2 * 2999]);
    EXPECT_EQ(vOut[2 * 2999 + 1], vIn[2 * 1000 + 1]);
    EXPECT_EQ(vOut[2 * 3000], vIn[2 * 3000]);

    // No AmplifyGain given and none stored: the default 100 % leaves the audio as it was.
    ASSERT_EQ(Run(In() + " " + Out() + " amplify"), 0);
    auto vSame = testsupport::ReadWavSamples16(Out());
    ASSERT_EQ(vSame.size(), vIn.size());
    for (size_t i = 0; i < vIn.size(); ++i)
        ASSERT_EQ(vSame[i], vIn[i]);
}

TEST_F(EffectCli, RefusedValuesGiveTheDialogMessageAndWriteNothing)
{
    testsupport::WriteFileBytes(Out(), {1, 2, 3});
    const struct
    {
        const char* szArgs;
        const char* szMessage;
    } aCases[] = {
        {"echo EchoTime=3000", "Echo time must be between 10 and 3000ms. Please try again."},
        {"normalize NormalizePeakLevel=101", "Normailze Peak Level must be less than 100%. Please try again."},
        {"convert-sample-rate ConvertSampleRate=5999", "Sample rates must be between 6000 and 96000 samples per second."},
    };
    for (const auto& c : aCases) {
        std::string szErr;
        EXPECT_EQ(Run(In() + " " + Out() + " " + c.szArgs, &szErr), 64) << c.szArgs;
        EXPECT_EQ(szErr, std::string("sonitra-cli: ") + c.szMessage + "\n");
        EXPECT_EQ(testsupport::ReadFileBytes(Out()), (std::vector<uint8_t>{1, 2, 3}));
    }
}

TEST_F(EffectCli, UnknownNamesAndBadSyntaxAreUsageErrors)
{
    std::string szErr;
    EXPECT_EQ(Run(In() + " " + Out() + " wobble", &szErr), 64);
    EXPECT_NE(szErr.find("unknown effect 'wobble'"), std::string::npos);
    EXPECT_EQ(Run(In() + " " + Out() + " echo Foo=1", &szErr), 64);
    EXPECT_EQ(Run(In() + " " + Out() + " echo EchoTime=abc", &szErr), 64);
    EXPECT_EQ(Run(In() + " " + Out() + " echo --range 5,2", &szErr), 64);
    EXPECT_EQ(Run(In() + " " + Out() + " mix-file", &szErr), 64);
    EXPECT_EQ(Run(dir.File("missing.wav") + " " + Out() + " echo", &szErr), 2);
    EXPECT_FALSE(testsupport::ReadFileBytes(Out()).size());
}

TEST_F(EffectCli, MixFileAndCompressorLabels)
{
    ASSERT_EQ(Run(In() + " " + Out() + " mix-file File=" + In() + " PasteMixVolume=100 --range 0,0"), 0);
    auto vOut = testsupport::ReadWavSamples16(Out());
    ASSERT_EQ(vOut.size(), vIn.size());
    EXPECT_EQ(vOut[100], 2 * vIn[100]);
    EXPECT_EQ(Run(In() + " " + Out() + " dynamic-range-compressor CompressorRatio=Limit CompressorThreshold=-30"), 0);
}
