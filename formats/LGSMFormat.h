// The ".gsm" module behind the audio file door: headerless GSM 06.10 full-rate frames, 8000 Hz
// mono only. The files have no header to recognise them by, so they are found by extension.
#pragma once

#include "formats/LAudioFormat.h"

class LGSMFormat : public LAudioFormat
{
public:
    const char* GetName() const override { return "GSM"; }
    std::vector<LAudioFileType> GetFileTypes() const override { return {{"Gsm Files(*.gsm)", "*.gsm"}}; }
    std::vector<std::string> GetEncodings() const override { return {"gsm"}; }
    void FitShape(const LAudioEncoding& encoding, int32_t& nSampleRate, uint8_t& nChans) const override;

    LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError,
                               LAudioFileDetails* pDetails) const override;
    LSoundSinkPtr OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                           const LAudioEncoding& encoding, std::string* pszError) const override;
};
