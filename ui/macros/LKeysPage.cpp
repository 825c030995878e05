#include "ui/macros/LKeysPage.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include "ui/LUiPrompts.h"
#include "ui/macros/LKeyMacroRunner.h"
#include "ui/macros/LMacroCommands.h"
#include "ui/macros/SelectKeysMacroDlg.h"

LKeysPage::LKeysPage(QWidget* pParent) : LSettingsPage(pParent)
{
    setObjectName("KeysPage");
    const std::string szPath = LKeyMacroFile::DefaultPath();
    std::string szWhy;
    const LListLoad result = LKeyMacroFile::Load(szPath, vMacros, &szWhy);
    bKeepAside = result == LListLoad::BadVersion || result == LListLoad::Damaged;
    if (bKeepAside)
        LUiPrompts::Get().Inform(this, LListFile::kCaption,
                                 QString::fromStdString(LListFile::LoadMessage(result, szPath, szWhy)),
                                 LUiPrompts::IconError);
    pList = new QListWidget(this);
    pList->setObjectName("MacroList");
    connect(pList, &QListWidget::itemDoubleClicked, this, [this] { QTimer::singleShot(0, this, &LKeysPage::CmEditMacro); });
    auto* pButtons = new QVBoxLayout;
    const std::pair<const char*, void (LKeysPage::*)()> buttons[] = {
        {"New...", &LKeysPage::CmNewMacro},
        {"Edit...", &LKeysPage::CmEditMacro},
        {"Delete", &LKeysPage::CmDeleteMacro},
    };
    for (const auto& b : buttons) {
        auto* p = new QPushButton(tr(b.first), this);
        auto fn = b.second;
        // The macro dialog is modal: it opens after the click has been handled.
        connect(p, &QPushButton::clicked, this, [this, fn] { QTimer::singleShot(0, this, fn); });
        pButtons->addWidget(p);
    }
    pButtons->addStretch();
    auto* pLayout = new QHBoxLayout(this);
    pLayout->addWidget(pList, 1);
    pLayout->addLayout(pButtons);
    Refill(0);
}

QString LKeysPage::TextOf(const LKeyMacro& macro)
{
    QStringList names;
    for (uint32_t uId : macro.vCommands)
        names << LMacroCommands::NameOf(uId);
    return LMacroCommands::KeyOf(macro.uKey).toString(QKeySequence::NativeText) + ": " + names.join(", ");
}

void LKeysPage::Refill(int nSelect)
{
    pList->clear();
    for (const LKeyMacro& m : vMacros)
        pList->addItem(TextOf(m));
    if (nSelect >= 0 && nSelect < pList->count())
        pList->setCurrentRow(nSelect);
}

void LKeysPage::EditMacro(int nIndex)
{
    std::vector<uint32_t> vOthers;
    for (size_t i = 0; i < vMacros.size(); ++i)
        if (static_cast<int>(i) != nIndex)
            vOthers.push_back(vMacros[i].uKey);
    SelectKeysMacroDlg dlg(this, nIndex >= 0 ? vMacros[static_cast<size_t>(nIndex)] : LKeyMacro(), vOthers);
    if (dlg.exec() == QDialog::Accepted)
        PutMacro(nIndex, dlg.GetMacro());
}

void LKeysPage::PutMacro(int nIndex, const LKeyMacro& macro)
{
    if (nIndex >= 0 && nIndex < static_cast<int>(vMacros.size())) {
        vMacros[static_cast<size_t>(nIndex)] = macro;
    } else {
        vMacros.push_back(macro);
        nIndex = static_cast<int>(vMacros.size()) - 1;
    }
    bChanged = true;
    Refill(nIndex);
}

void LKeysPage::CmNewMacro()
{
    EditMacro(-1);
}

void LKeysPage::CmEditMacro()
{
    const int nRow = pList->currentRow();
    if (nRow >= 0)
        EditMacro(nRow);
}

void LKeysPage::CmDeleteMacro()
{
    const int nRow = pList->currentRow();
    if (nRow < 0 || nRow >= static_cast<int>(vMacros.size()))
        return;
    vMacros.erase(vMacros.begin() + nRow);
    bChanged = true;
    Refill(std::min(nRow, static_cast<int>(vMacros.size()) - 1));
}

void LKeysPage::Save()
{
    if (!bChanged)
        return;
    const std::string szPath = LKeyMacroFile::DefaultPath();
    std::string szError;
    std::string szKeptAs;
    if (bKeepAside && !LListFile::KeepAside(szPath, &szKeptAs, &szError)) {
        LUiPrompts::Get().Inform(this, LListFile::kCaption,
                                 QString::fromStdString(LListFile::SaveFailedMessage(szPath, szError)),
                                 LUiPrompts::IconInformation);
        return;
    }
    bKeepAside = false;
    if (!LKeyMacroFile::Save(szPath, vMacros, &szError)) {
        LUiPrompts::Get().Inform(this, LListFile::kCaption,
                                 QString::fromStdString(LListFile::SaveFailedMessage(szPath, szError)),
                                 LUiPrompts::IconInformation);
        return;
    }
    bChanged = false;
    if (!szKeptAs.empty())
        LUiPrompts::Get().Inform(this, LListFile::kCaption,
                                 QString::fromStdString(LListFile::KeptAsideMessage(szPath, szKeptAs)),
                                 LUiPrompts::IconInformation);
    LKeyMacroRunner::ReloadAll();
}
