// Curved and slanted shapes: Cairo renders their coverage into a mask that is kept for the next
// one, and the mask is laid down like any other source, so that every pen mode and pattern works
// for them and the clip is the region's own rectangles.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

#include "newfilelibs/cmn/cmn_polygon.h"
#include "qlx/imaging/cairo/qlx_cairoclip.h"
#include "qlx/imaging/cairo/qlx_roundmasks.h"
#include "qlx/imaging/qlx_path.h"

#include <cairo.h>

namespace {

struct FloatRect {
    double left, top, right, bottom;
};

// The mask surface, grown to the largest shape yet. User-interface thread, as painters.
class MaskSurface {
  public:
    ~MaskSurface() { Free(); }

    // Makes room for an area and clears it; the context draws in canvas coordinates. False without
    // memory.
    [[nodiscard]] bool Begin(const Cmn_Rect<int>& area, bool antialias) {
        const int width = area.right - area.left, height = area.bottom - area.top;
        if (width > mWidth || height > mHeight) {
            Free();
            mWidth = std::max(mWidth, (width + 63) & ~63);
            mHeight = std::max(mHeight, (height + 63) & ~63);
            mSurface = cairo_image_surface_create(CAIRO_FORMAT_A8, mWidth, mHeight);
            mContext = cairo_create(mSurface);
            if (cairo_status(mContext) != CAIRO_STATUS_SUCCESS) {
                Free();
                mWidth = mHeight = 0;
                return false;
            }
        }
        cairo_surface_flush(mSurface);
        unsigned char* data = cairo_image_surface_get_data(mSurface);
        mRow = cairo_image_surface_get_stride(mSurface);
        for (int y = 0; y < height; ++y)
            std::memset(data + std::ptrdiff_t(y) * mRow, 0, std::size_t(width));
        cairo_surface_mark_dirty(mSurface);
        cairo_identity_matrix(mContext);
        cairo_reset_clip(mContext);
        cairo_new_path(mContext);
        cairo_rectangle(mContext, 0, 0, width, height);
        cairo_clip(mContext);
        cairo_translate(mContext, -area.left, -area.top);
        cairo_set_antialias(mContext, antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
        cairo_set_source_rgba(mContext, 0, 0, 0, 1);
        mArea = area;
        return true;
    }
    [[nodiscard]] cairo_t* Context() const noexcept { return mContext; }
    void End() const { cairo_surface_flush(mSurface); }
    // The byte of a canvas pixel within the area.
    [[nodiscard]] const std::uint8_t* At(int x, int y) const noexcept {
        return cairo_image_surface_get_data(mSurface) + std::ptrdiff_t(y - mArea.top) * mRow +
               (x - mArea.left);
    }
    [[nodiscard]] int Row() const noexcept { return mRow; }

  private:
    void Free() {
        cairo_destroy(mContext);
        cairo_surface_destroy(mSurface);
        mContext = nullptr;
        mSurface = nullptr;
    }
    cairo_surface_t* mSurface = nullptr;
    cairo_t* mContext = nullptr;
    int mWidth = 0;
    int mHeight = 0;
    int mRow = 0;
    Cmn_Rect<int> mArea;
};

MaskSurface& Mask() {
    static MaskSurface mask;
    return mask;
}

void AddCorner(cairo_t* context, double centerX, double centerY, double rx, double ry,
               int quarter) {
    if (rx <= 0 || ry <= 0) {
        cairo_line_to(context, centerX, centerY);
        return;
    }
    cairo_matrix_t before;
    cairo_get_matrix(context, &before);
    cairo_translate(context, centerX, centerY);
    cairo_scale(context, rx, ry);
    cairo_arc(context, 0, 0, 1, quarter * std::numbers::pi / 2,
              (quarter + 1) * std::numbers::pi / 2);
    cairo_set_matrix(context, &before);
}

void AddRoundRect(cairo_t* context, const FloatRect& r, double rx, double ry, bool topOnly) {
    if (r.right <= r.left || r.bottom <= r.top)
        return;
    rx = std::clamp(rx, 0.0, (r.right - r.left) / 2);
    ry = std::clamp(ry, 0.0, (r.bottom - r.top) / 2);
    if (rx == 0 || ry == 0)
        rx = ry = 0;
    const double lowX = topOnly ? 0 : rx, lowY = topOnly ? 0 : ry;
    cairo_new_sub_path(context);
    AddCorner(context, r.left + rx, r.top + ry, rx, ry, 2);
    AddCorner(context, r.right - rx, r.top + ry, rx, ry, 3);
    AddCorner(context, r.right - lowX, r.bottom - lowY, lowX, lowY, 0);
    AddCorner(context, r.left + lowX, r.bottom - lowY, lowX, lowY, 1);
    cairo_close_path(context);
}

[[nodiscard]] double Held(double value) noexcept {
    return std::isnan(value) ? 0 : std::clamp(value, -1e6, 1e6);
}

[[nodiscard]] FloatRect HeldRect(const Cmn_Rect<int>& rect) noexcept {
    return {Held(rect.left), Held(rect.top), Held(rect.right), Held(rect.bottom)};
}

[[nodiscard]] Cmn_Rect<int> Grown(const Cmn_Rect<int>& rect, double by) noexcept {
    const int pixels = int(std::ceil(std::min(by, 1e6))) + 1;
    return {Cmn_SaturatingAdd(rect.left, -pixels), Cmn_SaturatingAdd(rect.top, -pixels),
            Cmn_SaturatingAdd(rect.right, pixels), Cmn_SaturatingAdd(rect.bottom, pixels)};
}

[[nodiscard]] cairo_line_join_t JoinOf(QLX_Painter::ELineJoin join) noexcept {
    switch (join) {
    case QLX_Painter::kLineJoin_Round:
        return CAIRO_LINE_JOIN_ROUND;
    case QLX_Painter::kLineJoin_Bevel:
        return CAIRO_LINE_JOIN_BEVEL;
    default:
        return CAIRO_LINE_JOIN_MITER;
    }
}

// The area to render of a shape with slanted edges. Cutting a shape changes how its edges are
// rounded, by a little, so it is rendered whole wherever that is affordable: a picture drawn in
// pieces is then the same as in one go.
constexpr std::int64_t kMostMaskPixels = std::int64_t{1} << 22;
[[nodiscard]] Cmn_Rect<int> RenderedArea(const Cmn_Rect<int>& shape,
                                         const Cmn_Rect<int>& clip) noexcept {
    const Cmn_Rect<int> shown = shape & clip;
    if (shown.Empty() || std::int64_t{shape.GetWidth()} * shape.GetHeight() > kMostMaskPixels)
        return shown;
    return shape;
}

// Renders what draw(context) draws into the mask of an area. False when nothing can be drawn.
template <class Draw>
[[nodiscard]] bool Render(const Cmn_Rect<int>& area, bool antialias, Draw draw) {
    if (area.Empty() || !Mask().Begin(area, antialias))
        return false;
    draw(Mask().Context());
    Mask().End();
    return true;
}

} // namespace

void QLX_PainterCairo::LayMask(const Cmn_Rect<int>& area, const QLX_SpanPaint& paint) {
    ForClipped(area, [&](const Cmn_Rect<int>& part) {
        QLX_MaskSpans(mCanvas->GetSurface(), part, Mask().At(part.left, part.top), Mask().Row(),
                      paint, /*paddedMask*/ false);
    });
}

void QLX_PainterCairo::FillShape(const QLX_Path& path, const Cmn_Rect<int>& bounds,
                                 const ShapeStyle& style, const QLX_SpanPaint& paint) {
    (void)Clip();
    const Cmn_Rect<int> area = RenderedArea(bounds, mClip.bounds);
    const bool drawn = Render(area, style.antialias, [&](cairo_t* context) {
        const double factor = mScale.GetFactor();
        const auto x = [&](float value) {
            return Held((double(value) - mWindowOrigin.x) * factor - mDeviceCorner.x);
        };
        const auto y = [&](float value) {
            return Held((double(value) - mWindowOrigin.y) * factor - mDeviceCorner.y);
        };
        for (const QLX_Path::Element& element : path.GetElements()) {
            const auto& p = element.points;
            switch (element.verb) {
            case QLX_Path::EVerb::Move:
                cairo_move_to(context, x(p[0].x), y(p[0].y));
                break;
            case QLX_Path::EVerb::Line:
                cairo_line_to(context, x(p[0].x), y(p[0].y));
                break;
            case QLX_Path::EVerb::Curve:
                cairo_curve_to(context, x(p[0].x), y(p[0].y), x(p[1].x), y(p[1].y), x(p[2].x),
                               y(p[2].y));
                break;
            case QLX_Path::EVerb::Close:
                cairo_close_path(context);
                break;
            }
        }
        cairo_set_fill_rule(context,
                            style.evenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING);
        if (style.look == ELook::Fill) {
            cairo_fill(context);
            return;
        }
        cairo_set_line_width(context, style.width);
        cairo_set_line_join(context, JoinOf(style.join));
        cairo_set_line_cap(context, CAIRO_LINE_CAP_BUTT);
        cairo_stroke(context);
    });
    if (drawn)
        LayMask(area, paint);
}

namespace {

// Renders a rounded rectangle, or with thicknesses what lies between two of them, into the mask.
[[nodiscard]] bool RenderRound(const Cmn_Rect<int>& pixels, const Cmn_Rect<int>& area,
                               const QLX_RoundMaskKey& key) {
    return Render(area, key.antialias, [&](cairo_t* context) {
        const FloatRect outer = HeldRect(pixels);
        AddRoundRect(context, outer, key.radiusX, key.radiusY, key.topOnly);
        cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
        if (key.across > 0 || key.down > 0) {
            const FloatRect inner{outer.left + key.across, outer.top + key.down,
                                  outer.right - key.across, outer.bottom - key.down};
            const double outerX = std::min(key.radiusX, (outer.right - outer.left) / 2);
            const double outerY = std::min(key.radiusY, (outer.bottom - outer.top) / 2);
            AddRoundRect(context, inner, outerX - key.across, outerY - key.down, key.topOnly);
        }
        cairo_fill(context);
    });
}

// The mask of a key, rendered when it is asked for the first time. Null without memory.
[[nodiscard]] const QLX_RoundMask* KeptRound(const QLX_RoundMaskKey& key) {
    if (const QLX_RoundMask* mask = QLX_RoundMasks::Find(key))
        return mask;
    const Cmn_Rect<int> pixels(0, 0, key.width, key.height);
    if (!RenderRound(pixels, pixels, key))
        return nullptr;
    return &QLX_RoundMasks::Keep(key, Mask().At(0, 0), Mask().Row());
}

} // namespace

// Corners are the same however large the rectangle is: with their coverage kept, a rounded
// rectangle is four small masks and the rectangles between them. One too small for four corners is
// kept whole, one too large for that (an oval) is rendered.
void QLX_PainterCairo::RoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY, bool topOnly,
                                 bool antialias, ELook look, const QLX_SpanPaint& paint) {
    if (rect.Empty())
        return;
    const Cmn_Rect<int> pixels = ToCanvas(rect);
    (void)Clip();
    if (pixels.Empty() || !pixels.Overlaps(mClip.bounds))
        return;
    QLX_RoundMaskKey key;
    key.radiusX = std::max(0, radiusX) * mScale.GetFactor();
    key.radiusY = std::max(0, radiusY) * mScale.GetFactor();
    key.antialias = antialias;
    key.topOnly = topOnly;
    if (look == ELook::Stroke) {
        key.across = mScale.ThicknessToDevice(mPenSize.x);
        key.down = mScale.ThicknessToDevice(mPenSize.y);
    }
    const std::int64_t width = std::int64_t{pixels.right} - pixels.left;
    const std::int64_t height = std::int64_t{pixels.bottom} - pixels.top;
    const double sideX = std::max(key.radiusX, double(key.across)) + 1;
    const double sideY = std::max(key.radiusY, double(key.down)) + 1;
    const bool hasCorners =
        2 * sideX + 1 < double(std::min<std::int64_t>(width, QLX_RoundMasks::kMostSide)) &&
        2 * sideY + 1 < double(std::min<std::int64_t>(height, QLX_RoundMasks::kMostSide));
    if (hasCorners)
        return LayCorners(pixels, key, int(std::ceil(sideX)), int(std::ceil(sideY)), paint);
    key.width = int(std::min<std::int64_t>(width, INT32_MAX));
    key.height = int(std::min<std::int64_t>(height, INT32_MAX));
    const bool isKept = width <= QLX_RoundMasks::kMostSide && height <= QLX_RoundMasks::kMostSide;
    if (const QLX_RoundMask* mask = isKept ? KeptRound(key) : nullptr)
        return LayKept(pixels, mask->bytes.get(), key.width, paint);
    const Cmn_Rect<int> area = RenderedArea(pixels, mClip.bounds);
    if (RenderRound(pixels, area, key))
        LayMask(area, paint);
}

