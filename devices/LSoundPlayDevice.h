// The names of the wave-out devices as the settings list them.
#pragma once

#include <cstdint>
#include <string>

class LSoundPlayDevice
{
public:
    // "[Default Sound Out]" for device numbers <= 0, else the product name of device n - 1
    // (empty when there is no such device).
    static std::string GetName(int32_t nDevice);
    // Devices besides the default: numbers 1..GetCount().
    static int32_t GetCount();
};
