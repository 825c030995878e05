#include "ui/LRegionListDlg.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSpinBox>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/LSettings.h"
#include "ui/LFrame.h"
#include "ui/LProjectCommands.h"

LRegionListDlg::LRegionListDlg(LFrame& owner, LProjectCommands& marks)
    : LMarkListDlg(owner, marks, "Regions", "RegionList", {"Region"}, "Rename Region")
{
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
    connect(pList, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* pItem) {
        const int nRow = pList->indexOfTopLevelItem(pItem);
        if (bFilling || nRow < 0 || nRow >= Count())
            return;
        project.GetRegions()[nRow].bAssemble = pItem->checkState(0) == Qt::Checked;
    });
    auto* pGap = new QHBoxLayout;
    pGap->addWidget(pAutoGap);
    pGap->addWidget(pGapTime);
    pGap->addStretch();
    pLayout->insertWidget(0, new QLabel("Ticked regions are joined by Bookmarks > Assemble Regions.", this));
    pLayout->insertLayout(2, pGap);
    resize(520, 360);
    Fill();
}

int LRegionListDlg::Count() const
{
    return static_cast<int>(project.GetRegions().size());
}

std::string LRegionListDlg::NameAt(int nRow) const
{
    return project.GetRegions()[nRow].GetName();
}

void LRegionListDlg::SetNameAt(int nRow, const std::string& szName)
{
    project.GetRegions()[nRow].SetName(szName);
    project.RegionsChanged();
}

void LRegionListDlg::EraseAt(int nRow)
{
    auto& v = project.GetRegions();
    v.erase(v.begin() + nRow);
    project.RegionsChanged();
}

void LRegionListDlg::AddRows()
{
    for (const LEdRegion& r : project.GetRegions()) {
        auto* pItem = new QTreeWidgetItem(pList, {QString::fromStdString(r.Describe())});
        pItem->setFlags(pItem->flags() | Qt::ItemIsUserCheckable);
        pItem->setCheckState(0, r.bAssemble ? Qt::Checked : Qt::Unchecked);
        pItem->setToolTip(0, QString::fromStdString(r.GetPath()));
    }
}
