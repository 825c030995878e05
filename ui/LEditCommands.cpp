#include "ui/LEditCommands.h"

#include <QDir>

#include <cmath>

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
#include "ui/LWindowClipboard.h"
#include "work/LCutListAudioLoadSource.h"

namespace {
enum Where
{
    AtBegin,
    AtCurrent,
    AtEnd,
};
} // namespace

bool LEditCommands::Command(int nId)
{
    switch (nId) {
    case CmUndoId: StepHistory(false); return true;
    case CmRedoId: StepHistory(true); return true;
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

void LEditCommands::StepHistory(bool bRedo)
{
    LEdFileWindow* pWindow = frame.GetCurrentFileWindow();
    if (!pWindow)
        return;
    if (frame.GetTransport().GetActiveWindow() == pWindow)
        frame.GetTransport().Stop();
    LEdFile& file = pWindow->GetFile();
    if (!(bRedo ? file.Redo() : file.Undo()))
        return;
    pWindow->setWindowTitle(pWindow->Caption());
    pWindow->Refresh();
    frame.UpdateUndoMenuItem();
    frame.UpdateMenuStates();
    frame.UpdateTimeFields();
    frame.NoteChange();
}

void LEditCommands::CmCut()
{
    int32_t sStart, sEnd;
    if (!frame.GetSelection(sStart, sEnd))
        return;
    LEdFile& file = *frame.GetCurrentFile();
    frame.StartModifyCurrentFile("Cut");
    const LEdRange sel = LEdCommands::Cut(file.GetDocument(), sStart, sEnd, frame.GetClipboardAudio());
    file.SetSelection(sel.sStart, sel.sEnd);
    frame.EndModifyCurrentFile(sStart, file.GetDocument().GetSampleRate());
    LWindowClipboard::RenderTo(frame.GetClipboardAudio());
    frame.UpdateMenuStates();
}

void LEditCommands::CmCopy()
{
    int32_t sStart, sEnd;
    if (!frame.GetSelection(sStart, sEnd))
        return;
    LEdCommands::Copy(frame.GetCurrentFile()->GetDocument(), sStart, sEnd, frame.GetClipboardAudio());
    LWindowClipboard::RenderTo(frame.GetClipboardAudio());
    frame.UpdateMenuStates();
}

void LEditCommands::CmPaste()
{
    LEdFile* pFile = frame.GetCurrentFile();
    if (!pFile || frame.GetClipboardAudio().GetLength() <= 0)
        return;
    const LCutListAudio& doc = pFile->GetDocument();
    LCutListAudioPtr pOther(&frame.GetClipboardAudio());
    if (frame.GetClipboardAudio().GetSampleRate() != doc.GetSampleRate() || frame.GetClipboardAudio().GetChannels() != doc.GetChannels()) {
        pOther = ConformDocument(frame.GetClipboardAudio(), doc.GetSampleRate(), doc.GetChannels());
        if (!pOther)
            return;
    }
    PasteDocument(*pOther);
}

void LEditCommands::PasteDocument(const LCutListAudio& other)
{
    LEdFile* pFile = frame.GetCurrentFile();
    if (!pFile)
        return;
    int32_t sStart, sEnd;
    if (!frame.GetSelection(sStart, sEnd)) {
        InsertDocument(other, pFile->GetCursor(), "Paste");
        return;
    }
    // A paste over a selection replaces it.
    frame.StartModifyCurrentFile("Paste");
    const LEdRange sel = LEdCommands::Paste(pFile->GetDocument(), sStart, sEnd, other);
    pFile->SetSelection(sel.sStart, sel.sEnd);
    frame.EndModifyCurrentFile(sStart, pFile->GetDocument().GetSampleRate());
}

void LEditCommands::InsertDocument(const LCutListAudio& other, int32_t sAt, const std::string& szLabel)
{
    LEdFile* pFile = frame.GetCurrentFile();
    if (!pFile)
        return;
    frame.StartModifyCurrentFile(szLabel);
    const LEdRange sel = LEdCommands::Paste(pFile->GetDocument(), sAt, sAt, other);
    pFile->SetSelection(sel.sStart, sel.sEnd);
    frame.EndModifyCurrentFile(sAt, pFile->GetDocument().GetSampleRate());
}

void LEditCommands::CmPasteFromClipboard()
{
    LEdFile* pFile = frame.GetCurrentFile();
    std::string szPath;
    if (!pFile || !LWindowClipboard::RenderFrom(szPath))
        return;
    const LCutListAudio& doc = pFile->GetDocument();
    LCutListAudioPtr pOther = ReadFileConformed(szPath, doc.GetSampleRate(), doc.GetChannels());
    if (pOther)
        PasteDocument(*pOther);
}

void LEditCommands::CmDelete()
{
    int32_t sStart, sEnd;
    if (!frame.GetSelection(sStart, sEnd))
        return;
    LEdFile& file = *frame.GetCurrentFile();
    frame.StartModifyCurrentFile("Delete");
    const LEdRange sel = LEdCommands::Delete(file.GetDocument(), sStart, sEnd);
    file.SetSelection(sel.sStart, sel.sEnd);
    frame.EndModifyCurrentFile(sStart, file.GetDocument().GetSampleRate());
}

void LEditCommands::CmSelectAll()
{
    if (LEdFileWindow* pWindow = frame.GetCurrentFileWindow())
        pWindow->SetSelection(0, pWindow->GetFile().GetDocument().GetLength());
    frame.OnFileSelectionChanged();
}

void LEditCommands::CmSelectToStart()
{
    if (LEdFileWindow* pWindow = frame.GetCurrentFileWindow())
        pWindow->SetSelection(0, pWindow->GetFile().GetCursor());
    frame.OnFileSelectionChanged();
}

void LEditCommands::CmSelectToEnd()
{
    if (LEdFileWindow* pWindow = frame.GetCurrentFileWindow())
        pWindow->SetSelection(pWindow->GetFile().GetCursor(), pWindow->GetFile().GetDocument().GetLength());
    frame.OnFileSelectionChanged();
}

void LEditCommands::CmTrim()
{
    int32_t sStart, sEnd;
    if (!frame.GetSelection(sStart, sEnd))
        return;
    LEdFile& file = *frame.GetCurrentFile();
    frame.StartModifyCurrentFile("Trim");
    const LEdRange sel = LEdCommands::Trim(file.GetDocument(), sStart, sEnd);
    file.SetSelection(sel.sStart, sel.sEnd);
    file.SetView(0, file.GetDocument().GetLength());
    frame.EndModifyCurrentFile(0, 0);
}

void LEditCommands::CmTrimStart()
{
    LEdFile* pFile = frame.GetCurrentFile();
    if (!pFile)
        return;
    const int32_t sAt = pFile->GetCursor();
    frame.StartModifyCurrentFile("Trim Start");
    const LEdRange sel = LEdCommands::TrimStart(pFile->GetDocument(), sAt);
    pFile->SetSelection(sel.sStart, sel.sEnd);
    frame.EndModifyCurrentFile(0, 0);
}

void LEditCommands::CmTrimEnd()
{
    LEdFile* pFile = frame.GetCurrentFile();
    if (!pFile)
        return;
    const int32_t sAt = pFile->GetCursor();
    frame.StartModifyCurrentFile("Trim End");
    const LEdRange sel = LEdCommands::TrimEnd(pFile->GetDocument(), sAt);
    pFile->SetSelection(sel.sStart, sel.sEnd);
    frame.EndModifyCurrentFile(0, 0);
}

void LEditCommands::CmSilence()
{
    int32_t sStart, sEnd;
    if (!frame.GetSelection(sStart, sEnd))
        return;
    LEdFile& file = *frame.GetCurrentFile();
    frame.StartModifyCurrentFile("Edit Silence");
    LEdCommands::Silence(file.GetDocument(), sStart, sEnd);
    frame.EndModifyCurrentFile(sStart, file.GetDocument().GetSampleRate());
}

void LEditCommands::CmInsertSilence(int nWhere)
{
    LEdFile* pFile = frame.GetCurrentFile();
    if (!pFile)
        return;
    double fSeconds = LSettings::GetInt("StoredValues", "SilenceTimes", 0) / 1000.0;
    if (!LUiPrompts::Get().AskNumber(frame.GetWidget(), "Insert Silence", "Seconds of silence:", fSeconds, 0.001, 3600.0, 3))
        return;
    const int32_t nMs = static_cast<int32_t>(std::lround(fSeconds * 1000.0));
    LSettings::SetInt("StoredValues", "SilenceTimes", nMs);
    const int32_t nRate = pFile->GetDocument().GetSampleRate();
    const char* const kLabels[] = {"Insert Silence At The Start", "Insert Silence At Current Position",
                                   "Insert Silence At The End"};
    const int32_t sAt = nWhere == AtBegin ? 0 : nWhere == AtCurrent ? pFile->GetCursor() : pFile->GetDocument().GetLength();
    frame.StartModifyCurrentFile(kLabels[nWhere]);
    const LEdRange sel = LEdCommands::InsertSilence(pFile->GetDocument(), sAt, nMs);
    pFile->SetSelection(sel.sStart, sel.sEnd);
    frame.EndModifyCurrentFile(sAt, nRate);
}

void LEditCommands::CmInsertFile(int nWhere)
{
    LEdFile* pFile = frame.GetCurrentFile();
    if (!pFile)
        return;
    const QString szFolder =
        QString::fromStdString(LSettings::GetString("Folders", "OpenFileDir", QDir::homePath().toStdString()));
    const QStringList files = LUiPrompts::Get().GetOpenFileNames(frame.GetWidget(), "Insert File", szFolder,
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

void LEditCommands::CmRepeatLoop()
{
    int32_t sStart, sEnd;
    if (!frame.GetSelection(sStart, sEnd))
        return;
    double fTimes = LSettings::GetInt("StoredValues", "RepeatNumTimes", 1);
    if (!LUiPrompts::Get().AskNumber(frame.GetWidget(), "Repeat Loop", "Number of repeats:", fTimes, 1, 1000, 0))
        return;
    LSettings::SetInt("StoredValues", "RepeatNumTimes", static_cast<int32_t>(fTimes));
    LEdFile& file = *frame.GetCurrentFile();
    frame.StartModifyCurrentFile("Repeat Loop");
    LEdCommands::Repeat(file.GetDocument(), sStart, sEnd, static_cast<int32_t>(fTimes));
    frame.EndModifyCurrentFile(sStart, file.GetDocument().GetSampleRate());
}

void LEditCommands::CmCopyToNew()
{
    int32_t sStart, sEnd;
    if (!frame.GetSelection(sStart, sEnd))
        return;
    auto pNew = std::make_unique<LEdFile>();
    LEdCommands::Copy(frame.GetCurrentFile()->GetDocument(), sStart, sEnd, pNew->GetDocument());
    pNew->SetModified(true);
    pNew->SetView(0, pNew->GetDocument().GetLength());
    frame.AddFileToList(std::move(pNew), std::string(), frame.NextUntitledName());
}

LCutListAudioPtr LEditCommands::ReadFileConformed(const std::string& szPath, int32_t nRate, uint8_t nChans)
{
    std::string szError;
    LSoundSourcePtr pSource = LAudioFile::OpenSource(szPath, &szError);
    if (pSource->IsError()) {
        LUiPrompts::Get().Inform(frame.GetWidget(), "File Error",
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

LCutListAudioPtr LEditCommands::ConformDocument(const LCutListAudio& other, int32_t nRate, uint8_t nChans)
{
    LSoundSourcePtr pSource = LPRSourceToSink::Adapt(other.OpenSource().Get(), nRate, nChans);
    LCutListAudioPtr pDoc(new LCutListAudio(nRate, nChans));
    LCutListAudioLoadSource load("Converting", pDoc.Get(), pSource.Get());
    if (load.Run() != LProgressDialog::ResultDone)
        return LCutListAudioPtr();
    return pDoc;
}
