// One effect, declared once beside its processing code: where the editor shows it, what the
// command line and batch scripts call it, the values it takes with their rules, and how it runs.
// Every face of the program (menus, command table, settings dialog, stored values, runner,
// sonitra-cli, batch scripts) reads effects from these descriptors through LEffectCatalog.
// A descriptor is plain constant data, so it is whole before any code runs.
#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "dsp/effects/LEffectFactory.h"

struct LEffectArgs;
class LCutListAudio;
class LProgressDialog;

// A named value a dialog offers for a field ("Broadcast", -23).
struct LEffectPreset
{
    const char* szName;
    int32_t nValue;
};

// One stored value an effect takes.
struct LEffectParam
{
    enum Kind
    {
        Number, // typed as a whole number
        Ratio,  // an index into CompressorRatioList, chosen by its label
        Choice, // one of szChoices, chosen by a button each
    };

    const char* szKey; // stored-value key, in section "StoredValues"
    int32_t nDefault;
    int32_t nLowest;  // accepted from here...
    int32_t nHighest; // ...to here, inclusive
    const char* szMessage; // why a value outside the rule is refused
    const char* szLabel;   // the dialog's label for the field
    const char* szUnit = ""; // "ms", "%", "Hz", "dB", "LUFS"...
    Kind kind = Number;
    std::span<const char* const> szChoices = {};
    std::span<const LEffectPreset> vPresets = {}; // offered beside a Number field
};

struct LEffectInfo
{
    // Where the document range comes from when the editor runs it.
    enum Range
    {
        Selection, // the selection, or the whole file when nothing is selected
        WholeFile, // always the whole document
        Cursor,    // the selection, or the cursor when nothing is selected
    };
    // The curve an effect is shaped by, edited in the curve window rather than a settings dialog.
    enum Curve
    {
        NoCurve,
        EqualizerCurve,
        EnvelopeCurve,
    };

    using ApplyFn = int32_t (*)(LProgressDialog& dlg, const LEffectInfo& info, LCutListAudio& doc, int32_t sStart,
                                int32_t sEnd, const LEffectArgs& args);
    using FactoryFn = LEffectFactoryPtr (*)(const LEffectArgs& args);
    using DescribeFn = std::string (*)(const LEffectArgs& args);

    int nCommandId = 0;
    const char* szCliName = ""; // sonitra-cli and batch scripts: "high-pass-filter"
    const char* szMenuText = "";  // as in the menu, dots included
    const char* szMenu = "";  // the top menu it sits in ("Effects"; "Edit" and "File" place theirs)
    int nMenuGroup = 0;          // a separator goes between groups of the same menu
    const char* szHint = "";  // the status-bar text
    const char* szUndoLabel = "";  // shown after "Undo "
    const char* szCaption = "";  // first line of the progress dialog
    std::span<const LEffectParam> vParams = {}; // in dialog order; also the layout of the settings record
    // The batch command's description from the values: each %d takes the next value, %s the
    // label of a ratio. Null: "Click on Settings to view or change.".
    const char* szDescribe = nullptr;
    Range range = Selection;
    bool bAsksSettings = false; // shows its settings before it runs
    Curve curve = NoCurve;
    bool bTakesClip = false;    // mixes a clip in, which a batch script cannot carry
    uint8_t nNeedsChannels = 0; // runs only on documents of this many channels (0: any)
    bool bWorksOnEmpty = false; // offered on a document without audio
    // The editor runs it through its own menu's command; the catalog serves scripts and sonitra-cli.
    bool bEditorOwnCommand = false;
    const char* szBody = "EfSoundProcess"; // the process body, as the trace names it
    // How it runs: a streaming effect wraps a source (pfnFactory, usable without a document);
    // the others work on the document (pfnApply). One with both runs pfnApply on a document and
    // is the stage of pfnFactory over a whole stream (a fade out and trim of everything).
    FactoryFn pfnFactory = nullptr;
    ApplyFn pfnApply = nullptr;
    // The editor's own description when it differs from szDescribe over the values.
    DescribeFn pfnDescribe = nullptr;

    // How a document effect still runs over a stream from file to file (command line, batches).
    enum Stream
    {
        StreamAuto,      // a stage when it has a factory, else only on a document
        StreamAmplify,   // a gain of the value "AmplifyGain", as the cuts' gain applies it
        StreamNormalize, // the peak measured first, then a gain
        StreamOffset,    // the offset measured first, then taken off
        StreamAutoGain,  // analysed into a copy of its own first
        StreamReverse,   // read backwards through the input's seek
        StreamRate,      // converted to the rate "ConvertSampleRate"
        StreamMono,
        StreamStereo,
    };
    Stream stream = StreamAuto;
};

// Defines a descriptor with the linkage the catalog's list needs:
//   SONITRA_DEFINE_EFFECT(kEfEcho) = {.nCommandId = 4004, ...};
#define SONITRA_DEFINE_EFFECT(name)                                                                                   \
    extern const LEffectInfo name;                                                                                     \
    constinit const LEffectInfo name
