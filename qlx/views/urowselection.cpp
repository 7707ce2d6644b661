#include "qlx/views/urowselection.h"

#include <algorithm>

namespace {

// The first range that ends behind a row.
template <class Ranges>
auto FirstBehind(Ranges& ranges, std::int64_t row) {
    return std::partition_point(ranges.begin(), ranges.end(),
                                [row](const auto& range) { return range.mEnd <= row; });
}

} // namespace

bool QLX_RowSelection::Contains(std::int64_t row) const {
    const auto range = FirstBehind(mRanges, row);
    return range != mRanges.end() && range->mFirst <= row;
}

std::int64_t QLX_RowSelection::Count() const {
    std::int64_t count = 0;
    for (const Range& range : mRanges)
        count += range.mEnd - range.mFirst;
    return count;
}

void QLX_RowSelection::Add(std::int64_t first, std::int64_t end) {
    if (first >= end)
        return;
    // Everything that overlaps or touches becomes one range.
    auto from = FirstBehind(mRanges, first - 1);
    auto to = from;
    for (; to != mRanges.end() && to->mFirst <= end; ++to) {
        first = std::min(first, to->mFirst);
        end = std::max(end, to->mEnd);
    }
    from = mRanges.erase(from, to);
    mRanges.insert(from, {first, end});
}

void QLX_RowSelection::Remove(std::int64_t first, std::int64_t end) {
    if (first >= end)
        return;
    std::vector<Range> kept;
    for (const Range& range : mRanges) {
        if (range.mFirst < std::min(first, range.mEnd))
            kept.push_back({range.mFirst, std::min(first, range.mEnd)});
        if (std::max(end, range.mFirst) < range.mEnd)
            kept.push_back({std::max(end, range.mFirst), range.mEnd});
    }
    mRanges = std::move(kept);
}

void QLX_RowSelection::Toggle(std::int64_t row) {
    if (Contains(row))
        Remove(row, row + 1);
    else
        Add(row, row + 1);
}

void QLX_RowSelection::Set(std::int64_t first, std::int64_t end) {
    Clear();
    Add(first, end);
}
