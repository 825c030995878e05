#include "formats/mp3/LMP3Source.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

#include "core/LTrace.h"
#include "formats/mp3/LMP3Tables.h"

namespace {

uint32_t BigEndian32(const uint8_t* p)
{
    return (uint32_t{p[0]} << 24) | (uint32_t{p[1]} << 16) | (uint32_t{p[2]} << 8) | p[3];
}

// Positions stop at the largest frame number instead of overflowing.
int32_t Advanced(int32_t sPosition, int32_t n)
{
    return static_cast<int32_t>(std::min<int64_t>(int64_t{sPosition} + n, INT32_MAX));
}

int32_t ClampToLength(double f)
{
    return static_cast<int32_t>(std::clamp(f, 0.0, 2147483647.0));
}

} // namespace

LMP3Source::LMP3Source(const std::string& szFileName) : LSoundSourceBase(44100, 1, 0x7FFF0)
{
    if (!file.Open(szFileName, LFile::ReadExisting)) {
        LTRACE("LMP3Source::LMP3Source cannot open %s", szFileName.c_str());
        SetError();
        return;
    }
    in.Attach(&file, std::max<int64_t>(file.Size() - kTrailingTagBytes, 0));
    if (!MP3LT.InitTables()) {
        LTRACE("LMP3Source::LMP3Source !MP3LT.InitTables() so SetError");
        SetError();
        return;
    }
    if (!DecodeInitialHeader()) {
        LTRACE("LMP3Source::LMP3Source DecodeInitialHeader FAILED so SetError");
        SetError();
        return;
    }
    SetChannels(first.IsMono() ? 1 : 2);
    SetSampleRate(first.SampleRate());
    nSamplesPerFrame = first.SamplesPerFrame();
    decoder.Configure(first.RateIndex(), nChans);
    EstimateLength();
}

bool LMP3Source::ReadVbrHeader(const MP3Header& h)
{
    const int nSide = h.SideInfoBytes();
    uint8_t aSide[32 + 4];
    if (!in.Read(aSide, nSide + 4))
        return false;
    const bool bXing = !std::memcmp(aSide + nSide, "Xing", 4);
    const bool bVbri = !std::memcmp(aSide + nSide, "VBRI", 4);
    if (!bXing && !bVbri)
        return false;
    for (int i = 0; i < nSide; ++i)
        if (aSide[i]) {
            LTRACE("LMP3Source::DecodeInitialHeader() XING or VBRI found but side info is not silence");
            return false;
        }
    int nTaken = nSide + 4;
    uint8_t b[8];
    if (bXing) {
        if (!in.Read(b, 8))
            return false;
        nTaken += 8;
        if (!(BigEndian32(b) & 1)) {
            LTRACE("LMP3Source::DecodeInitialHeader() XING found but does not contain nFrames");
            in.StepBack(8);
            return false;
        }
        nVbrFrames = BigEndian32(b + 4);
        LTRACE("LMP3Source::DecodeInitialHeader() XING or VBRI VBR header found");
    } else {
        if (!in.Skip(10) || !in.Read(b, 4))
            return false;
        nTaken += 14;
        nVbrFrames = BigEndian32(b);
        LTRACE("LMP3Source::DecodeInitialHeader() VBRI header found");
    }
    in.Skip(std::max(h.FrameBytes() - h.HeaderBytes() - nTaken, 0));
    return true;
}

bool LMP3Source::DecodeInitialHeader()
{
    if (!first.ReadHeader(in))
        return false;
    const int64_t nAfterHeader = in.GetOffset();
    if (ReadVbrHeader(first) && nVbrFrames > 0) {
        nAverageBitRate = first.nBitRate;
        return true;
    }
    nVbrFrames = 0;
    // Not a VBR frame: the averaging walks the frames from this one on.
    in.SeekTo(nAfterHeader);
    MP3Header h = first;
    int64_t nSum = 0;
    int nSeen = 0;
    for (;;) {
        nSum += h.nBitRate;
        bVariable = bVariable || h.nBitRate != first.nBitRate;
        ++nSeen;
        if (nSeen == 8) {
            LTRACE("LMP3Source::DecodeInitialHeader() - we are using the average 8 bitrates to estimate length");
            break;
        }
        if (!in.Skip(h.FrameBytes() - h.HeaderBytes()) || !h.ReadHeader(in))
            break;
    }
    nAverageBitRate = static_cast<int32_t>(nSeen == 8 ? nSum >> 3 : nSum / nSeen);
    in.SeekTo(0);
    return true;
}

void LMP3Source::EstimateLength()
{
    const double fStream = static_cast<double>(in.GetStreamBytes());
    if (nVbrFrames > 0) {
        fAverageFrameBytes = fStream / nVbrFrames;
        sLength = ClampToLength(static_cast<double>(nVbrFrames) * nSamplesPerFrame);
    } else {
        fAverageFrameBytes = (first.nVersion == 0 ? 144.0 : 72.0) * nAverageBitRate / first.SampleRate();
        sLength = ClampToLength(nSamplesPerFrame * std::trunc(fStream / fAverageFrameBytes + 0.9));
    }
    if (fAverageFrameBytes <= 0.0)
        fAverageFrameBytes = 1.0;
}

