// Running sox and ffmpeg on test files: what they decode a file to, and files they write.
#pragma once

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "core/LSoundSourceBase.h"
#include "support/TestSupport.h"

namespace toolaudio {

using testsupport::Quote;

inline std::vector<int16_t> Samples16LE(const std::vector<uint8_t>& v)
{
    std::vector<int16_t> vOut;
    for (size_t i = 0; i + 1 < v.size(); i += 2)
        vOut.push_back(static_cast<int16_t>(v[i] | (v[i + 1] << 8)));
    return vOut;
}

inline std::vector<uint8_t> Bytes16LE(const std::vector<int16_t>& v)
{
    std::vector<uint8_t> vOut;
    for (int16_t s : v) {
        vOut.push_back(static_cast<uint8_t>(s & 0xFF));
        vOut.push_back(static_cast<uint8_t>((s >> 8) & 0xFF));
    }
    return vOut;
}

// The interleaved 16-bit samples a tool ("sox" or "ffmpeg") decodes a file to; empty on failure.
// szInType is sox's input type for headerless files ("-t s16 -L -r 8000 -c 1"), else empty.
inline std::vector<int16_t> ToolDecode(const std::string& szTool, const std::string& szPath,
                                       const std::string& szInType = "")
{
    const std::string szOut = szPath + "." + szTool + ".s16";
    const std::string szCmd =
        szTool == "sox" ? "sox -D " + szInType + " " + Quote(szPath) + " -t s16 -L " + Quote(szOut)
                        : "ffmpeg -v error -y -i " + Quote(szPath) + " -f s16le -c:a pcm_s16le " + Quote(szOut);
    if (testsupport::RunCommand(szCmd + " 2>/dev/null") != 0)
        return {};
    return Samples16LE(testsupport::ReadFileBytes(szOut));
}

inline bool RunTool(const std::string& szCommand) { return testsupport::RunCommand(szCommand + " 2>/dev/null") == 0; }

// All of a source, interleaved.
inline std::vector<int32_t> ReadAll(LSoundSourceBase& src)
{
    std::vector<int32_t> v(static_cast<size_t>(src.GetLength()) * src.GetChannels());
    src.Read(v.data(), src.GetLength());
    return v;
}

// Internal samples as the 16-bit values they hold (exact for samples read from 16-bit files).
inline std::vector<int16_t> To16(const std::vector<int32_t>& v)
{
    std::vector<int16_t> vOut;
    for (int32_t s : v)
        vOut.push_back(static_cast<int16_t>(s / 16));
    return vOut;
}

// A few seconds of a chord with a slow swell, in 16-bit values, interleaved.
inline std::vector<int16_t> TestSignal(int nRate, int nChans, int nFrames)
{
    std::vector<int16_t> v;
    for (int i = 0; i < nFrames; ++i)
        for (int c = 0; c < nChans; ++c) {
            const double t = static_cast<double>(i) / nRate;
            const double a = 0.5 + 0.45 * std::sin(2 * M_PI * 0.7 * t);
            v.push_back(static_cast<int16_t>(std::lround(
                a * (14000 * std::sin(2 * M_PI * (330 + 110 * c) * t) + 9000 * std::sin(2 * M_PI * 1250 * t)))));
        }
    return v;
}

#define REQUIRE_TOOL(name)                                                                                             \
    if (!testsupport::HaveTool(name))                                                                                  \
    GTEST_SKIP() << name << " is not installed"

} // namespace toolaudio
