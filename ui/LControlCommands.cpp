#include "ui/LControlCommands.h"

#include "ui/LCommandIds.h"
#include "ui/LTransport.h"

bool LControlCommands::Command(int nId)
{
    LTransport& transport = frame.GetTransport();
    switch (nId) {
    case CmPlayId: transport.Play(); return true;
    case CmPlaySlowId:
    case CmPlayNormalId:
    case CmPlayFastId:
        transport.SetPlaySpeed(nId == CmPlaySlowId ? 0 : nId == CmPlayNormalId ? 1 : 2);
        frame.UpdateMenuStates();
        if (frame.GetCurrentFile())
            transport.Play(true);
        return true;
    case CmStopId: transport.Stop(); return true;
    case CmGoToStartId: transport.GoToStart(); frame.UpdateTimeFields(); return true;
    case CmGoToEndId: transport.GoToEnd(); frame.UpdateTimeFields(); return true;
    case CmRewindId: transport.StartShuttle(-1); return true;
    case CmFastForwardId: transport.StartShuttle(1); return true;
    case CmScrubId: transport.Scrub(); return true;
    case CmRecordId: transport.Record(); return true;
    default: return false;
    }
}
