#include "ui/LToolsCommands.h"

#include <QApplication>
#include <QTemporaryDir>
#include <QTimer>

#include "core/LEdFile.h"
#include "core/LPRSourceToSink.h"
#include "core/LTrace.h"
#include "dsp/LSRCTone.h"
#include "formats/LAudioFile.h"
#include "lists/EdBatchConverter.h"
#include "platform/engine/LTextToSpeech.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LEditCommands.h"
#include "ui/LTransport.h"
#include "ui/LUiPrompts.h"
#include "ui/batch/LSelectBatchCommandDlg.h"
#include "ui/batch/LSelectBatchFileDlg.h"
#include "ui/batch/LSelectSaveFormatDlg.h"
#include "ui/tools/LTextToSpeechDlg.h"
#include "ui/tools/LToneGeneratorDlg.h"
#include "work/LCutListAudioLoadSource.h"

namespace {
QString Summary(const EdBatchConverter& proc)
{
    const auto& vResults = proc.GetResults();
    QString sz = QObject::tr("%1 of %2 files converted.").arg(vResults.size() - proc.FailedCount()).arg(vResults.size());
    if (proc.FailedCount()) {
        sz += QObject::tr("\n\nThese files failed:");
        for (const LBatchResult& r : vResults)
            if (!r.bOk)
                sz += QString("\n%1: %2").arg(QString::fromStdString(r.szInput), QString::fromStdString(r.szError));
    }
    return sz;
}
} // namespace

bool LToolsCommands::Command(int nId)
{
    switch (nId) {
    case CmToneGeneratorId:
        QTimer::singleShot(0, frame.GetWidget(), [this] { CmToneGenerator(); });
        return true;
    case CmTextToSpeechId:
        QTimer::singleShot(0, frame.GetWidget(), [this] { CmTextToSpeech(); });
        return true;
    case CmBatchConverterId:
        CmBatchConverter();
        return true;
    default:
        return false;
    }
}

void LToolsCommands::CmToneGenerator()
{
    LToneGeneratorDlg dlg(frame.GetWidget(), frame.GetCurrentFileWindow() != nullptr);
    if (dlg.exec() != QDialog::Accepted)
        return;
    LSoundSourcePtr pTone(new LSRCTone(dlg.GetSettings()));
    PlaceGeneratedAudio(pTone.Get(), dlg.IsInsert(), "Tone Generator");
}

void LToolsCommands::CmTextToSpeech()
{
    LTextToSpeechDlg dlg(frame.GetWidget(), frame.GetCurrentFileWindow() != nullptr);
    if (dlg.exec() != QDialog::Accepted)
        return;
    QTemporaryDir dir;
    const std::string szWav = dir.filePath("speech.wav").toStdString();
    std::string szError;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const bool bSpoke = dir.isValid() && LTextToSpeech::Speak(dlg.GetText(), dlg.GetVoice(), dlg.GetWordsPerMinute(),
                                                              szWav, szError);
    QApplication::restoreOverrideCursor();
    if (!bSpoke) {
        LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra", QString::fromStdString(szError.empty() ? "No temporary folder." : szError),
                                 LUiPrompts::IconError);
        return;
    }
    LSoundSourcePtr pSpeech = LAudioFile::OpenSource(szWav, &szError);
    if (pSpeech->IsError()) {
        LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra", QString::fromStdString("The speech could not be read: " + szError),
                                 LUiPrompts::IconError);
        return;
    }
    PlaceGeneratedAudio(pSpeech.Get(), dlg.IsInsert(), "Text To Speech");
}

bool LToolsCommands::PlaceGeneratedAudio(LSoundSourceBase* pSource, bool bInsert, const std::string& szLabel)
{
    LSoundSourcePtr pHold(pSource);
    LEdFileWindow* pWindow = bInsert ? frame.GetCurrentFileWindow() : nullptr;
    if (pWindow) {
        const LCutListAudio& doc = pWindow->GetFile().GetDocument();
        LSoundSourcePtr pConformed(pSource);
        if (pSource->GetSampleRate() != doc.GetSampleRate() || pSource->GetChannels() != doc.GetChannels())
            pConformed = LPRSourceToSink::Adapt(pSource, doc.GetSampleRate(), doc.GetChannels());
        LCutListAudioPtr pNew(new LCutListAudio(doc.GetSampleRate(), doc.GetChannels()));
        LCutListAudioLoadSource load(szLabel, pNew.Get(), pConformed.Get());
        if (load.Run() != LProgressDialog::ResultDone)
            return false;
        edit.InsertDocument(*pNew, pWindow->GetFile().GetCursor(), szLabel);
        return true;
    }
    auto pFile = std::make_unique<LEdFile>();
    pFile->GetDocument().SetFormat(pSource->GetSampleRate(), pSource->GetChannels());
    LCutListAudioLoadSource load(szLabel, &pFile->GetDocument(), pSource);
    if (load.Run() != LProgressDialog::ResultDone) {
        LTRACE("LToolsCommands::PlaceGeneratedAudio %s not made", szLabel.c_str());
        return false;
    }
    frame.AddFileToList(std::move(pFile), std::string(), frame.NextUntitledName());
    return true;
}

void LToolsCommands::CmBatchConverter()
{
    LSelectBatchCommandDlg commands(frame.GetWidget());
    if (commands.exec() != QDialog::Accepted)
        return;
    // The current file is offered first, when it has one on disk.
    std::vector<std::string> vFiles;
    if (LEdFileWindow* pWindow = frame.GetCurrentFileWindow(); pWindow && !pWindow->GetPath().empty())
        vFiles.push_back(pWindow->GetPath());
    LSelectBatchFileDlg files(frame.GetWidget(), vFiles);
    if (files.exec() != QDialog::Accepted)
        return;
    LSelectSaveFormatDlg format(frame.GetWidget());
    if (format.exec() != QDialog::Accepted)
        return;
    EdBatchConverter proc(commands.GetItems(), files.GetFiles(), format.GetOutput());
    const int32_t nResult = proc.Run();
    if (nResult == LProgressDialog::ResultCancelled)
        return;
    LUiPrompts::Get().Inform(frame.GetWidget(), "Batch Converter", Summary(proc),
                             proc.FailedCount() ? LUiPrompts::IconWarning : LUiPrompts::IconInformation);
}

