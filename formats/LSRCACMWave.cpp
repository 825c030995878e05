#include "formats/LSRCACMWave.h"

#include <algorithm>
#include <climits>

#include "core/LFixed.h"
#include "core/LTrace.h"

LSRCACMWave::LSRCACMWave(LFile&& fileIn, const LWaveFormatRecord& record, uint32_t nSize, int64_t nFactFrames)
    : LSoundSourceBase(static_cast<int32_t>(record.nSamplesPerSec), static_cast<uint8_t>(record.nChannels), 0x7FFF0),
      file(std::move(fileIn)), nDataSize(nSize), sFactFrames(nFactFrames)
{
    nFileRate = std::max<uint32_t>(record.nSamplesPerSec, 1);
    nAvgBytesPerSec = record.nAvgBytesPerSec ? record.nAvgBytesPerSec : nFileRate;
    nBlockAlign = std::max<uint32_t>(record.nBlockAlign, 1);
    if (!file.IsOpen()) {
        LTRACE("LSRCACMWave::LSRCACMWave hFile == INVALID_HANDLE_VALUE ERROR");
        SetError();
        return;
    }
    if (IsError() || record.nChannels == 0) {
        SetError();
        return;
    }
    const LWaveFormatRecord pcm = LWaveFormatRecord::PCM16(record.nSamplesPerSec, record.nChannels);
    if (!LCodecStream::Open(&pStream, record, pcm, 0) &&
        !LCodecStream::Open(&pStream, record, pcm, LCodecStream::kOpenNonRealtime)) {
        LTRACE("LSRCACMWave::LSRCACMWave acmStreamOpen handle invalid ERROR");
        SetError();
        return;
    }
    const uint32_t nDstBytes = static_cast<uint32_t>(kBlockFrames) * nChans * 2;
    uint32_t nSrcBytes = 0;
    if (!pStream->Size(nDstBytes, nSrcBytes, LCodecStream::kSizeDestination) || nSrcBytes == 0) {
        LTRACE("LSRCACMWave::LSRCACMWave acmStreamSize ERROR");
        SetError();
        return;
    }
    uint32_t nOneBlock = 0;
    if (!pStream->GetShape().bVariable && pStream->Size(nBlockAlign, nOneBlock, LCodecStream::kSizeSource))
        nBlockFrames = nOneBlock / (2u * nChans);
    nDataStart = file.Tell();
    if (nDataSize == kStreamingSize)
        nDataSize = static_cast<uint32_t>(std::clamp<int64_t>(file.Size() - nDataStart, 0, UINT32_MAX));
    // Past the file's end the header's length would read as silence.
    nHeldBytes = static_cast<uint32_t>(std::clamp<int64_t>(file.Size() - nDataStart, 0, nDataSize));
    vSrc.resize(nSrcBytes);
    vDst.resize(nDstBytes / 2);
    if (nBlockFrames && pStream->GetShape().nSettleBlocks) {
        vKept.push_back({0, pStream->SaveState()});
        nRunBlock = 0;
    }
    header.pbSrc = vSrc.data();
    header.pbDst = reinterpret_cast<uint8_t*>(vDst.data());
}

void LSRCACMWave::ResetStream()
{
    header.cbSrcLength = 0;
    header.cbDstLength = 0;
    pStream->Convert(header, LCodecStream::kConvertStart);
    nSrcFill = 0;
    nDstHeld = 0;
    nDstNext = 0;
    sEndFrame = -1;
    nRunBlock = -1;
}

bool LSRCACMWave::Refill(int32_t nWanted)
{
    // A decoder that finds its own frames may use bytes (no frame in them) and give nothing yet:
    // it is fed on until it gives frames or uses nothing more.
    for (;;) {
        ReadSource();
        header.cbSrcLength = nSrcFill;
        header.cbDstLength = static_cast<uint32_t>(vDst.size() * 2);
        bool bOk = pStream->Convert(header, LCodecStream::kConvertBlockAlign);
        if (!bOk)
            LTRACE("LSRCACMWave::Read acmStreamConvert FAILED");
        if (bOk && header.cbDstLengthUsed == 0 && nSrcFill < vSrc.size()) {
            bOk = pStream->Convert(header, LCodecStream::kConvertEnd);
            if (!bOk)
                LTRACE("LSRCACMWave::Read acmStreamConvert(ACM_STREAMCONVERTF_END) FAILED");
        }
        if (!bOk || (header.cbDstLengthUsed == 0 && header.cbSrcLengthUsed == 0)) {
            LTRACE("LSRCACMWave::Read End Reached");
            sEndFrame = std::max<int64_t>(0, static_cast<int64_t>(sPosition) - nWanted);
            return false;
        }
        KeepState(header.cbSrcLengthUsed);
        nSrcFill -= header.cbSrcLengthUsed;
        std::copy(vSrc.begin() + header.cbSrcLengthUsed, vSrc.begin() + header.cbSrcLengthUsed + nSrcFill, vSrc.begin());
        if (header.cbDstLengthUsed > 0) {
            nDstHeld = header.cbDstLengthUsed / 2;
            nDstNext = 0;
            return true;
        }
    }
}

