// The external MP3 encoder's options, kept in the "MP3Encoder" settings section and carried in
// an encoding's settings record, and the command line they make.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct LMP3EncoderSettings
{
    bool bConstantBitRate = false;
    int32_t nCBRBitRate = 128; // kbit/s
    bool bHighQuality = true;
    int32_t nVBRMinBitRate = 32;
    int32_t nVBRMaxBitRate = 128;
    int32_t nVBRQuality = 4; // 0 best
    bool bErrorProtection = false;
    int32_t nChannelMode = 1; // 0 stereo, 1 joint stereo, 2 forced stereo, 3 mono

    static constexpr const char* kSection = "MP3Encoder";

    static LMP3EncoderSettings Load();
    void Save() const;
    // A maximum of 161 kbit/s or more needs a minimum of at least 32.
    void ApplyRules();

    // The mode letter ("s", "j", "f", "m") for a stream of nChans channels.
    char ModeLetter(int nChans) const;
    // The encoder's arguments, in order: path, mode, protection, rates, input format, output.
    std::vector<std::string> CommandLine(const std::string& szEncoder, int nChans, int32_t nSampleRate,
                                         const std::string& szOutput) const;

    std::vector<uint8_t> ToRecord() const;
    // Falls back to the stored settings when the record is empty or malformed.
    static LMP3EncoderSettings FromRecord(const std::vector<uint8_t>& vRecord);
};
