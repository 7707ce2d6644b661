// The shapes of recorded calls in SVG, and their paints.

#include <algorithm>
#include <cmath>

#include "qlx/imaging/qlx_painterstate.h"
#include "qlx/imaging/qlx_path.h"
#include "qlx/imaging/qlx_recordingtable.h"
#include "qlx/imaging/qlx_svgwriter.h"

namespace {

[[nodiscard]] std::string Number(double value) { return QLX_SVGNumber(value); }

[[nodiscard]] CRGBColor Inverted(const CRGBColor& color) noexcept {
    constexpr unsigned short kMost = CRGBColor::kMaximum;
    return {static_cast<unsigned short>(kMost - color.GetRed()),
            static_cast<unsigned short>(kMost - color.GetGreen()),
            static_cast<unsigned short>(kMost - color.GetBlue()), color.GetAlpha()};
}

// A rectangle with elliptic corners, clockwise.
[[nodiscard]] std::string RoundRectData(double left, double top, double right, double bottom,
                                        double rx, double ry, bool topOnly) {
    if (right <= left || bottom <= top)
        return "";
    rx = std::clamp(rx, 0.0, (right - left) / 2);
    ry = std::clamp(ry, 0.0, (bottom - top) / 2);
    const bool round = rx > 0 && ry > 0;
    const auto corner = [&](bool wanted, double x, double y, double turnX, double turnY) {
        if (!round || !wanted) // straight to the corner itself
            return "L" + Number(turnX) + " " + Number(turnY);
        return "A" + Number(rx) + " " + Number(ry) + " 0 0 1 " + Number(x) + " " + Number(y);
    };
    const double in = round ? rx : 0, down = round ? ry : 0;
    const double low = topOnly ? 0 : in, up = topOnly ? 0 : down;
    return "M" + Number(left) + " " + Number(top + down) + corner(true, left + in, top, left, top) +
           "H" + Number(right - in) + corner(true, right, top + down, right, top) + "V" +
           Number(bottom - up) + corner(!topOnly, right - low, bottom, right, bottom) + "H" +
           Number(left + low) + corner(!topOnly, left, bottom - up, left, bottom) + "Z";
}

[[nodiscard]] std::string PathData(const QLX_Path& path) {
    std::string data;
    for (const QLX_Path::Element& element : path.GetElements()) {
        data += data.empty() ? "" : " ";
        data += "MLCZ"[int(element.verb)];
        const int points = element.verb == QLX_Path::EVerb::Curve   ? 3
                           : element.verb == QLX_Path::EVerb::Close ? 0
                                                                    : 1;
        for (int i = 0; i < points; ++i)
            data += ' ' + Number(element.points[i].x) + ' ' + Number(element.points[i].y);
    }
    return data;
}

} // namespace

// Paints

// The cell lies fixed to the window's corner, whatever the origin.
std::string QLX_SVGWriter::PatternOf(const QLX_RecordedState& state) {
    const double factor = mRecording.GetScale().GetFactor();
    const double square = std::max(1, int(std::lround(factor))) / factor, side = 8 * square;
    const bool fills = state.penMode == kPenMode_Copy || state.penMode == kPenMode_NotCopy;
    const double alpha = state.alpha * mLook.opacity;
    const auto paint = [&](const CRGBColor& color) {
        return Paint("fill", mLook.inverted ? Inverted(color) : color, alpha);
    };
    return Defined("pattern", "<pattern patternUnits=\"userSpaceOnUse\"",
                   Attribute("x", std::fmod(state.origin.x, side)) +
                       Attribute("y", std::fmod(state.origin.y, side)) + Attribute("width", side) +
                       Attribute("height", side) + ">" +
                       QLX_PatternTile(state.penPattern, square, paint(state.foreground),
                                       fills ? paint(state.background) : std::string()) +
                       "</pattern>");
}

std::string QLX_SVGWriter::PenPaint(const char* what, const Call& call) {
    if (mLook.isPatterned)
        return Attribute(what, "url(#" + PatternOf(call.state) + ")");
    const CRGBColor& color = call.state.foreground;
    return Paint(what, mLook.inverted ? Inverted(color) : color, call.state.alpha * mLook.opacity);
}

std::string QLX_SVGWriter::Fill(const Call& call) { return PenPaint("fill", call); }

std::string QLX_SVGWriter::Stroke(const Call& call) {
    return " fill=\"none\"" + PenPaint("stroke", call) +
           Attribute("stroke-width", call.state.penSize.x);
}

