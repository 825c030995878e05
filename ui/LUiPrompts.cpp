#include "ui/LUiPrompts.h"

#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>

#include "ui/LSaveFormatOptions.h"
#include "ui/NewWavDlg.h"

namespace {
LUiPrompts* g_pPrompts = nullptr;
}

LUiPrompts& LUiPrompts::Get()
{
    static LQtUiPrompts qt;
    return g_pPrompts ? *g_pPrompts : qt;
}

void LUiPrompts::Set(LUiPrompts* pPrompts)
{
    g_pPrompts = pPrompts;
}

LUiPrompts::Answer LQtUiPrompts::Ask(QWidget* pParent, const QString& szCaption, const QString& szText, bool bCancel)
{
    QMessageBox::StandardButtons buttons = QMessageBox::Yes | QMessageBox::No;
    if (bCancel)
        buttons |= QMessageBox::Cancel;
    auto r = QMessageBox::question(pParent, szCaption, szText, buttons, QMessageBox::Yes);
    if (r == QMessageBox::Yes)
        return AnswerYes;
    if (r == QMessageBox::No)
        return AnswerNo;
    return AnswerCancel;
}

void LQtUiPrompts::Inform(QWidget* pParent, const QString& szCaption, const QString& szText, Icon icon)
{
    // Messages break lines with carriage returns, which only some platforms' boxes honour.
    QString szShown = szText;
    szShown.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    if (icon == IconInformation)
        QMessageBox::information(pParent, szCaption, szShown);
    else if (icon == IconWarning)
        QMessageBox::warning(pParent, szCaption, szShown);
    else
        QMessageBox::critical(pParent, szCaption, szShown);
}

QStringList LQtUiPrompts::GetOpenFileNames(QWidget* pParent, const QString& szTitle, const QString& szFolder,
                                           const QString& szFilter)
{
    return QFileDialog::getOpenFileNames(pParent, szTitle, szFolder, szFilter);
}

QString LQtUiPrompts::GetSaveFileName(QWidget* pParent, const QString& szTitle, const QString& szFolder,
                                      const QString& szFilter)
{
    // The replace question is asked by the editor itself, with its own words.
    return QFileDialog::getSaveFileName(pParent, szTitle, szFolder, szFilter, nullptr,
                                        QFileDialog::DontConfirmOverwrite);
}

bool LQtUiPrompts::AskText(QWidget* pParent, const QString& szCaption, const QString& szLabel, QString& szText)
{
    bool bOk = false;
    const QString s = QInputDialog::getText(pParent, szCaption, szLabel, QLineEdit::Normal, szText, &bOk);
    if (bOk)
        szText = s;
    return bOk;
}

bool LQtUiPrompts::AskNumber(QWidget* pParent, const QString& szCaption, const QString& szLabel, double& fValue,
                             double fMin, double fMax, int nDecimals)
{
    bool bOk = false;
    double f = QInputDialog::getDouble(pParent, szCaption, szLabel, fValue, fMin, fMax, nDecimals, &bOk);
    if (bOk)
        fValue = f;
    return bOk;
}

bool LQtUiPrompts::AskNewFormat(QWidget* pParent, int32_t& nSampleRate, int& nChans)
{
    NewWavDlg dlg(pParent, nSampleRate, nChans);
    if (dlg.exec() != QDialog::Accepted)
        return false;
    nSampleRate = dlg.GetSampleRate();
    nChans = dlg.GetChannels();
    return true;
}

bool LQtUiPrompts::AskSaveOptions(QWidget* pParent, const std::string& szFormatName, int32_t nSampleRate,
                                  uint8_t nChans, LAudioEncoding& encoding)
{
    return LSaveFormatOptions::Ask(pParent, szFormatName, nSampleRate, nChans, encoding);
}

bool LQtUiPrompts::AskOpenOptions(QWidget* pParent, const std::string& szFormatName, const std::string& szPath)
{
    return LSaveFormatOptions::AskOpen(pParent, szFormatName, szPath);
}
