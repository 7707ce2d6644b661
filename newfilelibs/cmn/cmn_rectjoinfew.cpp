#include "newfilelibs/cmn/cmn_rectjoinfew.h"

#include "newfilelibs/cmn/cmn_rectsort.h"

namespace {

// Rows of the edges, by axis: where rectangles begin and end along it and across it.
struct Edges {
    int mBegin;
    int mEnd;
    int mSideBegin;
    int mSideEnd;
};
constexpr Edges EdgesAlong(int axis) noexcept { return {axis, axis + 2, 1 - axis, 3 - axis}; }

// Four numbers, and four truths about them.
#if defined(__SSE2__)

using Four = __m128i;
Four Load(const int* four) noexcept {
    return _mm_load_si128(reinterpret_cast<const __m128i*>(four));
}
Four Repeat(int value) noexcept { return _mm_set1_epi32(value); }
Four Equal(Four a, Four b) noexcept { return _mm_cmpeq_epi32(a, b); }
Four Either(Four a, Four b) noexcept { return _mm_or_si128(a, b); }
Four Both(Four a, Four b) noexcept { return _mm_and_si128(a, b); }
unsigned Bits(Four truths) noexcept {
    return static_cast<unsigned>(_mm_movemask_ps(_mm_castsi128_ps(truths)));
}

#else

struct Four {
    int mValues[4];
};
template <class Operation>
Four ForEach(const Four& a, const Four& b, Operation operation) noexcept {
    Four result;
    for (int i = 0; i < 4; ++i)
        result.mValues[i] = operation(a.mValues[i], b.mValues[i]);
    return result;
}
Four Load(const int* four) noexcept { return {{four[0], four[1], four[2], four[3]}}; }
Four Repeat(int value) noexcept { return {{value, value, value, value}}; }
Four Equal(const Four& a, const Four& b) noexcept {
    return ForEach(a, b, [](int x, int y) { return x == y ? 1 : 0; });
}
Four Either(const Four& a, const Four& b) noexcept {
    return ForEach(a, b, [](int x, int y) { return x | y; });
}
Four Both(const Four& a, const Four& b) noexcept {
    return ForEach(a, b, [](int x, int y) { return x & y; });
}
unsigned Bits(const Four& truths) noexcept {
    unsigned bits = 0;
    for (int i = 0; i < 4; ++i)
        bits |= static_cast<unsigned>(truths.mValues[i]) << i;
    return bits;
}

#endif

// One rectangle's edges, to be compared with four rectangles at a time.
struct EdgeProbe {
    Four mLeft;
    Four mTop;
    Four mRight;
    Four mBottom;

    explicit EdgeProbe(const Cmn_Rect<int>& rect) noexcept
        : mLeft(Repeat(rect.left)), mTop(Repeat(rect.top)), mRight(Repeat(rect.right)),
          mBottom(Repeat(rect.bottom)) {}

    /// Beside it and as high.
    [[nodiscard]] unsigned BesideIt(Four left, Four top, Four right, Four bottom) const noexcept {
        return Bits(Both(Either(Equal(left, mRight), Equal(right, mLeft)),
                         Both(Equal(top, mTop), Equal(bottom, mBottom))));
    }
    /// Above or below it and as wide.
    [[nodiscard]] unsigned InLineWithIt(Four left, Four top, Four right,
                                        Four bottom) const noexcept {
        return Bits(Both(Either(Equal(top, mBottom), Equal(bottom, mTop)),
                         Both(Equal(left, mLeft), Equal(right, mRight))));
    }
};

} // namespace

// Among the numbers below `end`, those that are gone included. The last four may reach into what
// has not been written yet; it is left out in the end.
template <Cmn_FewRects::Axis axis>
Cmn_FewRects::Set Cmn_FewRects::FindNeighbours(std::size_t number, std::size_t end) const noexcept {
    const EdgeProbe probe(Get(number));
    Set found = 0;
    for (std::size_t i = 0; i < end; i += 4) {
        const Four left = Load(mEdges[0] + i);
        const Four top = Load(mEdges[1] + i);
        const Four right = Load(mEdges[2] + i);
        const Four bottom = Load(mEdges[3] + i);
        const unsigned bits = axis == kHorizontal ? probe.BesideIt(left, top, right, bottom)
                                                  : probe.InLineWithIt(left, top, right, bottom);
        found |= Set{bits} << i;
    }
    return found & Below(end);
}

