// The bookmark list: name, position, times visited and last visited of every bookmark, with
// go to, rename and delete. Going to a bookmark closes the list; the frame then moves there.
#pragma once

#include <QDialog>

class MainDialog;
class QTreeWidget;

class LBookmarkListDlg : public QDialog
{
    Q_OBJECT
public:
    explicit LBookmarkListDlg(MainDialog& frame);

    // The bookmark chosen by Go To; -1 when the list was closed without one.
    int GetChosen() const { return nChosen; }
    QTreeWidget* GetList() const { return pList; }

    void Fill();
    void CmGoTo(int nRow);
    void Rename(int nRow, const std::string& szName);
    void Delete(int nRow);

private:
    void CmRename();
    int CurrentRow() const;

    MainDialog& frame;
    QTreeWidget* pList = nullptr;
    int nChosen = -1;
};
