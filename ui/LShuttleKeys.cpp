#include "ui/LShuttleKeys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QWidget>

#include "ui/LCommandIds.h"

LShuttleKeys::LShuttleKeys(QWidget& owner, std::function<bool(int)> fnRun, std::function<void()> fnEnd)
    : QObject(&owner), frame(owner), fnCommand(std::move(fnRun)), fnRelease(std::move(fnEnd))
{
    qApp->installEventFilter(this);
}

LShuttleKeys::~LShuttleKeys()
{
    qApp->removeEventFilter(this);
}

bool LShuttleKeys::eventFilter(QObject*, QEvent* pEvent)
{
    if (pEvent->type() != QEvent::KeyPress && pEvent->type() != QEvent::KeyRelease)
        return false;
    if (!frame.isActiveWindow() || QApplication::activeModalWidget())
        return false;
    auto* pKey = static_cast<QKeyEvent*>(pEvent);
    // A held key repeats while the shuttle runs: the repeats, and F7 or F8 with a modifier, go
    // nowhere.
    if (pKey->isAutoRepeat() || pKey->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier))
        return pKey->key() == Qt::Key_F7 || pKey->key() == Qt::Key_F8;
    if (qobject_cast<QLineEdit*>(QApplication::focusWidget()))
        return false;
    const bool bPress = pEvent->type() == QEvent::KeyPress;
    switch (pKey->key()) {
    case Qt::Key_F7:
    case Qt::Key_Left:
    case Qt::Key_F8:
    case Qt::Key_Right: {
        const int nId = (pKey->key() == Qt::Key_F7 || pKey->key() == Qt::Key_Left) ? CmRewindId : CmFastForwardId;
        if (bPress)
            fnCommand(nId);
        else
            fnRelease();
        return true;
    }
    case Qt::Key_Space:
        if (bPress)
            fnCommand(CmScrubId);
        return true;
    default:
        return false;
    }
}
