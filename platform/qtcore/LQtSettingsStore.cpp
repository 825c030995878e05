#include "platform/qtcore/LQtSettingsStore.h"

#include <QSettings>
#include <QString>

namespace {
QString Key(const std::string& szSection, const std::string& szName)
{
    return QString::fromStdString(szSection) + '/' + QString::fromStdString(szName);
}
} // namespace

LQtSettingsStore::LQtSettingsStore() : pSettings(std::make_unique<QSettings>("Korvane", "Sonitra")) {}

LQtSettingsStore::~LQtSettingsStore() = default;

bool LQtSettingsStore::GetValue(const std::string& szSection, const std::string& szName, std::string& szValue)
{
    QVariant v = pSettings->value(Key(szSection, szName));
    if (!v.isValid())
        return false;
    szValue = v.toString().toStdString();
    return true;
}

void LQtSettingsStore::SetValue(const std::string& szSection, const std::string& szName, const std::string& szValue)
{
    pSettings->setValue(Key(szSection, szName), QString::fromStdString(szValue));
}

void LQtSettingsStore::DeleteValue(const std::string& szSection, const std::string& szName)
{
    pSettings->remove(Key(szSection, szName));
}
