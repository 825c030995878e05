#include "formats/mp3/LMP3Header.h"

#include "core/LTrace.h"
#include "formats/mp3/LMP3ByteReader.h"

namespace {

const int32_t kBitRates[2][16] = {
    {0, 32000, 40000, 48000, 56000, 64000, 80000, 96000, 112000, 128000, 160000, 192000, 224000, 256000, 320000, 0},
    {0, 8000, 16000, 24000, 32000, 40000, 48000, 56000, 64000, 80000, 96000, 112000, 128000, 144000, 160000, 0},
};
// The two version bits: 00 MPEG-2.5, 01 reserved, 10 MPEG-2, 11 MPEG-1.
const int kVersions[4] = {2, 3, 1, 0};

} // namespace

bool MP3Header::Accept(const uint8_t* b)
{
    if (b[0] != 0xFF || b[1] < 0xE0)
        return false;
    const int nVer = kVersions[(b[1] >> 3) & 3];
    if (nVer == 3) {
        LTRACE("MP3Header::ReadHeader version 4???? so skip");
        return false;
    }
    if (((b[1] >> 1) & 3) != 1) {
        LTRACE("MP3Header::ReadHeader not a true layer 3 file");
        return false;
    }
    const int32_t nRate = kBitRates[nVer == 0 ? 0 : 1][b[2] >> 4];
    if (nRate == 0) {
        LTRACE("MP3Header::ReadHeader bitrate is free or forbidden");
        return false;
    }
    if (((b[2] >> 2) & 3) >= 3) {
        LTRACE("MP3Header::ReadHeader sampling_frequency index >= 3 so assume invalid header and skip");
        return false;
    }
    nVersion = static_cast<uint8_t>(nVer);
    bNoCrc = b[1] & 1;
    nBitRate = nRate;
    nSampleIndex = (b[2] >> 2) & 3;
    nPadding = (b[2] >> 1) & 1;
    nMode = b[3] >> 6;
    nModeExt = (b[3] >> 4) & 3;
    return true;
}

bool MP3Header::Confirmed(LMP3ByteReader& in, int nConfirm) const
{
    int64_t nAt = FrameBytes() - 4;
    for (int i = 0; i < nConfirm; ++i) {
        // A stream that ends where the frame ends has no more frames to show.
        if (nAt == in.GetUnread())
            return true;
        uint8_t b[4];
        MP3Header next;
        if (!in.Peek(nAt, b, 4) || !next.Accept(b) || !next.Agrees(*this))
            return false;
        nAt += next.FrameBytes();
    }
    return true;
}

bool MP3Header::ReadHeader(LMP3ByteReader& in, bool bTrustFirst, int nConfirm)
{
    uint8_t b[4];
    if (!in.Read(b, 4)) {
        LTRACE("MP3Header::ReadHeader failed because unable to read header");
        return false;
    }
    int nShifts = 0;
    while (!Accept(b) || (!(bTrustFirst && nShifts == 0) && !Confirmed(in, nConfirm))) {
        if (nShifts >= kMaxShifts) {
            LTRACE("MP3Header::ReadHeader failed because unable to find header after 65535 bytes");
            return false;
        }
        b[0] = b[1];
        b[1] = b[2];
        b[2] = b[3];
        if (!in.Read(&b[3], 1)) {
            LTRACE("MP3Header::ReadHeader failed because unable to read header2");
            return false;
        }
        ++nShifts;
    }
    if (!bNoCrc)
        in.Skip(2);
    return true;
}
