// The parts of "sonitra-cli cd": each subcommand in its own file, the shared options here.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "cd/LCdDevice.h"
#include "cd/LCdTitles.h"

struct LCliCdSource
{
    std::string szDevice;
    std::string szImage;
    LCddbServer server = LCddbServer::FromSettings();
    int nMatch = 1; // which of several CDDB matches, counted from 1
};

// Takes --device, --image, --cddb HOST[:PORT], --cddb-http, --no-cddb and --match; false when
// szName is none of them (bTaken false) or its value is wrong (bTaken true, message said).
bool LCliCdTakeSourceOption(const std::string& szName, const std::string& szValue, LCliCdSource& src, bool& bTaken);
// Reads a subcommand's arguments: the options above; flags named in vFlags (set into
// vFlagsSeen); other "--name value" options through take (false after saying what is wrong);
// the rest into vPlain. False, having said why, on anything wrong.
bool LCliCdReadArgs(const std::string& szVerb, const std::vector<std::string>& vArgs, LCliCdSource& src,
                    const std::vector<std::string>& vFlags, std::vector<std::string>& vFlagsSeen,
                    const std::function<bool(const std::string&, const std::string&, bool&)>& take,
                    std::vector<std::string>& vPlain);
// Opens the drive or image; on failure says why and returns null.
std::shared_ptr<LCdDisc> LCliCdOpen(const LCliCdSource& src);
// The titles of the disc, telling on stderr where they came from when that was not CDDB.
LCdTitles LCliCdTitles(const LCdToc& toc, const LCliCdSource& src);

int LCliCdList(const std::vector<std::string>& vArgs);
int LCliCdRip(const std::vector<std::string>& vArgs);
int LCliCdBurn(const std::vector<std::string>& vArgs);
