// Helpers shared by the test programs.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace testsupport {

// A fresh folder under the system's temporary folder, removed with its contents on destruction.
class TempDir
{
public:
    TempDir();
    ~TempDir();
    const std::string& Path() const { return szPath; }
    std::string File(const std::string& szName) const { return szPath + "/" + szName; }

private:
    std::string szPath;
};

// Runs a command line through the shell; returns its exit status and, if asked, its output.
int RunCommand(const std::string& szCommand, std::string* pOutput = nullptr);
bool HaveTool(const std::string& szName);
std::string Quote(const std::string& s);

// Runs sonitra-cli with szArgs (quoted by the caller), stdin closed; its output and errors
// together go to *pOutput. szEnv ("NAME=value ... ") goes in front.
int RunCli(const std::string& szArgs, std::string* pOutput = nullptr, const std::string& szEnv = "");
// The environment (ending in a space) that keeps the tool's settings and working files inside dir.
std::string PrivateHomes(const TempDir& dir);

std::vector<uint8_t> ReadFileBytes(const std::string& szPath);
std::string ReadText(const std::string& szPath);
void WriteFileBytes(const std::string& szPath, const std::vector<uint8_t>& vBytes);

// Writes a canonical 44-byte-header PCM WAV (8 or 16 bits) of interleaved samples in file units.
void WriteSimpleWav(const std::string& szPath, int nRate, int nChans, int nBits, const std::vector<int32_t>& vFileSamples);

// The 16-bit samples of a WAV file's "data" chunk, read by walking its chunks; empty without one.
// The layout its "fmt " chunk gives goes to *pLayout.
struct WavLayout
{
    int nRate = 0, nChans = 0, nBits = 0;
};
std::vector<int16_t> ReadWavSamples16(const std::string& szPath, WavLayout* pLayout = nullptr);

// A sine in 16-bit file units.
std::vector<int32_t> Sine16(int nRate, int nChans, int nFrames, double fHz, double fAmplitude = 16000.0);

} // namespace testsupport
