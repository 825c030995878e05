#include "ui/LWaveColumns.h"

#include <algorithm>

#include "core/LFile.h"
#include "core/LTrace.h"
#include "ui/LWaveGeometry.h"
#include "work/LSignalObject.h"

namespace {
// Running extremes of the samples under one column.
struct Extremes
{
    int32_t nMax[2] = {0, 0};
    int32_t nMin[2] = {0, 0};
};

void FoldAll(const int32_t* p, int32_t nCount, Extremes& e)
{
    int32_t nMax = e.nMax[0], nMin = e.nMin[0];
    for (int32_t i = 0; i < nCount; ++i) {
        nMax = std::max(nMax, p[i]);
        nMin = std::min(nMin, p[i]);
    }
    e.nMax[0] = nMax;
    e.nMin[0] = nMin;
}

void FoldStereo(const int32_t* p, int32_t nFrames, Extremes& e)
{
    int32_t nMaxL = e.nMax[0], nMinL = e.nMin[0], nMaxR = e.nMax[1], nMinR = e.nMin[1];
    for (int32_t i = 0; i < nFrames; ++i) {
        nMaxL = std::max(nMaxL, p[2 * i]);
        nMinL = std::min(nMinL, p[2 * i]);
        nMaxR = std::max(nMaxR, p[2 * i + 1]);
        nMinR = std::min(nMinR, p[2 * i + 1]);
    }
    e.nMax[0] = nMaxL;
    e.nMin[0] = nMinL;
    e.nMax[1] = nMaxR;
    e.nMin[1] = nMinR;
}

uint8_t PeakByte(int64_t nPeak, int nShift)
{
    return static_cast<uint8_t>(std::min<int64_t>(nPeak >> nShift, 255));
}

bool Stopped(const LSignalObject* pStop)
{
    return pStop && pStop->IsSet();
}
} // namespace

bool LWaveColumnMaker::FromSamples(LSoundSourceBase& src, const LWaveGeometry& geo, int x0, int x1, uint8_t nMode,
                                   bool bVZoom, uint8_t* pTop, uint8_t* pBottom, const LSignalObject* pStop)
{
    const int nChans = std::max<int>(src.GetChannels(), 1);
    const bool bLeftRight = nMode == WaveModeLeftRight && nChans == 2;
    if (nMode == WaveModeLeftRight && nChans != 2)
        LTRACE("LEdWaveWindow::CreateWaveShortLeftRight This is not a stereo track - so use pos neg");
    const int nShift = bVZoom ? 8 : 11;
    vSamples.resize(static_cast<size_t>(nChans) * kReadFrames);
    int32_t* pBuf = vSamples.data();

    int32_t sPos = geo.SampleOfColumn(x0);
    src.SetPosition(sPos);
    // The last frame read: a column narrower than one sample shows the frame it lies in.
    std::vector<int32_t> vLast(nChans, 0);
    bool bHaveLast = false;
    for (int x = x0; x < x1; ++x) {
        int32_t sColumn = geo.SampleOfColumn(x);
        int32_t sEnd = std::max(geo.SampleOfColumn(x + 1), sColumn + 1);
        Extremes e;
        if (sEnd <= sPos) {
            if (bHaveLast) {
                if (bLeftRight)
                    FoldStereo(vLast.data(), 1, e);
                else
                    FoldAll(vLast.data(), nChans, e);
            }
        } else {
            while (sPos < sEnd) {
                int32_t nFrames = std::min(sEnd - sPos, kReadFrames);
                src.Read(pBuf, nFrames);
                if (bLeftRight)
                    FoldStereo(pBuf, nFrames, e);
                else
                    FoldAll(pBuf, nFrames * nChans, e);
                std::copy(pBuf + (nFrames - 1) * nChans, pBuf + nFrames * nChans, vLast.begin());
                bHaveLast = true;
                sPos += nFrames;
            }
        }
        if (bLeftRight) {
            pTop[x] = PeakByte(std::max<int64_t>(e.nMax[0], -static_cast<int64_t>(e.nMin[0])), nShift);
            pBottom[x] = PeakByte(std::max<int64_t>(e.nMax[1], -static_cast<int64_t>(e.nMin[1])), nShift);
        } else {
            pTop[x] = PeakByte(e.nMax[0], nShift);
            pBottom[x] = PeakByte(-static_cast<int64_t>(e.nMin[0]), nShift);
        }
        if (Stopped(pStop))
            return false;
    }
    return true;
}

