// What the 4-bit ADPCM codecs share: mono or stereo blocks of a header per channel and then the
// codes, a block of 256 bytes a channel up to 11025 Hz growing with the rate, and a record whose
// extra bytes start with the frames in a block. Each codec says how many frames a block holds,
// which block sizes it takes and what else its record carries.
#pragma once

#include "formats/codec/LCodec.h"

class LCodecAdpcm : public LCodec
{
public:
    static constexpr uint32_t kMaxChannels = 2;

    bool Describe(const LWaveFormatRecord& record, LCodecShape& shape) const override;
    std::string WhyRefused(const LWaveFormatRecord& record) const override;
    bool MakeRecord(uint32_t nRate, uint16_t nChans, LWaveFormatRecord& record) const override;
    void FitShape(int32_t& nRate, uint8_t& nChans) const override;

protected:
    explicit LCodecAdpcm(uint16_t wTag) : wTag(wTag) {}
    // Frames in a block of nBytes (0 when it cannot hold the headers).
    virtual uint32_t FramesInBlock(uint32_t nBytes, uint32_t nChans) const = 0;
    // Whether a block of nBytes is one this codec reads.
    virtual bool TakesBlock(uint32_t nBytes, uint32_t nChans) const = 0;
    // The record's extra bytes for blocks of nFrames.
    virtual std::vector<uint8_t> RecordExtra(uint32_t nFrames) const = 0;

private:
    uint16_t wTag;
};
