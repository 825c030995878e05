#include "formats/codec/LCodecMP3.h"

#include <algorithm>
#include <cstring>

#include "core/LTrace.h"
#include "formats/codec/LCodecBytes.h"
#include "formats/mp3/LMP3Decoder.h"
#include "formats/mp3/LMP3Header.h"
#include "formats/mp3/LMP3Tables.h"

namespace {

constexpr uint32_t kAssumedBitRate = 128000; // when the record does not tell its bytes per second

// The index into the band tables (version * 3 + sampling index) of a sampling rate, or -1.
int RateIndexOf(uint32_t nRate)
{
    for (int nVersion = 0; nVersion < 3; ++nVersion)
        for (int i = 0; i < 3; ++i)
            if (static_cast<uint32_t>(MP3Header::kRates[i] >> nVersion) == nRate)
                return nVersion * 3 + i;
    return -1;
}

class LMp3WavDecoder : public LCodecDecoder
{
public:
    LMp3WavDecoder(uint32_t nRateIn, uint16_t nChansIn) : nRate(nRateIn), nChans(nChansIn)
    {
        decoder.Configure(RateIndexOf(nRate), nChans);
    }
    void Reset() override { decoder.Reset(); }
    void DecodeBlocks(const uint8_t*, uint32_t, int16_t*) override {} // the shape is variable
    void DecodeStream(const uint8_t* pIn, uint32_t nIn, bool bEnd, int16_t* pOut, uint32_t nOutFrames,
                      uint32_t& nUsed, uint32_t& nMade) override;

private:
    // A header of this stream's rate and channels whose frame the decoder can take.
    bool IsFrameHeader(const uint8_t* p, MP3Header& h) const;
    // The first frame of many encoders carries the stream's frame count and no sound.
    static bool IsInfoFrame(const MP3Header& h, const uint8_t* pData, int nBytes);
    void Store(int16_t* pOut, int nSamples) const;

    LMP3Decoder decoder;
    uint32_t nRate;
    uint16_t nChans;
    int32_t aFrame[1152 * 2];
};

bool LMp3WavDecoder::IsFrameHeader(const uint8_t* p, MP3Header& h) const
{
    if (!h.Accept(p) || static_cast<uint32_t>(h.SampleRate()) != nRate || (h.IsMono() ? 1u : 2u) != nChans)
        return false;
    const int nBytes = h.FrameBytes() - h.HeaderBytes();
    return nBytes >= h.SideInfoBytes() && nBytes <= LMP3Decoder::kMaxFrameBytes;
}

bool LMp3WavDecoder::IsInfoFrame(const MP3Header& h, const uint8_t* pData, int nBytes)
{
    const int nSide = h.SideInfoBytes();
    if (nBytes >= 40 && !std::memcmp(pData + 32 - h.HeaderBytes() + 4, "VBRI", 4))
        return true;
    if (nBytes < nSide + 4 || (std::memcmp(pData + nSide, "Xing", 4) && std::memcmp(pData + nSide, "Info", 4)))
        return false;
    return std::all_of(pData, pData + nSide, [](uint8_t b) { return b == 0; });
}

void LMp3WavDecoder::Store(int16_t* pOut, int nSamples) const
{
    // The decoder's samples carry four bits below the 16 of a file sample.
    for (int i = 0; i < nSamples; ++i)
        pOut[i] = LClamp16(static_cast<int32_t>((static_cast<int64_t>(aFrame[i]) + 8) >> 4));
}

void LMp3WavDecoder::DecodeStream(const uint8_t* pIn, uint32_t nIn, bool bEnd, int16_t* pOut, uint32_t nOutFrames,
                                  uint32_t& nUsed, uint32_t& nMade)
{
    nUsed = nMade = 0;
    for (;;) {
        MP3Header h;
        uint32_t i = nUsed;
        while (i + 4 <= nIn && !IsFrameHeader(pIn + i, h))
            ++i;
        if (i + 4 > nIn) {
            // Bytes that are no frame are used up; the last three may begin the next header.
            nUsed = bEnd ? nIn : std::max(nUsed, nIn > 3 ? nIn - 3 : 0u);
            return;
        }
        nUsed = i;
        const uint32_t nFrameBytes = static_cast<uint32_t>(h.FrameBytes());
        if (i + nFrameBytes > nIn) {
            if (bEnd) // a last frame cut short holds nothing whole
                nUsed = nIn;
            return;
        }
        const uint32_t nSamples = static_cast<uint32_t>(h.SamplesPerFrame());
        if (nMade + nSamples > nOutFrames)
            return;
        const uint8_t* pData = pIn + i + h.HeaderBytes();
        const int nBytes = static_cast<int>(nFrameBytes) - h.HeaderBytes();
        nUsed = i + nFrameBytes;
        if (IsInfoFrame(h, pData, nBytes))
            continue;
        // A frame whose main data lies before what the reservoir holds (after a seek) still
        // takes its time, as silence.
        if (!decoder.DecodeFrame(h, pData, nBytes, aFrame))
            std::fill_n(aFrame, nSamples * nChans, 0);
        Store(pOut + static_cast<size_t>(nMade) * nChans, static_cast<int>(nSamples * nChans));
        nMade += nSamples;
    }
}

} // namespace

bool LCodecMP3::Describe(const LWaveFormatRecord& record, LCodecShape& shape) const
{
    const int nRateIndex = RateIndexOf(record.nSamplesPerSec);
    if (record.EffectiveTag() != kTag || record.nChannels < 1 || record.nChannels > 2 || nRateIndex < 0)
        return false;
    const uint32_t nFrames = nRateIndex < 3 ? 1152 : 576;
    const uint64_t nAvg = record.nAvgBytesPerSec ? record.nAvgBytesPerSec : kAssumedBitRate / 8;
    const uint32_t nBytes = static_cast<uint32_t>(std::clamp<uint64_t>(nAvg * nFrames / record.nSamplesPerSec, 1,
                                                                       LMP3Decoder::kMaxFrameBytes));
    shape = {nBytes, nFrames, record.nChannels, 0, true};
    return true;
}

std::unique_ptr<LCodecDecoder> LCodecMP3::NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const
{
    if (!MP3LT.InitTables()) {
        LTRACE("LCodecMP3::NewDecoder the decoder's tables could not be made");
        return nullptr;
    }
    return std::make_unique<LMp3WavDecoder>(record.nSamplesPerSec, record.nChannels);
}

std::string LCodecMP3::WhyRefused(const LWaveFormatRecord& record) const
{
    return ChannelRefusal(record, kTag, GetName(), 2);
}
