#include "basekit/cmn/cmn_failure.h"

#include <cstdio>

Cmn_Failure::Cmn_Failure(std::int32_t code) noexcept : mCode(code) {
    std::snprintf(mText, sizeof mText, "failure %ld", static_cast<long>(code));
}

const char* Cmn_Failure::what() const noexcept { return mText; }

void Cmn_RaiseFailure(std::int32_t code) { throw Cmn_Failure(code); }
