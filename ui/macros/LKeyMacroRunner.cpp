#include "ui/macros/LKeyMacroRunner.h"

#include <QAction>
#include <QTimer>
#include <QWidget>

#include <algorithm>

#include "core/LTrace.h"
#include "ui/LUiPrompts.h"
#include "ui/macros/LMacroCommands.h"

namespace {
std::vector<LKeyMacroRunner*>& Runners()
{
    static std::vector<LKeyMacroRunner*> v;
    return v;
}
} // namespace

LKeyMacroRunner::LKeyMacroRunner(QWidget* pF, CommandFn fnCmd) : QObject(pF), pFrame(pF), fnCommand(std::move(fnCmd))
{
    setObjectName("KeyMacroRunner");
    Runners().push_back(this);
    Reload();
}

LKeyMacroRunner::~LKeyMacroRunner()
{
    auto& v = Runners();
    v.erase(std::remove(v.begin(), v.end(), this), v.end());
}

void LKeyMacroRunner::ReloadAll()
{
    for (LKeyMacroRunner* p : Runners())
        p->Reload();
}

void LKeyMacroRunner::Reload()
{
    for (QAction* p : vActions)
        delete p;
    vActions.clear();
    const std::string szPath = LKeyMacroFile::DefaultPath();
    std::string szWhy;
    const LListLoad result = LKeyMacroFile::Load(szPath, vMacros, &szWhy);
    if (result == LListLoad::BadVersion || result == LListLoad::Damaged)
        LUiPrompts::Get().Inform(pFrame, LListFile::kCaption,
                                 QString::fromStdString(LListFile::LoadMessage(result, szPath, szWhy)),
                                 LUiPrompts::IconError);
    for (size_t i = 0; i < vMacros.size(); ++i) {
        // A key the menus took meanwhile stays theirs.
        if (!LMacroCommands::WhyRefused(vMacros[i].uKey).isEmpty()) {
            LTRACE("LKeyMacroRunner::Reload key %08x is taken", vMacros[i].uKey);
            continue;
        }
        auto* pAction = new QAction(this);
        pAction->setObjectName(QString("macro%1").arg(i));
        pAction->setShortcut(LMacroCommands::KeyOf(vMacros[i].uKey));
        pAction->setShortcutContext(Qt::WindowShortcut);
        const LKeyMacro macro = vMacros[i];
        // The commands may open dialogs and run processes: not inside the key's signal.
        connect(pAction, &QAction::triggered, this,
                [this, macro] { QTimer::singleShot(0, this, [this, macro] { Run(macro); }); });
        pFrame->addAction(pAction);
        vActions.push_back(pAction);
    }
}

bool LKeyMacroRunner::Run(const LKeyMacro& macro)
{
    bool bAll = true;
    for (uint32_t uId : macro.vCommands) {
        if (uId > 100000 || !fnCommand(static_cast<int>(uId))) {
            LTRACE("LKeyMacroRunner::Run command %u not available", uId);
            bAll = false;
        }
    }
    return bAll;
}
