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

// A chunk with its size field; padded to even length unless it is the format chunk, whose
// odd size readers do not pad over.
inline Bytes Chunk(const std::string& szId, const Bytes& vBody)
{
    Bytes v(szId.begin(), szId.end());
    Put(v, static_cast<uint32_t>(vBody.size()), 4);
    v.insert(v.end(), vBody.begin(), vBody.end());
    if (vBody.size() % 2 && szId != "fmt ")
        v.push_back(0);
    return v;
}

struct WavShape
{
    uint16_t nTag = 1, nChans = 1;
    uint32_t nRate = 8000;
    uint16_t nBits = 16;
    uint32_t nFmtSize = 16; // bytes past 16 are zeros (cbSize 0)
    Bytes vData;
    std::optional<uint32_t> nDataSize; // the size field of "data", when it should lie
    Bytes vBeforeRiff, vBeforeFmt, vBetween; // whole chunks placed there
};

inline Bytes Build(const WavShape& s)
{
    Bytes vFmt;
    const uint32_t nBlock = s.nChans * ((s.nBits + 7) / 8);
    for (auto [x, n] : {std::pair<uint32_t, int>{s.nTag, 2}, {s.nChans, 2}, {s.nRate, 4}, {s.nRate * nBlock, 4},
                        {nBlock, 2}, {s.nBits, 2}})
        Put(vFmt, x, n);
    vFmt.resize(s.nFmtSize, 0);
    Bytes vBody = {'W', 'A', 'V', 'E'};
    for (const Bytes& v : {s.vBeforeFmt, Chunk("fmt ", vFmt), s.vBetween})
        vBody.insert(vBody.end(), v.begin(), v.end());
    const size_t nSizeAt = vBody.size() + 4;
    const Bytes vData = Chunk("data", s.vData);
    vBody.insert(vBody.end(), vData.begin(), vData.end());
    for (int i = 0; s.nDataSize && i < 4; ++i)
        vBody[nSizeAt + i] = static_cast<uint8_t>(*s.nDataSize >> (8 * i));
    Bytes v = s.vBeforeRiff;
    const Bytes vRiff = Chunk("RIFF", vBody);
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
