#include "project/LAtomicFile.h"

#include <unistd.h>

#include "core/LFile.h"
#include "core/LTrace.h"

namespace LAtomicFile {

bool Write(const std::string& szPath, const std::vector<uint8_t>& vBytes)
{
    const std::string szPart = szPath + ".part";
    {
        LFile file;
        if (!file.Open(szPart, LFile::ReadWriteCreate)) {
            LTRACE("LAtomicFile::Write cannot create %s", szPart.c_str());
            return false;
        }
        if (file.Write(vBytes.data(), static_cast<int64_t>(vBytes.size())) != static_cast<int64_t>(vBytes.size())) {
            LTRACE("LAtomicFile::Write short write %s", szPart.c_str());
            file.Close();
            LFile::Delete(szPart);
            return false;
        }
    }
    if (!LFile::Rename(szPart, szPath)) {
        LTRACE("LAtomicFile::Write cannot rename %s", szPart.c_str());
        LFile::Delete(szPart);
        return false;
    }
    return true;
}

} // namespace LAtomicFile
