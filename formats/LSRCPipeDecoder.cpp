#include "formats/LSRCPipeDecoder.h"

#include <algorithm>
#include <cstring>

#include "core/LTrace.h"
#include "platform/engine/LChildProcess.h"

namespace {

constexpr int32_t kBlockFrames = 8192;
constexpr uint32_t kUnknownSize = 0xFFFFFFFF;
constexpr uint64_t kHeaderLimit = 1 << 20;

uint32_t Get32(const uint8_t* p)
{
    return p[0] | (p[1] << 8) | (p[2] << 16) | (static_cast<uint32_t>(p[3]) << 24);
}

uint16_t Get16(const uint8_t* p)
{
    return static_cast<uint16_t>(p[0] | (p[1] << 8));
}

} // namespace

LSRCPipeDecoder::LSRCPipeDecoder(const std::vector<std::string>& vArgs, const std::string& szWhat, int nIdleLimit)
    : LSoundSourceBase(11025, 1, 0x80000), pChild(std::make_unique<LChildProcess>()), szWhat(szWhat),
      nIdleLimitMs(nIdleLimit)
{
    std::string szWhy;
    if (!pChild->Start(vArgs, LChildProcess::PipeOut, &szWhy)) {
        Fail("cannot start " + szWhat + ": " + szWhy);
        return;
    }
    if (!ReadHeader())
        return;
    vBytes.resize(static_cast<size_t>(kBlockFrames) * nFrameBytes);
}

LSRCPipeDecoder::~LSRCPipeDecoder() = default;

void LSRCPipeDecoder::Fail(const std::string& szWhy)
{
    LTRACE("LSRCPipeDecoder::Fail %s", szWhy.c_str());
    if (szError.empty())
        szError = szWhy;
    bEnded = true;
    sEstimate = sDecoded;
    if (pChild->IsRunning())
        pChild->Kill();
    SetError();
}

// The decoder's own words say best why it gave up; the exit status only that it did.
void LSRCPipeDecoder::Finish()
{
    bEnded = true;
    if (!pChild->Wait(5000))
        pChild->Kill();
    if (pChild->GetExitCode() != 0) {
        const std::string szLine = pChild->GetLastErrorLine();
        Fail(szWhat + " failed" + (szLine.empty() ? std::string() : ": " + szLine));
    }
}

bool LSRCPipeDecoder::Skip(uint32_t nBytes)
{
    uint8_t tmp[4096];
    while (nBytes > 0) {
        const size_t n = std::min<size_t>(nBytes, sizeof(tmp));
        if (pChild->ReadFull(tmp, n, nIdleLimitMs) != n)
            return false;
        nBytes -= static_cast<uint32_t>(n);
    }
    return true;
}

bool LSRCPipeDecoder::ReadRiffHead()
{
    uint8_t head[12];
    if (pChild->ReadFull(head, 12, nIdleLimitMs) != 12 || (std::memcmp(head, "RIFF", 4) && std::memcmp(head, "RF64", 4)) ||
        std::memcmp(head + 8, "WAVE", 4)) {
        Finish();
        Fail(szError.empty() ? szWhat + " sent no sound" : szError);
        return false;
    }
    return true;
}

bool LSRCPipeDecoder::ReadFormat(uint32_t nSize)
{
    uint8_t fmt[4096];
    if (pChild->ReadFull(fmt, nSize + (nSize & 1), nIdleLimitMs) != nSize + (nSize & 1)) {
        Fail(szWhat + " sent a stream cut short");
        return false;
    }
    uint16_t wTag = Get16(fmt);
    if (wTag == 0xFFFE && nSize >= 26)
        wTag = Get16(fmt + 24);
    const uint16_t nChannels = Get16(fmt + 2);
    const uint32_t nRate = Get32(fmt + 4);
    nBits = Get16(fmt + 14);
    nFloat = wTag == 3;
    const bool bPcm = (wTag == 1 && (nBits == 8 || nBits == 16 || nBits == 24 || nBits == 32)) ||
                      (nFloat && nBits == 32);
    if (!bPcm || nChannels < 1 || nChannels > 255 || nRate < 1 || nRate > 196000) {
        Fail(szWhat + " sent sound in a form Sonitra does not read");
        return false;
    }
    SetSampleRate(static_cast<int32_t>(nRate));
    SetChannels(static_cast<uint8_t>(nChannels));
    nFrameBytes = nChannels * nBits / 8;
    return true;
}

