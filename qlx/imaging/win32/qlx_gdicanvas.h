// The canvas that GDI draws on: a bitmap of its own, with or without a window that it is shown in,
// or a device context that somebody else has opened.
#pragma once

#include "qlx/imaging/win32/qlx_nativehandles.h"
#include "qlx/imaging/win32/qlx_wincanvas.h"

/// A GDI canvas. A window's canvas is a bitmap that Flush copies to the window, so that nothing
/// flickers and the pixels are there when the window is uncovered. A canvas with alpha is drawn by
/// its pixels only, since GDI knows no alpha.
class QLX_API QLX_GDICanvas final : public QLX_WinCanvas {
  public:
    /// A bitmap, transparent or of undefined colour. Null, with a line of the trace, without memory
    /// or handles.
    [[nodiscard]] static Cmn_RefCountPtr<QLX_GDICanvas> NewBitmap(int width, int height,
                                                                  bool hasAlpha);
    /// For a window (not owned), as large as its contents. Null as above, or for a window without
    /// size.
    [[nodiscard]] static Cmn_RefCountPtr<QLX_GDICanvas> NewForWindow(HWND window);
    /// Straight onto a context that stays the caller's, as BeginPaint's; nothing is buffered.
    [[nodiscard]] static Cmn_RefCountPtr<QLX_GDICanvas> NewForContext(HDC context, int width,
                                                                      int height);
    ~QLX_GDICanvas() override;

    void Detach() noexcept override;
    bool BeginEdit(const Cmn_Rect<int>& area, QLX_Surface& surface,
                   Cmn_Point<int>& corner) override;
    void EndEdit(bool changed) override;
    Cmn_RefCountPtr<QLX_HDCWrap> GetHDC(const QLX_WinClip* clip, bool contents) override;
    HWND GetWindow() const noexcept override { return mWindow; }
    void Flush(const std::vector<Cmn_Rect<int>>& dirty) override;
    bool Resize(int width, int height) override;
    const QLX_Surface* GetMemory() override;
    HBITMAP GetBitmap() const noexcept override { return mBitmap.Get(); }

    bool FillRects(const QLX_WinClip& clip, const Cmn_Rect<int>* rects, std::size_t count,
                   const QLX_SpanPaint& paint) override;
    bool FillShape(const QLX_WinClip& clip, const QLX_WinShape& shape,
                   const QLX_SpanPaint& paint) override;
    bool DrawTextLine(const QLX_WinClip& clip, const QLX_WinText& text,
                      const QLX_SpanPaint& paint) override;
    bool DrawPicture(const QLX_WinClip& clip, const QLX_CanvasPicture& picture,
                     const Cmn_Rect<int>& part, const Cmn_Rect<int>& destination,
                     const Cmn_Rect<int>& limit, EPenMode mode, unsigned alpha) override;
    bool Invert(const QLX_WinClip& clip, const Cmn_Rect<int>& rect) override;

  private:
    QLX_GDICanvas(int width, int height, bool hasAlpha) noexcept;
    [[nodiscard]] bool MakeBitmap(int width, int height);
    void FreeBitmap() noexcept;
    /// The context with a clip selected; made once for every other clip.
    [[nodiscard]] HDC UseClip(const QLX_WinClip& clip);
    [[nodiscard]] bool FillTranslucent(HDC context, const QLX_WinClip& clip,
                                       const Cmn_Rect<int>* rects, std::size_t count,
                                       const QLX_SpanPaint& paint);

    HWND mWindow = nullptr;    // not owned
    HDC mContext = nullptr;    // the memory context's, or somebody's
    QLX_MemoryDC mMemory;      // empty for somebody's context
    QLX_BitmapHandle mBitmap;  // selected into it
    HGDIOBJ mBefore = nullptr; // what was selected there at first
    QLX_Surface mSurface;      // the bitmap's pixels
    unsigned mSelectedClip = 0;
    unsigned mRefusedClip = 0; // whose native region could not be made
    Cmn_Rect<int> mEditArea;   // of somebody's context, while it is edited
    Cmn_RefCountPtr<QLX_GDICanvas> mEditBuffer;
};
