#include "lists/EdBatchConverter.h"

#include <filesystem>
#include <map>
#include <sys/stat.h>
#include <system_error>
#include <unordered_map>
#include <utility>

#include "core/LCutListAudio.h"
#include "work/LCutListAudioLoadSource.h"
#include "core/LFile.h"
#include "core/LTrace.h"
#include "dsp/effects/LEffectRunner.h"
#include "lists/LEffectFileStream.h"

namespace {
// A path as the file system resolves it, and the file it names when that exists, found once per
// path: two names of one file (a link to its folder, "./", a hard link) compare equal without
// asking the file system for every pair.
struct LFileKey
{
    std::string szResolved;
    bool bExists = false;
    dev_t nDevice = 0;
    ino_t nInode = 0;

    explicit LFileKey(const std::string& sz)
    {
        std::error_code ec;
        szResolved = std::filesystem::weakly_canonical(sz, ec).string();
        if (ec)
            szResolved = sz;
        struct stat st;
        bExists = ::stat(sz.c_str(), &st) == 0;
        if (bExists) {
            nDevice = st.st_dev;
            nInode = st.st_ino;
        }
    }
};

// Paths by the file they name; the first path added for a file keeps it.
class LFileIndex
{
public:
    static constexpr size_t kNone = static_cast<size_t>(-1);

    void Add(const LFileKey& key, size_t nIndex)
    {
        mapByName.emplace(key.szResolved, nIndex);
        if (key.bExists)
            mapById.emplace(std::make_pair(key.nDevice, key.nInode), nIndex);
    }
    size_t Find(const LFileKey& key) const
    {
        if (auto it = mapByName.find(key.szResolved); it != mapByName.end())
            return it->second;
        if (key.bExists)
            if (auto it = mapById.find(std::make_pair(key.nDevice, key.nInode)); it != mapById.end())
                return it->second;
        return kNone;
    }

private:
    std::unordered_map<std::string, size_t> mapByName;
    std::map<std::pair<dev_t, ino_t>, size_t> mapById;
};

bool SameFile(const std::string& szA, const std::string& szB)
{
    if (szA == szB)
        return true;
    LFileIndex index;
    index.Add(LFileKey(szA), 0);
    return index.Find(LFileKey(szB)) != LFileIndex::kNone;
}

// The effects of the script's commands with their settings; false with the first problem.
bool StepsOf(const std::vector<CommandDataItem>& vScript, std::vector<LEffectStep>& vSteps, std::string* pszError)
{
    for (const CommandDataItem& item : vScript) {
        LEffectStep step;
        if (!GetCommandDataItemData(item, step.args, pszError))
            return false;
        step.pInfo = BatchCommandInfo(item.uCommandId);
        if (!step.args.Validate(*step.pInfo, pszError))
            return false;
        vSteps.push_back(std::move(step));
    }
    return true;
}

const char kReplacesOwnInput[] = "the output would replace the input; choose another folder or format";
} // namespace

EdBatchConverter::EdBatchConverter(std::vector<CommandDataItem> vS, std::vector<std::string> vF, LBatchOutput o)
    : LProgressDialog("Batch Converter"), vScript(std::move(vS)), vFiles(std::move(vF)), output(std::move(o))
{
}

size_t EdBatchConverter::FailedCount() const
{
    size_t n = 0;
    for (const LBatchResult& r : vResults)
        n += r.bOk ? 0 : 1;
    return n;
}

std::string EdBatchConverter::OutputPathFor(const std::string& szInput, const LBatchOutput& output)
{
    std::string szName = LFile::FileNameOf(szInput);
    if (!LFile::ApplyNewFileExtension(szName, output.szExtension))
        return "";
    std::string szOut;
    const std::string szFolder = output.szFolder.empty() ? LFile::FolderOf(szInput) : output.szFolder;
    if (szFolder.empty())
        return szName;
    return LFile::FilePathCat(szOut, szFolder, szName) ? szOut : "";
}

std::vector<std::string> EdBatchConverter::OutputPathsFor(const std::vector<std::string>& vInputs,
                                                          const LBatchOutput& output, std::vector<std::string>& vWhy)
{
    LFileIndex inputs;
    for (size_t i = 0; i < vInputs.size(); ++i)
        inputs.Add(LFileKey(vInputs[i]), i);
    LFileIndex outputs;
    std::vector<std::string> vPaths(vInputs.size());
    vWhy.assign(vInputs.size(), "");
    for (size_t i = 0; i < vInputs.size(); ++i) {
        const std::string szOut = OutputPathFor(vInputs[i], output);
        if (szOut.empty()) {
            vWhy[i] = "the output path is too long";
            continue;
        }
        const LFileKey key(szOut);
        // A batch never writes over any of its own inputs, whichever file's output it is.
        const size_t nInput = inputs.Find(key);
        if (nInput == i)
            vWhy[i] = kReplacesOwnInput;
        else if (nInput != LFileIndex::kNone)
            vWhy[i] = "the output " + szOut + " would replace " + vInputs[nInput] + ", another file of this batch";
        else if (outputs.Find(key) != LFileIndex::kNone)
            vWhy[i] = "another file of this batch is written to " + szOut;
        if (!vWhy[i].empty())
            continue;
        outputs.Add(key, i);
        vPaths[i] = szOut;
    }
    return vPaths;
}

