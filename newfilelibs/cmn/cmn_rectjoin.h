// The joining pass over a list of rectangles.
#pragma once

#include "newfilelibs/cmn/cmn_rectlist.h"
#include "newfilelibs/cmn/cmn_scratch.h"

/// The unjoined result of an operation, and what is known of it: the first mHead rectangles, and
/// the mNext after them, each come in sorted order from a list without two to merge.
struct Cmn_UnjoinedRects {
    Cmn_Scratch<Cmn_Rect<int>, 96> mRects;
    std::size_t mHead = 0;
    std::size_t mNext = 0;
    /// All rectangles are disjoint and have positive size.
    bool mDisjoint = false;
};

/// Joins and sorts the rectangles into `out`, which may be the list that they came from.
///
/// The order of merging is part of the result. A cycle is two sweeps, first for rectangles side by
/// side, then for those one above the other; a sweep takes every rectangle in turn and merges it
/// with the first one after it that shares the whole edge. Both leave the list, the merged one goes
/// to its end, and what moved up into the first one's place is passed over until the next cycle.
/// Cycles repeat until one merges nothing.
void Cmn_JoinRects(Cmn_UnjoinedRects& unjoined, Cmn_RectList& out);
