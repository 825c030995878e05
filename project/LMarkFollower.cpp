#include "project/LMarkFollower.h"

#include "core/LEdFile.h"

#include <algorithm>

LMarkFollower::Versions& LMarkFollower::VersionsOf(const LEdFile& file)
{
    auto [it, bNew] = mapFiles.try_emplace(&file);
    if (bNew) {
        it->second.seen = LPositionMap::VersionOf(file.GetDocument());
        it->second.onDisk = it->second.seen;
    }
    return it->second;
}

bool LMarkFollower::Follow(const LEdFile& file, const std::string& szKey, std::vector<LEdBookMark>& vBookmarks,
                           std::vector<LEdRegion>& vRegions)
{
    Versions& v = VersionsOf(file);
    LPositionMap::Version now = LPositionMap::VersionOf(file.GetDocument());
    if (now == v.seen)
        return false;
    const LPositionMap map(v.seen, now);
    v.seen = std::move(now);
    bool bMoved = false;
    for (LEdBookMark& b : vBookmarks) {
        if (b.GetPath() != szKey)
            continue;
        const int32_t sNew = map.Map(b.sPosition);
        bMoved |= sNew != b.sPosition;
        b.sPosition = sNew;
    }
    for (LEdRegion& r : vRegions) {
        if (r.GetPath() == szKey) {
            r.sStart = map.Map(r.sStart);
            r.sEnd = map.Map(r.sEnd);
        }
    }
    return bMoved;
}

void LMarkFollower::Saved(const LEdFile& file)
{
    Versions& v = VersionsOf(file);
    v.onDisk = LPositionMap::VersionOf(file.GetDocument());
}

std::vector<LEdBookMark> LMarkFollower::OnDisk(const LEdFile& file, const std::string& szKey,
                                               const std::vector<LEdBookMark>& vBookmarks) const
{
    std::vector<LEdBookMark> vOut = vBookmarks;
    auto it = mapFiles.find(&file);
    if (it == mapFiles.end())
        return vOut;
    const LPositionMap map(it->second.seen, it->second.onDisk);
    for (LEdBookMark& b : vOut)
        if (b.GetPath() == szKey)
            b.sPosition = map.Map(b.sPosition);
    return vOut;
}

void LMarkFollower::FromDisk(const LEdFile& file, std::vector<LEdBookMark>& vRead)
{
    const Versions& v = VersionsOf(file);
    const LPositionMap map(v.onDisk, v.seen);
    for (LEdBookMark& b : vRead)
        b.sPosition = map.Map(b.sPosition);
}

void LMarkFollower::Retain(const std::vector<const LEdFile*>& vOpen)
{
    std::erase_if(mapFiles, [&](const auto& entry) {
        return std::find(vOpen.begin(), vOpen.end(), entry.first) == vOpen.end();
    });
}
