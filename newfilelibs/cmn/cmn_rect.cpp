#include "newfilelibs/cmn/cmn_rect.h"

#include <ostream>

#include "basekit/cmn/cmn_assert.h"

namespace {

// The source and line that hosts' trace readers know this check by.
constexpr const char* kSource = "newfilelibs/cmn/cmn_rect";
constexpr int kSubtractOutputLine = 228;

} // namespace

template <>
int Cmn_Rect<int>::Subtract(const Cmn_Rect& cutter, Cmn_Rect* outP) const noexcept {
    if (!outP) {
        Cmn_Assert("outP", kSource, kSubtractOutputLine);
        return 0;
    }
    return Cut(cutter, outP);
}

std::ostream& operator<<(std::ostream& out, const Cmn_Point<int>& point) {
    return out << '(' << point.x << ", " << point.y << ')';
}

std::ostream& operator<<(std::ostream& out, const Cmn_Rect<int>& rect) {
    return out << '(' << rect.left << ", " << rect.top << ", " << rect.right << ", " << rect.bottom
               << ')';
}
