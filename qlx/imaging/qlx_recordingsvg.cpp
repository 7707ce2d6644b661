// Recordings as SVG, for looking at in a browser or in a review.

#include <algorithm>
#include <charconv>

#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_path.h"
#include "qlx/imaging/qlx_recording.h"
#include "qlx/imaging/qlx_textlayout.h"
#include "qlx/imaging/qlx_utf8.h"

namespace {

[[nodiscard]] std::string Number(double value) {
    char digits[40];
    return {digits, std::to_chars(digits, digits + sizeof digits, float(value)).ptr};
}

[[nodiscard]] std::string Attribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + value + "\"";
}
[[nodiscard]] std::string Attribute(const char* name, double value) {
    return Attribute(name, Number(value));
}

// What XML 1.0 has no character for becomes U+FFFD; a reader would refuse the whole file.
[[nodiscard]] std::string Escaped(std::string_view text) {
    std::string out;
    for (std::size_t place = 0; place < text.size();) {
        const std::size_t begin = place;
        const char32_t code = QLX_NextCodePoint(text, place);
        if (code == '&')
            out += "&amp;";
        else if (code == '<')
            out += "&lt;";
        else if (code == '"')
            out += "&quot;";
        else if (code < 0x20)
            out += ' ';
        else if (code == kReplacementCharacter || code == 0xFFFE || code == 0xFFFF)
            out += "\xEF\xBF\xBD";
        else
            out += text.substr(begin, place - begin);
    }
    return out;
}

[[nodiscard]] std::string Base64(std::string_view bytes) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string out;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group =
                group << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0U);
        for (std::size_t k = 0; k < 4; ++k)
            out += i + k <= bytes.size() ? kDigits[group >> (18 - 6 * k) & 63] : '=';
    }
    return out;
}

[[nodiscard]] std::string RectAttributes(const Cmn_Rect<int>& rect) {
    return Attribute("x", rect.left) + Attribute("y", rect.top) +
           Attribute("width", std::max(0, rect.GetWidth())) +
           Attribute("height", std::max(0, rect.GetHeight()));
}

[[nodiscard]] std::string Paint(const char* what, const CRGBColor& color, double alpha) {
    CRGBColor opaque = color;
    opaque.SetAlpha(CRGBColor::kMaximum);
    std::string out = Attribute(what, QLX_Theme::FormatColor(opaque));
    const double opacity = alpha * color.GetAlpha() / CRGBColor::kMaximum;
    if (opacity < 1)
        out += Attribute((std::string(what) + "-opacity").c_str(), opacity);
    return out;
}

