// The Edit menu: undo, the clipboard, selection, trims, silence, insertion, repeat, copy to new.
// Every change of the audio is bracketed by StartModifyCurrentFile and EndModifyCurrentFile.
#include <QDir>

#include <cmath>

#include "work/LCutListAudioLoadSource.h"
#include "core/LEdCommands.h"
#include "core/LEdFile.h"
#include "core/LFile.h"
#include "core/LPRSourceToSink.h"
#include "core/LSettings.h"
#include "core/LTrace.h"
#include "formats/LAudioFile.h"
#include "ui/LAudioFilters.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LTransport.h"
#include "ui/LUiPrompts.h"
#include "ui/MainDialog.h"

namespace {
enum Where
{
    AtBegin,
    AtCurrent,
    AtEnd,
};
} // namespace

bool MainDialog::CmEdit(int nId)
{
    switch (nId) {
    case CmUndoId: CmUndo(); return true;
    case CmRedoId: CmRedo(); return true;
    case CmCutId: CmCut(); return true;
    case CmCopyId: CmCopy(); return true;
    case CmPasteId: CmPaste(); return true;
    case CmPasteFromClipboardId: CmPasteFromClipboard(); return true;
    case CmDeleteId: CmDelete(); return true;
    case CmSelectAllId: CmSelectAll(); return true;
    case CmSelectToStartId: CmSelectToStart(); return true;
    case CmSelectToEndId: CmSelectToEnd(); return true;
    case CmTrimId: CmTrim(); return true;
    case CmTrimStartId: CmTrimStart(); return true;
    case CmTrimEndId: CmTrimEnd(); return true;
    case CmSilenceId: CmSilence(); return true;
    case CmInsertSilenceBeginId: CmInsertSilence(AtBegin); return true;
    case CmInsertSilenceCurrentId: CmInsertSilence(AtCurrent); return true;
    case CmInsertSilenceEndId: CmInsertSilence(AtEnd); return true;
    case CmInsertFileBeginId: CmInsertFile(AtBegin); return true;
    case CmInsertFileCurrentId: CmInsertFile(AtCurrent); return true;
    case CmInsertFileEndId: CmInsertFile(AtEnd); return true;
    case CmRepeatLoopId: CmRepeatLoop(); return true;
    case CmCopyToNewId: CmCopyToNew(); return true;
    default: return false;
    }
}

void MainDialog::CmUndo()
{
    StepHistory(false);
}

void MainDialog::CmRedo()
{
    StepHistory(true);
}

void MainDialog::StepHistory(bool bRedo)
{
    LEdFileWindow* pWindow = GetCurrentFileWindow();
    if (!pWindow)
        return;
    if (pTransport->GetActiveWindow() == pWindow)
        pTransport->Stop();
    LEdFile& file = pWindow->GetFile();
    if (!(bRedo ? file.Redo() : file.Undo()))
        return;
    pWindow->setWindowTitle(pWindow->Caption());
    pWindow->Refresh();
    UpdateUndoMenuItem();
    UpdateMenuStates();
    UpdateTimeFields();
    NoteChange();
}

void MainDialog::CmCut()
{
    int32_t sStart, sEnd;
    if (!GetSelection(sStart, sEnd))
        return;
    LEdFile& file = *GetCurrentFile();
    StartModifyCurrentFile("Cut");
    const LEdRange sel = LEdCommands::Cut(file.GetDocument(), sStart, sEnd, *pClipboard);
    file.SetSelection(sel.sStart, sel.sEnd);
    EndModifyCurrentFile(sStart, file.GetDocument().GetSampleRate());
    RenderToWindowClipboard();
    UpdateMenuStates();
}

void MainDialog::CmCopy()
{
    int32_t sStart, sEnd;
    if (!GetSelection(sStart, sEnd))
        return;
    LEdCommands::Copy(GetCurrentFile()->GetDocument(), sStart, sEnd, *pClipboard);
    RenderToWindowClipboard();
    UpdateMenuStates();
}

void MainDialog::CmPaste()
{
    LEdFile* pFile = GetCurrentFile();
    if (!pFile || pClipboard->GetLength() <= 0)
        return;
    const LCutListAudio& doc = pFile->GetDocument();
    LCutListAudioPtr pOther(pClipboard.Get());
    if (pClipboard->GetSampleRate() != doc.GetSampleRate() || pClipboard->GetChannels() != doc.GetChannels()) {
        pOther = ConformDocument(*pClipboard, doc.GetSampleRate(), doc.GetChannels());
        if (!pOther)
            return;
    }
    PasteDocument(*pOther);
}

