#include "qlx/imaging/win32/qlx_paintergdi.h"

#include "qlx/imaging/win32/qlx_gdicanvas.h"

QLX_PainterGDI::QLX_PainterGDI(const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                               const Cmn_Rect<int>& windowBounds, QLX_DeviceScale scale)
    : QLX_PainterWindows(canvas, windowBounds, scale) {}

QLX_PainterGDI::QLX_PainterGDI(const QLX_PainterGDI& other) = default;

QLX_PainterGDI::QLX_PainterGDI(const QLX_PainterGDI& parent,
                               const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                               const Cmn_Rect<int>& windowArea)
    : QLX_PainterWindows(parent, canvas, windowArea) {}

QLX_PainterGDI::~QLX_PainterGDI() = default;

QLX_Painter::Ptr QLX_PainterGDI::On(const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                                    QLX_DeviceScale scale) {
    if (!canvas)
        return nullptr;
    return Ptr(new QLX_PainterGDI(canvas, scale.RectToLogical(canvas->GetBounds()), scale));
}

QLX_Painter::Ptr QLX_PainterGDI::New(int width, int height, QLX_DeviceScale scale, bool withAlpha) {
    if (width < 1 || height < 1)
        return nullptr;
    const Cmn_RefCountPtr<QLX_WinCanvas> canvas(
        QLX_GDICanvas::NewBitmap(scale.EdgeToDevice(width), scale.EdgeToDevice(height), withAlpha));
    if (!canvas)
        return nullptr;
    const Cmn_Rect<int> bounds(0, 0, width, height);
    Ptr painter(new QLX_PainterGDI(canvas, bounds, scale));
    if (!withAlpha)
        painter->EraseRect(bounds);
    return painter;
}

QLX_Painter::Ptr QLX_PainterGDI::NewForWindow(HWND window, QLX_DeviceScale scale) {
    return On(Cmn_RefCountPtr<QLX_WinCanvas>(QLX_GDICanvas::NewForWindow(window)), scale);
}

QLX_Painter::Ptr QLX_PainterGDI::NewForContext(HDC context, int width, int height,
                                               QLX_DeviceScale scale) {
    return On(Cmn_RefCountPtr<QLX_WinCanvas>(QLX_GDICanvas::NewForContext(context, width, height)),
              scale);
}

QLX_Painter::Ptr QLX_PainterGDI::NewForBuffer(const QLX_PixelBuffer& buffer,
                                              QLX_DeviceScale scale) {
    if (!buffer.pixels || buffer.width <= 0 || buffer.height <= 0 ||
        buffer.rowPixels < buffer.width)
        return nullptr;
    return On(Cmn_RefCountPtr<QLX_WinCanvas>(new QLX_MemoryCanvas(
                  {buffer.pixels, buffer.width, buffer.height, buffer.rowPixels, buffer.hasAlpha})),
              scale);
}

QLX_Painter::Ptr QLX_PainterGDI::Clone() { return Ptr(new QLX_PainterGDI(*this)); }

QLX_PainterWindows::ePainterKind QLX_PainterGDI::GetPainterKind() { return kPainterKind_GDI; }

QLX_PainterWindows* QLX_PainterGDI::MakeOffscreen(int width, int height, bool withAlpha,
                                                  const Cmn_Rect<int>& windowArea) {
    const Cmn_RefCountPtr<QLX_WinCanvas> canvas(QLX_GDICanvas::NewBitmap(width, height, withAlpha));
    return canvas ? new QLX_PainterGDI(*this, canvas, windowArea) : nullptr;
}
