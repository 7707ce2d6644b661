// The Optimized family of QLX_Painter on top of its primitives. Rectangles in logical units are
// filled as such; those in device pixels, for which there is no fill, are drawn as one line as
// thick as they are high.

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <vector>

#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_painter.h"
#include "qlx/imaging/qlx_statesavers.h"

namespace {

// Sets a painter up for plain fills in one colour, and puts its state back.
class StPlainFill {
  public:
    StPlainFill(QLX_Painter& painter, const CRGBColor& color, QLX_Painter::EAlphaBlendType blend)
        : mPainter(painter), mColor(painter.GetForegroundColor()), mMode(painter.GetPenMode()),
          mPattern(painter.GetPenPattern()) {
        CRGBColor used = color;
        if (blend == QLX_Painter::kAlphaBlend_Ignore)
            used.SetAlpha(CRGBColor::kMaximum);
        painter.SetForegroundColor(used);
        painter.SetPenMode(blend == QLX_Painter::kAlphaBlend_Add ? kPenMode_Add : kPenMode_Copy);
        painter.SetPenPattern(kPenPattern_Solid);
    }
    ~StPlainFill() {
        mPainter.SetPenPattern(mPattern);
        mPainter.SetPenMode(mMode);
        mPainter.SetForegroundColor(mColor);
    }
    StPlainFill(const StPlainFill&) = delete;
    StPlainFill& operator=(const StPlainFill&) = delete;

    void Fill(const Cmn_Rect<int>& rect, QLX_Painter::EResolution resolution) {
        if (rect.Empty())
            return;
        if (resolution == QLX_Painter::kResolution_Logical) {
            mPainter.FillRect(rect);
            return;
        }
        mPainter.MoveTo(float(rect.left), float(rect.top), resolution);
        mPainter.LineTo(float(rect.right), float(rect.top), /*includeEnd*/ false, resolution,
                        float(rect.GetHeight()));
    }

  private:
    QLX_Painter& mPainter;
    CRGBColor mColor;
    EPenMode mMode;
    EPenPattern mPattern;
};

// Widths and heights are added to coordinates from anywhere.
[[nodiscard]] int Beyond(int from, int length) noexcept { return Cmn_SaturatingAdd(from, length); }

[[nodiscard]] CRGBColor ColorOfLine(const Cmn_PolyVector<CRGBColor>& colors, int line) {
    return colors[std::min(std::size_t(line), colors.size() - 1)];
}

} // namespace

void QLX_Painter::FillPlainRect(const Cmn_Rect<int>& rect, const CRGBColor& color,
                                EAlphaBlendType blend, EResolution resolution) {
    StPlainFill(*this, color, blend).Fill(rect, resolution);
}

void QLX_Painter::OptimizedVerticalLine(int x, int top, int bottom, const CRGBColor& color,
                                        EResolution resolution) {
    FillPlainRect({x, top, Beyond(x, 1), bottom}, color, kAlphaBlend_Over, resolution);
}

void QLX_Painter::OptimizedHorizontalLine(int left, int right, int y, const CRGBColor& color,
                                          EResolution resolution) {
    FillPlainRect({left, y, right, Beyond(y, 1)}, color, kAlphaBlend_Over, resolution);
}

void QLX_Painter::OptimizedWaveformFill(int x, int count, const int* minima, const int* maxima,
                                        int yOffset, int top, int bottom, const CRGBColor& color,
                                        const Ptr& second, const CRGBColor& secondColor,
                                        int columnWidth, EResolution resolution) {
    if (count <= 0 || !minima || !maxima || columnWidth <= 0)
        return;
    {
        StPlainFill fill(*this, color, kAlphaBlend_Over);
        for (int i = 0; i < count; ++i) {
            if (minima[i] > maxima[i])
                continue;
            const int left = Cmn_ClampTo<int>(x + std::int64_t{i} * columnWidth);
            const std::int64_t end = std::int64_t{maxima[i]} + yOffset + 1;
            fill.Fill({left, std::max(top, Beyond(minima[i], yOffset)), Beyond(left, columnWidth),
                       std::min(bottom, Cmn_ClampTo<int>(end))},
                      resolution);
        }
    }
    if (second)
        second->OptimizedWaveformFill(x, count, minima, maxima, yOffset, top, bottom, secondColor,
                                      nullptr, secondColor, columnWidth, resolution);
}

void QLX_Painter::OptimizedVerticalLines(int count, const int* xs, const int* tops,
                                         const int* bottoms, const int* widths,
                                         const Cmn_PolyVector<CRGBColor>& colors,
                                         EAlphaBlendType blend, EResolution resolution) {
    if (!xs || !tops || !bottoms || colors.empty())
        return;
    for (int i = 0; i < count; ++i)
        FillPlainRect({xs[i], tops[i], Beyond(xs[i], widths ? widths[i] : 1), bottoms[i]},
                      ColorOfLine(colors, i), blend, resolution);
}

