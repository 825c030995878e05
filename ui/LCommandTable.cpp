#include "ui/LCommandTable.h"

#include <iterator>
#include <vector>

#include "dsp/effects/LEffectCatalog.h"
#include "ui/LCommandIds.h"

namespace {
const LCommandInfo kCommands[] = {
    {CmNewId, "&New File...", "Ctrl+N", "Creates a new, empty audio file."},
    {CmOpenId, "&Open File...", "Ctrl+O", "Opens an existing audio file."},
    {CmLoadCdId, "&Load Audio CD Track(s)...", "Ctrl+L", "Loads tracks from an audio CD."},
    {CmCloseId, "Close File", "", "Closes the current file."},
    {CmSaveId, "&Save File", "Ctrl+S", "Saves the current file."},
    {CmSaveAsId, "Save File &As...", "", "Saves the current file under a new name or format."},
    {CmCopyToCdId, "Copy File(s) to CD...", "", "Writes audio files to a CD."},
    {CmSendId, "Send...", "", "Sends the current file by mail."},
    {CmOpenProjectId, "Open Project...", "", "Opens a project with its files, bookmarks and regions."},
    {CmCloseProjectId, "Close Project", "", "Closes the current project."},
    {CmSaveProjectId, "Save Project", "", "Saves the current project."},
    {CmSaveProjectAsId, "Save Project As...", "", "Saves the current project under a new name."},
    {CmSettingsId, "Settings...", "", "Changes the program's settings."},
    {CmExitId, "E&xit", "Alt+F4", "Quit"},

    {CmUndoId, "Undo ", "Ctrl+Z", "Reverses (undo) the last action."},
    {CmRedoId, "Redo ", "Ctrl+Y", "Repeats the last action that was undone.", "Ctrl+Shift+Z"},
    {CmCutId, "Cut ", "Ctrl+X", "Moves the selected region to the clipboard."},
    {CmCopyId, "Copy ", "Ctrl+C", "Copies the selected region to the clipboard."},
    {CmPasteId, "Paste ", "Ctrl+V", "Inserts the clipboard contents at the current position."},
    {CmPasteFromClipboardId, "Paste From Clipboard", "", "Inserts window clipboard contents."},
    {CmPasteMixFromClipboardId, "Paste Mix From Clipboard...", "", "Mixes the window clipboard contents into the file."},
    {CmDeleteId, "&Delete", "", "Deletes the selected region."},
    {CmSelectAllId, "Select All", "Ctrl+A", "Selects the whole file."},
    {CmSelectToStartId, "Select To Start", "Shift+Home", "Selects from the start of the file to the current position."},
    {CmSelectToEndId, "Select To End", "Shift+End", "Selects from the current position to the end of the file."},
    {CmTrimId, "Trim", "Ctrl+T", "The selected region becomes the entire file."},
    {CmTrimStartId, "Trim Start", "Ctrl+M", "Deletes everything before the current position."},
    {CmTrimEndId, "Trim End", "Ctrl+E", "Deletes everything after the current position."},
    {CmSilenceId, "Silence Select Region", "", "Replaces the selected region with silence."},
    {CmInsertSilenceBeginId, "Begin", "", "Inserts silence at the start of the file."},
    {CmInsertSilenceCurrentId, "Current", "", "Inserts silence at the current position."},
    {CmInsertSilenceEndId, "End", "", "Inserts silence at the end of the file."},
    {CmInsertFileBeginId, "Begin", "", "Inserts another file at the start of the file."},
    {CmInsertFileCurrentId, "Current", "", "Inserts another file at the current position."},
    {CmInsertFileEndId, "End", "", "Inserts another file at the end of the file."},
    {CmCopyToNewId, "Copy To New", "", "Copies the selected region into a new file."},

    {CmRecordId, "&Record", "F5", "Records at the current position (or over selection)."},
    {CmPlayId, "&Play", "F9", "Plays the file from the current position (or the selection)."},
    {CmPlayNormalId, "Play Normal Speed", "F10", "Plays at normal speed."},
    {CmPlaySlowId, "Play Slow Speed", "F11", "Plays at half speed."},
    {CmPlayFastId, "Play Fast Speed", "F12", "Plays at one and a half times the speed."},
    {CmStopId, "&Stop", "Esc", "Stops playing or recording."},
    {CmGoToStartId, "Go To Start", "Home", "Moves the current position to the start."},
    {CmRewindId, "Rewind", "F7", "Plays backwards while the key is held."},
    {CmFastForwardId, "Fast Forward", "F8", "Plays fast forwards while the key is held."},
    {CmGoToEndId, "Go To End", "End", "Moves the current position to the end."},
    {CmScrubId, "Scrub", "Space", "Loops a short snippet at the current position."},

    {CmFrequencyAnalysisId, "Frequency Analysis (FFT)", "", "Shows the spectrum of the selected region."},
    {CmToneGeneratorId, "Tone Generator", "", "Generates tones."},
    {CmTextToSpeechId, "Text To Speech", "", "Speaks a text into the file."},
    {CmBatchConverterId, "Batch Converter", "", "Applies multiple effect or edit functions on the current file at once."},

    {CmSetBookmarkId, "Set Bookmark", "Ctrl+B", "Sets a bookmark at the current position."},
    {CmBookmarkListId, "Open Bookmark List", "Ctrl+Shift+B", "Shows the bookmarks."},
    {CmAddRegionId, "Add Region", "Ctrl+R", "Adds the selected region to the region list."},
    {CmRegionListId, "Open Region List", "Ctrl+Shift+R", "Shows the regions."},
    {CmAssembleRegionsId, "Assemble Regions", "", "Joins the regions into a new file."},

    {CmCascadeId, "Cascade", "", "Arranges the file windows overlapping."},
    {CmTileHorizontalId, "Tile Horizontal", "", "Arranges the file windows one above the other."},
    {CmTileVerticalId, "Tile Vertical", "", "Arranges the file windows side by side."},
    {CmArrangeIconsId, "Arrange Icons", "", "Arranges the minimized file windows."},
    {CmZoomInId, "Zoom In", "Ctrl+Plus", "Shows less of the file in more detail."},
    {CmZoomOutId, "Zoom Out", "Ctrl+Minus", "Shows more of the file."},
    {CmZoomSelectionId, "Zoom To Selection", "Ctrl+Shift+S", "Shows the selected region."},
    {CmZoomFullId, "Zoom Full", "Ctrl+Shift+F", "Shows the whole file."},
    {CmVerticalZoomId, "Vertical Zoom", "Ctrl+Shift+V", "Increase the amplitude of the display (to see softer sounds)."},
    {CmDisplayPosNegId, "Display Wave Form in + /-", "", "Shows positive and negative peaks."},
    {CmDisplayLeftRightId, "Display Wave Form in L / R", "", "Shows the left channel up and the right channel down."},
    {CmSpectrogramId, "Spectrogram View", "Ctrl+Shift+G", "Shows the sound as a spectrogram: time across, frequency up, level in colour."},
    {CmCloseAllId, "Close All", "", "Closes every file."},

    {CmHelpId, "&Help Contents", "F1", "Shows the help."},
    {CmAboutId, "About Sonitra", "", "Shows the program's version."},
};

// The effects' rows come from their descriptors; a row of the table above is the menu's own.
const std::vector<LCommandInfo>& EffectRows()
{
    static const std::vector<LCommandInfo> v = [] {
        std::vector<LCommandInfo> vRows;
        for (const LEffectInfo* p : LEffectCatalog::All())
            vRows.push_back({p->nCommandId, p->szMenuText, "", p->szHint});
        return vRows;
    }();
    return v;
}
} // namespace

const LCommandInfo* LCommandTable::Find(int nId)
{
    for (const LCommandInfo& c : kCommands)
        if (c.nId == nId)
            return &c;
    for (const LCommandInfo& c : EffectRows())
        if (c.nId == nId)
            return &c;
    return nullptr;
}

QString LCommandTable::MenuText(int nId)
{
    const LCommandInfo* p = Find(nId);
    if (!p)
        return QString();
    QString s = QString::fromUtf8(p->szText);
    if (*p->szAccel)
        s += '\t' + QString::fromUtf8(p->szAccel);
    return s;
}

QString LCommandTable::Hint(int nId)
{
    const LCommandInfo* p = Find(nId);
    return p ? QString::fromUtf8(p->szHint) : QString();
}
