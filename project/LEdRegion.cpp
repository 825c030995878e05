#include "project/LEdRegion.h"

#include <cstring>

#include "core/LSoundTime.h"
#include "project/LBytes.h"
#include "project/LEdBookMark.h"

LEdRegion::LEdRegion() : pDoc(new LCutListAudio)
{
    std::memset(szName, 0, sizeof(szName));
    std::memset(szPath, 0, sizeof(szPath));
}

LEdRegion::LEdRegion(const std::string& szNewName, const std::string& szNewPath, const LCutListAudio& doc,
                     int32_t sFrom, int32_t sTo)
    : sStart(sFrom), sEnd(sTo), pDoc(new LCutListAudio)
{
    SetName(szNewName);
    SetPath(szNewPath);
    doc.EfCopy(sFrom, sTo, *pDoc);
}

std::string LEdRegion::GetName() const
{
    return LGetFixedText(szName, sizeof(szName));
}

std::string LEdRegion::GetPath() const
{
    return LGetFixedText(szPath, sizeof(szPath));
}

void LEdRegion::SetName(const std::string& sz)
{
    LSetFixedText(szName, sizeof(szName), sz);
}

void LEdRegion::SetPath(const std::string& sz)
{
    LSetFixedText(szPath, sizeof(szPath), sz);
}

std::string LEdRegion::Describe() const
{
    const int32_t nRate = pDoc ? pDoc->GetSampleRate() : 44100;
    LSoundTime start, end;
    start.SetSamples(sStart, nRate);
    end.SetSamples(sEnd, nRate);
    return GetName() + "@" + start.FormatMilliseconds() + "-" + end.FormatMilliseconds();
}

void LEdRegion::Write(LByteWriter& out) const
{
    out.Raw(szName, sizeof(szName));
    out.Raw(szPath, sizeof(szPath));
    out.I32(sStart);
    out.I32(sEnd);
}

bool LEdRegion::Read(LByteReader& in)
{
    if (!in.Raw(szName, sizeof(szName)) || !in.Raw(szPath, sizeof(szPath)) || !in.I32(sStart) || !in.I32(sEnd))
        return false;
    szName[kTextSize - 1] = '\0';
    szPath[kTextSize - 1] = '\0';
    return true;
}
