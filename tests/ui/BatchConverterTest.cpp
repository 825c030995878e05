// The batch converter's dialogs and process in the editor: scripts opened, edited and saved,
// settings through the effect's own dialog, and a batch in which one file fails.
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTimer>
#include <QtTest>

#include "core/LEdFile.h"
#include "dsp/effects/LStoredValues.h"
#include "lists/EdBatchConverter.h"
#include "lists/LBatchScript.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/batch/LSelectBatchCommandDlg.h"
#include "ui/batch/LSelectBatchFileDlg.h"
#include "ui/batch/LSelectSaveFormatDlg.h"
#include "ui/effects/LEffectSettingsDlg.h"
#include "UiTestSupport.h"

using namespace uitest;

class BatchConverterTest : public QObject, public FrameFixture
{
    Q_OBJECT
private slots:
    void init() { QVERIFY(Start()); }
    void cleanup() { Stop(); }

    // Tools > Batch Converter from start to end, on the file that is open.
    void toolsMenuConvertsTheCurrentFile()
    {
        LEdFileWindow* pWindow = OpenRamp(4000);
        QVERIFY(pWindow);
        QVERIFY(frame->GetAction(CmBatchConverterId)->isEnabled());
        h->prompts.answers.push_back(LUiPrompts::AnswerNo); // the new script is not kept
        const QString szOut = h->File("converted");
        int nStep = 0;
        QTimer step;
        connect(&step, &QTimer::timeout, [&] {
            QWidget* p = QApplication::activeModalWidget();
            if (auto* pCommands = qobject_cast<LSelectBatchCommandDlg*>(p); pCommands && nStep == 0) {
                ++nStep;
                pCommands->AddCommandToList(EffectCommand("reverse"));
                pCommands->accept();
            } else if (auto* pFiles = qobject_cast<LSelectBatchFileDlg*>(p); pFiles && nStep == 1) {
                ++nStep;
                QCOMPARE(pFiles->GetList()->count(), 1);
                pFiles->accept();
            } else if (auto* pFormat = qobject_cast<LSelectSaveFormatDlg*>(p); pFormat && nStep == 2) {
                ++nStep;
                pFormat->GetFolder()->setText(szOut);
                pFormat->accept();
            }
        });
        step.start(10);
        QVERIFY(frame->Command(CmBatchConverterId));
        step.stop();
        QCOMPARE(nStep, 3);
        QCOMPARE(h->prompts.informs.last(), QString("Batch Converter: 1 of 1 files converted."));
        // The file reversed, and the open file left as it was.
        const QString szResult = szOut + "/ramp.wav";
        QVERIFY(QFile::exists(szResult));
        h->prompts.openNames.push_back({szResult});
        QVERIFY(frame->Command(CmOpenId));
        std::vector<int16_t> vReversed(vOrig.rbegin(), vOrig.rend());
        QCOMPARE(Samples(frame->GetCurrentFileWindow()->GetFile().GetDocument()), vReversed);
        QCOMPARE(Samples(pWindow->GetFile().GetDocument()), vOrig);
    }

    void commandsAreReorderedByDragging()
    {
        LSelectBatchCommandDlg dlg(nullptr);
        QVERIFY(dlg.AddCommandToList(EffectCommand("normalize")));
        QVERIFY(dlg.AddCommandToList(EffectCommand("high-pass-filter")));
        QVERIFY(dlg.AddCommandToList(EffectCommand("fade-in")));
        dlg.SaveFileTo(h->File("order.snb").toStdString());
        QVERIFY(!dlg.IsModified());
        // What a drop of the last row onto the first does to the list's model.
        QVERIFY(dlg.GetList()->model()->moveRow(QModelIndex(), 2, QModelIndex(), 0));
        const std::vector<CommandDataItem> v = dlg.GetItems();
        QCOMPARE(v.size(), size_t(3));
        QCOMPARE(v[0].uCommandId, uint32_t(EffectCommand("fade-in")));
        QCOMPARE(v[1].uCommandId, uint32_t(EffectCommand("normalize")));
        QCOMPARE(v[2].vData.size(), size_t(4));
        QVERIFY(dlg.IsModified());
    }

