// The Control menu: recording and the transport.
#pragma once

#include "ui/LFrame.h"

class LControlCommands : public LCommandController
{
public:
    explicit LControlCommands(LFrame& frame) : frame(frame) {}
    bool Command(int nId) override;

private:
    LFrame& frame;
};
