#include "platform/qtcore/LQtNotifyPoster.h"

#include <QMetaObject>

#include "core/LTrace.h"

LQtNotifyPoster::LQtNotifyPoster(QObject* pParent) : QObject(pParent) {}

LQtNotifyPoster::~LQtNotifyPoster()
{
    if (bInstalled)
        LThreadQueuedNotify::SetPoster(nullptr);
}

void LQtNotifyPoster::Post(uint64_t nId)
{
    // A queued call is an event posted to this object's thread, so it is safe from any thread.
    QMetaObject::invokeMethod(this, [nId] { LThreadQueuedNotify::Deliver(nId); }, Qt::QueuedConnection);
}

void LQtNotifyPoster::Install()
{
    LThreadQueuedNotify::SetPoster(this);
    bInstalled = true;
    LTRACE("LQtNotifyPoster::Install");
}
