// A TCP connection read line by line, where every wait has a deadline and can be cancelled:
// a server that stalls or drips costs at most the time allowed, never a hang.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>

class LTcpStream
{
public:
    enum class ReadResult
    {
        Line,      // a line, without its CR LF
        Closed,    // the peer closed the connection (a last unterminated line is still returned as Line)
        TooLong,   // a line longer than allowed
        TimedOut,  // the deadline passed
        Cancelled, // *pbCancel became true
        Failed,    // a socket error
    };

    // pbCancel may be null. nTimeoutMs bounds each operation from Connect to the last read.
    LTcpStream(const std::atomic<bool>* pbCancel, int32_t nTimeoutMs);
    ~LTcpStream();
    LTcpStream(const LTcpStream&) = delete;
    LTcpStream& operator=(const LTcpStream&) = delete;

    // Starts the deadline anew (one deadline per request).
    void Restart();
    bool Connect(const std::string& szHost, int nPort);
    bool WriteText(const std::string& szText);
    ReadResult ReadLine(std::string& szLine, size_t nMaxLength);
    const std::string& GetError() const { return szError; }

private:
    // Waits for the socket; false with szError set on time-out, cancel or error.
    bool Wait(short nEvents, ReadResult& why);
    bool Fill(ReadResult& why);

    const std::atomic<bool>* pbCancel;
    int32_t nTimeoutMs;
    std::chrono::steady_clock::time_point deadline;
    int fd = -1;
    std::string szBuffer;
    size_t nBufferPos = 0;
    bool bEof = false;
    std::string szError;
};
