// The transport bar: play, scrub, stop, go to start, rewind, forward, go to end, record, and the
// play volume. Rewind and forward run while their button is held.
#pragma once

#include <QToolBar>

class QSlider;
class QToolButton;

class LTransportBar : public QToolBar
{
    Q_OBJECT
public:
    explicit LTransportBar(QWidget* pParent);

    // Shows the active play and stop pictures while playing.
    void SetPlaying(bool bPlaying);
    void SetVolume(int nDb);
    QToolButton* GetButton(int nId) const;

    static constexpr int kMinVolume = -36;
    static constexpr int kMaxVolume = 10;

signals:
    void Command(int nId);
    void ShuttlePressed(int nId);
    void ShuttleReleased(int nId);
    void VolumeChanged(int nDb);

private:
    QToolButton* AddButton(int nId, const char* szBitmap, const char* szTip);

    QToolButton* pPlay = nullptr;
    QToolButton* pStop = nullptr;
    QSlider* pVolume = nullptr;
    bool bPlaying = false;
};
