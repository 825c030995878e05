// The trace: "Class::Method reason" lines for developers. Compiled out of release builds.
#pragma once

#ifdef NDEBUG
#define LTRACE(...) ((void)0)
#else
#define LTRACE(...) ::LTraceWrite(__VA_ARGS__)
#endif

// printf-style; writes to stderr only when SONITRA_TRACE is set in the environment,
// so debug test runs stay quiet unless asked.
void LTraceWrite(const char* szFormat, ...) __attribute__((format(printf, 1, 2)));
