// The memory of a property set, for the sources that look values up. Not for hosts.
//
// A set is one block of memory: a header, a tag of four bytes a value, an entry of 16 bytes a
// value, for larger sets an index, and behind them the bytes of names, texts, points and
// rectangles.
//
// A tag is 28 bits of the name's hash with the type below them. Up to eight values are found by
// comparing the tags one after the other, which takes one cache line; more by an open-addressed
// index at most a quarter full, whose cells are as narrow as the count allows. In both cases a
// match of the tag is followed by one comparison of the names. A block is copied by copying its
// bytes.
#pragma once

#include <cstring>

#include "qlx/persistence/qlx_propertyset.h"

namespace QLX_PropertyBytes {
inline constexpr std::uint32_t kTypeMask = 15;

inline std::uint64_t Load8(const char* bytes) noexcept {
    std::uint64_t value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

inline std::uint32_t Load4(const char* bytes) noexcept {
    std::uint32_t value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

/// The first and the last bytes of a name; of up to sixteen bytes they are the whole of it.
struct Ends {
    std::uint64_t mFirst;
    std::uint64_t mLast;
    friend bool operator==(const Ends& a, const Ends& b) noexcept {
        return a.mFirst == b.mFirst && a.mLast == b.mLast;
    }
};

/// Of one to three bytes.
inline Ends EndsOfShort(const char* bytes, std::size_t size) noexcept {
    const auto byte = [bytes](std::size_t at) {
        return static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[at]));
    };
    return {byte(0), byte(size / 2) << 8 | byte(size - 1)};
}

inline Ends EndsOf(const char* bytes, std::size_t size) noexcept {
    if (size >= 8)
        return {Load8(bytes), Load8(bytes + size - 8)};
    if (size >= 4)
        return {Load4(bytes), Load4(bytes + size - 4)};
    return size == 0 ? Ends{0, 0} : EndsOfShort(bytes, size);
}

/// What a name is looked for by.
struct Key {
    std::string_view mName;
    Ends mEnds;
    std::uint32_t mTag;
};

/// A hash of what lies between a long name's ends.
[[nodiscard]] std::uint64_t HashMiddle(std::string_view name) noexcept;

/// The ends are multiplied, which the processor does for both at once, and added. The tag is the
/// top of the sum, to which every input bit contributes. The size tells names apart that repeat one
/// character.
inline std::uint32_t TagOf(QLX_PropertyType type, std::size_t size, const Ends& ends,
                           std::uint64_t middle) noexcept {
    const std::uint64_t hash =
        ends.mFirst * 0x9E3779B97F4A7C15u + (ends.mLast + size) * 0xD6E8FEB86659FD93u + middle;
    return (static_cast<std::uint32_t>(hash >> 32) & ~kTypeMask) | static_cast<std::uint32_t>(type);
}

inline Key KeyOf(QLX_PropertyType type, std::string_view name) noexcept {
    const Ends ends = EndsOf(name.data(), name.size());
    const std::uint64_t middle = name.size() > 16 ? HashMiddle(name) : 0;
    return {name, ends, TagOf(type, name.size(), ends, middle)};
}

/// Whether bytes of the key's size are its name.
inline bool IsName(const Key& key, const char* bytes) noexcept {
    return EndsOf(bytes, key.mName.size()) == key.mEnds &&
           (key.mName.size() <= 16 || std::memcmp(bytes, key.mName.data(), key.mName.size()) == 0);
}

/// memcpy without a call for what is short.
inline void Copy(char* to, const char* from, std::size_t size) noexcept {
    if (size > 16) {
        std::memcpy(to, from, size);
    } else if (size >= 8) {
        const std::uint64_t first = Load8(from);
        const std::uint64_t last = Load8(from + size - 8);
        std::memcpy(to, &first, 8);
        std::memcpy(to + size - 8, &last, 8);
    } else if (size >= 4) {
        const std::uint32_t first = Load4(from);
        const std::uint32_t last = Load4(from + size - 4);
        std::memcpy(to, &first, 4);
        std::memcpy(to + size - 4, &last, 4);
    } else {
        for (std::size_t i = 0; i < size; ++i)
            to[i] = from[i];
    }
}

inline bool IsText(QLX_PropertyType type) noexcept {
    return type == qlx_PropType_String || type == qlx_PropType_String_Key;
}

/// How many bytes a value of the type has outside its entry, texts aside.
inline std::size_t FixedPayload(QLX_PropertyType type) noexcept {
    if (type == qlx_PropType_Point)
        return sizeof(VPoint);
    return type == qlx_PropType_Rect ? sizeof(VRect) : 0;
}
} // namespace QLX_PropertyBytes

struct QLX_PropertySet::Entry {
    std::uint64_t mValue; // a scalar; or where the payload lies, for a text with its size above
    std::uint32_t mNameOffset;
    std::uint32_t mNameSize;

