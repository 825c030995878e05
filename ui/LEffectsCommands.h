// The Effects menu and the commands of other menus that run as effects (paste mix, mix file,
// auto trim, the conversions): each found in the effect catalog by its command, its settings
// asked, then run on the current file's range as one change.
#pragma once

#include "ui/LFrame.h"

class LEffectsCommands : public LCommandController
{
public:
    explicit LEffectsCommands(LFrame& frame) : frame(frame) {}
    bool Command(int nId) override;
    // Whether an effect command can run on the current file now; false for other commands.
    bool IsEnabled(int nId) const;

private:
    LFrame& frame;
};
