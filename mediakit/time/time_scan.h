// Small steps that the readers and writers of time texts share.
#pragma once

#include <string>
#include <string_view>

#include "basekit/cmn/cmn_types.h"

/// Takes up to most digits (at most 18, so that they fit) from the front. Returns false when there
/// is none; count says how many were taken.
QLX_API bool Time_TakeDigits(std::string_view& text, std::size_t most, std::int64_t& value,
                             std::size_t& count) noexcept;

/// Takes one character from the front when it is the wanted one.
QLX_API bool Time_TakeChar(std::string_view& text, char wanted) noexcept;

/// Appends decimal digits, filled from the left to at least width characters.
QLX_API void Time_AppendPadded(std::string& text, std::uint64_t value, std::size_t width,
                               char padding);

/// Digits with "-" right before them when negative, blanks in front up to width characters.
[[nodiscard]] QLX_API std::string Time_SignedInWidth(bool negative, std::uint64_t distance,
                                                     std::size_t width);
