#include "ui/cd/LCdProcess.h"

#include <thread>

#include "work/LSignalObject.h"

LCdLookupProcess::LCdLookupProcess(const LCdToc& t, const LCddbServer& s, int n)
    : LProgressDialog("Looking up titles"), toc(t), server(s), nChoice(n)
{
    titles = LCdTitles::FromDisc(toc);
}

int32_t LCdLookupProcess::Process()
{
    SetText("Asking " + server.szHost + " for the disc's titles", 0);
    SetText("Please wait...", 1);
    std::atomic<bool> bCancel{false};
    LSignalObject done;
    LCdTitles found;
    std::vector<LCddbMatch> vOffered;
    const int nPick = nChoice;
    std::thread worker([&] {
        found = LCd::LookUpTitles(toc, server, &bCancel, [&](const std::vector<LCddbMatch>& v) {
            vOffered = v;
            return nPick >= 0 && static_cast<size_t>(nPick) < v.size() ? nPick : 0;
        });
        done.Set();
    });
    bool bCancelled = false;
    while (!done.IsSet() && !bCancelled)
        bCancelled = !WaitTimed(50);
    bCancel = true; // a cancelled lookup gives up within one wait of its socket
    worker.join();
    if (bCancelled) {
        titles.szMessage = "The title lookup was cancelled";
        return ResultCancelled;
    }
    titles = found;
    vMatches = vOffered;
    return ResultDone;
}
