#include "ui/LComponentPrompt.h"

#include <QFileInfo>
#include <QStringList>

#include "core/LComponents.h"
#include "ui/LUiPrompts.h"

namespace {

// An executable the user points at becomes the component.
bool ChooseProgram(QWidget* pParent, const std::string& szComponent)
{
    const QString szWhat = QString::fromStdString(LComponents::DisplayName(szComponent));
    const QStringList v = LUiPrompts::Get().GetOpenFileNames(pParent, "Choose " + szWhat, "/usr/bin", "Programs (*)");
    if (v.isEmpty() || !QFileInfo(v.front()).isExecutable() || QFileInfo(v.front()).isDir())
        return false;
    LComponents::SetPath(szComponent, v.front().toStdString());
    return true;
}

} // namespace

bool LComponentPrompt::Ensure(QWidget* pParent, const std::string& szComponent, const std::string& szFile)
{
    if (szComponent.empty() || !LComponents::Resolve(szComponent).empty())
        return true;
    const QString szMessage = QString::fromStdString(LComponents::NotInstalledMessage(szComponent));
    const auto answer = LUiPrompts::Get().Ask(
        pParent, "Install-on-Demand",
        szMessage + "\n\nIs it installed somewhere else? Choose Yes to point to its program.", false);
    if (answer == LUiPrompts::AnswerYes && ChooseProgram(pParent, szComponent))
        return true;
    const QString szName = szFile.empty() ? QString("The file")
                                          : "\"" + QFileInfo(QString::fromStdString(szFile)).fileName() + "\"";
    LUiPrompts::Get().Inform(pParent, "Install-on-Demand",
                             szName + " was not saved: " +
                                 QString::fromStdString(LComponents::DisplayName(szComponent)) + " is not installed.",
                             LUiPrompts::IconInformation);
    return false;
}
