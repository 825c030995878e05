#include "formats/codec/LCodecGSM.h"

#include <cstring>
#include <type_traits>

#include "formats/LGSMFrame.h"
#include "formats/codec/LCodecBytes.h"

namespace {

static_assert(std::is_trivially_copyable_v<LGSMDecoder>, "the decoder's memory is kept as bytes");

// Nearly a second at 8000 Hz, as much as a seek may discard: by then the decoder's filters and
// pitch memory have forgotten that they started afresh, but for the last bits of the output filter.
constexpr uint32_t kSettleBlocks = 24;

class LGsmDecoder : public LCodecDecoder
{
public:
    void Reset() override { frame.Reset(); }
    std::vector<uint8_t> SaveState() const override
    {
        const auto* p = reinterpret_cast<const uint8_t*>(&frame.Decoder());
        return std::vector<uint8_t>(p, p + sizeof(LGSMDecoder));
    }
    void LoadState(const std::vector<uint8_t>& vState) override
    {
        if (vState.size() == sizeof(LGSMDecoder))
            std::memcpy(static_cast<void*>(&frame.Decoder()), vState.data(), sizeof(LGSMDecoder));
    }
    void DecodeBlocks(const uint8_t* pIn, uint32_t nBlocks, int16_t* pOut) override
    {
        for (uint32_t i = 0; i < nBlocks; ++i)
            frame.DecodeWavBlock(pIn + i * LGSMFrame::kWavBlockBytes, pOut + i * LGSMFrame::kWavBlockSamples);
    }

private:
    LGSMFrame frame;
};

class LGsmEncoder : public LCodecEncoder
{
public:
    explicit LGsmEncoder(const LCodecShape& shape) : LCodecEncoder(shape) {}
    void Reset() override { frame.Reset(); }
    void EncodeBlocks(const int16_t* pIn, uint32_t nBlocks, uint8_t* pOut) override
    {
        for (uint32_t i = 0; i < nBlocks; ++i)
            frame.EncodeWavBlock(pIn + i * LGSMFrame::kWavBlockSamples, pOut + i * LGSMFrame::kWavBlockBytes);
    }

private:
    LGSMFrame frame;
};

} // namespace

bool LCodecGSM::Describe(const LWaveFormatRecord& record, LCodecShape& shape) const
{
    if (record.EffectiveTag() != kTag || record.nChannels != 1 || record.nBlockAlign != LGSMFrame::kWavBlockBytes)
        return false;
    shape = {LGSMFrame::kWavBlockBytes, LGSMFrame::kWavBlockSamples, 1, kSettleBlocks};
    return true;
}

bool LCodecGSM::MakeRecord(uint32_t nRate, uint16_t nChans, LWaveFormatRecord& record) const
{
    if (nChans != 1 || nRate == 0)
        return false;
    std::vector<uint8_t> vExtra(2);
    LPut16(vExtra.data(), LGSMFrame::kWavBlockSamples);
    const uint32_t nAvg = static_cast<uint32_t>(uint64_t{nRate} * LGSMFrame::kWavBlockBytes / LGSMFrame::kWavBlockSamples);
    record = LWaveFormatRecord::Make(kTag, 1, nRate, nAvg, LGSMFrame::kWavBlockBytes, 0, vExtra);
    return true;
}

void LCodecGSM::FitShape(int32_t& nRate, uint8_t& nChans) const
{
    nRate = 8000;
    nChans = 1;
}

std::unique_ptr<LCodecDecoder> LCodecGSM::NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const
{
    return std::make_unique<LGsmDecoder>();
}

std::unique_ptr<LCodecEncoder> LCodecGSM::NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const
{
    return std::make_unique<LGsmEncoder>(shape);
}

std::string LCodecGSM::WhyRefused(const LWaveFormatRecord& record) const
{
    return ChannelRefusal(record, kTag, GetName(), 1);
}
