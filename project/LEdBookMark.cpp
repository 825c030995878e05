#include "project/LEdBookMark.h"

#include <cstring>

#include "project/LBytes.h"

void LSetFixedText(char* pField, size_t nSize, const std::string& sz)
{
    std::memset(pField, 0, nSize);
    std::memcpy(pField, sz.data(), std::min(sz.size(), nSize - 1));
}

std::string LGetFixedText(const char* pField, size_t nSize)
{
    return std::string(pField, strnlen(pField, nSize));
}

LEdBookMark::LEdBookMark()
{
    std::memset(szName, 0, sizeof(szName));
    std::memset(szPath, 0, sizeof(szPath));
}

LEdBookMark::LEdBookMark(const std::string& szNewName, const std::string& szNewPath, int32_t sPos) : sPosition(sPos)
{
    SetName(szNewName);
    SetPath(szNewPath);
}

std::string LEdBookMark::GetName() const
{
    return LGetFixedText(szName, sizeof(szName));
}

std::string LEdBookMark::GetPath() const
{
    return LGetFixedText(szPath, sizeof(szPath));
}

void LEdBookMark::SetName(const std::string& sz)
{
    LSetFixedText(szName, sizeof(szName), sz);
}

void LEdBookMark::SetPath(const std::string& sz)
{
    LSetFixedText(szPath, sizeof(szPath), sz);
}

void LEdBookMark::Visit(uint32_t nNow)
{
    if (nTimesVisited < 255) // a count that has reached the top stays there
        ++nTimesVisited;
    nLastVisited = nNow;
}

void LEdBookMark::Write(LByteWriter& out) const
{
    out.Raw(szName, sizeof(szName));
    out.Raw(szPath, sizeof(szPath));
    out.I32(sPosition);
    out.U8(nTimesVisited);
    out.U32(nLastVisited);
}

bool LEdBookMark::Read(LByteReader& in)
{
    LEdBookMark b;
    if (!in.Raw(b.szName, sizeof(b.szName)) || !in.Raw(b.szPath, sizeof(b.szPath)) || !in.I32(b.sPosition) ||
        !in.U8(b.nTimesVisited) || !in.U32(b.nLastVisited))
        return false;
    b.szName[kTextSize - 1] = '\0';
    b.szPath[kTextSize - 1] = '\0';
    *this = b;
    return true;
}
