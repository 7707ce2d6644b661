// How disjoint rectangles are joined. At a corner of a rectangle at most one other rectangle lies
// with the matching corner to one side: so each has at most four neighbours, to the right the one
// whose top left corner is its top right, below the one whose top left corner is its bottom left,
// and those of which it is that neighbour itself. Two neighbours can be merged when the ends of the
// edge between them agree too.
//
// These links never have to be searched for again. Merging a rectangle with the one to its right
// leaves corners where the two had theirs: the left ones' neighbours stay, at the top right there
// is the neighbour that the second one had; and where their edges met there is no corner any more,
// nor will there be one, as whatever is merged later has no corners but those of its parts. (The
// same goes for one below the other.) So a merge costs a few steps, whatever the length of the
// list.
#include "newfilelibs/cmn/cmn_rectjoin.h"

#include <bit>

#include "newfilelibs/cmn/cmn_rectjoinfew.h"
#include "newfilelibs/cmn/cmn_rectscan.h"
#include "newfilelibs/cmn/cmn_rectsort.h"

namespace {

using Rect = Cmn_Rect<int>;
using Rects = Cmn_Scratch<Rect, 96>;

enum Axis : int { kHorizontal = 0, kVertical = 1 };

using Index = std::uint32_t;

// All ones or none: for choosing by arithmetic where the processor could only guess which way to
// go.
Index MaskIf(bool yes) noexcept { return 0U - static_cast<Index>(yes); }
Index Choose(bool yes, Index a, Index b) noexcept { return b ^ ((a ^ b) & MaskIf(yes)); }

// A set of numbers, a bit each, that is walked in ascending order while it changes.
class Numbers {
  public:
    [[nodiscard]] static std::size_t WordsFor(std::size_t count) noexcept {
        return count / kBits + 1;
    }
    /// Takes so many words over: an empty set of numbers below the count.
    void Start(std::uint64_t* words, std::size_t count) noexcept {
        mWords = words;
        std::memset(mWords, 0, WordsFor(count) * sizeof(*words));
    }
    /// Adds all from 0 to before `end`.
    void AddBelow(std::size_t end) noexcept {
        std::memset(mWords, 0xFF, end / kBits * sizeof(*mWords));
        mWords[end / kBits] |= Bit(end) - 1;
    }
    [[nodiscard]] bool Has(std::size_t number) const noexcept {
        return (mWords[number / kBits] & Bit(number)) != 0;
    }
    void Add(std::size_t number) noexcept { mWords[number / kBits] |= Bit(number); }
    void AddIf(bool yes, std::size_t number) noexcept {
        mWords[number / kBits] |= std::uint64_t{yes} << number % kBits;
    }
    void Remove(std::size_t number) noexcept { mWords[number / kBits] &= ~Bit(number); }

    /// The first one from `from` on, or `end`, from where on there is none.
    [[nodiscard]] std::size_t Next(std::size_t from, std::size_t end) const noexcept {
        return Find(from, end, [this](std::size_t i) { return mWords[i]; });
    }
    /// The same for what is in this set and another one.
    [[nodiscard]] std::size_t NextOfBoth(const Numbers& other, std::size_t from,
                                         std::size_t end) const noexcept {
        return Find(from, end,
                    [this, &other](std::size_t i) { return mWords[i] & other.mWords[i]; });
    }

  private:
    static constexpr std::size_t kBits = 64;

    static std::uint64_t Bit(std::size_t number) noexcept {
        return std::uint64_t{1} << number % kBits;
    }
    template <class GetWord>
    static std::size_t Find(std::size_t from, std::size_t end, GetWord getWord) noexcept {
        std::size_t i = from / kBits;
        std::uint64_t word = from < end ? getWord(i) & (0 - Bit(from)) : 0;
        while (word == 0) {
            if (++i * kBits >= end)
                return end;
            word = getWord(i);
        }
        return i * kBits + static_cast<std::size_t>(std::countr_zero(word));
    }

    std::uint64_t* mWords = nullptr; // not owned
};

// The latest rectangle that came by for each left edge.
class LatestByLeft {
  public:
    [[nodiscard]] static std::size_t SlotsFor(std::size_t count) noexcept {
        return std::size_t{2} << std::bit_width(count);
    }
    /// Takes so many slots over.
    LatestByLeft(Index* slots, std::size_t count) noexcept
        : mShift(31 - static_cast<int>(std::bit_width(count))), mMask(SlotsFor(count) - 1),
          mSlots(slots) {
        std::fill(slots, slots + SlotsFor(count), kNone);
    }
    /// Puts a rectangle in the place of the one before it, which is answered; for the first one at
    /// its edge itself.
    [[nodiscard]] Index Replace(const Rect* rects, Index index) noexcept {
        const int left = rects[index].left;
        // The multiplier is 2 to the 32 over the golden ratio: regular grids spread evenly.
        std::size_t slot = static_cast<std::uint32_t>(left) * 0x9E3779B9U >> mShift;
        while (mSlots[slot] != kNone && rects[mSlots[slot]].left != left)
            slot = (slot + 1) & mMask;
        const Index before = mSlots[slot] == kNone ? index : mSlots[slot];
        mSlots[slot] = index;
        return before;
    }

