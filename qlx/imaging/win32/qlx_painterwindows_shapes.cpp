// Lines, curved shapes and texts of the Windows painters.

#include <algorithm>
#include <cmath>
#include <numbers>

#include "newfilelibs/cmn/cmn_polygon.h"
#include "qlx/imaging/win32/qlx_winedit.h"
#include "qlx/imaging/win32/qlx_winfonts.h"

namespace {

[[nodiscard]] Cmn_Rect<int> Grown(const Cmn_Rect<int>& rect, double by) noexcept {
    const int pixels = int(std::ceil(std::min(by, 1e6))) + 1;
    return {Cmn_SaturatingAdd(rect.left, -pixels), Cmn_SaturatingAdd(rect.top, -pixels),
            Cmn_SaturatingAdd(rect.right, pixels), Cmn_SaturatingAdd(rect.bottom, pixels)};
}

// Part of an ellipse as cubic curves of at most a quarter each; angles in radians, clockwise on the
// screen from three o'clock. The control points' distance is the usual 4/3 tan(angle / 4).
void AddEllipseArc(QLX_Path& path, Cmn_Point<double> center, double rx, double ry, double start,
                   double sweep, bool join) {
    const int pieces = std::max(1, int(std::ceil(std::abs(sweep) / (std::numbers::pi / 2) - 1e-9)));
    const double step = sweep / pieces;
    const double reach = 4.0 / 3 * std::tan(step / 4);
    const auto x = [&](double value) { return float(center.x + value * rx); };
    const auto y = [&](double value) { return float(center.y + value * ry); };
    if (join)
        path.LineTo(x(std::cos(start)), y(std::sin(start)));
    else
        path.MoveTo(x(std::cos(start)), y(std::sin(start)));
    for (int i = 0; i < pieces; ++i) {
        const double from = start + i * step, to = from + step;
        const double c0 = std::cos(from), s0 = std::sin(from);
        const double c1 = std::cos(to), s1 = std::sin(to);
        path.CurveTo(x(c0 - reach * s0), y(s0 + reach * c0), x(c1 + reach * s1), y(s1 - reach * c1),
                     x(c1), y(s1));
    }
}

struct FloatRect {
    double left, top, right, bottom;
};

void AddRoundRect(QLX_Path& path, const FloatRect& r, double rx, double ry, bool topOnly) {
    if (r.right <= r.left || r.bottom <= r.top)
        return;
    rx = std::clamp(rx, 0.0, (r.right - r.left) / 2);
    ry = std::clamp(ry, 0.0, (r.bottom - r.top) / 2);
    if (rx == 0 || ry == 0)
        rx = ry = 0;
    const double lowX = topOnly ? 0 : rx, lowY = topOnly ? 0 : ry;
    const double quarter = std::numbers::pi / 2;
    const auto corner = [&](double cx, double cy, double crx, double cry, int which, bool first) {
        if (crx > 0)
            AddEllipseArc(path, {cx, cy}, crx, cry, which * quarter, quarter, !first);
        else if (first)
            path.MoveTo(float(cx), float(cy));
        else
            path.LineTo(float(cx), float(cy));
    };
    corner(r.left + rx, r.top + ry, rx, ry, 2, true);
    corner(r.right - rx, r.top + ry, rx, ry, 3, false);
    corner(r.right - lowX, r.bottom - lowY, lowX, lowY, 0, false);
    corner(r.left + lowX, r.bottom - lowY, lowX, lowY, 1, false);
    path.Close();
}

} // namespace

// Shapes

void QLX_PainterWindows::Lay(const QLX_WinShape& shape, const QLX_SpanPaint& paint) {
    const QLX_WinClip& clip = Clip();
    const Cmn_Rect<int> area = QLX_RenderedArea(shape.bounds, clip.bounds);
    if (area.Empty() || !IsValid() || mCanvas->FillShape(clip, shape, paint))
        return;
    const QLX_WinMask mask = QLX_RenderShape(shape, area);
    if (!mask.bytes)
        return;
    EditClipped(&area, 1,
                [&](const QLX_Surface& surface, const Cmn_Rect<int>& part, Cmn_Point<int> corner) {
                    QLX_MaskSpans(surface, part,
                                  mask.bytes +
                                      std::ptrdiff_t(part.top + corner.y - area.top) * mask.row +
                                      (part.left + corner.x - area.left),
                                  mask.row, QLX_Phased(paint, corner), /*paddedMask*/ false);
                });
}

