#include "formats/LSNKPCMFileBase.h"

#include <algorithm>
#include <climits>
#include <cstring>

#include "core/LTrace.h"

namespace {
// The format chunk: the record given, or 18 bytes of plain PCM.
std::vector<uint8_t> FormatBytes(const LWaveFormatRecord* pRecord, int32_t nRate, uint8_t nChans, int nBytes)
{
    LWaveFormatRecord pcm;
    if (!pRecord) {
        const uint32_t nFrame = static_cast<uint32_t>(nChans) * static_cast<uint32_t>(nBytes);
        pcm = LWaveFormatRecord::Make(LWaveFormatRecord::kTagPCM, nChans, static_cast<uint32_t>(nRate),
                                      static_cast<uint32_t>(nRate) * nFrame, static_cast<uint16_t>(nFrame),
                                      static_cast<uint16_t>(nBytes * 8));
        pRecord = &pcm;
    }
    std::vector<uint8_t> v(LWaveFormatRecord::kFixedBytes + pRecord->cbSize, 0);
    std::copy_n(pRecord->vBytes.begin(), std::min(pRecord->vBytes.size(), v.size()), v.begin());
    v[16] = static_cast<uint8_t>(pRecord->cbSize);
    v[17] = static_cast<uint8_t>(pRecord->cbSize >> 8);
    return v;
}
} // namespace

LSNKPCMFileBase::LSNKPCMFileBase(const std::string& szPath, int32_t nRate, int32_t sStartFrame, uint8_t nChannels,
                                 int nBytes, const LWaveFormatRecord* pRecord)
    : LSoundSinkBase(nRate, nChannels),
      header(FormatBytes(pRecord, nRate, nChannels ? nChannels : 1, nBytes), pRecord && !pRecord->IsPCM(), false),
      nBytesPerSample(nBytes)
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
    if (!WriteHeader(LWaveHeader::kUnknown)) {
        SetError();
        return;
    }
    sPosition = std::max(sStartFrame, 0);
    if (sPosition > 0)
        file.Seek(std::min(header.GetBytes() + static_cast<int64_t>(sPosition) * nFrameSize, file.Size()));
    file.Truncate();
}

LSNKPCMFileBase::~LSNKPCMFileBase()
{
    Complete();
}

void LSNKPCMFileBase::ExpectFrames(int64_t nFrames)
{
    // The header can change its size only while no sample follows it.
    if (IsError() || !file.IsOpen() || sPosition != 0 || header.HasRoomForDs64() ||
        !header.NeedsRF64(nFrames * nFrameSize))
        return;
    header = LWaveHeader(header, true);
    if (file.Seek(0) != 0 || !WriteHeader(LWaveHeader::kUnknown) || !file.Truncate())
        SetError();
}

bool LSNKPCMFileBase::Complete()
{
    if (bCompleted || !file.IsOpen())
        return !IsError();
    bCompleted = true;
    if (file.Seek(0) != 0 || !WriteHeader(static_cast<int64_t>(sPosition) * nFrameSize)) {
        LTRACE("LSNKPCMFileBase::Complete closing header not written");
        SetError();
    }
    if (!file.Close()) {
        LTRACE("LSNKPCMFileBase::Complete close failed");
        SetError();
    }
    return !IsError();
}

bool LSNKPCMFileBase::WriteHeader(int64_t nDataBytes)
{
    const std::vector<uint8_t> v = header.Build(nDataBytes, nDataBytes < 0 ? LWaveHeader::kUnknown : sPosition);
    if (file.Write(v.data(), static_cast<int64_t>(v.size())) != static_cast<int64_t>(v.size())) {
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
    file.Seek(header.GetBytes() + static_cast<int64_t>(sFrame) * nFrameSize);
    file.Truncate();
}
