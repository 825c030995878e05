#include "lists/EdBatchConverter.h"

#include <filesystem>
#include <system_error>

#include "core/LCutListAudio.h"
#include "core/LCutListAudioLoadSource.h"
#include "core/LFile.h"
#include "core/LTrace.h"
#include "dsp/effects/LEffectRunner.h"

namespace {
// A path as the file system resolves it, found once per path: comparing these finds two names of
// one file without asking the file system for every pair.
struct LResolvedPath
{
    std::string szResolved;
    bool bExists = false;

    explicit LResolvedPath(const std::string& sz)
    {
        std::error_code ec;
        szResolved = std::filesystem::weakly_canonical(sz, ec).string();
        if (ec)
            szResolved = sz;
        bExists = std::filesystem::exists(sz, ec);
    }
};

bool SameFile(const std::string& szA, const LResolvedPath& a, const std::string& szB, const LResolvedPath& b)
{
    if (szA == szB || a.szResolved == b.szResolved)
        return true;
    // Hard links are one file under two resolved names: only files that exist can be that.
    std::error_code ec;
    return a.bExists && b.bExists && std::filesystem::equivalent(szA, szB, ec);
}

bool SameFile(const std::string& szA, const std::string& szB)
{
    return SameFile(szA, LResolvedPath(szA), szB, LResolvedPath(szB));
}
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
    std::vector<std::string> vPaths;
    std::vector<LResolvedPath> vResolved;
    vWhy.assign(vInputs.size(), "");
    for (size_t i = 0; i < vInputs.size(); ++i) {
        std::string szOut = OutputPathFor(vInputs[i], output);
        const LResolvedPath resolved(szOut);
        for (size_t k = 0; k < i && !szOut.empty(); ++k) {
            if (!vPaths[k].empty() && SameFile(vPaths[k], vResolved[k], szOut, resolved)) {
                vWhy[i] = "another file of this batch is written to " + szOut;
                szOut.clear();
            }
        }
        vResolved.push_back(resolved);
        if (szOut.empty() && vWhy[i].empty())
            vWhy[i] = "the output path is too long";
        vPaths.push_back(szOut);
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
        return Fail("the output would replace the input; choose another folder or format");
    std::string szError;
    LSoundSourcePtr pSource = LAudioFile::OpenSource(szInput, &szError);
    if (pSource->IsError())
        return Fail(szError.empty() ? "cannot be read" : szError);
    LCutListAudioPtr pDoc(new LCutListAudio(pSource->GetSampleRate(), pSource->GetChannels()));
    LCutListAudioLoadSource load("Loading file " + szInput, pDoc.Get(), pSource.Get());
    int32_t nResult = load.RunInside(dlg);
    if (nResult == LProgressDialog::ResultCancelled)
        return nResult;
    if (nResult != LProgressDialog::ResultDone)
        return Fail("cannot be loaded");
    for (const CommandDataItem& item : vScript) {
        LEffectArgs args;
        if (!GetCommandDataItemData(item, args, &szError))
            return Fail(szError);
        const LEffectInfo& info = *BatchCommandInfo(item.uCommandId);
        if (!args.Validate(info, &szError))
            return Fail(szError);
        // A batch command works on the whole file.
        nResult = LEffectRunner::Apply(dlg, info, pDoc.Get(), 0, pDoc->GetLength(), args);
        if (nResult == LProgressDialog::ResultCancelled)
            return nResult;
        if (nResult != LProgressDialog::ResultDone)
            return Fail(LEffectCatalog::CliName(info) + " failed");
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
