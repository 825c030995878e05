#include "formats/mp3/LMP3Tables.h"

#include <cmath>
#include <mutex>
#include <vector>

#include "core/LTrace.h"
#include "formats/mp3/LMP3TableData.h"

LMP3Tables MP3LT;

namespace {

// Full scale of the standard's output (1.0) becomes a 16-bit full scale held as v x 16.
constexpr double kOutputScale = 32768.0 * 16.0;

struct Code
{
    uint32_t nCode;
    uint8_t nLen;
    uint8_t nValue;
};

class HuffBuilder
{
public:
    HuffBuilder(uint32_t* pOut, int nCapacity) : pOut(pOut), nCapacity(nCapacity) {}

    // Lays out one level for the codes given, all of which share their first nUsed bits;
    // returns the start of the level, or -1 when the space runs out.
    int Level(const std::vector<Code>& vCodes, int nUsed, int& nWidth)
    {
        int nMax = 1;
        for (const Code& c : vCodes)
            nMax = std::max(nMax, c.nLen - nUsed);
        nWidth = std::min(nMax, nUsed == 0 ? 8 : 5);
        const int nStart = nSize;
        if (nSize + (1 << nWidth) > nCapacity)
            return -1;
        nSize += 1 << nWidth;
        // A code the book lacks still takes one bit, so that a bad stream always moves on.
        for (int i = 0; i < (1 << nWidth); ++i)
            pOut[nStart + i] = 1u << 8;
        std::vector<std::vector<Code>> vGroups(static_cast<size_t>(1) << nWidth);
        for (const Code& c : vCodes) {
            const int nRest = c.nLen - nUsed;
            const uint32_t nBits = c.nCode & ((1u << nRest) - 1);
            if (nRest <= nWidth) {
                const uint32_t nFirst = nBits << (nWidth - nRest);
                for (uint32_t i = 0; i < (1u << (nWidth - nRest)); ++i)
                    pOut[nStart + nFirst + i] = (static_cast<uint32_t>(nRest) << 8) | c.nValue;
            } else {
                vGroups[nBits >> (nRest - nWidth)].push_back(c);
            }
        }
        for (size_t g = 0; g < vGroups.size(); ++g) {
            if (vGroups[g].empty())
                continue;
            int nSubWidth = 0;
            const int nSub = Level(vGroups[g], nUsed + nWidth, nSubWidth);
            if (nSub < 0)
                return -1;
            pOut[nStart + g] = 0x80000000u | (static_cast<uint32_t>(nSubWidth) << 24) | static_cast<uint32_t>(nSub);
        }
        return nStart;
    }

    int nSize = 0;

private:
    uint32_t* pOut;
    int nCapacity;
};

// A book is usable when its codes form a complete prefix code.
bool IsComplete(const std::vector<Code>& vCodes)
{
    double fSum = 0;
    for (const Code& c : vCodes)
        fSum += std::ldexp(1.0, -c.nLen);
    return std::fabs(fSum - 1.0) < 1e-9;
}

} // namespace

bool LMP3Tables::BuildHuffman()
{
    HuffBuilder builder(aHuff, kHuffEntries);
    int nFirstOf16 = -1, nFirstOf24 = -1, nBits16 = 0, nBits24 = 0;
    for (int b = 0; b < 34; ++b) {
        std::vector<Code> vCodes;
        if (b < 32) {
            const LMP3Data::HuffBook& book = LMP3Data::kBooks[b];
            if (!book.pCodes) {
                aBookStart[b] = 0;
                aBookBits[b] = 0;
                continue;
            }
            if (b > 16 && b < 24 && nFirstOf16 >= 0) {
                aBookStart[b] = static_cast<uint16_t>(nFirstOf16);
                aBookBits[b] = static_cast<uint8_t>(nBits16);
                continue;
            }
            if (b > 24 && nFirstOf24 >= 0) {
                aBookStart[b] = static_cast<uint16_t>(nFirstOf24);
                aBookBits[b] = static_cast<uint8_t>(nBits24);
                continue;
            }
            for (int x = 0; x < book.nXLen; ++x)
                for (int y = 0; y < book.nXLen; ++y) {
                    const int i = x * book.nXLen + y;
                    vCodes.push_back({book.pCodes[i], book.pLengths[i], static_cast<uint8_t>(x << 4 | y)});
                }
        } else {
            for (int v = 0; v < 16; ++v) {
                if (b == 32)
                    vCodes.push_back({LMP3Data::kCount1A.pCodes[v], LMP3Data::kCount1A.pLengths[v], static_cast<uint8_t>(v)});
                else
                    vCodes.push_back({static_cast<uint32_t>(15 - v), 4, static_cast<uint8_t>(v)});
            }
        }
        if (!IsComplete(vCodes)) {
            LTRACE("LMP3Tables::BuildHuffman book %d is not a complete code", b);
            return false;
        }
        int nWidth = 0;
        const int nStart = builder.Level(vCodes, 0, nWidth);
        if (nStart < 0) {
            LTRACE("LMP3Tables::BuildHuffman out of table space");
            return false;
        }
        aBookStart[b] = static_cast<uint16_t>(nStart);
        aBookBits[b] = static_cast<uint8_t>(nWidth);
        if (b == 16) {
            nFirstOf16 = nStart;
            nBits16 = nWidth;
        } else if (b == 24) {
            nFirstOf24 = nStart;
            nBits24 = nWidth;
        }
    }
    return true;
}

