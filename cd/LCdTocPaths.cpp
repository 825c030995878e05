#include "cd/LCdTocPaths.h"

#include <cctype>

namespace {
bool IsWordChar(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

// True when the keyword ending at nEnd (exclusive) is one that names a file.
bool NamesFile(const std::string& sz, size_t nEnd)
{
    size_t nStart = nEnd;
    while (nStart > 0 && IsWordChar(sz[nStart - 1]))
        --nStart;
    const std::string szWord = sz.substr(nStart, nEnd - nStart);
    return szWord == "FILE" || szWord == "AUDIOFILE" || szWord == "DATAFILE";
}
} // namespace

std::string LCdTocPaths::Resolve(const std::string& szToc, const std::string& szFolder)
{
    std::string szOut;
    szOut.reserve(szToc.size() + 256);
    size_t i = 0;
    while (i < szToc.size()) {
        const char c = szToc[i];
        if (c == '/' && i + 1 < szToc.size() && szToc[i + 1] == '/') { // a comment runs to the line's end
            const size_t nEnd = szToc.find('\n', i);
            const size_t nStop = nEnd == std::string::npos ? szToc.size() : nEnd;
            szOut.append(szToc, i, nStop - i);
            i = nStop;
            continue;
        }
        if (c != '"') {
            szOut += c;
            ++i;
            continue;
        }
        size_t nKeyEnd = szOut.size();
        while (nKeyEnd > 0 && std::isspace(static_cast<unsigned char>(szOut[nKeyEnd - 1])))
            --nKeyEnd;
        const bool bFile = NamesFile(szOut, nKeyEnd);
        // The quoted text, escapes kept as they are.
        size_t j = i + 1;
        while (j < szToc.size() && szToc[j] != '"')
            j += szToc[j] == '\\' && j + 1 < szToc.size() ? 2 : 1;
        const std::string szText = szToc.substr(i + 1, (j < szToc.size() ? j : szToc.size()) - i - 1);
        szOut += '"';
        if (bFile && !szText.empty() && szText[0] != '/' && szText != "-")
            szOut += szFolder + "/";
        szOut += szText;
        if (j < szToc.size())
            szOut += '"';
        i = j + 1;
    }
    return szOut;
}
