// A run of values handed to an operation, whatever they are kept in: one value for every place, a
// borrowed array, or a list of its own.
#pragma once

#include <initializer_list>
#include <optional>
#include <utility>
#include <vector>

#include "basekit/cmn/cmn_types.h"

/// Read like a vector; the reader needs no loop per kind of source. Reading an element costs one
/// multiplication. Copies of a borrowed run borrow the same array.
template <class T>
class Cmn_PolyVector {
  public:
    Cmn_PolyVector() noexcept = default;

    /// The same value in every place; no allocation.
    [[nodiscard]] static Cmn_PolyVector Repeat(T value, std::size_t size) {
        Cmn_PolyVector result;
        result.mSingle.emplace(std::move(value));
        result.mSize = size;
        result.Attach();
        return result;
    }
    /// Somebody else's array, which has to outlive this and every copy of it.
    [[nodiscard]] static Cmn_PolyVector Borrow(const T* values, std::size_t size) {
        Cmn_PolyVector result;
        result.mData = values;
        result.mSize = size;
        result.mStride = 1;
        return result;
    }
    /// A list of its own.
    explicit Cmn_PolyVector(std::vector<T> values) : mOwned(std::move(values)) {
        mSize = mOwned.size();
        Attach();
    }
    Cmn_PolyVector(std::initializer_list<T> values) : Cmn_PolyVector(std::vector<T>(values)) {}

    Cmn_PolyVector(const Cmn_PolyVector& other)
        : mData(other.mData), mSize(other.mSize), mStride(other.mStride), mSingle(other.mSingle),
          mOwned(other.mOwned) {
        Attach();
    }
    Cmn_PolyVector(Cmn_PolyVector&& other) noexcept : Cmn_PolyVector() { swap(other); }
    Cmn_PolyVector& operator=(Cmn_PolyVector other) noexcept {
        swap(other);
        return *this;
    }

    [[nodiscard]] std::size_t size() const noexcept { return mSize; }
    [[nodiscard]] bool empty() const noexcept { return mSize == 0; }
    /// The value at a place below size(), counting from 0.
    [[nodiscard]] const T& operator[](std::size_t index) const { return mData[index * mStride]; }
    /// Whether every place holds one and the same value, which is then read once.
    [[nodiscard]] bool IsRepeated() const noexcept { return mSize != 0 && mStride == 0; }

    void swap(Cmn_PolyVector& other) noexcept {
        std::swap(mData, other.mData);
        std::swap(mSize, other.mSize);
        std::swap(mStride, other.mStride);
        std::swap(mSingle, other.mSingle);
        std::swap(mOwned, other.mOwned);
        Attach();
        other.Attach();
    }

  private:
    /// Points at what this object holds itself, if it does.
    void Attach() noexcept {
        if (mSingle) {
            mData = &*mSingle;
            mStride = 0;
        } else if (!mOwned.empty()) {
            mData = mOwned.data();
            mStride = 1;
        }
    }

    const T* mData = nullptr; // into mSingle, mOwned or the borrowed array
    std::size_t mSize = 0;
    std::size_t mStride = 1;
    std::optional<T> mSingle;
    std::vector<T> mOwned;
};
