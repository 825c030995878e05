// Loudness as EBU R128 / ITU-R BS.1770 define it, measured by libebur128: integrated loudness
// (LUFS), loudness range (LU) and true peak (dBTP) of the audio fed in. Samples come in the
// internal layout, 16-bit full scale (524288) being 0 dBFS.
#pragma once

#include <cstdint>
#include <vector>

#include "core/LSoundSourceBase.h"
#include "core/LProgressReport.h"

struct LLoudness
{
    bool bMeasured = false;     // false for silence (every block gated away) or a failed meter
    double fIntegrated = 0.0;   // LUFS
    double fRange = 0.0;        // LU
    double fTruePeakDb = -1e9;  // dBTP, the greatest of the channels
};

class LLoudnessMeter
{
public:
    static constexpr int32_t kBlockFrames = 8192;

    LLoudnessMeter(int32_t nRate, int32_t nChans);
    ~LLoudnessMeter();
    LLoudnessMeter(const LLoudnessMeter&) = delete;
    LLoudnessMeter& operator=(const LLoudnessMeter&) = delete;

    // True when libebur128 refused the format; the meter then measures nothing.
    bool IsError() const { return pState == nullptr; }
    // At most kBlockFrames frames at a time.
    void Add(const int32_t* pFrames, int32_t nFrames);
    LLoudness Result() const;

    // Reads nFrames of the source through a meter, reporting progress and polling the dialog's
    // cancel state between blocks. 0 done, 1 cancelled, 2 error (the meter refused the format).
    static int32_t Measure(LProgressReport& dlg, LSoundSourceBase& source, int64_t nFrames, LLoudness& result);

private:
    void* pState = nullptr; // libebur128's state, kept out of this header
    int32_t nChans;
    std::vector<double> vBuffer;
};
