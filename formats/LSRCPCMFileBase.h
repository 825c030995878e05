// Reads uncompressed samples from the data chunk of an open WAV file: headerless samples whose
// length the chunk's size gives. The variants for 8- and 16-bit samples differ only in how a
// block of bytes becomes internal samples.
#pragma once

#include "formats/LRawFileDataSoundSourceBase.h"

class LSRCPCMFileBase : public LRawFileDataSoundSourceBase
{
public:
    // Takes over the file, whose pointer stands at the first sample. nDataBytes < 0: a file still
    // being written, whose samples run to its end.
    LSRCPCMFileBase(LFile&& file, int64_t nDataBytes, int32_t nSampleRate, uint8_t nChans, int nBytesPerSample)
        : LRawFileDataSoundSourceBase(std::move(file), static_cast<size_t>(nBytesPerSample), nSampleRate,
                                      nDataBytes < 0 ? kUnspecifiedLength : nDataBytes, nChans)
    {
    }
};