// Lays kept coverage down; its first byte is that of the rectangle's corner.
void QLX_PainterCairo::LayKept(const Cmn_Rect<int>& at, const std::uint8_t* bytes, int row,
                               const QLX_SpanPaint& paint) {
    ForClipped(at, [&](const Cmn_Rect<int>& part) {
        QLX_MaskSpans(mCanvas->GetSurface(), part,
                      bytes + std::ptrdiff_t{part.top - at.top} * row + (part.left - at.left), row,
                      paint, /*paddedMask*/ false);
    });
}

void QLX_PainterCairo::LayCorners(const Cmn_Rect<int>& at, QLX_RoundMaskKey& key, int sideX,
                                  int sideY, const QLX_SpanPaint& paint) {
    key.width = 2 * sideX + 1;
    key.height = 2 * sideY + 1;
    const QLX_RoundMask* mask = KeptRound(key);
    if (!mask)
        return;
    const std::uint8_t* bytes = mask->bytes.get();
    const int left = at.left + sideX, right = at.right - sideX;
    const int top = at.top + sideY, bottom = at.bottom - sideY;
    const std::uint8_t* low = bytes + std::ptrdiff_t{sideY + 1} * key.width;
    LayKept({at.left, at.top, left, top}, bytes, key.width, paint);
    LayKept({right, at.top, at.right, top}, bytes + sideX + 1, key.width, paint);
    LayKept({at.left, bottom, left, at.bottom}, low, key.width, paint);
    LayKept({right, bottom, at.right, at.bottom}, low + sideX + 1, key.width, paint);
    if (key.across == 0 && key.down == 0) {
        Fill({left, at.top, right, top}, paint);
        Fill({at.left, top, at.right, bottom}, paint);
        Fill({left, bottom, right, at.bottom}, paint);
        return;
    }
    Fill({left, at.top, right, at.top + key.down}, paint);
    Fill({left, at.bottom - key.down, right, at.bottom}, paint);
    Fill({at.left, top, at.left + key.across, bottom}, paint);
    Fill({at.right - key.across, top, at.right, bottom}, paint);
}

