#include "dsp/LDPAutoGain.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <limits>

#include "core/LFile.h"
#include "core/LFixed.h"
#include "core/LTrace.h"
#include "dsp/LDPSRCAutoGain.h"
#include "work/LProgressDialog.h"

namespace {

constexpr int32_t kReadFrames = 8192;
constexpr double kNoSay = std::numeric_limits<double>::infinity();

} // namespace

LDPAutoGain::Plan::~Plan()
{
    if (!szPath.empty())
        LFile::Delete(szPath);
}

LDPAutoGain::LDPAutoGain(LSoundSourceBase* pIn, const std::string& szFolder, int32_t nTarget, int32_t nMaxGain)
    : pInput(pIn), szTempFolder(szFolder), nTargetDb(nTarget), nMaxGainDb(std::max(0, nMaxGain))
{
}

LDPAutoGain::~LDPAutoGain() = default;

bool LDPAutoGain::OpenCopy(LFile& file, std::string& szPath)
{
    static std::atomic<uint32_t> nCounter{0};
    const auto nStamp = std::chrono::steady_clock::now().time_since_epoch().count();
    for (int nTry = 0; nTry < 100; ++nTry) {
        const std::string szName = "autogain-" + std::to_string(nStamp % 1000000007) + "-" + std::to_string(++nCounter) + ".tmp";
        if (!LFile::FilePathCat(szPath, szTempFolder, szName))
            return false;
        if (!LFile::Exists(szPath))
            return file.Open(szPath, LFile::ReadWriteCreate);
    }
    return false;
}

int32_t LDPAutoGain::Analyse(LProgressDialog* pDlg)
{
    pPlan.reset();
    if (pInput->IsError()) {
        LTRACE("LDPAutoGain::Analyse input error");
        return 2;
    }
    auto pNew = std::make_shared<Plan>();
    LFile file;
    if (!OpenCopy(file, pNew->szPath)) {
        LTRACE("LDPAutoGain::Analyse cannot create the temporary file");
        pNew->szPath.clear();
        return 2;
    }
    const uint8_t nChans = pInput->GetChannels();
    pNew->nRate = pInput->GetSampleRate();
    pNew->nChans = nChans;
    pNew->nLength = std::max(0, pInput->GetLength());
    pNew->nBlock = std::max(1, pNew->nRate / kBlocksPerSecond);

    // Pass 1: copy, and sum the squares of every block.
    std::vector<int32_t> vBuffer(static_cast<size_t>(kReadFrames) * nChans);
    std::vector<double> vSquares((pNew->nLength + pNew->nBlock - 1) / pNew->nBlock, 0.0);
    pInput->SetPosition(0);
    for (int32_t sDone = 0; sDone < pNew->nLength;) {
        if (pDlg && pDlg->IsCancelled())
            return 1;
        const int32_t n = std::min(kReadFrames, pNew->nLength - sDone);
        pInput->Read(vBuffer.data(), n);
        const int64_t nBytes = static_cast<int64_t>(n) * nChans * sizeof(int32_t);
        if (file.Write(vBuffer.data(), nBytes) != nBytes) {
            LTRACE("LDPAutoGain::Analyse write failed");
            return 2;
        }
        for (int32_t i = 0; i < n; ++i)
            for (uint8_t c = 0; c < nChans; ++c) {
                const double s = vBuffer[static_cast<size_t>(i) * nChans + c];
                vSquares[(sDone + i) / pNew->nBlock] += s * s;
            }
        sDone += n;
        if (pDlg)
            pDlg->SetProgress(static_cast<double>(sDone) / std::max(1, pNew->nLength));
    }
    file.Close();

    std::vector<double> vLevels(vSquares.size());
    for (size_t k = 0; k < vSquares.size(); ++k) {
        const int64_t nFrames = std::min<int64_t>(pNew->nBlock, pNew->nLength - static_cast<int64_t>(k) * pNew->nBlock);
        const double fMean = vSquares[k] / (static_cast<double>(nFrames) * nChans);
        vLevels[k] = 10.0 * std::log10(fMean / (static_cast<double>(kFullScale16) * kFullScale16) + 1e-30);
    }
    const std::vector<double> vGainsDb = PlanGainsDb(vLevels, nTargetDb, nMaxGainDb);
    pNew->vGains.resize(vGainsDb.size());
    for (size_t k = 0; k < vGainsDb.size(); ++k)
        pNew->vGains[k] = static_cast<int32_t>(std::lround(kGainUnity * std::pow(10.0, vGainsDb[k] / 20.0)));
    const double fMaxAmplitude = pInput->GetMaxAmplitude() * std::pow(10.0, nMaxGainDb / 20.0);
    pNew->nMaxAmplitude = static_cast<int32_t>(std::min<double>(fMaxAmplitude, INT32_MAX));
    pPlan = std::move(pNew);
    return 0;
}

std::vector<double> LDPAutoGain::PlanGainsDb(const std::vector<double>& vLevelsDb, int32_t nTarget, int32_t nMaxGain)
{
    const size_t n = vLevelsDb.size();
    // What each block wants; silent blocks have no say.
    std::vector<double> vWant(n);
    for (size_t k = 0; k < n; ++k)
        vWant[k] = vLevelsDb[k] < kSilenceDb ? kNoSay : std::clamp(nTarget - vLevelsDb[k], -1.0 * kMaxCutDb, 1.0 * nMaxGain);
    // The least any block within reach wants: a loud block pulls its neighbours down early, and
    // the glide from one block's gain to the next never passes above what either block wants.
    std::vector<double> vLow(n);
    for (size_t k = 0; k < n; ++k) {
        const size_t a = k >= kReachBlocks ? k - kReachBlocks : 0, b = std::min(n, k + kReachBlocks + 1);
        vLow[k] = *std::min_element(vWant.begin() + a, vWant.begin() + b);
    }
    // Smoothed by an average over the same reach, never above the low.
    std::vector<double> vGains(n);
    for (size_t k = 0; k < n; ++k) {
        const size_t a = k >= kReachBlocks ? k - kReachBlocks : 0, b = std::min(n, k + kReachBlocks + 1);
        double fSum = 0;
        int nCount = 0;
        for (size_t j = a; j < b; ++j)
            if (vLow[j] != kNoSay) {
                fSum += vLow[j];
                ++nCount;
            }
        vGains[k] = nCount ? std::min(vLow[k], fSum / nCount) : kNoSay;
    }
    // Stretches with no say keep the gain of the nearest block before them (or after, at the start).
    double fLast = kNoSay;
    for (size_t k = 0; k < n; ++k)
        vGains[k] = vGains[k] == kNoSay ? fLast : (fLast = vGains[k]);
    fLast = kNoSay;
    for (size_t k = n; k-- > 0;)
        vGains[k] = vGains[k] == kNoSay ? fLast : (fLast = vGains[k]);
    for (double& f : vGains)
        if (f == kNoSay)
            f = 0.0;
    return vGains;
}

LSoundSourcePtr LDPAutoGain::CreateSource()
{
    if (!pPlan)
        return LSoundSourcePtr(new LSRCSilence);
    return LSoundSourcePtr(new LDPSRCAutoGain(pPlan));
}
