#include "newfilelibs/cmn/cmn_rectjoin.h"

#include <bit>
#include <numeric>

#include "newfilelibs/cmn/cmn_rectjoinfew.h"
#include "newfilelibs/cmn/cmn_rectscan.h"
#include "newfilelibs/cmn/cmn_rectsort.h"

namespace {

using Rect = Cmn_Rect<int>;
using Rects = Cmn_Scratch<Rect, 96>;

constexpr std::int32_t kNone = -1;

// A rectangle's neighbours: those that share the whole edge. Indices into the list; a link to a
// rectangle that has been merged away counts as none.
struct Links {
    std::int32_t mNext[2] = {kNone, kNone};     // to the right; below
    std::int32_t mPrevious[2] = {kNone, kNone}; // to the left; above
};
enum Axis : int { kHorizontal = 0, kVertical = 1 };

// Whether b begins where a ends, over the whole edge.
template <Axis axis>
bool Follows(const Rect& a, const Rect& b) noexcept {
    if constexpr (axis == kHorizontal)
        return a.right == b.left && a.top == b.top && a.bottom == b.bottom;
    else
        return a.bottom == b.top && a.left == b.left && a.right == b.right;
}

bool AreNeighbours(const Rect& a, const Rect& b) noexcept {
    return Follows<kHorizontal>(a, b) || Follows<kHorizontal>(b, a) || Follows<kVertical>(a, b) ||
           Follows<kVertical>(b, a);
}

// Bits by index that are walked in ascending order while more are set ahead.
class Bits {
  public:
    static constexpr std::size_t kWordBits = 64;

    void Clear(std::size_t count) {
        mWords.Resize(count / kWordBits + 1);
        std::fill(mWords.begin(), mWords.end(), std::uint64_t{0});
    }
    void Set(std::size_t index) noexcept { mWords[index / kWordBits] |= Mask(index); }
    void Reset(std::size_t index) noexcept { mWords[index / kWordBits] &= ~Mask(index); }
    [[nodiscard]] bool Has(std::size_t index) const noexcept {
        return (mWords[index / kWordBits] & Mask(index)) != 0;
    }
    /// The first set bit from `index` on, or `end`.
    [[nodiscard]] std::size_t NextSet(std::size_t index, std::size_t end) const noexcept {
        return Next(index, end, 0);
    }
    [[nodiscard]] std::size_t NextClear(std::size_t index, std::size_t end) const noexcept {
        return Next(index, end, ~std::uint64_t{0});
    }

  private:
    static std::uint64_t Mask(std::size_t index) noexcept {
        return std::uint64_t{1} << index % kWordBits;
    }
    [[nodiscard]] std::size_t Next(std::size_t index, std::size_t end,
                                   std::uint64_t flip) const noexcept {
        if (index >= end)
            return end;
        std::size_t word = index / kWordBits;
        std::uint64_t bits = (mWords[word] ^ flip) >> index % kWordBits << index % kWordBits;
        while (bits == 0) {
            if (++word * kWordBits >= end)
                return end;
            bits = mWords[word] ^ flip;
        }
        return std::min(end, word * kWordBits + static_cast<std::size_t>(std::countr_zero(bits)));
    }
    Cmn_Scratch<std::uint64_t, 8> mWords;
};

// Rectangles by the place of one corner. No two that are there have a corner in common; one that is
// gone gives its place to the next at the same corner.
template <int Rect::*X, int Rect::*Y>
class CornerTable {
  public:
    void Start(std::size_t count) {
        const int bits = std::bit_width(count) + 1;
        mShift = 64 - bits;
        mSlots.Resize(std::size_t{1} << bits);
        std::fill(mSlots.begin(), mSlots.end(), kNone);
    }
    void Insert(const Rect* rects, std::size_t index) noexcept {
        mSlots[Slot(rects, rects[index].*X, rects[index].*Y)] = static_cast<std::int32_t>(index);
    }
    [[nodiscard]] std::int32_t Find(const Rect* rects, int x, int y) const noexcept {
        return mSlots[Slot(rects, x, y)];
    }

