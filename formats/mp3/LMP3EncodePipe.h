// The push-model sink that writes an MP3 file through the external encoder component: the
// encoder runs as a child process reading raw 16-bit PCM on its standard input and writes the
// file itself. Closing waits for it a bounded time.
#pragma once

#include <string>
#include <vector>

#include "core/LSoundSinkBase.h"
#include "formats/mp3/LMP3EncoderSettings.h"
#include "platform/engine/LChildProcess.h"

class LMP3EncodePipe : public LSoundSinkBase
{
public:
    LMP3EncodePipe(const std::string& szOutput, const LMP3EncoderSettings& settings, uint8_t nChans,
                   int32_t nSampleRate);
    ~LMP3EncodePipe() override;

    void Write(const int32_t* pBuffer, int32_t nFrames) override;
    void SetPosition(int32_t sNewPosition) override;

    static constexpr int kBufferFrames = 8192;
    static constexpr int kCloseWaitMs = 5000;

    // Why construction failed, for the user.
    const std::string& GetReason() const { return szReason; }

private:
    LChildProcess encoder;
    std::vector<uint8_t> vBuffer;
    std::string szReason;
};
