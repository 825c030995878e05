#include "work/LProgressDialog.h"

#include <atomic>
#include <chrono>
#include <thread>

#include "core/LTrace.h"
#include "work/LSignalObject.h"

namespace {
class QuietFactory : public LProgressHostFactory
{
public:
    std::unique_ptr<LProgressHost> Create() override { return std::make_unique<LQuietProgressHost>(); }
};
std::atomic<LProgressHostFactory*> g_pFactory{nullptr};
} // namespace

void LProgressHostFactory::SetDefault(LProgressHostFactory* pFactory)
{
    g_pFactory.store(pFactory);
}

LProgressHostFactory& LProgressHostFactory::Default()
{
    static QuietFactory quiet;
    LProgressHostFactory* p = g_pFactory.load();
    return p ? *p : quiet;
}

bool LQuietProgressHost::WaitForInput(int nMs)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(nMs));
    return true;
}

void LQuietProgressHost::ShowError(const std::string& szText)
{
    LTRACE("LQuietProgressHost::ShowError %s", szText.c_str());
}

LProgressDialog::LProgressDialog(const std::string& szTitle) : szTitle(szTitle) {}

LProgressDialog::~LProgressDialog() = default;

int32_t LProgressDialog::Run(LProgressHostFactory* pFactory)
{
    if (pHost || pOuter) {
        LTRACE("LProgressDialog::Open Called when already open!");
        return 0;
    }
    std::unique_ptr<LProgressHost> host = (pFactory ? *pFactory : LProgressHostFactory::Default()).Create();
    if (!host || !host->Open(szTitle)) {
        LTRACE("LProgressDialog::Run Unable to create Progress Dialog");
        return 0;
    }
    pOwnedHost = std::move(host);
    pHost = pOwnedHost.get();
    bCancelled = false;
    nShownPercent = 0;
    pHost->SetProgress(0);
    int32_t nResult = Process();
    pHost->Close();
    pHost = nullptr;
    pOwnedHost.reset();
    return nResult;
}

int32_t LProgressDialog::RunInside(LProgressDialog& outer)
{
    pOuter = &outer;
    int32_t nResult = Process();
    pOuter = nullptr;
    return nResult;
}

void LProgressDialog::SetText(const std::string& szText, int nLine)
{
    if (pOuter) {
        pOuter->SetText(szText, nLine);
        return;
    }
    if ((nLine == 0 || nLine == 1) && IsOpen())
        pHost->SetText(nLine, szText);
}

void LProgressDialog::SetProgress(double fFraction)
{
    if (pOuter) {
        pOuter->SetProgress(fFraction);
        return;
    }
    if (!IsOpen())
        return;
    int nPercent = static_cast<int>(fFraction * 100.0);
    if (nPercent != nShownPercent) {
        nShownPercent = nPercent;
        pHost->SetProgress(nPercent);
    }
}

bool LProgressDialog::IsCancelled()
{
    if (pOuter)
        return pOuter->IsCancelled();
    if (!pHost)
        return false; // a body run without a dialog cannot be cancelled
    if (bCancelled)
        return true;
    if (!pHost->Pump())
        bCancelled = true;
    return bCancelled;
}

bool LProgressDialog::WaitTimed(int32_t nMs)
{
    if (pOuter)
        return pOuter->WaitTimed(nMs);
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(nMs);
    while (true) {
        if (IsCancelled())
            return false;
        auto now = std::chrono::steady_clock::now();
        if (now >= deadline)
            return true;
        int nLeft = static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(deadline - now).count());
        if (pHost) {
            if (!pHost->WaitForInput(nLeft < 10 ? nLeft : 10))
                bCancelled = true;
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(nLeft < 10 ? nLeft : 10));
        }
    }
}

bool LProgressDialog::WaitForObject(const LSignalObject& sig, int32_t nMs)
{
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(nMs);
    while (true) {
        if (sig.Wait(0) || IsCancelled())
            return true;
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        sig.Wait(10);
    }
}

void LProgressDialog::ShowError(const std::string& szText)
{
    if (pOuter) {
        pOuter->ShowError(szText);
        return;
    }
    if (pHost)
        pHost->ShowError(szText);
    else
        LTRACE("LProgressDialog::ShowError %s", szText.c_str());
}
