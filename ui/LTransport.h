// The transport of the editor: plays the current file through the player, with the play
// speeds, scrubbing, rewind and fast forward while a key is held, recording into a new or the
// current file, and the play volume. The frame owns one; it reports changes by signals.
#pragma once

#include <QObject>

#include <cstdint>
#include <memory>

class LEdFileWindow;
class LFrame;

class LTransport : public QObject
{
    Q_OBJECT
public:
    explicit LTransport(LFrame& frame);
    ~LTransport() override;

    // Whether a player can run in this build.
    static bool IsAvailable();

    // Plays the current file from the cursor (or its selection). bKeepPosition plays from the
    // cursor even when it lies within the last second.
    bool Play(bool bKeepPosition = false);
    void Stop();
    void GoToStart();
    void GoToEnd();
    void Scrub();
    // Rewind (-1) or fast forward (+1) while a key or button is held; EndShuttle on release.
    void StartShuttle(int nDirection);
    void EndShuttle();
    void Record();
    // 0 slow, 1 normal, 2 fast; remembered under "PlaySpeed".
    void SetPlaySpeed(int nSpeed);
    int GetPlaySpeed() const;
    // Volume in dB, remembered under "PlayVolume".
    void SetVolume(int nDb);

    bool IsPlaying() const;
    bool IsRecording() const;
    bool IsShuttling() const;
    // The file being played or recorded into; null when idle.
    LEdFileWindow* GetActiveWindow() const;
    // A file window is going away: stop what uses it.
    void ForgetWindow(LEdFileWindow* pWindow);

signals:
    void StateChanged();
    // The play position moved (frames of the playing file).
    void PositionChanged(int32_t sPosition);

private:
    struct Impl;
    std::unique_ptr<Impl> p;
};
