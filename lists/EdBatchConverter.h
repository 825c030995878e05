// The batch converter process: loads each file, applies the script's commands in order with their
// stored settings (to the whole file) and saves it in the chosen format. A file that fails is noted
// with its reason and the batch goes on with the next; an output never replaces any input.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "formats/LAudioFile.h"
#include "lists/LBatchScript.h"
#include "work/LProgressDialog.h"

// Where and how the outputs are written.
struct LBatchOutput
{
    std::string szFolder;    // empty: beside each input
    std::string szExtension; // ".wav", names the output format
    LAudioEncoding encoding; // empty: the format's default
};

struct LBatchResult
{
    std::string szInput;
    std::string szOutput;
    bool bOk = false;
    std::string szError; // why it failed
};

class EdBatchConverter : public LProgressDialog
{
public:
    EdBatchConverter(std::vector<CommandDataItem> vScript, std::vector<std::string> vFiles, LBatchOutput output);

    // 0 when every file was converted, 1 when cancelled, 2 when any file failed.
    int32_t Process() override;
    const std::vector<LBatchResult>& GetResults() const { return vResults; }
    size_t FailedCount() const;

    // The output of one input: its name with the new extension, in the folder (or beside it).
    static std::string OutputPathFor(const std::string& szInput, const LBatchOutput& output);
    // The outputs of all inputs. An input whose output would be any input of the batch (its own or
    // another's), or a file an earlier input already writes, gets an empty path and the reason in
    // vWhy: a batch never replaces a file it reads, and two inputs never write one file.
    static std::vector<std::string> OutputPathsFor(const std::vector<std::string>& vInputs, const LBatchOutput& output,
                                                   std::vector<std::string>& vWhy);
    // Converts one file inside a running process. 0 done, 1 cancelled, 2 error with the reason.
    static int32_t ConvertFile(LProgressDialog& dlg, const std::vector<CommandDataItem>& vScript,
                               const std::string& szInput, const std::string& szOutput,
                               const LAudioEncoding& encoding, std::string* pszError);
    // Every command of the script can run with its record; otherwise the first problem.
    static bool CheckScript(const std::vector<CommandDataItem>& vScript, std::string* pszError);

private:
    std::vector<CommandDataItem> vScript;
    std::vector<std::string> vFiles;
    LBatchOutput output;
    std::vector<LBatchResult> vResults;
};
