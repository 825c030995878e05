// The WAV module behind the audio file door.
#pragma once

#include "formats/LAudioFormat.h"

class LWaveFormat : public LAudioFormat
{
public:
    const char* GetName() const override { return "WAV"; }
    bool HasExtension(const std::string& szExt) const override;
    bool MatchesContent(const uint8_t* pHead, size_t nBytes) const override;
    bool CanWrite(int nBits) const override { return nBits == 8 || nBits == 16; }

    LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError,
                               LAudioFileDetails* pDetails) const override;
    LSoundSinkPtr OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans, int nBits,
                           std::string* pszError) const override;
};
