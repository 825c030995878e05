#include "devices/LSoundPlayDevice.h"

#include "devices/LWaveDevice.h"

std::string LSoundPlayDevice::GetName(int32_t nDevice)
{
    if (nDevice <= 0)
        return "[Default Sound Out]";
    const std::vector<std::string> v = LWaveDevices::Get().GetOutputNames();
    return nDevice <= static_cast<int32_t>(v.size()) ? v[nDevice - 1] : std::string();
}

int32_t LSoundPlayDevice::GetCount()
{
    return static_cast<int32_t>(LWaveDevices::Get().GetOutputNames().size());
}
