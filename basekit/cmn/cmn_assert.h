// Assertions that report and carry on. A broken contract is told to one replaceable handler with
// the condition's text, the source and the line; the caller then continues with its stated
// fallback, in every build.
#pragma once

#include "basekit/cmn/cmn_types.h"

/// Receives every failed assertion. Called on the thread where it failed; must not throw.
using Cmn_AssertionHandler = void (*)(const char* text, const char* source, int line);

/// Installs a handler and returns the previous one; null brings back the default, which writes one
/// line "ASSERT text source line N" to the trace output.
QLX_API Cmn_AssertionHandler Cmn_SetAssertionHandler(Cmn_AssertionHandler handler);

/// Reports a failed assertion. Text and source are not kept beyond the call.
QLX_API void Cmn_Assert(const char* text, const char* source, int line);

/// Reports a failed trace assertion: when tracing is on, the line "CMN_TRACEASSERT text source line
/// N" goes to the trace output. Weaker than Cmn_Assert: meant for what a caller can live with.
QLX_API void Cmn_TraceAssert(const char* text, const char* source, int line);

/// Checks a condition in every build and reports it when it does not hold.
#define CMN_ASSERT(condition)                                                                      \
    (static_cast<bool>(condition) ? static_cast<void>(0)                                           \
                                  : Cmn_Assert(#condition, __FILE__, __LINE__))