bool EdBatchConverter::CheckScript(const std::vector<CommandDataItem>& vScript, std::string* pszError)
{
    for (const CommandDataItem& item : vScript) {
        LEffectArgs args;
        if (!GetCommandDataItemData(item, args, pszError))
            return false;
        const LEffectInfo* pInfo = BatchCommandInfo(item.uCommandId);
        if (!args.Validate(*pInfo, pszError))
            return false;
    }
    return true;
}

int32_t EdBatchConverter::ConvertFile(LProgressDialog& dlg, const std::vector<CommandDataItem>& vScript,
                                      const std::string& szInput, const std::string& szOutput,
                                      const LAudioEncoding& encoding, std::string* pszError)
{
    auto Fail = [pszError](const std::string& sz) {
        if (pszError)
            *pszError = sz;
        return LProgressDialog::ResultError;
    };
    if (szOutput.empty())
        return Fail("the output path is too long");
    if (SameFile(szInput, szOutput))
        return Fail(kReplacesOwnInput);
    std::string szError;
    std::vector<LEffectStep> vSteps;
    if (!StepsOf(vScript, vSteps, &szError))
        return Fail(szError);
    LAudioFileDetails details;
    LSoundSourcePtr pSource = LAudioFile::OpenSource(szInput, &szError, &details);
    if (pSource->IsError())
        return Fail(szError.empty() ? "cannot be read" : szError);
    if (LEffectFileStream::CanStream(vSteps, *pSource, details)) {
        // From file to file in one pass: no document to load.
        pSource.Reset();
        const int32_t nResult = LEffectFileStream::Apply(dlg, szInput, vSteps, szOutput, encoding, &szError);
        if (nResult == LProgressDialog::ResultError)
            return Fail(szError.empty() ? "cannot be written" : szError);
        return nResult;
    }
    LCutListAudioPtr pDoc(new LCutListAudio(pSource->GetSampleRate(), pSource->GetChannels()));
    LCutListAudioLoadSource load("Loading file " + szInput, pDoc.Get(), pSource.Get());
    int32_t nResult = load.RunInside(dlg);
    if (nResult == LProgressDialog::ResultCancelled)
        return nResult;
    if (nResult != LProgressDialog::ResultDone)
        return Fail("cannot be loaded");
    for (const LEffectStep& step : vSteps) {
        // A batch command works on the whole file.
        nResult = LEffectRunner::Apply(dlg, *step.pInfo, pDoc.Get(), 0, pDoc->GetLength(), step.args);
        if (nResult == LProgressDialog::ResultCancelled)
            return nResult;
        if (nResult != LProgressDialog::ResultDone)
            return Fail(LEffectCatalog::CliName(*step.pInfo) + " failed");
    }
    LSoundSourcePtr pOut = pDoc->OpenSource();
    nResult = LAudioFile::Save(dlg, "Saving...", pOut.Get(), szOutput, pDoc->GetSampleRate(), pDoc->GetChannels(),
                               encoding, &szError);
    if (nResult == LProgressDialog::ResultError)
        return Fail(szError.empty() ? "cannot be written" : szError);
    return nResult;
}

int32_t EdBatchConverter::Process()
{
    vResults.clear();
    std::vector<std::string> vWhy;
    const std::vector<std::string> vOutputs = OutputPathsFor(vFiles, output, vWhy);
    for (size_t i = 0; i < vFiles.size(); ++i) {
        SetText("Converting " + LFile::FileNameOf(vFiles[i]) + " (" + std::to_string(i + 1) + " of " +
                    std::to_string(vFiles.size()) + ")",
                0);
        SetProgress(static_cast<double>(i) / static_cast<double>(vFiles.size()));
        LBatchResult r;
        r.szInput = vFiles[i];
        r.szOutput = vOutputs[i];
        r.szError = vWhy[i];
        const int32_t nResult = r.szOutput.empty()
                                    ? ResultError
                                    : ConvertFile(*this, vScript, r.szInput, r.szOutput, output.encoding, &r.szError);
        if (nResult == ResultCancelled || IsCancelled())
            return ResultCancelled;
        r.bOk = nResult == ResultDone;
        if (!r.bOk)
            LTRACE("EdBatchConverter::Process %s failed: %s", r.szInput.c_str(), r.szError.c_str());
        vResults.push_back(std::move(r));
    }
    SetProgress(1.0);
    return FailedCount() ? ResultError : ResultDone;
}
