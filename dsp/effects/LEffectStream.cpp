#include "dsp/effects/LEffectStream.h"

#include <algorithm>
#include <memory>

#include "core/LAudioCutTank.h"
#include "core/LCutListAudioSource.h"
#include "core/LFixed.h"
#include "core/LPRSourceToSink.h"
#include "core/LTrace.h"
#include "dsp/LDPAutoGain.h"
#include "dsp/effects/LCurveFile.h"
#include "dsp/effects/LDCOffsetCorrection.h"
#include "dsp/effects/LEfNormalize.h"
#include "dsp/effects/LSRCGain.h"
#include "dsp/effects/LSRCOffset.h"
#include "dsp/effects/LSRCReverse.h"

namespace {
using R = LProgressDialog::Result;

enum class Shape
{
    Gain,     // a change of the cuts' gain: amplify, normalize
    Offset,   // DC offset correction
    AutoGain, // its own two passes, through a temporary copy
    Reverse,
    Convert,  // rate or channels
    Stage,    // an effect source from a factory
    Document, // needs the document
};

Shape ShapeOf(const LEffectInfo& info)
{
    switch (info.stream) {
    case LEffectInfo::StreamAmplify:
    case LEffectInfo::StreamNormalize:
        return Shape::Gain;
    case LEffectInfo::StreamOffset:
        return Shape::Offset;
    case LEffectInfo::StreamAutoGain:
        return Shape::AutoGain;
    case LEffectInfo::StreamReverse:
        return Shape::Reverse;
    case LEffectInfo::StreamRate:
    case LEffectInfo::StreamMono:
    case LEffectInfo::StreamStereo:
        return Shape::Convert;
    case LEffectInfo::StreamAuto:
        break;
    }
    return info.pfnFactory ? Shape::Stage : Shape::Document;
}

// What a measuring step found, kept for building the chain again after it.
struct Measured
{
    int32_t nGainPercent = 100;
    std::vector<int32_t> vOffset;
    std::unique_ptr<LDPAutoGain> pAutoGain;
};

// The chain as it grows, standing in for the document the other path would keep.
class LChain
{
public:
    explicit LChain(LSoundSourcePtr pStart) : p(std::move(pStart)) {}

    // What loading into a document and reading it back does to a source.
    void Loaded()
    {
        p = LPRSourceToSink::Adapt(p.Get(), p->GetSampleRate(), p->GetChannels());
        p->SetMaxAmplitude(LCutListAudioSource::kMaxAmplitude);
    }
    // What rendering into a new segment in this rate and channel count and reading it back does.
    void Rendered(int32_t nRate, uint8_t nChans)
    {
        p = LPRSourceToSink::Adapt(p.Get(), nRate, nChans);
        p->SetMaxAmplitude(LCutListAudioSource::kMaxAmplitude);
    }
    void Rendered() { Rendered(p->GetSampleRate(), p->GetChannels()); }
    // The cuts' gain as the next reader sees it.
    LSoundSourceBase* Read()
    {
        if (nGain != kGainUnity)
            p = new LSRCGain(p.Get(), nGain);
        nGain = kGainUnity;
        return p.Get();
    }
    void Amplify(int32_t nPercent) { nGain = LSRCGain::Scaled(nGain, nPercent); }
    // The sound's shape, the gain not yet applied.
    const LSoundSourceBase& Peek() const { return *p; }
    void Wrap(LSoundSourcePtr pNext) { p = std::move(pNext); }
    LSoundSourcePtr Take() { return Read(); }

private:
    LSoundSourcePtr p;
    int32_t nGain = kGainUnity;
};

// Adds a step whose measurement, if it needs one, is done. False when it cannot be built.
bool AddStep(LChain& chain, const LEffectStep& step, const Measured& m)
{
    const LEffectInfo& info = *step.pInfo;
    switch (ShapeOf(info)) {
    case Shape::Gain:
        chain.Amplify(info.stream == LEffectInfo::StreamAmplify ? step.args.Value("AmplifyGain") : m.nGainPercent);
        return true;
    case Shape::Offset:
        chain.Wrap(LSoundSourcePtr(new LSRCOffset(chain.Read(), m.vOffset)));
        return true;
    case Shape::Reverse:
        chain.Wrap(LSoundSourcePtr(new LSRCReverse(chain.Read())));
        return true;
    case Shape::Convert: {
        // A conversion to the shape the sound has already leaves the document, gains and all, as it is.
        const LSoundSourceBase& now = chain.Peek();
        const int32_t nRate =
            info.stream == LEffectInfo::StreamRate ? step.args.Value("ConvertSampleRate") : now.GetSampleRate();
        const uint8_t nChans = info.stream == LEffectInfo::StreamMono     ? 1
                               : info.stream == LEffectInfo::StreamStereo ? 2
                                                                          : now.GetChannels();
        if (nRate < 1)
            return false;
        if (nRate != now.GetSampleRate() || nChans != now.GetChannels()) {
            chain.Read();
            chain.Rendered(nRate, nChans);
        }
        return true;
    }
    case Shape::Stage: {
        LEffectFactoryPtr pFactory = info.pfnFactory(step.args);
        chain.Wrap(pFactory->Create(chain.Read()));
        chain.Rendered();
        return true;
    }
    default:
        return false;
    }
}

class LStreamBuilder
{
public:
    LStreamBuilder(LProgressDialog& dlg, const LEffectStream::Opener& fnOpen, const std::vector<LEffectStep>& vSteps)
        : dlg(dlg), fnOpen(fnOpen), vSteps(vSteps), vMeasured(vSteps.size())
    {
    }

