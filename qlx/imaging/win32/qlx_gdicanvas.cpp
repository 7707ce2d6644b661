#include "qlx/imaging/win32/qlx_gdicanvas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include "qlx/foundation/qlx_region.h"
#include "qlx/imaging/win32/qlx_winfonts.h"

namespace {

[[nodiscard]] COLORREF ColorRef(std::uint32_t color) noexcept {
    return RGB(color >> 16 & 255, color >> 8 & 255, color & 255);
}

// A pen mode as the raster operation of pattern and destination, and as that of pens; 0 for the
// arithmetic modes, which GDI does not know.
struct RasterMode {
    DWORD pattern;
    int pen;
};

[[nodiscard]] RasterMode RasterModeOf(EPenMode mode) noexcept {
    switch (mode) {
    case kPenMode_Copy:
    case kPenMode_Transparent: // a plain colour is never the one left out
        return {PATCOPY, R2_COPYPEN};
    case kPenMode_Or:
        return {0x00FA0089, R2_MERGEPEN};
    case kPenMode_Xor:
        return {PATINVERT, R2_XORPEN};
    case kPenMode_Bic:
        return {0x000A0329, R2_MASKNOTPEN};
    case kPenMode_NotCopy:
        return {0x000F0001, R2_NOTCOPYPEN};
    case kPenMode_NotOr:
        return {0x00AF0229, R2_MERGENOTPEN};
    case kPenMode_NotXor:
        return {0x00A50065, R2_NOTXORPEN};
    case kPenMode_NotBic:
        return {0x00A000C9, R2_MASKPEN};
    default:
        return {0, 0};
    }
}

// A pattern cell as a brush, every square `cell` pixels.
[[nodiscard]] QLX_BrushHandle PatternBrush(const QLX_SpanPaint& paint) {
    const int side = 8 * paint.cell;
    const int row = (side + 15) / 16 * 2;
    std::vector<std::uint8_t> bits(std::size_t(row) * std::size_t(side));
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            // GDI takes 0 for the text colour and 1 for the background's.
            if ((paint.pattern->rows[y / paint.cell] >> (7 - x / paint.cell) & 1) == 0)
                bits[std::size_t(y) * std::size_t(row) + std::size_t(x) / 8] |=
                    std::uint8_t(0x80 >> (x & 7));
    const QLX_BitmapHandle bitmap = QLX_BitmapHandle::New(
        "CreateBitmap", [&] { return CreateBitmap(side, side, 1, 1, bits.data()); });
    if (!bitmap)
        return {};
    return QLX_BrushHandle::New("CreatePatternBrush",
                                [&] { return CreatePatternBrush(bitmap.Get()); });
}

[[nodiscard]] RECT RectOf(const Cmn_Rect<int>& rect) noexcept {
    return {rect.left, rect.top, rect.right, rect.bottom};
}

class BorrowedDC final : public QLX_HDCWrap {
  public:
    BorrowedDC(const Cmn_RefCountPtr<QLX_GDICanvas>& canvas, HDC context)
        : QLX_HDCWrap(context), mCanvas(canvas), mState(SaveDC(context)) {}
    ~BorrowedDC() override {
        RestoreDC(Get(), mState);
        GdiFlush();
    }

  private:
    Cmn_RefCountPtr<QLX_GDICanvas> mCanvas; // keeps the context alive
    int mState;
};

} // namespace

QLX_GDICanvas::QLX_GDICanvas(int width, int height, bool hasAlpha) noexcept
    : QLX_WinCanvas(width, height, hasAlpha) {}

QLX_GDICanvas::~QLX_GDICanvas() { FreeBitmap(); }

Cmn_RefCountPtr<QLX_GDICanvas> QLX_GDICanvas::NewBitmap(int width, int height, bool hasAlpha) {
    if (width < 1 || height < 1 || width > QLX_Image::kMaximumSide ||
        height > QLX_Image::kMaximumSide)
        return nullptr;
    Cmn_RefCountPtr<QLX_GDICanvas> canvas(new QLX_GDICanvas(width, height, hasAlpha));
    return canvas->MakeBitmap(width, height) ? canvas : nullptr;
}

Cmn_RefCountPtr<QLX_GDICanvas> QLX_GDICanvas::NewForWindow(HWND window) {
    RECT client{};
    if (!GetClientRect(window, &client))
        return nullptr;
    Cmn_RefCountPtr<QLX_GDICanvas> canvas = NewBitmap(client.right, client.bottom, false);
    if (canvas)
        canvas->mWindow = window;
    return canvas;
}

