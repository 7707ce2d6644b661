#include "newfilelibs/cmn/cmn_rectlist.h"

#include <cstring>
#include <new>
#include <ostream>

#include "basekit/cmn/cmn_failure.h"
#include "basekit/cmn/cmn_memory.h"
#include "newfilelibs/cmn/cmn_rectindex.h"

namespace {

constexpr std::size_t kLargestCapacity = std::numeric_limits<std::uint32_t>::max() / 2;

Cmn_Rect<int>* AllocateRects(std::size_t count) {
    if (count > kLargestCapacity)
        Cmn_RaiseFailure(kFailure_OutOfMemory);
    return static_cast<Cmn_Rect<int>*>(Cmn_AllocateOrFail(count * sizeof(Cmn_Rect<int>)));
}

// That many rectangles and the boxes that may come behind them.
std::size_t WithBoxes(std::size_t count) noexcept {
    return count < Cmn_RectList::kBoxedFrom ? count : count + Cmn_RectIndexView::BoxCount(count);
}

void CopyRects(Cmn_Rect<int>* to, const Cmn_Rect<int>* from, std::size_t count) noexcept {
    if (count > 0)
        std::memmove(static_cast<void*>(to), from, count * sizeof(Cmn_Rect<int>));
}

} // namespace

void Cmn_RectList::Release() noexcept { ::operator delete(mData); }

void Cmn_RectList::TakeFrom(Cmn_RectList& other) noexcept {
    mSize = other.mSize;
    if (other.IsInline()) {
        mData = InlineData();
        mCapacity = kInlineCapacity;
        CopyRects(mData, other.mData, mSize);
        mHasBoxes = false;
    } else {
        mData = other.mData;
        mCapacity = other.mCapacity;
        mHasBoxes = other.mHasBoxes;
        other.mData = other.InlineData();
        other.mCapacity = kInlineCapacity;
    }
    other.Clear();
}

void Cmn_RectList::Reserve(std::size_t capacity) {
    if (capacity <= mCapacity)
        return;
    Cmn_Rect<int>* data = AllocateRects(capacity);
    CopyRects(data, mData, mSize);
    if (!IsInline())
        Release();
    mData = data;
    mCapacity = static_cast<std::uint32_t>(capacity);
}

// New memory in place of the old; the contents go.
void Cmn_RectList::Replace(std::size_t capacity) {
    const std::size_t ahead = IsInline() ? 0 : mCapacity + mCapacity / 2;
    capacity = std::max(WithBoxes(capacity), ahead);
    Cmn_Rect<int>* data = AllocateRects(capacity);
    if (!IsInline())
        Release();
    mData = data;
    mCapacity = static_cast<std::uint32_t>(capacity);
}

void Cmn_RectList::Assign(const Cmn_Rect<int>* rects, std::size_t count) {
    if (count > mCapacity) { // then they cannot all lie in this list
        const std::size_t capacity = WithBoxes(count);
        Cmn_Rect<int>* data = AllocateRects(capacity);
        CopyRects(data, rects, count);
        if (!IsInline())
            Release();
        mData = data;
        mCapacity = static_cast<std::uint32_t>(capacity);
    } else {
        CopyRects(mData, rects, count);
    }
    mSize = static_cast<std::uint32_t>(count);
    mHasBoxes = false;
}

void Cmn_RectList::FillBoxesBehind() noexcept {
    if (WithBoxes(mSize) > mCapacity)
        return;
    Cmn_Rect<int>* blocks = mData + mSize;
    Cmn_RectIndexView::FillBoxes(mData, mSize, blocks,
                                 blocks + Cmn_RectIndexView::BlockCount(mSize));
    mHasBoxes = true;
}

void Cmn_RectList::Resize(std::size_t count) {
    Reserve(count);
    for (std::size_t i = mSize; i < count; ++i)
        mData[i] = Cmn_Rect<int>();
    mSize = static_cast<std::uint32_t>(count);
    mHasBoxes = false;
}

void Cmn_RectList::Insert(std::size_t index, const Cmn_Rect<int>& rect) {
    const Cmn_Rect<int> copy = rect; // may lie in this list
    if (mSize == mCapacity)
        Reserve(std::size_t{mCapacity} * 2);
    CopyRects(mData + index + 1, mData + index, mSize - index);
    mData[index] = copy;
    ++mSize;
    mHasBoxes = false;
}

void Cmn_RectList::ReplaceInOrder(std::size_t index, const Cmn_Rect<int>& rect) noexcept {
    const auto precedes = [](const Cmn_Rect<int>& a, const Cmn_Rect<int>& b) {
        return a.top != b.top ? a.top < b.top : a.left < b.left;
    };
    const Cmn_Rect<int> copy = rect; // may lie in this list
    for (; index > 0 && precedes(copy, mData[index - 1]); --index)
        mData[index] = mData[index - 1];
    for (; index + 1 < mSize && precedes(mData[index + 1], copy); ++index)
        mData[index] = mData[index + 1];
    mData[index] = copy;
    mHasBoxes = false;
}

void Cmn_RectList::Erase(std::size_t index) noexcept {
    CopyRects(mData + index, mData + index + 1, mSize - index - 1);
    --mSize;
    mHasBoxes = false;
}

std::ostream& operator<<(std::ostream& out, const Cmn_RectList& list) {
    out << '{';
    for (std::size_t i = 0; i < list.size(); ++i)
        out << (i == 0 ? "" : " ") << list[i];
    return out << '}';
}
