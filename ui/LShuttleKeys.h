// Rewind, fast forward and scrub follow the key itself: held, the transport shuttles; released,
// it stops. Watches every key of the program while the frame is the active window and no modal
// dialog or text field has them.
#pragma once

#include <QObject>

#include <functional>

class QWidget;

class LShuttleKeys : public QObject
{
public:
    // fnCommand runs a command by number; fnRelease ends the shuttle a held key began.
    LShuttleKeys(QWidget& frame, std::function<bool(int)> fnCommand, std::function<void()> fnRelease);
    ~LShuttleKeys() override;

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    QWidget& frame;
    std::function<bool(int)> fnCommand;
    std::function<void()> fnRelease;
};
