#include "dsp/effects/LEfAutoGainControl.h"

#include "core/LAudioCutTank.h"
#include "core/LTrace.h"
#include "dsp/effects/LEffectRunner.h"
#include "dsp/LDPAutoGain.h"
#include "dsp/effects/LEfSoundProcess.h"

int32_t LEfAutoGainControl::Run(LProgressDialog& dlg, const std::string& szCaption, const LEffectData& data)
{
    if (data.sEnd < data.sStart) {
        LTRACE("Process(EfAutoGainControl) Data.sEnd < Data.sStart");
        return LProgressDialog::ResultDone;
    }
    if (!data.pCutList)
        return LProgressDialog::ResultError;
    dlg.SetText(szCaption, 0);
    dlg.SetText("Please wait...", 1);
    dlg.SetProgress(0);
    LSoundSourcePtr pInput = data.pCutList->OpenSource(data.sStart, data.sEnd);
    LDPAutoGain agc(pInput.Get(), LAudioCutTank::Instance().GetWorkingFolder());
    const int32_t nAnalysed = agc.Analyse(&dlg);
    if (nAnalysed != LProgressDialog::ResultDone)
        return nAnalysed;
    int32_t nResult = LProgressDialog::ResultError;
    LCutListAudioPtr pNew = LEfSoundProcess::Render(dlg, szCaption, agc.CreateSource().Get(), &nResult);
    if (pNew)
        data.pCutList->Replace(data.sStart, data.sEnd, *pNew);
    return nResult;
}

namespace {
int32_t AutoGainControl(LProgressDialog& dlg, const LEffectInfo& info, LCutListAudio& doc, int32_t sStart,
                        int32_t sEnd, const LEffectArgs&)
{
    return LEfAutoGainControl::Run(dlg, info.szCaption, LEffectRunner::DataOf(doc, sStart, sEnd));
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfAutoGainControl) = {
    .nCommandId = 4009, .szCliName = "automatic-gain-control", .szMenuText = "Automatic Gain Control",
    .szMenu = "Effects", .nMenuGroup = 2, .szHint = "Evens out loud and soft passages.",
    .szUndoLabel = "Automatic Gain Control", .szCaption = "Automatic Gain Control", .range = LEffectInfo::WholeFile,
    .pfnApply = AutoGainControl, .stream = LEffectInfo::StreamAutoGain,
};
