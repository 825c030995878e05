// Reads uncompressed samples from the data chunk of an open WAV file: headerless samples whose
// length the chunk's size gives. The variants for 8- and 16-bit samples differ only in how a
// block of bytes becomes internal samples.
#pragma once

#include "formats/LRawFileDataSoundSourceBase.h"

class LSRCPCMFileBase : public LRawFileDataSoundSourceBase
{
public:
    // A data size of all ones marks a file that is still being written.
    static constexpr uint32_t kStreamingSize = 0xFFFFFFFF;

    // Takes over the file, whose pointer stands at the first sample.
    LSRCPCMFileBase(LFile&& file, uint32_t nDataSize, int32_t nSampleRate, uint8_t nChans, int nBytesPerSample)
        : LRawFileDataSoundSourceBase(std::move(file), static_cast<size_t>(nBytesPerSample), nSampleRate,
                                      nDataSize == kStreamingSize ? kUnspecifiedLength : int64_t{nDataSize}, nChans)
    {
    }
};
