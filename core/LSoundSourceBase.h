// The pull-model sound source: consumers read blocks of interleaved 32-bit frames.
#pragma once

#include <atomic>
#include <cstdint>

#include "core/LCountedPtr.h"

class LSoundSourceBase
{
public:
    // Bad arguments never fail construction: a default is substituted and the error latch set.
    LSoundSourceBase(int32_t nSampleRate, uint8_t nChans, int32_t nMaxAmplitude);
    LSoundSourceBase(const LSoundSourceBase&) = delete;
    LSoundSourceBase& operator=(const LSoundSourceBase&) = delete;
    virtual ~LSoundSourceBase() = default;

    // Fills exactly nFrames x channels samples; what lies outside the data reads as zeros.
    virtual void Read(int32_t* pBuffer, int32_t nFrames) = 0;
    virtual int32_t GetPosition() = 0;
    virtual int32_t GetLength() = 0;
    // A source that cannot seek keeps this default, which does nothing.
    virtual void SetPosition(int32_t sPosition) {}
    // How many frames the underlying file really holds, when that is fewer than GetLength()
    // (a header that claims more than is there); the frames past it read as silence. Loading
    // stores only these and makes the rest one silent cut. A reader whose header states a
    // length answers this; the default, the whole length, suits every other source.
    virtual int32_t GetLengthInFile() { return GetLength(); }

    int32_t GetSampleRate() const { return nSampleRate; }
    uint8_t GetChannels() const { return nChans; }
    int32_t GetMaxAmplitude() const { return nMaxAmplitude; }
    bool IsError() const { return (nFlags & kFlagError) != 0; }
    void SetError() { nFlags |= kFlagError; }

    void SetSampleRate(int32_t nRate);
    void SetChannels(uint8_t nNewChans);
    void SetMaxAmplitude(int32_t nMax) { nMaxAmplitude = nMax; }

    void AddRef() { ++nRefCount; }
    void Release()
    {
        if (--nRefCount == 0)
            delete this;
    }

    static constexpr uint8_t kFlagError = 1;

protected:
    int32_t nSampleRate;
    int32_t nMaxAmplitude;
    uint8_t nChans;
    uint8_t nFlags = 0;

private:
    std::atomic<uint16_t> nRefCount{0};
};

using LSoundSourcePtr = LCountedPtr<LSoundSourceBase>;

// The placeholder where no real source exists: latched from birth, reads zeros.
class LSRCSilence : public LSoundSourceBase
{
public:
    LSRCSilence() : LSoundSourceBase(11025, 1, 0x200000) { SetError(); }
    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return 0; }
    int32_t GetLength() override { return 0; }
};

// Zeros nFrames frames of nChans channels.
void LZeroFrames(int32_t* pBuffer, int32_t nFrames, uint8_t nChans);
