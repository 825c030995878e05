// Compressed WAV files for every codec of the codec layer: the first bytes of the input choose the
// format record (tag, channels, block size, bits, codec data), the rest is the data chunk, with
// a data size that may lie. The file is read whole, seeked around and written back encoded.
#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>
#include <vector>

#include "formats/LWaveFile.h"
#include "formats/codec/LCodec.h"

namespace {

char g_szIn[80];
char g_szOut[80];

void MakePaths()
{
    if (g_szIn[0])
        return;
    const char* szDir = ::access("/dev/shm", W_OK) == 0 ? "/dev/shm" : "/tmp";
    std::snprintf(g_szIn, sizeof(g_szIn), "%s/sonitra-fuzz-codec-%d.wav", szDir, static_cast<int>(::getpid()));
    std::snprintf(g_szOut, sizeof(g_szOut), "%s/sonitra-fuzz-codec-%d-out.wav", szDir, static_cast<int>(::getpid()));
    std::atexit([] {
        std::remove(g_szIn);
        std::remove(g_szOut);
    });
}

void Put(std::vector<uint8_t>& v, uint32_t x, int nBytes)
{
    for (int i = 0; i < nBytes; ++i)
        v.push_back(static_cast<uint8_t>(x >> (8 * i)));
}

struct LReader
{
    const uint8_t* p;
    size_t n;
    uint32_t Take(int nBytes)
    {
        uint32_t x = 0;
        for (int i = 0; i < nBytes && n > 0; ++i, ++p, --n)
            x |= static_cast<uint32_t>(*p) << (8 * i);
        return x;
    }
};

const uint16_t kTags[] = {0x0001, 0x0003, 0xFFFE, 0x0011, 0x0002, 0x0006, 0x0007, 0x0031, 0x0055};
const uint32_t kMp3Rates[] = {8000, 22050, 44100, 48000};

// The record: mostly sane shapes for the chosen tag, with every field open to the fuzzer now and then.
std::vector<uint8_t> MakeRecord(LReader& in)
{
    const uint32_t nPick = in.Take(1);
    const uint16_t nTag = kTags[nPick % (sizeof(kTags) / sizeof(kTags[0]))];
    const bool bWild = (nPick & 0x80) != 0;
    const uint16_t nChans = static_cast<uint16_t>(bWild ? in.Take(1) : 1 + in.Take(1) % 2);
    uint32_t nRate = bWild ? in.Take(3) : 8000;
    uint16_t nBlock = static_cast<uint16_t>(in.Take(2));
    uint16_t nBits = static_cast<uint16_t>(in.Take(1));
    if (!bWild) {
        switch (nTag) {
        case 0x0011: nBits = 4; nBlock = static_cast<uint16_t>((nBlock % 64 + 2) * 4 * nChans); break;
        case 0x0002: nBits = 4; nBlock = static_cast<uint16_t>(nBlock % 1100 + 7 * nChans + 1); break;
        case 0x0031: nBits = 0; nBlock = 65; break;
        case 0x0055: nBits = 0; nRate = kMp3Rates[nBlock % 4]; nBlock = 1; break;
        case 0x0006:
        case 0x0007: nBits = 8; nBlock = nChans; break;
        default: nBits = (nBits & 1) ? 32 : (nTag == 3 ? 64 : 24); nBlock = static_cast<uint16_t>(nChans * nBits / 8);
        }
    }
    const uint32_t nExtra = in.Take(1) % 64;
    std::vector<uint8_t> v;
    Put(v, nTag, 2);
    Put(v, nChans, 2);
    Put(v, nRate, 4);
    Put(v, bWild ? in.Take(4) : nRate * nBlock / 2, 4);
    Put(v, nBlock, 2);
    Put(v, nBits, 2);
    Put(v, nExtra, 2);
    for (uint32_t i = 0; i < nExtra; ++i)
        Put(v, in.Take(1), 1);
    return v;
}

bool WriteFile(const char* szPath, const std::vector<uint8_t>& v)
{
    FILE* f = std::fopen(szPath, "wb");
    if (!f)
        return false;
    const bool bOk = std::fwrite(v.data(), 1, v.size(), f) == v.size();
    return std::fclose(f) == 0 && bOk;
}

constexpr int32_t kMaxFramesRead = 1 << 17;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* pData, size_t nSize)
{
    MakePaths();
    LReader in{pData, nSize};
    const bool bLieSize = (in.Take(1) & 1) != 0;
    const std::vector<uint8_t> vRecord = MakeRecord(in);
    std::vector<uint8_t> vFile = {'R', 'I', 'F', 'F', 0xFF, 0xFF, 0xFF, 0xFF, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' '};
    Put(vFile, static_cast<uint32_t>(vRecord.size()), 4);
    vFile.insert(vFile.end(), vRecord.begin(), vRecord.end());
    vFile.insert(vFile.end(), {'d', 'a', 't', 'a'});
    Put(vFile, bLieSize ? in.Take(4) : static_cast<uint32_t>(in.n), 4);
    vFile.insert(vFile.end(), in.p, in.p + in.n);
    if (!WriteFile(g_szIn, vFile))
        return 0;

    LWaveFormatRecord record;
    LSoundSourcePtr pSrc = LWaveFile::OpenSource(g_szIn, nullptr, &record);
    const int32_t nLength = pSrc->GetLength();
    const int32_t nBlock = 8192;
    std::vector<int32_t> vBuffer(static_cast<size_t>(nBlock) * pSrc->GetChannels());
    // Decode everything (capped) and write it back in the same format.
    LSoundSinkPtr pSink;
    if (!pSrc->IsError() && LCodec::ForRecord(record))
        pSink = LWaveFile::OpenSink(g_szOut, record);
    for (int32_t n = 0; n < std::min(nLength, kMaxFramesRead) + nBlock; n += nBlock) {
        pSrc->Read(vBuffer.data(), nBlock);
        if (pSink)
            pSink->Write(vBuffer.data(), 1 + n % nBlock + (n / nBlock) % 4099);
    }
    pSink.Reset();
    const int64_t vSeeks[] = {-7, 0, 1, nLength / 3, nLength - 1, nLength, int64_t{nLength} + 9000, INT32_MAX - 3};
    for (int64_t sTo : vSeeks) {
        pSrc->SetPosition(static_cast<int32_t>(std::min<int64_t>(sTo, INT32_MAX)));
        pSrc->Read(vBuffer.data(), 4097);
        pSrc->Read(vBuffer.data(), 1);
        volatile int32_t nLen = pSrc->GetLength();
        (void)nLen;
    }
    volatile int64_t nSink = static_cast<int64_t>(pSrc->GetPosition()) + vBuffer[0];
    (void)nSink;
    return 0;
}
