#include "formats/LSNKPipeEncoder.h"

#include <algorithm>

#include "core/LTrace.h"
#include "platform/engine/LChildProcess.h"

namespace {
constexpr int32_t kBlockFrames = 8192;
}

LSNKPipeEncoder::LSNKPipeEncoder(const std::vector<std::string>& vArgs, const std::string& szWhat, int32_t nRate,
                                 uint8_t nChannels)
    : LSoundSinkBase(nRate, nChannels), pChild(std::make_unique<LChildProcess>()), szWhat(szWhat)
{
    vBytes.resize(static_cast<size_t>(kBlockFrames) * nChans * 2);
    std::string szWhy;
    if (!pChild->Start(vArgs, LChildProcess::PipeIn, &szWhy))
        Fail("cannot start " + szWhat + ": " + szWhy);
}

LSNKPipeEncoder::~LSNKPipeEncoder()
{
    Complete();
}

void LSNKPipeEncoder::Fail(const std::string& szWhy)
{
    LTRACE("LSNKPipeEncoder::Fail %s", szWhy.c_str());
    if (szError.empty())
        szError = szWhy;
    SetError();
}

void LSNKPipeEncoder::Write(const int32_t* pBuffer, int32_t nFrames)
{
    if (IsError() || bCompleted)
        return;
    while (nFrames > 0) {
        const int32_t n = std::min(nFrames, kBlockFrames);
        const size_t nSamples = static_cast<size_t>(n) * nChans;
        // Rounded, and wrapped rather than clipped, as every 16-bit writer here does.
        for (size_t i = 0; i < nSamples; ++i) {
            const uint32_t u = static_cast<uint32_t>((static_cast<int64_t>(pBuffer[i]) + 8) >> 4);
            vBytes[2 * i] = static_cast<uint8_t>(u);
            vBytes[2 * i + 1] = static_cast<uint8_t>(u >> 8);
        }
        if (!pChild->Write(vBytes.data(), nSamples * 2)) {
            pChild->Wait(1000);
            const std::string szLine = pChild->GetLastErrorLine();
            Fail(szWhat + " stopped taking sound" + (szLine.empty() ? std::string() : ": " + szLine));
            return;
        }
        pBuffer += nSamples;
        nFrames -= n;
        sPosition += n;
    }
}

bool LSNKPipeEncoder::Complete()
{
    if (bCompleted)
        return !IsError();
    bCompleted = true;
    if (!pChild->IsRunning())
        return !IsError();
    pChild->CloseInput();
    if (!pChild->Wait(kFinishLimitMs)) {
        pChild->Kill();
        Fail(szWhat + " did not finish");
    } else if (pChild->GetExitCode() != 0) {
        const std::string szLine = pChild->GetLastErrorLine();
        Fail(szWhat + " failed" + (szLine.empty() ? std::string() : ": " + szLine));
    }
    return !IsError();
}
