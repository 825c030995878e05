// Test signals for the GSM codec and files: speech spoken by espeak-ng and resampled by sox to
// 8000 Hz, seeded noise, silence; and the established codec (toast, untoast) run on raw files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "support/TestSupport.h"

namespace gsmsignals {

using Samples = std::vector<int16_t>;
using Bytes = std::vector<uint8_t>;

inline bool HaveSpeechTools() { return testsupport::HaveTool("espeak-ng") && testsupport::HaveTool("sox"); }
inline bool HaveToast() { return testsupport::HaveTool("toast") && testsupport::HaveTool("untoast"); }

inline Bytes ToBytes(const Samples& v)
{
    Bytes b(v.size() * 2);
    for (size_t i = 0; i < v.size(); ++i) {
        b[2 * i] = static_cast<uint8_t>(v[i]);
        b[2 * i + 1] = static_cast<uint8_t>(static_cast<uint16_t>(v[i]) >> 8);
    }
    return b;
}

inline Samples ToSamples(const Bytes& b)
{
    Samples v(b.size() / 2);
    for (size_t i = 0; i < v.size(); ++i)
        v[i] = static_cast<int16_t>(b[2 * i] | b[2 * i + 1] << 8);
    return v;
}

// A few seconds of speech in the given espeak-ng voice, 8000 Hz 16-bit; empty when it fails.
inline Samples Speech(const testsupport::TempDir& dir, const std::string& szVoice, const std::string& szText)
{
    const std::string szWav = dir.File("speech-" + szVoice + ".wav");
    const std::string szRaw = dir.File("speech-" + szVoice + ".raw");
    if (testsupport::RunCommand("espeak-ng -v " + szVoice + " -w '" + szWav + "' '" + szText + "' 2>/dev/null") != 0 ||
        testsupport::RunCommand("sox '" + szWav + "' -r 8000 -c 1 -b 16 -e signed -t raw '" + szRaw + "' 2>/dev/null") != 0)
        return {};
    return ToSamples(testsupport::ReadFileBytes(szRaw));
}

// Uniform noise of the given peak from a fixed seed.
inline Samples Noise(size_t nSamples, int nPeak, uint32_t nSeed)
{
    Samples v(nSamples);
    for (int16_t& s : v) {
        nSeed = nSeed * 1664525u + 1013904223u;
        s = static_cast<int16_t>(static_cast<int32_t>((nSeed >> 8) % (2u * nPeak + 1)) - nPeak);
    }
    return v;
}

// toast on 16-bit samples (host order, little-endian here): the frames, all of them padded.
inline Bytes Toast(const testsupport::TempDir& dir, const Samples& v)
{
    testsupport::WriteFileBytes(dir.File("toast-in.raw"), ToBytes(v));
    if (testsupport::RunCommand("toast -l < '" + dir.File("toast-in.raw") + "' > '" + dir.File("toast-out.gsm") + "'") != 0)
        return {};
    return testsupport::ReadFileBytes(dir.File("toast-out.gsm"));
}

inline Samples Untoast(const testsupport::TempDir& dir, const Bytes& vFrames)
{
    testsupport::WriteFileBytes(dir.File("untoast-in.gsm"), vFrames);
    if (testsupport::RunCommand("untoast -l < '" + dir.File("untoast-in.gsm") + "' > '" + dir.File("untoast-out.raw") + "'") != 0)
        return {};
    return ToSamples(testsupport::ReadFileBytes(dir.File("untoast-out.raw")));
}

} // namespace gsmsignals
