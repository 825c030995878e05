#include "support/CddbTestServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

namespace cdtest {

namespace {

std::string UrlDecode(const std::string& sz)
{
    std::string szOut;
    for (size_t i = 0; i < sz.size(); ++i) {
        if (sz[i] == '+')
            szOut += ' ';
        else if (sz[i] == '%' && i + 2 < sz.size())
            szOut += static_cast<char>(std::stoi(sz.substr(i + 1, 2), nullptr, 16)), i += 2;
        else
            szOut += sz[i];
    }
    return szOut;
}

std::vector<std::string> Words(const std::string& sz)
{
    std::istringstream in(sz);
    std::vector<std::string> v;
    for (std::string w; in >> w;)
        v.push_back(w);
    return v;
}

std::string FileText(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    std::stringstream ss;
    ss << in.rdbuf();
    return ss.str();
}

std::string DiscTitle(const std::string& szEntry)
{
    const size_t n = szEntry.find("DTITLE=");
    if (n == std::string::npos)
        return "";
    const size_t nEnd = szEntry.find('\n', n);
    return szEntry.substr(n + 7, nEnd == std::string::npos ? std::string::npos : nEnd - n - 7);
}

} // namespace

CddbTestServer::CddbTestServer(const std::string& folder, bool http, Mode m) : szFolder(folder), bHttp(http), mode(m)
{
    fdListen = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    addr.sin_port = 0;
    bind(fdListen, reinterpret_cast<sockaddr*>(&addr), sizeof addr);
    listen(fdListen, 8);
    socklen_t nLen = sizeof addr;
    getsockname(fdListen, reinterpret_cast<sockaddr*>(&addr), &nLen);
    nPort = ntohs(addr.sin_port);
    thread = std::thread([this] { Serve(); });
}

CddbTestServer::~CddbTestServer()
{
    bStop = true;
    thread.join();
    close(fdListen);
}

void CddbTestServer::Serve()
{
    while (!bStop) {
        pollfd p{fdListen, POLLIN, 0};
        if (poll(&p, 1, 20) <= 0)
            continue;
        const int fd = accept(fdListen, nullptr, nullptr);
        if (fd < 0)
            continue;
        ++nConnections;
        Handle(fd);
        close(fd);
    }
}

bool CddbTestServer::Send(int fd, const std::string& sz)
{
    return send(fd, sz.data(), sz.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(sz.size());
}

bool CddbTestServer::ReadLine(int fd, std::string& szLine)
{
    szLine.clear();
    char c = 0;
    while (!bStop) {
        pollfd p{fd, POLLIN, 0};
        if (poll(&p, 1, 20) <= 0)
            continue;
        if (recv(fd, &c, 1, 0) != 1)
            return false;
        if (c == '\n') {
            if (!szLine.empty() && szLine.back() == '\r')
                szLine.pop_back();
            return true;
        }
        szLine += c;
    }
    return false;
}

void CddbTestServer::Handle(int fd)
{
    switch (mode) {
    case Mode::Stall:
        while (!bStop)
            usleep(20000);
        return;
    case Mode::Garbage: {
        std::string sz = "\x89PNG\r\n\x1a\n";
        for (int i = 0; i < 3000; ++i)
            sz += static_cast<char>((i * 7919) & 0xFF);
        Send(fd, bHttp ? "HTTP/1.0 200 OK\r\n\r\n" + sz : sz);
        return;
    }
    case Mode::Overlong:
        Send(fd, bHttp ? "HTTP/1.0 200 OK\r\n\r\n211 " : "201 ");
        for (int i = 0; i < 400 && !bStop; ++i)
            if (!Send(fd, std::string(1000, 'A')))
                return;
        return;
    case Mode::Drip:
        for (char c : std::string("201 slow server ready\r\n")) {
            for (int i = 0; i < 25 && !bStop; ++i)
                usleep(20000);
            if (bStop || !Send(fd, std::string(1, c)))
                return;
        }
        return;
    case Mode::Normal:
        break;
    }
    if (bHttp)
        HandleHttp(fd);
    else
        HandleCddbp(fd);
}

void CddbTestServer::HandleCddbp(int fd)
{
    Send(fd, "201 test CDDBP server v1.0 ready\r\n");
    std::string szLine;
    while (ReadLine(fd, szLine)) {
        if (szLine.rfind("cddb hello", 0) == 0)
            Send(fd, "200 Hello and welcome\r\n");
        else if (szLine.rfind("proto", 0) == 0)
            Send(fd, "201 OK, CDDB protocol level now: 6\r\n");
        else if (szLine == "quit") {
            Send(fd, "230 Goodbye\r\n");
            return;
        } else
            Send(fd, Answer(szLine));
    }
}

void CddbTestServer::HandleHttp(int fd)
{
    std::string szRequest, szLine;
    if (!ReadLine(fd, szRequest))
        return;
    while (ReadLine(fd, szLine) && !szLine.empty()) {
    }
    const size_t nCmd = szRequest.find("cmd=");
    const size_t nEnd = szRequest.find('&', nCmd);
    if (szRequest.rfind("GET /~cddb/cddb.cgi?", 0) != 0 || nCmd == std::string::npos) {
        Send(fd, "HTTP/1.0 404 Not Found\r\n\r\n");
        return;
    }
    const std::string szCommand = UrlDecode(szRequest.substr(nCmd + 4, nEnd - nCmd - 4));
    Send(fd, "HTTP/1.0 200 OK\r\nContent-Type: text/plain; charset=UTF-8\r\n\r\n" + Answer(szCommand));
}

std::string CddbTestServer::Answer(const std::string& szCommand) const
{
    namespace fs = std::filesystem;
    const std::vector<std::string> v = Words(szCommand);
    if (v.size() >= 3 && v[0] == "cddb" && v[1] == "query") {
        std::vector<std::string> vMatches;
        std::error_code ec;
        for (const auto& cat : fs::directory_iterator(szFolder, ec))
            if (fs::exists(cat.path() / v[2]))
                vMatches.push_back(cat.path().filename().string() + " " + v[2] + " " + DiscTitle(FileText(cat.path() / v[2])));
        std::sort(vMatches.begin(), vMatches.end()); // in the order of their categories' names
        if (vMatches.empty())
            return "202 No match for disc ID " + v[2] + ".\r\n";
        if (vMatches.size() == 1)
            return "200 " + vMatches[0] + "\r\n";
        std::string sz = "211 Found inexact matches, list follows (until terminating `.')\r\n";
        for (const std::string& m : vMatches)
            sz += m + "\r\n";
        return sz + ".\r\n";
    }
    if (v.size() == 4 && v[0] == "cddb" && v[1] == "read") {
        const fs::path path = fs::path(szFolder) / v[2] / v[3];
        if (!fs::exists(path))
            return "401 " + v[2] + " " + v[3] + " No such CD entry in database.\r\n";
        std::string sz = "210 " + v[2] + " " + v[3] + " CD database entry follows (until terminating `.')\r\n";
        std::istringstream in(FileText(path));
        for (std::string szLine; std::getline(in, szLine);)
            sz += szLine + "\r\n";
        return sz + ".\r\n";
    }
    return "500 Command syntax error.\r\n";
}

} // namespace cdtest
