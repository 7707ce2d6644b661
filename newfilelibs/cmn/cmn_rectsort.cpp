#include "newfilelibs/cmn/cmn_rectsort.h"

#include <algorithm>
#include <bit>
#include <utility>

#include "newfilelibs/cmn/cmn_rectscan.h"
#include "newfilelibs/cmn/cmn_scratch.h"

namespace {

using Rect = Cmn_Rect<int>;

// Corners of one drawing lie close together, so both coordinates, less the smallest, nearly always
// fit into 32 bits: left in the low ones, top above.
class CornerKeys {
  public:
    // For rectangles of positive size.
    CornerKeys(const Rect* rects, std::size_t count) noexcept {
        const Rect bounds = Cmn_RectScan::BoundsOf(rects, count);
        mLeft = static_cast<std::uint32_t>(bounds.left);
        mTop = static_cast<std::uint32_t>(bounds.top);
        mLeftBits = std::bit_width(static_cast<std::uint32_t>(bounds.right) - 1 - mLeft);
        mTopBits = std::bit_width(static_cast<std::uint32_t>(bounds.bottom) - 1 - mTop);
    }
    [[nodiscard]] bool Fit() const noexcept { return mLeftBits + mTopBits <= 32; }
    [[nodiscard]] int LeftBits() const noexcept { return mLeftBits; }
    [[nodiscard]] int TopBits() const noexcept { return mTopBits; }
    // Only when they fit.
    [[nodiscard]] std::uint64_t Get(const Rect& rect) const noexcept {
        const std::uint64_t top = static_cast<std::uint32_t>(rect.top) - mTop;
        return top << mLeftBits | (static_cast<std::uint32_t>(rect.left) - mLeft);
    }

  private:
    std::uint32_t mLeft;
    std::uint32_t mTop;
    int mLeftBits;
    int mTopBits;
};

// Sorts corners digit by digit, the least significant first; each pass keeps the order of what has
// the same digit.
class RadixSorter {
  public:
    RadixSorter(std::size_t count, const CornerKeys& keys) noexcept
        : mCount(count), mKeys(keys),
          mMostBits(
              std::clamp(static_cast<int>(std::bit_width(count)) + 1, kLeastBits, kMostBits)) {
        AddDigits(0, keys.LeftBits());
        AddDigits(keys.LeftBits(), keys.TopBits());
    }

    void Sort(const Rect* rects, std::uint32_t* order, std::uint64_t* scratch) noexcept {
        std::uint64_t* from = scratch;
        std::uint64_t* to = from + mCount;
        for (std::size_t i = 0; i < mCount; ++i)
            from[i] = mKeys.Get(rects[i]) << 32 | i;
        for (int i = 0; i + 1 < mDigitCount; ++i) {
            Distribute(mDigits[i], from, to);
            std::swap(from, to);
        }
        Distribute(mDigits[mDigitCount - 1], from, order);
    }

  private:
    // No digit has more counters than it takes about as long to clear as to go over the entries.
    static constexpr int kLeastBits = 8;
    static constexpr int kMostBits = 11;
    static constexpr int kMostDigits = 5;

    struct Digit {
        int mShift; // in an entry, whose low 32 bits are the index
        std::uint64_t mMask;
        [[nodiscard]] std::size_t Of(std::uint64_t entry) const noexcept {
            return entry >> mShift & mMask;
        }
    };

    // Cuts a coordinate into even digits.
    void AddDigits(int shift, int bits) noexcept {
        for (int digits = (bits + mMostBits - 1) / mMostBits; digits > 0; --digits) {
            const int digitBits = (bits + digits - 1) / digits;
            const std::uint64_t size = std::uint64_t{1} << digitBits;
            mDigits[mDigitCount++] = {32 + shift, size - 1};
            shift += digitBits;
            bits -= digitBits;
        }
    }
    // What is written of an entry for the last time is its index alone.
    template <class Entry>
    void Distribute(Digit digit, const std::uint64_t* from, Entry* to) noexcept {
        const std::uint64_t* const end = from + mCount;
        std::fill(mStarts, mStarts + digit.mMask + 1, 0U);
        for (const std::uint64_t* entry = from; entry < end; ++entry)
            ++mStarts[digit.Of(*entry)];
        std::uint32_t start = 0;
        for (std::size_t i = 0; i <= digit.mMask; ++i)
            start += std::exchange(mStarts[i], start);
        for (const std::uint64_t* entry = from; entry < end; ++entry)
            to[mStarts[digit.Of(*entry)]++] = static_cast<Entry>(*entry);
    }

    std::size_t mCount;
    const CornerKeys& mKeys;
    int mMostBits;
    int mDigitCount = 0;
    Digit mDigits[kMostDigits];
    std::uint32_t mStarts[std::size_t{1} << kMostBits];
};

// Few corners: each one's place is the number of those that come before it, which four comparisons
// at a time and no branch find sooner than any sorting.
class Ranks {
  public:
    static constexpr std::size_t kMost = 64;

