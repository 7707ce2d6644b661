#include "qlx/imaging/qlx_themecolor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/sys/sys_file.h"
#include "qlx/views/ucolortable.h"

namespace {

// 0xRRGGBBAA
struct BuiltIn {
    const char* name;
    std::uint32_t colors[kTheme_VariantCount];
};

constexpr BuiltIn kBuiltIn[kThemeColor_Count] = {
    //                     light       dark        light, h.c. dark, high contrast
    {"WindowBackground", {0xECECECFF, 0x2B2D30FF, 0xFFFFFFFF, 0x000000FF}},
    {"Text", {0x1E1E1EFF, 0xE3E4E6FF, 0x000000FF, 0xFFFFFFFF}},
    {"DisabledText", {0x8C8C8CFF, 0x7B7E85FF, 0x565656FF, 0xB0B0B0FF}},
    {"Highlight", {0xB3D7FFFF, 0x2F5E91FF, 0x00308FFF, 0xFFE600FF}},
    {"HighlightText", {0x101010FF, 0xFFFFFFFF, 0xFFFFFFFF, 0x000000FF}},
    {"ControlFace", {0xFBFBFBFF, 0x3C3F43FF, 0xFFFFFFFF, 0x000000FF}},
    {"ControlPressed", {0xD0D0D0FF, 0x25272AFF, 0xC8C8C8FF, 0x404040FF}},
    {"ControlFrame", {0xA6A6A6FF, 0x5C6066FF, 0x000000FF, 0xFFFFFFFF}},
    {"ControlLight", {0xFFFFFFFF, 0x4B4F54FF, 0xFFFFFFFF, 0x000000FF}},
    {"ControlShadow", {0xC4C4C4FF, 0x1D1F21FF, 0x000000FF, 0xFFFFFFFF}},
    {"ControlText", {0x1E1E1EFF, 0xE3E4E6FF, 0x000000FF, 0xFFFFFFFF}},
    {"ControlMark", {0x0A63C9FF, 0x5AA9F8FF, 0x00308FFF, 0xFFE600FF}},
    {"FieldBackground", {0xFFFFFFFF, 0x1E2022FF, 0xFFFFFFFF, 0x000000FF}},
    {"FieldText", {0x101010FF, 0xF0F1F2FF, 0x000000FF, 0xFFFFFFFF}},
    {"FieldFrame", {0xB4B4B4FF, 0x55595EFF, 0x000000FF, 0xFFFFFFFF}},
    {"FocusRing", {0x3B8FEEFF, 0x5AA9F8FF, 0xC2185BFF, 0x00FFFFFF}},
    {"MenuBackground", {0xF6F6F6FF, 0x35383BFF, 0xFFFFFFFF, 0x000000FF}},
    {"MenuText", {0x1E1E1EFF, 0xE3E4E6FF, 0x000000FF, 0xFFFFFFFF}},
    {"MenuHighlight", {0x0A63C9FF, 0x2F6FB5FF, 0x00308FFF, 0xFFE600FF}},
    {"MenuHighlightText", {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0x000000FF}},
    {"ListBackground", {0xFFFFFFFF, 0x232527FF, 0xFFFFFFFF, 0x000000FF}},
    {"ListAlternate", {0xF3F5F8FF, 0x292B2EFF, 0xFFFFFFFF, 0x000000FF}},
    {"ListText", {0x1E1E1EFF, 0xE3E4E6FF, 0x000000FF, 0xFFFFFFFF}},
    {"ScrollTrack", {0xE2E2E2FF, 0x26282AFF, 0xFFFFFFFF, 0x000000FF}},
    {"ScrollThumb", {0xA9A9A9FF, 0x61656AFF, 0x000000FF, 0xFFFFFFFF}},
    {"MeterBackground", {0x202225FF, 0x121314FF, 0x000000FF, 0x000000FF}},
    {"MeterLow", {0x2EAF5BFF, 0x35C46AFF, 0x00A030FF, 0x00FF66FF}},
    {"MeterMiddle", {0xE2B93BFF, 0xF0C84BFF, 0xD09000FF, 0xFFE600FF}},
    {"MeterHigh", {0xE8803AFF, 0xF08C45FF, 0xE05000FF, 0xFF9030FF}},
    {"MeterClip", {0xE0352FFF, 0xFF4D45FF, 0xD00000FF, 0xFF3030FF}},
    {"WaveformBackground", {0xF7F9FAFF, 0x1B1D1FFF, 0xFFFFFFFF, 0x000000FF}},
    {"Waveform", {0x3D7EA6FF, 0x6FB7DEFF, 0x003A70FF, 0x66D9FFFF}},
    {"WaveformRMS", {0x7FB0CDFF, 0x3F7C9DFF, 0x4080B0FF, 0x2090C0FF}},
    {"RulerBackground", {0xDDE0E3FF, 0x34373AFF, 0xFFFFFFFF, 0x000000FF}},
    {"RulerText", {0x33373BFF, 0xC8CBCEFF, 0x000000FF, 0xFFFFFFFF}},
    {"GridLine", {0x00000022, 0xFFFFFF1E, 0x000000FF, 0xFFFFFFFF}},
    {"Selection", {0x3B8FEE55, 0x5AA9F855, 0x00308F88, 0xFFE60088}},
    {"PlaybackCursor", {0xD03030FF, 0xFF6B5EFF, 0xD00000FF, 0xFF5050FF}},
    {"Link", {0x0A58CAFF, 0x7CB8FFFF, 0x00308FFF, 0x00FFFFFF}},
    {"Caution", {0xC77700FF, 0xF2B24AFF, 0x904000FF, 0xFFE600FF}},
    {"Error", {0xC62828FF, 0xFF6B5EFF, 0xB00000FF, 0xFF6060FF}},
    {"ToolTipBackground", {0xFFFBE6FF, 0x4A4D52FF, 0xFFFFFFFF, 0x000000FF}},
    {"ToolTipText", {0x1E1E1EFF, 0xF0F1F2FF, 0x000000FF, 0xFFFFFFFF}},
};

constexpr const char* kSectionNames[kTheme_VariantCount] = {"light", "dark", "light high contrast",
                                                            "dark high contrast"};

[[nodiscard]] constexpr CRGBColor FromBytes(std::uint32_t rgba) noexcept {
    const auto wide = [&](int shift) {
        return static_cast<unsigned short>((rgba >> shift & 255) * 257);
    };
    return {wide(24), wide(16), wide(8), wide(0)};
}

using NamedColors = std::map<std::string, CRGBColor, std::less<>>;

// A whole theme: EThemeColor's colours and the names beyond them, by variant.
struct ThemeTable {
    std::array<std::array<CRGBColor, kThemeColor_Count>, kTheme_VariantCount> colors;
    std::array<NamedColors, kTheme_VariantCount> named;

