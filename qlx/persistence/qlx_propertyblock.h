// The memory of a property set, and look-ups in it that are done inside the code that asks. Hosts
// use the getters of QLX_RawPropertyContainer, into which these are compiled.
//
// A set is one block of memory: a header, an index, an entry of 16 bytes a value, and behind them
// the bytes of names, texts, points and rectangles. A block is copied by copying its bytes.
//
// The index is a table of open addressing whose cells tell where an entry is, in sixteenths of the
// way into the block, in as few bytes as that takes. The top of a name's hash is the cell in which
// it is looked for first, and the names are compared there at once: so few cells are taken (a
// quarter at most, an eighth in larger sets) that this nearly always decides. What makes a look-up
// slow is the length of its chain of loads, each of which waits for the one before: this one has
// cell, entry, name.
//
// Hosts have the layout compiled in, as far as LookUp reads it. A library that lays sets out in
// another way puts another number where mCellSize is; their look-ups then all call the library.
#pragma once

#include <cstring>
#include <string_view>

#include "basekit/cmn/cmn_internal.h"
#include "qlx/persistence/qlx_property.h"

namespace QLX_PropertyBytes {
// Together they keep every offset within 32 bits.
inline constexpr std::size_t kMostValues = 1 << 26;
inline constexpr std::size_t kMostBytes = 1 << 30;
inline constexpr std::uint32_t kLongestName = (1u << 28) - 1; // leaves room for the type above it
inline constexpr std::uint64_t kHashFactor = 0x9E3779B97F4A7C15u;

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

/// A name's size with the type above it, as entries keep them: one comparison tells both. No entry
/// has what this answers for a name that is too long.
inline std::uint32_t SizeAndType(std::size_t size, QLX_PropertyType type) noexcept {
    if (size > kLongestName) [[unlikely]]
        return ~0u;
    return static_cast<std::uint32_t>(size) | static_cast<std::uint32_t>(type) << 28;
}

/// Throws std::length_error for a name that is too long.
void CheckNameSize(std::size_t size);

/// What a name is looked for by.
struct Key {
    std::string_view mName;
    Ends mEnds;
    std::uint64_t mHash;
    QLX_PropertyType mType;
};

/// A hash that nobody outside the process can foresee, for sets whose names were made to collide
/// under HashOf, which a file can do.
[[nodiscard]] std::uint64_t SaltedHash(QLX_PropertyType type, std::string_view name) noexcept;

/// A hash of what lies between a long name's ends.
[[nodiscard]] std::uint64_t HashMiddle(std::string_view name) noexcept;

/// What a type adds to a hash.
inline constexpr std::uint64_t HashOfType(QLX_PropertyType type) noexcept {
    return (static_cast<std::uint64_t>(type) << 8) * kHashFactor;
}

/// To the top of the product, which is what is used of it, all bits of the sum contribute. Where
/// the type is known, the sum is one instruction.
inline std::uint64_t HashOf(QLX_PropertyType type, const Ends& ends) noexcept {
    return (ends.mFirst + 8 * ends.mLast + (static_cast<std::uint64_t>(type) << 8)) * kHashFactor;
}

inline Key KeyOf(QLX_PropertyType type, std::string_view name) noexcept {
    const Ends ends = EndsOf(name.data(), name.size());
    const std::uint64_t middle = name.size() > 16 ? HashMiddle(name) : 0;
    return {name, ends, HashOf(type, ends) + middle, type};
}

/// The key of type none and that name, for another type: what KeyOf would make, without hashing.
inline Key WithType(const Key& key, QLX_PropertyType type) noexcept {
    return {key.mName, key.mEnds, key.mHash + HashOfType(type), type};
}

/// Whether bytes of the key's size are its name.
inline bool IsName(const Key& key, const char* bytes) noexcept {
    return EndsOf(bytes, key.mName.size()) == key.mEnds &&
           (key.mName.size() <= 16 || std::memcmp(bytes, key.mName.data(), key.mName.size()) == 0);
}

/// memcpy without a call for what is short.
inline void Copy(char* to, const char* from, std::size_t size) noexcept {
    if (size >= 8) {
        if (size > 32) {
            std::memcpy(to, from, size);
        } else if (size > 16) {
            const std::uint64_t pieces[4] = {Load8(from), Load8(from + 8), Load8(from + size - 16),
                                             Load8(from + size - 8)};
            std::memcpy(to, pieces, 16);
            std::memcpy(to + size - 16, pieces + 2, 16);
        } else {
            const std::uint64_t first = Load8(from);
            const std::uint64_t last = Load8(from + size - 8);
            std::memcpy(to, &first, 8);
            std::memcpy(to + size - 8, &last, 8);
        }
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

inline std::uint64_t PackColor(const CRGBColor& color) noexcept {
    return std::uint64_t{color.GetRed()} << 48 | std::uint64_t{color.GetGreen()} << 32 |
           std::uint64_t{color.GetBlue()} << 16 | color.GetAlpha();
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

struct Entry {
    std::uint64_t mValue; // a scalar; or where in the data the payload lies, a text's size above it
    std::uint32_t mNameOffset;  // from the block's start
    std::uint32_t mSizeAndType; // of the name

    [[nodiscard]] QLX_PropertyType Type() const noexcept {
        return static_cast<QLX_PropertyType>(mSizeAndType >> 28);
    }
    [[nodiscard]] std::size_t NameSize() const noexcept { return mSizeAndType & kLongestName; }
    [[nodiscard]] std::size_t PayloadOffset() const noexcept {
        return static_cast<std::uint32_t>(mValue);
    }
    [[nodiscard]] std::size_t PayloadSize() const noexcept {
        return IsText(Type()) ? static_cast<std::size_t>(mValue >> 32) : FixedPayload(Type());
    }
    [[nodiscard]] bool HasPayload() const noexcept {
        return IsText(Type()) || FixedPayload(Type()) != 0;
    }
    void SetPayload(std::size_t offset, std::size_t size) noexcept {
        const bool isText = IsText(Type());
        mValue = offset | (isText ? static_cast<std::uint64_t>(size) << 32 : 0);
    }
};

struct alignas(8) Block {
    static constexpr std::size_t kTinyCapacity = 2;
    static constexpr std::size_t kSmallCapacity = 8;
    static constexpr std::size_t kNarrowCapacity = 128;   // to which a place fits into one byte
    static constexpr std::size_t kMiddleCapacity = 16384; // and into two

    std::uint32_t mReferences;
    std::uint32_t mCount;
    std::uint32_t mCapacity;
    std::uint32_t mDataSize;
    std::uint32_t mDataCapacity;
    std::uint32_t mGarbage;       // bytes of data that no value uses any more
    std::uint32_t mEntriesOffset; // from the block's start
    std::uint8_t mIndexShift;     // a hash shifted right by it is its first cell
    std::uint8_t mCellSize;       // 1, 2 or 4
    bool mIsPooled;               // lies in a QLX_NodePool's memory
    bool mIsSalted;               // of a large set: names are hashed by SaltedHash

    [[nodiscard]] std::uint32_t DataOffset() const noexcept {
        return mEntriesOffset + mCapacity * static_cast<std::uint32_t>(sizeof(Entry));
    }
    /// Of the whole block, in bytes.
    [[nodiscard]] std::size_t Size() const noexcept {
        return std::size_t{DataOffset()} + mDataCapacity;
    }
    [[nodiscard]] char* Bytes() noexcept { return reinterpret_cast<char*>(this); }
    [[nodiscard]] const char* Bytes() const noexcept { return reinterpret_cast<const char*>(this); }
    [[nodiscard]] char* Cells() noexcept { return Bytes() + sizeof(Block); }
    [[nodiscard]] Entry* Entries() noexcept {
        return reinterpret_cast<Entry*>(Bytes() + mEntriesOffset);
    }
    [[nodiscard]] char* Data() noexcept { return Bytes() + DataOffset(); }
    [[nodiscard]] std::size_t CellCount() const noexcept {
        return std::size_t{1} << (64 - mIndexShift);
    }
    [[nodiscard]] std::string_view NameOf(const Entry& entry) noexcept {
        return {Bytes() + entry.mNameOffset, entry.NameSize()};
    }
    [[nodiscard]] bool IsNamed(const Entry& entry, const Key& key) noexcept {
        return entry.mSizeAndType == SizeAndType(key.mName.size(), key.mType) &&
               IsName(key, Bytes() + entry.mNameOffset);
    }

    [[nodiscard]] Entry& EntryAt(std::size_t place) noexcept {
        return *reinterpret_cast<Entry*>(Bytes() + place * sizeof(Entry));
    }
    [[nodiscard]] const Entry& EntryAt(std::size_t place) const noexcept {
        return *reinterpret_cast<const Entry*>(Bytes() + place * sizeof(Entry));
    }
    [[nodiscard]] std::size_t PlaceOf(std::size_t index) const noexcept {
        return mEntriesOffset / sizeof(Entry) + index;
    }
    /// Where the entry of a cell is, in units of an entry's size; 0 for an empty cell.
    template <class Cell>
    [[nodiscard]] std::size_t CellAt(std::size_t cell) const noexcept {
        Cell place;
        std::memcpy(&place, Bytes() + sizeof(Block) + cell * sizeof(Cell), sizeof place);
        return place;
    }
    template <class Cell>
    [[nodiscard]] Entry* Probe(const Key& key) noexcept {
        const std::size_t mask = CellCount() - 1;
        for (std::size_t cell = key.mHash >> mIndexShift;; cell = (cell + 1) & mask) {
            const std::size_t place = CellAt<Cell>(cell);
            if (place == 0)
                return nullptr;
            if (Entry& entry = EntryAt(place); IsNamed(entry, key))
                return &entry;
        }
    }
    [[nodiscard]] Entry* FindInLarge(const Key& key) noexcept;
    [[nodiscard]] Entry* Find(const Key& key) noexcept {
        return mCellSize == 1 ? Probe<std::uint8_t>(key) : FindInLarge(key);
    }

    /// Answers how many cells were taken on the way.
    template <class Cell>
    std::size_t AddToCells(std::size_t place, std::uint64_t hash) noexcept {
        const std::size_t mask = CellCount() - 1;
        std::size_t cell = hash >> mIndexShift;
        std::size_t steps = 0;
        for (; CellAt<Cell>(cell) != 0; ++steps)
            cell = (cell + 1) & mask;
        const Cell narrow = static_cast<Cell>(place);
        std::memcpy(Cells() + cell * sizeof(Cell), &narrow, sizeof narrow);
        return steps;
    }
    void AddToLarge(std::size_t place, std::uint64_t hash) noexcept;
    void AddToIndex(std::size_t index, std::uint64_t hash) noexcept {
        if (mCellSize == 1)
            AddToCells<std::uint8_t>(PlaceOf(index), hash);
        else
            AddToLarge(PlaceOf(index), hash);
    }
    template <class Cell>
    [[nodiscard]] Entry* FindOrAddToCells(std::size_t place, std::uint64_t hash) noexcept {
        const Entry& added = EntryAt(place);
        std::size_t cell = hash >> mIndexShift;
        while (const std::size_t taken = CellAt<Cell>(cell)) {
            Entry& entry = EntryAt(taken);
            if (entry.mSizeAndType == added.mSizeAndType && NameOf(entry) == NameOf(added))
                return &entry;
            cell = (cell + 1) & (CellCount() - 1);
        }
        const Cell narrow = static_cast<Cell>(place);
        std::memcpy(Cells() + cell * sizeof(Cell), &narrow, sizeof narrow);
        return nullptr;
    }
    [[nodiscard]] Entry* FindOrAddToLarge(std::size_t place, std::uint64_t hash) noexcept;
    /// Of the entry at an index, which has that hash: the one before it that has its type and name;
    /// without such a one it is put into the index, and the answer is null.
    [[nodiscard]] Entry* FindOrAddToIndex(std::size_t index, std::uint64_t hash) noexcept {
        return mCellSize == 1 ? FindOrAddToCells<std::uint8_t>(PlaceOf(index), hash)
                              : FindOrAddToLarge(PlaceOf(index), hash);
    }
    void ClearIndex() noexcept { std::memset(Cells(), 0, mEntriesOffset - sizeof(Block)); }
    void RebuildIndex() noexcept;
};
static_assert(sizeof(Block) % sizeof(Entry) == 0); // places are counted from a block's start

enum class Answer { kAbsent, kFound, kAskLibrary };

/// The two pieces in which EndsOf reads a name, for names of one width.
template <std::size_t kWidth>
inline Ends EndsOfWidth(const char* bytes, std::size_t size) noexcept {
    if constexpr (kWidth == 8)
        return {Load8(bytes), Load8(bytes + size - 8)};
    else
        return {Load4(bytes), Load4(bytes + size - 4)};
}

template <QLX_PropertyType kType, std::size_t kWidth, class Value>
QLX_MERGED inline Answer LookUpOfWidth(const Block& block, std::string_view name,
                                       Value& value) noexcept {
    const Ends ends = EndsOfWidth<kWidth>(name.data(), name.size());
    const std::size_t place = block.CellAt<std::uint8_t>(HashOf(kType, ends) >> block.mIndexShift);
    if (place == 0)
        return Answer::kAbsent;
    const Entry& entry = block.EntryAt(place);
    const std::uint32_t size = static_cast<std::uint32_t>(name.size());
    if (entry.mSizeAndType != size + SizeAndType(0, kType)) [[unlikely]]
        return Answer::kAskLibrary;
    const Ends theirs = EndsOfWidth<kWidth>(block.Bytes() + entry.mNameOffset, name.size());
    if (((theirs.mFirst ^ ends.mFirst) | (theirs.mLast ^ ends.mLast)) != 0) [[unlikely]]
        return Answer::kAskLibrary;
    value = static_cast<Value>(entry.mValue);
    return Answer::kFound;
}

/// Looks a scalar up: what nearly all look-ups are, of a name of four to sixteen bytes in a set of
/// up to 128 values, without a call and without a loop, once for each of the two widths in which
/// such names are read. Everything else, and a name whose first cell holds another one, is the
/// library's.
template <QLX_PropertyType kType, class Value>
QLX_MERGED inline Answer LookUp(const Block& block, std::string_view name, Value& value) noexcept {
    if (block.mCellSize == 1) [[likely]] {
        if (name.size() - 8 <= 8) // as unsigned numbers go: from 8 to 16
            return LookUpOfWidth<kType, 8>(block, name, value);
        if (name.size() - 4 <= 4)
            return LookUpOfWidth<kType, 4>(block, name, value);
    }
    return Answer::kAskLibrary;
}
} // namespace QLX_PropertyBytes
