#include <cstdio>
#include <cstring>

#include "cli/LCliRawOptions.h"
#include "cli/LCliSetup.h"
#include "cli/LCliVerb.h"

namespace {
std::vector<const LCliVerb*>& Verbs()
{
    static std::vector<const LCliVerb*> v;
    return v;
}

void PrintHelp()
{
    std::printf("usage: sonitra-cli VERB [ARGS...]\n       sonitra-cli VERB --help\n\nverbs:\n");
    for (const LCliVerb* p : Verbs())
        std::printf("  %-10s %s\n", p->szName, p->szSummary);
    std::printf("\n%s\n", LCliRawOptions::kHelp);
}
} // namespace

LCliVerb::LCliVerb(const char* name, const char* summary, const char* usage, RunFn run)
    : szName(name), szSummary(summary), szUsage(usage), pfnRun(run)
{
    auto& v = Verbs();
    auto it = v.begin();
    while (it != v.end() && std::strcmp((*it)->szName, name) < 0)
        ++it;
    v.insert(it, this);
}

const std::vector<const LCliVerb*>& LCliVerb::All()
{
    return Verbs();
}

void LCliError(const std::string& szMessage)
{
    std::fprintf(stderr, "sonitra-cli: %s\n", szMessage.c_str());
}

int main(int argc, char** argv)
{
    if (argc < 2 || !std::strcmp(argv[1], "--help") || !std::strcmp(argv[1], "-h") || !std::strcmp(argv[1], "help")) {
        PrintHelp();
        return argc < 2 ? CliUsage : CliDone;
    }
    // "--version" as every command-line program takes it.
    const char* szVerb = std::strcmp(argv[1], "--version") ? argv[1] : "version";
    for (const LCliVerb* p : Verbs()) {
        if (std::strcmp(p->szName, szVerb) != 0)
            continue;
        std::vector<std::string> vArgs(argv + 2, argv + argc);
        for (const std::string& s : vArgs) {
            if (s == "--help" || s == "-h") {
                std::printf("%s\n\n%s\n", p->szUsage, LCliRawOptions::kHelp);
                return CliDone;
            }
        }
        LCliSetup setup;
        LCliRawOptions raw;
        if (!raw.Take(vArgs))
            return CliUsage;
        raw.Install();
        return p->pfnRun(vArgs);
    }
    LCliError(std::string("unknown verb '") + argv[1] + "' (try --help)");
    return CliUsage;
}
