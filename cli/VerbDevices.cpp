// sonitra-cli devices
#include <cstdio>

#include "cli/LCliVerb.h"
#include "devices/LSoundPlayDevice.h"
#include "devices/LSoundRecordDevice.h"
#include "devices/LWaveDevice.h"

namespace {

const char kUsage[] =
    "usage: sonitra-cli devices\n"
    "\n"
    "Lists the sound output and input devices by the numbers that play --device and\n"
    "record --device take. Where no sound card or sound server is found, the virtual\n"
    "device stands in (it plays nothing and records silence).";

int RunDevices(const std::vector<std::string>& vArgs)
{
    if (!vArgs.empty()) {
        LCliError("devices: takes no arguments (try sonitra-cli devices --help)");
        return CliUsage;
    }
    const char* szDriver = LWaveDevices::Get().GetName();
    std::printf("output devices (%s):\n", szDriver);
    for (int32_t n = 0; n <= LSoundPlayDevice::GetCount(); ++n)
        std::printf("  %2d  %s\n", n, LSoundPlayDevice::GetName(n).c_str());
    std::printf("input devices (%s):\n", szDriver);
    for (int32_t n = 0; n <= LSoundRecordDevice::GetCount(); ++n)
        std::printf("  %2d  %s\n", n, LSoundRecordDevice::GetName(n).c_str());
    return CliDone;
}

} // namespace

static LCliVerb verbDevices("devices", "list the sound output and input devices", kUsage, RunDevices);
