#include "mediakit/time/time_minsec.h"

#include "mediakit/time/time_muldiv.h"
#include "mediakit/time/time_scan.h"

std::string Time_MinSec::ToString() const {
    const std::uint64_t distance = Time_Magnitude(mMilliseconds);
    std::string text = Time_SignedInWidth(mMilliseconds < 0, distance / 60000, cMinuteDigits);
    text += ':';
    Time_AppendPadded(text, distance / 1000 % 60, 2, '0');
    text += '.';
    Time_AppendPadded(text, distance % 1000, 3, '0');
    return text;
}

bool Time_MinSec::FromString(std::string_view text) noexcept {
    while (Time_TakeChar(text, ' ')) {
    }
    const bool negative = Time_TakeChar(text, '-');
    if (!negative)
        Time_TakeChar(text, '+');
    std::int64_t minutes = 0;
    std::int64_t seconds = 0;
    std::int64_t fraction = 0;
    std::size_t digits = 0;
    // 14 digits of minutes stay inside 64 bits of milliseconds.
    if (!Time_TakeDigits(text, 14, minutes, digits) || !Time_TakeChar(text, ':') ||
        !Time_TakeDigits(text, 4, seconds, digits) || !Time_TakeChar(text, '.') ||
        !Time_TakeDigits(text, 3, fraction, digits) || !text.empty())
        return false;
    for (; digits < 3; ++digits)
        fraction *= 10;
    const std::int64_t total = minutes * 60000 + seconds * 1000 + fraction;
    mMilliseconds = negative ? -total : total;
    return true;
}

Time_SampleLength Time_MinSec::GetSamples(std::int32_t samplesPerSecond) const noexcept {
    return Time_SampleLength(
        Time_MulDiv(mMilliseconds, samplesPerSecond, 1000, Time_ERounding::Nearest));
}

void Time_MinSec::SetFromSamples(Time_SampleLength length, std::int32_t samplesPerSecond) noexcept {
    mMilliseconds =
        Time_MulDiv(length.GetSamples(), 1000, samplesPerSecond, Time_ERounding::Nearest);
}