  private:
    // Where the corner stands or would stand.
    [[nodiscard]] std::size_t Slot(const Rect* rects, int x, int y) const noexcept {
        const std::uint64_t key =
            std::uint64_t{static_cast<std::uint32_t>(y)} << 32 | static_cast<std::uint32_t>(x);
        // The multiplier is 2 to the 64 over the golden ratio: regular grids spread evenly.
        std::size_t slot = (key ^ key >> 32) * 0x9E3779B97F4A7C15U >> mShift;
        for (;; slot = (slot + 1) & (mSlots.size() - 1)) {
            const std::int32_t found = mSlots[slot];
            if (found == kNone || (rects[found].*X == x && rects[found].*Y == y))
                return slot;
        }
    }

    int mShift = 0;
    Cmn_Scratch<std::int32_t, 4> mSlots;
};

// Finds neighbours in one probe: a neighbour's corner lies on the rectangle's own.
class Corners {
  public:
    /// For lists of up to `capacity` rectangles.
    void Start(std::size_t capacity) {
        mTopLeft.Start(capacity);
        mTopRight.Start(capacity);
        mBottomLeft.Start(capacity);
    }
    void Insert(const Rect* rects, std::size_t index) noexcept {
        mTopLeft.Insert(rects, index);
        mTopRight.Insert(rects, index);
        mBottomLeft.Insert(rects, index);
    }
    template <Axis axis>
    [[nodiscard]] std::int32_t FindNext(const Rect* rects, const Rect& rect) const noexcept {
        return axis == kHorizontal ? mTopLeft.Find(rects, rect.right, rect.top)
                                   : mTopLeft.Find(rects, rect.left, rect.bottom);
    }
    template <Axis axis>
    [[nodiscard]] std::int32_t FindPrevious(const Rect* rects, const Rect& rect) const noexcept {
        return axis == kHorizontal ? mTopRight.Find(rects, rect.left, rect.top)
                                   : mBottomLeft.Find(rects, rect.left, rect.top);
    }

  private:
    CornerTable<&Rect::left, &Rect::top> mTopLeft;
    CornerTable<&Rect::right, &Rect::top> mTopRight;
    CornerTable<&Rect::left, &Rect::bottom> mBottomLeft;
};

// Joins a list of disjoint rectangles. The list's order is the order of the indices: merged
// rectangles get new ones at the end, and those merged away keep theirs, marked as gone.
class Joiner {
  public:
    explicit Joiner(Cmn_UnjoinedRects& unjoined) noexcept
        : mRects(unjoined.mRects), mHead(unjoined.mHead), mNext(unjoined.mNext),
          mInitial(unjoined.mRects.size()) {}

    // Finds the first links. Returns false when there is nothing to merge.
    bool FindLinks() {
        const std::size_t others = mInitial - mHead;
        return others * mInitial <= kComparisons ? FindLinksByComparing() : FindLinksByCorners();
    }

    void Run() {
        bool any = true;
        while (any) {
            any = Sweep<kHorizontal>();
            Relink<kVertical>();
            any = Sweep<kVertical>() || any;
            Relink<kHorizontal>();
        }
    }

    // Moves what is left to the front; returns how many of them are still of the sorted head.
    std::size_t Compact() noexcept {
        const std::size_t end = mRects.size();
        std::size_t kept = 0;
        std::size_t head = 0;
        for (std::size_t i = mGone.NextClear(0, end); i < end; i = mGone.NextClear(i + 1, end)) {
            head += i < mHead;
            mRects[kept++] = mRects[i];
        }
        mRects.Resize(kept);
        return head;
    }

  private:
    // As many pairs are compared as cost about what the corners' tables would.
    static constexpr std::size_t kComparisons = 4000;

