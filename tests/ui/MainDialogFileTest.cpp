// Files through the real frame: save and reopen, the questions on closing, a failed save,
// the recent list, the new-file rule and the second-start channel.
#include <QAction>
#include <QDir>
#include <QFile>
#include <QMenuBar>
#include <QSignalSpy>
#include <QtTest>

#include <atomic>
#include <cmath>
#include <cstring>
#include <fstream>
#include <memory>
#include <thread>

#include "core/LComponents.h"
#include "core/LEdFile.h"
#include "core/LFile.h"
#include "formats/LAudioFile.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LHelpDlg.h"
#include "ui/LInstanceChannel.h"
#include "ui/LSaveFormatOptions.h"
#include "ui/MainDialog.h"
#include "ui/NewWavDlg.h"
#include "UiTestSupport.h"

using namespace uitest;

namespace {
std::vector<int16_t> FileSamples(const QString& szPath)
{
    LSoundSourcePtr p = LAudioFile::OpenSource(szPath.toStdString());
    std::vector<int32_t> v(static_cast<size_t>(p->GetLength()) * p->GetChannels());
    if (!v.empty())
        p->Read(v.data(), p->GetLength());
    std::vector<int16_t> out;
    for (int32_t s : v)
        out.push_back(static_cast<int16_t>(s >> 4));
    return out;
}

QByteArray Bytes(const QString& szPath)
{
    QFile f(szPath);
    f.open(QIODevice::ReadOnly);
    return f.readAll();
}
} // namespace

class MainDialogFileTest : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<Harness> h;
    std::unique_ptr<MainDialog> frame;

    QString MakeWav(const QString& szName, int nFrames)
    {
        const QString szPath = h->File(szName);
        WriteWav16(szPath, 8000, 1, Ramp(nFrames));
        return szPath;
    }

    LEdFileWindow* Open(const QString& szPath)
    {
        h->prompts.openNames.push_back({szPath});
        frame->Command(CmOpenId);
        return frame->GetCurrentFileWindow();
    }

