// Microsoft ADPCM (tag 2): blocks of a header per channel (predictor number, step, two samples),
// then 4-bit codes high nibble first (stereo: left in the high nibble). The prediction divides its
// sum by 256 truncating toward zero, as the published decoder does.
#pragma once

#include "formats/codec/LCodecAdpcm.h"

class LCodecMSADPCM : public LCodecAdpcm
{
public:
    static constexpr uint16_t kTag = 0x0002;

    LCodecMSADPCM() : LCodecAdpcm(kTag) {}

    const char* GetName() const override { return "Microsoft ADPCM"; }
    const char* GetShortName() const override { return "msadpcm"; }
    std::unique_ptr<LCodecDecoder> NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;
    std::unique_ptr<LCodecEncoder> NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const override;

    static uint32_t FramesIn(uint32_t nBytes, uint32_t nChans);

protected:
    uint32_t FramesInBlock(uint32_t nBytes, uint32_t nChans) const override { return FramesIn(nBytes, nChans); }
    bool TakesBlock(uint32_t nBytes, uint32_t nChans) const override;
    std::vector<uint8_t> RecordExtra(uint32_t nFrames) const override;
};
