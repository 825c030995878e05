#include "cli/LCliOpen.h"

#include "cli/LCliVerb.h"
#include "formats/LAudioFile.h"

LSoundSourcePtr LCliOpenSound(const std::string& szPath, LAudioFileDetails* pDetails, const std::string& szWho)
{
    std::string szError;
    LSoundSourcePtr pSource = pDetails ? LAudioFile::OpenSource(szPath, &szError, pDetails)
                                       : LAudioFile::OpenSource(szPath, &szError);
    if (!pSource->IsError())
        return pSource;
    LCliError((szWho.empty() ? std::string() : szWho + ": ") + szPath + ": " + szError);
    return LSoundSourcePtr();
}
