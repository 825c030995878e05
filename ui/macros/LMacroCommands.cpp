#include "ui/macros/LMacroCommands.h"

#include <QObject>

#include "ui/LCommandKeys.h"
#include "ui/LCommandTable.h"
#include "ui/LMenuLayout.h"

const std::vector<int>& LMacroCommands::All()
{
    static const std::vector<int> v = [] {
        std::vector<int> vIds;
        for (int nId = 1000; nId < 9000; ++nId)
            if (LCommandTable::Find(nId))
                vIds.push_back(nId);
        return vIds;
    }();
    return v;
}

QString LMacroCommands::NameOf(uint32_t uId)
{
    const LCommandInfo* pInfo = uId < 100000 ? LCommandTable::Find(static_cast<int>(uId)) : nullptr;
    if (!pInfo)
        return QString("Command %1").arg(uId);
    QString sz = QString::fromUtf8(pInfo->szText).trimmed();
    sz.remove('&');
    return sz;
}

QString LMacroCommands::PathOf(uint32_t uId)
{
    const QString szPath = uId < 100000 ? LMenuLayout::PathOf(static_cast<int>(uId)) : QString();
    return szPath.isEmpty() ? NameOf(uId) : szPath;
}

QKeySequence LMacroCommands::KeyOf(uint32_t uKey)
{
    return uKey ? QKeySequence(QKeyCombination::fromCombined(static_cast<int>(uKey))) : QKeySequence();
}

uint32_t LMacroCommands::CodeOf(const QKeySequence& key)
{
    return key.isEmpty() ? 0 : static_cast<uint32_t>(key[0].toCombined());
}

QString LMacroCommands::WhyRefused(uint32_t uKey)
{
    const QKeySequence key = KeyOf(uKey);
    if (key.isEmpty())
        return QObject::tr("Please choose a key for the macro.");
    const QString szKey = key.toString(QKeySequence::NativeText);
    for (int nId : All()) {
        if (LCommandKeys::Of(*LCommandTable::Find(nId)).contains(key))
            return QObject::tr("The key %1 is already used by the menu command \"%2\". Please choose another key.")
                .arg(szKey, NameOf(static_cast<uint32_t>(nId)));
    }
    // Keys the transport follows itself, held or pressed.
    const QKeyCombination k = key[0];
    if (k.keyboardModifiers() == Qt::NoModifier &&
        (k.key() == Qt::Key_Space || k.key() == Qt::Key_Left || k.key() == Qt::Key_Right || k.key() == Qt::Key_F7 ||
         k.key() == Qt::Key_F8))
        return QObject::tr("The key %1 is already used by the transport. Please choose another key.").arg(szKey);
    return QString();
}
