// The ground types and the export macro that every other header stands on, and the integer helpers
// whose names say what happens on overflow.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <type_traits>

// QLX_API marks what the shared library offers to hosts; everything else stays hidden.
#if defined(_WIN32)
#if defined(QLX_BUILDING)
#define QLX_API __declspec(dllexport)
#else
#define QLX_API __declspec(dllimport)
#endif
#else
#define QLX_API __attribute__((visibility("default")))
#endif

// QLX_API_TEMPLATE marks a class template whose instances are caught or cast across the library's
// border. Such an instance is emitted wherever it is used; ELF needs to see its type information.
#if defined(_WIN32)
#define QLX_API_TEMPLATE
#else
#define QLX_API_TEMPLATE __attribute__((visibility("default")))
#endif

/// A four-character code. The name changes nothing for the compiler; debuggers show such a value as
/// its characters.
using Cmn_ID = std::uint32_t;

/// A four-character code as a number: the first character is the most significant byte.
[[nodiscard]] constexpr Cmn_ID Cmn_FourChar(const char (&text)[5]) noexcept {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = code << 8 | static_cast<unsigned char>(text[i]);
    return code;
}

/// The sum, kept to the type's width: what two's complement hardware does, without the undefined
/// behaviour of signed overflow.
template <class Int>
[[nodiscard]] constexpr Int Cmn_WrappingAdd(Int a, Int b) noexcept {
    using Unsigned = std::make_unsigned_t<Int>;
    return static_cast<Int>(static_cast<Unsigned>(a) + static_cast<Unsigned>(b));
}

/// The difference, kept to the type's width.
template <class Int>
[[nodiscard]] constexpr Int Cmn_WrappingSubtract(Int a, Int b) noexcept {
    using Unsigned = std::make_unsigned_t<Int>;
    return static_cast<Int>(static_cast<Unsigned>(a) - static_cast<Unsigned>(b));
}

/// The product, kept to the type's width.
template <class Int>
[[nodiscard]] constexpr Int Cmn_WrappingMultiply(Int a, Int b) noexcept {
    using Unsigned = std::make_unsigned_t<Int>;
    // Narrow unsigned types promote to int, whose overflow would be undefined again.
    using Wide = std::conditional_t<(sizeof(Int) < sizeof(unsigned)), unsigned, Unsigned>;
    return static_cast<Int>(static_cast<Wide>(static_cast<Unsigned>(a)) *
                            static_cast<Wide>(static_cast<Unsigned>(b)));
}

/// The sum, held at the type's limits.
template <class Int>
[[nodiscard]] constexpr Int Cmn_SaturatingAdd(Int a, Int b) noexcept {
    if (b > 0 && a > std::numeric_limits<Int>::max() - b)
        return std::numeric_limits<Int>::max();
    if (b < 0 && a < std::numeric_limits<Int>::min() - b)
        return std::numeric_limits<Int>::min();
    return static_cast<Int>(a + b);
}

/// The value, held at the limits of a narrower type.
template <class To, class From>
[[nodiscard]] constexpr To Cmn_ClampTo(From value) noexcept {
    if (value < static_cast<From>(std::numeric_limits<To>::min()))
        return std::numeric_limits<To>::min();
    if (value > static_cast<From>(std::numeric_limits<To>::max()))
        return std::numeric_limits<To>::max();
    return static_cast<To>(value);
}
