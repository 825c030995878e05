// Shared helpers of the MP3 tests: making files with lame, decoding with mpg123, comparing.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "formats/mp3/LMP3Source.h"
#include "support/TestSupport.h"

// The MP3 tests make their files with lame and check them against mpg123.
#define REQUIRE_CODEC_TOOLS()                                                                                          \
    if (!testsupport::HaveTool("lame") || !testsupport::HaveTool("mpg123"))                                            \
    GTEST_SKIP() << "lame and mpg123 are needed to make and check MP3 files"

namespace mp3test {

using testsupport::Quote;

// Music-like test audio: two drifting tones, noise and a click every quarter second (which
// makes the encoder switch to short blocks).
inline std::vector<int32_t> TestSignal(int nRate, int nChans, int nFrames)
{
    std::vector<int32_t> v;
    v.reserve(static_cast<size_t>(nFrames) * nChans);
    uint32_t nSeed = 12345;
    for (int i = 0; i < nFrames; ++i) {
        const double t = static_cast<double>(i) / nRate;
        for (int c = 0; c < nChans; ++c) {
            nSeed = nSeed * 1664525u + 1013904223u;
            const double fNoise = (static_cast<int32_t>(nSeed >> 16) - 32768) / 32768.0;
            double f = 6000 * std::sin(2 * M_PI * (300 + 40 * c) * t * (1 + 0.2 * t)) +
                       3000 * std::sin(2 * M_PI * 2500 * t) + 800 * fNoise;
            if (i % (nRate / 4) < nRate / 200)
                f += 12000 * fNoise;
            v.push_back(static_cast<int32_t>(std::lround(f)));
        }
    }
    return v;
}

// Encodes a generated signal with lame and the options given; false when lame fails.
inline bool MakeMp3(const testsupport::TempDir& dir, const std::string& szName, int nRate, int nChans, int nFrames,
                    const std::string& szOptions)
{
    const std::string szWav = dir.File(szName + ".wav");
    testsupport::WriteSimpleWav(szWav, nRate, nChans, 16, TestSignal(nRate, nChans, nFrames));
    return testsupport::RunCommand("lame --quiet " + szOptions + " " + Quote(szWav) + " " +
                                   Quote(dir.File(szName)) + " 2>&1") == 0;
}

// mpg123's decoding (every frame, no gap removal) as interleaved 16-bit samples.
inline std::vector<int16_t> Mpg123Decode(const std::string& szPath)
{
    std::string szOut;
    testsupport::RunCommand("mpg123 -q --no-gapless -s " + Quote(szPath) + " 2>/dev/null", &szOut);
    std::vector<int16_t> v(szOut.size() / 2);
    std::memcpy(v.data(), szOut.data(), v.size() * 2);
    return v;
}

// mpg123's gapless decoding: the encoder's delay and padding that its tag names are taken off.
inline std::vector<int16_t> Mpg123Gapless(const std::string& szPath)
{
    std::string szOut;
    testsupport::RunCommand("mpg123 -q -s " + Quote(szPath) + " 2>/dev/null", &szOut);
    std::vector<int16_t> v(szOut.size() / 2);
    std::memcpy(v.data(), szOut.data(), v.size() * 2);
    return v;
}

// The whole source, read in odd-sized blocks, as 16-bit samples clipped as a reference
// decoder clips them.
inline std::vector<int16_t> DecodeAll(LMP3Source& src, int32_t nMaxFrames = 1 << 24)
{
    std::vector<int16_t> v;
    std::vector<int32_t> vBlock(4099 * 2);
    while (src.GetPosition() < src.GetLength() && src.GetPosition() < nMaxFrames) {
        const int32_t sFrom = src.GetPosition();
        src.Read(vBlock.data(), std::min<int32_t>(4099, src.GetLength() - sFrom));
        // A read that meets the end of the stream shortens the length to it.
        const int32_t n = std::min<int32_t>(4099, src.GetLength() - sFrom);
        for (int32_t i = 0; i < n * src.GetChannels(); ++i)
            v.push_back(static_cast<int16_t>(std::clamp((vBlock[i] + 8) >> 4, -32768, 32767)));
    }
    return v;
}

// A source that learns its length only as it reads (a decoding program, an estimate), read to
// that end in blocks of nBlock frames, as 16-bit values.
inline std::vector<int16_t> ReadToEnd(LSoundSourceBase& src, int32_t nBlock = 4096)
{
    std::vector<int16_t> v;
    std::vector<int32_t> vBlock(static_cast<size_t>(nBlock) * src.GetChannels());
    for (int nGuard = 0; src.GetPosition() < src.GetLength() && nGuard < 100000; ++nGuard) {
        const int32_t sFrom = src.GetPosition();
        const int32_t nAsked = std::min<int32_t>(nBlock, src.GetLength() - sFrom);
        src.Read(vBlock.data(), nAsked);
        // Reading may move the length either way.
        const int32_t n = std::min<int32_t>(nAsked, src.GetLength() - sFrom);
        for (int32_t i = 0; i < n * src.GetChannels(); ++i)
            v.push_back(static_cast<int16_t>(vBlock[static_cast<size_t>(i)] >> 4));
    }
    return v;
}

struct Comparison
{
    double fPsnr = 0;
    int nMaxDiff = 0;
    size_t nCompared = 0;
};

// Compares a against b shifted by nOffset samples (a[i + nOffset] against b[i]).
inline Comparison Compare(const std::vector<int16_t>& a, const std::vector<int16_t>& b, long nOffset = 0)
{
    Comparison c;
    double fSum = 0;
    for (size_t i = 0; i < b.size(); ++i) {
        const long j = static_cast<long>(i) + nOffset;
        if (j < 0 || j >= static_cast<long>(a.size()))
            continue;
        const int d = std::abs(a[static_cast<size_t>(j)] - b[i]);
        fSum += static_cast<double>(d) * d;
        c.nMaxDiff = std::max(c.nMaxDiff, d);
        ++c.nCompared;
    }
    const double fMse = c.nCompared ? fSum / static_cast<double>(c.nCompared) : 0;
    c.fPsnr = fMse > 0 ? 10 * std::log10(32768.0 * 32768.0 / fMse) : 200.0;
    return c;
}

} // namespace mp3test