    ThemeTable() {
        for (int variant = 0; variant < kTheme_VariantCount; ++variant)
            for (int color = 0; color < kThemeColor_Count; ++color)
                colors[variant][color] = FromBytes(kBuiltIn[color].colors[variant]);
    }
};

struct ThemeState {
    ThemeTable table;
    NamedColors user;
    EThemeVariant variant = kTheme_Light;
    std::uint32_t generation = 1;
    float textBrightness = 1;
};

ThemeState& State() {
    static ThemeState state;
    return state;
}

// Hands the named colours of the current variant and the user to the table they register with.
void PublishNames() {
    const ThemeState& state = State();
    CColorTable* table = CColorTable::GetPresent();
    if (!table)
        return;
    table->ClearLayer(CColorTable::Layer::kTheme);
    table->ClearLayer(CColorTable::Layer::kUser);
    for (int color = 0; color < kThemeColor_Count; ++color)
        table->SetLayerColor(CColorTable::Layer::kTheme, kBuiltIn[color].name,
                             state.table.colors[state.variant][color]);
    for (const auto& [name, color] : state.table.named[state.variant])
        table->SetLayerColor(CColorTable::Layer::kTheme, name, color);
    for (const auto& [name, color] : state.user)
        table->SetLayerColor(CColorTable::Layer::kUser, name, color);
}

void Changed() {
    ++State().generation;
    PublishNames();
}

// Named colours may be static objects of hosts, so the table is there when the library is.
[[maybe_unused]] const bool sPresent = [] {
    static CColorTable table;
    CColorTable::SetPresent(&table);
    PublishNames();
    return true;
}();

[[nodiscard]] int HexDigit(char character) noexcept {
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    return -1;
}

[[nodiscard]] bool IsBlank(char character) noexcept {
    return character == ' ' || character == '\t' || character == '\r';
}

// Reads a theme line by line into a table that is only used when all of it was good.
class ThemeReader {
  public:
    ThemeReader(std::string_view text, const std::string& source) : mText(text), mSource(source) {}

    ThemeTable Read() {
        while (!mText.empty() || mLine == 0) {
            const std::size_t end = std::min(mText.find('\n'), mText.size());
            std::string_view line = mText.substr(0, end);
            mText.remove_prefix(std::min(end + 1, mText.size()));
            ++mLine;
            ReadLine(line);
        }
        Resolve();
        return std::move(mTable);
    }

  private:
    struct Reference {
        int line;
        std::size_t column;
        std::string to;
    };
    using Key = std::pair<int, std::string>; // variant and name
    using References = std::map<Key, Reference>;

