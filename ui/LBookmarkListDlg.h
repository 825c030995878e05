// The bookmark list: name, position, times visited and last visited of every bookmark.
#pragma once

#include "ui/LMarkListDlg.h"

class LBookmarkListDlg : public LMarkListDlg
{
    Q_OBJECT
public:
    LBookmarkListDlg(LFrame& frame, LMarkCommands& marks);

protected:
    int Count() const override;
    std::string NameAt(int nRow) const override;
    void SetNameAt(int nRow, const std::string& szName) override;
    void EraseAt(int nRow) override;
    void AddRows() override;
};
