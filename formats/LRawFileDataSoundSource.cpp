#include "formats/LRawFileDataSoundSource.h"

#include "core/LTrace.h"
#include "formats/LVoxRawSettings.h"

LSoundSourcePtr LMakeRawSource(int32_t nEncoding, LFile&& file, int32_t nSampleRate, int64_t nDataBytes,
                               uint8_t nChans)
{
    LSoundSourceBase* p = nullptr;
    switch (nEncoding) {
    case RawULaw:
        p = new LRawFileDataSoundSource<LRawULaw>(std::move(file), nSampleRate, nDataBytes, nChans);
        break;
    case RawALaw:
        p = new LRawFileDataSoundSource<LRawALaw>(std::move(file), nSampleRate, nDataBytes, nChans);
        break;
    case RawPcm16LE:
        p = new LRawFileDataSoundSource<LRawPcm16LE>(std::move(file), nSampleRate, nDataBytes, nChans);
        break;
    case RawPcm8Unsigned:
        p = new LRawFileDataSoundSource<LRawPcm8Unsigned>(std::move(file), nSampleRate, nDataBytes, nChans);
        break;
    case RawPcm8Signed:
        p = new LRawFileDataSoundSource<LRawPcm8Signed>(std::move(file), nSampleRate, nDataBytes, nChans);
        break;
    case RawPcm16BE:
        p = new LRawFileDataSoundSource<LRawPcm16BE>(std::move(file), nSampleRate, nDataBytes, nChans);
        break;
    default:
        if (LRawIsWide(nEncoding)) {
            p = new LRawWideSource(std::move(file), nSampleRate, nDataBytes, nChans, LRawWideKind(nEncoding),
                                   LRawIsBigEndian(nEncoding));
            break;
        }
        LTRACE("LMakeRawSource no headerless reader for encoding %d", static_cast<int>(nEncoding));
        p = new LSRCSilence;
        break;
    }
    return LSoundSourcePtr(p);
}
