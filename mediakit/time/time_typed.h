// A position or a length that says which clock it is counted by: absolute samples or musical ticks.
#pragma once

#include "mediakit/time/time_barbeattick.h"
#include "mediakit/time/time_sample.h"

/// What a typed time is counted in. Samples stay where they are when the tempo changes, ticks move.
enum class Time_EType : std::int32_t { Samples, Ticks };

/// A position in the session: samples from its first sample, or internal ticks from bar 1.
class QLX_API Time_Typed {
  public:
    /// The earliest position that may be typed.
    static constexpr std::int64_t sMinTimes = 0;
    /// The last sample a session may have: 24 hours at 192 kHz.
    static constexpr std::int64_t sMaxSessionSample = std::int64_t{24} * 3600 * 192000;

    constexpr Time_Typed() noexcept = default;
    constexpr explicit Time_Typed(Time_Sample position) noexcept
        : mType(Time_EType::Samples), mValue(position.GetSamples()) {}
    /// Ticks from bar 1.
    constexpr explicit Time_Typed(Time_TickLength ticks) noexcept
        : mType(Time_EType::Ticks), mValue(ticks.GetTicks()) {}

    [[nodiscard]] constexpr Time_EType GetType() const noexcept { return mType; }
    /// Samples or internal ticks, as the type says.
    [[nodiscard]] constexpr std::int64_t GetValue() const noexcept { return mValue; }

    /// The position in samples or ticks, through the session's tempo map when the types differ.
    [[nodiscard]] Time_Sample GetSample() const;
    [[nodiscard]] Time_TickLength GetTicks() const;

    friend constexpr bool operator==(const Time_Typed&, const Time_Typed&) noexcept = default;

  private:
    Time_EType mType = Time_EType::Samples;
    std::int64_t mValue = 0;
};

/// A length counted in samples or in internal ticks. How long ticks last depends on where they lie,
/// so conversions name the anchor.
class QLX_API Time_TypedLength {
  public:
    constexpr Time_TypedLength() noexcept = default;
    constexpr explicit Time_TypedLength(Time_SampleLength length) noexcept
        : mType(Time_EType::Samples), mValue(length.GetSamples()) {}
    constexpr explicit Time_TypedLength(Time_TickLength length) noexcept
        : mType(Time_EType::Ticks), mValue(length.GetTicks()) {}

    [[nodiscard]] constexpr Time_EType GetType() const noexcept { return mType; }
    [[nodiscard]] constexpr std::int64_t GetValue() const noexcept { return mValue; }

    /// The other end of the span that has this length and begins (Forward) or ends (Backward) at an
    /// anchor. The answer is counted as the length is.
    [[nodiscard]] Time_Typed GetOtherEnd(const Time_Typed& anchor, ELength_Dir direction) const;
    /// The span from its anchor in samples; not negative for a positive length in either direction.
    [[nodiscard]] Time_SampleLength GetSamples(const Time_Typed& anchor,
                                               ELength_Dir direction) const;

    friend constexpr bool operator==(const Time_TypedLength&,
                                     const Time_TypedLength&) noexcept = default;

  private:
    Time_EType mType = Time_EType::Samples;
    std::int64_t mValue = 0;
};
