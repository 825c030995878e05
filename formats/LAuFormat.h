// The AU module behind the audio file door.
#pragma once

#include "formats/LAudioFormat.h"

class LAuFormat : public LAudioFormat
{
public:
    const char* GetName() const override { return "AU"; }
    std::vector<LAudioFileType> GetFileTypes() const override { return {{"Sun AU Files(*.au)", "*.au;*.snd"}}; }
    bool MatchesContent(const uint8_t* pHead, size_t nBytes) const override;
    std::vector<std::string> GetEncodings() const override { return {"pcm16", "ulaw", "alaw", "pcm24", "pcm32", "float"}; }

    LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError,
                               LAudioFileDetails* pDetails) const override;
    LSoundSinkPtr OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                           const LAudioEncoding& encoding, std::string* pszError) const override;
};
