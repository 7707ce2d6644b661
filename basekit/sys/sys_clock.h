// The framework's clock. Idle times, multi-click and tap intervals are read from here, so a test
// that sets the source needs no sleeping.
#pragma once

#include "basekit/cmn/cmn_types.h"

/// Ticks in a second: a tick is one sixtieth of a second.
inline constexpr std::int32_t kSys_ClockTicksPerSecond = 60;

/// Ticks since an arbitrary start; wraps after 2^32 ticks (over two years).
[[nodiscard]] QLX_API std::uint32_t Sys_Clock_Ticks();

/// Seconds since the same start, monotonic, not the time of day.
[[nodiscard]] QLX_API double Sys_Clock_Seconds();

/// Answers the time in seconds for both functions above.
using Sys_ClockSource = double (*)();

/// Installs a source and returns the previous one; null brings back the system's monotonic clock.
QLX_API Sys_ClockSource Sys_SetClockSource(Sys_ClockSource source);
