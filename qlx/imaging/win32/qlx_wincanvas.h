// What a Windows painter draws on: pixels of a bitmap, a window or a borrowed device context. A
// canvas need do nothing but hand out its pixels; whatever it can do better by the system's own
// means it takes over, primitive by primitive.
#pragma once

#include <string_view>
#include <vector>

#include "qlx/imaging/qlx_canvaspainter.h"
#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_path.h"
#include "qlx/imaging/win32/qlx_hdcwrap.h"

/// A clip with what tells it from others.
struct QLX_WinClip : QLX_CanvasClip {
    /// Another number for every other clip of the process, so that a canvas sees at a glance
    /// whether the one it has selected is still right.
    unsigned stamp = 0;
    /// The regions themselves, when a logical unit is a pixel: the clip is all of them together,
    /// moved back by corner. Not owned, null for none.
    const QLX_Region* regions[2] = {nullptr, nullptr};
    Cmn_Point<int> corner;
};

/// An outline in canvas pixels.
struct QLX_WinShape {
    QLX_Path path;
    Cmn_Rect<int> bounds; ///< around every pixel that it may cover
    bool stroke = false;
    bool evenOdd = false;
    bool antialias = true;
    bool squareCap = false; ///< strokes reach half their width beyond their ends
    double width = 1;       ///< of strokes
    QLX_Painter::ELineJoin join = QLX_Painter::kLineJoin_Miter;
};

/// One line of text.
struct QLX_WinText {
    std::string_view text; ///< UTF-8
    QLX_Font font;
    double pixels = 12; ///< the em
    double x = 0;       ///< canvas pixels
    int baseline = 0;
    Cmn_Rect<int> limit; ///< nothing is drawn outside
};

/// Pixels shared by a painter and its clones. User-interface thread.
///
/// The primitives with an answer say whether they did it; after a false nothing has changed and the
/// painter does it through BeginEdit.
class QLX_API QLX_WinCanvas : public Cmn_RefCountObject {
  public:
    ~QLX_WinCanvas() override;

    [[nodiscard]] int GetWidth() const noexcept { return mWidth; }
    [[nodiscard]] int GetHeight() const noexcept { return mHeight; }
    [[nodiscard]] Cmn_Rect<int> GetBounds() const noexcept { return {0, 0, mWidth, mHeight}; }
    [[nodiscard]] bool HasAlpha() const noexcept { return mHasAlpha; }
    [[nodiscard]] bool IsGone() const noexcept { return mGone; }
    /// Gives everything native back: every painter on the canvas is invalid from now on.
    virtual void Detach() noexcept;

    /// Access to the pixels of an area within the canvas: surface's first pixel is the canvas's at
    /// corner. False when they cannot be had. Every true is followed by an EndEdit, with nothing
    /// drawn in between.
    [[nodiscard]] virtual bool BeginEdit(const Cmn_Rect<int>& area, QLX_Surface& surface,
                                         Cmn_Point<int>& corner) = 0;
    virtual void EndEdit(bool changed) = 0;

    /// A device context on the canvas; null when there is none.
    [[nodiscard]] virtual Cmn_RefCountPtr<QLX_HDCWrap> GetHDC(const QLX_WinClip* clip,
                                                              bool contents);
    [[nodiscard]] virtual HWND GetWindow() const noexcept { return nullptr; }
    /// Shows canvas pixels in the window, if there is one, and completes pending drawing.
    virtual void Flush(const std::vector<Cmn_Rect<int>>& dirty);
    /// Follows the window's new size; the pixels are then undefined. False when it cannot.
    [[nodiscard]] virtual bool Resize(int width, int height);
    /// Whether the pixels were lost since the last call (the device went away): all of it is to be
    /// drawn again.
    [[nodiscard]] virtual bool TakeLoss();
    /// Whether there is something to draw on; a lost device is asked for again. False means that
    /// another kind of canvas is needed.
    [[nodiscard]] virtual bool Restore();
    /// The memory, where the canvas is memory.
    [[nodiscard]] virtual const QLX_Surface* GetMemory();
    [[nodiscard]] virtual HBITMAP GetBitmap() const noexcept { return nullptr; }

    [[nodiscard]] virtual bool FillRects(const QLX_WinClip& clip, const Cmn_Rect<int>* rects,
                                         std::size_t count, const QLX_SpanPaint& paint);
    [[nodiscard]] virtual bool FillShape(const QLX_WinClip& clip, const QLX_WinShape& shape,
                                         const QLX_SpanPaint& paint);
    [[nodiscard]] virtual bool DrawTextLine(const QLX_WinClip& clip, const QLX_WinText& text,
                                            const QLX_SpanPaint& paint);
    /// part lies within the picture; limit, within the clip's bounds, narrows it further.
    [[nodiscard]] virtual bool
    DrawPicture(const QLX_WinClip& clip, const QLX_CanvasPicture& picture,
                const Cmn_Rect<int>& part, const Cmn_Rect<int>& destination,
                const Cmn_Rect<int>& limit, EPenMode mode, unsigned alpha);
    [[nodiscard]] virtual bool Invert(const QLX_WinClip& clip, const Cmn_Rect<int>& rect);

  protected:
    QLX_WinCanvas(int width, int height, bool hasAlpha) noexcept
        : mWidth(width), mHeight(height), mHasAlpha(hasAlpha) {}

    int mWidth;
    int mHeight;
    bool mHasAlpha;
    bool mGone = false;
};

/// Somebody's pixels in memory.
class QLX_API QLX_MemoryCanvas : public QLX_WinCanvas {
  public:
    explicit QLX_MemoryCanvas(const QLX_Surface& surface) noexcept;
    ~QLX_MemoryCanvas() override;
    void Detach() noexcept override;
    bool BeginEdit(const Cmn_Rect<int>& area, QLX_Surface& surface,
                   Cmn_Point<int>& corner) override;
    void EndEdit(bool changed) override;
    const QLX_Surface* GetMemory() override;

  private:
    QLX_Surface mSurface;
};

// Coverage: what shapes and texts become where the system cannot draw them as asked. Bytes of an
// area of the canvas, from its top left corner; valid until the next call of either.

struct QLX_WinMask {
    const std::uint8_t* bytes = nullptr; ///< null when it could not be made
    int row = 0;
};
/// The area to render of a shape. Cutting a shape changes how its edges are rounded, by a little,
/// so it is rendered whole wherever that is affordable: a picture drawn in pieces is then the same
/// as in one go.
[[nodiscard]] Cmn_Rect<int> QLX_RenderedArea(const Cmn_Rect<int>& shape,
                                             const Cmn_Rect<int>& clip) noexcept;
[[nodiscard]] QLX_WinMask QLX_RenderShape(const QLX_WinShape& shape, const Cmn_Rect<int>& area);
[[nodiscard]] QLX_WinMask QLX_RenderText(const QLX_WinText& text, const Cmn_Rect<int>& area);
/// Hands the masks' memory and contexts back.
QLX_API void QLX_FreeMasks();

/// Adds a shape's outline to a device context's path, every coordinate times a whole factor, from
/// corner.
void QLX_AddGDIPath(HDC context, const QLX_WinShape& shape, Cmn_Point<int> corner, int factor);
/// A pen that strokes as the shape says, times a factor.
[[nodiscard]] HPEN QLX_MakeGDIPen(const QLX_WinShape& shape, int factor, COLORREF color);
