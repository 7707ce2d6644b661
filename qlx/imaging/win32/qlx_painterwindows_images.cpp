// Images and offscreen canvases of the Windows painters.

#include "qlx/imaging/win32/qlx_winedit.h"

void QLX_PainterWindows::DrawPicture(const QLX_CanvasPicture& picture, const Cmn_Rect<int>& part,
                                     const Cmn_Rect<int>& destination, EPenMode mode,
                                     const Cmn_Rect<int>* limit) {
    const QLX_WinClip& clip = Clip();
    Cmn_Rect<int> shown = destination & clip.bounds;
    if (limit)
        shown = shown & *limit;
    if (part.Empty() || destination.Empty() || shown.Empty() || !IsValid())
        return;
    const unsigned alpha = PainterAlpha();
    if (mCanvas->DrawPicture(clip, picture, part, destination, shown, mode, alpha))
        return;
    const std::uint32_t background = mBackgroundColor.AsInt32();
    if (IsSameSize(part, destination)) {
        EditClipped(
            &shown, 1,
            [&](const QLX_Surface& surface, const Cmn_Rect<int>& piece, Cmn_Point<int> corner) {
                const int down = part.top + piece.top + corner.y - destination.top;
                const int across = part.left + piece.left + corner.x - destination.left;
                QLX_CopySpans(surface, piece,
                              picture.pixels + std::ptrdiff_t(down) * picture.rowPixels + across,
                              picture.rowPixels, mode, alpha, picture.opaque, background);
            });
        return;
    }
    const int width = shown.GetWidth();
    std::uint32_t* const pixels = GetScratch(std::size_t(width) * std::size_t(shown.GetHeight()));
    QLX_ScalePixels(picture.pixels, picture.rowPixels, part, destination, shown, pixels, width);
    EditClipped(&shown, 1,
                [&](const QLX_Surface& surface, const Cmn_Rect<int>& piece, Cmn_Point<int> corner) {
                    QLX_CopySpans(surface, piece,
                                  pixels +
                                      std::ptrdiff_t(piece.top + corner.y - shown.top) * width +
                                      (piece.left + corner.x - shown.left),
                                  width, mode, alpha, picture.opaque, background);
                });
}

QLX_Painter::Ptr QLX_PainterWindows::CreateOffscreenPainter(const Cmn_Rect<int>& area,
                                                            bool withAlpha, bool copyContents) {
    if (!IsValid() || area.Empty())
        return nullptr;
    const Cmn_Rect<int> window = ToWindow(area);
    const Cmn_Rect<int> size = GetOffscreenSize(window);
    if (size.Empty())
        return nullptr;
    QLX_PainterWindows* made = MakeOffscreen(size.GetWidth(), size.GetHeight(), withAlpha, window);
    if (!made)
        return nullptr;
    Ptr painter(made);
    BeginOffscreen(*made, area, copyContents);
    return painter;
}
