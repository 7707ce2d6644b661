#include "qlx/imaging/qlx_svglook.h"

#include <charconv>

#include "qlx/imaging/qlx_recordingtable.h"
#include "qlx/imaging/qlx_spans.h"
#include "qlx/imaging/qlx_utf8.h"

namespace {

[[nodiscard]] std::string Blending(const char* mode) {
    return std::string("mix-blend-mode:") + mode;
}

// Whether every channel is 0 or 255: bitwise modes then either keep a channel of the canvas or set,
// clear or invert all of it, which blend modes can say.
[[nodiscard]] bool IsPure(const CRGBColor& color) noexcept {
    const std::uint32_t packed = color.AsInt32();
    for (const int shift : {0, 8, 16})
        if ((packed >> shift & 255) != 0 && (packed >> shift & 255) != 255)
            return false;
    return true;
}

[[nodiscard]] QLX_SVGLook Bitwise(const char* name, const char* blend, bool inverted, bool exact) {
    QLX_SVGLook look;
    look.style = Blending(blend);
    look.inverted = inverted;
    if (!exact)
        look.note = std::string(name) + " works on bits, shown by " + blend;
    return look;
}

} // namespace

QLX_SVGLook QLX_LookOfMode(EPenMode mode, const CRGBColor* color, double alpha) {
    const bool pure = color && IsPure(*color);
    QLX_SVGLook look;
    switch (mode) {
    case kPenMode_Or:
        return Bitwise("or", "lighten", false, pure);
    case kPenMode_NotOr:
        return Bitwise("not-or", "lighten", true, pure);
    case kPenMode_Xor:
        return Bitwise("xor", "difference", false, pure);
    case kPenMode_NotXor:
        return Bitwise("not-xor", "difference", true, pure);
    case kPenMode_Bic: // destination and not source
        return Bitwise("bic", "darken", true, pure);
    case kPenMode_NotBic:
        return Bitwise("not-bic", "darken", false, pure);
    case kPenMode_NotCopy:
        look.inverted = true;
        return look;
    case kPenMode_Blend: // the mean of both is half of one over the other
        look.opacity = 0.5;
        return look;
    case kPenMode_Add: // readers that do not know the second keep the first
        look.style = Blending("screen") + ';' + Blending("plus-lighter");
        if (!color || alpha < 1)
            look.note = "add is held at the maximum before alpha weighs it, here after it";
        return look;
    case kPenMode_Subtract:
        look.style = Blending("difference");
        look.note = "subtract is held at 0, shown by difference";
        return look;
    case kPenMode_Maximum:
        look.style = Blending("lighten");
        return look;
    case kPenMode_Minimum:
        look.style = Blending("darken");
        return look;
    case kPenMode_Transparent: // for pens, patterns leave their unset squares out
        if (!color)
            look.note = "transparent leaves the background colour out, here it is shown";
        return look;
    default:
        return look;
    }
}

QLX_SVGLook QLX_LookOfBlend(QLX_Painter::EBlendMode blend) {
    constexpr const char* kNames[] = {"", "multiply", "screen", "darken", "lighten"};
    static_assert(std::size(kNames) == QLX_Painter::kBlend_Count);
    QLX_SVGLook look;
    if (blend > QLX_Painter::kBlend_Normal && blend < QLX_Painter::kBlend_Count)
        look.style = Blending(kNames[blend]);
    return look;
}

