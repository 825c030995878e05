// Copy File(s) to CD: open files and files on disk in the order they go on the disc, the gap
// between them, and whether to burn (speed, simulation) or write a disc image instead.
#pragma once

#include <QDialog>

#include <string>
#include <vector>

class LEdFileWindow;
class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLineEdit;
class QListWidget;
class QPushButton;
class QRadioButton;

struct LCdCopyChoice
{
    struct Entry
    {
        LEdFileWindow* pWindow = nullptr; // an open file, or
        std::string szPath;               // a file on disk
        std::string szTitle;
    };
    std::vector<Entry> vEntries;
    std::string szAlbum;
    int32_t nGapSectors = 150;
    bool bImage = false;
    bool bSimulate = false;
    int nSpeed = 0;
    int nDiscMinutes = 80;
};

class LCdCopyDlg : public QDialog
{
    Q_OBJECT
public:
    LCdCopyDlg(QWidget* pParent, const std::vector<LEdFileWindow*>& vOpen);

    LCdCopyChoice GetChoice() const;
    void accept() override;

private:
    void LayOut(QPushButton* pAdd, QPushButton* pUp, QPushButton* pDown, QPushButton* pRemove);
    void AddFiles();
    void Move(int nBy);
    void Remove();
    void UpdateTarget();

    std::vector<LEdFileWindow*> vOpen;
    QListWidget* pFiles;
    QLineEdit* pAlbum;
    QDoubleSpinBox* pGap;
    QRadioButton* pToDisc;
    QRadioButton* pToImage;
    QCheckBox* pSimulate;
    QComboBox* pSpeed;
    QComboBox* pMinutes;
    bool bWriter = false;
};
