// The one door to audio files: picks the reader or writer for a file by its contents and
// extension, so callers never name a format module.
#pragma once

#include <cstdint>
#include <string>

#include "core/LSoundSinkBase.h"
#include "core/LSoundSourceBase.h"

class LProgressDialog;

// What a file holds, for showing to the user and for keeping its form when saving.
struct LAudioFileDetails
{
    std::string szFormat;   // "WAV"
    std::string szEncoding; // "PCM 16-bit"
    int nBits = 0;          // 8 or 16: the sample width PCM reads as; 0 for other encodings
};

class LAudioFile
{
public:
    // Never null: on failure a latched silent source, with the reason in *pszError when given
    // (a one-line text for the user, e.g. "not a WAV file: no RIFF WAVE chunk found").
    static LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError = nullptr);
    static LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError, LAudioFileDetails* pDetails);

    // A sink writing the format the extension names (".wav": PCM of nBits 8 or 16).
    // Null on failure, with the reason in *pszError.
    static LSoundSinkPtr OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans, int nBits,
                                  std::string* pszError = nullptr);

    // Pumps a source into a new file through the converters the format needs. The file is
    // written beside the target and renamed over it only when complete, so a failed or
    // cancelled save leaves any old file intact. Returns 0 done, 1 cancelled, 2 error.
    static int32_t Save(LProgressDialog& dlg, const std::string& szTitle, LSoundSourceBase* pSource,
                        const std::string& szPath, int32_t nSampleRate, uint8_t nChans, int nBits,
                        std::string* pszError = nullptr);
};
