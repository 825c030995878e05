#include "lists/LEffectFileStream.h"

#include <utility>

LEffectFileStream::LEffectFileStream(const std::string& szCaption, std::string szI, std::vector<LEffectStep> vS,
                                     std::string szO, LAudioEncoding enc)
    : LProgressDialog(szCaption), szIn(std::move(szI)), vSteps(std::move(vS)), szOut(std::move(szO)),
      encoding(std::move(enc))
{
}

int32_t LEffectFileStream::Process()
{
    return Apply(*this, szIn, vSteps, szOut, encoding, &szError);
}

int32_t LEffectFileStream::Apply(LProgressDialog& dlg, const std::string& szIn, const std::vector<LEffectStep>& vSteps,
                               const std::string& szOut, const LAudioEncoding& encoding, std::string* pszError)
{
    std::string szOpenError;
    const LEffectStream::Opener fnOpen = [&]() { return LAudioFile::OpenSource(szIn, &szOpenError); };
    LSoundSourcePtr pChain;
    const int32_t nResult = LEffectStream::Open(dlg, fnOpen, vSteps, pChain);
    if (nResult == ResultCancelled)
        return nResult;
    if (nResult != ResultDone) {
        if (pszError)
            *pszError = szOpenError.empty() ? "the effects could not be applied" : szIn + ": " + szOpenError;
        return ResultError;
    }
    return LAudioFile::Save(dlg, "Saving...", pChain.Get(), szOut, pChain->GetSampleRate(), pChain->GetChannels(),
                            encoding, pszError);
}