    void StartLinks() {
        const std::size_t capacity = mInitial * 2; // every merge takes two away and adds one
        mRects.Reserve(capacity);
        mLinks.Resize(capacity);
        std::fill(mLinks.begin(), mLinks.begin() + mInitial, Links());
        mGone.Clear(capacity);
        mLinked[kHorizontal].Clear(capacity);
        mLinked[kVertical].Clear(capacity);
    }

    template <Axis axis>
    void Link(std::size_t a, std::size_t b) noexcept {
        mLinks[a].mNext[axis] = static_cast<std::int32_t>(b);
        mLinks[b].mPrevious[axis] = static_cast<std::int32_t>(a);
        mLinked[axis].Set(a);
        mLinked[axis].Set(b);
    }

    template <Axis axis>
    bool LinkIfNeighbours(std::size_t a, std::size_t b) noexcept {
        if (Follows<axis>(mRects[a], mRects[b]))
            Link<axis>(a, b);
        else if (Follows<axis>(mRects[b], mRects[a]))
            Link<axis>(b, a);
        else
            return false;
        return true;
    }

    // Every rectangle after the head with those before it, except within the second part.
    bool FindLinksByComparing() {
        bool any = false;
        for (std::size_t i = std::max<std::size_t>(mHead, 1); i < mInitial; ++i) {
            const std::size_t end = i < mHead + mNext ? mHead : i;
            const Cmn_RectScan::EdgeProbe probe(mRects[i]);
            std::size_t j = 0;
            while ((j = Cmn_RectScan::FindFirst(probe, mRects.data(), j, end)) < end) {
                if (AreNeighbours(mRects[i], mRects[j])) {
                    if (!any)
                        StartLinks();
                    any = true;
                    (void)(LinkIfNeighbours<kHorizontal>(i, j) ||
                           LinkIfNeighbours<kVertical>(i, j));
                }
                ++j;
            }
        }
        return any;
    }

    bool FindLinksByCorners() {
        StartLinks();
        mCorners.Start(mInitial);
        mHasCorners = true;
        for (std::size_t i = 0; i < mInitial; ++i)
            mCorners.Insert(mRects.data(), i);
        bool any = false;
        for (std::size_t i = 0; i < mInitial; ++i) {
            any = LinkNext<kHorizontal>(i) || any;
            any = LinkNext<kVertical>(i) || any;
        }
        return any;
    }

    template <Axis axis>
    bool LinkNext(std::size_t index) noexcept {
        const std::int32_t next = mCorners.FindNext<axis>(mRects.data(), mRects[index]);
        if (!IsThere(next) || !Follows<axis>(mRects[index], mRects[static_cast<std::size_t>(next)]))
            return false;
        Link<axis>(index, static_cast<std::size_t>(next));
        return true;
    }

    template <Axis axis>
    void LinkPrevious(std::size_t index) noexcept {
        const std::int32_t previous = mCorners.FindPrevious<axis>(mRects.data(), mRects[index]);
        if (IsThere(previous) &&
            Follows<axis>(mRects[static_cast<std::size_t>(previous)], mRects[index]))
            Link<axis>(static_cast<std::size_t>(previous), index);
    }

    [[nodiscard]] bool IsThere(std::int32_t link) const noexcept {
        return link != kNone && !mGone.Has(static_cast<std::size_t>(link));
    }
    // A link's rectangle if it is there still and stands after `index` in the list, else kNone.
    [[nodiscard]] std::int32_t After(std::size_t index, std::int32_t link) const noexcept {
        return link > static_cast<std::int32_t>(index) && IsThere(link) ? link : kNone;
    }

    template <Axis axis>
    bool Sweep() {
        bool any = false;
        std::size_t i = 0;
        while ((i = mLinked[axis].NextSet(i, mRects.size())) < mRects.size()) {
            const std::int32_t next = mLinks[i].mNext[axis];
            const std::int32_t previous = mLinks[i].mPrevious[axis];
            if (mGone.Has(i) || (!IsThere(next) && !IsThere(previous))) {
                mLinked[axis].Reset(i++);
                continue;
            }
            if (!MergeWithLater<axis>(i, After(i, next), After(i, previous))) {
                ++i;
                continue;
            }
            any = true;
            // Deliberate: what moved up into the place of the merged one is passed over.
            i = mGone.NextClear(i, mRects.size()) + 1;
        }
        return any;
    }

