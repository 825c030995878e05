#include "core/LTrace.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>

void LTraceWrite(const char* szFormat, ...)
{
    static const bool bEnabled = std::getenv("SONITRA_TRACE") != nullptr;
    if (!bEnabled)
        return;
    static std::mutex mtx;
    std::lock_guard<std::mutex> lock(mtx);
    va_list args;
    va_start(args, szFormat);
    std::vfprintf(stderr, szFormat, args);
    va_end(args);
    std::fputc('\n', stderr);
}
