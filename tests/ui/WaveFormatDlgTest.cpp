// Choosing the compressed WAV format: the list, the refusal of what cannot be encoded, the
// remembered choice in "WavCodec.wff", and the WAV save settings that Save As shows.
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>

#include "core/LFile.h"
#include "formats/codec/LCodec.h"
#include "ui/LSaveFormatOptions.h"
#include "ui/LWaveFileFormat.h"
#include "ui/LWaveFormatChooseDlg.h"
#include "ui/LWaveSaveDlg.h"
#include "UiTestSupport.h"

using namespace uitest;

namespace {

// Acts on the next modal dialog of type T once it is up.
template <class T> void WhenShown(std::function<void(T&)> fn)
{
    QTimer::singleShot(0, [fn] {
        QTRY_VERIFY(qobject_cast<T*>(QApplication::activeModalWidget()));
        fn(*qobject_cast<T*>(QApplication::activeModalWidget()));
    });
}

QTreeWidget* ListOf(LWaveFormatChooseDlg& dlg)
{
    return dlg.findChild<QTreeWidget*>("formats");
}

// The format rows of the chooser, group by group.
std::vector<QTreeWidgetItem*> Rows(LWaveFormatChooseDlg& dlg)
{
    std::vector<QTreeWidgetItem*> v;
    QTreeWidget* p = ListOf(dlg);
    for (int g = 0; g < p->topLevelItemCount(); ++g)
        for (int i = 0; i < p->topLevelItem(g)->childCount(); ++i)
            v.push_back(p->topLevelItem(g)->child(i));
    return v;
}

// The group a row sits in ("PCM", "Compressed").
QString GroupOf(const QTreeWidgetItem* pRow)
{
    return pRow->parent() ? pRow->parent()->text(0) : QString();
}

// Picks the first row whose format column reads szFormat.
void Pick(LWaveFormatChooseDlg& dlg, const QString& szFormat)
{
    for (QTreeWidgetItem* pRow : Rows(dlg)) {
        if (pRow->text(0) == szFormat) {
            ListOf(dlg)->setCurrentItem(pRow);
            dlg.accept();
            return;
        }
    }
    dlg.reject();
}

LWaveFormatRecord Ima(uint16_t nChans)
{
    LWaveFormatRecord r;
    LCodec::ByShortName("ima")->MakeRecord(11025, nChans, r);
    return r;
}

// A record of a tag no codec here knows.
std::vector<uint8_t> UnknownBuffer()
{
    return LWaveFileFormat::BufferOf(LWaveFormatRecord::Make(0x1234, 1, 8000, 8000, 1, 8));
}

} // namespace

class WaveFormatDlgTest : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<Harness> h;