  private:
    static constexpr Index kNone = std::numeric_limits<Index>::max();
    int mShift;
    std::size_t mMask;
    Index* mSlots; // not owned
};

using Memory = Cmn_Scratch<std::byte, 4096>;

// Joins a list of disjoint rectangles.
//
// A rectangle keeps its number while it grows: what is merged from two has that of the left or
// upper one, whose top left corner it has too. Its place in the list changes then, to a new one at
// the end; nothing moves up in turn, so that places, too, are taken in order.
//
// Where all but a few rectangles come from a joined list, isLazy has only those few linked first.
// The memory, one block, lies outside, as nothing then points to what is here: it lives in
// registers.
template <bool isLazy>
class Joiner {
  public:
    Joiner(Cmn_UnjoinedRects& unjoined, Memory& memory)
        : mHead(unjoined.mHead), mCount(unjoined.mRects.size()), mNone(static_cast<Index>(mCount)),
          mEnd(mNone + 1) {
        unjoined.mRects.Reserve(mCount + 4); // one for none, and scans read whole fours
        mRects = unjoined.mRects.data();
        mRects[mNone] = Rect();
        Allocate(memory);
        for (Index i = 0; i < mNone; ++i) {
            mPlaces[i] = i + 1;
            mAt[i + 1] = i;
        }
        mPlaces[mNone] = kGone;
        mThere.AddBelow(mEnd);
        mThere.Remove(kGone);
    }

    void Run(const Cmn_UnjoinedRects& unjoined, Cmn_RectList& out) {
        if constexpr (isLazy)
            LinkTail();
        else
            LinkAll(unjoined);
        while (Cycle()) {
        }
        const std::size_t left = mCount - (mEnd - (mNone + 1));
        out.ResizeForOverwrite(left);
        Rect* const to = out.Edit();
        if constexpr (isLazy)
            SortTail(to);
        else
            CopyInOrder(to, to + left);
    }

  private:
    static constexpr Index kGone = 0; // as a place: before all others

    // A rectangle's neighbours by axis: to the right and left, below and above. They may be gone.
    struct Links {
        Index mNext[2];
        Index mPrevious[2];
    };

    void Allocate(Memory& memory) {
        const std::size_t places = mCount * 2 + 1;
        const std::size_t slots = isLazy ? 0 : LatestByLeft::SlotsFor(mCount);
        const std::size_t words = (mCount + 1) * 5 + places + mCount + slots;
        const std::size_t setWords = Numbers::WordsFor(places);
        memory.Resize(setWords * 4 * sizeof(std::uint64_t) + words * sizeof(Index));
        auto* const sets = reinterpret_cast<std::uint64_t*>(memory.data());
        mThere.Start(sets, places);
        mMarked[kHorizontal].Start(sets + setWords, places);
        mMarked[kVertical].Start(sets + setWords * 2, places);
        mLinked.Start(sets + setWords * 3, places);
        mLinks = reinterpret_cast<Links*>(sets + setWords * 4);
        mPlaces = reinterpret_cast<Index*>(mLinks + mCount + 1);
        mAt = mPlaces + mCount + 1;
        mOrder = mAt + places;
        mSlots = mOrder + mCount;
    }

    // Links

    template <Axis axis>
    void Link(Index a, Index b) noexcept {
        mLinks[a].mNext[axis] = b;
        mLinks[b].mPrevious[axis] = a;
    }

    // Whether two neighbours share the whole edge.
    template <Axis axis>
    [[nodiscard]] bool Agree(Index a, Index b) const noexcept {
        return axis == kHorizontal ? mRects[a].bottom == mRects[b].bottom
                                   : mRects[a].right == mRects[b].right;
    }

