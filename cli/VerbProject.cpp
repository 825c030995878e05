// sonitra-cli project new|info|render: make a project of audio files, list what a project
// holds, and write one of its documents as audio.
#include <cstdio>
#include <filesystem>

#include "cli/LCliArgs.h"
#include "cli/LCliOpen.h"
#include "cli/LCliVerb.h"
#include "work/LCutListAudioLoadSource.h"
#include "core/LFile.h"
#include "core/LSoundTime.h"
#include "formats/LAudioFile.h"
#include "project/LEdLoadProject.h"
#include "project/LEdSaveProject.h"
#include "project/LProjectSegments.h"

namespace {

const char kUsage[] =
    "usage: sonitra-cli project new OUT.snp FILE... [--bookmark N@TIME=NAME]... [--region N@START-END=NAME]...\n"
    "       sonitra-cli project info FILE.snp\n"
    "       sonitra-cli project render FILE.snp N OUT\n"
    "\n"
    "new     makes a project of the audio files; N counts the files from 1 and times are seconds\n"
    "        or h:mm:ss.mmm. The audio goes into a folder of its own beside the project (OUT_audio,\n"
    "        or OUT_audio_2 and on when that is taken), so the project no longer needs the files it\n"
    "        was made from. The project names that folder: move or rename the two together.\n"
    "        A project holds at most 255 files, 255 bookmarks and 255 regions.\n"
    "info    lists the project's files (path, rate, channels, length), its bookmarks (name, time,\n"
    "        times visited) and its regions (name@start-end).\n"
    "render  writes the project's N-th document to OUT, in the format its extension names.";

bool Usage(const std::string& szText)
{
    LCliError("project: " + szText + " (try sonitra-cli project --help)");
    return false;
}

struct Mark
{
    int32_t nFile = 0;
    int32_t nStartMs = 0;
    int32_t nEndMs = 0;
    std::string szName;
};

// "N@TIME=NAME", or with bRange "N@START-END=NAME".
bool ParseMark(const std::string& szText, bool bRange, Mark& mark)
{
    const size_t nAt = szText.find('@');
    const size_t nEq = szText.find('=', nAt == std::string::npos ? 0 : nAt);
    if (nAt == std::string::npos || nEq == std::string::npos || nEq + 1 >= szText.size())
        return false;
    if (!LCliParseInt(szText.substr(0, nAt), 1, 255, mark.nFile))
        return false;
    mark.szName = szText.substr(nEq + 1);
    const std::string szTime = szText.substr(nAt + 1, nEq - nAt - 1);
    if (!bRange)
        return LCliParseTime(szTime, mark.nStartMs);
    const size_t nDash = szTime.find('-');
    return nDash != std::string::npos && LCliParseTime(szTime.substr(0, nDash), mark.nStartMs) &&
           LCliParseTime(szTime.substr(nDash + 1), mark.nEndMs) && mark.nEndMs > mark.nStartMs;
}

// What "new" was given: the project to write, the audio files and the marks on them.
struct NewArgs
{
    std::string szOut;
    std::vector<std::string> vFiles;
    std::vector<Mark> vBookmarks;
    std::vector<Mark> vRegions;
};

// Sorts the arguments into files and marks; false after saying why.
bool ParseNewArgs(const std::vector<std::string>& vArgs, NewArgs& args)
{
    for (size_t i = 0; i < vArgs.size(); ++i) {
        const std::string& s = vArgs[i];
        if (s == "--bookmark" || s == "--region") {
            Mark mark;
            if (i + 1 >= vArgs.size() || !ParseMark(vArgs[i + 1], s == "--region", mark))
                return Usage(s + " takes " + (s == "--region" ? "N@START-END=NAME" : "N@TIME=NAME"));
            (s == "--region" ? args.vRegions : args.vBookmarks).push_back(mark);
            ++i;
        } else if (s.size() > 1 && s[0] == '-') {
            return Usage("unknown option '" + s + "'");
        } else {
            args.vFiles.push_back(s);
        }
    }
    return true;
}

// Takes the project off the front of the files and checks the counts and the marks' file numbers
// against what a project holds; false after saying why.
bool CheckNewArgs(NewArgs& args)
{
    std::vector<std::string>& vFiles = args.vFiles;
    if (vFiles.size() < 2)
        return Usage("new needs the project and at least one audio file");
    if (vFiles.size() > LEdProject::kMaxRecords + 1)
        return Usage("a project holds at most 255 files");
    if (args.vBookmarks.size() > LEdProject::kMaxRecords || args.vRegions.size() > LEdProject::kMaxRecords)
        return Usage("a project holds at most 255 bookmarks and 255 regions");
    args.szOut = vFiles.front();
    vFiles.erase(vFiles.begin());
    for (const Mark& m : args.vBookmarks)
        if (m.nFile > static_cast<int32_t>(vFiles.size()))
            return Usage("--bookmark names file " + std::to_string(m.nFile) + " of " + std::to_string(vFiles.size()));
    for (const Mark& m : args.vRegions)
        if (m.nFile > static_cast<int32_t>(vFiles.size()))
            return Usage("--region names file " + std::to_string(m.nFile) + " of " + std::to_string(vFiles.size()));
    return true;
}

// Loads one audio file into a document of the project; CliDone, or the code after saying why.
int AddProjectFile(LEdProject& project, const std::string& szFile)
{
    LAudioFileDetails details;
    LSoundSourcePtr pSource = LCliOpenSound(szFile, &details);
    if (!pSource)
        return CliError;
    LEdProjectFile f;
    f.pDoc = new LCutListAudio;
    LCutListAudioLoadSource load("Loading file " + LFile::FileNameOf(szFile), f.pDoc.Get(), pSource.Get());
    const int32_t nResult = load.Run();
    if (nResult != 0) {
        LCliError(szFile + (nResult == 1 ? ": cancelled" : ": cannot be read"));
        return nResult == 1 ? CliCancelled : CliError;
    }
    f.entry.SetPath(std::filesystem::absolute(szFile).lexically_normal().string());
    f.entry.SetName(LFile::FileNameOf(szFile));
    f.entry.SetEncoding(details.encoding.szName);
    f.entry.nSampleRate = f.pDoc->GetSampleRate();
    f.entry.nChans = f.pDoc->GetChannels();
    f.entry.sViewEnd = f.pDoc->GetLength();
    project.vFiles.push_back(std::move(f));
    return CliDone;
}

// The bookmarks and regions, their times turned into samples at their file's rate.
void AddProjectMarks(LEdProject& project, const NewArgs& args)
{
    for (const Mark& m : args.vBookmarks) {
        const LEdProjectFile& f = project.vFiles[m.nFile - 1];
        project.vBookmarks.emplace_back(m.szName, LEdProject::FileKey(f.entry),
                                        LSoundTime::MsToSamples(m.nStartMs, f.pDoc->GetSampleRate()));
    }
    for (const Mark& m : args.vRegions) {
        const LEdProjectFile& f = project.vFiles[m.nFile - 1];
        const int32_t nRate = f.pDoc->GetSampleRate();
        project.vRegions.emplace_back(m.szName, LEdProject::FileKey(f.entry), *f.pDoc,
                                      LSoundTime::MsToSamples(m.nStartMs, nRate), LSoundTime::MsToSamples(m.nEndMs, nRate));
    }
}

int RunNew(const std::vector<std::string>& vArgs)
{
    NewArgs args;
    if (!ParseNewArgs(vArgs, args) || !CheckNewArgs(args))
        return CliUsage;
    LEdProject project;
    for (const std::string& szFile : args.vFiles)
        if (const int nCode = AddProjectFile(project, szFile); nCode != CliDone)
            return nCode;
    project.nState = 0;
    AddProjectMarks(project, args);
    LProjectSegments segments(LProjectSegments::NewFolderFor(args.szOut));
    LEdSaveProject save(args.szOut, project, &segments);
    const int32_t nResult = save.Run();
    if (nResult != 0) {
        LCliError(args.szOut + ": " + (nResult == 1 ? std::string("cancelled") : save.GetError()));
        return nResult == 1 ? CliCancelled : CliError;
    }
    return CliDone;
}

// Loads a project for info and render; false after saying why.
bool Load(LEdLoadProject& load, const std::string& szPath)
{
    const int32_t nResult = load.Run();
    if (nResult == 0)
        return true;
    if (load.IsVersionError())
        LCliError(szPath + ": " + LEdLoadProject::kVersionMessage);
    else if (load.IsOpenError())
        LCliError(szPath + ": cannot be opened");
    else if (load.IsMissingAudio())
        LCliError(szPath + ": " + load.GetError());
    else
        LCliError(szPath + ": damaged (" + load.GetError() + ")");
    return false;
}

std::string TimeOf(int32_t sFrames, int32_t nRate)
{
    LSoundTime t;
    t.SetSamples(sFrames, nRate);
    return t.FormatMilliseconds();
}

int RunInfo(const std::vector<std::string>& vArgs)
{
    if (vArgs.size() != 1)
        return Usage("info needs exactly one project"), CliUsage;
    LEdLoadProject load(vArgs[0]);
    if (!Load(load, vArgs[0]))
        return CliError;
    const LEdProject& p = load.GetProject();
    for (size_t i = 0; i < p.vFiles.size(); ++i) {
        const LEdProjectFile& f = p.vFiles[i];
        const std::string szPath = f.entry.GetPath().empty() ? f.entry.GetName() : f.entry.GetPath();
        const LCutListAudio& doc = *f.pDoc;
        std::printf("file %zu: %s, %d Hz, %d channel%s, %d frames, %s\n", i + 1, szPath.c_str(), doc.GetSampleRate(),
                    doc.GetChannels(), doc.GetChannels() == 1 ? "" : "s", doc.GetLength(),
                    TimeOf(doc.GetLength(), doc.GetSampleRate()).c_str());
    }
    for (const LEdBookMark& b : p.vBookmarks) {
        int32_t nRate = 44100;
        for (const LEdProjectFile& f : p.vFiles)
            if (LEdProject::FileKey(f.entry) == b.GetPath())
                nRate = f.pDoc->GetSampleRate();
        std::printf("bookmark: %s, %s, visited %u\n", b.GetName().c_str(), TimeOf(b.sPosition, nRate).c_str(),
                    b.nTimesVisited);
    }
    for (const LEdRegion& r : p.vRegions)
        std::printf("region: %s\n", r.Describe().c_str());
    return CliDone;
}

class LPRRender : public LProgressDialog
{
public:
    LPRRender(const LCutListAudio& doc, const std::string& szOut, const LAudioEncoding& encoding)
        : LProgressDialog("Rendering " + szOut), pSource(doc.OpenSource()), nRate(doc.GetSampleRate()),
          nChans(doc.GetChannels()), szOut(szOut), encoding(encoding)
    {
    }
    int32_t Process() override
    {
        return LAudioFile::Save(*this, GetTitle(), pSource.Get(), szOut, nRate, nChans, encoding, &szError);
    }
    std::string szError;

private:
    LSoundSourcePtr pSource;
    int32_t nRate;
    uint8_t nChans;
    std::string szOut;
    LAudioEncoding encoding;
};

int RunRender(const std::vector<std::string>& vArgs)
{
    int32_t nIndex = 0;
    if (vArgs.size() != 3 || !LCliParseInt(vArgs[1], 1, 255, nIndex))
        return Usage("render needs a project, a document number from 1 and an output file"), CliUsage;
    LEdLoadProject load(vArgs[0]);
    if (!Load(load, vArgs[0]))
        return CliError;
    const LEdProject& p = load.GetProject();
    if (nIndex > static_cast<int32_t>(p.vFiles.size())) {
        LCliError(vArgs[0] + " holds " + std::to_string(p.vFiles.size()) + " documents");
        return CliError;
    }
    const LEdProjectFile& f = p.vFiles[nIndex - 1];
    LPRRender render(*f.pDoc, vArgs[2], LAudioEncoding::Named(f.entry.GetEncoding()));
    const int32_t nResult = render.Run();
    if (nResult != 0) {
        LCliError(vArgs[2] + ": " + (nResult == 1 ? std::string("cancelled") : render.szError));
        return nResult == 1 ? CliCancelled : CliError;
    }
    return CliDone;
}

int RunProject(const std::vector<std::string>& vArgs)
{
    if (vArgs.empty())
        return Usage("no action given"), CliUsage;
    const std::vector<std::string> vRest(vArgs.begin() + 1, vArgs.end());
    if (vArgs[0] == "new")
        return RunNew(vRest);
    if (vArgs[0] == "info")
        return RunInfo(vRest);
    if (vArgs[0] == "render")
        return RunRender(vRest);
    return Usage("unknown action '" + vArgs[0] + "'"), CliUsage;
}

} // namespace

static LCliVerb verbProject("project", "make, list and render projects (.snp)", kUsage, RunProject);
