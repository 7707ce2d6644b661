// Time code: a frame count with a format, its labels ("01:00:00;00") and its place in samples.
#pragma once

#include <compare>
#include <string>
#include <string_view>

#include "mediakit/time/time_format.h"
#include "mediakit/time/time_sample.h"

/// A time-code value: a signed 64-bit count of frames since label zero and 0..99 hundredths of a
/// frame after it (also when the count is negative: half a frame before zero is frame -1 and 50).
/// It neither wraps at 24 hours nor stops at zero by itself: hours go on past 23, negative values
/// are labelled with "-" before the label of their distance from zero.
class QLX_API Time_SMPTE {
  public:
    static constexpr std::int32_t cSubframesPerFrame = 100;

    /// A label taken apart. Out-of-range fields carry into the next larger one when a value is
    /// made.
    struct Fields {
        bool negative = false;
        std::int64_t hours = 0;
        std::int64_t minutes = 0;
        std::int64_t seconds = 0;
        std::int64_t frames = 0;
        std::int32_t subframes = 0; ///< 0..99
    };

    /// Zero, in the session's format.
    Time_SMPTE() noexcept;
    explicit Time_SMPTE(ETimeCodeFormat format, std::int64_t totalFrames = 0,
                        std::int32_t subframes = 0) noexcept;
    Time_SMPTE(ETimeCodeFormat format, const Fields& label) noexcept;

    [[nodiscard]] ETimeCodeFormat GetFormat() const noexcept { return mFormat; }
    [[nodiscard]] std::int64_t GetTotalFrames() const noexcept { return mFrames; }
    [[nodiscard]] std::int32_t GetSubframes() const noexcept { return mSubframes; }
    /// Frames times 100 plus subframes, held at the limits of 64 bits.
    [[nodiscard]] std::int64_t GetTotalSubframes() const noexcept;
    [[nodiscard]] Fields GetFields() const noexcept;
    [[nodiscard]] bool IsNegative() const noexcept { return mFrames < 0; }

    /// Sets the count; the subframes become 0.
    void SetFromTotalFrames(std::int64_t frames) noexcept;
    void SetFromTotalSubframes(std::int64_t subframes) noexcept;
    /// Carries what is out of range (75 seconds are 1:15). A drop-frame label that does not exist
    /// becomes the next one that does.
    void SetFromFields(const Fields& label) noexcept;
    /// Brings the value into the 24 hours from zero, by whole days of the format.
    void WrapToDay() noexcept;

    /// Turns a step counted in labels into a step in frames by taking the left-out numbers off: an
    /// hour of 29.97 drop, 108,000 numbers, is 107,892 frames. Symmetric for negative steps; other
    /// formats return the step as it is.
    [[nodiscard]] static std::int64_t DropFrames(std::int64_t labelledFrames,
                                                 ETimeCodeFormat format) noexcept;

    /// The length from label zero in samples, at the session's rate or a stated one. Nearest
    /// sample.
    [[nodiscard]] Time_SampleLength GetTotalSamples() const noexcept;
    [[nodiscard]] Time_SampleLength GetTotalSamples(std::int32_t samplesPerSecond) const noexcept;
    /// The frame (with its subframe, when wanted) in which the sample after this length lies.
    void SetFromTotalSamples(Time_SampleLength length, std::int32_t samplesPerSecond,
                             bool withSubframes = false) noexcept;

    /// Orders by real time, so values of different formats compare by when they are.
    [[nodiscard]] friend std::strong_ordering operator<=>(const Time_SMPTE& a,
                                                          const Time_SMPTE& b) noexcept {
        return a.Compare(b);
    }
    /// Same format, same count.
    [[nodiscard]] friend bool operator==(const Time_SMPTE& a, const Time_SMPTE& b) noexcept {
        return a.mFrames == b.mFrames && a.mSubframes == b.mSubframes && a.mFormat == b.mFormat;
    }

  private:
    [[nodiscard]] std::strong_ordering Compare(const Time_SMPTE& other) const noexcept;

    std::int64_t mFrames = 0;
    ETimeCodeFormat mFormat;
    std::int32_t mSubframes = 0;
};

/// Texts and session positions of time code.
class QLX_API Time_SMPTEUtils {
  public:
    Time_SMPTEUtils() = delete;

    /// Room for the longest text: sign, 16 digits of hours, three separators, fields and subframes.
    static constexpr std::size_t cMaxChars = 40;

    [[nodiscard]] static bool NeedsThreeFrameDigits(ETimeCodeFormat format);
    [[nodiscard]] static std::int32_t GetFramesPerSecond(ETimeCodeFormat format);
    [[nodiscard]] static bool IsDropFrame(ETimeCodeFormat format);

    /// "HH:MM:SS:FF", with ";" before the frames of a drop-frame format, three frame digits above
    /// 100 frames a second, ".SS" when subframes are asked for, more hour digits past 99 hours.
    [[nodiscard]] static std::string ToString(const Time_SMPTE& time, bool withSubframes = false);
    /// The same without a string: writes at most cMaxChars and returns how many; no terminating
    /// zero.
    static std::size_t ToChars(const Time_SMPTE& time, bool withSubframes, char* out) noexcept;

    /// Reads four groups of digits, ":" between them (":" or ";" before the frames in every
    /// format), optionally "." and one or two subframe digits, optionally a sign in front. What is
    /// out of range carries. Returns false and leaves time alone when the text is anything else.
    static bool FromString(std::string_view text, ETimeCodeFormat format,
                           Time_SMPTE& time) noexcept;

    /// The time code of the session's first sample.
    [[nodiscard]] static Time_SMPTE GetSessionStart() noexcept;
    /// Where in the session a time code lies; negative before its start. Counted from the start
    /// frame, so that the start itself is sample 0 whatever the rate.
    [[nodiscard]] static Time_Sample GetSamplesFromStartFrame(const Time_SMPTE& time) noexcept;
    /// The time code, in a format, of a session position.
    [[nodiscard]] static Time_SMPTE FromSessionSample(Time_Sample position, ETimeCodeFormat format,
                                                      bool withSubframes = false) noexcept;
};
