#include "formats/LWaveHeader.h"

#include <atomic>
#include <cstring>

namespace {

constexpr uint32_t kDs64Bytes = 28; // RIFF size, data size, frame count (64 bits each), table length 0
std::atomic<uint64_t> nSizeLimit{0xFFFFFFFFu};

void Put(std::vector<uint8_t>& v, uint64_t x, int nBytes)
{
    for (int i = 0; i < nBytes; ++i)
        v.push_back(static_cast<uint8_t>(x >> (8 * i)));
}

void PutId(std::vector<uint8_t>& v, const char* szId)
{
    v.insert(v.end(), szId, szId + 4);
}

uint32_t Size32(int64_t n)
{
    return n < 0 || static_cast<uint64_t>(n) >= LWaveHeader::kOpenSize ? LWaveHeader::kOpenSize
                                                                          : static_cast<uint32_t>(n);
}

} // namespace

LWaveHeader::LWaveHeader(const std::vector<uint8_t>& vFmtIn, bool bFactIn, bool bRoom)
    : vFmt(vFmtIn), bFact(bFactIn), bRoomForDs64(bRoom)
{
}

int64_t LWaveHeader::GetBytes() const
{
    // The format chunk is not padded to even length: readers take its size as it stands.
    const int64_t nFmt = 8 + static_cast<int64_t>(vFmt.size());
    return 12 + (bRoomForDs64 ? 8 + kDs64Bytes : 0) + nFmt + (bFact ? 12 : 0) + 8;
}

bool LWaveHeader::NeedsRF64(int64_t nDataBytes) const
{
    return nDataBytes >= 0 && static_cast<uint64_t>(GetBytes() - 8 + nDataBytes) > GetSizeLimit();
}

std::vector<uint8_t> LWaveHeader::Build(int64_t nDataBytes, int64_t nFrames) const
{
    const bool bOpen = nDataBytes < 0;
    const bool bRF64 = !bOpen && bRoomForDs64 && NeedsRF64(nDataBytes);
    const int64_t nRiff = bOpen ? kUnknown : GetBytes() - 8 + nDataBytes;
    // Sizes that do not fit stay in the open form, which readers take as "up to the end of the file".
    const bool bFits = !bOpen && !NeedsRF64(nDataBytes);
    std::vector<uint8_t> v;
    PutId(v, bRF64 ? "RF64" : "RIFF");
    Put(v, bFits ? Size32(nRiff) : kOpenSize, 4);
    PutId(v, "WAVE");
    if (bRoomForDs64) {
        PutId(v, bRF64 ? "ds64" : "JUNK");
        Put(v, kDs64Bytes, 4);
        Put(v, bRF64 ? static_cast<uint64_t>(nRiff) : 0, 8);
        Put(v, bRF64 ? static_cast<uint64_t>(nDataBytes) : 0, 8);
        Put(v, bRF64 && nFrames >= 0 ? static_cast<uint64_t>(nFrames) : 0, 8);
        Put(v, 0, 4);
    }
    PutId(v, "fmt ");
    Put(v, vFmt.size(), 4);
    v.insert(v.end(), vFmt.begin(), vFmt.end());
    if (bFact) {
        PutId(v, "fact");
        Put(v, 4, 4);
        Put(v, !bOpen && nFrames >= 0 ? Size32(nFrames) : kOpenSize, 4);
    }
    PutId(v, "data");
    Put(v, bFits ? Size32(nDataBytes) : kOpenSize, 4);
    return v;
}

void LWaveHeader::SetSizeLimit(uint64_t nLimit)
{
    nSizeLimit = nLimit;
}

uint64_t LWaveHeader::GetSizeLimit()
{
    return nSizeLimit;
}
