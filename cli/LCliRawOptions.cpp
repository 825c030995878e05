#include "cli/LCliRawOptions.h"

#include "cli/LCliArgs.h"
#include "cli/LCliVerb.h"
#include "formats/LVoxRawSettings.h"

namespace {
constexpr const char* kSection = "Settings";
} // namespace

const char* const LCliRawOptions::kHelp =
    "headerless files (.vox, .raw), for every verb; each falls back to the stored setting:\n"
    "  --raw-format F     vox, ulaw, alaw, s16le, u8, s8, s16be, or the list position 0 to 6\n"
    "  --raw-rate N       samples per second (1000 to 196000)\n"
    "  --raw-channels N   channels of a .raw file (1 to 8)";

LCliRawOptions::~LCliRawOptions()
{
    if (pUnder)
        LSettings::SetStore(pUnder);
}

bool LCliRawOptions::TakeOne(const std::string& szName, const std::string& szValue)
{
    int32_t n = 0;
    if (szName == "--raw-format") {
        if (!LVoxRawSettings::ParseFormat(szValue, n)) {
            LCliError("--raw-format takes vox, ulaw, alaw, s16le, u8, s8, s16be or 0 to 6, not '" + szValue + "'");
            return false;
        }
        mapOverrides["VoxRawFileFormat"] = std::to_string(n);
    } else if (szName == "--raw-rate") {
        if (!LCliParseInt(szValue, LVoxRawSettings::kMinRate, LVoxRawSettings::kMaxRate, n)) {
            LCliError("--raw-rate takes 1000 to 196000 Hz, not '" + szValue + "'");
            return false;
        }
        mapOverrides["VoxRawSampleRate"] = std::to_string(n);
    } else {
        if (!LCliParseInt(szValue, 1, LVoxRawSettings::kMaxChans, n)) {
            LCliError("--raw-channels takes 1 to 8, not '" + szValue + "'");
            return false;
        }
        mapOverrides["VoxRawFileChannels"] = std::to_string(n);
    }
    return true;
}

bool LCliRawOptions::Take(std::vector<std::string>& vArgs)
{
    std::vector<std::string> vRest;
    for (size_t i = 0; i < vArgs.size(); ++i) {
        std::string szName = vArgs[i];
        std::string szValue;
        const size_t nEq = szName.find('=');
        if (nEq != std::string::npos)
            szName.resize(nEq);
        if (szName != "--raw-format" && szName != "--raw-rate" && szName != "--raw-channels") {
            vRest.push_back(vArgs[i]);
            continue;
        }
        if (nEq != std::string::npos) {
            szValue = vArgs[i].substr(nEq + 1);
        } else if (i + 1 < vArgs.size()) {
            szValue = vArgs[++i];
        } else {
            LCliError(szName + " needs a value");
            return false;
        }
        if (!TakeOne(szName, szValue))
            return false;
    }
    vArgs.swap(vRest);
    return true;
}

void LCliRawOptions::Install()
{
    if (mapOverrides.empty() || pUnder)
        return;
    pUnder = &LSettings::Store();
    LSettings::SetStore(this);
}

bool LCliRawOptions::GetValue(const std::string& szSection, const std::string& szName, std::string& szValue)
{
    if (szSection == kSection) {
        auto it = mapOverrides.find(szName);
        if (it != mapOverrides.end()) {
            szValue = it->second;
            return true;
        }
    }
    return pUnder->GetValue(szSection, szName, szValue);
}

void LCliRawOptions::SetValue(const std::string& szSection, const std::string& szName, const std::string& szValue)
{
    pUnder->SetValue(szSection, szName, szValue);
}

void LCliRawOptions::DeleteValue(const std::string& szSection, const std::string& szName)
{
    pUnder->DeleteValue(szSection, szName);
}
