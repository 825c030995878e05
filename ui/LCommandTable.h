// Menu texts, accelerators and status-bar hints of every command, looked up by number.
#pragma once

#include <QString>

struct LCommandInfo
{
    int nId;
    const char* szText;  // the menu text, without the accelerator
    const char* szAccel; // the accelerator as shown in the menu and as a key sequence ("" for none)
    const char* szHint;  // the status-bar hint
    const char* szAccel2 = ""; // a second key for the same command ("" for none)
};

class LCommandTable
{
public:
    // Null for an unknown number.
    static const LCommandInfo* Find(int nId);
    // The text a menu item shows: text, a tab and the accelerator when there is one.
    static QString MenuText(int nId);
    static QString Hint(int nId);
};
