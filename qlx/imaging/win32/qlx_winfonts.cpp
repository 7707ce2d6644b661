#include "qlx/imaging/win32/qlx_winfonts.h"

#include <algorithm>
#include <cmath>
#include <list>
#include <map>
#include <vector>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/imaging/qlx_utf8.h"

namespace {

// The size at which advances are read: large enough that the rounding to pixels does not matter.
constexpr int kMeasureEm = 2048;
// Sizes of all faces together; a window uses a handful.
constexpr std::size_t kMostSizedFonts = 48;

struct SizedFont {
    const QLX_WinFace* face;
    int pixels;
    QLX_FontHandle handle;
};

struct FontState {
    std::list<SizedFont> sized; // the last used first
    std::map<std::pair<int, int>, std::unique_ptr<QLX_WinFace>> faces;
    std::map<int, std::unique_ptr<QLX_WinFace>> fallbacks; // by style
    QLX_MemoryDC context;
};

FontState& State() {
    static FontState state;
    return state;
}

HDC MeasureContext() {
    QLX_MemoryDC& context = State().context;
    if (!context)
        context =
            QLX_MemoryDC::New("CreateCompatibleDC", [] { return CreateCompatibleDC(nullptr); });
    return context.Get();
}

QLX_FontHandle MakeFont(const QLX_WinFace& face, int pixels) {
    return QLX_FontHandle::New("CreateFont", [&] {
        return CreateFontW(-pixels, 0, 0, 0, face.IsBold() ? FW_BOLD : FW_NORMAL, face.IsItalic(),
                           face.IsUnderlined(), FALSE, DEFAULT_CHARSET, OUT_TT_PRECIS,
                           CLIP_DEFAULT_PRECIS, ANTIALIASED_QUALITY, DEFAULT_PITCH | FF_DONTCARE,
                           face.GetFamily().c_str());
    });
}

int CALLBACK FoundOne(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM found) {
    *reinterpret_cast<bool*>(found) = true;
    return 0;
}

bool IsInstalled(const std::wstring& family) {
    if (family.empty() || family.size() >= LF_FACESIZE)
        return false;
    LOGFONTW wanted{};
    wanted.lfCharSet = DEFAULT_CHARSET;
    family.copy(wanted.lfFaceName, LF_FACESIZE - 1);
    bool found = false;
    if (HDC context = MeasureContext())
        EnumFontFamiliesExW(context, &wanted, FoundOne, reinterpret_cast<LPARAM>(&found), 0);
    return found;
}

// Combining marks, right-to-left and Indic scripts, joiners, presentation forms.
bool IsComplex(char32_t code) noexcept {
    return (code >= 0x300 && code < 0x370) || (code >= 0x590 && code < 0x1100) ||
           (code >= 0x1700 && code < 0x1E00) || (code >= 0x200B && code < 0x2010) ||
           (code >= 0x202A && code < 0x2030) || (code >= 0xFB1D && code < 0xFE10) ||
           (code >= 0xFE70 && code < 0xFF00);
}

std::wstring AsUnits(char32_t code) {
    if (code < 0x10000)
        return std::wstring(1, static_cast<wchar_t>(code));
    code -= 0x10000;
    return {static_cast<wchar_t>(0xD800 + (code >> 10)),
            static_cast<wchar_t>(0xDC00 + (code & 0x3FF))};
}

class WinMeasure final : public QLX_TextMeasure {
  public:
    float MeasureWidth(const QLX_Font& font, std::string_view text) override {
        QLX_WinFace& face = QLX_WinFonts::GetFace(font);
        double ems = 0;
        for (std::size_t place = 0; place < text.size();) {
            const QLX_WinCharacter& character = face.GetCharacter(QLX_NextCodePoint(text, place));
            if (character.complex)
                return face.MeasureShaped(QLX_ToWide(text)) * font.GetSize();
            ems += double(character.advance);
        }
        return float(ems * double(font.GetSize()));
    }
    QLX_FontMetrics MeasureFont(const QLX_Font& font) override {
        const QLX_WinFace& face = QLX_WinFonts::GetFace(font);
        const float size = font.GetSize();
        return {face.GetAscent() * size, face.GetDescent() * size, face.GetLeading() * size};
    }
};

} // namespace

// Text forms

std::wstring QLX_ToWide(std::string_view utf8) {
    std::wstring wide;
    wide.reserve(utf8.size());
    for (std::size_t place = 0; place < utf8.size();) {
        const char32_t code = QLX_NextCodePoint(utf8, place);
        if (code < 0x10000)
            wide += static_cast<wchar_t>(code);
        else
            wide += AsUnits(code);
    }
    return wide;
}

