// "MP3 Encoder Settings": constant or variable bit rate, their rates and quality, error
// protection and the channel mode. Registered as the MP3 format's save dialog.
#pragma once

#include <QDialog>

#include "formats/mp3/LMP3EncoderSettings.h"

class QCheckBox;
class QComboBox;
class QRadioButton;

class LMp3EncodeDlg : public QDialog
{
    Q_OBJECT
public:
    LMp3EncodeDlg(QWidget* pParent, const LMP3EncoderSettings& settings);
    LMP3EncoderSettings GetSettings() const;

private:
    void CmModeChanged();

    QRadioButton* pConstant;
    QRadioButton* pVariable;
    QComboBox* pCbrRate;
    QCheckBox* pHighQuality;
    QComboBox* pVbrMin;
    QComboBox* pVbrMax;
    QComboBox* pVbrQuality;
    QCheckBox* pProtection;
    QComboBox* pChannelMode;
};
