#include "devices/LEffectPreview.h"

#include <algorithm>

#include "core/LEdCommands.h"
#include "core/LTrace.h"
#include "dsp/effects/LEffectOutput.h"

namespace {
LSoundPlayerNotify g_quietClient;
} // namespace

LEffectPreview::LEffectPreview() : pClient(&g_quietClient)
{
    player.SetNotify(this, 0);
}

LEffectPreview::~LEffectPreview()
{
    pClient = &g_quietClient;
    player.Stop();
}

void LEffectPreview::SetNotify(LSoundPlayerNotify* pNotify, uint32_t nCookie)
{
    pClient = pNotify ? pNotify : &g_quietClient;
    nClientCookie = nCookie;
}

void LEffectPreview::SetRange(const LCutListAudio& doc, int32_t sStart, int32_t sEnd, int32_t nLengthMs)
{
    Stop();
    sStart = std::clamp(sStart, 0, doc.GetLength());
    sEnd = std::clamp(sEnd, sStart, doc.GetLength());
    if (nLengthMs > 0) {
        const int32_t nMost = LEdCommands::FramesOfMs(nLengthMs, doc.GetSampleRate());
        // Nothing selected: the first seconds from the start of the range.
        if (sEnd == sStart)
            sEnd = std::min(doc.GetLength(), sStart + nMost);
        sEnd = std::min(sEnd, sStart + nMost);
    }
    range = LCutListAudio(doc.GetSampleRate(), doc.GetChannels());
    doc.EfCopy(sStart, sEnd, range);
}

LSoundSourcePtr LEffectPreview::OpenOutput(const LEffectInfo& info, const LEffectArgs& args) const
{
    return LEffectOutput::Open(info, args, range);
}

void LEffectPreview::PlayerStopped(uint32_t)
{
    if (!bRestarting)
        pClient->PlayerStopped(nClientCookie);
}

bool LEffectPreview::Start(const LEffectInfo& info, const LEffectArgs& args)
{
    LTRACE("LEffectPreview::Start %s", info.szBody);
    Stop();
    pInfo = &info;
    if (range.GetLength() <= 0)
        return false;
    LSoundSourcePtr pOutput = OpenOutput(info, args);
    return Restart(pOutput.Get(), 0);
}

// Plays pOutput from sPosition: through the playing switch when the format allows, so that
// the device stays open, else through a new start of the player.
bool LEffectPreview::Restart(LSoundSourceBase* pOutput, int32_t sPosition)
{
    LSoundSourcePtr pHold(pOutput);
    if (pOutput->IsError()) {
        LTRACE("LEffectPreview::Restart effect output error");
        Stop();
        return false;
    }
    if (player.IsOpen() && pSwitch && pSwitch->SetNext(pOutput)) {
        player.Seek(sPosition);
        return true;
    }
    pSwitch = new LSRCSwitch(pOutput);
    pOutput->SetPosition(sPosition);
    // The stop inside Start belongs to this preview going on.
    bRestarting = player.IsOpen();
    const bool bStarted = player.Start(pSwitch.Get());
    const bool bWasRestart = bRestarting;
    bRestarting = false;
    bDeviceFailed = !bStarted;
    if (!bStarted) {
        LTRACE("LEffectPreview::Restart player did not start");
        pSwitch.Reset();
        if (bWasRestart)
            pClient->PlayerStopped(nClientCookie);
    }
    return bStarted;
}

bool LEffectPreview::Update(const LEffectArgs& args)
{
    if (!player.IsOpen() || !pInfo || !pSwitch)
        return true;
    const int64_t nOldLength = pSwitch->GetLength();
    const int64_t sHeard = player.GetPosition();
    LSoundSourcePtr pOutput = OpenOutput(*pInfo, args);
    if (pOutput->IsError())
        return Restart(pOutput.Get(), 0);
    // The same place: the same fraction of the way through when the length changed.
    const int64_t nNewLength = pOutput->GetLength();
    const int64_t sPlace = nOldLength > 0 ? sHeard * nNewLength / nOldLength : 0;
    LTRACE("LEffectPreview::Update at %lld of %lld", static_cast<long long>(sPlace), static_cast<long long>(nNewLength));
    return Restart(pOutput.Get(), static_cast<int32_t>(std::clamp<int64_t>(sPlace, 0, nNewLength)));
}

void LEffectPreview::Stop()
{
    player.Stop();
    pSwitch.Reset();
}