    [[nodiscard]] std::size_t PayloadOffset() const noexcept {
        return static_cast<std::uint32_t>(mValue);
    }
    [[nodiscard]] std::size_t PayloadSize(QLX_PropertyType type) const noexcept {
        return QLX_PropertyBytes::IsText(type) ? static_cast<std::size_t>(mValue >> 32)
                                               : QLX_PropertyBytes::FixedPayload(type);
    }
    void SetPayload(QLX_PropertyType type, std::size_t offset, std::size_t size) noexcept {
        const bool isText = QLX_PropertyBytes::IsText(type);
        mValue = offset | (isText ? static_cast<std::uint64_t>(size) << 32 : 0);
    }
};

struct alignas(8) QLX_PropertySet::Block {
    std::uint32_t mReferences;
    std::uint32_t mCount;
    std::uint32_t mCapacity;
    std::uint32_t mDataSize;
    std::uint32_t mDataCapacity;
    std::uint32_t mGarbage;       // bytes of data that no value uses any more
    std::uint32_t mIndexShift;    // a tag shifted right by it is its first cell; 0 without an index
    std::uint32_t mCellSize;      // 1, 2 or 4
    std::uint32_t mEntriesOffset; // from the block's start, as the next two
    std::uint32_t mIndexOffset;
    std::uint32_t mDataOffset;
    std::uint32_t mIsPooled; // lies in a QLX_NodePool's memory

    /// Of the whole block, in bytes.
    [[nodiscard]] std::size_t Size() const noexcept {
        return std::size_t{mDataOffset} + mDataCapacity;
    }
    [[nodiscard]] char* Bytes() noexcept { return reinterpret_cast<char*>(this); }
    [[nodiscard]] std::uint32_t* Tags() noexcept {
        return reinterpret_cast<std::uint32_t*>(this + 1);
    }
    [[nodiscard]] Entry* Entries() noexcept {
        return reinterpret_cast<Entry*>(Bytes() + mEntriesOffset);
    }
    [[nodiscard]] char* Index() noexcept { return Bytes() + mIndexOffset; }
    [[nodiscard]] char* Data() noexcept { return Bytes() + mDataOffset; }
    [[nodiscard]] std::size_t CellCount() const noexcept {
        return mIndexShift ? std::size_t{1} << (32 - mIndexShift) : 0;
    }
    [[nodiscard]] QLX_PropertyType TypeAt(std::size_t index) noexcept {
        return static_cast<QLX_PropertyType>(Tags()[index] & QLX_PropertyBytes::kTypeMask);
    }
    [[nodiscard]] std::string_view NameAt(std::size_t index) noexcept {
        const Entry& entry = Entries()[index];
        return {Data() + entry.mNameOffset, entry.mNameSize};
    }
    [[nodiscard]] bool IsNamed(std::size_t index, const QLX_PropertyBytes::Key& key) noexcept {
        const Entry& entry = Entries()[index];
        return entry.mNameSize == key.mName.size() &&
               QLX_PropertyBytes::IsName(key, Data() + entry.mNameOffset);
    }

    /// The number of the value in a cell, counting from 1; 0 for an empty cell.
    template <class Cell>
    [[nodiscard]] std::size_t CellAt(std::size_t cell) noexcept {
        Cell number;
        std::memcpy(&number, Index() + cell * sizeof(Cell), sizeof number);
        return number;
    }
    template <class Cell>
    [[nodiscard]] std::size_t Probe(const QLX_PropertyBytes::Key& key) noexcept {
        for (std::size_t cell = key.mTag >> mIndexShift;; cell = (cell + 1) & (CellCount() - 1)) {
            const std::size_t number = CellAt<Cell>(cell);
            if (number == 0)
                return kNotFound;
            if (Tags()[number - 1] == key.mTag && IsNamed(number - 1, key))
                return number - 1;
        }
    }
    [[nodiscard]] std::size_t FindInLarge(const QLX_PropertyBytes::Key& key) noexcept;
    [[nodiscard]] std::size_t Find(const QLX_PropertyBytes::Key& key) noexcept {
        if (mIndexShift)
            return mCellSize == 1 ? Probe<std::uint8_t>(key) : FindInLarge(key);
        const std::uint32_t* const tags = Tags();
        for (std::size_t i = 0, count = mCount; i < count; ++i)
            if (tags[i] == key.mTag && IsNamed(i, key))
                return i;
        return kNotFound;
    }

    [[nodiscard]] std::size_t CellAt(std::size_t cell) noexcept;
    void SetCell(std::size_t cell, std::size_t number) noexcept;
    void AddToIndex(std::size_t index) noexcept {
        if (mIndexShift)
            AddToCells(index);
    }
    void AddToCells(std::size_t index) noexcept;
    void RebuildIndex() noexcept;
};
