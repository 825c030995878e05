// Runs any effect of the catalog on a document: the one entry the editor, the batch converter
// and the command-line tool share, so that all three produce the same audio.
#pragma once

#include <string>

#include "core/LCutListAudio.h"
#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LEffectCatalog.h"
#include "dsp/effects/LEffectData.h"
#include "dsp/effects/LEffectFactory.h"
#include "work/LProgressDialog.h"

class LEffectRunner
{
public:
    // False for effects this build cannot run.
    static bool IsAvailable(const LEffectInfo& info);

    // The stage of an effect that streams (one source over the range's source, as Apply runs
    // it); null for effects that edit the cut list, look at the whole range first or trim.
    static LEffectFactoryPtr StreamingFactory(const LEffectInfo& info, const LEffectArgs& args);

    // The body: applies the effect to [sStart, sEnd) of the document (the whole document for
    // whole-file effects). The values are expected checked (LEffectArgs::Validate).
    // 0 done, 1 cancelled, 2 error; a cancelled or failed effect leaves the document as it was.
    static int32_t Apply(LProgressDialog& dlg, const LEffectInfo& info, LCutListAudio* pDoc, int32_t sStart,
                         int32_t sEnd, const LEffectArgs& args);

    // The common runner over a factory: [sStart, sEnd) through the factory's source replaces the range.
    static int32_t Stream(LProgressDialog& dlg, const LEffectInfo& info, LCutListAudio& doc, int32_t sStart,
                          int32_t sEnd, LEffectFactory& factory);
    // The parameter record of a document's range.
    static LEffectData DataOf(LCutListAudio& doc, int32_t sStart, int32_t sEnd, int32_t nParam1 = 0);
};

// The effect as a process of its own, behind its own progress dialog.
class LEffectProcess : public LProgressDialog
{
public:
    LEffectProcess(const LEffectInfo& info, LCutListAudio* pDoc, int32_t sStart, int32_t sEnd, const LEffectArgs& args);
    int32_t Process() override;

private:
    const LEffectInfo& info;
    LCutListAudioPtr pDoc;
    int32_t sStart;
    int32_t sEnd;
    LEffectArgs args;
};
