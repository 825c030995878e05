#include "formats/LWaveFormat.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "formats/LWaveFile.h"
#include "formats/codec/LCodec.h"
#include "formats/codec/LCodecFloat.h"
#include "formats/codec/LCodecPCM.h"
#include "formats/codec/LCodecStream.h"

namespace {

// The widths the wide PCM and float codecs write, besides their own default.
struct LWidth
{
    const char* szName;
    uint16_t nBits;
    bool bFloat;
};
const LWidth kWidths[] = {{"pcm24", 24, false}, {"pcm32", 32, false}, {"float", 32, true}, {"float64", 64, true}};

bool IsDirect(const std::string& szName)
{
    return szName.empty() || szName == "pcm16" || szName == "pcm8";
}

// A record the layer can write at this rate and channel count.
bool Writable(const LWaveFormatRecord& record, int32_t nSampleRate, uint8_t nChans)
{
    return record.nSamplesPerSec == static_cast<uint32_t>(nSampleRate) && record.nChannels == nChans &&
           LCodecStream::Open(nullptr, LWaveFormatRecord::PCM16(record.nSamplesPerSec, record.nChannels), record,
                              LCodecStream::kOpenQuery);
}

bool DecodeRecord(const LAudioEncoding& encoding, LWaveFormatRecord& record)
{
    return !encoding.vRecord.empty() && record.Decode(encoding.vRecord.data(), encoding.vRecord.size());
}

} // namespace

bool LWaveFormat::MatchesContent(const uint8_t* pHead, size_t nBytes) const
{
    return nBytes >= 12 && !std::memcmp(pHead, "RIFF", 4) && !std::memcmp(pHead + 8, "WAVE", 4);
}

std::vector<std::string> LWaveFormat::GetEncodings() const
{
    std::vector<std::string> v = {"pcm16", "pcm8"};
    for (const LWidth& w : kWidths)
        v.push_back(w.szName);
    for (const LCodec* p : LCodec::All())
        if (p->CanEncode() && std::find(v.begin(), v.end(), p->GetShortName()) == v.end())
            v.push_back(p->GetShortName());
    return v;
}

bool LWaveFormat::RecordFor(const LAudioEncoding& encoding, int32_t nSampleRate, uint8_t nChans,
                            LWaveFormatRecord& record)
{
    if (IsDirect(encoding.szName) || nSampleRate < 1 || nChans < 1)
        return false;
    if (DecodeRecord(encoding, record) && Writable(record, nSampleRate, nChans))
        return true;
    const uint32_t nRate = static_cast<uint32_t>(nSampleRate);
    for (const LWidth& w : kWidths) {
        if (encoding.szName == w.szName) {
            record = w.bFloat ? LCodecFloat::MakeFloat(nRate, nChans, w.nBits) : LCodecPCM::MakeWide(nRate, nChans, w.nBits);
            return true;
        }
    }
    const LCodec* pCodec = LCodec::ByShortName(encoding.szName);
    return pCodec && pCodec->CanEncode() && pCodec->MakeRecord(nRate, nChans, record);
}

LAudioEncoding LWaveFormat::EncodingOf(const LWaveFormatRecord& record)
{
    if (record.IsPCM() && record.wBitsPerSample <= 8)
        return LAudioEncoding::Named("pcm8");
    if (record.IsPCM() && record.wBitsPerSample <= 16)
        return LAudioEncoding::Named("pcm16");
    const LCodec* pCodec = LCodec::ForRecord(record);
    if (!pCodec)
        return LAudioEncoding::Named("pcm16");
    std::string szName = pCodec->GetShortName();
    if (record.wBitsPerSample > 24 && record.IsPCM())
        szName = "pcm32";
    else if (record.wBitsPerSample == 64 && szName == "float")
        szName = "float64";
    return LAudioEncoding{szName, record.vBytes, {}};
}

void LWaveFormat::FitShape(const LAudioEncoding& encoding, int32_t& nSampleRate, uint8_t& nChans) const
{
    if (IsDirect(encoding.szName))
        return;
    LWaveFormatRecord record;
    // A whole record is written as it is: the sound is converted to its rate and channels.
    if (DecodeRecord(encoding, record) && record.nChannels >= 1 && record.nChannels <= 255 &&
        Writable(record, static_cast<int32_t>(record.nSamplesPerSec), static_cast<uint8_t>(record.nChannels))) {
        nSampleRate = static_cast<int32_t>(record.nSamplesPerSec);
        nChans = static_cast<uint8_t>(record.nChannels);
        return;
    }
    if (const LCodec* pCodec = LCodec::ByShortName(encoding.szName))
        pCodec->FitShape(nSampleRate, nChans);
}

LSoundSourcePtr LWaveFormat::OpenSource(const std::string& szPath, std::string* pszError,
                                        LAudioFileDetails* pDetails) const
{
    LWaveFormatRecord record;
    LSoundSourcePtr pSource = LWaveFile::OpenSource(szPath, pszError, &record);
    if (pDetails && !pSource->IsError()) {
        pDetails->szFormat = GetName();
        pDetails->szEncoding = LWaveFile::DescribeEncoding(record);
        pDetails->encoding = EncodingOf(record);
    }
    return pSource;
}

LSoundSinkPtr LWaveFormat::OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                                    const LAudioEncoding& encoding, std::string* pszError) const
{
    errno = 0;
    LSoundSinkPtr pSink;
    LWaveFormatRecord record;
    if (IsDirect(encoding.szName)) {
        pSink = LWaveFile::OpenSinkPCM(szPath, nSampleRate, 0, encoding.szName == "pcm8" ? 8 : 16, nChans);
    } else if (RecordFor(encoding, nSampleRate, nChans, record)) {
        pSink = LWaveFile::OpenSink(szPath, record);
    } else {
        if (pszError)
            *pszError = "cannot write " + encoding.szName + " WAV at " + std::to_string(nSampleRate) + " Hz with " +
                        std::to_string(nChans) + " channels";
        return LSoundSinkPtr();
    }
    if (!pSink || pSink->IsError()) {
        const int nErr = errno;
        if (pszError)
            *pszError = nErr ? std::string("cannot write the file: ") + std::strerror(nErr) : "cannot write the file";
        return LSoundSinkPtr();
    }
    return pSink;
}
