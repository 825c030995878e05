#include "ui/cd/LCdLoadDlg.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/LSettings.h"
#include "ui/LUiPrompts.h"
#include "ui/cd/LCdProcess.h"

namespace {
const char kImageFilter[] = "CD Disc Images (*.cue *.toc *.CUE *.TOC);;All Files (*)";
enum Column
{
    ColNumber,
    ColLength,
    ColTitle,
};
} // namespace

LCdLoadDlg::LCdLoadDlg(QWidget* pParent, const std::string& szImage) : QDialog(pParent)
{
    setWindowTitle(tr("Load Audio CD Track(s)"));
    pDrive = new QComboBox(this);
    pDrive->setObjectName("drive");
    auto* pImage = new QPushButton(tr("Disc &Image..."), this);
    pImage->setObjectName("image");
    pMode = new QComboBox(this);
    pMode->setObjectName("mode");
    pMode->addItems({tr("Fast"), tr("Verified (overlap and verify)"), tr("Paranoid (full error repair)")});
    pMode->setCurrentIndex(static_cast<int>(LCd::ReadModeSetting()));
    pMatch = new QComboBox(this);
    pMatch->setObjectName("match");
    pMatch->setVisible(false);
    pStatus = new QLabel(this);
    pStatus->setObjectName("status");
    pStatus->setWordWrap(true);
    pTracks = new QTreeWidget(this);
    pTracks->setObjectName("tracks");
    pTracks->setHeaderLabels({tr("Track"), tr("Length"), tr("Title")});
    pTracks->setRootIsDecorated(false);
    pTracks->header()->setStretchLastSection(true);
    auto* pAll = new QPushButton(tr("Select &All"), this);
    pAll->setObjectName("selectAll");
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    pButtons->button(QDialogButtonBox::Ok)->setText(tr("&Load"));

    auto* pForm = new QFormLayout();
    auto* pDriveRow = new QHBoxLayout();
    pDriveRow->addWidget(pDrive, 1);
    pDriveRow->addWidget(pImage);
    pForm->addRow(tr("Drive:"), pDriveRow);
    pForm->addRow(tr("Read mode:"), pMode);
    pForm->addRow(tr("Disc:"), pMatch);
    auto* pLayout = new QVBoxLayout(this);
    pLayout->addLayout(pForm);
    pLayout->addWidget(pStatus);
    pLayout->addWidget(pTracks, 1);
    auto* pBottom = new QHBoxLayout();
    pBottom->addWidget(pAll);
    pBottom->addStretch(1);
    pBottom->addWidget(pButtons);
    pLayout->addLayout(pBottom);
    resize(560, 420);

    connect(pAll, &QPushButton::clicked, this, &LCdLoadDlg::SelectAll);
    connect(pButtons, &QDialogButtonBox::accepted, this, &LCdLoadDlg::accept);
    connect(pButtons, &QDialogButtonBox::rejected, this, &LCdLoadDlg::reject);
    // Reading a disc and asking a server are processes: they run from the event loop.
    connect(pImage, &QPushButton::clicked, this, [this] { QTimer::singleShot(0, this, &LCdLoadDlg::ChooseImage); });
    FillDrives(szImage);
    connect(pDrive, &QComboBox::currentIndexChanged, this, [this] { QTimer::singleShot(0, this, &LCdLoadDlg::OpenChosenSource); });
    connect(pMatch, &QComboBox::currentIndexChanged, this, [this](int n) { QTimer::singleShot(0, this, [this, n] { LookUp(n); }); });
    QTimer::singleShot(0, this, &LCdLoadDlg::OpenChosenSource);
}

void LCdLoadDlg::FillDrives(const std::string& szImage)
{
    for (const LCdDriveInfo& d : LCdDisc::ListDrives())
        pDrive->addItem(QString::fromStdString(d.szDevice), QString::fromStdString(d.szDevice));
    if (!szImage.empty())
        pDrive->addItem(QFileInfo(QString::fromStdString(szImage)).fileName(), QString::fromStdString(szImage));
    if (pDrive->count() == 0)
        pDrive->addItem(tr("No CD drive found"), QString());
    pDrive->setCurrentIndex(pDrive->count() - (szImage.empty() ? pDrive->count() : 1));
}

