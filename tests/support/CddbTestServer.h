// A CDDB server on 127.0.0.1 for the tests: answers cddbp or HTTP from a folder of entries in the
// standard layout (FOLDER/category/discid), or misbehaves in one of a few hostile ways.
#pragma once

#include <atomic>
#include <string>
#include <thread>

namespace cdtest {

class CddbTestServer
{
public:
    enum class Mode
    {
        Normal,
        Stall,    // accepts and never answers
        Garbage,  // binary noise, then closes
        Overlong, // an endless status line
        Drip,     // a valid greeting one byte at a time, slower than any deadline allows
    };

    CddbTestServer(const std::string& szFolder, bool bHttp, Mode mode = Mode::Normal);
    ~CddbTestServer();
    int Port() const { return nPort; }
    int Connections() const { return nConnections.load(); }

private:
    void Serve();
    void Handle(int fd);
    void HandleCddbp(int fd);
    void HandleHttp(int fd);
    std::string Answer(const std::string& szCommand) const;
    bool ReadLine(int fd, std::string& szLine);
    bool Send(int fd, const std::string& sz);

    std::string szFolder;
    bool bHttp;
    Mode mode;
    int fdListen = -1;
    int nPort = 0;
    std::atomic<bool> bStop{false};
    std::atomic<int> nConnections{0};
    std::thread thread;
};

} // namespace cdtest