bool LSRCPipeDecoder::ReadHeader()
{
    if (!ReadRiffHead())
        return false;
    bool bFormat = false;
    // Chunks ahead of the sound are skipped, but only so many: a stream is not a header.
    uint64_t nHeaderBytes = 12;
    while (nHeaderBytes < kHeaderLimit) {
        uint8_t chunk[8];
        if (pChild->ReadFull(chunk, 8, nIdleLimitMs) != 8) {
            Finish();
            Fail(szError.empty() ? szWhat + " sent a stream cut short" : szError);
            return false;
        }
        const uint32_t nSize = Get32(chunk + 4);
        nHeaderBytes += 8 + static_cast<uint64_t>(nSize);
        if (!std::memcmp(chunk, "data", 4)) {
            if (!bFormat) {
                Fail(szWhat + " sent sound with no format");
                return false;
            }
            if (nSize != kUnknownSize)
                sEstimate = nSize / static_cast<uint32_t>(nFrameBytes);
            return true;
        }
        if (!std::memcmp(chunk, "fmt ", 4) && nSize >= 16 && nSize <= 4096) {
            if (!ReadFormat(nSize))
                return false;
            bFormat = true;
            continue;
        }
        if (nHeaderBytes >= kHeaderLimit || !Skip(nSize + (nSize & 1))) {
            Fail(szWhat + " sent a stream cut short");
            return false;
        }
    }
    Fail(szWhat + " sent no sound");
    return false;
}

void LSRCPipeDecoder::Convert(const uint8_t* p, int32_t* pOut, size_t nSamples) const
{
    // Internal samples hold 16-bit values times 16: wider samples keep their top 20 bits.
    switch (nBits) {
    case 8:
        for (size_t i = 0; i < nSamples; ++i)
            pOut[i] = (static_cast<int32_t>(p[i]) - 128) * 4096;
        break;
    case 16:
        for (size_t i = 0; i < nSamples; ++i)
            pOut[i] = static_cast<int16_t>(Get16(p + 2 * i)) * 16;
        break;
    case 24:
        for (size_t i = 0; i < nSamples; ++i) {
            const uint8_t* q = p + 3 * i;
            const uint32_t u = static_cast<uint32_t>(q[0]) << 8 | static_cast<uint32_t>(q[1]) << 16 |
                               static_cast<uint32_t>(q[2]) << 24;
            const int32_t v = static_cast<int32_t>(u) >> 8;
            pOut[i] = v >> 4;
        }
        break;
    default:
        for (size_t i = 0; i < nSamples; ++i) {
            const uint32_t u = Get32(p + 4 * i);
            if (nFloat) {
                float f;
                std::memcpy(&f, &u, 4);
                const float fClamped = std::clamp(f, -2.0f, 2.0f);
                pOut[i] = static_cast<int32_t>(fClamped * 524288.0f);
            } else {
                pOut[i] = static_cast<int32_t>(u) >> 12;
            }
        }
        break;
    }
}

void LSRCPipeDecoder::Read(int32_t* pBuffer, int32_t nFrames)
{
    int32_t nDone = 0;
    while (nDone < nFrames && !bEnded) {
        const int32_t nWant = std::min(nFrames - nDone, kBlockFrames);
        const size_t nBytes = static_cast<size_t>(nWant) * nFrameBytes;
        size_t nGot = 0;
        while (nGot < nBytes) {
            const int64_t n = pChild->Read(vBytes.data() + nGot, nBytes - nGot, nIdleLimitMs);
            if (n == LChildProcess::ReadTimeout) {
                Fail(szWhat + " stopped answering");
                break;
            }
            if (n <= 0) {
                Finish();
                break;
            }
            nGot += static_cast<size_t>(n);
        }
        const int32_t nWhole = static_cast<int32_t>(nGot / nFrameBytes);
        Convert(vBytes.data(), pBuffer + static_cast<size_t>(nDone) * nChans, static_cast<size_t>(nWhole) * nChans);
        nDone += nWhole;
        sDecoded += nWhole;
        if (nGot < nBytes)
            break;
    }
    if (nDone < nFrames)
        LZeroFrames(pBuffer + static_cast<size_t>(nDone) * nChans, nFrames - nDone, nChans);
    sPosition += nFrames;
}

int32_t LSRCPipeDecoder::GetLength()
{
    if (bEnded)
        return static_cast<int32_t>(std::min<int64_t>(sDecoded, INT32_MAX));
    // While the decoder runs there may always be more: never report an end not yet met.
    return static_cast<int32_t>(std::min<int64_t>(std::max<int64_t>(sEstimate, int64_t(sPosition) + 1), INT32_MAX));
}
