// The drawing interface: everything a view draws goes through a QLX_Painter, whatever stands behind
// it (a window, an image, a recording). The waveform, line and image family is built here on the
// primitives, so a painter has to do only those.
#pragma once

#include <string>
#include <vector>

#include "basekit/cmn/cmn_polyvector.h"
#include "basekit/cmn/cmn_refcount.h"
#include "newfilelibs/cmn/cmn_rect.h"
#include "qlx/foundation/qlx_fwd.h"
#include "qlx/imaging/qlx_themecolor.h"
#include "qlx/views/crgbcolor.h"

template <class T>
class Cmn_Polygon;

/// How a source colour meets what is there, for pens, text, images and canvas copies. Colours are 8
/// bits a channel; alpha weighs the result of every mode against what was there, so alpha 0 changes
/// nothing.
enum EPenMode : int {
    kPenMode_Copy = 0, ///< source over destination
    kPenMode_Or,       ///< bitwise, as are the next ones
    kPenMode_Xor,      ///< twice is nothing
    kPenMode_Bic,      ///< destination and not source
    kPenMode_NotCopy,  ///< these four with the source inverted
    kPenMode_NotOr,
    kPenMode_NotXor,
    kPenMode_NotBic,
    kPenMode_Blend,    ///< the mean of both
    kPenMode_Add,      ///< the sum, held at the maximum
    kPenMode_Subtract, ///< destination minus source, held at 0
    kPenMode_Maximum,  ///< the greater of each channel
    kPenMode_Minimum,
    kPenMode_Transparent, ///< as Copy, but source pixels of the background colour are left out
    kPenMode_Count
};

/// What a pen and the fills lay down: a cell of 8 by 8 squares, each a device pixel at scale 1 and
/// a whole number of pixels at other scales, fixed to the window's corner so that neighbouring
/// pieces fit. Set squares take the foreground colour. The others take the background colour in the
/// modes Copy and NotCopy and are left alone in every other mode.
enum EPenPattern : int {
    kPenPattern_Solid = 0,
    kPenPattern_DarkGray,  ///< three of four squares
    kPenPattern_Gray,      ///< every other square
    kPenPattern_LightGray, ///< one of four
    kPenPattern_Empty,     ///< no square
    kPenPattern_HorizontalStripes,
    kPenPattern_VerticalStripes,
    kPenPattern_DiagonalStripes,
    kPenPattern_CrossHatch,
    kPenPattern_Dash, ///< four on, four off along both axes
    kPenPattern_Dots,
    kPenPattern_Count
};

/// The drawing interface. Painters are shared by count and belong to the user-interface thread.
///
/// Coordinates are logical units of the local system, whose origin SetWindowOrigin moves. Where an
/// EResolution says Device, numbers count device pixels from the pixel that local (0, 0) falls on.
/// Logical edges become device edges by QLX_DeviceScale's one rounding, after the origin is taken
/// off.
///
/// Rectangles are half-open; empty and inverted ones draw nothing, and no coordinate is too large.
/// Text is UTF-8; malformed bytes show as U+FFFD. Null images, painters and arrays draw nothing. On
/// a painter whose target is gone (IsValid is false) every call does nothing and queries answer
/// with the state last set.
///
/// Frames are drawn inside their rectangle, pen width thick; lines hang below and to the right of
/// their coordinates by the pen's size.
///
/// A "second" painter, where an operation takes one, receives the same shape in its own colour;
/// null for none. It is how a view and its cached highlight are drawn in one walk.
class QLX_API QLX_Painter : public Cmn_RefCountObject {
  public:
    using Ptr = Cmn_AliasedRefCountPtr<QLX_Painter>;
    using ImagePtr = Cmn_AliasedRefCountPtr<QLX_Image>;
    using PathPtr = Cmn_AliasedRefCountPtr<QLX_Path>;

    enum EResolution : int { kResolution_Logical = 0, kResolution_Device };
    /// What a colour's alpha does in the Optimized family.
    enum EAlphaBlendType : int {
        kAlphaBlend_Ignore = 0, ///< the colour replaces what is there, opaque
        kAlphaBlend_Over,       ///< over what is there by its alpha
        kAlphaBlend_Add         ///< added, weighed by its alpha, held at the maximum
    };
    enum EBlendMode : int {
        kBlend_Normal = 0, ///< over, by the colour's alpha
        kBlend_Multiply,
        kBlend_Screen,
        kBlend_Darken,
        kBlend_Lighten,
        kBlend_Count
    };
    enum EJustification : int {
        kJustify_Left = 0,
        kJustify_Center,
        kJustify_Right,
        kJustify_Full ///< spaces stretched to both edges, except in a paragraph's last line
    };
    enum EVerticalJustification : int { kJustify_Top = 0, kJustify_Middle, kJustify_Bottom };
    enum EWrapKind : int {
        kWrap_None = 0, ///< line ends only
        kWrap_Word,     ///< between words; a word wider than the box is cut
        kWrap_Character ///< anywhere between characters
    };
    enum ELineJoin : int { kLineJoin_Miter = 0, kLineJoin_Round, kLineJoin_Bevel };

