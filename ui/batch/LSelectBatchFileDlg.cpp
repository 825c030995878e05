#include "ui/batch/LSelectBatchFileDlg.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "core/LFile.h"
#include "core/LSettings.h"
#include "ui/LAudioFilters.h"
#include "ui/LUiPrompts.h"

LSelectBatchFileDlg::LSelectBatchFileDlg(QWidget* pParent, const std::vector<std::string>& vFiles) : QDialog(pParent)
{
    setObjectName("LSelectBatchFileDlg");
    setWindowTitle(tr("Batch Converter - Files"));
    auto* pLayout = new QVBoxLayout(this);
    auto* pRow = new QHBoxLayout;
    pList = new QListWidget(this);
    pList->setObjectName("BatchFiles");
    pList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    for (const std::string& sz : vFiles)
        pList->addItem(QString::fromStdString(sz));
    connect(pList, &QListWidget::itemSelectionChanged, this, &LSelectBatchFileDlg::EnableControls);
    pRow->addWidget(pList, 1);
    auto* pSide = new QVBoxLayout;
    auto* pAdd = new QPushButton(tr("Add Files..."), this);
    connect(pAdd, &QPushButton::clicked, this, [this] { QTimer::singleShot(0, this, &LSelectBatchFileDlg::CmAddFile); });
    pRemove = new QPushButton(tr("Remove"), this);
    connect(pRemove, &QPushButton::clicked, this, &LSelectBatchFileDlg::CmRemoveFile);
    pSide->addWidget(pAdd);
    pSide->addWidget(pRemove);
    pSide->addStretch();
    pRow->addLayout(pSide);
    pLayout->addLayout(pRow);
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Cancel | QDialogButtonBox::Help, this);
    pNext = pButtons->addButton(tr("Next >"), QDialogButtonBox::AcceptRole);
    connect(pButtons, &QDialogButtonBox::accepted, this, &LSelectBatchFileDlg::CmOk);
    connect(pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(pButtons, &QDialogButtonBox::helpRequested, this, [this] { QTimer::singleShot(0, this, &LSelectBatchFileDlg::CmHelp); });
    pLayout->addWidget(pButtons);
    resize(560, 380);
    EnableControls();
}

std::vector<std::string> LSelectBatchFileDlg::GetFiles() const
{
    std::vector<std::string> v;
    for (int i = 0; i < pList->count(); ++i)
        v.push_back(pList->item(i)->text().toStdString());
    return v;
}

void LSelectBatchFileDlg::CmAddFile()
{
    const QString szFolder =
        QString::fromStdString(LSettings::GetString("BatchConverter", "InputDir", QDir::homePath().toStdString()));
    const QStringList files = LUiPrompts::Get().GetOpenFileNames(this, "Add Files to Convert", szFolder, LAudioFilters::Open());
    if (!files.isEmpty())
        LSettings::SetString("BatchConverter", "InputDir", LFile::FolderOf(files.front().toStdString()));
    AddFiles(files);
}

void LSelectBatchFileDlg::AddFiles(const QStringList& files)
{
    for (const QString& sz : files)
        if (pList->findItems(sz, Qt::MatchExactly).isEmpty())
            pList->addItem(sz);
    EnableControls();
}

void LSelectBatchFileDlg::CmRemoveFile()
{
    for (QListWidgetItem* p : pList->selectedItems())
        delete p;
    EnableControls();
}

void LSelectBatchFileDlg::EnableControls()
{
    pRemove->setEnabled(!pList->selectedItems().isEmpty());
    pNext->setEnabled(pList->count() > 0);
}

void LSelectBatchFileDlg::CmHelp()
{
    LUiPrompts::Get().Inform(this, "Sonitra",
                             tr("Add the files the batch script is to convert. Each is loaded, the script's commands "
                                "are applied to the whole file, and the result is saved in the format and folder you "
                                "choose next; the files themselves are never replaced."),
                             LUiPrompts::IconInformation);
}

void LSelectBatchFileDlg::CmOk()
{
    if (pList->count() > 0)
        QDialog::accept();
}
