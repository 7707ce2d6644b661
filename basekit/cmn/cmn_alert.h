// Error alerts from code that knows no windows: the host shows them as it shows its own.
#pragma once

#include "basekit/cmn/cmn_types.h"

/// Shows a message to the user, or keeps it for later. Must not throw.
using Cmn_AlertHandler = void (*)(const char* message);

/// Installs a handler and returns the previous one; null brings back the default, which writes the
/// line "ALERT message" to the trace output.
QLX_API Cmn_AlertHandler Cmn_SetAlertHandler(Cmn_AlertHandler handler);

/// Reports an error that the user ought to know of. The message is not kept beyond the call.
QLX_API void Cmn_ReportAlert(const char* message);
