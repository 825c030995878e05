#include "ui/settings/LRecorderPage.h"

#include <algorithm>
#include <string>
#include <vector>

#include <QCheckBox>
#include <QFormLayout>
#include <QTimer>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

#include "core/LSettings.h"
#include "platform/engine/LChildProcess.h"
#include "ui/LUiPrompts.h"

namespace {
const char* const kSection = "Recorder";
// The sound server's own volume control, on its input-devices tab.
const std::vector<std::string> kMixerCommand = {"pavucontrol", "--tab=4"};
} // namespace

LRecorderPage::LRecorderPage(QWidget* pParent) : LSettingsPage(pParent)
{
    setObjectName("RecorderPage");
    pVor = new QCheckBox(tr("Voice-activated: wait for sound before recording"), this);
    pVor->setObjectName("Vor");
    pVor->setChecked(LSettings::GetBool(kSection, "Vor", false));
    pThreshold = new QSpinBox(this);
    pThreshold->setObjectName("Threshold");
    pThreshold->setRange(-96, 0);
    pThreshold->setSuffix(tr(" dB"));
    pThreshold->setValue(std::clamp(LSettings::GetInt(kSection, "Threshold", -24), -96, 0));
    pAutotrim = new QCheckBox(tr("Cut silences longer than two seconds, and trim the end on stop"), this);
    pAutotrim->setObjectName("Autotrim");
    pAutotrim->setChecked(LSettings::GetBool(kSection, "Autotrim", false));
    auto* pMixer = new QPushButton(tr("Recording Mixer..."), this);
    pMixer->setObjectName("Mixer");
    pMixer->setToolTip(tr("Choose the input line and its level in the system's mixer."));
    // Starting a program and telling why it failed run from the event loop, not inside the click.
    connect(pMixer, &QPushButton::clicked, this, [this] { QTimer::singleShot(0, this, &LRecorderPage::OpenMixer); });

    auto* pForm = new QFormLayout(this);
    pForm->addRow(pVor);
    pForm->addRow(tr("Sound threshold:"), pThreshold);
    pForm->addRow(pAutotrim);
    pForm->addRow(tr("Input line and level:"), pMixer);
}

void LRecorderPage::Save()
{
    LSettings::SetBool(kSection, "Vor", pVor->isChecked());
    LSettings::SetInt(kSection, "Threshold", pThreshold->value());
    LSettings::SetBool(kSection, "Autotrim", pAutotrim->isChecked());
}

void LRecorderPage::OpenMixer()
{
    std::string szError;
    if (LChildProcess::StartDetached(kMixerCommand, &szError))
        return;
    LUiPrompts::Get().Inform(this, "Sonitra",
                             tr("The recording mixer could not be started (%1). Install pavucontrol to choose the "
                                "input line and its level.")
                                 .arg(QString::fromStdString(szError)),
                             LUiPrompts::IconInformation);
}
