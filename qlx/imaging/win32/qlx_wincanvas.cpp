#include "qlx/imaging/win32/qlx_wincanvas.h"

QLX_HDCWrap::~QLX_HDCWrap() = default;

QLX_WinCanvas::~QLX_WinCanvas() = default;

void QLX_WinCanvas::Detach() noexcept { mGone = true; }

Cmn_RefCountPtr<QLX_HDCWrap> QLX_WinCanvas::GetHDC(const QLX_WinClip*, bool) { return nullptr; }

void QLX_WinCanvas::Flush(const std::vector<Cmn_Rect<int>>&) {}

bool QLX_WinCanvas::Resize(int width, int height) { return width == mWidth && height == mHeight; }

bool QLX_WinCanvas::TakeLoss() { return false; }

bool QLX_WinCanvas::Restore() { return !mGone; }

const QLX_Surface* QLX_WinCanvas::GetMemory() { return nullptr; }

bool QLX_WinCanvas::FillRects(const QLX_WinClip&, const Cmn_Rect<int>*, std::size_t,
                              const QLX_SpanPaint&) {
    return false;
}

bool QLX_WinCanvas::FillShape(const QLX_WinClip&, const QLX_WinShape&, const QLX_SpanPaint&) {
    return false;
}

bool QLX_WinCanvas::DrawTextLine(const QLX_WinClip&, const QLX_WinText&, const QLX_SpanPaint&) {
    return false;
}

bool QLX_WinCanvas::DrawPicture(const QLX_WinClip&, const QLX_CanvasPicture&, const Cmn_Rect<int>&,
                                const Cmn_Rect<int>&, const Cmn_Rect<int>&, EPenMode, unsigned) {
    return false;
}

bool QLX_WinCanvas::Invert(const QLX_WinClip&, const Cmn_Rect<int>&) { return false; }

// Memory

QLX_MemoryCanvas::QLX_MemoryCanvas(const QLX_Surface& surface) noexcept
    : QLX_WinCanvas(surface.width, surface.height, surface.hasAlpha), mSurface(surface) {}

QLX_MemoryCanvas::~QLX_MemoryCanvas() = default;

void QLX_MemoryCanvas::Detach() noexcept {
    QLX_WinCanvas::Detach();
    mSurface = {};
}

bool QLX_MemoryCanvas::BeginEdit(const Cmn_Rect<int>&, QLX_Surface& surface,
                                 Cmn_Point<int>& corner) {
    surface = mSurface;
    corner = {};
    return mSurface.pixels != nullptr;
}

void QLX_MemoryCanvas::EndEdit(bool) {}

const QLX_Surface* QLX_MemoryCanvas::GetMemory() { return mSurface.pixels ? &mSurface : nullptr; }
