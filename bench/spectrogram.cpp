// How fast the spectrogram shows a long document: the full view of a 3-hour stereo document at
// 1600 columns, first with nothing analysed and again after an edit elsewhere (only the new
// segment is analysed), beside `sox IN -n spectrogram -x 1600` on the same audio in one run.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "core/LAudioCutTank.h"
#include "core/LCutListAudio.h"
#include "core/LSNKSegmentWriter.h"
#include "core/LSettings.h"
#include "formats/LSNKPCMFile16.h"
#include "dsp/LSpectroCache.h"
#include "dsp/LSpectroColumns.h"

extern char** environ;

namespace {
using Clock = std::chrono::steady_clock;

constexpr int32_t kRate = 44100;
constexpr int kChans = 2;
constexpr int32_t kLength = 3 * 3600 * kRate;
constexpr int kColumns = 1600;
constexpr int kRows = 256;

double Seconds(Clock::duration d)
{
    return std::chrono::duration<double>(d).count();
}

// Something like speech over hum: a gliding tone, a steady hum and a little noise.
void Fill(int32_t* p, int32_t sFrom, int32_t nFrames, uint32_t& nSeed)
{
    for (int32_t i = 0; i < nFrames; ++i) {
        const double t = static_cast<double>(sFrom + i) / kRate;
        const double fGlide = 600.0 + 400.0 * std::sin(2 * M_PI * t / 7.0);
        nSeed = nSeed * 1664525u + 1013904223u;
        const double fNoise = (static_cast<int32_t>(nSeed >> 16) - 32768) / 32768.0 * 300.0;
        const double v = 9000.0 * std::sin(2 * M_PI * fGlide * t) + 2000.0 * std::sin(2 * M_PI * 50.0 * t) + fNoise;
        const int32_t n16 = static_cast<int32_t>(std::lround(v));
        p[2 * i] = n16 * 16;
        p[2 * i + 1] = (n16 / 2) * 16;
    }
}

// The same audio into the document (through a segment writer) and into a 16-bit WAV for sox.
LCutListAudioPtr MakeDocumentAndWav(const std::string& szWav)
{
    LCutListAudioPtr pDoc(new LCutListAudio(kRate, kChans));
    LSoundSinkPtr pWriter(new LSNKSegmentWriter(pDoc.Get(), kRate, kChans));
    LSoundSinkPtr pWav(new LSNKPCMFile16(szWav, kRate, 0, kChans));
    constexpr int32_t kChunk = 1 << 16;
    std::vector<int32_t> v(static_cast<size_t>(kChunk) * kChans);
    uint32_t nSeed = 1;
    for (int32_t s = 0; s < kLength; s += kChunk) {
        const int32_t n = std::min(kChunk, kLength - s);
        Fill(v.data(), s, n, nSeed);
        pWriter->Write(v.data(), n);
        pWav->Write(v.data(), n);
    }
    if (!pWriter->Complete() || !pWav->Complete())
        std::fprintf(stderr, "spectrogram bench: the test audio could not be written\n");
    return pDoc;
}

double SoxSeconds(const std::string& szWav, const std::string& szPng)
{
    std::vector<std::string> vArgs{"sox", szWav, "-n", "spectrogram", "-x", std::to_string(kColumns), "-o", szPng};
    std::vector<char*> argv;
    for (std::string& s : vArgs)
        argv.push_back(s.data());
    argv.push_back(nullptr);
    const auto t0 = Clock::now();
    pid_t pid = 0;
    if (posix_spawnp(&pid, "sox", nullptr, nullptr, argv.data(), environ) != 0) {
        std::fprintf(stderr, "cannot run sox\n");
        std::exit(1);
    }
    int nStatus = 0;
    waitpid(pid, &nStatus, 0);
    if (!WIFEXITED(nStatus) || WEXITSTATUS(nStatus) != 0) {
        std::fprintf(stderr, "sox failed\n");
        std::exit(1);
    }
    return Seconds(Clock::now() - t0);
}

double ViewSeconds(const LCutListAudio& doc, std::vector<float>& vOut)
{
    LSpectroSettings settings; // a 2048 Hann window, log scale
    LSpectroColumns columns(settings);
    LSpectroFrame frame;
    for (int x = 0; x <= kColumns; ++x)
        frame.vEdges.push_back(static_cast<int64_t>(doc.GetLength()) * x / kColumns);
    frame.nRows = kRows;
    frame.nRate = kRate;
    frame.nChans = kChans;
    frame.bPerChannel = true;
    vOut.assign(frame.GetCells(), 0.0f);
    const auto t0 = Clock::now();
    if (!columns.FromDocument(doc, nullptr, frame, vOut.data(), nullptr)) {
        std::fprintf(stderr, "the view was not computed\n");
        std::exit(1);
    }
    return Seconds(Clock::now() - t0);
}
} // namespace

int main()
{
    const std::string szFolder = std::filesystem::temp_directory_path().string() + "/sonitra-bench-" + std::to_string(getpid());
    std::filesystem::create_directories(szFolder);
    LSettings::SetString("Folders", "WorkingFolder", szFolder + "/tank");
    const std::string szWav = szFolder + "/long.wav";
    std::printf("writing 3 hours of stereo audio...\n");
    std::fflush(stdout);
    LCutListAudioPtr pDoc = MakeDocumentAndWav(szWav);

    std::vector<float> vFirst, vAgain;
    const int64_t nBlocks0 = LSpectroCache::Instance().GetBlocksAnalysed();
    const double fFirst = ViewSeconds(*pDoc, vFirst);
    const int64_t nBlocks1 = LSpectroCache::Instance().GetBlocksAnalysed();
    // An edit elsewhere: ten seconds in the middle become new audio of their own.
    {
        LCutListAudioPtr pNew(new LCutListAudio(kRate, kChans));
        LSoundSinkPtr pWriter(new LSNKSegmentWriter(pNew.Get(), kRate, kChans));
        std::vector<int32_t> v(static_cast<size_t>(10 * kRate) * kChans);
        uint32_t nSeed = 7;
        Fill(v.data(), kLength / 2, 10 * kRate, nSeed);
        for (int32_t& n : v)
            n /= 2;
        pWriter->Write(v.data(), 10 * kRate);
        pWriter->Complete();
        pWriter = nullptr;
        pDoc->Replace(kLength / 2, kLength / 2 + 10 * kRate, *pNew);
    }
    const double fAgain = ViewSeconds(*pDoc, vAgain);
    const int64_t nBlocks2 = LSpectroCache::Instance().GetBlocksAnalysed();
    const double fSox = SoxSeconds(szWav, szFolder + "/sox.png");

    std::printf("spectrogram of a 3-hour stereo document, %d columns x %d rows per channel:\n", kColumns, kRows);
    std::printf("  first view        %8.2f s  (%lld blocks analysed)\n", fFirst, static_cast<long long>(nBlocks1 - nBlocks0));
    std::printf("  after an edit     %8.3f s  (%lld blocks analysed)\n", fAgain, static_cast<long long>(nBlocks2 - nBlocks1));
    std::printf("  sox spectrogram   %8.2f s\n", fSox);
    std::printf("  first / sox       %8.3f (goal <= 1.0)\n", fFirst / fSox);
    std::printf("  again / sox       %8.4f (goal: a small fraction)\n", fAgain / fSox);
    pDoc = nullptr;
    std::filesystem::remove_all(szFolder);
    return 0;
}
