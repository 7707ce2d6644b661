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

// That many rectangles and the reach that may come behind them, as rectangles.
std::size_t WithReach(std::size_t count) noexcept {
    constexpr std::size_t numbers = sizeof(Cmn_Rect<int>) / sizeof(int);
    return count < Cmn_RectList::kReachFrom
               ? count
               : count + (Cmn_RectIndexView::ReachCount(count) + numbers - 1) / numbers;
}

std::size_t InSteps(std::size_t count) noexcept {
    constexpr std::size_t step = Cmn_RectList::kCapacityStep;
    return (count + step - 1) / step * step;
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
        mHasReach = false;
    } else {
        mData = other.mData;
        mCapacity = other.mCapacity;
        mHasReach = other.mHasReach;
        other.mData = other.InlineData();
        other.mCapacity = kInlineCapacity;
    }
    other.Clear();
}

void Cmn_RectList::Reserve(std::size_t capacity) {
    if (capacity <= mCapacity)
        return;
    capacity = InSteps(capacity);
    Cmn_Rect<int>* data = AllocateRects(capacity);
    CopyRects(data, mData, mSize);
    if (!IsInline())
        Release();
    mData = data;
    mCapacity = static_cast<std::uint32_t>(capacity);
}

// And for the reach of then.
void Cmn_RectList::MakeRoomForOne() {
    const std::size_t needed = WithReach(std::size_t{mSize} + 1);
    if (needed > mCapacity)
        Reserve(std::max(needed, std::size_t{mCapacity} * 2));
}

// New memory in place of the old; the contents go.
void Cmn_RectList::Replace(std::size_t capacity) {
    const std::size_t ahead = IsInline() ? 0 : mCapacity + mCapacity / 2;
    capacity = InSteps(std::max(WithReach(capacity), ahead));
    Cmn_Rect<int>* data = AllocateRects(capacity);
    if (!IsInline())
        Release();
    mData = data;
    mCapacity = static_cast<std::uint32_t>(capacity);
}

void Cmn_RectList::Assign(const Cmn_Rect<int>* rects, std::size_t count) {
    if (count > mCapacity) { // then they cannot all lie in this list
        const std::size_t capacity = InSteps(WithReach(count));
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
    mHasReach = false;
}

// The reach comes along.
void Cmn_RectList::CopyLong(const Cmn_RectList& other) {
    Assign(other.mData, other.mSize);
    if (!other.mHasReach || WithReach(mSize) > mCapacity)
        return;
    CopyRects(mData + mSize, other.mData + mSize, WithReach(mSize) - mSize);
    mHasReach = true;
}

void Cmn_RectList::FillReachBehind() noexcept {
    if (WithReach(mSize) > mCapacity)
        return;
    Cmn_RectIndexView::FillReach(mData, mSize, ReachPlace());
    mHasReach = true;
}

void Cmn_RectList::Resize(std::size_t count) {
    Reserve(count);
    for (std::size_t i = mSize; i < count; ++i)
        mData[i] = Cmn_Rect<int>();
    mSize = static_cast<std::uint32_t>(count);
    mHasReach = false;
}

void Cmn_RectList::Erase(std::size_t index) noexcept {
    CopyRects(mData + index, mData + index + 1, mSize - index - 1);
    --mSize;
    mHasReach = false;
}

std::ostream& operator<<(std::ostream& out, const Cmn_RectList& list) {
    out << '{';
    for (std::size_t i = 0; i < list.size(); ++i)
        out << (i == 0 ? "" : " ") << list[i];
    return out << '}';
}