std::string QLX_FromWide(std::wstring_view wide) {
    std::string text;
    for (std::size_t i = 0; i < wide.size(); ++i) {
        std::uint32_t code = static_cast<std::uint16_t>(wide[i]);
        if (code >= 0xD800 && code < 0xE000) {
            const std::uint32_t low =
                i + 1 < wide.size() ? static_cast<std::uint16_t>(wide[i + 1]) : 0;
            if (code < 0xDC00 && low >= 0xDC00 && low < 0xE000) {
                code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
                ++i;
            } else {
                code = kReplacementCharacter;
            }
        }
        if (code < 0x80) {
            text += char(code);
        } else if (code < 0x800) {
            text += char(0xC0 | code >> 6);
            text += char(0x80 | (code & 0x3F));
        } else {
            if (code < 0x10000) {
                text += char(0xE0 | code >> 12);
            } else {
                text += char(0xF0 | code >> 18);
                text += char(0x80 | (code >> 12 & 0x3F));
            }
            text += char(0x80 | (code >> 6 & 0x3F));
            text += char(0x80 | (code & 0x3F));
        }
    }
    return text;
}

// Faces

QLX_WinFace::QLX_WinFace(const std::wstring& family, bool bold, bool italic, bool underlined)
    : mFamily(family), mBold(bold), mItalic(italic), mUnderlined(underlined) {
    const HDC context = MeasureContext();
    const QLX_FontHandle font = MakeFont(*this, kMeasureEm);
    TEXTMETRICW metrics{};
    if (!context || !font)
        return;
    const QLX_StSelect select(context, font.Get());
    if (GetTextMetricsW(context, &metrics)) {
        mAscent = float(metrics.tmAscent) / kMeasureEm;
        mDescent = float(metrics.tmDescent) / kMeasureEm;
        mLeading = float(metrics.tmExternalLeading) / kMeasureEm;
    }
}

const QLX_WinCharacter& QLX_WinFace::GetCharacter(char32_t code) {
    const auto found = mCharacters.find(code);
    if (found != mCharacters.end())
        return found->second;
    return mCharacters.emplace(code, Look(code)).first->second;
}

QLX_WinCharacter QLX_WinFace::Look(char32_t code) {
    QLX_WinCharacter character;
    character.complex = IsComplex(code);
    const HDC context = MeasureContext();
    const QLX_FontHandle font = MakeFont(*this, kMeasureEm);
    if (!context || !font) {
        character.advance = 0.6F;
        return character;
    }
    const QLX_StSelect select(context, font.Get());
    const std::wstring units = AsUnits(code);
    WORD glyphs[2] = {0xFFFF, 0xFFFF};
    if (code < 0x10000 && !character.complex &&
        GetGlyphIndicesW(context, units.c_str(), 1, glyphs, GGI_MARK_NONEXISTING_GLYPHS) == 1 &&
        glyphs[0] == 0xFFFF) {
        QLX_WinFace& fallback = QLX_WinFonts::GetFallback(*this);
        if (&fallback != this && fallback.mFamily != mFamily) {
            character = fallback.GetCharacter(code);
            character.fallback = true;
            return character;
        }
    }
    SIZE size{};
    GetTextExtentPoint32W(context, units.c_str(), int(units.size()), &size);
    character.advance = float(size.cx) / kMeasureEm;
    return character;
}

float QLX_WinFace::MeasureShaped(const std::wstring& line) {
    const HDC context = MeasureContext();
    const QLX_FontHandle font = MakeFont(*this, kMeasureEm);
    if (!context || !font)
        return 0.6F * float(line.size());
    const QLX_StSelect select(context, font.Get());
    SIZE size{};
    GetTextExtentPoint32W(context, line.c_str(), int(line.size()), &size);
    return float(size.cx) / kMeasureEm;
}

HFONT QLX_WinFace::GetSized(int pixels) {
    std::list<SizedFont>& sized = State().sized;
    for (auto it = sized.begin(); it != sized.end(); ++it)
        if (it->face == this && it->pixels == pixels) {
            sized.splice(sized.begin(), sized, it);
            return it->handle.Get();
        }
    QLX_FontHandle made = MakeFont(*this, pixels);
    if (!made)
        return nullptr;
    if (sized.size() >= kMostSizedFonts)
        sized.pop_back();
    sized.push_front({this, pixels, std::move(made)});
    return sized.front().handle.Get();
}

// Families

