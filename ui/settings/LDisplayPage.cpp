#include "ui/settings/LDisplayPage.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QSpinBox>

#include "core/LSettings.h"
#include "dsp/LSpectroSettings.h"

namespace {
QComboBox* Combo(QWidget* pParent, const char* szName, const QStringList& vItems, int nCurrent)
{
    auto* p = new QComboBox(pParent);
    p->setObjectName(szName);
    p->addItems(vItems);
    p->setCurrentIndex(nCurrent);
    return p;
}

QSpinBox* Spin(QWidget* pParent, const char* szName, int nMin, int nMax, int nValue)
{
    auto* p = new QSpinBox(pParent);
    p->setObjectName(szName);
    p->setRange(nMin, nMax);
    p->setSuffix(QObject::tr(" dB"));
    p->setValue(nValue);
    return p;
}
} // namespace

LDisplayPage::LDisplayPage(QWidget* pParent) : LSettingsPage(pParent)
{
    setObjectName("DisplayPage");
    const LSpectroSettings s = LSpectroSettings::Load();
    pView = new QCheckBox(tr("Show new file windows as spectrograms"), this);
    pView->setObjectName("SpectrogramView");
    pView->setChecked(LSettings::GetBool("Settings", "SpectrogramView", false));
    QStringList vSizes;
    int nSizeIndex = 0;
    for (int n = LSpectroSettings::kMinWindow; n <= LSpectroSettings::kMaxWindow; n *= 2) {
        if (n == s.nWindow)
            nSizeIndex = static_cast<int>(vSizes.size());
        vSizes << QString::number(n);
    }
    pWindowSize = Combo(this, "SpectrogramWindowSize", vSizes, nSizeIndex);
    pWindow = Combo(this, "SpectrogramWindow", {tr("Hann"), tr("Hamming"), tr("Blackman-Harris"), tr("Rectangular")},
                    s.eWindow);
    pScale = Combo(this, "SpectrogramScale", {tr("Linear"), tr("Logarithmic"), tr("Mel")}, s.eScale);
    pRange = Spin(this, "SpectrogramRange", 20, 200, s.nRangeDb);
    pGain = Spin(this, "SpectrogramGain", -60, 100, s.nGainDb);
    pColours = Combo(this, "SpectrogramColours", {tr("Colour"), tr("Grey")}, s.eColours);

    auto* pForm = new QFormLayout(this);
    pForm->addRow(pView);
    pForm->addRow(tr("Spectrogram window size:"), pWindowSize);
    pForm->addRow(tr("Window function:"), pWindow);
    pForm->addRow(tr("Frequency scale:"), pScale);
    pForm->addRow(tr("Range shown:"), pRange);
    pForm->addRow(tr("Gain:"), pGain);
    pForm->addRow(tr("Colours:"), pColours);
}

void LDisplayPage::Save()
{
    LSettings::SetBool("Settings", "SpectrogramView", pView->isChecked());
    LSpectroSettings s;
    s.nWindow = pWindowSize->currentText().toInt();
    s.eWindow = static_cast<LSpectroWindowFn>(pWindow->currentIndex());
    s.eScale = static_cast<LSpectroScale>(pScale->currentIndex());
    s.nRangeDb = pRange->value();
    s.nGainDb = pGain->value();
    s.eColours = static_cast<LSpectroColourMap>(pColours->currentIndex());
    s.Normalize();
    s.Store();
}
