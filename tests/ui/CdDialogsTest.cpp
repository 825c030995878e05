// The CD commands through the real frame: tracks of a disc image opened as file windows (all,
// or up to a cancel), no drive said plainly, and files copied into a disc image.
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>
#include <QtTest>

#include "cd/LCdDevice.h"
#include "cd/LCdImageWriter.h"
#include "core/LEdFile.h"
#include "core/LMemorySound.h"
#include "ui/cd/LCdCopyDlg.h"
#include "ui/cd/LCdLoadDlg.h"
#include "ui/settings/LCdPage.h"
#include <QLineEdit>
#include <QSpinBox>
#include "work/LProgressDialog.h"
#include "work/LProgressHost.h"
#include "UiTestSupport.h"
#include "cd/LCddbDiscId.h"
#include "support/CddbTestServer.h"

using namespace uitest;

namespace {

// Three stereo tracks of ramps with known lengths, the second titled by CD-TEXT.
std::vector<std::vector<int16_t>> WriteImage(const QString& szCue)
{
    std::vector<std::vector<int16_t>> vTracks = {Ramp(3000, 2), Ramp(5000, 2), Ramp(588 * 4, 2)};
    std::vector<LCdSourceItem> vItems;
    const char* aTitles[] = {"", "Middle", ""};
    for (size_t i = 0; i < vTracks.size(); ++i) {
        std::vector<int32_t> v(vTracks[i].begin(), vTracks[i].end());
        for (int32_t& s : v)
            s *= 16;
        vItems.push_back({LSoundSourcePtr(new LSRCMemory(v, 44100, 2)), aTitles[i], ""});
        vTracks[i].resize((vTracks[i].size() / 2 + 587) / 588 * 588 * 2, 0); // the disc fills its last sector
    }
    LCdImageWriter writer(vItems, "Album", "", 150);
    struct Body : LProgressDialog
    {
        LCdImageWriter& w;
        std::string szCue;
        Body(LCdImageWriter& w, std::string sz) : LProgressDialog("x"), w(w), szCue(std::move(sz)) {}
        int32_t Process() override { return w.Write(*this, szCue, nullptr); }
    } body(writer, szCue.toStdString());
    body.Run();
    return vTracks;
}

// Cancels at the nth look, as a user pressing Cancel part-way.
class CancelAt : public LProgressHostFactory
{
public:
    explicit CancelAt(int n) : nLeft(n) {}
    std::unique_ptr<LProgressHost> Create() override { return std::make_unique<Host>(nLeft); }

private:
    struct Host : LQuietProgressHost
    {
        int& nLeft;
        explicit Host(int& n) : nLeft(n) {}
        bool Pump() override { return --nLeft > 0; }
    };
    int nLeft;
};

} // namespace

class CdDialogsTest : public QObject, public FrameFixture
{
    Q_OBJECT
private slots:
    void init()
    {
        QVERIFY(Start());
        LSettings::SetBool("CDDB", "Enabled", false); // never the network in tests
    }
    void cleanup() { Stop(); }

    void imageTracksOpenAsFileWindowsNamedByTheirTitles()
    {
        const QString szCue = h->File("disc.cue");
        const auto vTracks = WriteImage(szCue);
        h->prompts.openNames.push_back({szCue}); // a disc image opens from File > Open
        QVERIFY(frame->Command(CmOpenId));
        WhenDialogShows<LCdLoadDlg>([](LCdLoadDlg& dlg) {
            auto* pTracks = dlg.findChild<QTreeWidget*>("tracks");
            QTRY_COMPARE(pTracks->topLevelItemCount(), 3);
            QCOMPARE(pTracks->topLevelItem(1)->text(2), QString("Middle"));
            QCOMPARE(pTracks->topLevelItem(0)->text(2), QString("Track 01"));
            QVERIFY(dlg.findChild<QLabel*>("status")->text().contains("CD-TEXT"));
            dlg.findChild<QComboBox*>("mode")->setCurrentIndex(2);
            dlg.findChild<QPushButton*>("selectAll")->click();
            dlg.accept();
        });
        QTRY_COMPARE(frame->GetFileWindows().size(), size_t(3));
        const std::vector<LEdFileWindow*> vWindows = frame->GetFileWindows();
        QCOMPARE(vWindows[1]->GetName(), std::string("02 - Middle"));
        QCOMPARE(vWindows[2]->GetName(), std::string("03 - Track 03"));
        for (size_t i = 0; i < 3; ++i) {
            QCOMPARE(vWindows[i]->GetFile().GetDocument().GetSampleRate(), 44100);
            QCOMPARE(Samples(vWindows[i]->GetFile().GetDocument()), vTracks[i]);
        }
        QTRY_VERIFY(!h->prompts.informs.isEmpty());
        QCOMPARE(h->prompts.informs.back(),
                 QString("Sonitra: Read 3 of 3 track(s) in paranoid mode: 0 sector(s) corrected, 0 uncorrectable."));
        QCOMPARE(LSettings::GetString("CD", "ReadMode"), std::string("paranoid"));
    }

