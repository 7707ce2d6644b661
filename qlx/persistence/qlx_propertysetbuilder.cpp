#include "qlx/persistence/qlx_propertysetbuilder.h"

#include <algorithm>
#include <stdexcept>

#include "qlx/persistence/qlx_nodepool.h"

using namespace QLX_PropertyBytes;

namespace {
constexpr std::size_t kFirstCapacity = 64;
constexpr std::size_t kFirstDataCapacity = 4096;

/// Room for more, in twice the memory at least, with what is there already.
template <class Element>
void Grow(std::unique_ptr<Element[]>& elements, std::size_t count, std::size_t& capacity,
          std::size_t wanted) {
    std::unique_ptr<Element[]> larger(new Element[wanted]);
    std::copy_n(elements.get(), count, larger.get());
    elements = std::move(larger);
    capacity = wanted;
}
} // namespace

void QLX_PropertySetBuilder::MakeRoom(std::size_t nameSize, std::size_t payloadSize) {
    CheckNameSize(nameSize);
    const std::size_t bytes = nameSize + payloadSize;
    if (mDataSize + bytes > kMostBytes || mCount == kMostValues)
        throw std::length_error("a property set holds no more than 1 GB");
    if (mCount == mCapacity)
        Grow(mValues, mCount, mCapacity, std::max(kFirstCapacity, mCapacity * 2));
    if (mDataCapacity - mDataSize < bytes)
        Grow(mData, mDataSize, mDataCapacity,
             std::max({kFirstDataCapacity, mDataCapacity * 2, mDataSize + bytes}));
}

QLX_PropertySet QLX_PropertySetBuilder::Take(QLX_NodePool* pool) {
    QLX_PropertySet set;
    if (IsEmpty())
        return set;
    Block& block = *QLX_PropertySet::NewBlock(mCount, mDataSize, pool);
    set.mBlock = &block;
    std::memcpy(block.Data(), mData.get(), mDataSize);
    block.mDataSize = static_cast<std::uint32_t>(mDataSize);
    const std::uint32_t dataOffset = block.DataOffset();
    std::uint32_t count = 0;
    for (const Value *value = mValues.get(), *const end = value + mCount; value != end; ++value) {
        Entry& entry = block.Entries()[count];
        entry.mValue = value->mValue;
        entry.mNameOffset = dataOffset + value->mNameOffset;
        entry.mSizeAndType = value->mSizeAndType;
        block.mCount = count + 1;
        Entry* const earlier = block.FindOrAddToIndex(count, value->mHash);
        if (!earlier) [[likely]] {
            ++count;
            continue;
        }
        block.mGarbage += static_cast<std::uint32_t>(entry.NameSize() + earlier->PayloadSize());
        earlier->mValue = entry.mValue;
    }
    block.mCount = count;
    const bool isCompact = count == mCount;
    mCount = 0;
    mDataSize = 0;
    if (!isCompact)
        set = set.CopyCompact(pool);
    return set;
}
