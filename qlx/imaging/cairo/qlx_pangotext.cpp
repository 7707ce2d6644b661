#include "qlx/imaging/cairo/qlx_pangotext.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>

#include "qlx/imaging/cairo/qlx_datafiles.h"
#include "qlx/imaging/cairo/qlx_pangoapi.h"
#include "qlx/imaging/qlx_textcaret.h"
#include "qlx/imaging/qlx_utf8.h"

#include <fontconfig/fontconfig.h>

namespace {

// Texts that are kept laid out; beyond this all are dropped, which costs a layout each.
constexpr std::size_t kMostTexts = 512;

struct Unref {
    void operator()(void* object) const noexcept { QLX_Pango().g_object_unref(object); }
};
template <class T>
using ObjectPtr = std::unique_ptr<T, Unref>;

// The project's own configuration: nothing of the machine's or the user's decides what text looks
// like. Without the file the same fonts are named one by one.
[[nodiscard]] FcConfig* NewConfiguration() {
    FcConfig* config = FcConfigCreate();
    const std::string file = QLX_FindDataFile("fonts.conf");
    const auto* path = reinterpret_cast<const FcChar8*>(file.c_str());
    if (!file.empty() && FcConfigParseAndLoad(config, path, FcFalse) &&
        FcConfigBuildFonts(config)) {
        if (const FcFontSet* set = FcConfigGetFonts(config, FcSetSystem); set && set->nfont > 0)
            return config;
    }
    for (const bool bold : {false, true})
        for (const char* family : {"DejaVu Sans", "DejaVu Sans Mono", "DejaVu Serif"})
            FcConfigAppFontAddFile(config, reinterpret_cast<const FcChar8*>(
                                               QLX_GlyphCache::GetFontFile(family, bold).c_str()));
    FcConfigAppFontAddFile(
        config, reinterpret_cast<const FcChar8*>(QLX_GlyphCache::GetFallbackFile().c_str()));
    return config;
}

// Advances must not be rounded to pixels of any size: layout is the same at every scale.
void WithoutHinting(FcPattern* pattern, gpointer) {
    FcPatternDel(pattern, FC_HINTING);
    FcPatternAddBool(pattern, FC_HINTING, FcFalse);
}

class Shaper {
  public:
    Shaper() {
        mMap.reset(QLX_Pango().pango_ft2_font_map_new());
        auto* map = reinterpret_cast<PangoFT2FontMap*>(mMap.get());
        QLX_Pango().pango_ft2_font_map_set_resolution(map, 96, 96);
        FcConfig* config = NewConfiguration();
        QLX_Pango().pango_fc_font_map_set_config(reinterpret_cast<PangoFcFontMap*>(mMap.get()),
                                                 config);
        FcConfigDestroy(config); // the map holds its own reference
        QLX_Pango().pango_fc_font_map_set_default_substitute(
            reinterpret_cast<PangoFcFontMap*>(mMap.get()), WithoutHinting, nullptr, nullptr);
        mContext.reset(QLX_Pango().pango_font_map_create_context(mMap.get()));
        QLX_Pango().pango_context_set_round_glyph_positions(mContext.get(), FALSE);
        mLayout.reset(QLX_Pango().pango_layout_new(mContext.get()));
        QLX_Pango().pango_layout_set_single_paragraph_mode(mLayout.get(), TRUE);
    }

    void Shape(const QLX_Font& font, const std::string& text, QLX_ShapedText& out) {
        PangoLayoutLine* line = LayOut(font, text);
        int x = 0;
        for (const GSList* run = line ? line->runs : nullptr; run; run = run->next)
            AddRun(*static_cast<PangoLayoutRun*>(run->data), font, x, out);
        out.width = float(x) / PANGO_SCALE;
    }

    /// Where a caret before an offset stands in a well-formed text, in logical units.
    [[nodiscard]] float CaretPlace(const QLX_Font& font, const std::string& text,
                                   std::size_t offset) {
        static_cast<void>(LayOut(font, text));
        PangoRectangle strong{};
        QLX_Pango().pango_layout_get_cursor_pos(mLayout.get(), int(offset), &strong, nullptr);
        return float(strong.x) / PANGO_SCALE;
    }

