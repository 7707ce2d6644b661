#include "qlx/imaging/qlx_recording.h"

#include <charconv>
#include <utility>

#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_path.h"
#include "qlx/imaging/qlx_recordingtable.h"

namespace {

// In the order of EPainterCall.
constexpr QLX_CallEntry kCalls[] = {
    {"Activate", "", nullptr},
    {"Flush", "", nullptr},
    {"SetIdentifier", "i", nullptr},
    {"SetWindowOrigin", "P", nullptr},
    {"SetClipRegion", "G", nullptr},
    {"SetClipRect", "R", nullptr},
    {"SetAlpha", "f", nullptr},
    {"SetForegroundColor", "C", nullptr},
    {"SetForeground", "t", nullptr},
    {"SetBackgroundColor", "C", nullptr},
    {"SetBackground", "t", nullptr},
    {"SetHighlightColor", "C", nullptr},
    {"SetPenSize", "ii", nullptr},
    {"SetPenMode", "m", nullptr},
    {"SetPenPattern", "p", nullptr},
    {"NormalizePen", "", nullptr},
    {"SetFont", "F", nullptr},
    {"SetTextMode", "m", nullptr},
    {"MoveTo", "ffr", nullptr},
    {"LineTo", "ffbrf", "fbsmpl"},
    {"LineOfLength", "iibr", "fbsmpl"},
    {"OptimizedVerticalLine", "iiiCr", ""},
    {"OptimizedHorizontalLine", "iiiCr", ""},
    {"OptimizedWaveformFill", "iiAAiiiCKCir", ""},
    {"OptimizedVerticalLines", "iAAAALar", ""},
    {"OptimizedIdenticalVerticalLines", "iAALiiiari", ""},
    {"OptimizedHorizontalLines", "iAAAALar", ""},
    {"OptimizedIdenticalHorizontalLines", "iAALiiir", ""},
    {"OptimizedWaveformOutline", "iiAibiiCKCir", ""},
    {"OptimizedDrawImage", "IRROr", ""},
    {"OptimizedDrawImageRow", "IiAiOrK", ""},
    {"OptimizedDrawImages", "MiAAAr", ""},
    {"OptimizedDrawBackgroundImage", "Iiiir", ""},
    {"OptimizedFillRect", "RCarKCa", ""},
    {"OptimizedFillRoundRect", "RiCarKCa", ""},
    {"OptimizedCopyPixelsFromOffscreen", "IRb", ""},
    {"DrawRect", "R", "fbsmp"},
    {"DrawRoundRect", "Riibb", "fbsmp"},
    {"DrawOval", "R", "fbsmp"},
    {"DrawArc", "Riib", "fbsmp"},
    {"DrawPolygon", "Ybb", "fbsmp"},
    {"DrawRegion", "G", "fbsmp"},
    {"DrawChar", "i", "ftnl"},
    {"DrawString", "s", "ftnl"},
    {"DrawStringJustified", "Rsjvr", "ftn"},
    {"DrawTextBox", "Rsjbbbb", "ftn"},
    {"DrawSingleLineTextBox", "RsbK", "ftn"},
    {"DrawImage", "IRm", ""},
    {"DrawImagePortion", "IRRmr", ""},
    {"DrawIcon", "MR", ""},
    {"ScrollCanvas", "Rii", ""},
    {"FillRect", "R", "fbmp"},
    {"FillRoundRect", "Riibb", "fbmp"},
    {"FillOval", "Rb", "fbmp"},
    {"FillPolygon", "Y", "fbmp"},
    {"FillRegion", "G", "fbmp"},
    {"EraseRect", "R", "b"},
    {"EraseRoundRect", "Riib", "b"},
    {"EraseRegion", "G", "b"},
    {"BlendRect", "RCk", ""},
    {"BlendRegion", "GCk", ""},
    {"InvertRect", "R", ""},
    {"InvertRegion", "G", ""},
    {"HighlightRect", "RN", "bh"},
    {"HighlightRegion", "GN", "bh"},
    {"CreateOffscreenPainter", "RbbK", nullptr},
    {"DrawPath", "Wbx", "fbsmp"},
    {"FillPath", "W", "fbmp"},
    {"CopyCanvas", "KRRmQP", ""},
    {"SaveIntoImage", "Ii", nullptr},
    {"CreateImage", "KI", nullptr},
};
static_assert(std::size(kCalls) == std::size_t(EPainterCall::Count));

constexpr const char* kPenModes[] = {"copy",     "or",      "xor",     "bic",        "not-copy",
                                     "not-or",   "not-xor", "not-bic", "blend",      "add",
                                     "subtract", "maximum", "minimum", "transparent"};
static_assert(std::size(kPenModes) == kPenMode_Count);
constexpr const char* kPatterns[] = {"solid",
                                     "dark-gray",
                                     "gray",
                                     "light-gray",
                                     "empty",
                                     "horizontal-stripes",
                                     "vertical-stripes",
                                     "diagonal-stripes",
                                     "cross-hatch",
                                     "dash",
                                     "dots"};
static_assert(std::size(kPatterns) == kPenPattern_Count);
constexpr const char* kResolutions[] = {"logical", "device"};
constexpr const char* kAlphaBlends[] = {"ignore", "over", "add"};
constexpr const char* kBlendModes[] = {"normal", "multiply", "screen", "darken", "lighten"};
static_assert(std::size(kBlendModes) == QLX_Painter::kBlend_Count);
constexpr const char* kJustifications[] = {"left", "center", "right", "full"};
constexpr const char* kVerticals[] = {"top", "middle", "bottom"};
constexpr const char* kJoins[] = {"miter", "round", "bevel"};

// Appends one argument after another to a text.
class Printer {
  public:
    explicit Printer(std::string& out) : mOut(out) {}

