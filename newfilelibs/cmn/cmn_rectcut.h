// Cutting rectangles that are known to overlap: what Cmn_Rect::Cut does for any two, without what
// it takes to find out.
#pragma once

#include "newfilelibs/cmn/cmn_rect.h"

/// The part that two rectangles which overlap have in common.
[[nodiscard]] inline Cmn_Rect<int> Cmn_CommonPart(const Cmn_Rect<int>& a,
                                                  const Cmn_Rect<int>& b) noexcept {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

/// A rectangle without a part that lies inside it: writes the pieces, in the order of
/// Cmn_Rect::Cut, and answers how many they are. All four places may be written to, as which pieces
/// there are is not to be foretold; none of them is an operand.
inline std::size_t Cmn_CutAround(const Cmn_Rect<int>& whole, const Cmn_Rect<int>& part,
                                 Cmn_Rect<int>* pieces) noexcept {
    std::size_t count = 0;
    pieces[count] = {whole.left, whole.top, whole.right, part.top};
    count += whole.top < part.top ? 1 : 0;
    pieces[count] = {whole.left, part.top, part.left, part.bottom};
    count += whole.left < part.left ? 1 : 0;
    pieces[count] = {part.right, part.top, whole.right, part.bottom};
    count += part.right < whole.right ? 1 : 0;
    pieces[count] = {whole.left, part.bottom, whole.right, whole.bottom};
    count += part.bottom < whole.bottom ? 1 : 0;
    return count;
}
