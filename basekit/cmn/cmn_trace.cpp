#include "basekit/cmn/cmn_trace.h"

#include <cstdarg>
#include <cstdio>
#include <string>

#include "basekit/cmn/cmn_traceswitch.h"

// Any thread may trace; what reaches the sink from several at once is the sink's to order.
constinit std::atomic<std::uint64_t> gEnabledTraceChannels{0};

namespace {

void WriteToStandardError(const char* line) {
    std::fputs(line, stderr);
    std::fputc('\n', stderr);
}

constinit std::atomic<Cmn_TraceSink> sSink{&WriteToStandardError};

bool IsChannel(int channel) { return channel >= 0 && channel < kTrace_ChannelCount; }

void FormatAndWrite(const char* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    char shortLine[512];
    const int length = std::vsnprintf(shortLine, sizeof shortLine, format, arguments);
    if (length >= static_cast<int>(sizeof shortLine)) {
        std::string longLine(static_cast<std::size_t>(length), '\0');
        std::vsnprintf(longLine.data(), longLine.size() + 1, format, again);
        sSink.load()(longLine.c_str());
    } else if (length >= 0) {
        sSink.load()(shortLine);
    }
    va_end(again);
}

} // namespace

void Cmn_TraceEnable(int channel, bool on) {
    if (!IsChannel(channel))
        return;
    const std::uint64_t bit = std::uint64_t{1} << channel;
    if (on)
        gEnabledTraceChannels.fetch_or(bit, std::memory_order_relaxed);
    else
        gEnabledTraceChannels.fetch_and(~bit, std::memory_order_relaxed);
}

bool Cmn_TraceIsEnabled(int channel) {
    return IsChannel(channel) && Cmn_TraceIsOn(static_cast<ETraceChannel>(channel));
}

void Cmn_Trace(int channel, const char* format, ...) {
    if (!Cmn_TraceIsEnabled(channel))
        return;
    std::va_list arguments;
    va_start(arguments, format);
    FormatAndWrite(format, arguments);
    va_end(arguments);
}

void Cmn_TraceWrite(const char* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    FormatAndWrite(format, arguments);
    va_end(arguments);
}

Cmn_TraceSink Cmn_SetTraceSink(Cmn_TraceSink sink) {
    return sSink.exchange(sink ? sink : &WriteToStandardError);
}
