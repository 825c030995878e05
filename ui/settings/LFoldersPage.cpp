#include "ui/settings/LFoldersPage.h"

#include <QFileDialog>
#include <QTimer>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>

#include <filesystem>
#include <system_error>

#include "core/LSettings.h"
#include "ui/LUiPrompts.h"

namespace {

const char* const kSection = "Folders";

// A folder can be used when it exists or can be made, and is a folder.
bool Usable(const QString& szFolder, QString& szWhy)
{
    std::error_code ec;
    const std::filesystem::path path(szFolder.toStdString());
    std::filesystem::create_directories(path, ec);
    if (!ec && std::filesystem::is_directory(path, ec))
        return true;
    szWhy = ec ? QString::fromStdString(ec.message()) : QObject::tr("not a folder");
    return false;
}

} // namespace

LFoldersPage::LFoldersPage(QWidget* pParent) : LSettingsPage(pParent)
{
    setObjectName("FoldersPage");
    pWorking = AddFolder("WorkingFolder", tr("a folder of its own for each run, in the cache folder"));
    pData = AddFolder("Current", QString::fromStdString(LSettings::DefaultDataFolder()));
    auto* pForm = new QFormLayout(this);
    pForm->addRow(tr("Audio working folder:"), pWorking->parentWidget());
    pForm->addRow(tr("Data folder:"), pData->parentWidget());
}

QLineEdit* LFoldersPage::AddFolder(const char* szName, const QString& szDefault)
{
    auto* pRow = new QWidget(this);
    auto* pEdit = new QLineEdit(QString::fromStdString(LSettings::GetString(kSection, szName)), pRow);
    pEdit->setObjectName(szName);
    pEdit->setPlaceholderText(szDefault);
    pEdit->setMinimumWidth(320);
    auto* pBrowse = new QPushButton(tr("Browse..."), pRow);
    connect(pBrowse, &QPushButton::clicked, this, [this, pEdit] {
        // The folder dialog's event loop runs from the event loop, not inside the click.
        QTimer::singleShot(0, pEdit, [this, pEdit] {
            const QString szFolder = QFileDialog::getExistingDirectory(this, tr("Choose Folder"), pEdit->text());
            if (!szFolder.isEmpty())
                pEdit->setText(szFolder);
        });
    });
    auto* pLayout = new QHBoxLayout(pRow);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->addWidget(pEdit, 1);
    pLayout->addWidget(pBrowse);
    return pEdit;
}

bool LFoldersPage::Validate()
{
    for (QLineEdit* p : {pWorking, pData}) {
        const QString szFolder = p->text().trimmed();
        QString szWhy;
        if (szFolder.isEmpty() || Usable(szFolder, szWhy))
            continue;
        LUiPrompts::Get().Inform(this, "Sonitra", tr("The folder \"%1\" cannot be used: %2.").arg(szFolder, szWhy),
                                 LUiPrompts::IconWarning);
        p->setFocus();
        return false;
    }
    return true;
}

bool LFoldersPage::WorkingFolderChanged() const
{
    return pWorking->text().trimmed().toStdString() != LSettings::GetString(kSection, "WorkingFolder");
}

void LFoldersPage::Save()
{
    LSettings::SetString(kSection, "WorkingFolder", pWorking->text().trimmed().toStdString());
    LSettings::SetString(kSection, "Current", pData->text().trimmed().toStdString());
}
