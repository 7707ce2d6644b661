#include "qlx/imaging/win32/qlx_painterwindows.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

#include "basekit/cmn/cmn_assert.h"
#include "qlx/imaging/win32/qlx_winedit.h"
#include "qlx/imaging/win32/qlx_winfonts.h"

namespace {

[[nodiscard]] unsigned Byte(float share) noexcept {
    return unsigned(std::lround(std::clamp(share, 0.0F, 1.0F) * 255));
}

unsigned NextStamp() noexcept {
    static constinit unsigned stamp = 0;
    return ++stamp;
}

} // namespace

QLX_PainterWindows::QLX_PainterWindows(const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                                       const Cmn_Rect<int>& windowBounds, QLX_DeviceScale scale)
    : QLX_PainterState(windowBounds, scale), mCanvas(canvas),
      mDeviceCorner(scale.EdgeToDevice(windowBounds.left), scale.EdgeToDevice(windowBounds.top)) {}

QLX_PainterWindows::QLX_PainterWindows(const QLX_PainterWindows& other)
    : QLX_PainterState(other), mCanvas(other.mCanvas), mDeviceCorner(other.mDeviceCorner),
      mOffscreen(other.mOffscreen) {}

QLX_PainterWindows::QLX_PainterWindows(const QLX_PainterWindows& parent,
                                       const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                                       const Cmn_Rect<int>& windowArea)
    : QLX_PainterState(windowArea, parent.mScale), mCanvas(canvas),
      mDeviceCorner(mScale.EdgeToDevice(windowArea.left), mScale.EdgeToDevice(windowArea.top)),
      mOffscreen(true) {
    CopyDrawingState(parent);
}

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

bool QLX_PainterWindows::IsOffscreen() { return mOffscreen; }

bool QLX_PainterWindows::OffscreenWillBeOverlayed() { return mCanvas->HasAlpha(); }

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

QLX_Painter::ImagePtr QLX_PainterWindows::GetPixels() {
    const Cmn_Rect<int> bounds = mCanvas->GetBounds();
    std::vector<std::uint32_t> pixels;
    if (!IsValid() || bounds.Empty() || !ReadPixels(bounds, pixels))
        return nullptr;
    return QLX_Image::Create(bounds.right, bounds.bottom, std::move(pixels));
}

