// Writes a Dialogic ADPCM (".vox") file: one channel, two 4-bit codes a byte, high nibble first.
// A code left over at the end of a write waits for the first of the next; one still waiting
// when the sink completes is dropped, so a file of an odd number of samples loses its last one.
#pragma once

#include <string>

#include "core/LFile.h"
#include "core/LSoundSinkBase.h"
#include "formats/LDialogicAdpcm.h"

class LSNKVOX : public LSoundSinkBase
{
public:
    static constexpr int32_t kBlockBytes = 4096;

    LSNKVOX(const std::string& szFileName, int32_t nSampleRate);
    ~LSNKVOX() override;

    void Write(const int32_t* pBuffer, int32_t nFrames) override;
    // Closes the file.
    bool Complete() override;

private:
    LFile file;
    LDialogicAdpcm adpcm;
    bool bPending = false;
    uint8_t nPendingCode = 0;
    uint8_t aBuffer[kBlockBytes];
};
