// The Control menu: recording and the transport.
#include "core/LEdFile.h"
#include "ui/LCommandIds.h"
#include "ui/LEdFileWindow.h"
#include "ui/LTransport.h"
#include "ui/MainDialog.h"

bool MainDialog::CmControl(int nId)
{
    switch (nId) {
    case CmPlayId: pTransport->Play(); return true;
    case CmPlaySlowId:
    case CmPlayNormalId:
    case CmPlayFastId:
        pTransport->SetPlaySpeed(nId == CmPlaySlowId ? 0 : nId == CmPlayNormalId ? 1 : 2);
        UpdateMenuStates();
        if (GetCurrentFile())
            pTransport->Play(true);
        return true;
    case CmStopId: pTransport->Stop(); return true;
    case CmGoToStartId: pTransport->GoToStart(); UpdateTimeFields(); return true;
    case CmGoToEndId: pTransport->GoToEnd(); UpdateTimeFields(); return true;
    case CmRewindId: pTransport->StartShuttle(-1); return true;
    case CmFastForwardId: pTransport->StartShuttle(1); return true;
    case CmScrubId: pTransport->Scrub(); return true;
    case CmRecordId: pTransport->Record(); return true;
    default: return false;
    }
}
