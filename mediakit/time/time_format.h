// The time-code formats with the numbers that belong to each, and the session's own settings: its
// format, the frame it starts at and its sample rate.
#pragma once

#include "basekit/cmn/cmn_types.h"

/// The frame rates a session may have, each with the way its frames are counted. "Drop" leaves out
/// frame numbers (never frames) so that labels keep up with the clock: SMPTE 12M drop-frame
/// counting.
enum class ETimeCodeFormat : std::int32_t {
    F23976,
    F24,
    F25,
    F2997,
    F2997Drop,
    F30,
    F30Drop,
    F47952,
    F48,
    F50,
    F5994,
    F5994Drop,
    F60,
    F60Drop,
    F100,
    F11988,
    F11988Drop,
    F120,
    F120Drop,
};

inline constexpr int cTimeCodeFormatCount = 19;

/// What there is to know about one format. Frames per second as labels count them (framesPerSecond)
/// and as they pass (rateNumerator / rateDenominator) differ at the rates of 1000/1001.
struct Time_FormatInfo {
    ETimeCodeFormat format;
    const char* name; ///< "29.97 drop"; static, for menus, reports and logs
    std::int32_t framesPerSecond;
    std::int32_t rateNumerator;
    std::int32_t rateDenominator;
    std::int32_t droppedPerMinute; ///< numbers left out in each minute but every tenth; 0 = none
    std::int32_t frameDigits;      ///< 2, or 3 above 100 frames a second

    [[nodiscard]] constexpr bool IsDropFrame() const noexcept { return droppedPerMinute != 0; }
    /// Frames in a labelled minute that starts with numbers left out, and in ten whole minutes.
    [[nodiscard]] constexpr std::int64_t FramesPerShortMinute() const noexcept {
        return std::int64_t{framesPerSecond} * 60 - droppedPerMinute;
    }
    [[nodiscard]] constexpr std::int64_t FramesPerTenMinutes() const noexcept {
        return std::int64_t{framesPerSecond} * 600 - std::int64_t{droppedPerMinute} * 9;
    }
    [[nodiscard]] constexpr std::int64_t FramesPerHour() const noexcept {
        return FramesPerTenMinutes() * 6;
    }
    [[nodiscard]] constexpr std::int64_t FramesPerDay() const noexcept {
        return FramesPerTenMinutes() * 144;
    }
};

/// The row for a format. A value outside the enumeration fails an assertion and answers 30 frames.
[[nodiscard]] QLX_API const Time_FormatInfo& Time_GetFormatInfo(ETimeCodeFormat format);

/// Finds a format by its name ("23.976", "29.97 drop"). Returns false and leaves format alone when
/// there is none.
QLX_API bool Time_FindFormat(const char* name, ETimeCodeFormat& format);

/// The sample at which a frame, or a part of one, begins: units are 1/unitsPerFrame of a frame. The
/// exact quotient is rounded to the nearest sample, halves up, so no start is more than half a
/// sample off and none drifts, however late in the day.
[[nodiscard]] QLX_API std::int64_t Time_UnitsToSamples(const Time_FormatInfo& info,
                                                       std::int64_t units,
                                                       std::int32_t unitsPerFrame,
                                                       std::int32_t samplesPerSecond) noexcept;

/// The unit in which a sample lies: the last one whose rounded start is not after it. Exactly
/// undoes Time_UnitsToSamples as long as a unit is a sample long or more.
[[nodiscard]] QLX_API std::int64_t Time_SamplesToUnits(const Time_FormatInfo& info,
                                                       std::int64_t samples,
                                                       std::int32_t unitsPerFrame,
                                                       std::int32_t samplesPerSecond) noexcept;

/// The settings of the running session that time types and fields take as their default. Plain data
/// of the user-interface thread.
class QLX_API Time_Session {
  public:
    Time_Session() = delete;

    /// 30 frames until the host says otherwise.
    [[nodiscard]] static ETimeCodeFormat GetTimeCodeFormat() noexcept;
    static void SetTimeCodeFormat(ETimeCodeFormat format) noexcept;

    /// The time code of the session's first sample, as a frame count of the session's format.
    [[nodiscard]] static std::int64_t GetFrameOffset() noexcept;
    static void SetFrameOffset(std::int64_t frames) noexcept;

    /// Samples per second, 48000 at first. A rate below 1 fails an assertion and changes nothing.
    [[nodiscard]] static std::int32_t GetSampleRate() noexcept;
    static void SetSampleRate(std::int32_t samplesPerSecond) noexcept;

    /// The rate at which film frames pass under feet and frames; 24 at first. Counting is never
    /// drop-frame here: only the rate of the format matters.
    [[nodiscard]] static ETimeCodeFormat GetFilmFormat() noexcept;
    static void SetFilmFormat(ETimeCodeFormat format) noexcept;

    /// Grows with every change of a setting. A display that remembers it knows when to convert
    /// anew.
    [[nodiscard]] static std::uint32_t GetChangeCount() noexcept;
};
