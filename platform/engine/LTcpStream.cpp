#include "platform/engine/LTcpStream.h"

#include <fcntl.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "core/LTrace.h"

namespace {
constexpr int kSliceMs = 50; // how often a wait looks at the cancel flag
}

LTcpStream::LTcpStream(const std::atomic<bool>* pb, int32_t nTimeout) : pbCancel(pb), nTimeoutMs(nTimeout > 0 ? nTimeout : 1)
{
    Restart();
}

LTcpStream::~LTcpStream()
{
    if (fd >= 0)
        close(fd);
}

void LTcpStream::Restart()
{
    deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(nTimeoutMs);
}

bool LTcpStream::Wait(short nEvents, ReadResult& why)
{
    for (;;) {
        if (pbCancel && pbCancel->load()) {
            szError = "cancelled";
            why = ReadResult::Cancelled;
            return false;
        }
        const auto nLeft = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
        if (nLeft <= 0) {
            szError = "the server did not answer in time";
            why = ReadResult::TimedOut;
            return false;
        }
        pollfd p{fd, nEvents, 0};
        const int n = poll(&p, 1, static_cast<int>(nLeft < kSliceMs ? nLeft : kSliceMs));
        if (n > 0)
            return true;
        if (n < 0 && errno != EINTR) {
            szError = std::string("poll failed: ") + std::strerror(errno);
            why = ReadResult::Failed;
            return false;
        }
    }
}

bool LTcpStream::Connect(const std::string& szHost, int nPort)
{
    addrinfo hints{};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* pList = nullptr;
    const std::string szPort = std::to_string(nPort);
    if (getaddrinfo(szHost.c_str(), szPort.c_str(), &hints, &pList) != 0 || !pList) {
        szError = "cannot find the server " + szHost;
        return false;
    }
    ReadResult why;
    bool bConnected = false;
    for (addrinfo* p = pList; p && !bConnected; p = p->ai_next) {
        fd = socket(p->ai_family, p->ai_socktype | SOCK_CLOEXEC, p->ai_protocol);
        if (fd < 0)
            continue;
        fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
        int nError = connect(fd, p->ai_addr, p->ai_addrlen) == 0 ? 0 : errno;
        if (nError == EINPROGRESS && Wait(POLLOUT, why)) {
            socklen_t nLen = sizeof nError;
            getsockopt(fd, SOL_SOCKET, SO_ERROR, &nError, &nLen);
        }
        bConnected = nError == 0;
        if (!bConnected) {
            close(fd);
            fd = -1;
        }
    }
    freeaddrinfo(pList);
    if (!bConnected && szError.empty())
        szError = "cannot connect to " + szHost + ":" + szPort;
    if (!bConnected)
        LTRACE("LTcpStream::Connect %s", szError.c_str());
    return bConnected;
}

bool LTcpStream::WriteText(const std::string& szText)
{
    size_t nDone = 0;
    ReadResult why;
    while (fd >= 0 && nDone < szText.size()) {
        const ssize_t n = send(fd, szText.data() + nDone, szText.size() - nDone, MSG_NOSIGNAL);
        if (n > 0) {
            nDone += static_cast<size_t>(n);
        } else if (n < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)) {
            if (!Wait(POLLOUT, why))
                return false;
        } else {
            szError = "the server closed the connection";
            return false;
        }
    }
    return fd >= 0;
}

bool LTcpStream::Fill(ReadResult& why)
{
    if (!Wait(POLLIN, why))
        return false;
    char aBuf[4096];
    const ssize_t n = recv(fd, aBuf, sizeof aBuf, 0);
    if (n > 0) {
        szBuffer.append(aBuf, static_cast<size_t>(n));
    } else if (n == 0) {
        bEof = true;
    } else if (errno != EAGAIN && errno != EWOULDBLOCK && errno != EINTR) {
        szError = std::string("cannot read from the server: ") + std::strerror(errno);
        why = ReadResult::Failed;
        return false;
    }
    return true;
}

LTcpStream::ReadResult LTcpStream::ReadLine(std::string& szLine, size_t nMaxLength)
{
    if (fd < 0)
        return ReadResult::Failed;
    for (;;) {
        const size_t nEnd = szBuffer.find('\n', nBufferPos);
        if (nEnd != std::string::npos || (bEof && nBufferPos < szBuffer.size())) {
            const size_t nStop = nEnd == std::string::npos ? szBuffer.size() : nEnd;
            szLine.assign(szBuffer, nBufferPos, nStop - nBufferPos);
            if (!szLine.empty() && szLine.back() == '\r')
                szLine.pop_back();
            nBufferPos = nEnd == std::string::npos ? szBuffer.size() : nEnd + 1;
            if (szLine.size() > nMaxLength) {
                szError = "the server sent an overlong line";
                return ReadResult::TooLong;
            }
            return ReadResult::Line;
        }
        if (bEof)
            return ReadResult::Closed;
        if (szBuffer.size() - nBufferPos > nMaxLength + 2) {
            szError = "the server sent an overlong line";
            return ReadResult::TooLong;
        }
        szBuffer.erase(0, nBufferPos);
        nBufferPos = 0;
        ReadResult why = ReadResult::Failed;
        if (!Fill(why))
            return why;
    }
}
