#include "qlx/imaging/cairo/qlx_glyphcache.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>

#include "basekit/cmn/cmn_string.h"
#include "basekit/cmn/cmn_trace.h"
#include "qlx/imaging/cairo/qlx_pangotext.h"
#include "qlx/imaging/qlx_glyphcoverage.h"
#include "qlx/imaging/qlx_utf8.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

namespace {

// Debian's fonts-dejavu-core and fonts-motoya-l-cedar.
constexpr const char* kDejaVuFolder = "/usr/share/fonts/truetype/dejavu/";
constexpr const char* kFallbackPath = "/usr/share/fonts/truetype/motoya-l-cedar/MTLc3m.ttf";

// Masks beyond this are thrown away together; a window's fonts and sizes come to a few hundred
// kilobytes.
constexpr std::size_t kMostMaskBytes = std::size_t{32} << 20;
// Larger glyphs are not rendered: nothing on a screen needs them.
constexpr int kLargestPixelSize = 2000 * 64;

struct Family {
    std::string files[2]; // plain, bold
};

struct Cache {
    FT_Library library = nullptr;
    std::map<std::pair<std::string, int>, int> numbers;
    std::vector<FT_Face> faces;
    std::map<std::string, Family> families;
    std::map<std::uint32_t, std::unique_ptr<QLX_FontFaces>> fonts; // by family number and style
    std::unordered_map<int, std::unique_ptr<QLX_SizedFont>> sizes;
    std::unordered_map<std::uint64_t, std::unique_ptr<QLX_FontAtSize>> atSizes; // refer to both
    std::string fallback = kFallbackPath;
    unsigned generation = 1;
    std::uint64_t rendered = 0;
    std::size_t maskBytes = 0;