    [[noreturn]] void Fail(int line, std::size_t column, const std::string& reason) const {
        throw std::runtime_error(mSource + ":" + std::to_string(line) + ":" +
                                 std::to_string(column + 1) + ": " + reason);
    }

    void ReadLine(std::string_view line) {
        std::size_t begin = 0, end = line.size();
        while (begin < end && IsBlank(line[begin]))
            ++begin;
        if (begin == end || line[begin] == '#')
            return;
        end = std::min(end, line.find(';'));
        while (end > begin && IsBlank(line[end - 1]))
            --end;
        if (begin >= end)
            return;
        if (line[begin] == '[')
            ReadSection(line.substr(0, end), begin);
        else
            ReadColor(line.substr(0, end), begin);
    }

    void ReadSection(std::string_view line, std::size_t begin) {
        if (line.back() != ']')
            Fail(mLine, line.size(), "a section ends in \"]\"");
        const std::string_view name = line.substr(begin + 1, line.size() - begin - 2);
        for (int variant = 0; variant < kTheme_VariantCount; ++variant)
            if (name == kSectionNames[variant]) {
                mVariant = variant;
                return;
            }
        Fail(mLine, begin + 1, "unknown section \"" + std::string(name) + "\"");
    }

    void ReadColor(std::string_view line, std::size_t begin) {
        if (mVariant < 0)
            Fail(mLine, begin, "a colour before the first section");
        const std::size_t equals = line.find('=', begin);
        if (equals == std::string_view::npos)
            Fail(mLine, begin, "expected \"Name = colour\"");
        std::size_t nameEnd = equals;
        while (nameEnd > begin && IsBlank(line[nameEnd - 1]))
            --nameEnd;
        std::size_t value = equals + 1;
        while (value < line.size() && IsBlank(line[value]))
            ++value;
        if (nameEnd == begin)
            Fail(mLine, begin, "the name is missing");
        const std::string name(line.substr(begin, nameEnd - begin));
        const std::string_view text = line.substr(value);
        if (text.starts_with('$')) {
            mReferences[{mVariant, name}] = {mLine, value, std::string(text.substr(1))};
            return;
        }
        CRGBColor color;
        if (!QLX_Theme::ParseColor(text, color))
            Fail(mLine, value,
                 "expected #RRGGBB, #RRGGBBAA or $Name, not \"" + std::string(text) + "\"");
        Set(mVariant, name, color);
        mReferences.erase({mVariant, name}); // a later value replaces an earlier reference
    }

    void Set(int variant, const std::string& name, const CRGBColor& color) {
        EThemeColor known{};
        if (QLX_Theme::FindByName(name, known))
            mTable.colors[variant][known] = color;
        else
            mTable.named[variant][name] = color;
    }

    [[nodiscard]] bool Find(int variant, const std::string& name, CRGBColor& color) const {
        EThemeColor known{};
        if (QLX_Theme::FindByName(name, known)) {
            color = mTable.colors[variant][known];
            return true;
        }
        const auto found = mTable.named[variant].find(name);
        if (found == mTable.named[variant].end())
            return false;
        color = found->second;
        return true;
    }

    // References may name what is defined further down. Each chain is followed to the colour at its
    // end, which all of its names take; none is walked twice.
    void Resolve() {
        std::vector<References::const_iterator> inOrder;
        for (auto place = mReferences.cbegin(); place != mReferences.cend(); ++place)
            inOrder.push_back(place);
        std::sort(inOrder.begin(), inOrder.end(),
                  [](const auto& a, const auto& b) { return a->second.line < b->second.line; });
        std::set<Key> settled;
        for (const auto& first : inOrder)
            if (!settled.contains(first->first))
                Follow(first, settled);
    }

    void Follow(References::const_iterator place, std::set<Key>& settled) {
        const int variant = place->first.first;
        std::vector<References::const_iterator> chain;
        std::set<Key> seen;
        for (;;) {
            if (!seen.insert(place->first).second)
                Fail(place->second.line, place->second.column,
                     "\"" + place->first.second + "\" refers to itself");
            chain.push_back(place);
            const auto next = mReferences.find({variant, place->second.to});
            if (next == mReferences.end() || settled.contains(next->first))
                break;
            place = next;
        }
        CRGBColor color;
        if (!Find(variant, place->second.to, color))
            Fail(place->second.line, place->second.column,
                 "unknown colour \"" + place->second.to + "\"");
        for (const auto& link : chain) {
            Set(variant, link->first.second, color);
            settled.insert(link->first);
        }
    }

    std::string_view mText;
    std::string mSource;
    int mLine = 0;
    int mVariant = -1;
    ThemeTable mTable;
    References mReferences;
};

} // namespace

CRGBColor QLX_Theme::GetColor(EThemeColor color) { return GetColor(color, State().variant); }

