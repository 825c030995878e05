// Helpers of the CD tests: known test signals, running a process body, a cue image on disk.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cd/LCdImageWriter.h"
#include "core/LMemorySound.h"
#include "work/LProgressDialog.h"

namespace cdtest {

// Runs a body as a process with the quiet host (or the given factory).
class Body : public LProgressDialog
{
public:
    explicit Body(std::function<int32_t(LProgressDialog&)> f) : LProgressDialog("test"), fn(std::move(f)) {}
    int32_t Process() override { return fn(*this); }

private:
    std::function<int32_t(LProgressDialog&)> fn;
};

inline int32_t RunBody(std::function<int32_t(LProgressDialog&)> f, LProgressHostFactory* pFactory = nullptr)
{
    Body body(std::move(f));
    return body.Run(pFactory);
}

// Pseudo-random 16-bit values in file units, different for every seed.
inline std::vector<int32_t> Noise16(size_t nSamples, uint32_t nSeed)
{
    std::vector<int32_t> v(nSamples);
    uint32_t x = nSeed * 2654435761u + 1u;
    for (int32_t& s : v) {
        x = x * 1664525u + 1013904223u;
        s = static_cast<int16_t>(x >> 16);
    }
    return v;
}

// A source of 16-bit values (file units) at a rate and channel count.
inline LSoundSourcePtr Source16(const std::vector<int32_t>& vFile, int32_t nRate, uint8_t nChans)
{
    std::vector<int32_t> v(vFile);
    for (int32_t& s : v)
        s *= 16;
    return LSoundSourcePtr(new LSRCMemory(std::move(v), nRate, nChans));
}

// Reads a whole source back in file units.
inline std::vector<int32_t> ReadAll16(LSoundSourceBase& src)
{
    std::vector<int32_t> v(static_cast<size_t>(src.GetLength()) * src.GetChannels());
    src.SetPosition(0);
    if (!v.empty())
        src.Read(v.data(), src.GetLength());
    for (int32_t& s : v)
        s /= 16;
    return v;
}

inline int32_t WriteImage(const std::string& szCue, std::vector<LCdSourceItem> vItems, int32_t nGapSectors,
                          const std::string& szAlbum = "", std::string* pszError = nullptr)
{
    LCdImageWriter writer(std::move(vItems), szAlbum, "", nGapSectors);
    std::string szError;
    return RunBody([&](LProgressDialog& dlg) { return writer.Write(dlg, szCue, pszError ? pszError : &szError); });
}

} // namespace cdtest
