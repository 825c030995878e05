// sonitra-cli play FILE [--device N] [--from TIME]
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include "cli/LCliArgs.h"
#include "cli/LCliOpen.h"
#include "cli/LCliVerb.h"
#include "core/LSoundTime.h"
#include "devices/LSoundPlayer.h"
#include "devices/LWaveDevice.h"
#include "formats/LAudioFile.h"
#include "platform/engine/LTerminalProgressHost.h"

namespace {

const char kUsage[] =
    "usage: sonitra-cli play FILE [--device N] [--from TIME]\n"
    "\n"
    "Plays FILE on a sound output device, showing the position and the levels.\n"
    "Ctrl+C stops.\n"
    "\n"
    "  --device N   0 the default output (the default), n the n-th device of\n"
    "               sonitra-cli devices\n"
    "  --from TIME  where to start: seconds (90, 1.5s, 250ms) or 1:30, 0:01:30.500\n"
    "\n"
    "Exit status: 0 played to the end, 1 stopped with Ctrl+C, 2 error, 64 wrong usage.";

const char kDeviceMessage[] =
    "Please check that you have selected the correct sound player device using Settings. "
    "Open Settings using File->Settings";

struct Options
{
    std::string szFile;
    int32_t nDevice = 0;
    int32_t nFromMs = 0;
};

bool UsageError(const std::string& szText)
{
    LCliError("play: " + szText + " (try sonitra-cli play --help)");
    return false;
}

bool TakeOption(const std::string& szName, const std::string& szValue, Options& opt)
{
    if (szName == "--device")
        return LCliParseInt(szValue, 0, 999, opt.nDevice) ||
               UsageError("--device takes a device number (0 the default)");
    if (szName == "--from")
        return LCliParseTime(szValue, opt.nFromMs) || UsageError("--from takes a time such as 90, 1.5s or 1:30");
    return UsageError("unknown option '" + szName + "'");
}

bool ParseArgs(const std::vector<std::string>& vArgs, Options& opt)
{
    const auto take = [&opt](const std::string& szName, const std::string& szValue) {
        return TakeOption(szName, szValue, opt);
    };
    return LCliReadOptions(vArgs, opt.szFile, take, UsageError, "needs exactly one file to play");
}

class PlayView : public LSoundPlayerNotify
{
public:
    PlayView(int32_t nLengthMs) : szLength(LSoundTime(nLengthMs).FormatTenths()), bTerminal(::isatty(2) != 0) {}

    void PlayerStopped(uint32_t) override { bStopped = true; }
    void PlayerPosition(uint32_t, int32_t nMs) override
    {
        nPositionMs = nMs;
        Draw();
    }
    void PlayerLevels(uint32_t, const LSoundLevels& l) override
    {
        levels = l;
        Draw();
    }
    void Close()
    {
        if (bTerminal)
            std::fputs("\r\033[K", stderr);
    }

    bool bStopped = false;
    int32_t nPositionMs = 0;

private:
    void Draw()
    {
        if (!bTerminal)
            return;
        std::string szMeters;
        for (uint8_t c = 0; c < levels.nChans && c < 2; ++c)
            szMeters += std::string("  ") + (levels.nChans == 1 ? "M" : c == 0 ? "L" : "R") + " [" +
                        LCliMeter(levels.nLevel[c], -60) + "]";
        std::fprintf(stderr, "\r\033[K%s / %s%s", LSoundTime(nPositionMs).FormatTenths().c_str(), szLength.c_str(),
                     szMeters.c_str());
        std::fflush(stderr);
    }

    std::string szLength;
    bool bTerminal;
    LSoundLevels levels;
};

// Says so when no sound card or server was found and the virtual device stands in.
void NoteVirtualDevice()
{
    if (std::string(LWaveDevices::Get().GetName()) == "virtual" && !std::getenv("SONITRA_AUDIO_DEVICE"))
        LCliError("no sound card or sound server found; the virtual device stands in (nothing is heard)");
}

int RunPlay(const std::vector<std::string>& vArgs)
{
    Options opt;
    if (!ParseArgs(vArgs, opt))
        return CliUsage;
    LSoundSourcePtr pSource = LCliOpenSound(opt.szFile);
    if (!pSource)
        return CliError;
    const int32_t nRate = pSource->GetSampleRate();
    const int32_t sFrom = LSoundTime::MsToSamples(opt.nFromMs, nRate);
    if (sFrom > pSource->GetLength()) {
        LCliError("play: --from lies after the end of " + opt.szFile);
        return CliUsage;
    }
    pSource->SetPosition(sFrom);

    LSoundTime length;
    length.SetSamples(pSource->GetLength(), nRate);
    PlayView view(length.GetMilliseconds());
    LSoundPlayer player;
    player.SetNotify(&view, 0);
    player.SetDevice(opt.nDevice);
    NoteVirtualDevice();
    if (!player.Start(pSource.Get())) {
        LCliError(kDeviceMessage);
        return CliError;
    }
    bool bInterrupted = false;
    while (!view.bStopped) {
        LThreadQueuedNotify::WaitAndDrainQueue(100);
        if (!view.bStopped && LTerminalProgressHostFactory::InterruptRequested()) {
            bInterrupted = true;
            player.Stop();
        }
    }
    view.Close();
    std::printf("%s %s at %s\n", bInterrupted ? "stopped" : "played", opt.szFile.c_str(),
                LSoundTime(view.nPositionMs).FormatMilliseconds().c_str());
    return bInterrupted ? CliCancelled : CliDone;
}

} // namespace

static LCliVerb verbPlay("play", "play an audio file on a sound output device", kUsage, RunPlay);