// A frame is what lies between two round rectangles.
void QLX_PainterWindows::RoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY,
                                   bool topOnly, bool antialias, bool stroke,
                                   const QLX_SpanPaint& paint) {
    if (rect.Empty())
        return;
    QLX_WinShape shape;
    shape.bounds = ToCanvas(rect);
    if (!shape.bounds.Overlaps(Clip().bounds))
        return;
    shape.antialias = antialias;
    shape.evenOdd = true;
    const FloatRect outer{double(shape.bounds.left), double(shape.bounds.top),
                          double(shape.bounds.right), double(shape.bounds.bottom)};
    const double rx = std::max(0, radiusX) * mScale.GetFactor();
    const double ry = std::max(0, radiusY) * mScale.GetFactor();
    AddRoundRect(shape.path, outer, rx, ry, topOnly);
    if (stroke) {
        const double across = mScale.ThicknessToDevice(mPenSize.x);
        const double down = mScale.ThicknessToDevice(mPenSize.y);
        AddRoundRect(
            shape.path,
            {outer.left + across, outer.top + down, outer.right - across, outer.bottom - down},
            std::min(rx, (outer.right - outer.left) / 2) - across,
            std::min(ry, (outer.bottom - outer.top) / 2) - down, topOnly);
    }
    Lay(shape, paint);
}

void QLX_PainterWindows::DrawRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY,
                                       bool antialias, bool topOnly) {
    if (mPenSize.x > 0 || mPenSize.y > 0)
        RoundRect(rect, radiusX, radiusY, topOnly, antialias, true, PenPaint());
}

void QLX_PainterWindows::DrawOval(const Cmn_Rect<int>& rect) {
    if (mPenSize.x > 0 || mPenSize.y > 0)
        RoundRect(rect, rect.GetWidth(), rect.GetHeight(), false, true, true, PenPaint());
}

void QLX_PainterWindows::FillRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY,
                                       bool antialias, bool topOnly) {
    RoundRect(rect, radiusX, radiusY, topOnly, antialias, false, PenPaint());
}

void QLX_PainterWindows::FillOval(const Cmn_Rect<int>& rect, bool antialias) {
    RoundRect(rect, rect.GetWidth(), rect.GetHeight(), false, antialias, false, PenPaint());
}

void QLX_PainterWindows::EraseRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY,
                                        bool antialias) {
    RoundRect(rect, radiusX, radiusY, false, antialias, false, PlainPaint(mBackgroundColor));
}

void QLX_PainterWindows::DrawArc(const Cmn_Rect<int>& rect, int startDegrees, int sweepDegrees,
                                 bool antialias) {
    const double width = mScale.ThicknessToDevice(mPenSize.x);
    if (rect.Empty() || width == 0)
        return;
    QLX_WinShape shape;
    shape.bounds = ToCanvas(rect);
    const double rx = (double(shape.bounds.right) - shape.bounds.left - width) / 2;
    const double ry = (double(shape.bounds.bottom) - shape.bounds.top - width) / 2;
    if (rx <= 0 || ry <= 0 || sweepDegrees == 0)
        return;
    shape.stroke = true;
    shape.antialias = antialias;
    shape.width = width;
    const double degree = std::numbers::pi / 180;
    AddEllipseArc(shape.path,
                  {(double(shape.bounds.left) + shape.bounds.right) / 2,
                   (double(shape.bounds.top) + shape.bounds.bottom) / 2},
                  rx, ry, (startDegrees % 360 - 90) * degree,
                  std::clamp(sweepDegrees, -360, 360) * degree, false);
    Lay(shape, PenPaint());
}

void QLX_PainterWindows::DrawPolygon(const Cmn_Polygon<int>& polygon, bool closed, bool antialias) {
    const double width = mScale.ThicknessToDevice(mPenSize.x);
    if (polygon.size() < 2 || width == 0)
        return;
    QLX_WinShape shape;
    shape.stroke = true;
    shape.antialias = antialias;
    shape.squareCap = true;
    shape.width = width;
    shape.bounds = Grown(ToCanvas(polygon.GetBounds()), 12 * width); // mitres reach out
    for (const Cmn_Point<int>& point : polygon) {
        const Cmn_Rect<int> pixel = ToCanvas({point.x, point.y, point.x, point.y});
        shape.path.LineTo(float(pixel.left + width / 2), float(pixel.top + width / 2));
    }
    if (closed)
        shape.path.Close();
    Lay(shape, PenPaint());
}

