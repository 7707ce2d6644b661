// The clipping walks of QLX_PainterCairo, for its sources only.
#pragma once

#include "qlx/imaging/cairo/qlx_paintercairo.h"

template <class Operation>
void QLX_PainterCairo::ForClipped(const Cmn_Rect<int>& rect, Operation operation) {
    const QLX_CanvasClip& clip = Clip();
    if (!rect.Overlaps(clip.bounds))
        return;
    for (const Cmn_Rect<int>& window : clip.rects)
        if (rect.Overlaps(window))
            operation(rect & window);
}

template <class Operation>
void QLX_PainterCairo::ForClippedRegion(const QLX_Region& region, Operation operation) {
    for (const Cmn_Rect<int>& rect : region.GetRectList())
        ForClipped(ToCanvas(rect), operation);
}
