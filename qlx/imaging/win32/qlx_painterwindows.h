// What both Windows painters share: every operation of the interface, put down to the primitives of
// a canvas, which GDI or Direct2D carries out.
#pragma once

#include <vector>

#include "qlx/imaging/qlx_canvaspainter.h"
#include "qlx/imaging/win32/qlx_wincanvas.h"

/// The shared base of the Windows painters. What a canvas cannot do by the system's means (the
/// arithmetic pen modes, drawing into transparent bitmaps) is done on its pixels, so every
/// operation gives the same picture on both, up to the smoothing of slanted edges.
class QLX_API QLX_PainterWindows : public QLX_CanvasPainter {
  public:
    enum ePainterKind : int { kPainterKind_GDI = 0, kPainterKind_Direct2D };

    ~QLX_PainterWindows() override;

    [[nodiscard]] QLX_WinCanvas& GetCanvas() const noexcept { return *mCanvas; }
    /// Device pixels of a window for 120 logical ones: QLX_SCALE, else what the system says of the
    /// monitor that the window is on.
    [[nodiscard]] static QLX_DeviceScale GetWindowScale(HWND window);

    // Slot order is part of the binary interface: append, never move.

    void* GetRawNativeDrawingPort() override;
    void Flush() override;
    bool IsValid() override;
    void OptimizedWaveformFill(int x, int count, const int* minima, const int* maxima, int yOffset,
                               int top, int bottom, const CRGBColor& color, const Ptr& second,
                               const CRGBColor& secondColor, int columnWidth,
                               EResolution resolution) override;
    void DrawRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY, bool antialias,
                       bool topOnly) override;
    void DrawOval(const Cmn_Rect<int>& rect) override;
    void DrawArc(const Cmn_Rect<int>& rect, int startDegrees, int sweepDegrees,
                 bool antialias) override;
    void DrawPolygon(const Cmn_Polygon<int>& polygon, bool closed, bool antialias) override;
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

    // The Windows painters' own operations

    /// Asks the window for its size and its monitor's scale and follows both; nothing for painters
    /// without a window. After a change the canvas's pixels are undefined.
    virtual void CheckScaleFactor();
    /// A device context on the canvas, see QLX_HDCWrap::EFlags; null when it cannot be had.
    virtual Cmn_RefCountPtr<QLX_HDCWrap> GetHDC(unsigned flags);
    /// Adds a rectangle in local coordinates to what the next Flush shows in the window.
    virtual void AddDirtyRgn(const Cmn_Rect<int>& rect);
    /// The same in the window's device pixels.
    virtual void AddDirtyRgn(const RECT& rect);
    /// Null for painters without a window.
    virtual HWND GetHWnd();
    virtual ePainterKind GetPainterKind() = 0;

  private:
    /// Takes over the paint state of the painter that this one replaces, which stays as it is.
    virtual void AdoptPaintState(const QLX_PainterWindows& replaced);

  public:
    /// Takes the drawing state of the painter that this one replaces.
    void Replace(const QLX_PainterWindows& replaced) { AdoptPaintState(replaced); }

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

  protected:
    QLX_PainterWindows(const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                       const Cmn_Rect<int>& windowBounds, QLX_DeviceScale scale);
    QLX_PainterWindows(const QLX_PainterWindows& other);
    /// For offscreen painters.
    QLX_PainterWindows(const QLX_PainterWindows& parent,
                       const Cmn_RefCountPtr<QLX_WinCanvas>& canvas,
                       const Cmn_Rect<int>& windowArea);

    /// A painter of the same kind on a new canvas for an area of the window; null when there is no
    /// memory.
    [[nodiscard]] virtual QLX_PainterWindows* MakeOffscreen(int width, int height, bool withAlpha,
                                                            const Cmn_Rect<int>& windowArea) = 0;

  private:
    [[nodiscard]] const QLX_WinClip& Clip();
    void RebuildClip();

    // By the canvas's own means, else on its pixels

    void FillRegionWith(const QLX_Region& region, const QLX_SpanPaint& paint);
    void Lay(const QLX_WinShape& shape, const QLX_SpanPaint& paint);
    /// Calls operation(surface, rect in the surface) for every clipped part of rectangles, in one
    /// access to the pixels.
    template <class Operation>
    void EditClipped(const Cmn_Rect<int>* rects, std::size_t count, Operation operation);
    template <class Operation>
    void EditRegion(const QLX_Region& region, Operation operation);

    void RoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY, bool topOnly,
                   bool antialias, bool stroke, const QLX_SpanPaint& paint);
    void LayPath(const QLX_Path& path, QLX_WinShape& shape);

    // Data members keep their order.

    Cmn_RefCountPtr<QLX_WinCanvas> mCanvas; // counted
    QLX_WinClip mClip;
    unsigned mClipSeen = 0;
    std::vector<Cmn_Rect<int>> mDirty; // device pixels
    std::vector<Cmn_Rect<int>> mRects; // scratch
};
