// Describes a streaming effect to the common runner: builds the effect's source over an input.
// Holds the two integer parameters of the effect's record, in the same order.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>

#include "core/LSoundSourceBase.h"

class LEffectFactory
{
public:
    LEffectFactory(int32_t nParam1 = 0, int32_t nParam2 = 0) : nParam1(nParam1), nParam2(nParam2) {}
    LEffectFactory(const LEffectFactory&) = delete;
    LEffectFactory& operator=(const LEffectFactory&) = delete;
    virtual ~LEffectFactory() = default;

    // The effect's source over pInput. It copies the input's rate, channels and error latch.
    virtual LSoundSourcePtr Create(LSoundSourceBase* pInput) = 0;

    void AddRef() { ++nRefCount; }
    void Release()
    {
        if (--nRefCount == 0)
            delete this;
    }

protected:
    int32_t nParam1;
    int32_t nParam2;

private:
    std::atomic<uint16_t> nRefCount{0};
};

using LEffectFactoryPtr = LCountedPtr<LEffectFactory>;

// A factory whose Create is a function of the input: what most effects need.
class LEffectFactoryFn : public LEffectFactory
{
public:
    using CreateFn = std::function<LSoundSourcePtr(LSoundSourceBase* pInput)>;
    LEffectFactoryFn(CreateFn fn, int32_t nParam1 = 0, int32_t nParam2 = 0)
        : LEffectFactory(nParam1, nParam2), fnCreate(std::move(fn))
    {
    }
    LSoundSourcePtr Create(LSoundSourceBase* pInput) override { return fnCreate(pInput); }

    static LEffectFactoryPtr Make(CreateFn fn, int32_t nParam1 = 0, int32_t nParam2 = 0)
    {
        return LEffectFactoryPtr(new LEffectFactoryFn(std::move(fn), nParam1, nParam2));
    }

private:
    CreateFn fnCreate;
};
