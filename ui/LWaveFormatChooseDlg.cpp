#include "ui/LWaveFormatChooseDlg.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "formats/LWaveFile.h"

namespace {
QString Channels(uint16_t n)
{
    return n == 1 ? QString("Mono") : (n == 2 ? QString("Stereo") : QString::number(n));
}
} // namespace

LWaveFormatChooseDlg::LWaveFormatChooseDlg(QWidget* pParent, const QString& szTitle,
                                           std::vector<LWaveFormatRecord> vListed, const LWaveFormatRecord* pCurrent)
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
    pList->setRootIsDecorated(false);
    pList->setHeaderLabels({tr("Format"), tr("Sample Rate"), tr("Channels"), tr("Bytes/s")});
    for (const LWaveFormatRecord& r : vRecords) {
        auto* pItem = new QTreeWidgetItem(pList);
        pItem->setText(0, QString::fromStdString(LWaveFile::DescribeEncoding(r)));
        pItem->setText(1, QString("%1 Hz").arg(r.nSamplesPerSec));
        pItem->setText(2, Channels(r.nChannels));
        pItem->setText(3, QString::number(r.nAvgBytesPerSec));
    }
    pList->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    pList->setCurrentItem(pList->topLevelItem(nCurrent >= 0 ? nCurrent : 0));
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
    const int n = pList->indexOfTopLevelItem(pList->currentItem());
    if (n < 0 || n >= static_cast<int>(vRecords.size()))
        return;
    choice = vRecords[static_cast<size_t>(n)];
    QDialog::accept();
}
