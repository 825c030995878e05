#include <cstdio>

#include "cli/LCliVerb.h"
#include "core/LVersion.h"

static int RunVersion(const std::vector<std::string>&)
{
    std::printf("sonitra-cli %s (%s)\n", LVersion::Number(), LVersion::Build());
    return CliDone;
}

static LCliVerb verbVersion("version", "print the version", "usage: sonitra-cli version\n       sonitra-cli --version",
                            RunVersion);
