#include "qlx/imaging/win32/qlx_painterwindows.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "qlx/imaging/win32/qlx_winedit.h"
#include "qlx/imaging/win32/qlx_winfonts.h"

namespace {

unsigned NextStamp() noexcept {
    static constinit unsigned stamp = 0;
    return ++stamp;
}

} // namespace

QLX_PainterWindows::QLX_PainterWindows(const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                                       const Cmn_Rect<int>& windowBounds, QLX_DeviceScale scale)
    : QLX_CanvasPainter(windowBounds, scale), mCanvas(canvas) {}

QLX_PainterWindows::QLX_PainterWindows(const QLX_PainterWindows& other)
    : QLX_CanvasPainter(other), mCanvas(other.mCanvas) {}

QLX_PainterWindows::QLX_PainterWindows(const QLX_PainterWindows& parent,
                                       const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                                       const Cmn_Rect<int>& windowArea)
    : QLX_CanvasPainter(parent, windowArea), mCanvas(canvas) {}

QLX_PainterWindows::~QLX_PainterWindows() = default;

void QLX_PainterWindows::AdoptPaintState(const QLX_PainterWindows& replaced) {
    CopyDrawingState(replaced);
    mIdentifier = replaced.mIdentifier;
    mActive = replaced.mActive;
}

// Target

QLX_DeviceScale QLX_PainterWindows::GetWindowScale(HWND window) {
    // Per-monitor scale is asked for at run time: systems before Windows 10 have one scale for all.
    using DpiForWindow = UINT(WINAPI*)(HWND);
    if (const char* text = std::getenv("QLX_SCALE"); text && *text) {
        char* end = nullptr;
        const double factor = std::strtod(text, &end);
        if (*end == '\0' && factor >= 1 && factor <= 3)
            return QLX_DeviceScale(factor);
    }
    const HMODULE user = GetModuleHandleW(L"user32.dll");
    const auto ask = reinterpret_cast<DpiForWindow>(
        reinterpret_cast<void*>(user ? GetProcAddress(user, "GetDpiForWindow") : nullptr));
    UINT dots = ask && window ? ask(window) : 0;
    if (dots == 0) {
        if (HDC screen = ::GetDC(nullptr)) {
            dots = UINT(GetDeviceCaps(screen, LOGPIXELSX));
            ReleaseDC(nullptr, screen);
        }
    }
    return QLX_DeviceScale(dots >= 96 ? double(dots) / 96 : 1.0);
}

void QLX_PainterWindows::CheckScaleFactor() {
    const HWND window = mCanvas->GetWindow();
    RECT client{};
    if (!window || mOffscreen || !GetClientRect(window, &client))
        return;
    const QLX_DeviceScale scale = GetWindowScale(window);
    const bool sized = client.right == mCanvas->GetWidth() && client.bottom == mCanvas->GetHeight();
    if (sized && scale == mScale)
        return;
    if (!sized && !mCanvas->Resize(client.right, client.bottom))
        return;
    mScale = scale;
    mWindowBounds = scale.RectToLogical(mCanvas->GetBounds());
    SetClip(GetBounds());
}

void* QLX_PainterWindows::GetRawNativeDrawingPort() { return GetHWnd(); }

HWND QLX_PainterWindows::GetHWnd() { return mCanvas->GetWindow(); }

bool QLX_PainterWindows::IsValid() { return !mCanvas->IsGone(); }

Cmn_RefCountPtr<QLX_HDCWrap> QLX_PainterWindows::GetHDC(unsigned flags) {
    if (!IsValid())
        return nullptr;
    return mCanvas->GetHDC((flags & QLX_HDCWrap::kClipped) != 0 ? &Clip() : nullptr,
                           (flags & QLX_HDCWrap::kNoContents) == 0);
}

void QLX_PainterWindows::AddDirtyRgn(const Cmn_Rect<int>& rect) {
    const Cmn_Rect<int> pixels = ToCanvas(rect) & mCanvas->GetBounds();
    if (!pixels.Empty())
        mDirty.push_back(pixels);
}

