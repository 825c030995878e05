#include "formats/codec/LCodecStream.h"

#include <algorithm>

#include "core/LTrace.h"

namespace {

// Twice the largest MPEG frame: a variable block and the beginning of the next always fit.
constexpr uint32_t kVariableBlockRoom = 2 * 2886;

bool IsPCM16(const LWaveFormatRecord& r)
{
    return r.IsPCM() && r.wBitsPerSample == 16 && r.nChannels >= 1 && r.nBlockAlign == r.nChannels * 2;
}

bool SameShape(const LWaveFormatRecord& a, const LWaveFormatRecord& b)
{
    return a.nChannels == b.nChannels && a.nSamplesPerSec == b.nSamplesPerSec && a.nSamplesPerSec > 0;
}

// The codec for the coded side, when the pair is one the layer converts.
const LCodec* CodecFor(const LWaveFormatRecord& pcm, const LWaveFormatRecord& coded, bool bDecode, LCodecShape& shape)
{
    if (!IsPCM16(pcm) || !SameShape(pcm, coded))
        return nullptr;
    const LCodec* pCodec = LCodec::ForRecord(coded, &shape);
    if (!pCodec || (!bDecode && !pCodec->CanEncode()) || shape.nBlockBytes == 0 || shape.nBlockFrames == 0 || shape.nBlockFrames > LCodec::kMaxBlockFrames ||
        shape.nChans != coded.nChannels)
        return nullptr;
    return pCodec;
}

} // namespace

bool LCodecStream::Open(std::unique_ptr<LCodecStream>* ppStream, const LWaveFormatRecord& src,
                        const LWaveFormatRecord& dst, uint32_t nFlags)
{
    LCodecShape shape;
    // Decoding when the destination is the PCM side; a PCM-to-PCM pair is the plain readers' work.
    const bool bDecode = IsPCM16(dst) && !IsPCM16(src);
    const LCodec* pCodec = bDecode ? CodecFor(dst, src, true, shape) : CodecFor(src, dst, false, shape);
    if (!pCodec) {
        LTRACE("LCodecStream::Open no codec for tags %u -> %u", src.wFormatTag, dst.wFormatTag);
        return false;
    }
    if (nFlags & kOpenQuery)
        return true;
    if (!ppStream)
        return false;
    std::unique_ptr<LCodecStream> p(new LCodecStream);
    p->shape = shape;
    if (bDecode)
        p->decoder = pCodec->NewDecoder(src, shape);
    else
        p->encoder = pCodec->NewEncoder(dst, shape);
    if (!p->decoder && !p->encoder)
        return false;
    *ppStream = std::move(p);
    return true;
}

bool LCodecStream::Size(uint32_t nInput, uint32_t& nOutput, uint32_t nFlags) const
{
    const uint64_t nBlockPCM = static_cast<uint64_t>(shape.nBlockFrames) * FrameBytes();
    uint64_t n = 0;
    if (nFlags == kSizeSource && decoder) {
        n = nInput / shape.nBlockBytes * nBlockPCM +
            static_cast<uint64_t>(decoder->PartFrames(nInput % shape.nBlockBytes)) * FrameBytes();
    } else if (nFlags == kSizeDestination && decoder) {
        n = nInput / nBlockPCM * shape.nBlockBytes;
        // Blocks of varying size need room for the largest one and the start of the next.
        if (shape.bVariable)
            n = std::max<uint64_t>(n, kVariableBlockRoom);
    } else if (nFlags == kSizeSource && encoder) {
        n = (nInput / FrameBytes() + shape.nBlockFrames - 1) / shape.nBlockFrames * uint64_t{shape.nBlockBytes};
    } else if (nFlags == kSizeDestination && encoder) {
        n = nInput / shape.nBlockBytes * nBlockPCM;
    } else {
        return false;
    }
    nOutput = static_cast<uint32_t>(std::min<uint64_t>(n, UINT32_MAX));
    return true;
}

