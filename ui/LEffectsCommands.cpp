// The Effects menu and the commands that work like effects (paste mix, mix file, auto trim, the
// conversions). An effect reads its stored parameters, shows its dialog, and then runs its
// process on the selection (the whole file when nothing is selected) between
// StartModifyCurrentFile and EndModifyCurrentFile.
#include "ui/LEffectsCommands.h"

#include <QDir>

#include "core/LEdFile.h"
#include "core/LSettings.h"
#include "core/LTrace.h"
#include "dsp/effects/LEffectRunner.h"
#include "formats/LAudioFile.h"
#include "ui/LAudioFilters.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LTransport.h"
#include "ui/LUiPrompts.h"
#include "ui/LWindowClipboard.h"
#include "ui/effects/LCurveDlg.h"
#include "ui/effects/LEffectPreviewButton.h"
#include "ui/effects/LEffectSettingsDlg.h"

namespace {
// Pasting a mix from the system's clipboard is a paste mix with another clip. Effects whose
// command the editor runs through its own menu are not run here.
const LEffectInfo* EffectOf(int nId)
{
    const LEffectInfo* pInfo = LEffectCatalog::ByCommand(nId == CmPasteMixFromClipboardId ? CmPasteMixId : nId);
    return pInfo && !pInfo->bEditorOwnCommand && LEffectRunner::IsAvailable(*pInfo) ? pInfo : nullptr;
}

bool AskMixClip(QWidget* pParent, LEffectArgs& args)
{
    const QString szFolder =
        QString::fromStdString(LSettings::GetString("Folders", "OpenFileDir", QDir::homePath().toStdString()));
    const QStringList files = LUiPrompts::Get().GetOpenFileNames(pParent, "Mix File", szFolder,
                                                                 LAudioFilters::Open());
    if (files.isEmpty())
        return false;
    std::string szError;
    args.pClip = LAudioFile::OpenSource(files.front().toStdString(), &szError);
    if (args.pClip->IsError()) {
        LUiPrompts::Get().Inform(pParent, "File Error",
                                 QString("Unable to open \"%1\":\n%2").arg(files.front(), QString::fromStdString(szError)),
                                 LUiPrompts::IconError);
        return false;
    }
    return true;
}

// The effect's dialog (a clip to mix from a file is chosen first); false when the user cancels.
bool AskEffectSettings(QWidget* pParent, int nCommandId, const LEffectInfo& info, LEffectArgs& args)
{
    if (info.curve != LEffectInfo::NoCurve) {
        LPointList list;
        const auto curve = info.curve == LEffectInfo::EqualizerCurve ? LCurveDlg::Equalizer : LCurveDlg::Envelope;
        if (!LCurveDlg::Edit(pParent, curve, &list))
            return false;
        args.curve = list;
        return true;
    }
    if (nCommandId == CmMixFileId && !AskMixClip(pParent, args))
        return false;
    return !info.bAsksSettings || info.vParams.empty() || LEffectSettingsDlg::Edit(pParent, info);
}
} // namespace

bool LEffectsCommands::IsEnabled(int nCommandId) const
{
    const LEffectInfo* pInfo = EffectOf(nCommandId);
    LEdFile* pFile = frame.GetCurrentFile();
    if (!pInfo || !pFile || frame.GetTransport().IsRecording())
        return false;
    const LCutListAudio& doc = pFile->GetDocument();
    if (pInfo->nNeedsChannels && doc.GetChannels() != pInfo->nNeedsChannels)
        return false;
    if (nCommandId == CmPasteMixId)
        return frame.GetClipboardAudio().GetLength() > 0;
    if (nCommandId == CmPasteMixFromClipboardId)
        return LWindowClipboard::HasWave();
    return pInfo->bWorksOnEmpty || doc.GetLength() > 0;
}

bool LEffectsCommands::Command(int nCommandId)
{
    const LEffectInfo* pInfo = EffectOf(nCommandId);
    if (!pInfo)
        return false;
    LEdFileWindow* pWindow = frame.GetCurrentFileWindow();
    if (!pWindow)
        return true;
    LEdFile& file = pWindow->GetFile();
    LCutListAudio& doc = file.GetDocument();

    // The range: the selection, else the whole file; paste mix works from the cursor.
    int32_t sStart = 0, sEnd = doc.GetLength();
    const bool bSelection = frame.GetSelection(sStart, sEnd);
    if (pInfo->range == LEffectInfo::WholeFile) {
        sStart = 0;
        sEnd = doc.GetLength();
    } else if (pInfo->range == LEffectInfo::Cursor && !bSelection) {
        sStart = sEnd = file.GetCursor();
    }

    // The clip of a paste mix: this program's clipboard, or the system's.
    LEffectArgs args;
    if (nCommandId == CmPasteMixId) {
        args.pClip = frame.GetClipboardAudio().OpenSource();
    } else if (nCommandId == CmPasteMixFromClipboardId) {
        std::string szPath;
        if (!LWindowClipboard::RenderFrom(szPath))
            return true;
        args.pClip = LAudioFile::OpenSource(szPath);
    }
    // Its dialog may preview the effect on the range, with the main playback stopped.
    LEffectPreviewButton::Target previewTarget(doc, sStart, sEnd, args);
    previewTarget.fnBeforePlay = [this] { frame.GetTransport().Stop(); };
    if (!AskEffectSettings(frame.GetWidget(), nCommandId, *pInfo, args))
        return true;

    frame.StartModifyCurrentFile(pInfo->szUndoLabel);
    LEffectProcess process(*pInfo, &doc, sStart, sEnd, args);
    const int32_t nResult = process.Run();
    LTRACE("LEffectsCommands::Command %s result %d", pInfo->szUndoLabel, nResult);
    if (nResult == LProgressDialog::ResultError)
        LUiPrompts::Get().Inform(frame.GetWidget(), "Sonitra", QString("%1 could not be applied.").arg(pInfo->szUndoLabel),
                                 LUiPrompts::IconError);
    const int32_t nLength = doc.GetLength();
    file.SetSelection(std::min(file.GetSelStart(), nLength), std::min(file.GetSelEnd(), nLength));
    // Whole-file effects play from the start; the others from a second before the edit.
    if (pInfo->range == LEffectInfo::WholeFile)
        frame.EndModifyCurrentFile(0, 0);
    else
        frame.EndModifyCurrentFile(std::min(sStart, nLength), doc.GetSampleRate());
    return true;
}

