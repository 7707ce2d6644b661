#include "basekit/cmn/cmn_assert.h"

#include "basekit/cmn/cmn_trace.h"

namespace {

void WriteToTrace(const char* text, const char* source, int line) {
    Cmn_TraceWrite("ASSERT %s %s line %d", text, source, line);
}

Cmn_AssertionHandler sHandler = &WriteToTrace;

} // namespace

Cmn_AssertionHandler Cmn_SetAssertionHandler(Cmn_AssertionHandler handler) {
    const Cmn_AssertionHandler previous = sHandler;
    sHandler = handler ? handler : &WriteToTrace;
    return previous;
}

void Cmn_Assert(const char* text, const char* source, int line) { sHandler(text, source, line); }

void Cmn_TraceAssert(const char* text, const char* source, int line) {
    Cmn_Trace(kTrace_Assertions, "CMN_TRACEASSERT %s %s line %d", text, source, line);
}
