// Which rows of a list are selected, as ranges: all of a million rows are one.
#pragma once

#include <cstdint>
#include <vector>

#include "basekit/cmn/cmn_types.h"

/// A set of row numbers from 0 on.
class QLX_API QLX_RowSelection {
  public:
    /// Half-open.
    struct Range {
        std::int64_t mFirst;
        std::int64_t mEnd;
        friend bool operator==(const Range&, const Range&) = default;
    };

    [[nodiscard]] bool Contains(std::int64_t row) const;
    [[nodiscard]] bool IsEmpty() const { return mRanges.empty(); }
    [[nodiscard]] std::int64_t Count() const;
    /// Ascending, disjoint, never touching.
    [[nodiscard]] const std::vector<Range>& GetRanges() const { return mRanges; }

    void Clear() { mRanges.clear(); }
    /// Adds rows first to end, end not included; an empty range adds nothing.
    void Add(std::int64_t first, std::int64_t end);
    void Remove(std::int64_t first, std::int64_t end);
    void Toggle(std::int64_t row);
    /// Only these rows.
    void Set(std::int64_t first, std::int64_t end);

    friend bool operator==(const QLX_RowSelection&, const QLX_RowSelection&) = default;

  private:
    std::vector<Range> mRanges;
};