void QLX_PainterCairo::DrawSlantedLine(Cmn_Point<double> from, Cmn_Point<double> to, int width,
                                       bool includeEnd) {
    const double shiftX = width / 2.0 - mDeviceCorner.x, shiftY = width / 2.0 - mDeviceCorner.y;
    const Cmn_Rect<int> bounds(int(std::floor(std::min(from.x, to.x) + shiftX)),
                               int(std::floor(std::min(from.y, to.y) + shiftY)),
                               int(std::ceil(std::max(from.x, to.x) + shiftX)),
                               int(std::ceil(std::max(from.y, to.y) + shiftY)));
    (void)Clip();
    const Cmn_Rect<int> area = RenderedArea(Grown(bounds, width), mClip.bounds);
    const bool drawn = Render(area, true, [&](cairo_t* context) {
        cairo_move_to(context, Held(from.x + shiftX), Held(from.y + shiftY));
        cairo_line_to(context, Held(to.x + shiftX), Held(to.y + shiftY));
        cairo_set_line_width(context, width);
        cairo_set_line_cap(context, includeEnd ? CAIRO_LINE_CAP_SQUARE : CAIRO_LINE_CAP_BUTT);
        cairo_stroke(context);
    });
    if (drawn)
        LayMask(area, PenPaint());
}