int32_t LWaveColumnMaker::OverviewFactor(int32_t nGain, bool bVZoom)
{
    int32_t nFactor = std::max(nGain, 0) >> 16;
    return bVZoom ? nFactor * 8 : nFactor;
}

namespace {
// The largest "up" and "down" bytes of n overview records. In "+ /-" every even byte is a
// positive peak and every odd one a negative peak, whatever the channel; in "L / R" the first
// pair of a record is the left channel and the second the right.
void FoldRecords(const uint8_t* p, int64_t n, int nChans, bool bLeftRight, uint8_t& nUp, uint8_t& nDown)
{
    uint8_t nU = nUp, nD = nDown;
    if (bLeftRight) {
        for (int64_t i = 0; i < n; ++i) {
            nU = std::max(nU, std::max(p[4 * i], p[4 * i + 1]));
            nD = std::max(nD, std::max(p[4 * i + 2], p[4 * i + 3]));
        }
    } else {
        const int64_t nPairs = n * nChans;
        for (int64_t i = 0; i < nPairs; ++i) {
            nU = std::max(nU, p[2 * i]);
            nD = std::max(nD, p[2 * i + 1]);
        }
    }
    nUp = nU;
    nDown = nD;
}

uint8_t ScaleByte(uint8_t n, int32_t nFactor)
{
    return nFactor == 256 ? n : static_cast<uint8_t>(std::min<int32_t>((n * nFactor) >> 8, 255));
}

constexpr int64_t kChunkRecords = 16384;
constexpr int64_t kOverviewFrames = LWaveColumnMaker::kOverviewFrames;

// What every cut of one overview pass shares.
struct OverviewPass
{
    const LWaveGeometry& geo;
    int x0;
    int x1;
    int nChans;
    bool bLeftRight;
    bool bVZoom;
    uint8_t* pTop;
    uint8_t* pBottom;
    const LSignalObject* pStop;
};

// The column one cut's records are folded into. Record k of the segment starts at document
// position nBase + 256 k; a record counts in the column where it starts (the first one where the
// cut's view begins).
struct OverviewColumn
{
    const OverviewPass& pass;
    int64_t nBase;
    int64_t kEnd; // past the cut's last record in view
    int32_t nFactor;
    int x = 0;
    int64_t kColumnEnd = 0;
    uint8_t nUp = 0;
    uint8_t nDown = 0;