void QLX_PainterWindows::AddDirtyRgn(const RECT& rect) {
    const Cmn_Rect<int> pixels =
        Cmn_Rect<int>(rect.left, rect.top, rect.right, rect.bottom) & mCanvas->GetBounds();
    if (!pixels.Empty())
        mDirty.push_back(pixels);
}

void QLX_PainterWindows::Flush() {
    if (IsValid())
        mCanvas->Flush(mDirty);
    mDirty.clear();
}

bool QLX_PainterWindows::GetOffscreenBuffer(void** bits, int* width, int* height, int* rowBytes,
                                            Cmn_Rect<int>* bounds, void** nativeCanvas,
                                            void** nativeContext) {
    const QLX_Surface* memory = IsValid() ? mCanvas->GetMemory() : nullptr;
    if (!memory)
        return false;
    const auto set = [](auto* out, auto value) {
        if (out)
            *out = value;
    };
    set(bits, static_cast<void*>(memory->pixels));
    set(width, memory->width);
    set(height, memory->height);
    set(rowBytes, memory->rowPixels * 4);
    set(bounds, GetBounds());
    set(nativeCanvas, static_cast<void*>(mCanvas->GetBitmap()));
    const Cmn_RefCountPtr<QLX_HDCWrap> context = mCanvas->GetHDC(nullptr, true);
    set(nativeContext, context ? static_cast<void*>(context->Get()) : nullptr);
    return true;
}

// Clip and pixels

Cmn_Rect<int> QLX_PainterWindows::GetCanvasBounds() const noexcept { return mCanvas->GetBounds(); }

bool QLX_PainterWindows::CanvasHasAlpha() const noexcept { return mCanvas->HasAlpha(); }

bool QLX_PainterWindows::BeginPixels(const Cmn_Rect<int>& area, QLX_Surface& surface,
                                     Cmn_Point<int>& corner) {
    return IsValid() && mCanvas->BeginEdit(area, surface, corner);
}

void QLX_PainterWindows::EndPixels(bool changed) { mCanvas->EndEdit(changed); }

// GDI leaves the alpha bytes of its bitmaps undefined, so nothing is copied from them as they are.
const QLX_Surface* QLX_PainterWindows::GetMemory() { return nullptr; }

const QLX_WinClip& QLX_PainterWindows::Clip() {
    if (mClipSeen != mClipGeneration || !mCanvas->GetBounds().Contains(mClip.bounds))
        RebuildClip();
    return mClip;
}

void QLX_PainterWindows::RebuildClip() {
    mClipSeen = mClipGeneration;
    MakeClip(mClip);
    mClip.stamp = NextStamp();
    mClip.corner = mDeviceCorner;
    mClip.regions[0] = mClip.regions[1] = nullptr;
    // Regions carry their native form with them: at one pixel a unit it serves as it is.
    if (mScale.IsOne() && mClip.rects.size() > 1) {
        mClip.regions[0] = &GetWindowClip();
        mClip.regions[1] = mHasSystemClip ? &mSystemClip : nullptr;
    }
}

// Filled rectangles

void QLX_PainterWindows::FillPixels(const Cmn_Rect<int>* rects, std::size_t count,
                                    const QLX_SpanPaint& paint) {
    const QLX_WinClip& clip = Clip();
    if (count == 0 || (count == 1 && !rects->Overlaps(clip.bounds)) || clip.rects.empty() ||
        !IsValid() || mCanvas->FillRects(clip, rects, count, paint))
        return;
    EditClipped(rects, count,
                [&](const QLX_Surface& surface, const Cmn_Rect<int>& part, Cmn_Point<int> corner) {
                    QLX_FillSpans(surface, part, QLX_Phased(paint, corner));
                });
}

void QLX_PainterWindows::FillRegionWith(const QLX_Region& region, const QLX_SpanPaint& paint) {
    std::vector<Cmn_Rect<int>> rects;
    for (const Cmn_Rect<int>& rect : region.GetRectList())
        rects.push_back(ToCanvas(rect));
    FillPixels(rects.data(), rects.size(), paint);
}

