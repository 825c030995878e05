// Reads WAV data that is not plain PCM of up to 16 bits: compressed bytes are read a buffer at
// a time and decoded to 16-bit PCM through a codec stream, whole blocks at a time.
#pragma once

#include <memory>
#include <vector>

#include "core/LFile.h"
#include "core/LSoundSourceBase.h"
#include "formats/LWaveFormatRecord.h"
#include "formats/codec/LCodecStream.h"

class LSRCACMWave : public LSoundSourceBase
{
public:
    static constexpr int32_t kBlockFrames = 8192;
    static constexpr uint32_t kStreamingSize = 0xFFFFFFFF;

    // Takes over the file, whose pointer stands at the first byte of the data. nFactFrames: the
    // true frame count of the file's "fact" chunk, or -1; it shortens the length when the blocks
    // hold more (the last block's padding).
    LSRCACMWave(LFile&& file, const LWaveFormatRecord& record, uint32_t nDataSize, int64_t nFactFrames = -1);

    void Read(int32_t* pBuffer, int32_t nFrames) override;
    int32_t GetPosition() override { return sPosition; }
    // Exact once the end has been met; until then an estimate from the bytes left.
    int32_t GetLength() override;
    void SetPosition(int32_t sNewPosition) override;
    // What the bytes the file really holds decode to, when its header claims more.
    int32_t GetLengthInFile() override;

private:
    // Decodes into the destination buffer; false when nothing more comes.
    bool Refill(int32_t nWanted);
    void ReadSource();
    void Discard(int64_t nFrames);
    void ResetStream();
    // The frame that a byte of the data starts (the block's first frame for block codecs).
    int64_t FrameOfByte(uint64_t nByte) const;
    uint64_t ByteOfFrame(int64_t sFrame) const;
    // The frames nBytes of data decode to.
    int64_t FramesIn(uint32_t nBytes) const;
    // Decoders with memory: their state is kept every buffer or so while decoding runs on from
    // the start, and a seek inside that stretch resumes from the nearest kept state before it.
    void KeepState(uint32_t nBytesUsed);
    bool ResumeNear(int32_t sFrame);

    LFile file;
    uint32_t nDataSize = 0;
    uint32_t nBytesRead = 0;
    uint32_t nHeldBytes = 0; // of the data, those the file really holds
    int64_t nDataStart = 0;
    std::unique_ptr<LCodecStream> pStream;
    LCodecStreamHeader header;
    std::vector<uint8_t> vSrc;
    uint32_t nSrcFill = 0;
    std::vector<int16_t> vDst;
    uint32_t nDstHeld = 0; // decoded samples not yet handed out
    uint32_t nDstNext = 0; // the first of them
    uint32_t nFileRate = 1;
    uint32_t nAvgBytesPerSec = 1;
    uint32_t nBlockAlign = 1;
    uint32_t nBlockFrames = 0; // frames in one block, 0 when not known
    int32_t sPosition = 0;
    int64_t sEndFrame = -1;
    int64_t sFactFrames = -1;
    struct LKeptState
    {
        int64_t nBlock; // the state before this block
        std::vector<uint8_t> vState;
    };
    std::vector<LKeptState> vKept; // by block, ascending
    int64_t nRunBlock = -1;        // the block decoding has reached from a kept state; -1: none
    static constexpr size_t kMaxKeptStates = 20000;
};