void LCdLoadDlg::ChooseImage()
{
    const QString szFolder = QString::fromStdString(LSettings::GetString("Folders", "OpenFileDir", QDir::homePath().toStdString()));
    const QStringList files = LUiPrompts::Get().GetOpenFileNames(this, "Open Disc Image", szFolder, kImageFilter);
    if (files.isEmpty())
        return;
    const int nEmpty = pDrive->findData(QString());
    if (nEmpty >= 0)
        pDrive->removeItem(nEmpty);
    pDrive->addItem(QFileInfo(files.front()).fileName(), files.front());
    pDrive->setCurrentIndex(pDrive->count() - 1);
    OpenChosenSource();
}

void LCdLoadDlg::OpenChosenSource()
{
    const std::string szSource = pDrive->currentData().toString().toStdString();
    pTracks->clear();
    pMatch->setVisible(false);
    if (szSource.empty()) {
        pDisc.reset();
        pStatus->setText(tr("No CD drive found. Open a disc image (.cue or .toc) instead."));
        return;
    }
    pDisc = LCdDisc::Open(szSource);
    if (pDisc->IsError()) {
        pStatus->setText(QString::fromStdString(pDisc->GetError()));
        pDisc.reset();
        return;
    }
    titles = LCdTitles::FromDisc(pDisc->GetToc());
    ShowTracks();
    LookUp(-1);
}

void LCdLoadDlg::LookUp(int nChoice)
{
    if (!pDisc || !LCddbServer::FromSettings().bEnabled) {
        pStatus->setText(titles.szSource.empty() ? tr("Titles: track numbers") : tr("Titles from CD-TEXT"));
        return;
    }
    LCdLookupProcess lookup(pDisc->GetToc(), LCddbServer::FromSettings(), nChoice);
    lookup.Run();
    titles = lookup.GetTitles();
    if (nChoice < 0 && lookup.GetMatches().size() > 1) {
        const QSignalBlocker block(pMatch);
        pMatch->clear();
        for (const LCddbMatch& m : lookup.GetMatches())
            pMatch->addItem(QString::fromStdString("[" + m.szCategory + "] " + m.szTitle));
        pMatch->setVisible(true);
    }
    ShowTracks();
    QString szText = titles.szSource == "CDDB" ? tr("Titles from CDDB") : titles.szSource.empty() ? tr("Titles: track numbers") : tr("Titles from CD-TEXT");
    if (!titles.szMessage.empty())
        szText += " (" + QString::fromStdString(titles.szMessage) + ")";
    pStatus->setText(szText);
}

void LCdLoadDlg::ShowTracks()
{
    pTracks->clear();
    if (!pDisc)
        return;
    const LCdToc& toc = pDisc->GetToc();
    for (size_t i = 0; i < toc.vTracks.size(); ++i) {
        const LCdTrackInfo& t = toc.vTracks[i];
        auto* pItem = new QTreeWidgetItem(pTracks);
        pItem->setText(ColNumber, QString::asprintf("%02d", t.nNumber));
        pItem->setText(ColLength, QString::fromStdString(LCd::FormatLength(t.nSectors)));
        pItem->setText(ColTitle, t.bAudio ? QString::fromStdString(titles.TitleOf(toc, t.nNumber)) : tr("(data track)"));
        pItem->setData(ColNumber, Qt::UserRole, t.nNumber);
        pItem->setFlags(t.bAudio ? (Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsSelectable | Qt::ItemIsEditable)
                                 : Qt::NoItemFlags);
        pItem->setCheckState(ColNumber, Qt::Unchecked);
    }
    pTracks->resizeColumnToContents(ColNumber);
}

void LCdLoadDlg::SelectAll()
{
    for (int i = 0; i < pTracks->topLevelItemCount(); ++i)
        if (pTracks->topLevelItem(i)->flags() & Qt::ItemIsUserCheckable)
            pTracks->topLevelItem(i)->setCheckState(ColNumber, Qt::Checked);
}

std::vector<LCdLoadDlg::Track> LCdLoadDlg::GetChosen() const
{
    std::vector<Track> v;
    for (int i = 0; i < pTracks->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* pItem = pTracks->topLevelItem(i);
        if (pItem->checkState(ColNumber) == Qt::Checked)
            v.push_back({pItem->data(ColNumber, Qt::UserRole).toInt(), pItem->text(ColTitle).toStdString()});
    }
    return v;
}

LCdReadMode LCdLoadDlg::GetMode() const
{
    return static_cast<LCdReadMode>(pMode->currentIndex());
}

void LCdLoadDlg::accept()
{
    if (!pDisc || GetChosen().empty()) {
        LUiPrompts::Get().Inform(this, "Sonitra", tr("Choose the tracks to load (or Select All)."), LUiPrompts::IconInformation);
        return;
    }
    LCd::SetReadModeSetting(GetMode());
    QDialog::accept();
}
