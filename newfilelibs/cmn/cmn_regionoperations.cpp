#include "newfilelibs/cmn/cmn_regionoperations.h"

#include "newfilelibs/cmn/cmn_rectindex.h"

namespace {

using Rect = Cmn_Rect<int>;

Rect CommonPart(const Rect& a, const Rect& b) noexcept {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

// Rectangles that wait, first in, first out, each with the place in the other list from where on it
// may overlap something: pieces of a rectangle need not be held against what the whole one missed.
class Queue {
  public:
    struct Entry {
        Rect mRect;
        std::uint32_t mFrom;
    };
    void Append(const Rect& rect, std::size_t from) {
        mEntries.Append({rect, static_cast<std::uint32_t>(from)});
    }
    [[nodiscard]] bool IsEmpty() const noexcept { return mTaken == mEntries.size(); }
    [[nodiscard]] Entry Take() noexcept { return mEntries[mTaken++]; }
    /// All that wait, for a change of where they are held against.
    [[nodiscard]] Entry* begin() noexcept { return mEntries.data() + mTaken; }
    [[nodiscard]] Entry* end() noexcept { return mEntries.end(); }

  private:
    Cmn_Scratch<Entry, 32> mEntries;
    std::size_t mTaken = 0;
};

// Copies the rectangles that do not overlap the probe; the others go to the queue.
void SplitByOne(const Cmn_RectOperand& list, const Rect& probe, Cmn_UnjoinedRects& out,
                Queue& queue) {
    const Cmn_RectIndexView view{list.mRects, list.mCount};
    std::size_t start = 0;
    while (start < list.mCount) {
        const std::size_t found = view.FindFirst(probe, start);
        out.mRects.Append(list.mRects + start, found - start);
        if (found < list.mCount)
            queue.Append(list.mRects[found], 0);
        start = found + 1;
    }
}

constexpr std::uint32_t kUntouched = 0xFFFFFFFFU;

// The same against many; `touched` is given the place of each of them among those that something
// overlaps, or kUntouched.
void SplitByMany(const Cmn_RectOperand& list, const Cmn_RectIndexView& others,
                 Cmn_UnjoinedRects& out, Queue& queue, std::uint32_t* touched) {
    std::fill(touched, touched + others.mCount, kUntouched);
    for (std::size_t i = 0; i < list.mCount; ++i) {
        const Rect& rect = list.mRects[i];
        const std::size_t first = others.FindFirst(rect, 0);
        if (first == others.mCount) {
            out.mRects.Append(rect);
            continue;
        }
        queue.Append(rect, first);
        for (std::size_t j = first; j < others.mCount; j = others.FindFirst(rect, j + 1))
            touched[j] = 0;
    }
    std::uint32_t place = 0;
    for (std::size_t j = 0; j < others.mCount; ++j) {
        if (touched[j] != kUntouched)
            touched[j] = place++;
    }
    for (Queue::Entry& entry : queue)
        entry.mFrom = touched[entry.mFrom];
}

// Cuts the larger list's waiting rectangles and the smaller's against each other.
void CutBoth(Queue& larger, Cmn_PendingRects& smaller, Cmn_UnjoinedRects& out) {
    Rect pieces[4];
    while (!larger.IsEmpty()) {
        const Queue::Entry entry = larger.Take();
        const std::size_t found = smaller.FindFirst(entry.mRect, entry.mFrom);
        if (found == smaller.size()) {
            out.mRects.Append(entry.mRect);
            continue;
        }
        const Rect other = smaller[found];
        const Rect common = CommonPart(entry.mRect, other);
        out.mRects.Append(common);
        for (int i = 0, count = entry.mRect.Cut(common, pieces); i < count; ++i)
            larger.Append(pieces[i], found + 1);
        smaller.Remove(found);
        for (int i = 0, count = other.Cut(common, pieces); i < count; ++i)
            smaller.Append(pieces[i]);
    }
    for (std::size_t i = 0; i < smaller.size(); ++i) {
        if (!smaller.IsRemoved(i))
            out.mRects.Append(smaller[i]);
    }
}

} // namespace

void Cmn_UniteRects(const Cmn_RectOperand& larger, const Cmn_RectOperand& smaller,
                    Cmn_UnjoinedRects& out) {
    out.mDisjoint = larger.mDisjoint && smaller.mDisjoint;
    Queue queue;
    Cmn_PendingRects pending;
    std::size_t head = 0;
    if (smaller.mCount == 1) {
        SplitByOne(larger, smaller.mRects[0], out, queue);
        head = out.mRects.size();
        if (queue.IsEmpty())
            out.mRects.Append(smaller.mRects[0]);
        else
            pending.Append(smaller.mRects[0]);
    } else {
        Cmn_Scratch<std::uint32_t, 64> touched;
        touched.Resize(smaller.mCount);
        const Cmn_RectIndex index(smaller.mRects, smaller.mCount);
        SplitByMany(larger, index.View(), out, queue, touched.data());
        head = out.mRects.size();
        for (std::size_t i = 0; i < smaller.mCount; ++i) {
            if (touched[i] == kUntouched)
                out.mRects.Append(smaller.mRects[i]);
            else
                pending.Append(smaller.mRects[i]);
        }
    }
    if (larger.mJoined) {
        out.mHead = head;
        out.mNext = smaller.mJoined ? out.mRects.size() - head : 0;
    }
    CutBoth(queue, pending, out);
}

void Cmn_IntersectRects(const Cmn_RectOperand& list, const Cmn_RectOperand& other,
                        Cmn_UnjoinedRects& out) {
    out.mDisjoint = list.mDisjoint && other.mDisjoint;
    if (other.mCount == 1) {
        const Cmn_RectIndexView view{list.mRects, list.mCount};
        const Rect& clip = other.mRects[0];
        for (std::size_t i = 0; (i = view.FindFirst(clip, i)) < list.mCount; ++i)
            out.mRects.Append(CommonPart(list.mRects[i], clip));
        return;
    }
    const Cmn_RectIndex index(other.mRects, other.mCount);
    for (std::size_t i = 0; i < list.mCount; ++i) {
        const Rect& rect = list.mRects[i];
        for (std::size_t j = 0; (j = index.View().FindFirst(rect, j)) < other.mCount; ++j)
            out.mRects.Append(CommonPart(rect, other.mRects[j]));
    }
}

void Cmn_SubtractRects(const Cmn_RectOperand& list, const Cmn_RectOperand& cutters,
                       Cmn_UnjoinedRects& out) {
    out.mDisjoint = list.mDisjoint;
    Queue queue;
    const Cmn_RectIndex index(cutters.mRects, cutters.mCount);
    if (cutters.mCount == 1) {
        SplitByOne(list, cutters.mRects[0], out, queue);
    } else {
        for (std::size_t i = 0; i < list.mCount; ++i) {
            const std::size_t first = index.View().FindFirst(list.mRects[i], 0);
            if (first == cutters.mCount)
                out.mRects.Append(list.mRects[i]);
            else
                queue.Append(list.mRects[i], first);
        }
    }
    out.mHead = list.mJoined ? out.mRects.size() : 0;
    Rect pieces[4];
    while (!queue.IsEmpty()) {
        const Queue::Entry entry = queue.Take();
        const std::size_t found = index.View().FindFirst(entry.mRect, entry.mFrom);
        if (found == cutters.mCount) {
            out.mRects.Append(entry.mRect);
            continue;
        }
        for (int i = 0, count = entry.mRect.Cut(cutters.mRects[found], pieces); i < count; ++i)
            queue.Append(pieces[i], found + 1);
    }
}