CRGBColor QLX_Theme::GetColor(EThemeColor color, EThemeVariant variant) {
    CMN_ASSERT(color >= 0 && color < kThemeColor_Count);
    CMN_ASSERT(variant >= 0 && variant < kTheme_VariantCount);
    if (color < 0 || color >= kThemeColor_Count || variant < 0 || variant >= kTheme_VariantCount)
        return {};
    const ThemeState& state = State();
    if (!state.user.empty()) {
        const auto found = state.user.find(kBuiltIn[color].name);
        if (found != state.user.end())
            return found->second;
    }
    return state.table.colors[variant][color];
}

const char* QLX_Theme::GetName(EThemeColor color) noexcept {
    return color >= 0 && color < kThemeColor_Count ? kBuiltIn[color].name : "";
}

bool QLX_Theme::FindByName(std::string_view name, EThemeColor& color) noexcept {
    for (int i = 0; i < kThemeColor_Count; ++i)
        if (name == kBuiltIn[i].name) {
            color = EThemeColor(i);
            return true;
        }
    return false;
}

EThemeVariant QLX_Theme::GetVariant() noexcept { return State().variant; }

void QLX_Theme::SetVariant(EThemeVariant variant) {
    CMN_ASSERT(variant >= 0 && variant < kTheme_VariantCount);
    if (variant < 0 || variant >= kTheme_VariantCount || variant == State().variant)
        return;
    State().variant = variant;
    Changed();
}

bool QLX_Theme::IsDark() noexcept {
    return State().variant == kTheme_Dark || State().variant == kTheme_DarkHighContrast;
}

bool QLX_Theme::IsHighContrast() noexcept {
    return State().variant == kTheme_LightHighContrast ||
           State().variant == kTheme_DarkHighContrast;
}

void QLX_Theme::LoadText(std::string_view text, const std::string& source) {
    State().table = ThemeReader(text, source).Read();
    Changed();
}

void QLX_Theme::LoadFile(const std::string& path) {
    const std::string text = Sys_File::ReadAll(Sys_FileLoc(path));
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    LoadText(std::string_view(text).substr(text.starts_with(kByteOrderMark) ? 3 : 0), path);
}

std::string QLX_Theme::AsText() {
    const ThemeTable& table = State().table;
    std::string text;
    for (int variant = 0; variant < kTheme_VariantCount; ++variant) {
        text += std::string(variant ? "\n[" : "[") + kSectionNames[variant] + "]\n";
        for (int color = 0; color < kThemeColor_Count; ++color)
            text += std::string(kBuiltIn[color].name) + " = " +
                    FormatColor(table.colors[variant][color]) + "\n";
        for (const auto& [name, color] : table.named[variant])
            text += name + " = " + FormatColor(color) + "\n";
    }
    return text;
}

void QLX_Theme::Reset() {
    const std::uint32_t generation = State().generation;
    State() = ThemeState();
    State().generation = generation;
    Changed();
}

void QLX_Theme::SetUserColor(const std::string& name, const CRGBColor& color) {
    State().user[name] = color;
    Changed();
}

void QLX_Theme::ClearUserColors() {
    State().user.clear();
    Changed();
}

bool QLX_Theme::FindUserColor(std::string_view name, CRGBColor& color) {
    const auto found = State().user.find(name);
    if (found == State().user.end())
        return false;
    color = found->second;
    return true;
}

void QLX_Theme::SetTextBrightness(float brightness) {
    const float held = std::isnan(brightness) ? 1 : std::clamp(brightness, 0.0F, 2.0F);
    if (held == State().textBrightness)
        return;
    State().textBrightness = held;
    Changed();
}

float QLX_Theme::GetTextBrightness() noexcept { return State().textBrightness; }

std::uint32_t QLX_Theme::GetGeneration() noexcept { return State().generation; }

bool QLX_Theme::ParseColor(std::string_view text, CRGBColor& color) noexcept {
    if ((text.size() != 7 && text.size() != 9) || text[0] != '#')
        return false;
    std::uint32_t value = 0;
    for (std::size_t i = 1; i < text.size(); ++i) {
        const int digit = HexDigit(text[i]);
        if (digit < 0)
            return false;
        value = value << 4 | std::uint32_t(digit);
    }
    color = FromBytes(text.size() == 7 ? value << 8 | 0xFF : value);
    return true;
}

std::string QLX_Theme::FormatColor(const CRGBColor& color) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = "#";
    const auto add = [&](unsigned short component) {
        text += kDigits[component >> 12];
        text += kDigits[component >> 8 & 15];
    };
    add(color.GetRed());
    add(color.GetGreen());
    add(color.GetBlue());
    if (!color.IsOpaque())
        add(color.GetAlpha());
    return text;
}
