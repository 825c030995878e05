// Carries wake-ups from worker threads to the Qt event loop: each Post queues a call of
// LThreadQueuedNotify::Deliver on the thread that owns this object (the user-interface thread).
#pragma once

#include <QObject>

#include "work/LThreadQueuedNotify.h"

class LQtNotifyPoster : public QObject, public LNotifyPoster
{
public:
    explicit LQtNotifyPoster(QObject* pParent = nullptr);
    // Uninstalls itself when it is the poster in use.
    ~LQtNotifyPoster() override;

    void Post(uint64_t nId) override;
    // Makes this object the poster of every LThreadQueuedNotify.
    void Install();

private:
    bool bInstalled = false;
};
