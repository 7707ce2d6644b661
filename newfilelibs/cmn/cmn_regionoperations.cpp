#include "newfilelibs/cmn/cmn_regionoperations.h"

#include "newfilelibs/cmn/cmn_rectcut.h"
#include "newfilelibs/cmn/cmn_rectoverlaps.h"

namespace {

using Rect = Cmn_Rect<int>;

// For rectangles of positive size. All edges are compared, as which one tells is not to be
// foretold, and a wrong guess of the processor costs more than all four.
bool Overlap(const Rect& a, const Rect& b) noexcept {
    return (a.left < b.right) & (b.left < a.right) & (a.top < b.bottom) & (b.top < a.bottom);
}

// How many pieces one list comes to by its overlaps with another, as a rule; more take a copy of
// those before. Room that is made at once is not given back to the system and taken again at each
// operation, which costs more than the cutting.
std::size_t PiecesFrom(const Cmn_RectOverlaps& overlaps) noexcept {
    return overlaps.mOthers.size() * 2;
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
    /// Makes room for that many in all, those taken included.
    void Reserve(std::size_t count) { mWaiting.Reserve(count); }
    void Append(const Waiting& waiting) { mWaiting.Append(waiting); }
    /// What is left of one without a part of it, with the same overlaps.
    void AppendPieces(const Waiting& waiting, const Rect& part) {
        Rect pieces[4];
        const std::size_t count = Cmn_CutAround(waiting.mRect, part, pieces);
        Waiting* const to = mWaiting.MakeRoom(4);
        for (std::size_t i = 0; i < 4; ++i)
            to[i] = {pieces[i], waiting.mFirst, waiting.mEnd};
        mWaiting.AddWritten(count);
    }
    [[nodiscard]] bool IsEmpty() const noexcept { return mTaken == mWaiting.size(); }
    [[nodiscard]] Waiting Take() noexcept { return mWaiting[mTaken++]; }

  private:
    Cmn_Scratch<Waiting, 48> mWaiting;
    std::size_t mTaken = 0;
};

void FindOverlaps(const Cmn_RectOperand& list, const Cmn_RectOperand& others,
                  Cmn_RectOverlaps& overlaps) {
    Cmn_FindOverlaps(list.View(), list.mBounds, others.View(), others.mBounds, overlaps);
}

// Copies the rectangles that overlap none of the others; those that do wait.
void Split(const Cmn_RectOperand& list, const Cmn_RectOverlaps& overlaps, Cmn_UnjoinedRects& out,
           Queue& queue) {
    queue.Reserve(overlaps.mSpans.size() + PiecesFrom(overlaps));
    std::size_t rest = 0;
    for (const Cmn_RectOverlaps::Span& span : overlaps.mSpans) {
        out.mRects.Append(list.mRects + rest, span.mRect - rest);
        queue.Append({list.mRects[span.mRect], span.mFirst, span.mEnd});
        rest = span.mRect + 1;
    }
    out.mRects.Append(list.mRects + rest, list.mCount - rest);
}

// The smaller list of a union while it is cut. A rectangle that is cut leaves the list and its
// pieces are appended, so the list's order is that of the numbers here; pieces lie inside what they
// were cut from, so a search can follow the cuts down from the rectangles of the beginning.
class CutList {
  public:
    CutList(const Cmn_RectOperand& operand, const Cmn_RectOverlaps& overlaps)
        : mOverlaps(overlaps.mOthers.data()),
          mOriginals(static_cast<std::uint32_t>(operand.mCount)), mSorted(operand.mJoined) {
        mNodes.Reserve(operand.mCount + PiecesFrom(overlaps));
        mNodes.Resize(operand.mCount);
        for (std::size_t i = 0; i < operand.mCount; ++i)
            mNodes[i] = {operand.mRects[i], kUncut, 0};
        for (const std::uint32_t i : overlaps.mOthers) {
            mLeft += 1 - mNodes[i].mIsOverlapped;
            mNodes[i].mIsOverlapped = 1;
        }
    }

    static constexpr std::uint32_t kNone = 0xFFFFFFFFU;

