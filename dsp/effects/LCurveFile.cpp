#include "dsp/effects/LCurveFile.h"

#include <cstdlib>
#include <vector>

#include "core/LAtomicFile.h"
#include "core/LFile.h"
#include "core/LSettings.h"
#include "core/LTrace.h"

namespace {
int32_t GetLE32(const unsigned char* p)
{
    return static_cast<int32_t>(static_cast<uint32_t>(p[0]) | static_cast<uint32_t>(p[1]) << 8 |
                                static_cast<uint32_t>(p[2]) << 16 | static_cast<uint32_t>(p[3]) << 24);
}

void PutLE32(std::vector<unsigned char>& v, int32_t n)
{
    const uint32_t u = static_cast<uint32_t>(n);
    for (int i = 0; i < 4; ++i)
        v.push_back(static_cast<unsigned char>(u >> (8 * i)));
}

LPointList TwoPoints(int32_t x0, int32_t x1, int32_t y)
{
    LPointList list;
    list.Add(x0, y);
    list.Add(x1, y);
    return list;
}
} // namespace

LPointList LCurveFile::DefaultEqualizer()
{
    return TwoPoints(20, 20000, 0);
}

LPointList LCurveFile::DefaultEnvelope()
{
    return TwoPoints(0, 1000, 100);
}

std::string LCurveFile::PathOf(const std::string& szName)
{
    return LSettings::DataFilePath(szName);
}

bool LCurveFile::Parse(const unsigned char* p, size_t nBytes, LPointList& list)
{
    if (nBytes < 4)
        return false;
    const int32_t nPoints = GetLE32(p);
    if (nPoints < 0 || nPoints >= POINTLISTMAX || nBytes != 4 + static_cast<size_t>(nPoints) * 8) {
        LTRACE("LCurveFile::Parse bad size");
        return false;
    }
    LPointList tmp;
    tmp.nPoints = nPoints;
    for (int32_t i = 0; i < nPoints; ++i) {
        tmp.aPoints[i].x = GetLE32(p + 4 + 8 * i);
        tmp.aPoints[i].y = GetLE32(p + 8 + 8 * i);
    }
    if (!tmp.Validate())
        return false;
    list = tmp;
    return true;
}

bool LCurveFile::Load(const std::string& szPath, LPointList& list)
{
    LFile file;
    if (!file.Open(szPath, LFile::ReadExisting))
        return false;
    const int64_t nSize = file.Size();
    if (nSize < 4 || nSize > 4 + 8 * POINTLISTMAX)
        return false;
    std::vector<unsigned char> v(static_cast<size_t>(nSize));
    if (file.Read(v.data(), nSize) != nSize)
        return false;
    return Parse(v.data(), v.size(), list);
}

bool LCurveFile::Save(const std::string& szPath, const LPointList& list, std::string* pszError)
{
    if (!list.Validate()) {
        if (pszError)
            *pszError = "the curve's points are not in order";
        return false;
    }
    std::vector<unsigned char> v;
    PutLE32(v, list.nPoints);
    for (int32_t i = 0; i < list.nPoints; ++i) {
        PutLE32(v, list.aPoints[i].x);
        PutLE32(v, list.aPoints[i].y);
    }
    std::vector<uint8_t> vBytes(v.begin(), v.end());
    if (!LAtomicFile::Write(szPath, vBytes, pszError, LAtomicFile::MakeFolder)) {
        LTRACE("LCurveFile::Save cannot write %s", szPath.c_str());
        return false;
    }
    return true;
}

LPointList LCurveFile::LoadEqualizer()
{
    LPointList list = DefaultEqualizer();
    Load(PathOf(kEqualizerFile), list);
    return list;
}

LPointList LCurveFile::LoadEnvelope()
{
    LPointList list = DefaultEnvelope();
    Load(PathOf(kEnvelopeFile), list);
    return list;
}
