// The region list: every region as "name@start-end", ticked when "Assemble Regions" takes it,
// and the "AutoGap" and "AutoGapTime" settings of assembling.
#pragma once

#include "ui/LMarkListDlg.h"

class QCheckBox;
class QSpinBox;

class LRegionListDlg : public LMarkListDlg
{
    Q_OBJECT
public:
    LRegionListDlg(LFrame& frame, LMarkCommands& marks);

protected:
    int Count() const override;
    std::string NameAt(int nRow) const override;
    void SetNameAt(int nRow, const std::string& szName) override;
    void EraseAt(int nRow) override;
    void AddRows() override;

private:
    QCheckBox* pAutoGap = nullptr;
    QSpinBox* pGapTime = nullptr;
};