    /// The first rectangle in the list that overlaps the waiting one, or kNone. Narrows the span to
    /// what its pieces may overlap.
    [[nodiscard]] std::uint32_t FindFirst(Waiting& waiting) const noexcept {
        if (mSorted)
            Narrow(waiting);
        // Rectangles of the beginning stand before all pieces.
        std::uint32_t firstCut = waiting.mEnd;
        for (std::uint32_t i = waiting.mFirst; i < waiting.mEnd; ++i) {
            const Node& node = mNodes[mOverlaps[i]];
            const bool isHit = Overlap(node.mRect, waiting.mRect);
            firstCut = std::min(firstCut, isHit ? i : waiting.mEnd);
            if (isHit & (node.mPieces == kUncut)) {
                waiting.mFirst = firstCut;
                return mOverlaps[i];
            }
        }
        waiting.mFirst = firstCut;
        std::uint32_t first = kNone;
        for (std::uint32_t i = firstCut; i < waiting.mEnd; ++i) {
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
        const std::size_t count = Cmn_CutAround(mNodes[number].mRect, part, pieces);
        mNodes[number].mPieces = static_cast<std::uint32_t>(mNodes.size() << 3 | count);
        Node* const to = mNodes.MakeRoom(4);
        for (std::size_t i = 0; i < 4; ++i)
            to[i] = {pieces[i], kUncut, 1};
        mNodes.AddWritten(count);
        mLeft += count - 1;
    }

    void AppendUntouched(Cmn_UnjoinedRects& out) const {
        AppendIf(out, mOriginals - mLeft, [](const Node& node) { return node.mIsOverlapped == 0; });
    }
    void AppendRest(Cmn_UnjoinedRects& out) const {
        AppendIf(out, mLeft, [](const Node& node) {
            return (node.mPieces == kUncut) & (node.mIsOverlapped != 0);
        });
    }

  private:
    static constexpr std::uint32_t kUncut = 0xFFFFFFFFU;

    struct Node {
        Rect mRect;
        std::uint32_t mPieces;       // the first piece's number << 3 | their count; or kUncut
        std::uint32_t mIsOverlapped; // 1 if so, or if a piece of one that was; else 0
    };

    // Cuts what lies below off the span, where that is long enough to be worth it.
    void Narrow(Waiting& waiting) const noexcept {
        constexpr std::uint32_t few = 4;
        while (waiting.mEnd > waiting.mFirst + few &&
               mNodes[mOverlaps[waiting.mEnd - 1]].mRect.top >= waiting.mRect.bottom)
            --waiting.mEnd;
    }

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

    // Appends those nodes, which are known to be that many: all are written, and over if they are
    // none of them.
    template <class IsOne>
    void AppendIf(Cmn_UnjoinedRects& out, std::size_t count, IsOne isOne) const {
        Rect* to = out.mRects.MakeRoom(count);
        const Rect* const end = to + count;
        for (const Node* node = mNodes.data(); to < end; ++node) {
            *to = node->mRect;
            to += isOne(*node) ? 1 : 0;
        }
        out.mRects.AddWritten(count);
    }

    const std::uint32_t* mOverlaps; // not owned
    Cmn_Scratch<Node, 64> mNodes;
    std::uint32_t mOriginals;
    std::size_t mLeft = 0; // overlapped and not cut, and pieces of such
    bool mSorted;
};

// Cuts the larger list's waiting rectangles and the smaller's against each other.
void CutBoth(Queue& queue, CutList& smaller, Cmn_UnjoinedRects& out) {
    while (!queue.IsEmpty()) {
        Waiting waiting = queue.Take();
        const std::uint32_t found = smaller.FindFirst(waiting);
        if (found == CutList::kNone) {
            out.mRects.Append(waiting.mRect);
            continue;
        }
        const Rect common = Cmn_CommonPart(waiting.mRect, smaller[found]);
        out.mRects.Append(common);
        queue.AppendPieces(waiting, common);
        smaller.Cut(found, common);
    }
}

} // namespace

void Cmn_UniteRects(const Cmn_RectOperand& larger, const Cmn_RectOperand& smaller,
                    Cmn_UnjoinedRects& out) {
    out.mDisjoint = larger.mDisjoint && smaller.mDisjoint;
    Cmn_RectOverlaps overlaps;
    FindOverlaps(larger, smaller, overlaps);
    out.mRects.Reserve(larger.mCount + smaller.mCount + overlaps.mOthers.size() * 5 / 2);
    Queue queue;
    Split(larger, overlaps, out, queue);
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
    Cmn_RectOverlaps overlaps;
    FindOverlaps(list, other, overlaps);
    for (const Cmn_RectOverlaps::Span& span : overlaps.mSpans) {
        for (std::uint32_t i = span.mFirst; i < span.mEnd; ++i)
            out.mRects.Append(
                Cmn_CommonPart(list.mRects[span.mRect], other.mRects[overlaps.mOthers[i]]));
    }
}

bool Cmn_SubtractRects(const Cmn_RectOperand& list, const Cmn_RectOperand& cutters,
                       Cmn_UnjoinedRects& out) {
    out.mDisjoint = list.mDisjoint;
    Cmn_RectOverlaps overlaps;
    FindOverlaps(list, cutters, overlaps);
    if (overlaps.mSpans.empty() && list.mJoined)
        return false;
    out.mRects.Reserve(list.mCount + PiecesFrom(overlaps));
    Queue queue;
    Split(list, overlaps, out, queue);
    out.mHead = list.mJoined ? out.mRects.size() : 0;
    while (!queue.IsEmpty()) {
        Waiting waiting = queue.Take();
        while (waiting.mFirst < waiting.mEnd &&
               !Overlap(waiting.mRect, cutters.mRects[overlaps.mOthers[waiting.mFirst]]))
            ++waiting.mFirst;
        if (waiting.mFirst == waiting.mEnd) {
            out.mRects.Append(waiting.mRect);
            continue;
        }
        const Rect& cutter = cutters.mRects[overlaps.mOthers[waiting.mFirst++]];
        queue.AppendPieces(waiting, Cmn_CommonPart(waiting.mRect, cutter));
    }
    return true;
}
