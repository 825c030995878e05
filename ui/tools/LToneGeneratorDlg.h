// The tone generator's dialog: the wave, its frequency (and where a sweep ends, or the digits to
// dial), level in dBFS, length, sample rate and channels, and whether the tone becomes a new
// file or goes in at the cursor. The choices are remembered for next time.
#pragma once

#include <QDialog>

#include "dsp/LSRCTone.h"

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLineEdit;
class QRadioButton;

class LToneGeneratorDlg : public QDialog
{
    Q_OBJECT
public:
    // bCanInsert: a file is open to insert into; its rate and channels then apply when inserting.
    LToneGeneratorDlg(QWidget* pParent, bool bCanInsert);

    const LToneSettings& GetSettings() const { return settings; }
    bool IsInsert() const { return bInsert; }

    // Takes the choices when they make sense; otherwise says why and stays open.
    void accept() override;

private:
    void UpdateFields();

    QComboBox* pWave;
    QDoubleSpinBox* pFreq;
    QDoubleSpinBox* pToFreq;
    QLineEdit* pDigits;
    QDoubleSpinBox* pLevel;
    QLineEdit* pLength;
    QComboBox* pRate;
    QComboBox* pChans;
    QRadioButton* pNew;
    QRadioButton* pInsert;
    LToneSettings settings;
    bool bInsert = false;
};
