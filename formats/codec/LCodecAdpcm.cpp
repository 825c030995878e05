#include "formats/codec/LCodecAdpcm.h"

#include <algorithm>

bool LCodecAdpcm::Describe(const LWaveFormatRecord& record, LCodecShape& shape) const
{
    const uint32_t nChans = record.nChannels;
    if (record.EffectiveTag() != wTag || record.wBitsPerSample != 4 || nChans == 0 || nChans > kMaxChannels ||
        !TakesBlock(record.nBlockAlign, nChans))
        return false;
    shape = {record.nBlockAlign, FramesInBlock(record.nBlockAlign, nChans), record.nChannels};
    return true;
}

bool LCodecAdpcm::MakeRecord(uint32_t nRate, uint16_t nChans, LWaveFormatRecord& record) const
{
    if (nChans == 0 || nChans > kMaxChannels || nRate == 0)
        return false;
    // The block grows with the rate, as other programs write it.
    const uint32_t nBlock = 256 * nChans * std::clamp<uint32_t>(nRate / 11025, 1, 8);
    const uint32_t nFrames = FramesInBlock(nBlock, nChans);
    const uint32_t nAvg = static_cast<uint32_t>(uint64_t{nRate} * nBlock / nFrames);
    record = LWaveFormatRecord::Make(wTag, nChans, nRate, nAvg, static_cast<uint16_t>(nBlock), 4, RecordExtra(nFrames));
    return true;
}

void LCodecAdpcm::FitShape(int32_t& nRate, uint8_t& nChans) const
{
    nChans = std::min<uint8_t>(nChans, kMaxChannels);
}

std::string LCodecAdpcm::WhyRefused(const LWaveFormatRecord& record) const
{
    return ChannelRefusal(record, wTag, GetName(), kMaxChannels);
}
