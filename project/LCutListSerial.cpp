#include "project/LCutListSerial.h"

#include <climits>

#include "core/LAudioCutTank.h"
#include "core/LTrace.h"
#include "project/LBytes.h"

namespace LCutListSerial {

bool Write(const LCutListAudio& doc, LByteWriter& out, const RefOut& mapRef)
{
    out.I32(doc.GetSampleRate());
    out.U8(doc.GetChannels());
    out.U32(static_cast<uint32_t>(doc.GetCutCount()));
    bool bKept = true;
    doc.GetCuts().ForEach([&](const LAudioCut& cut) {
        uint16_t nStored = LAudioCut::kSilentRef;
        if (!bKept)
            return;
        if (!cut.IsSilent() && !mapRef(cut.nRef, nStored)) {
            LTRACE("LCutListSerial::Write segment %u not kept", cut.nRef);
            bKept = false;
            return;
        }
        out.U16(nStored);
        out.I32(cut.sLength);
        out.I32(cut.nGain);
        out.I32(cut.sOffset);
    });
    if (!bKept)
        return false;
    return true;
}

namespace {
bool Fail(std::string* pszWhy, const char* szWhy)
{
    LTRACE("LCutListSerial::Read %s", szWhy);
    if (pszWhy)
        *pszWhy = szWhy;
    return false;
}
} // namespace

bool Read(LByteReader& in, LCutListAudio& doc, const RefIn& mapRef, std::string* pszWhy)
{
    doc.Clear();
    int32_t nRate = 0;
    uint8_t nChans = 0;
    uint32_t nCount = 0;
    if (!in.I32(nRate) || !in.U8(nChans) || !in.U32(nCount))
        return Fail(pszWhy, "cut list cut short");
    if (nRate < 1 || nRate > kMaxSampleRate)
        return Fail(pszWhy, "sample rate out of range");
    // Every count a document can have (one byte's worth) is read back.
    if (nChans < 1)
        return Fail(pszWhy, "channel count out of range");
    // A count the rest of the file cannot hold is refused before anything is built.
    if (nCount > kMaxCuts || static_cast<int64_t>(nCount) * static_cast<int64_t>(kCutSize) > in.Remaining())
        return Fail(pszWhy, "cut count larger than the file");
    doc.SetFormat(nRate, nChans);
    int64_t nTotal = 0;
    for (uint32_t i = 0; i < nCount; ++i) {
        uint16_t nStored = 0;
        int32_t sLength = 0, nGain = 0, sOffset = 0;
        if (!in.U16(nStored) || !in.I32(sLength) || !in.I32(nGain) || !in.I32(sOffset))
            return Fail(pszWhy, "cut list cut short");
        if (sLength < 0 || nGain < 0 || sOffset < 0)
            return Fail(pszWhy, "negative length, gain or offset");
        if (static_cast<int64_t>(sOffset) + sLength > INT32_MAX)
            return Fail(pszWhy, "cut reaches past the largest segment");
        nTotal += sLength;
        if (nTotal > INT32_MAX)
            return Fail(pszWhy, "document longer than 2^31 - 1 frames");
        const uint16_t nRef = nStored == LAudioCut::kSilentRef ? LAudioCut::kSilentRef : mapRef(nStored);
        // The new record owns the reference the map handed out for it (a silent one owns none).
        const LAudioCut cut = LAudioCut::Adopt(nRef, sLength, nGain, sOffset);
        doc.AppendCut(cut);
    }
    return true;
}

} // namespace LCutListSerial