    void severalCddbMatchesAreChosenFromInTheDialog()
    {
        const QString szCue = h->File("disc.cue");
        WriteImage(szCue);
        const std::string szId = LCddb::DiscIdText(LCddb::DiscId(LCdDisc::Open(szCue.toStdString())->GetToc()));
        for (const std::string szCat : {"blues", "rock"}) {
            QDir().mkpath(h->File("db/" + QString::fromStdString(szCat)));
            const std::string szEntry = "DTITLE=Band / " + szCat + "\nTTITLE0=" + szCat + " one\nTTITLE1=" + szCat +
                                        " two\nTTITLE2=" + szCat + " three\n";
            std::ofstream(h->File(QString::fromStdString("db/" + szCat + "/" + szId)).toStdString()) << szEntry;
        }
        cdtest::CddbTestServer server(h->File("db").toStdString(), true);
        LSettings::SetBool("CDDB", "Enabled", true);
        LSettings::SetString("CDDB", "Server", "127.0.0.1");
        LSettings::SetString("CDDB", "Protocol", "http");
        LSettings::SetInt("CDDB", "Port", server.Port());
        QVERIFY(frame->LoadFile(szCue.toStdString()));
        WhenDialogShows<LCdLoadDlg>([](LCdLoadDlg& dlg) {
            auto* pTracks = dlg.findChild<QTreeWidget*>("tracks");
            auto* pMatch = dlg.findChild<QComboBox*>("match");
            QTRY_COMPARE(pMatch->count(), 2);
            QTRY_COMPARE(pTracks->topLevelItem(0)->text(2), QString("blues one"));
            QVERIFY(dlg.findChild<QLabel*>("status")->text().startsWith("Titles from CDDB"));
            pMatch->setCurrentIndex(1);
            QTRY_COMPARE(pTracks->topLevelItem(2)->text(2), QString("rock three"));
            pTracks->topLevelItem(2)->setCheckState(0, Qt::Checked);
            dlg.accept();
        });
        QTRY_COMPARE(frame->GetFileWindows().size(), size_t(1));
        QCOMPARE(frame->GetFileWindows()[0]->GetName(), std::string("03 - rock three"));
    }

    void theCdSettingsPageKeepsTheCddbServer()
    {
        LCdPage page(nullptr);
        QCOMPARE(page.findChild<QLineEdit*>("CddbServer")->text(), QString("gnudb.gnudb.org"));
        QCOMPARE(page.findChild<QSpinBox*>("CddbPort")->value(), 8880);
        page.findChild<QComboBox*>("CddbProtocol")->setCurrentIndex(1); // the usual port follows
        QCOMPARE(page.findChild<QSpinBox*>("CddbPort")->value(), 80);
        page.findChild<QLineEdit*>("CddbServer")->setText("  ");
        page.findChild<QCheckBox*>("CddbEnabled")->setChecked(true);
        QVERIFY(!page.Validate()); // no server to ask
        page.findChild<QLineEdit*>("CddbServer")->setText("cddb.example.org");
        page.findChild<QSpinBox*>("CddbPort")->setValue(8080);
        page.findChild<QComboBox*>("ReadMode")->setCurrentIndex(0);
        QVERIFY(page.Validate());
        page.Save();
        const LCddbServer server = LCddbServer::FromSettings();
        QCOMPARE(server.szHost, std::string("cddb.example.org"));
        QCOMPARE(server.nPort, 8080);
        QVERIFY(server.bHttp);
        QVERIFY(server.bEnabled);
        QCOMPARE(LSettings::GetString("CD", "ReadMode"), std::string("fast"));
    }