Cmn_RefCountPtr<QLX_GDICanvas> QLX_GDICanvas::NewForContext(HDC context, int width, int height) {
    if (!context || width < 1 || height < 1)
        return nullptr;
    Cmn_RefCountPtr<QLX_GDICanvas> canvas(new QLX_GDICanvas(width, height, false));
    canvas->mContext = context;
    return canvas;
}

bool QLX_GDICanvas::MakeBitmap(int width, int height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    void* bits = nullptr;
    QLX_MemoryDC memory =
        QLX_MemoryDC::New("CreateCompatibleDC", [] { return CreateCompatibleDC(nullptr); });
    QLX_BitmapHandle bitmap = QLX_BitmapHandle::New("CreateDIBSection", [&] {
        return CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    });
    if (!memory || !bitmap)
        return false;
    FreeBitmap();
    mBefore = SelectObject(memory.Get(), bitmap.Get());
    mMemory = std::move(memory);
    mBitmap = std::move(bitmap);
    mContext = mMemory.Get();
    SetGraphicsMode(mContext, GM_ADVANCED);
    SetStretchBltMode(mContext, COLORONCOLOR);
    mSurface = {static_cast<std::uint32_t*>(bits), width, height, width, mHasAlpha};
    mWidth = width;
    mHeight = height;
    mSelectedClip = 0;
    return true;
}

void QLX_GDICanvas::FreeBitmap() noexcept {
    if (mMemory && mBefore)
        SelectObject(mMemory.Get(), mBefore);
    mBefore = nullptr;
    mBitmap.Reset();
    mMemory.Reset();
    mContext = nullptr;
    mSurface = {};
}

void QLX_GDICanvas::Detach() noexcept {
    QLX_WinCanvas::Detach();
    FreeBitmap();
    mWindow = nullptr;
    mEditBuffer.Reset();
}

bool QLX_GDICanvas::Resize(int width, int height) {
    if (width == mWidth && height == mHeight)
        return true;
    if (!mWindow || width < 1 || height < 1)
        return false;
    return MakeBitmap(width, height);
}

// Pixels

bool QLX_GDICanvas::BeginEdit(const Cmn_Rect<int>& area, QLX_Surface& surface,
                              Cmn_Point<int>& corner) {
    if (mSurface.pixels) {
        GdiFlush();
        surface = mSurface;
        corner = {};
        return true;
    }
    if (!mContext)
        return false;
    const int width = area.GetWidth(), height = area.GetHeight();
    if (!mEditBuffer || mEditBuffer->mWidth < width || mEditBuffer->mHeight < height)
        mEditBuffer = NewBitmap(std::max(width, mEditBuffer ? mEditBuffer->mWidth : 0),
                                std::max(height, mEditBuffer ? mEditBuffer->mHeight : 0), false);
    if (!mEditBuffer)
        return false;
    BitBlt(mEditBuffer->mContext, 0, 0, width, height, mContext, area.left, area.top, SRCCOPY);
    GdiFlush();
    surface = mEditBuffer->mSurface;
    corner = area.GetTopLeft();
    mEditArea = area;
    return true;
}

void QLX_GDICanvas::EndEdit(bool changed) {
    if (mSurface.pixels || !changed || !mEditBuffer)
        return;
    SelectClipRgn(mContext, nullptr);
    mSelectedClip = 0;
    BitBlt(mContext, mEditArea.left, mEditArea.top, mEditArea.GetWidth(), mEditArea.GetHeight(),
           mEditBuffer->mContext, 0, 0, SRCCOPY);
}

const QLX_Surface* QLX_GDICanvas::GetMemory() {
    GdiFlush();
    return mSurface.pixels ? &mSurface : nullptr;
}

Cmn_RefCountPtr<QLX_HDCWrap> QLX_GDICanvas::GetHDC(const QLX_WinClip* clip, bool) {
    if (!mContext)
        return nullptr;
    if (clip)
        (void)UseClip(*clip);
    else
        SelectClipRgn(mContext, nullptr);
    const Cmn_RefCountPtr<QLX_HDCWrap> wrap(
        new BorrowedDC(Cmn_RefCountPtr<QLX_GDICanvas>(this), mContext));
    mSelectedClip = 0;
    return wrap;
}

