// The player's observer. Every call arrives on the user-interface thread with the cookie given
// to LSoundPlayer::SetNotify.
#pragma once

#include <cstdint>

#include "devices/LSoundLevels.h"

class LSoundPlayerNotify
{
public:
    virtual ~LSoundPlayerNotify() = default;
    virtual void PlayerPlaying(uint32_t nCookie) {}
    virtual void PlayerStopped(uint32_t nCookie) {}
    virtual void PlayerCued(uint32_t nCookie) {}
    virtual void PlayerPaused(uint32_t nCookie) {}
    virtual void PlayerPosition(uint32_t nCookie, int32_t nMilliseconds) {}
    // The levels of the buffer just heard.
    virtual void PlayerLevels(uint32_t nCookie, const LSoundLevels& levels) {}
};
