// Writes a ".gsm" file: every 160 samples become one 33-byte GSM full-rate frame. The last frame
// is completed with silence when the sink completes, so the file always holds whole frames.
#pragma once

#include <string>
#include <vector>

#include "core/LFile.h"
#include "core/LSoundSinkBase.h"
#include "formats/LGSMFrame.h"

class LGSMFileSink : public LSoundSinkBase
{
public:
    static constexpr int32_t kSampleRate = 8000;

    explicit LGSMFileSink(const std::string& szPath);
    ~LGSMFileSink() override;

    void Write(const int32_t* pBuffer, int32_t nFrames) override;
    // Frames already coded cannot be taken back.
    void SetPosition(int32_t sNewPosition) override;
    // Codes the last part frame, writes what is waiting and closes the file.
    bool Complete() override;

private:
    static constexpr int32_t kBufferFrames = 256;

    void EncodePending();
    void Flush();

    LFile file;
    LGSMFrame codec;
    int16_t aPending[LGSMFrame::kSamples] = {};
    int32_t nPending = 0;
    std::vector<uint8_t> vBytes; // coded frames waiting to be written
    int32_t nCoded = 0;
};