QLX_SVGLook QLX_LookOfCall(const QLX_RecordedCall& call) {
    const QLX_RecordedState& state = call.state;
    const auto ofColor = [&](EPenMode mode, const CRGBColor& color) {
        return QLX_LookOfMode(mode, &color,
                              double(state.alpha) * color.GetAlpha() / CRGBColor::kMaximum);
    };
    const auto number = [&](std::size_t i) { return std::get<int>(call.arguments[i]); };
    switch (call.call) {
    case EPainterCall::BlendRect:
    case EPainterCall::BlendRegion:
        return QLX_LookOfBlend(QLX_Painter::EBlendMode(number(2)));
    case EPainterCall::InvertRect:
    case EPainterCall::InvertRegion: {
        QLX_SVGLook look;
        look.style = Blending("difference"); // to white
        return look;
    }
    case EPainterCall::HighlightRect:
    case EPainterCall::HighlightRegion: {
        QLX_SVGLook look;
        look.style = Blending("multiply");
        look.note = "highlighting exchanges two colours, shown by multiply";
        return look;
    }
    default:
        break;
    }
    const QLX_CallEntry& entry = QLX_GetCallEntry(call.call);
    const std::string_view arguments = entry.arguments, drawn = entry.state ? entry.state : "";
    if (drawn.find('m') != std::string_view::npos) {
        QLX_SVGLook look = ofColor(state.penMode, state.foreground);
        look.isPatterned = state.penPattern != kPenPattern_Solid;
        return look;
    }
    if (drawn.find('t') != std::string_view::npos)
        return ofColor(state.textMode, state.foreground);
    if (arguments.find_first_of("IM") != std::string_view::npos ||
        call.call == EPainterCall::CopyCanvas) {
        const std::size_t mode = arguments.find('m');
        QLX_SVGLook look = QLX_LookOfMode(
            mode != std::string_view::npos ? EPenMode(number(mode)) : kPenMode_Copy, nullptr, 1);
        look.isPicture = true;
        return look;
    }
    const std::size_t blend = arguments.find('a'), color = arguments.find('C');
    if (blend != std::string_view::npos && number(blend) == QLX_Painter::kAlphaBlend_Add)
        return color != std::string_view::npos
                   ? ofColor(kPenMode_Add, std::get<CRGBColor>(call.arguments[color]))
                   : QLX_LookOfMode(kPenMode_Add, nullptr, 1);
    return {};
}

std::string QLX_PatternTile(EPenPattern pattern, double square, const std::string& foreground,
                            const std::string& background) {
    const QLX_PatternCell* cell = QLX_GetPatternCell(pattern);
    const std::string side = QLX_SVGNumber(8 * square);
    const std::string whole = QLX_SVGAttribute("width", side) + QLX_SVGAttribute("height", side);
    std::string tile;
    if (!background.empty())
        tile += "<rect" + whole + background + "/>";
    if (!cell)
        return tile + "<rect" + whole + foreground + "/>";
    std::string data;
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x) {
            const auto isSet = [&](int column) { return (cell->rows[y] >> (7 - column) & 1) != 0; };
            if (!isSet(x))
                continue;
            const int begin = x;
            while (x + 1 < 8 && isSet(x + 1))
                ++x;
            const std::string width = QLX_SVGNumber((x + 1 - begin) * square);
            data.append("M").append(QLX_SVGNumber(begin * square)).append(" ");
            data.append(QLX_SVGNumber(y * square)).append("h").append(width);
            data.append("v").append(QLX_SVGNumber(square)).append("h-").append(width).append("z");
        }
    if (!data.empty())
        tile += "<path shape-rendering=\"crispEdges\"" + QLX_SVGAttribute("d", data) + foreground +
                "/>";
    return tile;
}

std::string QLX_SVGNumber(double value) {
    char digits[40];
    return {digits, std::to_chars(digits, digits + sizeof digits, float(value)).ptr};
}

std::string QLX_SVGAttribute(const char* name, const std::string& value) {
    return std::string(" ") + name + "=\"" + value + "\"";
}
std::string QLX_SVGAttribute(const char* name, double value) {
    return QLX_SVGAttribute(name, QLX_SVGNumber(value));
}

std::string QLX_SVGPaint(const char* what, const CRGBColor& color, double alpha) {
    CRGBColor opaque = color;
    opaque.SetAlpha(CRGBColor::kMaximum);
    std::string out = QLX_SVGAttribute(what, QLX_Theme::FormatColor(opaque));
    const double opacity = alpha * color.GetAlpha() / CRGBColor::kMaximum;
    if (opacity < 1)
        out += QLX_SVGAttribute((std::string(what) + "-opacity").c_str(), opacity);
    return out;
}

std::string QLX_SVGEscaped(std::string_view text) {
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