    // Where two can be merged, the first one's place is marked for the next sweep.
    template <Axis axis>
    void Mark(Index a, Index b) noexcept {
        mMarked[axis].AddIf(Agree<axis>(a, b), std::min(mPlaces[a], mPlaces[b]));
    }
    // For the first time, while places go by the numbers.
    template <Axis axis>
    void LinkFirst(bool yes, Index a, Index b) noexcept {
        mLinks[b].mPrevious[axis] = Choose(yes, a, mNone);
        mLinks[Choose(yes, a, mNone)].mNext[axis] = b; // nobody asks what follows none
        mMarked[axis].AddIf(yes & Agree<axis>(a, b), std::min(a, b) + 1);
    }
    template <Axis axis>
    void MarkBoth(Index index) noexcept {
        Mark<axis>(mLinks[index].mPrevious[axis], index);
        Mark<axis>(index, mLinks[index].mNext[axis]);
    }

    // By rows a right neighbour can only be the next one, and one below only the next that has the
    // same left edge: between the two corners there is the edge that they share.
    void LinkAll(const Cmn_UnjoinedRects& unjoined) {
        if (unjoined.mHead + unjoined.mNext == mCount)
            Cmn_MergeRows(mRects, unjoined.mHead, mCount, mOrder);
        else
            Cmn_OrderRows(mRects, mCount, mOrder, reinterpret_cast<std::uint64_t*>(mLinks));
        LatestByLeft latest(mSlots, mCount);
        Index last = mOrder[0];
        for (std::size_t i = 0; i < mCount; ++i) {
            const Index index = mOrder[i];
            const Index upper = latest.Replace(mRects, index);
            const Rect& rect = mRects[index];
            mLinks[index].mNext[kHorizontal] = mLinks[index].mNext[kVertical] = mNone;
            LinkFirst<kHorizontal>(
                (mRects[last].right == rect.left) & (mRects[last].top == rect.top), last, index);
            LinkFirst<kVertical>(mRects[upper].bottom == rect.top, upper, index);
            last = index;
        }
    }

    // Only what comes behind the head; the others when it comes to merging them.
    void LinkTail() noexcept {
        std::fill(mLinks, mLinks + mCount, Links{{mNone, mNone}, {mNone, mNone}});
        for (Index i = static_cast<Index>(mHead); i < mNone; ++i) {
            FindLinks(i);
            MarkBoth<kHorizontal>(i);
            MarkBoth<kVertical>(i);
        }
    }
    void FindLinks(Index index) noexcept {
        if (mLinked.Has(index))
            return;
        mLinked.Add(index);
        const Cmn_RectScan::TouchProbe probe(mRects[index]);
        Cmn_RectScan::ForEachHit(probe, mRects, 0, mCount, [&](std::size_t i) {
            if (IsThere(static_cast<Index>(i)))
                LinkTouching(index, static_cast<Index>(i));
        });
    }
    void LinkTouching(Index a, Index b) noexcept {
        const Rect& rect = mRects[a];
        const Rect& other = mRects[b];
        if (other.top == rect.top) {
            if (rect.right == other.left)
                Link<kHorizontal>(a, b);
            else if (other.right == rect.left)
                Link<kHorizontal>(b, a);
        } else if (other.left == rect.left) {
            if (rect.bottom == other.top)
                Link<kVertical>(a, b);
            else if (other.bottom == rect.top)
                Link<kVertical>(b, a);
        }
    }

    // Sweeping

    // Returns whether anything has been merged.
    bool Cycle() noexcept {
        const Index start = mEnd;
        Sweep<kHorizontal>();
        MarkMerged<kVertical>(start);
        const Index middle = mEnd;
        Sweep<kVertical>();
        MarkMerged<kHorizontal>(middle);
        return mEnd > start;
    }

    template <Axis axis>
    void Sweep() noexcept {
        Numbers& marked = mMarked[axis];
        std::size_t place = 1;
        while ((place = marked.NextOfBoth(mThere, place, mEnd)) < mEnd) {
            marked.Remove(place);
            // Deliberate: what moved up into the place of the merged one is passed over.
            if (MergeAt<axis>(static_cast<Index>(place)))
                place = mThere.Next(place, mEnd);
            ++place;
        }
    }

    // With the first of the at most two neighbours that stand after it in the list.
    template <Axis axis>
    bool MergeAt(Index place) noexcept {
        const Index index = mAt[place];
        const Index next = mLinks[index].mNext[axis];
        const Index previous = mLinks[index].mPrevious[axis];
        const Index nextPlace = LaterPlace<axis>(index, place, next);
        const Index previousPlace = LaterPlace<axis>(index, place, previous);
        if (nextPlace == previousPlace) // neither
            return false;
        const bool isNext = nextPlace < previousPlace;
        mThere.Remove(place);
        mThere.Remove(std::min(nextPlace, previousPlace));
        if (isNext)
            Merge<axis>(index, next);
        else
            Merge<axis>(previous, index);
        return true;
    }
    // Where a neighbour stands that shares the whole edge and comes later, else the end.
    template <Axis axis>
    [[nodiscard]] Index LaterPlace(Index index, Index place, Index other) const noexcept {
        return Choose((mPlaces[other] > place) & Agree<axis>(index, other), mPlaces[other], mEnd);
    }

