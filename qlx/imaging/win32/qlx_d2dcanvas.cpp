#include "qlx/imaging/win32/qlx_d2dcanvas.h"

#include <algorithm>
#include <cmath>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/imaging/win32/qlx_d2dtext.h"
#include "qlx/imaging/win32/qlx_gdicanvas.h"

namespace {

// Images kept as device bitmaps a canvas.
constexpr std::size_t kMostPictures = 64;

[[nodiscard]] D2D1_RECT_F RectOf(const Cmn_Rect<int>& r) noexcept {
    return {float(r.left), float(r.top), float(r.right), float(r.bottom)};
}

[[nodiscard]] D2D1_COLOR_F ColorOf(std::uint32_t color, unsigned alpha) noexcept {
    return {float(color >> 16 & 255) / 255, float(color >> 8 & 255) / 255, float(color & 255) / 255,
            float(alpha) / 255};
}

[[nodiscard]] D2D1_RENDER_TARGET_PROPERTIES TargetProperties(D2D1_ALPHA_MODE alpha) noexcept {
    return {D2D1_RENDER_TARGET_TYPE_DEFAULT,         {DXGI_FORMAT_B8G8R8A8_UNORM, alpha}, 96, 96,
            D2D1_RENDER_TARGET_USAGE_GDI_COMPATIBLE, D2D1_FEATURE_LEVEL_DEFAULT};
}

void Report(const char* what, HRESULT result) {
    Cmn_TraceWrite("%s (0x%08lX)", what, static_cast<unsigned long>(result));
}

} // namespace

// A device context on the target, open until its wrap goes.
class QLX_D2DBorrowedDC final : public QLX_HDCWrap {
  public:
    [[nodiscard]] static Cmn_RefCountPtr<QLX_HDCWrap> New(QLX_D2DCanvas& canvas, bool contents) {
        if (!canvas.Begin())
            return nullptr;
        const auto interop = canvas.mTarget.As<ID2D1GdiInteropRenderTarget>();
        HDC context = nullptr;
        if (!interop ||
            FAILED(interop->GetDC(contents ? D2D1_DC_INITIALIZE_MODE_COPY
                                           : D2D1_DC_INITIALIZE_MODE_CLEAR,
                                  &context)) ||
            !context)
            return nullptr;
        return Cmn_RefCountPtr<QLX_HDCWrap>(new QLX_D2DBorrowedDC(canvas, interop, context));
    }
    ~QLX_D2DBorrowedDC() override {
        SelectClipRgn(Get(), nullptr);
        mInterop->ReleaseDC(nullptr);
    }

  private:
    QLX_D2DBorrowedDC(QLX_D2DCanvas& canvas, const QLX_ComPtr<ID2D1GdiInteropRenderTarget>& interop,
                      HDC context)
        : QLX_HDCWrap(context), mCanvas(&canvas), mInterop(interop) {}
    Cmn_RefCountPtr<QLX_D2DCanvas> mCanvas;
    QLX_ComPtr<ID2D1GdiInteropRenderTarget> mInterop;
};

QLX_D2DCanvas::QLX_D2DCanvas(int width, int height, bool hasAlpha) noexcept
    : QLX_WinCanvas(width, height, hasAlpha) {}

QLX_D2DCanvas::~QLX_D2DCanvas() { Detach(); }

Cmn_RefCountPtr<QLX_D2DCanvas> QLX_D2DCanvas::NewForWindow(HWND window) {
    RECT client{};
    if (!QLX_D2DManager::InitD2D() || !GetClientRect(window, &client) || client.right < 1 ||
        client.bottom < 1)
        return nullptr;
    Cmn_RefCountPtr<QLX_D2DCanvas> canvas(
        new QLX_D2DCanvas(client.right, client.bottom, /*hasAlpha*/ false));
    canvas->mWindow = window;
    return canvas->MakeTarget() ? canvas : nullptr;
}

