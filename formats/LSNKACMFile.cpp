#include "formats/LSNKACMFile.h"

#include <algorithm>
#include <cstring>

#include "core/LFixed.h"
#include "core/LTrace.h"
#include "formats/LWaveHeader.h"

LSNKACMFile::LSNKACMFile(const std::string& szPath, const LWaveFormatRecord& record)
    : LSoundSinkBase(static_cast<int32_t>(record.nSamplesPerSec),
                     static_cast<uint8_t>(record.nChannels ? record.nChannels : 1))
{
    if (!file.Open(szPath, LFile::ReadWriteCreate)) {
        LTRACE("LSNKACMFile::LSNKACMFile unable to open file %s", szPath.c_str());
        SetError();
        return;
    }
    // The record as it will stand in the file: the fixed part with cbSize, then its data.
    vRecord.assign(LWaveFormatRecord::kFixedBytes + record.cbSize, 0);
    std::copy_n(record.vBytes.begin(), std::min(record.vBytes.size(), vRecord.size()), vRecord.begin());
    vRecord[16] = static_cast<uint8_t>(record.cbSize);
    vRecord[17] = static_cast<uint8_t>(record.cbSize >> 8);
    const LWaveFormatRecord pcm = LWaveFormatRecord::PCM16(record.nSamplesPerSec, nChans);
    if (IsError() || (!LCodecStream::Open(&pStream, pcm, record, 0) &&
                      !LCodecStream::Open(&pStream, pcm, record, LCodecStream::kOpenNonRealtime))) {
        LTRACE("LSNKACMFile::LSNKACMFile acmStreamOpen ERROR");
        SetError();
        return;
    }
    vSrc.resize(static_cast<size_t>(kBlockFrames) * nChans);
    uint32_t nDstBytes = 0;
    if (!pStream->Size(static_cast<uint32_t>(vSrc.size() * 2), nDstBytes, LCodecStream::kSizeSource) ||
        nDstBytes == 0) {
        LTRACE("LSNKACMFile::LSNKACMFile acmStreamSize <= 0 ERROR");
        SetError();
        return;
    }
    vDst.resize(nDstBytes);
    header.pbSrc = reinterpret_cast<const uint8_t*>(vSrc.data());
    header.pbDst = vDst.data();
    if (!WriteHeader(LWaveHeader::kUnknown))
        SetError();
}

LSNKACMFile::~LSNKACMFile()
{
    Complete();
}

bool LSNKACMFile::Complete()
{
    if (bCompleted || !pStream || !file.IsOpen())
        return !IsError();
    bCompleted = true;
    if (!IsError() && !Convert(LCodecStream::kConvertEnd))
        SetError();
    if (file.Seek(0) != 0 || !WriteHeader(static_cast<int64_t>(nEncodedBytes))) {
        LTRACE("LSNKACMFile::Complete closing header not written");
        SetError();
    }
    if (!file.Close()) {
        LTRACE("LSNKACMFile::Complete close failed");
        SetError();
    }
    return !IsError();
}

bool LSNKACMFile::WriteHeader(int64_t nDataBytes)
{
    // The "fact" chunk tells readers the true frame count: the last block is padded.
    const LWaveHeader header(vRecord, true, false);
    const std::vector<uint8_t> v = header.Build(nDataBytes, nDataBytes < 0 ? LWaveHeader::kUnknown : sPosition);
    if (file.Write(v.data(), static_cast<int64_t>(v.size())) != static_cast<int64_t>(v.size())) {
        LTRACE("LSNKACMFile::WriteHeader write failed");
        return false;
    }
    return true;
}

bool LSNKACMFile::Convert(uint32_t nFlags)
{
    header.cbSrcLength = nSrcFill * 2;
    header.cbDstLength = static_cast<uint32_t>(vDst.size());
    if (!pStream->Convert(header, nFlags)) {
        LTRACE("LSNKACMFile::Write acmStreamConvert FAILED!");
        return false;
    }
    const int64_t nBytes = header.cbDstLengthUsed;
    if (nBytes && file.Write(vDst.data(), nBytes) != nBytes) {
        LTRACE("LSNKACMFile::Write write failed (disk full?)");
        return false;
    }
    nEncodedBytes += static_cast<uint64_t>(nBytes);
    const uint32_t nUsed = header.cbSrcLengthUsed / 2;
    nSrcFill -= nUsed;
    std::copy(vSrc.begin() + nUsed, vSrc.begin() + nUsed + nSrcFill, vSrc.begin());
    return true;
}

void LSNKACMFile::Write(const int32_t* pBuffer, int32_t nFrames)
{
    if (IsError() || nFrames <= 0)
        return;
    size_t nSamples = static_cast<size_t>(nFrames) * nChans;
    while (nSamples > 0) {
        const size_t nPiece = std::min(nSamples, vSrc.size() - nSrcFill);
        int16_t* pTo = vSrc.data() + nSrcFill;
        for (size_t i = 0; i < nPiece; ++i)
            pTo[i] = LTo16(pBuffer[i]);
        pBuffer += nPiece;
        nSamples -= nPiece;
        nSrcFill += static_cast<uint32_t>(nPiece);
        const bool bFull = nSrcFill == vSrc.size();
        if (!Convert(LCodecStream::kConvertBlockAlign)) {
            SetError();
            return;
        }
        if (bFull && header.cbSrcLengthUsed == 0) {
            LTRACE("LSNKACMFile::Write acmStreamConvert is not using the src!");
            SetError();
            return;
        }
    }
    sPosition = static_cast<int32_t>(std::min<int64_t>(static_cast<int64_t>(sPosition) + nFrames, INT32_MAX));
}
