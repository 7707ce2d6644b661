// The switches of the trace channels as the library's own sources read them: without a call. Not
// for hosts.
#pragma once

#include <atomic>

#include "basekit/cmn/cmn_internal.h"
#include "basekit/cmn/cmn_trace.h"

/// A bit for every channel that is on.
extern QLX_INTERNAL std::atomic<std::uint64_t> gEnabledTraceChannels;

/// Cmn_TraceIsEnabled for a channel that exists.
[[nodiscard]] inline bool Cmn_TraceIsOn(ETraceChannel channel) noexcept {
    return (gEnabledTraceChannels.load(std::memory_order_relaxed) >> channel & 1) != 0;
}
