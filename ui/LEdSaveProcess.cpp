#include "ui/LEdSaveProcess.h"

#include "formats/LAudioFile.h"

LEdSaveProcess::LEdSaveProcess(const std::string& szTitle, const LCutListAudio& doc, const std::string& szPath,
                               const LAudioEncoding& encoding)
    : LProgressDialog(szTitle), pSource(doc.OpenSource()), szPath(szPath), nRate(doc.GetSampleRate()),
      nChans(doc.GetChannels()), encoding(encoding)
{
}

int32_t LEdSaveProcess::Process()
{
    return LAudioFile::Save(*this, GetTitle(), pSource.Get(), szPath, nRate, nChans, encoding, &szError);
}
