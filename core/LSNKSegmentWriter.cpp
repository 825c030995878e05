#include "core/LSNKSegmentWriter.h"

#include <algorithm>
#include <bit>
#include <climits>

#include "core/LAudioCutTank.h"
#include "core/LTrace.h"

namespace {
uint8_t PeakByte(int64_t nMagnitude)
{
    return static_cast<uint8_t>(std::min<int64_t>(nMagnitude >> 11, 255));
}
} // namespace

LSNKSegmentWriter::LSNKSegmentWriter(LCutListAudio* pTargetDoc, int32_t nRate, uint8_t nChannels)
    : LSoundSinkBase(nRate, nChannels), pTarget(pTargetDoc)
{
    if (nSampleRate < 1) {
        LTRACE("LSNKSegmentWriter::LSNKSegmentWriter SampleRate <= 0");
        nSampleRate = 44100;
        SetError();
    }
    nFrameBytes = nChans * 4;
    vMax.assign(nChans, 0);
    vMin.assign(nChans, 0);
    vRecords.reserve(static_cast<size_t>(8192 / kOverviewFrames + 2) * nChans * 2);
    LAudioCutTank& tank = LAudioCutTank::Instance();
    bool bClaimed = false;
    const uint16_t nRef = tank.GetNewRefAndIncRef(&bClaimed);
    if (!bClaimed) {
        // Every number is taken: writing over segment 0 would corrupt whoever holds it.
        SetError();
        return;
    }
    cut = LAudioCut::Adopt(nRef, 0, kGainUnity, 0);
    // Old files under the number are unlinked rather than emptied: one may be a hard link that a
    // saved project still holds.
    LFile::Delete(tank.GetAudFilePath(cut.nRef));
    LFile::Delete(tank.GetGrfFilePath(cut.nRef));
    if (!fileAud.Open(tank.GetAudFilePath(cut.nRef), LFile::ReadWriteCreate) ||
        !fileGrf.Open(tank.GetGrfFilePath(cut.nRef), LFile::ReadWriteCreate)) {
        LTRACE("LSNKSegmentWriter::LSNKSegmentWriter cannot create segment %u", cut.nRef);
        SetError();
    }
}

LSNKSegmentWriter::~LSNKSegmentWriter()
{
    Finish();
}

void LSNKSegmentWriter::Write(const int32_t* pBuffer, int32_t nFrames)
{
    if (IsError() || nFrames <= 0)
        return;
    if (nFrames > INT32_MAX - sPosition) {
        LTRACE("LSNKSegmentWriter::Write segment too long");
        SetError();
        return;
    }
    const int64_t nBytes = static_cast<int64_t>(nFrames) * nFrameBytes;
    const void* pBytes = pBuffer;
    if constexpr (std::endian::native == std::endian::big) {
        vSwapped.assign(pBuffer, pBuffer + nBytes / 4);
        for (int32_t& v : vSwapped)
            v = static_cast<int32_t>(__builtin_bswap32(static_cast<uint32_t>(v)));
        pBytes = vSwapped.data();
    }
    const int64_t nWritten = fileAud.Write(pBytes, nBytes);
    if (nWritten != nBytes) {
        // A full disk: keep what made it whole and take nothing more.
        LTRACE("LSNKSegmentWriter::Write short write");
        SetError();
        nFrames = static_cast<int32_t>(nWritten / nFrameBytes);
    }
    sPosition += nFrames;
    FoldOverview(pBuffer, nFrames);
}

void LSNKSegmentWriter::FoldOverview(const int32_t* pBuffer, int32_t nFrames)
{
    vRecords.clear();
    while (nFrames > 0) {
        const int32_t nStep = std::min(nFrames, kOverviewFrames - nRecordFrames);
        if (4 % nChans == 0)
            FoldInLanes(pBuffer, nStep * nChans);
        else
            FoldByChannel(pBuffer, nStep * nChans);
        pBuffer += nStep * nChans;
        nFrames -= nStep;
        nRecordFrames += nStep;
        if (nRecordFrames == kOverviewFrames)
            AppendRecord();
    }
    if (!vRecords.empty())
        fileGrf.Write(vRecords.data(), static_cast<int64_t>(vRecords.size()));
}

