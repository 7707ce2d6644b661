// Musical time: lengths in ticks, positions in bars, beats and ticks, and the maps of meter and
// tempo that tie them to samples.
#pragma once

#include <compare>
#include <string>
#include <string_view>
#include <vector>

#include "mediakit/time/time_sample.h"

/// A signed length in ticks. What is shown and typed is display ticks, 960 to the quarter note;
/// what is kept is internal ticks, finer by 5040, so that every display tick divides evenly by each
/// of 2 to 10 and tuplets land on whole ticks.
class QLX_API Time_TickLength {
  public:
    static constexpr std::int64_t cDisplayQuarter = 960;
    static constexpr std::int64_t cInternalPerDisplay = 5040;
    static constexpr std::int64_t cInternalQuarter = cDisplayQuarter * cInternalPerDisplay;

    constexpr Time_TickLength() noexcept = default;
    /// From internal ticks.
    constexpr explicit Time_TickLength(std::int64_t internalTicks) noexcept
        : mTicks(internalTicks) {}

    /// Internal ticks of a number of display ticks, held at the limits of 64 bits.
    [[nodiscard]] static std::int64_t ToInternalTicks(std::int64_t displayTicks) noexcept;
    [[nodiscard]] static Time_TickLength FromDisplayTicks(std::int64_t displayTicks) noexcept;

    [[nodiscard]] constexpr std::int64_t GetTicks() const noexcept { return mTicks; }
    /// The display tick at or below the length.
    [[nodiscard]] std::int64_t GetDisplayTicks() const noexcept;

    constexpr Time_TickLength& operator+=(Time_TickLength other) noexcept {
        mTicks = Cmn_SaturatingAdd(mTicks, other.mTicks);
        return *this;
    }
    constexpr Time_TickLength& operator-=(Time_TickLength other) noexcept {
        return *this += -other;
    }
    [[nodiscard]] constexpr Time_TickLength operator-() const noexcept {
        constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
        return Time_TickLength(mTicks == least ? std::numeric_limits<std::int64_t>::max()
                                               : -mTicks);
    }
    [[nodiscard]] friend constexpr Time_TickLength operator+(Time_TickLength a,
                                                             Time_TickLength b) noexcept {
        return a += b;
    }
    [[nodiscard]] friend constexpr Time_TickLength operator-(Time_TickLength a,
                                                             Time_TickLength b) noexcept {
        return a -= b;
    }
    friend constexpr auto operator<=>(const Time_TickLength&,
                                      const Time_TickLength&) noexcept = default;

  private:
    std::int64_t mTicks = 0;
};

/// A position in bars, beats and display ticks: bar and beat count from 1, ticks from 0. Bars
/// before the first are 0, -1, ... Plain data; only Time_MeterMap knows whether a beat exists in
/// its bar.
struct QLX_API Time_BarBeatTick {
    std::int64_t bar = 1;
    std::int32_t beat = 1;
    std::int32_t tick = 0;

    /// "17|3|240": the ticks in three digits.
    [[nodiscard]] std::string ToString() const;
    /// Reads bar, "|", beat, and optionally "|" and ticks; the bar may be negative. Returns false
    /// and changes nothing otherwise.
    bool FromString(std::string_view text) noexcept;

    friend constexpr auto operator<=>(const Time_BarBeatTick&,
                                      const Time_BarBeatTick&) noexcept = default;
};

/// Beats of a bar: numerator beats, each a 1/denominator note.
struct Time_Meter {
    std::int32_t numerator = 4;
    std::int32_t denominator = 4;