bool LCodecStream::Convert(LCodecStreamHeader& header, uint32_t nFlags)
{
    header.cbSrcLengthUsed = 0;
    header.cbDstLengthUsed = 0;
    if ((header.cbSrcLength && !header.pbSrc) || (header.cbDstLength && !header.pbDst))
        return false;
    return decoder ? ConvertDecode(header, nFlags) : ConvertEncode(header, nFlags);
}

bool LCodecStream::ConvertDecode(LCodecStreamHeader& header, uint32_t nFlags)
{
    if (nFlags & kConvertStart)
        decoder->Reset();
    if (shape.bVariable) {
        uint32_t nUsed = 0, nMade = 0;
        decoder->DecodeStream(header.pbSrc, header.cbSrcLength, (nFlags & kConvertEnd) != 0,
                              reinterpret_cast<int16_t*>(header.pbDst), header.cbDstLength / FrameBytes(), nUsed, nMade);
        header.cbSrcLengthUsed = std::min(nUsed, header.cbSrcLength);
        header.cbDstLengthUsed = std::min(nMade * FrameBytes(), header.cbDstLength);
        return true;
    }
    const uint32_t nBlockPCM = shape.nBlockFrames * FrameBytes();
    const uint32_t nWhole = header.cbSrcLength / shape.nBlockBytes;
    const uint32_t nBlocks = std::min(nWhole, header.cbDstLength / nBlockPCM);
    decoder->DecodeBlocks(header.pbSrc, nBlocks, reinterpret_cast<int16_t*>(header.pbDst));
    header.cbSrcLengthUsed = nBlocks * shape.nBlockBytes;
    header.cbDstLengthUsed = nBlocks * nBlockPCM;
    const uint32_t nRest = header.cbSrcLength - header.cbSrcLengthUsed;
    if (!(nFlags & kConvertEnd) || nBlocks < nWhole || nRest == 0)
        return true;
    // The source ends inside a block: what it holds is decoded, and the bytes are used up either way.
    const uint32_t nPartBytes = decoder->PartFrames(nRest) * FrameBytes();
    if (nPartBytes > header.cbDstLength - header.cbDstLengthUsed)
        return true;
    decoder->DecodePart(header.pbSrc + header.cbSrcLengthUsed, nRest,
                        reinterpret_cast<int16_t*>(header.pbDst + header.cbDstLengthUsed));
    header.cbSrcLengthUsed += nRest;
    header.cbDstLengthUsed += nPartBytes;
    return true;
}

bool LCodecStream::ConvertEncode(LCodecStreamHeader& header, uint32_t nFlags)
{
    if (nFlags & kConvertStart)
        encoder->Reset();
    const uint32_t nBlockPCM = shape.nBlockFrames * FrameBytes();
    const uint32_t nWhole = header.cbSrcLength / nBlockPCM;
    const uint32_t nBlocks = std::min(nWhole, header.cbDstLength / shape.nBlockBytes);
    encoder->EncodeBlocks(reinterpret_cast<const int16_t*>(header.pbSrc), nBlocks, header.pbDst);
    header.cbSrcLengthUsed = nBlocks * nBlockPCM;
    header.cbDstLengthUsed = nBlocks * shape.nBlockBytes;
    const uint32_t nRest = header.cbSrcLength - header.cbSrcLengthUsed;
    if (!(nFlags & kConvertEnd) || nBlocks < nWhole || nRest == 0 ||
        header.cbDstLength - header.cbDstLengthUsed < shape.nBlockBytes)
        return true;
    const uint32_t nFrames = nRest / FrameBytes();
    header.cbDstLengthUsed += encoder->EncodePart(
        reinterpret_cast<const int16_t*>(header.pbSrc + header.cbSrcLengthUsed), nFrames,
        header.pbDst + header.cbDstLengthUsed);
    header.cbSrcLengthUsed += nRest;
    return true;
}
