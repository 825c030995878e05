#include "platform/audio/LQuietStderr.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <unistd.h>

LQuietStderr::LQuietStderr()
{
    if (std::getenv("SONITRA_TRACE"))
        return;
    std::fflush(stderr);
    const int hNull = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (hNull < 0)
        return;
    hSaved = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    if (hSaved >= 0)
        ::dup2(hNull, STDERR_FILENO);
    ::close(hNull);
}

LQuietStderr::~LQuietStderr()
{
    if (hSaved < 0)
        return;
    std::fflush(stderr);
    ::dup2(hSaved, STDERR_FILENO);
    ::close(hSaved);
}
