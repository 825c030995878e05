// Sends this process's stderr to /dev/null while it lives: sound libraries print their probing
// of absent cards and servers there. Trace builds with SONITRA_TRACE set keep the output.
#pragma once

class LQuietStderr
{
public:
    LQuietStderr();
    ~LQuietStderr();
    LQuietStderr(const LQuietStderr&) = delete;
    LQuietStderr& operator=(const LQuietStderr&) = delete;

private:
    int hSaved = -1;
};
