#include "qlx/imaging/win32/qlx_painterdirect2d.h"

#include "qlx/imaging/win32/qlx_d2dcanvas.h"

QLX_PainterDirect2D::QLX_PainterDirect2D(const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                                         const Cmn_Rect<int>& windowBounds, QLX_DeviceScale scale)
    : QLX_PainterWindows(canvas, windowBounds, scale) {}

QLX_PainterDirect2D::QLX_PainterDirect2D(const QLX_PainterDirect2D& other) = default;

QLX_PainterDirect2D::QLX_PainterDirect2D(const QLX_PainterDirect2D& parent,
                                         const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                                         const Cmn_Rect<int>& windowArea)
    : QLX_PainterWindows(parent, canvas, windowArea) {}

QLX_PainterDirect2D::~QLX_PainterDirect2D() = default;

QLX_Painter::Ptr QLX_PainterDirect2D::New(int width, int height, QLX_DeviceScale scale,
                                          bool withAlpha) {
    if (width < 1 || height < 1)
        return nullptr;
    const Cmn_RefCountPtr<QLX_WinCanvas> canvas(
        QLX_D2DCanvas::NewBitmap(scale.EdgeToDevice(width), scale.EdgeToDevice(height), withAlpha));
    if (!canvas)
        return nullptr;
    const Cmn_Rect<int> bounds(0, 0, width, height);
    Ptr painter(new QLX_PainterDirect2D(canvas, bounds, scale));
    if (!withAlpha)
        painter->EraseRect(bounds);
    return painter;
}

QLX_Painter::Ptr QLX_PainterDirect2D::NewForWindow(HWND window, QLX_DeviceScale scale) {
    const Cmn_RefCountPtr<QLX_WinCanvas> canvas(QLX_D2DCanvas::NewForWindow(window));
    if (!canvas)
        return nullptr;
    return Ptr(new QLX_PainterDirect2D(canvas, scale.RectToLogical(canvas->GetBounds()), scale));
}

QLX_Painter::Ptr QLX_PainterDirect2D::Clone() { return Ptr(new QLX_PainterDirect2D(*this)); }

QLX_PainterWindows::ePainterKind QLX_PainterDirect2D::GetPainterKind() {
    return kPainterKind_Direct2D;
}

QLX_PainterWindows* QLX_PainterDirect2D::MakeOffscreen(int width, int height, bool withAlpha,
                                                       const Cmn_Rect<int>& windowArea) {
    const Cmn_RefCountPtr<QLX_WinCanvas> canvas(QLX_D2DCanvas::NewBitmap(width, height, withAlpha));
    return canvas ? new QLX_PainterDirect2D(*this, canvas, windowArea) : nullptr;
}