    Cache() {
        FT_Init_FreeType(&library);
        const std::string folder = kDejaVuFolder;
        families["DejaVu Sans"] = {{folder + "DejaVuSans.ttf", folder + "DejaVuSans-Bold.ttf"}};
        families["DejaVu Sans Mono"] = {
            {folder + "DejaVuSansMono.ttf", folder + "DejaVuSansMono-Bold.ttf"}};
        families["DejaVu Serif"] = {{folder + "DejaVuSerif.ttf", folder + "DejaVuSerif-Bold.ttf"}};
        families["sans-serif"] = families["DejaVu Sans"];
        families["monospace"] = families["DejaVu Sans Mono"];
        families["serif"] = families["DejaVu Serif"];
    }
    ~Cache() {
        for (const FT_Face face : faces)
            FT_Done_Face(face);
        FT_Done_FreeType(library);
    }
};

Cache& TheCache() {
    static Cache cache;
    return cache;
}

// Scripts whose characters are set one after the other, left to right, without joining: everything
// else goes through general text layout.
[[nodiscard]] bool IsSimpleScript(char32_t code) noexcept {
    struct Range {
        char32_t first, last;
    };
    constexpr Range kRanges[] = {
        {0x20, 0x7E},     {0xA0, 0xAC},     {0xAE, 0x2FF},    {0x370, 0x482},   {0x48A, 0x52F},
        {0x1E00, 0x1FFF}, {0x2000, 0x200A}, {0x2010, 0x2027}, {0x202F, 0x205F}, {0x2070, 0x20CF},
        {0x2100, 0x2BFF}, {0x3000, 0x3029}, {0x3030, 0x3098}, {0x309B, 0x312F}, {0x31F0, 0x4DBF},
        {0x4E00, 0x9FFF}, {0xAC00, 0xD7A3}, {0xF900, 0xFAFF}, {0xFB00, 0xFB06}, {0xFF01, 0xFFEE},
        {0xFFFC, 0xFFFD}};
    for (const Range& range : kRanges)
        if (code >= range.first && code <= range.last)
            return true;
    return false;
}

[[nodiscard]] std::uint64_t KeyOf(const QLX_GlyphSource& source, int quarter) noexcept {
    return std::uint64_t(source.glyph) | std::uint64_t(std::uint16_t(source.face)) << 32 |
           std::uint64_t(source.embolden) << 48 | std::uint64_t(source.slant) << 49 |
           std::uint64_t(quarter) << 50;
}

[[nodiscard]] std::uint32_t FontKey(const QLX_Font& font) noexcept {
    return std::uint32_t(font.GetFamilyNumber()) << 2 |
           std::uint32_t(font.GetStyle() & (kFontStyle_Bold | kFontStyle_Italic));
}

// A slant of 12 degrees in 16.16, what italics of upright faces are usually given.
constexpr FT_Fixed kSlant = 0x3666;

// Loads a glyph's outline in the wanted size, place and look. False when there is nothing to
// render.
[[nodiscard]] bool LoadOutline(FT_Face face, const QLX_GlyphSource& source, int pixelSize,
                               int quarter) {
    if (FT_Set_Char_Size(face, 0, pixelSize, 72, 72) != 0)
        return false;
    // Light hinting moves outlines up and down only, so advances stay linear.
    if (FT_Load_Glyph(face, source.glyph, FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP) != 0 ||
        face->glyph->format != FT_GLYPH_FORMAT_OUTLINE)
        return false;
    FT_Outline* outline = &face->glyph->outline;
    if (source.embolden)
        FT_Outline_Embolden(outline, pixelSize / 24);
    if (source.slant) {
        const FT_Matrix matrix = {0x10000, kSlant, 0, 0x10000};
        FT_Outline_Transform(outline, &matrix);
    }
    FT_Outline_Translate(outline, quarter * 64 / QLX_SizedFont::kQuarters, 0);
    return FT_Render_Glyph(face->glyph, FT_RENDER_MODE_NORMAL) == 0;
}

class DesktopMeasure final : public QLX_TextMeasure {
  public:
    float MeasureWidth(const QLX_Font& font, std::string_view text) override {
        QLX_FontFaces& faces = QLX_GlyphCache::GetFaces(font);
        if (!faces.IsThere())
            return GetBuiltIn().MeasureWidth(font, text);
        float em = 0;
        for (std::size_t place = 0; place < text.size();) {
            const QLX_FontCharacter& character = faces.GetCharacter(QLX_NextCodePoint(text, place));
            if (!character.simple)
                return QLX_ShapeText(font, text).width;
            em += character.advance;
        }
        return em * font.GetSize();
    }
    QLX_FontMetrics MeasureFont(const QLX_Font& font) override {
        const QLX_FontFaces& faces = QLX_GlyphCache::GetFaces(font);
        if (!faces.IsThere())
            return GetBuiltIn().MeasureFont(font);
        const QLX_FontMetrics& em = faces.GetMetrics();
        const float size = font.GetSize();
        return {em.ascent * size, em.descent * size, em.leading * size};
    }
};

class DesktopCoverage final : public QLX_GlyphCoverage {
  public:
    bool HasGlyph(const QLX_Font& font, char32_t character) override {
        QLX_FontFaces& faces = QLX_GlyphCache::GetFaces(font);
        if (!faces.IsThere() || faces.GetCharacter(character).known)
            return true;
        std::string text;
        Cmn_AppendUTF8(text, character);
        const QLX_ShapedText& shaped = QLX_ShapeText(font, text);
        return std::none_of(shaped.glyphs.begin(), shaped.glyphs.end(),
                            [](const QLX_ShapedText::Glyph& glyph) {
                                return glyph.source.face < 0 || glyph.source.glyph == 0;
                            });
    }
};

// Nothing is opened here: the first text does that.
[[maybe_unused]] const bool sInstalled = [] {
    static DesktopMeasure measure;
    QLX_TextMeasure::Install(&measure);
    static DesktopCoverage coverage;
    QLX_GlyphCoverage::Install(&coverage);
    return true;
}();

} // namespace

