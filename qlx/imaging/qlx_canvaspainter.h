// What all painters that end in pixels share: every operation that is the same whoever sets the
// pixels, put down to a handful of primitives.
#pragma once

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_painterstate.h"
#include "qlx/imaging/qlx_spans.h"

/// A clip in canvas pixels.
struct QLX_CanvasClip {
    std::vector<Cmn_Rect<int>> rects; ///< disjoint, within the canvas
    Cmn_Rect<int> bounds;
};

/// Premultiplied pixels to copy from.
struct QLX_CanvasPicture {
    const std::uint32_t* pixels = nullptr;
    int rowPixels = 0;
    bool opaque = false;
    const QLX_Image* image = nullptr; ///< whose pixels these are, if they are an image's
};

/// What a painter does by the means of its platform. All coordinates are canvas pixels; every
/// operation keeps to the painter's clip and does nothing on a canvas that is gone.
///
/// A base beside the painter's and not a part of it, since the painter's slots are counted.
class QLX_API QLX_CanvasPrimitives {
  public:
    [[nodiscard]] virtual Cmn_Rect<int> GetCanvasBounds() const noexcept = 0;
    [[nodiscard]] virtual bool CanvasHasAlpha() const noexcept = 0;
    /// Access to the pixels of an area within the canvas: surface's first pixel is the canvas's at
    /// corner. False when they cannot be had. Every true is followed by an EndPixels, with nothing
    /// drawn in between.
    [[nodiscard]] virtual bool BeginPixels(const Cmn_Rect<int>& area, QLX_Surface& surface,
                                           Cmn_Point<int>& corner) = 0;
    virtual void EndPixels(bool changed) = 0;
    /// The whole canvas, where its pixels may be read while something else is drawn; else null.
    [[nodiscard]] virtual const QLX_Surface* GetMemory() = 0;

    /// Rectangles of one paint, one after the other.
    virtual void FillPixels(const Cmn_Rect<int>* rects, std::size_t count,
                            const QLX_SpanPaint& paint) = 0;
    /// A line that is neither level nor upright, in the pen's paint; the ends are the window's
    /// device pixels, the pen hangs below and to the right of them.
    virtual void DrawSlantedLine(Cmn_Point<double> from, Cmn_Point<double> to, int width,
                                 bool includeEnd) = 0;
    /// One line of text from an x on a baseline, nothing of it outside limit. Returns its advance.
    virtual double DrawTextLine(std::string_view text, double x, int baseline,
                                const Cmn_Rect<int>& limit) = 0;
    /// A part that lies within the picture, stretched to the destination. limit, if there is one,
    /// narrows the clip.
    virtual void DrawPicture(const QLX_CanvasPicture& picture, const Cmn_Rect<int>& part,
                             const Cmn_Rect<int>& destination, EPenMode mode,
                             const Cmn_Rect<int>* limit) = 0;

  protected:
    QLX_CanvasPrimitives() = default;
    QLX_CanvasPrimitives(const QLX_CanvasPrimitives&) = default;
    QLX_CanvasPrimitives& operator=(const QLX_CanvasPrimitives&) = default;
    ~QLX_CanvasPrimitives() = default;
};

/// The shared base of the painters on pixels. Like QLX_PainterState it adds no slot to the
/// painter's.
class QLX_API QLX_CanvasPainter : public QLX_PainterState, public QLX_CanvasPrimitives {
  public:
    ~QLX_CanvasPainter() override;

    /// The canvas's pixels as an image of as many pixels. Null when the canvas is gone.
    [[nodiscard]] ImagePtr GetPixels();

    /// A PNG of the canvas's pixels. A file that cannot be written is asserted.
    void SaveToFile(const std::wstring& path) override;
    bool IsOffscreen() override;

