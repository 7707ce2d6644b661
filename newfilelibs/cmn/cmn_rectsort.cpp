#include "newfilelibs/cmn/cmn_rectsort.h"

#include <algorithm>
#include <bit>

#include "newfilelibs/cmn/cmn_scratch.h"

namespace {

// Corners of one drawing lie close together, so both coordinates, less the smallest, nearly always
// fit into 32 bits; with the index below them an entry is one word.
struct KeyRange {
    std::uint32_t mLowMajor = 0;
    std::uint32_t mLowMinor = 0;
    int mMinorBits = 0;
    int mBits = 0;

    [[nodiscard]] std::uint64_t Pack(std::uint64_t key) const noexcept {
        const std::uint64_t major = (key >> 32) - mLowMajor;
        const std::uint64_t minor = (key & 0xFFFFFFFFU) - mLowMinor;
        return major << mMinorBits | minor;
    }
};

KeyRange FindRange(const Cmn_Rect<int>* rects, const std::uint32_t* indices, std::size_t count,
                   Cmn_RectOrder order) noexcept {
    std::uint32_t lowMajor = 0xFFFFFFFFU;
    std::uint32_t lowMinor = 0xFFFFFFFFU;
    std::uint32_t highMajor = 0;
    std::uint32_t highMinor = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint64_t key = Cmn_RectKey(rects[indices[i]], order);
        const auto major = static_cast<std::uint32_t>(key >> 32);
        const auto minor = static_cast<std::uint32_t>(key);
        lowMajor = std::min(lowMajor, major);
        lowMinor = std::min(lowMinor, minor);
        highMajor = std::max(highMajor, major);
        highMinor = std::max(highMinor, minor);
    }
    KeyRange range;
    range.mLowMajor = lowMajor;
    range.mLowMinor = lowMinor;
    range.mMinorBits = std::bit_width(highMinor - lowMinor);
    range.mBits = range.mMinorBits + std::bit_width(highMajor - lowMajor);
    return range;
}

constexpr int kDigitBits = 8;
constexpr std::size_t kDigits = std::size_t{1} << kDigitBits;
constexpr std::size_t kRadixFrom = 64; // below, comparing is faster

// Least significant digit first, over the key's bits only; they lie above the index's 32.
void RadixSort(std::uint64_t* entries, std::uint64_t* other, std::size_t count, int bits) noexcept {
    std::uint64_t* from = entries;
    std::uint64_t* to = other;
    for (int shift = 32; shift < 32 + bits; shift += kDigitBits) {
        std::uint32_t starts[kDigits] = {};
        for (std::size_t i = 0; i < count; ++i)
            ++starts[from[i] >> shift & (kDigits - 1)];
        std::uint32_t start = 0;
        for (std::uint32_t& slot : starts) {
            const std::uint32_t size = slot;
            slot = start;
            start += size;
        }
        for (std::size_t i = 0; i < count; ++i)
            to[starts[from[i] >> shift & (kDigits - 1)]++] = from[i];
        std::swap(from, to);
    }
    if (from != entries)
        std::copy(from, from + count, entries);
}

void SortPacked(const Cmn_Rect<int>* rects, const std::uint32_t* indices, std::size_t count,
                Cmn_RectOrder order, const KeyRange& range, std::uint32_t* sorted) {
    Cmn_Scratch<std::uint64_t, 128> entries;
    const bool radix = count >= kRadixFrom;
    entries.Resize(radix ? count * 2 : count);
    for (std::size_t i = 0; i < count; ++i)
        entries[i] = range.Pack(Cmn_RectKey(rects[indices[i]], order)) << 32 | indices[i];
    if (radix)
        RadixSort(entries.data(), entries.data() + count, count, range.mBits);
    else
        std::sort(entries.begin(), entries.begin() + count);
    for (std::size_t i = 0; i < count; ++i)
        sorted[i] = static_cast<std::uint32_t>(entries[i]);
}

void SortWide(const Cmn_Rect<int>* rects, const std::uint32_t* indices, std::size_t count,
              Cmn_RectOrder order, std::uint32_t* sorted) {
    struct Entry {
        std::uint64_t mKey;
        std::uint32_t mIndex;
    };
    Cmn_Scratch<Entry, 64> entries;
    entries.Resize(count);
    for (std::size_t i = 0; i < count; ++i)
        entries[i] = {Cmn_RectKey(rects[indices[i]], order), indices[i]};
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        return a.mKey != b.mKey ? a.mKey < b.mKey : a.mIndex < b.mIndex;
    });
    for (std::size_t i = 0; i < count; ++i)
        sorted[i] = entries[i].mIndex;
}

} // namespace

void Cmn_SortRectIndices(const Cmn_Rect<int>* rects, const std::uint32_t* indices,
                         std::size_t count, Cmn_RectOrder order, std::uint32_t* sorted) {
    const KeyRange range = FindRange(rects, indices, count, order);
    if (range.mBits <= 32)
        SortPacked(rects, indices, count, order, range, sorted);
    else
        SortWide(rects, indices, count, order, sorted);
}
