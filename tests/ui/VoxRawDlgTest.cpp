// The settings dialog of headerless files: it is registered for ".vox" and ".raw", shows and
// stores the three settings, refuses a bad rate, and the editor opens and saves these files.
#include <QComboBox>
#include <QLabel>
#include <QSpinBox>
#include <QTimer>
#include <QtTest>

#include <functional>
#include <memory>

#include "core/LEdFile.h"
#include "formats/LAudioFile.h"
#include "ui/LSaveFormatOptions.h"
#include "ui/LVoxRawDlg.h"
#include "UiTestSupport.h"

using namespace uitest;

namespace {
template <class T>
T* Field(LVoxRawDlg& dlg, const char* szName)
{
    T* p = dlg.findChild<T*>(szName);
    if (!p)
        qFatal("no field %s", szName);
    return p;
}

void Stored(int32_t nFormat, int32_t nRate, int32_t nChans)
{
    LSettings::SetInt("Settings", "VoxRawFileFormat", nFormat);
    LSettings::SetInt("Settings", "VoxRawSampleRate", nRate);
    LSettings::SetInt("Settings", "VoxRawFileChannels", nChans);
}
} // namespace

class VoxRawDlgTest : public QObject, public FrameFixture
{
    Q_OBJECT
private slots:
    void init() { QVERIFY(Start()); }
    void cleanup() { Stop(); }

    void saveShowsAndStoresTheSettings()
    {
        QVERIFY(LSaveFormatOptions::HasDialog("VOX"));
        QVERIFY(LSaveFormatOptions::HasDialog("RAW"));
        Stored(2, 11025, 2);
        bool bChannelsOffered = false;
        WhenDialogShows<LVoxRawDlg>([&](LVoxRawDlg& dlg) {
            QCOMPARE(Field<QComboBox>(dlg, "format")->currentText(), QString("G711 aLaw"));
            QCOMPARE(Field<QComboBox>(dlg, "format")->count(), 7);
            QCOMPARE(Field<QComboBox>(dlg, "rate")->currentText(), QString("11025"));
            QCOMPARE(Field<QSpinBox>(dlg, "channels")->value(), 2);
            bChannelsOffered = Field<QSpinBox>(dlg, "channels")->isEnabled();
            Field<QComboBox>(dlg, "format")->setCurrentIndex(6);
            Field<QComboBox>(dlg, "rate")->setCurrentText("16000");
            Field<QSpinBox>(dlg, "channels")->setValue(3);
            dlg.accept();
        });
        LAudioEncoding encoding;
        QVERIFY(LSaveFormatOptions::Ask(nullptr, "RAW", 44100, 2, encoding));
        QVERIFY(bChannelsOffered);
        QCOMPARE(encoding.szName, std::string("s16be"));
        QCOMPARE(LSettings::GetInt("Settings", "VoxRawFileFormat", 0), 6);
        QCOMPARE(LSettings::GetInt("Settings", "VoxRawSampleRate", 0), 16000);
        QCOMPARE(LSettings::GetInt("Settings", "VoxRawFileChannels", 0), 3);

        // A ".vox" file holds one channel: the count is not offered. Cancel keeps everything.
        WhenDialogShows<LVoxRawDlg>([&](LVoxRawDlg& dlg) {
            bChannelsOffered = Field<QSpinBox>(dlg, "channels")->isEnabled();
            Field<QComboBox>(dlg, "format")->setCurrentIndex(0);
            dlg.reject();
        });
        QVERIFY(!LSaveFormatOptions::Ask(nullptr, "VOX", 44100, 2, encoding));
        QVERIFY(!bChannelsOffered);
        QCOMPARE(LSettings::GetInt("Settings", "VoxRawFileFormat", 0), 6);
    }

