// Reads a Dialogic ADPCM (".vox") file: one channel, two 4-bit codes a byte, high nibble first.
#pragma once

#include <string>

#include "core/LFile.h"
#include "core/LSoundSourceBase.h"
#include "formats/LDialogicAdpcm.h"

class LSRCVOX : public LSoundSourceBase
{
public:
    static constexpr int32_t kBlockBytes = 4096;

    LSRCVOX(const std::string& szFileName, int32_t nSampleRate);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return sPosition; }
    int32_t GetLength() override { return sLength; }
    // The decoder keeps its state (and a pending low nibble): it settles again within a few
    // dozen samples, so the first ones after a seek may be off.
    void SetPosition(int32_t sNewPosition) override;

private:
    // Decodes nSamples from the file, high nibble first; what the file lacks is silence.
    void DecodeFromFile(int32_t* pOut, int32_t nSamples);

    LFile file;
    LDialogicAdpcm adpcm;
    bool bPending = false;
    uint8_t nPendingByte = 0;
    int32_t sPosition = 0;
    int32_t sLength = 0;
    uint8_t aBuffer[kBlockBytes];
};
