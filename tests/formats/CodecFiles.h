// Compressed WAV files for the codec tests: records, whole files with chosen chunks, our own
// decoding and encoding, the external tools' decodings, and the measures that compare them.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "formats/LWaveFile.h"
#include "formats/LWaveFormatRecord.h"
#include "support/TestSupport.h"
#include "tests/formats/WavBytes.h"

namespace codecfiles {

using wavbytes::Bytes;
using wavbytes::Chunk;
using wavbytes::Put;

// A RIFF WAVE file with the record, optional chunks between "fmt " and "data", and a data size
// that may lie.
inline Bytes FileOf(const LWaveFormatRecord& record, const Bytes& vData, const Bytes& vBetween = {},
                    const uint32_t* pDataSize = nullptr)
{
    Bytes vBody = {'W', 'A', 'V', 'E'};
    const Bytes vFmt = Chunk("fmt ", record.vBytes);
    vBody.insert(vBody.end(), vFmt.begin(), vFmt.end());
    vBody.insert(vBody.end(), vBetween.begin(), vBetween.end());
    const size_t nSizeAt = vBody.size() + 4;
    const Bytes vChunk = Chunk("data", vData);
    vBody.insert(vBody.end(), vChunk.begin(), vChunk.end());
    for (int i = 0; pDataSize && i < 4; ++i)
        vBody[nSizeAt + i] = static_cast<uint8_t>(*pDataSize >> (8 * i));
    return Chunk("RIFF", vBody);
}

// Every frame of a source as 16-bit values (the internal layout divided by 16).
inline std::vector<int16_t> DecodeAll(LSoundSourceBase& src, int32_t nBlock = 4000)
{
    std::vector<int16_t> v;
    std::vector<int32_t> vBuf(static_cast<size_t>(nBlock) * src.GetChannels());
    const int32_t nLength = src.GetLength();
    for (int32_t n = 0; n < nLength; n += nBlock) {
        const int32_t nNow = std::min(nBlock, nLength - n);
        src.Read(vBuf.data(), nNow);
        for (size_t i = 0; i < static_cast<size_t>(nNow) * src.GetChannels(); ++i)
            v.push_back(static_cast<int16_t>(vBuf[i] >> 4));
    }
    return v;
}

inline std::vector<int16_t> DecodeFile(const std::string& szPath, int32_t* pLength = nullptr)
{
    LSoundSourcePtr p = LWaveFile::OpenSource(szPath);
    if (pLength)
        *pLength = p->IsError() ? -1 : p->GetLength();
    return p->IsError() ? std::vector<int16_t>() : DecodeAll(*p);
}

// Writes 16-bit samples through the sink of a record.
inline bool EncodeFile(const std::string& szPath, const LWaveFormatRecord& record, const std::vector<int16_t>& v)
{
    LSoundSinkPtr p = LWaveFile::OpenSink(szPath, record);
    if (!p || p->IsError())
        return false;
    std::vector<int32_t> vIn(v.begin(), v.end());
    for (int32_t& x : vIn)
        x *= 16;
    const int32_t nFrames = static_cast<int32_t>(v.size() / record.nChannels);
    // In uneven pieces, as a pump hands them over.
    for (int32_t n = 0, nPiece = 1; n < nFrames; n += nPiece, nPiece = nPiece * 3 + 7) {
        nPiece = std::min(nPiece, nFrames - n);
        p->Write(vIn.data() + static_cast<size_t>(n) * record.nChannels, nPiece);
    }
    return !p->IsError();
}

inline std::vector<int16_t> FromBytes(const std::string& sz)
{
    std::vector<int16_t> v(sz.size() / 2);
    for (size_t i = 0; i < v.size(); ++i)
        v[i] = static_cast<int16_t>(static_cast<uint8_t>(sz[2 * i]) | (static_cast<uint8_t>(sz[2 * i + 1]) << 8));
    return v;
}

using testsupport::Quote;

// The tools' decodings to 16-bit, undithered; empty when the tool fails.
inline std::vector<int16_t> SoxDecode(const std::string& szPath)
{
    std::string sz;
    if (testsupport::RunCommand("sox -D " + Quote(szPath) + " -t s16 - 2>/dev/null", &sz) != 0)
        return {};
    return FromBytes(sz);
}
inline std::vector<int16_t> FfmpegDecode(const std::string& szPath)
{
    std::string sz;
    if (testsupport::RunCommand("ffmpeg -nostdin -loglevel error -i " + Quote(szPath) + " -f s16le - 2>/dev/null", &sz) != 0)
        return {};
    return FromBytes(sz);
}

// Signal to noise of b against a over their common length, in dB (999 when identical).
inline double SnrDb(const std::vector<int16_t>& a, const std::vector<int16_t>& b)
{
    double fSignal = 0, fNoise = 0;
    for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        fSignal += double(a[i]) * a[i];
        fNoise += (double(a[i]) - b[i]) * (double(a[i]) - b[i]);
    }
    return fNoise == 0 ? 999.0 : 10.0 * std::log10(fSignal / fNoise);
}

inline int MaxDiff(const std::vector<int16_t>& a, const std::vector<int16_t>& b)
{
    int n = 0;
    for (size_t i = 0; i < std::min(a.size(), b.size()); ++i)
        n = std::max(n, std::abs(a[i] - b[i]));
    return n;
}

// The index of the first sample where two decodings differ, or -1.
inline long FirstDifference(const std::vector<int16_t>& a, const std::vector<int16_t>& b)
{
    for (size_t i = 0; i < std::min(a.size(), b.size()); ++i)
        if (a[i] != b[i])
            return static_cast<long>(i);
    return a.size() == b.size() ? -1 : static_cast<long>(std::min(a.size(), b.size()));
}

// Speech from espeak-ng at the rate and channels asked, as a 16-bit WAV; false without the tools.
inline bool MakeSpeech(const std::string& szPath, int nRate, int nChans)
{
    const std::string szRaw = szPath + ".espeak.wav";
    return testsupport::RunCommand("espeak-ng -w " + Quote(szRaw) +
                                   " 'Seven slim swans swam south.' "
                                   ">/dev/null 2>&1") == 0 &&
           testsupport::RunCommand("sox -D " + Quote(szRaw) + " -r " + std::to_string(nRate) + " -c " +
                                   std::to_string(nChans) + " -b 16 " + Quote(szPath) + " >/dev/null 2>&1") == 0;
}

// A 16-bit test signal in memory: two tones and a sweep, interleaved.
inline std::vector<int16_t> Tones(int nRate, int nChans, int nFrames)
{
    std::vector<int16_t> v(static_cast<size_t>(nFrames) * nChans);
    for (int i = 0; i < nFrames; ++i)
        for (int c = 0; c < nChans; ++c)
            v[static_cast<size_t>(i) * nChans + c] = static_cast<int16_t>(
                9000 * std::sin(2 * M_PI * (440 + 110 * c) * i / nRate) +
                6000 * std::sin(2 * M_PI * (100 + 3000.0 * i / nFrames) * i / nRate));
    return v;
}

} // namespace codecfiles
