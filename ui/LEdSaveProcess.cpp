#include "ui/LEdSaveProcess.h"

#include "formats/LAudioFile.h"

LEdSaveProcess::LEdSaveProcess(const std::string& szTitle, const LCutListAudio& doc, const std::string& szPath, int nBits)
    : LProgressDialog(szTitle), pSource(doc.OpenSource()), szPath(szPath), nRate(doc.GetSampleRate()),
      nChans(doc.GetChannels()), nBits(nBits)
{
}

int32_t LEdSaveProcess::Process()
{
    return LAudioFile::Save(*this, GetTitle(), pSource.Get(), szPath, nRate, nChans, nBits, &szError);
}
