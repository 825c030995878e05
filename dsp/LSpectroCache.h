// The reduced spectra of the tank's segments, kept in memory for the whole program: a segment is
// analysed once per window, however many cuts and documents show it, and an edit leaves every
// segment it did not write alone. A segment is known by its serial, so a number reused for new
// audio never shows the old spectra. The least recently used segments go past a budget.
#pragma once

#include <cstdint>
#include <functional>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <tuple>

#include "dsp/LSpectroBlocks.h"

class LSpectroCache
{
public:
    static constexpr size_t kDefaultBudget = 256u << 20;

    static LSpectroCache& Instance();

    struct Key
    {
        uint64_t nSerial;
        int32_t nWindow;
        uint8_t eWindow;
        bool operator<(const Key& o) const
        {
            return std::tie(nSerial, nWindow, eWindow) < std::tie(o.nSerial, o.nWindow, o.eWindow);
        }
    };

    // The blocks of the segment with at least sFrames frames analysed, reading what is missing
    // from the source fnOpen gives; null when stopped (the part done is kept for next time).
    // While one caller analyses a segment, another asking for it waits instead of doing the
    // same work (both displays of a window ask for the same segments at once).
    std::shared_ptr<const LSpectroBlocks> Get(const Key& key, uint8_t nChans, int64_t sFrames,
                                              const std::function<LSoundSourcePtr()>& fnOpen,
                                              LSpectroAnalyzer& analyzer, const LSpectroStop& fnStop);

    // How many blocks have been analysed since the start (tests and the benchmark).
    int64_t GetBlocksAnalysed() const;
    void SetBudget(size_t nBytes);
    void Clear();

private:
    void Evict();

    struct Entry
    {
        std::shared_ptr<const LSpectroBlocks> pBlocks;
        uint64_t nUsed = 0;
    };
    mutable std::mutex mtx;
    std::map<Key, Entry> mapEntries;
    std::set<Key> setBusy;
    std::condition_variable cvDone;
    uint64_t nTick = 0;
    size_t nBudget = kDefaultBudget;
    int64_t nAnalysed = 0;
};
