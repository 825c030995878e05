#include "ui/LCommandKeys.h"

#include "ui/LCommandTable.h"

QKeySequence LCommandKeys::FromText(const char* szAccel)
{
    // The portable text reads "+" as a separator, so the zoom keys are spelt out.
    const QString s = QString::fromUtf8(szAccel);
    if (s == "Ctrl+Plus")
        return QKeySequence(Qt::CTRL | Qt::Key_Plus);
    if (s == "Ctrl+Minus")
        return QKeySequence(Qt::CTRL | Qt::Key_Minus);
    return QKeySequence::fromString(s, QKeySequence::PortableText);
}

QList<QKeySequence> LCommandKeys::Of(const LCommandInfo& info)
{
    QList<QKeySequence> keys;
    if (*info.szAccel)
        keys << FromText(info.szAccel);
    if (*info.szAccel2)
        keys << FromText(info.szAccel2);
    return keys;
}
