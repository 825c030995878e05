#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "work/LProgressDialog.h"
#include "work/LSystemLockMutex.h"
#include "work/LThread.h"
#include "work/LThreadQueuedNotify.h"

namespace {
class CountingThread : public LThread
{
public:
    ~CountingThread() override { StopThreadTimed(1000); }
    std::atomic<int> nRuns{0};
    std::atomic<bool> bExitEarly{false};

protected:
    void Body() override
    {
        ++nRuns;
        while (!IsStopRequested() && !bExitEarly)
            sigStop.Wait(5);
    }
};

class Counter : public LThreadQueuedNotify
{
public:
    int nCalls = 0;

protected:
    void OnNotify() override { ++nCalls; }
};

// Cancels after a given number of polls and keeps what was shown.
class ScriptedHost : public LProgressHost
{
public:
    explicit ScriptedHost(int nPollsBeforeCancel) : nLeft(nPollsBeforeCancel) {}
    bool Open(const std::string&) override { return true; }
    void Close() override {}
    void SetText(int nLine, const std::string& s) override { szLast[nLine] = s; }
    void SetProgress(int n) override { nPercent = n; }
    bool Pump() override { return nLeft < 0 || nLeft-- > 0; }
    bool WaitForInput(int) override { return Pump(); }
    void ShowError(const std::string&) override {}
    int nLeft;
    std::string szLast[2];
    int nPercent = -1;
};
} // namespace

TEST(Thread, StartStopAndRestart)
{
    CountingThread t;
    t.StopThreadTimed(100); // never started: nothing happens
    EXPECT_FALSE(t.IsRunning());
    t.Start();
    t.Start(); // already running: ignored
    while (t.nRuns == 0)
        std::this_thread::yield();
    EXPECT_TRUE(t.IsRunning());
    t.bExitEarly = true;
    while (t.IsRunning())
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    t.bExitEarly = false;
    t.Start(); // the body returned: a new thread
    t.StopThreadTimed(1000);
    EXPECT_EQ(t.nRuns, 2);
    EXPECT_FALSE(t.IsRunning());
}

TEST(Signal, DualWaitReportsWhichAndTimesOut)
{
    LSignalObject a, b;
    EXPECT_EQ(a.WaitSignalDual(b, 10), LSignalObject::WaitTimeout);
    std::thread t([&] { b.Set(); });
    EXPECT_EQ(a.WaitSignalDual(b, -1), LSignalObject::WaitOther);
    t.join();
    a.Set();
    EXPECT_EQ(a.WaitSignalDual(b, 0), LSignalObject::WaitThis);
    a.Reset();
    EXPECT_FALSE(a.IsSet());
}

TEST(QueuedNotify, MergesWakeUpsAndIgnoresDestroyedTargets)
{
    LThreadQueuedNotify::DrainQueue();
    Counter c;
    std::thread t([&] {
        for (int i = 0; i < 100; ++i)
            c.Notify();
    });
    t.join();
    LThreadQueuedNotify::DrainQueue();
    EXPECT_EQ(c.nCalls, 1);
    {
        Counter gone;
        gone.Notify();
    }
    EXPECT_EQ(LThreadQueuedNotify::DrainQueue(), 1); // delivered to nobody, harmlessly
    c.Notify();
    EXPECT_EQ(LThreadQueuedNotify::WaitAndDrainQueue(100), 1);
    EXPECT_EQ(c.nCalls, 2);
}

TEST(ProgressNotifier, PostsOnlyOnChangesOfAtLeastFourHundredths)
{
    LThreadQueuedNotify::DrainQueue();
    Counter c;
    LProgressNotifier n(&c);
    n.Update(0.47);
    LThreadQueuedNotify::DrainQueue();
    n.Update(0.5);
    LThreadQueuedNotify::DrainQueue();
    EXPECT_EQ(c.nCalls, 1);
    LProgressNotifier m(&c);
    m.Update(0.46);
    LThreadQueuedNotify::DrainQueue();
    m.Update(0.5);
    LThreadQueuedNotify::DrainQueue();
    EXPECT_EQ(c.nCalls, 3);
}

TEST(ProgressDialog, CancelStopsTextAndProgressAndRunReturnsBodyResult)
{
    class Body : public LProgressDialog
    {
    public:
        Body() : LProgressDialog("Test") {}
        ScriptedHost* pHost = nullptr;
        int nBlocks = 0;
        int32_t Process() override
        {
            SetText("Working", 0);
            SetText("ignored", 2);
            SetProgress(0.996);
            EXPECT_EQ(pHost->nPercent, 99);
            while (!IsCancelled())
                ++nBlocks;
            SetText("after cancel", 0);
            SetProgress(0.5);
            return Run() == 0 ? 1 : 2; // a second Run of an open dialog returns 0
        }
    } body;
    class Factory : public LProgressHostFactory
    {
    public:
        Body* pBody;
        std::unique_ptr<LProgressHost> Create() override
        {
            auto p = std::make_unique<ScriptedHost>(3);
            pBody->pHost = p.get();
            return p;
        }
    } factory;
    factory.pBody = &body;
    EXPECT_EQ(body.Run(&factory), 1);
    EXPECT_EQ(body.nBlocks, 3);
}

TEST(SystemLockMutex, SecondHolderWaitsForTheFirst)
{
    LSystemLockMutex a("SonitraTestMutex");
    LSystemLockMutex b("SonitraTestMutex");
    ASSERT_TRUE(a.IsValid());
    a.Lock();
    EXPECT_FALSE(b.TryLock());
    a.Unlock();
    EXPECT_TRUE(b.TryLock());
    b.Unlock();
}
