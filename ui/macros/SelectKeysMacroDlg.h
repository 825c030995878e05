// Edits one key macro: its key (captured from the keyboard), and its commands, added several at
// a time, removed and moved up or down. OK refuses a key a menu command, the transport or another
// macro already takes, and a macro without commands.
#pragma once

#include <QDialog>

#include <vector>

#include "lists/LKeyMacroFile.h"

class QKeySequenceEdit;
class QListWidget;

class SelectKeysMacroDlg : public QDialog
{
    Q_OBJECT
public:
    // vOtherKeys: the keys of the other macros.
    SelectKeysMacroDlg(QWidget* pParent, const LKeyMacro& macro, std::vector<uint32_t> vOtherKeys);

    const LKeyMacro& GetMacro() const { return macro; }
    QKeySequenceEdit* GetKeyField() const { return pKey; }
    QListWidget* GetCommandList() const { return pCommands; }

    void CmChangeKey();
    void CmAddCommand();
    // Adds the commands after the selected one (at the end when none is selected).
    void AddCommands(const std::vector<uint32_t>& vIds);
    void CmRemoveCommand();
    void CmMoveCommand(int nBy);
    void CmHelp();
    void CmOk();

public slots:
    void accept() override { CmOk(); }

private:
    void Refill(int nSelect);

    LKeyMacro macro;
    std::vector<uint32_t> vOtherKeys;
    QKeySequenceEdit* pKey;
    QListWidget* pCommands;
};
