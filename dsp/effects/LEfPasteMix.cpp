#include "dsp/effects/LEfPasteMix.h"

#include <algorithm>

#include "core/LPRSourceToSink.h"
#include "core/LTrace.h"
#include "dsp/effects/LEffectRunner.h"
#include "dsp/effects/LEfSoundProcess.h"
#include "dsp/effects/LSRCEffectBase.h"
#include "dsp/effects/LSRCFade.h"
#include "dsp/effects/LSRCMix.h"

int32_t LEfPasteMix::Run(LProgressDialog& dlg, const LEffectData& data, LSoundSourceBase* pClipIn, const Options& opt)
{
    LSoundSourcePtr pHold(pClipIn);
    if (data.sEnd < data.sStart) {
        LTRACE("Process(PasteMix) Data.sEnd < Data.sStart");
        return LProgressDialog::ResultDone;
    }
    if (!data.pCutList || !pClipIn || pClipIn->IsError())
        return LProgressDialog::ResultError;
    LCutListAudio& doc = *data.pCutList;
    LSoundSourcePtr pClip = LPRSourceToSink::Adapt(pClipIn, doc.GetSampleRate(), doc.GetChannels());
    const int64_t nClip = std::max(pClip->GetLength(), 0);
    const int64_t nSel = static_cast<int64_t>(data.sEnd) - data.sStart;
    // The work is done on a copy, so the document changes only once the mix went through.
    LCutListAudioPtr pWork(new LCutListAudio(doc));
    int64_t sMixEnd = data.sStart + nClip;
    if (nSel > 0 && nClip > nSel) {
        if (opt.nLonger == InsertSilence) {
            pWork->InsertSilence(data.sEnd, static_cast<int32_t>(nClip - nSel));
        } else if (opt.nLonger == FadeMixOut) {
            sMixEnd = data.sEnd;
            const int32_t nFade = std::min<int32_t>(LMsToFrames(opt.nFadeOutMs, doc.GetSampleRate()), static_cast<int32_t>(nSel));
            pClip = new LSRCFade(pClip.Get(), LSRCFade::FadeOut, static_cast<int32_t>(nSel) - nFade, nFade);
        }
    }
    if (sMixEnd > INT32_MAX)
        return LProgressDialog::ResultError;
    const int32_t sEnd = static_cast<int32_t>(sMixEnd);
    LSoundSourcePtr pMix(new LSRCMix(pWork->OpenSource(data.sStart, sEnd).Get(), pClip.Get(), opt.nVolumePercent));
    int32_t nResult = LProgressDialog::ResultError;
    LCutListAudioPtr pNew = LEfSoundProcess::Render(dlg, "Pasting Mix", pMix.Get(), &nResult);
    if (!pNew)
        return nResult;
    pWork->Replace(data.sStart, sEnd, *pNew);
    doc = *pWork;
    return LProgressDialog::ResultDone;
}

namespace {
constexpr const char* kLongerChoices[] = {"Insert silence", "Extend the selection", "Fade the mix out"};
constexpr LEffectParam kParams[] = {
    {"PasteMixVolume", 100, 0, 100, "Mix Volume must be less than 100%. Please try again.", "Mix Volume (%):", "%"},
    {"LongerSelection", 0, 0, 2, "Choose 0 (insert silence), 1 (extend selection) or 2 (fade mix out).",
     "When the clip is longer than the selection:", "", LEffectParam::Choice, kLongerChoices},
    {"FadeOutTime", 250, 0, 60000, "Fade out time must be between 0 and 60000 ms. Please try again.",
     "Fade Out Time (ms):", "ms"},
};

int32_t Mix(LProgressDialog& dlg, const LEffectInfo&, LCutListAudio& doc, int32_t sStart, int32_t sEnd,
            const LEffectArgs& args)
{
    if (!args.pClip) {
        LTRACE("LEffectRunner::Apply no clip to mix");
        return LProgressDialog::ResultError;
    }
    LEfPasteMix::Options opt;
    opt.nVolumePercent = args.Value("PasteMixVolume");
    opt.nLonger = args.Value("LongerSelection");
    opt.nFadeOutMs = args.Value("FadeOutTime");
    return LEfPasteMix::Run(dlg, LEffectRunner::DataOf(doc, sStart, sEnd), args.pClip.Get(), opt);
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfPasteMix) = {
    .nCommandId = 2005, .szCliName = "paste-mix", .szMenuText = "Paste Mix...", .szMenu = "Edit", .nMenuGroup = 0,
    .szHint = "Mixes the clipboard contents into the file.", .szUndoLabel = "Paste Mix", .szCaption = "Pasting Mix",
    .vParams = kParams, .range = LEffectInfo::Cursor, .bAsksSettings = true, .bTakesClip = true,
    .bWorksOnEmpty = true, .pfnApply = Mix,
};

SONITRA_DEFINE_EFFECT(kEfMixFile) = {
    .nCommandId = 2008, .szCliName = "mix-file", .szMenuText = "Mix File...", .szMenu = "Edit", .nMenuGroup = 0,
    .szHint = "Mixes another file into the current file.", .szUndoLabel = "Mix File", .szCaption = "Pasting Mix",
    .vParams = kParams, .range = LEffectInfo::Cursor, .bAsksSettings = true, .bTakesClip = true,
    .bWorksOnEmpty = true, .pfnApply = Mix,
};