// The Optimized family's colours, of which one kind of blending ignores the alpha.
std::string QLX_SVGWriter::FamilyPaint(const Call& call, CRGBColor color, int blend) {
    if (blend == QLX_Painter::kAlphaBlend_Ignore)
        color.SetAlpha(CRGBColor::kMaximum);
    return Paint("fill", color, call.state.alpha);
}

// Shapes

// Shapes with elliptic corners, filled, or framed inside their rectangle.
std::string QLX_SVGWriter::Round(const Call& call, double rx, double ry, bool topOnly, bool frame,
                                 const std::string& paint) {
    const Cmn_Rect<int>& rect = R(call);
    std::string data = RoundRectData(rect.left, rect.top, rect.right, rect.bottom, rx, ry, topOnly);
    const Cmn_Point<short> pen = call.state.penSize;
    if (data.empty() || (frame && pen.x <= 0 && pen.y <= 0))
        return "";
    if (frame)
        data += RoundRectData(double(rect.left) + pen.x, double(rect.top) + pen.y,
                              double(rect.right) - pen.x, double(rect.bottom) - pen.y,
                              std::min(rx, rect.GetWidth() / 2.0) - pen.x,
                              std::min(ry, rect.GetHeight() / 2.0) - pen.y, topOnly);
    return "<path fill-rule=\"evenodd\"" + Attribute("d", data) + paint + "/>";
}

std::string QLX_SVGWriter::Rects(const QLX_Region& region, const std::string& paint) {
    std::string out;
    for (const Cmn_Rect<int>& rect : region.GetRectList())
        out += "<rect" + RectAttributes(rect) + paint + "/>";
    return out;
}

std::string QLX_SVGWriter::Points(const Cmn_Polygon<int>& polygon) {
    std::string points;
    for (const Cmn_Point<int>& point : polygon)
        points += (points.empty() ? "" : " ") + Number(point.x) + "," + Number(point.y);
    return Attribute("points", points);
}

std::string QLX_SVGWriter::Shape(const Call& call) {
    switch (call.call) {
    case EPainterCall::FillRect:
        return "<rect" + RectAttributes(R(call)) + Fill(call) + "/>";
    case EPainterCall::DrawRect:
        return Round(call, 0, 0, false, /*frame*/ true, Fill(call));
    case EPainterCall::FillRoundRect:
    case EPainterCall::DrawRoundRect:
        return Round(call, Get<int>(call, 1), Get<int>(call, 2), Get<bool>(call, 4),
                     call.call == EPainterCall::DrawRoundRect, Fill(call));
    case EPainterCall::FillOval:
    case EPainterCall::DrawOval:
        return Round(call, R(call).GetWidth(), R(call).GetHeight(), false,
                     call.call == EPainterCall::DrawOval, Fill(call));
    case EPainterCall::DrawArc: {
        QLX_Path path;
        path.AddArc(R(call), float(Get<int>(call, 1)), float(Get<int>(call, 2)));
        return "<path" + Attribute("d", PathData(path)) + Stroke(call) + "/>";
    }
    case EPainterCall::FillPolygon:
        return "<polygon fill-rule=\"evenodd\"" + Points(Get<Cmn_Polygon<int>>(call, 0)) +
               Fill(call) + "/>";
    case EPainterCall::DrawPolygon:
        return (Get<bool>(call, 1) ? "<polygon" : "<polyline") +
               Points(Get<Cmn_Polygon<int>>(call, 0)) + Stroke(call) + "/>";
    case EPainterCall::FillPath:
        return "<path" + Attribute("d", PathData(*Get<QLX_Painter::PathPtr>(call, 0))) +
               Fill(call) + "/>";
    case EPainterCall::DrawPath:
        return "<path" + Attribute("d", PathData(*Get<QLX_Painter::PathPtr>(call, 0))) +
               Stroke(call) + "/>";
    case EPainterCall::FillRegion:
        return Rects(Get<QLX_Region>(call, 0), Fill(call));
    case EPainterCall::DrawRegion:
        return Rects(QLX_PainterState::GetFrame(Get<QLX_Region>(call, 0), call.state.penSize),
                     Fill(call));
    case EPainterCall::LineTo:
    case EPainterCall::LineOfLength:
        return Line(call);
    default:
        return OtherShape(call);
    }
}

