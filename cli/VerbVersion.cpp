#include <cstdio>

#include "cli/LCliVerb.h"

static int RunVersion(const std::vector<std::string>&)
{
    std::printf("sonitra-cli 0.1\n");
    return CliDone;
}

static LCliVerb verbVersion("version", "print the version", "usage: sonitra-cli version", RunVersion);
