// Makes the framework's own allocations fail one after the other.
#pragma once

#include <gtest/gtest.h>

#include "basekit/cmn/cmn_failure.h"
#include "basekit/cmn/cmn_memory.h"

/// Runs body with the first allocation failing, then the second, and so on until it succeeds; every
/// failing run must raise -108. Answers how many runs failed. After each failed run check() looks
/// at what is left behind.
template <class Body, class Check>
int FailEachAllocation(Body body, Check check) {
    for (int allowed = 0;; ++allowed) {
        Cmn_FailAllocationsAfter(allowed);
        try {
            body();
            Cmn_FailAllocationsAfter(-1);
            return allowed;
        } catch (const Cmn_Failure& failure) {
            Cmn_FailAllocationsAfter(-1);
            EXPECT_EQ(failure.GetCode(), kFailure_OutOfMemory);
            check();
        }
    }
}