    /// The one line of a well-formed text; valid until the next call.
    [[nodiscard]] PangoLayoutLine* LayOut(const QLX_Font& font, const std::string& text) {
        PangoFontDescription* description = QLX_Pango().pango_font_description_new();
        QLX_Pango().pango_font_description_set_family(description, font.GetFamily().c_str());
        QLX_Pango().pango_font_description_set_absolute_size(description,
                                                             double(font.GetSize()) * PANGO_SCALE);
        if (font.IsBold())
            QLX_Pango().pango_font_description_set_weight(description, PANGO_WEIGHT_BOLD);
        QLX_Pango().pango_layout_set_font_description(mLayout.get(), description);
        QLX_Pango().pango_font_description_free(description);
        QLX_Pango().pango_layout_set_text(mLayout.get(), text.data(), int(text.size()));
        PangoAttrList* attributes = QLX_Pango().pango_attr_list_new();
        // No kerning and no ligatures that are only for looks, as in simple text: widths add up.
        QLX_Pango().pango_attr_list_insert(
            attributes, QLX_Pango().pango_attr_font_features_new("kern=0, liga=0, clig=0"));
        QLX_Pango().pango_layout_set_attributes(mLayout.get(), attributes);
        QLX_Pango().pango_attr_list_unref(attributes);

        return QLX_Pango().pango_layout_get_line_readonly(mLayout.get(), 0);
    }

  private:
    [[nodiscard]] static QLX_GlyphSource SourceOf(PangoFont* font, bool slant) {
        QLX_GlyphSource source;
        // GLib's cast macros call its functions by name; these are the same questions.
        const QLX_PangoFunctions& pango = QLX_Pango();
        const bool isFontconfigs = pango.g_type_check_instance_is_a(
            reinterpret_cast<GTypeInstance*>(font), pango.pango_fc_font_get_type());
        FcPattern* pattern =
            isFontconfigs ? pango.pango_fc_font_get_pattern(reinterpret_cast<PangoFcFont*>(font))
                          : nullptr;
        FcChar8* file = nullptr;
        if (!pattern || FcPatternGetString(pattern, FC_FILE, 0, &file) != FcResultMatch)
            return source;
        int index = 0;
        FcBool embolden = FcFalse;
        FcPatternGetInteger(pattern, FC_INDEX, 0, &index);
        FcPatternGetBool(pattern, FC_EMBOLDEN, 0, &embolden);
        source.face = std::int16_t(
            QLX_GlyphCache::OpenFace(reinterpret_cast<const char*>(file), index & 0xFFFF));
        source.embolden = embolden != FcFalse;
        source.slant = slant;
        return source;
    }

    static void AddRun(const PangoLayoutRun& run, const QLX_Font& font, int& x,
                       QLX_ShapedText& out) {
        QLX_GlyphSource source = SourceOf(run.item->analysis.font, font.IsItalic());
        for (int i = 0; i < run.glyphs->num_glyphs; ++i) {
            const PangoGlyphInfo& info = run.glyphs->glyphs[i];
            if (info.glyph != PANGO_GLYPH_EMPTY) {
                // A character that no font has shows as the face's own "missing" glyph.
                source.glyph = (info.glyph & PANGO_GLYPH_UNKNOWN_FLAG) ? 0 : info.glyph;
                out.glyphs.push_back({source, float(x + info.geometry.x_offset) / PANGO_SCALE,
                                      float(info.geometry.y_offset) / PANGO_SCALE});
            }
            x += info.geometry.width;
        }
    }

