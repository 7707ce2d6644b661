#include "qlx/imaging/qlx_canvaspainter.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "basekit/cmn/cmn_assert.h"
#include "qlx/imaging/qlx_utf8.h"

QLX_CanvasPainter::QLX_CanvasPainter(const Cmn_Rect<int>& windowBounds, QLX_DeviceScale scale)
    : QLX_PainterState(windowBounds, scale),
      mDeviceCorner(scale.EdgeToDevice(windowBounds.left), scale.EdgeToDevice(windowBounds.top)) {}

QLX_CanvasPainter::QLX_CanvasPainter(const QLX_CanvasPainter& other) = default;

QLX_CanvasPainter::QLX_CanvasPainter(const QLX_CanvasPainter& parent,
                                     const Cmn_Rect<int>& windowArea)
    : QLX_CanvasPainter(windowArea, parent.mScale) {
    mOffscreen = true;
    CopyDrawingState(parent);
}

QLX_CanvasPainter::~QLX_CanvasPainter() = default;

unsigned QLX_CanvasPainter::Byte(float share) noexcept {
    return unsigned(std::lround(std::clamp(share, 0.0F, 1.0F) * 255));
}

void QLX_CanvasPainter::SaveToFile(const std::wstring& path) {
    try {
        if (const ImagePtr image = GetPixels())
            image->ToPNGFile(QLX_WideToUTF8(path));
    } catch (const std::runtime_error& error) {
        Cmn_Assert(error.what(), __FILE__, __LINE__);
    }
}

bool QLX_CanvasPainter::IsOffscreen() { return mOffscreen; }

bool QLX_CanvasPainter::OffscreenWillBeOverlayed() { return CanvasHasAlpha(); }

// Both lists are disjoint, so all pairs are too.
void QLX_CanvasPainter::MakeClip(QLX_CanvasClip& clip) const {
    clip.rects.clear();
    clip.bounds = {};
    const Cmn_Rect<int> canvas = GetCanvasBounds();
    const auto add = [&](const Cmn_Rect<int>& window) {
        const Cmn_Rect<int> pixels = MovedBack(mScale.RectToDevice(window), mDeviceCorner) & canvas;
        if (pixels.Empty())
            return;
        clip.bounds = clip.rects.empty() ? pixels : clip.bounds | pixels;
        clip.rects.push_back(pixels);
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
        addWithin(MovedBack(mClipRect, mClipOrigin));
        return;
    }
    for (const Cmn_Rect<int>& rect : GetWindowClip().GetRectList())
        addWithin(rect);
}

// Rectangles and straight lines

void QLX_CanvasPainter::FillRect(const Cmn_Rect<int>& rect) {
    if (!rect.Empty())
        Fill(ToCanvas(rect), PenPaint());
}

void QLX_CanvasPainter::EraseRect(const Cmn_Rect<int>& rect) {
    if (!rect.Empty())
        Fill(ToCanvas(rect), PlainPaint(mBackgroundColor));
}

void QLX_CanvasPainter::DrawRect(const Cmn_Rect<int>& rect) {
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
    FillPixels(sides, 4, paint);
}

void QLX_CanvasPainter::DrawRegion(const QLX_Region& region) {
    const QLX_Region frame = GetFrame(region, mPenSize);
    if (!frame.IsEmpty())
        FillRegion(frame);
}

void QLX_CanvasPainter::LineTo(float x, float y, bool includeEnd, EResolution resolution,
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
    // Beyond any canvas, with room for the pen's thickness.
    static constexpr std::int64_t farthest = 1 << 30;
    const auto round = [](double value, int corner) {
        return int(std::clamp(std::int64_t(std::floor(value + 0.5)) - corner, -farthest, farthest));
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
    DrawSlantedLine(from, to, std::max(across, down), includeEnd);
}

// The Optimized family

void QLX_CanvasPainter::OptimizedFillRect(const Cmn_Rect<int>& rect, const CRGBColor& color,
                                          EAlphaBlendType blend, EResolution resolution,
                                          const Ptr& second, const CRGBColor& secondColor,
                                          EAlphaBlendType secondBlend) {
    if (!rect.Empty())
        Fill(ToCanvas(rect, resolution), PlainPaint(color, blend));
    if (second)
        second->OptimizedFillRect(rect, secondColor, secondBlend, resolution, nullptr, secondColor,
                                  secondBlend);
}

void QLX_CanvasPainter::OptimizedVerticalLine(int x, int top, int bottom, const CRGBColor& color,
                                              EResolution resolution) {
    Fill(ToCanvas({x, top, Cmn_SaturatingAdd(x, 1), bottom}, resolution), PlainPaint(color));
}

void QLX_CanvasPainter::OptimizedHorizontalLine(int left, int right, int y, const CRGBColor& color,
                                                EResolution resolution) {
    Fill(ToCanvas({left, y, right, Cmn_SaturatingAdd(y, 1)}, resolution), PlainPaint(color));
}

void QLX_CanvasPainter::OptimizedVerticalLines(int count, const int* xs, const int* tops,
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

void QLX_CanvasPainter::OptimizedHorizontalLines(int count, const int* ys, const int* lefts,
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
