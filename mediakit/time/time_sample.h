// Positions and lengths counted in samples: two types, so that a position is never added to a
// position by mistake.
#pragma once

#include <compare>
#include <string>
#include <string_view>

#include "basekit/cmn/cmn_types.h"

/// A signed number of samples between two positions. Arithmetic is held at the limits of 64 bits.
class QLX_API Time_SampleLength {
  public:
    constexpr Time_SampleLength() noexcept = default;
    constexpr explicit Time_SampleLength(std::int64_t samples) noexcept : mSamples(samples) {}

    [[nodiscard]] constexpr std::int64_t GetSamples() const noexcept { return mSamples; }

    constexpr Time_SampleLength& operator+=(Time_SampleLength other) noexcept {
        mSamples = Cmn_SaturatingAdd(mSamples, other.mSamples);
        return *this;
    }
    constexpr Time_SampleLength& operator-=(Time_SampleLength other) noexcept {
        return *this += -other;
    }
    [[nodiscard]] constexpr Time_SampleLength operator-() const noexcept {
        constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
        return Time_SampleLength(mSamples == least ? std::numeric_limits<std::int64_t>::max()
                                                   : -mSamples);
    }

    [[nodiscard]] friend constexpr Time_SampleLength operator+(Time_SampleLength a,
                                                               Time_SampleLength b) noexcept {
        return a += b;
    }
    [[nodiscard]] friend constexpr Time_SampleLength operator-(Time_SampleLength a,
                                                               Time_SampleLength b) noexcept {
        return a -= b;
    }
    friend constexpr auto operator<=>(const Time_SampleLength&,
                                      const Time_SampleLength&) noexcept = default;

  private:
    std::int64_t mSamples = 0;
};

/// A position in samples from the session's first sample; negative before it.
class QLX_API Time_Sample {
  public:
    constexpr Time_Sample() noexcept = default;
    constexpr explicit Time_Sample(std::int64_t samples) noexcept : mSamples(samples) {}

    [[nodiscard]] constexpr std::int64_t GetSamples() const noexcept { return mSamples; }

    constexpr Time_Sample& operator+=(Time_SampleLength length) noexcept {
        mSamples = Cmn_SaturatingAdd(mSamples, length.GetSamples());
        return *this;
    }
    constexpr Time_Sample& operator-=(Time_SampleLength length) noexcept {
        return *this += -length;
    }

    [[nodiscard]] friend constexpr Time_Sample operator+(Time_Sample position,
                                                         Time_SampleLength length) noexcept {
        return position += length;
    }
    [[nodiscard]] friend constexpr Time_Sample operator-(Time_Sample position,
                                                         Time_SampleLength length) noexcept {
        return position -= length;
    }
    [[nodiscard]] friend constexpr Time_SampleLength operator-(Time_Sample a,
                                                               Time_Sample b) noexcept {
        return Time_SampleLength(a.mSamples) - Time_SampleLength(b.mSamples);
    }
    friend constexpr auto operator<=>(const Time_Sample&, const Time_Sample&) noexcept = default;

  private:
    std::int64_t mSamples = 0;
};

/// Whether a span of time runs forwards from its anchor or backwards to it.
enum class ELength_Dir : std::int32_t { Forward, Backward };

/// Samples as text: plain decimal digits without separators, "-" before negative ones.
class QLX_API Time_SampleUtils {
  public:
    Time_SampleUtils() = delete;

    [[nodiscard]] static std::string ToString(Time_Sample position);
    /// Reads an optional sign and digits, nothing else. Returns false and leaves position alone
    /// when the text is anything else or does not fit 64 bits.
    static bool FromString(std::string_view text, Time_Sample& position) noexcept;
};
