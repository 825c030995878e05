// One audio file format as the door (LAudioFile) sees it. Each format module implements this
// and is listed once in LAudioFormat::All(); nothing else names the modules.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "formats/LAudioFile.h"

class LAudioFormat
{
public:
    virtual ~LAudioFormat() = default;

    virtual const char* GetName() const = 0;
    // szExt is lower case with the dot (".wav").
    virtual bool HasExtension(const std::string& szExt) const = 0;
    // True when the first bytes of a file show that it is in this format.
    virtual bool MatchesContent(const uint8_t* pHead, size_t nBytes) const = 0;
    virtual bool CanWrite(int nBits) const = 0;

    virtual LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszError,
                                       LAudioFileDetails* pDetails) const = 0;
    // Null on failure, with the reason in *pszError.
    virtual LSoundSinkPtr OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans, int nBits,
                                   std::string* pszError) const = 0;

    static constexpr size_t kHeadBytes = 64; // what MatchesContent is given at most

    static const std::vector<const LAudioFormat*>& All();
    static const LAudioFormat* ByExtension(const std::string& szPath);
    static const LAudioFormat* ByContent(const uint8_t* pHead, size_t nBytes);
};
