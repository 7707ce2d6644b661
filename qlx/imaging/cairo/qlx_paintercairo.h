// The painter of the desktop platforms: solid shapes, raster operations, images and glyphs straight
// into a 32-bit surface, curved shapes as coverage masks that Cairo renders.
#pragma once

#include <memory>
#include <vector>

#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/imaging/qlx_painterstate.h"
#include "qlx/imaging/qlx_spans.h"

class QLX_FontAtSize;
struct QLX_GlyphMask;
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
class QLX_API QLX_PainterCairo final : public QLX_PainterState {
  public:
    /// Logical size on a canvas of its own, opaque white or transparent. Null when it cannot be
    /// had.
    [[nodiscard]] static Ptr New(int width, int height, QLX_DeviceScale scale = QLX_DeviceScale(),
                                 bool withAlpha = false);
    /// On a canvas that stands for a window from its corner.
    QLX_PainterCairo(const Cmn_RefCountPtr<QLX_CairoCanvas>& canvas, QLX_DeviceScale scale);
    ~QLX_PainterCairo() override;

    [[nodiscard]] QLX_CairoCanvas& GetCanvas() const noexcept { return *mCanvas; }
    /// The canvas's pixels as an image of as many pixels. Null when the canvas is gone.
    [[nodiscard]] ImagePtr GetPixels() const;

    Ptr Clone() override;
    void* GetRawNativeDrawingPort() override;
    /// A PNG of the canvas's pixels. A file that cannot be written is asserted.
    void SaveToFile(const std::wstring& path) override;
    void Flush() override;
    bool IsValid() override;

    void LineTo(float x, float y, bool includeEnd, EResolution resolution,
                float thickness) override;

    void OptimizedWaveformFill(int x, int count, const int* minima, const int* maxima, int yOffset,
                               int top, int bottom, const CRGBColor& color, const Ptr& second,
                               const CRGBColor& secondColor, int columnWidth,
                               EResolution resolution) override;
    void OptimizedFillRect(const Cmn_Rect<int>& rect, const CRGBColor& color, EAlphaBlendType blend,
                           EResolution resolution, const Ptr& second, const CRGBColor& secondColor,
                           EAlphaBlendType secondBlend) override;
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
    void OptimizedDrawImage(const ImagePtr& image, const Cmn_Rect<int>& source,
                            const Cmn_Rect<int>& destination, const Cmn_Rect<int>* clip,
                            EResolution resolution) override;
    using QLX_Painter::OptimizedDrawImage;
    void OptimizedCopyPixelsFromOffscreen(const Cmn_Rect<int>& bufferBounds, void* pixels,
                                          const Cmn_Rect<int>& source,
                                          const Cmn_Rect<int>& destination, bool opaque) override;

