#include "ui/settings/LGeneralPage.h"

#include <algorithm>

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QRadioButton>
#include <QSpinBox>

#include "core/LEdFile.h"
#include "core/LSettings.h"
#include "ui/LUiPrompts.h"
#include "ui/NewWavDlg.h"
#include "ui/effects/LEffectPreviewButton.h"

namespace {
const char* const kSection = "Settings";
}

LGeneralPage::LGeneralPage(QWidget* pParent) : LSettingsPage(pParent)
{
    setObjectName("GeneralPage");
    pAutoPlay = new QCheckBox(tr("Play the result after each edit or effect"), this);
    pAutoPlay->setObjectName("AutoPlaybackAfterEffects");
    pAutoPlay->setChecked(LSettings::GetBool(kSection, "AutoPlaybackAfterEffects", true));
    pPrompt = new QCheckBox(tr("Ask for the sample rate and channels of a new file"), this);
    pPrompt->setObjectName("PromptSampleAndChannels");
    pPrompt->setChecked(LSettings::GetBool(kSection, "PromptSampleAndChannels", true));
    pRate = new QComboBox(this);
    pRate->setObjectName("DefaultSampleRate");
    pRate->setEditable(true);
    for (int n : {8000, 11025, 16000, 22050, 32000, 44100, 48000, 88200, 96000})
        pRate->addItem(QString::number(n));
    pRate->setCurrentText(QString::number(LSettings::GetInt(kSection, "DefaultSampleRate", 44100)));
    pMono = new QRadioButton(tr("Mono"), this);
    pMono->setObjectName("DefaultMono");
    pStereo = new QRadioButton(tr("Stereo"), this);
    pStereo->setObjectName("DefaultStereo");
    (LSettings::GetInt(kSection, "DefaultChannels", 2) == 1 ? pMono : pStereo)->setChecked(true);
    auto* pChans = new QHBoxLayout;
    pChans->addWidget(pMono);
    pChans->addWidget(pStereo);
    pChans->addStretch();
    pTrimThreshold = new QSpinBox(this);
    pTrimThreshold->setObjectName("AutoTrimThreshold");
    pTrimThreshold->setRange(-127, 127);
    pTrimThreshold->setSuffix(tr(" dB"));
    pTrimThreshold->setValue(std::clamp(LSettings::GetInt(kSection, "AutoTrimThreshold", -20), -127, 127));
    pUndoLevels = new QSpinBox(this);
    pUndoLevels->setObjectName("UndoLevels");
    pUndoLevels->setRange(1, LEdFile::kMaxUndoLevels);
    pUndoLevels->setValue(LEdFile::ConfiguredUndoLevels());
    pPreviewSeconds = new QSpinBox(this);
    pPreviewSeconds->setObjectName("EffectPreviewSeconds");
    pPreviewSeconds->setRange(LEffectPreviewButton::kMinSeconds, LEffectPreviewButton::kMaxSeconds);
    pPreviewSeconds->setSuffix(tr(" s"));
    pPreviewSeconds->setValue(LEffectPreviewButton::ConfiguredSeconds());

    auto* pForm = new QFormLayout(this);
    pForm->addRow(pAutoPlay);
    pForm->addRow(pPrompt);
    pForm->addRow(tr("New file sample rate (Hz):"), pRate);
    pForm->addRow(tr("New file channels:"), pChans);
    pForm->addRow(tr("Auto-trim threshold:"), pTrimThreshold);
    pForm->addRow(tr("Undo levels:"), pUndoLevels);
    pForm->addRow(tr("Effect preview length:"), pPreviewSeconds);
}

bool LGeneralPage::Validate()
{
    int32_t nRate = 0;
    if (NewWavDlg::ParseSampleRate(pRate->currentText(), nRate))
        return true;
    LUiPrompts::Get().Inform(this, "Sonitra", NewWavDlg::kSampleRateMessage, LUiPrompts::IconWarning);
    pRate->setFocus();
    return false;
}

void LGeneralPage::Save()
{
    int32_t nRate = 44100;
    NewWavDlg::ParseSampleRate(pRate->currentText(), nRate);
    LSettings::SetBool(kSection, "AutoPlaybackAfterEffects", pAutoPlay->isChecked());
    LSettings::SetBool(kSection, "PromptSampleAndChannels", pPrompt->isChecked());
    LSettings::SetInt(kSection, "DefaultSampleRate", nRate);
    LSettings::SetInt(kSection, "DefaultChannels", pMono->isChecked() ? 1 : 2);
    LSettings::SetInt(kSection, "AutoTrimThreshold", pTrimThreshold->value());
    LSettings::SetInt(kSection, "UndoLevels", pUndoLevels->value());
    LSettings::SetInt(kSection, "EffectPreviewSeconds", pPreviewSeconds->value());
}
