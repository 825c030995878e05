// Projects, bookmarks and regions through the real frame: a project saved, everything closed,
// and reopened in a new frame over a tank that starts afresh; the version message; the
// question on closing a changed project; bookmark lists beside files; the lists as dialogs;
// assembling regions; Save Project As making a project of its own; missing audio refused; no
// more bookmarks or regions than their files can count; and a failed recovery keeping its files.
#include <QCoreApplication>
#include <QDir>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTreeWidget>
#include <QtTest>

#include <filesystem>
#include <memory>

#include "core/LAudioCutTank.h"
#include "core/LFile.h"
#include "core/LEdFile.h"
#include "project/LBookmarkFile.h"
#include "project/LBytes.h"
#include "project/LEdFileEntry.h"
#include "project/LRecovery.h"
#include "ui/LBookmarkListDlg.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LRegionListDlg.h"
#include "ui/LMarkCommands.h"
#include "ui/LProjectCommands.h"
#include "ui/MainDialog.h"
#include "UiTestSupport.h"

using namespace uitest;

namespace {
struct BookmarkSeen
{
    std::string szName;
    std::string szPath;
    int32_t sPosition;
    bool operator==(const BookmarkSeen&) const = default;
};

std::vector<BookmarkSeen> Seen(const std::vector<LEdBookMark>& v)
{
    std::vector<BookmarkSeen> out;
    for (const LEdBookMark& b : v)
        out.push_back({b.GetName(), b.GetPath(), b.sPosition});
    return out;
}

void FinishDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
} // namespace

class ProjectTest : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<Harness> h;
    std::unique_ptr<MainDialog> frame;

    void NewFrame()
    {
        frame = std::make_unique<MainDialog>();
        frame->resize(1000, 700);
        frame->show();
    }

    QString MakeWav(const QString& szName, int nFrames, int nChans)
    {
        const QString szPath = h->File(szName);
        WriteWav16(szPath, 8000, nChans, Ramp(nFrames, nChans));
        return szPath;
    }

    LEdFileWindow* Open(const QString& szPath)
    {
        h->prompts.openNames.push_back({szPath});
        frame->Command(CmOpenId);
        return frame->GetCurrentFileWindow();
    }

    LEdFileWindow* WindowNamed(const std::string& szName)
    {
        for (LEdFileWindow* p : frame->GetFileWindows())
            if (p->GetName() == szName)
                return p;
        return nullptr;
    }