    ObjectPtr<PangoFontMap> mMap;
    ObjectPtr<PangoContext> mContext;
    ObjectPtr<PangoLayout> mLayout;
};

void AppendUTF8(std::string& out, char32_t code) {
    if (code < 0x80) {
        out += char(code);
    } else if (code < 0x800) {
        out += char(0xC0 | code >> 6);
        out += char(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += char(0xE0 | code >> 12);
        out += char(0x80 | (code >> 6 & 0x3F));
        out += char(0x80 | (code & 0x3F));
    } else {
        out += char(0xF0 | code >> 18);
        out += char(0x80 | (code >> 12 & 0x3F));
        out += char(0x80 | (code >> 6 & 0x3F));
        out += char(0x80 | (code & 0x3F));
    }
}

Shaper& TheShaper() {
    static Shaper shaper;
    return shaper;
}

/// Carets by Pango's layout where the text is not plainly one letter behind the other; plain text
/// does not load it.
class PangoCarets final : public QLX_TextCarets {
  public:
    float PlaceOf(const QLX_Font& font, std::string_view line, std::size_t offset) override {
        if (IsPlain(line))
            return GetBuiltIn().PlaceOf(font, line, offset);
        return TheShaper().CaretPlace(font, std::string(line), offset);
    }
    std::size_t OffsetAt(const QLX_Font& font, std::string_view line, float place) override {
        if (IsPlain(line))
            return GetBuiltIn().OffsetAt(font, line, place);
        int index = 0;
        int trailing = 0; // characters behind the index, when the place is in their second half
        const auto x = int(std::clamp(place, -1e6f, 1e6f) * PANGO_SCALE);
        QLX_Pango().pango_layout_line_x_to_index(LayOut(font, line), x, &index, &trailing);
        auto offset = std::min(std::size_t(std::max(index, 0)), line.size());
        for (; trailing > 0 && offset < line.size(); --trailing)
            static_cast<void>(QLX_NextCodePoint(line, offset));
        return offset;
    }
    std::vector<Span> SpansOf(const QLX_Font& font, std::string_view line, std::size_t from,
                              std::size_t to) override {
        if (IsPlain(line))
            return GetBuiltIn().SpansOf(font, line, from, to);
        std::vector<Span> spans;
        if (from >= to)
            return spans;
        int* ranges = nullptr;
        int count = 0;
        QLX_Pango().pango_layout_line_get_x_ranges(LayOut(font, line), int(from), int(to), &ranges,
                                                   &count);
        for (int i = 0; i < count; ++i)
            spans.push_back(
                {float(ranges[2 * i]) / PANGO_SCALE, float(ranges[2 * i + 1]) / PANGO_SCALE});
        QLX_Pango().g_free(ranges);
        return spans;
    }
    bool RunsToTheLeft(std::string_view line) override {
        if (IsPlain(line))
            return false;
        const PangoLayoutLine* laidOut = LayOut(QLX_Font(), line);
        return laidOut && laidOut->resolved_dir == PANGO_DIRECTION_RTL;
    }

  private:
    // Below U+0300 nothing joins, combines or runs to the left.
    [[nodiscard]] static bool IsPlain(std::string_view line) {
        return std::all_of(line.begin(), line.end(),
                           [](char c) { return static_cast<unsigned char>(c) < 0xCC; });
    }
    // Texts that are edited are well-formed, so offsets into them are Pango's.
    [[nodiscard]] static PangoLayoutLine* LayOut(const QLX_Font& font, std::string_view line) {
        return TheShaper().LayOut(font, std::string(line));
    }
};

// Nothing is opened here: the first text does that.
[[maybe_unused]] const bool sCaretsInstalled = [] {
    static PangoCarets carets;
    QLX_TextCarets::Install(&carets);
    return true;
}();

struct Key {
    int family, size, style;
    std::string text;
    auto operator<=>(const Key&) const = default;
};
struct KeyView {
    int family, size, style;
    std::string_view text;
};
struct KeyLess {
    using is_transparent = void;
    template <class A, class B>
    bool operator()(const A& a, const B& b) const noexcept {
        return std::tuple(a.family, a.size, a.style, std::string_view(a.text)) <
               std::tuple(b.family, b.size, b.style, std::string_view(b.text));
    }
};

} // namespace

const QLX_ShapedText& QLX_ShapeText(const QLX_Font& font, std::string_view text) {
    static std::map<Key, QLX_ShapedText, KeyLess> shaped;
    const KeyView view{font.GetFamilyNumber(), font.GetSize64ths(),
                       font.GetStyle() & (kFontStyle_Bold | kFontStyle_Italic), text};
    if (const auto found = shaped.find(view); found != shaped.end())
        return found->second;
    if (shaped.size() >= kMostTexts)
        shaped.clear();
    std::string clean;
    for (std::size_t place = 0; place < text.size();) {
        const char32_t code = QLX_NextCodePoint(text, place);
        AppendUTF8(clean, code == 0 ? kReplacementCharacter : code);
    }
    QLX_ShapedText& out = shaped[Key{view.family, view.size, view.style, std::string(text)}];
    TheShaper().Shape(font, clean, out);
    return out;
}
