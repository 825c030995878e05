#include "ui/cd/LCdCopyDlg.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QDoubleSpinBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QVBoxLayout>

#include "cd/LCdDevice.h"
#include "core/LSettings.h"
#include "ui/LAudioFilters.h"
#include "ui/LEdFileWindow.h"
#include "ui/LUiPrompts.h"

namespace {
constexpr int kWindowRole = Qt::UserRole;     // index into the open files, or -1
constexpr int kPathRole = Qt::UserRole + 1;   // a file on disk
const int kSpeeds[] = {0, 4, 8, 16, 24, 48};

QListWidgetItem* AddItem(QListWidget* pList, const QString& szText, int nWindow, const QString& szPath, bool bChecked)
{
    auto* pItem = new QListWidgetItem(szText, pList);
    pItem->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    pItem->setCheckState(bChecked ? Qt::Checked : Qt::Unchecked);
    pItem->setData(kWindowRole, nWindow);
    pItem->setData(kPathRole, szPath);
    return pItem;
}
} // namespace

LCdCopyDlg::LCdCopyDlg(QWidget* pParent, const std::vector<LEdFileWindow*>& vOpenFiles) : QDialog(pParent), vOpen(vOpenFiles)
{
    setWindowTitle(tr("Copy File(s) to CD"));
    pFiles = new QListWidget(this);
    pFiles->setObjectName("files");
    for (size_t i = 0; i < vOpen.size(); ++i)
        AddItem(pFiles, QString::fromStdString(vOpen[i]->GetName()), static_cast<int>(i), QString(), true);
    auto* pAdd = new QPushButton(tr("Add &Files..."), this);
    pAdd->setObjectName("add");
    auto* pUp = new QPushButton(tr("&Up"), this);
    pUp->setObjectName("up");
    auto* pDown = new QPushButton(tr("&Down"), this);
    pDown->setObjectName("down");
    auto* pRemove = new QPushButton(tr("&Remove"), this);
    pRemove->setObjectName("remove");
    pAlbum = new QLineEdit(this);
    pAlbum->setObjectName("album");
    pGap = new QDoubleSpinBox(this);
    pGap->setObjectName("gap");
    pGap->setRange(0.0, 10.0);
    pGap->setDecimals(1);
    pGap->setSuffix(tr(" s"));
    pGap->setValue(2.0);
    std::string szWriterError;
    bWriter = LCdDisc::FindWriter("", &szWriterError);
    pToDisc = new QRadioButton(bWriter ? tr("Write a CD") : tr("Write a CD (No CD writer found)"), this);
    pToDisc->setObjectName("toDisc");
    pToDisc->setEnabled(bWriter);
    pToImage = new QRadioButton(tr("Write a disc image (.cue + .bin) to burn elsewhere"), this);
    pToImage->setObjectName("toImage");
    (bWriter ? pToDisc : pToImage)->setChecked(true);
    pSimulate = new QCheckBox(tr("Simulate (the writer goes through the motions without burning)"), this);
    pSimulate->setObjectName("simulate");
    pSpeed = new QComboBox(this);
    pSpeed->setObjectName("speed");
    for (int n : kSpeeds)
        pSpeed->addItem(n == 0 ? tr("Fastest") : QString("%1x").arg(n));
    pMinutes = new QComboBox(this);
    pMinutes->setObjectName("minutes");
    pMinutes->addItems({tr("80 minutes"), tr("74 minutes")});
    LayOut(pAdd, pUp, pDown, pRemove);
    UpdateTarget();
}