void LSRCACMWave::ReadSource()
{
    const int64_t nFree = static_cast<int64_t>(vSrc.size()) - nSrcFill;
    const int64_t nLeft = static_cast<int64_t>(nDataSize) - nBytesRead;
    const int64_t nAsk = std::min(nFree, nLeft);
    if (nAsk <= 0)
        return;
    const int64_t nGot = file.Read(vSrc.data() + nSrcFill, nAsk);
    nSrcFill += static_cast<uint32_t>(nGot);
    nBytesRead += static_cast<uint32_t>(nGot);
    if (nGot < nAsk)
        nDataSize = nBytesRead; // the file is shorter than its header says
}

void LSRCACMWave::Read(int32_t* pBuffer, int32_t nFrames)
{
    if (nFrames <= 0)
        return;
    const int64_t sTo = static_cast<int64_t>(sPosition) + nFrames;
    sPosition = static_cast<int32_t>(std::min<int64_t>(sTo, INT32_MAX));
    if (IsError() || sTo <= 0) {
        LZeroFrames(pBuffer, nFrames, nChans);
        return;
    }
    // Frames before frame 0 are silence.
    const int32_t nLead = sTo < nFrames ? static_cast<int32_t>(nFrames - sTo) : 0;
    LZeroFrames(pBuffer, nLead, nChans);
    int32_t* pOut = pBuffer + static_cast<size_t>(nLead) * nChans;
    int32_t nWanted = nFrames - nLead;
    // Past the true end that a "fact" chunk gives lies only the padding of the last block.
    if (sFactFrames >= 0 && sTo > sFactFrames) {
        const int32_t nPast = static_cast<int32_t>(std::min<int64_t>(sTo - sFactFrames, nWanted));
        LZeroFrames(pOut + static_cast<size_t>(nWanted - nPast) * nChans, nPast, nChans);
        nWanted -= nPast;
    }
    while (nWanted > 0) {
        if (nDstHeld == 0 && (sEndFrame >= 0 || !Refill(nWanted))) {
            LZeroFrames(pOut, nWanted, nChans);
            return;
        }
        const uint32_t nTake = std::min<uint32_t>(nDstHeld, static_cast<uint32_t>(nWanted) * nChans);
        const int16_t* pIn = vDst.data() + nDstNext;
        for (uint32_t i = 0; i < nTake; ++i)
            pOut[i] = LFrom16(pIn[i]);
        pOut += nTake;
        nDstNext += nTake;
        nDstHeld -= nTake;
        nWanted -= static_cast<int32_t>(nTake / nChans);
    }
}

int64_t LSRCACMWave::FrameOfByte(uint64_t nByte) const
{
    if (nBlockFrames)
        return static_cast<int64_t>(nByte / nBlockAlign * nBlockFrames);
    return static_cast<int64_t>(nByte / nAvgBytesPerSec * nFileRate + nByte % nAvgBytesPerSec * nFileRate / nAvgBytesPerSec);
}

int64_t LSRCACMWave::FramesIn(uint32_t nBytes) const
{
    if (nBlockFrames == 0)
        return FrameOfByte(nBytes);
    uint32_t nPCMBytes = 0;
    pStream->Size(nBytes, nPCMBytes, LCodecStream::kSizeSource);
    return nPCMBytes / (2 * nChans);
}

uint64_t LSRCACMWave::ByteOfFrame(int64_t sFrame) const
{
    const uint64_t f = static_cast<uint64_t>(sFrame);
    return f / nFileRate * nAvgBytesPerSec + f % nFileRate * nAvgBytesPerSec / nFileRate;
}

