#include "newfilelibs/cmn/cmn_interval.h"

#include "basekit/cmn/cmn_assert.h"

bool Cmn_Interval::Report(const Cmn_Rect<int>& rect) noexcept {
    if (!IsInRange(rect.left, rect.right))
        Cmn_TraceAssert("IsInRange(rect.left, rect.right)", __FILE__, __LINE__);
    if (!IsInRange(rect.top, rect.bottom))
        Cmn_TraceAssert("IsInRange(rect.top, rect.bottom)", __FILE__, __LINE__);
    return false;
}
