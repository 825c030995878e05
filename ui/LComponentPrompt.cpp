#include "ui/LComponentPrompt.h"

#include "core/LComponents.h"
#include "ui/LUiPrompts.h"

bool LComponentPrompt::Ensure(QWidget* pParent, const std::string& szComponent)
{
    if (szComponent.empty() || !LComponents::GetPath(szComponent).empty())
        return true;
    const std::string szProgram = LComponents::ProgramFor(szComponent);
    const QString szMessage = QString::fromStdString(LComponents::NotInstalledMessage(szComponent));
    const std::string szFound = LComponents::FindOnPath(szProgram);
    if (szFound.empty()) {
        LUiPrompts::Get().Inform(pParent, "Install-on-Demand",
                                 szMessage + QString("\n\nOn this system, install \"%1\" with the package manager "
                                                     "(for example: sudo apt-get install %1) and save again.")
                                                 .arg(QString::fromStdString(szProgram)),
                                 LUiPrompts::IconInformation);
        return false;
    }
    const auto answer = LUiPrompts::Get().Ask(
        pParent, "Install-on-Demand",
        szMessage + QString("\n\n\"%1\" was found at %2. Do you want to use it as the component?")
                        .arg(QString::fromStdString(szProgram), QString::fromStdString(szFound)),
        false);
    if (answer != LUiPrompts::AnswerYes)
        return false;
    LComponents::SetPath(szComponent, szFound);
    return true;
}
