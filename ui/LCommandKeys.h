// The key sequences of a command's accelerators, as its menu item binds them and as a key
// macro must avoid them.
#pragma once

#include <QKeySequence>
#include <QList>

struct LCommandInfo;

namespace LCommandKeys
{
// An accelerator as the command table writes it ("Ctrl+O", "Ctrl+Plus").
QKeySequence FromText(const char* szAccel);
// Every key of the command: none, its accelerator, or both of its accelerators.
QList<QKeySequence> Of(const LCommandInfo& info);
} // namespace LCommandKeys
