#include "ui/batch/LSelectBatchCommandDlg.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <cstring>

#include "core/LFile.h"
#include "core/LSettings.h"
#include "core/LTrace.h"
#include "ui/LUiPrompts.h"
#include "ui/effects/LCurveDlg.h"
#include "ui/effects/LEffectSettingsDlg.h"
#include "ui/macros/AddKeysCommandDlg.h"
#include "ui/macros/LMacroCommands.h"

namespace {
const char* const kSection = "BatchConverter";
const char* const kFilter = "Batch Script File (*.snb)";
constexpr int kIdRole = Qt::UserRole;
constexpr int kDataRole = Qt::UserRole + 1;

QString Folder()
{
    return QString::fromStdString(LSettings::GetString(kSection, "ScriptDir", QDir::homePath().toStdString()));
}

void RememberFolder(const std::string& szPath)
{
    LSettings::SetString(kSection, "ScriptDir", LFile::FolderOf(szPath));
}
} // namespace

std::vector<int> LSelectBatchCommandDlg::BatchCommands()
{
    std::vector<int> v;
    for (int nId : LMacroCommands::All())
        if (BatchCommandInfo(static_cast<uint32_t>(nId)))
            v.push_back(nId);
    return v;
}

LSelectBatchCommandDlg::LSelectBatchCommandDlg(QWidget* pParent) : QDialog(pParent)
{
    setObjectName("LSelectBatchCommandDlg");
    setWindowTitle(tr("Batch Converter - Commands"));
    auto* pLayout = new QVBoxLayout(this);
    pName = new QLabel(this);
    pName->setObjectName("ScriptName");
    pLayout->addWidget(pName);
    auto* pRow = new QHBoxLayout;
    MakeCommandList();
    pRow->addWidget(pList, 1);
    pRow->addLayout(MakeScriptButtons());
    pLayout->addLayout(pRow);
    pDescription = new QLabel(this);
    pDescription->setObjectName("CommandDescription");
    pLayout->addWidget(pDescription);
    auto* pButtons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
    pButtons->addButton(tr("Next >"), QDialogButtonBox::AcceptRole);
    connect(pButtons, &QDialogButtonBox::accepted, this, &LSelectBatchCommandDlg::CmOk);
    connect(pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    pLayout->addWidget(pButtons);
    resize(520, 400);
    LoadLastScript();
    SetModified(false);
}

void LSelectBatchCommandDlg::MakeCommandList()
{
    pList = new QListWidget(this);
    pList->setObjectName("BatchCommands");
    // StartDrag: the commands are reordered by dragging them.
    pList->setDragEnabled(true);
    pList->setAcceptDrops(true);
    pList->setDropIndicatorShown(true);
    pList->setDragDropMode(QAbstractItemView::InternalMove);
    pList->setDefaultDropAction(Qt::MoveAction);
    connect(pList, &QListWidget::currentRowChanged, this, &LSelectBatchCommandDlg::UpdateCommandDescription);
    connect(pList->model(), &QAbstractItemModel::rowsMoved, this, [this] { SetModified(true); });
    connect(pList, &QListWidget::itemDoubleClicked, this, [this] { Queue(&LSelectBatchCommandDlg::CmCommandSettings); });
}

QVBoxLayout* LSelectBatchCommandDlg::MakeScriptButtons()
{
    auto* pSide = new QVBoxLayout;
    const std::pair<const char*, void (LSelectBatchCommandDlg::*)()> buttons[] = {
        {"New", &LSelectBatchCommandDlg::CmNewFile},
        {"Open...", &LSelectBatchCommandDlg::CmOpenFile},
        {"Save", nullptr},
        {"Save As...", nullptr},
        {"Add...", &LSelectBatchCommandDlg::CmAddCommand},
        {"Remove", &LSelectBatchCommandDlg::CmRemoveCommand},
        {"Settings...", &LSelectBatchCommandDlg::CmCommandSettings},
    };
    for (const auto& b : buttons) {
        auto* p = new QPushButton(tr(b.first), this);
        p->setObjectName(QString(b.first).remove('.').remove(' '));
        if (b.second) {
            auto fn = b.second;
            connect(p, &QPushButton::clicked, this, [this, fn] { Queue(fn); });
        } else if (!std::strcmp(b.first, "Save")) {
            connect(p, &QPushButton::clicked, this, [this] { QTimer::singleShot(0, this, [this] { SaveFile(); }); });
        } else {
            connect(p, &QPushButton::clicked, this, [this] { QTimer::singleShot(0, this, [this] { CmSaveFileAs(); }); });
        }
        pSide->addWidget(p);
    }
    pSide->addStretch();
    return pSide;
}

void LSelectBatchCommandDlg::LoadLastScript()
{
    // The script of last time, when it is still there.
    const std::string szLast = LSettings::GetString(kSection, "ScriptFile");
    std::vector<CommandDataItem> vItems;
    if (!szLast.empty() && LBatchScript::Load(szLast, vItems) == LListLoad::Loaded) {
        szFilePath = szLast;
        SetItems(vItems);
    }
}

void LSelectBatchCommandDlg::Queue(void (LSelectBatchCommandDlg::*fn)())
{
    // Dialogs open after the click that asked for them has been handled.
    QTimer::singleShot(0, this, fn);
}

QString LSelectBatchCommandDlg::GetFileName() const
{
    return szFilePath.empty() ? QString(LBatchScript::kUntitled) : QString::fromStdString(LFile::FileNameOf(szFilePath));
}

void LSelectBatchCommandDlg::SetModified(bool b)
{
    bModified = b;
    pName->setText(tr("Batch script: %1%2").arg(GetFileName(), bModified ? " *" : ""));
}

std::vector<CommandDataItem> LSelectBatchCommandDlg::GetItems() const
{
    std::vector<CommandDataItem> v;
    for (int i = 0; i < pList->count(); ++i) {
        CommandDataItem item;
        item.uCommandId = pList->item(i)->data(kIdRole).toUInt();
        const QByteArray data = pList->item(i)->data(kDataRole).toByteArray();
        item.vData.assign(data.begin(), data.end());
        v.push_back(std::move(item));
    }
    return v;
}

void LSelectBatchCommandDlg::AddItem(int nRow, const CommandDataItem& item)
{
    const LEffectInfo* pInfo = BatchCommandInfo(item.uCommandId);
    QString szText = pInfo ? LMacroCommands::NameOf(item.uCommandId) : tr("Unknown command %1").arg(item.uCommandId);
    auto* p = new QListWidgetItem(szText);
    p->setData(kIdRole, item.uCommandId);
    p->setData(kDataRole, QByteArray(reinterpret_cast<const char*>(item.vData.data()), static_cast<int>(item.vData.size())));
    p->setFlags(p->flags() & ~Qt::ItemIsDropEnabled);
    pList->insertItem(nRow, p);
}

void LSelectBatchCommandDlg::SetItems(const std::vector<CommandDataItem>& vItems)
{
    pList->clear();
    for (const CommandDataItem& item : vItems)
        AddItem(pList->count(), item);
    if (pList->count())
        pList->setCurrentRow(0);
    UpdateCommandDescription();
}

bool LSelectBatchCommandDlg::QuerySave()
{
    if (!bModified)
        return true;
    switch (LUiPrompts::Get().Ask(this, "Sonitra", tr("Save changes to \"%1\"?").arg(GetFileName()), true)) {
    case LUiPrompts::AnswerYes:
        return SaveFile();
    case LUiPrompts::AnswerNo:
        return true;
    default:
        return false;
    }
}

void LSelectBatchCommandDlg::CmNewFile()
{
    if (!QuerySave())
        return;
    szFilePath.clear();
    SetItems({});
    SetModified(false);
}

void LSelectBatchCommandDlg::CmOpenFile()
{
    if (!QuerySave())
        return;
    const QStringList files = LUiPrompts::Get().GetOpenFileNames(this, "Open Batch Script File", Folder(), kFilter);
    if (!files.isEmpty())
        OpenFile(files.front().toStdString());
}

bool LSelectBatchCommandDlg::OpenFile(const std::string& szPath)
{
    std::vector<CommandDataItem> vItems;
    std::string szWhy;
    const LListLoad result = LBatchScript::Load(szPath, vItems, &szWhy);
    if (result != LListLoad::Loaded) {
        LUiPrompts::Get().Inform(this, LListFile::kCaption,
                                 QString::fromStdString(LListFile::LoadMessage(result, szPath, szWhy)),
                                 result == LListLoad::Missing ? LUiPrompts::IconInformation : LUiPrompts::IconError);
        return false;
    }
    szFilePath = szPath;
    RememberFolder(szPath);
    LSettings::SetString(kSection, "ScriptFile", szPath);
    SetItems(vItems);
    SetModified(false);
    return true;
}

bool LSelectBatchCommandDlg::SaveFile()
{
    return szFilePath.empty() ? CmSaveFileAs() : SaveFileTo(szFilePath);
}

bool LSelectBatchCommandDlg::CmSaveFileAs()
{
    QString szPath = LUiPrompts::Get().GetSaveFileName(this, "Save Batch Script File", Folder(), kFilter);
    if (szPath.isEmpty())
        return false;
    if (!szPath.endsWith(".snb", Qt::CaseInsensitive))
        szPath += ".snb";
    return SaveFileTo(szPath.toStdString());
}

bool LSelectBatchCommandDlg::SaveFileTo(const std::string& szPath)
{
    std::string szError;
    if (!LBatchScript::Save(szPath, GetItems(), &szError)) {
        LUiPrompts::Get().Inform(this, LListFile::kCaption,
                                 QString::fromStdString(LListFile::SaveFailedMessage(szPath, szError)),
                                 LUiPrompts::IconInformation);
        return false;
    }
    szFilePath = szPath;
    RememberFolder(szPath);
    LSettings::SetString(kSection, "ScriptFile", szPath);
    SetModified(false);
    return true;
}

void LSelectBatchCommandDlg::CmAddCommand()
{
    AddKeysCommandDlg dlg(this, BatchCommands(), tr("Select command(s) to add to the batch script."));
    if (dlg.exec() != QDialog::Accepted)
        return;
    for (uint32_t uId : dlg.GetSelected())
        AddCommandToList(uId);
}

bool LSelectBatchCommandDlg::AddCommandToList(uint32_t uCommandId)
{
    CommandDataItem item;
    if (!MakeCommandDataItem(uCommandId, item)) {
        LTRACE("LSelectBatchCommandDlg::AddCommandToList uCommandId is invalid");
        LUiPrompts::Get().Inform(this, "Sonitra", kInvalidCommand, LUiPrompts::IconError);
        return false;
    }
    const int nRow = pList->currentRow() >= 0 ? pList->currentRow() + 1 : pList->count();
    AddItem(nRow, item);
    pList->setCurrentRow(nRow);
    SetModified(true);
    UpdateCommandDescription();
    return true;
}

void LSelectBatchCommandDlg::CmRemoveCommand()
{
    const int nRow = pList->currentRow();
    if (nRow < 0)
        return;
    delete pList->takeItem(nRow);
    SetModified(true);
    UpdateCommandDescription();
}

void LSelectBatchCommandDlg::CmCommandSettings()
{
    QListWidgetItem* pItem = pList->currentItem();
    if (!pItem)
        return;
    const LEffectInfo* pInfo = BatchCommandInfo(pItem->data(kIdRole).toUInt());
    if (!pInfo)
        return;
    // The curves are kept apart: a script runs with the stored one.
    if (pInfo->curve != LEffectInfo::NoCurve) {
        LPointList list;
        LCurveDlg::Edit(this, pInfo->curve == LEffectInfo::EqualizerCurve ? LCurveDlg::Equalizer : LCurveDlg::Envelope,
                        &list);
        return;
    }
    if (pInfo->vParams.empty()) {
        LUiPrompts::Get().Inform(this, "Sonitra", tr("%1 has no settings.").arg(LMacroCommands::NameOf(pInfo->nCommandId)),
                                 LUiPrompts::IconInformation);
        return;
    }
    const QByteArray data = pItem->data(kDataRole).toByteArray();
    std::vector<uint8_t> vRecord(data.begin(), data.end());
    if (!LEffectSettingsDlg::EditRecord(this, *pInfo, vRecord))
        return;
    pItem->setData(kDataRole, QByteArray(reinterpret_cast<const char*>(vRecord.data()), static_cast<int>(vRecord.size())));
    SetModified(true);
    UpdateCommandDescription();
}

void LSelectBatchCommandDlg::UpdateCommandDescription()
{
    QListWidgetItem* pItem = pList->currentItem();
    if (!pItem) {
        pDescription->clear();
        return;
    }
    CommandDataItem item;
    item.uCommandId = pItem->data(kIdRole).toUInt();
    const QByteArray data = pItem->data(kDataRole).toByteArray();
    item.vData.assign(data.begin(), data.end());
    pDescription->setText(QString::fromStdString(DescribeCommandDataItem(item)));
}

void LSelectBatchCommandDlg::CmOk()
{
    if (pList->count() == 0) {
        LUiPrompts::Get().Inform(this, "Sonitra", tr("Please add at least one command to the batch script."),
                                 LUiPrompts::IconWarning);
        return;
    }
    if (!QuerySave())
        return;
    QDialog::accept();
}
