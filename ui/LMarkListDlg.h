// What the bookmark and region lists share: a list of named marks with go to, rename and delete.
// Going to a mark closes the list; the frame then moves there. Each list supplies its rows and
// reaches its marks through a few hooks.
#pragma once

#include <QDialog>
#include <string>

class LFrame;
class LMarkCommands;
class QTreeWidget;
class QVBoxLayout;

class LMarkListDlg : public QDialog
{
    Q_OBJECT
public:
    // The mark chosen by Go To; -1 when the list was closed without one.
    int GetChosen() const { return nChosen; }
    QTreeWidget* GetList() const { return pList; }

    // Rebuilds the rows, keeping the current row where it can.
    void Fill();
    void CmGoTo(int nRow);
    void Rename(int nRow, const std::string& szName);
    void Delete(int nRow);

protected:
    // The layout holds the list, then the buttons; a list may insert more around them.
    LMarkListDlg(LFrame& frame, LMarkCommands& marks, const QString& szTitle, const QString& szName, const QStringList& vHeaders,
                 const QString& szRenameTitle);

    virtual int Count() const = 0;
    virtual std::string NameAt(int nRow) const = 0;
    virtual void SetNameAt(int nRow, const std::string& szName) = 0;
    virtual void EraseAt(int nRow) = 0;
    virtual void AddRows() = 0;
    int CurrentRow() const;

    LFrame& frame;
    LMarkCommands& marks;
    QTreeWidget* pList = nullptr;
    QVBoxLayout* pLayout = nullptr;
    bool bFilling = false; // rows are being added: their changes are not the user's

private:
    void CmRename();
    bool HasRow(int nRow) const { return nRow >= 0 && nRow < Count(); }

    QString szRenameTitle;
    int nChosen = -1;
};
