#include "newfilelibs/cmn/cmn_region.h"

#include "newfilelibs/cmn/cmn_rectcut.h"
#include "newfilelibs/cmn/cmn_rectindex.h"
#include "newfilelibs/cmn/cmn_rectsort.h"
#include "newfilelibs/cmn/cmn_rectunite.h"
#include "newfilelibs/cmn/cmn_regionoperations.h"

namespace {

using Rect = Cmn_Rect<int>;

Rect Moved(const Rect& rect, int dx, int dy) noexcept {
    return {Cmn_SaturatingAdd(rect.left, dx), Cmn_SaturatingAdd(rect.top, dy),
            Cmn_SaturatingAdd(rect.right, dx), Cmn_SaturatingAdd(rect.bottom, dy)};
}

// Whether moving keeps the edge's distance to all others.
bool FitsMoved(int low, int high, int delta) noexcept {
    return delta < 0 ? low >= std::numeric_limits<int>::min() - delta
                     : high <= std::numeric_limits<int>::max() - delta;
}

bool FitsMoved(const Rect& bounds, int dx, int dy) noexcept {
    return FitsMoved(bounds.left, bounds.right, dx) && FitsMoved(bounds.top, bounds.bottom, dy);
}

Rect Shrunk(const Rect& rect, int dx, int dy) noexcept {
    const int left = Cmn_WrappingAdd(rect.left, dx);
    const int top = Cmn_WrappingAdd(rect.top, dy);
    return {left, top, std::max(left, Cmn_WrappingSubtract(rect.right, dx)),
            std::max(top, Cmn_WrappingSubtract(rect.bottom, dy))};
}

} // namespace

Cmn_RegionCore<int>::Cmn_RegionCore(const Cmn_Rect<int>& rect) {
    Cmn_Interval::CheckRect(rect);
    if (rect.Empty())
        return;
    mRects.Append(rect);
    mBounds = rect;
}

// Binary operations

// List and bounds; the flag that says how to join stays.
void Cmn_RegionCore<int>::CopyFrom(const Cmn_RegionCore& other) {
    mRects = other.mRects;
    mKnown = other.mKnown;
    mBounds = other.mBounds;
    mFlags = (mFlags & ~std::uint32_t{kFlag_BoundsStale}) | (other.mFlags & kFlag_BoundsStale);
}

// Takes the rectangles over and runs the joining pass on them.
void Cmn_RegionCore<int>::FinishFrom(Cmn_UnjoinedRects& unjoined) {
    mKnown = unjoined.mDisjoint ? std::uint32_t{kKnown_Disjoint} : 0;
    if (unjoined.mRects.size() < 2 || (mFlags & kFlag_NoJoining)) {
        mRects.Assign(unjoined.mRects.data(), unjoined.mRects.size());
    } else {
        Cmn_JoinRects(unjoined, mRects);
        mKnown |= unjoined.mDisjoint ? kKnown_Joined : 0U;
    }
    mFlags |= kFlag_BoundsStale;
}

// After the list was written: disjoint, joined and sorted.
void Cmn_RegionCore<int>::FinishJoined() noexcept {
    mKnown = kKnown_Disjoint | kKnown_Joined;
    mFlags |= kFlag_BoundsStale;
}

void Cmn_RegionCore<int>::Union(Cmn_RegionCore& result, const Cmn_RegionCore& other) const {
    if (IsEmpty() || other.IsEmpty()) {
        result.CopyFrom(IsEmpty() ? other : *this);
    } else if (IsOneRectangle() && other.IsOneRectangle() && !(result.mFlags & kFlag_NoJoining)) {
        // Of two as long, the other's is the one that is cut first.
        Cmn_UniteTwo(other.mRects[0], mRects[0], result.mRects);
        result.FinishJoined();
    } else if (other.IsOneRectangle()) {
        result.CopyFrom(*this);
        result.Unite(other.mRects[0]);
    } else if (IsOneRectangle() &&
               !other.IsRectangular()) { // of two, the order would be turned round
        result.CopyFrom(other);
        result.Unite(mRects[0]);
    } else {
        UniteLists(result, other);
    }
}

void Cmn_RegionCore<int>::Union(Cmn_RegionCore& result, const Cmn_Rect<int>& rect) const {
    result.CopyFrom(*this);
    result.UniteWith(rect);
}

