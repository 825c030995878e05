#include "formats/mp3/LMP3Source.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cctype>
#include <cstring>

#include "core/LTrace.h"
#include "formats/mp3/LMP3Tables.h"
#include "formats/mp3/LMP3Tags.h"

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

LMP3Source::LMP3Source(const std::string& szFileName) : LSoundSourceBase(44100, 1, kMaxAmplitude)
{
    if (!file.Open(szFileName, LFile::ReadExisting)) {
        LTRACE("LMP3Source::LMP3Source cannot open %s", szFileName.c_str());
        SetError();
        return;
    }
    const int64_t nFileBytes = std::max<int64_t>(file.Size(), 0);
    nLeadingBytes = LMP3Tags::LeadingBytes(file, nFileBytes);
    nTrailingBytes = LMP3Tags::TrailingBytes(file, nLeadingBytes, nFileBytes);
    in.Attach(&file, nLeadingBytes, nFileBytes - nLeadingBytes - nTrailingBytes);
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
    SetGaplessLength();
}

bool LMP3Source::ReadVbrHeader(const MP3Header& h)
{
    const int nSide = h.SideInfoBytes();
    const int nBody = h.FrameBytes() - h.HeaderBytes();
    if (nBody < nSide + 4 || nBody > LMP3Decoder::kMaxFrameBytes || !in.Read(aFrameBytes, nBody))
        return false;
    const uint8_t* pTag = aFrameBytes + nSide;
    const bool bXingTag = !std::memcmp(pTag, "Xing", 4) || !std::memcmp(pTag, "Info", 4);
    const bool bVbri = !std::memcmp(pTag, "VBRI", 4);
    if (!bXingTag && !bVbri)
        return false;
    for (int i = 0; i < nSide; ++i)
        if (aFrameBytes[i]) {
            LTRACE("LMP3Source::DecodeInitialHeader() XING or VBRI found but side info is not silence");
            return false;
        }
    const int nLeft = nBody - nSide;
    if (bVbri) {
        if (nLeft < 18)
            return false;
        nVbrFrames = BigEndian32(pTag + 14);
        LTRACE("LMP3Source::DecodeInitialHeader() VBRI header found");
        return true;
    }
    // The encoder's tag frame carries no audio, whether or not it gives the frame count.
    bXing = !std::memcmp(pTag, "Xing", 4);
    bInfo = !bXing;
    if (nLeft < 8)
        return true;
    const uint32_t nFlags = BigEndian32(pTag + 4);
    int nAt = 8;
    if (nFlags & 1) {
        if (nLeft < 12)
            return true;
        nVbrFrames = BigEndian32(pTag + 8);
        nAt += 4;
        LTRACE("LMP3Source::DecodeInitialHeader() XING or VBRI VBR header found");
    } else {
        LTRACE("LMP3Source::DecodeInitialHeader() XING found but does not contain nFrames");
    }
    nAt += (nFlags & 2 ? 4 : 0) + (nFlags & 4 ? 100 : 0) + (nFlags & 8 ? 4 : 0);
    if (nAt < nLeft)
        ReadEncoderTag(pTag + nAt, nLeft - nAt);
    return true;
}

void LMP3Source::ReadEncoderTag(const uint8_t* p, int nBytes)
{
    // After the frame count and its companions: nine bytes naming the encoder ("LAME3.100"),
    // then the encoder's settings, with its delay and padding as two 12-bit numbers at byte 21.
    constexpr int kTagBytes = 24;
    if (nBytes < kTagBytes)
        return;
    for (int i = 0; i < 4; ++i)
        if (!std::isalnum(p[i]))
            return;
    nEncoderDelay = (p[21] << 4) | (p[22] >> 4);
    nEncoderPadding = ((p[22] & 15) << 8) | p[23];
    LTRACE("LMP3Source::ReadEncoderTag delay %d padding %d", nEncoderDelay, nEncoderPadding);
}

void LMP3Source::SetGaplessLength()
{
    if (nVbrFrames == 0 || (nEncoderDelay == 0 && nEncoderPadding == 0))
        return;
    // The decoder's own delay comes on top of the encoder's; the padding, which covers it at the
    // end, is cut less by that much.
    const int64_t nTotal = int64_t{nVbrFrames} * nSamplesPerFrame;
    nSkip = nEncoderDelay + kDecoderDelay;
    const int64_t nEnd = std::min(nTotal - nEncoderDelay - nEncoderPadding, nTotal - nSkip);
    sLength = ClampToLength(static_cast<double>(std::max<int64_t>(nEnd, 0)));
    nDropPending = nSkip;
}

bool LMP3Source::DecodeInitialHeader()
{
    // The first header must be followed by two more of the same stream: a chance pattern in
    // other data, or in a stream of another layer, is not.
    if (!first.ReadHeader(in, false, 2))
        return false;
    const int64_t nFirstAt = in.GetOffset() - first.HeaderBytes();
    if (ReadVbrHeader(first)) {
        nAverageBitRate = first.nBitRate;
        nAudioStart = nNextFrameAt = in.GetOffset();
        if (nVbrFrames > 0)
            return true;
    } else {
        nVbrFrames = 0;
        nAudioStart = nNextFrameAt = nFirstAt;
    }
    // No frame count: the averaging walks the audio frames from the first one on.
    in.SeekTo(nAudioStart);
    MP3Header h;
    int64_t nSum = 0;
    int nSeen = 0;
    while (nSeen < 8 && h.ReadHeader(in, true)) {
        nSum += h.nBitRate;
        bVariable = bVariable || h.nBitRate != first.nBitRate;
        ++nSeen;
        if (!in.Skip(h.FrameBytes() - h.HeaderBytes()))
            break;
    }
    if (nSeen == 8)
        LTRACE("LMP3Source::DecodeInitialHeader() - we are using the average 8 bitrates to estimate length");
    if (nSeen == 0) { // the tag frame was the only frame
        nSum = first.nBitRate;
        nSeen = 1;
    }
    nAverageBitRate = static_cast<int32_t>(nSeen == 8 ? nSum >> 3 : nSum / nSeen);
    in.SeekTo(nAudioStart);
    return true;
}

void LMP3Source::EstimateLength()
{
    const double fStream = static_cast<double>(in.GetStreamBytes() - nAudioStart);
    if (nVbrFrames > 0) {
        fAverageFrameBytes = fStream / nVbrFrames;
        // The tag frame's own rate says little of a variable-rate file: the bytes per second do.
        if (!bInfo)
            nAverageBitRate = static_cast<int32_t>(
                std::min(fAverageFrameBytes * 8.0 * first.SampleRate() / nSamplesPerFrame, 1e9));
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
        if (!h.ReadHeader(in, in.GetOffset() == nNextFrameAt)) {
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
    nNextFrameAt = in.GetOffset();
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
            nCursor = std::min(nDropPending, nFrameSamples);
            nDropPending -= nCursor;
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
    const int64_t d = int64_t{f} + nSkip; // in the decoded stream
    const int64_t k = d / nSamplesPerFrame;
    const int32_t r = static_cast<int32_t>(d % nSamplesPerFrame);
    const int64_t nStart = std::max<int64_t>(k - kWarmUpFrames, 0);
    in.SeekTo(nAudioStart + static_cast<int64_t>(std::trunc(static_cast<double>(nStart) * fAverageFrameBytes)));
    nNextFrameAt = nStart == 0 ? nAudioStart : -1;
    nDropPending = 0;
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