// One, two or four channels: four lanes side by side each keep to one channel, which lets the
// compiler fold four samples at a time.
void LSNKSegmentWriter::FoldInLanes(const int32_t* pSamples, int32_t nSamples)
{
    int32_t aMax[4], aMin[4];
    for (int k = 0; k < 4; ++k) {
        aMax[k] = vMax[k % nChans];
        aMin[k] = vMin[k % nChans];
    }
    int32_t i = 0;
    for (; i + 4 <= nSamples; i += 4) {
        for (int k = 0; k < 4; ++k) {
            aMax[k] = std::max(aMax[k], pSamples[i + k]);
            aMin[k] = std::min(aMin[k], pSamples[i + k]);
        }
    }
    for (; i < nSamples; ++i) {
        aMax[i % 4] = std::max(aMax[i % 4], pSamples[i]);
        aMin[i % 4] = std::min(aMin[i % 4], pSamples[i]);
    }
    for (int k = 0; k < 4; ++k) {
        vMax[k % nChans] = std::max(vMax[k % nChans], aMax[k]);
        vMin[k % nChans] = std::min(vMin[k % nChans], aMin[k]);
    }
}

void LSNKSegmentWriter::FoldByChannel(const int32_t* pSamples, int32_t nSamples)
{
    for (int32_t ch = 0; ch < nChans; ++ch) {
        int32_t nMax = vMax[ch];
        int32_t nMin = vMin[ch];
        for (int32_t i = ch; i < nSamples; i += nChans) {
            nMax = std::max(nMax, pSamples[i]);
            nMin = std::min(nMin, pSamples[i]);
        }
        vMax[ch] = nMax;
        vMin[ch] = nMin;
    }
}

void LSNKSegmentWriter::AppendRecord()
{
    for (int32_t ch = 0; ch < nChans; ++ch) {
        vRecords.push_back(PeakByte(vMax[ch]));
        vRecords.push_back(PeakByte(-static_cast<int64_t>(vMin[ch])));
        vMax[ch] = 0;
        vMin[ch] = 0;
    }
    nRecordFrames = 0;
}

void LSNKSegmentWriter::SetPosition(int32_t sNewPosition)
{
    if (sNewPosition < 0) {
        LTRACE("LSNKSegmentWriter::SetPosition sNewPosition < 0");
        return;
    }
    fileAud.Seek(static_cast<int64_t>(sNewPosition) * nFrameBytes);
    fileGrf.Seek(static_cast<int64_t>(sNewPosition / kOverviewFrames) * nChans * 2);
    std::fill(vMax.begin(), vMax.end(), 0);
    std::fill(vMin.begin(), vMin.end(), 0);
    nRecordFrames = sNewPosition % kOverviewFrames;
    sPosition = sNewPosition;
}

bool LSNKSegmentWriter::Complete()
{
    Finish();
    return !IsError();
}

void LSNKSegmentWriter::Finish()
{
    if (bFinished)
        return;
    bFinished = true;
    vRecords.clear();
    if (nRecordFrames > 0)
        AppendRecord();
    if (!vRecords.empty())
        fileGrf.Write(vRecords.data(), static_cast<int64_t>(vRecords.size()));
    // A writer moved back drops whatever it had written past its final position.
    const int64_t nRecords = (static_cast<int64_t>(sPosition) + kOverviewFrames - 1) / kOverviewFrames;
    const bool bAudOpen = fileAud.IsOpen();
    if (fileAud.Seek(static_cast<int64_t>(sPosition) * nFrameBytes) >= 0)
        fileAud.Truncate();
    if (fileGrf.Seek(nRecords * nChans * 2) >= 0)
        fileGrf.Truncate();
    // The overview can be built again from the audio; the audio itself cannot.
    if (!fileAud.Close() && bAudOpen) {
        LTRACE("LSNKSegmentWriter::Finish close failed");
        SetError();
    }
    fileGrf.Close();
    cut.sLength = sPosition;
    if (pTarget) {
        pTarget->Clear();
        pTarget->SetFormat(nSampleRate, nChans);
        if (cut.sLength > 0) // nothing written: an empty document, and the segment goes
            pTarget->AppendCut(cut);
    }
    // The writer's own reference goes with the member cut.
}
