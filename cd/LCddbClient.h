// Asks a CDDB server for the titles of a disc, over its own protocol (cddbp) or over HTTP.
// Every request has a deadline and can be cancelled from another thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "cd/LCdToc.h"
#include "cd/LCddbAnswer.h"

struct LCddbServer
{
    std::string szHost = "gnudb.gnudb.org";
    int nPort = 8880;
    bool bHttp = false;
    std::string szPath = "/~cddb/cddb.cgi"; // HTTP only
    int32_t nTimeoutMs = 10000;
    bool bEnabled = true;

    // Section "CDDB": "Server", "Port", "Protocol" ("cddbp" or "http"), "HttpPath", "Timeout"
    // (seconds), "Enabled".
    static LCddbServer FromSettings();
    void Store() const;
    // "host:port" as given on a command line; the protocol is kept.
    bool ParseAddress(const std::string& szAddress);
};

class LCddbClient
{
public:
    LCddbClient(const LCddbServer& server, const std::atomic<bool>* pbCancel);

    // The matches for a disc; an empty list when the server knows none. False on any failure.
    bool Query(const LCdToc& toc, std::vector<LCddbMatch>& vMatches);
    bool Read(const LCddbMatch& match, size_t nTracks, LCddbEntry& entry);

    // Why the last call failed (for the user), and what the last entry lacked.
    const std::string& GetError() const { return szError; }
    const std::string& GetWarning() const { return szWarning; }

private:
    // Runs one command and collects its answer: the status line, and for a list the lines to ".".
    bool Command(const std::string& szCommand, std::vector<std::string>& vLines);
    bool CommandCddbp(const std::string& szCommand, std::vector<std::string>& vLines);
    bool CommandHttp(const std::string& szCommand, std::vector<std::string>& vLines);

    LCddbServer server;
    const std::atomic<bool>* pbCancel;
    std::string szError;
    std::string szWarning;
};
