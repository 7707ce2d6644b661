// Trace output: numbered channels, each switchable while the program runs, all off at start. A call
// on a channel that is off costs one load and one test.
#pragma once

#include "basekit/cmn/cmn_types.h"

/// The framework's own channels. Hosts may use the numbers from kTrace_FirstHostChannel on.
enum ETraceChannel : int {
    kTrace_Assertions = 0,  ///< trace assertions
    kTrace_Commands = 1,    ///< commands performed, committed, failed
    kTrace_CommandKeys = 2, ///< who handled a command key
    kTrace_Events = 3,      ///< native events and their road
    kTrace_Views = 4,       ///< the view tree and its descriptions
    kTrace_Drawing = 5,     ///< painters and invalidation
    kTrace_Files = 6,       ///< files read and written
    kTrace_FirstHostChannel = 32,
    kTrace_ChannelCount = 64
};

/// Switches a channel on or off; numbers out of range are ignored.
QLX_API void Cmn_TraceEnable(int channel, bool on);
[[nodiscard]] QLX_API bool Cmn_TraceIsEnabled(int channel);

/// Writes one line (without a line end in the format, which is printf's) when the channel is on.
QLX_API void Cmn_Trace(int channel, const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 2, 3)))
#endif
    ;

/// Writes one line whatever the channels' state.
QLX_API void Cmn_TraceWrite(const char* format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 1, 2)))
#endif
    ;

/// Receives finished lines, without a line end.
using Cmn_TraceSink = void (*)(const char* line);

/// Installs a sink and returns the previous one; null brings back the default, standard error.
QLX_API Cmn_TraceSink Cmn_SetTraceSink(Cmn_TraceSink sink);
