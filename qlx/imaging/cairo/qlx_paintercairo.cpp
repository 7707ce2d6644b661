#include "qlx/imaging/cairo/qlx_paintercairo.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <stdexcept>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_trace.h"
#include "newfilelibs/cmn/cmn_polygon.h"
#include "qlx/imaging/cairo/qlx_cairoclip.h"
#include "qlx/imaging/qlx_image.h"

namespace {

[[nodiscard]] int Minus(int a, int b) noexcept {
    return Cmn_ClampTo<int>(std::int64_t{a} - std::int64_t{b});
}

[[nodiscard]] Cmn_Rect<int> MovedBack(const Cmn_Rect<int>& rect, Cmn_Point<int> by) noexcept {
    return {Minus(rect.left, by.x), Minus(rect.top, by.y), Minus(rect.right, by.x),
            Minus(rect.bottom, by.y)};
}

[[nodiscard]] unsigned Byte(float share) noexcept {
    return unsigned(std::lround(std::clamp(share, 0.0F, 1.0F) * 255));
}

[[nodiscard]] std::string Narrow(const std::wstring& path) {
    std::string narrow;
    for (const wchar_t character : path) {
        const auto code = std::uint32_t(character);
        if (code < 0x80) {
            narrow += char(code);
        } else if (code < 0x800) {
            narrow += char(0xC0 | code >> 6);
            narrow += char(0x80 | (code & 0x3F));
        } else if (code < 0x10000) {
            narrow += char(0xE0 | code >> 12);
            narrow += char(0x80 | (code >> 6 & 0x3F));
            narrow += char(0x80 | (code & 0x3F));
        } else {
            narrow += char(0xF0 | (code >> 18 & 7));
            narrow += char(0x80 | (code >> 12 & 0x3F));
            narrow += char(0x80 | (code >> 6 & 0x3F));
            narrow += char(0x80 | (code & 0x3F));
        }
    }
    return narrow;
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
    : QLX_PainterState(
          scale.RectToLogical({0, 0, canvas->GetSurface().width, canvas->GetSurface().height}),
          scale),
      mCanvas(canvas) {}

QLX_PainterCairo::QLX_PainterCairo(const QLX_PainterCairo& other)
    : QLX_PainterState(other), mCanvas(other.mCanvas), mDeviceCorner(other.mDeviceCorner),
      mOffscreen(other.mOffscreen) {}

QLX_PainterCairo::QLX_PainterCairo(const QLX_PainterCairo& parent,
                                   const Cmn_RefCountPtr<QLX_CairoCanvas>& canvas,
                                   const Cmn_Rect<int>& windowArea)
    : QLX_PainterState(windowArea, parent.mScale), mCanvas(canvas),
      mDeviceCorner(mScale.EdgeToDevice(windowArea.left), mScale.EdgeToDevice(windowArea.top)),
      mOffscreen(true) {
    CopyDrawingState(parent);
}

QLX_PainterCairo::~QLX_PainterCairo() = default;

QLX_Painter::Ptr QLX_PainterCairo::Clone() { return Ptr(new QLX_PainterCairo(*this)); }

void* QLX_PainterCairo::GetRawNativeDrawingPort() { return nullptr; }

QLX_Painter::ImagePtr QLX_PainterCairo::GetPixels() const {
    const QLX_Surface& surface = mCanvas->GetSurface();
    const ImagePtr image = QLX_Image::Create(surface.width, surface.height);
    if (!image)
        return nullptr;
    for (int y = 0; y < surface.height; ++y)
        for (int x = 0; x < surface.width; ++x)
            image->GetWritablePixels()[std::size_t(y) * surface.width + x] =
                surface.hasAlpha ? *surface.At(x, y) : *surface.At(x, y) | 0xFF000000;
    image->PixelsChanged();
    return image;
}

void QLX_PainterCairo::SaveToFile(const std::wstring& path) {
    try {
        if (const ImagePtr image = GetPixels())
            image->ToPNGFile(Narrow(path));
    } catch (const std::runtime_error& error) {
        Cmn_Assert(error.what(), __FILE__, __LINE__);
    }
}

void QLX_PainterCairo::Flush() {}

bool QLX_PainterCairo::IsValid() { return !mCanvas->IsGone(); }

bool QLX_PainterCairo::IsOffscreen() { return mOffscreen; }

bool QLX_PainterCairo::OffscreenWillBeOverlayed() { return mCanvas->GetSurface().hasAlpha; }

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

// Coordinates and clip

Cmn_Rect<int> QLX_PainterCairo::ToCanvas(const Cmn_Rect<int>& local,
                                         EResolution resolution) const noexcept {
    if (mScale.IsOne()) { // the usual case, in which both resolutions are one
        const auto x = [&](int edge) {
            return Cmn_ClampTo<int>(std::int64_t{edge} - mWindowOrigin.x - mDeviceCorner.x);
        };
        const auto y = [&](int edge) {
            return Cmn_ClampTo<int>(std::int64_t{edge} - mWindowOrigin.y - mDeviceCorner.y);
        };
        return {x(local.left), y(local.top), x(local.right), y(local.bottom)};
    }
    return MovedBack(ToDevice(local, resolution), mDeviceCorner);
}

Cmn_Rect<int> QLX_PainterCairo::CanvasBounds() const noexcept {
    return {0, 0, mCanvas->GetSurface().width, mCanvas->GetSurface().height};
}

const std::vector<Cmn_Rect<int>>& QLX_PainterCairo::DeviceClip() {
    if (mClipSeen != mClipGeneration || mCanvas->IsGone())
        RebuildClip();
    return mDeviceClip;
}

// The clip's rectangles within the system clip's, in pixels. Both lists are disjoint, so all pairs
// are too.
void QLX_PainterCairo::RebuildClip() {
    mClipSeen = mClipGeneration;
    mDeviceClip.clear();
    mClipBounds = {};
    const Cmn_Rect<int> canvas = CanvasBounds();
    const auto add = [&](const Cmn_Rect<int>& window) {
        const Cmn_Rect<int> pixels = MovedBack(mScale.RectToDevice(window), mDeviceCorner) & canvas;
        if (pixels.Empty())
            return;
        mClipBounds = mDeviceClip.empty() ? pixels : mClipBounds | pixels;
        mDeviceClip.push_back(pixels);
    };
    const auto addWithin = [&](const Cmn_Rect<int>& window) {
        if (!mHasSystemClip) {
            add(window);
            return;
        }
        for (const Cmn_Rect<int>& system : mSystemClip.GetRectList())
            if (window.Overlaps(system))
                add(window & system);
    };
    if (mClipIsRect) {
        const Cmn_Rect<int> window(
            Minus(mClipRect.left, mClipOrigin.x), Minus(mClipRect.top, mClipOrigin.y),
            Minus(mClipRect.right, mClipOrigin.x), Minus(mClipRect.bottom, mClipOrigin.y));
        addWithin(window);
    } else {
        for (const Cmn_Rect<int>& rect : GetWindowClip().GetRectList())
            addWithin(rect);
    }
}

// Paints

unsigned QLX_PainterCairo::AlphaOf(const CRGBColor& color) const noexcept {
    if (color.IsOpaque() && mAlpha == 1)
        return 255;
    return Byte(float(color.GetAlpha()) / CRGBColor::kMaximum * mAlpha);
}

QLX_SpanPaint QLX_PainterCairo::PlainPaint(const CRGBColor& color,
                                           EAlphaBlendType blend) const noexcept {
    QLX_SpanPaint paint;
    paint.color = color.AsInt32() | 0xFF000000;
    paint.alpha = blend != kAlphaBlend_Ignore ? AlphaOf(color) : mAlpha == 1 ? 255 : Byte(mAlpha);
    paint.mode = blend == kAlphaBlend_Add ? kPenMode_Add : kPenMode_Copy;
    return paint;
}

QLX_SpanPaint QLX_PainterCairo::PenPaint() const noexcept {
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

QLX_SpanPaint QLX_PainterCairo::TextPaint() const noexcept {
    QLX_SpanPaint paint = PlainPaint(mForegroundColor);
    paint.mode = mTextMode;
    return paint;
}

void QLX_PainterCairo::Fill(const Cmn_Rect<int>& canvasRect, const QLX_SpanPaint& paint) {
    const QLX_Surface& surface = mCanvas->GetSurface();
    if (DeviceClip().size() == 1) { // its only rectangle
        const Cmn_Rect<int> part(std::max(canvasRect.left, mClipBounds.left),
                                 std::max(canvasRect.top, mClipBounds.top),
                                 std::min(canvasRect.right, mClipBounds.right),
                                 std::min(canvasRect.bottom, mClipBounds.bottom));
        if (part.left < part.right && part.top < part.bottom)
            QLX_FillSpans(surface, part, paint);
        return;
    }
    ForClipped(canvasRect, [&](const Cmn_Rect<int>& part) { QLX_FillSpans(surface, part, paint); });
}

// Fills

void QLX_PainterCairo::FillRect(const Cmn_Rect<int>& rect) {
    if (!rect.Empty())
        Fill(ToCanvas(rect), PenPaint());
}

void QLX_PainterCairo::FillRegion(const QLX_Region& region) {
    const QLX_SpanPaint paint = PenPaint();
    ForClippedRegion(region, [&](const Cmn_Rect<int>& part) {
        QLX_FillSpans(mCanvas->GetSurface(), part, paint);
    });
}

void QLX_PainterCairo::EraseRect(const Cmn_Rect<int>& rect) {
    if (!rect.Empty())
        Fill(ToCanvas(rect), PlainPaint(mBackgroundColor));
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

// Frames and straight lines

void QLX_PainterCairo::DrawRect(const Cmn_Rect<int>& rect) {
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
    Fill({frame.left, frame.top, frame.right, frame.top + down}, paint);
    Fill({frame.left, frame.top + down, frame.left + across, frame.bottom - down}, paint);
    Fill({frame.right - across, frame.top + down, frame.right, frame.bottom - down}, paint);
    Fill({frame.left, frame.bottom - down, frame.right, frame.bottom}, paint);
}

// The pixels of a region with a pixel outside it within reach of the pen: those that the
// complement, every rectangle of it grown by the pen's size, runs into.
void QLX_PainterCairo::DrawRegion(const QLX_Region& region) {
    if (region.IsEmpty() || mPenSize.x == 0 || mPenSize.y == 0)
        return;
    const Cmn_Rect<int> bounds = region.GetBounds();
    const auto grown = [&](const Cmn_Rect<int>& rect) {
        return Cmn_Rect<int>(Cmn_SaturatingAdd(rect.left, -int{mPenSize.x}),
                             Cmn_SaturatingAdd(rect.top, -int{mPenSize.y}),
                             Cmn_SaturatingAdd(rect.right, int{mPenSize.x}),
                             Cmn_SaturatingAdd(rect.bottom, int{mPenSize.y}));
    };
    const QLX_Region outside(QLX_Region(grown(bounds)).Difference(region));
    QLX_Region reached;
    for (const Cmn_Rect<int>& rect : outside.GetRectList())
        reached.UniteWith(grown(rect));
    FillRegion(QLX_Region(region.Intersection(reached)));
}

void QLX_PainterCairo::LineTo(float x, float y, bool includeEnd, EResolution resolution,
                              float thickness) {
    const Cmn_Point<double> from = mPenPlace;
    const Cmn_Point<double> to = PointToDevice(x, y, resolution);
    mPenPlace = to;
    int across = ThicknessToDevice(mPenSize.x, resolution);
    int down = ThicknessToDevice(mPenSize.y, resolution);
    if (thickness > 0) {
        const double unit = resolution == kResolution_Logical ? mScale.GetFactor() : 1;
        across = down = std::max(1, int(std::lround(std::min<double>(thickness * unit, 1e6))));
    }
    if (across == 0 || down == 0)
        return;
    const auto round = [](double value, int corner) {
        return int(std::floor(value + 0.5)) - corner;
    };
    const int x0 = round(from.x, mDeviceCorner.x), y0 = round(from.y, mDeviceCorner.y);
    const int x1 = round(to.x, mDeviceCorner.x), y1 = round(to.y, mDeviceCorner.y);
    if (y0 == y1 || x0 == x1) {
        const int endAcross = includeEnd ? across : 0, endDown = includeEnd ? down : 0;
        Cmn_Rect<int> line(x0, y0, x0 + across, y0 + down);
        if (x0 == x1 && y0 == y1)
            line = includeEnd ? line : Cmn_Rect<int>();
        else if (y0 == y1)
            line = x1 > x0 ? Cmn_Rect<int>(x0, y0, x1 + endAcross, y0 + down)
                           : Cmn_Rect<int>(x1 + across - endAcross, y0, x0 + across, y0 + down);
        else
            line = y1 > y0 ? Cmn_Rect<int>(x0, y0, x0 + across, y1 + endDown)
                           : Cmn_Rect<int>(x0, y1 + down - endDown, x0 + across, y0 + down);
        Fill(line, PenPaint());
        return;
    }
    DiagonalLine(from, to, std::max(across, down), includeEnd);
}

// The Optimized family, where it can be done better than by the primitives

void QLX_PainterCairo::OptimizedFillRect(const Cmn_Rect<int>& rect, const CRGBColor& color,
                                         EAlphaBlendType blend, EResolution resolution,
                                         const Ptr& second, const CRGBColor& secondColor,
                                         EAlphaBlendType secondBlend) {
    if (!rect.Empty())
        Fill(ToCanvas(rect, resolution), PlainPaint(color, blend));
    if (second)
        second->OptimizedFillRect(rect, secondColor, secondBlend, resolution, nullptr, secondColor,
                                  secondBlend);
}

void QLX_PainterCairo::OptimizedVerticalLine(int x, int top, int bottom, const CRGBColor& color,
                                             EResolution resolution) {
    Fill(ToCanvas({x, top, Cmn_SaturatingAdd(x, 1), bottom}, resolution), PlainPaint(color));
}

void QLX_PainterCairo::OptimizedHorizontalLine(int left, int right, int y, const CRGBColor& color,
                                               EResolution resolution) {
    Fill(ToCanvas({left, y, right, Cmn_SaturatingAdd(y, 1)}, resolution), PlainPaint(color));
}

void QLX_PainterCairo::OptimizedVerticalLines(int count, const int* xs, const int* tops,
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

void QLX_PainterCairo::OptimizedHorizontalLines(int count, const int* ys, const int* lefts,
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
    if (DeviceClip().empty())
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
    const std::int64_t before = std::int64_t{mClipBounds.left} - origin.left;
    const int first = int(std::clamp<std::int64_t>(before / pixels - 1, 0, count));
    const std::int64_t until = std::int64_t{mClipBounds.right} - origin.left;
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
    for (const Cmn_Rect<int>& clip : DeviceClip())
        QLX_FillColumns(mCanvas->GetSurface(), clip, left, shown, tops, bottoms, pixels, paint,
                        bottoms + shown);
}
