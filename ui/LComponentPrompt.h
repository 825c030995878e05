// Makes sure an install-on-demand component is registered before work that needs it starts:
// when it is not, tells the user so and offers a copy of its program found on the PATH, or says
// how to install it.
#pragma once

#include <string>

class QWidget;

class LComponentPrompt
{
public:
    // True when the component is (now) registered.
    static bool Ensure(QWidget* pParent, const std::string& szComponent);
};
