#include "formats/LExternalFormat.h"

#include <cctype>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "core/LComponents.h"
#include "core/LFile.h"
#include "core/LSettings.h"
#include "core/LTrace.h"
#include "formats/LSNKPipeEncoder.h"
#include "formats/LSRCPipeDecoder.h"
#include "platform/engine/LChildProcess.h"

namespace {

// The Debian package that brings each program, for the message when it is missing.
const char* PackageOf(const std::string& szProgram)
{
    if (szProgram == "flac")
        return "flac";
    if (szProgram == "oggdec" || szProgram == "oggenc")
        return "vorbis-tools";
    return "ffmpeg";
}

// "ffmpeg-vorbis" runs the program "ffmpeg".
std::string ProgramOf(const std::string& szTool)
{
    return szTool.substr(0, szTool.find('-'));
}

// A path a program cannot take for an option.
std::string SafePath(const std::string& szPath)
{
    std::error_code ec;
    const std::filesystem::path abs = std::filesystem::absolute(szPath, ec);
    return ec ? "./" + szPath : abs.string();
}

std::vector<std::string> DecoderArgs(const std::string& szTool, const std::string& szExe, const std::string& szFile)
{
    if (szTool == "flac")
        return {szExe, "-d", "-c", "-s", szFile};
    if (szTool == "oggdec")
        return {szExe, "-Q", "-o", "-", szFile};
    return {szExe,  "-nostdin", "-hide_banner", "-loglevel", "error", "-i",        szFile, "-vn",
            "-map", "0:a:0",    "-f",           "wav",       "-acodec", "pcm_s16le", "-"};
}

std::vector<std::string> EncoderArgs(const std::string& szTool, const std::string& szExe, const std::string& szFile,
                                     int32_t nRate, uint8_t nChans, int nQuality)
{
    const std::string szRate = std::to_string(nRate);
    const std::string szChans = std::to_string(nChans);
    const std::string szQuality = std::to_string(nQuality);
    if (szTool == "flac")
        return {szExe, "-s", "-f", "--force-raw-format", "--endian=little", "--sign=signed", "--channels=" + szChans,
                "--bps=16", "--sample-rate=" + szRate, "-" + szQuality, "-o", szFile, "-"};
    if (szTool == "oggenc")
        return {szExe, "-Q", "-r", "-B", "16", "-C", szChans, "-R", szRate, "--raw-endianness", "0", "-q", szQuality,
                "-o", szFile, "-"};
    const bool bFlac = szTool == "ffmpeg-flac";
    std::vector<std::string> v = {szExe, "-nostdin", "-hide_banner", "-loglevel", "error", "-y", "-f", "s16le", "-ar",
                                  szRate, "-ac", szChans, "-i", "-"};
    if (bFlac)
        v.insert(v.end(), {"-c:a", "flac", "-compression_level", szQuality, "-f", "flac", szFile});
    else
        v.insert(v.end(), {"-c:a", "libvorbis", "-q:a", szQuality, "-f", "ogg", szFile});
    return v;
}

// A length from ffprobe, where the stream's own header gives none.
int64_t ProbeFrames(const std::string& szFile, int32_t nRate)
{
    const std::string szExe = LComponents::Find("ffprobe");
    if (szExe.empty() || nRate <= 0)
        return 0;
    LChildProcess probe;
    if (!probe.Start({szExe, "-v", "error", "-show_entries", "format=duration", "-of", "default=nw=1:nk=1", szFile},
                     LChildProcess::PipeOut))
        return 0;
    char szText[64] = {};
    probe.ReadFull(szText, sizeof(szText) - 1);
    probe.Wait(5000);
    const double fSeconds = std::strtod(szText, nullptr);
    return fSeconds > 0 && fSeconds < 1e7 ? static_cast<int64_t>(fSeconds * nRate + 0.5) : 0;
}

std::vector<std::string> ExtraExtensions()
{
    std::vector<std::string> v;
    std::string sz = LSettings::GetString("Settings", LExternalFormat::kExtraExtensionsKey);
    size_t nStart = 0;
    while (nStart < sz.size()) {
        size_t nEnd = sz.find(';', nStart);
        if (nEnd == std::string::npos)
            nEnd = sz.size();
        std::string szExt = sz.substr(nStart, nEnd - nStart);
        std::transform(szExt.begin(), szExt.end(), szExt.begin(), [](unsigned char c) { return std::tolower(c); });
        if (!szExt.empty() && szExt[0] != '.')
            szExt = "." + szExt;
        if (szExt.size() > 1 && szExt.find_first_of("*?/ ") == std::string::npos)
            v.push_back(szExt);
        nStart = nEnd + 1;
    }
    return v;
}

void SetReason(std::string* pszError, const std::string& sz)
{
    if (pszError)
        *pszError = sz;
}

} // namespace

