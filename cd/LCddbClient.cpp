#include "cd/LCddbClient.h"

#include <cctype>
#include <cstdlib>

#include "cd/LCddbDiscId.h"
#include "core/LSettings.h"
#include "core/LTrace.h"
#include "platform/engine/LTcpStream.h"

namespace {

const char kClientHello[] = "sonitra localhost Sonitra 1.10";

// Answers whose status says that lines follow up to ".".
bool HasList(int nCode)
{
    return nCode == 210 || nCode == 211;
}

// Reads the answer to a command: one status line, and its list when the status says so.
bool ReadAnswer(LTcpStream& tcp, std::vector<std::string>& vLines, std::string& szError)
{
    std::string szLine;
    for (;;) {
        const LTcpStream::ReadResult r = tcp.ReadLine(szLine, LCddbAnswer::kMaxLine);
        if (r != LTcpStream::ReadResult::Line) {
            szError = r == LTcpStream::ReadResult::Closed ? "the CDDB server closed the connection too early" : tcp.GetError();
            return false;
        }
        vLines.push_back(szLine);
        if (vLines.size() > LCddbAnswer::kMaxLines) {
            szError = "the CDDB server's answer is too long";
            return false;
        }
        if (vLines.size() == 1 && !HasList(LCddbAnswer::StatusCode(szLine)))
            return true;
        if (vLines.size() > 1 && szLine == ".")
            return true;
    }
}

// cddbp sends a status line for the greeting and the hello; 2xx means go on.
bool ExpectOk(LTcpStream& tcp, std::string& szError)
{
    std::string szLine;
    if (tcp.ReadLine(szLine, LCddbAnswer::kMaxLine) != LTcpStream::ReadResult::Line) {
        szError = tcp.GetError().empty() ? "the CDDB server closed the connection" : tcp.GetError();
        return false;
    }
    const int nCode = LCddbAnswer::StatusCode(szLine);
    if (nCode < 200 || nCode > 299) {
        szError = nCode < 0 ? "the server does not speak CDDB" : "the CDDB server answered: " + LCddbAnswer::CleanText(szLine);
        return false;
    }
    return true;
}

std::string UrlEncode(const std::string& sz)
{
    std::string szOut;
    static const char aHex[] = "0123456789ABCDEF";
    for (unsigned char c : sz) {
        if (std::isalnum(c) || c == '-' || c == '_' || c == '.' || c == '~')
            szOut += static_cast<char>(c);
        else if (c == ' ')
            szOut += '+';
        else
            szOut += std::string("%") + aHex[c >> 4] + aHex[c & 15];
    }
    return szOut;
}

} // namespace

LCddbServer LCddbServer::FromSettings()
{
    LCddbServer s;
    s.szHost = LSettings::GetString("CDDB", "Server", s.szHost);
    s.bHttp = LSettings::GetString("CDDB", "Protocol", "cddbp") == "http";
    s.nPort = LSettings::GetInt("CDDB", "Port", s.bHttp ? 80 : 8880);
    s.szPath = LSettings::GetString("CDDB", "HttpPath", s.szPath);
    s.nTimeoutMs = LSettings::GetInt("CDDB", "Timeout", 10) * 1000;
    s.bEnabled = LSettings::GetBool("CDDB", "Enabled", true);
    if (s.nPort <= 0 || s.nPort > 65535)
        s.nPort = s.bHttp ? 80 : 8880;
    if (s.nTimeoutMs <= 0)
        s.nTimeoutMs = 10000;
    return s;
}

void LCddbServer::Store() const
{
    LSettings::SetString("CDDB", "Server", szHost);
    LSettings::SetString("CDDB", "Protocol", bHttp ? "http" : "cddbp");
    LSettings::SetInt("CDDB", "Port", nPort);
    LSettings::SetString("CDDB", "HttpPath", szPath);
    LSettings::SetInt("CDDB", "Timeout", nTimeoutMs / 1000);
    LSettings::SetBool("CDDB", "Enabled", bEnabled);
}

bool LCddbServer::ParseAddress(const std::string& szAddress)
{
    const size_t nColon = szAddress.rfind(':');
    if (szAddress.empty() || nColon == 0)
        return false;
    if (nColon == std::string::npos) {
        szHost = szAddress;
        return true;
    }
    char* pEnd = nullptr;
    const long n = std::strtol(szAddress.c_str() + nColon + 1, &pEnd, 10);
    if (*pEnd != '\0' || n <= 0 || n > 65535)
        return false;
    szHost = szAddress.substr(0, nColon);
    nPort = static_cast<int>(n);
    return true;
}