[[nodiscard]] const char* BlendModeOf(EPenMode mode) noexcept {
    switch (mode) {
    case kPenMode_Xor:
    case kPenMode_NotXor:
        return "difference";
    case kPenMode_Or:
    case kPenMode_NotOr:
    case kPenMode_Maximum:
        return "lighten";
    case kPenMode_Bic:
    case kPenMode_NotBic:
    case kPenMode_Minimum:
    case kPenMode_Subtract:
        return "darken";
    case kPenMode_Add:
        return "screen";
    default:
        return nullptr;
    }
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

// Writes one recording. Every canvas is a group of its own; the first is shown, the others where
// CopyCanvas uses them.
class Writer {
  public:
    explicit Writer(const QLX_Recording& recording) : mRecording(recording) {}

    std::string Write() {
        for (const QLX_RecordedCall& call : mRecording.GetCalls())
            if (QLX_Recording::IsDrawing(call.call))
                WriteCall(call);
        const std::string size =
            Attribute("width", mRecording.GetWidth()) + Attribute("height", mRecording.GetHeight());
        std::string out = "<svg xmlns=\"http://www.w3.org/2000/svg\" "
                          "xmlns:xlink=\"http://www.w3.org/1999/xlink\"" +
                          size + ">\n";
        if (!mDefinitions.empty())
            out += "<defs>\n" + mDefinitions + "</defs>\n";
        return out + "<rect" + size + " fill=\"#FFFFFF\"/>\n" + mCanvases[0] + "</svg>\n";
    }

  private:
    using Call = QLX_RecordedCall;

    template <class T>
    [[nodiscard]] static const T& Get(const Call& call, std::size_t i) {
        return std::get<T>(call.arguments[i]);
    }
    [[nodiscard]] static const Cmn_Rect<int>& R(const Call& call, std::size_t i = 0) {
        return Get<Cmn_Rect<int>>(call, i);
    }

    void WriteCall(const Call& call) {
        const std::string shape = Shape(call);
        if (shape.empty())
            return;
        const QLX_RecordedState& state = call.state;
        std::string group;
        if (state.origin != Cmn_Point<int>())
            group += Attribute("transform", "translate(" + Number(-double(state.origin.x)) + " " +
                                                Number(-double(state.origin.y)) + ")");
        if (state.clipped)
            group += Attribute("clip-path", "url(#" + ClipName(state.clip) + ")");
        if (const char* blend = BlendModeOf(state.penMode))
            group += Attribute("style", std::string("mix-blend-mode:") + blend);
        std::string& canvas = mCanvases[call.canvas];
        canvas += group.empty() ? shape + "\n" : "<g" + group + ">" + shape + "</g>\n";
    }

    [[nodiscard]] std::string ClipName(const QLX_Region& clip) {
        const std::string name = "clip" + std::to_string(++mLastClip);
        mDefinitions += "<clipPath id=\"" + name + "\">";
        for (const Cmn_Rect<int>& rect : clip.GetRectList())
            mDefinitions += "<rect" + RectAttributes(rect) + "/>";
        mDefinitions += "</clipPath>\n";
        return name;
    }

    [[nodiscard]] static std::string Fill(const Call& call) {
        return Paint("fill", call.state.foreground, call.state.alpha);
    }
    [[nodiscard]] static std::string Stroke(const Call& call) {
        return " fill=\"none\"" + Paint("stroke", call.state.foreground, call.state.alpha) +
               Attribute("stroke-width", call.state.penSize.x);
    }
    // The middle line of a frame that is drawn inside its rectangle.
    [[nodiscard]] static std::string FrameAttributes(const Call& call, const Cmn_Rect<int>& rect) {
        const double pen = call.state.penSize.x;
        return Attribute("x", rect.left + pen / 2) + Attribute("y", rect.top + pen / 2) +
               Attribute("width", std::max(0.0, rect.GetWidth() - pen)) +
               Attribute("height", std::max(0.0, rect.GetHeight() - pen));
    }
    [[nodiscard]] static std::string Ellipse(const Cmn_Rect<int>& rect, double inset) {
        return "<ellipse" + Attribute("cx", (double(rect.left) + rect.right) / 2) +
               Attribute("cy", (double(rect.top) + rect.bottom) / 2) +
               Attribute("rx", std::max(0.0, rect.GetWidth() / 2.0 - inset)) +
               Attribute("ry", std::max(0.0, rect.GetHeight() / 2.0 - inset));
    }
    [[nodiscard]] static std::string Rects(const QLX_Region& region, const std::string& paint) {
        std::string out;
        for (const Cmn_Rect<int>& rect : region.GetRectList())
            out += "<rect" + RectAttributes(rect) + paint + "/>";
        return out;
    }
    [[nodiscard]] static std::string Points(const Cmn_Polygon<int>& polygon) {
        std::string points;
        for (const Cmn_Point<int>& point : polygon)
            points += (points.empty() ? "" : " ") + Number(point.x) + "," + Number(point.y);
        return Attribute("points", points);
    }

    [[nodiscard]] std::string Shape(const Call& call) {
        switch (call.call) {
        case EPainterCall::FillRect:
            return "<rect" + RectAttributes(R(call)) + Fill(call) + "/>";
        case EPainterCall::DrawRect:
            return "<rect" + FrameAttributes(call, R(call)) + Stroke(call) + "/>";
        case EPainterCall::FillRoundRect:
        case EPainterCall::DrawRoundRect: {
            const bool fill = call.call == EPainterCall::FillRoundRect;
            return "<rect" + (fill ? RectAttributes(R(call)) : FrameAttributes(call, R(call))) +
                   Attribute("rx", Get<int>(call, 1)) + Attribute("ry", Get<int>(call, 2)) +
                   (fill ? Fill(call) : Stroke(call)) + "/>";
        }
        case EPainterCall::FillOval:
            return Ellipse(R(call), 0) + Fill(call) + "/>";
        case EPainterCall::DrawOval:
            return Ellipse(R(call), call.state.penSize.x / 2.0) + Stroke(call) + "/>";
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
            return Rects(Get<QLX_Region>(call, 0), Stroke(call));
        case EPainterCall::LineTo:
        case EPainterCall::LineOfLength:
            return Line(call);
        default:
            return OtherShape(call);
        }
    }

    [[nodiscard]] std::string OtherShape(const Call& call) {
        const auto background = [&] {
            return Paint("fill", call.state.background, call.state.alpha);
        };
        constexpr const char* kDifference = " fill=\"#FFFFFF\" style=\"mix-blend-mode:difference\"";
        switch (call.call) {
        case EPainterCall::EraseRect:
            return "<rect" + RectAttributes(R(call)) + background() + "/>";
        case EPainterCall::EraseRoundRect:
            return "<rect" + RectAttributes(R(call)) + Attribute("rx", Get<int>(call, 1)) +
                   Attribute("ry", Get<int>(call, 2)) + background() + "/>";
        case EPainterCall::EraseRegion:
            return Rects(Get<QLX_Region>(call, 0), background());
        case EPainterCall::BlendRect:
            return "<rect" + RectAttributes(R(call)) +
                   Paint("fill", Get<CRGBColor>(call, 1), call.state.alpha) + "/>";
        case EPainterCall::BlendRegion:
            return Rects(Get<QLX_Region>(call, 0),
                         Paint("fill", Get<CRGBColor>(call, 1), call.state.alpha));
        case EPainterCall::InvertRect:
            return "<rect" + RectAttributes(R(call)) + kDifference + "/>";
        case EPainterCall::InvertRegion:
            return Rects(Get<QLX_Region>(call, 0), kDifference);
        case EPainterCall::HighlightRect:
        case EPainterCall::HighlightRegion: {
            const CRGBColor* given = std::get_if<CRGBColor>(&call.arguments[1]);
            const std::string paint =
                Paint("fill", given ? *given : call.state.highlight, call.state.alpha) +
                " style=\"mix-blend-mode:multiply\"";
            return call.call == EPainterCall::HighlightRect
                       ? "<rect" + RectAttributes(R(call)) + paint + "/>"
                       : Rects(Get<QLX_Region>(call, 0), paint);
        }
        case EPainterCall::OptimizedFillRect:
        case EPainterCall::OptimizedFillRoundRect: {
            const bool round = call.call == EPainterCall::OptimizedFillRoundRect;
            return "<rect" + RectAttributes(R(call)) +
                   (round ? Attribute("rx", Get<int>(call, 1)) : "") +
                   Paint("fill", Get<CRGBColor>(call, round ? 2 : 1), call.state.alpha) + "/>";
        }
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
        default:
            return TextOrImage(call);
        }
    }

    [[nodiscard]] std::string TextOrImage(const Call& call) {
        switch (call.call) {
        case EPainterCall::DrawString:
            return Text(call, Get<std::string>(call, 0), call.state.penPlace.x,
                        call.state.penPlace.y);
        case EPainterCall::DrawChar:
            return Text(call, std::string(1, static_cast<char>(Get<int>(call, 0))),
                        call.state.penPlace.x, call.state.penPlace.y);
        case EPainterCall::DrawStringJustified:
        case EPainterCall::DrawTextBox:
        case EPainterCall::DrawSingleLineTextBox:
            return TextBox(call);
        case EPainterCall::DrawImage:
            return Image(Get<QLX_RecordedImage>(call, 0), R(call, 1));
        case EPainterCall::OptimizedCopyPixelsFromOffscreen:
            return Image(Get<QLX_RecordedImage>(call, 0), R(call, 1));
        case EPainterCall::DrawImagePortion:
        case EPainterCall::OptimizedDrawImage:
            return Portion(Get<QLX_RecordedImage>(call, 0), R(call, 1), R(call, 2));
        case EPainterCall::OptimizedDrawImageRow:
        case EPainterCall::OptimizedDrawImages:
            return ManyImages(call);
        case EPainterCall::OptimizedDrawBackgroundImage:
            return NineParts(call);
        case EPainterCall::DrawIcon: {
            const auto& images = Get<std::vector<QLX_RecordedImage>>(call, 0);
            return images.empty() ? "" : Image(images.back(), R(call, 1));
        }
        default:
            return Lines(call);
        }
    }

    [[nodiscard]] std::string Line(const Call& call) const {
        double toX, toY, width = call.state.penSize.x;
        if (call.call == EPainterCall::LineTo) {
            toX = Get<float>(call, 0);
            toY = Get<float>(call, 1);
            if (Get<float>(call, 4) > 0)
                width = Get<float>(call, 4);
        } else {
            toX = call.state.penPlace.x + double(Get<int>(call, 0));
            toY = call.state.penPlace.y + double(Get<int>(call, 1));
        }
        return "<line" + Attribute("x1", call.state.penPlace.x + width / 2) +
               Attribute("y1", call.state.penPlace.y + width / 2) +
               Attribute("x2", toX + width / 2) + Attribute("y2", toY + width / 2) +
               Paint("stroke", call.state.foreground, call.state.alpha) +
               Attribute("stroke-width", width) + "/>";
    }

    [[nodiscard]] std::string Lines(const Call& call) const {
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
            out += "<rect" + RectAttributes(rect) + Paint("fill", colors[color], call.state.alpha) +
                   "/>";
        }
        return out;
    }

    [[nodiscard]] std::string Waveform(const Call& call) const {
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

    [[nodiscard]] std::string Outline(const Call& call) const {
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

    [[nodiscard]] std::string Text(const Call& call, std::string_view text, double x,
                                   double y) const {
        const QLX_Font& font = call.state.font;
        std::string out = "<text xml:space=\"preserve\"" + Attribute("x", x) + Attribute("y", y) +
                          Attribute("font-family", Escaped(font.GetFamily())) +
                          Attribute("font-size", font.GetSize());
        if (font.IsBold())
            out += " font-weight=\"bold\"";
        if (font.IsItalic())
            out += " font-style=\"italic\"";
        if (font.IsUnderlined())
            out += " text-decoration=\"underline\"";
        return out + Fill(call) + ">" + Escaped(text) + "</text>";
    }

    [[nodiscard]] std::string TextBox(const Call& call) {
        Cmn_Rect<int> rect = R(call);
        const std::string& text = Get<std::string>(call, 1);
        const bool box = call.call == EPainterCall::DrawTextBox;
        const bool single = call.call == EPainterCall::DrawSingleLineTextBox;
        const auto justification =
            single ? QLX_Painter::kJustify_Left : QLX_Painter::EJustification(Get<int>(call, 2));
        mLayout.LayOut(text, call.state.font, float(rect.GetWidth()),
                       box && Get<bool>(call, 3) ? QLX_Painter::kWrap_Word
                                                 : QLX_Painter::kWrap_None);
        const bool ellipsis = box ? Get<bool>(call, 4) : single && Get<bool>(call, 2);
        const int vertical = box      ? QLX_Painter::kJustify_Top
                             : single ? QLX_Painter::kJustify_Middle
                                      : Get<int>(call, 3);
        if (vertical != QLX_Painter::kJustify_Top) {
            const std::int64_t room = std::int64_t{rect.GetHeight()} - mLayout.GetLineHeight();
            rect.top = Cmn_ClampTo<int>(
                rect.top + (vertical == QLX_Painter::kJustify_Middle ? room / 2 : room));
            rect.bottom = Cmn_SaturatingAdd(rect.top, mLayout.GetLineHeight());
        }
        mLayout.Place(rect, justification, ellipsis);
        std::string out;
        if (box && Get<bool>(call, 6))
            out += "<rect" + RectAttributes(rect) +
                   Paint("fill", call.state.background, call.state.alpha) + "/>";
        for (const QLX_TextLayout::Placed& line : mLayout.GetPlaced())
            out += Text(call, line.text, line.x, line.baseline);
        return out;
    }

    [[nodiscard]] std::string Image(QLX_RecordedImage number, const Cmn_Rect<int>& rect) const {
        const QLX_Painter::ImagePtr image = mRecording.GetImage(number);
        if (!image)
            return "";
        if (!QLX_ImageCodec::Get()) // no way to pack the pixels: show where they go
            return "<rect fill=\"none\" stroke=\"#FF00FF\"" + RectAttributes(rect) + "/>";
        return "<image preserveAspectRatio=\"none\"" + RectAttributes(rect) +
               Attribute("xlink:href", "data:image/png;base64," + Base64(image->ToPNG())) + "/>";
    }

    // Part of an image: a window onto the whole of it.
    [[nodiscard]] std::string Portion(QLX_RecordedImage number, const Cmn_Rect<int>& source,
                                      const Cmn_Rect<int>& rect) const {
        const QLX_Painter::ImagePtr image = mRecording.GetImage(number);
        if (!image || source.Empty() || rect.Empty())
            return "";
        if (source == image->GetBounds())
            return Image(number, rect);
        return "<svg preserveAspectRatio=\"none\"" + RectAttributes(rect) +
               Attribute("viewBox", Number(source.left) + " " + Number(source.top) + " " +
                                        Number(source.GetWidth()) + " " +
                                        Number(source.GetHeight())) +
               ">" + Image(number, image->GetBounds()) + "</svg>";
    }

    [[nodiscard]] std::string ManyImages(const Call& call) const {
        const bool row = call.call == EPainterCall::OptimizedDrawImageRow;
        const QLX_RecordedNumbers& xs = Get<QLX_RecordedNumbers>(call, row ? 2 : 3);
        std::string out;
        for (std::size_t i = 0; xs && i < xs->size(); ++i) {
            QLX_RecordedImage number;
            int y = 0;
            if (row) {
                number = Get<QLX_RecordedImage>(call, 0);
                y = Get<int>(call, 3);
            } else {
                const auto& images = Get<std::vector<QLX_RecordedImage>>(call, 0);
                const QLX_RecordedNumbers& which = Get<QLX_RecordedNumbers>(call, 2);
                const QLX_RecordedNumbers& ys = Get<QLX_RecordedNumbers>(call, 4);
                if (!which || !ys || i >= which->size() || i >= ys->size())
                    break;
                if ((*which)[i] < 0 || std::size_t((*which)[i]) >= images.size())
                    continue;
                number = images[std::size_t((*which)[i])];
                y = (*ys)[i];
            }
            if (const QLX_Painter::ImagePtr image = mRecording.GetImage(number))
                out += Image(number, {(*xs)[i], y, Cmn_SaturatingAdd((*xs)[i], image->GetWidth()),
                                      Cmn_SaturatingAdd(y, image->GetHeight())});
        }
        return out;
    }

    [[nodiscard]] std::string NineParts(const Call& call) const {
        const auto number = Get<QLX_RecordedImage>(call, 0);
        const QLX_Painter::ImagePtr image = mRecording.GetImage(number);
        const int width = Get<int>(call, 1), height = Get<int>(call, 2);
        if (!image || width <= 0 || height <= 0)
            return "";
        const int room = std::min({image->GetWidth(), image->GetHeight(), width, height}) / 2;
        const int edge = std::clamp(Get<int>(call, 3), 0, room);
        const int fromX[] = {0, edge, image->GetWidth() - edge, image->GetWidth()};
        const int fromY[] = {0, edge, image->GetHeight() - edge, image->GetHeight()};
        const int toX[] = {0, edge, width - edge, width}, toY[] = {0, edge, height - edge, height};
        std::string out;
        for (int row = 0; row < 3; ++row)
            for (int column = 0; column < 3; ++column)
                out +=
                    Portion(number, {fromX[column], fromY[row], fromX[column + 1], fromY[row + 1]},
                            {toX[column], toY[row], toX[column + 1], toY[row + 1]});
        return out;
    }

    [[nodiscard]] std::string Copied(const Call& call) {
        const int number = Get<QLX_RecordedCanvas>(call, 0).number;
        if (number < 0 || number == call.canvas)
            return "";
        const Cmn_Rect<int>& from = R(call, 1);
        const Cmn_Rect<int>& to = R(call, 2);
        return "<svg preserveAspectRatio=\"none\"" + RectAttributes(to) +
               Attribute("viewBox", Number(from.left) + " " + Number(from.top) + " " +
                                        Number(from.GetWidth()) + " " + Number(from.GetHeight())) +
               ">" + mCanvases[number] + "</svg>";
    }

    const QLX_Recording& mRecording;
    std::map<int, std::string> mCanvases;
    std::string mDefinitions;
    int mLastClip = 0;
    QLX_TextLayout mLayout;
};

} // namespace

std::string QLX_Recording::AsSVG() const { return Writer(*this).Write(); }
