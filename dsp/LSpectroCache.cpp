#include "dsp/LSpectroCache.h"

#include <chrono>

#include "core/LTrace.h"

LSpectroCache& LSpectroCache::Instance()
{
    static LSpectroCache cache;
    return cache;
}

std::shared_ptr<const LSpectroBlocks> LSpectroCache::Get(const Key& key, uint8_t nChans, int64_t sFrames,
                                                         const std::function<LSoundSourcePtr()>& fnOpen,
                                                         LSpectroAnalyzer& analyzer, const LSpectroStop& fnStop)
{
    std::shared_ptr<LSpectroBlocks> pGrown;
    {
        std::unique_lock<std::mutex> lock(mtx);
        while (setBusy.count(key)) {
            if (fnStop && fnStop())
                return nullptr;
            cvDone.wait_for(lock, std::chrono::milliseconds(50));
        }
        auto it = mapEntries.find(key);
        if (it != mapEntries.end()) {
            it->second.nUsed = ++nTick;
            if (it->second.pBlocks->GetFrames() >= sFrames)
                return it->second.pBlocks;
            pGrown = std::make_shared<LSpectroBlocks>(*it->second.pBlocks);
        }
        setBusy.insert(key);
    }
    if (!pGrown)
        pGrown = std::make_shared<LSpectroBlocks>(key.nWindow, nChans);
    // Analysed outside the lock: the other display may read other segments meanwhile.
    const int64_t nBefore = pGrown->GetFrames() / LSpectroBlocks::kBlockFrames;
    LSoundSourcePtr pSource = fnOpen();
    if (!pSource || pSource->IsError()) {
        // Shown as silence, and tried again next time.
        LTRACE("LSpectroCache::Get segment %llu cannot be read", static_cast<unsigned long long>(key.nSerial));
        std::lock_guard<std::mutex> lock(mtx);
        setBusy.erase(key);
        cvDone.notify_all();
        return std::make_shared<LSpectroBlocks>(key.nWindow, nChans);
    }
    const bool bDone = pGrown->Analyze(*pSource, sFrames, analyzer, fnStop);
    std::lock_guard<std::mutex> lock(mtx);
    setBusy.erase(key);
    cvDone.notify_all();
    nAnalysed += pGrown->GetBlockCount() - nBefore;
    Entry& e = mapEntries[key];
    if (!e.pBlocks || e.pBlocks->GetFrames() < pGrown->GetFrames())
        e.pBlocks = pGrown;
    e.nUsed = ++nTick;
    Evict();
    return bDone ? pGrown : nullptr;
}

void LSpectroCache::Evict()
{
    size_t nTotal = 0;
    for (const auto& [key, e] : mapEntries)
        nTotal += e.pBlocks->GetBytes();
    while (nTotal > nBudget && mapEntries.size() > 1) {
        auto itOldest = mapEntries.begin();
        for (auto it = mapEntries.begin(); it != mapEntries.end(); ++it)
            if (it->second.nUsed < itOldest->second.nUsed)
                itOldest = it;
        nTotal -= itOldest->second.pBlocks->GetBytes();
        mapEntries.erase(itOldest);
    }
}

int64_t LSpectroCache::GetBlocksAnalysed() const
{
    std::lock_guard<std::mutex> lock(mtx);
    return nAnalysed;
}

void LSpectroCache::SetBudget(size_t nBytes)
{
    std::lock_guard<std::mutex> lock(mtx);
    nBudget = nBytes;
    Evict();
}

void LSpectroCache::Clear()
{
    std::lock_guard<std::mutex> lock(mtx);
    mapEntries.clear();
}
