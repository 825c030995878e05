// One audio file format as the door (LAudioFile) sees it. Each format module implements this
// and is listed once in LAudioFormat::All(); nothing else names the modules: the open and save
// filters, the extension check and the choice of writer all come from that list.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "formats/LAudioFile.h"

// One entry of a file dialog's filter: "Wave Files(*.wav)" over "*.wav".
struct LAudioFileType
{
    std::string szLabel;    // "Wave Files(*.wav)"
    std::string szPatterns; // "*.wav;*.wave", lower case; the first names the extension a save adds
};

class LAudioFormat
{
public:
    virtual ~LAudioFormat() = default;

    virtual const char* GetName() const = 0;
    // How messages that list the known formats name this one; by default its name.
    virtual std::string GetListedName() const { return GetName(); }
    virtual std::vector<LAudioFileType> GetFileTypes() const = 0;
    // szExt is lower case with the dot (".wav"); by default one of the file types' patterns.
    virtual bool HasExtension(const std::string& szExt) const;
    // True when the first bytes of a file show that it is in this format.
    virtual bool MatchesContent(const uint8_t* pHead, size_t nBytes) const { return false; }

    // The encodings this format writes, its default first; empty for a format that is only read.
    virtual std::vector<std::string> GetEncodings() const = 0;
    // Narrows a rate and channel count to what the encoding holds (GSM: 8000 Hz, one channel);
    // the save converts the sound to the result.
    virtual void FitShape(const LAudioEncoding& encoding, int32_t& nSampleRate, uint8_t& nChans) const {}

    virtual LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError,
                                       LAudioFileDetails* pDetails) const = 0;
    // Null on failure, with the reason in *pszError. The encoding is one of GetEncodings() or empty.
    virtual LSoundSinkPtr OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                                   const LAudioEncoding& encoding, std::string* pszError) const = 0;

    // The install-on-demand component that writing needs ("mp3el"); empty when none.
    virtual std::string GetWriteComponent() const { return std::string(); }

    bool CanWrite() const { return !GetEncodings().empty(); }
    bool CanWrite(const LAudioEncoding& encoding) const;
    // The extension a save adds when the user typed none (".wav").
    std::string GetDefaultExtension() const;

    static constexpr size_t kHeadBytes = 64; // what MatchesContent is given at most

    static const std::vector<const LAudioFormat*>& All();
    static const LAudioFormat* ByExtension(const std::string& szPath);
    static const LAudioFormat* ByContent(const uint8_t* pHead, size_t nBytes);
    static const LAudioFormat* ByName(const std::string& szName);
    // The file types the open dialog offers, and those of the formats that can be written.
    static std::vector<LAudioFileType> OpenTypes();
    static std::vector<LAudioFileType> SaveTypes();
    // Every pattern of a list of types, each once, in list order: the "Audio Files" filter.
    static std::string AllPatterns(const std::vector<LAudioFileType>& vTypes);
};
