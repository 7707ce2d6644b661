#include "qlx/imaging/qlx_font.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "qlx/imaging/qlx_utf8.h"

namespace {

constexpr const char* kStandardFamily = "DejaVu Sans";
constexpr const char* kFixedFamily = "DejaVu Sans Mono";

// Names stay at their place for good, so fonts hand out references to them.
std::vector<std::unique_ptr<const std::string>>& Families() {
    static std::vector<std::unique_ptr<const std::string>> families = [] {
        std::vector<std::unique_ptr<const std::string>> first;
        first.push_back(std::make_unique<const std::string>(kStandardFamily));
        return first;
    }();
    return families;
}

constexpr std::size_t kMaximumFamilies = 65535;

std::uint16_t FamilyNumber(std::string_view name) {
    auto& families = Families();
    if (name.empty())
        return 0;
    for (std::size_t i = 0; i < families.size(); ++i)
        if (*families[i] == name)
            return static_cast<std::uint16_t>(i);
    if (families.size() == kMaximumFamilies)
        return 0;
    families.push_back(std::make_unique<const std::string>(name));
    return static_cast<std::uint16_t>(families.size() - 1);
}

std::int32_t SizeIn64ths(float size) noexcept {
    if (std::isnan(size))
        return 12 * 64;
    return static_cast<std::int32_t>(std::lround(std::clamp(size, 1.0F, 2000.0F) * 64));
}

// Advances and vertical measures of the standard family, in its 1/2048ths of the em: what layout
// needs where no font file can be read. From DejaVu Sans 2.37 and its bold face.
constexpr float kEm = 2048;
constexpr std::uint16_t kPlainAdvances[95] = {
    651,  821,  942,  1716, 1303, 1946, 1597, 563,  799,  799,  1024, 1716, 651,  739,  651,  690,
    1303, 1303, 1303, 1303, 1303, 1303, 1303, 1303, 1303, 1303, 690,  690,  1716, 1716, 1716, 1087,
    2048, 1401, 1405, 1430, 1577, 1294, 1178, 1587, 1540, 604,  604,  1343, 1141, 1767, 1532, 1612,
    1235, 1612, 1423, 1300, 1251, 1499, 1401, 2025, 1403, 1251, 1403, 799,  690,  799,  1716, 1024,
    1024, 1255, 1300, 1126, 1300, 1260, 721,  1300, 1298, 569,  569,  1186, 569,  1995, 1298, 1253,
    1300, 1300, 842,  1067, 803,  1298, 1212, 1675, 1212, 1212, 1075, 1303, 690,  1303, 1716};
constexpr std::uint16_t kBoldAdvances[95] = {
    713,  934,  1067, 1716, 1425, 2052, 1786, 627,  936,  936,  1071, 1716, 778,  850,  778,  748,
    1425, 1425, 1425, 1425, 1425, 1425, 1425, 1425, 1425, 1425, 819,  819,  1716, 1716, 1716, 1188,
    2048, 1585, 1561, 1503, 1700, 1399, 1399, 1681, 1714, 762,  762,  1587, 1305, 2038, 1714, 1741,
    1501, 1741, 1577, 1475, 1397, 1663, 1585, 2259, 1579, 1483, 1485, 936,  748,  936,  1716, 1024,
    1024, 1382, 1466, 1214, 1466, 1389, 891,  1466, 1458, 702,  702,  1362, 702,  2134, 1458, 1407,
    1466, 1466, 1010, 1219, 979,  1458, 1335, 1892, 1321, 1335, 1192, 1458, 748,  1458, 1716};
constexpr float kFixedAdvance = 1233;

[[nodiscard]] bool IsWide(char32_t code) noexcept {
    return (code >= 0x1100 && code <= 0x115F) || (code >= 0x2E80 && code <= 0xA4CF) ||
           (code >= 0xAC00 && code <= 0xD7A3) || (code >= 0xF900 && code <= 0xFAFF) ||
           (code >= 0xFE30 && code <= 0xFE6F) || (code >= 0xFF00 && code <= 0xFF60) ||
           (code >= 0x1F300 && code <= 0x1FAFF) || (code >= 0x20000 && code <= 0x3FFFD);
}

[[nodiscard]] bool IsCombining(char32_t code) noexcept {
    return (code >= 0x300 && code <= 0x36F) || (code >= 0x200B && code <= 0x200F) ||
           (code >= 0x202A && code <= 0x202E) || (code >= 0x2060 && code <= 0x2064) ||
           (code >= 0xFE00 && code <= 0xFE0F);
}

[[nodiscard]] float BuiltInAdvance(char32_t code, const QLX_Font& font) noexcept {
    if (IsCombining(code) || code < 0x20)
        return 0;
    if (IsWide(code))
        return kEm;
    if (font.GetFamily() == kFixedFamily)
        return kFixedAdvance;
    const auto& advances = font.IsBold() ? kBoldAdvances : kPlainAdvances;
    if (code < 0x7F)
        return advances[code - 0x20];
    if (code == 0x2026) // the ellipsis that cut texts end with
        return kEm;
    return advances['n' - 0x20];
}

class BuiltInMeasure final : public QLX_TextMeasure {
  public:
    float MeasureWidth(const QLX_Font& font, std::string_view text) override {
        float units = 0;
        for (std::size_t place = 0; place < text.size();)
            units += BuiltInAdvance(QLX_NextCodePoint(text, place), font);
        return units * font.GetSize() / kEm;
    }
    QLX_FontMetrics MeasureFont(const QLX_Font& font) override {
        return {1901 / kEm * font.GetSize(), 483 / kEm * font.GetSize(), 0};
    }
};

constinit QLX_TextMeasure* sInstalled = nullptr; // not owned

std::map<int, QLX_Font>& RegisteredFonts() {
    static std::map<int, QLX_Font> fonts;
    return fonts;
}

void RegisterStandardFonts(std::map<int, QLX_Font>& fonts) {
    fonts = {{kFont_Interface, QLX_Font()},
             {kFont_InterfaceSmall, QLX_Font(kStandardFamily, 10)},
             {kFont_InterfaceLarge, QLX_Font(kStandardFamily, 16)},
             {kFont_Counter, QLX_Font(kFixedFamily, 12)},
             {kFont_CounterLarge, QLX_Font(kFixedFamily, 24)}};
}

const std::map<int, QLX_Font>& Fonts() {
    auto& fonts = RegisteredFonts();
    if (fonts.empty())
        RegisterStandardFonts(fonts);
    return fonts;
}

// Removes one of the style words from the end of the text.
[[nodiscard]] bool TakeWord(std::string_view& text, std::string_view word) {
    if (text.size() <= word.size() || !text.ends_with(word) ||
        text[text.size() - word.size() - 1] != ' ')
        return false;
    text.remove_suffix(word.size() + 1);
    return true;
}

} // namespace

