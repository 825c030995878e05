#include "formats/codec/LCodec.h"

#include <algorithm>
#include <cstring>

#include "formats/codec/LCodecFloat.h"
#include "formats/codec/LCodecG711.h"
#include "formats/codec/LCodecGSM.h"
#include "formats/codec/LCodecIMA.h"
#include "formats/codec/LCodecMP3.h"
#include "formats/codec/LCodecMSADPCM.h"
#include "formats/codec/LCodecPCM.h"

const std::vector<const LCodec*>& LCodec::All()
{
    // A new codec is added here; the order is the order of the format chooser.
    static const LCodecPCM pcm;
    static const LCodecFloat ieeeFloat;
    static const LCodecIMA ima;
    static const LCodecMSADPCM msadpcm;
    static const LCodecG711 alaw(LCodecG711::ALaw), ulaw(LCodecG711::ULaw);
    static const LCodecGSM gsm;
    static const LCodecMP3 mp3;
    static const std::vector<const LCodec*> vCodecs = {&pcm, &ieeeFloat, &ima, &msadpcm, &alaw, &ulaw, &gsm, &mp3};
    return vCodecs;
}

const LCodec* LCodec::ForRecord(const LWaveFormatRecord& record, LCodecShape* pShape)
{
    LCodecShape shape;
    for (const LCodec* p : All()) {
        if (p->Describe(record, shape)) {
            if (pShape)
                *pShape = shape;
            return p;
        }
    }
    return nullptr;
}

const LCodec* LCodec::ByShortName(const std::string& szShortName)
{
    for (const LCodec* p : All())
        if (szShortName == p->GetShortName())
            return p;
    return nullptr;
}

std::string LCodec::ChannelRefusal(const LWaveFormatRecord& record, uint16_t wTag, const char* szName,
                                   uint16_t nMaxChans)
{
    if (record.EffectiveTag() != wTag || (record.nChannels >= 1 && record.nChannels <= nMaxChans))
        return std::string();
    return std::string(szName) + " WAV files of " + std::to_string(record.nChannels) +
           " channels are not supported (" + (nMaxChans == 1 ? std::string("mono only") : "1 to " + std::to_string(nMaxChans)) +
           ")";
}

std::vector<LWaveFormatRecord> LCodec::ListRecords() const
{
    std::vector<LWaveFormatRecord> v;
    for (uint32_t nRate : {8000u, 11025u, 16000u, 22050u, 32000u, 44100u, 48000u}) {
        for (uint16_t nChans : {1, 2}) {
            LWaveFormatRecord record;
            if (MakeRecord(nRate, nChans, record))
                v.push_back(record);
        }
    }
    return v;
}

LCodecEncoder::LCodecEncoder(const LCodecShape& shapeIn)
    : shape(shapeIn), vPadded(static_cast<size_t>(shapeIn.nBlockFrames) * shapeIn.nChans)
{
}

uint32_t LCodecEncoder::EncodePart(const int16_t* pIn, uint32_t nFrames, uint8_t* pOut)
{
    if (nFrames == 0)
        return 0;
    const size_t nFrameSamples = shape.nChans;
    std::memcpy(vPadded.data(), pIn, nFrames * nFrameSamples * sizeof(int16_t));
    const int16_t* pLast = pIn + (nFrames - 1) * nFrameSamples;
    for (uint32_t i = nFrames; i < shape.nBlockFrames; ++i)
        std::memcpy(vPadded.data() + i * nFrameSamples, pLast, nFrameSamples * sizeof(int16_t));
    EncodeBlocks(vPadded.data(), 1, pOut);
    return shape.nBlockBytes;
}
