#include "ui/LMenuLayout.h"

#include "dsp/effects/LEffectCatalog.h"
#include "ui/LCommandIds.h"
#include "ui/LCommandTable.h"

namespace LMenuLayout {

namespace {
// The Effects menu is the catalog's effects in order, a separator between their groups.
std::vector<LMenuItem> EffectItems()
{
    std::vector<LMenuItem> v;
    for (int nId : LEffectCatalog::MenuCommands("Effects"))
        v.push_back({nId == 0 ? kSeparator : nId, nullptr});
    return v;
}
} // namespace

const std::vector<LMenuDef>& Menus()
{
    static const std::vector<LMenuDef> v = {
        {"&File",
         {{CmNewId, nullptr}, {CmOpenId, nullptr}, {CmLoadCdId, nullptr}, {CmCloseId, nullptr}, {CmSaveId, nullptr},
          {CmSaveAsId, nullptr}, {kSeparator, nullptr}, {CmCopyToCdId, nullptr}, {CmSendId, nullptr},
          {kSeparator, nullptr}, {CmOpenProjectId, nullptr}, {CmCloseProjectId, nullptr}, {CmSaveProjectId, nullptr},
          {CmSaveProjectAsId, nullptr}, {kSeparator, nullptr}, {CmConvertRateId, nullptr},
          {kSubmenu, "Convert Channels"}, {CmMonoId, nullptr}, {CmStereoId, nullptr}, {kEndSubmenu, nullptr},
          {kSeparator, nullptr}, {CmSettingsId, nullptr}}},
        {"&Edit",
         {{CmUndoId, nullptr}, {CmRedoId, nullptr}, {kSeparator, nullptr}, {CmCutId, nullptr}, {CmCopyId, nullptr}, {CmPasteId, nullptr},
          {CmPasteFromClipboardId, nullptr}, {CmPasteMixId, nullptr}, {CmPasteMixFromClipboardId, nullptr},
          {CmDeleteId, nullptr}, {kSeparator, nullptr}, {CmSelectAllId, nullptr}, {CmSelectToStartId, nullptr},
          {CmSelectToEndId, nullptr}, {kSeparator, nullptr}, {CmMixFileId, nullptr}, {CmRepeatLoopId, nullptr},
          {kSeparator, nullptr}, {CmTrimId, nullptr}, {CmTrimStartId, nullptr}, {CmTrimEndId, nullptr},
          {CmAutoTrimId, nullptr}, {kSeparator, nullptr}, {CmSilenceId, nullptr}, {kSubmenu, "Insert Silence"},
          {CmInsertSilenceBeginId, nullptr}, {CmInsertSilenceCurrentId, nullptr}, {CmInsertSilenceEndId, nullptr},
          {kEndSubmenu, nullptr}, {kSubmenu, "Insert File"}, {CmInsertFileBeginId, nullptr},
          {CmInsertFileCurrentId, nullptr}, {CmInsertFileEndId, nullptr}, {kEndSubmenu, nullptr},
          {kSeparator, nullptr}, {CmCopyToNewId, nullptr}}},
        {"&Control",
         {{CmRecordId, nullptr}, {CmPlayId, nullptr}, {CmPlayNormalId, nullptr}, {CmPlaySlowId, nullptr},
          {CmPlayFastId, nullptr}, {CmStopId, nullptr}, {kSeparator, nullptr}, {CmGoToStartId, nullptr},
          {CmRewindId, nullptr}, {CmFastForwardId, nullptr}, {CmGoToEndId, nullptr}}},
        {"Effec&ts", EffectItems()},
        {"T&ools",
         {{CmFrequencyAnalysisId, nullptr}, {CmToneGeneratorId, nullptr}, {CmTextToSpeechId, nullptr},
          {CmBatchConverterId, nullptr}}},
        {"&Bookmarks",
         {{CmSetBookmarkId, nullptr}, {CmBookmarkListId, nullptr}, {kSeparator, nullptr}, {CmAddRegionId, nullptr},
          {CmRegionListId, nullptr}, {CmAssembleRegionsId, nullptr}}},
        {"&Window",
         {{CmCascadeId, nullptr}, {CmTileHorizontalId, nullptr}, {CmTileVerticalId, nullptr},
          {CmArrangeIconsId, nullptr}, {kSeparator, nullptr}, {CmZoomInId, nullptr}, {CmZoomOutId, nullptr},
          {CmZoomSelectionId, nullptr}, {CmZoomFullId, nullptr}, {CmVerticalZoomId, nullptr}, {kSeparator, nullptr},
          {CmDisplayPosNegId, nullptr}, {CmDisplayLeftRightId, nullptr}, {CmSpectrogramId, nullptr}, {kSeparator, nullptr},
          {CmCloseAllId, nullptr}}},
        {"&Help", {{CmHelpId, nullptr}, {kSubmenu, "&Internet Resources"}, {kEndSubmenu, nullptr},
                   {kSeparator, nullptr}, {CmAboutId, nullptr}}},
    };
    return v;
}

namespace {
QString Plain(const char* sz)
{
    QString s = QString::fromUtf8(sz).trimmed();
    s.remove('&');
    return s;
}
} // namespace

QString PathOf(int nId)
{
    const LCommandInfo* pInfo = LCommandTable::Find(nId);
    if (!pInfo)
        return QString();
    for (const LMenuDef& m : Menus()) {
        QString szSubmenu;
        for (const LMenuItem& item : m.vItems) {
            if (item.nId == kSubmenu)
                szSubmenu = Plain(item.szSubmenu);
            else if (item.nId == kEndSubmenu)
                szSubmenu.clear();
            else if (item.nId == nId)
                return Plain(m.szTitle) + " > " + (szSubmenu.isEmpty() ? QString() : szSubmenu + " > ") +
                       Plain(pInfo->szText);
        }
    }
    return QString();
}

} // namespace LMenuLayout
