// sonitra-cli bookmarks AUDIOFILE: the bookmark list (".snm") kept beside an audio file.
#include <cstdio>
#include <ctime>

#include "cli/LCliVerb.h"
#include "core/LSoundTime.h"
#include "formats/LAudioFile.h"
#include "lists/LListFile.h"
#include "project/LBookmarkFile.h"
#include "project/LEdLoadProject.h"

namespace {

const char kUsage[] =
    "usage: sonitra-cli bookmarks AUDIOFILE\n"
    "\n"
    "Lists the bookmarks kept beside the audio file (the file's name with .snm): one line each\n"
    "with its name, its time, how often it was visited and when last (UTC; never for a new one).\n"
    "Nothing is listed when there is no such list.";

int RunBookmarks(const std::vector<std::string>& vArgs)
{
    if (vArgs.size() != 1 || (vArgs[0].size() > 1 && vArgs[0][0] == '-')) {
        LCliError("bookmarks: needs exactly one audio file (try sonitra-cli bookmarks --help)");
        return CliUsage;
    }
    const std::string& szAudio = vArgs[0];
    std::vector<LEdBookMark> v;
    std::string szWhy;
    switch (LBookmarkFile::Load(szAudio, v, &szWhy)) {
    case LBookmarkFile::BadVersion:
        LCliError(LBookmarkFile::PathFor(szAudio) + ": " + LEdLoadProject::kVersionMessage);
        return CliError;
    case LBookmarkFile::Damaged:
        LCliError(LListFile::DamagedMessage(LBookmarkFile::PathFor(szAudio), szWhy));
        return CliError;
    case LBookmarkFile::NoFile: return CliDone;
    case LBookmarkFile::Loaded: break;
    }
    // Positions are shown at the audio file's rate when it can be read.
    LSoundSourcePtr pSource = LAudioFile::OpenSource(szAudio);
    const int32_t nRate = pSource->IsError() ? 44100 : pSource->GetSampleRate();
    for (const LEdBookMark& b : v) {
        LSoundTime t;
        t.SetSamples(b.sPosition, nRate);
        char szWhen[32] = "never";
        if (b.nLastVisited != 0) {
            const time_t when = static_cast<time_t>(b.nLastVisited);
            struct tm parts;
            gmtime_r(&when, &parts);
            std::strftime(szWhen, sizeof(szWhen), "%Y-%m-%d %H:%M:%S", &parts);
        }
        std::printf("%s, %s, visited %u, last %s\n", b.GetName().c_str(), t.FormatMilliseconds().c_str(),
                    b.nTimesVisited, szWhen);
    }
    return CliDone;
}

} // namespace

static LCliVerb verbBookmarks("bookmarks", "list the bookmarks kept beside an audio file", kUsage, RunBookmarks);