private slots:
    void init()
    {
        h = std::make_unique<Harness>();
        LSettings::SetString("Folders", "Current", h->dir.path().toStdString());
    }
    void cleanup() { h.reset(); }

    void rememberedFormatStartsFromGsmAndIsKeptWhole()
    {
        const std::vector<uint8_t> vGsm = {0x31, 0, 1, 0, 0x40, 0x1F, 0, 0, 0x59, 0x06,
                                           0, 0, 65, 0, 0, 0, 2, 0, 0x40, 0x01};
        std::vector<uint8_t> v = LWaveFileFormat::ReadRemembered();
        QCOMPARE(v.size(), size_t(1024));
        QVERIFY(std::equal(vGsm.begin(), vGsm.end(), v.begin()));
        QVERIFY(std::all_of(v.begin() + 20, v.end(), [](uint8_t b) { return b == 0; }));
        const std::string szPath = h->File("WavCodec.wff").toStdString();
        std::ofstream(szPath, std::ios::binary) << std::string(1023, '7'); // short: not believed
        QCOMPARE(LWaveFileFormat::ReadRemembered(), v);

        const std::vector<uint8_t> vIma = LWaveFileFormat::BufferOf(Ima(2));
        QVERIFY(LWaveFileFormat::WriteRemembered(vIma));
        QCOMPARE(std::filesystem::file_size(szPath), std::uintmax_t(1024));
        QCOMPARE(LWaveFileFormat::ReadRemembered(), vIma);
    }

    void testSupportedRecordAsksTheCodecLayer()
    {
        QVERIFY(LWaveFileFormat::TestSupportedRecord(Ima(1)));
        LWaveFormatRecord r;
        QVERIFY(LWaveFileFormat::RecordOf(UnknownBuffer(), r));
        QVERIFY(!LWaveFileFormat::TestSupportedRecord(r));
    }

    void chooseListsWhatCanBeEncodedWithTheChannelsAsked()
    {
        std::vector<uint8_t> v = LWaveFileFormat::BufferOf(Ima(2));
        int nRows = 0;
        WhenShown<LWaveFormatChooseDlg>([&nRows](LWaveFormatChooseDlg& dlg) {
            QTreeWidget* p = ListOf(dlg);
            nRows = static_cast<int>(Rows(dlg).size());
            QCOMPARE(p->currentItem()->text(0), QString("IMA ADPCM")); // the current choice
            QCOMPARE(p->currentItem()->text(1), QString("11025 Hz"));
            QCOMPARE(GroupOf(p->currentItem()), QString("Compressed"));
            bool bGsm = false;
            for (QTreeWidgetItem* pRow : Rows(dlg)) {
                // Stereo throughout, but for a mono-only codec whose rows say what saving does.
                if (pRow->text(0) == "GSM 6.10") {
                    bGsm = true;
                    QCOMPARE(pRow->text(2), QString("Mono (both channels mixed)"));
                } else {
                    QCOMPARE(pRow->text(2), QString("Stereo"));
                }
                // Wider and float samples are PCM, not compressed.
                const bool bPcm = pRow->text(0).startsWith("PCM ") || pRow->text(0).startsWith("IEEE float");
                QCOMPARE(GroupOf(pRow), bPcm ? QString("PCM") : QString("Compressed"));
            }
            QVERIFY(bGsm); // a stereo sound can still be saved as GSM
            // A group's title is not a format: OK on it keeps the dialog open.
            p->setCurrentItem(p->topLevelItem(1));
            dlg.accept();
            QVERIFY(dlg.isVisible());
            Pick(dlg, "MS ADPCM");
        });
        QVERIFY(LWaveFileFormat::Choose(nullptr, v, 2, "Format"));
        QVERIFY(nRows > 10);
        LWaveFormatRecord r;
        QVERIFY(LWaveFileFormat::RecordOf(v, r));
        QCOMPARE(r.wFormatTag, uint16_t(2));
        QCOMPARE(r.nChannels, uint16_t(2));
        QCOMPARE(v.size(), size_t(1024));

        // Cancel leaves the buffer as it was.
        const std::vector<uint8_t> vBefore = v;
        WhenShown<LWaveFormatChooseDlg>([](LWaveFormatChooseDlg& dlg) { dlg.reject(); });
        QVERIFY(!LWaveFileFormat::Choose(nullptr, v, 0, "Format"));
        QCOMPARE(v, vBefore);
    }

    void aFormatNothingEncodesIsRefusedAndTheListShownAgain()
    {
        std::vector<uint8_t> v = UnknownBuffer();
        WhenShown<LWaveFormatChooseDlg>([](LWaveFormatChooseDlg& dlg) {
            QCOMPARE(ListOf(dlg)->currentItem()->text(0), QString("format 0x1234")); // shown first, chosen
            dlg.accept();
            WhenShown<LWaveFormatChooseDlg>([](LWaveFormatChooseDlg& again) { Pick(again, "IMA ADPCM"); });
        });
        QVERIFY(LWaveFileFormat::Choose(nullptr, v, 1, "Format"));
        QCOMPARE(h->prompts.informs, QStringList{QString("Format Not Available: ") + LWaveFileFormat::kNotAvailable});
        LWaveFormatRecord r;
        QVERIFY(LWaveFileFormat::RecordOf(v, r));
        QCOMPARE(r.wFormatTag, uint16_t(0x11));
    }

    void saveSettingsGivePcmOrTheCompressedFormat()
    {
        QVERIFY(LSaveFormatOptions::HasDialog("WAV"));
        LAudioEncoding encoding;
        WhenShown<LWaveSaveDlg>([](LWaveSaveDlg& dlg) {
            QVERIFY(dlg.findChild<QRadioButton*>("pcm16")->isChecked());
            dlg.findChild<QRadioButton*>("pcm8")->setChecked(true);
            dlg.accept();
        });
        QVERIFY(LSaveFormatOptions::Ask(nullptr, "WAV", 44100, 1, encoding));
        QCOMPARE(encoding.szName, std::string("pcm8"));

        // The remembered format, changed through the Format button and kept for next time.
        LWaveFileFormat::WriteRemembered(LWaveFileFormat::BufferOf(Ima(1)));
        WhenShown<LWaveSaveDlg>([](LWaveSaveDlg& dlg) {
            QCOMPARE(dlg.findChild<QLabel*>("format")->text(), QString("IMA ADPCM, 11025 Hz, Mono"));
            // The click only queues the chooser.
            dlg.findChild<QPushButton*>("choose")->click();
            WhenShown<LWaveFormatChooseDlg>([&dlg](LWaveFormatChooseDlg& chooser) {
                Pick(chooser, "MS ADPCM");
                QTimer::singleShot(0, &dlg, [&dlg] {
                    QVERIFY(dlg.findChild<QRadioButton*>("compressed")->isChecked());
                    QVERIFY(dlg.findChild<QLabel*>("format")->text().startsWith("MS ADPCM, "));
                    dlg.accept();
                });
            });
        });
        QVERIFY(LSaveFormatOptions::Ask(nullptr, "WAV", 44100, 1, encoding));
        QCOMPARE(encoding.szName, std::string("msadpcm"));
        LWaveFormatRecord r;
        QVERIFY(LWaveFileFormat::RecordOf(LWaveFileFormat::ReadRemembered(), r));
        QCOMPARE(r.wFormatTag, uint16_t(2));
        QCOMPARE(std::vector<uint8_t>(encoding.vRecord.begin(), encoding.vRecord.end()), r.vBytes);
    }

    void aFileReadCompressedStartsFromItsOwnFormat()
    {
        const LWaveFormatRecord ima = Ima(2);
        LAudioEncoding encoding{"ima", ima.vBytes, {}};
        WhenShown<LWaveSaveDlg>([](LWaveSaveDlg& dlg) {
            QVERIFY(dlg.findChild<QRadioButton*>("compressed")->isChecked());
            QCOMPARE(dlg.findChild<QLabel*>("format")->text(), QString("IMA ADPCM, 11025 Hz, Stereo"));
            dlg.accept();
        });
        QVERIFY(LSaveFormatOptions::Ask(nullptr, "WAV", 11025, 2, encoding));
        QCOMPARE(encoding.szName, std::string("ima"));
        QCOMPARE(encoding.vRecord, ima.vBytes);
    }

    void anUnavailableRememberedFormatIsNotAccepted()
    {
        LWaveFileFormat::WriteRemembered(UnknownBuffer());
        LAudioEncoding encoding{"alaw", {}, {}};
        WhenShown<LWaveSaveDlg>([this](LWaveSaveDlg& dlg) {
            QVERIFY(dlg.findChild<QLabel*>("format")->text().endsWith("(not available)"));
            dlg.accept(); // refused: the dialog stays
            QCOMPARE(h->prompts.informs.size(), 1);
            QVERIFY(dlg.isVisible());
            dlg.reject();
        });
        QVERIFY(!LSaveFormatOptions::Ask(nullptr, "WAV", 8000, 1, encoding));
        QCOMPARE(encoding.szName, std::string("alaw"));
    }
};

QTEST_MAIN(WaveFormatDlgTest)
#include "WaveFormatDlgTest.moc"
