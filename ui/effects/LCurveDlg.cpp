#include "ui/effects/LCurveDlg.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "dsp/effects/LCurveFile.h"
#include "lists/LListFile.h"
#include "ui/LUiPrompts.h"
#include "ui/effects/LBrainWaveWindow.h"
#include "ui/effects/LEffectPreviewButton.h"

LCurveDlg::LCurveDlg(QWidget* pParent, Curve c) : QDialog(pParent), curve(c)
{
    const bool bEq = curve == Equalizer;
    setWindowTitle(bEq ? "Equalizer" : "Envelope");
    setObjectName("LCurveDlg");
    pEditor = new LBrainWaveWindow(this, bEq ? LBrainWaveWindow::kEqualizerAxes : LBrainWaveWindow::kEnvelopeAxes,
                                   bEq ? LCurveFile::LoadEqualizer() : LCurveFile::LoadEnvelope());
    auto* pHint = new QLabel(bEq ? "Gain (dB) by frequency. Click to add or drag a point, right-click to remove it."
                                 : "Level (%) across the selection. Click to add or drag a point, right-click to remove it.",
                             this);
    pHint->setWordWrap(true);
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    QPushButton* pFlat = pButtons->addButton("Flat", QDialogButtonBox::ResetRole);
    pFlat->setObjectName("flat");
    connect(pFlat, &QPushButton::clicked, this, [this] {
        pEditor->SetPoints(curve == Equalizer ? LCurveFile::DefaultEqualizer() : LCurveFile::DefaultEnvelope());
    });
    connect(pButtons, &QDialogButtonBox::accepted, this, &LCurveDlg::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &LCurveDlg::reject);
    const LEffectInfo& info = *LEffectCatalog::ByCliName(bEq ? "equalizer" : "envelope");
    auto fnCurve = [this](LEffectArgs& a) { return (a.curve = GetPoints())->nPoints >= 1 && GetPoints().Validate(); };
    if (auto* pPreview = LEffectPreviewButton::AddTo(this, pButtons, info, fnCurve))
        connect(pEditor, &LBrainWaveWindow::PointsChanged, pPreview, &LEffectPreviewButton::ValuesChanged);
    auto* pLayout = new QVBoxLayout(this);
    pLayout->addWidget(pHint);
    pLayout->addWidget(pEditor, 1);
    pLayout->addWidget(pButtons);
}

const LPointList& LCurveDlg::GetPoints() const
{
    return pEditor->GetPoints();
}

void LCurveDlg::accept()
{
    if (GetPoints().nPoints < 1 || !GetPoints().Validate()) {
        LUiPrompts::Get().Inform(this, "Sonitra", "Please give the curve at least one point.", LUiPrompts::IconWarning);
        return;
    }
    const char* szFile = curve == Equalizer ? LCurveFile::kEqualizerFile : LCurveFile::kEnvelopeFile;
    const std::string szPath = LCurveFile::PathOf(szFile);
    std::string szError;
    // The curve is still used for this run; only remembering it for next time failed.
    if (!LCurveFile::Save(szPath, GetPoints(), &szError))
        LUiPrompts::Get().Inform(this, "File Error", QString::fromStdString(LListFile::SaveFailedMessage(szPath, szError)),
                                 LUiPrompts::IconWarning);
    QDialog::accept();
}

bool LCurveDlg::Edit(QWidget* pParent, Curve curve, LPointList* pList)
{
    LCurveDlg dlg(pParent, curve);
    if (dlg.exec() != QDialog::Accepted)
        return false;
    *pList = dlg.GetPoints();
    return true;
}