void Cmn_RegionCore<int>::UniteWith(const Cmn_RegionCore& other) {
    if (IsEmpty())
        CopyFrom(other);
    else if (other.IsOneRectangle())
        Unite(other.mRects[0]);
    else if (!other.IsEmpty())
        UniteLists(*this, other); // an operation reads its operands before it writes
}

// With one that is empty or larger than the type's largest number.
void Cmn_RegionCore<int>::UniteUnusual(const Cmn_Rect<int>& rect) {
    Cmn_Interval::CheckRect(rect);
    if (!rect.Empty())
        Unite(rect);
}

// With a rectangle of positive size; in place, where no more is needed than a joined list.
void Cmn_RegionCore<int>::Unite(const Cmn_Rect<int>& rect) {
    if (!IsKnown(kKnown_Joined) || (mFlags & kFlag_NoJoining)) {
        UniteSlowly(rect);
        return;
    }
    const std::size_t touched = Cmn_FindTouched(mRects, rect);
    if (touched >= mRects.size()) {
        Rect* const rects = mRects.Extend();
        Cmn_InsertSorted(rects, mRects.size() - 1, rect);
    } else if (!Cmn_UniteWithTouched(mRects, rect, touched)) {
        UniteSlowly(rect);
        return;
    }
    Cmn_RectScan::Bounds bounds(mRects.size() == 1 ? mRects[0] : mBounds);
    bounds.Add(rect);
    mBounds = bounds.Get(); // stale ones stay stale
}

void Cmn_RegionCore<int>::UniteSlowly(const Cmn_Rect<int>& rect) {
    Cmn_RegionCore single;
    single.mRects.Append(rect);
    single.mBounds = rect;
    if (IsEmpty())
        CopyFrom(single);
    else
        UniteLists(*this, single);
}

// Of two lists that are not empty.
void Cmn_RegionCore<int>::UniteLists(Cmn_RegionCore& result, const Cmn_RegionCore& other) const {
    const bool thisIsLarger = mRects.size() > other.mRects.size();
    Cmn_UnjoinedRects unjoined;
    Cmn_UniteRects(Cmn_RectOperand(thisIsLarger ? *this : other),
                   Cmn_RectOperand(thisIsLarger ? other : *this), unjoined);
    result.FinishFrom(unjoined);
}

void Cmn_RegionCore<int>::Intersection(Cmn_RegionCore& result, const Cmn_RegionCore& other) const {
    if (!BoundsOverlap(other))
        return;
    if (IsOneRectangle() && other.IsOneRectangle()) {
        result.mRects.ResizeForOverwrite(1);
        result.mRects.Edit()[0] = Cmn_CommonPart(mRects[0], other.mRects[0]);
        result.FinishJoined();
        return;
    }
    Cmn_UnjoinedRects unjoined;
    Cmn_IntersectRects(Cmn_RectOperand(*this), Cmn_RectOperand(other), unjoined);
    result.FinishFrom(unjoined);
}

void Cmn_RegionCore<int>::Difference(Cmn_RegionCore& result, const Cmn_RegionCore& other) const {
    if (other.IsEmpty() || IsEmpty() || IsLeftAloneBy(other)) {
        result.CopyFrom(*this);
        return;
    }
    if (IsOneRectangle() && other.IsOneRectangle() && BoundsOverlap(other)) {
        // The pieces of one cut come in order, and no two of them share an edge.
        result.mRects.ResizeForOverwrite(4);
        result.mRects.ResizeForOverwrite(Cmn_CutAround(
            mRects[0], Cmn_CommonPart(mRects[0], other.mRects[0]), result.mRects.Edit()));
        result.FinishJoined();
        return;
    }
    Cmn_UnjoinedRects unjoined;
    if (Cmn_SubtractRects(Cmn_RectOperand(*this), Cmn_RectOperand(other), unjoined))
        result.FinishFrom(unjoined);
    else
        result.CopyFrom(*this);
}

void Cmn_RegionCore<int>::Xor(Cmn_RegionCore& result, const Cmn_RegionCore& other) const {
    Cmn_RegionCore both;
    Cmn_RegionCore either;
    both.SetNoJoining(true);
    either.SetNoJoining(true);
    Intersection(both, other);
    Union(either, other);
    either.Difference(result, both);
}

// Joining

