// The frame's menus as data: each top menu with its items, separators and submenus. The frame
// builds its menu bar from it, and lists of commands (macros, batch scripts) name a command by
// where it sits ("Edit > Insert Silence > Begin").
#pragma once

#include <QString>

#include <vector>

struct LMenuItem
{
    int nId;                // a command, or one of the markers below
    const char* szSubmenu;  // the submenu's title, with kSubmenu
};

struct LMenuDef
{
    const char* szTitle; // with its "&" mark
    std::vector<LMenuItem> vItems;
};

namespace LMenuLayout {

constexpr int kSeparator = 0;
constexpr int kSubmenu = -2;    // opens a submenu of the items up to the matching kEndSubmenu
constexpr int kEndSubmenu = -1;

const std::vector<LMenuDef>& Menus();
// "Edit > Insert Silence > Begin" for a command in the menus (the "&" marks and the trailing
// space of "Undo " dropped); empty for a command that is in none.
QString PathOf(int nId);

} // namespace LMenuLayout
