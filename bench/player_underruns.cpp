// Plays a ten-minute document-like source on the virtual device at twenty times real time while
// other threads load every core, and counts underruns: buffers the device finished before the
// player had queued the next one. The goal is 0.
//
// usage: bench_player_underruns [MINUTES [SPEED [LOAD_THREADS [CALLBACK_FRAMES]]]]
// CALLBACK_FRAMES makes the device move that many frames per tick, as a sound card's callback
// does (0: whatever is due whenever a buffer runs out).
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "devices/LSoundPlayer.h"
#include "devices/LVirtualWave.h"
#include "work/LThreadQueuedNotify.h"

namespace {

// A stereo tone of any length, declared with a document's headroom so the player reads it
// through the peak limiter as it would a document.
class LSRCLongTone : public LSoundSourceBase
{
public:
    LSRCLongTone(int32_t nRate, int32_t nFrames) : LSoundSourceBase(nRate, 2, 0x200000), sLength(nFrames)
    {
        const int32_t nPeriod = nRate / 441;
        vCycle.resize(nPeriod);
        for (int32_t i = 0; i < nPeriod; ++i)
            vCycle[i] = static_cast<int32_t>(0x100000 * std::sin(2 * M_PI * i / nPeriod));
    }
    void Read(int32_t* p, int32_t nFrames) override
    {
        const int32_t nPeriod = static_cast<int32_t>(vCycle.size());
        for (int32_t i = 0; i < nFrames; ++i, ++sPosition) {
            const int32_t s = sPosition < sLength ? vCycle[sPosition % nPeriod] : 0;
            *p++ = s;
            *p++ = s / 2;
        }
    }
    int32_t GetPosition() override { return sPosition; }
    int32_t GetLength() override { return sLength; }
    void SetPosition(int32_t s) override { sPosition = s; }

private:
    std::vector<int32_t> vCycle;
    int32_t sLength;
    int32_t sPosition = 0;
};

struct StopWatcher : LSoundPlayerNotify
{
    bool bStopped = false;
    void PlayerStopped(uint32_t) override { bStopped = true; }
};

void Load(std::atomic<bool>& bRun, std::atomic<uint64_t>& nSink)
{
    uint64_t x = 88172645463325252ull;
    while (bRun.load(std::memory_order_relaxed)) {
        for (int i = 0; i < 100000; ++i) {
            x ^= x << 13;
            x ^= x >> 7;
            x ^= x << 17;
        }
        nSink += x & 1;
    }
}

} // namespace

int main(int argc, char** argv)
{
    const double fMinutes = argc > 1 ? std::atof(argv[1]) : 10.0;
    const double fSpeed = argc > 2 ? std::atof(argv[2]) : 20.0;
    const unsigned nLoad = argc > 3 ? static_cast<unsigned>(std::atoi(argv[3]))
                                    : std::max(1u, std::thread::hardware_concurrency());
    const int32_t nBlock = argc > 4 ? std::atoi(argv[4]) : 0;
    constexpr int32_t kRate = 44100;
    const int32_t nFrames = static_cast<int32_t>(fMinutes * 60 * kRate);

    LVirtualWaveDriver driver;
    driver.SetSpeed(fSpeed);
    driver.SetBlockFrames(nBlock);
    LWaveDevices::SetDriver(&driver);

    std::atomic<bool> bRun{true};
    std::atomic<uint64_t> nSink{0};
    std::vector<std::thread> vLoad;
    for (unsigned i = 0; i < nLoad; ++i)
        vLoad.emplace_back(Load, std::ref(bRun), std::ref(nSink));

    StopWatcher watcher;
    const auto t0 = std::chrono::steady_clock::now();
    {
        LSoundPlayer player;
        player.SetNotify(&watcher, 0);
        LSoundSourcePtr pSource(new LSRCLongTone(kRate, nFrames));
        if (!player.Start(pSource.Get())) {
            std::fprintf(stderr, "the virtual device did not open\n");
            return 2;
        }
        while (!watcher.bStopped)
            LThreadQueuedNotify::WaitAndDrainQueue(100);
    }
    const double fSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    bRun = false;
    for (std::thread& t : vLoad)
        t.join();
    LWaveDevices::SetDriver(nullptr);

    const int64_t nPlayed = driver.stats.nFramesPlayed.load();
    std::printf("played %.1f min of 44100 Hz stereo at %.0fx in %.1f s with %u loading thread(s), device blocks of %s\n",
                fMinutes, fSpeed, fSeconds, nLoad, nBlock > 0 ? (std::to_string(nBlock) + " frames").c_str() : "any size");
    std::printf("buffers queued: %d, frames heard: %lld of %d\n", driver.stats.nWrites.load(),
                static_cast<long long>(nPlayed), nFrames);
    std::printf("underruns (buffers back before the next was queued): %d (goal 0)\n", driver.stats.nUnderruns.load());
    return driver.stats.nUnderruns.load() == 0 && nPlayed == nFrames ? 0 : 1;
}
