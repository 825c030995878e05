#include "formats/mp3/LMP3EncoderSettings.h"

#include <cstdio>

#include "core/LSettings.h"

LMP3EncoderSettings LMP3EncoderSettings::Load()
{
    LMP3EncoderSettings s;
    s.bConstantBitRate = LSettings::GetBool(kSection, "ConstantBitRate", s.bConstantBitRate);
    s.nCBRBitRate = LSettings::GetInt(kSection, "CBRBitRate", s.nCBRBitRate);
    s.bHighQuality = LSettings::GetBool(kSection, "HighQuality", s.bHighQuality);
    s.nVBRMinBitRate = LSettings::GetInt(kSection, "VBRMinBitRate", s.nVBRMinBitRate);
    s.nVBRMaxBitRate = LSettings::GetInt(kSection, "VBRMaxBitRate", s.nVBRMaxBitRate);
    s.nVBRQuality = LSettings::GetInt(kSection, "VBRQuality", s.nVBRQuality);
    s.bErrorProtection = LSettings::GetBool(kSection, "ErrorProtection", s.bErrorProtection);
    s.nChannelMode = LSettings::GetInt(kSection, "ChannelMode", s.nChannelMode);
    s.ApplyRules();
    return s;
}

void LMP3EncoderSettings::Save() const
{
    LSettings::SetBool(kSection, "ConstantBitRate", bConstantBitRate);
    LSettings::SetInt(kSection, "CBRBitRate", nCBRBitRate);
    LSettings::SetBool(kSection, "HighQuality", bHighQuality);
    LSettings::SetInt(kSection, "VBRMinBitRate", nVBRMinBitRate);
    LSettings::SetInt(kSection, "VBRMaxBitRate", nVBRMaxBitRate);
    LSettings::SetInt(kSection, "VBRQuality", nVBRQuality);
    LSettings::SetBool(kSection, "ErrorProtection", bErrorProtection);
    LSettings::SetInt(kSection, "ChannelMode", nChannelMode);
}

void LMP3EncoderSettings::ApplyRules()
{
    if (nVBRMaxBitRate >= 161 && nVBRMinBitRate < 32)
        nVBRMinBitRate = 32;
}

char LMP3EncoderSettings::ModeLetter(int nChans) const
{
    int nMode = nChannelMode > 3 || nChannelMode < 0 ? 1 : nChannelMode;
    if ((bConstantBitRate ? nCBRBitRate : nVBRMaxBitRate) < 24)
        nMode = 3;
    if (nChans != 2)
        nMode = 3;
    else if (nMode == 3)
        nMode = 0; // the stream on the connection carries two channels
    return "sjfm"[nMode];
}

std::vector<std::string> LMP3EncoderSettings::CommandLine(const std::string& szEncoder, int nChans,
                                                         int32_t nSampleRate, const std::string& szOutput) const
{
    std::vector<std::string> v{szEncoder, "-m", std::string(1, ModeLetter(nChans))};
    if (bErrorProtection)
        v.push_back("-p");
    if (bConstantBitRate) {
        v.insert(v.end(), {"-b", std::to_string(nCBRBitRate)});
        if (bHighQuality)
            v.push_back("-h");
    } else {
        v.insert(v.end(), {"-v", "-b", std::to_string(nVBRMinBitRate), "-B", std::to_string(nVBRMaxBitRate), "-V",
                           std::to_string(nVBRQuality)});
    }
    char szRate[32];
    std::snprintf(szRate, sizeof(szRate), "%d.%.3d", nSampleRate / 1000, nSampleRate % 1000);
    v.insert(v.end(), {"-r", "-x", "-s", szRate, "-S", "-", szOutput});
    return v;
}

namespace {

void Put32(std::vector<uint8_t>& v, int32_t n)
{
    for (int i = 0; i < 4; ++i)
        v.push_back(static_cast<uint8_t>(static_cast<uint32_t>(n) >> (8 * i)));
}

int32_t Get32(const uint8_t* p)
{
    return static_cast<int32_t>(uint32_t{p[0]} | (uint32_t{p[1]} << 8) | (uint32_t{p[2]} << 16) | (uint32_t{p[3]} << 24));
}

constexpr size_t kRecordBytes = 3 + 5 * 4;

} // namespace

std::vector<uint8_t> LMP3EncoderSettings::ToRecord() const
{
    std::vector<uint8_t> v{static_cast<uint8_t>(bConstantBitRate), static_cast<uint8_t>(bHighQuality),
                           static_cast<uint8_t>(bErrorProtection)};
    for (int32_t n : {nCBRBitRate, nVBRMinBitRate, nVBRMaxBitRate, nVBRQuality, nChannelMode})
        Put32(v, n);
    return v;
}

LMP3EncoderSettings LMP3EncoderSettings::FromRecord(const std::vector<uint8_t>& v)
{
    if (v.size() != kRecordBytes)
        return Load();
    LMP3EncoderSettings s;
    s.bConstantBitRate = v[0] != 0;
    s.bHighQuality = v[1] != 0;
    s.bErrorProtection = v[2] != 0;
    s.nCBRBitRate = Get32(&v[3]);
    s.nVBRMinBitRate = Get32(&v[7]);
    s.nVBRMaxBitRate = Get32(&v[11]);
    s.nVBRQuality = Get32(&v[15]);
    s.nChannelMode = Get32(&v[19]);
    s.ApplyRules();
    return s;
}