private slots:
    void init()
    {
        h = std::make_unique<Harness>();
        NewFrame();
    }

    void cleanup()
    {
        frame.reset();
        FinishDeletes();
        h.reset();
    }

    void aProjectComesBackWholeAfterARestart()
    {
        const QString szA = MakeWav("a.wav", 4000, 1);
        const QString szB = MakeWav("b.wav", 3000, 2);
        LEdFileWindow* pA = Open(szA);
        QVERIFY(pA);
        pA->SetSelection(500, 1500);
        QVERIFY(frame->Command(CmDeleteId));
        pA->SetCursorPosition(700);
        QVERIFY(frame->Command(CmSetBookmarkId));
        pA->SetSelection(1000, 2000);
        QVERIFY(frame->Command(CmAddRegionId));
        LEdFileWindow* pB = Open(szB);
        QVERIFY(pB);
        pB->SetCursorPosition(100);
        h->prompts.numbers.push_back(0.05);
        QVERIFY(frame->Command(CmInsertSilenceCurrentId));
        pB->SetSelection(200, 600);
        QVERIFY(frame->Command(CmCutId));
        pB->SetCursorPosition(2000);
        QVERIFY(frame->Command(CmSetBookmarkId));

        const std::vector<int16_t> vA = Samples(pA->GetFile().GetDocument());
        const std::vector<int16_t> vB = Samples(pB->GetFile().GetDocument());
        const std::vector<BookmarkSeen> vMarks = Seen(frame->GetMarks().GetBookmarks());
        QCOMPARE(vMarks.size(), size_t(2));
        QCOMPARE(frame->GetMarks().GetRegions().size(), size_t(1));
        const std::string szRegion = frame->GetMarks().GetRegions()[0].Describe();
        const std::vector<int16_t> vRegion = Samples(*frame->GetMarks().GetRegions()[0].pDoc);
        QCOMPARE(vRegion, std::vector<int16_t>(vA.begin() + 1000, vA.begin() + 2000));

        const QString szProject = h->File("work/song.snp");
        std::filesystem::create_directories(h->File("work").toStdString());
        h->prompts.saveNames.push_back(szProject);
        QVERIFY(frame->Command(CmSaveProjectAsId));
        QCOMPARE(h->prompts.dialogTitles.back(), QString("Save Project As"));
        QCOMPARE(QString::fromStdString(frame->GetProject().GetProjectPath()), szProject);

        // Closing the unchanged project asks only about the files.
        h->prompts.questions.clear();
        h->prompts.answers = {LUiPrompts::AnswerNo, LUiPrompts::AnswerNo};
        QVERIFY(frame->Command(CmCloseProjectId));
        QCOMPARE(h->prompts.questions.size(), qsizetype(2));
        QVERIFY(frame->GetFileWindows().empty());
        QVERIFY(frame->GetMarks().GetBookmarks().empty());
        frame.reset();
        FinishDeletes();
        QCOMPARE(LAudioCutTank::Instance().CountUsedRefs(), 0);
        LAudioCutTank::Instance().Sweep(); // the working folder as a new run finds it
        // The project keeps its own audio: the files it was made from may go.
        QVERIFY(QFile::remove(szA));
        QVERIFY(QFile::remove(szB));
        std::filesystem::rename(h->File("work").toStdString(), h->File("moved").toStdString());

        NewFrame();
        QVERIFY(Open(MakeWav("other.wav", 5000, 1))); // the tank's first numbers are taken now
        h->prompts.openNames.push_back({h->File("moved/song.snp")});
        QVERIFY(frame->Command(CmOpenProjectId));
        QCOMPARE(frame->GetFileWindows().size(), size_t(3));
        LEdFileWindow* pA2 = WindowNamed("a.wav");
        LEdFileWindow* pB2 = WindowNamed("b.wav");
        QVERIFY(pA2 && pB2);
        QCOMPARE(Samples(pA2->GetFile().GetDocument()), vA);
        QCOMPARE(Samples(pB2->GetFile().GetDocument()), vB);
        QVERIFY(pA2->GetFile().IsModified());
        QCOMPARE(pB2->GetFile().GetCursor(), 2000);
        QCOMPARE(frame->GetCurrentFileWindow(), pB2); // the file that was current
        QCOMPARE(Seen(frame->GetMarks().GetBookmarks()), vMarks);
        QCOMPARE(frame->GetMarks().GetRegions().size(), size_t(1));
        QCOMPARE(frame->GetMarks().GetRegions()[0].Describe(), szRegion);
        QCOMPARE(Samples(*frame->GetMarks().GetRegions()[0].pDoc), vRegion);

        // A change, then closing the project asks about it.
        frame->GetMdiArea()->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(pA2->parentWidget()));
        pA2->SetSelection(0, 100);
        QVERIFY(frame->Command(CmDeleteId));
        h->prompts.questions.clear();
        h->prompts.answers = {LUiPrompts::AnswerCancel};
        QVERIFY(frame->Command(CmCloseProjectId));
        QCOMPARE(h->prompts.questions.value(0), QString("Save changes to current project?"));
        QCOMPARE(frame->GetFileWindows().size(), size_t(3));

        // Named like any file (the command line, a file manager, a second start), it opens as a project.
        h->prompts.answers = {LUiPrompts::AnswerNo, LUiPrompts::AnswerNo, LUiPrompts::AnswerNo};
        QVERIFY(frame->Command(CmCloseProjectId));
        QVERIFY(frame->LoadFile(h->File("moved/song.snp").toStdString()));
        QCOMPARE(frame->GetProject().GetProjectPath(), h->File("moved/song.snp").toStdString());
        QVERIFY(WindowNamed("a.wav") && WindowNamed("b.wav"));
    }

    void aWrongVersionIsRefusedWithItsMessage()
    {
        const QString szBad = h->File("old.snp");
        QFile f(szBad);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(QByteArray("\x02\x00\xff\x00\x00", 5));
        f.close();
        h->prompts.openNames.push_back({szBad});
        QVERIFY(frame->Command(CmOpenProjectId));
        QCOMPARE(h->prompts.informs.value(0),
                 QString("File Error: This file does not have the same version with the current Sonitra version or "
                         "it is corrupted."));
        QVERIFY(frame->GetFileWindows().empty());
        QVERIFY(frame->GetProject().GetProjectPath().empty());
    }

    void bookmarksLiveBesideTheirFile()
    {
        const QString szA = MakeWav("song.wav", 4000, 1);
        LEdFileWindow* pA = Open(szA);
        QVERIFY(pA);
        pA->SetCursorPosition(1234);
        QVERIFY(frame->Command(CmSetBookmarkId));
        QVERIFY(QFile::exists(h->File("song.snm")));
        QVERIFY(frame->Command(CmCloseId));
        QVERIFY(frame->GetMarks().GetBookmarks().empty());
        pA = Open(szA);
        QVERIFY(pA);
        QCOMPARE(frame->GetMarks().GetBookmarks().size(), size_t(1));
        QCOMPARE(frame->GetMarks().GetBookmarks()[0].sPosition, 1234);

        LBookmarkListDlg dlg(*frame, frame->GetMarks());
        QCOMPARE(dlg.GetList()->topLevelItemCount(), 1);
        QCOMPARE(dlg.GetList()->topLevelItem(0)->text(1), QString("0:00:00.154"));
        QCOMPARE(dlg.GetList()->topLevelItem(0)->text(2), QString("1"));
        QCOMPARE(dlg.GetList()->topLevelItem(0)->text(3), QString("-"));
        dlg.Rename(0, "Verse");
        QCOMPARE(dlg.GetList()->topLevelItem(0)->text(0), QString("Verse"));
        pA->SetCursorPosition(0);
        QVERIFY(frame->GetMarks().GoToBookmark(0));
        QCOMPARE(pA->GetFile().GetCursor(), 1234);
        QCOMPARE(frame->GetMarks().GetBookmarks()[0].nTimesVisited, uint8_t(2));
        std::vector<LEdBookMark> vOnDisk;
        QCOMPARE(LBookmarkFile::Load(szA.toStdString(), vOnDisk), LBookmarkFile::Loaded);
        QCOMPARE(vOnDisk.size(), size_t(1));
        QCOMPARE(vOnDisk[0].GetName(), std::string("Verse"));
        dlg.Delete(0);
        QCOMPARE(dlg.GetList()->topLevelItemCount(), 0);
        QVERIFY2(!QFile::exists(h->File("song.snm")), "an empty list removes the file");
    }

    // A list beside the file that is damaged is not half-read: the user is told which file and
    // why, and neither setting a bookmark nor closing the file writes over it.
    void aDamagedBookmarkListIsToldAndKept()
    {
        const QString szA = MakeWav("song.wav", 4000, 1);
        std::vector<LEdBookMark> v = {LEdBookMark("one", szA.toStdString(), 10), LEdBookMark("two", szA.toStdString(), 20)};
        QVERIFY(LBookmarkFile::Save(szA.toStdString(), v));
        const QString szList = h->File("song.snm");
        QVERIFY(QFile::resize(szList, QFileInfo(szList).size() - 4));
        QFile f(szList);
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray before = f.readAll();
        f.close();
        LEdFileWindow* pA = Open(szA);
        QVERIFY(pA);
        QTRY_VERIFY(!h->prompts.informs.isEmpty());
        QVERIFY2(h->prompts.informs.last().startsWith("File Error: The file \"" + szList + "\" is damaged"),
                 qPrintable(h->prompts.informs.last()));
        QVERIFY(frame->GetMarks().GetBookmarks().empty());
        pA->SetCursorPosition(100);
        QVERIFY(frame->Command(CmSetBookmarkId));
        QVERIFY(frame->Command(CmCloseId));
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), before);
    }

    void regionsAssembleWithGaps()
    {
        LEdFileWindow* pA = Open(MakeWav("a.wav", 8000, 1));
        QVERIFY(pA);
        const std::vector<int16_t> v = Samples(pA->GetFile().GetDocument());
        pA->SetSelection(100, 300);
        QVERIFY(frame->Command(CmAddRegionId));
        pA->SetSelection(1000, 1100);
        QVERIFY(frame->Command(CmAddRegionId));
        pA->SetSelection(5000, 5050);
        QVERIFY(frame->Command(CmAddRegionId));
        LRegionListDlg dlg(*frame, frame->GetMarks());
        QCOMPARE(dlg.GetList()->topLevelItem(0)->text(0), QString("Region 1@0:00:00.012-0:00:00.037"));
        dlg.GetList()->topLevelItem(2)->setCheckState(0, Qt::Unchecked);
        QVERIFY(!frame->GetMarks().GetRegions()[2].bAssemble);
        LSettings::SetBool("Settings", "AutoGap", true);
        LSettings::SetInt("Settings", "AutoGapTime", 250);
        LCutListAudioPtr pDoc = frame->GetMarks().AssembleRegions();
        QVERIFY(pDoc);
        std::vector<int16_t> vWant(v.begin() + 100, v.begin() + 300);
        vWant.insert(vWant.end(), 2000, 0);
        vWant.insert(vWant.end(), v.begin() + 1000, v.begin() + 1100);
        QCOMPARE(Samples(*pDoc), vWant);
        QVERIFY(frame->Command(CmAssembleRegionsId));
        QCOMPARE(frame->GetFileWindows().size(), size_t(2));
        QCOMPARE(frame->GetCurrentFileWindow()->GetFile().GetDocument().GetLength(), int32_t(vWant.size()));
    }

    void saveProjectAsMakesAProjectOfItsOwn()
    {
        LEdFileWindow* pA = Open(MakeWav("a.wav", 3000, 1));
        QVERIFY(pA);
        const std::vector<int16_t> vA = Samples(pA->GetFile().GetDocument());
        h->prompts.saveNames = {h->File("song.snp"), h->File("song.bak")};
        QVERIFY(frame->Command(CmSaveProjectAsId));
        QVERIFY(frame->Command(CmSaveProjectAsId));
        QCOMPARE(frame->GetProject().GetProjectPath(), h->File("song.bak").toStdString());
        h->prompts.answers = {LUiPrompts::AnswerNo};
        QVERIFY(frame->GetProject().CloseProject());
        // The first project and its audio go; the second has all it needs.
        QVERIFY(QFile::remove(h->File("song.snp")));
        std::filesystem::remove_all(h->File("song_audio").toStdString());
        QVERIFY(frame->GetProject().OpenProject(h->File("song.bak").toStdString()));
        QVERIFY(h->prompts.informs.isEmpty());
        QCOMPARE(frame->GetFileWindows().size(), size_t(1));
        QCOMPARE(Samples(frame->GetFileWindows()[0]->GetFile().GetDocument()), vA);
    }

    void aProjectWhoseAudioIsMissingIsNotOpened()
    {
        QVERIFY(Open(MakeWav("a.wav", 3000, 1)));
        QVERIFY(frame->GetProject().SaveProjectTo(h->File("p.snp").toStdString()));
        h->prompts.answers = {LUiPrompts::AnswerNo};
        QVERIFY(frame->GetProject().CloseProject());
        std::filesystem::remove_all(h->File("p_audio").toStdString());
        QVERIFY(!frame->GetProject().OpenProject(h->File("p.snp").toStdString()));
        QCOMPARE(h->prompts.informs.value(0), QString("File Error: Unable to open the project \"%1\": its audio "
                                                      "folder %2/ is missing.")
                                                  .arg(h->File("p.snp"), h->File("p_audio")));
        QVERIFY(frame->GetFileWindows().empty());
        QVERIFY(frame->GetProject().GetProjectPath().empty());
    }

    void noMoreBookmarksOrRegionsThanTheirFilesCount()
    {
        const QString szA = MakeWav("a.wav", 8000, 1);
        LEdFileWindow* pA = Open(szA);
        QVERIFY(pA);
        for (int i = 0; i < 255; ++i) {
            pA->SetCursorPosition(i);
            QVERIFY(frame->Command(CmSetBookmarkId));
            pA->SetSelection(i, i + 10);
            QVERIFY(frame->Command(CmAddRegionId));
        }
        QVERIFY(h->prompts.informs.isEmpty());
        QVERIFY(frame->Command(CmSetBookmarkId));
        QVERIFY(frame->Command(CmAddRegionId));
        QCOMPARE(h->prompts.informs,
                 QStringList({"Sonitra: Sonitra keeps at most 255 bookmarks. Delete one before adding another.",
                              "Sonitra: Sonitra keeps at most 255 regions. Delete one before adding another."}));
        QCOMPARE(frame->GetMarks().GetBookmarks().size(), size_t(255));
        QCOMPARE(frame->GetMarks().GetRegions().size(), size_t(255));
        std::vector<LEdBookMark> vOnDisk;
        QCOMPARE(LBookmarkFile::Load(szA.toStdString(), vOnDisk), LBookmarkFile::Loaded);
        QCOMPARE(vOnDisk.size(), size_t(255));
        QVERIFY(frame->GetProject().SaveProjectTo(h->File("full.snp").toStdString()));
    }

    void aBookmarkListThatCannotBeSavedIsReported()
    {
        LEdFileWindow* pA = Open(MakeWav("song.wav", 4000, 1));
        QVERIFY(pA);
        // A folder where the list would go: nothing can take its name.
        QVERIFY(QDir().mkpath(h->File("song.snm/inside")));
        QVERIFY(frame->Command(CmSetBookmarkId));
        QCOMPARE(frame->GetMarks().GetBookmarks().size(), size_t(1));
        QCoreApplication::processEvents();
        QCOMPARE(h->prompts.informs.value(0),
                 QString("File Error: Unable to save the bookmark list \"%1\".").arg(h->File("song.snm")));
    }

    void aFailedRecoveryKeepsItsFolderAndSaysSo()
    {
        (void)LAudioCutTank::Instance().GetWorkingFolder(); // this run's own folder is settled first
        LSettings::SetString("Folders", "WorkingFolder", h->File("base").toStdString());
        const std::string szSession =
            LAudioCutTank::DefaultBase() + LAudioCutTank::FolderPrefix() + "999994/";
        std::filesystem::create_directories(szSession);
        // A recovery project whose one file names segment 7, which the folder does not hold.
        LByteWriter out;
        out.U8(1);
        out.U8(1);
        LEdFileEntry().Write(out);
        out.I32(8000);
        out.U8(1);
        out.U32(1);
        out.U16(7);
        out.I32(100);
        out.I32(1 << 24);
        out.I32(0);
        for (uint8_t b : {255, 0, 0})
            out.U8(b);
        const std::vector<uint8_t> vWhole = out.Bytes();
        const std::vector<uint8_t> vCut(vWhole.begin(), vWhole.begin() + 100);
        const QString szReasons[] = {
            QString("its recovery project is damaged (file entry cut short)."),
            QString("audio missing from %1: 7.aud.").arg(QString::fromStdString(szSession)),
        };
        int nCase = 0;
        for (const std::vector<uint8_t>* pBytes : {&vCut, &vWhole}) {
            QFile f(QString::fromStdString(szSession + LRecovery::kProjectName));
            QVERIFY(f.open(QIODevice::WriteOnly | QIODevice::Truncate));
            f.write(reinterpret_cast<const char*>(pBytes->data()), static_cast<qint64>(pBytes->size()));
            f.close();
            h->prompts.informs.clear();
            h->prompts.answers = {LUiPrompts::AnswerYes};
            frame->StartRecovery();
            QCOMPARE(h->prompts.informs.value(0),
                     QString("File Error: The documents of the last session could not be recovered: %1\n\nTheir "
                             "files are kept in \"%2\"; Sonitra offers them again at its next start.")
                         .arg(szReasons[nCase++], QString::fromStdString(szSession)));
            QVERIFY(LFile::Exists(szSession + LRecovery::kProjectName));
            QVERIFY(frame->GetFileWindows().empty());
        }
        // Declined, it goes.
        h->prompts.answers = {LUiPrompts::AnswerNo};
        frame->StartRecovery();
        QVERIFY(!std::filesystem::exists(szSession));
        QVERIFY(frame->close()); // this run's own recovery project goes with it
    }
};

QTEST_MAIN(ProjectTest)
#include "ProjectTest.moc"