std::vector<LAudioFileType> LExternalFormat::GetFileTypes() const
{
    std::vector<LAudioFileType> v = info.vTypes;
    if (info.bTakesExtraExtensions) {
        std::string szPatterns;
        for (const std::string& szExt : ExtraExtensions())
            szPatterns += (szPatterns.empty() ? "*" : ";*") + szExt;
        if (!szPatterns.empty())
            v.push_back({"Other Audio Files(" + szPatterns + ")", szPatterns});
    }
    return v;
}

bool LExternalFormat::HasExtension(const std::string& szExt) const
{
    if (LAudioFormat::HasExtension(szExt))
        return true;
    if (!info.bTakesExtraExtensions)
        return false;
    const std::vector<std::string> v = ExtraExtensions();
    return std::find(v.begin(), v.end(), szExt) != v.end();
}

bool LExternalFormat::MatchesContent(const uint8_t* pHead, size_t nBytes) const
{
    const size_t nMagic = info.szMagic ? std::strlen(info.szMagic) : 0;
    return nMagic && nBytes >= nMagic && !std::memcmp(pHead, info.szMagic, nMagic);
}

std::vector<std::string> LExternalFormat::GetEncodings() const
{
    if (info.vEncoders.empty())
        return {};
    return {info.szName == std::string("FLAC") ? "flac" : "vorbis"};
}

int LExternalFormat::GetQuality(const LAudioEncoding& encoding) const
{
    if (encoding.vRecord.size() == 1)
        return static_cast<int8_t>(encoding.vRecord[0]);
    return info.szQualityKey ? LSettings::GetInt("Settings", info.szQualityKey, info.nDefaultQuality)
                             : info.nDefaultQuality;
}

void LExternalFormat::StoreQuality(int nQuality) const
{
    if (info.szQualityKey)
        LSettings::SetInt("Settings", info.szQualityKey, nQuality);
}

LSoundSourcePtr LExternalFormat::OpenSource(const std::string& szPath, std::string* pszError,
                                            LAudioFileDetails* pDetails) const
{
    const std::string szFile = SafePath(szPath);
    std::string szReason;
    for (const char* szTool : info.vDecoders) {
        const std::string szExe = LComponents::Find(szTool);
        if (szExe.empty()) {
            if (szReason.empty())
                szReason = "no decoder for " + std::string(info.szName) + " files: " +
                           LComponents::MissingText(szTool, PackageOf(szTool));
            continue;
        }
        auto* pDecoder = new LSRCPipeDecoder(DecoderArgs(szTool, szExe, szFile), szTool);
        LSoundSourcePtr pSource(pDecoder);
        if (pSource->IsError()) {
            // The next decoder may read what this one could not; its words are kept for the message.
            szReason = pDecoder->GetErrorText();
            continue;
        }
        if (pDecoder->GetLength() <= 1)
            pDecoder->SetEstimate(ProbeFrames(szFile, pDecoder->GetSampleRate()));
        if (pDetails) {
            pDetails->szFormat = info.szName;
            pDetails->szEncoding = "decoded by " + std::string(szTool);
            pDetails->encoding = LAudioEncoding();
        }
        return pSource;
    }
    LTRACE("LExternalFormat::OpenSource %s: %s", szPath.c_str(), szReason.c_str());
    SetReason(pszError, szReason);
    return LSoundSourcePtr(new LSRCSilence);
}

LSoundSinkPtr LExternalFormat::OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                                        const LAudioEncoding& encoding, std::string* pszError) const
{
    std::string szMissing;
    for (const char* szTool : info.vEncoders) {
        const std::string szExe = LComponents::Find(ProgramOf(szTool));
        if (szExe.empty()) {
            if (szMissing.empty())
                szMissing = LComponents::MissingText(ProgramOf(szTool), PackageOf(ProgramOf(szTool)));
            continue;
        }
        auto* pEncoder = new LSNKPipeEncoder(
            EncoderArgs(szTool, szExe, SafePath(szPath), nSampleRate, nChans, GetQuality(encoding)), ProgramOf(szTool),
            nSampleRate, nChans);
        LSoundSinkPtr pSink(pEncoder);
        if (pSink->IsError()) {
            SetReason(pszError, pEncoder->GetErrorText());
            return LSoundSinkPtr();
        }
        return pSink;
    }
    SetReason(pszError, "no encoder for " + std::string(info.szName) + " files: " + szMissing);
    return LSoundSinkPtr();
}

std::string LExternalFormat::GetListedName() const
{
    if (!info.bTakesExtraExtensions)
        return GetName();
    std::string sz;
    for (const LAudioFileType& type : info.vTypes) {
        for (char c : type.szPatterns) {
            if (c == '*' || c == '.')
                continue;
            sz += c == ';' ? std::string(", ") : std::string(1, static_cast<char>(std::toupper(static_cast<unsigned char>(c))));
        }
        sz += ", ";
    }
    return sz.empty() ? sz : sz.substr(0, sz.size() - 2);
}
