// Titles from a CDDB server started by the test on 127.0.0.1, over cddbp and over HTTP, with
// friendly and hostile servers, and the fall-back to CD-TEXT and "Track NN".
#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

#include "cd/LCdTitles.h"
#include "cd/LCddbDiscId.h"
#include "support/TestSupport.h"
#include "support/CddbTestServer.h"

using cdtest::CddbTestServer;

namespace {

LCdToc ThreeTracks()
{
    LCdToc toc;
    const int32_t aStart[] = {0, 15000, 30000};
    for (int i = 0; i < 3; ++i) {
        LCdTrackInfo t;
        t.nNumber = i + 1;
        t.lsnStart = aStart[i];
        t.nSectors = 15000;
        toc.vTracks.push_back(t);
    }
    toc.lsnLeadOut = 45000;
    return toc;
}

std::string Entry(const std::string& szDiscTitle, const std::vector<std::string>& vTracks)
{
    std::string sz = "# xmcd\n#\n# Track frame offsets:\n#\t150\n#\n# Disc length: 602 seconds\n#\n";
    sz += "DISCID=" + LCddb::DiscIdText(LCddb::DiscId(ThreeTracks())) + "\n";
    if (!szDiscTitle.empty())
        sz += "DTITLE=" + szDiscTitle + "\n";
    sz += "DYEAR=1999\nDGENRE=Test\n";
    for (size_t i = 0; i < vTracks.size(); ++i)
        sz += "TTITLE" + std::to_string(i) + "=" + vTracks[i] + "\n";
    return sz + "EXTD=\nPLAYORDER=\n";
}

class CddbLookup : public ::testing::TestWithParam<bool>
{
protected:
    void AddEntry(const std::string& szCategory, const std::string& szText)
    {
        std::filesystem::create_directories(dir.File(szCategory));
        testsupport::WriteFileBytes(dir.File(szCategory + "/" + LCddb::DiscIdText(LCddb::DiscId(ThreeTracks()))),
                                    std::vector<uint8_t>(szText.begin(), szText.end()));
    }

    LCddbServer Server(const CddbTestServer& srv, int32_t nTimeoutMs = 5000) const
    {
        LCddbServer s;
        s.szHost = "127.0.0.1";
        s.nPort = srv.Port();
        s.bHttp = GetParam();
        s.nTimeoutMs = nTimeoutMs;
        return s;
    }

    LCdTitles LookUp(CddbTestServer::Mode mode, int32_t nTimeoutMs = 5000, const LCd::LChooseMatch& choose = nullptr)
    {
        CddbTestServer srv(dir.Path(), GetParam(), mode);
        return LCd::LookUpTitles(ThreeTracks(), Server(srv, nTimeoutMs), nullptr, choose);
    }

