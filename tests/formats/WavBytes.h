// Builds WAV files byte by byte, so tests can shape every chunk and size field.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/LSoundSourceBase.h"

namespace wavbytes {

using Bytes = std::vector<uint8_t>;

inline void Put(Bytes& v, uint32_t x, int nBytes)
{
    for (int i = 0; i < nBytes; ++i)
        v.push_back(static_cast<uint8_t>(x >> (8 * i)));
}

inline void Put(Bytes& v, const std::string& s)
{
    v.insert(v.end(), s.begin(), s.end());
}

// A chunk with its size field, padded to even length unless told not to.
inline Bytes Chunk(const std::string& szId, const Bytes& vBody, bool bPad = true)
{
    Bytes v;
    Put(v, szId);
    Put(v, static_cast<uint32_t>(vBody.size()), 4);
    v.insert(v.end(), vBody.begin(), vBody.end());
    if (bPad && vBody.size() % 2)
        v.push_back(0);
    return v;
}

struct Spec
{
    uint16_t nTag = 1;
    uint16_t nChans = 1;
    uint32_t nRate = 8000;
    uint16_t nBits = 16;
    uint32_t nFmtSize = 16; // bytes past 16 are zeros (cbSize 0)
    Bytes vData;
    std::optional<uint32_t> nDataSize; // the size field of "data", when it should lie
    Bytes vBeforeRiff;                 // whole chunks ahead of the RIFF chunk
    Bytes vBeforeFmt;
    Bytes vBetween; // between "fmt " and "data"
};

inline Bytes Build(const Spec& s)
{
    Bytes vFmt;
    const uint32_t nBlock = s.nChans * ((s.nBits + 7) / 8);
    Put(vFmt, s.nTag, 2);
    Put(vFmt, s.nChans, 2);
    Put(vFmt, s.nRate, 4);
    Put(vFmt, s.nRate * nBlock, 4);
    Put(vFmt, nBlock, 2);
    Put(vFmt, s.nBits, 2);
    vFmt.resize(s.nFmtSize, 0);
    Bytes vBody;
    Put(vBody, "WAVE");
    vBody.insert(vBody.end(), s.vBeforeFmt.begin(), s.vBeforeFmt.end());
    const Bytes vFmtChunk = Chunk("fmt ", vFmt, false);
    vBody.insert(vBody.end(), vFmtChunk.begin(), vFmtChunk.end());
    vBody.insert(vBody.end(), s.vBetween.begin(), s.vBetween.end());
    Put(vBody, "data");
    Put(vBody, s.nDataSize ? *s.nDataSize : static_cast<uint32_t>(s.vData.size()), 4);
    vBody.insert(vBody.end(), s.vData.begin(), s.vData.end());
    Bytes v = s.vBeforeRiff;
    const Bytes vRiff = Chunk("RIFF", vBody, false);
    v.insert(v.end(), vRiff.begin(), vRiff.end());
    return v;
}

inline Bytes Samples16(const std::vector<int16_t>& vSamples)
{
    Bytes v;
    for (int16_t x : vSamples)
        Put(v, static_cast<uint16_t>(x), 2);
    return v;
}

// Reads nFrames from the current position.
inline std::vector<int32_t> ReadFrames(LSoundSourceBase& src, int32_t nFrames)
{
    std::vector<int32_t> v(static_cast<size_t>(nFrames) * src.GetChannels(), 12345);
    src.Read(v.data(), nFrames);
    return v;
}

} // namespace wavbytes
