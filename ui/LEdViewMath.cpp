#include "ui/LEdViewMath.h"

#include <algorithm>
#include <cmath>

namespace LEdViewMath {

namespace {
int32_t ToInt32(int64_t v)
{
    return static_cast<int32_t>(std::clamp<int64_t>(v, INT32_MIN, INT32_MAX));
}
} // namespace

LViewRange ClampView(int64_t sStart, int64_t sEnd, int32_t sFileLength)
{
    return {ToInt32(std::max<int64_t>(sStart, 0)), ToInt32(std::min<int64_t>(sEnd, sFileLength))};
}

LViewRange ZoomIn(const LViewRange& view, int32_t sCursor, int32_t sFileLength)
{
    const int64_t nLength = std::max<int64_t>(view.Length() / 2, kMinZoomLength);
    const int64_t sStart = std::max<int64_t>(sCursor - nLength / 2, 0);
    return ClampView(sStart, sStart + nLength, sFileLength);
}

LViewRange ZoomOut(const LViewRange& view, int32_t sFileLength)
{
    const int64_t nLength = std::min<int64_t>(static_cast<int64_t>(2.0 * view.Length()), sFileLength);
    const int64_t sStart = std::max<int64_t>(static_cast<int64_t>(view.sStart - nLength * 0.25), 0);
    return ClampView(sStart, sStart + nLength, sFileLength);
}

bool ZoomToSelection(int32_t sSelStart, int32_t sSelEnd, int32_t sFileLength, LViewRange& view)
{
    if (sSelStart >= sSelEnd)
        return false;
    view = ClampView(sSelStart, sSelEnd, sFileLength);
    return true;
}

LViewRange ZoomFull(int32_t sFileLength)
{
    return {0, sFileLength};
}

LViewRange AfterEdit(const LViewRange& view, int32_t sFileLength, int32_t nSampleRate)
{
    if (sFileLength <= 0)
        return {0, std::max(nSampleRate, 1)};
    LViewRange r = view;
    if (r.sStart >= sFileLength || r.sStart < 0)
        r.sStart = 0;
    if (r.sEnd > sFileLength)
        r.sEnd = sFileLength;
    if (r.sEnd <= r.sStart)
        r = {0, sFileLength};
    return r;
}

bool ScrollTarget(ScrollAction action, int nThumb, int32_t sCursor, int32_t nSampleRate, int32_t sFileLength,
                  int32_t& sTarget)
{
    switch (action) {
    case ScrollLineLeft:
    case ScrollPageLeft:
        sTarget = ToInt32(std::max<int64_t>(static_cast<int64_t>(sCursor) - 2LL * nSampleRate, 0));
        return true;
    case ScrollLineRight:
    case ScrollPageRight:
        sTarget = ToInt32(static_cast<int64_t>(sCursor) + 2LL * nSampleRate);
        return true;
    case ScrollThumbTrack:
    case ScrollThumbPosition:
        sTarget = ToInt32(static_cast<int64_t>(std::trunc(static_cast<double>(sFileLength) * nThumb * 0.005)));
        return true;
    default:
        return false;
    }
}

int ThumbOf(int32_t sCursor, int32_t sFileLength)
{
    if (sFileLength <= 0)
        return 0;
    return std::clamp(static_cast<int>(static_cast<int64_t>(sCursor) * kScrollRange / sFileLength), 0, kScrollRange);
}


bool SelectionAfterTyping(TypedField field, int64_t sTyped, const LViewRange& sel, int32_t sCursor,
                          int32_t sFileLength, LViewRange& result)
{
    if (sTyped < 0 || sTyped > sFileLength)
        return false;
    const bool bSel = sel.sStart < sel.sEnd;
    const int64_t sFrom = bSel ? sel.sStart : std::clamp<int64_t>(sCursor, 0, sFileLength);
    int64_t sStart = 0, sEnd = 0;
    switch (field) {
    case TypedStart:
        sStart = sTyped;
        sEnd = bSel && sel.sEnd > sTyped ? sel.sEnd : std::min<int64_t>(sTyped + (bSel ? sel.Length() : sFileLength), sFileLength);
        break;
    case TypedEnd:
        sEnd = sTyped;
        sStart = sFrom < sTyped ? sFrom : std::max<int64_t>(sTyped - (bSel ? sel.Length() : sTyped), 0);
        break;
    case TypedLength:
        sStart = sFrom;
        sEnd = sFrom + sTyped;
        if (sEnd > sFileLength)
            return false;
        break;
    }
    result = {static_cast<int32_t>(sStart), static_cast<int32_t>(sEnd)};
    return true;
}

} // namespace LEdViewMath
