#include "qlx/imaging/win32/qlx_d2dtext.h"

#include <cmath>
#include <list>
#include <map>
#include <string>
#include <unordered_map>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/imaging/win32/qlx_d2dmanager.h"
#include "qlx/imaging/win32/qlx_winfonts.h"

namespace {

// A window shows a few hundred texts; those of the last windows stay.
constexpr std::size_t kMostLines = 1024;

struct Line {
    std::string key;
    QLX_ComPtr<IDWriteTextLayout> layout;
    float baseline = 0;
};

struct FormatKey {
    int family;
    int style;
    int pixels64ths;
    auto operator<=>(const FormatKey&) const = default;
};

struct TextState {
    std::map<FormatKey, QLX_ComPtr<IDWriteTextFormat>> formats;
    QLX_ComPtr<IDWriteTypography> typography;
    std::list<Line> lines; // the last used first
    std::unordered_map<std::string_view, std::list<Line>::iterator> byKey;
    unsigned asked = 0;
    unsigned laidOut = 0;
};

// Deliberate: never deleted. When the process ends, the libraries' own threads are gone already,
// and giving their objects back would wait for them for ever. Shutdown does it in time.
TextState& State() {
    static auto& state = *new TextState;
    return state;
}

IDWriteTextFormat* FormatFor(const FormatKey& key, const QLX_Font& font) {
    QLX_ComPtr<IDWriteTextFormat>& format = State().formats[key];
    if (format)
        return format.Get();
    // A family that is not installed would draw nothing, without any error.
    const std::wstring& family = QLX_WinFonts::GetFace(font).GetFamily();
    IDWriteTextFormat* made = nullptr;
    const HRESULT result = QLX_D2DManager::GetTextFactory()->CreateTextFormat(
        family.c_str(), nullptr,
        font.IsBold() ? DWRITE_FONT_WEIGHT_BOLD : DWRITE_FONT_WEIGHT_NORMAL,
        font.IsItalic() ? DWRITE_FONT_STYLE_ITALIC : DWRITE_FONT_STYLE_NORMAL,
        DWRITE_FONT_STRETCH_NORMAL, float(key.pixels64ths) / 64, L"", &made);
    if (FAILED(result)) {
        Cmn_Trace(kTrace_Drawing, "IDWriteFactory::CreateTextFormat (0x%08lX)",
                  static_cast<unsigned long>(result));
        return nullptr;
    }
    format.Adopt(made);
    made->SetWordWrapping(DWRITE_WORD_WRAPPING_NO_WRAP);
    return made;
}

// Neither kerning nor ligatures: the width of a text is the sum of its characters'.
IDWriteTypography* PlainTypography() {
    QLX_ComPtr<IDWriteTypography>& typography = State().typography;
    if (typography)
        return typography.Get();
    IDWriteTypography* made = nullptr;
    if (FAILED(QLX_D2DManager::GetTextFactory()->CreateTypography(&made)))
        return nullptr;
    typography.Adopt(made);
    made->AddFontFeature({DWRITE_FONT_FEATURE_TAG_KERNING, 0});
    made->AddFontFeature({DWRITE_FONT_FEATURE_TAG_STANDARD_LIGATURES, 0});
    return made;
}

void LayOut(Line& line, std::string_view text, const QLX_Font& font, const FormatKey& key) {
    IDWriteTextFormat* format = FormatFor(key, font);
    if (!format)
        return;
    const std::wstring wide = QLX_ToWide(text);
    IDWriteTextLayout* made = nullptr;
    if (FAILED(QLX_D2DManager::GetTextFactory()->CreateTextLayout(wide.c_str(), UINT32(wide.size()),
                                                                  format, 1e6F, 1e6F, &made)))
        return;
    line.layout.Adopt(made);
    const DWRITE_TEXT_RANGE all{0, UINT32(wide.size())};
    if (IDWriteTypography* typography = PlainTypography())
        made->SetTypography(typography, all);
    if (font.IsUnderlined())
        made->SetUnderline(TRUE, all);
    DWRITE_LINE_METRICS metrics[2]{};
    UINT32 count = 0;
    if (SUCCEEDED(made->GetLineMetrics(metrics, 2, &count)) && count > 0)
        line.baseline = metrics[0].baseline;
}

} // namespace

QLX_D2DLine QLX_D2DText::GetLine(std::string_view text, const QLX_Font& font, double pixels) {
    TextState& state = State();
    ++state.asked;
    const FormatKey format{font.GetFamilyNumber(), int(font.GetStyle()),
                           int(std::lround(pixels * 64))};
    static std::string key; // reused; user-interface thread
    key.assign(reinterpret_cast<const char*>(&format), sizeof format);
    key.append(text);
    if (const auto found = state.byKey.find(key); found != state.byKey.end()) {
        state.lines.splice(state.lines.begin(), state.lines, found->second);
        return {found->second->layout.Get(), found->second->baseline};
    }
    Line line;
    line.key = key;
    ++state.laidOut;
    LayOut(line, text, font, format);
    if (!line.layout)
        return {};
    if (state.lines.size() >= kMostLines) {
        state.byKey.erase(state.lines.back().key);
        state.lines.pop_back();
    }
    state.lines.push_front(std::move(line));
    state.byKey.emplace(state.lines.front().key, state.lines.begin());
    return {state.lines.front().layout.Get(), state.lines.front().baseline};
}

unsigned QLX_D2DText::GetAskedCount() noexcept { return State().asked; }
unsigned QLX_D2DText::GetLaidOutCount() noexcept { return State().laidOut; }

void QLX_D2DText::Clear() {
    TextState& state = State();
    state.byKey.clear();
    state.lines.clear();
    state.formats.clear();
    state.typography.Reset();
    state.asked = state.laidOut = 0;
}
