// Makes sure an install-on-demand component is there before work that needs it starts: a
// registered program, or one found on the PATH (registered without asking). When there is
// none, says which package to install, offers to choose an installed program, and says that
// the file was not saved when the user declines.
#pragma once

#include <string>

class QWidget;

class LComponentPrompt
{
public:
    // True when the component is (now) registered. szFile names the file being saved.
    static bool Ensure(QWidget* pParent, const std::string& szComponent, const std::string& szFile = std::string());
};