std::string QLX_SVGWriter::OtherShape(const Call& call) {
    const auto background = [&] { return Paint("fill", call.state.background, call.state.alpha); };
    constexpr const char* kWhite = " fill=\"#FFFFFF\""; // the difference to it inverts
    switch (call.call) {
    case EPainterCall::EraseRect:
        return "<rect" + RectAttributes(R(call)) + background() + "/>";
    case EPainterCall::EraseRoundRect:
        return Round(call, Get<int>(call, 1), Get<int>(call, 2), false, /*frame*/ false,
                     background());
    case EPainterCall::EraseRegion:
        return Rects(Get<QLX_Region>(call, 0), background());
    case EPainterCall::BlendRect:
        return "<rect" + RectAttributes(R(call)) +
               Paint("fill", Get<CRGBColor>(call, 1), call.state.alpha) + "/>";
    case EPainterCall::BlendRegion:
        return Rects(Get<QLX_Region>(call, 0),
                     Paint("fill", Get<CRGBColor>(call, 1), call.state.alpha));
    case EPainterCall::InvertRect:
        return "<rect" + RectAttributes(R(call)) + kWhite + "/>";
    case EPainterCall::InvertRegion:
        return Rects(Get<QLX_Region>(call, 0), kWhite);
    case EPainterCall::HighlightRect:
    case EPainterCall::HighlightRegion: {
        const CRGBColor* given = std::get_if<CRGBColor>(&call.arguments[1]);
        const std::string paint = Paint("fill", given ? *given : call.state.highlight, 1);
        return call.call == EPainterCall::HighlightRect
                   ? "<rect" + RectAttributes(R(call)) + paint + "/>"
                   : Rects(Get<QLX_Region>(call, 0), paint);
    }
    case EPainterCall::OptimizedFillRect:
        return "<rect" + RectAttributes(R(call)) +
               FamilyPaint(call, Get<CRGBColor>(call, 1), Get<int>(call, 2)) + "/>";
    case EPainterCall::OptimizedFillRoundRect:
        return Round(call, Get<int>(call, 1), Get<int>(call, 1), false, /*frame*/ false,
                     FamilyPaint(call, Get<CRGBColor>(call, 2), Get<int>(call, 3)));
    case EPainterCall::OptimizedVerticalLine:
    case EPainterCall::OptimizedHorizontalLine: {
        const int a = Get<int>(call, 0), b = Get<int>(call, 1), c = Get<int>(call, 2);
        const Cmn_Rect<int> rect = call.call == EPainterCall::OptimizedVerticalLine
                                       ? Cmn_Rect<int>(a, b, Cmn_SaturatingAdd(a, 1), c)
                                       : Cmn_Rect<int>(a, c, b, Cmn_SaturatingAdd(c, 1));
        return "<rect" + RectAttributes(rect) +
               Paint("fill", Get<CRGBColor>(call, 3), call.state.alpha) + "/>";
    }
    case EPainterCall::OptimizedWaveformFill:
        return Waveform(call);
    case EPainterCall::OptimizedWaveformOutline:
        return Outline(call);
    case EPainterCall::CopyCanvas:
        return Copied(call);
    case EPainterCall::ScrollCanvas:
        return Scrolled(call);
    default:
        return TextOrImage(call);
    }
}

// The pen hangs below and to the right of the line; level and upright lines are rectangles.
std::string QLX_SVGWriter::Line(const Call& call) {
    const double x = call.state.penPlace.x, y = call.state.penPlace.y;
    const bool to = call.call == EPainterCall::LineTo;
    const double unit = UnitOf(call);
    const double toX = to ? double(Get<float>(call, 0)) * unit : x + Get<int>(call, 0) * unit;
    const double toY = to ? double(Get<float>(call, 1)) * unit : y + Get<int>(call, 1) * unit;
    const bool includeEnd = Get<bool>(call, 2);
    double across = call.state.penSize.x * unit, down = call.state.penSize.y * unit;
    if (to && Get<float>(call, 4) > 0)
        across = down = double(Get<float>(call, 4)) * unit;
    if (across <= 0 || down <= 0 || (x == toX && y == toY && !includeEnd))
        return "";
    if (x == toX || y == toY) {
        const double endX = includeEnd || x == toX ? 0 : across;
        const double endY = includeEnd || y == toY ? 0 : down;
        return "<rect" + Attribute("x", std::min(x, toX) + (toX < x ? endX : 0)) +
               Attribute("y", std::min(y, toY) + (toY < y ? endY : 0)) +
               Attribute("width", std::abs(toX - x) + across - endX) +
               Attribute("height", std::abs(toY - y) + down - endY) + Fill(call) + "/>";
    }
    const double width = std::max(across, down);
    return "<line" + Attribute("x1", x + width / 2) + Attribute("y1", y + width / 2) +
           Attribute("x2", toX + width / 2) + Attribute("y2", toY + width / 2) +
           PenPaint("stroke", call) + Attribute("stroke-width", width) +
           (includeEnd ? " stroke-linecap=\"square\"/>" : "/>");
}

