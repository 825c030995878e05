#include "dsp/effects/LEffectRunner.h"

#include "dsp/effects/LEfSoundProcess.h"

bool LEffectRunner::IsAvailable(const LEffectInfo& info)
{
    return info.pfnApply || info.pfnFactory;
}

LEffectFactoryPtr LEffectRunner::StreamingFactory(const LEffectInfo& info, const LEffectArgs& args)
{
    // An effect that also works on the document (trimming after its stage, say) is not only a stage.
    if (!info.pfnFactory || info.pfnApply)
        return LEffectFactoryPtr();
    return info.pfnFactory(args);
}

LEffectData LEffectRunner::DataOf(LCutListAudio& doc, int32_t sStart, int32_t sEnd, int32_t nParam1)
{
    LEffectData data;
    data.pCutList = &doc;
    data.sStart = sStart;
    data.sEnd = sEnd;
    data.nParam1 = nParam1;
    return data;
}

int32_t LEffectRunner::Stream(LProgressDialog& dlg, const LEffectInfo& info, LCutListAudio& doc, int32_t sStart,
                              int32_t sEnd, LEffectFactory& factory)
{
    return LEfSoundProcess::Run(dlg, info.szCaption, DataOf(doc, sStart, sEnd), factory, info.szBody);
}

int32_t LEffectRunner::Apply(LProgressDialog& dlg, const LEffectInfo& info, LCutListAudio* pDoc, int32_t sStart,
                             int32_t sEnd, const LEffectArgs& args)
{
    if (!pDoc || !IsAvailable(info))
        return LProgressDialog::ResultError;
    if (info.pfnApply)
        return info.pfnApply(dlg, info, *pDoc, sStart, sEnd, args);
    LEffectFactoryPtr pFactory = info.pfnFactory(args);
    return Stream(dlg, info, *pDoc, sStart, sEnd, *pFactory);
}

LEffectProcess::LEffectProcess(const LEffectInfo& i, LCutListAudio* pD, int32_t s, int32_t e, const LEffectArgs& a)
    : LProgressDialog(i.szCaption), info(i), pDoc(pD), sStart(s), sEnd(e), args(a)
{
}

int32_t LEffectProcess::Process()
{
    return LEffectRunner::Apply(*this, info, pDoc.Get(), sStart, sEnd, args);
}