void LSRCACMWave::SetPosition(int32_t sNewPosition)
{
    if (IsError()) {
        sPosition = sNewPosition;
        return;
    }
    ResetStream();
    if (sNewPosition <= 0) {
        file.Seek(nDataStart);
        nBytesRead = 0;
        sPosition = sNewPosition;
        nRunBlock = vKept.empty() ? -1 : 0;
        return;
    }
    if (ResumeNear(sNewPosition))
        return;
    uint64_t nOffset = ByteOfFrame(sNewPosition);
    if (nOffset >= nDataSize) {
        file.Seek(nDataStart + nDataSize);
        nBytesRead = nDataSize;
        sEndFrame = FramesIn(nDataSize);
        sPosition = sNewPosition;
        return;
    }
    nOffset -= nOffset % nBlockAlign;
    // The average rate is rounded in most records (or wrong): never start behind the frame asked.
    if (nBlockFrames && FrameOfByte(nOffset) > sNewPosition)
        nOffset = static_cast<uint64_t>(sNewPosition) / nBlockFrames * nBlockAlign;
    // A decoder with memory starts a few blocks early, within the frames the discard can cover.
    const uint64_t nSettle = pStream->GetShape().nSettleBlocks;
    if (nBlockFrames && nSettle && (nSettle + 1) * nBlockFrames <= kBlockFrames)
        nOffset -= std::min<uint64_t>(nOffset / nBlockAlign, nSettle) * nBlockAlign;
    file.Seek(nDataStart + static_cast<int64_t>(nOffset));
    nBytesRead = static_cast<uint32_t>(nOffset);
    sPosition = static_cast<int32_t>(std::min<int64_t>(FrameOfByte(nOffset), INT32_MAX));
    const int64_t nGap = static_cast<int64_t>(sNewPosition) - sPosition;
    if (nGap >= 1 && nGap <= kBlockFrames)
        Discard(nGap);
    sPosition = sNewPosition;
}

void LSRCACMWave::Discard(int64_t nFrames)
{
    // Straight from the decoded buffer: nothing to convert or store.
    while (nFrames > 0) {
        if (nDstHeld == 0 && (sEndFrame >= 0 || !Refill(0)))
            return;
        const uint32_t nTake = static_cast<uint32_t>(std::min<int64_t>(nDstHeld, nFrames * nChans));
        nDstNext += nTake;
        nDstHeld -= nTake;
        nFrames -= nTake / nChans;
        sPosition += static_cast<int32_t>(nTake / nChans);
    }
}

int32_t LSRCACMWave::GetLength()
{
    if (IsError())
        return 0;
    int64_t nLength = sEndFrame;
    if (nLength < 0) {
        const uint32_t nUnread = nDataSize - (nBytesRead - nSrcFill);
        nLength = std::max(sPosition, 0) + static_cast<int64_t>(nDstHeld / nChans) + FramesIn(nUnread);
    }
    if (sFactFrames >= 0)
        nLength = std::min(nLength, sFactFrames);
    return static_cast<int32_t>(std::min<int64_t>(nLength, INT32_MAX));
}

int32_t LSRCACMWave::GetLengthInFile()
{
    if (IsError())
        return 0;
    return static_cast<int32_t>(std::min<int64_t>(FramesIn(nHeldBytes), GetLength()));
}

void LSRCACMWave::KeepState(uint32_t nBytesUsed)
{
    if (nRunBlock < 0)
        return;
    if (nBytesUsed % nBlockAlign) { // a last part block: nothing follows it to resume at
        nRunBlock = -1;
        return;
    }
    nRunBlock += nBytesUsed / nBlockAlign;
    if (vKept.size() < kMaxKeptStates && nRunBlock > vKept.back().nBlock)
        vKept.push_back({nRunBlock, pStream->SaveState()});
}

bool LSRCACMWave::ResumeNear(int32_t sFrame)
{
    if (vKept.empty())
        return false;
    const int64_t nBlock = sFrame / nBlockFrames;
    auto it = std::upper_bound(vKept.begin(), vKept.end(), nBlock,
                               [](int64_t n, const LKeptState& k) { return n < k.nBlock; });
    if (it == vKept.begin())
        return false;
    --it;
    const int64_t sKept = it->nBlock * nBlockFrames;
    const uint64_t nOffset = static_cast<uint64_t>(it->nBlock) * nBlockAlign;
    if (sFrame - sKept > kBlockFrames || nOffset >= nDataSize)
        return false;
    pStream->LoadState(it->vState);
    file.Seek(nDataStart + static_cast<int64_t>(nOffset));
    nBytesRead = static_cast<uint32_t>(nOffset);
    nRunBlock = it->nBlock;
    sPosition = static_cast<int32_t>(sKept);
    Discard(sFrame - sKept);
    sPosition = sFrame;
    return true;
}
