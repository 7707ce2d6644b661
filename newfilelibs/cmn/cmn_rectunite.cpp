#include "newfilelibs/cmn/cmn_rectunite.h"

#include "newfilelibs/cmn/cmn_rectcut.h"
#include "newfilelibs/cmn/cmn_rectjoinfew.h"
#include "newfilelibs/cmn/cmn_rectsort.h"

namespace {

using Rect = Cmn_Rect<int>;

// For rectangles of positive size.
bool Overlap(const Rect& a, const Rect& b) noexcept {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

// Whether the pixels of two rectangles that touch make up a rectangle.
bool MakeRectangle(const Rect& a, const Rect& b) noexcept {
    return a.Contains(b) || b.Contains(a) ||
           (a.top == b.top && a.bottom == b.bottom && a.left <= b.right && b.left <= a.right) ||
           (a.left == b.left && a.right == b.right && a.top <= b.bottom && b.top <= a.bottom);
}

// The rectangles of a list that overlap one or would be joined with it.
struct Partners {
    std::size_t mCount = 0;
    std::size_t mLast = 0;
};

Partners FindPartners(const Cmn_RectList& list, const Rect& rect, std::size_t from) noexcept {
    Partners partners;
    const Rect* rects = list.data();
    Cmn_RectScan::ForEachHit(Cmn_RectScan::TouchProbe(rect), rects, from, list.size(),
                             [&](std::size_t i) {
                                 if (Overlap(rects[i], rect) || MakeRectangle(rects[i], rect)) {
                                     ++partners.mCount;
                                     partners.mLast = i;
                                 }
                             });
    return partners;
}

// A rectangle of a list, one that touches it, and the box around both.
struct Pair {
    Rect mA;
    Rect mB;
    Rect mBoth;

    Pair(const Rect& a, const Rect& b) noexcept : mA(a), mB(b) {
        Cmn_RectScan::Bounds bounds(a);
        bounds.Add(b);
        mBoth = bounds.Get();
    }

    /// Whether a rectangle that overlaps neither could be joined with some piece that they are cut
    /// into: it would have to share two edges that pieces can have.
    [[nodiscard]] bool MayJoin(const Rect& other) const noexcept {
        const bool isBeside = other.right <= mBoth.left || other.left >= mBoth.right;
        return isBeside ? IsRow(other.top) && IsRow(other.bottom)
                        : IsColumn(other.left) && IsColumn(other.right);
    }

  private:
    [[nodiscard]] bool IsRow(int y) const noexcept {
        return y == mA.top || y == mA.bottom || y == mB.top || y == mB.bottom;
    }
    [[nodiscard]] bool IsColumn(int x) const noexcept {
        return x == mA.left || x == mA.right || x == mB.left || x == mB.right;
    }
};

// Whether a third rectangle could be joined with what a list's rectangle and another are cut into.
bool IsAnyJoined(const Cmn_RectList& list, std::size_t partner, const Pair& pair) noexcept {
    const Rect* rects = list.data();
    bool any = false;
    Cmn_RectScan::ForEachHit(
        Cmn_RectScan::TouchProbe(pair.mBoth), rects, 0, list.size(),
        [&](std::size_t i) { any = any || (i != partner && pair.MayJoin(rects[i])); });
    return any;
}

// With the only one that it touches so. The two are cut against each other, and the pieces end as
// one rectangle, unless a third is joined with a piece before.
bool UniteWithPartner(Cmn_RectList& list, std::size_t partner, const Rect& rect) noexcept {
    const Rect other = list[partner];
    if (rect == other)
        return true;
    if (!MakeRectangle(rect, other))
        return false;
    const Pair pair(other, rect);
    if (IsAnyJoined(list, partner, pair))
        return false;
    if (pair.mBoth != other) // grown, it can only come earlier in order
        Cmn_InsertSorted(list.Edit(), partner, pair.mBoth);
    return true;
}

// A few rectangles that lose their first ones and get others at the end.
class Queue {
  public:
    // Nothing is added when this says no: one cut gives four pieces at most.
    [[nodiscard]] bool HasRoom() const noexcept { return mEnd + 4 <= Cmn_FewRects::kMost; }
    void Append(const Rect& rect) noexcept { mRects[mEnd++] = rect; }
    void AppendPieces(const Rect& whole, const Rect& part) noexcept {
        mEnd += Cmn_CutAround(whole, part, mRects + mEnd);
    }
    [[nodiscard]] bool IsEmpty() const noexcept { return mStart == mEnd; }
    [[nodiscard]] Rect TakeFirst() noexcept { return mRects[mStart++]; }
    // Takes the first one that overlaps a rectangle.
    [[nodiscard]] bool TakeOverlapping(const Rect& rect, Rect& taken) noexcept {
        for (std::size_t i = mStart; i < mEnd; ++i) {
            if (!Overlap(mRects[i], rect))
                continue;
            taken = mRects[i];
            std::copy(mRects + i + 1, mRects + mEnd, mRects + i);
            --mEnd;
            return true;
        }
        return false;
    }

  private:
    std::size_t mStart = 0;
    std::size_t mEnd = 0;
    Rect mRects[Cmn_FewRects::kMost];
};

// What is left to cut of the union's larger list and of its smaller one.
struct Pending {
    Queue mLarger;
    Queue mSmaller;
};

// Copies the list's rectangles that do not overlap the one; both sides of the others are pending.
bool Split(const Cmn_RectList& list, const Rect& rect, Pending& pending, Cmn_FewRects& out) {
    // The list is the larger side of the union, but for a list of one.
    Queue& listed = list.size() > 1 ? pending.mLarger : pending.mSmaller;
    Queue& single = list.size() > 1 ? pending.mSmaller : pending.mLarger;
    for (const Rect& one : list) {
        if (!Overlap(one, rect)) {
            out.Append(one);
            continue;
        }
        if (!listed.HasRoom())
            return false;
        listed.Append(one);
    }
    single.Append(rect);
    return true;
}

// As Cmn_UniteRects tells. False when there is no room.
bool CutBoth(Pending& pending, Cmn_FewRects& out) {
    while (!pending.mLarger.IsEmpty()) {
        if (out.size() == Cmn_FewRects::kMost || !pending.mLarger.HasRoom() ||
            !pending.mSmaller.HasRoom())
            return false;
        const Rect one = pending.mLarger.TakeFirst();
        Rect other;
        if (!pending.mSmaller.TakeOverlapping(one, other)) {
            out.Append(one);
            continue;
        }
        const Rect common = Cmn_CommonPart(one, other);
        out.Append(common);
        pending.mLarger.AppendPieces(one, common);
        pending.mSmaller.AppendPieces(other, common);
    }
    while (!pending.mSmaller.IsEmpty()) {
        if (out.size() == Cmn_FewRects::kMost)
            return false;
        out.Append(pending.mSmaller.TakeFirst());
    }
    return true;
}

bool UniteByCutting(Cmn_RectList& list, const Rect& rect) {
    if (list.size() >= Cmn_FewRects::kMost)
        return false;
    Cmn_FewRects few;
    Pending pending;
    if (!Split(list, rect, pending, few))
        return false;
    const std::size_t untouched = few.size();
    if (!CutBoth(pending, few))
        return false;
    few.Join(untouched, 0);
    few.MoveTo(list, untouched);
    return true;
}

} // namespace

bool Cmn_UniteWithTouched(Cmn_RectList& joined, const Rect& rect, std::size_t touched) {
    const Partners partners = FindPartners(joined, rect, touched);
    if (partners.mCount == 0) {
        Rect* const rects = joined.Extend();
        Cmn_InsertSorted(rects, joined.size() - 1, rect);
        return true;
    }
    return (partners.mCount == 1 && UniteWithPartner(joined, partners.mLast, rect)) ||
           UniteByCutting(joined, rect);
}

namespace {

// Whether of two that overlap each has one corner in the other: neither reaches beyond the other on
// two opposite sides, nor ends at the same line.
bool OverlapAtCorners(const Rect& a, const Rect& b) noexcept {
    return (((a.left < b.left) & (a.right < b.right)) | ((b.left < a.left) & (b.right < a.right))) &
           (((a.top < b.top) & (a.bottom < b.bottom)) | ((b.top < a.top) & (b.bottom < a.bottom)));
}

// Such two end as three bands, whichever is cut first: only what lies beside their common part is
// joined with it.
void WriteBands(const Rect& upper, const Rect& lower, Cmn_RectList& out) {
    out.ResizeForOverwrite(3);
    Rect* const bands = out.Edit();
    bands[0] = {upper.left, upper.top, upper.right, lower.top};
    bands[1] = {std::min(upper.left, lower.left), lower.top, std::max(upper.right, lower.right),
                upper.bottom};
    bands[2] = {lower.left, upper.bottom, lower.right, lower.bottom};
}

void AppendPieces(const Rect& whole, const Rect& part, Cmn_FewRects& out) noexcept {
    Rect pieces[4];
    const std::size_t count = Cmn_CutAround(whole, part, pieces);
    for (std::size_t i = 0; i < count; ++i)
        out.Append(pieces[i]);
}

} // namespace

void Cmn_UniteTwo(const Rect& first, const Rect& second, Cmn_RectList& out) {
    if (MakeRectangle(first, second)) {
        out.ResizeForOverwrite(1);
        out.Edit()[0] = first | second;
    } else if (!Overlap(first, second)) {
        out.ResizeForOverwrite(2);
        Cmn_InsertSorted(out.Edit(), 0, first);
        Cmn_InsertSorted(out.Edit(), 1, second);
    } else if (OverlapAtCorners(first, second)) {
        const bool isFirstUpper = first.top < second.top;
        WriteBands(isFirstUpper ? first : second, isFirstUpper ? second : first, out);
    } else {
        const Rect common = Cmn_CommonPart(first, second);
        Cmn_FewRects few;
        few.Append(common);
        AppendPieces(first, common, few);
        AppendPieces(second, common, few);
        few.Join(0, 0);
        few.MoveTo(out, 0);
    }
}
