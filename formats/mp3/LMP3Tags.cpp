#include "formats/mp3/LMP3Tags.h"

#include <cstring>
#include <vector>

#include "core/LTrace.h"

namespace {

constexpr int kMaxTags = 16; // tags stacked on one another, at most
constexpr int kId3v1Bytes = 128;
constexpr int kId3v1ExtBytes = 227; // "TAG+" in front of an ID3v1 tag
constexpr int kApeFooterBytes = 32;
constexpr int kLyrics3v1MaxBytes = 5100 + 20;

bool ReadAt(LFile& file, int64_t nAt, void* p, int64_t n)
{
    return nAt >= 0 && file.Seek(nAt) == nAt && file.Read(p, n) == n;
}

uint32_t Little32(const uint8_t* p)
{
    return uint32_t{p[0]} | (uint32_t{p[1]} << 8) | (uint32_t{p[2]} << 16) | (uint32_t{p[3]} << 24);
}

// The tag that ends at nEnd, in bytes; 0 when none does.
int64_t Id3v1At(LFile& file, int64_t nEnd)
{
    uint8_t a[4];
    if (nEnd < kId3v1Bytes || !ReadAt(file, nEnd - kId3v1Bytes, a, 3) || std::memcmp(a, "TAG", 3))
        return 0;
    if (nEnd >= kId3v1Bytes + kId3v1ExtBytes && ReadAt(file, nEnd - kId3v1Bytes - kId3v1ExtBytes, a, 4) &&
        !std::memcmp(a, "TAG+", 4))
        return kId3v1Bytes + kId3v1ExtBytes;
    return kId3v1Bytes;
}

int64_t ApeAt(LFile& file, int64_t nEnd)
{
    uint8_t a[kApeFooterBytes];
    if (nEnd < kApeFooterBytes || !ReadAt(file, nEnd - kApeFooterBytes, a, kApeFooterBytes) ||
        std::memcmp(a, "APETAGEX", 8))
        return 0;
    // The size counts the items and the footer; a header of 32 bytes may come first.
    const int64_t nSize = Little32(a + 12);
    const bool bHeader = (a[23] & 0x80) != 0;
    return nSize < kApeFooterBytes ? 0 : nSize + (bHeader ? kApeFooterBytes : 0);
}

int64_t Lyrics3At(LFile& file, int64_t nEnd)
{
    uint8_t a[15];
    if (nEnd < 15 || !ReadAt(file, nEnd - 15, a, 15))
        return 0;
    if (!std::memcmp(a + 6, "LYRICS200", 9)) {
        // Six decimal digits give the size of what lies between them and "LYRICSBEGIN" included.
        int64_t nSize = 0;
        for (int i = 0; i < 6; ++i) {
            if (a[i] < '0' || a[i] > '9')
                return 0;
            nSize = nSize * 10 + (a[i] - '0');
        }
        uint8_t b[11];
        if (nSize < 11 || !ReadAt(file, nEnd - 15 - nSize, b, 11) || std::memcmp(b, "LYRICSBEGIN", 11))
            return 0;
        return nSize + 15;
    }
    if (std::memcmp(a + 6, "LYRICSEND", 9))
        return 0;
    // The first version has no size: its start is searched for.
    const int64_t nLook = nEnd < kLyrics3v1MaxBytes ? nEnd : kLyrics3v1MaxBytes;
    std::vector<uint8_t> vBlock(static_cast<size_t>(nLook));
    if (!ReadAt(file, nEnd - nLook, vBlock.data(), nLook))
        return 0;
    for (int64_t i = nLook - 9 - 11; i >= 0; --i)
        if (!std::memcmp(vBlock.data() + i, "LYRICSBEGIN", 11))
            return nLook - i;
    return 0;
}

int64_t Id3v2FooterAt(LFile& file, int64_t nEnd)
{
    uint8_t a[LMP3Tags::kId3v2HeaderBytes];
    if (nEnd < LMP3Tags::kId3v2HeaderBytes || !ReadAt(file, nEnd - LMP3Tags::kId3v2HeaderBytes, a, sizeof(a)))
        return 0;
    return LMP3Tags::Id3v2Bytes(a, "3DI");
}

} // namespace

int64_t LMP3Tags::Id3v2Bytes(const uint8_t* p, const char* szMagic)
{
    if (std::memcmp(p, szMagic, 3) || p[3] == 0xFF || p[4] == 0xFF)
        return 0;
    int64_t nSize = 0;
    for (int i = 6; i < 10; ++i) {
        if (p[i] & 0x80)
            return 0; // the size is "sync-safe": seven bits a byte
        nSize = (nSize << 7) | p[i];
    }
    const bool bFooter = p[3] >= 4 && (p[5] & 0x10);
    return kId3v2HeaderBytes + nSize + (bFooter ? kId3v2HeaderBytes : 0);
}

int64_t LMP3Tags::LeadingBytes(LFile& file, int64_t nFileBytes)
{
    int64_t nAt = 0;
    for (int i = 0; i < kMaxTags; ++i) {
        uint8_t a[kId3v2HeaderBytes];
        if (!ReadAt(file, nAt, a, sizeof(a)))
            break;
        const int64_t n = Id3v2Bytes(a);
        if (n == 0 || nAt + n > nFileBytes)
            break;
        LTRACE("LMP3Tags::LeadingBytes ID3v2 tag of %lld bytes", static_cast<long long>(n));
        nAt += n;
    }
    return nAt;
}

int64_t LMP3Tags::TrailingBytes(LFile& file, int64_t nFrom, int64_t nFileBytes)
{
    int64_t nEnd = nFileBytes;
    for (int i = 0; i < kMaxTags; ++i) {
        int64_t n = Id3v1At(file, nEnd);
        if (n == 0)
            n = ApeAt(file, nEnd);
        if (n == 0)
            n = Lyrics3At(file, nEnd);
        if (n == 0)
            n = Id3v2FooterAt(file, nEnd);
        if (n == 0 || nEnd - n < nFrom)
            break;
        nEnd -= n;
    }
    return nFileBytes - nEnd;
}
