#include "ui/LBookmarkListDlg.h"

#include <QDateTime>
#include <QHeaderView>
#include <QTreeWidget>

#include "core/LEdFile.h"
#include "core/LSoundTime.h"
#include "ui/LEdFileWindow.h"
#include "ui/LFrame.h"
#include "ui/LMarkCommands.h"

namespace {
// The rate a position is shown at: its file's when open, else CD rate.
int32_t RateOf(LFrame& frame, const std::string& szKey)
{
    for (LEdFileWindow* p : frame.GetFileWindows())
        if (p->GetKey() == szKey)
            return p->GetFile().GetDocument().GetSampleRate();
    return 44100;
}
} // namespace

LBookmarkListDlg::LBookmarkListDlg(LFrame& owner, LMarkCommands& markList)
    : LMarkListDlg(owner, markList, "Bookmarks", "BookmarkList", {"Name", "Position", "Times Visited", "Last Visited"},
                   "Rename Bookmark")
{
    pList->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    resize(620, 360);
    Fill();
}

int LBookmarkListDlg::Count() const
{
    return static_cast<int>(marks.GetBookmarks().size());
}

std::string LBookmarkListDlg::NameAt(int nRow) const
{
    return marks.GetBookmarks()[nRow].GetName();
}

void LBookmarkListDlg::SetNameAt(int nRow, const std::string& szName)
{
    auto& v = marks.GetBookmarks();
    v[nRow].SetName(szName);
    marks.BookmarksChanged(v[nRow].GetPath());
}

void LBookmarkListDlg::EraseAt(int nRow)
{
    auto& v = marks.GetBookmarks();
    const std::string szKey = v[nRow].GetPath();
    v.erase(v.begin() + nRow);
    marks.BookmarksChanged(szKey);
}

void LBookmarkListDlg::AddRows()
{
    for (const LEdBookMark& b : marks.GetBookmarks()) {
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
