#include "formats/LSNKVOX.h"

#include <algorithm>
#include <climits>

#include "core/LTrace.h"

LSNKVOX::LSNKVOX(const std::string& szFileName, int32_t nRate) : LSoundSinkBase(nRate, 1)
{
    if (!file.Open(szFileName, LFile::ReadWriteCreate)) {
        LTRACE("LSNKVOX::LSNKVOX unable to open file: %s", szFileName.c_str());
        SetError();
    }
}

LSNKVOX::~LSNKVOX()
{
    Complete();
}

bool LSNKVOX::Complete()
{
    if (file.IsOpen() && !file.Close()) {
        LTRACE("LSNKVOX::Complete close failed");
        SetError();
    }
    return !IsError();
}

void LSNKVOX::Write(const int32_t* pBuffer, int32_t nFrames)
{
    if (IsError() || nFrames <= 0)
        return;
    sPosition = static_cast<int32_t>(std::min<int64_t>(static_cast<int64_t>(sPosition) + nFrames, INT32_MAX));
    int32_t nBytes = 0;
    for (int32_t i = 0; i < nFrames; ++i) {
        const uint8_t nCode = adpcm.Encode(pBuffer[i]);
        if (!bPending) {
            nPendingCode = nCode;
            bPending = true;
            continue;
        }
        aBuffer[nBytes++] = static_cast<uint8_t>((nPendingCode << 4) | nCode);
        bPending = false;
        if (nBytes == kBlockBytes || i + 1 == nFrames) {
            if (file.Write(aBuffer, nBytes) != nBytes) {
                LTRACE("LSNKVOX::Write write failed (disk full?)");
                SetError();
                return;
            }
            nBytes = 0;
        }
    }
    if (nBytes > 0 && file.Write(aBuffer, nBytes) != nBytes) {
        LTRACE("LSNKVOX::Write write failed (disk full?)");
        SetError();
    }
}