    // Slot order is part of the binary interface: append, never move.

    ~QLX_Painter() override;

    /// A new painter on the same target with the same state, which changes on its own from then on.
    virtual Ptr Clone() = 0;
    /// Empty in every painter.
    virtual void WillDraw();
    /// The target's native handle: a window or bitmap handle on Win32, null where there is none.
    virtual void* GetRawNativeDrawingPort() = 0;
    /// A number for the owner's use; 0 at first.
    virtual void SetIdentifier(int identifier) = 0;
    virtual int GetIdentifier() = 0;
    /// Writes what was drawn to a file, in the painter's own form (PNG, or a recording's text). The
    /// base does nothing.
    virtual void SaveToFile(const std::wstring& path);

    virtual void Activate() = 0;
    /// Empty in every painter.
    virtual void DidDraw();
    virtual bool IsActive() = 0;
    /// Completes pending drawing on the target.
    virtual void Flush() = 0;

    // Target, origin, clip

    /// The canvas in local coordinates.
    virtual Cmn_Rect<int> GetBounds() = 0;
    /// What the window system lets through, in local coordinates; the bounds when it does not
    /// restrict.
    virtual QLX_Region GetSystemClipRegion() = 0;
    /// The rectangle's part inside the system clip's bounds.
    virtual Cmn_Rect<int> RestrictToSystemClip(const Cmn_Rect<int>& rect) = 0;
    /// Where the canvas's first pixel lies in the window it was made for: (0, 0), or the area's
    /// corner for an offscreen painter. Logical units; SetWindowOrigin does not move it.
    virtual Cmn_Point<int> GetOrigin() = 0;
    /// Sets the local coordinates of the window's top left corner: local (x, y) appears at (x, y)
    /// minus this. The clip stays where it is in the window.
    virtual void SetWindowOrigin(Cmn_Point<int> origin) = 0;
    virtual Cmn_Point<int> GetWindowOrigin() = 0;
    /// The clip as set, in today's local coordinates; the bounds at first. The system clip is
    /// apart.
    virtual QLX_Region GetClipRegion() = 0;
    virtual void SetClip(const QLX_Region& region) = 0;
    virtual void SetClip(const Cmn_Rect<int>& rect) = 0;

    // Colours

    /// Multiplies every alpha drawn with; held within 0 and 1 (a NaN is 1). 1 at first.
    virtual void SetAlpha(float alpha) = 0;
    /// Opaque black at first.
    virtual const CRGBColor& GetForegroundColor() = 0;
    virtual void SetForegroundColor(const CRGBColor& color) = 0;
    virtual void SetForeground(EThemeColor color) = 0;
    /// Opaque white at first.
    virtual const CRGBColor& GetBackgroundColor() = 0;
    virtual void SetBackgroundColor(const CRGBColor& color) = 0;
    virtual void SetBackground(EThemeColor color) = 0;
    virtual CRGBColor GetThemeColor(EThemeColor color) = 0;
    virtual const CRGBColor& GetHighlightColor() = 0;
    virtual void SetHighlightColor(const CRGBColor& color) = 0;

    // Pen and text state

    /// Horizontal, vertical; (1, 1) at first. Negative sizes count as 0, and a pen of size 0 draws
    /// nothing.
    virtual Cmn_Point<short> GetPenSize() = 0;
    virtual void SetPenSize(short horizontal, short vertical) = 0;
    virtual EPenMode GetPenMode() = 0;
    virtual void SetPenMode(EPenMode mode) = 0;
    virtual EPenPattern GetPenPattern() = 0;
    virtual void SetPenPattern(EPenPattern pattern) = 0;
    /// Size (1, 1), mode Copy, pattern Solid.
    virtual void NormalizePen() = 0;
    virtual const QLX_Font& GetFont() = 0;
    virtual void SetFont(const QLX_Font& font) = 0;
    virtual EPenMode GetTextMode() = 0;
    virtual void SetTextMode(EPenMode mode) = 0;

