// The recorder's observer. Every call arrives on the user-interface thread with the cookie given
// to LSoundRecorder::SetNotify.
#pragma once

#include <cstdint>

#include "devices/LSoundLevels.h"

class LSoundRecorderNotify
{
public:
    virtual ~LSoundRecorderNotify() = default;
    virtual void RecorderRecording(uint32_t nCookie) {}
    virtual void RecorderWaiting(uint32_t nCookie) {}
    virtual void RecorderStopped(uint32_t nCookie) {}
    // Milliseconds of sink time up to the last block at or above the stop threshold.
    virtual void RecorderTime(uint32_t nCookie, int32_t nMilliseconds) {}
    virtual void RecorderLevels(uint32_t nCookie, const LSoundLevels& levels) {}
};