void QLX_GDICanvas::Flush(const std::vector<Cmn_Rect<int>>& dirty) {
    GdiFlush();
    if (!mWindow || dirty.empty())
        return;
    const HDC window = ::GetDC(mWindow);
    if (!window)
        return;
    QLX_NativeHandles::Count(kNative_WindowDC, 1);
    SelectClipRgn(mContext, nullptr);
    mSelectedClip = 0;
    for (const Cmn_Rect<int>& rect : dirty)
        BitBlt(window, rect.left, rect.top, rect.GetWidth(), rect.GetHeight(), mContext, rect.left,
               rect.top, SRCCOPY);
    ReleaseDC(mWindow, window);
    QLX_NativeHandles::Count(kNative_WindowDC, -1);
    GdiFlush();
}

// Clip: the region's own native form where a unit is a pixel, else one made of the rectangles. One
// rectangle needs no region at all.
HDC QLX_GDICanvas::UseClip(const QLX_WinClip& clip) {
    if (mSelectedClip == clip.stamp)
        return mContext;
    if (mRefusedClip == clip.stamp)
        return nullptr;
    SelectClipRgn(mContext, nullptr);
    mSelectedClip = 0;
    bool selected = true;
    if (clip.rects.size() <= 1) {
        const Cmn_Rect<int>& r = clip.bounds;
        selected = IntersectClipRect(mContext, r.left, r.top, r.right, r.bottom) != ERROR;
    } else if (clip.regions[0]) {
        for (const QLX_Region* region : clip.regions) {
            if (!region)
                continue;
            void* handle = region->ImplQuery(QLX_RegionImpl_HRGN::kSelector_GetHandle);
            selected = selected && handle &&
                       ExtSelectClipRgn(mContext, static_cast<HRGN>(handle), RGN_AND) != ERROR;
        }
        OffsetClipRgn(mContext, -clip.corner.x, -clip.corner.y);
    } else {
        std::vector<std::uint8_t> data(sizeof(RGNDATAHEADER) + clip.rects.size() * sizeof(RECT));
        const RGNDATAHEADER header{sizeof(RGNDATAHEADER), RDH_RECTANGLES, DWORD(clip.rects.size()),
                                   DWORD(clip.rects.size() * sizeof(RECT)), RectOf(clip.bounds)};
        std::memcpy(data.data(), &header, sizeof header);
        std::memcpy(data.data() + sizeof header, clip.rects.data(),
                    clip.rects.size() * sizeof(RECT));
        const QLX_RegionHandle region = QLX_RegionHandle::New("ExtCreateRegion", [&] {
            return ExtCreateRegion(nullptr, DWORD(data.size()),
                                   reinterpret_cast<const RGNDATA*>(data.data()));
        });
        selected = region && SelectClipRgn(mContext, region.Get()) != ERROR;
    }
    if (!selected) { // the pixels' way clips by rectangles and needs no handle
        SelectClipRgn(mContext, nullptr);
        mRefusedClip = clip.stamp;
        return nullptr;
    }
    mSelectedClip = clip.stamp;
    return mContext;
}

// Primitives

bool QLX_GDICanvas::FillRects(const QLX_WinClip& clip, const Cmn_Rect<int>* rects,
                              std::size_t count, const QLX_SpanPaint& paint) {
    const RasterMode mode = RasterModeOf(paint.mode);
    if (mHasAlpha || !mContext || mode.pattern == 0)
        return false;
    const bool whole = paint.alpha == 255 && paint.backgroundAlpha == 255;
    // Unset squares are left alone in the other modes.
    if (paint.pattern &&
        (!whole || (paint.mode != kPenMode_Copy && paint.mode != kPenMode_NotCopy)))
        return false;
    if (!paint.pattern && paint.alpha != 255 && paint.mode != kPenMode_Copy)
        return false;
    const HDC context = UseClip(clip);
    if (!context)
        return false;
    if (!paint.pattern && paint.alpha != 255)
        return FillTranslucent(context, clip, rects, count, paint);
    QLX_BrushHandle pattern;
    if (paint.pattern) {
        pattern = PatternBrush(paint);
        if (!pattern)
            return false;
        const int side = 8 * paint.cell;
        SetBrushOrgEx(context, ((-paint.phaseX) % side + side) % side,
                      ((-paint.phaseY) % side + side) % side, nullptr);
        SetTextColor(context, ColorRef(paint.color));
        SetBkColor(context, ColorRef(paint.background));
    } else {
        SetDCBrushColor(context, ColorRef(paint.color));
    }
    const QLX_StSelect select(context, pattern ? HGDIOBJ(pattern.Get()) : GetStockObject(DC_BRUSH));
    for (std::size_t i = 0; i < count; ++i) {
        const Cmn_Rect<int> rect = rects[i] & clip.bounds;
        if (!rect.Empty())
            PatBlt(context, rect.left, rect.top, rect.GetWidth(), rect.GetHeight(), mode.pattern);
    }
    return true;
}

