#include "qlx/imaging/win32/qlx_d2dshapes.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

// Shapes kept as bitmaps a target, and the largest of them: a knob's dial, not a panel.
constexpr std::size_t kMostKept = 256;
constexpr int kMostKeptPixels = 160 * 160;
// Larger shapes are cut into bands, so that a long thin line costs what it covers and not the
// rectangle around it.
constexpr int kBandRows = 64;

unsigned sAsked = 0;
unsigned sRendered = 0;

struct Figure {
    std::vector<D2D1_POINT_2F> points;
    bool closed = false;
};

// A cubic curve as short lines: implementations differ in how well they follow a long curve, and
// pieces of a few pixels look the same on all of them.
void AddCurve(std::vector<D2D1_POINT_2F>& points, const Cmn_Point<float>* control) {
    const D2D1_POINT_2F from = points.back();
    const auto distance = [](float ax, float ay, float bx, float by) {
        return std::hypot(double(ax) - bx, double(ay) - by);
    };
    const double length = distance(from.x, from.y, control[0].x, control[0].y) +
                          distance(control[0].x, control[0].y, control[1].x, control[1].y) +
                          distance(control[1].x, control[1].y, control[2].x, control[2].y);
    const int pieces = std::clamp(int(std::sqrt(length) * 1.5) + 2, 4, 96);
    for (int i = 1; i <= pieces; ++i) {
        const double t = double(i) / pieces, u = 1 - t;
        const double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
        points.push_back(
            {float(a * from.x + b * control[0].x + c * control[1].x + d * control[2].x),
             float(a * from.y + b * control[0].y + c * control[1].y + d * control[2].y)});
    }
}

[[nodiscard]] std::vector<Figure> FiguresOf(const QLX_WinShape& shape) {
    std::vector<Figure> figures;
    bool fresh = true;
    Cmn_Point<float> start;
    for (const QLX_Path::Element& element : shape.path.GetElements()) {
        const auto& p = element.points;
        if (element.verb == QLX_Path::EVerb::Move) {
            start = p[0];
            fresh = true;
            continue;
        }
        if (element.verb == QLX_Path::EVerb::Close) {
            if (!fresh)
                figures.back().closed = true;
            fresh = true;
            continue;
        }
        if (fresh) {
            figures.emplace_back();
            figures.back().points.push_back({start.x, start.y});
            fresh = false;
        }
        if (element.verb == QLX_Path::EVerb::Line)
            figures.back().points.push_back({p[0].x, p[0].y});
        else
            AddCurve(figures.back().points, p);
    }
    return figures;
}

// Moves a point away from its neighbour: what a square cap does, which not every implementation
// knows.
void Lengthen(D2D1_POINT_2F& end, const D2D1_POINT_2F& neighbour, double by) {
    const double dx = double(end.x) - neighbour.x, dy = double(end.y) - neighbour.y;
    const double length = std::hypot(dx, dy);
    if (length > 0) {
        end.x += float(dx / length * by);
        end.y += float(dy / length * by);
    }
}

// Premultiplied.
[[nodiscard]] std::uint32_t Weighed(std::uint32_t color, unsigned weight) noexcept {
    const auto part = [&](int shift) {
        return ((color >> shift & 255) * weight + 127) / 255 << shift;
    };
    return weight << 24 | part(16) | part(8) | part(0);
}

[[nodiscard]] bool IsEmptyRow(const std::uint8_t* row, int width) noexcept {
    return std::all_of(row, row + width, [](std::uint8_t byte) { return byte == 0; });
}

// The rectangle around what rows of a mask cover, in the mask's own pixels.
[[nodiscard]] Cmn_Rect<int> CoveredBy(const QLX_WinMask& mask, int width, int top, int bottom) {
    const auto row = [&](int y) { return mask.bytes + std::ptrdiff_t(y) * mask.row; };
    while (top < bottom && IsEmptyRow(row(top), width))
        ++top;
    while (top < bottom && IsEmptyRow(row(bottom - 1), width))
        --bottom;
    int left = width, right = 0;
    for (int y = top; y < bottom; ++y) {
        const std::uint8_t* bytes = row(y);
        for (int x = 0; x < left; ++x)
            if (bytes[x] != 0)
                left = x;
        for (int x = width; x > right; --x)
            if (bytes[x - 1] != 0)
                right = x;
    }
    return left < right ? Cmn_Rect<int>(left, top, right, bottom) : Cmn_Rect<int>();
}

