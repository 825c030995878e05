// The text-to-speech dialog: the text (typed or pasted), a voice and a speed in words per
// minute, and whether the speech becomes a new file or goes in at the cursor.
#pragma once

#include <QDialog>

#include <string>

class QComboBox;
class QPlainTextEdit;
class QRadioButton;
class QSpinBox;

class LTextToSpeechDlg : public QDialog
{
    Q_OBJECT
public:
    LTextToSpeechDlg(QWidget* pParent, bool bCanInsert);

    std::string GetText() const;
    std::string GetVoice() const;
    int GetWordsPerMinute() const;
    bool IsInsert() const;

    // Takes the choices when they make sense; otherwise says why and stays open.
    void accept() override;

private:
    QPlainTextEdit* pText;
    QComboBox* pVoice;
    QSpinBox* pSpeed;
    QRadioButton* pNew;
    QRadioButton* pInsert;
};