const QLX_GlyphMask& QLX_SizedFont::GetGlyph(const QLX_GlyphSource& source, int quarter) {
    const auto [place, isNew] = mGlyphs.try_emplace(KeyOf(source, quarter));
    QLX_GlyphMask& mask = place->second;
    Cache& cache = TheCache();
    if (!isNew || source.face < 0 || std::size_t(source.face) >= cache.faces.size() ||
        mPixelSize > kLargestPixelSize)
        return mask;
    ++cache.rendered;
    const FT_Face face = cache.faces[std::size_t(source.face)];
    if (!LoadOutline(face, source, mPixelSize, quarter))
        return mask;
    const FT_Bitmap& bitmap = face->glyph->bitmap;
    if (bitmap.width == 0 || bitmap.rows == 0)
        return mask;
    mask.left = face->glyph->bitmap_left;
    mask.top = -face->glyph->bitmap_top;
    mask.width = int(bitmap.width);
    mask.height = int(bitmap.rows);
    mask.pitch = (mask.width + 3 + 3) & ~3;
    const std::size_t size = std::size_t(mask.pitch) * std::size_t(mask.height);
    mBytes.push_back(std::make_unique<std::uint8_t[]>(size));
    std::uint8_t* bytes = mBytes.back().get();
    for (int y = 0; y < mask.height; ++y)
        std::memcpy(bytes + std::size_t(y) * std::size_t(mask.pitch),
                    bitmap.buffer + std::ptrdiff_t(y) * bitmap.pitch, std::size_t(mask.width));
    mask.bytes = bytes;
    cache.maskBytes += size;
    if (cache.maskBytes > kMostMaskBytes)
        ++cache.generation; // painters fetch their size anew with the next line, which clears
    return mask;
}

QLX_FontFaces::QLX_FontFaces(const QLX_Font& font) : mSlant(font.IsItalic()) {
    // The standard family has the characters that another lacks, and stands in for one whose file
    // cannot be used.
    const std::string own = QLX_GlyphCache::GetFontFile(font.GetFamily(), font.IsBold());
    const std::string standard = QLX_GlyphCache::GetFontFile("DejaVu Sans", font.IsBold());
    if (!AddFace(own))
        Cmn_TraceWrite("font file \"%s\" of \"%s\" cannot be opened", own.c_str(),
                       font.GetFamily().c_str());
    if (standard != own)
        (void)AddFace(standard);
}

bool QLX_FontFaces::AddFace(const std::string& path) {
    const int number = QLX_GlyphCache::OpenFace(path, 0);
    if (number < 0)
        return false;
    mFaces.push_back({std::int16_t(number), false});
    if (mIsThere)
        return true;
    mIsThere = true; // the first face says how high lines are
    const FT_Face face = TheCache().faces[std::size_t(number)];
    const float em = face->units_per_EM;
    mMetrics.ascent = float(face->ascender) / em;
    mMetrics.descent = float(-face->descender) / em;
    mMetrics.leading = std::max(0.0F, float(face->height - face->ascender + face->descender) / em);
    mUnderlineOffset = float(-face->underline_position) / em;
    mUnderlineThickness = float(face->underline_thickness) / em;
    return true;
}

const QLX_FontCharacter& QLX_FontFaces::FindCharacter(char32_t code) {
    if (code >= kDirect)
        if (const auto found = mOthers.find(code); found != mOthers.end())
            return found->second;
    QLX_FontCharacter character;
    const auto tryFace = [&](const Face& candidate) {
        const FT_Face face = TheCache().faces[std::size_t(candidate.number)];
        const FT_UInt glyph = FT_Get_Char_Index(face, code);
        if (glyph == 0)
            return false;
        character.known = true;
        character.source = {candidate.number, candidate.embolden, mSlant, glyph};
        if (FT_Load_Glyph(face, glyph, FT_LOAD_NO_SCALE) == 0)
            character.advance = float(face->glyph->metrics.horiAdvance) / float(face->units_per_EM);
        return true;
    };
    bool found = false;
    for (const Face& face : mFaces)
        if ((found = tryFace(face)))
            break;
    if (!found) { // the fallback is opened by the first character that needs it
        const int number = QLX_GlyphCache::OpenFace(QLX_GlyphCache::GetFallbackFile(), 0);
        if (number >= 0) {
            const bool bold =
                !mFaces.empty() && (TheCache().faces[std::size_t(mFaces[0].number)]->style_flags &
                                    FT_STYLE_FLAG_BOLD) != 0;
            (void)tryFace({std::int16_t(number), bold});
        }
    }
    // Control characters take no room and show nothing.
    if (code < 0x20 || code == 0x7F)
        character = {{}, 0, true, true};
    else
        character.simple = character.known && IsSimpleScript(code);
    if (code < kDirect) {
        mDirect[code] = character;
        mDirectMade[code] = true;
        return mDirect[code];
    }
    return mOthers[code] = character;
}

