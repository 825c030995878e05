#include "dsp/effects/LEffectOutput.h"

#include "core/LTrace.h"
#include "dsp/effects/LEffectRunner.h"

namespace {
// Shows nothing and never cancels: a scratch rendering is over before anyone could look.
class LQuietFactory : public LProgressHostFactory
{
public:
    std::unique_ptr<LProgressHost> Create() override { return std::make_unique<LQuietProgressHost>(); }
};

class LScratchProcess : public LProgressDialog
{
public:
    LScratchProcess(const LEffectInfo& info, LCutListAudio* pDoc, const LEffectArgs& args)
        : LProgressDialog(info.szCaption), info(info), pDoc(pDoc), args(args)
    {
    }
    int32_t Process() override { return LEffectRunner::Apply(*this, info, pDoc, 0, pDoc->GetLength(), args); }

private:
    const LEffectInfo& info;
    LCutListAudio* pDoc;
    const LEffectArgs& args;
};
} // namespace

LSoundSourcePtr LEffectOutput::Open(const LEffectInfo& info, const LEffectArgs& args, const LCutListAudio& audio)
{
    LEffectFactoryPtr pFactory = LEffectRunner::StreamingFactory(info, args);
    if (!pFactory)
        return Render(info, args, audio);
    LSoundSourcePtr pInput = audio.OpenSource();
    return pFactory->Create(pInput.Get());
}

LSoundSourcePtr LEffectOutput::Render(const LEffectInfo& info, const LEffectArgs& args, const LCutListAudio& audio)
{
    LCutListAudioPtr pScratch(new LCutListAudio(audio));
    LScratchProcess process(info, pScratch.Get(), args);
    LQuietFactory factory;
    // The clip to mix is the one the effect itself will read later: it is left where it was.
    const int32_t sClip = args.pClip ? args.pClip->GetPosition() : 0;
    const int32_t nResult = process.Run(&factory);
    if (args.pClip)
        args.pClip->SetPosition(sClip);
    if (nResult != LProgressDialog::ResultDone) {
        LTRACE("LEffectOutput::Render %s failed", info.szBody);
        LSoundSourcePtr pFailed(new LSRCSilence);
        return pFailed;
    }
    return pScratch->OpenSource();
}
