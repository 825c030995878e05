// Saving a document to a file, as a process behind the progress dialog.
#pragma once

#include <string>

#include "core/LCutListAudio.h"
#include "formats/LAudioFile.h"
#include "work/LProgressDialog.h"

class LEdSaveProcess : public LProgressDialog
{
public:
    LEdSaveProcess(const std::string& szTitle, const LCutListAudio& doc, const std::string& szPath,
                   const LAudioEncoding& encoding);
    int32_t Process() override;
    // Why the save failed, for the user.
    const std::string& GetError() const { return szError; }

private:
    LSoundSourcePtr pSource;
    std::string szPath;
    int32_t nRate;
    uint8_t nChans;
    LAudioEncoding encoding;
    std::string szError;
};