    void scriptIsEditedSavedAndOpenedAgain()
    {
        LSelectBatchCommandDlg dlg(nullptr);
        QCOMPARE(dlg.GetFileName(), QString("Untitled.snb"));
        QVERIFY(!dlg.AddCommandToList(9999));
        QCOMPARE(h->prompts.informs.last(), QString("Sonitra: LSelectBatchCommandDlg::AddCommandToList uCommandId is invalid"));
        QVERIFY(dlg.AddCommandToList(EffectCommand("normalize")));
        QCOMPARE(dlg.GetDescription()->text(), QString("Normalize Peak Level (%) = 100"));
        QVERIFY(dlg.AddCommandToList(EffectCommand("fade-in")));
        QCOMPARE(dlg.GetDescription()->text(), QString("Click on Settings to view or change."));
        QVERIFY(dlg.AddCommandToList(EffectCommand("echo")));

        // The echo's settings through its own dialog: the record changes, the stored values do not.
        QTimer::singleShot(0, [] {
            QTRY_VERIFY(qobject_cast<LEffectSettingsDlg*>(QApplication::activeModalWidget()));
            auto* pDlg = qobject_cast<LEffectSettingsDlg*>(QApplication::activeModalWidget());
            qobject_cast<QLineEdit*>(pDlg->FieldOf("EchoTime"))->setText("1500");
            pDlg->accept();
        });
        dlg.CmCommandSettings();
        QCOMPARE(dlg.GetDescription()->text(), QString("Echo Time (ms) = 1500, Echo Gain (%) = 50"));
        QCOMPARE(LStoredValues::Get("EchoTime"), 800);
        QVERIFY(dlg.IsModified());

        const QString szPath = h->File("mine");
        h->prompts.saveNames.push_back(szPath);
        QVERIFY(dlg.SaveFile());
        QCOMPARE(h->prompts.dialogTitles.last(), QString("Save Batch Script File"));
        QCOMPARE(dlg.GetFileName(), QString("mine.snb"));
        std::vector<CommandDataItem> vItems;
        QCOMPARE(LBatchScript::Load((szPath + ".snb").toStdString(), vItems), LListLoad::Loaded);
        QCOMPARE(vItems.size(), size_t(3));
        QCOMPARE(vItems[2].vData, (std::vector<uint8_t>{0xDC, 0x05, 0, 0, 50, 0, 0, 0}));

        dlg.GetList()->setCurrentRow(0);
        dlg.CmRemoveCommand();
        QVERIFY(dlg.IsModified());
        h->prompts.answers.push_back(LUiPrompts::AnswerNo);
        dlg.CmNewFile();
        QCOMPARE(dlg.GetList()->count(), 0);
        h->prompts.openNames.push_back({szPath + ".snb"});
        dlg.CmOpenFile();
        QCOMPARE(h->prompts.dialogTitles.last(), QString("Open Batch Script File"));
        QCOMPARE(dlg.GetList()->count(), 3);
        QCOMPARE(dlg.GetItems(), vItems);

        // The editor starts with the script of last time.
        LSelectBatchCommandDlg again(nullptr);
        QCOMPARE(again.GetFileName(), QString("mine.snb"));
        QCOMPARE(again.GetItems(), vItems);
    }

    void openingABadScriptTellsWhy()
    {
        LSelectBatchCommandDlg dlg(nullptr);
        QFile f(h->File("v1.snb"));
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(QByteArray(1, '\x01'));
        f.close();
        QVERIFY(!dlg.OpenFile(h->File("v1.snb").toStdString()));
        QCOMPARE(h->prompts.informs.last(),
                 QString("File Error: This file does not have the same version with the current Sonitra version or it is corrupted."));
        // Cut short inside its last record: refused, naming the file and the record.
        QVERIFY(dlg.AddCommandToList(EffectCommand("normalize")));
        QVERIFY(dlg.AddCommandToList(EffectCommand("echo")));
        QVERIFY(dlg.SaveFileTo(h->File("cut.snb").toStdString()));
        QVERIFY(QFile::resize(h->File("cut.snb"), QFileInfo(h->File("cut.snb")).size() - 4));
        dlg.CmNewFile();
        QVERIFY(!dlg.OpenFile(h->File("cut.snb").toStdString()));
        QVERIFY2(h->prompts.informs.last().startsWith("File Error: The file \"" + h->File("cut.snb") + "\" is damaged"),
                 qPrintable(h->prompts.informs.last()));
        QVERIFY(h->prompts.informs.last().contains("record 2: cut short"));
        QCOMPARE(dlg.GetList()->count(), 0);
        // A save that fails names the file and why.
        const QString szNoFolder = h->File("no/such/folder/x.snb");
        QVERIFY(!dlg.SaveFileTo(szNoFolder.toStdString()));
        QVERIFY2(h->prompts.informs.last().startsWith("File Error: Unable to save \"" + szNoFolder + "\""),
                 qPrintable(h->prompts.informs.last()));
        QVERIFY(h->prompts.informs.last().contains("No such file or directory"));
    }

