// How fast the waveform display redraws a long document: a 3-hour stereo document, the detail
// view at full zoom-out (from the overview files) and after a scroll by half a window, each
// beside `cat` reading the same overview bytes in the same run.
#include <QApplication>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "core/LAudioCutTank.h"
#include "core/LCutListAudio.h"
#include "core/LSettings.h"
#include "platform/qtcore/LQtNotifyPoster.h"
#include "ui/LEdWaveWindow.h"
#include "ui/LWaveContentOf.h"

extern char** environ;

namespace {
using Clock = std::chrono::steady_clock;

constexpr int32_t kRate = 44100;
constexpr int kChans = 2;
constexpr int32_t kLength = 3 * 3600 * kRate;
constexpr int kColumns = 1600;
constexpr int kRuns = 7;

double Ms(Clock::duration d)
{
    return std::chrono::duration<double, std::milli>(d).count();
}

// Best of several runs of `cat FILE > /dev/null`, in milliseconds.
double CatMs(const std::string& szFile)
{
    double fBest = 1e9;
    for (int i = 0; i < kRuns; ++i) {
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
        char szCat[] = "cat";
        std::vector<char> vPath(szFile.begin(), szFile.end());
        vPath.push_back(0);
        char* argv[] = {szCat, vPath.data(), nullptr};
        const auto t0 = Clock::now();
        pid_t pid = 0;
        if (posix_spawnp(&pid, "cat", &actions, nullptr, argv, environ) != 0) {
            std::fprintf(stderr, "cannot run cat\n");
            std::exit(1);
        }
        int nStatus = 0;
        waitpid(pid, &nStatus, 0);
        fBest = std::min(fBest, Ms(Clock::now() - t0));
        posix_spawn_file_actions_destroy(&actions);
    }
    return fBest;
}

// Asks the display for a view and waits until its worker has drawn it.
double DrawMs(LEdWaveWindow& w, int32_t sStart, int32_t sLength)
{
    const auto t0 = Clock::now();
    w.SetView(sStart, sLength);
    while (!w.IsDrawn())
        std::this_thread::yield();
    return Ms(Clock::now() - t0);
}

// An overview that looks like music: a slow envelope with some noise on it.
void WriteOverview(const std::string& szPath, int64_t nRecords)
{
    std::vector<uint8_t> v(static_cast<size_t>(nRecords) * kChans * 2);
    uint32_t nSeed = 12345;
    for (int64_t k = 0; k < nRecords; ++k) {
        nSeed = nSeed * 1664525u + 1013904223u;
        const int nBase = static_cast<int>(120 + 100 * ((k / 900) % 7) / 7);
        for (int c = 0; c < kChans * 2; ++c)
            v[k * kChans * 2 + c] = static_cast<uint8_t>(std::min(255, nBase + static_cast<int>((nSeed >> (8 + c)) & 31)));
    }
    std::ofstream(szPath, std::ios::binary).write(reinterpret_cast<const char*>(v.data()), static_cast<std::streamsize>(v.size()));
}

// One segment of three hours (the samples as a sparse file, the overview written out to szGrf)
// in an edited document: twenty short cuts removed along the way.
LCutListAudioPtr MakeEditedDocument(std::string& szGrf)
{
    LAudioCutTank& tank = LAudioCutTank::Instance();
    const uint16_t nRef = tank.GetNewRefAndIncRef();
    {
        std::ofstream(tank.GetAudFilePath(nRef), std::ios::binary);
        std::filesystem::resize_file(tank.GetAudFilePath(nRef), static_cast<uintmax_t>(kLength) * kChans * 4);
    }
    const int64_t nRecords = (static_cast<int64_t>(kLength) + 255) / 256;
    szGrf = tank.GetGrfFilePath(nRef);
    WriteOverview(szGrf, nRecords);
    LCutListAudioPtr pDoc(new LCutListAudio(kRate, kChans));
    pDoc->AppendCut(LAudioCut::Adopt(nRef, kLength, kGainUnity, 0));
    for (int i = 20; i >= 1; --i)
        pDoc->EfDelete(i * (kLength / 21), i * (kLength / 21) + kRate / 2);
    return pDoc;
}

struct Figures
{
    double fFull = 1e9;
    double fCatFull = 0;
    double fScroll = 1e9;
    double fCatHalf = 0;
};

// Full zoom-out: every overview byte of the document. Alternating lengths force a full redraw.
// False when the picture is not the wave.
bool MeasureFullView(LEdWaveWindow& w, int32_t sLength, const std::string& szGrf, Figures& fig)
{
    for (int i = 0; i < kRuns; ++i)
        fig.fFull = std::min(fig.fFull, DrawMs(w, 0, sLength - (i & 1)));
    fig.fCatFull = CatMs(szGrf);
    // A picture of silence would be quick for the wrong reason: every column must show the wave.
    std::vector<uint8_t> vTop, vBottom;
    w.CopyColumns(vTop, vBottom);
    const auto nDrawn = std::count_if(vTop.begin(), vTop.end(), [](uint8_t n) { return n >= 120; });
    if (nDrawn != kColumns) {
        std::fprintf(stderr, "only %ld of %d columns drawn\n", static_cast<long>(nDrawn), kColumns);
        return false;
    }
    return true;
}

// The overview bytes of nBytes of records from nFrom written to a file of their own.
void CopyOverviewBytes(const std::string& szGrf, const std::string& szOut, int64_t nFrom, int64_t nBytes)
{
    std::ifstream in(szGrf, std::ios::binary);
    std::vector<char> v(static_cast<size_t>(nBytes));
    in.seekg(nFrom);
    in.read(v.data(), nBytes);
    std::ofstream(szOut, std::ios::binary).write(v.data(), nBytes);
}

// A view of an eighth of the document, scrolled by half its width back and forth, beside `cat`
// of the records under half the view (written to szHalf).
void MeasureScroll(LEdWaveWindow& w, int32_t sLength, const std::string& szGrf, const std::string& szHalf,
                   Figures& fig)
{
    const int32_t sView = sLength / 8;
    const int32_t sHome = sLength / 4;
    DrawMs(w, sHome, sView);
    for (int i = 0; i < kRuns; ++i)
        fig.fScroll = std::min(fig.fScroll, DrawMs(w, (i & 1) ? sHome : sHome + sView / 2, sView));
    CopyOverviewBytes(szGrf, szHalf, (static_cast<int64_t>(sHome) + sView) / 256 * kChans * 2,
                      static_cast<int64_t>(sView / 2) / 256 * kChans * 2);
    fig.fCatHalf = CatMs(szHalf);
}

void PrintFigures(const Figures& fig, size_t nCuts, const std::string& szGrf, const std::string& szHalf)
{
    const double fMb = static_cast<double>(std::filesystem::file_size(szGrf)) / 1e6;
    std::printf("waveform of a 3-hour stereo document (%zu cuts), %d columns, best of %d:\n", nCuts, kColumns, kRuns);
    std::printf("  full zoom-out   %8.2f ms   cat of the same %.2f MB overview %8.2f ms   ratio %.2f (goal <= 3)\n",
                fig.fFull, fMb, fig.fCatFull, fig.fFull / fig.fCatFull);
    std::printf("  scroll by half  %8.2f ms   cat of the same %.2f MB overview %8.2f ms   ratio %.2f\n", fig.fScroll,
                static_cast<double>(std::filesystem::file_size(szHalf)) / 1e6, fig.fCatHalf,
                fig.fScroll / fig.fCatHalf);
    std::printf("  scroll / full   %8.3f (goal: a small fraction)\n", fig.fScroll / fig.fFull);
}
} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    LQtNotifyPoster poster;
    poster.Install();
    const std::string szFolder = std::filesystem::temp_directory_path().string() + "/sonitra-bench-" + std::to_string(getpid());
    LSettings::SetString("Folders", "WorkingFolder", szFolder);
    std::string szGrf;
    LCutListAudioPtr pDoc = MakeEditedDocument(szGrf);
    const int32_t sLength = pDoc->GetLength();

    LEdWaveWindow w(nullptr, 90);
    w.resize(kColumns + 2, 300);
    w.show();
    w.Start();
    w.SetContent(LWaveContentOf(*pDoc));
    QCoreApplication::processEvents();

    Figures fig;
    if (!MeasureFullView(w, sLength, szGrf, fig))
        return 1;
    const std::string szHalf = szFolder + "/half.grf";
    MeasureScroll(w, sLength, szGrf, szHalf, fig);
    PrintFigures(fig, pDoc->GetCutCount(), szGrf, szHalf);
    w.Stop();
    std::filesystem::remove(szHalf);
    return 0;
}