int32_t LMP3Source::GetLengthInFile()
{
    if (IsError() || nVbrFrames == 0)
        return sLength;
    const double fLeastFrameBytes = (first.nVersion == 0 ? 144.0 * 32000 : 72.0 * 8000) / first.SampleRate();
    const double fMostFrames = std::trunc(static_cast<double>(in.GetStreamBytes()) / fLeastFrameBytes) + 1;
    return std::min(sLength, ClampToLength(fMostFrames * nSamplesPerFrame));
}

void LMP3Source::RefineLength()
{
    if (nVbrFrames > 0)
        return;
    const double fRest = std::trunc(static_cast<double>(in.GetUnread()) / fAverageFrameBytes + 0.9);
    sLength = ClampToLength(static_cast<double>(nFramesDecoded) * nSamplesPerFrame + nSamplesPerFrame * fRest);
}

bool LMP3Source::DecodeHeader(MP3Header& h)
{
    for (int nMismatches = 0;; ++nMismatches) {
        if (!h.ReadHeader(in)) {
            LTRACE("LMP3Source::DecodeHeader() returned false because ReadHeader did");
            return false;
        }
        if (h.nVersion != first.nVersion)
            LTRACE("LMP3Source::DecodeHeader() Header rejected because version does not match");
        else if (h.nSampleIndex != first.nSampleIndex)
            LTRACE("LMP3Source::DecodeHeader() Header rejected because sampling frequency does not match");
        else if (h.IsMono() != first.IsMono())
            LTRACE("LMP3Source::DecodeHeader() Header rejected because channels do not match");
        else
            return true;
        if (nMismatches >= kMaxMismatches)
            return false;
    }
}

LMP3Source::FrameResult LMP3Source::DecodeOneFrame(int32_t* pOut)
{
    MP3Header h;
    if (!DecodeHeader(h)) {
        LTRACE("LMP3Source::DecodeFrame DecodeHeader FAILED so this function fails");
        return FrameFailed;
    }
    const int nBytes = h.FrameBytes() - h.HeaderBytes();
    if (nBytes < h.SideInfoBytes() || nBytes > LMP3Decoder::kMaxFrameBytes || !in.Read(aFrameBytes, nBytes))
        return FrameFailed;
    // A frame whose main data lies before what the reservoir holds still counts as a frame of
    // the file, so that positions after a seek stay on the frame they name.
    ++nFramesDecoded;
    const bool bDecoded = decoder.DecodeFrame(h, aFrameBytes, nBytes, pOut);
    RefineLength();
    return bDecoded ? FrameDecoded : FrameSkipped;
}

bool LMP3Source::DecodeFrame(int32_t* pOut)
{
    for (;;) {
        const FrameResult result = DecodeOneFrame(pOut);
        if (result != FrameSkipped)
            return result == FrameDecoded;
    }
}

void LMP3Source::Read(int32_t* pBuffer, int32_t nFrames)
{
    int32_t* p = pBuffer;
    int32_t nLeft = std::max(nFrames, 0);
    if (IsError()) {
        LZeroFrames(p, nLeft, nChans);
        sPosition = Advanced(sPosition, nLeft);
        return;
    }
    if (sPosition < 0) {
        const int32_t n = static_cast<int32_t>(std::min<int64_t>(nLeft, -static_cast<int64_t>(sPosition)));
        LZeroFrames(p, n, nChans);
        p += static_cast<size_t>(n) * nChans;
        nLeft -= n;
        sPosition += n;
    }
    while (nLeft > 0) {
        if (sPosition >= sLength)
            break;
        if (nCursor >= nFrameSamples) {
            if (!DecodeFrame(aFrame)) {
                LTRACE("LMP3Source::Read DecodeFrame failed so end");
                sLength = sPosition;
                nFrameSamples = nCursor = 0;
                break;
            }
            nFrameSamples = nSamplesPerFrame;
            nCursor = 0;
            continue;
        }
        const int32_t n = std::min({nLeft, nFrameSamples - nCursor, sLength - sPosition});
        std::memcpy(p, aFrame + static_cast<size_t>(nCursor) * nChans, sizeof(int32_t) * static_cast<size_t>(n) * nChans);
        p += static_cast<size_t>(n) * nChans;
        nCursor += n;
        nLeft -= n;
        sPosition += n;
    }
    if (nLeft > 0) {
        LZeroFrames(p, nLeft, nChans);
        sPosition = Advanced(sPosition, nLeft);
    }
}

void LMP3Source::SetPosition(int32_t sNewPosition)
{
    if (IsError()) {
        sPosition = std::max(sNewPosition, 0);
        return;
    }
    const int32_t f = std::clamp(sNewPosition, 0, sLength);
    const int64_t k = f / nSamplesPerFrame;
    const int32_t r = f % nSamplesPerFrame;
    const int64_t nStart = std::max<int64_t>(k - kWarmUpFrames, 0);
    in.SeekTo(static_cast<int64_t>(std::trunc(static_cast<double>(nStart) * fAverageFrameBytes)));
    decoder.Reset();
    nFramesDecoded = nStart;
    sPosition = f;
    nFrameSamples = nCursor = 0;
    for (int64_t i = nStart; i < k; ++i)
        if (DecodeOneFrame(aFrame) == FrameFailed)
            return;
    if (DecodeFrame(aFrame)) {
        nFrameSamples = nSamplesPerFrame;
        nCursor = r;
    }
}
