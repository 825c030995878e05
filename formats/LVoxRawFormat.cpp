#include "formats/LVoxRawFormat.h"

#include <cerrno>
#include <cstring>

#include "core/LFile.h"
#include "formats/LRawFileDataSoundSinkBase.h"
#include "formats/LRawFileDataSoundSource.h"
#include "formats/LSNKVOX.h"
#include "formats/LSRCVOX.h"
#include "formats/LVoxRawSettings.h"

std::vector<LAudioFileType> LVoxRawFormat::GetFileTypes() const
{
    if (bVox)
        return {{"Vox Files(*.vox)", "*.vox"}};
    return {{"Raw Audio Files(*.raw;*.pcm)", "*.raw;*.pcm"}};
}

namespace {
// A ".pcm" file is headerless 16-bit audio by name: the stored rate and channels apply, and the
// stored encoding only when it is one of the 16-bit ones.
LVoxRawSettings ForExtension(const std::string& szPath, LVoxRawSettings s)
{
    if (LFile::ExtensionOf(szPath) == ".pcm" && s.nFormat != RawPcm16LE && s.nFormat != RawPcm16BE)
        s.nFormat = RawPcm16LE;
    return s;
}
} // namespace

std::vector<std::string> LVoxRawFormat::GetEncodings() const
{
    std::vector<std::string> v;
    for (int32_t i = 0; i < LVoxRawSettings::kEncodings; ++i)
        v.push_back(LVoxRawSettings::ShortName(i));
    return v;
}

void LVoxRawFormat::FitShape(const LAudioEncoding& encoding, int32_t& nSampleRate, uint8_t& nChans) const
{
    const LVoxRawSettings s = LVoxRawSettings::FromEncoding(encoding);
    nSampleRate = s.nSampleRate;
    // ADPCM holds one channel, and so does every ".vox" file.
    nChans = (bVox || s.nFormat == RawDialogicAdpcm) ? 1 : s.nChans;
}

LSoundSourcePtr LVoxRawFormat::OpenSource(const std::string& szPath, std::string* pszError,
                                          LAudioFileDetails* pDetails) const
{
    LVoxRawSettings s = ForExtension(szPath, LVoxRawSettings::Load());
    if (bVox || s.nFormat == RawDialogicAdpcm)
        s.nChans = 1;
    LSoundSourcePtr pSource;
    errno = 0;
    if (s.nFormat == RawDialogicAdpcm) {
        pSource = new LSRCVOX(szPath, s.nSampleRate);
    } else {
        LFile file;
        file.Open(szPath, LFile::ReadExisting);
        pSource = LMakeRawSource(s.nFormat, std::move(file), s.nSampleRate,
                                 LRawFileDataSoundSourceBase::kUnspecifiedLength, s.nChans);
    }
    if (pSource->IsError()) {
        const int nErr = errno;
        if (pszError)
            *pszError = nErr ? std::string("cannot open the file: ") + std::strerror(nErr) : "cannot open the file";
        return pSource;
    }
    if (pDetails) {
        pDetails->szFormat = GetName();
        pDetails->szEncoding = LVoxRawSettings::ListText(s.nFormat);
        pDetails->encoding = s.ToEncoding();
    }
    return pSource;
}

LSoundSinkPtr LVoxRawFormat::OpenSink(const std::string& szPath, int32_t nSampleRate, uint8_t nChans,
                                      const LAudioEncoding& encoding, std::string* pszError) const
{
    const LVoxRawSettings s = ForExtension(szPath, LVoxRawSettings::FromEncoding(encoding));
    errno = 0;
    LSoundSinkPtr pSink;
    if (s.nFormat == RawDialogicAdpcm) {
        if (nChans != 1) {
            if (pszError)
                *pszError = "Dialogic ADPCM holds one channel only";
            return LSoundSinkPtr();
        }
        pSink = new LSNKVOX(szPath, nSampleRate);
    } else {
        pSink = new LRawFileDataSoundSinkBase(szPath, nSampleRate, nChans, s.nFormat);
    }
    if (pSink->IsError()) {
        const int nErr = errno;
        if (pszError)
            *pszError = nErr ? std::string("cannot write the file: ") + std::strerror(nErr) : "cannot write the file";
        return LSoundSinkPtr();
    }
    return pSink;
}