void Colour(const QLX_WinMask& mask, const Cmn_Rect<int>& part, std::uint32_t color, unsigned alpha,
            std::vector<std::uint32_t>& pixels) {
    std::uint32_t weighed[256];
    for (unsigned i = 0; i < 256; ++i)
        weighed[i] = Weighed(color, (i * alpha + 127) / 255);
    const std::size_t width = std::size_t(part.GetWidth());
    pixels.resize(width * std::size_t(part.GetHeight()));
    std::uint32_t* out = pixels.data();
    for (int y = part.top; y < part.bottom; ++y, out += width) {
        const std::uint8_t* bytes = mask.bytes + std::ptrdiff_t(y) * mask.row + part.left;
        std::transform(bytes, bytes + width, out, [&](std::uint8_t byte) { return weighed[byte]; });
    }
}

template <class Value>
void Append(std::string& key, const Value& value) {
    key.append(reinterpret_cast<const char*>(&value), sizeof value);
}

// In 64ths of a pixel: far from the origin the same curve has other last digits.
[[nodiscard]] std::int32_t From(float place, int corner) noexcept {
    return Cmn_ClampTo<std::int32_t>(std::int64_t(std::floor((double(place) - corner) * 64 + 0.5)));
}

// What a shape looks like, wherever its corner lies.
void WriteKey(std::string& key, const QLX_WinShape& shape, std::uint32_t color, unsigned alpha) {
    key.clear();
    Append(key, color);
    Append(key, std::uint8_t(alpha));
    Append(key, std::uint8_t(shape.stroke | shape.evenOdd << 1 | shape.antialias << 2 |
                             shape.squareCap << 3));
    Append(key, std::uint8_t(shape.join));
    Append(key, float(shape.stroke ? shape.width : 0));
    Append(key, shape.bounds.GetWidth());
    Append(key, shape.bounds.GetHeight());
    for (const QLX_Path::Element& element : shape.path.GetElements()) {
        Append(key, std::uint8_t(element.verb));
        const int count = element.verb == QLX_Path::EVerb::Curve   ? 3
                          : element.verb == QLX_Path::EVerb::Close ? 0
                                                                   : 1;
        for (int i = 0; i < count; ++i) {
            Append(key, From(element.points[i].x, shape.bounds.left));
            Append(key, From(element.points[i].y, shape.bounds.top));
        }
    }
}

} // namespace

QLX_ComPtr<ID2D1PathGeometry> QLX_MakeD2DGeometry(const QLX_WinShape& shape) {
    QLX_ComPtr<ID2D1PathGeometry> geometry;
    ID2D1PathGeometry* made = nullptr;
    ID2D1GeometrySink* opened = nullptr;
    if (FAILED(QLX_D2DManager::GetFactory()->CreatePathGeometry(&made)))
        return geometry;
    geometry.Adopt(made);
    if (FAILED(made->Open(&opened)))
        return {};
    QLX_ComPtr<ID2D1GeometrySink> sink;
    sink.Adopt(opened);
    sink->SetFillMode(shape.evenOdd ? D2D1_FILL_MODE_ALTERNATE : D2D1_FILL_MODE_WINDING);
    for (Figure& figure : FiguresOf(shape)) {
        std::vector<D2D1_POINT_2F>& points = figure.points;
        if (shape.squareCap && !figure.closed && points.size() > 1) {
            Lengthen(points.front(), points[1], shape.width / 2);
            Lengthen(points.back(), points[points.size() - 2], shape.width / 2);
        }
        sink->BeginFigure(points[0],
                          shape.stroke ? D2D1_FIGURE_BEGIN_HOLLOW : D2D1_FIGURE_BEGIN_FILLED);
        sink->AddLines(points.data() + 1, UINT32(points.size() - 1));
        sink->EndFigure(figure.closed ? D2D1_FIGURE_END_CLOSED : D2D1_FIGURE_END_OPEN);
    }
    if (FAILED(sink->Close()))
        return {};
    return geometry;
}

QLX_ComPtr<ID2D1StrokeStyle> QLX_MakeD2DStrokeStyle(const QLX_WinShape& shape) {
    const D2D1_CAP_STYLE cap = D2D1_CAP_STYLE_FLAT; // square ones are in the geometry
    const D2D1_LINE_JOIN join = shape.join == QLX_Painter::kLineJoin_Round   ? D2D1_LINE_JOIN_ROUND
                                : shape.join == QLX_Painter::kLineJoin_Bevel ? D2D1_LINE_JOIN_BEVEL
                                                                             : D2D1_LINE_JOIN_MITER;
    const D2D1_STROKE_STYLE_PROPERTIES properties{cap, cap, cap, join, 10, D2D1_DASH_STYLE_SOLID,
                                                  0};
    QLX_ComPtr<ID2D1StrokeStyle> style;
    ID2D1StrokeStyle* made = nullptr;
    if (SUCCEEDED(QLX_D2DManager::GetFactory()->CreateStrokeStyle(&properties, nullptr, 0, &made)))
        style.Adopt(made);
    return style;
}

