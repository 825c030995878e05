// Every question the editor asks the user goes through here: message boxes and file dialogs.
// The program uses the Qt dialogs; tests install a scripted replacement that answers them.
#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <string>

class QWidget;
struct LAudioEncoding;

class LUiPrompts
{
public:
    enum Answer
    {
        AnswerYes,
        AnswerNo,
        AnswerCancel,
    };
    enum Icon
    {
        IconInformation,
        IconWarning,
        IconError,
    };

    virtual ~LUiPrompts() = default;

    // A question with Yes and No buttons, plus Cancel when bCancel.
    virtual Answer Ask(QWidget* pParent, const QString& szCaption, const QString& szText, bool bCancel) = 0;
    virtual void Inform(QWidget* pParent, const QString& szCaption, const QString& szText, Icon icon) = 0;
    // Empty list when the user cancels.
    virtual QStringList GetOpenFileNames(QWidget* pParent, const QString& szTitle, const QString& szFolder,
                                         const QString& szFilter) = 0;
    // Empty when the user cancels.
    virtual QString GetSaveFileName(QWidget* pParent, const QString& szTitle, const QString& szFolder,
                                    const QString& szFilter) = 0;

    // A line of text from the user, starting from szText; false when cancelled (scripted
    // prompts cancel unless they say otherwise).
    virtual bool AskText(QWidget* pParent, const QString& szCaption, const QString& szLabel, QString& szText)
    {
        return false;
    }
    // A number from the user; false when cancelled.
    virtual bool AskNumber(QWidget* pParent, const QString& szCaption, const QString& szLabel, double& fValue,
                           double fMin, double fMax, int nDecimals) = 0;
    // The sample rate and channel count of a new file (the new-file dialog); false when cancelled.
    virtual bool AskNewFormat(QWidget* pParent, int32_t& nSampleRate, int& nChans) = 0;
    // How a file of the named format is to be written (its own settings dialog, where it has
    // one); false when cancelled. Scripted prompts keep the encoding as it is.
    virtual bool AskSaveOptions(QWidget* pParent, const std::string& szFormatName, int32_t nSampleRate,
                                uint8_t nChans, LAudioEncoding& encoding)
    {
        return true;
    }

    // How the file at szPath, of the named format, is to be read, for formats that ask
    // (headerless files); false when cancelled. Scripted prompts read with the stored settings.
    virtual bool AskOpenOptions(QWidget* pParent, const std::string& szFormatName, const std::string& szPath)
    {
        return true;
    }

    static LUiPrompts& Get();
    // Not owned; null restores the Qt dialogs.
    static void Set(LUiPrompts* pPrompts);
};

class LQtUiPrompts : public LUiPrompts
{
public:
    Answer Ask(QWidget* pParent, const QString& szCaption, const QString& szText, bool bCancel) override;
    void Inform(QWidget* pParent, const QString& szCaption, const QString& szText, Icon icon) override;
    QStringList GetOpenFileNames(QWidget* pParent, const QString& szTitle, const QString& szFolder,
                                 const QString& szFilter) override;
    QString GetSaveFileName(QWidget* pParent, const QString& szTitle, const QString& szFolder,
                            const QString& szFilter) override;
    bool AskText(QWidget* pParent, const QString& szCaption, const QString& szLabel, QString& szText) override;
    bool AskNumber(QWidget* pParent, const QString& szCaption, const QString& szLabel, double& fValue, double fMin,
                   double fMax, int nDecimals) override;
    bool AskNewFormat(QWidget* pParent, int32_t& nSampleRate, int& nChans) override;
    bool AskSaveOptions(QWidget* pParent, const std::string& szFormatName, int32_t nSampleRate, uint8_t nChans,
                        LAudioEncoding& encoding) override;
    bool AskOpenOptions(QWidget* pParent, const std::string& szFormatName, const std::string& szPath) override;
};