void QLX_PainterCairo::DrawRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY,
                                     bool antialias, bool topOnly) {
    if (mPenSize.x > 0 || mPenSize.y > 0)
        RoundRect(rect, radiusX, radiusY, topOnly, antialias, ELook::Stroke, PenPaint());
}

void QLX_PainterCairo::DrawOval(const Cmn_Rect<int>& rect) {
    if (mPenSize.x > 0 || mPenSize.y > 0)
        RoundRect(rect, rect.GetWidth(), rect.GetHeight(), false, true, ELook::Stroke, PenPaint());
}

void QLX_PainterCairo::FillRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY,
                                     bool antialias, bool topOnly) {
    RoundRect(rect, radiusX, radiusY, topOnly, antialias, ELook::Fill, PenPaint());
}

void QLX_PainterCairo::FillOval(const Cmn_Rect<int>& rect, bool antialias) {
    RoundRect(rect, rect.GetWidth(), rect.GetHeight(), false, antialias, ELook::Fill, PenPaint());
}

void QLX_PainterCairo::EraseRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY,
                                      bool antialias) {
    RoundRect(rect, radiusX, radiusY, false, antialias, ELook::Fill, PlainPaint(mBackgroundColor));
}

void QLX_PainterCairo::DrawArc(const Cmn_Rect<int>& rect, int startDegrees, int sweepDegrees,
                               bool antialias) {
    const double width = mScale.ThicknessToDevice(mPenSize.x);
    if (rect.Empty() || width == 0)
        return;
    const Cmn_Rect<int> pixels = ToCanvas(rect);
    (void)Clip();
    const Cmn_Rect<int> area = RenderedArea(pixels, mClip.bounds);
    const bool drawn = Render(area, antialias, [&](cairo_t* context) {
        const FloatRect r = HeldRect(pixels);
        const double rx = (r.right - r.left - width) / 2, ry = (r.bottom - r.top - width) / 2;
        if (rx <= 0 || ry <= 0)
            return;
        const double degree = std::numbers::pi / 180;
        const double start = (startDegrees % 360 - 90) * degree;
        const double sweep = std::clamp(sweepDegrees, -360, 360) * degree;
        cairo_matrix_t before;
        cairo_get_matrix(context, &before);
        cairo_translate(context, (r.left + r.right) / 2, (r.top + r.bottom) / 2);
        cairo_scale(context, rx, ry);
        if (sweep >= 0)
            cairo_arc(context, 0, 0, 1, start, start + sweep);
        else
            cairo_arc_negative(context, 0, 0, 1, start, start + sweep);
        cairo_set_matrix(context, &before);
        cairo_set_line_width(context, width);
        cairo_set_line_cap(context, CAIRO_LINE_CAP_BUTT);
        cairo_stroke(context);
    });
    if (drawn)
        LayMask(area, PenPaint());
}

