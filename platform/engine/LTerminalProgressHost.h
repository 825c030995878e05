// The progress dialog on a terminal: the two text lines and a bar on stderr (only when stderr
// is a terminal), with Ctrl+C as the Cancel button.
#pragma once

#include <string>

#include "work/LProgressHost.h"

class LTerminalProgressHost : public LProgressHost
{
public:
    bool Open(const std::string& szTitle) override;
    void Close() override;
    void SetText(int nLine, const std::string& szText) override;
    void SetProgress(int nPercent) override;
    bool Pump() override;
    bool WaitForInput(int nMs) override;
    void ShowError(const std::string& szText) override;

private:
    void Draw();

    bool bTerminal = false;
    bool bDrawn = false;
    std::string szLines[2];
    int nPercent = 0;
};

class LTerminalProgressHostFactory : public LProgressHostFactory
{
public:
    std::unique_ptr<LProgressHost> Create() override { return std::make_unique<LTerminalProgressHost>(); }
    // Ctrl+C sets a flag that the next Pump reports as a cancel; a second Ctrl+C quits.
    static void InstallInterruptHandler();
    static bool InterruptRequested();
    static void ClearInterrupt();
};
