// The sample types of headerless files. Each is as large as one sample in the file and
// converts blocks of them to and from the internal layout; writing rounds and wraps.
#pragma once

#include <cstddef>
#include <cstdint>

struct LRawULaw
{
    uint8_t b;
    static void ToSamples(const uint8_t* pIn, int32_t* pOut, size_t n);
    static void FromSamples(const int32_t* pIn, uint8_t* pOut, size_t n);
};

struct LRawALaw
{
    uint8_t b;
    static void ToSamples(const uint8_t* pIn, int32_t* pOut, size_t n);
    static void FromSamples(const int32_t* pIn, uint8_t* pOut, size_t n);
};

struct LRawPcm16LE
{
    uint8_t b[2];
    static void ToSamples(const uint8_t* pIn, int32_t* pOut, size_t n);
    static void FromSamples(const int32_t* pIn, uint8_t* pOut, size_t n);
};

struct LRawPcm16BE
{
    uint8_t b[2];
    static void ToSamples(const uint8_t* pIn, int32_t* pOut, size_t n);
    static void FromSamples(const int32_t* pIn, uint8_t* pOut, size_t n);
};

struct LRawPcm8Unsigned
{
    uint8_t b;
    static void ToSamples(const uint8_t* pIn, int32_t* pOut, size_t n);
    static void FromSamples(const int32_t* pIn, uint8_t* pOut, size_t n);
};

struct LRawPcm8Signed
{
    uint8_t b;
    static void ToSamples(const uint8_t* pIn, int32_t* pOut, size_t n);
    static void FromSamples(const int32_t* pIn, uint8_t* pOut, size_t n);
};
