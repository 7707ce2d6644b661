// Feet and frames: film footage, sixteen frames to the foot (35 mm, four perforations).
#pragma once

#include <compare>
#include <string>
#include <string_view>

#include "mediakit/time/time_format.h"
#include "mediakit/time/time_sample.h"

/// A signed count of film frames and 0..99 hundredths of a frame after it, as in Time_SMPTE.
class QLX_API Time_FeetFrame {
  public:
    static constexpr std::int32_t cFramesPerFoot = 16;
    static constexpr std::int32_t cSubframesPerFrame = 100;
    /// Feet stand right-aligned in this many characters.
    static constexpr int cFeetDigits = 6;

    constexpr Time_FeetFrame() noexcept = default;
    explicit Time_FeetFrame(std::int64_t totalFrames, std::int32_t subframes = 0) noexcept;
    /// Feet and frames as an operand: both may be negative, and frames past 15 carry.
    [[nodiscard]] static Time_FeetFrame FromFeetAndFrames(std::int64_t feet, std::int64_t frames,
                                                          std::int32_t subframes = 0) noexcept;

    [[nodiscard]] constexpr std::int64_t GetTotalFrames() const noexcept { return mFrames; }
    [[nodiscard]] constexpr std::int32_t GetSubframes() const noexcept { return mSubframes; }
    [[nodiscard]] std::int64_t GetTotalSubframes() const noexcept;
    void SetFromTotalSubframes(std::int64_t subframes) noexcept;

    /// "    12+03": feet padded with blanks to six characters and growing beyond them, "+", two
    /// digits of frames, ".SS" when subframes are asked for; "-" right before the feet of a
    /// negative value.
    [[nodiscard]] std::string ToString(bool withSubframes = false) const;
    /// Reads blanks, an optional sign, feet, "+", frames and optionally "." with one or two
    /// subframe digits. Frames past 15 carry. Returns false and changes nothing otherwise.
    bool FromString(std::string_view text) noexcept;

    /// Nearest sample at the session's film rate; the inverse answers the frame the sample lies in.
    [[nodiscard]] Time_SampleLength GetSamples(std::int32_t samplesPerSecond) const noexcept;
    void SetFromSamples(Time_SampleLength length, std::int32_t samplesPerSecond,
                        bool withSubframes = false) noexcept;

    Time_FeetFrame& operator+=(const Time_FeetFrame& other) noexcept;
    Time_FeetFrame& operator-=(const Time_FeetFrame& other) noexcept;
    [[nodiscard]] friend Time_FeetFrame operator+(Time_FeetFrame a,
                                                  const Time_FeetFrame& b) noexcept {
        return a += b;
    }
    [[nodiscard]] friend Time_FeetFrame operator-(Time_FeetFrame a,
                                                  const Time_FeetFrame& b) noexcept {
        return a -= b;
    }
    friend constexpr auto operator<=>(const Time_FeetFrame&,
                                      const Time_FeetFrame&) noexcept = default;

  private:
    std::int64_t mFrames = 0;
    std::int32_t mSubframes = 0;
};