template <Cmn_FewRects::Axis axis>
void Cmn_FewRects::Link(std::size_t number, Set neighbours) noexcept {
    mNeighbours[axis][number] = neighbours;
    if (neighbours == 0)
        return;
    mLinked[axis] |= neighbours | Bit(number);
    for (; neighbours != 0; neighbours &= neighbours - 1)
        mNeighbours[axis][First(neighbours)] |= Bit(number);
}

// FindNeighbours for both axes at a time; links what is found.
void Cmn_FewRects::LinkBoth(std::size_t number, std::size_t end) noexcept {
    const EdgeProbe probe(Get(number));
    Set beside = 0;
    Set inLine = 0;
    for (std::size_t i = 0; i < end; i += 4) {
        const Four left = Load(mEdges[0] + i);
        const Four top = Load(mEdges[1] + i);
        const Four right = Load(mEdges[2] + i);
        const Four bottom = Load(mEdges[3] + i);
        beside |= Set{probe.BesideIt(left, top, right, bottom)} << i;
        inLine |= Set{probe.InLineWithIt(left, top, right, bottom)} << i;
    }
    Link<kHorizontal>(number, beside & Below(end));
    Link<kVertical>(number, inLine & Below(end));
}

void Cmn_FewRects::Join(std::size_t head, std::size_t next) noexcept {
    mThere = Below(mCount);
    for (std::size_t i = 0; i < head; ++i) {
        mNeighbours[kHorizontal][i] = 0;
        mNeighbours[kVertical][i] = 0;
    }
    for (std::size_t i = head; i < mCount; ++i)
        LinkBoth(i, i < head + next ? head : i);
    bool any = (mLinked[kHorizontal] | mLinked[kVertical]) != 0;
    while (any) {
        std::size_t end = mCount;
        any = Sweep<kHorizontal>();
        LinkMerged<kVertical>(end);
        end = mCount;
        any = Sweep<kVertical>() || any;
        LinkMerged<kHorizontal>(end);
    }
}

template <Cmn_FewRects::Axis axis>
bool Cmn_FewRects::Sweep() noexcept {
    bool any = false;
    Set ahead = ~Set{0};
    while (const Set linked = mLinked[axis] & mThere & ahead) {
        const std::size_t i = First(linked);
        ahead = Above(i);
        const Set later = mNeighbours[axis][i] & mThere & ahead;
        if (later == 0)
            continue;
        Merge<axis>(i, First(later));
        any = true;
        // Deliberate: what moved up into the place of the merged one is passed over.
        ahead = Above(First(mThere & ahead));
    }
    return any;
}

// Replaces two neighbours by one rectangle at the end, which has what neighbours they had at their
// other ends. Those across the axis are found when the sweep is over.
template <Cmn_FewRects::Axis axis>
void Cmn_FewRects::Merge(std::size_t a, std::size_t b) noexcept {
    constexpr Edges edges = EdgesAlong(axis);
    const std::size_t merged = mCount++;
    mEdges[edges.mBegin][merged] = std::min(mEdges[edges.mBegin][a], mEdges[edges.mBegin][b]);
    mEdges[edges.mEnd][merged] = std::max(mEdges[edges.mEnd][a], mEdges[edges.mEnd][b]);
    mEdges[edges.mSideBegin][merged] = mEdges[edges.mSideBegin][a];
    mEdges[edges.mSideEnd][merged] = mEdges[edges.mSideEnd][a];
    mThere &= ~(Bit(a) | Bit(b));
    Link<axis>(merged, (mNeighbours[axis][a] | mNeighbours[axis][b]) & mThere);
    mThere |= Bit(merged);
}

// Finds the neighbours along an axis of what the last sweep, along the other one, has merged.
template <Cmn_FewRects::Axis axis>
void Cmn_FewRects::LinkMerged(std::size_t from) noexcept {
    for (Set left = mThere & ~Below(from); left != 0; left &= left - 1) {
        const std::size_t i = First(left);
        Link<axis>(i, FindNeighbours<axis>(i, i) & mThere);
    }
}

void Cmn_FewRects::MoveTo(Cmn_RectList& out, std::size_t head) const {
    out.ResizeForOverwrite(static_cast<std::size_t>(std::popcount(mThere)));
    Cmn_Rect<int>* const sorted = out.Edit();
    std::size_t count = 0;
    Set left = mThere;
    for (; (left & Below(head)) != 0; left &= left - 1)
        sorted[count++] = Get(First(left));
    for (; left != 0; left &= left - 1)
        Cmn_InsertSorted(sorted, count++, Get(First(left)));
}
