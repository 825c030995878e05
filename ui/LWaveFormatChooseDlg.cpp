#include "ui/LWaveFormatChooseDlg.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "formats/LWaveFile.h"

namespace {
QString Channels(uint16_t n, uint8_t nDocChans)
{
    if (n == 1 && nDocChans == 2)
        return QString("Mono (both channels mixed)"); // how the save turns a stereo sound into one
    return n == 1 ? QString("Mono") : (n == 2 ? QString("Stereo") : QString::number(n));
}

// Uncompressed samples of any width, integer or float, are PCM to the user.
bool IsPlainPCM(const LWaveFormatRecord& r)
{
    return r.IsPCM() || r.EffectiveTag() == 0x0003;
}

QTreeWidgetItem* Group(QTreeWidget* pList, const QString& szTitle)
{
    auto* pItem = new QTreeWidgetItem(pList, {szTitle});
    pItem->setFlags(Qt::ItemIsEnabled);
    QFont bold = pItem->font(0);
    bold.setBold(true);
    pItem->setFont(0, bold);
    pItem->setFirstColumnSpanned(true);
    return pItem;
}
} // namespace

LWaveFormatChooseDlg::LWaveFormatChooseDlg(QWidget* pParent, const QString& szTitle,
                                           std::vector<LWaveFormatRecord> vListed, const LWaveFormatRecord* pCurrent,
                                           uint8_t nDocChans)
    : QDialog(pParent), vRecords(std::move(vListed))
{
    setWindowTitle(szTitle);
    setObjectName("LWaveFormatChooseDlg");
    int nCurrent = -1;
    for (size_t i = 0; pCurrent && i < vRecords.size(); ++i)
        if (vRecords[i].vBytes == pCurrent->vBytes)
            nCurrent = static_cast<int>(i);
    if (pCurrent && nCurrent < 0) {
        vRecords.insert(vRecords.begin(), *pCurrent);
        nCurrent = 0;
    }
    pList = new QTreeWidget(this);
    pList->setObjectName("formats");
    pList->setHeaderLabels({tr("Format"), tr("Sample Rate"), tr("Channels"), tr("Bytes/s")});
    QTreeWidgetItem* pGroups[2] = {Group(pList, tr("PCM")), Group(pList, tr("Compressed"))};
    QTreeWidgetItem* pCurrentItem = nullptr;
    QTreeWidgetItem* pFirst = nullptr;
    for (size_t i = 0; i < vRecords.size(); ++i) {
        const LWaveFormatRecord& r = vRecords[i];
        auto* pItem = new QTreeWidgetItem(pGroups[IsPlainPCM(r) ? 0 : 1]);
        pItem->setText(0, QString::fromStdString(LWaveFile::DescribeEncoding(r)));
        pItem->setText(1, QString("%1 Hz").arg(r.nSamplesPerSec));
        pItem->setText(2, Channels(r.nChannels, nDocChans));
        pItem->setText(3, QString::number(r.nAvgBytesPerSec));
        pItem->setData(0, Qt::UserRole, static_cast<int>(i));
        if (static_cast<int>(i) == nCurrent)
            pCurrentItem = pItem;
        if (!pFirst)
            pFirst = pItem;
    }
    for (QTreeWidgetItem* pGroup : pGroups)
        pGroup->setHidden(pGroup->childCount() == 0);
    pList->expandAll();
    pList->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    if (pCurrentItem || pFirst)
        pList->setCurrentItem(pCurrentItem ? pCurrentItem : pFirst);
    connect(pList, &QTreeWidget::itemDoubleClicked, this, &LWaveFormatChooseDlg::accept);
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(pButtons, &QDialogButtonBox::accepted, this, &LWaveFormatChooseDlg::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &LWaveFormatChooseDlg::reject);
    auto* pLayout = new QVBoxLayout(this);
    pLayout->addWidget(pList);
    pLayout->addWidget(pButtons);
    resize(520, 360);
}

void LWaveFormatChooseDlg::accept()
{
    const QTreeWidgetItem* pItem = pList->currentItem();
    const int n = pItem && pItem->parent() ? pItem->data(0, Qt::UserRole).toInt() : -1;
    if (n < 0 || n >= static_cast<int>(vRecords.size()))
        return; // a group's title is no format
    choice = vRecords[static_cast<size_t>(n)];
    QDialog::accept();
}
