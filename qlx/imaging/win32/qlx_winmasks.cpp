// Coverage of shapes and texts. A shape is drawn by GDI at four times the size into a bitmap of
// single bits, and sixteen bits make one byte of coverage: the smooth edges that GDI itself does
// not have.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

#include "qlx/imaging/win32/qlx_wincanvas.h"
#include "qlx/imaging/win32/qlx_winfonts.h"

namespace {

constexpr int kFactor = 4;
// Rows of the canvas drawn in one go: bounds the memory whatever the shape's size.
constexpr int kMostPixels = 1 << 20;

class BitMap {
  public:
    // Room for width by height bits or pixels; all zero. False without memory or handles.
    [[nodiscard]] bool Prepare(int width, int height, int bitsPerPixel) {
        if (!mContext)
            mContext =
                QLX_MemoryDC::New("CreateCompatibleDC", [] { return CreateCompatibleDC(nullptr); });
        if (!mContext)
            return false;
        if (width > mWidth || height > mHeight || !mBitmap) {
            mWidth = std::max(mWidth, (width + 63) & ~63);
            mHeight = std::max(mHeight, (height + 15) & ~15);
            if (!Make(bitsPerPixel))
                return false;
        }
        GdiFlush();
        for (int y = 0; y < height; ++y)
            std::memset(mBits + std::ptrdiff_t(y) * mRow, 0,
                        std::size_t((width * bitsPerPixel + 7) / 8));
        return true;
    }
    void Free() {
        if (mBefore)
            SelectObject(mContext.Get(), mBefore);
        mBefore = nullptr;
        mBitmap.Reset();
        mContext.Reset();
        mWidth = mHeight = 0;
    }
    ~BitMap() { Free(); }
    [[nodiscard]] HDC Context() const noexcept { return mContext.Get(); }
    [[nodiscard]] const std::uint8_t* Row(int y) const noexcept {
        return mBits + std::ptrdiff_t(y) * mRow;
    }

  private:
    bool Make(int bitsPerPixel) {
        if (mBefore)
            SelectObject(mContext.Get(), mBefore);
        mBefore = nullptr;
        mBitmap.Reset();
        struct {
            BITMAPINFOHEADER header{};
            RGBQUAD colors[2]{{0, 0, 0, 0}, {255, 255, 255, 0}};
        } info;
        info.header.biSize = sizeof info.header;
        info.header.biWidth = mWidth;
        info.header.biHeight = -mHeight;
        info.header.biPlanes = 1;
        info.header.biBitCount = WORD(bitsPerPixel);
        info.header.biClrUsed = bitsPerPixel == 1 ? 2 : 0;
        void* bits = nullptr;
        mBitmap = QLX_BitmapHandle::New("CreateDIBSection", [&] {
            return CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO*>(&info), DIB_RGB_COLORS,
                                    &bits, nullptr, 0);
        });
        if (!mBitmap) {
            mWidth = mHeight = 0;
            return false;
        }
        mBits = static_cast<std::uint8_t*>(bits);
        mRow = (mWidth * bitsPerPixel + 31) / 32 * 4;
        mBefore = SelectObject(mContext.Get(), mBitmap.Get());
        return true;
    }

    QLX_MemoryDC mContext;
    QLX_BitmapHandle mBitmap;
    HGDIOBJ mBefore = nullptr;
    std::uint8_t* mBits = nullptr;
    int mWidth = 0;
    int mHeight = 0;
    int mRow = 0;
};

// One of each, grown to the largest use yet. User-interface thread, as painters.
struct Masks {
    BitMap shapes;
    BitMap texts;
    std::vector<std::uint8_t> coverage;
};

Masks& TheMasks() {
    static Masks masks;
    return masks;
}

void Downsample(const BitMap& map, int width, int rows, std::uint8_t* out, bool antialias) {
    for (int y = 0; y < rows; ++y, out += width) {
        const std::uint8_t* lines[kFactor];
        for (int i = 0; i < kFactor; ++i)
            lines[i] = map.Row(y * kFactor + i);
        for (int x = 0; x < width; ++x) {
            const int shift = (x & 1) != 0 ? 0 : 4;
            unsigned bits = 0;
            for (const std::uint8_t* line : lines)
                bits = bits << 4 | (line[x >> 1] >> shift & 15U);
            const auto set = unsigned(std::popcount(bits));
            // A hard edge takes a pixel that is covered by half.
            out[x] = antialias ? std::uint8_t((set * 255 + 8) / 16) : set >= 8 ? 255 : 0;
        }
    }
}

POINT PointOf(const Cmn_Point<float>& point, Cmn_Point<int> corner, int factor) {
    const auto place = [&](float value, int origin) {
        return LONG(std::lround(std::clamp((double(value) - origin) * factor, -1e8, 1e8)));
    };
    return {place(point.x, corner.x), place(point.y, corner.y)};
}

} // namespace

