#include "support/TestSupport.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace testsupport {

TempDir::TempDir()
{
    std::string szTemplate = (std::filesystem::temp_directory_path() / "sonitra-test-XXXXXX").string();
    std::vector<char> buf(szTemplate.begin(), szTemplate.end());
    buf.push_back('\0');
    char* p = ::mkdtemp(buf.data());
    szPath = p ? p : "/tmp";
}

TempDir::~TempDir()
{
    std::error_code ec;
    if (szPath != "/tmp")
        std::filesystem::remove_all(szPath, ec);
}

int RunCommand(const std::string& szCommand, std::string* pOutput)
{
    FILE* f = ::popen(szCommand.c_str(), "r");
    if (!f)
        return -1;
    char buf[4096];
    size_t n;
    while ((n = std::fread(buf, 1, sizeof(buf), f)) > 0)
        if (pOutput)
            pOutput->append(buf, n);
    int status = ::pclose(f);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool HaveTool(const std::string& szName)
{
    return RunCommand("command -v " + szName + " >/dev/null 2>&1") == 0;
}

std::string Quote(const std::string& s)
{
    return "'" + s + "'";
}

int RunCli(const std::string& szArgs, std::string* pOutput, const std::string& szEnv)
{
    std::string szOut;
    const int nExit = RunCommand(szEnv + Quote(SONITRA_CLI_PATH) + " " + szArgs + " 2>&1 </dev/null", &szOut);
    if (pOutput)
        *pOutput = szOut;
    return nExit;
}

std::string PrivateHomes(const TempDir& dir)
{
    return "XDG_CONFIG_HOME=" + Quote(dir.File("config")) + " XDG_CACHE_HOME=" + Quote(dir.File("cache")) + " ";
}

std::string ReadText(const std::string& szPath)
{
    const std::vector<uint8_t> v = ReadFileBytes(szPath);
    return std::string(v.begin(), v.end());
}

std::vector<uint8_t> ReadFileBytes(const std::string& szPath)
{
    std::ifstream in(szPath, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void WriteFileBytes(const std::string& szPath, const std::vector<uint8_t>& vBytes)
{
    std::ofstream out(szPath, std::ios::binary);
    out.write(reinterpret_cast<const char*>(vBytes.data()), static_cast<std::streamsize>(vBytes.size()));
}

static void Put16(std::vector<uint8_t>& v, uint32_t x)
{
    v.push_back(x & 0xFF);
    v.push_back((x >> 8) & 0xFF);
}
static void Put32(std::vector<uint8_t>& v, uint32_t x)
{
    Put16(v, x & 0xFFFF);
    Put16(v, x >> 16);
}

void WriteSimpleWav(const std::string& szPath, int nRate, int nChans, int nBits, const std::vector<int32_t>& vFileSamples)
{
    const uint32_t nBytesPer = nBits / 8;
    const uint32_t nData = static_cast<uint32_t>(vFileSamples.size()) * nBytesPer;
    std::vector<uint8_t> v;
    for (char c : std::string("RIFF")) v.push_back(c);
    Put32(v, 36 + nData);
    for (char c : std::string("WAVEfmt ")) v.push_back(c);
    Put32(v, 16);
    Put16(v, 1);
    Put16(v, nChans);
    Put32(v, nRate);
    Put32(v, nRate * nChans * nBytesPer);
    Put16(v, nChans * nBytesPer);
    Put16(v, nBits);
    for (char c : std::string("data")) v.push_back(c);
    Put32(v, nData);
    for (int32_t s : vFileSamples) {
        if (nBits == 8)
            v.push_back(static_cast<uint8_t>(s));
        else
            Put16(v, static_cast<uint16_t>(s));
    }
    WriteFileBytes(szPath, v);
}

std::vector<int32_t> Sine16(int nRate, int nChans, int nFrames, double fHz, double fAmplitude)
{
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * nChans);
    for (int i = 0; i < nFrames; ++i)
        for (int c = 0; c < nChans; ++c)
            v[static_cast<size_t>(i) * nChans + c] =
                static_cast<int32_t>(std::lround(fAmplitude * std::sin(2.0 * M_PI * fHz * i / nRate + c)));
    return v;
}

std::vector<int16_t> ReadWavSamples16(const std::string& szPath, WavLayout* pLayout)
{
    const std::vector<uint8_t> v = ReadFileBytes(szPath);
    auto Le = [&](size_t i, int nBytes) {
        uint32_t n = 0;
        for (int k = nBytes - 1; k >= 0; --k)
            n = n << 8 | v[i + k];
        return n;
    };
    for (size_t i = 12; i + 8 <= v.size();) {
        const uint32_t nSize = Le(i + 4, 4);
        if (pLayout && std::memcmp(&v[i], "fmt ", 4) == 0 && i + 24 <= v.size())
            *pLayout = {static_cast<int>(Le(i + 12, 4)), static_cast<int>(Le(i + 10, 2)), static_cast<int>(Le(i + 22, 2))};
        if (std::memcmp(&v[i], "data", 4) == 0) {
            std::vector<int16_t> vOut;
            for (size_t k = i + 8; k + 1 < std::min<size_t>(v.size(), i + 8 + nSize); k += 2)
                vOut.push_back(static_cast<int16_t>(v[k] | v[k + 1] << 8));
            return vOut;
        }
        i += 8 + nSize + (nSize & 1);
    }
    return {};
}

} // namespace testsupport
