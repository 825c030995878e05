// RIFF WAVE files: the chunk walk that finds a file's format and samples and hands them to
// the matching reader, and the writers.
#pragma once

#include <cstdint>
#include <string>

#include "core/LSoundSinkBase.h"
#include "core/LSoundSourceBase.h"
#include "formats/LWaveFormatRecord.h"

class LWaveFile
{
public:
    // Never null: on failure an empty latched source (11025 Hz, 1 channel). *pszReason gets a
    // one-line reason for the user, *pRecord the format record when the walk got that far.
    static LSoundSourcePtr OpenSource(const std::string& szPath, std::string* pszReason = nullptr,
                                      LWaveFormatRecord* pRecord = nullptr);

    // A sink for the record's format; null when nothing here can write it.
    static LSoundSinkPtr OpenSink(const std::string& szPath, const LWaveFormatRecord& record);

    // The 8-bit sink for 1..8 bits, the 16-bit one for 9..16; null otherwise. The file is
    // continued from sStartFrame.
    static LSoundSinkPtr OpenSinkPCM(const std::string& szPath, int32_t nSampleRate, int32_t sStartFrame,
                                     int nBitsPerSample, uint8_t nChans);

    // "PCM 16-bit", "IMA ADPCM", "format 0x1234".
    static std::string DescribeEncoding(const LWaveFormatRecord& record);
};
