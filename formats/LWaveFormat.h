// The WAV module behind the audio file door. Its encodings: "pcm16" (the default) and "pcm8",
// the wide "pcm24", "pcm32", "float" and "float64" (all written directly, at the internal
// sample's full precision), and one per codec of the codec layer ("ima", "gsm", ...). An
// encoding may carry a whole format record (the one a file was read in, or one the user chose);
// the file is then written in exactly that format.
#pragma once

#include "formats/LAudioFormat.h"
#include "formats/LWaveFormatRecord.h"

class LWaveFormat : public LAudioFormat
{
public:
    const char* GetName() const override { return "WAV"; }
    std::vector<LAudioFileType> GetFileTypes() const override { return {{"Wave Files(*.wav)", "*.wav;*.wave"}}; }
    bool MatchesContent(const uint8_t* pHead, size_t nBytes) const override;
    std::vector<std::string> GetEncodings() const override;
    void FitShape(const LAudioEncoding& encoding, int32_t& nSampleRate, uint8_t& nChans) const override;

    LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError,
                               LAudioFileDetails* pDetails) const override;
    LSoundSinkPtr OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                           const LAudioEncoding& encoding, std::string* pszError) const override;

    // The record an encoding writes at a rate and channel count; false for the direct PCM
    // encodings and for names no codec knows.
    static bool RecordFor(const LAudioEncoding& encoding, int32_t nSampleRate, uint8_t nChans,
                          LWaveFormatRecord& record);
    // The encoding that writes a file back in the record it was read in.
    static LAudioEncoding EncodingOf(const LWaveFormatRecord& record);
};