    /// Numerator 1..99, denominator a power of two from 1 to 64.
    [[nodiscard]] constexpr bool IsValid() const noexcept {
        return numerator >= 1 && numerator <= 99 && denominator >= 1 && denominator <= 64 &&
               (denominator & (denominator - 1)) == 0;
    }
    [[nodiscard]] constexpr std::int64_t DisplayTicksPerBeat() const noexcept {
        return Time_TickLength::cDisplayQuarter * 4 / denominator;
    }
    [[nodiscard]] constexpr std::int64_t TicksPerBeat() const noexcept {
        return Time_TickLength::cInternalQuarter * 4 / denominator;
    }
    [[nodiscard]] constexpr std::int64_t TicksPerBar() const noexcept {
        return TicksPerBeat() * numerator;
    }
    friend constexpr bool operator==(const Time_Meter&, const Time_Meter&) noexcept = default;
};

/// Which meter holds from which bar. Starts as 4/4 throughout; bars before the first follow the
/// first bar's meter. Tick 0 is the beginning of bar 1.
class QLX_API Time_MeterMap {
  public:
    Time_MeterMap();

    /// Sets the meter from a bar on, replacing a change that is there; the following changes keep
    /// their bars. Bars below 1 and invalid meters fail an assertion and change nothing.
    void SetMeter(std::int64_t bar, const Time_Meter& meter);
    /// Takes a change out; bar 1 returns to 4/4. Unknown bars are ignored.
    void RemoveMeter(std::int64_t bar);
    [[nodiscard]] const Time_Meter& GetMeter(std::int64_t bar) const noexcept;
    /// Grows with every change.
    [[nodiscard]] std::uint32_t GetChangeCount() const noexcept { return mChangeCount; }

    /// Beats and ticks beyond the bar carry into the following bars.
    [[nodiscard]] Time_TickLength ToTicks(const Time_BarBeatTick& position) const noexcept;
    /// The position at or before a tick: what is finer than a display tick is dropped.
    [[nodiscard]] Time_BarBeatTick FromTicks(Time_TickLength ticks) const noexcept;

  private:
    struct Change {
        std::int64_t bar;
        std::int64_t tick; ///< of the bar's beginning, internal
        Time_Meter meter;
    };
    void PlaceChanges() noexcept;
    [[nodiscard]] const Change& ChangeAtBar(std::int64_t bar) const noexcept;
    [[nodiscard]] const Change& ChangeAtTick(std::int64_t tick) const noexcept;

    std::vector<Change> mChanges; ///< sorted; never empty, the first is at bar 1
    std::uint32_t mChangeCount = 0;
};

/// Which tempo holds from which tick, in thousandths of a quarter note a minute. Starts as 120 BPM
/// throughout. Positions before tick 0 follow the first tempo.
///
/// Times are whole picoseconds: each change adds at most half of one to what follows it, so ten
/// thousand changes stay below a thousandth of a sample at 192 kHz.
class QLX_API Time_TempoMap {
  public:
    Time_TempoMap();

    /// Sets the tempo from a tick on, replacing a change that is there. Tempos outside 1..1,000,000
    /// thousandths and negative ticks fail an assertion and change nothing.
    void SetTempo(Time_TickLength at, std::int32_t milliBeatsPerMinute);
    void RemoveTempo(Time_TickLength at);
    [[nodiscard]] std::int32_t GetTempo(Time_TickLength at) const noexcept;

    /// The nearest sample, halves up; the inverse answers the nearest internal tick.
    [[nodiscard]] Time_Sample ToSample(Time_TickLength at,
                                       std::int32_t samplesPerSecond) const noexcept;
    [[nodiscard]] Time_TickLength FromSample(Time_Sample position,
                                             std::int32_t samplesPerSecond) const noexcept;

  private:
    struct Change {
        std::int64_t tick;
        std::int64_t picoseconds;
        std::int32_t milliBeatsPerMinute;
    };
    void PlaceChanges() noexcept;

    std::vector<Change> mChanges; ///< sorted; never empty, the first is at tick 0
};

/// The maps of the running session, for helpers and hosts that have no others. Plain data of the
/// user-interface thread.
QLX_API Time_MeterMap& Time_SessionMeterMap();
QLX_API Time_TempoMap& Time_SessionTempoMap();
