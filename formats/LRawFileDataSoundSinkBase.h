// Writes internal samples to a file in one of the headerless encodings (LRawEncoding, not the
// ADPCM one, which LSNKVOX writes). A format with a header derives from it, reserves the
// header's bytes and writes the header once the data size is known, when the sink completes.
#pragma once

#include <string>
#include <vector>

#include "core/LFile.h"
#include "core/LSoundSinkBase.h"

class LRawFileDataSoundSinkBase : public LSoundSinkBase
{
public:
    static constexpr int32_t kBlockFrames = 8192;

    // Creates the file anew; nHeaderBytes are left for the header before the samples.
    LRawFileDataSoundSinkBase(const std::string& szPath, int32_t nSampleRate, uint8_t nChans, int32_t nEncoding,
                              int64_t nHeaderBytes = 0);
    ~LRawFileDataSoundSinkBase() override;

    void Write(const int32_t* pBuffer, int32_t nFrames) override;
    // Puts the final header in place and closes the file. The destructor of a sink with a header
    // calls it too, while its header writer still exists.
    bool Complete() override;

protected:
    // Writes the header at the start of the file for nDataBytes of samples (-1: not known yet);
    // true when written.
    virtual bool WriteHeader(LFile& file, int64_t nDataBytes) { return true; }
    int64_t GetDataBytes() const { return nDataBytes; }
    // Called by a derived constructor once the object can write its header.
    void StartHeader();

private:
    using ConvertFn = void (*)(const int32_t* pIn, uint8_t* pOut, size_t n);

    LFile file;
    ConvertFn pfnConvert = nullptr;
    int64_t nFrameSize = 1;
    int64_t nDataBytes = 0;
    std::vector<uint8_t> vBuffer;
};
