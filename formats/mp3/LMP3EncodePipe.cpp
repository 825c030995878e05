#include "formats/mp3/LMP3EncodePipe.h"

#include <algorithm>

#include "core/LComponents.h"
#include "core/LFixed.h"
#include "core/LTrace.h"
#include "platform/engine/LChildProcess.h"

LMP3EncodePipe::LMP3EncodePipe(const std::string& szOutput, const LMP3EncoderSettings& settings, uint8_t nChannels,
                               int32_t nRate)
    : LSoundSinkBase(nRate, nChannels ? nChannels : 1)
{
    if (nChannels == 0)
        SetError();
    const std::string szEncoder = LComponents::Resolve(LComponents::kMp3Encoder);
    if (szEncoder.empty()) {
        LTRACE("LMP3EncodePipe::LMP3EncodePipe mp3el component not found");
        szReason = LComponents::NotInstalledText(LComponents::kMp3Encoder);
        SetError();
        return;
    }
    vBuffer.resize(static_cast<size_t>(nChans) * kBufferFrames * 2);
    const std::vector<std::string> vArgs = settings.CommandLine(szEncoder, nChans, nSampleRate, szOutput);
    std::string szError;
    if (!encoder.Start(vArgs, LChildProcess::PipeIn, &szError)) {
        LTRACE("LMP3EncodePipe::LMP3EncodePipe() CreateProcess FAILED");
        szReason = "cannot start the MP3 encoder: " + szError;
        SetError();
    }
}

LMP3EncodePipe::~LMP3EncodePipe()
{
    Complete();
}

void LMP3EncodePipe::Fail(const std::string& szWhy)
{
    LTRACE("LMP3EncodePipe::Fail %s", szWhy.c_str());
    if (szReason.empty())
        szReason = szWhy;
    SetError();
}

bool LMP3EncodePipe::Complete()
{
    if (bCompleted)
        return !IsError();
    bCompleted = true;
    if (!encoder.IsRunning())
        return !IsError();
    encoder.CloseInput(); // the encoder sees the end of its input
    if (!encoder.Wait(kCloseWaitMs)) {
        LTRACE("LMP3EncodePipe::~LMP3EncodePipe() WaitForSingleObject(hEncoderProcess) FAILED - lame did not exit!");
        encoder.Kill();
        Fail("the MP3 encoder did not finish");
    } else if (encoder.GetExitCode() != 0) {
        // A signal (the file size limit, a kill) ends it with no exit code of its own.
        const std::string szLine = encoder.GetLastErrorLine();
        Fail("the MP3 encoder failed" + (szLine.empty() ? std::string() : ": " + szLine));
    }
    return !IsError();
}

void LMP3EncodePipe::Write(const int32_t* pBuffer, int32_t nFrames)
{
    sPosition += std::max(nFrames, 0);
    if (IsError() || bCompleted)
        return;
    if (!encoder.IsRunning()) {
        Fail("the MP3 encoder is not running");
        return;
    }
    while (nFrames > 0) {
        const int32_t n = std::min(nFrames, kBufferFrames);
        const size_t nSamples = static_cast<size_t>(n) * nChans;
        // Big-endian: the encoder is told to swap the bytes of its raw input.
        for (size_t i = 0; i < nSamples; ++i) {
            const uint16_t v = static_cast<uint16_t>(LTo16(pBuffer[i]));
            vBuffer[2 * i] = static_cast<uint8_t>(v >> 8);
            vBuffer[2 * i + 1] = static_cast<uint8_t>(v);
        }
        if (!encoder.Write(vBuffer.data(), nSamples * 2)) {
            // An encoder that died has said why on its error output by now, or will within the wait.
            encoder.Wait(1000);
            const std::string szLine = encoder.GetLastErrorLine();
            Fail("the MP3 encoder stopped taking sound" + (szLine.empty() ? std::string() : ": " + szLine));
            return;
        }
        pBuffer += nSamples;
        nFrames -= n;
    }
}

void LMP3EncodePipe::SetPosition(int32_t sNewPosition)
{
    LTRACE("LMP3EncodePipe::Seek not implemented");
}
