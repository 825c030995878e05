#include "formats/LRawFileDataSoundSinkBase.h"

#include <algorithm>
#include <climits>

#include "core/LTrace.h"
#include "formats/LRawSampleTypes.h"
#include "formats/LVoxRawSettings.h"

LRawFileDataSoundSinkBase::LRawFileDataSoundSinkBase(const std::string& szPath, int32_t nRate, uint8_t nChannels,
                                                     int32_t nEncoding, int64_t nHeaderBytes)
    : LSoundSinkBase(nRate, nChannels)
{
    switch (nEncoding) {
    case RawULaw: pfnConvert = LRawULaw::FromSamples; break;
    case RawALaw: pfnConvert = LRawALaw::FromSamples; break;
    case RawPcm16LE: pfnConvert = LRawPcm16LE::FromSamples; break;
    case RawPcm8Unsigned: pfnConvert = LRawPcm8Unsigned::FromSamples; break;
    case RawPcm8Signed: pfnConvert = LRawPcm8Signed::FromSamples; break;
    case RawPcm16BE: pfnConvert = LRawPcm16BE::FromSamples; break;
    default:
        if (LRawIsWide(nEncoding)) {
            pfnConvert = LWideWriter(LRawWideKind(nEncoding), LRawIsBigEndian(nEncoding));
            break;
        }
        LTRACE("LRawFileDataSoundSinkBase::LRawFileDataSoundSinkBase no headerless writer for encoding %d",
               static_cast<int>(nEncoding));
        SetError();
        return;
    }
    if (IsError())
        return;
    nFrameSize = static_cast<int64_t>(LVoxRawSettings::ElementSize(nEncoding)) * nChans;
    if (!file.Open(szPath, LFile::ReadWriteCreate)) {
        LTRACE("LRawFileDataSoundSinkBase::LRawFileDataSoundSinkBase unable to open file: %s", szPath.c_str());
        SetError();
        return;
    }
    if (nHeaderBytes > 0 && file.Seek(nHeaderBytes) != nHeaderBytes) {
        SetError();
        return;
    }
    vBuffer.resize(static_cast<size_t>(kBlockFrames * nFrameSize));
}

LRawFileDataSoundSinkBase::~LRawFileDataSoundSinkBase()
{
    Complete();
}

void LRawFileDataSoundSinkBase::StartHeader()
{
    // The header is in place from the start, sizes as for no data, so that a file cut short
    // still opens.
    if (IsError() || !file.IsOpen())
        return;
    const int64_t nHere = file.Tell();
    if (file.Seek(0) != 0 || !WriteHeader(file, -1) || file.Seek(nHere) != nHere) {
        LTRACE("LRawFileDataSoundSinkBase::StartHeader write failed");
        SetError();
    }
}

bool LRawFileDataSoundSinkBase::Complete()
{
    if (!file.IsOpen())
        return !IsError();
    if (file.Seek(0) != 0 || !WriteHeader(file, nDataBytes)) {
        LTRACE("LRawFileDataSoundSinkBase::Complete header write failed");
        SetError();
    }
    if (!file.Close()) {
        LTRACE("LRawFileDataSoundSinkBase::Complete close failed");
        SetError();
    }
    return !IsError();
}

void LRawFileDataSoundSinkBase::Write(const int32_t* pBuffer, int32_t nFrames)
{
    if (IsError())
        return;
    while (nFrames > 0) {
        const int32_t n = std::min(nFrames, kBlockFrames);
        const size_t nSamples = static_cast<size_t>(n) * nChans;
        pfnConvert(pBuffer, vBuffer.data(), nSamples);
        const int64_t nBytes = n * nFrameSize;
        if (file.Write(vBuffer.data(), nBytes) != nBytes) {
            LTRACE("LRawFileDataSoundSinkBase::Write write failed (disk full?)");
            SetError();
            return;
        }
        nDataBytes += nBytes;
        sPosition = static_cast<int32_t>(std::min<int64_t>(static_cast<int64_t>(sPosition) + n, INT32_MAX));
        pBuffer += nSamples;
        nFrames -= n;
    }
}
