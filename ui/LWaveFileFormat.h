// Choosing the format of compressed WAV files: the list of what the codec layer can encode, the
// check that a format can be written, and the remembered choice, "WavCodec.wff" in the data
// folder: a 1024-byte buffer holding the format record.
#pragma once

#include <QString>

#include <cstdint>
#include <string>
#include <vector>

#include "formats/LWaveFormatRecord.h"

class QWidget;

class LWaveFileFormat
{
public:
    static constexpr size_t kBufferBytes = 1024;
    static constexpr const char* kFileName = "WavCodec.wff";
    static constexpr const char* kNotAvailable =
        "The requested format is not available because the required CODEC is not installed on this computer.";

    // Shows the formats the codec layer can encode (only those of nChans channels when nChans is
    // not 0), starting at the one in the buffer. A choice that cannot be encoded is refused with
    // "Format Not Available" and the list shown again. True with the choice in vBuffer (kBufferBytes
    // bytes) when the user accepted one.
    static bool Choose(QWidget* pParent, std::vector<uint8_t>& vBuffer, uint8_t nChans, const QString& szTitle);
    // Whether 16-bit PCM of the record's channels and rate converts into the record.
    static bool TestSupportedRecord(const LWaveFormatRecord& record);

    // The remembered buffer; GSM 6.10 (8000 Hz mono) when the file is missing or short.
    static std::vector<uint8_t> ReadRemembered();
    // Replaces the file once the new one is whole, making the data folder when missing.
    static bool WriteRemembered(const std::vector<uint8_t>& vBuffer, std::string* pszError = nullptr);
    static std::string RememberedPath();
    static std::vector<uint8_t> DefaultBuffer();

    // The record at the start of a buffer (its fixed part and cbSize bytes of codec data).
    static bool RecordOf(const std::vector<uint8_t>& vBuffer, LWaveFormatRecord& record);
    static std::vector<uint8_t> BufferOf(const LWaveFormatRecord& record);
    // What the chooser lists, in the codec layer's order: the records of nChans channels (any for
    // 0), and for two channels also the mono records of a codec that has no stereo ones.
    static std::vector<LWaveFormatRecord> EncodableRecords(uint8_t nChans);
    // "IMA ADPCM, 8000 Hz, Mono": the record for people.
    static QString Describe(const LWaveFormatRecord& record);
};
