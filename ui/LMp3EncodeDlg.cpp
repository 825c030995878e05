#include "ui/LMp3EncodeDlg.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QRadioButton>

#include <algorithm>

#include "ui/LSaveFormatOptions.h"

namespace {

const int kRates[] = {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 192, 224, 256, 320};

QComboBox* RateBox(QWidget* pParent, const char* szName, int nCurrent)
{
    auto* p = new QComboBox(pParent);
    p->setObjectName(szName);
    for (int n : kRates)
        p->addItem(QString::number(n), n);
    const int i = p->findData(nCurrent);
    p->setCurrentIndex(i >= 0 ? i : p->findData(128));
    return p;
}

bool AskMp3Settings(QWidget* pParent, int32_t nSampleRate, uint8_t nChans, LAudioEncoding& encoding)
{
    LMp3EncodeDlg dlg(pParent, LMP3EncoderSettings::FromRecord(encoding.vRecord));
    if (dlg.exec() != QDialog::Accepted)
        return false;
    const LMP3EncoderSettings settings = dlg.GetSettings();
    settings.Save();
    encoding = LAudioEncoding{"mp3", settings.ToRecord(), {}};
    return true;
}

LSaveFormatOptions mp3Options("MP3", &AskMp3Settings);

} // namespace

LMp3EncodeDlg::LMp3EncodeDlg(QWidget* pParent, const LMP3EncoderSettings& s) : QDialog(pParent)
{
    setWindowTitle(tr("MP3 Encoder Settings"));
    setObjectName("LMp3EncodeDlg");
    pConstant = new QRadioButton(tr("Constant bit rate"), this);
    pVariable = new QRadioButton(tr("Variable bit rate"), this);
    (s.bConstantBitRate ? pConstant : pVariable)->setChecked(true);
    pCbrRate = RateBox(this, "cbrRate", s.nCBRBitRate);
    pHighQuality = new QCheckBox(tr("High quality"), this);
    pHighQuality->setChecked(s.bHighQuality);
    pVbrMin = RateBox(this, "vbrMin", s.nVBRMinBitRate);
    pVbrMax = RateBox(this, "vbrMax", s.nVBRMaxBitRate);
    pVbrQuality = new QComboBox(this);
    pVbrQuality->setObjectName("vbrQuality");
    for (int q = 0; q <= 9; ++q)
        pVbrQuality->addItem(q == 0 ? QString("0 (Highest)") : q == 9 ? QString("9 (Lowest)") : QString::number(q));
    pVbrQuality->setCurrentIndex(std::clamp(s.nVBRQuality, 0, 9));
    pProtection = new QCheckBox(tr("Error protection"), this);
    pProtection->setChecked(s.bErrorProtection);
    pChannelMode = new QComboBox(this);
    pChannelMode->setObjectName("channelMode");
    pChannelMode->addItems({tr("Stereo"), tr("Joint stereo"), tr("Forced stereo"), tr("Mono")});
    pChannelMode->setCurrentIndex(s.nChannelMode >= 0 && s.nChannelMode <= 3 ? s.nChannelMode : 1);

    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(pButtons, &QDialogButtonBox::accepted, this, &LMp3EncodeDlg::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &LMp3EncodeDlg::reject);
    connect(pConstant, &QRadioButton::toggled, this, &LMp3EncodeDlg::CmModeChanged);

    auto* pForm = new QFormLayout(this);
    pForm->addRow(pConstant);
    pForm->addRow(tr("Bit rate (kbit/s):"), pCbrRate);
    pForm->addRow(QString(), pHighQuality);
    pForm->addRow(pVariable);
    pForm->addRow(tr("Lowest bit rate (kbit/s):"), pVbrMin);
    pForm->addRow(tr("Highest bit rate (kbit/s):"), pVbrMax);
    pForm->addRow(tr("Quality:"), pVbrQuality);
    pForm->addRow(tr("Channel mode:"), pChannelMode);
    pForm->addRow(QString(), pProtection);
    pForm->addRow(pButtons);
    CmModeChanged();
}

void LMp3EncodeDlg::CmModeChanged()
{
    const bool bConstant = pConstant->isChecked();
    pCbrRate->setEnabled(bConstant);
    pHighQuality->setEnabled(bConstant);
    pVbrMin->setEnabled(!bConstant);
    pVbrMax->setEnabled(!bConstant);
    pVbrQuality->setEnabled(!bConstant);
}

LMP3EncoderSettings LMp3EncodeDlg::GetSettings() const
{
    LMP3EncoderSettings s;
    s.bConstantBitRate = pConstant->isChecked();
    s.nCBRBitRate = pCbrRate->currentData().toInt();
    s.bHighQuality = pHighQuality->isChecked();
    s.nVBRMinBitRate = pVbrMin->currentData().toInt();
    s.nVBRMaxBitRate = pVbrMax->currentData().toInt();
    s.nVBRQuality = pVbrQuality->currentIndex();
    s.bErrorProtection = pProtection->isChecked();
    s.nChannelMode = pChannelMode->currentIndex();
    s.ApplyRules();
    return s;
}
