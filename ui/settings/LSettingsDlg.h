// The settings dialog: a page per area, written back together when the user presses OK and
// every page accepts what it holds.
#pragma once

#include <QDialog>
#include <vector>

class LFoldersPage;
class LSettingsPage;
class QTabWidget;

class LSettingsDlg : public QDialog
{
    Q_OBJECT
public:
    explicit LSettingsDlg(QWidget* pParent);

    // After OK: the audio working folder was changed, which takes a restart.
    bool WorkingFolderChanged() const { return bFolderChanged; }

    // OK: every page checks its values before any is written.
    void accept() override;

private:
    QTabWidget* pTabs;
    std::vector<LSettingsPage*> vPages;
    LFoldersPage* pFolders;
    bool bFolderChanged = false;
};
