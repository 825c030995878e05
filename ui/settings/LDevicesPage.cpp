#include "ui/settings/LDevicesPage.h"

#include <algorithm>

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>

#include "core/LSettings.h"
#include "devices/LSoundPlayDevice.h"
#include "devices/LSoundRecordDevice.h"

namespace {

// Entry n is device n: 0 the default, then the devices in the system's order. A stored device
// that has gone stays listed, so that saving the page does not change it behind the user's back.
template <class Device>
QComboBox* DeviceList(QWidget* pParent, const char* szName, int32_t nStored)
{
    auto* p = new QComboBox(pParent);
    p->setObjectName(szName);
    const int32_t nCount = Device::GetCount();
    for (int32_t n = 0; n <= nCount; ++n)
        p->addItem(QString::fromStdString(Device::GetName(n)), n);
    if (nStored > nCount)
        p->addItem(QObject::tr("Device %1 (not present)").arg(nStored), nStored);
    p->setCurrentIndex(std::max(0, p->findData(nStored)));
    return p;
}

} // namespace

LDevicesPage::LDevicesPage(QWidget* pParent) : LSettingsPage(pParent)
{
    setObjectName("DevicesPage");
    pOut = DeviceList<LSoundPlayDevice>(this, "SoundOutDevice", LSettings::GetInt("Settings", "SoundOutDevice", 0));
    pIn = DeviceList<LSoundRecordDevice>(this, "RecorderDevice", LSettings::GetInt("Recorder", "Device", 0));
    pReduce = new QCheckBox(tr("Lower the volume while rewinding or fast-forwarding"), this);
    pReduce->setObjectName("ReduceVolWhenRewind");
    pReduce->setChecked(LSettings::GetBool("Settings", "ReduceVolWhenRewind", false));
    auto* pForm = new QFormLayout(this);
    pForm->addRow(tr("Play through:"), pOut);
    pForm->addRow(tr("Record from:"), pIn);
    pForm->addRow(pReduce);
}

void LDevicesPage::Save()
{
    LSettings::SetInt("Settings", "SoundOutDevice", pOut->currentData().toInt());
    LSettings::SetInt("Recorder", "Device", pIn->currentData().toInt());
    LSettings::SetBool("Settings", "ReduceVolWhenRewind", pReduce->isChecked());
}
