// Every effect the editor, the batch converter and the command-line tool can run: its command,
// menu text, undo label, progress caption and the stored values it takes.
#pragma once

#include <string>
#include <vector>

struct LEffectArgs;

enum class LEffectKind
{
    Amplify,
    Normalize,
    HighPassFilter,
    Equalizer,
    Echo,
    Reverb,
    Reverse,
    FadeIn,
    FadeOut,
    FadeOutAndTrim,
    Envelope,
    AutoGainControl,
    NoiseReduction,
    SimpleSpeedPitch,
    ConstPitchSpeed,
    ConstSpeedPitch,
    Compressor,
    DCOffsetCorrection,
    PasteMix,
    MixFile,
    RepeatLoop,
    AutoTrim,
    InsertSilence,
    ConvertSampleRate,
    ConvertMono,
    ConvertStereo,
};

struct LEffectInfo
{
    LEffectKind kind;
    int nCommandId;
    const char* szMenuText;  // as in the menu, dots and accelerator marks included
    const char* szUndoLabel; // shown after "Undo "
    const char* szCaption;   // first line of the progress dialog
    std::vector<const char*> vKeys; // stored values it takes, in dialog order
    bool bAsksSettings;      // shows a settings dialog before it runs
    bool bWholeFile;         // works on the whole document, whatever is selected
    const char* szBody = ""; // the process body, as the trace names it
};

class LEffectCatalog
{
public:
    static const std::vector<LEffectInfo>& All();
    static const LEffectInfo* ByCommand(int nCommandId);
    static const LEffectInfo* ByKind(LEffectKind kind);
    // The command-line name: the menu text in lower case, words joined by dashes, no dots.
    static std::string CliName(const LEffectInfo& info);
    static const LEffectInfo* ByCliName(const std::string& szName);

    // The one-line description of a batch command's effect, from the stored values.
    static std::string Describe(LEffectKind kind);
    // The same from the given values (a value not given takes its stored value).
    static std::string Describe(LEffectKind kind, const LEffectArgs& args);
};
