// The settings dialog: its pages show and keep the stored values, refuse what cannot be kept,
// and a new audio working folder closes the editor.
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QSpinBox>
#include <QTimer>
#include <QtTest>

#include <memory>

#include "ui/LCommandIds.h"
#include "ui/MainDialog.h"
#include "ui/settings/LSettingsDlg.h"
#include "UiTestSupport.h"

using namespace uitest;

class SettingsDlgTest : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<Harness> h;

    template <class T>
    static T* Field(LSettingsDlg& dlg, const char* szName)
    {
        T* p = dlg.findChild<T*>(szName);
        if (!p)
            qFatal("no field %s", szName);
        return p;
    }

private slots:
    void initTestCase() { setenv("SONITRA_AUDIO_DEVICE", "virtual", 1); }
    void init() { h = std::make_unique<Harness>(); }
    void cleanup() { h.reset(); }

    void showsTheStoredValuesAndKeepsWhatOkAccepts()
    {
        LSettings::SetInt("Settings", "DefaultSampleRate", 22050);
        LSettings::SetInt("Recorder", "Threshold", -30);
        LSettings::SetInt("Recorder", "Device", 1);
        {
            LSettingsDlg dlg(nullptr);
            QCOMPARE(Field<QComboBox>(dlg, "DefaultSampleRate")->currentText(), QString("22050"));
            QVERIFY(Field<QRadioButton>(dlg, "DefaultStereo")->isChecked());
            QCOMPARE(Field<QSpinBox>(dlg, "Threshold")->value(), -30);
            QVERIFY(!Field<QCheckBox>(dlg, "Vor")->isChecked());
            QCOMPARE(Field<QComboBox>(dlg, "SoundOutDevice")->currentText(), QString("[Default Sound Out]"));
            QCOMPARE(Field<QComboBox>(dlg, "RecorderDevice")->currentIndex(), 1);
            Field<QComboBox>(dlg, "DefaultSampleRate")->setCurrentText("48000");
            Field<QRadioButton>(dlg, "DefaultMono")->setChecked(true);
            Field<QCheckBox>(dlg, "Vor")->setChecked(true);
            Field<QSpinBox>(dlg, "AutoTrimThreshold")->setValue(-40);
            Field<QComboBox>(dlg, "SoundOutDevice")->setCurrentIndex(1);
            dlg.accept();
            QCOMPARE(dlg.result(), int(QDialog::Accepted));
            QVERIFY(!dlg.WorkingFolderChanged());
        }
        QCOMPARE(LSettings::GetInt("Settings", "DefaultSampleRate", 0), 48000);
        QCOMPARE(LSettings::GetInt("Settings", "DefaultChannels", 0), 1);
        QVERIFY(LSettings::GetBool("Recorder", "Vor", false));
        QCOMPARE(LSettings::GetInt("Settings", "AutoTrimThreshold", 0), -40);
        QCOMPARE(LSettings::GetInt("Settings", "SoundOutDevice", 0), 1);
        QCOMPARE(LSettings::GetInt("Recorder", "Device", 0), 1);
        QVERIFY(h->prompts.informs.isEmpty());
    }

    void refusesWhatCannotBeKeptAndWritesNothing()
    {
        LSettingsDlg dlg(nullptr);
        Field<QComboBox>(dlg, "DefaultSampleRate")->setCurrentText("500");
        Field<QSpinBox>(dlg, "Threshold")->setValue(-50);
        dlg.accept();
        QCOMPARE(h->prompts.informs,
                 QStringList{"Sonitra: Sample rates must be between 6000 and 96000 samples per second."});
        QVERIFY(!dlg.isVisible() && dlg.result() != QDialog::Accepted);
        QCOMPARE(LSettings::GetInt("Recorder", "Threshold", -24), -24);

        // A folder inside a plain file can never be made.
        Field<QComboBox>(dlg, "DefaultSampleRate")->setCurrentText("8000");
        WriteWav16(h->File("plain"), 8000, 1, {});
        Field<QLineEdit>(dlg, "Current")->setText(h->File("plain/data"));
        dlg.accept();
        QCOMPARE(h->prompts.informs.size(), 2);
        QVERIFY(h->prompts.informs[1].startsWith("Sonitra: The folder \"" + h->File("plain/data")));
        QCOMPARE(LSettings::GetString("Folders", "Current"), std::string());
    }

    void aNewWorkingFolderClosesTheEditor()
    {
        MainDialog frame;
        frame.show();
        QVERIFY(frame.GetAction(CmSettingsId)->isEnabled());
        const QString szFolder = h->File("segments");
        QTimer::singleShot(0, [szFolder] {
            QTRY_VERIFY(qobject_cast<LSettingsDlg*>(QApplication::activeModalWidget()));
            auto* pDlg = qobject_cast<LSettingsDlg*>(QApplication::activeModalWidget());
            Field<QLineEdit>(*pDlg, "WorkingFolder")->setText(szFolder);
            pDlg->accept();
        });
        QVERIFY(frame.Command(CmSettingsId));
        QCOMPARE(h->prompts.informs,
                 QStringList{"Shut Down Required: Sonitra will now close because you changed the audio working "
                             "folder.\r\rPlease re-run Sonitra to start with the new folders."});
        QCOMPARE(LSettings::GetString("Folders", "WorkingFolder"), szFolder.toStdString());
        QVERIFY(QDir(szFolder).exists());
        QVERIFY(!frame.isVisible());
    }
};

QTEST_MAIN(SettingsDlgTest)
#include "SettingsDlgTest.moc"
