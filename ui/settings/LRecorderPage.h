// Recording: voice-activated start, the loudness that counts as sound, cutting long silences,
// and the system's mixer for the input line and level.
#pragma once

#include "ui/settings/LSettingsPage.h"

class QCheckBox;
class QSpinBox;

class LRecorderPage : public LSettingsPage
{
    Q_OBJECT
public:
    explicit LRecorderPage(QWidget* pParent);

    QString Title() const override { return tr("Recorder"); }
    void Save() override;

private:
    void OpenMixer();

    QCheckBox* pVor;
    QSpinBox* pThreshold;
    QCheckBox* pAutotrim;
};