private slots:
    void init()
    {
        h = std::make_unique<Harness>();
        frame = std::make_unique<MainDialog>();
        frame->show();
    }

    void cleanup()
    {
        frame.reset();
        h.reset();
    }

    void saveAndReopen()
    {
        const QString szPath = MakeWav("a.wav", 3000);
        LEdFileWindow* pWindow = Open(szPath);
        QVERIFY(pWindow);
        pWindow->SetSelection(100, 1100);
        QVERIFY(frame->Command(CmDeleteId));
        const std::vector<int16_t> vEdited = Samples(pWindow->GetFile().GetDocument());
        QCOMPARE(vEdited.size(), size_t(2000));
        QVERIFY(frame->Command(CmSaveId));
        QVERIFY(!pWindow->GetFile().IsModified());
        QCOMPARE(FileSamples(szPath), vEdited);
        QVERIFY(frame->Command(CmCloseId));
        QVERIFY(h->prompts.questions.isEmpty()); // saved: nothing to ask
        QVERIFY(frame->GetFileWindows().empty());
        QCOMPARE(frame->windowTitle(), QString("Sonitra"));
        pWindow = Open(szPath);
        QVERIFY(pWindow);
        QCOMPARE(Samples(pWindow->GetFile().GetDocument()), vEdited);

        // Save As to a new name; the new name is shown and remembered.
        const QString szCopy = h->File("copy.wav");
        h->prompts.saveNames.push_back(szCopy);
        QVERIFY(frame->Command(CmSaveAsId));
        QCOMPARE(h->prompts.dialogTitles.back(), QString("Save Audio File As"));
        QCOMPARE(FileSamples(szCopy), vEdited);
        QCOMPARE(frame->windowTitle(), QString("Sonitra - copy.wav"));
        // Saving over another existing file asks first; No leaves it alone.
        h->prompts.saveNames.push_back(szPath);
        h->prompts.answers.push_back(LUiPrompts::AnswerNo);
        QVERIFY(frame->Command(CmSaveAsId));
        QCOMPARE(h->prompts.questions.back(),
                 QString("Another file with the same name already exists. Do you want to replace it?"));
        QCOMPARE(QString::fromStdString(pWindow->GetPath()), szCopy);
    }

    void fileDialogsStartWhereTheUserWorks()
    {
        QVERIFY(QDir(h->dir.path()).mkpath("songs"));
        QVERIFY(QDir(h->dir.path()).mkpath("takes"));
        const QString szSong = h->File("songs/song.wav");
        WriteWav16(szSong, 8000, 1, Ramp(800));
        QVERIFY(Open(szSong));
        // Open starts in the last folder opened from.
        h->prompts.openNames.push_back({});
        QVERIFY(frame->Command(CmOpenId));
        QCOMPARE(QDir(h->prompts.dialogStarts.back()), QDir(h->File("songs")));
        // Save As starts beside the document, under its own name.
        LSettings::SetString("Folders", "SaveAsDir", h->File("takes").toStdString());
        QVERIFY(frame->Command(CmSaveAsId)); // cancelled: no name given
        QCOMPARE(h->prompts.dialogStarts.back(), szSong);
        // A new file has no folder of its own: the last one saved to.
        QVERIFY(frame->Command(CmNewId));
        QVERIFY(frame->Command(CmSaveAsId));
        QCOMPARE(QFileInfo(h->prompts.dialogStarts.back()).absolutePath(), h->File("takes"));

        // Each filter names its patterns once.
        for (const QString& szFilter : h->prompts.dialogFilters) {
            for (const QString& szOne : szFilter.split(";;")) {
                QVERIFY2(szOne.count('(') == 1 && szOne.count(')') == 1, qPrintable(szOne));
                QVERIFY2(szOne.endsWith(')'), qPrintable(szOne));
            }
        }
        QVERIFY(h->prompts.dialogFilters.front().contains("Wave Files (*.wav *.WAV"));
        QVERIFY(h->prompts.dialogFilters.front().contains("MPEG Layer-3 Files (*.mp3 *.MP3)"));
    }

    void savesAsGsmAtEightKilohertzMonoAndReopens()
    {
        const QString szPath = h->File("st.wav");
        WriteWav16(szPath, 22050, 2, Ramp(22050, 2));
        QVERIFY(Open(szPath));
        const QString szGsm = h->File("st.gsm");
        h->prompts.saveNames.push_back(szGsm);
        QVERIFY(frame->Command(CmSaveAsId));
        QCOMPARE(frame->windowTitle(), QString("Sonitra - st.gsm"));
        QCOMPARE(Bytes(szGsm).size(), 8000 / 160 * 33);

        // Read back afresh: while the window is open, opening the file would only activate it.
        QVERIFY(frame->Command(CmCloseId));
        LEdFileWindow* pWindow = Open(szGsm);
        QVERIFY(pWindow);
        const LCutListAudio& doc = pWindow->GetFile().GetDocument();
        QCOMPARE(doc.GetSampleRate(), 8000);
        QCOMPARE(int(doc.GetChannels()), 1);
        QCOMPARE(Samples(doc), FileSamples(szGsm));
        // Save keeps the file's own format.
        pWindow->SetSelection(0, 1600);
        QVERIFY(frame->Command(CmDeleteId));
        QVERIFY(frame->Command(CmSaveId));
        QCOMPARE(Bytes(szGsm).size(), 6400 / 160 * 33);
    }

    void mp3SaveNeedsTheEncoderComponent()
    {
        QVERIFY(LSaveFormatOptions::HasDialog("MP3"));
        const QString szPath = MakeWav("m.wav", 8000);
        LEdFileWindow* pWindow = Open(szPath);
        QVERIFY(pWindow);
        // No encoder registered and none on the PATH: the package to install, and declining
        // says that nothing was saved.
        const QByteArray szOldPath = qgetenv("PATH");
        qputenv("PATH", h->File("empty-bin").toUtf8());
        h->prompts.saveNames.push_back(h->File("m.mp3"));
        h->prompts.answers.push_back(LUiPrompts::AnswerNo);
        QVERIFY(frame->Command(CmSaveAsId));
        QVERIFY(!h->prompts.questions.isEmpty());
        QVERIFY(h->prompts.questions.back().startsWith("The MP3 encoder (lame) has not yet been installed."));
        QVERIFY(h->prompts.questions.back().contains("apt-get install lame"));
        QVERIFY(!h->prompts.questions.back().contains("mp3el"));
        QVERIFY(!h->prompts.informs.isEmpty());
        QCOMPARE(h->prompts.informs.back(),
                 QString("Install-on-Demand: \"m.mp3\" was not saved: the MP3 encoder (lame) is not installed."));
        QVERIFY(!QFile::exists(h->File("m.mp3")));
        QCOMPARE(QString::fromStdString(pWindow->GetPath()), szPath);
        QVERIFY(LComponents::GetPath("mp3el").empty());
        // Pointing at a file that is no program registers nothing either.
        const QString szNotProgram = MakeWav("not-a-program.wav", 100);
        h->prompts.saveNames.push_back(h->File("m.mp3"));
        h->prompts.answers.push_back(LUiPrompts::AnswerYes);
        h->prompts.openNames.push_back({szNotProgram});
        QVERIFY(frame->Command(CmSaveAsId));
        qputenv("PATH", szOldPath);
        QVERIFY(h->prompts.informs.back().contains("was not saved"));
        QVERIFY(LComponents::GetPath("mp3el").empty());
        if (LComponents::FindOnPath("lame").empty() || LComponents::FindOnPath("mpg123").empty())
            QSKIP("lame and mpg123 are needed for the rest");
        // A lame on the PATH is used and registered without a question.
        const qsizetype nQuestions = h->prompts.questions.size();
        h->prompts.saveNames.push_back(h->File("m.mp3"));
        QVERIFY(frame->Command(CmSaveAsId));
        QCOMPARE(h->prompts.questions.size(), nQuestions);
        QCOMPARE(LComponents::GetPath("mp3el"), LComponents::FindOnPath("lame"));
        QVERIFY(QFile::exists(h->File("m.mp3")));
        LSoundSourcePtr p = LAudioFile::OpenSource(h->File("m.mp3").toStdString());
        QVERIFY(!p->IsError());
        QCOMPARE(p->GetSampleRate(), 8000);
        QCOMPARE(int(p->GetChannels()), 1);
        QCOMPARE(p->GetLength(), 8000); // the encoder's delay and padding are taken off
    }

    void closingAsksAboutChanges()
    {
        const QString szPath = MakeWav("b.wav", 2000);
        const QByteArray before = Bytes(szPath);
        LEdFileWindow* pWindow = Open(szPath);
        QVERIFY(pWindow);
        pWindow->SetSelection(0, 500);
        QVERIFY(frame->Command(CmCutId));
        // Cancel keeps the file open.
        h->prompts.answers.push_back(LUiPrompts::AnswerCancel);
        QVERIFY(frame->Command(CmCloseId));
        QCOMPARE(h->prompts.questions.back(), QString("Save changes to \"b.wav\"?"));
        QCOMPARE(frame->GetFileWindows().size(), size_t(1));
        // No closes it and leaves the file on disk as it was.
        h->prompts.answers.push_back(LUiPrompts::AnswerNo);
        QVERIFY(frame->Command(CmCloseId));
        QVERIFY(frame->GetFileWindows().empty());
        QCOMPARE(Bytes(szPath), before);
    }

    void closingTheFrameAsksForEachFile()
    {
        const QString szA = MakeWav("one.wav", 1000);
        const QString szB = MakeWav("two.wav", 1000);
        for (const QString& s : {szA, szB}) {
            LEdFileWindow* pWindow = Open(s);
            QVERIFY(pWindow);
            pWindow->SetSelection(0, 10);
            QVERIFY(frame->Command(CmDeleteId));
        }
        // Yes to the first saves it; Cancel on the second keeps everything open.
        h->prompts.answers = {LUiPrompts::AnswerYes, LUiPrompts::AnswerCancel};
        QVERIFY(!frame->close());
        QCOMPARE(h->prompts.questions.size(), 2);
        QCOMPARE(frame->GetFileWindows().size(), size_t(2));
        QCOMPARE(FileSamples(szA).size(), size_t(990));
        // Now only the second is still modified: one question, and the frame closes.
        h->prompts.answers = {LUiPrompts::AnswerNo};
        QVERIFY(frame->close());
        QCOMPARE(h->prompts.questions.size(), 3);
        QVERIFY(h->prompts.questions.back().contains("two.wav"));
        QCOMPARE(FileSamples(szB).size(), size_t(1000));
        QCOMPARE(LSettings::GetInt("MainWindow", "Width", 0), frame->normalGeometry().width());
    }

    void failedSaveKeepsTheDocumentModified()
    {
        const QString szPath = MakeWav("c.wav", 1000);
        LEdFileWindow* pWindow = Open(szPath);
        QVERIFY(pWindow);
        pWindow->SetSelection(0, 100);
        QVERIFY(frame->Command(CmDeleteId));
        // A type no writer knows is refused before anything is written; a folder that is not
        // there fails the save itself. Either way the old file of that name stays as it was.
        const QString szOther = h->File("c.xyz");
        QFile f(szOther);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("precious");
        f.close();
        h->prompts.saveNames.push_back(szOther);
        QVERIFY(frame->Command(CmSaveAsId));
        QCOMPARE(h->prompts.informs.size(), 1);
        QVERIFY(h->prompts.informs.front().startsWith("File Error: Sonitra cannot write \"xyz\" files"));
        h->prompts.saveNames.push_back(h->File("none/c.wav"));
        QVERIFY(frame->Command(CmSaveAsId));
        QCOMPARE(h->prompts.informs.size(), 2);
        QVERIFY(h->prompts.informs.back().startsWith("File Error: Unable to save"));
        QVERIFY(pWindow->GetFile().IsModified());
        QCOMPARE(Bytes(szOther), QByteArray("precious"));
        QCOMPARE(QString::fromStdString(pWindow->GetPath()), szPath);
        QCOMPARE(FileSamples(szPath).size(), size_t(1000));
        // A file that cannot be read opens no window.
        h->prompts.openNames.push_back({szOther});
        QVERIFY(frame->Command(CmOpenId));
        QCOMPARE(frame->GetFileWindows().size(), size_t(1));
        QCOMPARE(h->prompts.informs.size(), 3);
    }

    // A fault at each write, flush and rename of a save in turn: the user is told why, the
    // document stays modified and the old file stays byte for byte.
    void faultAtAnyStepOfASaveKeepsTheOldFileAndTheEdit()
    {
        const QString szPath = MakeWav("d.wav", 20000);
        LEdFileWindow* pWindow = Open(szPath);
        QVERIFY(pWindow);
        struct FaultOff
        {
            ~FaultOff() { LFile::ClearFault(); }
        } off;
        pWindow->SetSelection(0, 10);
        QVERIFY(frame->Command(CmDeleteId));
        LFile::InjectFault(0);
        QVERIFY(frame->Command(CmSaveId));
        QVERIFY(!pWindow->GetFile().IsModified());
        const int64_t nCalls = LFile::GetFaultCalls();
        QVERIFY(nCalls >= 6);
        pWindow->SetSelection(0, 10);
        QVERIFY(frame->Command(CmDeleteId));
        const QByteArray before = Bytes(szPath);
        for (int64_t nCall = 1; nCall < nCalls; ++nCall) {
            LFile::InjectFault(nCall);
            QVERIFY(frame->Command(CmSaveId));
            QVERIFY2(pWindow->GetFile().IsModified(), qPrintable(QString::number(nCall)));
            QVERIFY2(Bytes(szPath) == before, qPrintable(QString::number(nCall)));
            QVERIFY(h->prompts.informs.back().startsWith("File Error: Unable to save"));
            QVERIFY(h->prompts.informs.back().contains("No space left on device") ||
                    h->prompts.informs.back().contains("Input/output error"));
        }
        QCOMPARE(h->prompts.informs.size(), int(nCalls - 1));
        LFile::ClearFault();
        QVERIFY(frame->Command(CmSaveId));
        QVERIFY(!pWindow->GetFile().IsModified());
        QCOMPARE(FileSamples(szPath).size(), size_t(19980));
    }

    void recentListKeepsNewestFirst()
    {
        QStringList paths;
        for (int i = 0; i < 12; ++i)
            paths << MakeWav(QString("r%1.wav").arg(i), 100);
        for (const QString& s : paths.mid(0, 3))
            QVERIFY(Open(s));
        auto recentPath = [this](int i) { return QString::fromStdString(frame->GetRecentFiles().GetEntries()[i].szPath); };
        QCOMPARE(recentPath(0), paths[2]);
        QCOMPARE(recentPath(2), paths[0]);
        QCOMPARE(frame->GetAction(CmRecentFirstId)->text(), QString("&1. %1").arg(paths[2]));
        // Reopening moves a file to the top without a duplicate.
        QVERIFY(frame->Command(CmRecentFirstId + 2));
        QCOMPARE(recentPath(0), paths[0]);
        QCOMPARE(recentPath(1), paths[2]);
        QCOMPARE(frame->GetRecentFiles().GetEntries().size(), size_t(3));
        QCOMPARE(QString::fromStdString(LSettings::GetString("Recent", "RecentFile 0")), paths[0]);
        QVERIFY(LSettings::GetString("Recent", "RecentFileDate0") != "");
        // Eleven at most: the oldest falls off.
        for (const QString& s : paths.mid(3))
            QVERIFY(Open(s));
        QCOMPARE(frame->GetRecentFiles().GetEntries().size(), size_t(11));
        QCOMPARE(recentPath(0), paths[11]);
        QVERIFY(frame->GetAction(CmRecentLastId) != nullptr);
        QCOMPARE(LSettings::GetString("Recent", "RecentFile 11"), std::string());
    }

    void newFileFormatRule()
    {
        int32_t n = 0;
        QVERIFY(NewWavDlg::ParseSampleRate("44100", n));
        QCOMPARE(n, 44100);
        QVERIFY(NewWavDlg::ParseSampleRate(" 6000 ", n));
        QVERIFY(NewWavDlg::ParseSampleRate("96000", n));
        QVERIFY(!NewWavDlg::ParseSampleRate("5999", n));
        QVERIFY(!NewWavDlg::ParseSampleRate("96001", n));
        QVERIFY(!NewWavDlg::ParseSampleRate("44.1k", n));
        LSettings::SetInt("Settings", "DefaultSampleRate", 22050);
        LSettings::SetInt("Settings", "DefaultChannels", 1);
        QVERIFY(frame->Command(CmNewId));
        const LCutListAudio& doc = frame->GetCurrentFile()->GetDocument();
        QCOMPARE(doc.GetSampleRate(), 22050);
        QCOMPARE(int(doc.GetChannels()), 1);
        QCOMPARE(frame->windowTitle(), QString("Sonitra - Untitled 1"));
    }

    void secondStartHandsOverItsFiles()
    {
        const QString szName = h->File("channel");
        LInstanceChannel channel;
        QVERIFY(channel.Listen(szName));
        QSignalSpy spy(&channel, &LInstanceChannel::FilesReceived);
        // The second start is another program: its side runs on a thread of its own.
        std::atomic<bool> bSent{false};
        std::thread client([&] { bSent = LInstanceChannel::SendToRunning(szName, {"/x/a.wav", "/y/b c.wav"}, 5000); });
        QTRY_COMPARE(spy.count(), 1);
        client.join();
        QVERIFY(bSent);
        QCOMPARE(spy.front().front().toStringList(), QStringList({"/x/a.wav", "/y/b c.wav"}));
        QVERIFY(!LInstanceChannel::SendToRunning(h->File("nobody"), {}, 200));
    }

    void helpListsEveryCommandWithItsKeysAndHint()
    {
        QVERIFY(frame->GetAction(CmHelpId)->isEnabled());
        QVERIFY(frame->Command(CmHelpId));
        auto* pHelp = frame->findChild<LHelpDlg*>();
        QVERIFY(pHelp && pHelp->isVisible());
        const QString szHtml = LHelpDlg::Html(frame->menuBar());
        QVERIFY(szHtml.contains("<tr><td>Trim</td><td>Ctrl+T</td><td>The selected region becomes the entire file.</td></tr>"));
        QVERIFY(szHtml.contains("<h3>Effects</h3>"));
        QVERIFY(szHtml.contains("<tr><td>Mono</td>")); // inside a submenu
        // Asking again brings the same window forward.
        QVERIFY(frame->Command(CmHelpId));
        QCOMPARE(frame->findChildren<LHelpDlg*>().size(), 1);
    }

    void fileCutShortOpensPaddedWithAWarning()
    {
        const QString szPath = MakeWav("cut.wav", 4000);
        QFile f(szPath);
        QVERIFY(f.resize(44 + 1000 * 2)); // the header still claims 4000 frames
        LEdFileWindow* pWindow = Open(szPath);
        QVERIFY(pWindow);
        QCOMPARE(pWindow->GetFile().GetDocument().GetLength(), 4000);
        QCOMPARE(h->prompts.informs.size(), qsizetype(1));
        QVERIFY(h->prompts.informs.back().startsWith("File Warning: "));
        QVERIFY2(h->prompts.informs.back().contains("holds 0:00:00.125 of 0:00:00.500"),
                 qPrintable(h->prompts.informs.back()));
        QVERIFY(Open(MakeWav("whole.wav", 100)));
        QCOMPARE(h->prompts.informs.size(), qsizetype(1)); // a whole file says nothing
    }

    // 24-bit and float files come back from the editor's load and save in their own encoding,
    // within one step of the 20 bits a sample holds inside.
    void wideFilesKeepTheirPrecisionThroughLoadAndSave()
    {
        for (const bool bFloat : {false, true}) {
            const QString szPath = h->File(bFloat ? "f.wav" : "p24.wav");
            std::vector<double> vIn;
            for (int i = 0; i < 3000; ++i)
                vIn.push_back(0.9 * std::sin(i * 0.013) + (i % 16) / 8388608.0);
            WriteWide(szPath, vIn, bFloat);
            LEdFileWindow* pWindow = Open(szPath);
            QVERIFY(pWindow);
            pWindow->GetFile().SetModified(true);
            QVERIFY(frame->Command(CmSaveId));
            const std::vector<double> vOut = ReadWide(szPath, bFloat);
            QCOMPARE(vOut.size(), vIn.size());
            for (size_t i = 0; i < vIn.size(); ++i)
                QVERIFY2(std::abs(vOut[i] - vIn[i]) <= 1.0 / 524288 + 1e-9, qPrintable(QString::number(i)));
            QVERIFY(frame->Command(CmCloseId));
        }
    }

