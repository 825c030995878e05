#include "ui/LBookmarkListDlg.h"

#include <QDateTime>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/LEdFile.h"
#include "core/LSoundTime.h"
#include "ui/LEdFileWindow.h"
#include "ui/LUiPrompts.h"
#include "ui/MainDialog.h"

namespace {
// The rate a position is shown at: its file's when open, else CD rate.
int32_t RateOf(MainDialog& frame, const std::string& szKey)
{
    for (LEdFileWindow* p : frame.GetFileWindows())
        if (MainDialog::FileKey(p) == szKey)
            return p->GetFile().GetDocument().GetSampleRate();
    return 44100;
}
} // namespace

LBookmarkListDlg::LBookmarkListDlg(MainDialog& owner) : QDialog(&owner), frame(owner)
{
    setWindowTitle("Bookmarks");
    setObjectName("BookmarkListDlg");
    pList = new QTreeWidget(this);
    pList->setObjectName("BookmarkList");
    pList->setRootIsDecorated(false);
    pList->setHeaderLabels({"Name", "Position", "Times Visited", "Last Visited"});
    pList->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    auto* pButtons = new QDialogButtonBox(this);
    QPushButton* pGoTo = pButtons->addButton("&Go To", QDialogButtonBox::AcceptRole);
    QPushButton* pRename = pButtons->addButton("&Rename...", QDialogButtonBox::ActionRole);
    QPushButton* pDelete = pButtons->addButton("&Delete", QDialogButtonBox::ActionRole);
    pButtons->addButton(QDialogButtonBox::Close);
    pGoTo->setDefault(true);
    connect(pGoTo, &QPushButton::clicked, this, [this] { CmGoTo(CurrentRow()); });
    connect(pRename, &QPushButton::clicked, this, [this] { QTimer::singleShot(0, this, &LBookmarkListDlg::CmRename); });
    connect(pDelete, &QPushButton::clicked, this, [this] { Delete(CurrentRow()); });
    connect(pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(pList, &QTreeWidget::itemActivated, this, [this] { CmGoTo(CurrentRow()); });
    auto* pLayout = new QVBoxLayout(this);
    pLayout->addWidget(pList);
    pLayout->addWidget(pButtons);
    resize(620, 360);
    Fill();
}

int LBookmarkListDlg::CurrentRow() const
{
    QTreeWidgetItem* p = pList->currentItem();
    return p ? pList->indexOfTopLevelItem(p) : -1;
}

void LBookmarkListDlg::Fill()
{
    const int nRow = std::max(CurrentRow(), 0);
    pList->clear();
    for (const LEdBookMark& b : frame.GetBookmarks()) {
        LSoundTime t;
        t.SetSamples(b.sPosition, RateOf(frame, b.GetPath()));
        const QString szLast = b.nLastVisited == 0
                                   ? QString("Never")
                                   : QDateTime::fromSecsSinceEpoch(b.nLastVisited).toString("yyyy-MM-dd hh:mm:ss");
        auto* pItem = new QTreeWidgetItem(pList, {QString::fromStdString(b.GetName()),
                                                  QString::fromStdString(t.FormatMilliseconds()),
                                                  QString::number(b.nTimesVisited), szLast});
        pItem->setToolTip(0, QString::fromStdString(b.GetPath()));
    }
    if (pList->topLevelItemCount() > 0)
        pList->setCurrentItem(pList->topLevelItem(std::min(nRow, pList->topLevelItemCount() - 1)));
}

void LBookmarkListDlg::CmGoTo(int nRow)
{
    if (nRow < 0 || nRow >= static_cast<int>(frame.GetBookmarks().size()))
        return;
    nChosen = nRow;
    accept();
}

void LBookmarkListDlg::CmRename()
{
    const int nRow = CurrentRow();
    if (nRow < 0 || nRow >= static_cast<int>(frame.GetBookmarks().size()))
        return;
    QString szName = QString::fromStdString(frame.GetBookmarks()[nRow].GetName());
    if (LUiPrompts::Get().AskText(this, "Rename Bookmark", "Name:", szName))
        Rename(nRow, szName.toStdString());
}

void LBookmarkListDlg::Rename(int nRow, const std::string& szName)
{
    auto& v = frame.GetBookmarks();
    if (nRow < 0 || nRow >= static_cast<int>(v.size()))
        return;
    v[nRow].SetName(szName);
    frame.BookmarksChanged(v[nRow].GetPath());
    Fill();
}

void LBookmarkListDlg::Delete(int nRow)
{
    auto& v = frame.GetBookmarks();
    if (nRow < 0 || nRow >= static_cast<int>(v.size()))
        return;
    const std::string szKey = v[nRow].GetPath();
    v.erase(v.begin() + nRow);
    frame.BookmarksChanged(szKey);
    Fill();
}
