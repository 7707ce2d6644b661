// The painter of the desktop platforms: solid shapes, raster operations, images and glyphs straight
// into a 32-bit surface, curved shapes as coverage masks that Cairo renders.
#pragma once

#include <memory>
#include <vector>

#include "qlx/imaging/qlx_canvaspainter.h"
#include "qlx/imaging/qlx_painterfactory.h"

class QLX_FontAtSize;
struct QLX_GlyphMask;
struct QLX_RoundMaskKey;
struct QLX_ShapedText;

/// The pixels that painters draw on, shared by a painter and its clones.
class QLX_API QLX_CairoCanvas : public Cmn_RefCountObject {
  public:
    /// Pixels of its own, all 0. Null when there is no memory or a side is absurd.
    [[nodiscard]] static Cmn_RefCountPtr<QLX_CairoCanvas> New(int width, int height, bool hasAlpha);
    /// Somebody else's pixels.
    explicit QLX_CairoCanvas(const QLX_PixelBuffer& buffer);
    ~QLX_CairoCanvas() override;

    [[nodiscard]] const QLX_Surface& GetSurface() const noexcept { return mSurface; }
    [[nodiscard]] bool IsGone() const noexcept { return mSurface.pixels == nullptr; }
    /// Forgets the pixels: every painter on the canvas is invalid from now on.
    void Detach() noexcept;

  private:
    QLX_CairoCanvas();
    QLX_Surface mSurface;
    std::vector<std::uint32_t> mPixels; // empty when they are somebody else's
};

/// A painter on a QLX_CairoCanvas. Its pixels depend on nothing but the calls, the fonts and the
/// scale.
class QLX_API QLX_PainterCairo final : public QLX_CanvasPainter {
  public:
    /// Logical size on a canvas of its own, opaque white or transparent. Null when it cannot be
    /// had.
    [[nodiscard]] static Ptr New(int width, int height, QLX_DeviceScale scale = QLX_DeviceScale(),
                                 bool withAlpha = false);
    /// On a canvas that stands for a window from its corner.
    QLX_PainterCairo(const Cmn_RefCountPtr<QLX_CairoCanvas>& canvas, QLX_DeviceScale scale);
    ~QLX_PainterCairo() override;

    [[nodiscard]] QLX_CairoCanvas& GetCanvas() const noexcept { return *mCanvas; }

    Ptr Clone() override;
    void* GetRawNativeDrawingPort() override;
    void Flush() override;
    bool IsValid() override;

    void OptimizedWaveformFill(int x, int count, const int* minima, const int* maxima, int yOffset,
                               int top, int bottom, const CRGBColor& color, const Ptr& second,
                               const CRGBColor& secondColor, int columnWidth,
                               EResolution resolution) override;
    void OptimizedFillRect(const Cmn_Rect<int>& rect, const CRGBColor& color, EAlphaBlendType blend,
                           EResolution resolution, const Ptr& second, const CRGBColor& secondColor,
                           EAlphaBlendType secondBlend) override;

