// A headerless reader for one sample type (formats/LRawSampleTypes.h), and the reader for each
// encoding of a headerless file.
#pragma once

#include "formats/LRawFileDataSoundSourceBase.h"
#include "formats/LRawSampleTypes.h"
#include "formats/LRawWideSamples.h"

template <class T>
class LRawFileDataSoundSource : public LRawFileDataSoundSourceBase
{
public:
    LRawFileDataSoundSource(LFile&& file, int32_t nSampleRate, int64_t nDataBytes, uint8_t nChans)
        : LRawFileDataSoundSourceBase(std::move(file), sizeof(T), nSampleRate, nDataBytes, nChans)
    {
    }

protected:
    void Convert(const uint8_t* pBytes, int32_t* pOut, size_t nSamples) const override
    {
        T::ToSamples(pBytes, pOut, nSamples);
    }
};

// A reader of samples wider than 16 bits (formats/LRawWideSamples.h).
class LRawWideSource : public LRawFileDataSoundSourceBase
{
public:
    LRawWideSource(LFile&& file, int32_t nSampleRate, int64_t nDataBytes, uint8_t nChans, LWideSample kind,
                   bool bBigEndian)
        : LRawFileDataSoundSourceBase(std::move(file), LWideBytes(kind), nSampleRate, nDataBytes, nChans),
          pfnConvert(LWideReader(kind, bBigEndian))
    {
    }

protected:
    void Convert(const uint8_t* pBytes, int32_t* pOut, size_t nSamples) const override
    {
        pfnConvert(pBytes, pOut, nSamples);
    }

private:
    LWideToSamplesFn pfnConvert;
};

// The reader of one of the encodings (LRawEncoding, not the ADPCM one); a latched silent source for any other.
LSoundSourcePtr LMakeRawSource(int32_t nEncoding, LFile&& file, int32_t nSampleRate, int64_t nDataBytes,
                               uint8_t nChans);
