// CD work behind the progress dialog: a body given as a function (writing an image, burning), and
// the title lookup, which waits for the server on a worker thread so the dialog stays live.
#pragma once

#include <atomic>
#include <functional>
#include <string>
#include <vector>

#include "cd/LCdTitles.h"
#include "work/LProgressDialog.h"

class LCdProcess : public LProgressDialog
{
public:
    LCdProcess(const std::string& szTitle, std::function<int32_t(LProgressDialog&)> fnBody)
        : LProgressDialog(szTitle), fnBody(std::move(fnBody))
    {
    }
    int32_t Process() override { return fnBody(*this); }

private:
    std::function<int32_t(LProgressDialog&)> fnBody;
};

class LCdLookupProcess : public LProgressDialog
{
public:
    // nChoice: which of several matches to take.
    LCdLookupProcess(const LCdToc& toc, const LCddbServer& server, int nChoice);
    int32_t Process() override;

    const LCdTitles& GetTitles() const { return titles; }
    // Every match the server offered (empty unless there were several).
    const std::vector<LCddbMatch>& GetMatches() const { return vMatches; }

private:
    LCdToc toc;
    LCddbServer server;
    int nChoice;
    LCdTitles titles;
    std::vector<LCddbMatch> vMatches;
};
