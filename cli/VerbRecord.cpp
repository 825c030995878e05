// sonitra-cli record OUT.wav [--device N] [--rate R] [--channels C] [--max TIME] [--voice THRESHOLD_DB]
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include "cli/LCliArgs.h"
#include "cli/LCliVerb.h"
#include "core/LSoundTime.h"
#include "devices/LSoundRecorder.h"
#include "devices/LWaveDevice.h"
#include "formats/LAudioFile.h"
#include "platform/engine/LTerminalProgressHost.h"

namespace {

const char kUsage[] =
    "usage: sonitra-cli record OUT.wav [--device N] [--rate R] [--channels C] [--max TIME]\n"
    "                          [--voice THRESHOLD_DB]\n"
    "\n"
    "Records from a sound input device into OUT.wav (16-bit PCM) until Ctrl+C or the\n"
    "maximum time. Shows the time and the peak levels (full scale reads about +12 dB).\n"
    "\n"
    "  --device N     0 the default input (the default), n the n-th input of\n"
    "                 sonitra-cli devices\n"
    "  --rate R       sample rate in Hz (default 44100)\n"
    "  --channels C   1 or 2 (default 2)\n"
    "  --max TIME     stop after this long: seconds (90, 1.5s) or 1:30\n"
    "  --voice DB     voice-activated: wait for sound at or above DB (for example -24),\n"
    "                 and leave out stretches of more than 2 s below it\n"
    "\n"
    "Exit status: 0 recorded, 2 error, 64 wrong usage.";

constexpr int32_t kVoiceSilenceMs = 2000;

struct Options
{
    std::string szFile;
    int32_t nDevice = 0;
    int32_t nRate = 44100;
    int32_t nChans = 2;
    int32_t nMaxMs = 0;
    bool bVoice = false;
    int32_t nThreshold = -24;
};

bool UsageError(const std::string& szText)
{
    LCliError("record: " + szText + " (try sonitra-cli record --help)");
    return false;
}

bool TakeOption(const std::string& szName, const std::string& szValue, Options& opt)
{
    if (szName == "--device")
        return LCliParseInt(szValue, 0, 999, opt.nDevice) || UsageError("--device takes a device number (0 the default)");
    if (szName == "--rate")
        return LCliParseInt(szValue, 1000, 196000, opt.nRate) || UsageError("--rate takes 1000 to 196000 Hz");
    if (szName == "--channels")
        return LCliParseInt(szValue, 1, 2, opt.nChans) || UsageError("--channels takes 1 or 2");
    if (szName == "--max")
        return (LCliParseTime(szValue, opt.nMaxMs) && opt.nMaxMs > 0) ||
               UsageError("--max takes a time such as 90, 1.5s or 1:30");
    if (szName == "--voice") {
        opt.bVoice = true;
        return LCliParseInt(szValue, -127, 12, opt.nThreshold) || UsageError("--voice takes a level from -127 to 12 dB");
    }
    return UsageError("unknown option '" + szName + "'");
}

bool ParseArgs(const std::vector<std::string>& vArgs, Options& opt)
{
    const auto take = [&opt](const std::string& szName, const std::string& szValue) {
        return TakeOption(szName, szValue, opt);
    };
    return LCliReadOptions(vArgs, opt.szFile, take, UsageError, "needs exactly one output file");
}

class RecordView : public LSoundRecorderNotify
{
public:
    RecordView() : bTerminal(::isatty(2) != 0) {}

    void RecorderRecording(uint32_t) override { szState = "recording"; }
    void RecorderWaiting(uint32_t) override { szState = "waiting  "; }
    void RecorderStopped(uint32_t) override { bStopped = true; }
    void RecorderTime(uint32_t, int32_t nMs) override { nTimeMs = nMs; }
    void RecorderLevels(uint32_t, const LSoundLevels& levels) override
    {
        if (!bTerminal)
            return;
        std::string szMeters;
        for (uint8_t c = 0; c < levels.nChans && c < 2; ++c)
            szMeters += std::string("  ") + (levels.nChans == 1 ? "M" : c == 0 ? "L" : "R") + " [" +
                        LCliMeter(levels.nLevel[c], -48) + "]";
        std::fprintf(stderr, "\r\033[K%s %s%s", szState, LSoundTime(nTimeMs).FormatTenths().c_str(),
                     szMeters.c_str());
        std::fflush(stderr);
    }
    void Close()
    {
        if (bTerminal)
            std::fputs("\r\033[K", stderr);
    }

    bool bStopped = false;

private:
    bool bTerminal;
    const char* szState = "recording";
    int32_t nTimeMs = 0;
};

// Says so when no sound card or server was found and the virtual device stands in.
void NoteVirtualDevice()
{
    if (std::string(LWaveDevices::Get().GetName()) == "virtual" && !std::getenv("SONITRA_AUDIO_DEVICE"))
        LCliError("no sound card or sound server found; the virtual device stands in (it records silence)");
}

int RunRecord(const std::vector<std::string>& vArgs)
{
    Options opt;
    if (!ParseArgs(vArgs, opt))
        return CliUsage;
    std::string szError;
    LSoundSinkPtr pSink = LAudioFile::OpenSink(opt.szFile, opt.nRate, static_cast<uint8_t>(opt.nChans),
                                              LAudioEncoding::Named("pcm16"), &szError);
    if (!pSink || pSink->IsError()) {
        LCliError(opt.szFile + ": " + (szError.empty() ? std::string("cannot be written") : szError));
        return CliError;
    }
    NoteVirtualDevice();
    RecordView view;
    LSoundRecorder recorder;
    recorder.SetNotify(&view, 0);
    const int8_t nThreshold = static_cast<int8_t>(opt.nThreshold);
    const bool bStarted =
        opt.bVoice ? recorder.Restart(pSink.Get(), opt.nDevice, nThreshold, nThreshold, kVoiceSilenceMs, opt.nMaxMs)
                   : recorder.Start(pSink.Get(), opt.nDevice, nThreshold, -127, 0, opt.nMaxMs);
    if (!bStarted) {
        LCliError("record: cannot open sound input device " + std::to_string(opt.nDevice) + " for " +
                  std::to_string(opt.nRate) + " Hz, " + std::to_string(opt.nChans) +
                  " channel(s); see sonitra-cli devices");
        return CliError;
    }
    while (!view.bStopped) {
        LThreadQueuedNotify::WaitAndDrainQueue(100);
        if (!view.bStopped && LTerminalProgressHostFactory::InterruptRequested())
            recorder.Stop();
    }
    view.Close();
    // The recorder stops at the first block past the maximum; the file keeps exactly that much.
    if (opt.nMaxMs > 0) {
        const int32_t sMax = LSoundTime::MsToSamples(opt.nMaxMs, opt.nRate);
        if (pSink->GetPosition() > sMax)
            pSink->SetPosition(sMax);
    }
    LSoundTime length;
    length.SetSamples(pSink->GetPosition(), opt.nRate);
    const bool bFailed = !pSink->Complete() || pSink->IsError();
    pSink.Reset();
    if (bFailed) {
        LCliError(opt.szFile + ": writing failed (disk full?)");
        return CliError;
    }
    std::printf("recorded %s: %s\n", opt.szFile.c_str(), length.FormatMilliseconds().c_str());
    return CliDone;
}

} // namespace

static LCliVerb verbRecord("record", "record from a sound input device into a WAV file", kUsage, RunRecord);