int QLX_FontMetrics::GetLineHeight() const noexcept {
    return static_cast<int>(std::ceil(ascent + descent + leading - 0.01F));
}

int QLX_FontMetrics::GetBaseline() const noexcept {
    return static_cast<int>(std::floor(ascent + 0.5F));
}

QLX_Font::QLX_Font(std::string_view family, float size, std::uint16_t style)
    : mFamily(FamilyNumber(family)), mStyle(style), mSize64ths(SizeIn64ths(size)) {}

const std::string& QLX_Font::GetFamily() const noexcept { return *Families()[mFamily]; }

QLX_Font QLX_Font::WithSize(float size) const noexcept {
    QLX_Font font = *this;
    font.mSize64ths = SizeIn64ths(size);
    return font;
}

QLX_Font QLX_Font::WithStyle(std::uint16_t style) const noexcept {
    QLX_Font font = *this;
    font.mStyle = style;
    return font;
}

QLX_FontMetrics QLX_Font::GetMetrics() const { return QLX_TextMeasure::Get().MeasureFont(*this); }

std::string QLX_Font::AsText() const {
    char size[32];
    const auto end = std::to_chars(size, size + sizeof size, GetSize()).ptr;
    std::string text = GetFamily() + ' ' + std::string(size, end);
    if (IsBold())
        text += " bold";
    if (IsItalic())
        text += " italic";
    if (IsUnderlined())
        text += " underline";
    return text;
}

bool QLX_Font::ParseText(std::string_view text, QLX_Font& font) {
    std::uint16_t style = kFontStyle_Plain;
    if (TakeWord(text, "underline"))
        style |= kFontStyle_Underline;
    if (TakeWord(text, "italic"))
        style |= kFontStyle_Italic;
    if (TakeWord(text, "bold"))
        style |= kFontStyle_Bold;
    const std::size_t space = text.rfind(' ');
    if (space == std::string_view::npos || space == 0)
        return false;
    float size = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data() + space + 1, end, size);
    if (result.ec != std::errc() || result.ptr != end || !(size >= 1 && size <= 2000))
        return false;
    font = QLX_Font(text.substr(0, space), size, style);
    return true;
}

QLX_TextMeasure::~QLX_TextMeasure() = default;

QLX_TextMeasure& QLX_TextMeasure::GetBuiltIn() noexcept {
    static BuiltInMeasure measure;
    return measure;
}

QLX_TextMeasure& QLX_TextMeasure::Get() noexcept { return sInstalled ? *sInstalled : GetBuiltIn(); }

QLX_TextMeasure* QLX_TextMeasure::Install(QLX_TextMeasure* measure) noexcept {
    return std::exchange(sInstalled, measure);
}

QLX_Font QLX_FontMap::RetrieveFont(int fontNumber, int styleSelector) {
    const auto& fonts = Fonts();
    const auto found = fonts.find(fontNumber);
    const QLX_Font font = found != fonts.end() ? found->second : fonts.at(kFont_Interface);
    switch (styleSelector) {
    case kFontSelect_AsRegistered:
        return font;
    case kFontSelect_Bold:
        return font.WithStyle(kFontStyle_Bold);
    case kFontSelect_Italic:
        return font.WithStyle(kFontStyle_Italic);
    case kFontSelect_BoldItalic:
        return font.WithStyle(kFontStyle_Bold | kFontStyle_Italic);
    case kFontSelect_Underline:
        return font.WithStyle(kFontStyle_Underline);
    default:
        return font.WithStyle(kFontStyle_Plain);
    }
}

void QLX_FontMap::RegisterFont(int fontNumber, const QLX_Font& font) {
    (void)Fonts();
    RegisteredFonts()[fontNumber] = font;
}

bool QLX_FontMap::HasFont(int fontNumber) noexcept { return Fonts().count(fontNumber) != 0; }

void QLX_FontMap::Reset() { RegisterStandardFonts(RegisteredFonts()); }
