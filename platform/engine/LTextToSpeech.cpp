#include "platform/engine/LTextToSpeech.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <unistd.h>

#include "core/LTempFolder.h"
#include "core/LTrace.h"
#include "platform/engine/LChildProcess.h"

const std::vector<std::string>& LTextToSpeech::CommonVoices()
{
    static const std::vector<std::string> v = {"en", "en-us", "en-gb-scotland", "en+f3", "en-us+f2", "de", "fr",
                                               "es", "it", "nl", "pt", "sv"};
    return v;
}

bool LTextToSpeech::IsVoiceName(const std::string& szVoice)
{
    if (szVoice.empty() || szVoice.size() > 64 || !std::isalnum(static_cast<unsigned char>(szVoice[0])))
        return false;
    for (char c : szVoice)
        if (!std::isalnum(static_cast<unsigned char>(c)) && c != '+' && c != '-' && c != '_' && c != '/')
            return false;
    return true;
}

namespace {
// The text goes to a new file of our own (never one planted in its place), closed exactly once.
bool WriteTextFile(const std::string& szText, std::string& szTextPath, std::string& szError)
{
    std::string szWhy;
    const int fd = LTempFolder::CreateFile("sonitra-speech-", ".txt", szTextPath, &szWhy);
    if (fd < 0) {
        szError = "Unable to write the text to speak: " + szWhy + ".";
        return false;
    }
    size_t nDone = 0;
    while (nDone < szText.size()) {
        const ssize_t n = ::write(fd, szText.data() + nDone, szText.size() - nDone);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            break;
        nDone += static_cast<size_t>(n);
    }
    const bool bWritten = nDone == szText.size();
    // The descriptor is gone after close() whatever it returns: it is never closed again.
    const bool bClosed = ::close(fd) == 0;
    if (!bWritten || !bClosed) {
        ::unlink(szTextPath.c_str());
        szError = "Unable to write the text to " + szTextPath + ".";
        return false;
    }
    return true;
}
} // namespace

bool LTextToSpeech::Speak(const std::string& szText, const std::string& szVoice, int nWordsPerMinute,
                          const std::string& szWavPath, std::string& szError)
{
    bool bBlank = true;
    for (char c : szText)
        bBlank = bBlank && std::isspace(static_cast<unsigned char>(c));
    if (bBlank) {
        szError = "Type or paste the text to speak.";
        return false;
    }
    if (!IsVoiceName(szVoice)) {
        szError = "\"" + szVoice + "\" is not a voice name.";
        return false;
    }
    if (nWordsPerMinute < kMinWordsPerMinute || nWordsPerMinute > kMaxWordsPerMinute) {
        szError = "The speed must be between 80 and 450 words per minute.";
        return false;
    }
    std::string szTextPath;
    if (!WriteTextFile(szText, szTextPath, szError))
        return false;
    int nExit = 0;
    bool bMissing = false;
    std::string szWhy;
    const bool bRan = LChildProcess::Run({kProgram, "-v", szVoice, "-s", std::to_string(nWordsPerMinute), "-w", szWavPath,
                                     "-f", szTextPath},
                                    &nExit, &szWhy, &bMissing);
    std::remove(szTextPath.c_str());
    if (!bRan) {
        LTRACE("LTextToSpeech::Speak %s", szWhy.c_str());
        szError = bMissing ? kMsgMissing : "Unable to start espeak-ng: " + szWhy;
        return false;
    }
    if (nExit != 0) {
        LTRACE("LTextToSpeech::Speak espeak-ng exit %d", nExit);
        szError = "espeak-ng could not speak the text (is \"" + szVoice + "\" one of its voices?).";
        return false;
    }
    return true;
}
