#include "basekit/sys/sys_clock.h"

#include <chrono>

namespace {

double SystemSeconds() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

Sys_ClockSource sSource = &SystemSeconds;

} // namespace

double Sys_Clock_Seconds() { return sSource(); }

std::uint32_t Sys_Clock_Ticks() {
    return static_cast<std::uint32_t>(
        static_cast<std::int64_t>(sSource() * kSys_ClockTicksPerSecond));
}

Sys_ClockSource Sys_SetClockSource(Sys_ClockSource source) {
    const Sys_ClockSource previous = sSource;
    sSource = source ? source : &SystemSeconds;
    return previous;
}
