// The settings of headerless files (".vox", ".raw"): the encoding, the sample rate and, for
// ".raw", the channel count. Shown when such a file is opened or saved; OK stores all three.
#pragma once

#include <QDialog>

#include "formats/LVoxRawSettings.h"

class QComboBox;
class QSpinBox;

class LVoxRawDlg : public QDialog
{
    Q_OBJECT
public:
    static constexpr const char* kSampleRateMessage =
        "Sample rates must be between 1000 and 196000 samples per second.";

    // bChannels: whether the channel count is offered (not for ".vox", always one channel).
    // szPath: the file asked about, named in the dialog; empty for none.
    LVoxRawDlg(QWidget* pParent, const LVoxRawSettings& settings, bool bChannels, const std::string& szPath = "");
    const LVoxRawSettings& GetSettings() const { return settings; }

    // The dialogs of Save As and Open, for the format named szFormatName ("VOX" or "RAW").
    static bool AskSave(QWidget* pParent, const std::string& szFormatName, LAudioEncoding& encoding);
    static bool AskOpen(QWidget* pParent, const std::string& szFormatName, const std::string& szPath = "");

public slots:
    // Keeps the choice only when the rate is one a file can have.
    void accept() override;

private:
    QComboBox* pFormat;
    QComboBox* pRate;
    QSpinBox* pChannels;
    LVoxRawSettings settings;
};
