#include "ui/macros/AddKeysCommandDlg.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QVBoxLayout>

#include "ui/macros/LMacroCommands.h"

AddKeysCommandDlg::AddKeysCommandDlg(QWidget* pParent, const std::vector<int>& vCommands, const QString& szPrompt)
    : QDialog(pParent)
{
    setObjectName("AddKeysCommandDlg");
    setWindowTitle(tr("Add Command"));
    auto* pLayout = new QVBoxLayout(this);
    pLayout->addWidget(new QLabel(szPrompt, this));
    pList = new QListWidget(this);
    pList->setObjectName("CommandList");
    pList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    for (int nId : vCommands) {
        auto* pItem = new QListWidgetItem(LMacroCommands::PathOf(static_cast<uint32_t>(nId)), pList);
        pItem->setData(Qt::UserRole, nId);
    }
    pList->setMinimumHeight(300);
    pLayout->addWidget(pList);
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(pButtons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(pList, &QListWidget::itemDoubleClicked, this, &QDialog::accept);
    pLayout->addWidget(pButtons);
}

std::vector<uint32_t> AddKeysCommandDlg::GetSelected() const
{
    std::vector<uint32_t> v;
    for (int i = 0; i < pList->count(); ++i)
        if (pList->item(i)->isSelected())
            v.push_back(pList->item(i)->data(Qt::UserRole).toUInt());
    return v;
}
