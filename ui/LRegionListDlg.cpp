#include "ui/LRegionListDlg.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/LSettings.h"
#include "ui/LUiPrompts.h"
#include "ui/MainDialog.h"

LRegionListDlg::LRegionListDlg(MainDialog& owner) : QDialog(&owner), frame(owner)
{
    setWindowTitle("Regions");
    setObjectName("RegionListDlg");
    pList = new QTreeWidget(this);
    pList->setObjectName("RegionList");
    pList->setRootIsDecorated(false);
    pList->setHeaderLabels({"Region"});
    pAutoGap = new QCheckBox("Put silence between regions when assembling:", this);
    pAutoGap->setObjectName("AutoGap");
    pAutoGap->setChecked(LSettings::GetBool("Settings", "AutoGap", false));
    pGapTime = new QSpinBox(this);
    pGapTime->setObjectName("AutoGapTime");
    pGapTime->setRange(0, 600000);
    pGapTime->setSuffix(" ms");
    pGapTime->setValue(LSettings::GetInt("Settings", "AutoGapTime", 1000));
    connect(pAutoGap, &QCheckBox::toggled, this, [](bool b) { LSettings::SetBool("Settings", "AutoGap", b); });
    connect(pGapTime, &QSpinBox::valueChanged, this, [](int n) { LSettings::SetInt("Settings", "AutoGapTime", n); });
    auto* pButtons = new QDialogButtonBox(this);
    QPushButton* pGoTo = pButtons->addButton("&Go To", QDialogButtonBox::AcceptRole);
    QPushButton* pRename = pButtons->addButton("&Rename...", QDialogButtonBox::ActionRole);
    QPushButton* pDelete = pButtons->addButton("&Delete", QDialogButtonBox::ActionRole);
    pButtons->addButton(QDialogButtonBox::Close);
    pGoTo->setDefault(true);
    connect(pGoTo, &QPushButton::clicked, this, [this] { CmGoTo(CurrentRow()); });
    connect(pRename, &QPushButton::clicked, this, [this] { QTimer::singleShot(0, this, &LRegionListDlg::CmRename); });
    connect(pDelete, &QPushButton::clicked, this, [this] { Delete(CurrentRow()); });
    connect(pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(pList, &QTreeWidget::itemActivated, this, [this] { CmGoTo(CurrentRow()); });
    connect(pList, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* pItem) {
        const int nRow = pList->indexOfTopLevelItem(pItem);
        auto& v = frame.GetRegions();
        if (bFilling || nRow < 0 || nRow >= static_cast<int>(v.size()))
            return;
        v[nRow].bAssemble = pItem->checkState(0) == Qt::Checked;
    });
    auto* pGap = new QHBoxLayout;
    pGap->addWidget(pAutoGap);
    pGap->addWidget(pGapTime);
    pGap->addStretch();
    auto* pLayout = new QVBoxLayout(this);
    pLayout->addWidget(new QLabel("Ticked regions are joined by Bookmarks > Assemble Regions.", this));
    pLayout->addWidget(pList);
    pLayout->addLayout(pGap);
    pLayout->addWidget(pButtons);
    resize(520, 360);
    Fill();
}

int LRegionListDlg::CurrentRow() const
{
    QTreeWidgetItem* p = pList->currentItem();
    return p ? pList->indexOfTopLevelItem(p) : -1;
}

void LRegionListDlg::Fill()
{
    bFilling = true;
    const int nRow = std::max(CurrentRow(), 0);
    pList->clear();
    for (const LEdRegion& r : frame.GetRegions()) {
        auto* pItem = new QTreeWidgetItem(pList, {QString::fromStdString(r.Describe())});
        pItem->setFlags(pItem->flags() | Qt::ItemIsUserCheckable);
        pItem->setCheckState(0, r.bAssemble ? Qt::Checked : Qt::Unchecked);
        pItem->setToolTip(0, QString::fromStdString(r.GetPath()));
    }
    if (pList->topLevelItemCount() > 0)
        pList->setCurrentItem(pList->topLevelItem(std::min(nRow, pList->topLevelItemCount() - 1)));
    bFilling = false;
}

void LRegionListDlg::CmGoTo(int nRow)
{
    if (nRow < 0 || nRow >= static_cast<int>(frame.GetRegions().size()))
        return;
    nChosen = nRow;
    accept();
}

void LRegionListDlg::CmRename()
{
    const int nRow = CurrentRow();
    if (nRow < 0 || nRow >= static_cast<int>(frame.GetRegions().size()))
        return;
    QString szName = QString::fromStdString(frame.GetRegions()[nRow].GetName());
    if (LUiPrompts::Get().AskText(this, "Rename Region", "Name:", szName))
        Rename(nRow, szName.toStdString());
}

void LRegionListDlg::Rename(int nRow, const std::string& szName)
{
    auto& v = frame.GetRegions();
    if (nRow < 0 || nRow >= static_cast<int>(v.size()))
        return;
    v[nRow].SetName(szName);
    frame.RegionsChanged();
    Fill();
}

void LRegionListDlg::Delete(int nRow)
{
    auto& v = frame.GetRegions();
    if (nRow < 0 || nRow >= static_cast<int>(v.size()))
        return;
    v.erase(v.begin() + nRow);
    frame.RegionsChanged();
    Fill();
}
