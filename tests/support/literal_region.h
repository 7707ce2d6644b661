// The region algorithms written out step by step, pairwise and slow, as the measure of the
// library's: both must give the same lists, cuts and order included.
#pragma once

#include <vector>

#include "newfilelibs/cmn/cmn_rect.h"

namespace literal {

using Rects = std::vector<Cmn_Rect<int>>;

/// Sweeps over all pairs until a cycle merges nothing, then sorts.
void Join(Rects& rects);
Rects Union(const Rects& a, const Rects& b, bool join = true);
Rects Intersection(const Rects& a, const Rects& b, bool join = true);
Rects Difference(const Rects& a, const Rects& b, bool join = true);
Rects Xor(const Rects& a, const Rects& b);
Rects Offset(Rects rects, int dx, int dy);
Rects Inset(Rects rects, int dx, int dy);
Rects OffsetWithin(const Rects& rects, int dx, int dy, const Cmn_Rect<int>& within);

} // namespace literal
