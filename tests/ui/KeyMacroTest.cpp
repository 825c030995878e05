// Key macros through the real frame: a key bound on the settings page runs its commands as if
// chosen from the menus, and the macro dialog refuses keys the menus already take.
#include <QAction>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QListWidget>
#include <QTimer>
#include <QtTest>

#include "core/LEdFile.h"
#include "dsp/effects/LStoredValues.h"
#include "lists/LKeyMacroFile.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/MainDialog.h"
#include "ui/effects/LEffectSettingsDlg.h"
#include "ui/macros/AddKeysCommandDlg.h"
#include "ui/macros/LKeyMacroRunner.h"
#include "ui/macros/LKeysPage.h"
#include "ui/macros/LMacroCommands.h"
#include "ui/macros/SelectKeysMacroDlg.h"
#include "ui/settings/LSettingsDlg.h"
#include "UiTestSupport.h"

using namespace uitest;

namespace {
// Accepts the next effect settings dialog as it opens. A polling timer, not a waiting one: the
// dialog may open in an event loop nested inside whatever is waiting.
void AcceptNextSettingsDialog()
{
    auto* pTimer = new QTimer;
    QObject::connect(pTimer, &QTimer::timeout, [pTimer] {
        if (auto* pDlg = qobject_cast<LEffectSettingsDlg*>(QApplication::activeModalWidget())) {
            pTimer->stop();
            pTimer->deleteLater();
            pDlg->accept();
        }
    });
    pTimer->start(10);
}

const QKeyCombination kMacroKey(Qt::ControlModifier, Qt::Key_J);

// $HOME for the life of the object, with no XDG_CONFIG_HOME to override it.
class HomeAs
{
public:
    explicit HomeAs(const QString& szHome) : szOldHome(qgetenv("HOME")), szOldConfig(qgetenv("XDG_CONFIG_HOME"))
    {
        qputenv("HOME", szHome.toLocal8Bit());
        qunsetenv("XDG_CONFIG_HOME");
    }
    ~HomeAs()
    {
        qputenv("HOME", szOldHome);
        if (!szOldConfig.isEmpty())
            qputenv("XDG_CONFIG_HOME", szOldConfig);
    }

private:
    QByteArray szOldHome;
    QByteArray szOldConfig;
};

// Opens the settings, makes a macro (Ctrl+J: Select All, Fade Out) with New on the key macro
// page and accepts the settings; the number of messages the user was shown meanwhile.
int NewMacroThroughTheSettings(const QStringList& informs)
{
    const int nBefore = static_cast<int>(informs.size());
    LSettingsDlg dlg(nullptr);
    // The page has no meta-object of its own: it is found by name.
    auto* pPage = dynamic_cast<LKeysPage*>(dlg.findChild<QWidget*>("KeysPage"));
    if (!pPage)
        return -1;
    QTimer::singleShot(0, [] {
        auto* pMacro = qobject_cast<SelectKeysMacroDlg*>(QApplication::activeModalWidget());
        if (!pMacro)
            return;
        pMacro->GetKeyField()->setKeySequence(QKeySequence(kMacroKey));
        pMacro->AddCommands({CmSelectAllId, EffectCommand("fade-out")});
        pMacro->CmOk();
    });
    pPage->CmNewMacro();
    if (pPage->GetMacros().size() != 1)
        return -1;
    dlg.accept();
    return static_cast<int>(informs.size()) - nBefore;
}
} // namespace

class KeyMacroTest : public QObject, public FrameFixture
{
    Q_OBJECT
private slots:
    void init()
    {
        QVERIFY(Start());
        LSettings::SetString("Folders", "Current", h->dir.path().toStdString());
    }
    void cleanup() { Stop(); }

