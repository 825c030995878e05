#include "ui/settings/LSettingsDlg.h"

#include <QDialogButtonBox>
#include <QTabWidget>
#include <QVBoxLayout>

#include "ui/settings/LCdPage.h"
#include "ui/settings/LDevicesPage.h"
#include "ui/settings/LDisplayPage.h"
#include "ui/settings/LFoldersPage.h"
#include "ui/settings/LGeneralPage.h"
#include "ui/settings/LRecorderPage.h"
#include "ui/macros/LKeysPage.h"

LSettingsDlg::LSettingsDlg(QWidget* pParent) : QDialog(pParent)
{
    setWindowTitle(tr("Settings"));
    setObjectName("SettingsDlg");
    pTabs = new QTabWidget(this);
    pFolders = new LFoldersPage(pTabs);
    vPages = {new LGeneralPage(pTabs), new LDisplayPage(pTabs), new LDevicesPage(pTabs), new LRecorderPage(pTabs), pFolders, new LKeysPage(pTabs), new LCdPage(pTabs)};
    for (LSettingsPage* p : vPages)
        pTabs->addTab(p, p->Title());
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(pButtons, &QDialogButtonBox::accepted, this, &LSettingsDlg::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &LSettingsDlg::reject);
    auto* pLayout = new QVBoxLayout(this);
    pLayout->addWidget(pTabs);
    pLayout->addWidget(pButtons);
}

void LSettingsDlg::accept()
{
    for (LSettingsPage* p : vPages)
        if (!p->Validate()) {
            pTabs->setCurrentWidget(p);
            return;
        }
    bFolderChanged = pFolders->WorkingFolderChanged();
    for (LSettingsPage* p : vPages)
        p->Save();
    QDialog::accept();
}
