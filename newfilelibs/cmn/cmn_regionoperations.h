// The set operations on rectangle lists, up to but without the joining pass.
#pragma once

#include "newfilelibs/cmn/cmn_rectindex.h"
#include "newfilelibs/cmn/cmn_rectjoin.h"
#include "newfilelibs/cmn/cmn_region.h"

/// A list that takes part in an operation.
struct Cmn_RectOperand {
    explicit Cmn_RectOperand(const Cmn_RegionCore<int>& core) noexcept
        : mRects(core.mRects.data()), mCount(core.mRects.size()), mReach(core.mRects.GetReach()),
          mDisjoint(core.IsKnown(Cmn_RegionCore<int>::kKnown_Disjoint)),
          mJoined(core.IsKnown(Cmn_RegionCore<int>::kKnown_Joined)) {
        core.GetBounds(mBounds);
    }

    [[nodiscard]] Cmn_RectIndexView View() const noexcept { return {mRects, mCount, mReach}; }

    const Cmn_Rect<int>* mRects; // not owned
    std::size_t mCount;
    const int* mReach; // null, or as Cmn_RectList::GetReach; not owned
    Cmn_Rect<int> mBounds;
    bool mDisjoint;
    bool mJoined;
};

// Each appends to an empty `out`. The order of what it appends decides how the joining pass cuts,
// so it is part of the result. Memory that runs out raises -108.

/// First the rectangles of the larger list that overlap nothing, then those of the smaller; then,
/// taking the larger list's others one after the other with the first of the smaller's that it
/// overlaps, their common part, while the rests of both go to the ends of their lists. What is left
/// of the smaller list comes last.
void Cmn_UniteRects(const Cmn_RectOperand& larger, const Cmn_RectOperand& smaller,
                    Cmn_UnjoinedRects& out);

/// The common parts, by the first list and within it by the second.
void Cmn_IntersectRects(const Cmn_RectOperand& list, const Cmn_RectOperand& other,
                        Cmn_UnjoinedRects& out);

/// First the rectangles that the cutters leave alone; then the others, each cut by the first cutter
/// that it overlaps, with the pieces queueing up behind. False, and nothing appended, when a joined
/// list is left alone as a whole.
[[nodiscard]] bool Cmn_SubtractRects(const Cmn_RectOperand& list, const Cmn_RectOperand& cutters,
                                     Cmn_UnjoinedRects& out);