    int32_t Open(LSoundSourcePtr& pOut)
    {
        for (size_t i = 0; i < vSteps.size(); ++i) {
            const int32_t nResult = Measure(i);
            if (nResult != R::ResultDone)
                return nResult;
        }
        return Build(vSteps.size(), pOut);
    }

private:
    // The chain of the first nSteps steps: from the input, or from the copy that the last
    // automatic gain control among them reads back.
    int32_t Build(size_t nSteps, LSoundSourcePtr& pOut)
    {
        size_t nFrom = nSteps;
        while (nFrom > 0 && ShapeOf(*vSteps[nFrom - 1].pInfo) != Shape::AutoGain)
            --nFrom;
        LSoundSourcePtr pStart = nFrom > 0 ? vMeasured[nFrom - 1].pAutoGain->CreateSource() : fnOpen();
        if (!pStart || pStart->IsError())
            return R::ResultError;
        LChain chain(pStart);
        if (nFrom > 0)
            chain.Rendered();
        else
            chain.Loaded();
        for (size_t i = nFrom; i < nSteps; ++i) {
            if (!AddStep(chain, vSteps[i], vMeasured[i])) {
                LTRACE("LEffectStream::Open %s cannot run on a stream", vSteps[i].pInfo->szMenuText);
                return R::ResultError;
            }
        }
        pOut = chain.Take();
        return pOut->IsError() ? R::ResultError : R::ResultDone;
    }

    int32_t Measure(size_t i)
    {
        const LEffectStep& step = vSteps[i];
        const Shape shape = ShapeOf(*step.pInfo);
        if (step.pInfo->stream == LEffectInfo::StreamAmplify || (shape != Shape::Gain && shape != Shape::Offset && shape != Shape::AutoGain))
            return R::ResultDone;
        LSoundSourcePtr pBelow;
        int32_t nResult = Build(i, pBelow);
        if (nResult != R::ResultDone)
            return nResult;
        Measured& m = vMeasured[i];
        if (shape == Shape::Offset) {
            dlg.SetText("DC Offset Correction", 0);
            dlg.SetText("Please wait...", 1);
            return LDCOffsetCorrection::Measure(dlg, *pBelow, m.vOffset);
        }
        if (shape == Shape::AutoGain) {
            dlg.SetText(step.pInfo->szCaption, 0);
            dlg.SetText("Please wait...", 1);
            m.pAutoGain = std::make_unique<LDPAutoGain>(pBelow.Get(), LAudioCutTank::Instance().GetWorkingFolder());
            return m.pAutoGain->Analyse(&dlg);
        }
        return MeasurePeak(*pBelow, step.args.Value("NormalizePeakLevel"), m.nGainPercent);
    }

    int32_t MeasurePeak(LSoundSourceBase& src, int32_t nLevel, int32_t& nPercent)
    {
        dlg.SetText("Normalizing", 0);
        dlg.SetText("Please wait...", 1);
        dlg.SetProgress(0);
        const int64_t nTotal = src.GetLength();
        std::vector<int32_t> vBlock(static_cast<size_t>(LEfNormalize::kBlockFrames) * src.GetChannels());
        int64_t nPeak = 0;
        for (int64_t nDone = 0; nDone < nTotal;) {
            const int32_t n = static_cast<int32_t>(std::min<int64_t>(LEfNormalize::kBlockFrames, nTotal - nDone));
            src.Read(vBlock.data(), n);
            nPeak = std::max(nPeak, LEfNormalize::BlockPeak(vBlock.data(), static_cast<size_t>(n) * src.GetChannels()));
            nDone += n;
            dlg.SetProgress(static_cast<double>(nDone) / static_cast<double>(nTotal));
            if (dlg.IsCancelled())
                return R::ResultCancelled;
        }
        // A silent or empty sound is left as it is.
        nPercent = nPeak == 0 ? 100 : LEfNormalize::GainPercent(nLevel, nPeak);
        return R::ResultDone;
    }

    LProgressDialog& dlg;
    const LEffectStream::Opener& fnOpen;
    const std::vector<LEffectStep>& vSteps;
    std::vector<Measured> vMeasured;
};
} // namespace

bool LEffectStream::CanStream(const std::vector<LEffectStep>& vSteps, const LSoundSourceBase& input,
                              bool bInputSeeksExactly)
{
    // Reverse seeks backwards through what lies below it: only the input itself (when loading
    // puts no limiter over it) and the stages that keep no state can follow it there.
    bool bSeekable = bInputSeeksExactly && input.GetMaxAmplitude() <= kFullScale16;
    for (const LEffectStep& step : vSteps) {
        if (!step.pInfo)
            return false;
        switch (ShapeOf(*step.pInfo)) {
        case Shape::Gain:
        case Shape::Offset:
            break;
        case Shape::Reverse:
            if (!bSeekable)
                return false;
            break;
        case Shape::Document:
            return false;
        default:
            bSeekable = false;
            break;
        }
    }
    return true;
}

int32_t LEffectStream::Open(LProgressDialog& dlg, const Opener& fnOpen, const std::vector<LEffectStep>& vSteps,
                            LSoundSourcePtr& pOut)
{
    return LStreamBuilder(dlg, fnOpen, vSteps).Open(pOut);
}