void QLX_Painter::OptimizedIdenticalVerticalLines(int count, const int* xs, const int* colorIndexes,
                                                  const CRGBColor* colors, int top, int bottom,
                                                  int width, EAlphaBlendType blend,
                                                  EResolution resolution, int xOffset) {
    if (!xs || !colors)
        return;
    for (int i = 0; i < count; ++i) {
        const int x = Beyond(xs[i], xOffset);
        FillPlainRect({x, top, Beyond(x, width), bottom},
                      colors[colorIndexes ? colorIndexes[i] : 0], blend, resolution);
    }
}

void QLX_Painter::OptimizedHorizontalLines(int count, const int* ys, const int* lefts,
                                           const int* rights, const int* heights,
                                           const Cmn_PolyVector<CRGBColor>& colors,
                                           EAlphaBlendType blend, EResolution resolution) {
    if (!ys || !lefts || !rights || colors.empty())
        return;
    for (int i = 0; i < count; ++i)
        FillPlainRect({lefts[i], ys[i], rights[i], Beyond(ys[i], heights ? heights[i] : 1)},
                      ColorOfLine(colors, i), blend, resolution);
}

void QLX_Painter::OptimizedIdenticalHorizontalLines(int count, const int* ys,
                                                    const int* colorIndexes,
                                                    const CRGBColor* colors, int left, int right,
                                                    int height, EResolution resolution) {
    if (!ys || !colors)
        return;
    for (int i = 0; i < count; ++i)
        FillPlainRect({left, ys[i], right, Beyond(ys[i], height)},
                      colors[colorIndexes ? colorIndexes[i] : 0], kAlphaBlend_Over, resolution);
}

// The upright stroke of a column reaches from its own line halfway to the neighbours' lines, so
// that joined columns touch without covering each other twice.
void QLX_Painter::OptimizedWaveformOutline(int x, int count, const int* ys, int yOffset,
                                           bool connect, int top, int bottom,
                                           const CRGBColor& color, const Ptr& second,
                                           const CRGBColor& secondColor, int thickness,
                                           EResolution resolution) {
    if (count <= 0 || !ys || thickness <= 0)
        return;
    {
        StPlainFill fill(*this, color, kAlphaBlend_Over);
        for (int i = 0; i < count; ++i) {
            std::int64_t first = ys[i], last = std::int64_t{ys[i]} + thickness;
            const auto reach = [&](int neighbour) {
                const std::int64_t half = (std::int64_t{ys[i]} + ys[neighbour]) >> 1;
                first = std::min(first, half);
                last = std::max(last, half + thickness);
            };
            if (connect && i > 0)
                reach(i - 1);
            if (connect && i + 1 < count)
                reach(i + 1);
            const int left = Cmn_ClampTo<int>(std::int64_t{x} + i);
            fill.Fill({left, std::max(top, Cmn_ClampTo<int>(first + yOffset)), Beyond(left, 1),
                       std::min(bottom, Cmn_ClampTo<int>(last + yOffset))},
                      resolution);
        }
    }
    if (second)
        second->OptimizedWaveformOutline(x, count, ys, yOffset, connect, top, bottom, secondColor,
                                         nullptr, secondColor, thickness, resolution);
}

void QLX_Painter::OptimizedDrawImage(const ImagePtr& image, const Cmn_Rect<int>& source,
                                     const Cmn_Rect<int>& destination, const Cmn_Rect<int>* clip,
                                     EResolution resolution) {
    if (!image)
        return;
    if (!clip) {
        DrawImagePortion(image, source, destination, kPenMode_Copy, resolution);
        return;
    }
    const QLX_Region before = GetClipRegion();
    SetClip(QLX_Region(before.Intersection(QLX_Region(*clip))));
    DrawImagePortion(image, source, destination, kPenMode_Copy, resolution);
    SetClip(before);
}

void QLX_Painter::OptimizedDrawImage(const ImagePtr& image, int count, const int* xs, int y,
                                     const Cmn_Rect<int>* clip, EResolution resolution,
                                     const Ptr* second) {
    if (!image || !xs)
        return;
    for (int i = 0; i < count; ++i)
        OptimizedDrawImage(
            image, image->GetBounds(),
            {xs[i], y, Beyond(xs[i], image->GetWidth()), Beyond(y, image->GetHeight())}, clip,
            resolution);
    if (second && *second)
        (*second)->OptimizedDrawImage(image, count, xs, y, clip, resolution, nullptr);
}

void QLX_Painter::OptimizedDrawImages(const Cmn_PolyVector<ImagePtr>& images, int count,
                                      const int* imageIndexes, const int* xs, const int* ys,
                                      EResolution resolution) {
    if (!imageIndexes || !xs || !ys)
        return;
    for (int i = 0; i < count; ++i) {
        const int index = imageIndexes[i];
        if (index < 0 || std::size_t(index) >= images.size())
            continue;
        const ImagePtr& image = images[std::size_t(index)];
        if (image)
            OptimizedDrawImage(
                image, image->GetBounds(),
                {xs[i], ys[i], Beyond(xs[i], image->GetWidth()), Beyond(ys[i], image->GetHeight())},
                nullptr, resolution);
    }
}