// One pixel of the colour, stretched over the rectangle and blended by its alpha.
bool QLX_GDICanvas::FillTranslucent(HDC context, const QLX_WinClip& clip,
                                    const Cmn_Rect<int>* rects, std::size_t count,
                                    const QLX_SpanPaint& paint) {
    static Cmn_RefCountPtr<QLX_GDICanvas> pixel;
    if (!pixel)
        pixel = NewBitmap(1, 1, false);
    if (!pixel)
        return false;
    GdiFlush();
    *pixel->mSurface.pixels = paint.color;
    const BLENDFUNCTION blend{AC_SRC_OVER, 0, BYTE(paint.alpha), 0};
    for (std::size_t i = 0; i < count; ++i) {
        const Cmn_Rect<int> rect = rects[i] & clip.bounds;
        if (!rect.Empty())
            GdiAlphaBlend(context, rect.left, rect.top, rect.GetWidth(), rect.GetHeight(),
                          pixel->mContext, 0, 0, 1, 1, blend);
    }
    return true;
}

// Hard-edged fills are GDI's own. Smooth edges are laid down as coverage, and so are strokes, which
// GDI would put on whole pixels.
bool QLX_GDICanvas::FillShape(const QLX_WinClip& clip, const QLX_WinShape& shape,
                              const QLX_SpanPaint& paint) {
    const RasterMode mode = RasterModeOf(paint.mode);
    if (shape.antialias || shape.stroke || mHasAlpha || !mContext || mode.pen == 0 ||
        paint.pattern || paint.alpha != 255)
        return false;
    const HDC context = UseClip(clip);
    if (!context)
        return false;
    const int before = SetROP2(context, mode.pen);
    SetDCBrushColor(context, ColorRef(paint.color));
    SetPolyFillMode(context, shape.evenOdd ? ALTERNATE : WINDING);
    const QLX_StSelect select(context, GetStockObject(DC_BRUSH));
    QLX_AddGDIPath(context, shape, {}, 1);
    const bool drawn = FillPath(context) != 0;
    SetROP2(context, before);
    return drawn;
}

bool QLX_GDICanvas::DrawTextLine(const QLX_WinClip& clip, const QLX_WinText& text,
                                 const QLX_SpanPaint& paint) {
    if (mHasAlpha || !mContext || paint.alpha != 255 || paint.mode != kPenMode_Copy)
        return false;
    const HDC context = UseClip(clip);
    if (!context)
        return false;
    SetTextColor(context, ColorRef(paint.color));
    const RECT limit = RectOf(text.limit);
    QLX_DrawGDIText(context, text.text, text.font, text.pixels, text.x, text.baseline, &limit);
    return true;
}

// On a bitmap of one's own the pixels' way is as good; a context is spared reading them back.
bool QLX_GDICanvas::DrawPicture(const QLX_WinClip& clip, const QLX_CanvasPicture& picture,
                                const Cmn_Rect<int>& part, const Cmn_Rect<int>& destination,
                                const Cmn_Rect<int>& limit, EPenMode mode, unsigned alpha) {
    if (mSurface.pixels || !mContext || mode != kPenMode_Copy)
        return false;
    const int width = limit.GetWidth(), height = limit.GetHeight();
    const Cmn_RefCountPtr<QLX_GDICanvas> buffer = NewBitmap(width, height, true);
    const HDC context = UseClip(clip);
    if (!buffer || !context)
        return false;
    const QLX_Surface& surface = buffer->mSurface;
    QLX_ScalePixels(picture.pixels, picture.rowPixels, part, destination, limit, surface.pixels,
                    surface.rowPixels);
    if (picture.opaque)
        for (int i = 0; i < width * height; ++i)
            surface.pixels[i] |= 0xFF000000;
    const BLENDFUNCTION blend{AC_SRC_OVER, 0, BYTE(alpha), AC_SRC_ALPHA};
    return GdiAlphaBlend(context, limit.left, limit.top, width, height, buffer->mContext, 0, 0,
                         width, height, blend) != 0;
}

bool QLX_GDICanvas::Invert(const QLX_WinClip& clip, const Cmn_Rect<int>& rect) {
    const Cmn_Rect<int> shown = rect & clip.bounds;
    if (mHasAlpha || !mContext)
        return false;
    if (shown.Empty())
        return true;
    const HDC context = UseClip(clip);
    return context && PatBlt(context, shown.left, shown.top, shown.GetWidth(), shown.GetHeight(),
                             DSTINVERT) != 0;
}
