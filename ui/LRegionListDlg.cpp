#include "ui/LRegionListDlg.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QSpinBox>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/LSettings.h"
#include "ui/LFrame.h"
#include "ui/LMarkCommands.h"

LRegionListDlg::LRegionListDlg(LFrame& owner, LMarkCommands& markList)
    : LMarkListDlg(owner, markList, "Regions", "RegionList", {"Region"}, "Rename Region")
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
        marks.GetRegions()[nRow].bAssemble = pItem->checkState(0) == Qt::Checked;
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
    return static_cast<int>(marks.GetRegions().size());
}

std::string LRegionListDlg::NameAt(int nRow) const
{
    return marks.GetRegions()[nRow].GetName();
}

void LRegionListDlg::SetNameAt(int nRow, const std::string& szName)
{
    marks.GetRegions()[nRow].SetName(szName);
    marks.RegionsChanged();
}

void LRegionListDlg::EraseAt(int nRow)
{
    auto& v = marks.GetRegions();
    v.erase(v.begin() + nRow);
    marks.RegionsChanged();
}

void LRegionListDlg::AddRows()
{
    for (const LEdRegion& r : marks.GetRegions()) {
        auto* pItem = new QTreeWidgetItem(pList, {QString::fromStdString(r.Describe())});
        pItem->setFlags(pItem->flags() | Qt::ItemIsUserCheckable);
        pItem->setCheckState(0, r.bAssemble ? Qt::Checked : Qt::Unchecked);
        pItem->setToolTip(0, QString::fromStdString(r.GetPath()));
    }
}
