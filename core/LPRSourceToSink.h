// The pump: moves a source into a sink block by block, adapting channels, sample rate and
// amplitude to what the sink takes, and reporting to a progress display that may cancel it.
#pragma once

#include <string>

#include "core/LSoundSinkBase.h"
#include "core/LSoundSourceBase.h"
#include "core/LProgressReport.h"

class LPRSourceToSink
{
public:
    static constexpr int32_t kBlockFrames = 8192;

    // Results as a process's: 0 done, 1 cancelled, 2 error. The sink may be null (an error).
    static int32_t Pump(LProgressReport& report, const std::string& szTitle, LSoundSourceBase* pSource,
                        LSoundSinkBase* pSink);
    // Wraps a source in the converters a consumer of this rate and channel count needs, then in
    // the peak limiter when the source may exceed 16-bit full scale.
    static LSoundSourcePtr Adapt(LSoundSourceBase* pSource, int32_t nTargetRate, uint8_t nTargetChans);
};
