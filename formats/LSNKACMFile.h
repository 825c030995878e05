// Writes compressed WAV: the frames become 16-bit PCM, a codec stream
// turns whole blocks of it into the target format, and the header is completed on close.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/LFile.h"
#include "core/LSoundSinkBase.h"
#include "formats/LWaveFormatRecord.h"
#include "formats/codec/LCodecStream.h"

class LSNKACMFile : public LSoundSinkBase
{
public:
    static constexpr int32_t kBlockFrames = 8192;
    static constexpr uint32_t kOpenSize = 0xFFFFFFFF;

    LSNKACMFile(const std::string& szPath, const LWaveFormatRecord& record);
    ~LSNKACMFile() override;

    void Write(const int32_t* pBuffer, int32_t nFrames) override;
    // Codes what the codec still holds, puts the real sizes into the header and closes the file.
    bool Complete() override;

private:
    // nDataBytes < 0: the open form.
    bool WriteHeader(int64_t nDataBytes);
    // Converts what the source buffer holds; false when the file could not take the bytes.
    bool Convert(uint32_t nFlags);

    LFile file;
    std::vector<uint8_t> vRecord; // 18 + cbSize bytes
    std::unique_ptr<LCodecStream> pStream;
    LCodecStreamHeader header;
    std::vector<int16_t> vSrc;
    uint32_t nSrcFill = 0; // samples
    std::vector<uint8_t> vDst;
    uint64_t nEncodedBytes = 0;
    bool bCompleted = false;
};
