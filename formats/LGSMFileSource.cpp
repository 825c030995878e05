#include "formats/LGSMFileSource.h"

#include <algorithm>
#include <climits>

#include "core/LFixed.h"
#include "core/LTrace.h"

LGSMFileSource::LGSMFileSource(const std::string& szPath) : LSoundSourceBase(kSampleRate, 1, kFullScale16)
{
    if (!file.Open(szPath, LFile::ReadExisting)) {
        LTRACE("LGSMFileSource::LGSMFileSource Unable to open file: %s", szPath.c_str());
        SetError();
        return;
    }
    const int64_t nSize = std::max<int64_t>(file.Size(), 0);
    // Positions are 32-bit: a longer file is read up to the last frame they reach.
    nFileFrames = std::min<int64_t>(nSize / LGSMFrame::kBytes, INT32_MAX / LGSMFrame::kSamples);
    sLength = static_cast<int32_t>(nFileFrames * LGSMFrame::kSamples);
    vBytes.resize(static_cast<size_t>(kBufferFrames) * LGSMFrame::kBytes);
}

void LGSMFileSource::Read(int32_t* pBuffer, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    const int64_t sFrom = sPosition;
    const int64_t sTo = sFrom + nFrames;
    sPosition = static_cast<int32_t>(std::min<int64_t>(sTo, INT32_MAX));
    if (IsError()) {
        LZeroFrames(pBuffer, nFrames, 1);
        return;
    }
    int32_t* pOut = pBuffer;
    int64_t s = sFrom;
    // Before the start and behind the end: silence.
    if (s < 0) {
        const int64_t nLead = std::min<int64_t>(sTo, 0) - s;
        LZeroFrames(pOut, static_cast<int32_t>(nLead), 1);
        pOut += nLead;
        s += nLead;
    }
    const int64_t sEnd = std::min<int64_t>(sTo, sLength);
    while (s < sEnd) {
        const int64_t nFrame = s / LGSMFrame::kSamples;
        const int64_t nOffset = s % LGSMFrame::kSamples;
        if (nFrame != nDecodedFrame)
            DecodeFrame(nFrame);
        const int64_t n = std::min<int64_t>(LGSMFrame::kSamples - nOffset, sEnd - s);
        for (int64_t i = 0; i < n; ++i)
            pOut[i] = LFrom16(aDecoded[nOffset + i]);
        pOut += n;
        s += n;
    }
    if (s < sTo)
        LZeroFrames(pOut, static_cast<int32_t>(sTo - s), 1);
}

void LGSMFileSource::DecodeFrame(int64_t nFrame)
{
    if (nFrame < nNextFrame || nFrame - nNextFrame > kWarmUpFrames) {
        codec.Reset();
        nNextFrame = std::max<int64_t>(0, nFrame - kWarmUpFrames);
    }
    for (; nNextFrame <= nFrame; ++nNextFrame) {
        const uint8_t* pBytes = FrameBytes(nNextFrame);
        if (!pBytes) {
            // The file shrank under us.
            std::fill(std::begin(aDecoded), std::end(aDecoded), 0);
        } else if (!codec.DecodeNormal(pBytes, aDecoded)) {
            LTRACE("LGSMFileSource::DecodeFrame frame %lld lacks the signature", static_cast<long long>(nNextFrame));
            ++nBadFrames;
        }
    }
    nDecodedFrame = nFrame;
}

const uint8_t* LGSMFileSource::FrameBytes(int64_t nFrame)
{
    if (nFrame < nBufferFirst || nFrame >= nBufferFirst + nBufferCount) {
        nBufferFirst = nFrame;
        nBufferCount = 0;
        const int64_t nWant = std::min(kBufferFrames, nFileFrames - nFrame);
        if (nWant <= 0 || file.Seek(nFrame * LGSMFrame::kBytes) < 0)
            return nullptr;
        nBufferCount = file.Read(vBytes.data(), nWant * LGSMFrame::kBytes) / LGSMFrame::kBytes;
        if (nBufferCount == 0)
            return nullptr;
    }
    return vBytes.data() + (nFrame - nBufferFirst) * LGSMFrame::kBytes;
}