void QLX_Painter::OptimizedDrawBackgroundImage(const ImagePtr& image, int width, int height,
                                               int border, EResolution resolution) {
    if (!image || width <= 0 || height <= 0)
        return;
    // The border has to fit twice into the image and into what is filled.
    const int room = std::min({image->GetWidth(), image->GetHeight(), width, height}) / 2;
    const int edge = std::clamp(border, 0, room);
    const std::array<int, 4> sourceX{0, edge, image->GetWidth() - edge, image->GetWidth()};
    const std::array<int, 4> sourceY{0, edge, image->GetHeight() - edge, image->GetHeight()};
    const std::array<int, 4> toX{0, edge, width - edge, width};
    const std::array<int, 4> toY{0, edge, height - edge, height};
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column) {
            const Cmn_Rect<int> source(sourceX[column], sourceY[row], sourceX[column + 1],
                                       sourceY[row + 1]);
            const Cmn_Rect<int> destination(toX[column], toY[row], toX[column + 1], toY[row + 1]);
            if (!source.Empty() && !destination.Empty())
                DrawImagePortion(image, source, destination, kPenMode_Copy, resolution);
        }
}

void QLX_Painter::OptimizedFillRect(const Cmn_Rect<int>& rect, const CRGBColor& color,
                                    EAlphaBlendType blend, EResolution resolution,
                                    const Ptr& second, const CRGBColor& secondColor,
                                    EAlphaBlendType secondBlend) {
    FillPlainRect(rect, color, blend, resolution);
    if (second)
        second->OptimizedFillRect(rect, secondColor, secondBlend, resolution, nullptr, secondColor,
                                  secondBlend);
}

// In device pixels the corners are cut row by row from the circle through the pixels' middles.
void QLX_Painter::OptimizedFillRoundRect(const Cmn_Rect<int>& rect, int radius,
                                         const CRGBColor& color, EAlphaBlendType blend,
                                         EResolution resolution, const Ptr& second,
                                         const CRGBColor& secondColor,
                                         EAlphaBlendType secondBlend) {
    if (resolution == kResolution_Logical) {
        const CRGBColor before = GetForegroundColor();
        const EPenMode mode = GetPenMode();
        const EPenPattern pattern = GetPenPattern();
        CRGBColor used = color;
        if (blend == kAlphaBlend_Ignore)
            used.SetAlpha(CRGBColor::kMaximum);
        SetForegroundColor(used);
        SetPenMode(blend == kAlphaBlend_Add ? kPenMode_Add : kPenMode_Copy);
        SetPenPattern(kPenPattern_Solid);
        FillRoundRect(rect, radius, radius, /*antialias*/ true, /*topOnly*/ false);
        SetPenPattern(pattern);
        SetPenMode(mode);
        SetForegroundColor(before);
    } else if (!rect.Empty()) {
        const int room = std::min(rect.GetWidth(), rect.GetHeight()) / 2;
        const int corner = std::clamp(radius, 0, std::min(room, 4096));
        StPlainFill fill(*this, color, blend);
        for (int row = 0; row < corner; ++row) {
            const double fromMiddle = corner - row - 0.5;
            const int inset =
                corner -
                int(std::lround(std::sqrt(double(corner) * corner - fromMiddle * fromMiddle)));
            fill.Fill({rect.left + inset, rect.top + row, rect.right - inset, rect.top + row + 1},
                      resolution);
            fill.Fill(
                {rect.left + inset, rect.bottom - row - 1, rect.right - inset, rect.bottom - row},
                resolution);
        }
        fill.Fill({rect.left, rect.top + corner, rect.right, rect.bottom - corner}, resolution);
    }
    if (second)
        second->OptimizedFillRoundRect(rect, radius, secondColor, secondBlend, resolution, nullptr,
                                       secondColor, secondBlend);
}

void QLX_Painter::OptimizedCopyPixelsFromOffscreen(const Cmn_Rect<int>& bufferBounds, void* pixels,
                                                   const Cmn_Rect<int>& source,
                                                   const Cmn_Rect<int>& destination, bool opaque) {
    const Cmn_Rect<int> used = source & bufferBounds;
    if (!pixels || used.Empty() || used != source || used.GetWidth() > QLX_Image::kMaximumSide ||
        used.GetHeight() > QLX_Image::kMaximumSide)
        return;
    const auto* first = static_cast<const std::uint32_t*>(pixels);
    std::vector<std::uint32_t> copy;
    copy.reserve(std::size_t(used.GetWidth()) * used.GetHeight());
    for (int y = used.top; y < used.bottom; ++y) {
        const auto* row = first + std::size_t(y - bufferBounds.top) * bufferBounds.GetWidth() +
                          (used.left - bufferBounds.left);
        for (int x = 0; x < used.GetWidth(); ++x)
            copy.push_back(opaque ? row[x] | 0xFF000000 : row[x]);
    }
    const ImagePtr image = QLX_Image::Create(used.GetWidth(), used.GetHeight(), std::move(copy));
    if (image)
        DrawImage(image, destination, kPenMode_Copy);
}
