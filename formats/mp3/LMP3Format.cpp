#include "formats/mp3/LMP3Format.h"

#include <cstdlib>
#include <cstring>
#include <vector>
#include <algorithm>

#include "core/LComponents.h"
#include "core/LFile.h"
#include "formats/LExternalFormat.h"
#include "formats/mp3/LMP3EncodePipe.h"
#include "formats/mp3/LMP3Source.h"
#include "formats/mp3/LMP3StreamKind.h"
#include "formats/mp3/LMP3Tags.h"

namespace {

// What the file holds after its leading tags, as far as a look at its first bytes tells.
LMP3StreamKind::Kind KindOf(const std::string& szPath)
{
    constexpr int64_t kLookBytes = 256 * 1024;
    LFile file;
    if (!file.Open(szPath, LFile::ReadExisting))
        return LMP3StreamKind::None;
    const int64_t nFileBytes = file.Size();
    const int64_t nFrom = LMP3Tags::LeadingBytes(file, nFileBytes);
    std::vector<uint8_t> v(static_cast<size_t>(std::max<int64_t>(std::min(kLookBytes, nFileBytes - nFrom), 0)));
    if (v.empty() || file.Seek(nFrom) != nFrom || file.Read(v.data(), static_cast<int64_t>(v.size())) <= 0)
        return LMP3StreamKind::None;
    return LMP3StreamKind::Classify(v.data(), v.size());
}

// Streams our decoder does not read (Layers I and II, free format) go to the installed decoder.
LSoundSourcePtr OpenOtherMpeg(LMP3StreamKind::Kind kind, const std::string& szPath, std::string* pszError,
                              LAudioFileDetails* pDetails)
{
    static const LExternalFormat other({"MP3", {}, nullptr, false, {"ffmpeg"}, {}, nullptr, 0});
    std::string szReason;
    LSoundSourcePtr pSource = other.OpenSource(szPath, &szReason, pDetails);
    const std::string szKind = LMP3StreamKind::Describe(kind);
    if (pSource->IsError()) {
        if (pszError)
            *pszError = "the file holds " + szKind + ", which only an installed decoder reads: " +
                        (szReason.empty() ? std::string("it could not decode the file") : szReason);
        return pSource;
    }
    if (pDetails)
        pDetails->szEncoding = szKind + ", " + pDetails->szEncoding;
    return pSource;
}

// Rates a Layer III stream can carry.
const int32_t kStreamRates[] = {8000, 11025, 12000, 16000, 22050, 24000, 32000, 44100, 48000};

} // namespace

bool LMP3Format::MatchesContent(const uint8_t* pHead, size_t nBytes) const
{
    if (nBytes >= 3 && !std::memcmp(pHead, "ID3", 3))
        return true;
    MP3Header h;
    return nBytes >= 4 && h.Accept(pHead);
}

void LMP3Format::FitShape(const LAudioEncoding& encoding, int32_t& nSampleRate, uint8_t& nChans) const
{
    nChans = nChans >= 2 ? 2 : 1;
    int32_t nBest = kStreamRates[0];
    for (int32_t n : kStreamRates)
        if (std::abs(n - nSampleRate) < std::abs(nBest - nSampleRate))
            nBest = n;
    nSampleRate = nBest;
}

std::string LMP3Format::Describe(const LMP3Source& source)
{
    static const char* const kVersions[3] = {"MPEG-1", "MPEG-2", "MPEG-2.5"};
    const int nKbps = source.GetAverageBitRate() / 1000;
    std::string sz = std::string(kVersions[source.GetFirstHeader().nVersion % 3]) + " Layer III, ";
    if (source.IsVariableBitRate())
        sz += "VBR (about " + std::to_string(nKbps) + " kbit/s)";
    else
        sz += std::to_string(nKbps) + " kbit/s";
    return sz;
}

LSoundSourcePtr LMP3Format::OpenSource(const std::string& szPath, std::string* pszError,
                                       LAudioFileDetails* pDetails) const
{
    LMP3Source* pMp3 = new LMP3Source(szPath);
    LSoundSourcePtr pSource(pMp3);
    if (pSource->IsError()) {
        const LMP3StreamKind::Kind kind = KindOf(szPath);
        if (kind == LMP3StreamKind::Layer1 || kind == LMP3StreamKind::Layer2 || kind == LMP3StreamKind::FreeFormat)
            return OpenOtherMpeg(kind, szPath, pszError, pDetails);
        if (pszError)
            *pszError = "not an MP3 file: no MPEG Layer III frame found";
        return pSource;
    }
    if (pDetails) {
        pDetails->szFormat = GetName();
        pDetails->szEncoding = Describe(*pMp3);
        pDetails->encoding = LAudioEncoding::Named("mp3");
    }
    return pSource;
}

LSoundSinkPtr LMP3Format::OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                                   const LAudioEncoding& encoding, std::string* pszError) const
{
    if (LComponents::Resolve(LComponents::kMp3Encoder).empty()) {
        if (pszError)
            *pszError = LComponents::NotInstalledText(LComponents::kMp3Encoder);
        return LSoundSinkPtr();
    }
    LMP3EncodePipe* pPipe = new LMP3EncodePipe(szPath, LMP3EncoderSettings::FromRecord(encoding.vRecord), nChans, nSampleRate);
    LSoundSinkPtr pSink(pPipe);
    if (pSink->IsError()) {
        if (pszError)
            *pszError = pPipe->GetReason().empty() ? std::string("cannot start the MP3 encoder") : pPipe->GetReason();
        return LSoundSinkPtr();
    }
    return pSink;
}
