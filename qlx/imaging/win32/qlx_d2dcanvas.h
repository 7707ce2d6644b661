// The canvas that Direct2D draws on: a window or a bitmap.
#pragma once

#include <list>

#include "qlx/imaging/win32/qlx_d2dshapes.h"
#include "qlx/imaging/win32/qlx_wincanvas.h"

/// A Direct2D render target. Drawing collects until Flush, or until somebody needs the pixels. When
/// the device goes away its pixels are lost: the target is made anew with its next use, and
/// TakeLoss tells whoever draws to draw everything again.
class QLX_API QLX_D2DCanvas final : public QLX_WinCanvas {
  public:
    /// Null, with a line of the trace, when Direct2D refuses or the window has no size.
    [[nodiscard]] static Cmn_RefCountPtr<QLX_D2DCanvas> NewForWindow(HWND window);
    [[nodiscard]] static Cmn_RefCountPtr<QLX_D2DCanvas> NewBitmap(int width, int height,
                                                                  bool hasAlpha);
    ~QLX_D2DCanvas() override;

    void Detach() noexcept override;
    bool BeginEdit(const Cmn_Rect<int>& area, QLX_Surface& surface,
                   Cmn_Point<int>& corner) override;
    void EndEdit(bool changed) override;
    Cmn_RefCountPtr<QLX_HDCWrap> GetHDC(const QLX_WinClip* clip, bool contents) override;
    HWND GetWindow() const noexcept override { return mWindow; }
    void Flush(const std::vector<Cmn_Rect<int>>& dirty) override;
    bool Resize(int width, int height) override;
    bool TakeLoss() override;
    bool Restore() override;

    bool FillRects(const QLX_WinClip& clip, const Cmn_Rect<int>* rects, std::size_t count,
                   const QLX_SpanPaint& paint) override;
    bool FillShape(const QLX_WinClip& clip, const QLX_WinShape& shape,
                   const QLX_SpanPaint& paint) override;
    bool DrawTextLine(const QLX_WinClip& clip, const QLX_WinText& text,
                      const QLX_SpanPaint& paint) override;
    bool DrawPicture(const QLX_WinClip& clip, const QLX_CanvasPicture& picture,
                     const Cmn_Rect<int>& part, const Cmn_Rect<int>& destination,
                     const Cmn_Rect<int>& limit, EPenMode mode, unsigned alpha) override;

    /// How often the target was made, for tests.
    [[nodiscard]] unsigned GetTargetCount() const noexcept { return mTargetCount; }

  private:
    friend class QLX_D2DBorrowedDC;
    struct KeptPicture { // an image's pixels at the size they were drawn
        QLX_Image::Ptr image;
        std::uint32_t generation;
        Cmn_Rect<int> part;
        Cmn_Point<int> size;
        QLX_ComPtr<ID2D1Bitmap> bitmap;
    };

    QLX_D2DCanvas(int width, int height, bool hasAlpha) noexcept;
    [[nodiscard]] bool MakeTarget();
    [[nodiscard]] HRESULT MakeWindowTarget();
    [[nodiscard]] HRESULT MakeBitmapTarget();
    void DropTarget() noexcept;
    /// Makes the target if there is none and begins a frame if none is begun.
    [[nodiscard]] bool Begin();
    void End();
    [[nodiscard]] ID2D1SolidColorBrush* SolidBrush(std::uint32_t color, unsigned alpha);
    [[nodiscard]] QLX_ComPtr<ID2D1BitmapBrush> PatternBrush(const QLX_SpanPaint& paint);
    [[nodiscard]] ID2D1Bitmap* PictureFor(const QLX_CanvasPicture& picture,
                                          const Cmn_Rect<int>& part,
                                          const Cmn_Rect<int>& destination);
    [[nodiscard]] bool FillAsPicture(const QLX_SpanPaint& paint);
    [[nodiscard]] bool FillShapeAsPicture(const QLX_WinClip& clip, const QLX_WinShape& shape,
                                          const QLX_SpanPaint& paint);
    /// Calls draw under every rectangle of the clip that meets bounds; drawn, when known, is where
    /// it draws.
    template <class Draw>
    void ForClips(const QLX_WinClip& clip, const Cmn_Rect<int>& bounds, const Cmn_Rect<int>* drawn,
                  Draw draw);

    HWND mWindow = nullptr; // not owned
    QLX_ComPtr<ID2D1RenderTarget> mTarget;
    QLX_ComPtr<ID2D1HwndRenderTarget> mWindowTarget; // the same, for a window
    QLX_ComPtr<IWICBitmap> mPixels;                  // behind the target, for a bitmap
    QLX_ComPtr<ID2D1SolidColorBrush> mBrush;
    std::list<KeptPicture> mPictures; // the last used first
    QLX_D2DShapePictures mShapes;
    QLX_ComPtr<ID2D1Bitmap> mPassing;  // of pixels that are no image's
    std::vector<Cmn_Rect<int>> mRects; // scratch
    std::vector<std::uint32_t> mScratch;
    bool mDrawing = false;
    bool mLost = false;
    bool mRefused = false;
    unsigned mTargetCount = 0;
    Cmn_Rect<int> mEditArea;
    Cmn_RefCountPtr<QLX_HDCWrap> mEditContext;  // between BeginEdit and EndEdit
    Cmn_RefCountPtr<QLX_WinCanvas> mEditBuffer; // a GDI bitmap
};