    void DrawRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY, bool antialias,
                       bool topOnly) override;
    void DrawOval(const Cmn_Rect<int>& rect) override;
    void DrawArc(const Cmn_Rect<int>& rect, int startDegrees, int sweepDegrees,
                 bool antialias) override;
    void DrawPolygon(const Cmn_Polygon<int>& polygon, bool closed, bool antialias) override;
    void FillRect(const Cmn_Rect<int>& rect) override;
    void FillRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY, bool antialias,
                       bool topOnly) override;
    void FillOval(const Cmn_Rect<int>& rect, bool antialias) override;
    void FillPolygon(const Cmn_Polygon<int>& polygon) override;
    void FillRegion(const QLX_Region& region) override;
    void EraseRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY,
                        bool antialias) override;
    void EraseRegion(const QLX_Region& region) override;
    void BlendRect(const Cmn_Rect<int>& rect, CRGBColor color, EBlendMode mode) override;
    void BlendRegion(const QLX_Region& region, CRGBColor color, EBlendMode mode) override;
    void InvertRect(const Cmn_Rect<int>& rect) override;
    void InvertRegion(const QLX_Region& region) override;
    void HighlightRect(const Cmn_Rect<int>& rect, const CRGBColor* color) override;
    void HighlightRegion(const QLX_Region& region, const CRGBColor* color) override;
    Ptr CreateOffscreenPainter(const Cmn_Rect<int>& area, bool withAlpha,
                               bool copyContents) override;
    void DrawPath(const PathPtr& path, bool antialias, ELineJoin join) override;
    void FillPath(const PathPtr& path) override;
    bool GetOffscreenBuffer(void** bits, int* width, int* height, int* rowBytes,
                            Cmn_Rect<int>* bounds, void** nativeCanvas,
                            void** nativeContext) override;

    // The primitives

    Cmn_Rect<int> GetCanvasBounds() const noexcept override;
    bool CanvasHasAlpha() const noexcept override;
    bool BeginPixels(const Cmn_Rect<int>& area, QLX_Surface& surface,
                     Cmn_Point<int>& corner) override;
    void EndPixels(bool changed) override;
    const QLX_Surface* GetMemory() override;
    void FillPixels(const Cmn_Rect<int>* rects, std::size_t count,
                    const QLX_SpanPaint& paint) override;
    void DrawSlantedLine(Cmn_Point<double> from, Cmn_Point<double> to, int width,
                         bool includeEnd) override;
    double DrawTextLine(std::string_view text, double x, int baseline,
                        const Cmn_Rect<int>& limit) override;
    void DrawPicture(const QLX_CanvasPicture& picture, const Cmn_Rect<int>& part,
                     const Cmn_Rect<int>& destination, EPenMode mode,
                     const Cmn_Rect<int>* limit) override;

  private:
    enum class ELook { Fill, Stroke };
    struct ShapeStyle {
        ELook look = ELook::Fill;
        bool antialias = true;
        bool evenOdd = false;
        ELineJoin join = kLineJoin_Miter;
        double width = 1; // device pixels
    };

    QLX_PainterCairo(const QLX_PainterCairo& other);
    QLX_PainterCairo(const QLX_PainterCairo& parent, const Cmn_RefCountPtr<QLX_CairoCanvas>& canvas,
                     const Cmn_Rect<int>& windowArea);

    // The clip, in canvas pixels

    [[nodiscard]] const QLX_CanvasClip& Clip();
    /// Calls operation(rect) for every part of a canvas rectangle that the clip lets through.
    template <class Operation>
    void ForClipped(const Cmn_Rect<int>& rect, Operation operation);
    template <class Operation>
    void ForClippedRegion(const QLX_Region& region, Operation operation);

    /// Hides the base's: what most drawing is made of needs no detour over a primitive.
    void Fill(const Cmn_Rect<int>& canvasRect, const QLX_SpanPaint& paint);
    /// The usual case: one colour, one rectangle of the clip, scale 1. False: it is not that case.
    [[nodiscard]] bool FillDirectly(const Cmn_Rect<int>& local, std::uint32_t color) noexcept;
    /// Whether the pen covers what it draws on with its colour.
    [[nodiscard]] bool PenIsPlain() const noexcept;

    // Curved shapes

    /// Lays the coverage that was rendered last, of an area of the canvas, down within the clip.
    void LayMask(const Cmn_Rect<int>& area, const QLX_SpanPaint& paint);
    void FillShape(const QLX_Path& path, const Cmn_Rect<int>& bounds, const ShapeStyle& style,
                   const QLX_SpanPaint& paint);
    void RoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY, bool topOnly,
                   bool antialias, ELook look, const QLX_SpanPaint& paint);
    void LayKept(const Cmn_Rect<int>& at, const std::uint8_t* bytes, int row,
                 const QLX_SpanPaint& paint);
    void LayCorners(const Cmn_Rect<int>& at, QLX_RoundMaskKey& key, int sideX, int sideY,
                    const QLX_SpanPaint& paint);

    // Text

    void PrepareFont();
    /// Whether nothing of a glyph at an x can show.
    [[nodiscard]] bool IsFarAcross(int x) const noexcept;
    [[nodiscard]] bool DrawAsciiLine(std::string_view text, double& x, int baseline,
                                     const Cmn_Rect<int>& limit, const QLX_SpanPaint& paint);
    [[nodiscard]] bool DrawSimpleLine(std::string_view text, double& x, int baseline,
                                      const Cmn_Rect<int>& limit, const QLX_SpanPaint& paint);
    void DrawShaped(const QLX_ShapedText& text, double x, int baseline, const Cmn_Rect<int>& limit,
                    const QLX_SpanPaint& paint);
    void DrawGlyph(const QLX_GlyphMask& mask, int x, int y, const Cmn_Rect<int>& limit,
                   const QLX_SpanPaint& paint);

    Cmn_RefCountPtr<QLX_CairoCanvas> mCanvas; // counted
    QLX_CanvasClip mClip;
    unsigned mClipSeen = 0;
    bool mIsDirect = false;    // mClip is one rectangle, and the scale is 1
    std::vector<int> mColumns; // scratch of waveforms

    QLX_FontAtSize* mAtSize = nullptr; // the glyph cache's
    QLX_Font mPreparedFont;
    unsigned mFontGeneration = 0;
};