    void LineTo(float x, float y, bool includeEnd, EResolution resolution,
                float thickness) override;
    void OptimizedVerticalLine(int x, int top, int bottom, const CRGBColor& color,
                               EResolution resolution) override;
    void OptimizedHorizontalLine(int left, int right, int y, const CRGBColor& color,
                                 EResolution resolution) override;
    void OptimizedVerticalLines(int count, const int* xs, const int* tops, const int* bottoms,
                                const int* widths, const Cmn_PolyVector<CRGBColor>& colors,
                                EAlphaBlendType blend, EResolution resolution) override;
    void OptimizedHorizontalLines(int count, const int* ys, const int* lefts, const int* rights,
                                  const int* heights, const Cmn_PolyVector<CRGBColor>& colors,
                                  EAlphaBlendType blend, EResolution resolution) override;
    void OptimizedFillRect(const Cmn_Rect<int>& rect, const CRGBColor& color, EAlphaBlendType blend,
                           EResolution resolution, const Ptr& second, const CRGBColor& secondColor,
                           EAlphaBlendType secondBlend) override;
    void OptimizedDrawImage(const ImagePtr& image, const Cmn_Rect<int>& source,
                            const Cmn_Rect<int>& destination, const Cmn_Rect<int>* clip,
                            EResolution resolution) override;
    using QLX_Painter::OptimizedDrawImage;
    void OptimizedCopyPixelsFromOffscreen(const Cmn_Rect<int>& bufferBounds, void* pixels,
                                          const Cmn_Rect<int>& source,
                                          const Cmn_Rect<int>& destination, bool opaque) override;

    void DrawRect(const Cmn_Rect<int>& rect) override;
    void DrawRegion(const QLX_Region& region) override;
    void FillRect(const Cmn_Rect<int>& rect) override;
    void EraseRect(const Cmn_Rect<int>& rect) override;

    void DrawChar(char character) override;
    void DrawString(const std::string& text) override;
    void DrawStringJustified(const Cmn_Rect<int>& rect, const std::string& text,
                             EJustification justification, EVerticalJustification vertical,
                             EResolution resolution) override;
    int DrawTextBox(const Cmn_Rect<int>& rect, const std::string& text,
                    EJustification justification, bool wrap, bool ellipsis, bool clip,
                    bool erase) override;
    void DrawSingleLineTextBox(const Cmn_Rect<int>& rect, const std::string& text, bool ellipsis,
                               const Ptr& second) override;

    void DrawImage(const ImagePtr& image, const Cmn_Rect<int>& rect, EPenMode mode) override;
    void DrawImagePortion(const ImagePtr& image, const Cmn_Rect<int>& source,
                          const Cmn_Rect<int>& destination, EPenMode mode,
                          EResolution resolution) override;
    void DrawIcon(const QLX_Icon& icon, const Cmn_Rect<int>& rect) override;
    void ScrollCanvas(const Cmn_Rect<int>& rect, int dx, int dy, QLX_Region& toRepaint) override;
    void CopyCanvas(Ptr source, const Cmn_Rect<int>& sourceRect,
                    const Cmn_Rect<int>& destinationRect, EPenMode mode, const QLX_Region* mask,
                    Cmn_Point<int> maskOffset) override;
    void SaveIntoImage(ImagePtr image, int variant) override;
    ImagePtr CreateImage(Ptr painter) override;

  protected:
    bool OffscreenWillBeOverlayed() override;

    /// On a canvas that stands for this part of the window.
    QLX_CanvasPainter(const Cmn_Rect<int>& windowBounds, QLX_DeviceScale scale);
    /// For Clone.
    QLX_CanvasPainter(const QLX_CanvasPainter& other);
    /// For offscreen painters: the parent's drawing state on a canvas of its own.
    QLX_CanvasPainter(const QLX_CanvasPainter& parent, const Cmn_Rect<int>& windowArea);

    /// The pixel size of an offscreen canvas for an area of the window; empty when it cannot be.
    [[nodiscard]] Cmn_Rect<int> GetOffscreenSize(const Cmn_Rect<int>& windowArea) const noexcept;
    /// Gives a new offscreen painter its first contents: the background, unless it has alpha, and
    /// this painter's pixels if they are wanted.
    void BeginOffscreen(QLX_CanvasPainter& made, const Cmn_Rect<int>& area, bool copyContents);

    // Coordinates and clip

    [[nodiscard]] Cmn_Rect<int>
    ToCanvas(const Cmn_Rect<int>& local,
             EResolution resolution = kResolution_Logical) const noexcept;
    [[nodiscard]] static Cmn_Rect<int> MovedBack(const Cmn_Rect<int>& rect,
                                                 Cmn_Point<int> by) noexcept;
    /// The clip's rectangles within the system clip's.
    void MakeClip(QLX_CanvasClip& clip) const;

