// Wave devices on PortAudio: sound cards and sound servers.
#pragma once

#include "devices/LWaveDevice.h"

// The driver, or null when PortAudio is not built in, cannot start, or finds no device.
LWaveDriver* LPortAudioDriverGet();
// The sound library's name and version, for the About box.
const char* LPortAudioVersionText();
