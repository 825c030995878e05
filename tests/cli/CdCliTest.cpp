// sonitra-cli cd: images written from files read back into the same samples, titles from a local
// CDDB server, and clear failures where no drive or writer is.
#include <gtest/gtest.h>

#include <filesystem>

#include "support/CddbTestServer.h"
#include "support/TestSupport.h"

using testsupport::RunCli;
using testsupport::TempDir;

namespace {

std::vector<int32_t> Ramp(int nSamples, int nStep)
{
    std::vector<int32_t> v(static_cast<size_t>(nSamples));
    for (int i = 0; i < nSamples; ++i)
        v[static_cast<size_t>(i)] = static_cast<int16_t>(i * nStep);
    return v;
}

class CdCli : public ::testing::Test
{
protected:
    void SetUp() override
    {
        testsupport::WriteSimpleWav(dir.File("intro.wav"), 44100, 2, 16, vOne);
        testsupport::WriteSimpleWav(dir.File("song.wav"), 44100, 2, 16, vTwo);
    }
    std::string Image() { return "'" + dir.File("intro.wav") + "' '" + dir.File("song.wav") + "'"; }

    TempDir dir;
    std::vector<int32_t> vOne = Ramp(44100 * 2, 7);     // one second, stereo
    std::vector<int32_t> vTwo = Ramp(3000 * 2 + 2, 13); // not a whole number of sectors
};

TEST_F(CdCli, BurnToImageListAndRipBackTheSameSamples)
{
    std::string szOut;
    ASSERT_EQ(RunCli("cd burn " + Image() + " --image " + dir.File("disc.cue") + " --gap 1 --album Demo", &szOut), 0) << szOut;
    ASSERT_EQ(RunCli("cd list --no-cddb --image " + dir.File("disc.cue"), &szOut), 0) << szOut;
    EXPECT_NE(szOut.find("Demo"), std::string::npos) << szOut;
    EXPECT_NE(szOut.find("titles from CD-TEXT"), std::string::npos) << szOut;
    EXPECT_NE(szOut.find("01    0:01  intro"), std::string::npos) << szOut;
    EXPECT_NE(szOut.find("02    0:00  song"), std::string::npos) << szOut;

    ASSERT_EQ(RunCli("cd rip all --to wav --out " + dir.File("rip") + " --no-cddb --mode fast --image " + dir.File("disc.cue"), &szOut), 0)
        << szOut;
    EXPECT_NE(szOut.find("0 uncorrectable"), std::string::npos) << szOut;
    EXPECT_EQ(testsupport::ReadWavSamples16(dir.File("rip/01 - intro.wav")), std::vector<int16_t>(vOne.begin(), vOne.end()));
    // The last sector of a track is filled with silence.
    std::vector<int16_t> vSong(vTwo.begin(), vTwo.end());
    vSong.resize(588 * 6 * 2, 0);
    EXPECT_EQ(testsupport::ReadWavSamples16(dir.File("rip/02 - song.wav")), vSong);

    ASSERT_EQ(RunCli("cd rip 2 --to wav --out " + dir.File("one") + " --no-cddb --image " + dir.File("disc.cue"), &szOut), 0);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.File("one")), {}), 1);
}

TEST_F(CdCli, TitlesComeFromTheCddbServerAndSeveralMatchesAreListed)
{
    ASSERT_EQ(RunCli("cd burn " + Image() + " --image " + dir.File("disc.cue") + " --gap 0"), 0);
    std::string szOut;
    // The id of this two-track image: tracks at 2 s and 3 s (digit sum 5), the lead-out at 3 s,
    // one second after track 1, and two tracks.
    const std::string szId = "05000102";
    for (const std::string szCat : {"rock", "blues"}) {
        std::filesystem::create_directories(dir.File("db/" + szCat));
        const std::string szEntry = "DISCID=" + szId + "\nDTITLE=Band / Disc " + szCat + "\nTTITLE0=Opening " + szCat +
                                    "\nTTITLE1=Closing: the End\n";
        testsupport::WriteFileBytes(dir.File("db/" + szCat + "/" + szId), std::vector<uint8_t>(szEntry.begin(), szEntry.end()));
    }
    cdtest::CddbTestServer server(dir.File("db"), false);
    const std::string szCddb = " --cddb 127.0.0.1:" + std::to_string(server.Port());
    ASSERT_EQ(RunCli("cd list --image " + dir.File("disc.cue") + szCddb + " --match 2", &szOut), 0) << szOut;
    EXPECT_NE(szOut.find("knows 2 discs"), std::string::npos) << szOut;
    EXPECT_NE(szOut.find("titles from CDDB"), std::string::npos) << szOut;
    ASSERT_EQ(RunCli("cd rip all --to wav --out " + dir.File("rip") + " --image " + dir.File("disc.cue") + szCddb, &szOut), 0) << szOut;
    EXPECT_TRUE(std::filesystem::exists(dir.File("rip/02 - Closing_ the End.wav"))) << szOut;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(dir.File("rip")), {}), 2);

    cdtest::CddbTestServer http(dir.File("db"), true);
    ASSERT_EQ(RunCli("cd list --cddb-http --cddb 127.0.0.1:" + std::to_string(http.Port()) + " --image " + dir.File("disc.cue"), &szOut), 0);
    EXPECT_NE(szOut.find("Opening"), std::string::npos) << szOut;
}