    void macroKeyRunsItsCommandsLikeTheMenus()
    {
        LStoredValues::Set("NormalizePeakLevel", 70);
        // By hand on one copy...
        LEdFileWindow* pHand = OpenRamp(6000);
        QVERIFY(pHand);
        pHand->SetSelection(100, 200);
        QVERIFY(frame->Command(CmSelectAllId));
        AcceptNextSettingsDialog();
        QVERIFY(frame->Command(EffectCommand("normalize")));
        QVERIFY(frame->Command(EffectCommand("fade-out")));
        const std::vector<int16_t> vHand = Samples(pHand->GetFile().GetDocument());
        QVERIFY(vHand != vOrig);

        // ...and through a macro made on the settings page on another.
        LKeysPage page(nullptr);
        page.PutMacro(-1, LKeyMacro{static_cast<uint32_t>(kMacroKey.toCombined()), {CmSelectAllId, EffectCommand("normalize"), EffectCommand("fade-out")}});
        page.Save();
        QVERIFY(QFile::exists(h->File("keys.dat")));
        QCOMPARE(page.GetList()->item(0)->text(), QKeySequence(kMacroKey).toString(QKeySequence::NativeText) +
                                                       ": Select All, Normalize..., Fade Out");
        LEdFileWindow* pMacro = OpenRamp(6000);
        QVERIFY(pMacro && pMacro != pHand);
        pMacro->SetSelection(100, 200);
        QVERIFY(QTest::qWaitForWindowActive(frame.get()));
        AcceptNextSettingsDialog();
        QTest::keyClick(frame.get(), kMacroKey.key(), kMacroKey.keyboardModifiers());
        QTRY_COMPARE(frame->GetAction(CmUndoId)->text(), QString("Undo Fade Out\tCtrl+Z"));
        QCOMPARE(Samples(pMacro->GetFile().GetDocument()), vHand);
        QCOMPARE(pMacro->GetFile().GetSelStart(), 0);
        QCOMPARE(pMacro->GetFile().GetSelEnd(), 6000);
    }

    void keysTakenElsewhereAreRefused()
    {
        SelectKeysMacroDlg dlg(nullptr, LKeyMacro{0, {CmPlayId}}, {static_cast<uint32_t>(QKeyCombination(Qt::Key_F3).toCombined())});
        dlg.GetKeyField()->setKeySequence(QKeySequence(Qt::CTRL | Qt::Key_A));
        dlg.CmOk();
        QCOMPARE(dlg.result(), 0);
        QVERIFY(h->prompts.informs.last().contains("already used by the menu command \"Select All\""));
        dlg.GetKeyField()->setKeySequence(QKeySequence(Qt::Key_Space));
        dlg.CmOk();
        QVERIFY(h->prompts.informs.last().contains("already used by"));
        dlg.GetKeyField()->setKeySequence(QKeySequence(Qt::Key_Left));
        dlg.CmOk();
        QVERIFY(h->prompts.informs.last().contains("already used by the transport"));
        QCOMPARE(dlg.result(), 0);
        dlg.GetKeyField()->setKeySequence(QKeySequence(Qt::Key_F3));
        dlg.CmOk();
        QVERIFY(h->prompts.informs.last().contains("already runs another macro"));
        dlg.GetKeyField()->setKeySequence(QKeySequence(Qt::Key_F4));
        dlg.CmOk();
        QCOMPARE(dlg.result(), int(QDialog::Accepted));
        QCOMPARE(dlg.GetMacro().uKey, static_cast<uint32_t>(QKeyCombination(Qt::Key_F4).toCombined()));
    }

    void commandsAreAddedSeveralAtOnceRemovedAndMoved()
    {
        AddKeysCommandDlg pick(nullptr, {CmSelectAllId, EffectCommand("normalize"), EffectCommand("fade-in"), EffectCommand("fade-out")});
        QVERIFY(pick.findChild<QLabel*>() && pick.findChild<QLabel*>()->text() == "Select command(s) to add to the Macro.");
        pick.GetList()->item(3)->setSelected(true);
        pick.GetList()->item(0)->setSelected(true);
        const std::vector<uint32_t> vPicked = pick.GetSelected();
        QCOMPARE(vPicked, (std::vector<uint32_t>{CmSelectAllId, EffectCommand("fade-out")}));
        SelectKeysMacroDlg dlg(nullptr, LKeyMacro{0, {CmPlayId}}, {});
        dlg.AddCommands(vPicked);
        QCOMPARE(dlg.GetMacro().vCommands, (std::vector<uint32_t>{CmPlayId, CmSelectAllId, EffectCommand("fade-out")}));
        dlg.GetCommandList()->setCurrentRow(0);
        dlg.CmRemoveCommand();
        dlg.GetCommandList()->setCurrentRow(1);
        dlg.CmMoveCommand(-1);
        QCOMPARE(dlg.GetMacro().vCommands, (std::vector<uint32_t>{EffectCommand("fade-out"), CmSelectAllId}));
    }

