// The files a batch converts: added through the open dialog (several at once), removed one by
// one; Next is enabled once the list holds a file.
#pragma once

#include <QDialog>

#include <string>
#include <vector>

class QListWidget;
class QPushButton;

class LSelectBatchFileDlg : public QDialog
{
    Q_OBJECT
public:
    LSelectBatchFileDlg(QWidget* pParent, const std::vector<std::string>& vFiles);

    std::vector<std::string> GetFiles() const;
    QListWidget* GetList() const { return pList; }

    void CmAddFile();
    void AddFiles(const QStringList& files);
    void CmRemoveFile();
    void EnableControls();
    void CmHelp();
    void CmOk();

public slots:
    void accept() override { CmOk(); }

private:
    QListWidget* pList;
    QPushButton* pRemove;
    QPushButton* pNext;
};
