#include "mediakit/time/time_format.h"

#include <cstring>

#include "basekit/cmn/cmn_assert.h"
#include "mediakit/time/time_formattable.h"
#include "mediakit/time/time_muldiv.h"

namespace {

struct SessionState {
    ETimeCodeFormat format = ETimeCodeFormat::F30;
    ETimeCodeFormat filmFormat = ETimeCodeFormat::F24;
    std::int64_t frameOffset = 0;
    std::int32_t sampleRate = 48000;
    std::uint32_t changes = 0;
};

constinit SessionState sSession;

template <class Value>
void Change(Value& field, Value value) noexcept {
    if (field == value)
        return;
    field = value;
    ++sSession.changes;
}

} // namespace

const Time_FormatInfo& Time_GetFormatInfo(ETimeCodeFormat format) {
    CMN_ASSERT(Time_IsFormat(format));
    return cTime_Formats[static_cast<std::size_t>(Time_IsFormat(format) ? format
                                                                        : ETimeCodeFormat::F30)];
}

bool Time_FindFormat(const char* name, ETimeCodeFormat& format) {
    for (const Time_FormatInfo& info : cTime_Formats)
        if (std::strcmp(info.name, name) == 0) {
            format = info.format;
            return true;
        }
    return false;
}

std::int64_t Time_UnitsToSamples(const Time_FormatInfo& info, std::int64_t units,
                                 std::int32_t unitsPerFrame,
                                 std::int32_t samplesPerSecond) noexcept {
    return Time_MulDiv(units, std::int64_t{samplesPerSecond} * info.rateDenominator,
                       std::int64_t{info.rateNumerator} * unitsPerFrame, Time_ERounding::Nearest);
}

// With r samples to the unit, round(u * r) <= s holds exactly when u * r < s + 1/2. Doubled to stay
// whole, the largest such u is the ceiling of (2s + 1) / 2r, less one.
std::int64_t Time_SamplesToUnits(const Time_FormatInfo& info, std::int64_t samples,
                                 std::int32_t unitsPerFrame,
                                 std::int32_t samplesPerSecond) noexcept {
    const std::int64_t doubled =
        Cmn_SaturatingAdd(Cmn_SaturatingAdd(samples, samples), std::int64_t{1});
    const std::int64_t after = Time_MulDiv(
        doubled, std::int64_t{info.rateNumerator} * unitsPerFrame,
        std::int64_t{2} * samplesPerSecond * info.rateDenominator, Time_ERounding::Ceiling);
    return Cmn_SaturatingAdd(after, std::int64_t{-1});
}

ETimeCodeFormat Time_Session::GetTimeCodeFormat() noexcept { return sSession.format; }

void Time_Session::SetTimeCodeFormat(ETimeCodeFormat format) noexcept {
    Change(sSession.format, Time_GetFormatInfo(format).format);
}

std::int64_t Time_Session::GetFrameOffset() noexcept { return sSession.frameOffset; }

void Time_Session::SetFrameOffset(std::int64_t frames) noexcept {
    Change(sSession.frameOffset, frames);
}

std::int32_t Time_Session::GetSampleRate() noexcept { return sSession.sampleRate; }

void Time_Session::SetSampleRate(std::int32_t samplesPerSecond) noexcept {
    CMN_ASSERT(samplesPerSecond > 0);
    if (samplesPerSecond > 0)
        Change(sSession.sampleRate, samplesPerSecond);
}

ETimeCodeFormat Time_Session::GetFilmFormat() noexcept { return sSession.filmFormat; }

void Time_Session::SetFilmFormat(ETimeCodeFormat format) noexcept {
    Change(sSession.filmFormat, Time_GetFormatInfo(format).format);
}

std::uint32_t Time_Session::GetChangeCount() noexcept { return sSession.changes; }
