// The headerless modules behind the audio file door: ".vox" (always one channel) and ".raw".
// Both read and write the layout the settings hold (LVoxRawSettings).
#pragma once

#include "formats/LAudioFormat.h"

class LVoxRawFormat : public LAudioFormat
{
public:
    explicit LVoxRawFormat(bool bVox) : bVox(bVox) {}

    const char* GetName() const override { return bVox ? "VOX" : "RAW"; }
    std::vector<LAudioFileType> GetFileTypes() const override;
    // Every encoding of the settings list, by its short name; the stored one is used when none is named.
    std::vector<std::string> GetEncodings() const override;
    // The file is written at the rate and channel count of its layout.
    void FitShape(const LAudioEncoding& encoding, int32_t& nSampleRate, uint8_t& nChans) const override;

    LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError,
                               LAudioFileDetails* pDetails) const override;
    LSoundSinkPtr OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                           const LAudioEncoding& encoding, std::string* pszError) const override;

private:
    bool bVox;
};