    // No two corners are the same.
    Ranks(const Rect* rects, std::size_t count, const CornerKeys& keys) noexcept : mCount(count) {
        for (std::size_t i = 0; i < count; ++i)
            mKeys[i] = static_cast<std::int32_t>(keys.Get(rects[i]) ^ 0x80000000U);
    }
    void CopyIndices(std::uint32_t* indices) noexcept {
        for (std::size_t i = mCount; i % 4 != 0; ++i)
            mKeys[i] = std::numeric_limits<std::int32_t>::max(); // before none
        for (std::size_t i = 0; i < mCount; ++i)
            indices[CountBefore(mKeys[i])] = static_cast<std::uint32_t>(i);
    }

  private:
#if defined(__SSE2__)
    [[nodiscard]] std::size_t CountBefore(std::int32_t key) const noexcept {
        const __m128i keys = _mm_set1_epi32(key);
        __m128i before = _mm_setzero_si128();
        for (std::size_t i = 0; i < mCount; i += 4) {
            const __m128i four = _mm_load_si128(reinterpret_cast<const __m128i*>(mKeys + i));
            before = _mm_sub_epi32(before, _mm_cmpgt_epi32(keys, four));
        }
        before = _mm_add_epi32(before, _mm_shuffle_epi32(before, _MM_SHUFFLE(1, 0, 3, 2)));
        before = _mm_add_epi32(before, _mm_shuffle_epi32(before, _MM_SHUFFLE(2, 3, 0, 1)));
        return static_cast<std::size_t>(_mm_cvtsi128_si32(before));
    }
#else
    [[nodiscard]] std::size_t CountBefore(std::int32_t key) const noexcept {
        std::size_t before = 0;
        for (std::size_t i = 0; i < mCount; ++i)
            before += mKeys[i] < key ? 1 : 0;
        return before;
    }
#endif

    std::size_t mCount;
    alignas(16) std::int32_t mKeys[kMost];
};

void SortByComparing(const Rect* rects, std::size_t count, std::uint32_t* order) {
    struct Entry {
        std::uint64_t mKey;
        std::uint32_t mIndex;
    };
    Cmn_Scratch<Entry, 64> entries;
    entries.Resize(count);
    for (std::size_t i = 0; i < count; ++i)
        entries[i] = {Cmn_RectKey(rects[i]), static_cast<std::uint32_t>(i)};
    std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        return a.mKey != b.mKey ? a.mKey < b.mKey : a.mIndex < b.mIndex;
    });
    for (std::size_t i = 0; i < count; ++i)
        order[i] = entries[i].mIndex;
}

} // namespace

void Cmn_SortRects(const Rect* rects, std::size_t count, std::size_t sortedHead,
                   Cmn_RectList& out) {
    constexpr std::size_t inserted = 24; // few enough that moving them one by one is the fastest
    const std::size_t tail = count - sortedHead;
    Cmn_Scratch<Rect, inserted> sorted;
    sorted.Resize(tail);
    if (tail <= inserted) {
        for (std::size_t i = 0; i < tail; ++i)
            Cmn_InsertSorted(sorted.data(), i, rects[sortedHead + i]);
    } else {
        Cmn_Scratch<std::uint32_t, 64> order;
        order.Resize(tail);
        SortByComparing(rects + sortedHead, tail, order.data());
        for (std::size_t i = 0; i < tail; ++i)
            sorted[i] = rects[sortedHead + order[i]];
    }
    out.ResizeForOverwrite(count);
    std::merge(rects, rects + sortedHead, sorted.begin(), sorted.end(), out.Edit(),
               [](const Rect& a, const Rect& b) { return Cmn_RectKey(a) < Cmn_RectKey(b); });
}

void Cmn_OrderRows(const Rect* rects, std::size_t count, std::uint32_t* order,
                   std::uint64_t* scratch) {
    const CornerKeys keys(rects, count);
    if (!keys.Fit())
        SortByComparing(rects, count, order);
    else if (count <= Ranks::kMost)
        Ranks(rects, count, keys).CopyIndices(order);
    else
        RadixSorter(count, keys).Sort(rects, order, scratch);
}

void Cmn_MergeRows(const Rect* rects, std::size_t middle, std::size_t count,
                   std::uint32_t* order) noexcept {
    std::uint32_t first = 0;
    auto second = static_cast<std::uint32_t>(middle);
    std::uint32_t* to = order;
    while (first < middle && second < count) {
        const bool isFirst = Cmn_RectKey(rects[first]) < Cmn_RectKey(rects[second]);
        *to++ = isFirst ? first : second;
        first += isFirst;
        second += !isFirst;
    }
    while (first < middle)
        *to++ = first++;
    while (second < count)
        *to++ = second++;
}
