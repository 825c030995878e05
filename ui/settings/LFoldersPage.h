// Folders: where audio segments are kept while editing, and where the program's own data
// files (curves, key macros) live. Empty means the default, shown greyed in the field.
#pragma once

#include "ui/settings/LSettingsPage.h"

class QLineEdit;

class LFoldersPage : public LSettingsPage
{
    Q_OBJECT
public:
    explicit LFoldersPage(QWidget* pParent);

    QString Title() const override { return tr("Folders"); }
    bool Validate() override;
    void Save() override;
    // The audio working folder differs from the stored one.
    bool WorkingFolderChanged() const;

private:
    QLineEdit* AddFolder(const char* szName, const QString& szDefault);

    QLineEdit* pWorking = nullptr;
    QLineEdit* pData = nullptr;
};
