#include "mediakit/time/time_feetframe.h"

#include "mediakit/time/time_muldiv.h"
#include "mediakit/time/time_scan.h"

Time_FeetFrame::Time_FeetFrame(std::int64_t totalFrames, std::int32_t subframes) noexcept
    : mFrames(Cmn_SaturatingAdd(totalFrames, Time_FloorDiv(subframes, cSubframesPerFrame))),
      mSubframes(static_cast<std::int32_t>(Time_FloorMod(subframes, cSubframesPerFrame))) {}

Time_FeetFrame Time_FeetFrame::FromFeetAndFrames(std::int64_t feet, std::int64_t frames,
                                                 std::int32_t subframes) noexcept {
    return Time_FeetFrame(Cmn_SaturatingAdd(Time_SaturatingMultiply(feet, cFramesPerFoot), frames),
                          subframes);
}

std::int64_t Time_FeetFrame::GetTotalSubframes() const noexcept {
    return Cmn_SaturatingAdd(Time_SaturatingMultiply(mFrames, cSubframesPerFrame),
                             std::int64_t{mSubframes});
}

void Time_FeetFrame::SetFromTotalSubframes(std::int64_t subframes) noexcept {
    mFrames = Time_FloorDiv(subframes, cSubframesPerFrame);
    mSubframes = static_cast<std::int32_t>(Time_FloorMod(subframes, cSubframesPerFrame));
}

std::string Time_FeetFrame::ToString(bool withSubframes) const {
    const bool turned = mFrames < 0 && withSubframes && mSubframes != 0;
    const std::uint64_t distance = Time_Magnitude(turned ? mFrames + 1 : mFrames);
    std::string text = Time_SignedInWidth(mFrames < 0, distance / cFramesPerFoot, cFeetDigits);
    text += '+';
    Time_AppendPadded(text, distance % cFramesPerFoot, 2, '0');
    if (withSubframes) {
        text += '.';
        Time_AppendPadded(
            text, static_cast<std::uint64_t>(turned ? cSubframesPerFrame - mSubframes : mSubframes),
            2, '0');
    }
    return text;
}

bool Time_FeetFrame::FromString(std::string_view text) noexcept {
    while (Time_TakeChar(text, ' ')) {
    }
    const bool negative = Time_TakeChar(text, '-');
    std::int64_t feet = 0;
    std::int64_t frames = 0;
    std::int64_t subframes = 0;
    std::size_t digits = 0;
    if (!Time_TakeDigits(text, 16, feet, digits) || !Time_TakeChar(text, '+') ||
        !Time_TakeDigits(text, 9, frames, digits))
        return false;
    if (Time_TakeChar(text, '.')) {
        if (!Time_TakeDigits(text, 2, subframes, digits))
            return false;
        if (digits == 1)
            subframes *= 10;
    }
    if (!text.empty())
        return false;
    const std::int64_t sign = negative ? -1 : 1;
    *this =
        FromFeetAndFrames(sign * feet, sign * frames, static_cast<std::int32_t>(sign * subframes));
    return true;
}

Time_SampleLength Time_FeetFrame::GetSamples(std::int32_t samplesPerSecond) const noexcept {
    return Time_SampleLength(Time_UnitsToSamples(Time_GetFormatInfo(Time_Session::GetFilmFormat()),
                                                 GetTotalSubframes(), cSubframesPerFrame,
                                                 samplesPerSecond));
}

void Time_FeetFrame::SetFromSamples(Time_SampleLength length, std::int32_t samplesPerSecond,
                                    bool withSubframes) noexcept {
    const Time_FormatInfo& info = Time_GetFormatInfo(Time_Session::GetFilmFormat());
    if (withSubframes)
        SetFromTotalSubframes(
            Time_SamplesToUnits(info, length.GetSamples(), cSubframesPerFrame, samplesPerSecond));
    else
        *this = Time_FeetFrame(Time_SamplesToUnits(info, length.GetSamples(), 1, samplesPerSecond));
}

Time_FeetFrame& Time_FeetFrame::operator+=(const Time_FeetFrame& other) noexcept {
    return *this = Time_FeetFrame(Cmn_SaturatingAdd(mFrames, other.mFrames),
                                  mSubframes + other.mSubframes);
}

Time_FeetFrame& Time_FeetFrame::operator-=(const Time_FeetFrame& other) noexcept {
    return *this = Time_FeetFrame(Cmn_SaturatingAdd(mFrames, Time_SaturatingNegate(other.mFrames)),
                                  mSubframes - other.mSubframes);
}
