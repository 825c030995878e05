// The one door to audio files: picks the reader or writer for a file by its contents and
// extension, so callers never name a format module.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/LSoundSinkBase.h"
#include "core/LSoundSourceBase.h"

class LAudioFormat;
class LProgressReport;

// How a file is to be written: one of its format's encodings, with that encoding's settings.
struct LAudioEncoding
{
    std::string szName;           // a short name the format knows ("pcm16", "pcm8"); empty: the format's default
    std::vector<uint8_t> vRecord; // settings the format keeps in a layout of its own; empty when unused
    // The format a file was read in, when the encoding describes that file: it then carries over
    // only to the same format (a .gsm saved as .wav becomes PCM, not GSM in WAV). Empty: any.
    std::string szFormat;

    static LAudioEncoding Named(const std::string& szName) { return LAudioEncoding{szName, {}, {}}; }
};

// What a file holds, for showing to the user and for keeping its form when saving.
struct LAudioFileDetails
{
    std::string szFormat;    // "WAV"
    std::string szEncoding;  // "PCM 16-bit", for people
    LAudioEncoding encoding; // writes the file back in the form it was read in, where its format can
};

class LAudioFile
{
public:
    // Never null: on failure a latched silent source, with the reason in *pszError when given
    // (a one-line text for the user, e.g. "not a WAV file: no RIFF WAVE chunk found").
    static LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError = nullptr);
    static LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError, LAudioFileDetails* pDetails);

    // A sink writing the format the extension names in the given encoding (empty: the format's
    // default). Null on failure, with the reason in *pszError.
    static LSoundSinkPtr OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                                  const LAudioEncoding& encoding, std::string* pszError = nullptr);

    // The encoding a save into the format uses for the one asked: it when the format has it, the
    // same plain sample width (pcm24, float) when it has that, else the format's default (empty).
    static LAudioEncoding EncodingFor(const LAudioFormat& format, const LAudioEncoding& encoding);

    // Pumps a source into a new file through the converters the format needs: a format that holds
    // only some rates or channel counts gets the nearest it holds. The file is written beside the
    // target and renamed over it only when complete, so a failed or cancelled save leaves any old
    // file intact. Returns 0 done, 1 cancelled, 2 error.
    static int32_t Save(LProgressReport& dlg, const std::string& szTitle, LSoundSourceBase* pSource,
                        const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                        const LAudioEncoding& encoding, std::string* pszError = nullptr);
};