void QLX_PainterWindows::FillPolygon(const Cmn_Polygon<int>& polygon) {
    if (polygon.size() < 3)
        return;
    QLX_WinShape shape;
    shape.evenOdd = true;
    shape.bounds = ToCanvas(polygon.GetBounds());
    for (const Cmn_Point<int>& point : polygon) {
        const Cmn_Rect<int> pixel = ToCanvas({point.x, point.y, point.x, point.y});
        shape.path.LineTo(float(pixel.left), float(pixel.top));
    }
    shape.path.Close();
    Lay(shape, PenPaint());
}

void QLX_PainterWindows::LayPath(const QLX_Path& path, QLX_WinShape& shape) {
    const double factor = mScale.GetFactor();
    for (QLX_Path::Element element : path.GetElements()) {
        for (Cmn_Point<float>& point : element.points) {
            point.x = float((double(point.x) - mWindowOrigin.x) * factor - mDeviceCorner.x);
            point.y = float((double(point.y) - mWindowOrigin.y) * factor - mDeviceCorner.y);
        }
        shape.path.Add(element);
    }
    Lay(shape, PenPaint());
}

void QLX_PainterWindows::DrawPath(const PathPtr& path, bool antialias, ELineJoin join) {
    if (!path || path->IsEmpty() || mPenSize.x == 0)
        return;
    QLX_WinShape shape;
    shape.stroke = true;
    shape.antialias = antialias;
    shape.join = join;
    shape.width = mScale.ThicknessToDevice(mPenSize.x);
    shape.bounds = Grown(ToCanvas(path->GetBounds()), 12 * shape.width);
    LayPath(*path, shape);
}

void QLX_PainterWindows::FillPath(const PathPtr& path) {
    if (!path || path->IsEmpty())
        return;
    QLX_WinShape shape;
    shape.bounds = Grown(ToCanvas(path->GetBounds()), 0);
    LayPath(*path, shape);
}

// Lines

void QLX_PainterWindows::DrawSlantedLine(Cmn_Point<double> from, Cmn_Point<double> to, int width,
                                         bool includeEnd) {
    QLX_WinShape shape;
    shape.stroke = true;
    shape.width = width;
    shape.squareCap = includeEnd;
    const double shiftX = shape.width / 2 - mDeviceCorner.x;
    const double shiftY = shape.width / 2 - mDeviceCorner.y;
    shape.path.MoveTo(float(from.x + shiftX), float(from.y + shiftY));
    shape.path.LineTo(float(to.x + shiftX), float(to.y + shiftY));
    shape.bounds = Grown(shape.path.GetBounds(), shape.width);
    Lay(shape, PenPaint());
}

// Text

double QLX_PainterWindows::DrawTextLine(std::string_view text, double x, int baseline,
                                        const Cmn_Rect<int>& limit) {
    const QLX_WinClip& clip = Clip();
    const double pixels = double(mFont.GetSize()) * mScale.GetFactor();
    QLX_WinText line;
    line.text = text;
    line.font = mFont;
    line.pixels = pixels;
    line.x = std::clamp(x, -double(1 << 24), double(1 << 24));
    line.baseline = std::clamp(baseline, -(1 << 24), 1 << 24);
    // Where glyphs may reach: an em beyond the advances on all sides.
    const double width =
        double(QLX_TextMeasure::Get().MeasureWidth(mFont, text)) * mScale.GetFactor();
    const Cmn_Rect<int> reach(Cmn_ClampTo<int>(std::int64_t(line.x - pixels)),
                              Cmn_ClampTo<int>(std::int64_t(line.baseline - 2 * pixels)),
                              Cmn_ClampTo<int>(std::int64_t(line.x + width + pixels) + 1),
                              Cmn_ClampTo<int>(std::int64_t(line.baseline + pixels) + 1));
    line.limit = limit & clip.bounds & reach;
    const QLX_SpanPaint paint = TextPaint();
    if (text.empty() || line.limit.Empty() || !IsValid() ||
        mCanvas->DrawTextLine(clip, line, paint))
        return width;
    const Cmn_Rect<int> area = line.limit;
    const QLX_WinMask mask = QLX_RenderText(line, area);
    if (!mask.bytes)
        return width;
    EditClipped(&area, 1,
                [&](const QLX_Surface& surface, const Cmn_Rect<int>& part, Cmn_Point<int> corner) {
                    QLX_MaskSpans(surface, part,
                                  mask.bytes +
                                      std::ptrdiff_t(part.top + corner.y - area.top) * mask.row +
                                      (part.left + corner.x - area.left),
                                  mask.row, paint, /*paddedMask*/ false);
                });
    return width;
}
