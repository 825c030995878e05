// The effect dialogs on their own: stored values and defaults, the acceptance rules with their
// messages, and the curve editor with its file.
#include <QButtonGroup>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>
#include <QtTest>

#include <memory>

#include "core/LSettings.h"
#include "dsp/effects/LCurveFile.h"
#include "dsp/effects/LEffectCatalog.h"
#include "dsp/effects/LStoredValues.h"
#include "ui/LCommandIds.h"
#include "ui/effects/LBrainWaveWindow.h"
#include "ui/effects/LCurveDlg.h"
#include "ui/effects/LEffectSettingsDlg.h"
#include "UiTestSupport.h"

using namespace uitest;

namespace {
QString Text(LEffectSettingsDlg& dlg, const char* szKey)
{
    return qobject_cast<QLineEdit*>(dlg.FieldOf(szKey))->text();
}

void Type(LEffectSettingsDlg& dlg, const char* szKey, const QString& sz)
{
    qobject_cast<QLineEdit*>(dlg.FieldOf(szKey))->setText(sz);
}

const LEffectInfo& Info(int nId)
{
    return *LEffectCatalog::ByCommand(nId);
}
} // namespace

class EffectDialogsTest : public QObject
{
    Q_OBJECT
private:
    std::unique_ptr<Harness> h;

    // Types a value and presses OK: true when the dialog took it.
    bool Offer(int nId, const char* szKey, const QString& szValue)
    {
        LEffectSettingsDlg dlg(nullptr, Info(nId));
        Type(dlg, szKey, szValue);
        dlg.show();
        dlg.accept();
        return dlg.result() == QDialog::Accepted;
    }

private slots:
    void init() { h = std::make_unique<Harness>(); }
    void cleanup() { h.reset(); }

    void emptyStoreOpensWithTheDefaults()
    {
        LEffectSettingsDlg echo(nullptr, Info(EffectCommand("echo")));
        QCOMPARE(echo.windowTitle(), QString("Echo"));
        QCOMPARE(Text(echo, "EchoTime"), QString("800"));
        QCOMPARE(Text(echo, "EchoGain"), QString("50"));
        LEffectSettingsDlg comp(nullptr, Info(EffectCommand("dynamic-range-compressor")));
        QCOMPARE(Text(comp, "CompressorThreshold"), QString("-20"));
        QCOMPARE(qobject_cast<QComboBox*>(comp.FieldOf("CompressorRatio"))->currentText(), QString("1:1"));
        QCOMPARE(Text(comp, "CompressorLimit"), QString("3"));
        LEffectSettingsDlg mix(nullptr, Info(CmMixFileId));
        QCOMPARE(Text(mix, "PasteMixVolume"), QString("100"));
        QVERIFY(qobject_cast<QRadioButton*>(mix.FieldOf("LongerSelection"))->isChecked());
        QCOMPARE(Text(mix, "FadeOutTime"), QString("250"));
        LEffectSettingsDlg hp(nullptr, Info(EffectCommand("high-pass-filter")));
        QCOMPARE(Text(hp, "LowCutFreq"), QString("250"));
    }

    void refusedValuesGetTheirMessageAndStoreNothing()
    {
        QVERIFY(!Offer(EffectCommand("echo"), "EchoTime", "3000"));
        QCOMPARE(h->prompts.informs.last(), QString("Sonitra: Echo time must be between 10 and 3000ms. Please try again."));
        QVERIFY(!Offer(EffectCommand("echo"), "EchoTime", "soon"));
        QCOMPARE(h->prompts.informs.last(), QString("Sonitra: Echo time must be between 10 and 3000ms. Please try again."));
        QVERIFY(!Offer(EffectCommand("normalize"), "NormalizePeakLevel", "101"));
        QCOMPARE(h->prompts.informs.last(),
                 QString("Sonitra: Normailze Peak Level must be less than 100%. Please try again."));
        QVERIFY(!Offer(EffectCommand("reverb"), "ReverbTime", "49"));
        QCOMPARE(LSettings::GetString("StoredValues", "EchoTime"), std::string());
        QCOMPARE(LSettings::GetString("StoredValues", "ReverbTime"), std::string());
    }