TEST_F(CdCli, WrongUsageAndMissingInputs)
{
    std::string szOut;
    EXPECT_EQ(RunCli("cd rip all --out " + dir.File("x") + " --image " + dir.File("disc.cue")), 64);
    EXPECT_EQ(RunCli("cd rip 0 --to wav --out " + dir.File("x") + " --image nothing.cue"), 2);
    EXPECT_EQ(RunCli("cd burn " + Image() + " --gap -1 --image " + dir.File("x.cue")), 64);
    EXPECT_EQ(RunCli("cd burn --image " + dir.File("x.cue")), 64);
    EXPECT_EQ(RunCli("cd spin"), 64);
    EXPECT_EQ(RunCli("cd burn " + Image() + " --image " + dir.File("d.cue") + " --match"), 64);
    EXPECT_EQ(RunCli("cd burn " + dir.File("missing.wav") + " --image " + dir.File("d.cue"), &szOut), 2);
    EXPECT_FALSE(std::filesystem::exists(dir.File("d.cue")));
    ASSERT_EQ(RunCli("cd burn " + Image() + " --image " + dir.File("disc.cue")), 0);
    EXPECT_EQ(RunCli("cd rip 1-3 --to wav --out " + dir.File("x") + " --no-cddb --image " + dir.File("disc.cue"), &szOut), 2);
    EXPECT_NE(szOut.find("no audio track 3"), std::string::npos) << szOut;
    EXPECT_EQ(RunCli("cd rip 1 --to xyz --out " + dir.File("x") + " --no-cddb --image " + dir.File("disc.cue")), 64);
}

TEST_F(CdCli, NoDriveAndNoWriterAreSaid)
{
    std::string szOut;
    int nExit = RunCli("cd list --no-cddb", &szOut);
    if (nExit == 0)
        GTEST_SKIP() << "a CD drive with a disc is present: the no-drive case cannot be shown here";
    EXPECT_EQ(nExit, 2);
    EXPECT_TRUE(szOut.find("No CD drive found") != std::string::npos || szOut.find("no disc") != std::string::npos) << szOut;
    EXPECT_EQ(RunCli("cd rip all --to wav --out " + dir.File("x") + " --no-cddb", &szOut), 2);

    nExit = RunCli("cd burn " + Image() + " --simulate", &szOut);
    if (szOut.find("No CD writer found") == std::string::npos) {
        EXPECT_EQ(nExit, 0) << szOut; // a writer with a blank disc: the simulation ran
        return;
    }
    EXPECT_EQ(nExit, 2);
    std::cout << "[   NOTE   ] no CD writer here: the simulated burn was skipped\n";
}

TEST_F(CdCli, WhatDoesNotFitIsRefusedBeforeWriting)
{
    // 75 minutes of silence at a low rate: small to make, too long for a 74-minute disc.
    testsupport::WriteSimpleWav(dir.File("long.wav"), 1000, 1, 8, std::vector<int32_t>(75 * 60 * 1000, 128));
    std::string szOut;
    EXPECT_EQ(RunCli("cd burn " + dir.File("long.wav") + " --disc-minutes 74 --image " + dir.File("l.cue"), &szOut), 2);
    EXPECT_NE(szOut.find("74-minute disc holds 74:00"), std::string::npos) << szOut;
    EXPECT_FALSE(std::filesystem::exists(dir.File("l.bin")));
}

} // namespace
