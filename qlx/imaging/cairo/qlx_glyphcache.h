// Glyphs as coverage masks: font files opened straight through FreeType, characters found, glyphs
// rendered once for each size and quarter of a pixel. No font configuration is read for texts of
// simple scripts.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "qlx/imaging/qlx_font.h"

/// One rendered glyph: 8-bit coverage, rows of pitch bytes with at least three zero bytes behind
/// each row.
struct QLX_GlyphMask {
    int left = 0; ///< of the mask, from the pen's whole pixel
    int top = 0;  ///< of the mask, below the baseline (negative above it)
    int width = 0;
    int height = 0;
    int pitch = 0;
    const std::uint8_t* bytes = nullptr; ///< owned by the cache; null when empty
};

/// Where a glyph comes from: a font file's face and how it is changed.
struct QLX_GlyphSource {
    std::int16_t face = -1; ///< number of an opened face; -1: none
    bool embolden = false;  ///< drawn fatter, where a family has no bold face
    bool slant = false;     ///< drawn slanted: italics are always made from the upright face
    std::uint32_t glyph = 0;
    friend bool operator==(const QLX_GlyphSource&, const QLX_GlyphSource&) noexcept = default;
};

/// A character of a font: where its glyph is and its linear advance as a share of the em.
struct QLX_FontCharacter {
    QLX_GlyphSource source;
    float advance = 0;
    bool known = false;  ///< whether a face has it
    bool simple = false; ///< known, and placed one after the other without shaping
};

/// The glyphs of one face family in one size. Kept by the cache; fetched by painters once per font
/// change.
class QLX_SizedFont {
  public:
    static constexpr int kQuarters = 4;

    QLX_SizedFont(int pixelSize26_6) noexcept : mPixelSize(pixelSize26_6) {}
    [[nodiscard]] int GetPixelSize26_6() const noexcept { return mPixelSize; }
    /// The mask of a glyph whose pen lies quarter / 4 of a pixel right of a whole one.
    [[nodiscard]] const QLX_GlyphMask& GetGlyph(const QLX_GlyphSource& source, int quarter);

  private:
    int mPixelSize; // 26.6
    std::unordered_map<std::uint64_t, QLX_GlyphMask> mGlyphs;
    std::vector<std::unique_ptr<std::uint8_t[]>> mBytes;
};

/// A font's characters, in all sizes: its own face, then the fallback faces.
class QLX_FontFaces {
  public:
    explicit QLX_FontFaces(const QLX_Font& font);
    [[nodiscard]] const QLX_FontCharacter& GetCharacter(char32_t code) {
        if (code < kDirect && mDirectMade[code])
            return mDirect[code];
        return FindCharacter(code);
    }
    /// As shares of the em.
    [[nodiscard]] const QLX_FontMetrics& GetMetrics() const noexcept { return mMetrics; }
    [[nodiscard]] float GetUnderlineOffset() const noexcept { return mUnderlineOffset; }
    [[nodiscard]] float GetUnderlineThickness() const noexcept { return mUnderlineThickness; }
    /// Whether a face could be opened: the family's own, or the standard one in its place.
    [[nodiscard]] bool IsThere() const noexcept { return mIsThere; }

  private:
    static constexpr char32_t kDirect = 0x250;
    const QLX_FontCharacter& FindCharacter(char32_t code);
    /// False when the file cannot be used.
    [[nodiscard]] bool AddFace(const std::string& path);

    struct Face {
        std::int16_t number;
        bool embolden;
    };
    std::vector<Face> mFaces;
    bool mSlant;
    bool mIsThere = false;
    QLX_FontMetrics mMetrics;
    float mUnderlineOffset = 0.1F;
    float mUnderlineThickness = 0.05F;
    QLX_FontCharacter mDirect[kDirect];
    bool mDirectMade[kDirect] = {};
    std::unordered_map<char32_t, QLX_FontCharacter> mOthers;
};

/// A font in one size in pixels: its faces, its glyphs, and the printable ASCII characters at hand.
class QLX_FontAtSize {
  public:
    QLX_FontAtSize(QLX_FontFaces& faces, QLX_SizedFont& sized) : mFaces(faces), mSized(sized) {}
    [[nodiscard]] QLX_FontFaces& GetFaces() const noexcept { return mFaces; }
    [[nodiscard]] QLX_SizedFont& GetSized() const noexcept { return mSized; }

    /// A character below 128.
    struct Ascii {
        const QLX_GlyphMask* masks[QLX_SizedFont::kQuarters]; ///< null: not rendered yet
        float advance;                                        ///< share of the em
        bool simple;
    };
    /// Whether all of a text is ASCII that is set one after the other.
    [[nodiscard]] bool IsAsciiLine(std::string_view text) {
        for (const char character : text) {
            const auto byte = static_cast<unsigned char>(character);
            if (byte >= 128 || (!mAscii[byte].simple && !MakeAscii(byte).simple))
                return false;
        }
        return true;
    }
    /// Of a character that IsAsciiLine saw.
    [[nodiscard]] const Ascii& GetAscii(unsigned char character) const noexcept {
        return mAscii[character];
    }
    [[nodiscard]] const QLX_GlyphMask& GetAsciiMask(unsigned char character, int quarter) {
        const QLX_GlyphMask* mask = mAscii[character].masks[quarter];
        return mask ? *mask : RenderAscii(character, quarter);
    }

  private:
    const Ascii& MakeAscii(unsigned char character);
    const QLX_GlyphMask& RenderAscii(unsigned char character, int quarter);

    QLX_FontFaces& mFaces;  // the cache's
    QLX_SizedFont& mSized;  // the cache's
    Ascii mAscii[128] = {}; // all zero until it is asked for
};

/// The process's glyphs. User-interface thread. Also the QLX_TextMeasure of the desktop, installed
/// by itself when the library is loaded.
class QLX_API QLX_GlyphCache {
  public:
    [[nodiscard]] static QLX_FontFaces& GetFaces(const QLX_Font& font);
    /// A size in 1/64ths of a pixel.
    [[nodiscard]] static QLX_SizedFont& GetSized(int pixelSize26_6);
    [[nodiscard]] static QLX_FontAtSize& GetAtSize(const QLX_Font& font, int pixelSize26_6);
    /// Opens a face once and numbers it; -1 when the file cannot be used.
    [[nodiscard]] static int OpenFace(const std::string& path, int index);
    /// Grows when glyphs or fonts are thrown away: what painters fetched before is stale then.
    [[nodiscard]] static unsigned GetGeneration() noexcept;
    /// Makes a family known, or gives it another file, for one style (plain or bold).
    static void AddFontFile(const std::string& family, bool bold, const std::string& path);
    /// Throws every rendered glyph away.
    static void Clear();
    /// Glyphs rendered since the start, for tests of the caching.
    [[nodiscard]] static std::uint64_t GetRenderedCount() noexcept;
    /// The file of a family and style; "" when it is not known. Unknown families are the standard
    /// one's.
    [[nodiscard]] static std::string GetFontFile(const std::string& family, bool bold);
    /// The file that has Chinese and Japanese characters.
    [[nodiscard]] static const std::string& GetFallbackFile() noexcept;
};
