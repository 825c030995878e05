#include "project/LEdFileEntry.h"

#include <cstring>

#include "project/LBytes.h"
#include "project/LEdBookMark.h"

LEdFileEntry::LEdFileEntry()
{
    std::memset(szPath, 0, sizeof(szPath));
    std::memset(szEncoding, 0, sizeof(szEncoding));
    std::memset(szName, 0, sizeof(szName));
    std::memset(szAudioFolder, 0, sizeof(szAudioFolder));
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

std::string LEdFileEntry::GetAudioFolder() const
{
    return LGetFixedText(szAudioFolder, sizeof(szAudioFolder));
}

void LEdFileEntry::SetAudioFolder(const std::string& sz)
{
    LSetFixedText(szAudioFolder, sizeof(szAudioFolder), sz.size() < kAudioFolderSize ? sz : std::string());
}

bool LEdFileEntry::IsFolderName(const std::string& sz)
{
    return !sz.empty() && sz != "." && sz != ".." && sz.find('/') == std::string::npos;
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
    // The folder shares the name's field only where the name leaves it room.
    const bool bFolder = szAudioFolder[0] != '\0' && strnlen(szName, kNameSize) < kSharedNameSize;
    out.U8(static_cast<uint8_t>(bFolder ? (nFlags | kFlagAudioFolder) : (nFlags & ~kFlagAudioFolder)));
    out.Raw(szEncoding, sizeof(szEncoding));
    if (!bFolder) {
        out.Raw(szName, sizeof(szName));
        return;
    }
    out.Raw(szName, kSharedNameSize);
    out.Raw(szAudioFolder, sizeof(szAudioFolder));
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
    std::memset(szAudioFolder, 0, sizeof(szAudioFolder));
    if (nFlags & kFlagAudioFolder) {
        std::memcpy(szAudioFolder, szName + kSharedNameSize, sizeof(szAudioFolder));
        std::memset(szName + kSharedNameSize, 0, kNameSize - kSharedNameSize);
        szName[kSharedNameSize - 1] = '\0';
        szAudioFolder[kAudioFolderSize - 1] = '\0';
        nFlags = static_cast<uint8_t>(nFlags & ~kFlagAudioFolder);
    }
    return true;
}
