#include "formats/LGSMFileSink.h"

#include <algorithm>
#include <climits>

#include "core/LFixed.h"
#include "core/LTrace.h"

LGSMFileSink::LGSMFileSink(const std::string& szPath) : LSoundSinkBase(kSampleRate, 1)
{
    if (!file.Open(szPath, LFile::ReadWriteCreate)) {
        LTRACE("LGSMFileSink::LGSMFileSink unable to open file: %s", szPath.c_str());
        SetError();
        return;
    }
    vBytes.resize(static_cast<size_t>(kBufferFrames) * LGSMFrame::kBytes);
}

LGSMFileSink::~LGSMFileSink()
{
    Complete();
}

bool LGSMFileSink::Complete()
{
    if (!file.IsOpen())
        return !IsError();
    if (nPending > 0) {
        std::fill(aPending + nPending, aPending + LGSMFrame::kSamples, 0);
        EncodePending();
    }
    Flush();
    if (!file.Close()) {
        LTRACE("LGSMFileSink::Complete close failed");
        SetError();
    }
    return !IsError();
}

void LGSMFileSink::Write(const int32_t* pBuffer, int32_t nFrames)
{
    if (IsError() || nFrames <= 0)
        return;
    for (int32_t i = 0; i < nFrames;) {
        const int32_t n = std::min(nFrames - i, LGSMFrame::kSamples - nPending);
        for (int32_t k = 0; k < n; ++k)
            aPending[nPending + k] = LTo16(pBuffer[i + k]);
        nPending += n;
        i += n;
        if (nPending == LGSMFrame::kSamples)
            EncodePending();
    }
    sPosition = static_cast<int32_t>(std::min<int64_t>(int64_t{sPosition} + nFrames, INT32_MAX));
}

void LGSMFileSink::SetPosition(int32_t sNewPosition)
{
    LTRACE("LGSMFileSink::Seek Function not implemented");
}

void LGSMFileSink::EncodePending()
{
    codec.EncodeNormal(aPending, vBytes.data() + static_cast<size_t>(nCoded) * LGSMFrame::kBytes);
    nPending = 0;
    if (++nCoded == kBufferFrames)
        Flush();
}

void LGSMFileSink::Flush()
{
    const int64_t nBytes = int64_t{nCoded} * LGSMFrame::kBytes;
    nCoded = 0;
    if (nBytes > 0 && !IsError() && file.Write(vBytes.data(), nBytes) != nBytes) {
        LTRACE("LGSMFileSink::Flush write failed (disk full?)");
        SetError();
    }
}