Cmn_RefCountPtr<QLX_D2DCanvas> QLX_D2DCanvas::NewBitmap(int width, int height, bool hasAlpha) {
    if (width < 1 || height < 1 || width > QLX_Image::kMaximumSide ||
        height > QLX_Image::kMaximumSide || !QLX_D2DManager::InitD2D())
        return nullptr;
    Cmn_RefCountPtr<QLX_D2DCanvas> canvas(new QLX_D2DCanvas(width, height, hasAlpha));
    return canvas->MakeTarget() ? canvas : nullptr;
}

// The target

HRESULT QLX_D2DCanvas::MakeWindowTarget() {
    const D2D1_RENDER_TARGET_PROPERTIES properties = TargetProperties(D2D1_ALPHA_MODE_IGNORE);
    // What was drawn stays for the next frame, which draws only what has changed.
    const D2D1_HWND_RENDER_TARGET_PROPERTIES window{
        mWindow,
        {UINT32(mWidth), UINT32(mHeight)},
        D2D1_PRESENT_OPTIONS(D2D1_PRESENT_OPTIONS_RETAIN_CONTENTS |
                             D2D1_PRESENT_OPTIONS_IMMEDIATELY)};
    ID2D1HwndRenderTarget* made = nullptr;
    const HRESULT result =
        QLX_D2DManager::GetFactory()->CreateHwndRenderTarget(&properties, &window, &made);
    if (FAILED(result))
        return result;
    mWindowTarget.Adopt(made);
    mTarget = mWindowTarget.As<ID2D1RenderTarget>();
    return S_OK;
}

HRESULT QLX_D2DCanvas::MakeBitmapTarget() {
    IWICBitmap* pixels = nullptr;
    HRESULT result = QLX_D2DManager::GetImagingFactory()->CreateBitmap(
        UINT(mWidth), UINT(mHeight), GUID_WICPixelFormat32bppPBGRA, WICBitmapCacheOnLoad, &pixels);
    if (FAILED(result))
        return result;
    mPixels.Adopt(pixels);
    const D2D1_RENDER_TARGET_PROPERTIES properties =
        TargetProperties(D2D1_ALPHA_MODE_PREMULTIPLIED);
    ID2D1RenderTarget* made = nullptr;
    result = QLX_D2DManager::GetFactory()->CreateWicBitmapRenderTarget(pixels, &properties, &made);
    if (SUCCEEDED(result))
        mTarget.Adopt(made);
    return result;
}

bool QLX_D2DCanvas::MakeTarget() {
    if (mTarget)
        return true;
    if (mGone || !QLX_D2DManager::InitD2D())
        return false;
    const HRESULT result = QLX_D2DManager::RefusesTargets() ? D2DERR_NO_HARDWARE_DEVICE
                           : mWindow                        ? MakeWindowTarget()
                                                            : MakeBitmapTarget();
    if (FAILED(result)) {
        if (!std::exchange(mRefused, true)) // once, not with every operation that asks
            Report(mWindow ? "ID2D1Factory::CreateHwndRenderTarget"
                           : "ID2D1Factory::CreateWicBitmapRenderTarget",
                   result);
        DropTarget();
        return false;
    }
    mRefused = false;
    ++mTargetCount;
    mTarget->SetTextAntialiasMode(D2D1_TEXT_ANTIALIAS_MODE_GRAYSCALE);
    if (Begin()) {
        const D2D1_COLOR_F nothing{0, 0, 0, mHasAlpha ? 0.0F : 1.0F};
        mTarget->Clear(&nothing);
    }
    return true;
}

void QLX_D2DCanvas::DropTarget() noexcept {
    mBrush.Reset();
    mPictures.clear();
    mShapes.Clear();
    mPassing.Reset();
    mWindowTarget.Reset();
    mTarget.Reset();
    mPixels.Reset();
    mDrawing = false;
}

void QLX_D2DCanvas::Detach() noexcept {
    mEditContext.Reset();
    if (mDrawing && mTarget)
        (void)mTarget->EndDraw(nullptr, nullptr);
    DropTarget();
    mEditBuffer.Reset();
    mWindow = nullptr;
    QLX_WinCanvas::Detach();
}

bool QLX_D2DCanvas::Begin() {
    if (mDrawing)
        return true;
    if (!mTarget && !MakeTarget())
        return false;
    if (!mDrawing) { // making a target begins a frame
        mTarget->BeginDraw();
        mDrawing = true;
    }
    return true;
}

