// Display settings: whether new file windows show spectrograms, and how the spectrogram is
// computed (window size and shape, frequency scale) and coloured (range, gain, colour map).
#pragma once

#include "ui/settings/LSettingsPage.h"

class QCheckBox;
class QComboBox;
class QSpinBox;

class LDisplayPage : public LSettingsPage
{
public:
    explicit LDisplayPage(QWidget* pParent);

    QString Title() const override { return tr("Display"); }
    void Save() override;

private:
    QCheckBox* pView;
    QComboBox* pWindowSize;
    QComboBox* pWindow;
    QComboBox* pScale;
    QSpinBox* pRange;
    QSpinBox* pGain;
    QComboBox* pColours;
};