    void Number(std::int64_t value) { Characters(value); }
    void Number(float value) { Characters(value); }
    void Number(double value) { Characters(value); }

    void Point(int x, int y) {
        mOut += '(';
        Number(std::int64_t{x});
        mOut += ", ";
        Number(std::int64_t{y});
        mOut += ')';
    }
    void Rect(const Cmn_Rect<int>& rect) {
        mOut += '(';
        Number(std::int64_t{rect.left});
        for (const int edge : {rect.top, rect.right, rect.bottom}) {
            mOut += ", ";
            Number(std::int64_t{edge});
        }
        mOut += ')';
    }
    void Color(const CRGBColor& color) {
        const auto repeats = [](unsigned short c) { return c >> 8 == (c & 255); };
        if (repeats(color.GetRed()) && repeats(color.GetGreen()) && repeats(color.GetBlue()) &&
            repeats(color.GetAlpha())) {
            mOut += QLX_Theme::FormatColor(color);
            return;
        }
        mOut += '#';
        for (const unsigned short component :
             {color.GetRed(), color.GetGreen(), color.GetBlue(), color.GetAlpha()})
            for (int shift = 12; shift >= 0; shift -= 4)
                mOut += "0123456789ABCDEF"[component >> shift & 15];
    }
    void Text(std::string_view text) {
        mOut += '"';
        for (const char character : text) {
            if (character == '"' || character == '\\') {
                mOut += '\\';
                mOut += character;
            } else if (character == '\n') {
                mOut += "\\n";
            } else if (static_cast<unsigned char>(character) < 0x20 || character == 0x7F) {
                mOut += "\\x";
                mOut += "0123456789ABCDEF"[character >> 4 & 15];
                mOut += "0123456789ABCDEF"[character & 15];
            } else {
                mOut += character;
            }
        }
        mOut += '"';
    }
    void Region(const QLX_Region& region) {
        mOut += '{';
        const char* between = "";
        for (const Cmn_Rect<int>& rect : region.GetRectList()) {
            mOut += between;
            Rect(rect);
            between = " ";
        }
        mOut += '}';
    }
    void Path(const QLX_Path& path) {
        mOut += "path{";
        const char* between = "";
        for (const QLX_Path::Element& element : path.GetElements()) {
            mOut += between;
            mOut += "MLCZ"[int(element.verb)];
            const int points = element.verb == QLX_Path::EVerb::Curve   ? 3
                               : element.verb == QLX_Path::EVerb::Close ? 0
                                                                        : 1;
            for (int i = 0; i < points; ++i) {
                mOut += ' ';
                Number(element.points[i].x);
                mOut += ' ';
                Number(element.points[i].y);
            }
            between = " ";
        }
        mOut += '}';
    }
    void Image(QLX_RecordedImage image) {
        if (image.number == 0) {
            mOut += "null";
            return;
        }
        mOut += "image ";
        Number(std::int64_t{image.number});
    }
    void Canvas(QLX_RecordedCanvas canvas) {
        if (canvas.number == QLX_RecordedCanvas::kNone) {
            mOut += "null";
        } else if (canvas.number == QLX_RecordedCanvas::kForeign) {
            mOut += "foreign";
        } else {
            mOut += '@';
            Number(std::int64_t{canvas.number});
        }
    }