    // Two neighbours, which have left their places, become one at the end.
    template <Axis axis>
    void Merge(Index first, Index second) noexcept {
        if constexpr (isLazy) {
            FindLinks(first);
            FindLinks(second);
        }
        if constexpr (axis == kHorizontal)
            mRects[first].right = mRects[second].right;
        else
            mRects[first].bottom = mRects[second].bottom;
        const Index before = mLinks[first].mPrevious[axis];
        const Index after = mLinks[second].mNext[axis];
        Link<axis>(first, after);
        mPlaces[second] = kGone;
        mPlaces[first] = mEnd;
        mAt[mEnd] = first;
        mThere.Add(mEnd++);
        // Its neighbours stand before it in the list.
        mMarked[axis].AddIf(Agree<axis>(before, first), mPlaces[before]);
        mMarked[axis].AddIf(Agree<axis>(first, after), mPlaces[after]);
    }

    // What the last sweep has merged may have come to agree with its neighbours along the other
    // axis.
    template <Axis axis>
    void MarkMerged(Index from) noexcept {
        std::size_t place = from;
        for (; (place = mThere.Next(place, mEnd)) < mEnd; ++place)
            MarkBoth<axis>(mAt[place]);
    }

    // The end

    [[nodiscard]] bool IsThere(Index index) const noexcept { return mPlaces[index] != kGone; }

    // A rectangle's top left corner has stayed, and with it the order. What is gone is written too,
    // and then over.
    void CopyInOrder(Rect* to, const Rect* end) const noexcept {
        for (const Index* index = mOrder; to < end; ++index) {
            *to = mRects[*index];
            to += IsThere(*index) ? 1 : 0;
        }
    }
    void SortTail(Rect* sorted) const noexcept {
        std::size_t count = 0;
        Index i = 0;
        for (; i < mHead; ++i) {
            if (IsThere(i))
                sorted[count++] = mRects[i];
        }
        for (; i < mNone; ++i) {
            if (IsThere(i))
                Cmn_InsertSorted(sorted, count++, mRects[i]);
        }
    }

    std::size_t mHead;
    std::size_t mCount;
    Index mNone;        // links where there is no neighbour: a rectangle that is gone
    Index mEnd;         // of the places
    Rect* mRects;       // not owned, nor what follows
    Links* mLinks;      // by rectangle
    Index* mPlaces;     // by rectangle, from 1 on
    Index* mAt;         // by place
    Index* mOrder;      // all by rows
    Index* mSlots;      // for finding what lies below
    Numbers mThere;     // the places where a rectangle stands
    Numbers mMarked[2]; // by axis the places that have something to merge with after them
    Numbers mLinked;    // the rectangles whose links are all known; only when that comes late
};

// That few are compared with all rectangles sooner than all are sorted.
constexpr std::size_t kLazyTail = 20;

void JoinDisjoint(Cmn_UnjoinedRects& unjoined, Cmn_RectList& out) {
    Memory memory;
    if (unjoined.mRects.size() - unjoined.mHead <= kLazyTail)
        Joiner</*isLazy*/ true>(unjoined, memory).Run(unjoined, out);
    else
        Joiner</*isLazy*/ false>(unjoined, memory).Run(unjoined, out);
}

// Whether b begins where a ends, over the whole edge.
template <Axis axis>
bool Follows(const Rect& a, const Rect& b) noexcept {
    if constexpr (axis == kHorizontal)
        return a.right == b.left && a.top == b.top && a.bottom == b.bottom;
    else
        return a.bottom == b.top && a.left == b.left && a.right == b.right;
}

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

} // namespace

void Cmn_JoinRects(Cmn_UnjoinedRects& unjoined, Cmn_RectList& out) {
    Rects& rects = unjoined.mRects;
    if (!unjoined.mDisjoint) {
        JoinOverlapping(rects);
        Cmn_SortRects(rects.data(), rects.size(), 0, out);
    } else if (unjoined.mHead == rects.size()) {
        out.Assign(rects.data(), rects.size());
    } else if (rects.size() <= Cmn_FewRects::kMost) {
        JoinFew(unjoined, out);
    } else {
        JoinDisjoint(unjoined, out);
    }
}
