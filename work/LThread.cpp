#include "work/LThread.h"

#include <chrono>

#include "core/LTrace.h"

LThread::~LThread()
{
    // A derived body is gone by now; derived classes stop their thread in their own destructor.
    if (hThread.joinable()) {
        sigStop.Set();
        hThread.join();
    }
}

bool LThread::IsRunning() const
{
    return hThread.joinable() && !bFinished.load();
}

void LThread::Start(int nNewPriority)
{
    if (hThread.joinable()) {
        if (!bFinished.load()) {
            LTRACE("LThread::Start Thread is already running!");
            return;
        }
        hThread.join();
    }
    sigStop.Reset();
    bFinished = false;
    nPriority = nNewPriority;
    hThread = std::thread(&LThread::Entry, this);
    if (!hThread.joinable()) {
        LTRACE("LThread::Start Unable to CreateThread FAILED");
        bFinished = true;
    }
}

void LThread::Entry()
{
    Body();
    bFinished = true;
    sigStop.Set(); // wakes a StopThreadTimed that is waiting for the end
}

void LThread::StopThreadTimed(int32_t nTimeoutMs)
{
    if (!hThread.joinable())
        return;
    sigStop.Set();
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(nTimeoutMs);
    while (!bFinished.load() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    if (!bFinished.load())
        LTRACE("LThread::StopThreadTimed TimeOut ERROR");
    hThread.join();
}