    // The letter tells enumerations from plain numbers.
    void Argument(const QLX_RecordedArgument& argument, char letter) {
        std::visit([&](const auto& value) { Print(value, letter); }, argument);
    }

  private:
    template <class T>
    void Characters(T value) {
        char digits[40];
        mOut.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
    }
    template <class List, class Each>
    void Listed(const List& list, Each each) {
        mOut += '[';
        const char* between = "";
        for (const auto& value : list) {
            mOut += between;
            each(value);
            between = " ";
        }
        mOut += ']';
    }

    void Print(std::monostate, char) { mOut += "null"; }
    void Print(bool value, char) { mOut += value ? "true" : "false"; }
    void Print(int value, char letter) {
        const auto names = QLX_GetEnumerationNames(letter);
        if (letter == 't' && value >= 0 && value < kThemeColor_Count)
            mOut += QLX_Theme::GetName(EThemeColor(value));
        else if (value >= 0 && std::size_t(value) < names.size())
            mOut += names[std::size_t(value)];
        else
            Number(std::int64_t{value});
    }
    void Print(float value, char) { Number(value); }
    void Print(const std::string& value, char) { Text(value); }
    void Print(const Cmn_Point<int>& value, char) { Point(value.x, value.y); }
    void Print(const Cmn_Rect<int>& value, char) { Rect(value); }
    void Print(const CRGBColor& value, char) { Color(value); }
    void Print(const QLX_Font& value, char) { Text(value.AsText()); }
    void Print(const QLX_Region& value, char) { Region(value); }
    void Print(const Cmn_Polygon<int>& value, char) {
        Listed(value, [&](const Cmn_Point<int>& point) { Point(point.x, point.y); });
    }
    void Print(const QLX_Painter::PathPtr& value, char) { Path(*value); }
    void Print(QLX_RecordedImage value, char) { Image(value); }
    void Print(QLX_RecordedCanvas value, char) { Canvas(value); }
    void Print(const QLX_RecordedNumbers& value, char) {
        if (value)
            Listed(*value, [&](int number) { Number(std::int64_t{number}); });
        else
            mOut += "null";
    }
    void Print(const std::vector<CRGBColor>& value, char) {
        Listed(value, [&](const CRGBColor& color) { Color(color); });
    }
    void Print(const std::vector<QLX_RecordedImage>& value, char) {
        Listed(value, [&](QLX_RecordedImage image) { Image(image); });
    }

    std::string& mOut;
};

void PrintState(std::string& out, const QLX_RecordedState& state, std::string_view letters) {
    Printer printer(out);
    const auto has = [&](char letter) { return letters.find(letter) != std::string_view::npos; };
    out += " |";
    if (has('l')) {
        out += " at ";
        printer.Number(float(state.penPlace.x));
        out += ", ";
        printer.Number(float(state.penPlace.y));
    }
    if (has('f')) {
        out += " fg ";
        printer.Color(state.foreground);
    }
    const bool usesBackground = letters == "b" || letters == "bh" ||
                                (has('b') && state.penPattern != kPenPattern_Solid) ||
                                (has('m') && state.penMode == kPenMode_Transparent);
    if (usesBackground) {
        out += " bg ";
        printer.Color(state.background);
    }
    if (has('h')) {
        out += " highlight ";
        printer.Color(state.highlight);
    }
    if (has('s') && state.penSize != Cmn_Point<short>(1, 1)) {
        out += " pen ";
        printer.Number(std::int64_t{state.penSize.x});
        out += 'x';
        printer.Number(std::int64_t{state.penSize.y});
    }
    if (has('m') && state.penMode != kPenMode_Copy)
        out += std::string(" mode ") + kPenModes[state.penMode];
    if (has('p') && state.penPattern != kPenPattern_Solid)
        out += std::string(" pattern ") + kPatterns[state.penPattern];
    if (has('t') && state.textMode != kPenMode_Copy)
        out += std::string(" text ") + kPenModes[state.textMode];
    if (has('n')) {
        out += " font ";
        printer.Text(state.font.AsText());
    }
    if (state.alpha != 1) {
        out += " alpha ";
        printer.Number(state.alpha);
    }
    if (state.origin != Cmn_Point<int>()) {
        out += " origin ";
        printer.Point(state.origin.x, state.origin.y);
    }
    if (state.clipped) {
        out += " clip ";
        if (state.clip.IsRectangular())
            printer.Rect(state.clip.GetBounds());
        else
            printer.Region(state.clip);
    }
    if (out.ends_with(" |"))
        out.resize(out.size() - 2);
}

// Pixels as runs: "AARRGGBB" or "count*AARRGGBB".
void PrintPixels(std::string& out, const QLX_Image& image) {
    const std::uint32_t* pixels = image.GetPixels();
    const std::size_t count = std::size_t(image.GetWidth()) * image.GetHeight();
    for (std::size_t i = 0; i < count;) {
        std::size_t end = i + 1;
        while (end < count && pixels[end] == pixels[i])
            ++end;
        out += ' ';
        if (end - i > 1)
            out += std::to_string(end - i) + '*';
        for (int shift = 28; shift >= 0; shift -= 4)
            out += "0123456789ABCDEF"[pixels[i] >> shift & 15];
        i = end;
    }
    out += '\n';
}

void PrintImageHead(std::string& out, const char* word, std::size_t number,
                    const QLX_Image& image) {
    out += std::string(word) + ' ' + std::to_string(number) + ' ' +
           std::to_string(image.GetWidth()) + 'x' + std::to_string(image.GetHeight());
}

} // namespace