void MainDialog::PasteDocument(const LCutListAudio& other)
{
    LEdFile* pFile = GetCurrentFile();
    if (!pFile)
        return;
    int32_t sStart, sEnd;
    if (!GetSelection(sStart, sEnd)) {
        InsertDocument(other, pFile->GetCursor(), "Paste");
        return;
    }
    // A paste over a selection replaces it.
    StartModifyCurrentFile("Paste");
    const LEdRange sel = LEdCommands::Paste(pFile->GetDocument(), sStart, sEnd, other);
    pFile->SetSelection(sel.sStart, sel.sEnd);
    EndModifyCurrentFile(sStart, pFile->GetDocument().GetSampleRate());
}

void MainDialog::InsertDocument(const LCutListAudio& other, int32_t sAt, const std::string& szLabel)
{
    LEdFile* pFile = GetCurrentFile();
    if (!pFile)
        return;
    StartModifyCurrentFile(szLabel);
    const LEdRange sel = LEdCommands::Paste(pFile->GetDocument(), sAt, sAt, other);
    pFile->SetSelection(sel.sStart, sel.sEnd);
    EndModifyCurrentFile(sAt, pFile->GetDocument().GetSampleRate());
}

void MainDialog::CmDelete()
{
    int32_t sStart, sEnd;
    if (!GetSelection(sStart, sEnd))
        return;
    LEdFile& file = *GetCurrentFile();
    StartModifyCurrentFile("Delete");
    const LEdRange sel = LEdCommands::Delete(file.GetDocument(), sStart, sEnd);
    file.SetSelection(sel.sStart, sel.sEnd);
    EndModifyCurrentFile(sStart, file.GetDocument().GetSampleRate());
}

void MainDialog::CmSelectAll()
{
    if (LEdFileWindow* pWindow = GetCurrentFileWindow())
        pWindow->SetSelection(0, pWindow->GetFile().GetDocument().GetLength());
    OnFileSelectionChanged();
}

void MainDialog::CmSelectToStart()
{
    if (LEdFileWindow* pWindow = GetCurrentFileWindow())
        pWindow->SetSelection(0, pWindow->GetFile().GetCursor());
    OnFileSelectionChanged();
}

void MainDialog::CmSelectToEnd()
{
    if (LEdFileWindow* pWindow = GetCurrentFileWindow())
        pWindow->SetSelection(pWindow->GetFile().GetCursor(), pWindow->GetFile().GetDocument().GetLength());
    OnFileSelectionChanged();
}

void MainDialog::CmTrim()
{
    int32_t sStart, sEnd;
    if (!GetSelection(sStart, sEnd))
        return;
    LEdFile& file = *GetCurrentFile();
    StartModifyCurrentFile("Trim");
    const LEdRange sel = LEdCommands::Trim(file.GetDocument(), sStart, sEnd);
    file.SetSelection(sel.sStart, sel.sEnd);
    file.SetView(0, file.GetDocument().GetLength());
    EndModifyCurrentFile(0, 0);
}

void MainDialog::CmTrimStart()
{
    LEdFile* pFile = GetCurrentFile();
    if (!pFile)
        return;
    const int32_t sAt = pFile->GetCursor();
    StartModifyCurrentFile("Trim Start");
    const LEdRange sel = LEdCommands::TrimStart(pFile->GetDocument(), sAt);
    pFile->SetSelection(sel.sStart, sel.sEnd);
    EndModifyCurrentFile(0, 0);
}

void MainDialog::CmTrimEnd()
{
    LEdFile* pFile = GetCurrentFile();
    if (!pFile)
        return;
    const int32_t sAt = pFile->GetCursor();
    StartModifyCurrentFile("Trim End");
    const LEdRange sel = LEdCommands::TrimEnd(pFile->GetDocument(), sAt);
    pFile->SetSelection(sel.sStart, sel.sEnd);
    EndModifyCurrentFile(0, 0);
}

void MainDialog::CmSilence()
{
    int32_t sStart, sEnd;
    if (!GetSelection(sStart, sEnd))
        return;
    LEdFile& file = *GetCurrentFile();
    StartModifyCurrentFile("Edit Silence");
    LEdCommands::Silence(file.GetDocument(), sStart, sEnd);
    EndModifyCurrentFile(sStart, file.GetDocument().GetSampleRate());
}

void MainDialog::CmInsertSilence(int nWhere)
{
    LEdFile* pFile = GetCurrentFile();
    if (!pFile)
        return;
    double fSeconds = LSettings::GetInt("StoredValues", "SilenceTimes", 0) / 1000.0;
    if (!LUiPrompts::Get().AskNumber(this, "Insert Silence", "Seconds of silence:", fSeconds, 0.001, 3600.0, 3))
        return;
    const int32_t nMs = static_cast<int32_t>(std::lround(fSeconds * 1000.0));
    LSettings::SetInt("StoredValues", "SilenceTimes", nMs);
    const int32_t nRate = pFile->GetDocument().GetSampleRate();
    const char* const kLabels[] = {"Insert Silence At The Start", "Insert Silence At Current Position",
                                   "Insert Silence At The End"};
    const int32_t sAt = nWhere == AtBegin ? 0 : nWhere == AtCurrent ? pFile->GetCursor() : pFile->GetDocument().GetLength();
    StartModifyCurrentFile(kLabels[nWhere]);
    const LEdRange sel = LEdCommands::InsertSilence(pFile->GetDocument(), sAt, nMs);
    pFile->SetSelection(sel.sStart, sel.sEnd);
    EndModifyCurrentFile(sAt, nRate);
}

