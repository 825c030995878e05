// One codec of the WAV codec layer: a format family (IMA ADPCM, IEEE float, ...) that turns whole
// blocks of its bytes into 16-bit PCM frames and back. Each codec is one module listed once in
// LCodec::All(); the stream (LCodecStream) runs the block loop for all of them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "formats/LWaveFormatRecord.h"

// The block layout of one record: nBlockBytes bytes hold nBlockFrames frames of nChans channels.
struct LCodecShape
{
    uint32_t nBlockBytes = 0;
    uint32_t nBlockFrames = 0;
    uint16_t nChans = 0;
    // For codecs whose decoder carries memory from block to block: how many blocks ahead of a
    // seek's target decoding should start so that the memory has settled by the target.
    uint32_t nSettleBlocks = 0;
    // Blocks of varying size (MPEG frames): nBlockBytes and nBlockFrames give only the average
    // ratio, and the decoder finds its own blocks in the bytes (DecodeStream).
    bool bVariable = false;
};

class LCodecDecoder
{
public:
    virtual ~LCodecDecoder() = default;
    // Forgets what earlier blocks left behind (codecs whose blocks depend on each other).
    virtual void Reset() {}
    // Decodes nBlocks whole blocks into interleaved 16-bit frames.
    virtual void DecodeBlocks(const uint8_t* pIn, uint32_t nBlocks, int16_t* pOut) = 0;
    // The frames a block cut short to nBytes still holds, and their decoding; none by default.
    virtual uint32_t PartFrames(uint32_t nBytes) const { return 0; }
    virtual void DecodePart(const uint8_t* pIn, uint32_t nBytes, int16_t* pOut) {}
    // For a variable shape: decodes whole blocks of the nIn bytes while their frames fit in
    // nOutFrames, and reports the bytes used (a block cut off by the buffer's end is left for the
    // next call unless bEnd) and the frames made.
    // The memory that carries from block to block, to be put back so that a seek resumes exactly
    // where straight reading was; empty for codecs whose blocks stand alone.
    virtual std::vector<uint8_t> SaveState() const { return {}; }
    virtual void LoadState(const std::vector<uint8_t>& vState) {}
    virtual void DecodeStream(const uint8_t* pIn, uint32_t nIn, bool bEnd, int16_t* pOut, uint32_t nOutFrames,
                              uint32_t& nUsed, uint32_t& nMade)
    {
        nUsed = nMade = 0;
    }
};

class LCodecEncoder
{
public:
    virtual ~LCodecEncoder() = default;
    virtual void Reset() {}
    virtual void EncodeBlocks(const int16_t* pIn, uint32_t nBlocks, uint8_t* pOut) = 0;
    // Encodes the last 1..block-1 frames; returns the bytes written, at most one block. By default
    // the block is filled up with the last frame, which ends the sound without a click.
    virtual uint32_t EncodePart(const int16_t* pIn, uint32_t nFrames, uint8_t* pOut);

protected:
    explicit LCodecEncoder(const LCodecShape& shape);
    LCodecShape shape;
    std::vector<int16_t> vPadded; // one block, for the default EncodePart
};

class LCodec
{
public:
    virtual ~LCodec() = default;

    virtual const char* GetName() const = 0;      // "IMA ADPCM", as the format chooser lists it
    virtual const char* GetShortName() const = 0; // "ima": the encoding's name when saving
    // False for codecs that only decode: they are never offered for saving.
    virtual bool CanEncode() const { return true; }
    // Whether the record is one of this codec's and, if so, its block layout.
    virtual bool Describe(const LWaveFormatRecord& record, LCodecShape& shape) const = 0;
    // The record this codec writes for a rate and channel count, with its usual block size;
    // false when it cannot hold that shape.
    virtual bool MakeRecord(uint32_t nRate, uint16_t nChans, LWaveFormatRecord& record) const = 0;
    // Narrows a rate and channel count to what MakeRecord takes.
    virtual void FitShape(int32_t& nRate, uint8_t& nChans) const {}
    // The records the format chooser lists (by default the common rates, mono and stereo).
    virtual std::vector<LWaveFormatRecord> ListRecords() const;
    // For a record of this codec's tag that Describe refuses: why, in words for the user ("IMA
    // ADPCM WAV files of 7 channels are not supported (1 or 2)"); empty when the record is not one
    // of this codec's or nothing better than "not supported" can be said.
    virtual std::string WhyRefused(const LWaveFormatRecord& record) const { return std::string(); }
    // For a record Describe accepted.
    virtual std::unique_ptr<LCodecDecoder> NewDecoder(const LWaveFormatRecord& record, const LCodecShape& shape) const = 0;
    virtual std::unique_ptr<LCodecEncoder> NewEncoder(const LWaveFormatRecord& record, const LCodecShape& shape) const = 0;

    // Every codec; a new one is one line here.
    static const std::vector<const LCodec*>& All();
    // The codec that takes the record (filling shape), or null.
    static const LCodec* ForRecord(const LWaveFormatRecord& record, LCodecShape* pShape = nullptr);
    static const LCodec* ByShortName(const std::string& szShortName);

    // The refusal of a record of tag wTag whose channel count is outside 1..nMaxChans, else empty.
    static std::string ChannelRefusal(const LWaveFormatRecord& record, uint16_t wTag, const char* szName,
                                      uint16_t nMaxChans);

    // Frames at most one block may hold: the readers' and writers' buffers hold 8192 frames.
    static constexpr uint32_t kMaxBlockFrames = 8192;
};