LCddbClient::LCddbClient(const LCddbServer& s, const std::atomic<bool>* pb) : server(s), pbCancel(pb) {}

bool LCddbClient::CommandCddbp(const std::string& szCommand, std::vector<std::string>& vLines)
{
    LTcpStream tcp(pbCancel, server.nTimeoutMs);
    if (!tcp.Connect(server.szHost, server.nPort)) {
        szError = tcp.GetError();
        return false;
    }
    if (!ExpectOk(tcp, szError))
        return false;
    if (!tcp.WriteText(std::string("cddb hello ") + kClientHello + "\r\n") || !ExpectOk(tcp, szError))
        return szError.empty() ? (szError = tcp.GetError(), false) : false;
    // Level 6 answers in UTF-8; a server that refuses it still answers the level it knows.
    std::vector<std::string> vProto;
    if (!tcp.WriteText("proto 6\r\n") || !ReadAnswer(tcp, vProto, szError))
        return szError.empty() ? (szError = tcp.GetError(), false) : false;
    if (!tcp.WriteText(szCommand + "\r\n") || !ReadAnswer(tcp, vLines, szError))
        return szError.empty() ? (szError = tcp.GetError(), false) : false;
    tcp.WriteText("quit\r\n");
    return true;
}

bool LCddbClient::CommandHttp(const std::string& szCommand, std::vector<std::string>& vLines)
{
    LTcpStream tcp(pbCancel, server.nTimeoutMs);
    if (!tcp.Connect(server.szHost, server.nPort)) {
        szError = tcp.GetError();
        return false;
    }
    const std::string szRequest = "GET " + server.szPath + "?cmd=" + UrlEncode(szCommand) + "&hello=" +
                                  UrlEncode(kClientHello) + "&proto=6 HTTP/1.0\r\nHost: " + server.szHost +
                                  "\r\nUser-Agent: Sonitra\r\nConnection: close\r\n\r\n";
    if (!tcp.WriteText(szRequest)) {
        szError = tcp.GetError();
        return false;
    }
    std::string szLine;
    if (tcp.ReadLine(szLine, LCddbAnswer::kMaxLine) != LTcpStream::ReadResult::Line) {
        szError = tcp.GetError().empty() ? "the CDDB server closed the connection" : tcp.GetError();
        return false;
    }
    if (szLine.compare(0, 5, "HTTP/") != 0 || szLine.find(" 200") == std::string::npos) {
        szError = "the CDDB server answered: " + LCddbAnswer::CleanText(szLine.substr(0, 80));
        return false;
    }
    for (;;) { // the headers, up to the empty line
        if (tcp.ReadLine(szLine, LCddbAnswer::kMaxLine) != LTcpStream::ReadResult::Line) {
            szError = tcp.GetError().empty() ? "the CDDB server's answer has no body" : tcp.GetError();
            return false;
        }
        if (szLine.empty())
            break;
    }
    return ReadAnswer(tcp, vLines, szError);
}

bool LCddbClient::Command(const std::string& szCommand, std::vector<std::string>& vLines)
{
    szError.clear();
    vLines.clear();
    const bool bOk = server.bHttp ? CommandHttp(szCommand, vLines) : CommandCddbp(szCommand, vLines);
    if (!bOk && szError.empty())
        szError = "the CDDB server could not be asked";
    if (!bOk)
        LTRACE("LCddbClient::Command %s", szError.c_str());
    return bOk;
}

bool LCddbClient::Query(const LCdToc& toc, std::vector<LCddbMatch>& vMatches)
{
    vMatches.clear();
    std::vector<std::string> vLines;
    if (!Command("cddb query " + LCddb::QueryArguments(toc), vLines))
        return false;
    return LCddbAnswer::ParseQuery(vLines, vMatches, szError);
}

bool LCddbClient::Read(const LCddbMatch& match, size_t nTracks, LCddbEntry& entry)
{
    szWarning.clear();
    std::vector<std::string> vLines;
    if (!Command("cddb read " + match.szCategory + " " + match.szDiscId, vLines))
        return false;
    return LCddbAnswer::ParseEntry(vLines, nTracks, entry, szError, szWarning);
}