    // Lines

    /// Moves the pen without drawing.
    virtual void MoveTo(float x, float y, EResolution resolution) = 0;
    /// Draws from the pen's place to (x, y) and leaves the pen there. The end point's own pixel is
    /// drawn when includeEnd is set. A positive thickness, in units of the resolution, stands in
    /// for the pen's.
    virtual void LineTo(float x, float y, bool includeEnd, EResolution resolution,
                        float thickness) = 0;
    /// LineTo the pen's place plus (dx, dy).
    virtual void LineOfLength(int dx, int dy, bool includeEnd, EResolution resolution) = 0;
    /// Whether the target is still there.
    virtual bool IsValid() = 0;

    // The Optimized family: many shapes a call, colours given, state (pen, pattern, mode) not used
    // except clip, origin and alpha. Rows and columns here are one unit of the resolution wide.

    /// A column at x from top up to, not including, bottom.
    virtual void OptimizedVerticalLine(int x, int top, int bottom, const CRGBColor& color,
                                       EResolution resolution);
    virtual void OptimizedHorizontalLine(int left, int right, int y, const CRGBColor& color,
                                         EResolution resolution);
    /// Column i covers x + i * columnWidth and, inclusively, the rows minima[i] + yOffset to
    /// maxima[i] + yOffset, within top (inclusive) and bottom (exclusive). A column whose minimum
    /// is greater than its maximum is left out.
    virtual void OptimizedWaveformFill(int x, int count, const int* minima, const int* maxima,
                                       int yOffset, int top, int bottom, const CRGBColor& color,
                                       const Ptr& second, const CRGBColor& secondColor,
                                       int columnWidth, EResolution resolution);
    /// Line i is at xs[i] from tops[i] to bottoms[i], widths[i] wide (null: 1), in colors[i]; when
    /// there are fewer colours the last one serves the rest.
    virtual void OptimizedVerticalLines(int count, const int* xs, const int* tops,
                                        const int* bottoms, const int* widths,
                                        const Cmn_PolyVector<CRGBColor>& colors,
                                        EAlphaBlendType blend, EResolution resolution);
    /// Lines of one extent at xs[i] + xOffset, width wide. colorIndexes[i] picks from colors; null
    /// indexes: all lines take the first colour.
    virtual void OptimizedIdenticalVerticalLines(int count, const int* xs, const int* colorIndexes,
                                                 const CRGBColor* colors, int top, int bottom,
                                                 int width, EAlphaBlendType blend,
                                                 EResolution resolution, int xOffset);
    virtual void OptimizedHorizontalLines(int count, const int* ys, const int* lefts,
                                          const int* rights, const int* heights,
                                          const Cmn_PolyVector<CRGBColor>& colors,
                                          EAlphaBlendType blend, EResolution resolution);
    virtual void OptimizedIdenticalHorizontalLines(int count, const int* ys,
                                                   const int* colorIndexes, const CRGBColor* colors,
                                                   int left, int right, int height,
                                                   EResolution resolution);
    /// A line through (x + i, ys[i] + yOffset), thickness rows thick, within top and bottom. When
    /// connect is set, neighbouring columns are joined by upright strokes.
    virtual void OptimizedWaveformOutline(int x, int count, const int* ys, int yOffset,
                                          bool connect, int top, int bottom, const CRGBColor& color,
                                          const Ptr& second, const CRGBColor& secondColor,
                                          int thickness, EResolution resolution);
    /// Source rectangles of images are in the image's logical pixels. A clip (null: none) narrows
    /// the painter's for this call.
    virtual void OptimizedDrawImage(const ImagePtr& image, const Cmn_Rect<int>& source,
                                    const Cmn_Rect<int>& destination, const Cmn_Rect<int>* clip,
                                    EResolution resolution);
    /// The whole image at its own size at every (xs[i], y).
    virtual void OptimizedDrawImage(const ImagePtr& image, int count, const int* xs, int y,
                                    const Cmn_Rect<int>* clip, EResolution resolution,
                                    const Ptr* second);
    /// images[imageIndexes[i]] at its own size at (xs[i], ys[i]). Indexes out of range are left
    /// out.
    virtual void OptimizedDrawImages(const Cmn_PolyVector<ImagePtr>& images, int count,
                                     const int* imageIndexes, const int* xs, const int* ys,
                                     EResolution resolution);
    /// Fills (0, 0, width, height) with the image cut into nine parts: corners of border units at
    /// their own size, edges stretched one way, the middle both.
    virtual void OptimizedDrawBackgroundImage(const ImagePtr& image, int width, int height,
                                              int border, EResolution resolution);
    virtual void OptimizedFillRect(const Cmn_Rect<int>& rect, const CRGBColor& color,
                                   EAlphaBlendType blend, EResolution resolution, const Ptr& second,
                                   const CRGBColor& secondColor, EAlphaBlendType secondBlend);
    virtual void OptimizedFillRoundRect(const Cmn_Rect<int>& rect, int radius,
                                        const CRGBColor& color, EAlphaBlendType blend,
                                        EResolution resolution, const Ptr& second,
                                        const CRGBColor& secondColor, EAlphaBlendType secondBlend);
    /// Copies from a buffer of 32-bit pixels (as QLX_Image's) that covers bufferBounds row by row
    /// without gaps: source (in the buffer's coordinates) to destination, stretched when sizes
    /// differ. Opaque copies ignore alpha.
    virtual void OptimizedCopyPixelsFromOffscreen(const Cmn_Rect<int>& bufferBounds, void* pixels,
                                                  const Cmn_Rect<int>& source,
                                                  const Cmn_Rect<int>& destination, bool opaque);

