// The names of the wave-in devices as the record dialog lists them.
#pragma once

#include <cstdint>
#include <string>

class LSoundRecordDevice
{
public:
    // "[Default Sound In]" for device numbers <= 0, else the product name of device n - 1
    // (empty when there is no such device).
    static std::string GetName(int32_t nDevice);
    static int32_t GetCount();
};