bool LMP3Tables::InitTables()
{
    static std::mutex mtx;
    std::lock_guard<std::mutex> lock(mtx);
    if (bReady)
        return bOk;
    bReady = true;
    const double kPi = 3.14159265358979323846;
    for (int i = 0; i < kPow43Size; ++i)
        fPow43[i] = static_cast<float>(std::pow(static_cast<double>(i), 4.0 / 3.0));
    for (int i = 0; i < kGainSize; ++i)
        fGain[i] = static_cast<float>(std::exp2((i - kGainOffset) / 4.0));
    for (int n = 0; n < 18; ++n)
        fImdctInv72[n] = static_cast<float>(0.5 / std::cos(kPi * (2 * n + 1) / 72.0));
    for (int n = 0; n < 9; ++n) {
        fImdctInv36[n] = static_cast<float>(0.5 / std::cos(kPi * (2 * n + 1) / 36.0));
        for (int k = 0; k < 9; ++k)
            fImdctDct9[n][k] = static_cast<float>(std::cos(kPi * (2 * n + 1) * k / 18.0));
    }
    for (int k = 0; k < 6; ++k)
        for (int i = 0; i < 12; ++i)
            fImdct12[k][i] = static_cast<float>(std::cos(kPi / 24.0 * (2 * i + 7) * (2 * k + 1)) *
                                                std::sin(kPi / 12.0 * (i + 0.5)));
    for (int i = 0; i < 36; ++i) {
        const double fLong = std::sin(kPi / 36.0 * (i + 0.5));
        fWindow[0][i] = static_cast<float>(fLong);
        fWindow[1][i] = static_cast<float>(i < 18 ? fLong : i < 24 ? 1.0 : i < 30 ? std::sin(kPi / 12.0 * (i - 18 + 0.5)) : 0.0);
        fWindow[3][i] = static_cast<float>(i < 6 ? 0.0 : i < 12 ? std::sin(kPi / 12.0 * (i - 6 + 0.5)) : i < 18 ? 1.0 : fLong);
        fWindow[2][i] = 0.0f;
    }
    for (int i = 0; i < 8; ++i) {
        const double c = LMP3Data::kAliasCoef[i];
        const double fRoot = std::sqrt(1.0 + c * c);
        fAliasCs[i] = static_cast<float>(1.0 / fRoot);
        fAliasCa[i] = static_cast<float>(c / fRoot);
    }
    for (int N = 32, nAt = 0; N >= 2; nAt += N / 2, N /= 2)
        for (int n = 0; n < N / 2; ++n)
            fDctInv[nAt + n] = static_cast<float>(0.5 / std::cos(kPi * (2 * n + 1) / (2.0 * N)));
    for (int i = 0; i <= 256; ++i)
        fSynth[i] = static_cast<float>(LMP3Data::kSynthWindow[i] * kOutputScale);
    for (int i = 257; i < 512; ++i)
        fSynth[i] = (i % 64 == 0 ? 1.0f : -1.0f) * fSynth[512 - i];
    for (int p = 0; p < 7; ++p) {
        const double t = std::tan(p * kPi / 12.0);
        fIsLeft1[p] = static_cast<float>(p == 6 ? 1.0 : t / (1.0 + t));
        fIsRight1[p] = static_cast<float>(p == 6 ? 0.0 : 1.0 / (1.0 + t));
    }
    for (int s = 0; s < 2; ++s)
        for (int p = 0; p < 32; ++p) {
            const double io = s ? std::sqrt(0.5) : std::pow(0.5, 0.25);
            const double k = std::pow(io, (p + 1) / 2);
            fIsLeft2[s][p] = static_cast<float>(p & 1 ? k : 1.0);
            fIsRight2[s][p] = static_cast<float>(p & 1 ? 1.0 : k);
        }
    bOk = BuildHuffman();
    return bOk;
}