void LCdCopyDlg::LayOut(QPushButton* pAdd, QPushButton* pUp, QPushButton* pDown, QPushButton* pRemove)
{
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    pButtons->button(QDialogButtonBox::Ok)->setText(tr("&Write"));

    auto* pGrid = new QGridLayout();
    pGrid->addWidget(pFiles, 0, 0, 5, 1);
    pGrid->addWidget(pAdd, 0, 1);
    pGrid->addWidget(pUp, 1, 1);
    pGrid->addWidget(pDown, 2, 1);
    pGrid->addWidget(pRemove, 3, 1);
    auto* pForm = new QFormLayout();
    pForm->addRow(tr("Album title:"), pAlbum);
    pForm->addRow(tr("Gap between tracks:"), pGap);
    pForm->addRow(pToDisc);
    pForm->addRow(tr("Speed:"), pSpeed);
    pForm->addRow(pSimulate);
    pForm->addRow(pToImage);
    pForm->addRow(tr("Disc size:"), pMinutes);
    auto* pLayout = new QVBoxLayout(this);
    pLayout->addWidget(new QLabel(tr("Tracks, in the order they go on the disc:"), this));
    pLayout->addLayout(pGrid, 1);
    pLayout->addLayout(pForm);
    pLayout->addWidget(pButtons);
    resize(560, 480);

    connect(pAdd, &QPushButton::clicked, this, [this] { QTimer::singleShot(0, this, &LCdCopyDlg::AddFiles); });
    connect(pUp, &QPushButton::clicked, this, [this] { Move(-1); });
    connect(pDown, &QPushButton::clicked, this, [this] { Move(1); });
    connect(pRemove, &QPushButton::clicked, this, &LCdCopyDlg::Remove);
    connect(pToDisc, &QRadioButton::toggled, this, &LCdCopyDlg::UpdateTarget);
    connect(pButtons, &QDialogButtonBox::accepted, this, &LCdCopyDlg::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &LCdCopyDlg::reject);
}

void LCdCopyDlg::UpdateTarget()
{
    pSpeed->setEnabled(pToDisc->isChecked());
    pSimulate->setEnabled(pToDisc->isChecked());
}

void LCdCopyDlg::AddFiles()
{
    const QString szFolder = QString::fromStdString(LSettings::GetString("Folders", "OpenFileDir", QDir::homePath().toStdString()));
    for (const QString& sz : LUiPrompts::Get().GetOpenFileNames(this, "Add Files to the CD", szFolder, LAudioFilters::Open()))
        AddItem(pFiles, QFileInfo(sz).fileName(), -1, sz, true);
}

void LCdCopyDlg::Move(int nBy)
{
    const int nRow = pFiles->currentRow();
    const int nTo = nRow + nBy;
    if (nRow < 0 || nTo < 0 || nTo >= pFiles->count())
        return;
    QListWidgetItem* pItem = pFiles->takeItem(nRow);
    pFiles->insertItem(nTo, pItem);
    pFiles->setCurrentRow(nTo);
}

void LCdCopyDlg::Remove()
{
    delete pFiles->takeItem(pFiles->currentRow());
}

LCdCopyChoice LCdCopyDlg::GetChoice() const
{
    LCdCopyChoice c;
    for (int i = 0; i < pFiles->count(); ++i) {
        const QListWidgetItem* pItem = pFiles->item(i);
        if (pItem->checkState() != Qt::Checked)
            continue;
        LCdCopyChoice::Entry e;
        const int nWindow = pItem->data(kWindowRole).toInt();
        e.pWindow = nWindow >= 0 && static_cast<size_t>(nWindow) < vOpen.size() ? vOpen[static_cast<size_t>(nWindow)] : nullptr;
        e.szPath = pItem->data(kPathRole).toString().toStdString();
        e.szTitle = QFileInfo(pItem->text()).completeBaseName().toStdString();
        c.vEntries.push_back(e);
    }
    c.szAlbum = pAlbum->text().toStdString();
    c.nGapSectors = static_cast<int32_t>(pGap->value() * 75.0 + 0.5);
    c.bImage = pToImage->isChecked();
    c.bSimulate = pSimulate->isChecked();
    c.nSpeed = kSpeeds[pSpeed->currentIndex()];
    c.nDiscMinutes = pMinutes->currentIndex() == 1 ? 74 : 80;
    return c;
}

void LCdCopyDlg::accept()
{
    if (GetChoice().vEntries.empty()) {
        LUiPrompts::Get().Inform(this, "Sonitra", tr("Choose the files to copy to the CD."), LUiPrompts::IconInformation);
        return;
    }
    QDialog::accept();
}
