// Plays what an effect would make of a range of a document, with values that may change while
// it plays, without touching the document: the range is copied once (the copy shares the
// segments), and each set of values builds a new effect output over the copy. New values take
// over at the place being heard at once: the player's queued buffers are dropped and refilled
// from the new output. An output of another rate or channel count restarts the player instead.
//
// All calls belong to the user-interface thread, which runs the player's notification queue.
#pragma once

#include <cstdint>

#include "core/LCutListAudio.h"
#include "devices/LSRCSwitch.h"
#include "devices/LSoundPlayer.h"
#include "dsp/effects/LEffectArgs.h"
#include "dsp/effects/LEffectCatalog.h"

class LEffectPreview : private LSoundPlayerNotify
{
public:
    static constexpr int32_t kDefaultLengthMs = 5000;

    LEffectPreview();
    ~LEffectPreview() override;

    // What to preview: [sStart, sEnd) of the document, cut to its first nLengthMs (the whole
    // range when nLengthMs <= 0). An empty range previews nLengthMs from sStart. Stops a preview.
    void SetRange(const LCutListAudio& doc, int32_t sStart, int32_t sEnd, int32_t nLengthMs = kDefaultLengthMs);
    // The device number of the player (0 the default), read at each start.
    void SetDevice(int32_t nDevice) { player.SetDevice(nDevice); }
    // The player's reports. A restart for new values is no stop: only the end of a preview is.
    void SetNotify(LSoundPlayerNotify* pNotify, uint32_t nCookie);

    // Plays the range through the effect from its start. False when there is nothing to play,
    // the effect fails or no device opens.
    bool Start(const LEffectInfo& info, const LEffectArgs& args);
    // New values while playing: the preview goes on from the same place (the same fraction of
    // an output whose length changed). Nothing when not playing; false when the effect fails
    // (the preview then stops).
    bool Update(const LEffectArgs& args);
    void Stop();

    bool IsPlaying() const { return player.IsOpen(); }
    // The last start or restart failed because no device would open.
    bool IsDeviceFailed() const { return bDeviceFailed; }
    // Frames of the current output heard so far.
    int32_t GetPosition() const { return player.GetPosition(); }
    // The effect's output over the range: what a preview with these values plays.
    LSoundSourcePtr OpenOutput(const LEffectInfo& info, const LEffectArgs& args) const;
    const LCutListAudio& GetRange() const { return range; }
    LSoundPlayer& GetPlayer() { return player; }

private:
    bool Restart(LSoundSourceBase* pOutput, int32_t sPosition);

    void PlayerPlaying(uint32_t) override { pClient->PlayerPlaying(nClientCookie); }
    void PlayerStopped(uint32_t) override;
    void PlayerPaused(uint32_t) override { pClient->PlayerPaused(nClientCookie); }
    void PlayerPosition(uint32_t, int32_t nMs) override { pClient->PlayerPosition(nClientCookie, nMs); }
    void PlayerLevels(uint32_t, const LSoundLevels& levels) override { pClient->PlayerLevels(nClientCookie, levels); }

    LCutListAudio range;
    const LEffectInfo* pInfo = nullptr;
    LCountedPtr<LSRCSwitch> pSwitch; // over the output being played
    LSoundPlayerNotify* pClient;
    uint32_t nClientCookie = 0;
    bool bRestarting = false;
    bool bDeviceFailed = false;
    LSoundPlayer player;
};
