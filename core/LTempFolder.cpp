#include "core/LTempFolder.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

#include "core/LTrace.h"

namespace LTempFolder {

namespace {
bool IsWritableFolder(const char* szPath)
{
    struct stat st;
    return szPath && szPath[0] == '/' && ::stat(szPath, &st) == 0 && S_ISDIR(st.st_mode) &&
           ::access(szPath, W_OK | X_OK) == 0;
}

std::string WithoutTrailingSeparator(std::string sz)
{
    while (sz.size() > 1 && sz.back() == '/')
        sz.pop_back();
    return sz;
}
} // namespace

std::string Path()
{
    const char* szTmp = std::getenv("TMPDIR");
    if (IsWritableFolder(szTmp))
        return WithoutTrailingSeparator(szTmp);
    if (szTmp && *szTmp)
        LTRACE("LTempFolder::Path TMPDIR %s is no writable folder", szTmp);
#ifdef P_tmpdir
    if (IsWritableFolder(P_tmpdir))
        return WithoutTrailingSeparator(P_tmpdir);
#endif
    return "/tmp";
}

int CreateFile(const std::string& szPrefix, const std::string& szSuffix, std::string& szPath, std::string* pszError)
{
    const std::string szFolder = Path();
    std::random_device random;
    int nErr = 0;
    for (int nTry = 0; nTry < 16; ++nTry) {
        char szRandom[17];
        const unsigned long long nRandom = static_cast<unsigned long long>(random()) << 32 | random();
        std::snprintf(szRandom, sizeof szRandom, "%016llx", nRandom);
        szPath = szFolder + "/" + szPrefix + szRandom + szSuffix;
        int fd;
        do {
            fd = ::open(szPath.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        } while (fd < 0 && errno == EINTR);
        if (fd >= 0)
            return fd;
        nErr = errno;
        if (nErr != EEXIST)
            break;
    }
    LTRACE("LTempFolder::CreateFile %s: %s", szPath.c_str(), std::strerror(nErr));
    if (pszError)
        *pszError = "cannot create a file in " + szFolder + ": " + std::strerror(nErr);
    szPath.clear();
    return -1;
}

} // namespace LTempFolder
