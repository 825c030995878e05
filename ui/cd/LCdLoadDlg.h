// Load Audio CD Track(s): the drives (or a disc image), the tracks with their lengths and titles,
// and which of them to read in which read mode.
#pragma once

#include <QDialog>

#include <memory>
#include <string>
#include <vector>

#include "cd/LCdDevice.h"
#include "cd/LCdTitles.h"

class QComboBox;
class QLabel;
class QTreeWidget;

class LCdLoadDlg : public QDialog
{
    Q_OBJECT
public:
    struct Track
    {
        int nNumber;
        std::string szTitle;
    };

    // szImage: a disc image to show at once instead of the first drive.
    LCdLoadDlg(QWidget* pParent, const std::string& szImage);

    std::shared_ptr<LCdDisc> GetDisc() const { return pDisc; }
    std::vector<Track> GetChosen() const;
    LCdReadMode GetMode() const;

    void accept() override;

private:
    void FillDrives(const std::string& szImage);
    void OpenChosenSource();
    void ChooseImage();
    void ShowTracks();
    void LookUp(int nChoice);
    void SelectAll();

    QComboBox* pDrive;
    QComboBox* pMode;
    QComboBox* pMatch;
    QLabel* pStatus;
    QTreeWidget* pTracks;
    std::shared_ptr<LCdDisc> pDisc;
    LCdTitles titles;
};
