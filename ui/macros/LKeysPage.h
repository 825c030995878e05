// The settings page of the key macros: the list from "keys.dat", with new, edit and delete
// through SelectKeysMacroDlg. The file is written when the settings are accepted.
#pragma once

#include <vector>

#include "lists/LKeyMacroFile.h"
#include "ui/settings/LSettingsPage.h"

class QListWidget;

class LKeysPage : public LSettingsPage
{
public:
    explicit LKeysPage(QWidget* pParent);
    QString Title() const override { return tr("Key Macros"); }
    void Save() override;

    const std::vector<LKeyMacro>& GetMacros() const { return vMacros; }
    QListWidget* GetList() const { return pList; }
    // What the buttons do; Edit and New open the macro dialog.
    void CmNewMacro();
    void CmEditMacro();
    void CmDeleteMacro();
    // Replaces or adds a macro as the dialog would once accepted (nIndex -1: a new one).
    void PutMacro(int nIndex, const LKeyMacro& macro);

    // "Ctrl+1: Select All, Normalize..., Fade Out"
    static QString TextOf(const LKeyMacro& macro);

private:
    void EditMacro(int nIndex);
    void Refill(int nSelect);

    std::vector<LKeyMacro> vMacros;
    QListWidget* pList;
    bool bChanged = false;
    bool bKeepAside = false; // the file on disk could not be loaded: keep it before replacing it
};
