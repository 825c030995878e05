// A conversion stream between a format record and 16-bit PCM of the same rate and channels, in
// the steps of a compression manager: open (or only ask whether it could be opened), tell the
// buffer size one side needs for the other, convert a buffer, close (destroy).
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "formats/codec/LCodec.h"

// One conversion request: the stream reports how much of each buffer it used.
struct LCodecStreamHeader
{
    const uint8_t* pbSrc = nullptr;
    uint32_t cbSrcLength = 0;
    uint32_t cbSrcLengthUsed = 0;
    uint8_t* pbDst = nullptr;
    uint32_t cbDstLength = 0;
    uint32_t cbDstLengthUsed = 0;
};

class LCodecStream
{
public:
    // Open flags.
    static constexpr uint32_t kOpenQuery = 0x1;       // only tell whether the stream could be opened
    static constexpr uint32_t kOpenNonRealtime = 0x4; // accepted: every stream here is as fast as it gets
    // Size flags: which side nInput measures.
    static constexpr uint32_t kSizeSource = 0x0;
    static constexpr uint32_t kSizeDestination = 0x1;
    // Convert flags.
    static constexpr uint32_t kConvertBlockAlign = 0x4; // whole blocks only
    static constexpr uint32_t kConvertStart = 0x10;     // a new stretch begins (after a seek)
    static constexpr uint32_t kConvertEnd = 0x20;       // the source ends here: convert what is left

    // One of the two records must be 16-bit PCM with the other's rate and channels; the other one
    // a codec of the layer takes. With kOpenQuery only the answer is given and ppStream may be null.
    static bool Open(std::unique_ptr<LCodecStream>* ppStream, const LWaveFormatRecord& src,
                     const LWaveFormatRecord& dst, uint32_t nFlags);

    // nOutput = the bytes of the other side that nInput bytes of one side need: with kSizeSource
    // the destination bytes nInput source bytes convert to (at most), with kSizeDestination the
    // source bytes that fill at most nInput destination bytes. False when the flags are unknown.
    bool Size(uint32_t nInput, uint32_t& nOutput, uint32_t nFlags) const;
    // Converts as much of the source as fits the destination; false on bad buffers.
    bool Convert(LCodecStreamHeader& header, uint32_t nFlags);

    bool IsDecoding() const { return decoder != nullptr; }
    // The decoder's memory between blocks (see LCodecDecoder); empty when it keeps none.
    std::vector<uint8_t> SaveState() const { return decoder ? decoder->SaveState() : std::vector<uint8_t>(); }
    void LoadState(const std::vector<uint8_t>& vState)
    {
        if (decoder)
            decoder->LoadState(vState);
    }
    const LCodecShape& GetShape() const { return shape; }

private:
    LCodecStream() = default;
    bool ConvertDecode(LCodecStreamHeader& header, uint32_t nFlags);
    bool ConvertEncode(LCodecStreamHeader& header, uint32_t nFlags);
    uint32_t FrameBytes() const { return shape.nChans * 2u; }

    LCodecShape shape;
    std::unique_ptr<LCodecDecoder> decoder;
    std::unique_ptr<LCodecEncoder> encoder;
};