    int64_t FirstRecordFrom(int64_t sPos) const { return (sPos - nBase + kOverviewFrames - 1) / kOverviewFrames; }
    int64_t EndOfColumn() const
    {
        return x < pass.x1 - 1 ? FirstRecordFrom(pass.geo.SampleOfColumn(x + 1)) : kEnd;
    }
    // The column that holds document position p0.
    void StartAt(int64_t p0)
    {
        const LWaveGeometry& geo = pass.geo;
        x = std::clamp(geo.ColumnOfSample(static_cast<int32_t>(p0)), pass.x0, pass.x1 - 1);
        while (x > pass.x0 && geo.SampleOfColumn(x) > p0)
            --x;
        while (x < pass.x1 - 1 && geo.SampleOfColumn(x + 1) <= p0)
            ++x;
        kColumnEnd = EndOfColumn();
    }
    void Flush()
    {
        pass.pTop[x] = std::max(pass.pTop[x], ScaleByte(nUp, nFactor));
        pass.pBottom[x] = std::max(pass.pBottom[x], ScaleByte(nDown, nFactor));
        nUp = nDown = 0;
    }
    // Records k..kChunkEnd-1, read into pRec; moves on to the next column at each column's end.
    void FoldChunk(const uint8_t* pRec, int64_t& k, int64_t kChunkEnd)
    {
        const int nRecord = 2 * pass.nChans;
        while (k < kChunkEnd) {
            const int64_t n = std::min(kColumnEnd, kChunkEnd) - k;
            if (n > 0) {
                FoldRecords(pRec, n, pass.nChans, pass.bLeftRight, nUp, nDown);
                pRec += n * nRecord;
                k += n;
            }
            if (k >= kColumnEnd && x < pass.x1 - 1) {
                Flush();
                ++x;
                kColumnEnd = EndOfColumn();
            }
        }
    }
};

// Folds the records of the cut starting at document position c that lie in p0..p1-1 into the
// pass's columns. False when stopped.
bool FoldCutOverview(const OverviewPass& pass, LFile& grf, const LWaveCut& cut, int64_t c, int64_t p0, int64_t p1,
                     std::vector<uint8_t>& vBytes)
{
    const int nRecord = 2 * pass.nChans;
    int64_t k = (cut.sOffset + (p0 - c)) / kOverviewFrames;
    OverviewColumn col{pass, c - cut.sOffset, (cut.sOffset + (p1 - c) + kOverviewFrames - 1) / kOverviewFrames,
                       LWaveColumnMaker::OverviewFactor(cut.nGain, pass.bVZoom)};
    col.StartAt(p0);
    grf.Seek(k * nRecord);
    while (k < col.kEnd) {
        const int64_t nGot = grf.Read(vBytes.data(), std::min(col.kEnd - k, kChunkRecords) * nRecord) / nRecord;
        if (nGot <= 0)
            break;
        col.FoldChunk(vBytes.data(), k, k + nGot);
        if (Stopped(pass.pStop))
            return false;
    }
    col.Flush();
    return true;
}
} // namespace

bool LWaveColumnMaker::FromOverview(const LWaveContent& content, const LWaveGeometry& geo, int x0, int x1,
                                    uint8_t nMode, bool bVZoom, uint8_t* pTop, uint8_t* pBottom,
                                    const LSignalObject* pStop)
{
    if (x1 <= x0)
        return true;
    std::fill(pTop + x0, pTop + x1, 0);
    std::fill(pBottom + x0, pBottom + x1, 0);
    const int nChans = std::max<int>(content.nChans, 1);
    const bool bLeftRight = nMode == WaveModeLeftRight && nChans == 2;
    const OverviewPass pass{geo, x0, x1, nChans, bLeftRight, bVZoom, pTop, pBottom, pStop};
    vBytes.resize(static_cast<size_t>(2 * nChans * kChunkRecords));

    const int64_t sFirst = geo.SampleOfColumn(x0);
    const int64_t sLast = geo.SampleOfColumn(x1);
    int64_t c = 0;
    for (const LWaveCut& cut : content.vCuts) {
        const int64_t cEnd = c + cut.sLength;
        if (c >= sLast)
            break;
        if (cEnd <= sFirst || cut.sLength <= 0 || cut.nRef == 0xFFFF) {
            c = cEnd;
            continue;
        }
        LFile grf;
        std::string szPath = content.fnGrfPath ? content.fnGrfPath(cut.nRef) : std::string();
        if (szPath.empty() || !grf.Open(szPath, LFile::ReadExisting)) {
            c = cEnd; // no overview: the cut draws as silence
            continue;
        }
        if (!FoldCutOverview(pass, grf, cut, c, std::max(c, sFirst), std::min(cEnd, sLast), vBytes))
            return false;
        c = cEnd;
    }
    return true;
}
