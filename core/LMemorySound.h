// A source over samples held in memory, and a sink that collects samples in memory.
// Used for short clips (clipboard data, test signals) and by tests.
#pragma once

#include <vector>

#include "core/LSoundSinkBase.h"
#include "core/LSoundSourceBase.h"

class LSRCMemory : public LSoundSourceBase
{
public:
    LSRCMemory(std::vector<int32_t> vSamples, int32_t nSampleRate, uint8_t nChans, int32_t nMaxAmplitude = 0x7FFF0);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return sPosition; }
    int32_t GetLength() override { return sLength; }
    void SetPosition(int32_t sNewPosition) override { sPosition = sNewPosition; }

private:
    std::vector<int32_t> vSamples;
    int32_t sLength;
    int32_t sPosition = 0;
};

class LSNKMemory : public LSoundSinkBase
{
public:
    LSNKMemory(int32_t nSampleRate, uint8_t nChans) : LSoundSinkBase(nSampleRate, nChans) {}

    void Write(const int32_t* pBuffer, int32_t nFrames) override;
    // Backwards only: drops what was written after the position.
    void SetPosition(int32_t sNewPosition) override;
    bool Complete() override { return !IsError(); }
    const std::vector<int32_t>& GetSamples() const { return vSamples; }

private:
    std::vector<int32_t> vSamples;
};