std::string QLX_SVGWriter::Lines(const Call& call) const {
    const bool vertical = call.call == EPainterCall::OptimizedVerticalLines ||
                          call.call == EPainterCall::OptimizedIdenticalVerticalLines;
    const bool identical = call.call == EPainterCall::OptimizedIdenticalVerticalLines ||
                           call.call == EPainterCall::OptimizedIdenticalHorizontalLines;
    if (!vertical && !identical && call.call != EPainterCall::OptimizedHorizontalLines)
        return "";
    const QLX_RecordedNumbers& places = Get<QLX_RecordedNumbers>(call, 1);
    const auto& colors = Get<std::vector<CRGBColor>>(call, identical ? 3 : 5);
    if (!places || colors.empty())
        return "";
    const std::size_t blendPlace =
        std::string_view(QLX_GetCallEntry(call.call).arguments).find('a');
    const int blend = blendPlace != std::string_view::npos ? Get<int>(call, blendPlace)
                                                           : int(QLX_Painter::kAlphaBlend_Over);
    const int offset =
        call.call == EPainterCall::OptimizedIdenticalVerticalLines ? Get<int>(call, 9) : 0;
    std::string out;
    for (std::size_t i = 0; i < places->size(); ++i) {
        int from, to, thickness = 1;
        std::size_t color = std::min(i, colors.size() - 1);
        if (identical) {
            from = Get<int>(call, 4);
            to = Get<int>(call, 5);
            thickness = Get<int>(call, 6);
            const QLX_RecordedNumbers& indexes = Get<QLX_RecordedNumbers>(call, 2);
            color = indexes && i < indexes->size() ? std::size_t((*indexes)[i]) : 0;
        } else {
            const auto& starts = Get<QLX_RecordedNumbers>(call, 2);
            const auto& ends = Get<QLX_RecordedNumbers>(call, 3);
            const auto& widths = Get<QLX_RecordedNumbers>(call, 4);
            if (!starts || !ends || i >= starts->size() || i >= ends->size())
                break;
            from = (*starts)[i];
            to = (*ends)[i];
            thickness = widths && i < widths->size() ? (*widths)[i] : 1;
        }
        if (color >= colors.size())
            continue;
        const int place = Cmn_SaturatingAdd((*places)[i], offset);
        const int beyond = Cmn_SaturatingAdd(place, thickness);
        const Cmn_Rect<int> rect = vertical ? Cmn_Rect<int>(place, from, beyond, to)
                                            : Cmn_Rect<int>(from, place, to, beyond);
        out += "<rect" + RectAttributes(rect) + FamilyPaint(call, colors[color], blend) + "/>";
    }
    return out;
}

std::string QLX_SVGWriter::Waveform(const Call& call) const {
    const auto& minima = Get<QLX_RecordedNumbers>(call, 2);
    const auto& maxima = Get<QLX_RecordedNumbers>(call, 3);
    if (!minima || !maxima)
        return "";
    const double width = Get<int>(call, 10);
    std::string data;
    for (std::size_t i = 0; i < std::min(minima->size(), maxima->size()); ++i) {
        if ((*minima)[i] > (*maxima)[i])
            continue;
        const double offset = Get<int>(call, 4);
        const double top = std::max<double>(Get<int>(call, 5), (*minima)[i] + offset);
        const double bottom = std::min<double>(Get<int>(call, 6), (*maxima)[i] + offset + 1);
        data += "M" + Number(Get<int>(call, 0) + double(i) * width) + " " + Number(top) + "h" +
                Number(width) + "V" + Number(bottom) + "h" + Number(-width) + "Z";
    }
    return "<path" + Attribute("d", data) +
           Paint("fill", Get<CRGBColor>(call, 7), call.state.alpha) + "/>";
}

std::string QLX_SVGWriter::Outline(const Call& call) const {
    const auto& ys = Get<QLX_RecordedNumbers>(call, 2);
    if (!ys)
        return "";
    std::string points;
    for (std::size_t i = 0; i < ys->size(); ++i)
        points += (i ? " " : "") + Number(Get<int>(call, 0) + double(i) + 0.5) + "," +
                  Number((*ys)[i] + double(Get<int>(call, 3)) + 0.5);
    return "<polyline fill=\"none\"" + Attribute("points", points) +
           Paint("stroke", Get<CRGBColor>(call, 7), call.state.alpha) +
           Attribute("stroke-width", Get<int>(call, 10)) + "/>";
}