    testsupport::TempDir dir;
};

const std::vector<std::string> kNumbered = {"Track 01", "Track 02", "Track 03"};

TEST_P(CddbLookup, OneMatchNamesTheTracks)
{
    AddEntry("rock", Entry("The Artist / The Album", {"Intro", "Grüße", "Outro"}));
    const LCdTitles titles = LookUp(CddbTestServer::Mode::Normal);
    EXPECT_EQ(titles.szSource, "CDDB");
    EXPECT_EQ(titles.szMessage, "");
    EXPECT_EQ(titles.szArtist, "The Artist");
    EXPECT_EQ(titles.szAlbum, "The Album");
    EXPECT_EQ(titles.vTitles, (std::vector<std::string>{"Intro", "Grüße", "Outro"}));
}

TEST_P(CddbLookup, SeveralMatchesAreOfferedForAChoice)
{
    AddEntry("rock", Entry("A / First", {"a1", "a2", "a3"}));
    AddEntry("jazz", Entry("B / Second", {"b1", "b2", "b3"}));
    std::vector<LCddbMatch> vOffered;
    const LCdTitles titles = LookUp(CddbTestServer::Mode::Normal, 5000, [&](const std::vector<LCddbMatch>& v) {
        vOffered = v;
        for (size_t i = 0; i < v.size(); ++i)
            if (v[i].szCategory == "jazz")
                return static_cast<int>(i);
        return -1;
    });
    ASSERT_EQ(vOffered.size(), 2u);
    EXPECT_EQ(titles.vTitles, (std::vector<std::string>{"b1", "b2", "b3"}));
    EXPECT_EQ(titles.szAlbum, "Second");

    // Declining every match keeps the disc's own names.
    const LCdTitles declined = LookUp(CddbTestServer::Mode::Normal, 5000, [](const std::vector<LCddbMatch>&) { return -1; });
    EXPECT_EQ(declined.vTitles, kNumbered);
}

TEST_P(CddbLookup, NoMatchFallsBackToCdTextThenNumbers)
{
    CddbTestServer srv(dir.Path(), GetParam());
    LCdToc toc = ThreeTracks();
    LCdTitles titles = LCd::LookUpTitles(toc, Server(srv), nullptr, nullptr);
    EXPECT_EQ(titles.vTitles, kNumbered);
    EXPECT_EQ(titles.szSource, "");
    EXPECT_EQ(titles.szMessage, "The CDDB server does not know this disc");

    toc.szAlbum = "Disc Text";
    toc.vTracks[1].szTitle = "From the disc";
    titles = LCd::LookUpTitles(toc, Server(srv), nullptr, nullptr);
    EXPECT_EQ(titles.szSource, "CD-TEXT");
    EXPECT_EQ(titles.szAlbum, "Disc Text");
    EXPECT_EQ(titles.vTitles, (std::vector<std::string>{"Track 01", "From the disc", "Track 03"}));
}

TEST_P(CddbLookup, HostileServersGiveNumberedTracksAndAMessage)
{
    AddEntry("rock", Entry("A / B", {"x", "y", "z"}));
    for (auto mode : {CddbTestServer::Mode::Stall, CddbTestServer::Mode::Garbage, CddbTestServer::Mode::Overlong,
                      CddbTestServer::Mode::Drip}) {
        const LCdTitles titles = LookUp(mode, 1000);
        EXPECT_EQ(titles.vTitles, kNumbered) << static_cast<int>(mode);
        EXPECT_NE(titles.szMessage.find("No titles from CDDB"), std::string::npos) << titles.szMessage;
    }
}

TEST_P(CddbLookup, BadEntriesGiveNumberedTracksAndAMessage)
{
    AddEntry("rock", Entry("Caf\xE9 / Latin-1", {"x", "y", "z"}));
    LCdTitles titles = LookUp(CddbTestServer::Mode::Normal);
    EXPECT_EQ(titles.vTitles, kNumbered);
    EXPECT_NE(titles.szMessage.find("UTF-8"), std::string::npos) << titles.szMessage;

    AddEntry("rock", Entry("", {"x", "y", "z"}));
    titles = LookUp(CddbTestServer::Mode::Normal);
    EXPECT_EQ(titles.vTitles, kNumbered);
    EXPECT_NE(titles.szMessage.find("no disc title"), std::string::npos) << titles.szMessage;

    // A missing track title costs only that track its name.
    AddEntry("rock", Entry("A / B", {"x", "", "z"}));
    titles = LookUp(CddbTestServer::Mode::Normal);
    EXPECT_EQ(titles.vTitles, (std::vector<std::string>{"x", "Track 02", "z"}));
    EXPECT_EQ(titles.szMessage, "the CDDB entry names no title for 1 track");
}

TEST_P(CddbLookup, ACancelEndsAStalledLookup)
{
    CddbTestServer srv(dir.Path(), GetParam(), CddbTestServer::Mode::Stall);
    std::atomic<bool> bCancel{false};
    std::thread canceller([&] {
        while (srv.Connections() == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        bCancel = true;
    });
    // The deadline is far away: only the cancel can end this.
    const LCdTitles titles = LCd::LookUpTitles(ThreeTracks(), Server(srv, 600000), &bCancel, nullptr);
    canceller.join();
    EXPECT_EQ(titles.vTitles, kNumbered);
    EXPECT_NE(titles.szMessage.find("cancelled"), std::string::npos) << titles.szMessage;
}

TEST_P(CddbLookup, NoServerOrLookupTurnedOff)
{
    CddbTestServer srv(dir.Path(), GetParam());
    LCddbServer s = Server(srv);
    s.bEnabled = false;
    EXPECT_EQ(LCd::LookUpTitles(ThreeTracks(), s, nullptr, nullptr).vTitles, kNumbered);
    EXPECT_EQ(srv.Connections(), 0);

    // A port where nobody listens (the server's, once it has gone).
    int nPort = 0;
    {
        CddbTestServer gone(dir.Path(), GetParam());
        nPort = gone.Port();
    }
    s.bEnabled = true;
    s.nPort = nPort;
    const LCdTitles titles = LCd::LookUpTitles(ThreeTracks(), s, nullptr, nullptr);
    EXPECT_EQ(titles.vTitles, kNumbered);
    EXPECT_NE(titles.szMessage.find("No titles from CDDB"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Protocols, CddbLookup, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) { return info.param ? "Http" : "Cddbp"; });

} // namespace
