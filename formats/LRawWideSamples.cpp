#include "formats/LRawWideSamples.h"

#include <cmath>
#include <cstring>

#include "core/LFixed.h"

namespace {

constexpr int32_t kMinSample = -0x80000;
constexpr double kFloatScale = 524288.0; // 1.0 in the internal layout

// The nBytes bytes of one sample as an unsigned value, most significant first.
template <size_t nBytes, bool bBig> inline uint64_t Load(const uint8_t* p)
{
    uint64_t v = 0;
    for (size_t i = 0; i < nBytes; ++i)
        v = (v << 8) | p[bBig ? i : nBytes - 1 - i];
    return v;
}

template <size_t nBytes, bool bBig> inline void Store(uint8_t* p, uint64_t v)
{
    for (size_t i = 0; i < nBytes; ++i)
        p[bBig ? nBytes - 1 - i : i] = static_cast<uint8_t>(v >> (8 * i));
}

inline int32_t Cap(int32_t v) { return v > kFullScale16 ? kFullScale16 : v; }

// The top 20 bits of a two's complement integer of nBytes bytes.
template <size_t nBytes, bool bBig> void IntToSamples(const uint8_t* pIn, int32_t* pOut, size_t n)
{
    constexpr int nDrop = 8 * nBytes - 20;
    for (size_t i = 0; i < n; ++i, pIn += nBytes) {
        const uint32_t u = static_cast<uint32_t>(Load<nBytes, bBig>(pIn)) << (32 - 8 * nBytes);
        pOut[i] = Cap(static_cast<int32_t>(u) >> (nDrop + 32 - 8 * nBytes));
    }
}

// Wraps like every writer: a value beyond the file's range is not clipped.
template <size_t nBytes, bool bBig> void IntFromSamples(const int32_t* pIn, uint8_t* pOut, size_t n)
{
    constexpr int nShift = 8 * nBytes - 20;
    for (size_t i = 0; i < n; ++i, pOut += nBytes)
        Store<nBytes, bBig>(pOut, static_cast<uint64_t>(static_cast<uint32_t>(pIn[i]) << nShift));
}

inline int32_t FromFloat(double f)
{
    const double x = std::nearbyint(f * kFloatScale);
    if (x >= kFullScale16)
        return kFullScale16;
    if (x <= kMinSample)
        return kMinSample;
    return x == x ? static_cast<int32_t>(x) : 0; // NaN reads as silence
}

template <typename T, bool bBig> void FloatToSamples(const uint8_t* pIn, int32_t* pOut, size_t n)
{
    using U = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;
    for (size_t i = 0; i < n; ++i, pIn += sizeof(T)) {
        const U u = static_cast<U>(Load<sizeof(T), bBig>(pIn));
        T f;
        std::memcpy(&f, &u, sizeof(T));
        pOut[i] = FromFloat(static_cast<double>(f));
    }
}

template <typename T, bool bBig> void FloatFromSamples(const int32_t* pIn, uint8_t* pOut, size_t n)
{
    using U = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;
    for (size_t i = 0; i < n; ++i, pOut += sizeof(T)) {
        const T f = static_cast<T>(pIn[i] / kFloatScale);
        U u;
        std::memcpy(&u, &f, sizeof(T));
        Store<sizeof(T), bBig>(pOut, u);
    }
}

} // namespace

size_t LWideBytes(LWideSample kind)
{
    switch (kind) {
    case LWideSample::Pcm24: return 3;
    case LWideSample::Float64: return 8;
    default: return 4;
    }
}

LWideToSamplesFn LWideReader(LWideSample kind, bool bBig)
{
    switch (kind) {
    case LWideSample::Pcm24: return bBig ? IntToSamples<3, true> : IntToSamples<3, false>;
    case LWideSample::Pcm32: return bBig ? IntToSamples<4, true> : IntToSamples<4, false>;
    case LWideSample::Float32: return bBig ? FloatToSamples<float, true> : FloatToSamples<float, false>;
    case LWideSample::Float64: return bBig ? FloatToSamples<double, true> : FloatToSamples<double, false>;
    }
    return nullptr;
}

LWideFromSamplesFn LWideWriter(LWideSample kind, bool bBig)
{
    switch (kind) {
    case LWideSample::Pcm24: return bBig ? IntFromSamples<3, true> : IntFromSamples<3, false>;
    case LWideSample::Pcm32: return bBig ? IntFromSamples<4, true> : IntFromSamples<4, false>;
    case LWideSample::Float32: return bBig ? FloatFromSamples<float, true> : FloatFromSamples<float, false>;
    case LWideSample::Float64: return bBig ? FloatFromSamples<double, true> : FloatFromSamples<double, false>;
    }
    return nullptr;
}
