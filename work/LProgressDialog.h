// The base of every process: a long operation whose body runs while a progress dialog shows
// and the parent is disabled. The body runs on the calling (user-interface) thread and keeps the
// interface alive through IsCancelled(). Results: 0 done, 1 cancelled, 2 error.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "core/LProgressReport.h"
#include "work/LProgressHost.h"

class LSignalObject;

class LProgressDialog : public LProgressReport
{
public:
    explicit LProgressDialog(const std::string& szTitle);
    LProgressDialog(const LProgressDialog&) = delete;
    LProgressDialog& operator=(const LProgressDialog&) = delete;
    virtual ~LProgressDialog();

    // Opens the dialog from the default host factory (or the one given), runs the body and
    // closes the dialog. Returns 0 at once when already open or when the dialog cannot be made.
    int32_t Run(LProgressHostFactory* pFactory = nullptr);

    void SetText(const std::string& szText, int nLine) override;
    void SetProgress(double fFraction) override;
    bool IsCancelled() override;
    bool IsOpen() const { return pHost != nullptr && !bCancelled; }
    // Waits while pumping: true when the time has passed, false as soon as the user cancels.
    bool WaitTimed(int32_t nMs);
    // True when the signal is set or the user cancels; false on time-out.
    bool WaitForObject(const LSignalObject& sig, int32_t nMs);
    void ShowError(const std::string& szText);

    const std::string& GetTitle() const { return szTitle; }
    int GetShownPercent() const { return nShownPercent; }

    // The body. An inner process may run as part of an outer one by calling RunInside(outer):
    // it then updates the outer dialog and shares its cancel.
    virtual int32_t Process() = 0;
    int32_t RunInside(LProgressDialog& outer);

private:
    std::string szTitle;
    LProgressHost* pHost = nullptr;
    std::unique_ptr<LProgressHost> pOwnedHost;
    LProgressDialog* pOuter = nullptr;
    bool bCancelled = false;
    int nShownPercent = 0;
};
