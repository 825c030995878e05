#include <gtest/gtest.h>

#include <algorithm>

#include "support/TestSupport.h"

using testsupport::Quote;
using testsupport::RunCli;
using testsupport::HaveTool;
using testsupport::ReadFileBytes;
using testsupport::RunCommand;
using testsupport::TempDir;
using testsupport::WriteFileBytes;

namespace {

using Bytes = std::vector<uint8_t>;

// The samples of a 46-byte-header WAV as sonitra-cli writes it.
Bytes WavData(const std::string& szPath)
{
    const Bytes v = ReadFileBytes(szPath);
    return v.size() < 46 ? Bytes() : Bytes(v.begin() + 46, v.end());
}

Bytes Toast(const TempDir& dir, const Bytes& vRaw)
{
    WriteFileBytes(dir.File("t.raw"), vRaw);
    std::string szOut;
    RunCommand("toast -l -c " + Quote(dir.File("t.raw")), &szOut);
    return Bytes(szOut.begin(), szOut.end());
}

Bytes Untoast(const std::string& szGsm)
{
    std::string szOut;
    RunCommand("untoast -l -c " + Quote(szGsm), &szOut);
    return Bytes(szOut.begin(), szOut.end());
}

#define REQUIRE_TOAST()                                                                                                \
    if (!HaveTool("toast") || !HaveTool("untoast"))                                                                    \
    GTEST_SKIP() << "toast/untoast (libgsm-tools) are not installed"

} // namespace

TEST(CliGsm, ConvertCodesEightKilohertzMonoAsToastDoesAndDecodesAsUntoastDoes)
{
    REQUIRE_TOAST();
    TempDir dir;
    testsupport::WriteSimpleWav(dir.File("st.wav"), 22050, 2, 16, testsupport::Sine16(22050, 2, 33075, 330, 12000));
    ASSERT_EQ(RunCli("convert " + dir.File("st.wav") + " " + dir.File("st.gsm")), 0);
    // Saving to GSM narrows to 8000 Hz mono on the way, as an explicit conversion does.
    ASSERT_EQ(RunCli("convert " + dir.File("st.wav") + " " + dir.File("mono8k.wav") + " --rate 8000 --channels 1"), 0);
    const Bytes vGsm = ReadFileBytes(dir.File("st.gsm"));
    EXPECT_EQ(vGsm.size(), 12000u / 160 * 33);
    EXPECT_EQ(vGsm, Toast(dir, WavData(dir.File("mono8k.wav"))));

    std::string szOut;
    EXPECT_EQ(RunCli("info " + dir.File("st.gsm"), &szOut), 0);
    EXPECT_EQ(szOut, dir.File("st.gsm") + ": GSM 06.10 full rate, 8000 Hz, 1 channel, 12000 frames, 0:00:01.500\n");

    ASSERT_EQ(RunCli("convert " + dir.File("st.gsm") + " " + dir.File("back.wav")), 0);
    EXPECT_EQ(WavData(dir.File("back.wav")), Untoast(dir.File("st.gsm")));
}

TEST(CliGsm, EditAndEffectReadAndWriteGsm)
{
    REQUIRE_TOAST();
    TempDir dir;
    testsupport::WriteSimpleWav(dir.File("in.wav"), 8000, 1, 16, testsupport::Sine16(8000, 1, 16000, 440, 9000));
    ASSERT_EQ(RunCli("convert " + dir.File("in.wav") + " " + dir.File("in.gsm")), 0);
    const Bytes vDecoded = Untoast(dir.File("in.gsm"));
    ASSERT_EQ(vDecoded.size(), 32000u);

    // The edited document is coded again from the decoded samples it holds.
    ASSERT_EQ(RunCli("edit " + dir.File("in.gsm") + " " + dir.File("crop.gsm") + " crop=0,8000"), 0);
    EXPECT_EQ(ReadFileBytes(dir.File("crop.gsm")), Toast(dir, Bytes(vDecoded.begin(), vDecoded.begin() + 16000)));

    ASSERT_EQ(RunCli("effect " + dir.File("in.gsm") + " " + dir.File("rev.gsm") + " reverse"), 0);
    Bytes vReversed(vDecoded.size());
    for (size_t i = 0; i < vDecoded.size(); i += 2) {
        vReversed[vDecoded.size() - 2 - i] = vDecoded[i];
        vReversed[vDecoded.size() - 1 - i] = vDecoded[i + 1];
    }
    EXPECT_EQ(ReadFileBytes(dir.File("rev.gsm")), Toast(dir, vReversed));
}

TEST(CliGsm, RefusesWhatIsNotGsm)
{
    TempDir dir;
    WriteFileBytes(dir.File("junk.gsm"), Bytes(100, 0x11));
    std::string szOut;
    EXPECT_EQ(RunCli("info " + dir.File("junk.gsm"), &szOut), 2);
    EXPECT_NE(szOut.find("not a GSM file: the first frame lacks the GSM signature"), std::string::npos) << szOut;
}
