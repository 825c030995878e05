// The Tools menu: the frequency analysis window, the tone generator and text to speech. The
// dialogs open from the event loop, never from inside the menu's signal, since their own loops
// may outlive the sender.
#include <QApplication>
#include <QTemporaryDir>
#include <QTimer>

#include "work/LCutListAudioLoadSource.h"
#include "core/LEdFile.h"
#include "core/LPRSourceToSink.h"
#include "core/LTrace.h"
#include "dsp/LSRCTone.h"
#include "formats/LAudioFile.h"
#include "platform/engine/LTextToSpeech.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LTransport.h"
#include "ui/LUiPrompts.h"
#include "ui/MainDialog.h"
#include "ui/tools/LSpectrumWindow.h"
#include "ui/tools/LTextToSpeechDlg.h"
#include "ui/tools/LToneGeneratorDlg.h"

bool MainDialog::IsToolCommandEnabled(int nId) const
{
    switch (nId) {
    case CmFrequencyAnalysisId:
        return true;
    case CmToneGeneratorId:
    case CmTextToSpeechId:
        return !pTransport->IsRecording();
    default:
        return false;
    }
}

bool MainDialog::CmTools(int nId)
{
    switch (nId) {
    case CmFrequencyAnalysisId:
        ShowSpectrumWindow();
        return true;
    case CmToneGeneratorId:
        QTimer::singleShot(0, this, [this] { CmToneGenerator(); });
        return true;
    case CmTextToSpeechId:
        QTimer::singleShot(0, this, [this] { CmTextToSpeech(); });
        return true;
    default:
        return false;
    }
}

void MainDialog::ShowSpectrumWindow()
{
    auto* pWindow = findChild<LSpectrumWindow*>();
    if (!pWindow)
        pWindow = new LSpectrumWindow(*this);
    pWindow->show();
    pWindow->raise();
    pWindow->activateWindow();
    pWindow->Follow();
}

void MainDialog::CmToneGenerator()
{
    LToneGeneratorDlg dlg(this, GetCurrentFileWindow() != nullptr);
    if (dlg.exec() != QDialog::Accepted)
        return;
    LSoundSourcePtr pTone(new LSRCTone(dlg.GetSettings()));
    PlaceGeneratedAudio(pTone.Get(), dlg.IsInsert(), "Tone Generator");
}

void MainDialog::CmTextToSpeech()
{
    LTextToSpeechDlg dlg(this, GetCurrentFileWindow() != nullptr);
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
        LUiPrompts::Get().Inform(this, "Sonitra", QString::fromStdString(szError.empty() ? "No temporary folder." : szError),
                                 LUiPrompts::IconError);
        return;
    }
    LSoundSourcePtr pSpeech = LAudioFile::OpenSource(szWav, &szError);
    if (pSpeech->IsError()) {
        LUiPrompts::Get().Inform(this, "Sonitra", QString::fromStdString("The speech could not be read: " + szError),
                                 LUiPrompts::IconError);
        return;
    }
    PlaceGeneratedAudio(pSpeech.Get(), dlg.IsInsert(), "Text To Speech");
}

bool MainDialog::PlaceGeneratedAudio(LSoundSourceBase* pSource, bool bInsert, const std::string& szLabel)
{
    LSoundSourcePtr pHold(pSource);
    LEdFileWindow* pWindow = bInsert ? GetCurrentFileWindow() : nullptr;
    if (pWindow) {
        const LCutListAudio& doc = pWindow->GetFile().GetDocument();
        LSoundSourcePtr pConformed(pSource);
        if (pSource->GetSampleRate() != doc.GetSampleRate() || pSource->GetChannels() != doc.GetChannels())
            pConformed = LPRSourceToSink::Adapt(pSource, doc.GetSampleRate(), doc.GetChannels());
        LCutListAudioPtr pNew(new LCutListAudio(doc.GetSampleRate(), doc.GetChannels()));
        LCutListAudioLoadSource load(szLabel, pNew.Get(), pConformed.Get());
        if (load.Run() != LProgressDialog::ResultDone)
            return false;
        InsertDocument(*pNew, pWindow->GetFile().GetCursor(), szLabel);
        return true;
    }
    auto pFile = std::make_unique<LEdFile>();
    pFile->GetDocument().SetFormat(pSource->GetSampleRate(), pSource->GetChannels());
    LCutListAudioLoadSource load(szLabel, &pFile->GetDocument(), pSource);
    if (load.Run() != LProgressDialog::ResultDone) {
        LTRACE("MainDialog::PlaceGeneratedAudio %s not made", szLabel.c_str());
        return false;
    }
    AddFileToList(std::move(pFile), std::string(), NextUntitledName());
    return true;
}
