#include "formats/LSNKPCMFileBase.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "core/LTrace.h"

namespace {
void Put16(uint8_t* p, uint32_t v)
{
    p[0] = static_cast<uint8_t>(v);
    p[1] = static_cast<uint8_t>(v >> 8);
}
void Put32(uint8_t* p, uint32_t v)
{
    Put16(p, v & 0xFFFF);
    Put16(p + 2, v >> 16);
}
constexpr uint32_t kOpenSize = 0xFFFFFFFF;
} // namespace

LSNKPCMFileBase::LSNKPCMFileBase(const std::string& szPath, int32_t nRate, int32_t sStartFrame, uint8_t nChannels,
                                 int nBytes)
    : LSoundSinkBase(nRate, nChannels), nBytesPerSample(nBytes)
{
    nFrameSize = nChans * nBytesPerSample;
    if (IsError())
        return;
    if (!file.Open(szPath, LFile::ReadWriteKeep)) {
        LTRACE("LSNKPCMFileBase::LSNKPCMFileBase unable to open file: %s", szPath.c_str());
        SetError();
        return;
    }
    vBuffer.resize(static_cast<size_t>(kBlockFrames) * nFrameSize);
    if (!WriteHeader(kOpenSize, kOpenSize)) {
        SetError();
        return;
    }
    sPosition = std::max(sStartFrame, 0);
    if (sPosition > 0)
        file.Seek(std::min(kHeaderBytes + static_cast<int64_t>(sPosition) * nFrameSize, file.Size()));
    file.Truncate();
}

LSNKPCMFileBase::~LSNKPCMFileBase()
{
    Complete();
}

bool LSNKPCMFileBase::Complete()
{
    if (bCompleted || !file.IsOpen())
        return !IsError();
    bCompleted = true;
    // Sizes that do not fit stay in the open form, which readers take as "up to the end of the file".
    const int64_t nData = static_cast<int64_t>(sPosition) * nFrameSize;
    const bool bFits = nData + 38 < kOpenSize;
    if (file.Seek(0) != 0 ||
        !WriteHeader(bFits ? static_cast<uint32_t>(38 + nData) : kOpenSize, bFits ? static_cast<uint32_t>(nData) : kOpenSize)) {
        LTRACE("LSNKPCMFileBase::Complete closing header not written");
        SetError();
    }
    if (!file.Close()) {
        LTRACE("LSNKPCMFileBase::Complete close failed");
        SetError();
    }
    return !IsError();
}

bool LSNKPCMFileBase::WriteHeader(uint32_t nRiffSize, uint32_t nDataSize)
{
    uint8_t header[kHeaderBytes];
    std::memcpy(header, "RIFF", 4);
    Put32(header + 4, nRiffSize);
    std::memcpy(header + 8, "WAVEfmt ", 8);
    Put32(header + 16, 18);
    Put16(header + 20, 1);
    Put16(header + 22, nChans);
    Put32(header + 24, static_cast<uint32_t>(nSampleRate));
    Put32(header + 28, static_cast<uint32_t>(nSampleRate) * static_cast<uint32_t>(nFrameSize));
    Put16(header + 32, static_cast<uint32_t>(nFrameSize));
    Put16(header + 34, static_cast<uint32_t>(nBytesPerSample * 8));
    Put16(header + 36, 0);
    std::memcpy(header + 38, "data", 4);
    Put32(header + 42, nDataSize);
    if (file.Write(header, kHeaderBytes) != kHeaderBytes) {
        LTRACE("LSNKPCMFileBase::WriteHeader write failed");
        return false;
    }
    return true;
}

void LSNKPCMFileBase::Write(const int32_t* pBuffer, int32_t nFrames)
{
    if (IsError())
        return;
    while (nFrames > 0) {
        const int32_t n = std::min(nFrames, kBlockFrames);
        const size_t nSamples = static_cast<size_t>(n) * nChans;
        Convert(pBuffer, vBuffer.data(), nSamples);
        const int64_t nBytes = static_cast<int64_t>(n) * nFrameSize;
        if (file.Write(vBuffer.data(), nBytes) != nBytes) {
            LTRACE("LSNKPCMFileBase::Write write failed (disk full?)");
            SetError();
            return;
        }
        sPosition = static_cast<int32_t>(std::min<int64_t>(static_cast<int64_t>(sPosition) + n, INT32_MAX));
        pBuffer += nSamples;
        nFrames -= n;
    }
}

void LSNKPCMFileBase::SetPosition(int32_t sNewPosition)
{
    if (sNewPosition > sPosition) {
        LTRACE("LSNKPCMFileBase::Seek Position > sPosition");
        return;
    }
    if (sNewPosition < 0) {
        LTRACE("LSNKPCMFileBase::Seek Position < 0");
        sNewPosition = 0;
    }
    CutAt(sNewPosition);
}

void LSNKPCMFileBase::CutAt(int32_t sFrame)
{
    sPosition = sFrame;
    if (!file.IsOpen())
        return;
    file.Seek(kHeaderBytes + static_cast<int64_t>(sFrame) * nFrameSize);
    file.Truncate();
}
