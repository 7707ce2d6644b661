#include "newfilelibs/cmn/cmn_regionoperations.h"

#include "newfilelibs/cmn/cmn_rectindex.h"
#include "newfilelibs/cmn/cmn_rectsort.h"

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
    [[nodiscard]] bool IsEmpty() const noexcept { return mTaken == mWaiting.size(); }
    [[nodiscard]] Waiting Take() noexcept { return mWaiting[mTaken++]; }

  private:
    Cmn_Scratch<Waiting, 48> mWaiting;
    std::size_t mTaken = 0;
};

using Overlaps = Cmn_Scratch<std::uint32_t, 64>;

// Copies the rectangles that overlap none of the others; the rest waits, with its overlaps listed.
void Split(const Cmn_RectOperand& list, const Cmn_RectOperand& others, Cmn_UnjoinedRects& out,
           Queue& queue, Overlaps& overlaps) {
    const Cmn_RectIndex index(others.View());
    for (std::size_t i = 0; i < list.mCount; ++i) {
        const Rect& rect = list.mRects[i];
        const auto first = static_cast<std::uint32_t>(overlaps.size());
        index.View().ForEach(
            rect, [&](std::size_t other) { overlaps.Append(static_cast<std::uint32_t>(other)); });
        const auto end = static_cast<std::uint32_t>(overlaps.size());
        if (first == end)
            out.mRects.Append(rect);
        else
            queue.Append({rect, first, end});
    }
}

// The same against a single rectangle, whose overlaps need no list.
void SplitByOne(const Cmn_RectOperand& list, const Rect& other, Cmn_UnjoinedRects& out,
                Queue& queue, Overlaps& overlaps) {
    overlaps.Append(0);
    std::size_t start = 0;
    list.View().ForEach(other, [&](std::size_t found) {
        out.mRects.Append(list.mRects + start, found - start);
        queue.Append({list.mRects[found], 0, 1});
        start = found + 1;
    });
    out.mRects.Append(list.mRects + start, list.mCount - start);
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

// Whether the pixels of two rectangles that touch make up a rectangle.
bool MakeRectangle(const Rect& a, const Rect& b) noexcept {
    return a.Contains(b) || b.Contains(a) ||
           (a.top == b.top && a.bottom == b.bottom && a.left <= b.right && b.left <= a.right) ||
           (a.left == b.left && a.right == b.right && a.top <= b.bottom && b.top <= a.bottom);
}

// The rectangle with a margin of one pixel: what overlaps it touches the rectangle, corners
// included.
Rect WithMargin(const Rect& rect) noexcept {
    return {Cmn_SaturatingAdd(rect.left, -1), Cmn_SaturatingAdd(rect.top, -1),
            Cmn_SaturatingAdd(rect.right, 1), Cmn_SaturatingAdd(rect.bottom, 1)};
}

// The edges that two rectangles and all pieces of them can have.
class PieceEdges {
  public:
    PieceEdges(const Rect& a, const Rect& b) noexcept : mA(a), mB(b), mBoth(a | b) {}

    /// Whether a rectangle that overlaps neither could be joined with some piece.
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
    Rect mA;
    Rect mB;
    Rect mBoth;
};

constexpr std::size_t kSeveral = std::numeric_limits<std::size_t>::max();

// The only rectangle that overlaps this one or would be joined with it, the count for none, or
// kSeveral.
std::size_t FindPartner(const Cmn_RectOperand& list, const Rect& rect) noexcept {
    const Cmn_RectScan::OverlapProbe probe(WithMargin(rect));
    std::size_t partner = list.mCount;
    std::size_t i = 0;
    while ((i = Cmn_RectScan::FindFirst(probe, list.mRects, i, list.mCount)) < list.mCount) {
        if (Overlap(list.mRects[i], rect) || MakeRectangle(list.mRects[i], rect)) {
            if (partner != list.mCount)
                return kSeveral;
            partner = i;
        }
        ++i;
    }
    return partner;
}

bool IsAnyJoined(const Cmn_RectOperand& list, std::size_t partner, const Rect& rect) noexcept {
    const PieceEdges edges(list.mRects[partner], rect);
    const Cmn_RectScan::OverlapProbe probe(WithMargin(list.mRects[partner] | rect));
    std::size_t i = 0;
    while ((i = Cmn_RectScan::FindFirst(probe, list.mRects, i, list.mCount)) < list.mCount) {
        if (i != partner && edges.MayJoin(list.mRects[i]))
            return true;
        ++i;
    }
    return false;
}

std::size_t FindPlace(const Cmn_RectOperand& list, const Rect& rect) noexcept {
    const std::uint64_t key = Cmn_RectKey(rect, Cmn_RectOrder::kRows);
    std::size_t place = 0;
    for (std::size_t step = std::bit_floor(list.mCount); step > 0; step /= 2) {
        if (place + step <= list.mCount &&
            Cmn_RectKey(list.mRects[place + step - 1], Cmn_RectOrder::kRows) < key)
            place += step;
    }
    return place;
}

} // namespace

Cmn_QuickUnion Cmn_FindQuickUnion(const Cmn_RectOperand& joined, const Rect& rect) noexcept {
    const std::size_t partner = FindPartner(joined, rect);
    if (partner == joined.mCount)
        return {Cmn_QuickUnion::kInsert, FindPlace(joined, rect), rect};
    if (partner == kSeveral || !MakeRectangle(rect, joined.mRects[partner]) ||
        IsAnyJoined(joined, partner, rect))
        return {Cmn_QuickUnion::kUnknown};
    const Rect& other = joined.mRects[partner];
    const Rect both = rect | other;
    if (both == other)
        return {Cmn_QuickUnion::kNothing};
    return {Cmn_QuickUnion::kReplace, partner, both};
}

void Cmn_UniteRects(const Cmn_RectOperand& larger, const Cmn_RectOperand& smaller,
                    Cmn_UnjoinedRects& out) {
    out.mDisjoint = larger.mDisjoint && smaller.mDisjoint;
    Queue queue;
    Overlaps overlaps;
    if (smaller.mCount == 1)
        SplitByOne(larger, smaller.mRects[0], out, queue, overlaps);
    else
        Split(larger, smaller, out, queue, overlaps);
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
    if (other.mCount == 1) {
        const Rect& clip = other.mRects[0];
        list.View().ForEach(
            clip, [&](std::size_t i) { out.mRects.Append(CommonPart(list.mRects[i], clip)); });
        return;
    }
    const Cmn_RectIndex index(other.View());
    for (std::size_t i = 0; i < list.mCount; ++i) {
        const Rect& rect = list.mRects[i];
        index.View().ForEach(
            rect, [&](std::size_t j) { out.mRects.Append(CommonPart(rect, other.mRects[j])); });
    }
}

void Cmn_SubtractRects(const Cmn_RectOperand& list, const Cmn_RectOperand& cutters,
                       Cmn_UnjoinedRects& out) {
    out.mDisjoint = list.mDisjoint;
    Queue queue;
    Overlaps overlaps;
    if (cutters.mCount == 1)
        SplitByOne(list, cutters.mRects[0], out, queue, overlaps);
    else
        Split(list, cutters, out, queue, overlaps);
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
}
