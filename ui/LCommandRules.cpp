#include "ui/LCommandRules.h"

#include "ui/LCommandIds.h"

namespace {
using Rule = bool (*)(const LCommandState& s);

struct Row
{
    int nFirst;
    int nLast;
    Rule fnEnabled;
};

bool Always(const LCommandState&) { return true; }
bool Idle(const LCommandState& s) { return !s.bRecording; }
bool WithFile(const LCommandState& s) { return s.bFile; }
bool FileIdle(const LCommandState& s) { return s.bFile && !s.bRecording; }
bool SelectionIdle(const LCommandState& s) { return s.bSelection && !s.bRecording; }
bool Selection(const LCommandState& s) { return s.bSelection; }
bool Player(const LCommandState& s) { return s.bPlayer; }
bool PlayFile(const LCommandState& s) { return s.bFile && !s.bRecording && s.bPlayer; }
bool Quiet(const LCommandState& s) { return !s.bRecording && !s.bPlaying; }

// A recording holds the project's files, so its commands wait for it.
bool ProjectSave(const LCommandState& s)
{
    return !s.bRecording && (s.bFile || s.bProject || s.bBookmarks || s.bRegions);
}

const Row kRows[] = {
    // File
    {CmNewId, CmNewId, Always},
    {CmOpenId, CmOpenId, Always},
    {CmExitId, CmExitId, Always},
    {CmCloseId, CmCloseId, FileIdle},
    {CmSaveId, CmSaveId, FileIdle},
    {CmSaveAsId, CmSaveAsId, FileIdle},
    {CmSendId, CmSendId, FileIdle},
    {CmSettingsId, CmSettingsId, Quiet},
    {CmRecentFirstId, CmRecentLastId, Idle},
    {CmLoadCdId, CmLoadCdId, Idle},
    {CmCopyToCdId, CmCopyToCdId, Idle},
    // Edit
    {CmUndoId, CmUndoId, [](const LCommandState& s) { return FileIdle(s) && s.bUndo; }},
    {CmRedoId, CmRedoId, [](const LCommandState& s) { return FileIdle(s) && s.bRedo; }},
    {CmCutId, CmCutId, SelectionIdle},
    {CmCopyId, CmCopyId, SelectionIdle},
    {CmDeleteId, CmDeleteId, SelectionIdle},
    {CmTrimId, CmTrimId, SelectionIdle},
    {CmSilenceId, CmSilenceId, SelectionIdle},
    {CmRepeatLoopId, CmRepeatLoopId, SelectionIdle},
    {CmCopyToNewId, CmCopyToNewId, SelectionIdle},
    {CmPasteId, CmPasteId, [](const LCommandState& s) { return FileIdle(s) && s.bClipboard; }},
    {CmPasteFromClipboardId, CmPasteFromClipboardId,
     [](const LCommandState& s) { return FileIdle(s) && s.bWindowClipboard; }},
    {CmSelectAllId, CmSelectAllId, WithFile},
    {CmSelectToStartId, CmSelectToStartId, WithFile},
    {CmSelectToEndId, CmSelectToEndId, WithFile},
    {CmTrimStartId, CmTrimStartId, FileIdle},
    {CmTrimEndId, CmTrimEndId, FileIdle},
    {CmInsertSilenceBeginId, CmInsertSilenceBeginId, FileIdle},
    {CmInsertSilenceCurrentId, CmInsertSilenceCurrentId, FileIdle},
    {CmInsertSilenceEndId, CmInsertSilenceEndId, FileIdle},
    {CmInsertFileBeginId, CmInsertFileBeginId, FileIdle},
    {CmInsertFileCurrentId, CmInsertFileCurrentId, FileIdle},
    {CmInsertFileEndId, CmInsertFileEndId, FileIdle},
    // Control
    {CmPlayId, CmPlayId, PlayFile},
    {CmScrubId, CmScrubId, PlayFile},
    {CmRewindId, CmRewindId, PlayFile},
    {CmFastForwardId, CmFastForwardId, PlayFile},
    {CmPlaySlowId, CmPlaySlowId, Player},
    {CmPlayNormalId, CmPlayNormalId, Player},
    {CmPlayFastId, CmPlayFastId, Player},
    {CmRecordId, CmRecordId, [](const LCommandState& s) { return s.bPlayer && Quiet(s); }},
    {CmStopId, CmStopId, [](const LCommandState& s) { return s.bPlaying || s.bRecording; }},
    {CmGoToStartId, CmGoToStartId, WithFile},
    {CmGoToEndId, CmGoToEndId, WithFile},
    // Window and view
    {CmCascadeId, CmCascadeId, Always},
    {CmTileHorizontalId, CmTileHorizontalId, Always},
    {CmTileVerticalId, CmTileVerticalId, Always},
    {CmArrangeIconsId, CmArrangeIconsId, Always},
    {CmCloseAllId, CmCloseAllId, FileIdle},
    {CmZoomInId, CmZoomInId, WithFile},
    {CmZoomOutId, CmZoomOutId, WithFile},
    {CmZoomFullId, CmZoomFullId, WithFile},
    {CmZoomSelectionId, CmZoomSelectionId, Selection},
    {CmVerticalZoomId, CmVerticalZoomId, WithFile},
    {CmDisplayPosNegId, CmDisplayPosNegId, WithFile},
    {CmSpectrogramId, CmSpectrogramId, WithFile},
    {CmDisplayLeftRightId, CmDisplayLeftRightId, [](const LCommandState& s) { return s.bFile && s.bStereo; }},
    // Help
    {CmHelpId, CmHelpId, Always},
    {CmAboutId, CmAboutId, Always},
    // Tools
    {CmFrequencyAnalysisId, CmFrequencyAnalysisId, Always},
    {CmToneGeneratorId, CmToneGeneratorId, Idle},
    {CmTextToSpeechId, CmTextToSpeechId, Idle},
    {CmBatchConverterId, CmBatchConverterId, Idle},
    // Projects, bookmarks and regions
    {CmOpenProjectId, CmOpenProjectId, Idle},
    {CmCloseProjectId, CmCloseProjectId, [](const LCommandState& s) { return Idle(s) && s.bProject; }},
    {CmSaveProjectId, CmSaveProjectId, ProjectSave},
    {CmSaveProjectAsId, CmSaveProjectAsId, ProjectSave},
    {CmSetBookmarkId, CmSetBookmarkId, FileIdle},
    {CmAddRegionId, CmAddRegionId, SelectionIdle},
    {CmBookmarkListId, CmBookmarkListId, [](const LCommandState& s) { return Idle(s) && s.bBookmarks; }},
    {CmRegionListId, CmRegionListId, [](const LCommandState& s) { return Idle(s) && s.bRegions; }},
    {CmAssembleRegionsId, CmAssembleRegionsId, [](const LCommandState& s) { return Idle(s) && s.bRegions; }},
};

const Row* Find(int nId)
{
    for (const Row& row : kRows)
        if (nId >= row.nFirst && nId <= row.nLast)
            return &row;
    return nullptr;
}
} // namespace

bool LCommandRules::Knows(int nId)
{
    return Find(nId) != nullptr;
}

bool LCommandRules::IsEnabled(int nId, const LCommandState& state, const Fallback& fnOthers)
{
    if (const Row* pRow = Find(nId))
        return pRow->fnEnabled(state);
    return fnOthers && fnOthers(nId, state);
}
