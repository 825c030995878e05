// The pump: moves a source into a sink block by block behind a progress dialog, adapting
// channels, sample rate and amplitude to what the sink takes.
#pragma once

#include <string>

#include "core/LSoundSinkBase.h"
#include "core/LSoundSourceBase.h"
#include "work/LProgressDialog.h"

class LPRSourceToSink : public LProgressDialog
{
public:
    static constexpr int32_t kBlockFrames = 8192;

    LPRSourceToSink(const std::string& szTitle, LSoundSourceBase* pSource, LSoundSinkBase* pSink);
    int32_t Process() override;

    // The pump body on a given dialog (an outer process's dialog, for instance). The sink may be null.
    static int32_t Pump(LProgressDialog& dlg, const std::string& szTitle, LSoundSourceBase* pSource, LSoundSinkBase* pSink);
    // Wraps a source in the converters a consumer of this rate and channel count needs, then in
    // the peak limiter when the source may exceed 16-bit full scale.
    static LSoundSourcePtr Adapt(LSoundSourceBase* pSource, int32_t nTargetRate, uint8_t nTargetChans);

private:
    std::string szPumpTitle;
    LSoundSourcePtr pSource;
    LSoundSinkPtr pSink;
};
