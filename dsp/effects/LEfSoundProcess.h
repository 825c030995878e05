// The common runner of the streaming effects: the selected range is read through the effect's
// source into a new tank segment, which then replaces the range. The document changes only when
// the whole range went through, so a cancelled or failed effect leaves it exactly as it was.
#pragma once

#include <string>

#include "dsp/effects/LEffectData.h"
#include "dsp/effects/LEffectFactory.h"
#include "work/LProgressDialog.h"

class LEfSoundProcess : public LProgressDialog
{
public:
    // szCaption titles the dialog; szStage (the caption when empty) is the first line while pumping.
    LEfSoundProcess(const std::string& szCaption, const LEffectData& data, LEffectFactory* pFactory,
                    const std::string& szStage = "");
    int32_t Process() override;

    // The body on a given dialog. 0 done (or a refused range), 1 cancelled, 2 error.
    // szBody names the process in the trace ("EfEcho").
    static int32_t Run(LProgressDialog& dlg, const std::string& szStage, const LEffectData& data, LEffectFactory& factory,
                       const char* szBody = "EfSoundProcess");

    // Pumps a source into a new segment and returns it as a scratch document, or null with the
    // result in *pnResult when the pump did not finish or the segment could not be written.
    static LCutListAudioPtr Render(LProgressDialog& dlg, const std::string& szStage, LSoundSourceBase* pSource,
                                   int32_t* pnResult);
    // The same into a segment of another format: the pump converts channels and rate on the way.
    static LCutListAudioPtr RenderAs(LProgressDialog& dlg, const std::string& szStage, LSoundSourceBase* pSource,
                                     int32_t nRate, uint8_t nChans, int32_t* pnResult);

private:
    std::string szStage;
    LEffectData data;
    LEffectFactoryPtr pFactory;
};
