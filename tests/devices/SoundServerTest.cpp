// End to end through a real sound server: a private PulseAudio daemon with a null sink,
// `sonitra-cli play` playing into it, and parec recording the sink's monitor.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <fstream>
#include <thread>

#include "support/TestSupport.h"

using namespace testsupport;

namespace {
constexpr int kRate = 44100;
constexpr int kChans = 2;
constexpr int kFrames = kRate * 3 / 2;
constexpr int kQuietFrames = kRate / 2;

// Every command is bounded in time, so a hung server can never hold up the run.
class SoundServer
{
public:
    explicit SoundServer(const TempDir& dir) : szDir(dir.Path()) {}
    ~SoundServer()
    {
        Kill("parec.pid");
        Kill("pulse.pid");
    }

    // Empty on success, else why the server could not be started.
    std::string Start()
    {
        for (const char* szTool : {"pulseaudio", "pactl", "parec", "timeout"})
            if (!HaveTool(szTool))
                return std::string(szTool) + " is not installed (tools/setup-debian.sh installs it)";
        RunCommand("cd " + szDir + " && (HOME=" + szDir + " XDG_RUNTIME_DIR=" + szDir +
                   " timeout 120 pulseaudio -n --daemonize=no --exit-idle-time=-1 --use-pid-file=no"
                   " --disable-shm=yes -F /dev/null"
                   " --load='module-null-sink sink_name=sonitra_test rate=44100 channels=2'"
                   " --load='module-native-protocol-unix socket=" + szDir + "/native auth-anonymous=1'"
                   " --log-target=stderr >pulse.log 2>&1 & echo $! >pulse.pid)");
        for (int i = 0; i < 100; ++i) {
            if (Run("timeout 5 pactl info >/dev/null 2>&1") == 0)
                return "";
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
        std::string szLog;
        RunCommand("tail -n 3 " + szDir + "/pulse.log", &szLog);
        return "the PulseAudio daemon did not start: " + szLog;
    }

    int Run(const std::string& szCommand, std::string* pOut = nullptr)
    {
        return RunCommand("cd " + szDir + " && export HOME=" + szDir + " XDG_RUNTIME_DIR=" + szDir +
                              " PULSE_SERVER=unix:" + szDir + "/native && " + szCommand,
                          pOut);
    }

    bool StartMonitorRecording()
    {
        Run("(timeout 60 parec --latency-msec=20 -d sonitra_test.monitor --format=s16le --rate=44100 --channels=2 --raw"
            " rec.raw >parec.log 2>&1 & echo $! >parec.pid)");
        for (int i = 0; i < 100; ++i) {
            std::string szOut;
            Run("timeout 5 pactl list short source-outputs", &szOut);
            if (!szOut.empty())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return false;
    }

    void StopMonitorRecording() { Kill("parec.pid", "-INT"); }

private:
    void Kill(const std::string& szPidFile, const std::string& szSignal = "-TERM")
    {
        RunCommand("cd " + szDir + " && [ -s " + szPidFile + " ] && kill " + szSignal + " $(cat " + szPidFile +
                   ") 2>/dev/null; rm -f " + szPidFile + "; sleep 0.3");
    }

    std::string szDir;
};

// Noise between two stretches of silence: the null sink's monitor only runs while something
// plays, so its recording may miss the first moments of a stream; they are silent here.
std::vector<int32_t> QuietNoiseQuiet(int nFrames)
{
    std::vector<int32_t> v(static_cast<size_t>(nFrames + 2 * kQuietFrames) * kChans, 0);
    uint32_t x = 12345;
    for (size_t i = static_cast<size_t>(kQuietFrames) * kChans; i < static_cast<size_t>(kQuietFrames + nFrames) * kChans;
         ++i) {
        x = x * 1664525u + 1013904223u;
        v[i] = static_cast<int32_t>((x >> 16) % 16001) - 8000;
    }
    return v;
}

template <class T> size_t FirstSound(const std::vector<T>& v)
{
    size_t n = 0;
    while (n < v.size() && v[n] == 0)
        ++n;
    return n;
}

std::vector<int16_t> ReadRaw(const std::string& szPath)
{
    const std::vector<uint8_t> b = ReadFileBytes(szPath);
    std::vector<int16_t> v(b.size() / 2);
    for (size_t i = 0; i < v.size(); ++i)
        v[i] = static_cast<int16_t>(b[2 * i] | (b[2 * i + 1] << 8));
    return v;
}

// Normalised correlation of samples [nFrom, nFrom + nSamples) of the file against the recording
// shifted by nLag frames.
double Correlation(const std::vector<int32_t>& a, const std::vector<int16_t>& r, long nLag, size_t nFrom,
                   size_t nSamples)
{
    double ab = 0, aa = 0, bb = 0;
    for (size_t i = nFrom; i < nFrom + nSamples && i < a.size(); ++i) {
        const long j = static_cast<long>(i) + nLag * kChans;
        const double y = (j >= 0 && static_cast<size_t>(j) < r.size()) ? r[j] : 0.0;
        ab += a[i] * y;
        aa += double(a[i]) * a[i];
        bb += y * y;
    }
    return (aa > 0 && bb > 0) ? ab / std::sqrt(aa * bb) : 0.0;
}

// Plays the samples through sonitra-cli into the private server and records the sink's
// monitor; returns the recording and the lag in frames at which it matches the file best.
struct Heard
{
    std::vector<int16_t> vHeard;
    long nLag = 0;
};

void PlayAndListen(const std::vector<int32_t>& vFile, Heard& heard)
{
    TempDir dir;
    SoundServer server(dir);
    const std::string szWhy = server.Start();
    if (!szWhy.empty())
        GTEST_SKIP() << "no sound server could be started here: " << szWhy;

    std::string szDevices;
    const int nDevices = server.Run(std::string("timeout 30 ") + SONITRA_CLI_PATH + " devices 2>&1", &szDevices);
    ASSERT_EQ(nDevices, 0) << "sonitra-cli devices failed:\n" << szDevices;
#ifdef SONITRA_HAVE_PORTAUDIO
    // This build has the PortAudio backend, so a device list without it is a fault, not a reason to skip.
    ASSERT_NE(szDevices.find("(portaudio)"), std::string::npos) << "sonitra-cli does not see the server:\n"
                                                               << szDevices;
#else
    GTEST_SKIP() << "this build has no PortAudio backend";
#endif

    WriteSimpleWav(dir.File("noise.wav"), kRate, kChans, 16, vFile);
    ASSERT_TRUE(server.StartMonitorRecording());
    std::string szOut;
    const int nExit = server.Run(std::string("timeout 60 ") + SONITRA_CLI_PATH + " play noise.wav 2>&1", &szOut);
    ASSERT_EQ(nExit, 0) << szOut;
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    server.StopMonitorRecording();

    heard.vHeard = ReadRaw(dir.File("rec.raw"));
    const std::vector<int16_t>& vHeard = heard.vHeard;
    ASSERT_GT(vHeard.size(), vFile.size() / 2) << "the monitor recorded too little";
    // The first sound of each gives the lag, which a small search then confirms.
    const size_t nFirst = FirstSound(vHeard);
    ASSERT_LT(nFirst, vHeard.size()) << "the monitor heard nothing";
    const long nGuess = static_cast<long>(nFirst / kChans) - static_cast<long>(FirstSound(vFile) / kChans);
    long nBest = nGuess;
    double fBest = -1;
    for (long nLag = nGuess - 64; nLag <= nGuess + 64; ++nLag) {
        const double f = Correlation(vFile, vHeard, nLag, FirstSound(vFile), 8192);
        if (f > fBest) {
            fBest = f;
            nBest = nLag;
        }
    }
    heard.nLag = nBest;
}
} // namespace

TEST(SoundServer, PlayedFileIsWhatTheSinkHeard)
{
    const std::vector<int32_t> vFile = QuietNoiseQuiet(kFrames);
    Heard heard;
    PlayAndListen(vFile, heard);
    if (IsSkipped() || HasFatalFailure())
        return;
    const double fWhole = Correlation(vFile, heard.vHeard, heard.nLag, 0, vFile.size());
    EXPECT_GT(fWhole, 0.99) << "lag " << heard.nLag << " frames";
}

// A file that sounds up to its last sample: the player waits for the device to play what it
// took before it reports the end and closes, so the last 10 ms are heard too.
TEST(SoundServer, PlayedFileIsHeardToItsLastSample)
{
    std::vector<int32_t> vFile = QuietNoiseQuiet(kFrames);
    vFile.resize(static_cast<size_t>(kQuietFrames + kFrames) * kChans);
    Heard heard;
    PlayAndListen(vFile, heard);
    if (IsSkipped() || HasFatalFailure())
        return;
    const size_t nTail = static_cast<size_t>(kRate / 100) * kChans;
    const double fTail = Correlation(vFile, heard.vHeard, heard.nLag, vFile.size() - nTail, nTail);
    EXPECT_GT(fTail, 0.99) << "the last 10 ms, lag " << heard.nLag << " frames";
}
