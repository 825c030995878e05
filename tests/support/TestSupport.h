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

std::vector<uint8_t> ReadFileBytes(const std::string& szPath);
void WriteFileBytes(const std::string& szPath, const std::vector<uint8_t>& vBytes);

// Writes a canonical 44-byte-header PCM WAV (8 or 16 bits) of interleaved samples in file units.
void WriteSimpleWav(const std::string& szPath, int nRate, int nChans, int nBits, const std::vector<int32_t>& vFileSamples);

// The 16-bit samples of a WAV file's "data" chunk, read by walking its chunks; empty without one.
std::vector<int16_t> ReadWavSamples16(const std::string& szPath);

// A sine in 16-bit file units.
std::vector<int32_t> Sine16(int nRate, int nChans, int nFrames, double fHz, double fAmplitude = 16000.0);

} // namespace testsupport
