// What key macros are made of: the main window's commands by number, their names as the menus
// show them, and the keys the menus and the transport already take.
#pragma once

#include <QKeySequence>
#include <QString>

#include <cstdint>
#include <vector>

class LMacroCommands
{
public:
    // Every command a macro may run, in menu-number order.
    static const std::vector<int>& All();
    // The menu text without its accelerator marks and key ("Normalize..."); the number for an unknown one.
    static QString NameOf(uint32_t uId);
    // Where the command sits in the menus ("Edit > Insert Silence > Begin"), so that commands of
    // the same name tell apart; the name alone for one in no menu.
    static QString PathOf(uint32_t uId);
    // The key of a macro's key code, and back (0 for no key).
    static QKeySequence KeyOf(uint32_t uKey);
    static uint32_t CodeOf(const QKeySequence& key);
    // Why a key cannot start a macro (taken by a menu command or the transport); empty when free.
    static QString WhyRefused(uint32_t uKey);
};
