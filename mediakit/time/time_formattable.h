// The table of time-code formats, for sources of this folder that look rows up millions of times.
// Everyone else asks Time_GetFormatInfo.
#pragma once

#include "mediakit/time/time_format.h"

// Order follows the enumeration; the rows are indexed by it. Dropping 2 of 30 numbers (SMPTE 12M)
// scales with the rate: 4 of 60, 8 of 120.
inline constexpr Time_FormatInfo cTime_Formats[cTimeCodeFormatCount] = {
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

[[nodiscard]] constexpr bool Time_IsFormat(ETimeCodeFormat format) noexcept {
    const auto index = static_cast<std::int32_t>(format);
    return index >= 0 && index < cTimeCodeFormatCount;
}

/// The row without a call when the format is good; the asserting road when it is not.
[[nodiscard]] inline const Time_FormatInfo& Time_FormatRow(ETimeCodeFormat format) noexcept {
    return Time_IsFormat(format) ? cTime_Formats[static_cast<std::size_t>(format)]
                                 : Time_GetFormatInfo(format);
}
