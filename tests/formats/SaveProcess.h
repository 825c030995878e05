// Saves a source into a file the way the editor does: the format's save run as a process, at the
// source's rate and with its channels unless nChans asks for others.
#pragma once

#include <string>
#include <utility>

#include "formats/LAudioFile.h"
#include "work/LProgressDialog.h"

struct SaveProcess : LProgressDialog
{
    SaveProcess(LSoundSourceBase* pSrc, std::string szPath, LAudioEncoding encoding = LAudioEncoding(), uint8_t nChans = 0)
        : LProgressDialog("Saving"), pSource(pSrc), szPath(std::move(szPath)), encoding(std::move(encoding)),
          nChans(nChans ? nChans : pSrc->GetChannels())
    {
    }
    SaveProcess(LSoundSourceBase* pSrc, std::string szPath, const std::string& szEncoding, uint8_t nChans = 0)
        : SaveProcess(pSrc, std::move(szPath), LAudioEncoding::Named(szEncoding), nChans)
    {
    }
    int32_t Process() override
    {
        return LAudioFile::Save(*this, "Saving", pSource.Get(), szPath, pSource->GetSampleRate(), nChans, encoding,
                                &szError);
    }
    LSoundSourcePtr pSource;
    std::string szPath, szError;
    LAudioEncoding encoding;
    uint8_t nChans;
};
