// When commands are available: the rule table over a snapshot of the editor's state, and the
// commands it leaves to the effects' own rule.
#include <QtTest>


#include "dsp/effects/LEffectCatalog.h"
#include "ui/LCommandIds.h"
#include "ui/LCommandRules.h"
#include "ui/LCommandTable.h"

class CommandRulesTest : public QObject
{
    Q_OBJECT
private:
    static LCommandState OpenFile()
    {
        LCommandState s;
        s.bFile = true;
        s.bPlayer = true;
        return s;
    }
    static bool On(int nId, const LCommandState& s) { return LCommandRules::IsEnabled(nId, s, nullptr); }

private slots:
    void withNoFileOnlyFileIndependentCommandsRun()
    {
        const LCommandState none;
        for (int nId : {CmNewId, CmOpenId, CmExitId, CmHelpId, CmAboutId, CmCascadeId, CmFrequencyAnalysisId,
                        CmOpenProjectId, CmBatchConverterId})
            QVERIFY2(On(nId, none), qPrintable(QString::number(nId)));
        for (int nId : {CmCloseId, CmSaveId, CmSelectAllId, CmZoomInId, CmGoToStartId, CmPlayId, CmSetBookmarkId,
                        CmCloseProjectId, CmSaveProjectId, CmAssembleRegionsId, CmStopId})
            QVERIFY2(!On(nId, none), qPrintable(QString::number(nId)));
    }

    void selectionCommandsNeedASelectionAndNoRecording()
    {
        LCommandState s = OpenFile();
        QVERIFY(!On(CmCutId, s));
        QVERIFY(!On(CmAddRegionId, s));
        s.bSelection = true;
        QVERIFY(On(CmCutId, s));
        QVERIFY(On(CmZoomSelectionId, s));
        QVERIFY(On(CmAddRegionId, s));
        s.bRecording = true;
        QVERIFY(!On(CmCutId, s));
        QVERIFY(!On(CmAddRegionId, s));
        QVERIFY(On(CmZoomSelectionId, s)); // looking is never blocked
        QVERIFY(On(CmStopId, s));
    }

    void historyClipboardsAndChannelsFollowTheirState()
    {
        LCommandState s = OpenFile();
        QVERIFY(!On(CmUndoId, s) && !On(CmRedoId, s) && !On(CmPasteId, s) && !On(CmPasteFromClipboardId, s));
        QVERIFY(!On(CmDisplayLeftRightId, s));
        s.bUndo = s.bRedo = s.bClipboard = s.bWindowClipboard = s.bStereo = true;
        QVERIFY(On(CmUndoId, s) && On(CmRedoId, s) && On(CmPasteId, s) && On(CmPasteFromClipboardId, s));
        QVERIFY(On(CmDisplayLeftRightId, s));
    }

    void playingBlocksRecordingAndSettingsButNotTheTransport()
    {
        LCommandState s = OpenFile();
        QVERIFY(On(CmRecordId, s) && On(CmSettingsId, s) && !On(CmStopId, s));
        s.bPlaying = true;
        QVERIFY(!On(CmRecordId, s));
        QVERIFY(!On(CmSettingsId, s));
        QVERIFY(On(CmStopId, s) && On(CmPlayFastId, s));
        s.bPlayer = false;
        QVERIFY(!On(CmPlayId, s) && !On(CmPlaySlowId, s));
    }

    void projectCommandsFollowWhatIsOpen()
    {
        LCommandState s;
        QVERIFY(!On(CmSaveProjectAsId, s));
        s.bRegions = true;
        QVERIFY(On(CmSaveProjectAsId, s) && On(CmRegionListId, s) && On(CmAssembleRegionsId, s));
        QVERIFY(!On(CmBookmarkListId, s));
        s.bProject = true;
        QVERIFY(On(CmCloseProjectId, s));
        s.bRecording = true;
        QVERIFY(!On(CmCloseProjectId, s) && !On(CmSaveProjectId, s));
    }

    void recentFilesShareOneRule()
    {
        LCommandState s;
        QVERIFY(On(CmRecentFirstId, s) && On(CmRecentLastId, s));
        s.bRecording = true;
        QVERIFY(!On(CmRecentFirstId, s) && !On(CmRecentLastId, s));
    }

    void commandsTheTableDoesNotNameAskTheirOwnRule()
    {
        const LCommandState s = OpenFile();
        const int CmAmplifyId = LEffectCatalog::ByCliName("amplify")->nCommandId;
        QVERIFY(!LCommandRules::Knows(CmAmplifyId));
        QVERIFY(!On(CmAmplifyId, s)); // no rule given: off
        int nAsked = 0;
        auto fnEffects = [&nAsked, CmAmplifyId](int nId, const LCommandState& st) {
            ++nAsked;
            return nId == CmAmplifyId && st.bFile;
        };
        QVERIFY(LCommandRules::IsEnabled(CmAmplifyId, s, fnEffects));
        QVERIFY(!LCommandRules::IsEnabled(CmAmplifyId, LCommandState(), fnEffects));
        QVERIFY(LCommandRules::IsEnabled(CmNewId, s, fnEffects)); // the table answers first
        QCOMPARE(nAsked, 2);
    }

    void everyMenuCommandOutsideTheEffectsHasARule()
    {
        // The effects' commands follow the catalog's rule wherever their menu is; pasting a mix
        // from the system clipboard is the paste-mix effect by another road.
        for (int nId = 1000; nId < 9000; ++nId) {
            if (!LCommandTable::Find(nId) || LEffectCatalog::ByCommand(nId) || nId == CmPasteMixFromClipboardId)
                continue;
            QVERIFY2(LCommandRules::Knows(nId), qPrintable(QString::number(nId)));
        }
    }
};

QTEST_MAIN(CommandRulesTest)
#include "CommandRulesTest.moc"
