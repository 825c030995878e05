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
// Folds the overview records of one cut into the columns they start in.
class OverviewCutWalker
{
public:
    OverviewCutWalker(const LWaveGeometry& geo, int x0, int x1, uint8_t* pTop, uint8_t* pBottom, int32_t nFactor)
        : geo(geo), x1(x1), pTop(pTop), pBottom(pBottom), nFactor(nFactor), x(x0), sNext(geo.SampleOfColumn(x0 + 1))
    {
    }

    // A record whose frames start at document position sPos.
    void Add(int32_t sPos, uint8_t nUp, uint8_t nDown)
    {
        if (sPos >= sNext) {
            Flush();
            while (sPos >= sNext && x < x1 - 1) {
                ++x;
                sNext = geo.SampleOfColumn(x + 1);
            }
        }
        nRawTop = std::max(nRawTop, nUp);
        nRawBottom = std::max(nRawBottom, nDown);
    }

    void Flush()
    {
        pTop[x] = std::max(pTop[x], Scale(nRawTop));
        pBottom[x] = std::max(pBottom[x], Scale(nRawBottom));
        nRawTop = nRawBottom = 0;
    }

    // Moves to the column of a position without drawing anything there.
    void Seek(int32_t sPos)
    {
        while (sPos >= sNext && x < x1 - 1) {
            ++x;
            sNext = geo.SampleOfColumn(x + 1);
        }
    }

private:
    uint8_t Scale(uint8_t n) const
    {
        return nFactor == 256 ? n : static_cast<uint8_t>(std::min<int32_t>((n * nFactor) >> 8, 255));
    }

    const LWaveGeometry& geo;
    int x1;
    uint8_t* pTop;
    uint8_t* pBottom;
    int32_t nFactor;
    int x;
    int32_t sNext;
    uint8_t nRawTop = 0;
    uint8_t nRawBottom = 0;
};
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
    const int nRecord = 2 * nChans;
    constexpr int kChunkRecords = 16384;
    vBytes.resize(static_cast<size_t>(nRecord) * kChunkRecords);

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
        const int64_t p0 = std::max(c, sFirst);
        const int64_t p1 = std::min(cEnd, sLast);
        const int64_t f0 = cut.sOffset + (p0 - c);
        const int64_t f1 = cut.sOffset + (p1 - c);
        int64_t k = f0 / kOverviewFrames;
        const int64_t kEnd = (f1 + kOverviewFrames - 1) / kOverviewFrames;
        grf.Seek(k * nRecord);
        OverviewCutWalker walk(geo, x0, x1, pTop, pBottom, OverviewFactor(cut.nGain, bVZoom));
        walk.Seek(static_cast<int32_t>(p0));
        while (k < kEnd) {
            int64_t nWant = std::min<int64_t>(kEnd - k, kChunkRecords);
            int64_t nGot = grf.Read(vBytes.data(), nWant * nRecord) / nRecord;
            if (nGot <= 0)
                break;
            const uint8_t* pRec = vBytes.data();
            for (int64_t i = 0; i < nGot; ++i, pRec += nRecord) {
                int64_t sPos = std::max(c + (k + i) * kOverviewFrames - cut.sOffset, p0);
                uint8_t nUp, nDown;
                if (bLeftRight) {
                    nUp = std::max(pRec[0], pRec[1]);
                    nDown = std::max(pRec[2], pRec[3]);
                } else {
                    nUp = pRec[0];
                    nDown = pRec[1];
                    for (int ch = 1; ch < nChans; ++ch) {
                        nUp = std::max(nUp, pRec[2 * ch]);
                        nDown = std::max(nDown, pRec[2 * ch + 1]);
                    }
                }
                walk.Add(static_cast<int32_t>(sPos), nUp, nDown);
            }
            k += nGot;
            if (Stopped(pStop))
                return false;
        }
        walk.Flush();
        c = cEnd;
    }
    return true;
}