    // With the first of the two that stand after it in the list.
    template <Axis axis>
    bool MergeWithLater(std::size_t index, std::int32_t next, std::int32_t previous) {
        if (next == kNone && previous == kNone)
            return false;
        if (next != kNone && (previous == kNone || next < previous))
            Merge<axis>(index, static_cast<std::size_t>(next));
        else
            Merge<axis>(static_cast<std::size_t>(previous), index);
        return true;
    }

    // Replaces `first` and its follower `second` by one rectangle at the end.
    template <Axis axis>
    void Merge(std::size_t first, std::size_t second) {
        const std::size_t merged = mRects.size();
        mRects.Append(Rect(mRects[first].left, mRects[first].top, mRects[second].right,
                           mRects[second].bottom));
        mGone.Set(first);
        mGone.Set(second);
        mLinks[merged] = Links();
        if (const std::int32_t before = mLinks[first].mPrevious[axis]; IsThere(before))
            Link<axis>(static_cast<std::size_t>(before), merged);
        if (const std::int32_t after = mLinks[second].mNext[axis]; IsThere(after))
            Link<axis>(merged, static_cast<std::size_t>(after));
    }

    // Finds the links along an axis of what the last sweep, along the other one, has merged.
    template <Axis axis>
    void Relink() {
        const std::size_t end = mRects.size();
        const std::size_t fresh = end - mLinkedUpTo;
        if (!mHasCorners && fresh * end > kComparisons)
            StartCorners();
        if (mHasCorners)
            RelinkByCorners<axis>();
        else
            RelinkByComparing<axis>();
        mLinkedUpTo = end;
    }

    // What the list begins with; merged ones since then come through Relink.
    void StartCorners() {
        mCorners.Start(mInitial);
        mHasCorners = true;
        for (std::size_t i = 0; i < mLinkedUpTo; ++i) {
            if (!mGone.Has(i))
                mCorners.Insert(mRects.data(), i);
        }
    }

    template <Axis axis>
    void RelinkByCorners() noexcept {
        const std::size_t end = mRects.size();
        const std::size_t start = mGone.NextClear(mLinkedUpTo, end);
        for (std::size_t i = start; i < end; i = mGone.NextClear(i + 1, end))
            mCorners.Insert(mRects.data(), i);
        for (std::size_t i = start; i < end; i = mGone.NextClear(i + 1, end)) {
            LinkNext<axis>(i);
            LinkPrevious<axis>(i);
        }
    }

    template <Axis axis>
    void RelinkByComparing() noexcept {
        const std::size_t end = mRects.size();
        for (std::size_t i = mGone.NextClear(mLinkedUpTo, end); i < end;
             i = mGone.NextClear(i + 1, end)) {
            const Cmn_RectScan::EdgeProbe probe(mRects[i]);
            std::size_t other = 0;
            while ((other = Cmn_RectScan::FindFirst(probe, mRects.data(), other, end)) < end) {
                if (!mGone.Has(other))
                    LinkIfNeighbours<axis>(i, other);
                ++other;
            }
        }
    }