private:
    // Mono 8000 Hz, 24-bit PCM or 32-bit float, with the plain 16-byte format chunk.
    static void WriteWide(const QString& szPath, const std::vector<double>& v, bool bFloat)
    {
        std::ofstream f(szPath.toStdString(), std::ios::binary);
        const uint32_t nBytes = bFloat ? 4 : 3;
        const uint32_t nData = static_cast<uint32_t>(v.size()) * nBytes;
        f.write("RIFF", 4);
        PutLe(f, 36 + nData, 4);
        f.write("WAVEfmt ", 8);
        for (auto [x, n] : {std::pair<uint32_t, int>{16, 4}, {bFloat ? 3u : 1u, 2}, {1, 2}, {8000, 4},
                            {8000 * nBytes, 4}, {nBytes, 2}, {nBytes * 8, 2}})
            PutLe(f, x, n);
        f.write("data", 4);
        PutLe(f, nData, 4);
        for (double x : v) {
            uint32_t u = 0;
            if (bFloat) {
                const float fx = static_cast<float>(x);
                std::memcpy(&u, &fx, 4);
            } else {
                u = static_cast<uint32_t>(static_cast<int32_t>(std::lround(x * 8388608.0)));
            }
            PutLe(f, u, static_cast<int>(nBytes));
        }
    }

    // The samples of the "data" chunk, wherever the header puts it.
    static std::vector<double> ReadWide(const QString& szPath, bool bFloat)
    {
        const QByteArray v = Bytes(szPath);
        const auto At32 = [&](qsizetype n) {
            return static_cast<uint32_t>(static_cast<uint8_t>(v[n]) | (static_cast<uint8_t>(v[n + 1]) << 8) |
                                         (static_cast<uint8_t>(v[n + 2]) << 16) |
                                         (static_cast<uint32_t>(static_cast<uint8_t>(v[n + 3])) << 24));
        };
        qsizetype n = 12;
        while (n + 8 <= v.size() && v.mid(n, 4) != "data")
            n += 8 + At32(n + 4);
        std::vector<double> vOut;
        const qsizetype nBytes = bFloat ? 4 : 3;
        for (n += 8; n + nBytes <= v.size(); n += nBytes) {
            const uint32_t u = bFloat ? At32(n) : static_cast<uint32_t>(At32(n - 1) & 0xFFFFFF00u);
            float fx;
            std::memcpy(&fx, &u, 4);
            vOut.push_back(bFloat ? fx : static_cast<int32_t>(u) / 2147483648.0);
        }
        return vOut;
    }
};

QTEST_MAIN(MainDialogFileTest)
#include "MainDialogFileTest.moc"