// Corners fall on the pixel edges that rectangles use, so that straight polygons meet them.
void QLX_PainterCairo::DrawPolygon(const Cmn_Polygon<int>& polygon, bool closed, bool antialias) {
    const double width = mScale.ThicknessToDevice(mPenSize.x);
    if (polygon.size() < 2 || width == 0)
        return;
    const Cmn_Rect<int> bounds = polygon.GetBounds();
    (void)Clip();
    const Cmn_Rect<int> area =
        Grown(ToCanvas(bounds), 12 * width) & mClip.bounds; // mitres reach out
    const bool drawn = Render(area, antialias, [&](cairo_t* context) {
        for (const Cmn_Point<int>& point : polygon) {
            const Cmn_Rect<int> pixel = ToCanvas({point.x, point.y, point.x, point.y});
            cairo_line_to(context, Held(pixel.left + width / 2), Held(pixel.top + width / 2));
        }
        if (closed)
            cairo_close_path(context);
        cairo_set_line_width(context, width);
        cairo_set_line_join(context, CAIRO_LINE_JOIN_MITER);
        cairo_set_line_cap(context, CAIRO_LINE_CAP_SQUARE);
        cairo_stroke(context);
    });
    if (drawn)
        LayMask(area, PenPaint());
}

void QLX_PainterCairo::FillPolygon(const Cmn_Polygon<int>& polygon) {
    if (polygon.size() < 3)
        return;
    (void)Clip();
    const Cmn_Rect<int> area = RenderedArea(ToCanvas(polygon.GetBounds()), mClip.bounds);
    const bool drawn = Render(area, true, [&](cairo_t* context) {
        for (const Cmn_Point<int>& point : polygon) {
            const Cmn_Rect<int> pixel = ToCanvas({point.x, point.y, point.x, point.y});
            cairo_line_to(context, Held(pixel.left), Held(pixel.top));
        }
        cairo_set_fill_rule(context, CAIRO_FILL_RULE_EVEN_ODD);
        cairo_fill(context);
    });
    if (drawn)
        LayMask(area, PenPaint());
}

void QLX_PainterCairo::DrawPath(const PathPtr& path, bool antialias, ELineJoin join) {
    if (!path || path->IsEmpty() || mPenSize.x == 0)
        return;
    ShapeStyle style;
    style.look = ELook::Stroke;
    style.antialias = antialias;
    style.join = join;
    style.width = mScale.ThicknessToDevice(mPenSize.x);
    FillShape(*path, Grown(ToCanvas(path->GetBounds()), 12 * style.width), style, PenPaint());
}

void QLX_PainterCairo::FillPath(const PathPtr& path) {
    if (path && !path->IsEmpty())
        FillShape(*path, Grown(ToCanvas(path->GetBounds()), 0), ShapeStyle(), PenPaint());
}
