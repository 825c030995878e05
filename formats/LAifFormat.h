// The AIFF module behind the audio file door (AIFF-C files are read too).
#pragma once

#include "formats/LAudioFormat.h"

class LAifFormat : public LAudioFormat
{
public:
    const char* GetName() const override { return "AIFF"; }
    std::vector<LAudioFileType> GetFileTypes() const override
    {
        return {{"Apple AIF Files(*.aif)", "*.aif;*.aiff;*.aifc"}};
    }
    bool MatchesContent(const uint8_t* pHead, size_t nBytes) const override;
    std::vector<std::string> GetEncodings() const override { return {"pcm16", "pcm8", "pcm24", "pcm32"}; }

    LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError,
                               LAudioFileDetails* pDetails) const override;
    LSoundSinkPtr OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                           const LAudioEncoding& encoding, std::string* pszError) const override;
};