std::wstring QLX_WinFonts::ResolveFamily(std::string_view family) {
    const std::wstring wanted = QLX_ToWide(family);
    if (IsInstalled(wanted))
        return wanted;
    const std::wstring standard = QLX_ToWide(QLX_Font().GetFamily());
    for (const std::wstring& other : {standard, std::wstring(L"DejaVu Sans"),
                                      std::wstring(L"Segoe UI"), std::wstring(L"Tahoma")})
        if (IsInstalled(other)) {
            Cmn_Trace(kTrace_Drawing, "no font family %s: %s stands in",
                      std::string(family).c_str(), QLX_FromWide(other).c_str());
            return other;
        }
    return L"MS Shell Dlg";
}

QLX_WinFace& QLX_WinFonts::GetFace(const QLX_Font& font) {
    std::unique_ptr<QLX_WinFace>& face =
        State().faces[{font.GetFamilyNumber(), int(font.GetStyle())}];
    if (!face)
        face = std::make_unique<QLX_WinFace>(ResolveFamily(font.GetFamily()), font.IsBold(),
                                             font.IsItalic(), font.IsUnderlined());
    return *face;
}

QLX_WinFace& QLX_WinFonts::GetFallback(const QLX_WinFace& face) {
    const int style =
        int(face.IsBold()) | int(face.IsItalic()) << 1 | int(face.IsUnderlined()) << 2;
    std::unique_ptr<QLX_WinFace>& fallback = State().fallbacks[style];
    if (!fallback)
        fallback =
            std::make_unique<QLX_WinFace>(ResolveFamily(QLX_Font().GetFamily()), face.IsBold(),
                                          face.IsItalic(), face.IsUnderlined());
    return *fallback;
}

bool QLX_WinFonts::AddFontFile(const std::wstring& path) {
    const bool added = AddFontResourceExW(path.c_str(), FR_PRIVATE, nullptr) > 0;
    if (added)
        Clear();
    return added;
}

void QLX_WinFonts::Clear() {
    State().sized.clear();
    State().faces.clear();
    State().fallbacks.clear();
    State().context.Reset();
}

void QLX_WinFonts::InstallMeasure() {
    static WinMeasure measure;
    QLX_TextMeasure::Install(&measure);
}

// Drawing

namespace {

// Draws one run of a face with every unit's place given, and returns nothing: the caller knows the
// advance.
void DrawRun(HDC context, QLX_WinFace& face, int pixels, const std::wstring& units,
             const std::vector<int>& advances, int x, int baseline, const RECT* limit) {
    const HFONT font = face.GetSized(pixels);
    if (!font || units.empty())
        return;
    const QLX_StSelect select(context, font);
    ExtTextOutW(context, x, baseline, limit ? ETO_CLIPPED : 0, limit, units.c_str(),
                UINT(units.size()), advances.empty() ? nullptr : advances.data());
}

} // namespace

void QLX_DrawGDIText(HDC context, std::string_view text, const QLX_Font& font, double pixels,
                     double x, int baseline, const RECT* limit) {
    QLX_WinFace& face = QLX_WinFonts::GetFace(font);
    const int size = std::max(1, int(std::lround(std::min(pixels, 4000.0))));
    const UINT align = SetTextAlign(context, TA_LEFT | TA_BASELINE | TA_NOUPDATECP);
    const int background = SetBkMode(context, TRANSPARENT);
    bool shaped = false;
    for (std::size_t place = 0; place < text.size() && !shaped;)
        shaped = face.GetCharacter(QLX_NextCodePoint(text, place)).complex;
    const auto whole = [](double at) { return int(std::floor(std::clamp(at, -1e8, 1e8) + 0.5)); };
    if (shaped) {
        DrawRun(context, face, size, QLX_ToWide(text), {}, whole(x), baseline, limit);
    } else {
        // Characters stand where their linear advances put them, to the nearest pixel, whatever the
        // device font's hinted widths are: text then measures the same at every scale.
        std::wstring units;
        std::vector<int> advances;
        double at = x;
        double runStart = x;
        bool fallback = false;
        const auto finish = [&] {
            DrawRun(context, fallback ? QLX_WinFonts::GetFallback(face) : face, size, units,
                    advances, whole(runStart), baseline, limit);
            units.clear();
            advances.clear();
            runStart = at;
        };
        for (std::size_t place = 0; place < text.size();) {
            const char32_t code = QLX_NextCodePoint(text, place);
            const QLX_WinCharacter& character = face.GetCharacter(code);
            if (character.fallback != fallback) {
                finish();
                fallback = character.fallback;
            }
            const double next = at + double(character.advance) * pixels;
            const std::wstring added = AsUnits(code);
            units += added;
            advances.push_back(whole(next) - whole(at));
            advances.resize(units.size(), 0);
            at = next;
        }
        finish();
    }
    SetBkMode(context, background);
    SetTextAlign(context, align);
}
