// The region list: every region as "name@start-end", ticked when "Assemble Regions" takes it,
// with go to, rename and delete, and the "AutoGap" and "AutoGapTime" settings of assembling.
#pragma once

#include <QDialog>

class MainDialog;
class QCheckBox;
class QSpinBox;
class QTreeWidget;

class LRegionListDlg : public QDialog
{
    Q_OBJECT
public:
    explicit LRegionListDlg(MainDialog& frame);

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
    QCheckBox* pAutoGap = nullptr;
    QSpinBox* pGapTime = nullptr;
    int nChosen = -1;
    bool bFilling = false;
};
