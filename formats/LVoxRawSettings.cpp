#include "formats/LVoxRawSettings.h"

#include "core/LSettings.h"

namespace {

constexpr const char* kSection = "Settings";
constexpr const char* kListTexts[LVoxRawSettings::kEncodings] = {
    "Dialogic ADPCM", "G711 uLaw", "G711 aLaw", "16 bit PCM (LE)", "8 bit unsigned", "8 bit signed", "16 bit PCM (BE)",
};
constexpr const char* kShortNames[LVoxRawSettings::kEncodings] = {"vox", "ulaw", "alaw", "s16le", "u8", "s8", "s16be"};

bool ValidFormat(int32_t n) { return n >= 0 && n < LVoxRawSettings::kEncodings; }

void Put32(std::vector<uint8_t>& v, uint32_t n)
{
    for (int i = 0; i < 4; ++i)
        v.push_back(static_cast<uint8_t>(n >> (8 * i)));
}

uint32_t Get32(const uint8_t* p) { return p[0] | (p[1] << 8) | (p[2] << 16) | (static_cast<uint32_t>(p[3]) << 24); }

} // namespace

const char* LVoxRawSettings::ListText(int32_t nFormat) { return ValidFormat(nFormat) ? kListTexts[nFormat] : ""; }

const char* LVoxRawSettings::ShortName(int32_t nFormat) { return ValidFormat(nFormat) ? kShortNames[nFormat] : ""; }

bool LVoxRawSettings::ParseFormat(const std::string& szText, int32_t& nFormat)
{
    for (int32_t i = 0; i < kEncodings; ++i) {
        if (szText == kShortNames[i] || szText == std::to_string(i)) {
            nFormat = i;
            return true;
        }
    }
    return false;
}

int32_t LVoxRawSettings::ElementSize(int32_t nFormat)
{
    switch (nFormat) {
    case RawPcm16LE:
    case RawPcm16BE:
        return 2;
    case RawDialogicAdpcm:
        return 0;
    default:
        if (LRawIsWide(nFormat))
            return static_cast<int32_t>(LWideBytes(LRawWideKind(nFormat)));
        return 1;
    }
}

LVoxRawSettings LVoxRawSettings::Load()
{
    LVoxRawSettings s;
    const int32_t nFormat = LSettings::GetInt(kSection, "VoxRawFileFormat", s.nFormat);
    const int32_t nRate = LSettings::GetInt(kSection, "VoxRawSampleRate", s.nSampleRate);
    const int32_t nChans = LSettings::GetInt(kSection, "VoxRawFileChannels", s.nChans);
    if (ValidFormat(nFormat))
        s.nFormat = nFormat;
    if (nRate >= kMinRate && nRate <= kMaxRate)
        s.nSampleRate = nRate;
    if (nChans >= 1 && nChans <= kMaxChans)
        s.nChans = static_cast<uint8_t>(nChans);
    return s;
}

void LVoxRawSettings::Store() const
{
    LSettings::SetInt(kSection, "VoxRawSampleRate", nSampleRate);
    LSettings::SetInt(kSection, "VoxRawFileFormat", nFormat);
    LSettings::SetInt(kSection, "VoxRawFileChannels", nChans);
}

LAudioEncoding LVoxRawSettings::ToEncoding() const
{
    LAudioEncoding encoding = LAudioEncoding::Named(ShortName(nFormat));
    Put32(encoding.vRecord, static_cast<uint32_t>(nSampleRate));
    encoding.vRecord.push_back(nChans);
    return encoding;
}

LVoxRawSettings LVoxRawSettings::FromEncoding(const LAudioEncoding& encoding)
{
    LVoxRawSettings s = Load();
    int32_t nFormat = 0;
    if (ParseFormat(encoding.szName, nFormat))
        s.nFormat = nFormat;
    if (encoding.vRecord.size() == 5) {
        const int32_t nRate = static_cast<int32_t>(Get32(encoding.vRecord.data()));
        const uint8_t nChans = encoding.vRecord[4];
        if (nRate >= kMinRate && nRate <= kMaxRate)
            s.nSampleRate = nRate;
        if (nChans >= 1 && nChans <= kMaxChans)
            s.nChans = nChans;
    }
    return s;
}
