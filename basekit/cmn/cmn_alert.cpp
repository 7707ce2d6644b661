#include "basekit/cmn/cmn_alert.h"

#include <atomic>

#include "basekit/cmn/cmn_trace.h"

namespace {
void WriteToTrace(const char* message) { Cmn_TraceWrite("ALERT %s", message); }

std::atomic<Cmn_AlertHandler> gHandler{WriteToTrace};
} // namespace

Cmn_AlertHandler Cmn_SetAlertHandler(Cmn_AlertHandler handler) {
    return gHandler.exchange(handler ? handler : WriteToTrace);
}

void Cmn_ReportAlert(const char* message) { gHandler.load()(message); }
