// Which rectangles of one list overlap which of another.
#pragma once

#include "newfilelibs/cmn/cmn_rectindex.h"
#include "newfilelibs/cmn/cmn_scratch.h"

/// The answer: for each rectangle of the first list that overlaps any of the second, in order, a
/// span of the second's indices, which ascend.
struct Cmn_RectOverlaps {
    struct Span {
        std::uint32_t mRect;
        std::uint32_t mFirst;
        std::uint32_t mEnd;
    };
    Cmn_Scratch<Span, 48> mSpans;
    Cmn_Scratch<std::uint32_t, 64> mOthers;
};

/// Adds to an empty answer all pairs that share an area of positive size. The bounds hold all
/// rectangles of their list that are not empty. Memory that runs out raises -108.
///
/// What the lists usually have in common makes it cheap: they are sorted by top, so that the
/// rectangles to compare with move down the second list along with the first; and all lie in one
/// drawing, so that 16 bits are enough for a coordinate and one vector holds two rectangles. Lists
/// that are not sorted only take longer.
void Cmn_FindOverlaps(const Cmn_RectIndexView& list, const Cmn_Rect<int>& bounds,
                      const Cmn_RectIndexView& others, const Cmn_Rect<int>& otherBounds,
                      Cmn_RectOverlaps& overlaps);
