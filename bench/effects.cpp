// Effect speed beside sox, and memory on long documents.
//
//   bench_effects [--minutes N] [--repeat N] [--keep DIR]
//                                              echo, reverb, high-pass, compressor, normalize and
//                                              reverse on a stereo file of N minutes (default 10),
//                                              file to file, each beside the nearest sox effect,
//                                              alternating N times (default 3) and keeping the best
//                                              of each; prints the ratio of wall times (goal: <= 1.0)
//   bench_effects --memory [--hours N]         every streaming effect and reverse on a stereo
//                                              document of N hours (default 2) made of sparse
//                                              segments; prints the peak resident memory (goal:
//                                              under 100 MB)
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "core/LAudioCutTank.h"
#include "core/LCutListAudio.h"
#include "work/LCutListAudioLoadSource.h"
#include "core/LSNKSegmentWriter.h"
#include "core/LSettings.h"
#include "dsp/effects/LEffectRunner.h"
#include "formats/LAudioFile.h"
#include "work/LProgressDialog.h"

extern char** environ;

namespace {

using Clock = std::chrono::steady_clock;

// Music-like test audio: two tones and noise under a slow swell, so dynamics have work to do.
class LSRCBenchSignal : public LSoundSourceBase
{
public:
    LSRCBenchSignal(int32_t nFrames) : LSoundSourceBase(44100, 2, 0x7FFF0), sLength(nFrames) {}
    void Read(int32_t* p, int32_t n) override
    {
        for (int32_t i = 0; i < n; ++i, ++sPos) {
            nSeed = nSeed * 1664525u + 1013904223u;
            const double t = sPos / 44100.0;
            const double fSwell = 0.25 + 0.2 * std::sin(t * 0.7);
            const double fNoise = (static_cast<int32_t>(nSeed) >> 8) / 8388608.0;
            const double l = fSwell * (0.6 * std::sin(t * 2764.6) + 0.3 * fNoise);
            const double r = fSwell * (0.6 * std::sin(t * 3455.8) + 0.3 * fNoise);
            p[2 * i] = sPos < sLength ? static_cast<int32_t>(l * 0x7FFF0) : 0;
            p[2 * i + 1] = sPos < sLength ? static_cast<int32_t>(r * 0x7FFF0) : 0;
        }
    }
    int32_t GetPosition() override { return sPos; }
    int32_t GetLength() override { return sLength; }
    void SetPosition(int32_t s) override { sPos = s; }

private:
    int32_t sLength;
    int32_t sPos = 0;
    uint32_t nSeed = 12345;
};

class BenchDialog : public LProgressDialog
{
public:
    BenchDialog() : LProgressDialog("bench") {}
    int32_t Process() override { return 0; }
};

double Seconds(Clock::time_point t0)
{
    return std::chrono::duration<double>(Clock::now() - t0).count();
}

long PeakRssKb()
{
    rusage ru{};
    getrusage(RUSAGE_SELF, &ru);
    return ru.ru_maxrss;
}

// Runs a program with its arguments and waits; -1 when it could not run or failed.
double TimeCommand(const std::vector<std::string>& vArgs)
{
    std::vector<char*> vArgv;
    for (const std::string& s : vArgs)
        vArgv.push_back(const_cast<char*>(s.c_str()));
    vArgv.push_back(nullptr);
    const auto t0 = Clock::now();
    pid_t pid = 0;
    if (posix_spawnp(&pid, vArgv[0], nullptr, nullptr, vArgv.data(), environ) != 0)
        return -1;
    int nStatus = 0;
    if (waitpid(pid, &nStatus, 0) != pid || !WIFEXITED(nStatus) || WEXITSTATUS(nStatus) != 0)
        return -1;
    return Seconds(t0);
}

// What `sonitra-cli effect IN OUT NAME` does: load, apply, save.
double TimeOurs(const std::string& szIn, const std::string& szOut, const char* szName, const LEffectArgs& args)
{
    const auto t0 = Clock::now();
    const LEffectInfo* pInfo = LEffectCatalog::ByCliName(szName);
    LSoundSourcePtr pSrc = LAudioFile::OpenSource(szIn);
    if (!pInfo || pSrc->IsError())
        return -1;
    LCutListAudioPtr pDoc(new LCutListAudio(pSrc->GetSampleRate(), pSrc->GetChannels()));
    BenchDialog dlg;
    LCutListAudioLoadSource load("Loading", pDoc.Get(), pSrc.Get());
    if (load.RunInside(dlg) != 0)
        return -1;
    const double fLoaded = Seconds(t0);
    if (LEffectRunner::Apply(dlg, *pInfo, pDoc.Get(), 0, pDoc->GetLength(), args) != 0)
        return -1;
    const double fApplied = Seconds(t0);
    LSoundSourcePtr pOut = pDoc->OpenSource();
    if (LAudioFile::Save(dlg, "Saving", pOut.Get(), szOut, pDoc->GetSampleRate(), pDoc->GetChannels(), LAudioEncoding()) != 0)
        return -1;
    if (std::getenv("SONITRA_BENCH_PHASES"))
        std::printf("  load %.2f  apply %.2f  save %.2f\n", fLoaded, fApplied - fLoaded, Seconds(t0) - fApplied);
    return Seconds(t0);
}

struct Case
{
    const char* szName;
    std::vector<std::pair<std::string, int32_t>> vValues;
    std::vector<std::string> vSox;
};

int RunSpeed(const std::string& szDir, int nMinutes, int nRepeat)
{
    const std::string szIn = szDir + "/in.wav";
    {
        BenchDialog dlg;
        LSoundSourcePtr pSig(new LSRCBenchSignal(nMinutes * 60 * 44100));
        if (LAudioFile::Save(dlg, "Writing", pSig.Get(), szIn, 44100, 2, LAudioEncoding()) != 0) {
            std::fprintf(stderr, "bench_effects: cannot write %s\n", szIn.c_str());
            return 2;
        }
    }
    const std::vector<Case> vCases = {
        {"echo", {{"EchoTime", 800}, {"EchoGain", 50}}, {"echo", "1", "1", "800", "0.5"}},
        {"reverb", {{"ReverbTime", 50}, {"ReverbLevel", 50}}, {"reverb"}},
        {"high-pass-filter", {{"LowCutFreq", 250}}, {"highpass", "-1", "250"}},
        {"dynamic-range-compressor",
         {{"CompressorThreshold", -20}, {"CompressorRatio", 2}},
         {"compand", "0.01,0.2", "-60,-60,-20,-20,0,-10"}},
        {"normalize", {{"NormalizePeakLevel", 100}}, {"norm"}},
        {"reverse", {}, {"reverse"}},
        // Our curve is one long FIR filter; sox's nearest is a chain of peaking bands.
        {"equalizer", {}, {"equalizer", "100", "1q", "+3", "equalizer", "1000", "1q", "-3", "equalizer", "8000", "1q", "+3"}},
    };
    std::printf("%d-minute stereo 44.1 kHz 16-bit file, file to file\n", nMinutes);
    std::printf("%-26s %10s %10s %8s\n", "effect", "sonitra s", "sox s", "ratio");
    bool bAllMet = true;
    for (const Case& c : vCases) {
        LEffectArgs args;
        for (const auto& kv : c.vValues)
            args.mapValues[kv.first] = kv.second;
        std::vector<std::string> vSox = {"sox", "-V1", szIn, szDir + "/sox.wav"};
        vSox.insert(vSox.end(), c.vSox.begin(), c.vSox.end());
        // The machine is shared: the best of a few alternating runs is the fairest figure.
        double fOurs = 1e30, fSox = 1e30;
        for (int k = 0; k < nRepeat; ++k) {
            const double fO = TimeOurs(szIn, szDir + "/ours.wav", c.szName, args);
            const double fS = TimeCommand(vSox);
            fOurs = fO < 0 || fOurs < 0 ? -1 : std::min(fOurs, fO);
            fSox = fS < 0 || fSox < 0 ? -1 : std::min(fSox, fS);
        }
        if (fOurs < 0 || fSox < 0) {
            std::printf("%-26s %10s\n", c.szName, fOurs < 0 ? "failed" : "sox failed");
            bAllMet = false;
            continue;
        }
        const double fRatio = fOurs / fSox;
        bAllMet = bAllMet && fRatio <= 1.0;
        std::printf("%-26s %10.2f %10.2f %8.2f\n", c.szName, fOurs, fSox, fRatio);
        std::fflush(stdout);
    }
    std::printf("peak resident memory: %.1f MB\n", PeakRssKb() / 1024.0);
    std::printf(bAllMet ? "every ratio <= 1.0\n" : "some ratio above 1.0\n");
    return 0;
}

// A document of nHours made of one 10-second segment reused with silence between its copies,
// so it costs little disk while every effect still reads and writes the full length.
LCutListAudioPtr MakeLongDocument(int nHours)
{
    LCutListAudioPtr pPiece(new LCutListAudio(44100, 2));
    {
        BenchDialog dlg;
        LSoundSourcePtr pSig(new LSRCBenchSignal(10 * 44100));
        LCutListAudioLoadSource load("piece", pPiece.Get(), pSig.Get());
        load.RunInside(dlg);
    }
    LCutListAudioPtr pDoc(new LCutListAudio(44100, 2));
    const int32_t nTotal = nHours * 3600 * 44100;
    while (pDoc->GetLength() + 20 * 44100 <= nTotal) {
        pDoc->Insert(pDoc->GetLength(), *pPiece);
        pDoc->InsertSilence(pDoc->GetLength(), 10 * 44100);
    }
    pDoc->InsertSilence(pDoc->GetLength(), nTotal - pDoc->GetLength());
    return pDoc;
}

int RunMemory(int nHours)
{
    LCutListAudioPtr pDoc = MakeLongDocument(nHours);
    std::printf("%d-hour stereo document: %d frames in %zu cuts\n", nHours, pDoc->GetLength(), pDoc->GetCutCount());
    std::printf("%-26s %8s %14s\n", "effect", "seconds", "peak RSS MB");
    const char* aszNames[] = {"high-pass-filter", "echo", "reverb", "equalizer", "noise-reduction",
                              "dynamic-range-compressor", "envelope", "fade-in", "fade-out", "reverse",
                              "dcoffset-correction", "automatic-gain-control", "normalize"};
    long nWorst = 0;
    for (const char* szName : aszNames) {
        // Each effect works on its own copy of the list, so every one sees the same input.
        LCutListAudioPtr pWork(new LCutListAudio(*pDoc));
        BenchDialog dlg;
        const auto t0 = Clock::now();
        const int32_t nResult =
            LEffectRunner::Apply(dlg, *LEffectCatalog::ByCliName(szName), pWork.Get(), 0, pWork->GetLength(), {});
        const double fSec = Seconds(t0);
        pWork.Reset(); // releases the new segment
        nWorst = std::max(nWorst, PeakRssKb());
        std::printf("%-26s %8.1f %14.1f%s\n", szName, fSec, PeakRssKb() / 1024.0, nResult == 0 ? "" : "  (not done)");
        std::fflush(stdout);
    }
    std::printf("peak resident memory: %.1f MB (%s 100 MB)\n", nWorst / 1024.0, nWorst < 100 * 1024 ? "under" : "OVER");
    return nWorst < 100 * 1024 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    bool bMemory = false;
    int nMinutes = 10;
    int nHours = 2;
    int nRepeat = 3;
    std::string szKeep;
    for (int i = 1; i < argc; ++i) {
        if (!std::strcmp(argv[i], "--memory"))
            bMemory = true;
        else if (!std::strcmp(argv[i], "--minutes") && i + 1 < argc)
            nMinutes = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--hours") && i + 1 < argc)
            nHours = std::atoi(argv[++i]);
        else if (!std::strcmp(argv[i], "--repeat") && i + 1 < argc)
            nRepeat = std::max(std::atoi(argv[++i]), 1);
        else if (!std::strcmp(argv[i], "--keep") && i + 1 < argc)
            szKeep = argv[++i];
    }
    const std::string szDir =
        szKeep.empty() ? (std::filesystem::temp_directory_path() / ("sonitra-bench-effects-" + std::to_string(getpid()))).string()
                       : szKeep;
    std::filesystem::create_directories(szDir + "/segments");
    LSettings::SetString("Folders", "WorkingFolder", szDir + "/segments");
    const int nResult = bMemory ? RunMemory(std::max(nHours, 1)) : RunSpeed(szDir, std::max(nMinutes, 1), nRepeat);
    if (szKeep.empty()) {
        std::error_code ec;
        std::filesystem::remove_all(szDir, ec);
    }
    return nResult;
}
