#include "formats/LGSMFrame.h"

#include <algorithm>

void LGSMFrame::Reset()
{
    encoder.Reset();
    decoder.Reset();
}

void LGSMFrame::EncodeNormal(const int16_t* pSamples, uint8_t* pFrame)
{
    LGSMParams params;
    encoder.Encode(pSamples, params);
    LGSMPack(params, pFrame);
}

bool LGSMFrame::DecodeNormal(const uint8_t* pFrame, int16_t* pSamples)
{
    LGSMParams params;
    if (!LGSMUnpack(pFrame, params)) {
        std::fill(pSamples, pSamples + kSamples, 0);
        return false;
    }
    decoder.Decode(params, pSamples);
    return true;
}

void LGSMFrame::EncodeWavBlock(const int16_t* pSamples, uint8_t* pBlock)
{
    LGSMParams first;
    LGSMParams second;
    encoder.Encode(pSamples, first);
    encoder.Encode(pSamples + kSamples, second);
    LGSMPackWavBlock(first, second, pBlock);
}

void LGSMFrame::DecodeWavBlock(const uint8_t* pBlock, int16_t* pSamples)
{
    LGSMParams first;
    LGSMParams second;
    LGSMUnpackWavBlock(pBlock, first, second);
    decoder.Decode(first, pSamples);
    decoder.Decode(second, pSamples + kSamples);
}
