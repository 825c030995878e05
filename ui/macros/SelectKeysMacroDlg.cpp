#include "ui/macros/SelectKeysMacroDlg.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeySequenceEdit>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>

#include "ui/LUiPrompts.h"
#include "ui/macros/AddKeysCommandDlg.h"
#include "ui/macros/LMacroCommands.h"

SelectKeysMacroDlg::SelectKeysMacroDlg(QWidget* pParent, const LKeyMacro& m, std::vector<uint32_t> vOthers)
    : QDialog(pParent), macro(m), vOtherKeys(std::move(vOthers))
{
    setObjectName("SelectKeysMacroDlg");
    setWindowTitle(tr("Key Macro"));
    auto* pLayout = new QVBoxLayout(this);
    auto* pKeyRow = new QHBoxLayout;
    pKey = new QKeySequenceEdit(LMacroCommands::KeyOf(macro.uKey), this);
    pKey->setObjectName("MacroKey");
    // One key starts a macro: a second one typed replaces the first.
    connect(pKey, &QKeySequenceEdit::keySequenceChanged, this, [this](const QKeySequence& key) {
        if (key.count() > 1)
            pKey->setKeySequence(QKeySequence(key[key.count() - 1]));
    });
    auto* pChange = new QPushButton(tr("Change Key"), this);
    connect(pChange, &QPushButton::clicked, this, &SelectKeysMacroDlg::CmChangeKey);
    pKeyRow->addWidget(new QLabel(tr("Key:"), this));
    pKeyRow->addWidget(pKey, 1);
    pKeyRow->addWidget(pChange);
    pLayout->addLayout(pKeyRow);

    pCommands = new QListWidget(this);
    pCommands->setObjectName("MacroCommands");
    pLayout->addWidget(new QLabel(tr("Commands, run in this order:"), this));
    auto* pRow = new QHBoxLayout;
    pRow->addWidget(pCommands, 1);
    auto* pSide = new QVBoxLayout;
    struct Button
    {
        const char* szText;
        std::function<void()> fn;
    };
    const Button buttons[] = {
        // The picker is modal: it opens after the click has been handled.
        {"Add Command...", [this] { QTimer::singleShot(0, this, &SelectKeysMacroDlg::CmAddCommand); }},
        {"Remove", [this] { CmRemoveCommand(); }},
        {"Move Up", [this] { CmMoveCommand(-1); }},
        {"Move Down", [this] { CmMoveCommand(1); }},
    };
    for (const Button& b : buttons) {
        auto* p = new QPushButton(tr(b.szText), this);
        connect(p, &QPushButton::clicked, this, b.fn);
        pSide->addWidget(p);
    }
    pSide->addStretch();
    pRow->addLayout(pSide);
    pLayout->addLayout(pRow);
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Help, this);
    connect(pButtons, &QDialogButtonBox::accepted, this, &SelectKeysMacroDlg::CmOk);
    connect(pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(pButtons, &QDialogButtonBox::helpRequested, this, [this] { QTimer::singleShot(0, this, &SelectKeysMacroDlg::CmHelp); });
    pLayout->addWidget(pButtons);
    Refill(0);
}

void SelectKeysMacroDlg::Refill(int nSelect)
{
    pCommands->clear();
    for (uint32_t uId : macro.vCommands)
        pCommands->addItem(LMacroCommands::PathOf(uId));
    if (nSelect >= 0 && nSelect < pCommands->count())
        pCommands->setCurrentRow(nSelect);
}

void SelectKeysMacroDlg::CmChangeKey()
{
    pKey->clear();
    pKey->setFocus();
}

void SelectKeysMacroDlg::CmAddCommand()
{
    AddKeysCommandDlg dlg(this, LMacroCommands::All());
    if (dlg.exec() == QDialog::Accepted)
        AddCommands(dlg.GetSelected());
}

void SelectKeysMacroDlg::AddCommands(const std::vector<uint32_t>& vIds)
{
    const int nRow = pCommands->currentRow();
    const size_t nAt = nRow >= 0 ? static_cast<size_t>(nRow) + 1 : macro.vCommands.size();
    macro.vCommands.insert(macro.vCommands.begin() + static_cast<std::ptrdiff_t>(nAt), vIds.begin(), vIds.end());
    Refill(static_cast<int>(nAt + vIds.size()) - 1);
}

void SelectKeysMacroDlg::CmRemoveCommand()
{
    const int nRow = pCommands->currentRow();
    if (nRow < 0 || nRow >= static_cast<int>(macro.vCommands.size()))
        return;
    macro.vCommands.erase(macro.vCommands.begin() + nRow);
    Refill(std::min(nRow, static_cast<int>(macro.vCommands.size()) - 1));
}

void SelectKeysMacroDlg::CmMoveCommand(int nBy)
{
    const int nRow = pCommands->currentRow();
    const int nTo = nRow + nBy;
    if (nRow < 0 || nTo < 0 || nTo >= static_cast<int>(macro.vCommands.size()))
        return;
    std::swap(macro.vCommands[static_cast<size_t>(nRow)], macro.vCommands[static_cast<size_t>(nTo)]);
    Refill(nTo);
}

void SelectKeysMacroDlg::CmHelp()
{
    LUiPrompts::Get().Inform(this, "Sonitra",
                             tr("Press Change Key and then the key that is to run the macro. Add the commands it "
                                "runs; they run in the order of the list, each as if chosen from its menu."),
                             LUiPrompts::IconInformation);
}

void SelectKeysMacroDlg::CmOk()
{
    const uint32_t uKey = LMacroCommands::CodeOf(pKey->keySequence());
    QString szWhy = LMacroCommands::WhyRefused(uKey);
    if (szWhy.isEmpty() && std::find(vOtherKeys.begin(), vOtherKeys.end(), uKey) != vOtherKeys.end())
        szWhy = tr("The key %1 already runs another macro. Please choose another key.")
                    .arg(LMacroCommands::KeyOf(uKey).toString(QKeySequence::NativeText));
    if (szWhy.isEmpty() && macro.vCommands.empty())
        szWhy = tr("Please add at least one command to the macro.");
    if (szWhy.isEmpty() && macro.vCommands.size() > LKeyMacroFile::kMaxCommands)
        szWhy = tr("A macro can hold at most %1 commands; this one has %2. Please remove some.")
                    .arg(LKeyMacroFile::kMaxCommands)
                    .arg(macro.vCommands.size());
    if (!szWhy.isEmpty()) {
        LUiPrompts::Get().Inform(this, "Sonitra", szWhy, LUiPrompts::IconWarning);
        return;
    }
    macro.uKey = uKey;
    QDialog::accept();
}