// A lost device, or any other failure of a frame, ends the target: the next use makes another one,
// and whoever draws is told to draw everything.
void QLX_D2DCanvas::End() {
    if (!mDrawing)
        return;
    mDrawing = false;
    HRESULT result = mTarget->EndDraw(nullptr, nullptr);
    if (QLX_D2DManager::TakeSimulatedLoss())
        result = D2DERR_RECREATE_TARGET;
    if (SUCCEEDED(result))
        return;
    Report("ID2D1RenderTarget::EndDraw", result);
    DropTarget();
    mLost = true;
}

bool QLX_D2DCanvas::TakeLoss() { return std::exchange(mLost, false); }

bool QLX_D2DCanvas::Restore() { return mTarget || MakeTarget(); }

void QLX_D2DCanvas::Flush(const std::vector<Cmn_Rect<int>>& dirty) {
    if (!dirty.empty() && mWindow)
        (void)Begin(); // a window that was uncovered is shown again
    End();
}

bool QLX_D2DCanvas::Resize(int width, int height) {
    if (width == mWidth && height == mHeight)
        return true;
    if (!mWindow || width < 1 || height < 1)
        return false;
    End();
    mWidth = width;
    mHeight = height;
    const D2D1_SIZE_U size{UINT32(width), UINT32(height)};
    if (mWindowTarget && FAILED(mWindowTarget->Resize(&size)))
        DropTarget();
    return MakeTarget();
}

// Pixels, through a device context on the target: the only way that every kind of target offers.

bool QLX_D2DCanvas::BeginEdit(const Cmn_Rect<int>& area, QLX_Surface& surface,
                              Cmn_Point<int>& corner) {
    const int width = area.GetWidth(), height = area.GetHeight();
    if (!mEditBuffer || mEditBuffer->GetWidth() < width || mEditBuffer->GetHeight() < height)
        mEditBuffer = Cmn_RefCountPtr<QLX_WinCanvas>(QLX_GDICanvas::NewBitmap(
            std::max(width, mEditBuffer ? mEditBuffer->GetWidth() : 0),
            std::max(height, mEditBuffer ? mEditBuffer->GetHeight() : 0), mHasAlpha));
    if (!mEditBuffer)
        return false;
    // One context for reading and writing: opening one fetches the whole target.
    mEditContext = QLX_D2DBorrowedDC::New(*this, /*contents*/ true);
    const Cmn_RefCountPtr<QLX_HDCWrap> buffer = mEditBuffer->GetHDC(nullptr, true);
    if (!mEditContext || !buffer ||
        !BitBlt(buffer->Get(), 0, 0, width, height, mEditContext->Get(), area.left, area.top,
                SRCCOPY)) {
        mEditContext.Reset();
        return false;
    }
    surface = *mEditBuffer->GetMemory();
    corner = area.GetTopLeft();
    mEditArea = area;
    return true;
}

void QLX_D2DCanvas::EndEdit(bool changed) {
    const Cmn_RefCountPtr<QLX_HDCWrap> buffer =
        changed ? mEditBuffer->GetHDC(nullptr, true) : nullptr;
    if (mEditContext && buffer)
        BitBlt(mEditContext->Get(), mEditArea.left, mEditArea.top, mEditArea.GetWidth(),
               mEditArea.GetHeight(), buffer->Get(), 0, 0, SRCCOPY);
    mEditContext.Reset();
}

Cmn_RefCountPtr<QLX_HDCWrap> QLX_D2DCanvas::GetHDC(const QLX_WinClip* clip, bool contents) {
    const Cmn_RefCountPtr<QLX_HDCWrap> wrap = QLX_D2DBorrowedDC::New(*this, contents);
    if (wrap && clip) {
        const QLX_RegionHandle region =
            QLX_RegionHandle::New("CreateRectRgn", [] { return CreateRectRgn(0, 0, 0, 0); });
        for (const Cmn_Rect<int>& rect : clip->rects) {
            const QLX_RegionHandle piece = QLX_RegionHandle::New("CreateRectRgn", [&] {
                return CreateRectRgn(rect.left, rect.top, rect.right, rect.bottom);
            });
            if (!region || !piece)
                return nullptr;
            CombineRgn(region.Get(), region.Get(), piece.Get(), RGN_OR);
        }
        SelectClipRgn(wrap->Get(), region.Get());
    }
    return wrap;
}