    void acceptedValuesAreStoredAndShownNextTime()
    {
        QVERIFY(Offer(EffectCommand("echo"), "EchoTime", "2999"));
        QVERIFY(Offer(EffectCommand("reverb"), "ReverbTime", "1000"));
        QVERIFY(Offer(EffectCommand("reverb"), "ReverbLevel", "100"));
        QCOMPARE(LStoredValues::Get("EchoTime"), 2999);
        QCOMPARE(LStoredValues::Get("ReverbLevel"), 100);
        LEffectSettingsDlg echo(nullptr, Info(EffectCommand("echo")));
        QCOMPARE(Text(echo, "EchoTime"), QString("2999"));

        LEffectSettingsDlg comp(nullptr, Info(EffectCommand("dynamic-range-compressor")));
        qobject_cast<QComboBox*>(comp.FieldOf("CompressorRatio"))->setCurrentIndex(6);
        comp.accept();
        QCOMPARE(LStoredValues::Get("CompressorRatio"), 6);
        QCOMPARE(LEffectCatalog::Describe(Info(EffectCommand("dynamic-range-compressor"))),
                 std::string("Threshold (db) = -20, Ratio = Limit, Limit (db) = 3"));
    }

    void presetFillsTheFieldAndTheTypedValueCounts()
    {
        LEffectSettingsDlg dlg(nullptr, Info(EffectCommand("loudness-normalize")));
        QCOMPARE(Text(dlg, "LoudnessTarget"), QString("-16"));
        auto* pPresets = dlg.findChild<QComboBox*>("LoudnessTargetPresets");
        QVERIFY(pPresets);
        const int nBroadcast = pPresets->findText("Broadcast (-23)");
        QVERIFY(nBroadcast > 0);
        emit pPresets->activated(nBroadcast);
        QCOMPARE(Text(dlg, "LoudnessTarget"), QString("-23"));
        dlg.accept();
        QCOMPARE(LStoredValues::Get("LoudnessTarget"), -23);
        // A preset is only a shortcut: a value out of range typed after it is still refused.
        LEffectSettingsDlg again(nullptr, Info(EffectCommand("loudness-normalize")));
        QCOMPARE(Text(again, "LoudnessTarget"), QString("-23"));
        QVERIFY(!Offer(EffectCommand("loudness-normalize"), "LoudnessTarget", "-71"));
        QCOMPARE(h->prompts.informs.last(),
                 QString("Sonitra: Target loudness must be between -70 and 0 LUFS. Please try again."));
    }

    void curveEditorAddsMovesRemovesAndKeepsTheFile()
    {
        LSettings::SetString("Folders", "Current", h->File("data").toStdString());
        LCurveDlg dlg(nullptr, LCurveDlg::Envelope);
        dlg.resize(600, 400);
        dlg.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dlg));
        LBrainWaveWindow* pEd = dlg.GetEditor();
        QCOMPARE(pEd->GetPoints().nPoints, 2);
        // A point in the middle at 50 %.
        const QPoint ptMid = pEd->ToWidget({500, 50}).toPoint();
        QTest::mouseClick(pEd, Qt::LeftButton, {}, ptMid);
        QCOMPARE(pEd->GetPoints().nPoints, 3);
        QCOMPARE(pEd->GetPoints().aPoints[1].x / 50, 10);
        // A right click on it takes it away again.
        QTest::mouseClick(pEd, Qt::RightButton, {}, pEd->ToWidget(pEd->GetPoints().aPoints[1]).toPoint());
        QCOMPARE(pEd->GetPoints().nPoints, 2);
        QTest::mouseClick(pEd, Qt::LeftButton, {}, ptMid);
        dlg.accept();
        QCOMPARE(dlg.result(), int(QDialog::Accepted));
        LPointList stored = LCurveFile::LoadEnvelope();
        QCOMPARE(stored.nPoints, 3);
        LCurveDlg again(nullptr, LCurveDlg::Envelope);
        QCOMPARE(again.GetPoints().nPoints, 3);
    }

    void curveEditorStopsShortOfAFullList()
    {
        LCurveDlg dlg(nullptr, LCurveDlg::Equalizer);
        dlg.resize(900, 400);
        dlg.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dlg));
        LBrainWaveWindow* pEd = dlg.GetEditor();
        LPointList many;
        for (int i = 0; i < POINTLISTMAX - 1; ++i)
            many.Add(20 + 300 * i, 0);
        pEd->SetPoints(many);
        QTest::mouseClick(pEd, Qt::LeftButton, {}, QPoint(pEd->width() / 2 + 3, 20));
        QCOMPARE(pEd->GetPoints().nPoints, POINTLISTMAX - 1);
    }
};

QTEST_MAIN(EffectDialogsTest)
#include "EffectDialogsTest.moc"
