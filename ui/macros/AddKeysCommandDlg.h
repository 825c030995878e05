// Picks commands to add to a list: several may be chosen at once; they are added in the order
// the list shows them.
#pragma once

#include <QDialog>

#include <cstdint>
#include <vector>

class QListWidget;

class AddKeysCommandDlg : public QDialog
{
    Q_OBJECT
public:
    static constexpr const char* kPrompt = "Select command(s) to add to the Macro.";

    AddKeysCommandDlg(QWidget* pParent, const std::vector<int>& vCommands, const QString& szPrompt = kPrompt);

    QListWidget* GetList() const { return pList; }
    // The chosen commands, in list order.
    std::vector<uint32_t> GetSelected() const;

private:
    QListWidget* pList;
};
