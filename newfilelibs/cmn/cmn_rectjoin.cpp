#include "newfilelibs/cmn/cmn_rectjoin.h"

#include <numeric>

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
        return others * mInitial <= kComparisons ? FindLinksByComparing() : FindLinksBySorting();
    }

    void Run() {
        bool any = true;
        while (any) {
            any = Sweep<kHorizontal>();
            Relink<kVertical>();
            any = Sweep<kVertical>() || any;
            if (any)
                Relink<kHorizontal>();
        }
    }

    // Moves what is left to the front; returns how many of them are still of the sorted head.
    std::size_t Compact() noexcept {
        std::size_t kept = 0;
        std::size_t head = 0;
        for (std::size_t i = 0; i < mRects.size(); ++i) {
            if (mGone[i])
                continue;
            head += i < mHead;
            mRects[kept++] = mRects[i];
        }
        mRects.Resize(kept);
        return head;
    }

  private:
    // As many pairs are compared as cost about what sorting would.
    static constexpr std::size_t kComparisons = 12000;

    void StartLinks() {
        mRects.Reserve(mInitial * 2);
        mLinks.Resize(mInitial * 2);
        mGone.Resize(mInitial * 2);
        std::fill(mLinks.begin(), mLinks.begin() + mInitial, Links());
        std::fill(mGone.begin(), mGone.end(), std::uint8_t{0});
    }

    template <Axis axis>
    void Link(std::size_t a, std::size_t b) noexcept {
        mLinks[a].mNext[axis] = static_cast<std::int32_t>(b);
        mLinks[b].mPrevious[axis] = static_cast<std::int32_t>(a);
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

    static bool AreNeighbours(const Rect& a, const Rect& b) noexcept {
        return Follows<kHorizontal>(a, b) || Follows<kHorizontal>(b, a) ||
               Follows<kVertical>(a, b) || Follows<kVertical>(b, a);
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

    bool FindLinksBySorting() {
        StartLinks();
        mOrder.Resize(mInitial);
        std::iota(mOrder.begin(), mOrder.end(), 0U);
        const bool side = LinkInOrder<kHorizontal>();
        std::iota(mOrder.begin(), mOrder.end(), 0U);
        return LinkInOrder<kVertical>() || side;
    }

    // Neighbours come one after the other in the order of rows, or of columns: anything between
    // them would overlap the first.
    template <Axis axis>
    bool LinkInOrder() {
        Cmn_SortRectIndices(mRects.data(), mOrder.data(), mOrder.size(),
                            axis == kHorizontal ? Cmn_RectOrder::kRows : Cmn_RectOrder::kColumns,
                            mOrder.data());
        bool any = false;
        for (std::size_t i = 1; i < mOrder.size(); ++i) {
            if (Follows<axis>(mRects[mOrder[i - 1]], mRects[mOrder[i]])) {
                Link<axis>(mOrder[i - 1], mOrder[i]);
                any = true;
            }
        }
        return any;
    }

    // A link's rectangle if it is there still and stands after `index` in the list, else kNone.
    std::int32_t After(std::size_t index, std::int32_t link) const noexcept {
        return link > static_cast<std::int32_t>(index) && !mGone[static_cast<std::size_t>(link)]
                   ? link
                   : kNone;
    }

    template <Axis axis>
    bool Sweep() {
        bool any = false;
        for (std::size_t i = 0; i < mRects.size(); ++i) {
            if (mGone[i])
                continue;
            const std::int32_t next = After(i, mLinks[i].mNext[axis]);
            const std::int32_t previous = After(i, mLinks[i].mPrevious[axis]);
            if (next == kNone && previous == kNone)
                continue;
            any = true;
            if (next != kNone && (previous == kNone || next < previous))
                Merge<axis>(i, static_cast<std::size_t>(next));
            else
                Merge<axis>(static_cast<std::size_t>(previous), i);
            // Deliberate: what moved up into the place of the merged one is passed over.
            do
                ++i;
            while (i < mRects.size() && mGone[i]);
        }
        return any;
    }

    // Replaces `first` and its follower `second` by one rectangle at the end.
    template <Axis axis>
    void Merge(std::size_t first, std::size_t second) {
        const std::size_t merged = mRects.size();
        mRects.Append(Rect(mRects[first].left, mRects[first].top, mRects[second].right,
                           mRects[second].bottom));
        mGone[first] = 1;
        mGone[second] = 1;
        mLinks[merged] = Links();
        if (const std::int32_t before = mLinks[first].mPrevious[axis];
            before != kNone && !mGone[static_cast<std::size_t>(before)])
            Link<axis>(static_cast<std::size_t>(before), merged);
        if (const std::int32_t after = mLinks[second].mNext[axis];
            after != kNone && !mGone[static_cast<std::size_t>(after)])
            Link<axis>(merged, static_cast<std::size_t>(after));
        mFresh.Append(static_cast<std::uint32_t>(merged));
    }

    // Finds the links along an axis of what the last sweep, along the other one, has merged.
    template <Axis axis>
    void Relink() {
        std::size_t fresh = 0;
        for (const std::uint32_t index : mFresh) {
            if (!mGone[index])
                mFresh[fresh++] = index;
        }
        mFresh.Resize(fresh);
        if (fresh * mRects.size() <= kComparisons)
            RelinkByComparing<axis>();
        else
            RelinkBySorting<axis>();
        mFresh.Clear();
    }

    template <Axis axis>
    void RelinkByComparing() noexcept {
        for (const std::uint32_t index : mFresh) {
            const Cmn_RectScan::EdgeProbe probe(mRects[index]);
            std::size_t other = 0;
            while ((other = Cmn_RectScan::FindFirst(probe, mRects.data(), other, mRects.size())) <
                   mRects.size()) {
                if (!mGone[other])
                    LinkIfNeighbours<axis>(index, other);
                ++other;
            }
        }
    }

    template <Axis axis>
    void RelinkBySorting() {
        mOrder.Clear();
        for (std::size_t i = 0; i < mRects.size(); ++i) {
            if (!mGone[i])
                mOrder.Append(static_cast<std::uint32_t>(i));
        }
        LinkInOrder<axis>();
    }

    Rects& mRects;
    std::size_t mHead;
    std::size_t mNext;
    std::size_t mInitial;
    Cmn_Scratch<Links, 64> mLinks;
    Cmn_Scratch<std::uint8_t, 128> mGone;
    Cmn_Scratch<std::uint32_t, 32> mFresh; // merged since the links along the other axis were found
    Cmn_Scratch<std::uint32_t, 64> mOrder;
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
