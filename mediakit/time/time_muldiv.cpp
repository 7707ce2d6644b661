#include "mediakit/time/time_muldiv.h"

#include "basekit/cmn/cmn_assert.h"

namespace {

struct Wide {
    std::uint64_t high;
    std::uint64_t low;
};

struct Quotient {
    std::uint64_t value;
    std::uint64_t rest;
    bool overflowed;
};

constexpr std::uint64_t cLowHalf = 0xFFFFFFFFu;
constexpr std::int64_t cMax = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t cMin = std::numeric_limits<std::int64_t>::min();

// Schoolbook multiplication in halves of 32 bits.
Wide Multiply(std::uint64_t a, std::uint64_t b) noexcept {
    const std::uint64_t aLow = a & cLowHalf;
    const std::uint64_t aHigh = a >> 32;
    const std::uint64_t bLow = b & cLowHalf;
    const std::uint64_t bHigh = b >> 32;
    const std::uint64_t lowLow = aLow * bLow;
    const std::uint64_t middle = aHigh * bLow + (lowLow >> 32);
    const std::uint64_t middleLow = aLow * bHigh + (middle & cLowHalf);
    return {aHigh * bHigh + (middle >> 32) + (middleLow >> 32),
            middleLow << 32 | (lowLow & cLowHalf)};
}

// Binary long division, one bit of the quotient a turn. Only products beyond 64 bits come here,
// which no session position does, so the plain form is kept.
Quotient DivideLong(Wide dividend, std::uint64_t divisor) noexcept {
    if (dividend.high >= divisor)
        return {0, 0, true};
    std::uint64_t rest = dividend.high;
    std::uint64_t value = 0;
    for (int bit = 63; bit >= 0; --bit) {
        const bool carried = (rest >> 63) != 0;
        rest = rest << 1 | (dividend.low >> bit & 1);
        value <<= 1;
        if (carried || rest >= divisor) {
            rest -= divisor;
            value |= 1;
        }
    }
    return {value, rest, false};
}

// Whether the magnitude grows by one. Upward moves of a negative number shrink its magnitude, so
// the modes swap ends and a half stays where it is.
bool RoundsAway(const Quotient& quotient, std::uint64_t divisor, bool negative,
                Time_ERounding rounding) noexcept {
    if (quotient.rest == 0)
        return false;
    switch (rounding) {
    case Time_ERounding::Floor:
        return negative;
    case Time_ERounding::Ceiling:
        return !negative;
    case Time_ERounding::Nearest:
        break;
    }
    const std::uint64_t missing = divisor - quotient.rest;
    return negative ? quotient.rest > missing : quotient.rest >= missing;
}

} // namespace

std::int64_t Time_MulDiv(std::int64_t multiplicand, std::int64_t multiplier, std::int64_t divisor,
                         Time_ERounding rounding) noexcept {
    CMN_ASSERT(divisor > 0);
    if (divisor <= 0)
        return 0;
    const bool negative = (multiplicand < 0) != (multiplier < 0);
    const std::uint64_t unsignedDivisor = static_cast<std::uint64_t>(divisor);
    const Wide product = Multiply(Time_Magnitude(multiplicand), Time_Magnitude(multiplier));
    const Quotient quotient = product.high == 0 ? Quotient{product.low / unsignedDivisor,
                                                           product.low % unsignedDivisor, false}
                                                : DivideLong(product, unsignedDivisor);
    const std::uint64_t limit = static_cast<std::uint64_t>(cMax);
    if (quotient.overflowed || quotient.value > limit)
        return negative ? cMin : cMax;
    std::uint64_t value = quotient.value;
    if (RoundsAway(quotient, unsignedDivisor, negative, rounding))
        ++value;
    if (value > limit)
        return negative ? cMin : cMax;
    return negative ? -static_cast<std::int64_t>(value) : static_cast<std::int64_t>(value);
}

std::int64_t Time_SaturatingMultiply(std::int64_t multiplicand, std::int64_t multiplier) noexcept {
    return Time_MulDiv(multiplicand, multiplier, 1, Time_ERounding::Floor);
}
