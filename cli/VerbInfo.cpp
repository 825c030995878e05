// sonitra-cli info FILE...: one line per file with its format, rate, channels and length.
#include <cstdio>

#include "cli/LCliOpen.h"
#include "cli/LCliVerb.h"
#include "core/LSoundTime.h"
#include "formats/LAudioFile.h"

namespace {

const char kUsage[] =
    "usage: sonitra-cli info FILE...\n"
    "\n"
    "Prints one line per file: its format, sample rate, channels, and length in frames and\n"
    "as h:mm:ss.mmm. A file whose header claims more frames than it holds gets a second line\n"
    "saying how many are really there (the rest reads as silence). A file that cannot be read\n"
    "is reported on stderr and the exit status is 2; the other files are still reported.";

bool PrintInfo(const std::string& szPath)
{
    LAudioFileDetails details;
    LSoundSourcePtr pSource = LCliOpenSound(szPath, &details);
    if (!pSource)
        return false;
    LSoundTime length;
    length.SetSamples(pSource->GetLength(), pSource->GetSampleRate());
    const int nChans = pSource->GetChannels();
    std::printf("%s: %s %s, %d Hz, %d channel%s, %d frames, %s\n", szPath.c_str(), details.szFormat.c_str(),
                details.szEncoding.c_str(), pSource->GetSampleRate(), nChans, nChans == 1 ? "" : "s",
                pSource->GetLength(), length.FormatMilliseconds().c_str());
    const int32_t sHeld = pSource->GetLengthInFile();
    if (sHeld < pSource->GetLength()) {
        LSoundTime held;
        held.SetSamples(sHeld, pSource->GetSampleRate());
        std::printf("%s: the header claims %d frames but the file holds only %d (%s); the rest reads as "
                    "silence\n",
                    szPath.c_str(), pSource->GetLength(), sHeld, held.FormatMilliseconds().c_str());
    }
    return true;
}

int RunInfo(const std::vector<std::string>& vArgs)
{
    if (vArgs.empty()) {
        LCliError("info: no file given (try sonitra-cli info --help)");
        return CliUsage;
    }
    for (const std::string& s : vArgs) {
        if (s.size() > 1 && s[0] == '-') {
            LCliError("info: unknown option '" + s + "' (try sonitra-cli info --help)");
            return CliUsage;
        }
    }
    int nExit = CliDone;
    for (const std::string& szPath : vArgs) {
        if (!PrintInfo(szPath))
            nExit = CliError;
        std::fflush(stdout);
    }
    return nExit;
}

} // namespace

static LCliVerb verbInfo("info", "show the format and length of audio files", kUsage, RunInfo);
