#include "newfilelibs/cmn/cmn_regionoperations.h"

#include "newfilelibs/cmn/cmn_rectsweep.h"

namespace {

using Rect = Cmn_Rect<int>;

Rect CommonPart(const Rect& a, const Rect& b) noexcept {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

// For rectangles of positive size.
bool Overlap(const Rect& a, const Rect& b) noexcept {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

// A rectangle that waits to be cut, and which rectangles of the other list it or its pieces may
// overlap: a span of the list of overlaps that was made before cutting began.
struct Waiting {
    Rect mRect;
    std::uint32_t mFirst;
    std::uint32_t mEnd;
};

// First in, first out.
class Queue {
  public:
    void Append(const Waiting& waiting) { mWaiting.Append(waiting); }
    [[nodiscard]] Waiting& GetLast() noexcept { return mWaiting[mWaiting.size() - 1]; }
    [[nodiscard]] bool IsEmpty() const noexcept { return mTaken == mWaiting.size(); }
    [[nodiscard]] Waiting Take() noexcept { return mWaiting[mTaken++]; }

  private:
    Cmn_Scratch<Waiting, 48> mWaiting;
    std::size_t mTaken = 0;
};

using Overlaps = Cmn_Scratch<std::uint32_t, 64>;

// Calls found(i, j) when the list's rectangle i overlaps the other list's j, by i and then by j.
template <class Found>
void ForEachOverlap(const Cmn_RectOperand& list, const Cmn_RectOperand& others, Found found) {
    if (others.mCount == 1) {
        list.View().ForEach(others.mRects[0], [&](std::size_t i) { found(i, std::size_t{0}); });
        return;
    }
    // Getting the others ready for a sweep costs about as much as looking through them three times.
    if (list.mCount <= 3 || others.mCount <= Cmn_RectSweep::kBlock) {
        const Cmn_RectIndexView view = others.View();
        list.View().ForEach(others.mBounds, [&](std::size_t i) {
            view.ForEach(list.mRects[i], [&](std::size_t j) { found(i, j); });
        });
        return;
    }
    Cmn_RectSweep sweep(others.mRects, others.mCount, list.mBounds | others.mBounds);
    list.View().ForEach(others.mBounds, [&](std::size_t i) {
        sweep.ForEach(list.mRects[i], [&](std::size_t j) { found(i, j); });
    });
}

// Copies the rectangles that overlap none of the others, up to the last one that does; those that
// do wait, with their overlaps listed. Answers the index from which on all are left alone.
std::size_t Split(const Cmn_RectOperand& list, const Cmn_RectOperand& others,
                  Cmn_UnjoinedRects& out, Queue& queue, Overlaps& overlaps) {
    std::size_t rest = 0;
    ForEachOverlap(list, others, [&](std::size_t i, std::size_t j) {
        if (i >= rest) { // the first one that it overlaps
            out.mRects.Append(list.mRects + rest, i - rest);
            queue.Append({list.mRects[i], static_cast<std::uint32_t>(overlaps.size()), 0});
            rest = i + 1;
        }
        overlaps.Append(static_cast<std::uint32_t>(j));
        queue.GetLast().mEnd = static_cast<std::uint32_t>(overlaps.size());
    });
    return rest;
}

// The smaller list of a union while it is cut. A rectangle that is cut leaves the list and its
// pieces are appended, so the list's order is that of the numbers here; pieces lie inside what they
// were cut from, so a search can follow the cuts down from the rectangles of the beginning.
class CutList {
  public:
    CutList(const Cmn_RectOperand& operand, const Overlaps& overlaps)
        : mOverlaps(overlaps), mOriginals(static_cast<std::uint32_t>(operand.mCount)),
          mSorted(operand.mJoined) {
        mNodes.Resize(operand.mCount);
        for (std::size_t i = 0; i < operand.mCount; ++i)
            mNodes[i] = {operand.mRects[i], kUncut, false};
        for (std::size_t i = 0; i < overlaps.size(); ++i)
            mNodes[overlaps[i]].mIsOverlapped = true;
    }

    static constexpr std::uint32_t kNone = 0xFFFFFFFFU;

    /// The first rectangle in the list that overlaps the waiting one, or kNone. Narrows the span to
    /// what its pieces may overlap.
    [[nodiscard]] std::uint32_t FindFirst(Waiting& waiting) const noexcept {
        // Rectangles of the beginning stand before all pieces.
        std::uint32_t firstCut = waiting.mEnd;
        std::uint32_t i = waiting.mFirst;
        for (; i < waiting.mEnd; ++i) {
            const Node& node = mNodes[mOverlaps[i]];
            if (mSorted && node.mRect.top >= waiting.mRect.bottom)
                break;
            if (!Overlap(node.mRect, waiting.mRect))
                continue;
            firstCut = std::min(firstCut, i);
            if (node.mPieces == kUncut) {
                waiting.mFirst = firstCut;
                return mOverlaps[i];
            }
        }
        waiting.mFirst = firstCut;
        waiting.mEnd = i;
        std::uint32_t first = kNone;
        for (i = firstCut; i < waiting.mEnd; ++i) {
            const Node& node = mNodes[mOverlaps[i]];
            if (Overlap(node.mRect, waiting.mRect))
                FindFirstPiece(node, waiting.mRect, first);
        }
        return first;
    }

    [[nodiscard]] const Rect& operator[](std::uint32_t number) const noexcept {
        return mNodes[number].mRect;
    }

    /// Replaces a rectangle by its pieces without the part that lies in it.
    void Cut(std::uint32_t number, const Rect& part) {
        Rect pieces[4];
        const int count = mNodes[number].mRect.Cut(part, pieces);
        mNodes[number].mPieces =
            static_cast<std::uint32_t>(mNodes.size()) << 3 | static_cast<std::uint32_t>(count);
        for (int i = 0; i < count; ++i)
            mNodes.Append({pieces[i], kUncut, true});
    }

    void AppendUntouched(Cmn_UnjoinedRects& out) const {
        for (std::uint32_t i = 0; i < mOriginals; ++i) {
            if (!mNodes[i].mIsOverlapped)
                out.mRects.Append(mNodes[i].mRect);
        }
    }
    void AppendRest(Cmn_UnjoinedRects& out) const {
        for (std::size_t i = 0; i < mNodes.size(); ++i) {
            if (mNodes[i].mIsOverlapped && mNodes[i].mPieces == kUncut)
                out.mRects.Append(mNodes[i].mRect);
        }
    }

  private:
    static constexpr std::uint32_t kUncut = 0xFFFFFFFFU;

    struct Node {
        Rect mRect;
        std::uint32_t mPieces; // the first piece's number << 3 | their count; or kUncut
        bool mIsOverlapped;    // or a piece of one that was
    };

    void FindFirstPiece(const Node& node, const Rect& probe, std::uint32_t& first) const noexcept {
        const std::uint32_t start = node.mPieces >> 3;
        const std::uint32_t end = start + (node.mPieces & 7);
        for (std::uint32_t i = start; i < end && i < first; ++i) {
            if (!Overlap(mNodes[i].mRect, probe))
                continue;
            if (mNodes[i].mPieces == kUncut)
                first = i;
            else
                FindFirstPiece(mNodes[i], probe, first);
        }
    }

    const Overlaps& mOverlaps;
    Cmn_Scratch<Node, 64> mNodes;
    std::uint32_t mOriginals;
    bool mSorted;
};

// Cuts the larger list's waiting rectangles and the smaller's against each other.
void CutBoth(Queue& queue, CutList& smaller, Cmn_UnjoinedRects& out) {
    Rect pieces[4];
    while (!queue.IsEmpty()) {
        Waiting waiting = queue.Take();
        const std::uint32_t found = smaller.FindFirst(waiting);
        if (found == CutList::kNone) {
            out.mRects.Append(waiting.mRect);
            continue;
        }
        const Rect common = CommonPart(waiting.mRect, smaller[found]);
        out.mRects.Append(common);
        for (int i = 0, count = waiting.mRect.Cut(common, pieces); i < count; ++i)
            queue.Append({pieces[i], waiting.mFirst, waiting.mEnd});
        smaller.Cut(found, common);
    }
}

} // namespace

void Cmn_UniteRects(const Cmn_RectOperand& larger, const Cmn_RectOperand& smaller,
                    Cmn_UnjoinedRects& out) {
    out.mDisjoint = larger.mDisjoint && smaller.mDisjoint;
    Queue queue;
    Overlaps overlaps;
    const std::size_t rest = Split(larger, smaller, out, queue, overlaps);
    out.mRects.Append(larger.mRects + rest, larger.mCount - rest);
    out.mHead = larger.mJoined ? out.mRects.size() : 0;
    if (queue.IsEmpty()) {
        out.mRects.Append(smaller.mRects, smaller.mCount);
        out.mNext = larger.mJoined && smaller.mJoined ? smaller.mCount : 0;
        return;
    }
    CutList cutList(smaller, overlaps);
    const std::size_t untouched = out.mRects.size();
    cutList.AppendUntouched(out);
    out.mNext = larger.mJoined && smaller.mJoined ? out.mRects.size() - untouched : 0;
    CutBoth(queue, cutList, out);
    cutList.AppendRest(out);
}

void Cmn_IntersectRects(const Cmn_RectOperand& list, const Cmn_RectOperand& other,
                        Cmn_UnjoinedRects& out) {
    out.mDisjoint = list.mDisjoint && other.mDisjoint;
    ForEachOverlap(list, other, [&](std::size_t i, std::size_t j) {
        out.mRects.Append(CommonPart(list.mRects[i], other.mRects[j]));
    });
}

bool Cmn_SubtractRects(const Cmn_RectOperand& list, const Cmn_RectOperand& cutters,
                       Cmn_UnjoinedRects& out) {
    out.mDisjoint = list.mDisjoint;
    Queue queue;
    Overlaps overlaps;
    const std::size_t rest = Split(list, cutters, out, queue, overlaps);
    if (rest == 0 && list.mJoined)
        return false;
    out.mRects.Append(list.mRects + rest, list.mCount - rest);
    out.mHead = list.mJoined ? out.mRects.size() : 0;
    Rect pieces[4];
    while (!queue.IsEmpty()) {
        Waiting waiting = queue.Take();
        while (waiting.mFirst < waiting.mEnd &&
               !Overlap(waiting.mRect, cutters.mRects[overlaps[waiting.mFirst]]))
            ++waiting.mFirst;
        if (waiting.mFirst == waiting.mEnd) {
            out.mRects.Append(waiting.mRect);
            continue;
        }
        const Rect& cutter = cutters.mRects[overlaps[waiting.mFirst]];
        for (int i = 0, count = waiting.mRect.Cut(cutter, pieces); i < count; ++i)
            queue.Append({pieces[i], waiting.mFirst + 1, waiting.mEnd});
    }
    return true;
}
