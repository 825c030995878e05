// Sound devices: where playback goes and where recording comes from.
#pragma once

#include "ui/settings/LSettingsPage.h"

class QCheckBox;
class QComboBox;

class LDevicesPage : public LSettingsPage
{
    Q_OBJECT
public:
    explicit LDevicesPage(QWidget* pParent);

    QString Title() const override { return tr("Devices"); }
    void Save() override;

private:
    QComboBox* pOut;
    QComboBox* pIn;
    QCheckBox* pReduce;
};
