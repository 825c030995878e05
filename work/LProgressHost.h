// The face of a progress dialog: what shows the two text lines, the bar and the Cancel button.
// The editor supplies a Qt dialog; the command-line tool a terminal bar; tests a scripted one.
#pragma once

#include <memory>
#include <string>

class LProgressHost
{
public:
    virtual ~LProgressHost() = default;
    // Shows the dialog with its caption and disables the parent; false when it cannot be shown.
    virtual bool Open(const std::string& szTitle) = 0;
    // Hides the dialog (if the user has not closed it) and re-enables the parent.
    virtual void Close() = 0;
    virtual void SetText(int nLine, const std::string& szText) = 0;
    virtual void SetProgress(int nPercent) = 0;
    // Processes pending user input; returns false once the user has cancelled (the dialog is gone).
    virtual bool Pump() = 0;
    // Waits up to nMs for user input, processing it; returns false once cancelled.
    virtual bool WaitForInput(int nMs) = 0;
    virtual void ShowError(const std::string& szText) = 0;
};

// Makes the host for each dialog that opens.
class LProgressHostFactory
{
public:
    virtual ~LProgressHostFactory() = default;
    virtual std::unique_ptr<LProgressHost> Create() = 0;

    // The factory is not owned; null restores the quiet host that never cancels.
    static void SetDefault(LProgressHostFactory* pFactory);
    static LProgressHostFactory& Default();
};

// Shows nothing and never cancels; errors go to the trace.
class LQuietProgressHost : public LProgressHost
{
public:
    bool Open(const std::string&) override { return true; }
    void Close() override {}
    void SetText(int, const std::string&) override {}
    void SetProgress(int) override {}
    bool Pump() override { return true; }
    bool WaitForInput(int nMs) override;
    void ShowError(const std::string& szText) override;
};
