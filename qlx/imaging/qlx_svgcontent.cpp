// Texts, images and copied canvases of recorded calls in SVG.

#include <algorithm>

#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_svgwriter.h"

namespace {

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

} // namespace

std::string QLX_SVGWriter::TextOrImage(const Call& call) {
    switch (call.call) {
    case EPainterCall::DrawString:
        return Text(call, Get<std::string>(call, 0), call.state.penPlace.x, call.state.penPlace.y);
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
    case EPainterCall::DrawIcon:
        return Icon(call);
    default:
        return Lines(call);
    }
}

std::string QLX_SVGWriter::Text(const Call& call, std::string_view text, double x, double y) {
    const QLX_Font& font = call.state.font;
    std::string out = "<text xml:space=\"preserve\"" + Attribute("x", x) + Attribute("y", y) +
                      Attribute("font-family", QLX_SVGEscaped(font.GetFamily())) +
                      Attribute("font-size", font.GetSize());
    if (font.IsBold())
        out += " font-weight=\"bold\"";
    if (font.IsItalic())
        out += " font-style=\"italic\"";
    if (font.IsUnderlined())
        out += " text-decoration=\"underline\"";
    return out + Fill(call) + ">" + QLX_SVGEscaped(text) + "</text>";
}

std::string QLX_SVGWriter::TextBox(const Call& call) {
    Cmn_Rect<int> rect = R(call);
    const std::string& text = Get<std::string>(call, 1);
    const bool box = call.call == EPainterCall::DrawTextBox;
    const bool single = call.call == EPainterCall::DrawSingleLineTextBox;
    const auto justification =
        single ? QLX_Painter::kJustify_Left : QLX_Painter::EJustification(Get<int>(call, 2));
    mLayout.LayOut(text, call.state.font, float(rect.GetWidth()),
                   box && Get<bool>(call, 3) ? QLX_Painter::kWrap_Word : QLX_Painter::kWrap_None);
    const bool ellipsis = box ? Get<bool>(call, 4) : single && Get<bool>(call, 2);
    const int vertical = box      ? QLX_Painter::kJustify_Top
                         : single ? QLX_Painter::kJustify_Middle
                                  : Get<int>(call, 3);
    if (vertical != QLX_Painter::kJustify_Top) {
        const std::int64_t room = std::int64_t{rect.GetHeight()} - mLayout.GetLineHeight();
        rect.top = Cmn_ClampTo<int>(rect.top +
                                    (vertical == QLX_Painter::kJustify_Middle ? room / 2 : room));
        rect.bottom = Cmn_SaturatingAdd(rect.top, mLayout.GetLineHeight());
    }
    mLayout.Place(rect, justification, ellipsis);
    std::string out;
    for (const QLX_TextLayout::Placed& line : mLayout.GetPlaced())
        out += Text(call, line.text, line.x, line.baseline);
    return out;
}

std::string QLX_SVGWriter::Image(QLX_RecordedImage number, const Cmn_Rect<int>& rect) const {
    const QLX_Painter::ImagePtr image = mRecording.GetImage(number);
    if (!image)
        return "";
    if (const auto taken = mTaken.find(number.number); taken != mTaken.end())
        return View(taken->second.content, taken->second.corner.x, taken->second.corner.y,
                    image->GetWidth(), image->GetHeight(), rect);
    if (!QLX_ImageCodec::Get()) // no way to pack the pixels: show where they go
        return "<rect fill=\"none\" stroke=\"#FF00FF\"" + RectAttributes(rect) + "/>";
    return "<image preserveAspectRatio=\"none\"" + RectAttributes(rect) +
           Attribute("xlink:href", "data:image/png;base64," + Base64(image->ToPNG())) + "/>";
}

// The smallest of the pictures that is as wide as the place in pixels, else the widest.
std::string QLX_SVGWriter::Icon(const Call& call) const {
    const Cmn_Rect<int>& rect = R(call, 1);
    if (rect.Empty())
        return "";
    const double pixels = rect.GetWidth() * mRecording.GetScale().GetFactor();
    for (const auto& images = Get<std::vector<QLX_RecordedImage>>(call, 0);
         const QLX_RecordedImage& number : images) {
        const QLX_Painter::ImagePtr image = mRecording.GetImage(number);
        if (image && (image->GetWidth() >= pixels || number == images.back()))
            return Image(number, QLX_Icon::GetPlace(*image, rect));
    }
    return "";
}

// Part of an image: a window onto the whole of it.
std::string QLX_SVGWriter::Portion(QLX_RecordedImage number, const Cmn_Rect<int>& source,
                                   const Cmn_Rect<int>& rect) const {
    const QLX_Painter::ImagePtr image = mRecording.GetImage(number);
    if (!image || source.Empty() || rect.Empty())
        return "";
    if (source == image->GetBounds())
        return Image(number, rect);
    return View(Image(number, image->GetBounds()), source.left, source.top, source.GetWidth(),
                source.GetHeight(), rect);
}

std::string QLX_SVGWriter::ManyImages(const Call& call) const {
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

std::string QLX_SVGWriter::NineParts(const Call& call) const {
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
            out += Portion(number, {fromX[column], fromY[row], fromX[column + 1], fromY[row + 1]},
                           {toX[column], toY[row], toX[column + 1], toY[row + 1]});
    return out;
}

std::string QLX_SVGWriter::Copied(const Call& call) {
    const int number = Get<QLX_RecordedCanvas>(call, 0).number;
    const Cmn_Rect<int>& from = R(call, 1);
    const Cmn_Rect<int>& to = R(call, 2);
    if (number < 0 || from.Empty() || to.Empty())
        return "";
    const Cmn_Point<int> origin = mOrigins[number];
    return View(Used(number), double(from.left) - origin.x, double(from.top) - origin.y,
                from.GetWidth(), from.GetHeight(), to);
}

// What is in the rectangle now is shown again where it is moved to; the clip does the rest.
std::string QLX_SVGWriter::Scrolled(const Call& call) {
    const int dx = Get<int>(call, 1), dy = Get<int>(call, 2);
    const QLX_DeviceScale scale = mRecording.GetScale();
    if (R(call).Empty() || !scale.IsExactDistance(dx) || !scale.IsExactDistance(dy))
        return "";
    const Cmn_Rect<int>& from = R(call);
    const Cmn_Rect<int> to(Cmn_SaturatingAdd(from.left, dx), Cmn_SaturatingAdd(from.top, dy),
                           Cmn_SaturatingAdd(from.right, dx), Cmn_SaturatingAdd(from.bottom, dy));
    return View(Used(call.canvas), double(from.left) - call.state.origin.x,
                double(from.top) - call.state.origin.y, from.GetWidth(), from.GetHeight(), to);
}

std::string QLX_SVGWriter::View(const std::string& content, double left, double top, double width,
                                double height, const Cmn_Rect<int>& to) {
    return "<svg preserveAspectRatio=\"none\"" + RectAttributes(to) +
           Attribute("viewBox", Number(left) + " " + Number(top) + " " + Number(width) + " " +
                                    Number(height)) +
           ">" + content + "</svg>";
}
