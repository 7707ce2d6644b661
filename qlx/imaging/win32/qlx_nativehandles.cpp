#include "qlx/imaging/win32/qlx_nativehandles.h"

#include <array>
#include <numeric>

#include "basekit/cmn/cmn_trace.h"

namespace {

constinit std::array<int, kNative_KindCount> sCounts{};
constinit std::array<bool, kNative_KindCount> sReported{};
constinit int sSuccessesLeft = -1;

} // namespace

int QLX_NativeHandles::GetCount(EQLX_NativeKind kind) noexcept {
    return sCounts[std::size_t(kind)];
}

int QLX_NativeHandles::GetTotal() noexcept {
    return std::accumulate(sCounts.begin(), sCounts.end(), 0);
}

const char* QLX_NativeHandles::GetKindName(EQLX_NativeKind kind) noexcept {
    static constexpr std::array<const char*, kNative_KindCount> kNames = {
        "font", "bitmap",         "region",         "brush",
        "pen",  "memory context", "window context", "interface"};
    return kNames[std::size_t(kind)];
}

void QLX_NativeHandles::FailCreationsAfter(int successes) noexcept {
    sSuccessesLeft = successes;
    sReported = {};
}

bool QLX_NativeHandles::MayCreate() noexcept {
    if (sSuccessesLeft < 0)
        return true;
    if (sSuccessesLeft == 0)
        return false;
    --sSuccessesLeft;
    return true;
}

void QLX_NativeHandles::Count(EQLX_NativeKind kind, int change) noexcept {
    sCounts[std::size_t(kind)] += change;
    if (change > 0)
        sReported[std::size_t(kind)] = false;
}

void QLX_NativeHandles::ReportFailure(EQLX_NativeKind kind, const char* what) noexcept {
    if (!std::exchange(sReported[std::size_t(kind)], true))
        Cmn_TraceWrite("%s failed: no %s can be made (%d held)", what, GetKindName(kind),
                       GetCount(kind));
}