    void aCancelKeepsTheTracksAlreadyRead()
    {
        const QString szCue = h->File("disc.cue");
        WriteImage(szCue);
        CancelAt cancel(2); // each track is one block: track 1 is read, track 2 is cancelled
        QVERIFY(frame->LoadFile(szCue.toStdString()));
        WhenDialogShows<LCdLoadDlg>([&](LCdLoadDlg& dlg) {
            QTRY_COMPARE(dlg.findChild<QTreeWidget*>("tracks")->topLevelItemCount(), 3);
            dlg.findChild<QPushButton*>("selectAll")->click();
            LProgressHostFactory::SetDefault(&cancel);
            dlg.accept();
        });
        QTRY_VERIFY(!h->prompts.informs.isEmpty());
        LProgressHostFactory::SetDefault(nullptr);
        QVERIFY2(h->prompts.informs.back().startsWith("Sonitra: Read 1 of 3 track(s)"), qPrintable(h->prompts.informs.back()));
        QCOMPARE(frame->GetFileWindows().size(), size_t(1));
    }

    void withoutADriveTheDialogSaysSo()
    {
        if (!LCdDisc::ListDrives().empty())
            QSKIP("a CD drive is present");
        QVERIFY(frame->Command(CmLoadCdId));
        WhenDialogShows<LCdLoadDlg>([](LCdLoadDlg& dlg) {
            QTRY_VERIFY(dlg.findChild<QLabel*>("status")->text().startsWith("No CD drive found"));
            QCOMPARE(dlg.findChild<QTreeWidget*>("tracks")->topLevelItemCount(), 0);
            dlg.accept(); // refused: nothing to load
            QVERIFY(dlg.isVisible());
            dlg.reject();
        });
        QTRY_VERIFY(!h->prompts.informs.isEmpty());
        QVERIFY(h->prompts.informs.back().contains("Choose the tracks"));
        QTRY_VERIFY(!QApplication::activeModalWidget());
        QVERIFY(frame->GetFileWindows().empty());
    }

    void filesAreCopiedIntoADiscImageInTheChosenOrder()
    {
        WriteWav16(h->File("a.wav"), 44100, 2, Ramp(1000, 2));
        WriteWav16(h->File("b.wav"), 22050, 1, Ramp(2205));
        h->prompts.openNames.push_back({h->File("a.wav")});
        QVERIFY(frame->Command(CmOpenId));
        const QString szCue = h->File("out.cue");
        QVERIFY(frame->Command(CmCopyToCdId));
        WhenDialogShows<LCdCopyDlg>([&](LCdCopyDlg& dlg) {
            if (!dlg.findChild<QRadioButton*>("toDisc")->isEnabled())
                QVERIFY(dlg.findChild<QRadioButton*>("toImage")->isChecked());
            dlg.findChild<QRadioButton*>("toImage")->setChecked(true);
            h->prompts.openNames.push_back({h->File("b.wav")});
            dlg.findChild<QPushButton*>("add")->click();
            QTRY_COMPARE(dlg.findChild<QListWidget*>("files")->count(), 2);
            // b goes first.
            dlg.findChild<QListWidget*>("files")->setCurrentRow(1);
            dlg.findChild<QPushButton*>("up")->click();
            dlg.findChild<QDoubleSpinBox*>("gap")->setValue(0.0);
            h->prompts.saveNames.push_back(szCue);
            dlg.accept();
        });
        QTRY_VERIFY(h->prompts.informs.size() == 1);
        QCOMPARE(h->prompts.informs.back(), "Sonitra: The disc image was written to " + szCue + ".");
        auto pDisc = LCdDisc::Open(szCue.toStdString());
        QVERIFY(!pDisc->IsError());
        QCOMPARE(pDisc->GetToc().vTracks.size(), size_t(2));
        QCOMPARE(pDisc->GetToc().vTracks[0].szTitle, std::string("b"));
        QCOMPARE(pDisc->GetToc().vTracks[0].nSectors, 8); // 0.1 s at 44100 Hz
        QCOMPARE(pDisc->GetToc().vTracks[1].lsnStart, 8); // no gap
        QCOMPARE(pDisc->GetToc().vTracks[1].szTitle, std::string("a"));
    }
};

QTEST_MAIN(CdDialogsTest)
#include "CdDialogsTest.moc"
