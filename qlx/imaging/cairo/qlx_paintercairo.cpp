#include "qlx/imaging/cairo/qlx_paintercairo.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_trace.h"
#include "newfilelibs/cmn/cmn_polygon.h"
#include "qlx/imaging/cairo/qlx_cairoclip.h"
#include "qlx/imaging/qlx_image.h"

namespace {

[[nodiscard]] int Minus(int a, int b) noexcept {
    return Cmn_ClampTo<int>(std::int64_t{a} - std::int64_t{b});
}

class CairoMaker final : public QLX_PainterMaker {
  public:
    const char* GetName() const noexcept override { return "cairo"; }
    QLX_Painter::Ptr MakeOffscreen(int width, int height, QLX_DeviceScale scale,
                                   bool withAlpha) override {
        return QLX_PainterCairo::New(width, height, scale, withAlpha);
    }
    QLX_Painter::Ptr MakeForBuffer(const QLX_PixelBuffer& buffer, QLX_DeviceScale scale) override {
        if (!buffer.pixels || buffer.width <= 0 || buffer.height <= 0 ||
            buffer.rowPixels < buffer.width)
            return nullptr;
        const Cmn_RefCountPtr<QLX_CairoCanvas> canvas(new QLX_CairoCanvas(buffer));
        return QLX_Painter::Ptr(new QLX_PainterCairo(canvas, scale));
    }
    void Detach(QLX_Painter& painter) override {
        if (const auto* cairo = dynamic_cast<QLX_PainterCairo*>(&painter))
            cairo->GetCanvas().Detach();
    }
};

[[maybe_unused]] const bool sRegistered = [] {
    static CairoMaker maker;
    QLX_PainterFactory::Register(&maker);
    return true;
}();

} // namespace

// Canvas

QLX_CairoCanvas::QLX_CairoCanvas() = default;

QLX_CairoCanvas::QLX_CairoCanvas(const QLX_PixelBuffer& buffer)
    : mSurface{buffer.pixels, buffer.width, buffer.height, buffer.rowPixels, buffer.hasAlpha} {}

QLX_CairoCanvas::~QLX_CairoCanvas() = default;