void QLX_FreeMasks() {
    TheMasks().shapes.Free();
    TheMasks().texts.Free();
    TheMasks().coverage = {};
}

void QLX_AddGDIPath(HDC context, const QLX_WinShape& shape, Cmn_Point<int> corner, int factor) {
    BeginPath(context);
    for (const QLX_Path::Element& element : shape.path.GetElements()) {
        POINT points[3];
        for (int i = 0; i < 3; ++i)
            points[i] = PointOf(element.points[i], corner, factor);
        switch (element.verb) {
        case QLX_Path::EVerb::Move:
            MoveToEx(context, points[0].x, points[0].y, nullptr);
            break;
        case QLX_Path::EVerb::Line:
            LineTo(context, points[0].x, points[0].y);
            break;
        case QLX_Path::EVerb::Curve:
            PolyBezierTo(context, points, 3);
            break;
        case QLX_Path::EVerb::Close:
            CloseFigure(context);
            break;
        }
    }
    EndPath(context);
}

HPEN QLX_MakeGDIPen(const QLX_WinShape& shape, int factor, COLORREF color) {
    const DWORD join = shape.join == QLX_Painter::kLineJoin_Round   ? PS_JOIN_ROUND
                       : shape.join == QLX_Painter::kLineJoin_Bevel ? PS_JOIN_BEVEL
                                                                    : PS_JOIN_MITER;
    const DWORD cap = shape.squareCap ? PS_ENDCAP_SQUARE : PS_ENDCAP_FLAT;
    const LOGBRUSH brush{BS_SOLID, color, 0};
    return ExtCreatePen(PS_GEOMETRIC | PS_SOLID | join | cap,
                        DWORD(std::max(1.0, std::round(shape.width * factor))), &brush, 0, nullptr);
}

Cmn_Rect<int> QLX_RenderedArea(const Cmn_Rect<int>& shape, const Cmn_Rect<int>& clip) noexcept {
    constexpr std::int64_t kMostMaskPixels = std::int64_t{1} << 21;
    const Cmn_Rect<int> shown = shape & clip;
    if (shown.Empty() || std::int64_t{shape.GetWidth()} * shape.GetHeight() > kMostMaskPixels)
        return shown;
    return shape;
}

QLX_WinMask QLX_RenderShape(const QLX_WinShape& shape, const Cmn_Rect<int>& area) {
    Masks& masks = TheMasks();
    const int width = area.GetWidth(), height = area.GetHeight();
    constexpr int factor = kFactor;
    masks.coverage.assign(std::size_t(width) * std::size_t(height) + 8, 0);
    const int band = std::clamp(kMostPixels / std::max(1, width), 1, height);
    for (int top = 0; top < height; top += band) {
        const int rows = std::min(band, height - top);
        if (!masks.shapes.Prepare(width * factor, rows * factor, 1))
            return {};
        const HDC context = masks.shapes.Context();
        SetPolyFillMode(context, shape.evenOdd ? ALTERNATE : WINDING);
        if (shape.stroke) {
            const QLX_PenHandle pen = QLX_PenHandle::New(
                "ExtCreatePen", [&] { return QLX_MakeGDIPen(shape, factor, RGB(255, 255, 255)); });
            if (!pen)
                return {};
            const QLX_StSelect select(context, pen.Get());
            SetMiterLimit(context, 10, nullptr);
            QLX_AddGDIPath(context, shape, {area.left, area.top + top}, factor);
            StrokePath(context);
        } else {
            const QLX_StSelect select(context, GetStockObject(WHITE_BRUSH));
            QLX_AddGDIPath(context, shape, {area.left, area.top + top}, factor);
            FillPath(context);
        }
        GdiFlush();
        Downsample(masks.shapes, width, rows,
                   masks.coverage.data() + std::size_t(top) * std::size_t(width), shape.antialias);
    }
    return {masks.coverage.data(), width};
}

QLX_WinMask QLX_RenderText(const QLX_WinText& text, const Cmn_Rect<int>& area) {
    Masks& masks = TheMasks();
    const int width = area.GetWidth(), height = area.GetHeight();
    if (!masks.texts.Prepare(width, height, 32))
        return {};
    const HDC context = masks.texts.Context();
    SetTextColor(context, RGB(255, 255, 255));
    QLX_DrawGDIText(context, text.text, text.font, text.pixels, text.x - area.left,
                    text.baseline - area.top, nullptr);
    GdiFlush();
    masks.coverage.resize(std::size_t(width) * std::size_t(height) + 8);
    std::uint8_t* out = masks.coverage.data();
    for (int y = 0; y < height; ++y, out += width) {
        const std::uint8_t* row = masks.texts.Row(y);
        for (int x = 0; x < width; ++x)
            out[x] = row[4 * x + 1];
    }
    return {masks.coverage.data(), width};
}
