// The Layer III decoding of one frame: side information, bit reservoir, scale factors, Huffman
// decoding, requantisation, stereo processing, reordering, antialiasing, IMDCT with overlap and
// polyphase synthesis. Everything lives in fixed arrays; nothing is allocated while decoding.
#pragma once

#include <cstdint>

#include "formats/mp3/LMP3Header.h"

class LMP3Decoder
{
public:
    // Fixes the band tables (by version and sampling index) and the output channels (1 or 2).
    void Configure(int nRateIndex, int nOutChans);
    // Holds every decoder configured afterwards to the four-lane filter banks that every processor
    // of the family runs, so that path is checked on machines that would choose the wider one.
    static void SetBaselineOnly(bool bOn);
    // Forgets the reservoir, the overlap and the synthesis history (as after a seek).
    void Reset();

    // pData holds the frame after its header (and CRC): side information, then main data.
    // Writes SamplesPerFrame() x channels samples to pOut. False when the frame cannot be
    // decoded because its main data begins before what the reservoir holds.
    bool DecodeFrame(const MP3Header& header, const uint8_t* pData, int nBytes, int32_t* pOut);

    static constexpr int kMaxFrameBytes = 2880; // above the largest frame of any rate

private:
    struct Granule
    {
        int nPart23;
        int nBigValues;
        int nGlobalGain;
        int nSfCompress;
        int nBlockType; // 0 normal, 1 start, 2 short, 3 stop
        bool bShort;    // block type 2 under window switching
        bool bMixed;     // a short block whose lowest bands are long
        bool bMixedFlag; // the flag as sent
        int aTable[3];
        int aSubGain[3];
        int nRegion1;   // first line of region 1
        int nRegion2;   // first line of region 2
        bool bPreflag;
        int nSfScale;
        int nCount1Table;
    };
    struct BitReader;
    struct BandCursor;
    struct BitCache;

    bool ReadSideInfo(const MP3Header& h, const uint8_t* pSide);
    void ReadScaleFactors1(BitReader& br, int gr, int ch);
    void ReadScaleFactors2(BitReader& br, int ch, bool bIntensityRight);
    // Spreads the values read in partition order over the long and short bands of the block.
    void StoreLsfScaleFactors(int ch, int nBlock, const int* pVal, const int* pMax);
    void BuildBandScales(const Granule& g, int ch);
    // Huffman decoding and requantisation of one granule's channel into aXr; returns the lines
    // decoded (those above are zero).
    int DecodeSpectrum(BitReader& br, int nEnd, const Granule& g, int ch);
    int DecodeBigValues(BitCache& bits, int nEnd, const Granule& g, BandCursor& bc, float* xr);
    void Stereo(const Granule& gRight, int nModeExt);
    // Lines above the right channel's last non-zero line carry intensity positions: the first
    // band (long, or short in window w) wholly above it.
    int FirstIntensityBand(int nFromBand, int nToBand) const;
    int FirstIntensityShortBand(int w, int nFirstShort) const;
    void StereoShort(const Granule& gRight, bool bMs);
    void StereoLong(int nFirstBand, int nLastBand, bool bMs);
    void StereoShortWindow(int w, int nFirstBand, bool bMs);
    void IntensityLines(float* l, float* r, int nLines, int nPos, int nMax, bool bMs);
    void Reorder(const Granule& g, int ch);
    void Antialias(const Granule& g, int ch);
    // The filter banks, four lanes wide or, where the processor has them, eight.
    void Hybrid(const Granule& g, int ch, int nActive);
    void HybridWide(const Granule& g, int ch, int nActive);
    template <class V>
    void HybridBody(const Granule& g, int ch, int nActive);
    template <class V>
    void HybridLanes(int nType, int ch, int sb0);
    void HybridOne(const Granule& g, int ch, int sb, bool bActive);
    void Synthesis(int ch, int32_t* pOut, int nOutChans);
    void SynthesisWide(int ch, int32_t* pOut, int nOutChans);
    template <class V>
    void SynthesisBody(int ch, int32_t* pOut, int nOutChans);
    template <class V>
    void SynthesisDct();
    void BuildHistory(float* V, int t) const;
    void Window(int ch, int nSlot, int32_t* pDst, int nStride) const;
    void BuildReorderMap();

    // Band layout of the stream.
    int nRateIndex = 0;
    bool bWide = false; // the eight-lane filter banks suit the processor
    int nOutChans = 2;
    int nVersion = 0;
    int nLongMixed = 8; // long bands a mixed block keeps
    const uint16_t* pLong = nullptr;
    const uint8_t* pShort = nullptr;

    // ReorderMap: for each short band and window, the lines of that window in turn.
    int nReorder = 0;
    int nReorderMixed = 0; // entries of the first three bands
    uint16_t aReorderSrc[576];
    uint16_t aReorderDst[576];
    uint16_t aReorderKeep[576];

    // Side information of the frame in hand.
    int nMainDataBegin = 0;
    int aScfsi[2] = {0, 0};
    Granule aGr[2][2];
    int nChannels = 2;
    int nGranules = 2;

    // Scale factors of the channel in hand (kept across granules for scfsi).
    int aSfL[2][22];
    int aSfS[2][13][3];
    int aMaxL[22];    // illegal intensity position per band (right channel)
    int aMaxS[13][3];
    int nIntensityScale = 0;

    // The bit reservoir: earlier frames' main data followed by this frame's.
    static constexpr int kReservoirBytes = 4096;
    uint8_t aReservoir[kReservoirBytes + 64];
    int nReservoir = 0;

    // Working spectra and the state carried from granule to granule.
    int16_t aBandEnd[48]; // the granule's bands in the order their lines are sent
    float aBandScale[48];
    int nBands = 0;
    float aXr[2][576];
    float aTmp[576];
    int aNonZero[2];
    // The filter banks work on lanes: the overlap by time slot then subband, the IMDCT's output
    // by subband then time slot (padded to whole lanes; the padding stays zero), and the DCTs of
    // the synthesis by time slot then output.
    static constexpr int kHybridSlots = 24;
    alignas(32) float aOverlap[2][18][32];
    alignas(32) float aHybrid[32][kHybridSlots];
    alignas(32) float aDct[kHybridSlots][32];
    static constexpr int kHistorySlots = 32;
    static constexpr int kHistoryGroup = 8; // slots entered before the first is windowed
    alignas(32) float aV[2][kHistorySlots][64];
    int aSlot[2] = {0, 0};
};
