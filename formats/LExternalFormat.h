// Formats whose files installed programs decode (and some encode): FLAC, Ogg, and whatever
// ffmpeg reads. One class, one table entry per format: the decoders it may use (the first one
// installed is taken) and the encoder that writes it, if any.
#pragma once

#include <vector>

#include "formats/LAudioFormat.h"

struct LExternalFormatInfo
{
    const char* szName;
    std::vector<LAudioFileType> vTypes;
    const char* szMagic;                // the file's first bytes, or null
    bool bTakesExtraExtensions;         // also opens the extensions the user added
    std::vector<const char*> vDecoders; // "flac", "oggdec", "ffmpeg": the first installed is used
    std::vector<const char*> vEncoders; // "flac", "oggenc", "ffmpeg-vorbis": likewise; empty: read only
    const char* szQualityKey;           // the "Settings" value holding the encoder's quality, or null
    int nDefaultQuality;
};

class LExternalFormat : public LAudioFormat
{
public:
    explicit LExternalFormat(const LExternalFormatInfo& info) : info(info) {}

    const char* GetName() const override { return info.szName; }
    // The catch-all for extensions ffmpeg opens is listed by its extensions, not its name.
    std::string GetListedName() const override;
    std::vector<LAudioFileType> GetFileTypes() const override;
    bool HasExtension(const std::string& szExt) const override;
    bool MatchesContent(const uint8_t* pHead, size_t nBytes) const override;
    std::vector<std::string> GetEncodings() const override;

    LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError,
                               LAudioFileDetails* pDetails) const override;
    LSoundSinkPtr OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                           const LAudioEncoding& encoding, std::string* pszError) const override;

    // The "Settings" value listing extensions the user added for ffmpeg to open (".ape;.mka").
    static constexpr const char* kExtraExtensionsKey = "ExternalExtensions";
    // The encoder's quality: the one in the encoding's record when it has one, else the stored one.
    int GetQuality(const LAudioEncoding& encoding) const;
    // Keeps a quality the user chose as the one the next save starts from.
    void StoreQuality(int nQuality) const;

private:
    LExternalFormatInfo info;
};
