// The push-model sound sink. A sink finishes its output in Complete, where a failure is seen;
// one never completed finishes in its destructor, where nobody can be told.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "core/LCountedPtr.h"

class LSoundSinkBase
{
public:
    LSoundSinkBase(int32_t nSampleRate, uint8_t nChans);
    LSoundSinkBase(const LSoundSinkBase&) = delete;
    LSoundSinkBase& operator=(const LSoundSinkBase&) = delete;
    virtual ~LSoundSinkBase() = default;

    virtual void Write(const int32_t* pBuffer, int32_t nFrames) = 0;
    virtual void SetPosition(int32_t sNewPosition) {}
    // Finishes the output (a file writer's last block, closing header and close; an encoder's end
    // of input and exit) and tells whether all of it reached its target: false, with the latch
    // set, when anything failed. Every sink has its own, and a save counts as done only when it
    // returns true. Later writes are not expected; the destructor then has nothing left to do.
    virtual bool Complete() = 0;
    // Why the sink failed, in the words of whoever failed (an encoder's last message), where the
    // system's reason for the last failed file call would not tell; empty otherwise.
    virtual std::string GetErrorText() const { return std::string(); }
    // A hint before the first write: about how many frames are coming. A file writer may lay out
    // its header for that size (a WAV file past 4 GB needs 64-bit sizes); the default ignores it.
    virtual void ExpectFrames(int64_t nFrames) {}

    int32_t GetPosition() const { return sPosition; }
    int32_t GetSampleRate() const { return nSampleRate; }
    uint8_t GetChannels() const { return nChans; }
    bool IsError() const { return (nFlags & kFlagError) != 0; }
    void SetError() { nFlags |= kFlagError; }

    void AddRef() { ++nRefCount; }
    void Release()
    {
        if (--nRefCount == 0)
            delete this;
    }

    static constexpr uint8_t kFlagError = 1;

protected:
    int32_t sPosition = 0;
    int32_t nSampleRate;
    uint8_t nChans;
    uint8_t nFlags = 0;

private:
    std::atomic<uint16_t> nRefCount{0};
};

using LSoundSinkPtr = LCountedPtr<LSoundSinkBase>;
