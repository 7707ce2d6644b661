// Makes property sets out of what a reader meets. Not for hosts.
#pragma once

#include <memory>

#include "qlx/persistence/qlx_propertyset.h"

/// Gathers the values of one set and lays them out in a block of the right size when all are known,
/// which takes half the time of storing each in a set that is there already: a name is looked for
/// only then, while it is put into the index. Builds one set after the other in the same memory.
class QLX_PropertySetBuilder {
  public:
    using Key = QLX_PropertyBytes::Key;

    QLX_PropertySetBuilder() noexcept = default;
    QLX_PropertySetBuilder(const QLX_PropertySetBuilder&) = delete;
    QLX_PropertySetBuilder& operator=(const QLX_PropertySetBuilder&) = delete;

    /// Throws std::length_error when a set could not hold it.
    void AddScalar(const Key& key, std::uint64_t value);
    /// Of a type whose values are bytes: texts, points, rectangles.
    void AddBytes(const Key& key, const void* bytes, std::size_t size);
    void AddColor(const Key& key, const CRGBColor& color);
    void AddPoint(const Key& key, const VPoint& point) { AddBytes(key, &point, sizeof point); }
    void AddRect(const Key& key, const VRect& rect) { AddBytes(key, &rect, sizeof rect); }

    [[nodiscard]] bool IsEmpty() const noexcept { return mCount == 0; }
    /// The set of all that was added since the last one, in this order; of what has the same type
    /// and name the last value, at the place of the first. In a pool's memory, if one is given.
    [[nodiscard]] QLX_PropertySet Take(QLX_NodePool* pool);

  private:
    struct Value : QLX_PropertyBytes::Entry { // its name's offset is counted from the data's start
        std::uint64_t mHash;
    };
    QLX_PropertyBytes::Entry& Add(const Key& key, std::size_t payloadSize);
    void MakeRoom(std::size_t nameSize, std::size_t payloadSize);

    std::unique_ptr<Value[]> mValues;
    std::size_t mCount = 0;
    std::size_t mCapacity = 0;
    std::unique_ptr<char[]> mData; // names, and the bytes that are values, as they will lie
    std::size_t mDataSize = 0;
    std::size_t mDataCapacity = 0;
};

QLX_MERGED inline QLX_PropertyBytes::Entry& QLX_PropertySetBuilder::Add(const Key& key,
                                                                        std::size_t payloadSize) {
    const std::size_t nameSize = key.mName.size();
    if (mCount == mCapacity || mDataCapacity - mDataSize < nameSize + payloadSize ||
        nameSize > QLX_PropertyBytes::kLongestName) [[unlikely]]
        MakeRoom(nameSize, payloadSize);
    Value& value = mValues[mCount++];
    value.mHash = key.mHash;
    value.mNameOffset = static_cast<std::uint32_t>(mDataSize);
    value.mSizeAndType =
        static_cast<std::uint32_t>(nameSize) + QLX_PropertyBytes::SizeAndType(0, key.mType);
    QLX_PropertyBytes::Copy(mData.get() + mDataSize, key.mName.data(), nameSize);
    mDataSize += nameSize;
    return value;
}

inline void QLX_PropertySetBuilder::AddScalar(const Key& key, std::uint64_t value) {
    Add(key, 0).mValue = value;
}

inline void QLX_PropertySetBuilder::AddBytes(const Key& key, const void* bytes, std::size_t size) {
    Add(key, size).SetPayload(mDataSize, size);
    QLX_PropertyBytes::Copy(mData.get() + mDataSize, static_cast<const char*>(bytes), size);
    mDataSize += size;
}

inline void QLX_PropertySetBuilder::AddColor(const Key& key, const CRGBColor& color) {
    AddScalar(key, QLX_PropertyBytes::PackColor(color));
}