QLX_FontFaces& QLX_GlyphCache::GetFaces(const QLX_Font& font) {
    auto& faces = TheCache().fonts[FontKey(font)];
    if (!faces)
        faces = std::make_unique<QLX_FontFaces>(font);
    return *faces;
}

QLX_SizedFont& QLX_GlyphCache::GetSized(int pixelSize26_6) {
    Cache& cache = TheCache();
    if (cache.maskBytes > kMostMaskBytes)
        Clear();
    auto& sized = cache.sizes[pixelSize26_6];
    if (!sized)
        sized = std::make_unique<QLX_SizedFont>(pixelSize26_6);
    return *sized;
}

const QLX_FontAtSize::Ascii& QLX_FontAtSize::MakeAscii(unsigned char character) {
    const QLX_FontCharacter& found = mFaces.GetCharacter(character);
    mAscii[character].advance = found.advance;
    mAscii[character].simple = found.simple;
    return mAscii[character];
}

const QLX_GlyphMask& QLX_FontAtSize::RenderAscii(unsigned char character, int quarter) {
    const QLX_GlyphMask& mask = mSized.GetGlyph(mFaces.GetCharacter(character).source, quarter);
    mAscii[character].masks[quarter] = &mask;
    return mask;
}

QLX_FontAtSize& QLX_GlyphCache::GetAtSize(const QLX_Font& font, int pixelSize26_6) {
    QLX_SizedFont& sized = GetSized(pixelSize26_6);
    auto& held =
        TheCache().atSizes[std::uint64_t(FontKey(font)) << 32 | std::uint32_t(pixelSize26_6)];
    if (!held)
        held = std::make_unique<QLX_FontAtSize>(GetFaces(font), sized);
    return *held;
}

int QLX_GlyphCache::OpenFace(const std::string& path, int index) {
    Cache& cache = TheCache();
    const auto [place, isNew] = cache.numbers.try_emplace({path, index}, -1);
    if (!isNew)
        return place->second;
    FT_Face face = nullptr;
    if (path.empty() || cache.faces.size() >= INT16_MAX || !cache.library ||
        FT_New_Face(cache.library, path.c_str(), index, &face) != 0)
        return -1;
    if (!FT_IS_SCALABLE(face)) {
        FT_Done_Face(face);
        return -1;
    }
    cache.faces.push_back(face);
    return place->second = int(cache.faces.size()) - 1;
}

unsigned QLX_GlyphCache::GetGeneration() noexcept { return TheCache().generation; }

void QLX_GlyphCache::AddFontFile(const std::string& family, bool bold, const std::string& path) {
    Cache& cache = TheCache();
    cache.families[family].files[bold] = path;
    cache.atSizes.clear();
    cache.fonts.clear();
    ++cache.generation;
}

void QLX_GlyphCache::Clear() {
    Cache& cache = TheCache();
    cache.atSizes.clear();
    cache.sizes.clear();
    cache.maskBytes = 0;
    ++cache.generation;
}

std::uint64_t QLX_GlyphCache::GetRenderedCount() noexcept { return TheCache().rendered; }

std::string QLX_GlyphCache::GetFontFile(const std::string& family, bool bold) {
    const Cache& cache = TheCache();
    auto found = cache.families.find(family);
    if (found == cache.families.end())
        found = cache.families.find("DejaVu Sans");
    const std::string& file = found->second.files[bold];
    return file.empty() ? found->second.files[!bold] : file;
}

const std::string& QLX_GlyphCache::GetFallbackFile() noexcept { return TheCache().fallback; }