// Brushes

ID2D1SolidColorBrush* QLX_D2DCanvas::SolidBrush(std::uint32_t color, unsigned alpha) {
    const D2D1_COLOR_F wanted = ColorOf(color, alpha);
    if (mBrush) {
        mBrush->SetColor(&wanted);
        return mBrush.Get();
    }
    ID2D1SolidColorBrush* made = nullptr;
    if (SUCCEEDED(mTarget->CreateSolidColorBrush(&wanted, nullptr, &made)))
        mBrush.Adopt(made);
    return mBrush.Get();
}

QLX_ComPtr<ID2D1BitmapBrush> QLX_D2DCanvas::PatternBrush(const QLX_SpanPaint& paint) {
    const int side = 8 * paint.cell;
    std::vector<std::uint32_t> pixels(std::size_t(side) * std::size_t(side));
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            pixels[std::size_t(y) * std::size_t(side) + std::size_t(x)] =
                (paint.pattern->rows[y / paint.cell] >> (7 - x / paint.cell) & 1) != 0
                    ? paint.color
                    : paint.background;
    QLX_ComPtr<ID2D1BitmapBrush> brush;
    const QLX_ComPtr<ID2D1Bitmap> bitmap =
        QLX_MakeD2DBitmap(*mTarget.Get(), pixels.data(), side, side, side, true);
    const D2D1_BITMAP_BRUSH_PROPERTIES tiled{D2D1_EXTEND_MODE_WRAP, D2D1_EXTEND_MODE_WRAP,
                                             D2D1_BITMAP_INTERPOLATION_MODE_NEAREST_NEIGHBOR};
    const D2D1_BRUSH_PROPERTIES placed{
        1, {1, 0, 0, 1, float((-paint.phaseX) % side), float((-paint.phaseY) % side)}};
    ID2D1BitmapBrush* made = nullptr;
    if (bitmap && SUCCEEDED(mTarget->CreateBitmapBrush(bitmap.Get(), &tiled, &placed, &made)))
        brush.Adopt(made);
    return brush;
}

// Clips are axis-aligned rectangles; a shape under several is drawn once for each.
template <class Draw>
void QLX_D2DCanvas::ForClips(const QLX_WinClip& clip, const Cmn_Rect<int>& bounds,
                             const Cmn_Rect<int>* drawn, Draw draw) {
    for (const Cmn_Rect<int>& rect : clip.rects) {
        const Cmn_Rect<int> shown = rect & bounds;
        if (shown.Empty())
            continue;
        if (drawn && shown.Contains(*drawn)) { // nothing to cut
            draw();
            return;
        }
        const D2D1_RECT_F window = RectOf(shown);
        mTarget->PushAxisAlignedClip(&window, D2D1_ANTIALIAS_MODE_ALIASED);
        draw();
        mTarget->PopAxisAlignedClip();
    }
}

// Primitives

bool QLX_D2DCanvas::FillRects(const QLX_WinClip& clip, const Cmn_Rect<int>* rects,
                              std::size_t count, const QLX_SpanPaint& paint) {
    const bool whole = paint.alpha == 255 && paint.backgroundAlpha == 255;
    if (paint.mode != kPenMode_Copy || (paint.pattern && !whole) || !Begin())
        return false;
    QLX_ComPtr<ID2D1BitmapBrush> pattern;
    ID2D1Brush* brush = nullptr;
    if (paint.pattern) {
        pattern = PatternBrush(paint);
        brush = pattern.Get();
    } else {
        brush = SolidBrush(paint.color, paint.alpha);
    }
    if (!brush)
        return false;
    mRects.clear();
    for (std::size_t i = 0; i < count; ++i)
        if (rects[i].Overlaps(clip.bounds))
            for (const Cmn_Rect<int>& window : clip.rects)
                if (rects[i].Overlaps(window))
                    mRects.push_back(rects[i] & window);
    if (!paint.pattern && FillAsPicture(paint))
        return true;
    mTarget->SetAntialiasMode(D2D1_ANTIALIAS_MODE_ALIASED);
    for (const Cmn_Rect<int>& shown : mRects) {
        const D2D1_RECT_F rect = RectOf(shown);
        mTarget->FillRectangle(&rect, brush);
    }
    return true;
}

