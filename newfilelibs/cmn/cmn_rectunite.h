// Uniting two rectangles, and uniting a list with one in place: what a window does with each of its
// dirty rectangles.
//
// The list is joined (disjoint, nothing to merge, sorted), and the rectangle has positive size. One
// that touches nothing just comes in, and one that makes up a rectangle with the only one that it
// touches so grows that one; this is most of what windows invalidate. The others are cut and joined
// as in general, but on the stack. The result is what Cmn_UniteRects and Cmn_JoinRects come to.
#pragma once

#include "newfilelibs/cmn/cmn_rectlist.h"
#include "newfilelibs/cmn/cmn_rectscan.h"

/// An index up to which the rectangle overlaps none of the list and shares no corner with any; the
/// list's size or more when that holds for all. A multiple of four.
[[nodiscard]] inline std::size_t Cmn_FindTouched(const Cmn_RectList& joined,
                                                 const Cmn_Rect<int>& rect) noexcept {
    const Cmn_RectScan::TouchProbe probe(rect);
    std::size_t i = 0;
    while (i < joined.size() && probe.Four(joined.data() + i) == 0)
        i += 4;
    return i;
}

/// Unites with a rectangle that touches some, but none before what Cmn_FindTouched has answered.
/// Returns false, with the list as it was, when there is too much to do for the few rectangles that
/// this is made for.
[[nodiscard]] bool Cmn_UniteWithTouched(Cmn_RectList& joined, const Cmn_Rect<int>& rect,
                                        std::size_t touched);

/// Unites two rectangles of positive size into `out`, whatever that holds. Pieces of the first come
/// before those of the second while they are joined.
void Cmn_UniteTwo(const Cmn_Rect<int>& first, const Cmn_Rect<int>& second, Cmn_RectList& out);
