// Sound to another program: an encoder started with an argument vector takes raw 16-bit
// little-endian PCM on its standard input and writes the file itself. Completing the sink closes
// the encoder's input and waits for it to finish; an encoder that fails or hangs fails the sink.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/LSoundSinkBase.h"

class LChildProcess;

class LSNKPipeEncoder : public LSoundSinkBase
{
public:
    LSNKPipeEncoder(const std::vector<std::string>& vArgs, const std::string& szWhat, int32_t nSampleRate,
                    uint8_t nChans);
    ~LSNKPipeEncoder() override;

    void Write(const int32_t* pBuffer, int32_t nFrames) override;
    bool Complete() override;

    std::string GetErrorText() const override { return szError; }
    // How long an encoder may take to finish once its input is closed.
    static constexpr int kFinishLimitMs = 60000;

private:
    void Fail(const std::string& szWhy);

    std::unique_ptr<LChildProcess> pChild;
    std::string szWhat;
    std::string szError;
    std::vector<uint8_t> vBytes;
    bool bCompleted = false;
};
