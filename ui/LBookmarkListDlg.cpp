#include "ui/LBookmarkListDlg.h"

#include <QDateTime>
#include <QHeaderView>
#include <QTreeWidget>

#include "core/LEdFile.h"
#include "core/LSoundTime.h"
#include "ui/LEdFileWindow.h"
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

LBookmarkListDlg::LBookmarkListDlg(MainDialog& owner)
    : LMarkListDlg(owner, "Bookmarks", "BookmarkList", {"Name", "Position", "Times Visited", "Last Visited"},
                   "Rename Bookmark")
{
    pList->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    resize(620, 360);
    Fill();
}

int LBookmarkListDlg::Count() const
{
    return static_cast<int>(frame.GetBookmarks().size());
}

std::string LBookmarkListDlg::NameAt(int nRow) const
{
    return frame.GetBookmarks()[nRow].GetName();
}

void LBookmarkListDlg::SetNameAt(int nRow, const std::string& szName)
{
    auto& v = frame.GetBookmarks();
    v[nRow].SetName(szName);
    frame.BookmarksChanged(v[nRow].GetPath());
}

void LBookmarkListDlg::EraseAt(int nRow)
{
    auto& v = frame.GetBookmarks();
    const std::string szKey = v[nRow].GetPath();
    v.erase(v.begin() + nRow);
    frame.BookmarksChanged(szKey);
}

void LBookmarkListDlg::AddRows()
{
    for (const LEdBookMark& b : frame.GetBookmarks()) {
        LSoundTime t;
        t.SetSamples(b.sPosition, RateOf(frame, b.GetPath()));
        const QString szLast = b.nLastVisited == 0
                                   ? QString("-")
                                   : QDateTime::fromSecsSinceEpoch(b.nLastVisited).toString("yyyy-MM-dd hh:mm:ss");
        auto* pItem = new QTreeWidgetItem(pList, {QString::fromStdString(b.GetName()),
                                                  QString::fromStdString(t.FormatMilliseconds()),
                                                  QString::number(b.nTimesVisited), szLast});
        pItem->setToolTip(0, QString::fromStdString(b.GetPath()));
    }
}
