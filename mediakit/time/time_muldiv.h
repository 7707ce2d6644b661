// Multiplies two 64-bit numbers and divides by a third without losing the high half of the product,
// which is how every conversion between frames, samples, ticks and milliseconds stays exact.
#pragma once

#include "basekit/cmn/cmn_types.h"

/// How a quotient that is not whole becomes whole. Halves of Nearest go up, towards plus infinity,
/// on both sides of zero: a conversion then commutes with moving the origin by whole units.
enum class Time_ERounding { Floor, Nearest, Ceiling };

/// multiplicand * multiplier / divisor, rounded once at the end. The divisor must be positive; zero
/// or a negative one fails an assertion and answers 0. A quotient beyond 64 bits is held at the
/// limits.
[[nodiscard]] QLX_API std::int64_t Time_MulDiv(std::int64_t multiplicand, std::int64_t multiplier,
                                               std::int64_t divisor,
                                               Time_ERounding rounding) noexcept;

/// multiplicand * multiplier, held at the type's limits.
[[nodiscard]] QLX_API std::int64_t Time_SaturatingMultiply(std::int64_t multiplicand,
                                                           std::int64_t multiplier) noexcept;

/// value / divisor towards minus infinity, for a positive divisor.
[[nodiscard]] constexpr std::int64_t Time_FloorDiv(std::int64_t value,
                                                   std::int64_t divisor) noexcept {
    const std::int64_t quotient = value / divisor;
    return quotient - (value % divisor < 0 ? 1 : 0);
}

/// What Time_FloorDiv leaves over: 0 up to, not including, divisor.
[[nodiscard]] constexpr std::int64_t Time_FloorMod(std::int64_t value,
                                                   std::int64_t divisor) noexcept {
    const std::int64_t rest = value % divisor;
    return rest < 0 ? rest + divisor : rest;
}

/// The distance from zero; the most negative number has one too.
[[nodiscard]] constexpr std::uint64_t Time_Magnitude(std::int64_t value) noexcept {
    return value < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(value)
                     : static_cast<std::uint64_t>(value);
}

/// The negation, held at the upper limit for the most negative number.
[[nodiscard]] constexpr std::int64_t Time_SaturatingNegate(std::int64_t value) noexcept {
    return value == std::numeric_limits<std::int64_t>::min()
               ? std::numeric_limits<std::int64_t>::max()
               : -value;
}