    // Frames and outlines: foreground colour, pen size, mode and pattern

    virtual void DrawRect(const Cmn_Rect<int>& rect) = 0;
    /// Corner radii in logical units, held to half the sides. With topOnly the lower corners are
    /// square.
    virtual void DrawRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY, bool antialias,
                               bool topOnly) = 0;
    virtual void DrawOval(const Cmn_Rect<int>& rect) = 0;
    /// Degrees clockwise from twelve o'clock; a negative sweep goes the other way.
    virtual void DrawArc(const Cmn_Rect<int>& rect, int startDegrees, int sweepDegrees,
                         bool antialias) = 0;
    virtual void DrawPolygon(const Cmn_Polygon<int>& polygon, bool closed, bool antialias) = 0;
    /// The region's pixels that have a pixel outside it within the pen's size.
    virtual void DrawRegion(const QLX_Region& region) = 0;

    // Text: foreground colour, font, text mode

    /// One byte of ASCII at the pen's place, as DrawString.
    virtual void DrawChar(char character) = 0;
    /// On the baseline at the pen's place, which moves to the text's end.
    virtual void DrawString(const std::string& text) = 0;
    /// One line placed within a rectangle, not clipped to it. The rectangle is in the resolution's
    /// units.
    virtual void DrawStringJustified(const Cmn_Rect<int>& rect, const std::string& text,
                                     EJustification justification, EVerticalJustification vertical,
                                     EResolution resolution) = 0;
    /// Text from the rectangle's top: line ends ("\n", "\r\n", "\r") kept, words wrapped when wrap
    /// is set. With ellipsis, lines that do not fit into width or height end in "…". With clip
    /// nothing is drawn outside the rectangle; with erase it is filled with the background colour
    /// first. Returns the height of all lines laid out, in logical units.
    virtual int DrawTextBox(const Cmn_Rect<int>& rect, const std::string& text,
                            EJustification justification, bool wrap, bool ellipsis, bool clip,
                            bool erase) = 0;
    /// One line, left, in the middle of the height, clipped to the rectangle; with ellipsis cut to
    /// its width.
    virtual void DrawSingleLineTextBox(const Cmn_Rect<int>& rect, const std::string& text,
                                       bool ellipsis, const Ptr& second) = 0;
    /// Rounded up to whole logical units.
    virtual int MeasureStringWidth(const std::string& text) = 0;
    /// The height of the text in the current font wrapped to a width, in logical units; 0 for no
    /// text.
    virtual int MeasureStringHeight(int width, const std::string& text, EWrapKind wrap);
    virtual float MeasureStringWidthF(const std::string& text);

    // Images

    /// The whole image stretched to the rectangle.
    virtual void DrawImage(const ImagePtr& image, const Cmn_Rect<int>& rect, EPenMode mode) = 0;
    virtual void DrawImagePortion(const ImagePtr& image, const Cmn_Rect<int>& source,
                                  const Cmn_Rect<int>& destination, EPenMode mode,
                                  EResolution resolution) = 0;
    /// The icon's picture that suits the rectangle, centred, at most its size.
    virtual void DrawIcon(const QLX_Icon& icon, const Cmn_Rect<int>& rect) = 0;
    /// Moves the pixels of a rectangle within it, as far as the clip lets. toRepaint receives what
    /// of it now shows nothing valid, in local coordinates: everything when the distance is no
    /// whole number of pixels.
    virtual void ScrollCanvas(const Cmn_Rect<int>& rect, int dx, int dy, QLX_Region& toRepaint) = 0;

    // Fills: foreground colour, pen mode and pattern; erasing: background colour, Copy, solid

    virtual void FillRect(const Cmn_Rect<int>& rect) = 0;
    virtual void FillRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY, bool antialias,
                               bool topOnly) = 0;
    virtual void FillOval(const Cmn_Rect<int>& rect, bool antialias) = 0;
    /// Even-odd rule.
    virtual void FillPolygon(const Cmn_Polygon<int>& polygon) = 0;
    virtual void FillRegion(const QLX_Region& region) = 0;
    virtual void EraseRect(const Cmn_Rect<int>& rect) = 0;
    virtual void EraseRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY,
                                bool antialias) = 0;
    virtual void EraseRegion(const QLX_Region& region) = 0;

    virtual void BlendRect(const Cmn_Rect<int>& rect, CRGBColor color, EBlendMode mode) = 0;
    virtual void BlendRegion(const QLX_Region& region, CRGBColor color, EBlendMode mode) = 0;
    /// Every colour byte becomes 255 minus itself; twice is nothing.
    virtual void InvertRect(const Cmn_Rect<int>& rect) = 0;
    virtual void InvertRegion(const QLX_Region& region) = 0;
    /// Exchanges the background colour and the highlight colour (null: the painter's) and leaves
    /// every other pixel alone; twice is nothing.
    virtual void HighlightRect(const Cmn_Rect<int>& rect, const CRGBColor* color) = 0;
    virtual void HighlightRegion(const QLX_Region& region, const CRGBColor* color) = 0;

    // Canvases

    /// A painter on a canvas of its own for an area in local coordinates, with this painter's
    /// origin, scale and state and the area as its clip. With alpha the canvas starts transparent;
    /// else opaque, in the background colour. With copyContents it starts with what this canvas
    /// shows there. Null for an empty or absurd area.
    virtual Ptr CreateOffscreenPainter(const Cmn_Rect<int>& area, bool withAlpha,
                                       bool copyContents) = 0;
    virtual bool IsOffscreen() = 0;

    virtual PathPtr CreateNewPath() = 0;
    /// The pen's horizontal size is the line's width.
    virtual void DrawPath(const PathPtr& path, bool antialias, ELineJoin join) = 0;
    /// Nonzero winding rule, antialiased.
    virtual void FillPath(const PathPtr& path) = 0;

    /// Copies from a canvas's rectangle (its local coordinates) to one of this canvas, stretched
    /// when sizes differ. mask, moved by maskOffset and in this painter's coordinates, limits it;
    /// null for none. Copying a canvas onto itself works, overlapping or not.
    virtual void CopyCanvas(Ptr source, const Cmn_Rect<int>& sourceRect,
                            const Cmn_Rect<int>& destinationRect, EPenMode mode,
                            const QLX_Region* mask, Cmn_Point<int> maskOffset) = 0;
    /// Transparent pixels; null for absurd sizes.
    virtual ImagePtr CreateEmptyImage(int width, int height) = 0;
    /// Copies the canvas's top left part into an image. Variant 1 fills its pixels at scale 1,
    /// variant 2 its double-resolution ones, which are made when missing.
    virtual void SaveIntoImage(ImagePtr image, int variant) = 0;
    /// A new image with what a painter's canvas shows (null: this one's): at logical size, with
    /// double-resolution pixels when that painter's scale is above 1.
    virtual ImagePtr CreateImage(Ptr painter) = 0;
    /// The offscreen canvas's memory: first pixel, width and height in pixels, bytes a row, bounds
    /// in local coordinates and two native handles (canvas and context, null where there are none).
    /// Null arguments are skipped. False, outputs untouched, when the canvas is not in memory.
    /// Drawing may change the pixels until the painter is gone.
    virtual bool GetOffscreenBuffer(void** bits, int* width, int* height, int* rowBytes,
                                    Cmn_Rect<int>* bounds, void** nativeCanvas,
                                    void** nativeContext) = 0;

  protected:
    /// Asked before an offscreen canvas is copied onto another: whether it needs its alpha kept.
    virtual bool OffscreenWillBeOverlayed() = 0;

    // Not virtual: helpers of the shared family

    /// One filled rectangle in given colour and blend; what the family is built on.
    void FillPlainRect(const Cmn_Rect<int>& rect, const CRGBColor& color, EAlphaBlendType blend,
                       EResolution resolution);
};