Cmn_RefCountPtr<QLX_CairoCanvas> QLX_CairoCanvas::New(int width, int height, bool hasAlpha) {
    if (width < 1 || height < 1 || width > QLX_Image::kMaximumSide ||
        height > QLX_Image::kMaximumSide)
        return nullptr;
    try {
        Cmn_RefCountPtr<QLX_CairoCanvas> canvas(new QLX_CairoCanvas);
        canvas->mPixels.resize(std::size_t(width) * std::size_t(height));
        canvas->mSurface = {canvas->mPixels.data(), width, height, width, hasAlpha};
        return canvas;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void QLX_CairoCanvas::Detach() noexcept { mSurface = {}; }

// Painter

QLX_Painter::Ptr QLX_PainterCairo::New(int width, int height, QLX_DeviceScale scale,
                                       bool withAlpha) {
    if (width < 1 || height < 1)
        return nullptr;
    const auto canvas =
        QLX_CairoCanvas::New(scale.EdgeToDevice(width), scale.EdgeToDevice(height), withAlpha);
    if (!canvas)
        return nullptr;
    auto* painter = new QLX_PainterCairo(canvas, scale);
    Ptr made(painter);
    painter->mWindowBounds = {0, 0, width, height};
    painter->mClipRect = painter->mWindowBounds;
    if (!withAlpha)
        painter->EraseRect(painter->mWindowBounds);
    return made;
}

QLX_PainterCairo::QLX_PainterCairo(const Cmn_RefCountPtr<QLX_CairoCanvas>& canvas,
                                   QLX_DeviceScale scale)
    : QLX_CanvasPainter(
          scale.RectToLogical({0, 0, canvas->GetSurface().width, canvas->GetSurface().height}),
          scale),
      mCanvas(canvas) {}

QLX_PainterCairo::QLX_PainterCairo(const QLX_PainterCairo& other)
    : QLX_CanvasPainter(other), mCanvas(other.mCanvas) {}

QLX_PainterCairo::QLX_PainterCairo(const QLX_PainterCairo& parent,
                                   const Cmn_RefCountPtr<QLX_CairoCanvas>& canvas,
                                   const Cmn_Rect<int>& windowArea)
    : QLX_CanvasPainter(parent, windowArea), mCanvas(canvas) {}

QLX_PainterCairo::~QLX_PainterCairo() = default;

QLX_Painter::Ptr QLX_PainterCairo::Clone() { return Ptr(new QLX_PainterCairo(*this)); }

void* QLX_PainterCairo::GetRawNativeDrawingPort() { return nullptr; }

void QLX_PainterCairo::Flush() {}

bool QLX_PainterCairo::IsValid() { return !mCanvas->IsGone(); }

bool QLX_PainterCairo::GetOffscreenBuffer(void** bits, int* width, int* height, int* rowBytes,
                                          Cmn_Rect<int>* bounds, void** nativeCanvas,
                                          void** nativeContext) {
    if (!IsValid())
        return false;
    const QLX_Surface& surface = mCanvas->GetSurface();
    const auto set = [](auto* out, auto value) {
        if (out)
            *out = value;
    };
    set(bits, static_cast<void*>(surface.pixels));
    set(width, surface.width);
    set(height, surface.height);
    set(rowBytes, surface.rowPixels * 4);
    set(bounds, GetBounds());
    set(nativeCanvas, static_cast<void*>(nullptr));
    set(nativeContext, static_cast<void*>(nullptr));
    return true;
}

QLX_Painter::Ptr QLX_PainterCairo::CreateOffscreenPainter(const Cmn_Rect<int>& area, bool withAlpha,
                                                          bool copyContents) {
    if (!IsValid() || area.Empty())
        return nullptr;
    const Cmn_Rect<int> window = ToWindow(area);
    const Cmn_Rect<int> size = GetOffscreenSize(window);
    const auto canvas = QLX_CairoCanvas::New(size.GetWidth(), size.GetHeight(), withAlpha);
    if (!canvas)
        return nullptr;
    auto* made = new QLX_PainterCairo(*this, canvas, window);
    Ptr painter(made);
    BeginOffscreen(*made, area, copyContents);
    return painter;
}

// Clip and pixels

Cmn_Rect<int> QLX_PainterCairo::GetCanvasBounds() const noexcept {
    return {0, 0, mCanvas->GetSurface().width, mCanvas->GetSurface().height};
}

bool QLX_PainterCairo::CanvasHasAlpha() const noexcept { return mCanvas->GetSurface().hasAlpha; }

bool QLX_PainterCairo::BeginPixels(const Cmn_Rect<int>&, QLX_Surface& surface,
                                   Cmn_Point<int>& corner) {
    surface = mCanvas->GetSurface();
    corner = {};
    return !mCanvas->IsGone();
}

void QLX_PainterCairo::EndPixels(bool) {}

const QLX_Surface* QLX_PainterCairo::GetMemory() { return &mCanvas->GetSurface(); }

const QLX_CanvasClip& QLX_PainterCairo::Clip() {
    if (mClipSeen != mClipGeneration || mCanvas->IsGone()) {
        mClipSeen = mClipGeneration;
        MakeClip(mClip);
        mIsDirect = mClip.rects.size() == 1 && mScale.IsOne();
    }
    return mClip;
}

void QLX_PainterCairo::Fill(const Cmn_Rect<int>& canvasRect, const QLX_SpanPaint& paint) {
    const QLX_Surface& surface = mCanvas->GetSurface();
    if (Clip().rects.size() == 1) { // its only rectangle
        const Cmn_Rect<int> part(std::max(canvasRect.left, mClip.bounds.left),
                                 std::max(canvasRect.top, mClip.bounds.top),
                                 std::min(canvasRect.right, mClip.bounds.right),
                                 std::min(canvasRect.bottom, mClip.bounds.bottom));
        if (part.left < part.right && part.top < part.bottom)
            QLX_FillSpans(surface, part, paint);
        return;
    }
    ForClipped(canvasRect, [&](const Cmn_Rect<int>& part) { QLX_FillSpans(surface, part, paint); });
}

void QLX_PainterCairo::FillPixels(const Cmn_Rect<int>* rects, std::size_t count,
                                  const QLX_SpanPaint& paint) {
    for (std::size_t i = 0; i < count; ++i)
        Fill(rects[i], paint);
}

// Interfaces are drawn by thousands of small fills, of which looking up the clip, converting
// coordinates with their overflows and describing the paint would be the larger part.
inline bool QLX_PainterCairo::FillDirectly(const Cmn_Rect<int>& local,
                                           std::uint32_t color) noexcept {
    const QLX_Surface& surface = mCanvas->GetSurface();
    if (!mIsDirect || mClipSeen != mClipGeneration || !surface.pixels)
        return false;
    const std::int64_t x = std::int64_t{mWindowOrigin.x} + mDeviceCorner.x;
    const std::int64_t y = std::int64_t{mWindowOrigin.y} + mDeviceCorner.y;
    const std::int64_t left = std::max<std::int64_t>(local.left - x, mClip.bounds.left);
    const std::int64_t top = std::max<std::int64_t>(local.top - y, mClip.bounds.top);
    const std::int64_t right = std::min<std::int64_t>(local.right - x, mClip.bounds.right);
    const std::int64_t bottom = std::min<std::int64_t>(local.bottom - y, mClip.bounds.bottom);
    if (left < right && top < bottom) // not of empty and inverted rectangles
        QLX_FillOpaque(surface.At(int(left), int(top)), surface.rowPixels, int(right - left),
                       int(bottom - top), color | 0xFF000000);
    return true;
}

inline bool QLX_PainterCairo::PenIsPlain() const noexcept {
    return mPenMode == kPenMode_Copy && mPenPattern == kPenPattern_Solid && mAlpha == 1 &&
           mForegroundColor.IsOpaque();
}

// Fills

void QLX_PainterCairo::FillRect(const Cmn_Rect<int>& rect) {
    if (PenIsPlain() && FillDirectly(rect, mForegroundColor.AsInt32()))
        return;
    if (!rect.Empty())
        Fill(ToCanvas(rect), PenPaint());
}

void QLX_PainterCairo::FillRegion(const QLX_Region& region) {
    const QLX_SpanPaint paint = PenPaint();
    ForClippedRegion(region, [&](const Cmn_Rect<int>& part) {
        QLX_FillSpans(mCanvas->GetSurface(), part, paint);
    });
}

void QLX_PainterCairo::EraseRegion(const QLX_Region& region) {
    const QLX_SpanPaint paint = PlainPaint(mBackgroundColor);
    ForClippedRegion(region, [&](const Cmn_Rect<int>& part) {
        QLX_FillSpans(mCanvas->GetSurface(), part, paint);
    });
}

void QLX_PainterCairo::BlendRect(const Cmn_Rect<int>& rect, CRGBColor color, EBlendMode mode) {
    if (rect.Empty())
        return;
    const unsigned alpha = AlphaOf(color);
    ForClipped(ToCanvas(rect), [&](const Cmn_Rect<int>& part) {
        QLX_BlendSpans(mCanvas->GetSurface(), part, color.AsInt32(), alpha, mode);
    });
}

void QLX_PainterCairo::BlendRegion(const QLX_Region& region, CRGBColor color, EBlendMode mode) {
    const unsigned alpha = AlphaOf(color);
    ForClippedRegion(region, [&](const Cmn_Rect<int>& part) {
        QLX_BlendSpans(mCanvas->GetSurface(), part, color.AsInt32(), alpha, mode);
    });
}

void QLX_PainterCairo::InvertRect(const Cmn_Rect<int>& rect) {
    if (!rect.Empty())
        ForClipped(ToCanvas(rect), [&](const Cmn_Rect<int>& part) {
            QLX_InvertSpans(mCanvas->GetSurface(), part);
        });
}

void QLX_PainterCairo::InvertRegion(const QLX_Region& region) {
    ForClippedRegion(
        region, [&](const Cmn_Rect<int>& part) { QLX_InvertSpans(mCanvas->GetSurface(), part); });
}

void QLX_PainterCairo::HighlightRect(const Cmn_Rect<int>& rect, const CRGBColor* color) {
    if (rect.Empty())
        return;
    const CRGBColor& highlight = color ? *color : mHighlightColor;
    ForClipped(ToCanvas(rect), [&](const Cmn_Rect<int>& part) {
        QLX_ExchangeSpans(mCanvas->GetSurface(), part, mBackgroundColor.AsInt32(),
                          highlight.AsInt32());
    });
}

void QLX_PainterCairo::HighlightRegion(const QLX_Region& region, const CRGBColor* color) {
    const CRGBColor& highlight = color ? *color : mHighlightColor;
    ForClippedRegion(region, [&](const Cmn_Rect<int>& part) {
        QLX_ExchangeSpans(mCanvas->GetSurface(), part, mBackgroundColor.AsInt32(),
                          highlight.AsInt32());
    });
}

// The Optimized family, where it can be done better than by the primitives

void QLX_PainterCairo::OptimizedFillRect(const Cmn_Rect<int>& rect, const CRGBColor& color,
                                         EAlphaBlendType blend, EResolution resolution,
                                         const Ptr& second, const CRGBColor& secondColor,
                                         EAlphaBlendType secondBlend) {
    const bool covers = mAlpha == 1 && blend != kAlphaBlend_Add &&
                        (blend == kAlphaBlend_Ignore || color.IsOpaque());
    if (!(covers && FillDirectly(rect, color.AsInt32())) && !rect.Empty())
        Fill(ToCanvas(rect, resolution), PlainPaint(color, blend));
    if (second)
        second->OptimizedFillRect(rect, secondColor, secondBlend, resolution, nullptr, secondColor,
                                  secondBlend);
}

// Columns whose edges do not fall on every pixel (scales other than 1 in logical units) are filled
// one by one, each between its own rounded edges; the others row by row.
void QLX_PainterCairo::OptimizedWaveformFill(int x, int count, const int* minima, const int* maxima,
                                             int yOffset, int top, int bottom,
                                             const CRGBColor& color, const Ptr& second,
                                             const CRGBColor& secondColor, int columnWidth,
                                             EResolution resolution) {
    if (count <= 0 || !minima || !maxima || columnWidth <= 0)
        return;
    if (second)
        second->OptimizedWaveformFill(x, count, minima, maxima, yOffset, top, bottom, secondColor,
                                      nullptr, secondColor, columnWidth, resolution);
    if (Clip().rects.empty())
        return;
    const std::int64_t width =
        resolution == kResolution_Logical
            ? std::int64_t{columnWidth} * mScale.Get120ths() / QLX_DeviceScale::kUnit
            : columnWidth;
    const bool exact = resolution == kResolution_Device || mScale.IsWhole();
    // Only columns that can show: hostile counts cost nothing.
    const Cmn_Rect<int> origin = ToCanvas({x, 0, x, 0}, resolution);
    if (!exact || width * count > (1 << 24)) {
        QLX_Painter::OptimizedWaveformFill(x, count, minima, maxima, yOffset, top, bottom, color,
                                           nullptr, color, columnWidth, resolution);
        return;
    }
    const int pixels = int(width);
    const std::int64_t before = std::int64_t{mClip.bounds.left} - origin.left;
    const int first = int(std::clamp<std::int64_t>(before / pixels - 1, 0, count));
    const std::int64_t until = std::int64_t{mClip.bounds.right} - origin.left;
    const int last = int(std::clamp<std::int64_t>(until / pixels + 1, first, count));
    const int shown = last - first;
    if (shown == 0)
        return;
    mColumns.resize(std::size_t(shown) * 2 + 4 * ((std::size_t(shown) + 31) / 32));
    int* const tops = mColumns.data();
    int* const bottoms = tops + shown;
    for (int i = 0; i < shown; ++i) {
        const std::int64_t low = std::int64_t{minima[first + i]} + yOffset;
        const std::int64_t high = std::int64_t{maxima[first + i]} + yOffset + 1;
        const bool drawn = minima[first + i] <= maxima[first + i];
        tops[i] =
            Minus(EdgeYToDevice(std::max<std::int64_t>(top, low), resolution), mDeviceCorner.y);
        bottoms[i] = drawn ? Minus(EdgeYToDevice(std::min<std::int64_t>(bottom, high), resolution),
                                   mDeviceCorner.y)
                           : tops[i];
    }
    const QLX_SpanPaint paint = PlainPaint(color);
    const int left = Cmn_ClampTo<int>(origin.left + std::int64_t{first} * pixels);
    for (const Cmn_Rect<int>& clip : Clip().rects)
        QLX_FillColumns(mCanvas->GetSurface(), clip, left, shown, tops, bottoms, pixels, paint,
                        bottoms + shown);
}

// Pixels copied where sizes agree, sampled where they do not.
void QLX_PainterCairo::DrawPicture(const QLX_CanvasPicture& picture, const Cmn_Rect<int>& part,
                                   const Cmn_Rect<int>& destination, EPenMode mode,
                                   const Cmn_Rect<int>* limit) {
    if (part.Empty() || destination.Empty() || mCanvas->IsGone())
        return;
    const QLX_Surface& surface = mCanvas->GetSurface();
    const std::uint32_t background = mBackgroundColor.AsInt32();
    const bool scaled = !IsSameSize(part, destination);
    ForClipped(limit ? destination & *limit : destination, [&](const Cmn_Rect<int>& piece) {
        const int width = piece.GetWidth();
        const std::uint32_t* from = nullptr;
        if (scaled) {
            std::uint32_t* const sampled =
                GetScratch(std::size_t(width) * std::size_t(piece.GetHeight()));
            QLX_ScalePixels(picture.pixels, picture.rowPixels, part, destination, piece, sampled,
                            width);
            from = sampled;
        } else {
            from = picture.pixels +
                   std::ptrdiff_t(part.top + (piece.top - destination.top)) * picture.rowPixels +
                   part.left + (piece.left - destination.left);
        }
        QLX_CopySpans(surface, piece, from, scaled ? width : picture.rowPixels, mode,
                      PainterAlpha(), picture.opaque, background);
    });
}
