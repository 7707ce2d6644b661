#include "mediakit/time/time_format.h"

#include <cstring>

#include "basekit/cmn/cmn_assert.h"
#include "mediakit/time/time_muldiv.h"

namespace {

// Order follows the enumeration; the rows are indexed by it. Dropping 2 of 30 numbers (SMPTE 12M)
// scales with the rate: 4 of 60, 8 of 120.
constexpr Time_FormatInfo cFormats[cTimeCodeFormatCount] = {
    {ETimeCodeFormat::F23976, "23.976", 24, 24000, 1001, 0, 2},
    {ETimeCodeFormat::F24, "24", 24, 24, 1, 0, 2},
    {ETimeCodeFormat::F25, "25", 25, 25, 1, 0, 2},
    {ETimeCodeFormat::F2997, "29.97", 30, 30000, 1001, 0, 2},
    {ETimeCodeFormat::F2997Drop, "29.97 drop", 30, 30000, 1001, 2, 2},
    {ETimeCodeFormat::F30, "30", 30, 30, 1, 0, 2},
    {ETimeCodeFormat::F30Drop, "30 drop", 30, 30, 1, 2, 2},
    {ETimeCodeFormat::F47952, "47.952", 48, 48000, 1001, 0, 2},
    {ETimeCodeFormat::F48, "48", 48, 48, 1, 0, 2},
    {ETimeCodeFormat::F50, "50", 50, 50, 1, 0, 2},
    {ETimeCodeFormat::F5994, "59.94", 60, 60000, 1001, 0, 2},
    {ETimeCodeFormat::F5994Drop, "59.94 drop", 60, 60000, 1001, 4, 2},
    {ETimeCodeFormat::F60, "60", 60, 60, 1, 0, 2},
    {ETimeCodeFormat::F60Drop, "60 drop", 60, 60, 1, 4, 2},
    {ETimeCodeFormat::F100, "100", 100, 100, 1, 0, 2},
    {ETimeCodeFormat::F11988, "119.88", 120, 120000, 1001, 0, 3},
    {ETimeCodeFormat::F11988Drop, "119.88 drop", 120, 120000, 1001, 8, 3},
    {ETimeCodeFormat::F120, "120", 120, 120, 1, 0, 3},
    {ETimeCodeFormat::F120Drop, "120 drop", 120, 120, 1, 8, 3},
};

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

bool IsFormat(ETimeCodeFormat format) noexcept {
    const auto index = static_cast<std::int32_t>(format);
    return index >= 0 && index < cTimeCodeFormatCount;
}

} // namespace

const Time_FormatInfo& Time_GetFormatInfo(ETimeCodeFormat format) {
    if (!IsFormat(format)) {
        Cmn_Assert("IsFormat(format)", "mediakit/time/time_format", __LINE__);
        format = ETimeCodeFormat::F30;
    }
    return cFormats[static_cast<std::size_t>(format)];
}

bool Time_FindFormat(const char* name, ETimeCodeFormat& format) {
    for (const Time_FormatInfo& info : cFormats)
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