void QLX_PainterWindows::FillRegion(const QLX_Region& region) {
    FillRegionWith(region, PenPaint());
}

void QLX_PainterWindows::EraseRegion(const QLX_Region& region) {
    FillRegionWith(region, PlainPaint(mBackgroundColor));
}

void QLX_PainterWindows::BlendRect(const Cmn_Rect<int>& rect, CRGBColor color, EBlendMode mode) {
    BlendRegion(QLX_Region(rect.Empty() ? Cmn_Rect<int>() : rect), color, mode);
}

void QLX_PainterWindows::BlendRegion(const QLX_Region& region, CRGBColor color, EBlendMode mode) {
    const unsigned alpha = AlphaOf(color);
    if (mode == kBlend_Normal) {
        FillRegionWith(region, PlainPaint(color));
        return;
    }
    EditRegion(region, [&](const QLX_Surface& surface, const Cmn_Rect<int>& part, Cmn_Point<int>) {
        QLX_BlendSpans(surface, part, color.AsInt32(), alpha, mode);
    });
}

void QLX_PainterWindows::InvertRect(const Cmn_Rect<int>& rect) {
    if (!rect.Empty())
        InvertRegion(QLX_Region(rect));
}

void QLX_PainterWindows::InvertRegion(const QLX_Region& region) {
    if (!IsValid())
        return;
    if (region.IsRectangular() && !region.IsEmpty() &&
        mCanvas->Invert(Clip(), ToCanvas(region.GetBounds())))
        return;
    EditRegion(region, [&](const QLX_Surface& surface, const Cmn_Rect<int>& part, Cmn_Point<int>) {
        QLX_InvertSpans(surface, part);
    });
}

void QLX_PainterWindows::HighlightRect(const Cmn_Rect<int>& rect, const CRGBColor* color) {
    if (!rect.Empty())
        HighlightRegion(QLX_Region(rect), color);
}

void QLX_PainterWindows::HighlightRegion(const QLX_Region& region, const CRGBColor* color) {
    const CRGBColor highlight = color ? *color : mHighlightColor;
    EditRegion(region, [&](const QLX_Surface& surface, const Cmn_Rect<int>& part, Cmn_Point<int>) {
        QLX_ExchangeSpans(surface, part, mBackgroundColor.AsInt32(), highlight.AsInt32());
    });
}

// The Optimized family, many rectangles to one call of the canvas

void QLX_PainterWindows::OptimizedWaveformFill(int x, int count, const int* minima,
                                               const int* maxima, int yOffset, int top, int bottom,
                                               const CRGBColor& color, const Ptr& second,
                                               const CRGBColor& secondColor, int columnWidth,
                                               EResolution resolution) {
    if (count <= 0 || !minima || !maxima || columnWidth <= 0)
        return;
    if (second)
        second->OptimizedWaveformFill(x, count, minima, maxima, yOffset, top, bottom, secondColor,
                                      nullptr, secondColor, columnWidth, resolution);
    const Cmn_Rect<int> limit = Clip().bounds;
    mRects.clear();
    for (int i = 0; i < count; ++i) {
        if (minima[i] > maxima[i])
            continue;
        const std::int64_t left = x + std::int64_t{i} * columnWidth;
        const std::int64_t low = std::max<std::int64_t>(top, std::int64_t{minima[i]} + yOffset);
        const std::int64_t high =
            std::min<std::int64_t>(bottom, std::int64_t{maxima[i]} + yOffset + 1);
        const Cmn_Rect<int> column =
            ToCanvas({Cmn_ClampTo<int>(left), Cmn_ClampTo<int>(low),
                      Cmn_ClampTo<int>(left + columnWidth), Cmn_ClampTo<int>(high)},
                     resolution);
        if (column.left >= limit.right)
            break;
        if (column.Overlaps(limit))
            mRects.push_back(column);
    }
    FillPixels(mRects.data(), mRects.size(), PlainPaint(color));
}