    void openingNamesTheFileAndAVoxFileStartsAsDialogicAdpcm()
    {
        Stored(3, 16000, 2); // what a raw file last needed
        const QString szVox = h->File("call.vox");
        QString szLabel, szFormat, szRate;
        WhenDialogShows<LVoxRawDlg>([&](LVoxRawDlg& dlg) {
            szLabel = Field<QLabel>(dlg, "file")->text();
            szFormat = Field<QComboBox>(dlg, "format")->currentText();
            szRate = Field<QComboBox>(dlg, "rate")->currentText();
            dlg.accept();
        });
        QVERIFY(LSaveFormatOptions::AskOpen(nullptr, "VOX", szVox.toStdString()));
        QVERIFY2(szLabel.contains("\"call.vox\""), qPrintable(szLabel));
        QCOMPARE(szFormat, QString("Dialogic ADPCM"));
        QCOMPARE(szRate, QString("16000"));
        QCOMPARE(LSettings::GetInt("Settings", "VoxRawFileFormat", -1), 0);

        // A raw file keeps the stored encoding, and is named as well.
        Stored(3, 16000, 2);
        WhenDialogShows<LVoxRawDlg>([&](LVoxRawDlg& dlg) {
            szLabel = Field<QLabel>(dlg, "file")->text();
            szFormat = Field<QComboBox>(dlg, "format")->currentText();
            dlg.reject();
        });
        QVERIFY(!LSaveFormatOptions::AskOpen(nullptr, "RAW", h->File("take.raw").toStdString()));
        QVERIFY2(szLabel.contains("\"take.raw\""), qPrintable(szLabel));
        QCOMPARE(szFormat, QString("16 bit PCM (LE)"));
    }

    void aBadRateIsRefused()
    {
        Stored(0, 8000, 1);
        WhenDialogShows<LVoxRawDlg>([&](LVoxRawDlg& dlg) {
            Field<QComboBox>(dlg, "rate")->setCurrentText("900");
            dlg.accept();
            QVERIFY(dlg.isVisible());
            dlg.reject();
        });
        QVERIFY(!LSaveFormatOptions::AskOpen(nullptr, "RAW"));
        QCOMPARE(h->prompts.informs.size(), qsizetype(1));
        QCOMPARE(h->prompts.informs.front(), QString("Sonitra: ") + LVoxRawDlg::kSampleRateMessage);
        QCOMPARE(LSettings::GetInt("Settings", "VoxRawSampleRate", 0), 8000);
        // Formats that read by themselves ask nothing on opening.
        QVERIFY(LSaveFormatOptions::AskOpen(nullptr, "WAV"));
    }

    void openingUsesTheStoredLayoutAndSaveAsWritesAnyFormat()
    {
        Stored(3, 16000, 2);
        const QString szRaw = h->File("in.raw");
        {
            std::vector<int32_t> v;
            for (int16_t s : Ramp(1000, 2))
                v.push_back(s);
            std::vector<uint8_t> vBytes;
            for (int32_t s : v) {
                vBytes.push_back(static_cast<uint8_t>(s & 0xFF));
                vBytes.push_back(static_cast<uint8_t>((s >> 8) & 0xFF));
            }
            std::ofstream f(szRaw.toStdString(), std::ios::binary);
            f.write(reinterpret_cast<const char*>(vBytes.data()), static_cast<std::streamsize>(vBytes.size()));
        }
        h->prompts.openNames.push_back({szRaw});
        QVERIFY(frame->Command(CmOpenId));
        LEdFileWindow* pWindow = frame->GetCurrentFileWindow();
        QVERIFY(pWindow);
        const LCutListAudio& doc = pWindow->GetFile().GetDocument();
        QCOMPARE(doc.GetSampleRate(), 16000);
        QCOMPARE(int(doc.GetChannels()), 2);
        QCOMPARE(Samples(doc), Ramp(1000, 2));
        for (const char* szName : {"out.au", "out.aif"}) {
            const QString szOut = h->File(szName);
            h->prompts.saveNames.push_back(szOut);
            QVERIFY(frame->Command(CmSaveAsId));
            LSoundSourcePtr p = LAudioFile::OpenSource(szOut.toStdString());
            QVERIFY(!p->IsError());
            QCOMPARE(p->GetSampleRate(), 16000);
            std::vector<int32_t> v(2000);
            p->Read(v.data(), 1000);
            std::vector<int16_t> v16;
            for (int32_t s : v)
                v16.push_back(static_cast<int16_t>(s >> 4));
            QCOMPARE(v16, Ramp(1000, 2));
        }
    }
};

QTEST_MAIN(VoxRawDlgTest)
#include "VoxRawDlgTest.moc"
