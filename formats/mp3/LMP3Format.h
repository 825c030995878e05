// The MP3 module behind the audio file door: our own decoder for reading, the external encoder
// component for writing.
#pragma once

#include "formats/LAudioFormat.h"

class LMP3Source;

class LMP3Format : public LAudioFormat
{
public:
    const char* GetName() const override { return "MP3"; }
    std::vector<LAudioFileType> GetFileTypes() const override { return {{"MPEG Layer-3 Files(*.mp3)", "*.mp3"}}; }
    bool MatchesContent(const uint8_t* pHead, size_t nBytes) const override;
    std::vector<std::string> GetEncodings() const override { return {"mp3"}; }
    std::string GetWriteComponent() const override { return "mp3el"; }
    void FitShape(const LAudioEncoding& encoding, int32_t& nSampleRate, uint8_t& nChans) const override;

    LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError,
                               LAudioFileDetails* pDetails) const override;
    LSoundSinkPtr OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                           const LAudioEncoding& encoding, std::string* pszError) const override;

    // "MPEG-1 Layer III, 128 kbit/s" or "MPEG-2 Layer III, VBR (about 96 kbit/s)".
    static std::string Describe(const LMP3Source& source);
};
