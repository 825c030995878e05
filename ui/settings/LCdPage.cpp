#include "ui/settings/LCdPage.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QSpinBox>

#include "cd/LCdReadMode.h"
#include "cd/LCddbClient.h"
#include "ui/LUiPrompts.h"

LCdPage::LCdPage(QWidget* pParent) : LSettingsPage(pParent)
{
    setObjectName("CdPage");
    const LCddbServer server = LCddbServer::FromSettings();
    pEnabled = new QCheckBox(tr("Look up track titles on a CDDB server"), this);
    pEnabled->setObjectName("CddbEnabled");
    pEnabled->setChecked(server.bEnabled);
    pServer = new QLineEdit(QString::fromStdString(server.szHost), this);
    pServer->setObjectName("CddbServer");
    pProtocol = new QComboBox(this);
    pProtocol->setObjectName("CddbProtocol");
    pProtocol->addItems({tr("CDDB protocol (cddbp)"), tr("HTTP (cddb.cgi)")});
    pProtocol->setCurrentIndex(server.bHttp ? 1 : 0);
    pPort = new QSpinBox(this);
    pPort->setObjectName("CddbPort");
    pPort->setRange(1, 65535);
    pPort->setValue(server.nPort);
    pPath = new QLineEdit(QString::fromStdString(server.szPath), this);
    pPath->setObjectName("CddbPath");
    pTimeout = new QSpinBox(this);
    pTimeout->setObjectName("CddbTimeout");
    pTimeout->setRange(1, 120);
    pTimeout->setSuffix(tr(" s"));
    pTimeout->setValue(server.nTimeoutMs / 1000);
    pMode = new QComboBox(this);
    pMode->setObjectName("ReadMode");
    pMode->addItems({tr("Fast"), tr("Verified (overlap and verify)"), tr("Paranoid (full error repair)")});
    pMode->setCurrentIndex(static_cast<int>(LCd::ReadModeSetting()));
    // The usual port follows the protocol unless the user set another.
    connect(pProtocol, &QComboBox::currentIndexChanged, this, [this](int n) {
        if (pPort->value() == 80 || pPort->value() == 8880)
            pPort->setValue(n == 1 ? 80 : 8880);
    });

    auto* pForm = new QFormLayout(this);
    pForm->addRow(pEnabled);
    pForm->addRow(tr("CDDB server:"), pServer);
    pForm->addRow(tr("Protocol:"), pProtocol);
    pForm->addRow(tr("Port:"), pPort);
    pForm->addRow(tr("HTTP path:"), pPath);
    pForm->addRow(tr("Time-out:"), pTimeout);
    pForm->addRow(tr("Read mode:"), pMode);
}

bool LCdPage::Validate()
{
    if (!pEnabled->isChecked() || !pServer->text().trimmed().isEmpty())
        return true;
    LUiPrompts::Get().Inform(this, "Sonitra", tr("Enter the name of the CDDB server (for example gnudb.gnudb.org)."),
                             LUiPrompts::IconWarning);
    return false;
}

void LCdPage::Save()
{
    LCddbServer server;
    server.bEnabled = pEnabled->isChecked();
    server.szHost = pServer->text().trimmed().toStdString();
    server.bHttp = pProtocol->currentIndex() == 1;
    server.nPort = pPort->value();
    server.szPath = pPath->text().trimmed().toStdString();
    server.nTimeoutMs = pTimeout->value() * 1000;
    server.Store();
    LCd::SetReadModeSetting(static_cast<LCdReadMode>(pMode->currentIndex()));
}
