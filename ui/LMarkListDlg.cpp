#include "ui/LMarkListDlg.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "ui/LUiPrompts.h"
#include "ui/LFrame.h"

LMarkListDlg::LMarkListDlg(LFrame& owner, LMarkCommands& markList, const QString& szTitle, const QString& szName,
                           const QStringList& vHeaders, const QString& szRename)
    : QDialog(owner.GetWidget()), frame(owner), marks(markList), szRenameTitle(szRename)
{
    setWindowTitle(szTitle);
    setObjectName(szName + "Dlg");
    pList = new QTreeWidget(this);
    pList->setObjectName(szName);
    pList->setRootIsDecorated(false);
    pList->setHeaderLabels(vHeaders);
    auto* pButtons = new QDialogButtonBox(this);
    QPushButton* pGoTo = pButtons->addButton("&Go To", QDialogButtonBox::AcceptRole);
    QPushButton* pRename = pButtons->addButton("&Rename...", QDialogButtonBox::ActionRole);
    QPushButton* pDelete = pButtons->addButton("&Delete", QDialogButtonBox::ActionRole);
    pButtons->addButton(QDialogButtonBox::Close);
    pGoTo->setDefault(true);
    connect(pGoTo, &QPushButton::clicked, this, [this] { CmGoTo(CurrentRow()); });
    // The name prompt runs its own event loop: never from inside the click.
    connect(pRename, &QPushButton::clicked, this, [this] { QTimer::singleShot(0, this, &LMarkListDlg::CmRename); });
    connect(pDelete, &QPushButton::clicked, this, [this] { Delete(CurrentRow()); });
    connect(pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(pList, &QTreeWidget::itemActivated, this, [this] { CmGoTo(CurrentRow()); });
    pLayout = new QVBoxLayout(this);
    pLayout->addWidget(pList);
    pLayout->addWidget(pButtons);
}

int LMarkListDlg::CurrentRow() const
{
    QTreeWidgetItem* p = pList->currentItem();
    return p ? pList->indexOfTopLevelItem(p) : -1;
}

void LMarkListDlg::Fill()
{
    bFilling = true;
    const int nRow = std::max(CurrentRow(), 0);
    pList->clear();
    AddRows();
    if (pList->topLevelItemCount() > 0)
        pList->setCurrentItem(pList->topLevelItem(std::min(nRow, pList->topLevelItemCount() - 1)));
    bFilling = false;
}

void LMarkListDlg::CmGoTo(int nRow)
{
    if (!HasRow(nRow))
        return;
    nChosen = nRow;
    accept();
}

void LMarkListDlg::CmRename()
{
    const int nRow = CurrentRow();
    if (!HasRow(nRow))
        return;
    QString szName = QString::fromStdString(NameAt(nRow));
    if (LUiPrompts::Get().AskText(this, szRenameTitle, "Name:", szName))
        Rename(nRow, szName.toStdString());
}

void LMarkListDlg::Rename(int nRow, const std::string& szName)
{
    if (!HasRow(nRow))
        return;
    SetNameAt(nRow, szName);
    Fill();
}

void LMarkListDlg::Delete(int nRow)
{
    if (!HasRow(nRow))
        return;
    EraseAt(nRow);
    Fill();
}
