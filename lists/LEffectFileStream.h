// Applies a list of effects to a file and saves the result in one pass: the file's source,
// wrapped by the effects' stages, pumped straight into the output, with no segment files. The
// output is written beside its target and replaces it only when complete.
#pragma once

#include <string>
#include <vector>

#include "dsp/effects/LEffectStream.h"
#include "formats/LAudioFile.h"
#include "work/LProgressDialog.h"

class LEffectFileStream : public LProgressDialog
{
public:
    LEffectFileStream(const std::string& szCaption, std::string szIn, std::vector<LEffectStep> vSteps, std::string szOut,
                      LAudioEncoding encoding);
    int32_t Process() override;
    // Why it failed, for the user; empty when it did not or was cancelled.
    const std::string& GetError() const { return szError; }

    // Whether the steps can run as one pass over this file, opened as input with these details.
    static bool CanStream(const std::vector<LEffectStep>& vSteps, const LSoundSourceBase& input,
                          const LAudioFileDetails& details);
    // The body inside a running process. 0 done, 1 cancelled, 2 error with the reason.
    static int32_t Apply(LProgressDialog& dlg, const std::string& szIn, const std::vector<LEffectStep>& vSteps,
                       const std::string& szOut, const LAudioEncoding& encoding, std::string* pszError);

private:
    std::string szIn;
    std::vector<LEffectStep> vSteps;
    std::string szOut;
    LAudioEncoding encoding;
    std::string szError;
};