    Rects& mRects;
    std::size_t mHead;
    std::size_t mNext;
    std::size_t mInitial;
    std::size_t mLinkedUpTo = mInitial; // rectangles before it have links along both axes
    Cmn_Scratch<Links, 64> mLinks;
    Bits mGone;
    Bits mLinked[2]; // by axis: may have a link there
    Corners mCorners;
    bool mHasCorners = false;
};

// Lists whose rectangles overlap come from growing insets, from offsets beyond the coordinates'
// limits and from outside. There several rectangles may share an edge with one, so each sweep
// compares pairs.
template <Axis axis>
bool SweepPairs(Rects& rects) noexcept {
    bool any = false;
    for (std::size_t i = 0; i < rects.size(); ++i) {
        for (std::size_t j = i + 1; j < rects.size(); ++j) {
            const bool forward = Follows<axis>(rects[i], rects[j]);
            if (!forward && !Follows<axis>(rects[j], rects[i]))
                continue;
            const Rect& first = rects[forward ? i : j];
            const Rect& second = rects[forward ? j : i];
            const Rect merged(first.left, first.top, second.right, second.bottom);
            std::copy(rects.begin() + j + 1, rects.end(), rects.begin() + j);
            std::copy(rects.begin() + i + 1, rects.end() - 1, rects.begin() + i);
            rects.Resize(rects.size() - 1);
            rects[rects.size() - 1] = merged;
            any = true;
            break;
        }
    }
    return any;
}

void JoinOverlapping(Rects& rects) noexcept {
    bool any = true;
    while (any) {
        any = SweepPairs<kHorizontal>(rects);
        any = SweepPairs<kVertical>(rects) || any;
    }
}

void JoinFew(const Cmn_UnjoinedRects& unjoined, Cmn_RectList& out) {
    Cmn_FewRects few;
    for (std::size_t i = 0; i < unjoined.mRects.size(); ++i)
        few.Append(unjoined.mRects[i]);
    few.Join(unjoined.mHead, unjoined.mNext);
    few.MoveTo(out, unjoined.mHead);
}

bool Precedes(const Rect& a, const Rect& b) noexcept {
    return Cmn_RectKey(a, Cmn_RectOrder::kRows) < Cmn_RectKey(b, Cmn_RectOrder::kRows);
}

// Few enough that moving them one by one is the fastest.
constexpr std::size_t kInsertionSorted = 24;

void InsertionSort(Rect* rects, std::size_t count) noexcept {
    for (std::size_t i = 1; i < count; ++i) {
        const Rect moved = rects[i];
        std::size_t place = i;
        for (; place > 0 && Precedes(moved, rects[place - 1]); --place)
            rects[place] = rects[place - 1];
        rects[place] = moved;
    }
}

} // namespace

void Cmn_SortRects(const Rect* rects, std::size_t count, std::size_t sortedHead,
                   Cmn_RectList& out) {
    const std::size_t tail = count - sortedHead;
    Cmn_Scratch<Rect, kInsertionSorted> sorted;
    sorted.Resize(tail);
    if (tail <= kInsertionSorted) {
        std::copy(rects + sortedHead, rects + count, sorted.begin());
        InsertionSort(sorted.data(), tail);
    } else {
        Cmn_Scratch<std::uint32_t, 64> order;
        order.Resize(tail);
        std::iota(order.begin(), order.end(), static_cast<std::uint32_t>(sortedHead));
        Cmn_SortRectIndices(rects, order.data(), tail, Cmn_RectOrder::kRows, order.data());
        for (std::size_t i = 0; i < tail; ++i)
            sorted[i] = rects[order[i]];
    }
    out.ResizeForOverwrite(count);
    std::merge(rects, rects + sortedHead, sorted.begin(), sorted.end(), out.Edit(), Precedes);
}

void Cmn_JoinRects(Cmn_UnjoinedRects& unjoined, Cmn_RectList& out) {
    Rects& rects = unjoined.mRects;
    std::size_t head = unjoined.mHead;
    if (unjoined.mDisjoint && rects.size() <= Cmn_FewRects::kMost) {
        JoinFew(unjoined, out);
        return;
    }
    if (!unjoined.mDisjoint) {
        JoinOverlapping(rects);
        head = 0;
    } else if (rects.size() > 1) {
        Joiner joiner(unjoined);
        if (joiner.FindLinks()) {
            joiner.Run();
            head = joiner.Compact();
        }
    }
    Cmn_SortRects(rects.data(), rects.size(), head, out);
}
