// Minutes and seconds: a count of milliseconds and its text.
#pragma once

#include <compare>
#include <string>
#include <string_view>

#include "mediakit/time/time_sample.h"

/// A signed number of milliseconds, shown as minutes, seconds and thousandths.
class QLX_API Time_MinSec {
  public:
    /// Minutes stand right-aligned in this many characters, so that texts of one width line up.
    static constexpr int cMinuteDigits = 4;

    constexpr Time_MinSec() noexcept = default;
    constexpr explicit Time_MinSec(std::int64_t milliseconds) noexcept
        : mMilliseconds(milliseconds) {}

    [[nodiscard]] constexpr std::int64_t GetMilliSeconds() const noexcept { return mMilliseconds; }
    constexpr void SetFromMillisecs(std::int64_t milliseconds) noexcept {
        mMilliseconds = milliseconds;
    }

    /// "   1:05.250": minutes padded with blanks to four characters and growing beyond them, two
    /// digits of seconds, three of milliseconds; "-" stands right before the minutes' first digit.
    [[nodiscard]] std::string ToString() const;
    /// Reads blanks, an optional sign, minutes, ":", seconds, "." and one to three digits of a
    /// fraction. Seconds of 60 and more carry. Returns false and changes nothing otherwise.
    bool FromString(std::string_view text) noexcept;

    /// The nearest sample, halves up.
    [[nodiscard]] Time_SampleLength GetSamples(std::int32_t samplesPerSecond) const noexcept;
    /// The nearest millisecond, halves up: undoes GetSamples at every rate from 1000 upwards.
    void SetFromSamples(Time_SampleLength length, std::int32_t samplesPerSecond) noexcept;

    friend constexpr auto operator<=>(const Time_MinSec&, const Time_MinSec&) noexcept = default;

  private:
    std::int64_t mMilliseconds = 0;
};
