// Compact discs: the CDDB server that names a disc's tracks, and how hard tracks are read.
#pragma once

#include "ui/settings/LSettingsPage.h"

class QCheckBox;
class QComboBox;
class QLineEdit;
class QSpinBox;

class LCdPage : public LSettingsPage
{
    Q_OBJECT
public:
    explicit LCdPage(QWidget* pParent);

    QString Title() const override { return tr("CD"); }
    bool Validate() override;
    void Save() override;

private:
    QCheckBox* pEnabled;
    QLineEdit* pServer;
    QComboBox* pProtocol;
    QSpinBox* pPort;
    QLineEdit* pPath;
    QSpinBox* pTimeout;
    QComboBox* pMode;
};