    // Beside their inputs as WAV, x.au would become x.wav, which the same batch reads: both are
    // refused with the reason, the third file is converted and x.wav stays as it was.
    void anOutputThatIsAnyInputIsRefusedForThatFileOnly()
    {
        // A file is read by its contents, whatever its extension says.
        WriteWav16(h->File("x.au"), 8000, 1, Ramp(3000));
        WriteWav16(h->File("x.wav"), 8000, 1, Ramp(2000));
        WriteWav16(h->File("y.au"), 8000, 1, Ramp(1000));
        QFile f(h->File("x.wav"));
        QVERIFY(f.open(QIODevice::ReadOnly));
        const QByteArray before = f.readAll();
        f.close();
        CommandDataItem reverse;
        QVERIFY(MakeCommandDataItem(EffectCommand("reverse"), reverse));
        LBatchOutput output;
        output.szExtension = ".wav";
        const std::vector<std::string> vFiles = {h->File("x.au").toStdString(), h->File("x.wav").toStdString(),
                                                 h->File("y.au").toStdString()};
        EdBatchConverter proc({reverse}, vFiles, output);
        QCOMPARE(proc.Run(), int32_t(LProgressDialog::ResultError));
        const auto& v = proc.GetResults();
        QCOMPARE(v.size(), size_t(3));
        QVERIFY(!v[0].bOk);
        QVERIFY2(v[0].szError.find("would replace " + vFiles[1]) != std::string::npos, v[0].szError.c_str());
        QVERIFY(!v[1].bOk);
        QVERIFY2(v[1].szError.find("would replace the input") != std::string::npos, v[1].szError.c_str());
        QVERIFY(v[2].bOk);
        QVERIFY(f.open(QIODevice::ReadOnly));
        QCOMPARE(f.readAll(), before);
        QVERIFY(QFile::exists(h->File("y.wav")));
    }

    void filesAndOutputAreChosenAndOneBadFileDoesNotStopTheBatch()
    {
        LSelectBatchFileDlg files(nullptr, {});
        const QString szGood = h->File("good.wav");
        const QString szBad = h->File("bad.wav");
        WriteWav16(szGood, 8000, 1, Ramp(3000));
        QFile f(szBad);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write("not audio");
        f.close();
        h->prompts.openNames.push_back({szBad, szGood});
        files.CmAddFile();
        QCOMPARE(files.GetList()->count(), 2);

        LSelectSaveFormatDlg format(nullptr);
        QVERIFY(format.GetFormats()->findText("Wave Files(*.wav)") >= 0);
        format.GetFormats()->setCurrentIndex(format.GetFormats()->findText("Wave Files(*.wav)"));
        format.GetFolder()->setText(h->File("out"));
        format.CmOk();
        QCOMPARE(format.result(), int(QDialog::Accepted));
        QCOMPARE(format.GetOutput().szExtension, std::string(".wav"));

        CommandDataItem reverse;
        QVERIFY(MakeCommandDataItem(EffectCommand("reverse"), reverse));
        EdBatchConverter proc({reverse}, files.GetFiles(), format.GetOutput());
        QCOMPARE(proc.Run(), int32_t(LProgressDialog::ResultError));
        QCOMPARE(proc.GetResults().size(), size_t(2));
        QVERIFY(!proc.GetResults()[0].bOk);
        QVERIFY(proc.GetResults()[1].bOk);
        QVERIFY(QFile::exists(h->File("out/good.wav")));
        QVERIFY(!QFile::exists(h->File("out/bad.wav")));
    }
};

QTEST_MAIN(BatchConverterTest)
#include "BatchConverterTest.moc"
