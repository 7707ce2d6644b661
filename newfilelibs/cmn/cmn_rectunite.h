// Uniting a list with one rectangle in place: what a window does with each of its dirty rectangles.
#pragma once

#include "newfilelibs/cmn/cmn_rectlist.h"

/// Unites a joined list (disjoint, nothing to merge, sorted) with a rectangle of positive size; the
/// result is what Cmn_UniteRects and Cmn_JoinRects come to. Returns false, with the list as it was,
/// when there is too much to do for the few rectangles that this is made for.
///
/// A rectangle that overlaps none and would be joined with none just comes in, and one that makes
/// up a rectangle with the only one that it touches so grows that one; this is most of what windows
/// invalidate. The others are cut and joined as in general, but on the stack.
[[nodiscard]] bool Cmn_UniteWithRect(Cmn_RectList& joined, const Cmn_Rect<int>& rect);
