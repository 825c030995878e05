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

bool LEffectFileStream::CanStream(const std::vector<LEffectStep>& vSteps, const LSoundSourceBase& input,
                                  const LAudioFileDetails& details)
{
    // Plain samples sit at a computed place in the file, so a seek lands exactly; a coded stream
    // (ADPCM, GSM, a decoder program) carries state from frame to frame.
    bool bPlain = false;
    for (const char* sz : {"pcm8", "pcm16", "pcm24", "pcm32", "float", "float64", "ulaw", "alaw"})
        bPlain = bPlain || details.encoding.szName == sz;
    return LEffectStream::CanStream(vSteps, input, bPlain);
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
    // The effects run as the output is written: a single one is shown by its own caption.
    const std::string szTitle = vSteps.size() == 1 ? vSteps[0].pInfo->szCaption : "Saving...";
    return LAudioFile::Save(dlg, szTitle, pChain.Get(), szOut, pChain->GetSampleRate(), pChain->GetChannels(),
                            encoding, pszError);
}
