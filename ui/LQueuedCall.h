// Runs a function on the user-interface thread whenever any thread calls Notify().
// Wake-ups merge: the function reads the current state rather than counting calls.
#pragma once

#include <functional>

#include "work/LThreadQueuedNotify.h"

class LQueuedCall : public LThreadQueuedNotify
{
public:
    explicit LQueuedCall(std::function<void()> fnCall) : fnCall(std::move(fnCall)) {}

protected:
    void OnNotify() override
    {
        if (fnCall)
            fnCall();
    }

private:
    std::function<void()> fnCall;
};
