#include "newfilelibs/cmn/cmn_interval.h"

#include "basekit/cmn/cmn_assert.h"

bool Cmn_Interval::CheckRect(const Cmn_Rect<int>& rect) noexcept {
    const bool widthFits = IsInRange(rect.left, rect.right);
    const bool heightFits = IsInRange(rect.top, rect.bottom);
    if (!widthFits)
        Cmn_TraceAssert("IsInRange(rect.left, rect.right)", __FILE__, __LINE__);
    if (!heightFits)
        Cmn_TraceAssert("IsInRange(rect.top, rect.bottom)", __FILE__, __LINE__);
    return widthFits && heightFits;
}
