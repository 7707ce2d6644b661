// Working arrays that cost nothing while they are small: the first elements lie on the stack.
#pragma once

#include <algorithm>
#include <cstring>
#include <new>
#include <type_traits>

#include "basekit/cmn/cmn_memory.h"

/// A growable array of plain values, the first N of them in the object itself. Memory that runs out
/// raises -108. Elements that Resize adds are not initialised.
template <class T, std::size_t N>
class Cmn_Scratch {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

  public:
    Cmn_Scratch() noexcept {}
    ~Cmn_Scratch() {
        if (mData != Inline())
            ::operator delete(mData);
    }
    Cmn_Scratch(const Cmn_Scratch&) = delete;
    Cmn_Scratch& operator=(const Cmn_Scratch&) = delete;

    [[nodiscard]] std::size_t size() const noexcept { return mSize; }
    [[nodiscard]] bool empty() const noexcept { return mSize == 0; }
    [[nodiscard]] T* data() noexcept { return mData; }
    [[nodiscard]] const T* data() const noexcept { return mData; }
    [[nodiscard]] T* begin() noexcept { return mData; }
    [[nodiscard]] T* end() noexcept { return mData + mSize; }
    [[nodiscard]] const T* begin() const noexcept { return mData; }
    [[nodiscard]] const T* end() const noexcept { return mData + mSize; }
    [[nodiscard]] T& operator[](std::size_t index) noexcept { return mData[index]; }
    [[nodiscard]] const T& operator[](std::size_t index) const noexcept { return mData[index]; }

    void Append(const T& value) {
        const T copy = value; // may lie in this array
        if (mSize == mCapacity)
            Reserve(mCapacity * 2);
        mData[mSize++] = copy;
    }
    /// The values lie outside this array.
    void Append(const T* values, std::size_t count) {
        T* const to = MakeRoom(count);
        if (count > 0)
            std::memcpy(static_cast<void*>(to), values, count * sizeof(T));
        AddWritten(count);
    }
    /// Where values behind the end go, that many at most; AddWritten makes those that were written
    /// there part of the array.
    [[nodiscard]] T* MakeRoom(std::size_t count) {
        if (mSize + count > mCapacity)
            Reserve(std::max(mSize + count, mCapacity * 2));
        return mData + mSize;
    }
    void AddWritten(std::size_t count) noexcept { mSize += count; }
    void Resize(std::size_t size) {
        Reserve(size);
        mSize = size;
    }
    void Clear() noexcept { mSize = 0; }
    void Reserve(std::size_t capacity) {
        if (capacity > mCapacity)
            Grow(capacity);
    }

  private:
    [[nodiscard]] T* Inline() noexcept { return reinterpret_cast<T*>(mInline); }
    void Grow(std::size_t capacity) {
        T* data = static_cast<T*>(Cmn_AllocateOrFail(capacity * sizeof(T)));
        if (mSize > 0)
            std::memcpy(static_cast<void*>(data), mData, mSize * sizeof(T));
        if (mData != Inline())
            ::operator delete(mData);
        mData = data;
        mCapacity = capacity;
    }

    T* mData = Inline(); // owned unless it is mInline
    std::size_t mSize = 0;
    std::size_t mCapacity = N;
    alignas(16) alignas(T) std::byte mInline[N * sizeof(T)];
};
