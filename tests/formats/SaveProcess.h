// Saves a source into a file the way the editor does: the format's save run as a process.
#pragma once

#include <string>
#include <utility>

#include "formats/LAudioFile.h"
#include "work/LProgressDialog.h"

struct SaveProcess : LProgressDialog
{
    SaveProcess(LSoundSourceBase* pSrc, std::string szPath, LAudioEncoding encoding = LAudioEncoding())
        : LProgressDialog("Saving"), pSource(pSrc), szPath(std::move(szPath)), encoding(std::move(encoding))
    {
    }
    SaveProcess(LSoundSourceBase* pSrc, std::string szPath, const std::string& szEncoding)
        : SaveProcess(pSrc, std::move(szPath), LAudioEncoding::Named(szEncoding))
    {
    }
    int32_t Process() override
    {
        return LAudioFile::Save(*this, "Saving", pSource.Get(), szPath, pSource->GetSampleRate(),
                                pSource->GetChannels(), encoding, &szError);
    }
    LSoundSourcePtr pSource;
    std::string szPath, szError;
    LAudioEncoding encoding;
};
