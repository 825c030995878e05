#include "cd/LCdReadMode.h"

#include "core/LSettings.h"

const char* LCd::ReadModeName(LCdReadMode mode)
{
    switch (mode) {
    case LCdReadMode::Fast:
        return "fast";
    case LCdReadMode::Paranoid:
        return "paranoid";
    default:
        return "verified";
    }
}

bool LCd::ParseReadMode(const std::string& szName, LCdReadMode& mode)
{
    for (LCdReadMode m : {LCdReadMode::Fast, LCdReadMode::Verified, LCdReadMode::Paranoid}) {
        if (szName == ReadModeName(m)) {
            mode = m;
            return true;
        }
    }
    return false;
}

LCdReadMode LCd::ReadModeSetting()
{
    LCdReadMode mode = LCdReadMode::Verified;
    ParseReadMode(LSettings::GetString("CD", "ReadMode", "verified"), mode);
    return mode;
}

void LCd::SetReadModeSetting(LCdReadMode mode)
{
    LSettings::SetString("CD", "ReadMode", ReadModeName(mode));
}
