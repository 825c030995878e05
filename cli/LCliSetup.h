// What every verb runs inside: the persistent settings store, the progress host on the
// terminal, and Ctrl+C turned into a cancel.
#pragma once

#include <memory>

class LCliSetup
{
public:
    LCliSetup();
    ~LCliSetup();

private:
    struct Impl;
    std::unique_ptr<Impl> pImpl;
};