void Cmn_RegionCore<int>::Pass_Join() {
    mFlags |= kFlag_BoundsStale;
    if (mRects.size() < 2 || (mFlags & kFlag_NoJoining))
        return;
    Cmn_UnjoinedRects unjoined;
    unjoined.mRects.Append(mRects.data(), mRects.size());
    unjoined.mDisjoint = IsKnown(kKnown_Disjoint);
    FinishFrom(unjoined);
}

void Cmn_RegionCore<int>::Pass_SortRects() {
    Cmn_SortRects(mRects.data(), mRects.size(), 0, mRects);
}

// Changes

void Cmn_RegionCore<int>::Offset(int dx, int dy) noexcept {
    if (!FitsMoved(Cmn_RectScan::BoundsOf(mRects.data(), mRects.size()), dx, dy))
        mKnown = 0;
    Rect* rects = mRects.Edit();
    for (std::size_t i = 0; i < mRects.size(); ++i)
        rects[i] = Moved(rects[i], dx, dy);
    if (!(mFlags & kFlag_BoundsStale) && !mBounds.Empty())
        mBounds = Moved(mBounds, dx, dy);
}

void Cmn_RegionCore<int>::Inset(int dx, int dy) noexcept {
    // Growing makes rectangles overlap, and so may wrapping edges.
    const Rect bounds = Cmn_RectScan::BoundsOf(mRects.data(), mRects.size());
    if (dx < 0 || dy < 0 || !FitsMoved(bounds, dx, dy) || !FitsMoved(bounds, -dx, -dy))
        mKnown = 0;
    Rect* rects = mRects.Edit();
    std::size_t kept = 0;
    for (std::size_t i = 0; i < mRects.size(); ++i) {
        const Rect shrunk = Shrunk(rects[i], dx, dy);
        if (!shrunk.Empty()) {
            rects[kept++] = shrunk;
            continue;
        }
        mKnown &= ~std::uint32_t{kKnown_Joined};
        // Deliberate: the one that moves up into the removed one's place is passed over and keeps
        // its size. Callers rely on the resulting lists.
        if (++i < mRects.size())
            rects[kept++] = rects[i];
    }
    mRects.Resize(kept);
    mFlags |= kFlag_BoundsStale;
}

void Cmn_RegionCore<int>::OffsetWithin(int dx, int dy, const Cmn_Rect<int>& within) {
    const Cmn_RegionCore window(within);
    Cmn_RegionCore inside;
    Cmn_RegionCore outside;
    Intersection(inside, window);
    Difference(outside, window);
    if (inside.IsEmpty()) {
        *this = std::move(outside);
        return;
    }
    inside.Offset(dx, dy);
    Cmn_RegionCore moved;
    inside.Intersection(moved, window);
    Cmn_RegionCore result;
    outside.Union(result, moved);
    *this = std::move(result);
    mFlags |= kFlag_BoundsStale;
}

void Cmn_RegionCore<int>::Clear() noexcept { *this = Cmn_RegionCore(); }

void Cmn_RegionCore<int>::AssignRects(const Cmn_Rect<int>* rects, std::size_t count) {
    mRects.Assign(rects, count);
    mKnown = 0;
    mFlags |= kFlag_BoundsStale;
}

// Queries

// Those of an empty list stay stale, as the cache stays as it is.
void Cmn_RegionCore<int>::FillBounds() const noexcept {
    if (mRects.empty())
        return;
    mBounds = Cmn_RectScan::BoundsOf(mRects.data(), mRects.size());
    mFlags &= ~std::uint32_t{kFlag_BoundsStale};
}

bool Cmn_RegionCore<int>::ContainsPoint(const Cmn_Point<int>& point) const noexcept {
    return Cmn_RectIndexView(mRects).HasAny(point.x, point.y, point.x, point.y);
}

bool Cmn_RegionCore<int>::ContainsRect(const Cmn_Rect<int>& rect) const noexcept {
    if (rect.Empty() ||
        !Cmn_RectIndexView(mRects).HasAny(rect.right - 1, rect.bottom - 1, rect.left, rect.top))
        return false;
    // A flat rectangle of the list may have been taken for one that overlaps.
    return IsKnown(kKnown_Disjoint) ||
           std::any_of(mRects.begin(), mRects.end(),
                       [&](const Rect& one) { return one.Overlaps(rect); });
}

Cmn_RegionImpl<int>::~Cmn_RegionImpl() = default;
