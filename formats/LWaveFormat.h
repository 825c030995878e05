// The WAV module behind the audio file door.
#pragma once

#include "formats/LAudioFormat.h"

class LWaveFormat : public LAudioFormat
{
public:
    const char* GetName() const override { return "WAV"; }
    std::vector<LAudioFileType> GetFileTypes() const override { return {{"Wave Files(*.wav)", "*.wav;*.wave"}}; }
    bool MatchesContent(const uint8_t* pHead, size_t nBytes) const override;
    std::vector<std::string> GetEncodings() const override { return {"pcm16", "pcm8"}; }

    LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError,
                               LAudioFileDetails* pDetails) const override;
    LSoundSinkPtr OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                           const LAudioEncoding& encoding, std::string* pszError) const override;
};
