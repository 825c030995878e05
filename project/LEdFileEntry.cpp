#include "project/LEdFileEntry.h"

#include <cstring>

#include "project/LBytes.h"
#include "project/LEdBookMark.h"

LEdFileEntry::LEdFileEntry()
{
    std::memset(szPath, 0, sizeof(szPath));
    std::memset(szEncoding, 0, sizeof(szEncoding));
    std::memset(szName, 0, sizeof(szName));
}

std::string LEdFileEntry::GetPath() const
{
    return LGetFixedText(szPath, sizeof(szPath));
}

std::string LEdFileEntry::GetName() const
{
    return LGetFixedText(szName, sizeof(szName));
}

std::string LEdFileEntry::GetEncoding() const
{
    return LGetFixedText(szEncoding, sizeof(szEncoding));
}

void LEdFileEntry::SetPath(const std::string& sz)
{
    LSetFixedText(szPath, sizeof(szPath), sz.size() < kPathSize ? sz : std::string());
}

void LEdFileEntry::SetName(const std::string& sz)
{
    LSetFixedText(szName, sizeof(szName), sz);
}

void LEdFileEntry::SetEncoding(const std::string& sz)
{
    LSetFixedText(szEncoding, sizeof(szEncoding), sz.size() < kEncodingSize ? sz : std::string());
}

void LEdFileEntry::Write(LByteWriter& out) const
{
    out.Raw(szPath, sizeof(szPath));
    out.I32(sCursor);
    out.I32(sSelStart);
    out.I32(sSelEnd);
    out.I32(sViewStart);
    out.I32(sViewEnd);
    out.I32(nSampleRate);
    out.U8(nChans);
    out.U8(bVerticalZoom);
    out.U8(nDisplayMode);
    out.U8(nFlags);
    out.Raw(szEncoding, sizeof(szEncoding));
    out.Raw(szName, sizeof(szName));
}

bool LEdFileEntry::Read(LByteReader& in)
{
    if (!in.Raw(szPath, sizeof(szPath)) || !in.I32(sCursor) || !in.I32(sSelStart) || !in.I32(sSelEnd) ||
        !in.I32(sViewStart) || !in.I32(sViewEnd) || !in.I32(nSampleRate) || !in.U8(nChans) || !in.U8(bVerticalZoom) ||
        !in.U8(nDisplayMode) || !in.U8(nFlags) || !in.Raw(szEncoding, sizeof(szEncoding)) ||
        !in.Raw(szName, sizeof(szName)))
        return false;
    szPath[kPathSize - 1] = '\0';
    szEncoding[kEncodingSize - 1] = '\0';
    szName[kNameSize - 1] = '\0';
    return true;
}