    void DrawRect(const Cmn_Rect<int>& rect) override;
    void DrawRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY, bool antialias,
                       bool topOnly) override;
    void DrawOval(const Cmn_Rect<int>& rect) override;
    void DrawArc(const Cmn_Rect<int>& rect, int startDegrees, int sweepDegrees,
                 bool antialias) override;
    void DrawPolygon(const Cmn_Polygon<int>& polygon, bool closed, bool antialias) override;
    void DrawRegion(const QLX_Region& region) override;
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
    void FillRect(const Cmn_Rect<int>& rect) override;
    void FillRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY, bool antialias,
                       bool topOnly) override;
    void FillOval(const Cmn_Rect<int>& rect, bool antialias) override;
    void FillPolygon(const Cmn_Polygon<int>& polygon) override;
    void FillRegion(const QLX_Region& region) override;
    void EraseRect(const Cmn_Rect<int>& rect) override;
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
    bool IsOffscreen() override;
    void DrawPath(const PathPtr& path, bool antialias, ELineJoin join) override;
    void FillPath(const PathPtr& path) override;
    void CopyCanvas(Ptr source, const Cmn_Rect<int>& sourceRect,
                    const Cmn_Rect<int>& destinationRect, EPenMode mode, const QLX_Region* mask,
                    Cmn_Point<int> maskOffset) override;
    void SaveIntoImage(ImagePtr image, int variant) override;
    ImagePtr CreateImage(Ptr painter) override;
    bool GetOffscreenBuffer(void** bits, int* width, int* height, int* rowBytes,
                            Cmn_Rect<int>* bounds, void** nativeCanvas,
                            void** nativeContext) override;

  protected:
    bool OffscreenWillBeOverlayed() override;

  private:
    enum class ELook { Fill, Stroke };
    struct Picture { // premultiplied pixels to copy from
        const std::uint32_t* pixels;
        int row;
        bool opaque;
    };
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

    // Coordinates and clip: canvas pixels

    [[nodiscard]] Cmn_Rect<int>
    ToCanvas(const Cmn_Rect<int>& local,
             EResolution resolution = kResolution_Logical) const noexcept;
    [[nodiscard]] Cmn_Rect<int> CanvasBounds() const noexcept;
    [[nodiscard]] const std::vector<Cmn_Rect<int>>& DeviceClip();
    void RebuildClip();
    /// Calls operation(rect) for every part of a canvas rectangle that the clip lets through.
    template <class Operation>
    void ForClipped(const Cmn_Rect<int>& rect, Operation operation);
    template <class Operation>
    void ForClippedRegion(const QLX_Region& region, Operation operation);

    // Paints

    [[nodiscard]] QLX_SpanPaint PenPaint() const noexcept;
    [[nodiscard]] QLX_SpanPaint PlainPaint(const CRGBColor& color,
                                           EAlphaBlendType blend = kAlphaBlend_Over) const noexcept;
    [[nodiscard]] QLX_SpanPaint TextPaint() const noexcept;
    void Fill(const Cmn_Rect<int>& canvasRect, const QLX_SpanPaint& paint);
    [[nodiscard]] unsigned AlphaOf(const CRGBColor& color) const noexcept;

    // Curved shapes

    /// Lays the coverage that was rendered last, of an area of the canvas, down within the clip.
    void LayMask(const Cmn_Rect<int>& area, const QLX_SpanPaint& paint);
    void FillShape(const QLX_Path& path, const Cmn_Rect<int>& bounds, const ShapeStyle& style,
                   const QLX_SpanPaint& paint);
    void RoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY, bool topOnly,
                   bool antialias, ELook look, const QLX_SpanPaint& paint);
    void DiagonalLine(Cmn_Point<double> from, Cmn_Point<double> to, double width, bool includeEnd);

    // Text

    void PrepareFont();
    /// One line from a canvas x (in 1/64ths of a pixel) on a canvas baseline, within limit; returns
    /// its advance in pixels.
    double DrawLine(std::string_view text, double x, int baseline, const Cmn_Rect<int>& limit);
    [[nodiscard]] bool DrawAsciiLine(std::string_view text, double& x, int baseline,
                                     const Cmn_Rect<int>& limit, const QLX_SpanPaint& paint);
    [[nodiscard]] bool DrawSimpleLine(std::string_view text, double& x, int baseline,
                                      const Cmn_Rect<int>& limit, const QLX_SpanPaint& paint);
    void DrawShaped(const QLX_ShapedText& text, double x, int baseline, const Cmn_Rect<int>& limit,
                    const QLX_SpanPaint& paint);
    void DrawGlyph(const QLX_GlyphMask& mask, int x, int y, const Cmn_Rect<int>& limit,
                   const QLX_SpanPaint& paint);
    void DrawPlaced(const Cmn_Rect<int>& limit);

    // Images

    void DrawPixels(const Picture& picture, const Cmn_Rect<int>& part,
                    const Cmn_Rect<int>& destination, EPenMode mode, const Cmn_Rect<int>* clip);
    void CopyTo(const Picture& source, const Cmn_Rect<int>& part, const Cmn_Rect<int>& to,
                EPenMode mode, const QLX_Region* mask);

    Cmn_RefCountPtr<QLX_CairoCanvas> mCanvas; // counted
    Cmn_Point<int> mDeviceCorner; // the window's device pixel that the canvas's first pixel is
    bool mOffscreen = false;

    std::vector<Cmn_Rect<int>> mDeviceClip; // disjoint, canvas pixels
    Cmn_Rect<int> mClipBounds;
    unsigned mClipSeen = 0;
    std::vector<int> mColumns; // scratch of waveforms

    QLX_FontAtSize* mAtSize = nullptr; // the glyph cache's
    QLX_Font mPreparedFont;
    unsigned mFontGeneration = 0;
};