// Every rectangle is a draw of its own for the device. A waveform's hundreds of columns are cheaper
// as one bitmap, as long as they lie close together.
bool QLX_D2DCanvas::FillAsPicture(const QLX_SpanPaint& paint) {
    constexpr std::size_t kFewRects = 8;
    constexpr std::int64_t kPixelsForARect = 2048, kMostPixels = 1 << 22;
    if (mRects.size() < kFewRects)
        return false;
    Cmn_Rect<int> area = mRects.front();
    for (const Cmn_Rect<int>& rect : mRects)
        area = area | rect;
    const int width = area.GetWidth(), height = area.GetHeight();
    const std::int64_t pixels = std::int64_t{width} * height;
    if (pixels > kMostPixels || pixels > kPixelsForARect * std::int64_t(mRects.size()))
        return false;
    mScratch.assign(std::size_t(pixels), 0);
    const QLX_Surface surface{mScratch.data(), width, height, width, /*hasAlpha*/ true};
    for (const Cmn_Rect<int>& rect : mRects)
        QLX_FillSpans(surface,
                      {rect.left - area.left, rect.top - area.top, rect.right - area.left,
                       rect.bottom - area.top},
                      paint);
    mPassing = QLX_MakeD2DBitmap(*mTarget.Get(), mScratch.data(), width, width, height, false);
    if (!mPassing)
        return false;
    const D2D1_RECT_F to = RectOf(area);
    mTarget->DrawBitmap(mPassing.Get(), &to, 1, D2D1_BITMAP_INTERPOLATION_MODE_NEAREST_NEIGHBOR,
                        nullptr);
    return true;
}

bool QLX_D2DCanvas::FillShape(const QLX_WinClip& clip, const QLX_WinShape& shape,
                              const QLX_SpanPaint& paint) {
    if (paint.mode != kPenMode_Copy || paint.pattern || !Begin())
        return false;
    if (shape.antialias && !QLX_D2DManager::SmoothsShapes())
        return FillShapeAsPicture(clip, shape, paint);
    ID2D1SolidColorBrush* brush = SolidBrush(paint.color, paint.alpha);
    const QLX_ComPtr<ID2D1PathGeometry> geometry = QLX_MakeD2DGeometry(shape);
    if (!brush || !geometry)
        return false;
    const QLX_ComPtr<ID2D1StrokeStyle> style =
        shape.stroke ? QLX_MakeD2DStrokeStyle(shape) : QLX_ComPtr<ID2D1StrokeStyle>();
    mTarget->SetAntialiasMode(shape.antialias ? D2D1_ANTIALIAS_MODE_PER_PRIMITIVE
                                              : D2D1_ANTIALIAS_MODE_ALIASED);
    ForClips(clip, shape.bounds, &shape.bounds, [&] {
        if (shape.stroke)
            mTarget->DrawGeometry(geometry.Get(), brush, float(shape.width), style.Get());
        else
            mTarget->FillGeometry(geometry.Get(), brush, nullptr);
    });
    return true;
}

bool QLX_D2DCanvas::FillShapeAsPicture(const QLX_WinClip& clip, const QLX_WinShape& shape,
                                       const QLX_SpanPaint& paint) {
    const Cmn_Rect<int> area = QLX_RenderedArea(shape.bounds, clip.bounds);
    std::vector<QLX_D2DShapePictures::Piece> pieces;
    if (!mShapes.Get(*mTarget.Get(), shape, area, paint.color, paint.alpha, pieces))
        return false;
    for (const QLX_D2DShapePictures::Piece& piece : pieces) {
        const D2D1_RECT_F to = RectOf(piece.place);
        ForClips(clip, piece.place, &piece.place, [&] {
            mTarget->DrawBitmap(piece.bitmap, &to, 1,
                                D2D1_BITMAP_INTERPOLATION_MODE_NEAREST_NEIGHBOR, nullptr);
        });
    }
    return true;
}

