#include "newfilelibs/cmn/cmn_region.h"

#include <algorithm>
#include <deque>
#include <vector>

#include "newfilelibs/cmn/cmn_interval.h"

namespace {

using Rects = std::vector<Cmn_Rect<int>>;

using Rect = Cmn_Rect<int>;

Rect Intersect(const Rect& a, const Rect& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

bool Overlap(const Rect& a, const Rect& b) {
    const Rect both = Intersect(a, b);
    return both.left < both.right && both.top < both.bottom;
}

Rects Subtract(const Rect& source, const Rect& cutter) {
    constexpr int low = std::numeric_limits<int>::min();
    constexpr int high = std::numeric_limits<int>::max();
    const Rect halves[] = {
        {low, low, high, cutter.top},
        {low, cutter.top, cutter.left, cutter.bottom},
        {cutter.right, cutter.top, high, cutter.bottom},
        {low, cutter.bottom, high, high},
    };
    Rects pieces;
    for (const Rect& half : halves) {
        if (Overlap(source, half))
            pieces.push_back(Intersect(source, half));
    }
    return pieces;
}

bool MergeSideBySide(const Rect& i, const Rect& j, Rect& merged) {
    if (i.top != j.top || i.bottom != j.bottom)
        return false;
    if (i.right == j.left)
        merged = Rect(i.left, i.top, j.right, i.bottom);
    else if (i.left == j.right)
        merged = Rect(j.left, i.top, i.right, i.bottom);
    else
        return false;
    return true;
}

bool MergeOneAboveOther(const Rect& i, const Rect& j, Rect& merged) {
    if (i.left != j.left || i.right != j.right)
        return false;
    if (i.bottom == j.top)
        merged = Rect(i.left, i.top, i.right, j.bottom);
    else if (i.top == j.bottom)
        merged = Rect(i.left, j.top, i.right, i.bottom);
    else
        return false;
    return true;
}

template <class Merge>
bool Sweep(Rects& rects, Merge merge) {
    bool any = false;
    for (std::size_t i = 0; i < rects.size(); ++i) {
        for (std::size_t j = i + 1; j < rects.size(); ++j) {
            Rect merged;
            if (merge(rects[i], rects[j], merged)) {
                rects.erase(rects.begin() + static_cast<std::ptrdiff_t>(j));
                rects.erase(rects.begin() + static_cast<std::ptrdiff_t>(i));
                rects.push_back(merged);
                any = true;
                break;
            }
        }
    }
    return any;
}

void Join(Rects& rects) {
    if (rects.size() < 2)
        return;
    bool any = true;
    while (any) {
        any = Sweep(rects, MergeSideBySide);
        any = Sweep(rects, MergeOneAboveOther) || any;
    }
    std::stable_sort(rects.begin(), rects.end(), [](const Rect& a, const Rect& b) {
        return a.top != b.top ? a.top < b.top : a.left < b.left;
    });
}

Rects Intersection(const Rects& a, const Rects& b, bool join) {
    Rects result;
    for (const Rect& one : a) {
        for (const Rect& other : b) {
            if (Overlap(one, other))
                result.push_back(Intersect(one, other));
        }
    }
    if (join)
        Join(result);
    return result;
}

Rects Union(const Rects& a, const Rects& b, bool join) {
    if (a.empty() || b.empty())
        return a.empty() ? b : a;
    const bool thisIsLarger = a.size() > b.size();
    const Rects& larger = thisIsLarger ? a : b;
    const Rects& smaller = thisIsLarger ? b : a;

    Rects result;
    std::deque<Rect> pendingLarger;
    Rects pendingSmaller;
    std::vector<bool> marked(smaller.size());
    for (const Rect& one : larger) {
        bool overlaps = false;
        for (std::size_t i = 0; i < smaller.size(); ++i) {
            if (Overlap(one, smaller[i])) {
                overlaps = true;
                marked[i] = true;
            }
        }
        if (overlaps)
            pendingLarger.push_back(one);
        else
            result.push_back(one);
    }
    for (std::size_t i = 0; i < smaller.size(); ++i)
        (marked[i] ? pendingSmaller : result).push_back(smaller[i]);

    while (!pendingLarger.empty()) {
        const Rect one = pendingLarger.front();
        pendingLarger.pop_front();
        const auto found =
            std::find_if(pendingSmaller.begin(), pendingSmaller.end(),
                         [&](const Rect& candidate) { return Overlap(one, candidate); });
        if (found == pendingSmaller.end()) {
            result.push_back(one);
            continue;
        }
        const Rect other = *found;
        const Rect both = Intersect(one, other);
        result.push_back(both);
        for (const Rect& piece : Subtract(one, both))
            pendingLarger.push_back(piece);
        pendingSmaller.erase(found);
        for (const Rect& piece : Subtract(other, both))
            pendingSmaller.push_back(piece);
    }
    result.insert(result.end(), pendingSmaller.begin(), pendingSmaller.end());
    if (join)
        Join(result);
    return result;
}

Rects Difference(const Rects& a, const Rects& b, bool join) {
    if (a.empty() || b.empty())
        return a;
    Rects result;
    std::deque<Rect> pending;
    const auto firstOverlapping = [&](const Rect& rect) {
        return std::find_if(b.begin(), b.end(),
                            [&](const Rect& cutter) { return Overlap(rect, cutter); });
    };
    for (const Rect& one : a) {
        if (firstOverlapping(one) == b.end())
            result.push_back(one);
        else
            pending.push_back(one);
    }
    while (!pending.empty()) {
        const Rect one = pending.front();
        pending.pop_front();
        const auto cutter = firstOverlapping(one);
        if (cutter == b.end()) {
            result.push_back(one);
            continue;
        }
        for (const Rect& piece : Subtract(one, *cutter))
            pending.push_back(piece);
    }
    if (join)
        Join(result);
    return result;
}

Rects Inset(Rects rects, int dx, int dy) {
    const auto wrap = [](std::int64_t value) {
        return static_cast<int>(static_cast<std::uint32_t>(value));
    };
    for (std::size_t i = 0; i < rects.size(); ++i) {
        Rect& rect = rects[i];
        rect.left = wrap(std::int64_t{rect.left} + dx);
        rect.top = wrap(std::int64_t{rect.top} + dy);
        rect.right = std::max(wrap(std::int64_t{rect.right} - dx), rect.left);
        rect.bottom = std::max(wrap(std::int64_t{rect.bottom} - dy), rect.top);
        if (rect.left == rect.right || rect.top == rect.bottom)
            rects.erase(rects.begin() + static_cast<std::ptrdiff_t>(i));
    }
    return rects;
}

Rects ToVector(const Cmn_RectList& list) { return {list.begin(), list.end()}; }

} // namespace

Cmn_RegionCore<int>::Cmn_RegionCore(const Cmn_Rect<int>& rect) {
    Cmn_Interval::CheckRect(rect);
    if (rect.Empty())
        return;
    mRects.Append(rect);
    mBounds = rect;
}

void Cmn_RegionCore<int>::Pass_Join() {
    mFlags |= kFlag_BoundsStale;
    if (mRects.size() < 2 || (mFlags & kFlag_NoJoining))
        return;
    Rects rects = ToVector(mRects);
    Join(rects);
    mRects.Assign(rects.data(), rects.size());
}

void Cmn_RegionCore<int>::Pass_SortRects() {
    std::stable_sort(mRects.Edit(), mRects.Edit() + mRects.size(),
                     [](const Rect& a, const Rect& b) {
                         return a.top != b.top ? a.top < b.top : a.left < b.left;
                     });
}

void Cmn_RegionCore<int>::AssignRects(const Cmn_Rect<int>* rects, std::size_t count) {
    mRects.Assign(rects, count);
    mFlags |= kFlag_BoundsStale;
}

void Cmn_RegionCore<int>::Union(Cmn_RegionCore& result, const Cmn_RegionCore& other) const {
    const Rects rects = ::Union(ToVector(mRects), ToVector(other.mRects), false);
    result.AssignRects(rects.data(), rects.size());
    if (!IsEmpty() && !other.IsEmpty())
        result.Pass_Join();
}

void Cmn_RegionCore<int>::Intersection(Cmn_RegionCore& result, const Cmn_RegionCore& other) const {
    const Rects rects = ::Intersection(ToVector(mRects), ToVector(other.mRects), false);
    result.AssignRects(rects.data(), rects.size());
    result.Pass_Join();
}

void Cmn_RegionCore<int>::Difference(Cmn_RegionCore& result, const Cmn_RegionCore& other) const {
    const Rects rects = ::Difference(ToVector(mRects), ToVector(other.mRects), false);
    result.AssignRects(rects.data(), rects.size());
    if (!IsEmpty() && !other.IsEmpty())
        result.Pass_Join();
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

void Cmn_RegionCore<int>::Offset(int dx, int dy) noexcept {
    const auto move = [dx, dy](const Rect& rect) {
        return Rect(Cmn_SaturatingAdd(rect.left, dx), Cmn_SaturatingAdd(rect.top, dy),
                    Cmn_SaturatingAdd(rect.right, dx), Cmn_SaturatingAdd(rect.bottom, dy));
    };
    Rect* rects = mRects.Edit();
    for (std::size_t i = 0; i < mRects.size(); ++i)
        rects[i] = move(rects[i]);
    if (!(mFlags & kFlag_BoundsStale) && !mBounds.Empty())
        mBounds = move(mBounds);
}

void Cmn_RegionCore<int>::Inset(int dx, int dy) noexcept {
    const Rects rects = ::Inset(ToVector(mRects), dx, dy);
    AssignRects(rects.data(), rects.size());
}

void Cmn_RegionCore<int>::OffsetWithin(int dx, int dy, const Cmn_Rect<int>& within) {
    const Cmn_RegionCore window(within);
    Cmn_RegionCore inside;
    Cmn_RegionCore outside;
    Intersection(inside, window);
    Difference(outside, window);
    if (inside.IsEmpty()) {
        *this = outside;
        return;
    }
    inside.Offset(dx, dy);
    Cmn_RegionCore moved;
    inside.Intersection(moved, window);
    Cmn_RegionCore result;
    outside.Union(result, moved);
    *this = result;
    mFlags |= kFlag_BoundsStale;
}

void Cmn_RegionCore<int>::Clear() noexcept {
    mRects.Clear();
    mBounds = Rect();
    mFlags = 0;
}

void Cmn_RegionCore<int>::GetBounds(Cmn_Rect<int>& bounds) const noexcept {
    if (!(mFlags & kFlag_BoundsStale)) {
        bounds = mBounds;
        return;
    }
    if (mRects.empty()) {
        bounds = Rect();
        return;
    }
    bounds = mRects[0];
    for (const Rect& rect : mRects)
        bounds |= rect;
    mBounds = bounds;
    mFlags &= ~std::uint32_t{kFlag_BoundsStale};
}

bool Cmn_RegionCore<int>::ContainsPoint(const Cmn_Point<int>& point) const noexcept {
    for (const Rect& rect : mRects) {
        if (rect.Contains(point))
            return true;
    }
    return false;
}

bool Cmn_RegionCore<int>::ContainsRect(const Cmn_Rect<int>& rect) const noexcept {
    for (const Rect& one : mRects) {
        if (one.Overlaps(rect))
            return true;
    }
    return false;
}

Cmn_RegionImpl<int>::~Cmn_RegionImpl() = default;
