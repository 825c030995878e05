// General settings: new files, playback after effects, the auto-trim threshold, undo levels.
#pragma once

#include "ui/settings/LSettingsPage.h"

class QCheckBox;
class QComboBox;
class QRadioButton;
class QSpinBox;

class LGeneralPage : public LSettingsPage
{
    Q_OBJECT
public:
    explicit LGeneralPage(QWidget* pParent);

    QString Title() const override { return tr("General"); }
    bool Validate() override;
    void Save() override;

private:
    QCheckBox* pAutoPlay;
    QCheckBox* pPrompt;
    QComboBox* pRate;
    QRadioButton* pMono;
    QRadioButton* pStereo;
    QSpinBox* pTrimThreshold;
    QSpinBox* pUndoLevels;
    QSpinBox* pPreviewSeconds;
};
