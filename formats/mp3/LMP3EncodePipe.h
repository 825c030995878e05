// The push-model sink that writes an MP3 file through the external encoder component: the
// encoder runs as a child process reading raw 16-bit PCM on its standard input and writes the
// file itself. Completing closes its input and waits for it a bounded time: an encoder that does
// not finish in that time, is killed, or exits with a non-zero status fails the sink, and so
// does one that stops taking sound.
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
    bool Complete() override;
    std::string GetErrorText() const override { return szReason; }

    static constexpr int kBufferFrames = 8192;
    static constexpr int kCloseWaitMs = 5000;

    // Why construction (or, later, the encoding) failed, for the user.
    const std::string& GetReason() const { return szReason; }

private:
    void Fail(const std::string& szWhy);

    LChildProcess encoder;
    std::vector<uint8_t> vBuffer;
    std::string szReason;
    bool bCompleted = false;
};