QLX_ComPtr<ID2D1Bitmap> QLX_MakeD2DBitmap(ID2D1RenderTarget& target, const std::uint32_t* pixels,
                                          int rowPixels, int width, int height, bool opaque) {
    const D2D1_BITMAP_PROPERTIES properties{
        {DXGI_FORMAT_B8G8R8A8_UNORM,
         opaque ? D2D1_ALPHA_MODE_IGNORE : D2D1_ALPHA_MODE_PREMULTIPLIED},
        96,
        96};
    QLX_ComPtr<ID2D1Bitmap> bitmap;
    ID2D1Bitmap* made = nullptr;
    if (SUCCEEDED(target.CreateBitmap({UINT32(width), UINT32(height)}, pixels,
                                      UINT32(rowPixels) * 4, &properties, &made)))
        bitmap.Adopt(made);
    return bitmap;
}

// Pictures of shapes

bool QLX_D2DShapePictures::Get(ID2D1RenderTarget& target, const QLX_WinShape& shape,
                               const Cmn_Rect<int>& area, std::uint32_t color, unsigned alpha,
                               std::vector<Piece>& pieces) {
    ++sAsked;
    pieces.clear();
    mPassing.clear();
    const bool small =
        shape.bounds.GetWidth() <= kMostKeptPixels &&
        std::int64_t{shape.bounds.GetWidth()} * shape.bounds.GetHeight() <= kMostKeptPixels;
    return small ? GetKept(target, shape, color, alpha, pieces)
                 : GetPassing(target, shape, area, color, alpha, pieces);
}

bool QLX_D2DShapePictures::GetKept(ID2D1RenderTarget& target, const QLX_WinShape& shape,
                                   std::uint32_t color, unsigned alpha,
                                   std::vector<Piece>& pieces) {
    const auto answer = [&](const Kept& kept) {
        const Cmn_Point<int> corner = shape.bounds.GetTopLeft();
        if (kept.bitmap)
            pieces.push_back({kept.bitmap.Get(),
                              {kept.place.left + corner.x, kept.place.top + corner.y,
                               kept.place.right + corner.x, kept.place.bottom + corner.y}});
        return true;
    };
    WriteKey(mKey, shape, color, alpha);
    if (const auto found = mByKey.find(mKey); found != mByKey.end()) {
        mKept.splice(mKept.begin(), mKept, found->second);
        return answer(mKept.front());
    }
    ++sRendered;
    const QLX_WinMask mask = QLX_RenderShape(shape, shape.bounds);
    if (!mask.bytes)
        return false;
    Kept kept;
    kept.key = mKey;
    kept.place = CoveredBy(mask, shape.bounds.GetWidth(), 0, shape.bounds.GetHeight());
    if (!kept.place.Empty()) {
        Colour(mask, kept.place, color, alpha, mPixels);
        kept.bitmap = QLX_MakeD2DBitmap(target, mPixels.data(), kept.place.GetWidth(),
                                        kept.place.GetWidth(), kept.place.GetHeight(), false);
        if (!kept.bitmap)
            return false;
    }
    if (mKept.size() >= kMostKept) {
        mByKey.erase(mKept.back().key);
        mKept.pop_back();
    }
    mKept.push_front(std::move(kept));
    mByKey.emplace(mKept.front().key, mKept.begin());
    return answer(mKept.front());
}

bool QLX_D2DShapePictures::GetPassing(ID2D1RenderTarget& target, const QLX_WinShape& shape,
                                      const Cmn_Rect<int>& area, std::uint32_t color,
                                      unsigned alpha, std::vector<Piece>& pieces) {
    ++sRendered;
    const QLX_WinMask mask = QLX_RenderShape(shape, area);
    if (!mask.bytes)
        return false;
    for (int top = 0; top < area.GetHeight(); top += kBandRows) {
        const Cmn_Rect<int> part =
            CoveredBy(mask, area.GetWidth(), top, std::min(top + kBandRows, area.GetHeight()));
        if (part.Empty())
            continue;
        Colour(mask, part, color, alpha, mPixels);
        QLX_ComPtr<ID2D1Bitmap> bitmap = QLX_MakeD2DBitmap(
            target, mPixels.data(), part.GetWidth(), part.GetWidth(), part.GetHeight(), false);
        if (!bitmap)
            return false;
        pieces.push_back({bitmap.Get(),
                          {area.left + part.left, area.top + part.top, area.left + part.right,
                           area.top + part.bottom}});
        mPassing.push_back(std::move(bitmap));
    }
    return true;
}

void QLX_D2DShapePictures::Clear() noexcept {
    mByKey.clear();
    mKept.clear();
    mPassing.clear();
}

unsigned QLX_D2DShapePictures::GetAskedCount() noexcept { return sAsked; }
unsigned QLX_D2DShapePictures::GetRenderedCount() noexcept { return sRendered; }
