// sonitra-cli batch SCRIPT.snb FILE... --to EXT [--out DIR] [--jobs N]
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <poll.h>
#include <thread>
#include <unistd.h>

#include "cli/LCliArgs.h"
#include "cli/LCliVerb.h"
#include "formats/LAudioFormat.h"
#include "lists/EdBatchConverter.h"
#include "platform/engine/LChildProcess.h"
#include "platform/engine/LTerminalProgressHost.h"

namespace {

const char kUsage[] =
    "usage: sonitra-cli batch SCRIPT.snb FILE... --to EXT [--out DIR] [--jobs N]\n"
    "\n"
    "Runs the batch script SCRIPT.snb (made in the editor's Batch Converter or with\n"
    "sonitra-cli script new) over every FILE: each is loaded, the script's commands are\n"
    "applied in order to the whole file with their stored settings, and the result is saved\n"
    "as NAME.EXT in DIR (default: beside its input). An output never replaces any file\n"
    "the batch reads, and two files are never written to one output: such a file is not\n"
    "converted and the summary says why.\n"
    "\n"
    "  --to EXT    the output format by its extension: wav, au, ...\n"
    "  --out DIR   the folder for the outputs (made when missing)\n"
    "  --jobs N    files converted at once, each by a worker process of its own\n"
    "              (default: the number of cores)\n"
    "\n"
    "A file that fails is reported and the others go on; at the end a summary lists every\n"
    "failed file and why.\n"
    "Exit status: 0 all converted, 1 cancelled, 2 any file failed or the script is unusable,\n"
    "64 wrong usage.";

struct Request
{
    std::string szScript;
    std::vector<std::string> vFiles;
    LBatchOutput output;
    int32_t nJobs = 0;
    bool bWorker = false; // one line per file on stdout, no bar: a worker of a parallel run
};

bool UsageError(const std::string& szText)
{
    LCliError("batch: " + szText + " (try sonitra-cli batch --help)");
    return false;
}

bool ParseArgs(const std::vector<std::string>& vArgs, Request& req)
{
    std::vector<std::string> vPlain;
    for (size_t i = 0; i < vArgs.size(); ++i) {
        const std::string& sz = vArgs[i];
        if (sz == "--worker") {
            req.bWorker = true;
            continue;
        }
        if (sz == "--to" || sz == "--out" || sz == "--jobs") {
            if (i + 1 >= vArgs.size())
                return UsageError(sz + " needs a value");
            const std::string& szValue = vArgs[++i];
            if (sz == "--to")
                req.output.szExtension = szValue[0] == '.' ? szValue : "." + szValue;
            else if (sz == "--out")
                req.output.szFolder = szValue;
            else if (!LCliParseInt(szValue, 1, 256, req.nJobs))
                return UsageError("--jobs takes a number from 1 to 256");
        } else if (sz.size() > 1 && sz[0] == '-') {
            return UsageError("unknown option '" + sz + "'");
        } else {
            vPlain.push_back(sz);
        }
    }
    if (vPlain.size() < 2)
        return UsageError("needs a script and at least one file");
    if (req.output.szExtension.empty())
        return UsageError("--to names the output format");
    const LAudioFormat* pFormat = LAudioFormat::ByExtension("x" + req.output.szExtension);
    if (!pFormat || pFormat->GetEncodings().empty())
        return UsageError("no format writes '" + req.output.szExtension + "' files");
    req.szScript = vPlain[0];
    req.vFiles.assign(vPlain.begin() + 1, vPlain.end());
    if (req.nJobs == 0)
        req.nJobs = static_cast<int32_t>(std::max(1u, std::thread::hardware_concurrency()));
    return true;
}

bool LoadScript(const std::string& szPath, std::vector<CommandDataItem>& vScript)
{
    std::string szWhy;
    const LListLoad result = LBatchScript::Load(szPath, vScript, &szWhy);
    if (result == LListLoad::Damaged) {
        LCliError(LListFile::DamagedMessage(szPath, szWhy));
        return false;
    }
    if (result != LListLoad::Loaded) {
        LCliError(szPath + ": " + LListFile::LoadMessage(result, szPath, szWhy));
        return false;
    }
    return true;
}

// Shows nothing; Ctrl+C still cancels.
class LInterruptOnlyHost : public LQuietProgressHost
{
public:
    bool Pump() override { return !LTerminalProgressHostFactory::InterruptRequested(); }
};

class LInterruptOnlyFactory : public LProgressHostFactory
{
public:
    std::unique_ptr<LProgressHost> Create() override { return std::make_unique<LInterruptOnlyHost>(); }
};

class LPRConvertOne : public LProgressDialog
{
public:
    LPRConvertOne(const std::vector<CommandDataItem>& vScript, LBatchResult& r, const LAudioEncoding& encoding)
        : LProgressDialog("Batch Converter"), vScript(vScript), r(r), encoding(encoding)
    {
    }
    int32_t Process() override
    {
        return EdBatchConverter::ConvertFile(*this, vScript, r.szInput, r.szOutput, encoding, &r.szError);
    }

private:
    const std::vector<CommandDataItem>& vScript;
    LBatchResult& r;
    const LAudioEncoding& encoding;
};

// The files-done bar on stderr, when it is a terminal.
class LFilesBar
{
public:
    explicit LFilesBar(size_t nTotal) : nTotal(nTotal), bTerminal(::isatty(STDERR_FILENO) != 0) { Draw(); }
    ~LFilesBar()
    {
        if (bTerminal)
            std::fprintf(stderr, "\n");
    }
    void FileDone(bool bOk)
    {
        ++nDone;
        nFailed += bOk ? 0 : 1;
        Draw();
    }

private:
    void Draw()
    {
        if (!bTerminal)
            return;
        const size_t nCells = nTotal ? nDone * 30 / nTotal : 30;
        std::fprintf(stderr, "\r[%s%s] %zu/%zu files", std::string(nCells, '#').c_str(),
                     std::string(30 - nCells, ' ').c_str(), nDone, nTotal);
        if (nFailed)
            std::fprintf(stderr, ", %zu failed", nFailed);
        std::fflush(stderr);
    }
    size_t nTotal;
    size_t nDone = 0;
    size_t nFailed = 0;
    bool bTerminal;
};

// Converts the files here, one after the other. False when cancelled.
bool RunHere(const Request& req, const std::vector<CommandDataItem>& vScript, std::vector<LBatchResult>& vResults,
             LFilesBar* pBar)
{
    LInterruptOnlyFactory quiet;
    std::vector<std::string> vWhy;
    const std::vector<std::string> vOutputs = EdBatchConverter::OutputPathsFor(req.vFiles, req.output, vWhy);
    for (size_t i = 0; i < req.vFiles.size(); ++i) {
        LBatchResult& r = vResults[i];
        r.szInput = req.vFiles[i];
        r.szOutput = vOutputs[i];
        r.szError = vWhy[i];
        LPRConvertOne proc(vScript, r, req.output.encoding);
        const int32_t nResult = r.szOutput.empty() ? LProgressDialog::ResultError : proc.Run(&quiet);
        if (nResult == LProgressDialog::ResultCancelled || LTerminalProgressHostFactory::InterruptRequested())
            return false;
        r.bOk = nResult == LProgressDialog::ResultDone;
        if (req.bWorker) {
            std::printf(r.bOk ? "ok\t%zu\n" : "fail\t%zu\t%s\n", i, r.szError.c_str());
            std::fflush(stdout);
        }
        if (pBar)
            pBar->FileDone(r.bOk);
    }
    return true;
}

std::string SelfPath()
{
    std::error_code ec;
    const std::filesystem::path p = std::filesystem::read_symlink("/proc/self/exe", ec);
    return ec ? "sonitra-cli" : p.string();
}

struct Worker
{
    LChildProcess child;
    std::vector<size_t> vIndex; // its files, by their place in the whole list
    std::vector<bool> vReported;
};

// Deals the files with an output out to the workers, every nJobs-th file to the same one; a file
// without an output is reported failed here.
void DealFiles(const Request& req, std::vector<LBatchResult>& vResults, LFilesBar& bar, std::vector<Worker>& vWorkers)
{
    std::vector<std::string> vWhy;
    const std::vector<std::string> vOutputs = EdBatchConverter::OutputPathsFor(req.vFiles, req.output, vWhy);
    size_t nNext = 0;
    for (size_t i = 0; i < req.vFiles.size(); ++i) {
        vResults[i].szInput = req.vFiles[i];
        vResults[i].szOutput = vOutputs[i];
        if (vOutputs[i].empty()) {
            // Never handed to a worker, whose own check could not see the other files.
            vResults[i].szError = vWhy[i];
            bar.FileDone(false);
            continue;
        }
        vResults[i].szError = "not converted: the worker process ended early";
        vWorkers[nNext++ % vWorkers.size()].vIndex.push_back(i);
    }
}

// Runs this program as a worker on w's files; when it cannot start, its files say why.
void StartWorker(const Request& req, Worker& w, std::vector<LBatchResult>& vResults)
{
    std::vector<std::string> vArgv = {SelfPath(), "batch", req.szScript, "--to", req.output.szExtension, "--jobs", "1", "--worker"};
    if (!req.output.szFolder.empty()) {
        vArgv.push_back("--out");
        vArgv.push_back(req.output.szFolder);
    }
    for (size_t i : w.vIndex)
        vArgv.push_back(req.vFiles[i]);
    w.vReported.assign(w.vIndex.size(), false);
    std::string szError;
    if (!w.child.Start(vArgv, LChildProcess::PipeOut, &szError))
        for (size_t i : w.vIndex)
            vResults[i].szError = "no worker process: " + szError;
}

// Takes a worker's "ok\tN" and "fail\tN\tWHY" lines (N counts its own files) into the results;
// anything else, and a file reported twice, is passed over.
void TakeWorkerLines(Worker& w, std::vector<LBatchResult>& vResults, LFilesBar& bar)
{
    std::vector<std::string> vLines;
    w.child.ReadLines(vLines);
    for (const std::string& szLine : vLines) {
        const bool bOk = szLine.rfind("ok\t", 0) == 0;
        if (!bOk && szLine.rfind("fail\t", 0) != 0)
            continue;
        const size_t nFrom = bOk ? 3 : 5;
        const size_t nTab = szLine.find('\t', nFrom);
        const size_t nLocal = std::strtoul(szLine.c_str() + nFrom, nullptr, 10);
        if (nLocal >= w.vIndex.size() || w.vReported[nLocal])
            continue;
        w.vReported[nLocal] = true;
        LBatchResult& r = vResults[w.vIndex[nLocal]];
        r.bOk = bOk;
        r.szError = bOk || nTab == std::string::npos ? "" : szLine.substr(nTab + 1);
        bar.FileDone(bOk);
    }
}

// Reads the workers' reports until every one has closed its output.
void WatchWorkers(std::vector<Worker>& vWorkers, std::vector<LBatchResult>& vResults, LFilesBar& bar)
{
    for (;;) {
        std::vector<pollfd> vPoll;
        std::vector<Worker*> vOf;
        for (Worker& w : vWorkers)
            if (w.child.GetOutputFd() >= 0) {
                vPoll.push_back({w.child.GetOutputFd(), POLLIN, 0});
                vOf.push_back(&w);
            }
        if (vPoll.empty())
            break;
        if (::poll(vPoll.data(), vPoll.size(), 250) <= 0)
            continue;
        for (size_t k = 0; k < vPoll.size(); ++k)
            if (vPoll[k].revents)
                TakeWorkerLines(*vOf[k], vResults, bar);
    }
}

// Spreads the files over worker processes, every nJobs-th file to the same worker. False when cancelled.
bool RunInWorkers(const Request& req, std::vector<LBatchResult>& vResults, LFilesBar& bar)
{
    const size_t nWorkers = std::min<size_t>(static_cast<size_t>(req.nJobs), req.vFiles.size());
    std::vector<Worker> vWorkers(nWorkers);
    DealFiles(req, vResults, bar, vWorkers);
    for (Worker& w : vWorkers)
        if (!w.vIndex.empty())
            StartWorker(req, w, vResults);
    WatchWorkers(vWorkers, vResults, bar);
    for (Worker& w : vWorkers)
        w.child.Wait(-1);
    return !LTerminalProgressHostFactory::InterruptRequested();
}

void PrintSummary(const std::vector<LBatchResult>& vResults)
{
    size_t nFailed = 0;
    for (const LBatchResult& r : vResults)
        nFailed += r.bOk ? 0 : 1;
    std::printf("%zu of %zu files converted", vResults.size() - nFailed, vResults.size());
    if (!nFailed) {
        std::printf(".\n");
        return;
    }
    std::printf("; %zu failed:\n", nFailed);
    for (const LBatchResult& r : vResults)
        if (!r.bOk)
            std::printf("  %s: %s\n", r.szInput.c_str(), r.szError.c_str());
}

int RunBatch(const std::vector<std::string>& vArgs)
{
    Request req;
    if (!ParseArgs(vArgs, req))
        return CliUsage;
    std::vector<CommandDataItem> vScript;
    if (!LoadScript(req.szScript, vScript))
        return CliError;
    if (!req.output.szFolder.empty()) {
        std::error_code ec;
        std::filesystem::create_directories(req.output.szFolder, ec);
        if (!std::filesystem::is_directory(req.output.szFolder, ec)) {
            LCliError(req.output.szFolder + ": cannot make this folder");
            return CliError;
        }
    }
    std::vector<LBatchResult> vResults(req.vFiles.size());
    if (req.bWorker)
        return RunHere(req, vScript, vResults, nullptr) ? CliDone : CliCancelled;
    bool bFinished;
    {
        LFilesBar bar(req.vFiles.size());
        bFinished = req.nJobs > 1 && req.vFiles.size() > 1 ? RunInWorkers(req, vResults, bar)
                                                            : RunHere(req, vScript, vResults, &bar);
    }
    if (!bFinished) {
        LCliError("batch: cancelled");
        return CliCancelled;
    }
    PrintSummary(vResults);
    for (const LBatchResult& r : vResults)
        if (!r.bOk)
            return CliError;
    return CliDone;
}

} // namespace

static LCliVerb verbBatch("batch", "run a batch script over many audio files", kUsage, RunBatch);
