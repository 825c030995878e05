// Edits a batch script: the commands in order, each with its settings record. New, open, save and
// save as work on ".snb" files; settings open the command's own dialog over its record; the list
// is reordered by dragging; the line below the list describes the selected command's settings.
#pragma once

#include <QDialog>

#include <string>
#include <vector>

#include "lists/LBatchScript.h"

class QLabel;
class QListWidget;
class QVBoxLayout;

class LSelectBatchCommandDlg : public QDialog
{
    Q_OBJECT
public:
    static constexpr const char* kInvalidCommand = "LSelectBatchCommandDlg::AddCommandToList uCommandId is invalid";

    explicit LSelectBatchCommandDlg(QWidget* pParent);

    // The commands as the list shows them now.
    std::vector<CommandDataItem> GetItems() const;
    const std::string& GetFilePath() const { return szFilePath; }
    QString GetFileName() const;
    QListWidget* GetList() const { return pList; }
    QLabel* GetDescription() const { return pDescription; }
    bool IsModified() const { return bModified; }

    void CmNewFile();
    void CmOpenFile();
    // Loads a script; false (the user told why) when it cannot be read.
    bool OpenFile(const std::string& szPath);
    bool SaveFile();
    bool CmSaveFileAs();
    bool SaveFileTo(const std::string& szPath);
    void CmAddCommand();
    // Adds a command with its stored settings after the selected one; an id no script may hold
    // is refused.
    bool AddCommandToList(uint32_t uCommandId);
    void CmRemoveCommand();
    void CmCommandSettings();
    void UpdateCommandDescription();
    // OK: on to the files, once unsaved changes were saved or let go.
    void CmOk();

    // The commands a script may hold, in menu order.
    static std::vector<int> BatchCommands();

public slots:
    void accept() override { CmOk(); }

private:
    void MakeCommandList();
    // New, Open, Save, Save As, Add, Remove and Settings, one above the other.
    QVBoxLayout* MakeScriptButtons();
    void LoadLastScript();
    // Asks about unsaved changes; false when the user cancels.
    bool QuerySave();
    void SetItems(const std::vector<CommandDataItem>& vItems);
    void AddItem(int nRow, const CommandDataItem& item);
    void SetModified(bool b);
    void Queue(void (LSelectBatchCommandDlg::*fn)());

    QListWidget* pList;
    QLabel* pName;
    QLabel* pDescription;
    std::string szFilePath; // empty while untitled
    bool bModified = false;
};
