#include "basekit/cmn/cmn_assert.h"

#include <atomic>

#include "basekit/cmn/cmn_trace.h"

namespace {

void WriteToTrace(const char* text, const char* source, int line) {
    Cmn_TraceWrite("ASSERT %s %s line %d", text, source, line);
}

constinit std::atomic<Cmn_AssertionHandler> sHandler{&WriteToTrace};

} // namespace

Cmn_AssertionHandler Cmn_SetAssertionHandler(Cmn_AssertionHandler handler) {
    return sHandler.exchange(handler ? handler : &WriteToTrace);
}

void Cmn_Assert(const char* text, const char* source, int line) {
    sHandler.load()(text, source, line);
}

void Cmn_TraceAssert(const char* text, const char* source, int line) {
    Cmn_Trace(kTrace_Assertions, "CMN_TRACEASSERT %s %s line %d", text, source, line);
}
