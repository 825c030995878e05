#include "platform/engine/LTerminalProgressHost.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <thread>
#include <unistd.h>

namespace {
volatile std::sig_atomic_t g_nInterrupts = 0;

void OnInterrupt(int)
{
    if (g_nInterrupts > 0)
        _exit(130);
    g_nInterrupts = 1;
}
} // namespace

void LTerminalProgressHostFactory::InstallInterruptHandler()
{
    struct sigaction sa = {};
    sa.sa_handler = OnInterrupt;
    sigemptyset(&sa.sa_mask);
    sigaction(SIGINT, &sa, nullptr);
}

bool LTerminalProgressHostFactory::InterruptRequested()
{
    return g_nInterrupts > 0;
}

void LTerminalProgressHostFactory::ClearInterrupt()
{
    g_nInterrupts = 0;
}

bool LTerminalProgressHost::Open(const std::string& szTitle)
{
    bTerminal = ::isatty(STDERR_FILENO) != 0;
    szLines[0] = szTitle;
    return true;
}

void LTerminalProgressHost::Close()
{
    if (bDrawn)
        std::fputs("\r\033[K\033[1A\r\033[K", stderr);
    bDrawn = false;
}

void LTerminalProgressHost::SetText(int nLine, const std::string& szText)
{
    if (nLine == 0 || nLine == 1)
        szLines[nLine] = szText;
    Draw();
}

void LTerminalProgressHost::SetProgress(int nNewPercent)
{
    nPercent = nNewPercent < 0 ? 0 : nNewPercent > 100 ? 100 : nNewPercent;
    Draw();
}

void LTerminalProgressHost::Draw()
{
    if (!bTerminal)
        return;
    constexpr int kWidth = 40;
    char bar[kWidth + 1];
    int nFilled = nPercent * kWidth / 100;
    for (int i = 0; i < kWidth; ++i)
        bar[i] = i < nFilled ? '#' : '.';
    bar[kWidth] = '\0';
    if (bDrawn)
        std::fputs("\r\033[1A", stderr);
    std::fprintf(stderr, "\033[K%s\n\033[K[%s] %3d%%  %s", szLines[0].c_str(), bar, nPercent, szLines[1].c_str());
    std::fflush(stderr);
    bDrawn = true;
}

bool LTerminalProgressHost::Pump()
{
    return !LTerminalProgressHostFactory::InterruptRequested();
}

bool LTerminalProgressHost::WaitForInput(int nMs)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(nMs));
    return Pump();
}

void LTerminalProgressHost::ShowError(const std::string& szText)
{
    Close();
    std::fprintf(stderr, "Error: %s\n", szText.c_str());
}