    // Paints

    [[nodiscard]] QLX_SpanPaint PenPaint() const noexcept;
    [[nodiscard]] QLX_SpanPaint PlainPaint(const CRGBColor& color,
                                           EAlphaBlendType blend = kAlphaBlend_Over) const noexcept;
    [[nodiscard]] QLX_SpanPaint TextPaint() const noexcept;
    /// 0 to 255.
    [[nodiscard]] unsigned AlphaOf(const CRGBColor& color) const noexcept;
    [[nodiscard]] unsigned PainterAlpha() const noexcept;

    void Fill(const Cmn_Rect<int>& canvasRect, const QLX_SpanPaint& paint) {
        FillPixels(&canvasRect, 1, paint);
    }

    // Pixels

    [[nodiscard]] static bool IsSameSize(const Cmn_Rect<int>& a, const Cmn_Rect<int>& b) noexcept;
    /// Room for pixels, good until the next call. User-interface thread, as painters.
    [[nodiscard]] static std::uint32_t* GetScratch(std::size_t pixels);
    /// Copies an area within the canvas out; false when it cannot be read.
    [[nodiscard]] bool ReadPixels(const Cmn_Rect<int>& area, std::vector<std::uint32_t>& pixels);

    static constexpr Cmn_Rect<int> kNoLimit{-(1 << 30), -(1 << 30), 1 << 30, 1 << 30};

    // Data members keep their order.

    Cmn_Point<int> mDeviceCorner; // the window's device pixel that the canvas's first pixel is
    bool mOffscreen = false;

  private:
    [[nodiscard]] int BaselineToCanvas(std::int64_t baseline) const noexcept;
    [[nodiscard]] static unsigned Byte(float share) noexcept;
};

// Inline: drawing many small things is mostly these.

inline Cmn_Rect<int> QLX_CanvasPainter::MovedBack(const Cmn_Rect<int>& rect,
                                                  Cmn_Point<int> by) noexcept {
    const auto minus = [](int a, int b) {
        return Cmn_ClampTo<int>(std::int64_t{a} - std::int64_t{b});
    };
    return {minus(rect.left, by.x), minus(rect.top, by.y), minus(rect.right, by.x),
            minus(rect.bottom, by.y)};
}

inline Cmn_Rect<int> QLX_CanvasPainter::ToCanvas(const Cmn_Rect<int>& local,
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

inline unsigned QLX_CanvasPainter::PainterAlpha() const noexcept {
    return mAlpha == 1 ? 255 : Byte(mAlpha);
}

inline unsigned QLX_CanvasPainter::AlphaOf(const CRGBColor& color) const noexcept {
    if (color.IsOpaque() && mAlpha == 1)
        return 255;
    return Byte(float(color.GetAlpha()) / CRGBColor::kMaximum * mAlpha);
}

inline QLX_SpanPaint QLX_CanvasPainter::PlainPaint(const CRGBColor& color,
                                                   EAlphaBlendType blend) const noexcept {
    QLX_SpanPaint paint;
    paint.color = color.AsInt32() | 0xFF000000;
    paint.alpha = blend == kAlphaBlend_Ignore ? PainterAlpha() : AlphaOf(color);
    paint.mode = blend == kAlphaBlend_Add ? kPenMode_Add : kPenMode_Copy;
    return paint;
}

inline QLX_SpanPaint QLX_CanvasPainter::PenPaint() const noexcept {
    QLX_SpanPaint paint = PlainPaint(mForegroundColor);
    paint.mode = mPenMode;
    paint.pattern = QLX_GetPatternCell(mPenPattern);
    if (paint.pattern) {
        paint.background = mBackgroundColor.AsInt32() | 0xFF000000;
        paint.backgroundAlpha = AlphaOf(mBackgroundColor);
        paint.cell = std::max(1, int(std::lround(mScale.GetFactor())));
        paint.phaseX = mDeviceCorner.x;
        paint.phaseY = mDeviceCorner.y;
    }
    return paint;
}

inline QLX_SpanPaint QLX_CanvasPainter::TextPaint() const noexcept {
    QLX_SpanPaint paint = PlainPaint(mForegroundColor);
    paint.mode = mTextMode;
    return paint;
}
