// Wave devices on PortAudio: sound cards and sound servers.
#pragma once

#include "devices/LWaveDevice.h"

// The driver, or null when PortAudio is not built in, cannot start, or finds no device.
LWaveDriver* LPortAudioDriverGet();