    // File > Settings > Key Macros > New on a fresh install, where no data folder exists yet: the
    // macro is saved, the folder made; where the folder cannot be made the message names the file.
    void aNewMacroIsSavedOnAFreshInstall()
    {
        HomeAs home(h->File("home"));
        LSettings::Store().DeleteValue("Folders", "Current");
        const QString szKeys = h->File("home/.config/Korvane/Sonitra/Current/keys.dat");
        QVERIFY(!QFileInfo::exists(h->File("home")));
        QCOMPARE(NewMacroThroughTheSettings(h->prompts.informs), 0);
        QVERIFY2(h->prompts.informs.isEmpty(), qPrintable(h->prompts.informs.join("\n")));
        std::vector<LKeyMacro> vMacros;
        QCOMPARE(LKeyMacroFile::Load(szKeys.toStdString(), vMacros), LListLoad::Loaded);
        QCOMPARE(vMacros.size(), size_t(1));
        QCOMPARE(vMacros[0].vCommands, (std::vector<uint32_t>{CmSelectAllId, EffectCommand("fade-out")}));
        QCOMPARE(vMacros[0].uKey, static_cast<uint32_t>(kMacroKey.toCombined()));

        // A home that is a file: nothing can be made under it.
        WriteWav16(h->File("plainhome"), 8000, 1, {});
        HomeAs plain(h->File("plainhome"));
        QCOMPARE(NewMacroThroughTheSettings(h->prompts.informs), 1);
        const QString szPath = h->File("plainhome/.config/Korvane/Sonitra/Current/keys.dat");
        QVERIFY2(h->prompts.informs.last().startsWith("File Error: Unable to save \"" + szPath + "\""),
                 qPrintable(h->prompts.informs.last()));
    }

    void commandsAreNamedByTheirMenuPaths()
    {
        AddKeysCommandDlg pick(nullptr, LMacroCommands::All());
        QStringList names;
        for (int i = 0; i < pick.GetList()->count(); ++i)
            names << pick.GetList()->item(i)->text();
        for (const char* sz : {"Edit > Insert Silence > Begin", "Edit > Insert File > Begin", "File > Convert Channels > Mono",
                               "Edit > Undo", "Edit > Redo", "Effects > Normalize...", "Bookmarks > Set Bookmark"})
            QVERIFY2(names.contains(sz), sz);
        QCOMPARE(names.removeDuplicates(), 0); // no two entries read alike
        QVERIFY(!names.contains("Begin"));
        SelectKeysMacroDlg dlg(nullptr, LKeyMacro{0, {CmInsertSilenceEndId, CmInsertFileEndId}}, {});
        QCOMPARE(dlg.GetCommandList()->item(0)->text(), QString("Edit > Insert Silence > End"));
        QCOMPARE(dlg.GetCommandList()->item(1)->text(), QString("Edit > Insert File > End"));
    }

    // A file that cannot be loaded is told about, and a later save keeps it beside the new one
    // instead of overwriting the user's macros in it.
    void anUnreadableFileIsToldAndKeptWhenANewListIsSaved()
    {
        const QString szKeys = h->File("keys.dat");
        for (const QString& szKept : {szKeys + ".damaged", szKeys + ".damaged-2"}) {
            QFile f(szKeys);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(QByteArray(1, '\x01'));
            f.close();
            LKeysPage page(nullptr);
            QVERIFY(page.GetMacros().empty());
            QCOMPARE(h->prompts.informs.last(),
                     QString("File Error: This file does not have the same version with the current Sonitra version or it is corrupted."));
            page.PutMacro(-1, LKeyMacro{static_cast<uint32_t>(kMacroKey.toCombined()), {CmSelectAllId}});
            page.Save();
            QVERIFY2(h->prompts.informs.last().contains("it was kept as \"" + szKept + "\""),
                     qPrintable(h->prompts.informs.last()));
            QFile kept(szKept);
            QVERIFY(kept.open(QIODevice::ReadOnly));
            QCOMPARE(kept.readAll(), QByteArray(1, '\x01'));
            std::vector<LKeyMacro> vMacros;
            QCOMPARE(LKeyMacroFile::Load(szKeys.toStdString(), vMacros), LListLoad::Loaded);
            QCOMPARE(vMacros.size(), size_t(1));
        }
    }
};

QTEST_MAIN(KeyMacroTest)
#include "KeyMacroTest.moc"
