// The zoom and scroll arithmetic of a file window, free of any window so it can be tested alone.
// Positions are sample frames; a view is [sStart, sEnd).
#pragma once

#include <cstdint>

struct LViewRange
{
    int32_t sStart = 0;
    int32_t sEnd = 0;
    int32_t Length() const { return sEnd - sStart; }
    bool operator==(const LViewRange&) const = default;
};

namespace LEdViewMath {

constexpr int32_t kMinZoomLength = 100;
constexpr int kScrollRange = 200; // the scroll bar runs 0..200

// Start not below 0, end not past the file.
LViewRange ClampView(int64_t sStart, int64_t sEnd, int32_t sFileLength);
// Halves the view (not below 100 samples) around the cursor.
LViewRange ZoomIn(const LViewRange& view, int32_t sCursor, int32_t sFileLength);
// Doubles the view (not past the file length) around the old view's centre.
LViewRange ZoomOut(const LViewRange& view, int32_t sFileLength);
// False when there is no selection (start not below end).
bool ZoomToSelection(int32_t sSelStart, int32_t sSelEnd, int32_t sFileLength, LViewRange& view);
LViewRange ZoomFull(int32_t sFileLength);
// The view kept valid after an edit: an empty file shows one second.
LViewRange AfterEdit(const LViewRange& view, int32_t sFileLength, int32_t nSampleRate);

enum ScrollAction
{
    ScrollLineLeft,
    ScrollLineRight,
    ScrollPageLeft,
    ScrollPageRight,
    ScrollThumbTrack,
    ScrollThumbPosition,
    ScrollOther,
};
// The cursor position a scroll-bar action asks for; false for actions that are ignored.
bool ScrollTarget(ScrollAction action, int nThumb, int32_t sCursor, int32_t nSampleRate, int32_t sFileLength,
                  int32_t& sTarget);
// Where the thumb sits for a cursor position.
int ThumbOf(int32_t sCursor, int32_t sFileLength);

enum TypedField
{
    TypedStart,
    TypedEnd,
    TypedLength,
};
// The selection after a time typed into the start, end or length field. A typed start keeps the
// end when it still lies after it (else the selection keeps its length, or runs to the end of
// the file when there was none); a typed end keeps the start when it lies before it (the cursor
// stands for the start when there is no selection); a typed length counts from the start (or
// the cursor). False when the typed value or the end it gives lies outside [0, file length].
bool SelectionAfterTyping(TypedField field, int64_t sTyped, const LViewRange& sel, int32_t sCursor,
                          int32_t sFileLength, LViewRange& result);

} // namespace LEdViewMath
