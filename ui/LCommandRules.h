// When each command is available: one table of rules over a snapshot of the editor's state,
// taken once for all the commands. Commands the table does not name are asked of a rule their
// own code supplies (the effects').
#pragma once

#include <functional>

struct LCommandState
{
    bool bFile = false;          // a file is open and current
    bool bSelection = false;     // the current file has a selection
    bool bRecording = false;
    bool bPlaying = false;
    bool bPlayer = false;        // a player can run in this build
    bool bUndo = false;          // the current file can undo
    bool bRedo = false;
    bool bClipboard = false;     // the editor's own clipboard holds audio
    bool bWindowClipboard = false; // the system clipboard holds wave audio
    bool bStereo = false;        // the current file has two channels
    bool bProject = false;       // a project is open
    bool bBookmarks = false;
    bool bRegions = false;
};

namespace LCommandRules
{
using Fallback = std::function<bool(int nId, const LCommandState& state)>;
// Whether command nId is available in this state; fnOthers decides the commands the table
// does not name (false when it is empty).
bool IsEnabled(int nId, const LCommandState& state, const Fallback& fnOthers);
// Whether the table names the command.
bool Knows(int nId);
} // namespace LCommandRules