void QLX_PainterWindows::SaveToFile(const std::wstring& path) {
    try {
        if (const ImagePtr image = GetPixels())
            image->ToPNGFile(QLX_FromWide(path));
    } catch (const std::runtime_error& error) {
        Cmn_Assert(error.what(), __FILE__, __LINE__);
    }
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

// Coordinates and clip

Cmn_Rect<int> QLX_PainterWindows::ToCanvas(const Cmn_Rect<int>& local,
                                           EResolution resolution) const noexcept {
    return QLX_MovedBack(ToDevice(local, resolution), mDeviceCorner);
}

const QLX_WinClip& QLX_PainterWindows::Clip() {
    if (mClipSeen != mClipGeneration || !mCanvas->GetBounds().Contains(mClip.bounds))
        RebuildClip();
    return mClip;
}

void QLX_PainterWindows::AddToClip(const Cmn_Rect<int>& window) {
    const Cmn_Rect<int> pixels =
        QLX_MovedBack(mScale.RectToDevice(window), mDeviceCorner) & mCanvas->GetBounds();
    if (pixels.Empty())
        return;
    mClip.bounds = mClip.rects.empty() ? pixels : mClip.bounds | pixels;
    mClip.rects.push_back(pixels);
}

// The clip's rectangles within the system clip's. Both lists are disjoint, so all pairs are too.
void QLX_PainterWindows::RebuildClip() {
    mClipSeen = mClipGeneration;
    mClip.rects.clear();
    mClip.bounds = {};
    mClip.stamp = NextStamp();
    mClip.corner = mDeviceCorner;
    mClip.regions[0] = mClip.regions[1] = nullptr;
    const auto addWithin = [&](const Cmn_Rect<int>& window) {
        if (!mHasSystemClip) {
            AddToClip(window);
            return;
        }
        for (const Cmn_Rect<int>& system : mSystemClip.GetRectList())
            if (window.Overlaps(system))
                AddToClip(window & system);
    };
    for (const Cmn_Rect<int>& rect : GetWindowClip().GetRectList())
        addWithin(rect);
    // Regions carry their native form with them: at one pixel a unit it serves as it is.
    if (mScale.IsOne() && mClip.rects.size() > 1) {
        mClip.regions[0] = &GetWindowClip();
        mClip.regions[1] = mHasSystemClip ? &mSystemClip : nullptr;
    }
}

// Paints

unsigned QLX_PainterWindows::AlphaOf(const CRGBColor& color) const noexcept {
    if (color.IsOpaque() && mAlpha == 1)
        return 255;
    return Byte(float(color.GetAlpha()) / CRGBColor::kMaximum * mAlpha);
}

QLX_SpanPaint QLX_PainterWindows::PlainPaint(const CRGBColor& color,
                                             EAlphaBlendType blend) const noexcept {
    QLX_SpanPaint paint;
    paint.color = color.AsInt32() | 0xFF000000;
    paint.alpha = blend == kAlphaBlend_Ignore ? Byte(mAlpha) : AlphaOf(color);
    paint.mode = blend == kAlphaBlend_Add ? kPenMode_Add : kPenMode_Copy;
    return paint;
}

QLX_SpanPaint QLX_PainterWindows::PenPaint() const noexcept {
    QLX_SpanPaint paint = PlainPaint(mForegroundColor);
    paint.mode = mPenMode;
    paint.pattern = QLX_GetPatternCell(mPenPattern);
    if (paint.pattern) {
        paint.background = mBackgroundColor.AsInt32() | 0xFF000000;
        paint.backgroundAlpha = AlphaOf(mBackgroundColor);
        paint.cell = std::max(1, int(mScale.GetFactor() + 0.5));
        paint.phaseX = mDeviceCorner.x;
        paint.phaseY = mDeviceCorner.y;
    }
    return paint;
}

QLX_SpanPaint QLX_PainterWindows::TextPaint() const noexcept {
    QLX_SpanPaint paint = PlainPaint(mForegroundColor);
    paint.mode = mTextMode;
    return paint;
}

// Filled rectangles

void QLX_PainterWindows::FillMany(const Cmn_Rect<int>* rects, std::size_t count,
                                  const QLX_SpanPaint& paint) {
    const QLX_WinClip& clip = Clip();
    if (count == 0 || clip.rects.empty() || !IsValid() ||
        mCanvas->FillRects(clip, rects, count, paint))
        return;
    EditClipped(rects, count,
                [&](const QLX_Surface& surface, const Cmn_Rect<int>& part, Cmn_Point<int> corner) {
                    QLX_FillSpans(surface, part, QLX_Phased(paint, corner));
                });
}

void QLX_PainterWindows::Fill(const Cmn_Rect<int>& canvasRect, const QLX_SpanPaint& paint) {
    if (canvasRect.Overlaps(Clip().bounds))
        FillMany(&canvasRect, 1, paint);
}

void QLX_PainterWindows::FillRegionWith(const QLX_Region& region, const QLX_SpanPaint& paint) {
    std::vector<Cmn_Rect<int>> rects;
    for (const Cmn_Rect<int>& rect : region.GetRectList())
        rects.push_back(ToCanvas(rect));
    FillMany(rects.data(), rects.size(), paint);
}

void QLX_PainterWindows::FillRect(const Cmn_Rect<int>& rect) {
    if (!rect.Empty())
        Fill(ToCanvas(rect), PenPaint());
}

void QLX_PainterWindows::FillRegion(const QLX_Region& region) {
    FillRegionWith(region, PenPaint());
}

void QLX_PainterWindows::EraseRect(const Cmn_Rect<int>& rect) {
    if (!rect.Empty())
        Fill(ToCanvas(rect), PlainPaint(mBackgroundColor));
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

void QLX_PainterWindows::DrawRect(const Cmn_Rect<int>& rect) {
    const Cmn_Rect<int> frame = ToCanvas(rect);
    const int across = mScale.ThicknessToDevice(mPenSize.x);
    const int down = mScale.ThicknessToDevice(mPenSize.y);
    if (rect.Empty() || (across == 0 && down == 0))
        return;
    const QLX_SpanPaint paint = PenPaint();
    if (2 * std::int64_t{across} >= frame.GetWidth() ||
        2 * std::int64_t{down} >= frame.GetHeight()) {
        Fill(frame, paint);
        return;
    }
    const Cmn_Rect<int> sides[4] = {
        {frame.left, frame.top, frame.right, frame.top + down},
        {frame.left, frame.top + down, frame.left + across, frame.bottom - down},
        {frame.right - across, frame.top + down, frame.right, frame.bottom - down},
        {frame.left, frame.bottom - down, frame.right, frame.bottom}};
    FillMany(sides, 4, paint);
}

// The pixels of a region with a pixel outside it within reach of the pen: those that the
// complement, every rectangle of it grown by the pen's size, runs into.
void QLX_PainterWindows::DrawRegion(const QLX_Region& region) {
    if (region.IsEmpty() || mPenSize.x == 0 || mPenSize.y == 0)
        return;
    const auto grown = [&](const Cmn_Rect<int>& rect) {
        return Cmn_Rect<int>(Cmn_SaturatingAdd(rect.left, -int{mPenSize.x}),
                             Cmn_SaturatingAdd(rect.top, -int{mPenSize.y}),
                             Cmn_SaturatingAdd(rect.right, int{mPenSize.x}),
                             Cmn_SaturatingAdd(rect.bottom, int{mPenSize.y}));
    };
    const QLX_Region outside(QLX_Region(grown(region.GetBounds())).Difference(region));
    QLX_Region reached;
    for (const Cmn_Rect<int>& rect : outside.GetRectList())
        reached.UniteWith(grown(rect));
    FillRegion(QLX_Region(region.Intersection(reached)));
}

// The Optimized family, many rectangles to one call of the canvas

void QLX_PainterWindows::OptimizedFillRect(const Cmn_Rect<int>& rect, const CRGBColor& color,
                                           EAlphaBlendType blend, EResolution resolution,
                                           const Ptr& second, const CRGBColor& secondColor,
                                           EAlphaBlendType secondBlend) {
    if (!rect.Empty())
        Fill(ToCanvas(rect, resolution), PlainPaint(color, blend));
    if (second)
        second->OptimizedFillRect(rect, secondColor, secondBlend, resolution, nullptr, secondColor,
                                  secondBlend);
}

void QLX_PainterWindows::OptimizedVerticalLine(int x, int top, int bottom, const CRGBColor& color,
                                               EResolution resolution) {
    Fill(ToCanvas({x, top, Cmn_SaturatingAdd(x, 1), bottom}, resolution), PlainPaint(color));
}

void QLX_PainterWindows::OptimizedHorizontalLine(int left, int right, int y, const CRGBColor& color,
                                                 EResolution resolution) {
    Fill(ToCanvas({left, y, right, Cmn_SaturatingAdd(y, 1)}, resolution), PlainPaint(color));
}

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
    FillMany(mRects.data(), mRects.size(), PlainPaint(color));
}

void QLX_PainterWindows::OptimizedVerticalLines(int count, const int* xs, const int* tops,
                                                const int* bottoms, const int* widths,
                                                const Cmn_PolyVector<CRGBColor>& colors,
                                                EAlphaBlendType blend, EResolution resolution) {
    if (!xs || !tops || !bottoms || colors.empty())
        return;
    for (int i = 0; i < count; ++i)
        Fill(
            ToCanvas({xs[i], tops[i], Cmn_SaturatingAdd(xs[i], widths ? widths[i] : 1), bottoms[i]},
                     resolution),
            PlainPaint(colors[std::min(std::size_t(i), colors.size() - 1)], blend));
}

void QLX_PainterWindows::OptimizedHorizontalLines(int count, const int* ys, const int* lefts,
                                                  const int* rights, const int* heights,
                                                  const Cmn_PolyVector<CRGBColor>& colors,
                                                  EAlphaBlendType blend, EResolution resolution) {
    if (!ys || !lefts || !rights || colors.empty())
        return;
    for (int i = 0; i < count; ++i)
        Fill(ToCanvas(
                 {lefts[i], ys[i], rights[i], Cmn_SaturatingAdd(ys[i], heights ? heights[i] : 1)},
                 resolution),
             PlainPaint(colors[std::min(std::size_t(i), colors.size() - 1)], blend));
}
