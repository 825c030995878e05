#include "devices/LSoundRecordDevice.h"

#include "devices/LWaveDevice.h"

std::string LSoundRecordDevice::GetName(int32_t nDevice)
{
    if (nDevice <= 0)
        return "[Default Sound In]";
    const std::vector<std::string> v = LWaveDevices::Get().GetInputNames();
    return nDevice <= static_cast<int32_t>(v.size()) ? v[nDevice - 1] : std::string();
}

int32_t LSoundRecordDevice::GetCount()
{
    return static_cast<int32_t>(LWaveDevices::Get().GetInputNames().size());
}
