#include "dsp/LLoudnessMeter.h"

#include <ebur128.h>

#include <algorithm>
#include <cmath>

#include "core/LTrace.h"

namespace {
// 16-bit full scale of the internal layout.
constexpr double kFullScale = 524288.0;

ebur128_state* StateOf(void* p)
{
    return static_cast<ebur128_state*>(p);
}
} // namespace

LLoudnessMeter::LLoudnessMeter(int32_t nRate, int32_t nCh) : nChans(std::max(nCh, 1))
{
    if (nRate > 0 && nCh > 0)
        pState = ebur128_init(static_cast<unsigned>(nChans), static_cast<unsigned long>(nRate),
                              EBUR128_MODE_I | EBUR128_MODE_LRA | EBUR128_MODE_TRUE_PEAK);
    if (!pState)
        LTRACE("LLoudnessMeter::LLoudnessMeter ebur128_init failed");
    vBuffer.resize(static_cast<size_t>(kBlockFrames) * nChans);
}

LLoudnessMeter::~LLoudnessMeter()
{
    if (pState) {
        ebur128_state* p = StateOf(pState);
        ebur128_destroy(&p);
    }
}

void LLoudnessMeter::Add(const int32_t* pFrames, int32_t nFrames)
{
    if (!pState)
        return;
    const size_t nSamples = static_cast<size_t>(std::clamp(nFrames, 0, kBlockFrames)) * nChans;
    for (size_t i = 0; i < nSamples; ++i)
        vBuffer[i] = pFrames[i] / kFullScale;
    if (ebur128_add_frames_double(StateOf(pState), vBuffer.data(), nSamples / nChans) != EBUR128_SUCCESS)
        LTRACE("LLoudnessMeter::Add ebur128_add_frames_double failed");
}

LLoudness LLoudnessMeter::Result() const
{
    LLoudness result;
    if (!pState)
        return result;
    double fIntegrated = -HUGE_VAL;
    if (ebur128_loudness_global(StateOf(pState), &fIntegrated) != EBUR128_SUCCESS || !std::isfinite(fIntegrated))
        return result;
    result.bMeasured = true;
    result.fIntegrated = fIntegrated;
    double fRange = 0.0;
    if (ebur128_loudness_range(StateOf(pState), &fRange) == EBUR128_SUCCESS)
        result.fRange = fRange;
    double fPeak = 0.0;
    for (int32_t c = 0; c < nChans; ++c) {
        double fChannel = 0.0;
        if (ebur128_true_peak(StateOf(pState), static_cast<unsigned>(c), &fChannel) == EBUR128_SUCCESS)
            fPeak = std::max(fPeak, fChannel);
    }
    result.fTruePeakDb = fPeak > 0.0 ? 20.0 * std::log10(fPeak) : -1e9;
    return result;
}

int32_t LLoudnessMeter::Measure(LProgressReport& dlg, LSoundSourceBase& source, int64_t nFrames, LLoudness& result)
{
    LLoudnessMeter meter(source.GetSampleRate(), source.GetChannels());
    if (meter.IsError() || source.IsError())
        return LProgressReport::ResultError;
    std::vector<int32_t> vBlock(static_cast<size_t>(kBlockFrames) * meter.nChans);
    const int64_t nTotal = std::max<int64_t>(nFrames, 1);
    for (int64_t nDone = 0; nDone < nFrames;) {
        const int32_t n = static_cast<int32_t>(std::min<int64_t>(kBlockFrames, nFrames - nDone));
        source.Read(vBlock.data(), n);
        meter.Add(vBlock.data(), n);
        nDone += n;
        dlg.SetProgress(static_cast<double>(nDone) / static_cast<double>(nTotal));
        if (dlg.IsCancelled())
            return LProgressReport::ResultCancelled;
    }
    result = meter.Result();
    return LProgressReport::ResultDone;
}
