#include "core/LPRSourceToSink.h"

#include <vector>

#include "core/LFixed.h"
#include "core/LSRCConvertChannels.h"
#include "core/LSRCConvertRate.h"
#include "core/LSoundLimiter.h"
#include "core/LTrace.h"

LSoundSourcePtr LPRSourceToSink::Adapt(LSoundSourceBase* pSrc, int32_t nTargetRate, uint8_t nTargetChans)
{
    LSoundSourcePtr p(pSrc);
    if (!p->IsError() && nTargetChans != 0 && p->GetChannels() != nTargetChans &&
        LSRCConvertChannels::CanConvert(p->GetChannels(), nTargetChans))
        p = new LSRCConvertChannels(p.Get(), nTargetChans);
    if (!p->IsError() && p->GetSampleRate() != nTargetRate) {
        // A large step down goes in two stages so that one filter never has to span it.
        if (nTargetRate < p->GetSampleRate() / 4)
            p = new LSRCConvertRate(p.Get(), nTargetRate * 2);
        p = new LSRCConvertRate(p.Get(), nTargetRate);
    }
    if (p->GetMaxAmplitude() > kFullScale16)
        p = LSoundLimiter::Wrap(p.Get(), kFullScale16);
    return p;
}

namespace {
int32_t SinkFailed()
{
    LTRACE("LPRSourceToSink::Process Sink Write Error");
    return LProgressReport::ResultError;
}
} // namespace

int32_t LPRSourceToSink::Pump(LProgressReport& dlg, const std::string& szTitle, LSoundSourceBase* pSrc, LSoundSinkBase* pSnk)
{
    dlg.SetText(szTitle, 0);
    dlg.SetText("Please wait...", 1);
    dlg.SetProgress(0);
    LSoundSourcePtr pHold(pSrc);
    LSoundSinkPtr pSinkHold(pSnk);
    if (!pSrc || pSrc->IsError()) {
        LTRACE("LPRSourceToSink::Process Source Error");
        return LProgressReport::ResultError;
    }
    if (!pSnk || pSnk->IsError()) {
        LTRACE("LPRSourceToSink::Process Sink Error");
        return LProgressReport::ResultError;
    }
    LSoundSourcePtr pIn = Adapt(pSrc, pSnk->GetSampleRate(), pSnk->GetChannels());
    double fTotal = pIn->GetLength();
    if (fTotal == 0)
        fTotal = 1;
    std::vector<int32_t> vBuffer(static_cast<size_t>(kBlockFrames) * pIn->GetChannels());
    while (true) {
        if (dlg.IsCancelled())
            return LProgressReport::ResultCancelled;
        pIn->Read(vBuffer.data(), kBlockFrames);
        const int64_t sPos = pIn->GetPosition();
        const int64_t sLen = pIn->GetLength();
        if (sPos >= sLen) {
            const int64_t nValid = kBlockFrames - (sPos - sLen);
            if (nValid >= 1 && nValid <= kBlockFrames)
                pSnk->Write(vBuffer.data(), static_cast<int32_t>(nValid));
            return pSnk->IsError() ? SinkFailed() : LProgressReport::ResultDone;
        }
        pSnk->Write(vBuffer.data(), kBlockFrames);
        // Converting the rest into a sink that no longer takes it would only waste the time.
        if (pSnk->IsError())
            return SinkFailed();
        dlg.SetProgress(static_cast<double>(sPos) / fTotal);
    }
}
