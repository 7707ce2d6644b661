// Walks over a Windows painter's pixels, for its source files only.
#pragma once

#include "qlx/imaging/win32/qlx_painterwindows.h"

/// A paint whose pattern keeps its place on a surface that begins at a corner of the canvas.
[[nodiscard]] inline QLX_SpanPaint QLX_Phased(const QLX_SpanPaint& paint,
                                              Cmn_Point<int> corner) noexcept {
    QLX_SpanPaint moved = paint;
    moved.phaseX += corner.x;
    moved.phaseY += corner.y;
    return moved;
}

template <class Operation>
void QLX_PainterWindows::EditClipped(const Cmn_Rect<int>* rects, std::size_t count,
                                     Operation operation) {
    if (!IsValid())
        return;
    const QLX_WinClip& clip = Clip();
    Cmn_Rect<int> area;
    for (std::size_t i = 0; i < count; ++i)
        if (const Cmn_Rect<int> shown = rects[i] & clip.bounds; !shown.Empty())
            area = area.Empty() ? shown : area | shown;
    QLX_Surface surface;
    Cmn_Point<int> corner;
    if (area.Empty() || !mCanvas->BeginEdit(area, surface, corner))
        return;
    for (std::size_t i = 0; i < count; ++i)
        for (const Cmn_Rect<int>& window : clip.rects)
            if (rects[i].Overlaps(window))
                operation(surface, MovedBack(rects[i] & window, corner), corner);
    mCanvas->EndEdit(true);
}

template <class Operation>
void QLX_PainterWindows::EditRegion(const QLX_Region& region, Operation operation) {
    std::vector<Cmn_Rect<int>> rects;
    for (const Cmn_Rect<int>& rect : region.GetRectList())
        rects.push_back(ToCanvas(rect));
    EditClipped(rects.data(), rects.size(), operation);
}