const QLX_CallEntry& QLX_GetCallEntry(EPainterCall call) noexcept { return kCalls[int(call)]; }

std::span<const char* const> QLX_GetEnumerationNames(char letter) noexcept {
    switch (letter) {
    case 'm':
        return kPenModes;
    case 'p':
        return kPatterns;
    case 'r':
        return kResolutions;
    case 'a':
        return kAlphaBlends;
    case 'k':
        return kBlendModes;
    case 'j':
        return kJustifications;
    case 'v':
        return kVerticals;
    case 'x':
        return kJoins;
    default:
        return {};
    }
}

QLX_Recording::QLX_Recording(int width, int height, QLX_DeviceScale scale)
    : mWidth(std::max(0, width)), mHeight(std::max(0, height)), mScale(scale) {}

QLX_Recording::~QLX_Recording() = default;

const char* QLX_Recording::GetName(EPainterCall call) noexcept { return kCalls[int(call)].name; }

bool QLX_Recording::IsDrawing(EPainterCall call) noexcept {
    return kCalls[int(call)].state != nullptr;
}

void QLX_Recording::Add(QLX_RecordedCall call) { mCalls.push_back(std::move(call)); }

void QLX_Recording::Clear() {
    mCalls.clear();
    if (mLastCanvas != 0)
        return;
    mImages.clear();
    mNumbers.clear();
}

QLX_RecordedImage QLX_Recording::NumberOf(const QLX_Painter::ImagePtr& image) {
    if (!image)
        return {0};
    const auto [place, isNew] = mNumbers.try_emplace(image.Get(), int(mImages.size()) + 1);
    if (isNew)
        mImages.push_back(image);
    return {place->second};
}

QLX_Painter::ImagePtr QLX_Recording::GetImage(QLX_RecordedImage image) const {
    if (image.number < 1 || std::size_t(image.number) > mImages.size())
        return nullptr;
    return mImages[std::size_t(image.number) - 1];
}

std::string QLX_Recording::Print(EPrintKind kind) const {
    std::string out;
    if (kind == kPrint_Complete) {
        out += "canvas " + std::to_string(mWidth) + 'x' + std::to_string(mHeight) + " scale " +
               std::to_string(mScale.Get120ths()) + '\n';
        for (std::size_t i = 0; i < mImages.size(); ++i) {
            PrintImageHead(out, "image", i + 1, *mImages[i]);
            PrintPixels(out, *mImages[i]);
            if (const QLX_Image* twice = mImages[i]->GetDouble()) {
                PrintImageHead(out, "double", i + 1, *twice);
                PrintPixels(out, *twice);
            }
        }
    }
    for (const QLX_RecordedCall& call : mCalls) {
        const QLX_CallEntry& entry = QLX_GetCallEntry(call.call);
        if (kind == kPrint_Drawing && !entry.state)
            continue;
        Printer printer(out);
        if (call.canvas != 0) {
            printer.Canvas({call.canvas});
            out += ' ';
        }
        out += entry.name;
        for (std::size_t i = 0; i < call.arguments.size(); ++i) {
            out += ' ';
            printer.Argument(call.arguments[i], entry.arguments[i]);
        }
        if (kind == kPrint_Drawing)
            PrintState(out, call.state, entry.state);
        out += '\n';
    }
    return out;
}
