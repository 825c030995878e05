// The new-file dialog: the sample rate (a list of the usual rates, or typed) and mono or stereo.
#pragma once

#include <QDialog>

#include <cstdint>

class QComboBox;
class QRadioButton;

class NewWavDlg : public QDialog
{
    Q_OBJECT
public:
    static constexpr int32_t kMinSampleRate = 6000;
    static constexpr int32_t kMaxSampleRate = 96000;
    static constexpr const char* kSampleRateMessage = "Sample rates must be between 6000 and 96000 samples per second.";

    NewWavDlg(QWidget* pParent, int32_t nSampleRate, int nChans);
    int32_t GetSampleRate() const { return nRate; }
    int GetChannels() const { return nChannels; }

    // A rate is a whole number of hertz from 2000 to 196000.
    static bool ParseSampleRate(const QString& szText, int32_t& nRate);
    // The format of a new file: from the dialog when "PromptSampleAndChannels" is on (default),
    // remembering the choice, otherwise the defaults. False when the user cancels.
    static bool ChooseFormat(QWidget* pParent, int32_t& nSampleRate, int& nChans);

protected:
    void accept() override;

private:
    QComboBox* pRate;
    QRadioButton* pMono;
    QRadioButton* pStereo;
    int32_t nRate;
    int nChannels;
};
