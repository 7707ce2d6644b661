// A painter that draws nothing and remembers everything.
#pragma once

#include "qlx/imaging/qlx_painterstate.h"
#include "qlx/imaging/qlx_recording.h"

/// Records every drawing and state call, with the state it was made in, into a QLX_Recording. Works
/// without any drawing library; texts measure as the installed QLX_TextMeasure says. Offscreen
/// painters made from it record into the same recording under a canvas number of their own.
class QLX_API QLX_PainterRecording final : public QLX_PainterState {
  public:
    /// A canvas of a logical size with a recording of its own.
    QLX_PainterRecording(int width, int height, QLX_DeviceScale scale = QLX_DeviceScale());
    /// Records into a given recording, on its first canvas.
    explicit QLX_PainterRecording(const Cmn_RefCountPtr<QLX_Recording>& recording);
    ~QLX_PainterRecording() override;

    [[nodiscard]] QLX_Recording& GetRecording() const noexcept { return *mRecording; }
    [[nodiscard]] Cmn_RefCountPtr<QLX_Recording> GetRecordingPtr() const noexcept {
        return mRecording;
    }
    [[nodiscard]] int GetCanvasNumber() const noexcept { return mCanvas; }
    /// Makes this painter and its clones invalid, as when a window closes; nothing is recorded any
    /// more.
    void Detach() noexcept { mTarget->gone = true; }
    /// The drawing calls as text: what tests compare.
    [[nodiscard]] std::string Print() const;

    Ptr Clone() override;
    void* GetRawNativeDrawingPort() override;
    void SetIdentifier(int identifier) override;
    /// The complete text, or an SVG when the path ends in ".svg". A file that cannot be written is
    /// asserted.
    void SaveToFile(const std::wstring& path) override;
    void Activate() override;
    void Flush() override;
    void SetWindowOrigin(Cmn_Point<int> origin) override;
    void SetClip(const QLX_Region& region) override;
    void SetClip(const Cmn_Rect<int>& rect) override;
    void SetAlpha(float alpha) override;
    void SetForegroundColor(const CRGBColor& color) override;
    void SetForeground(EThemeColor color) override;
    void SetBackgroundColor(const CRGBColor& color) override;
    void SetBackground(EThemeColor color) override;
    void SetHighlightColor(const CRGBColor& color) override;
    void SetPenSize(short horizontal, short vertical) override;
    void SetPenMode(EPenMode mode) override;
    void SetPenPattern(EPenPattern pattern) override;
    void NormalizePen() override;
    void SetFont(const QLX_Font& font) override;
    void SetTextMode(EPenMode mode) override;
    void MoveTo(float x, float y, EResolution resolution) override;
    void LineTo(float x, float y, bool includeEnd, EResolution resolution,
                float thickness) override;
    void LineOfLength(int dx, int dy, bool includeEnd, EResolution resolution) override;
    bool IsValid() override;

    void OptimizedVerticalLine(int x, int top, int bottom, const CRGBColor& color,
                               EResolution resolution) override;
    void OptimizedHorizontalLine(int left, int right, int y, const CRGBColor& color,
                                 EResolution resolution) override;
    void OptimizedWaveformFill(int x, int count, const int* minima, const int* maxima, int yOffset,
                               int top, int bottom, const CRGBColor& color, const Ptr& second,
                               const CRGBColor& secondColor, int columnWidth,
                               EResolution resolution) override;
    void OptimizedVerticalLines(int count, const int* xs, const int* tops, const int* bottoms,
                                const int* widths, const Cmn_PolyVector<CRGBColor>& colors,
                                EAlphaBlendType blend, EResolution resolution) override;
    void OptimizedIdenticalVerticalLines(int count, const int* xs, const int* colorIndexes,
                                         const CRGBColor* colors, int top, int bottom, int width,
                                         EAlphaBlendType blend, EResolution resolution,
                                         int xOffset) override;
    void OptimizedHorizontalLines(int count, const int* ys, const int* lefts, const int* rights,
                                  const int* heights, const Cmn_PolyVector<CRGBColor>& colors,
                                  EAlphaBlendType blend, EResolution resolution) override;
    void OptimizedIdenticalHorizontalLines(int count, const int* ys, const int* colorIndexes,
                                           const CRGBColor* colors, int left, int right, int height,
                                           EResolution resolution) override;
    void OptimizedWaveformOutline(int x, int count, const int* ys, int yOffset, bool connect,
                                  int top, int bottom, const CRGBColor& color, const Ptr& second,
                                  const CRGBColor& secondColor, int thickness,
                                  EResolution resolution) override;
    void OptimizedDrawImage(const ImagePtr& image, const Cmn_Rect<int>& source,
                            const Cmn_Rect<int>& destination, const Cmn_Rect<int>* clip,
                            EResolution resolution) override;
    void OptimizedDrawImage(const ImagePtr& image, int count, const int* xs, int y,
                            const Cmn_Rect<int>* clip, EResolution resolution,
                            const Ptr* second) override;
    void OptimizedDrawImages(const Cmn_PolyVector<ImagePtr>& images, int count,
                             const int* imageIndexes, const int* xs, const int* ys,
                             EResolution resolution) override;
    void OptimizedDrawBackgroundImage(const ImagePtr& image, int width, int height, int border,
                                      EResolution resolution) override;
    void OptimizedFillRect(const Cmn_Rect<int>& rect, const CRGBColor& color, EAlphaBlendType blend,
                           EResolution resolution, const Ptr& second, const CRGBColor& secondColor,
                           EAlphaBlendType secondBlend) override;
    void OptimizedFillRoundRect(const Cmn_Rect<int>& rect, int radius, const CRGBColor& color,
                                EAlphaBlendType blend, EResolution resolution, const Ptr& second,
                                const CRGBColor& secondColor, EAlphaBlendType secondBlend) override;
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
    /// Answers with what a canvas that shows everything would have to repaint.
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
    /// Recorded; the image keeps its pixels.
    void SaveIntoImage(ImagePtr image, int variant) override;
    /// Recorded; the image is transparent and of the painter's size, which stands for its canvas in
    /// replays.
    ImagePtr CreateImage(Ptr painter) override;
    bool GetOffscreenBuffer(void** bits, int* width, int* height, int* rowBytes,
                            Cmn_Rect<int>* bounds, void** nativeCanvas,
                            void** nativeContext) override;

  protected:
    bool OffscreenWillBeOverlayed() override;

  private:
    struct Target : Cmn_RefCountObject {
        bool gone = false;
    };

    QLX_PainterRecording(const QLX_PainterRecording& parent, const Cmn_Rect<int>& windowArea,
                         bool withAlpha);
    QLX_PainterRecording(const QLX_PainterRecording& other);

    template <class... Arguments>
    void Record(EPainterCall call, Arguments&&... arguments);
    [[nodiscard]] QLX_RecordedState GetState();
    [[nodiscard]] QLX_RecordedCanvas CanvasOf(const Ptr& painter) const;

    Cmn_RefCountPtr<QLX_Recording> mRecording; // counted
    Cmn_RefCountPtr<Target> mTarget;           // counted, shared by clones
    int mCanvas = 0;
    bool mWithAlpha = false;
};
