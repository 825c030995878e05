#include "formats/LSNKPCMFileWide.h"

namespace {

LWideSample KindOf(const LWaveFormatRecord& record)
{
    LWideSample kind = LWideSample::Pcm24;
    LSNKPCMFileWide::LayoutOf(record, kind);
    return kind;
}

} // namespace

bool LSNKPCMFileWide::LayoutOf(const LWaveFormatRecord& record, LWideSample& kind)
{
    if (record.nChannels == 0 || record.nBlockAlign % record.nChannels != 0)
        return false;
    // Wide samples are left-justified in their container, so the container decides.
    const uint32_t nBytes = record.nBlockAlign / record.nChannels;
    if (record.IsPCM() && record.wBitsPerSample > 16 && record.wBitsPerSample <= nBytes * 8 &&
        (nBytes == 3 || nBytes == 4)) {
        kind = nBytes == 3 ? LWideSample::Pcm24 : LWideSample::Pcm32;
        return true;
    }
    if (record.EffectiveTag() == LWaveFormatRecord::kTagFloat && record.wBitsPerSample == nBytes * 8 &&
        (nBytes == 4 || nBytes == 8)) {
        kind = nBytes == 4 ? LWideSample::Float32 : LWideSample::Float64;
        return true;
    }
    return false;
}

LSNKPCMFileWide::LSNKPCMFileWide(const std::string& szPath, const LWaveFormatRecord& record)
    : LSNKPCMFileBase(szPath, static_cast<int32_t>(record.nSamplesPerSec), 0, static_cast<uint8_t>(record.nChannels),
                      static_cast<int>(LWideBytes(KindOf(record))), &record),
      pfnConvert(LWideWriter(KindOf(record), false))
{
}

void LSNKPCMFileWide::Convert(const int32_t* pIn, uint8_t* pBytes, size_t nSamples) const
{
    pfnConvert(pIn, pBytes, nSamples);
}