void MainDialog::CmInsertFile(int nWhere)
{
    LEdFile* pFile = GetCurrentFile();
    if (!pFile)
        return;
    const QString szFolder =
        QString::fromStdString(LSettings::GetString("Folders", "OpenFileDir", QDir::homePath().toStdString()));
    const QStringList files = LUiPrompts::Get().GetOpenFileNames(this, "Insert File", szFolder,
                                                                 LAudioFilters::Open());
    if (files.isEmpty())
        return;
    const LCutListAudio& doc = pFile->GetDocument();
    // Read before the edit begins, so that a file that cannot be read leaves no undo step.
    LCutListAudioPtr pOther = ReadFileConformed(files.front().toStdString(), doc.GetSampleRate(), doc.GetChannels());
    if (!pOther)
        return;
    const char* const kLabels[] = {"Insert File At Beginning", "Insert File At Current Position",
                                   "Insert File At The End"};
    const int32_t sAt = nWhere == AtBegin ? 0 : nWhere == AtCurrent ? pFile->GetCursor() : doc.GetLength();
    InsertDocument(*pOther, sAt, kLabels[nWhere]);
}

void MainDialog::CmRepeatLoop()
{
    int32_t sStart, sEnd;
    if (!GetSelection(sStart, sEnd))
        return;
    double fTimes = LSettings::GetInt("StoredValues", "RepeatNumTimes", 1);
    if (!LUiPrompts::Get().AskNumber(this, "Repeat Loop", "Number of repeats:", fTimes, 1, 1000, 0))
        return;
    LSettings::SetInt("StoredValues", "RepeatNumTimes", static_cast<int32_t>(fTimes));
    LEdFile& file = *GetCurrentFile();
    StartModifyCurrentFile("Repeat Loop");
    LEdCommands::Repeat(file.GetDocument(), sStart, sEnd, static_cast<int32_t>(fTimes));
    EndModifyCurrentFile(sStart, file.GetDocument().GetSampleRate());
}

void MainDialog::CmCopyToNew()
{
    int32_t sStart, sEnd;
    if (!GetSelection(sStart, sEnd))
        return;
    auto pNew = std::make_unique<LEdFile>();
    LEdCommands::Copy(GetCurrentFile()->GetDocument(), sStart, sEnd, pNew->GetDocument());
    pNew->SetModified(true);
    pNew->SetView(0, pNew->GetDocument().GetLength());
    AddFileToList(std::move(pNew), std::string(), NextUntitledName());
}

LCutListAudioPtr MainDialog::ReadFileConformed(const std::string& szPath, int32_t nRate, uint8_t nChans)
{
    std::string szError;
    LSoundSourcePtr pSource = LAudioFile::OpenSource(szPath, &szError);
    if (pSource->IsError()) {
        LUiPrompts::Get().Inform(this, "File Error",
                                 QString("Unable to open \"%1\":\n%2").arg(QString::fromStdString(szPath),
                                                                           QString::fromStdString(szError)),
                                 LUiPrompts::IconError);
        return LCutListAudioPtr();
    }
    if (pSource->GetSampleRate() != nRate || pSource->GetChannels() != nChans)
        pSource = LPRSourceToSink::Adapt(pSource.Get(), nRate, nChans);
    LCutListAudioPtr pDoc(new LCutListAudio(nRate, nChans));
    LCutListAudioLoadSource load("Loading file " + LFile::FileNameOf(szPath), pDoc.Get(), pSource.Get());
    if (load.Run() != LProgressDialog::ResultDone)
        return LCutListAudioPtr();
    return pDoc;
}

LCutListAudioPtr MainDialog::ConformDocument(const LCutListAudio& other, int32_t nRate, uint8_t nChans)
{
    LSoundSourcePtr pSource = LPRSourceToSink::Adapt(other.OpenSource().Get(), nRate, nChans);
    LCutListAudioPtr pDoc(new LCutListAudio(nRate, nChans));
    LCutListAudioLoadSource load("Converting", pDoc.Get(), pSource.Get());
    if (load.Run() != LProgressDialog::ResultDone)
        return LCutListAudioPtr();
    return pDoc;
}
