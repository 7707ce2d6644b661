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
    int count = 0;
    const auto keep = [&](const Cmn_Rect& piece) {
        if (!piece.Empty())
            outP[count++] = piece;
    };
    const Cmn_Rect source = *this; // outP may be this object
    const int rowsTop = std::max(source.top, cutter.top);
    const int rowsBottom = std::min(source.bottom, cutter.bottom);
    const Cmn_Rect cut = cutter;
    keep({source.left, source.top, source.right, std::min(source.bottom, cut.top)});
    keep({source.left, rowsTop, std::min(source.right, cut.left), rowsBottom});
    keep({std::max(source.left, cut.right), rowsTop, source.right, rowsBottom});
    keep({source.left, std::max(source.top, cut.bottom), source.right, source.bottom});
    return count;
}

std::ostream& operator<<(std::ostream& out, const Cmn_Point<int>& point) {
    return out << '(' << point.x << ", " << point.y << ')';
}

std::ostream& operator<<(std::ostream& out, const Cmn_Rect<int>& rect) {
    return out << '(' << rect.left << ", " << rect.top << ", " << rect.right << ", " << rect.bottom
               << ')';
}
