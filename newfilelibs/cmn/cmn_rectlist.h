// A growable array of rectangles: what a region keeps its pixels in.
#pragma once

#include <cstddef>
#include <cstring>
#include <iosfwd>
#include <type_traits>

#include "newfilelibs/cmn/cmn_rect.h"

/// Rectangles in order. Up to kInlineCapacity of them lie in the object itself; more take one block
/// from operator new. Running out of memory raises -108 and leaves the list as it was.
class QLX_API Cmn_RectList {
  public:
    using value_type = Cmn_Rect<int>;
    using const_iterator = const Cmn_Rect<int>*;
    using iterator = const_iterator;
    using size_type = std::size_t;

    static constexpr std::size_t kInlineCapacity = 16;

    // Lists are searched by fours, the last of which may reach behind the end: capacities are
    // multiples of this.
    static constexpr std::size_t kCapacityStep = 4;

    // Lists of this many rectangles and more keep behind the rectangles how far those reach, so
    // that queries need not look at all; cmn_rectindex.h tells how.
    static constexpr std::size_t kReachFrom = 48;

    Cmn_RectList() noexcept {}
    Cmn_RectList(const Cmn_RectList& other) { CopyFrom(other); }
    Cmn_RectList(Cmn_RectList&& other) noexcept { TakeFrom(other); }
    ~Cmn_RectList() {
        if (!IsInline())
            Release();
    }
    Cmn_RectList& operator=(const Cmn_RectList& other) {
        if (this != &other)
            CopyFrom(other);
        return *this;
    }
    Cmn_RectList& operator=(Cmn_RectList&& other) noexcept {
        if (this != &other) {
            if (!IsInline())
                Release();
            TakeFrom(other);
        }
        return *this;
    }

    // Queries

    [[nodiscard]] std::size_t size() const noexcept { return mSize; }
    [[nodiscard]] bool empty() const noexcept { return mSize == 0; }
    [[nodiscard]] std::size_t capacity() const noexcept { return mCapacity; }
    [[nodiscard]] const Cmn_Rect<int>* data() const noexcept { return mData; }
    [[nodiscard]] const Cmn_Rect<int>* begin() const noexcept { return mData; }
    [[nodiscard]] const Cmn_Rect<int>* end() const noexcept { return mData + mSize; }
    [[nodiscard]] const Cmn_Rect<int>& operator[](std::size_t index) const noexcept {
        return mData[index];
    }
    [[nodiscard]] const Cmn_Rect<int>& front() const noexcept { return mData[0]; }
    [[nodiscard]] const Cmn_Rect<int>& back() const noexcept { return mData[mSize - 1]; }
    /// The same rectangles in the same order.
    [[nodiscard]] friend bool operator==(const Cmn_RectList& a, const Cmn_RectList& b) noexcept {
        return a.mSize == b.mSize && std::equal(a.begin(), a.end(), b.begin());
    }

    /// The reach of a list that has it (see FillReach), else null.
    [[nodiscard]] const int* GetReach() const noexcept {
        return mHasReach ? ReachPlace() : nullptr;
    }

    // Changes

    /// Fills the reach of a list that is large enough for it and has room; every later change
    /// forgets it.
    void FillReach() noexcept {
        if (mSize >= kReachFrom && !mHasReach)
            FillReachBehind();
    }

    /// For writing; the caller keeps within size.
    [[nodiscard]] Cmn_Rect<int>* Edit() noexcept {
        mHasReach = false;
        return mData;
    }
    void Append(const Cmn_Rect<int>& rect) {
        const Cmn_Rect<int> copy = rect; // may lie in this list
        Extend()[mSize - 1] = copy;
    }
    /// Replaces the contents; the rectangles may lie in this list.
    void Assign(const Cmn_Rect<int>* rects, std::size_t count);
    /// Grows with empty rectangles or cuts the end off.
    void Resize(std::size_t count);
    /// Any contents: for writing all of them. Grows ahead when it has grown before.
    void ResizeForOverwrite(std::size_t count) {
        if (count > mCapacity)
            Replace(count);
        mSize = static_cast<std::uint32_t>(count);
        mHasReach = false;
    }
    /// Grows by one, which the caller writes; answers all of them for that.
    [[nodiscard]] Cmn_Rect<int>* Extend() {
        if (mSize == mCapacity || mSize >= kReachFrom)
            MakeRoomForOne();
        ++mSize;
        return Edit();
    }
    /// Removes one and closes the gap.
    void Erase(std::size_t index) noexcept;
    /// Keeps its memory.
    void Clear() noexcept {
        mSize = 0;
        mHasReach = false;
    }
    /// Makes room for that many in all.
    void Reserve(std::size_t capacity);

  private:
    void CopyFrom(const Cmn_RectList& other) {
        if (other.mSize > kInlineCapacity) {
            CopyLong(other);
            return;
        }
        // Whole steps of a size that the compiler knows: short lists are copied all the time.
        for (std::size_t i = 0; i < other.mSize; i += kCapacityStep)
            std::memcpy(static_cast<void*>(mData + i), other.mData + i,
                        kCapacityStep * sizeof(Cmn_Rect<int>));
        mSize = other.mSize;
        mHasReach = false;
    }
    [[nodiscard]] bool IsInline() const noexcept { return mData == InlineData(); }
    [[nodiscard]] Cmn_Rect<int>* InlineData() noexcept {
        return reinterpret_cast<Cmn_Rect<int>*>(mInline);
    }
    [[nodiscard]] const Cmn_Rect<int>* InlineData() const noexcept {
        return reinterpret_cast<const Cmn_Rect<int>*>(mInline);
    }
    [[nodiscard]] int* ReachPlace() const noexcept { return reinterpret_cast<int*>(mData + mSize); }
    void CopyLong(const Cmn_RectList& other);
    void MakeRoomForOne();
    void Release() noexcept;
    void Replace(std::size_t capacity);
    void FillReachBehind() noexcept;
    void TakeFrom(Cmn_RectList& other) noexcept;

    Cmn_Rect<int>* mData = InlineData(); // owned unless it is mInline
    std::uint32_t mSize = 0;
    std::uint32_t mCapacity = kInlineCapacity;
    bool mHasReach = false;
    // Raw bytes, so that making a list writes nothing here.
    alignas(16) std::byte mInline[kInlineCapacity * sizeof(Cmn_Rect<int>)];
};

static_assert(std::is_trivially_copyable_v<Cmn_Rect<int>>);

// Printer: the rectangles between braces.
QLX_API std::ostream& operator<<(std::ostream& out, const Cmn_RectList& list);