bool QLX_D2DCanvas::DrawTextLine(const QLX_WinClip& clip, const QLX_WinText& text,
                                 const QLX_SpanPaint& paint) {
    if (paint.mode != kPenMode_Copy || !Begin())
        return false;
    const QLX_D2DLine line = QLX_D2DText::GetLine(text.text, text.font, text.pixels);
    ID2D1SolidColorBrush* brush = SolidBrush(paint.color, paint.alpha);
    if (!line.layout || !brush)
        return false;
    mTarget->SetAntialiasMode(D2D1_ANTIALIAS_MODE_PER_PRIMITIVE);
    const D2D1_POINT_2F origin{float(text.x), float(text.baseline) - line.baseline};
    ForClips(clip, text.limit, nullptr, [&] {
        mTarget->DrawTextLayout(origin, line.layout, brush, D2D1_DRAW_TEXT_OPTIONS_NONE);
    });
    return true;
}

// The picture at the size it is drawn: sampled as everywhere else, so that it looks the same.
ID2D1Bitmap* QLX_D2DCanvas::PictureFor(const QLX_CanvasPicture& picture, const Cmn_Rect<int>& part,
                                       const Cmn_Rect<int>& destination) {
    const Cmn_Point<int> size(destination.GetWidth(), destination.GetHeight());
    if (picture.image)
        for (auto it = mPictures.begin(); it != mPictures.end(); ++it)
            if (it->image.Get() == picture.image && it->part == part && it->size == size &&
                it->generation == picture.image->GetGeneration()) {
                mPictures.splice(mPictures.begin(), mPictures, it);
                return it->bitmap.Get();
            }
    QLX_ComPtr<ID2D1Bitmap> bitmap;
    if (size.x == part.GetWidth() && size.y == part.GetHeight()) {
        bitmap = QLX_MakeD2DBitmap(*mTarget.Get(),
                                   picture.pixels + std::ptrdiff_t(part.top) * picture.rowPixels +
                                       part.left,
                                   picture.rowPixels, size.x, size.y, picture.opaque);
    } else {
        std::vector<std::uint32_t> pixels(std::size_t(size.x) * std::size_t(size.y));
        const Cmn_Rect<int> all(0, 0, size.x, size.y);
        QLX_ScalePixels(picture.pixels, picture.rowPixels, part, all, all, pixels.data(), size.x);
        bitmap = QLX_MakeD2DBitmap(*mTarget.Get(), pixels.data(), size.x, size.x, size.y,
                                   picture.opaque);
    }
    if (!picture.image) {
        mPassing = std::move(bitmap);
        return mPassing.Get();
    }
    if (mPictures.size() >= kMostPictures)
        mPictures.pop_back();
    mPictures.push_front({QLX_Image::Ptr(const_cast<QLX_Image*>(picture.image)),
                          picture.image->GetGeneration(), part, size, std::move(bitmap)});
    return mPictures.front().bitmap.Get();
}

bool QLX_D2DCanvas::DrawPicture(const QLX_WinClip& clip, const QLX_CanvasPicture& picture,
                                const Cmn_Rect<int>& part, const Cmn_Rect<int>& destination,
                                const Cmn_Rect<int>& limit, EPenMode mode, unsigned alpha) {
    // Pictures that reach far beyond the canvas are cut by the pixels' way.
    constexpr int kMostSide = 4096;
    if (mode != kPenMode_Copy || destination.GetWidth() > kMostSide ||
        destination.GetHeight() > kMostSide || !Begin())
        return false;
    ID2D1Bitmap* bitmap = PictureFor(picture, part, destination);
    if (!bitmap)
        return false;
    const D2D1_RECT_F to = RectOf(destination);
    ForClips(clip, limit, &destination, [&] {
        mTarget->DrawBitmap(bitmap, &to, float(alpha) / 255,
                            D2D1_BITMAP_INTERPOLATION_MODE_NEAREST_NEIGHBOR, nullptr);
    });
    return true;
}
