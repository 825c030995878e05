#include "dsp/effects/LCLAConvertRateChannels.h"

#include "core/LSettings.h"
#include "core/LTrace.h"
#include "dsp/effects/LEffectRunner.h"
#include "dsp/effects/LStoredValues.h"
#include "dsp/effects/LEfSoundProcess.h"

int32_t LCLAConvertRateChannels::Run(LProgressDialog& dlg, LCutListAudio& doc, int32_t nNewRate, uint8_t nNewChans)
{
    if (nNewRate < 1 || nNewChans < 1 || nNewChans > 2) {
        LTRACE("LCLAConvertRateChannels::Run bad target %d/%d", nNewRate, nNewChans);
        return LProgressDialog::ResultError;
    }
    if (nNewRate == doc.GetSampleRate() && nNewChans == doc.GetChannels())
        return LProgressDialog::ResultDone;
    // A segment writer in the new format makes the pump put the converters in between.
    LSoundSourcePtr pSrc = doc.OpenSource();
    int32_t nResult = LProgressDialog::ResultError;
    LCutListAudioPtr pNew = LEfSoundProcess::RenderAs(dlg, "Converting rate or channels...", pSrc.Get(), nNewRate,
                                                      nNewChans, &nResult);
    if (pNew)
        doc = *pNew;
    return nResult;
}

namespace {
const char kCaption[] = "Converting rate or channels...";
constexpr LEffectParam kRateParams[] = {
    {"ConvertSampleRate", 44100, 6000, 96000, "Sample rates must be between 6000 and 96000 samples per second.",
     "Sample Rate (Hz):", "Hz"},
};

int32_t ConvertRate(LProgressDialog& dlg, const LEffectInfo&, LCutListAudio& doc, int32_t, int32_t,
                    const LEffectArgs& args)
{
    return LCLAConvertRateChannels::Run(dlg, doc, args.Value("ConvertSampleRate"), doc.GetChannels());
}

int32_t ConvertToMono(LProgressDialog& dlg, const LEffectInfo&, LCutListAudio& doc, int32_t, int32_t,
                      const LEffectArgs&)
{
    return LCLAConvertRateChannels::Run(dlg, doc, doc.GetSampleRate(), 1);
}

int32_t ConvertToStereo(LProgressDialog& dlg, const LEffectInfo&, LCutListAudio& doc, int32_t, int32_t,
                        const LEffectArgs&)
{
    return LCLAConvertRateChannels::Run(dlg, doc, doc.GetSampleRate(), 2);
}

// The editor describes the conversions from the older section name, with the same defaults.
std::string DescribeRate(const LEffectArgs&)
{
    return "Convert Sample Rate = " +
           std::to_string(LSettings::GetInt(LStoredValues::kDescriptionSection, "ConvertSampleRate", 44100));
}

std::string DescribeChannels(const LEffectArgs&)
{
    return "Convert Channel = " +
           std::to_string(LSettings::GetInt(LStoredValues::kDescriptionSection, "ConvertChannel", 1));
}
} // namespace

SONITRA_DEFINE_EFFECT(kEfConvertSampleRate) = {
    .nCommandId = 1006, .szCliName = "convert-sample-rate", .szMenuText = "Convert Sample Rate", .szMenu = "File",
    .nMenuGroup = 0, .szHint = "Changes the sample rate of the current file.", .szUndoLabel = "Convert Sample Rate",
    .szCaption = kCaption, .vParams = kRateParams, .szDescribe = "Convert Sample Rate = %d",
    .range = LEffectInfo::WholeFile, .bAsksSettings = true, .bWorksOnEmpty = true, .pfnApply = ConvertRate,
    .pfnDescribe = DescribeRate, .stream = LEffectInfo::StreamRate,
};

SONITRA_DEFINE_EFFECT(kEfConvertMono) = {
    .nCommandId = 1007, .szCliName = "mono", .szMenuText = "Mono", .szMenu = "File", .nMenuGroup = 0,
    .szHint = "Converts the current file to one channel.", .szUndoLabel = "Convert Channels", .szCaption = kCaption,
    .szDescribe = "Convert Channel = 1", .range = LEffectInfo::WholeFile, .nNeedsChannels = 2,
    .bWorksOnEmpty = true, .pfnApply = ConvertToMono, .pfnDescribe = DescribeChannels,
    .stream = LEffectInfo::StreamMono,
};

SONITRA_DEFINE_EFFECT(kEfConvertStereo) = {
    .nCommandId = 1008, .szCliName = "stereo", .szMenuText = "Stereo", .szMenu = "File", .nMenuGroup = 0,
    .szHint = "Converts the current file to two channels.", .szUndoLabel = "Convert Channels", .szCaption = kCaption,
    .szDescribe = "Convert Channel = 2", .range = LEffectInfo::WholeFile, .nNeedsChannels = 1,
    .bWorksOnEmpty = true, .pfnApply = ConvertToStereo, .pfnDescribe = DescribeChannels,
    .stream = LEffectInfo::StreamStereo,
};
