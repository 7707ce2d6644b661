// Fonts as views name them, the numbered fonts of the interface, and what text measures. No font
// file is opened here: who can read them installs a QLX_TextMeasure.
#pragma once

#include <string>
#include <string_view>

#include "basekit/cmn/cmn_types.h"

/// Style bits of a font.
enum EFontStyle : std::uint16_t {
    kFontStyle_Plain = 0,
    kFontStyle_Bold = 1,
    kFontStyle_Italic = 2,
    kFontStyle_Underline = 4
};

/// Vertical measures of a font in logical units, all positive. A line of text is ascent + descent
/// high, and lines of a text box follow each other at that distance plus the leading.
struct QLX_FontMetrics {
    float ascent = 0;
    float descent = 0;
    float leading = 0;

    /// The distance of two baselines, rounded up to whole logical units.
    [[nodiscard]] QLX_API int GetLineHeight() const noexcept;
    /// The distance from a line's top to its baseline, rounded to whole logical units.
    [[nodiscard]] QLX_API int GetBaseline() const noexcept;
};

/// A font: family, size, style. Plain data that is copied freely: the family's name is kept once in
/// a table of the process and the font holds its number. User-interface thread, as the painters.
class QLX_API QLX_Font {
  public:
    /// The standard interface font's family, size 12, plain.
    QLX_Font() noexcept = default;
    /// Size is the em in logical units; held within 1 and 2000, a NaN gives 12. An empty family is
    /// the standard one.
    QLX_Font(std::string_view family, float size, std::uint16_t style = kFontStyle_Plain);

    /// Lives as long as the process.
    [[nodiscard]] const std::string& GetFamily() const noexcept;
    /// Number of the family in the process's table, in order of first use; 0 is the standard
    /// family.
    [[nodiscard]] int GetFamilyNumber() const noexcept { return mFamily; }
    [[nodiscard]] float GetSize() const noexcept { return float(mSize64ths) / 64; }
    /// The size in 1/64ths of a logical unit, the step in which sizes are kept.
    [[nodiscard]] int GetSize64ths() const noexcept { return mSize64ths; }
    [[nodiscard]] std::uint16_t GetStyle() const noexcept { return mStyle; }
    [[nodiscard]] bool IsBold() const noexcept { return (mStyle & kFontStyle_Bold) != 0; }
    [[nodiscard]] bool IsItalic() const noexcept { return (mStyle & kFontStyle_Italic) != 0; }
    [[nodiscard]] bool IsUnderlined() const noexcept {
        return (mStyle & kFontStyle_Underline) != 0;
    }

    [[nodiscard]] QLX_Font WithSize(float size) const noexcept;
    [[nodiscard]] QLX_Font WithStyle(std::uint16_t style) const noexcept;

    /// From the installed QLX_TextMeasure.
    [[nodiscard]] QLX_FontMetrics GetMetrics() const;

    /// "family size style", for example "DejaVu Sans 12 bold italic"; ParseText reads it back.
    [[nodiscard]] std::string AsText() const;
    /// False, with font untouched, when the text is not of that form.
    [[nodiscard]] static bool ParseText(std::string_view text, QLX_Font& font);

    [[nodiscard]] friend constexpr bool operator==(const QLX_Font&,
                                                   const QLX_Font&) noexcept = default;

  private:
    std::uint16_t mFamily = 0;
    std::uint16_t mStyle = kFontStyle_Plain;
    std::int32_t mSize64ths = 12 * 64;
};

/// What text measures: the wall between layout and whoever reads font files. Advances are linear
/// (not rounded to pixels, no kerning), so they do not depend on the scale and the width of a text
/// is the sum of its parts' widths unless a script joins them.
class QLX_API QLX_TextMeasure {
  public:
    virtual ~QLX_TextMeasure();
    /// Advance of one line of UTF-8 in logical units; malformed bytes count as U+FFFD each.
    [[nodiscard]] virtual float MeasureWidth(const QLX_Font& font, std::string_view text) = 0;
    [[nodiscard]] virtual QLX_FontMetrics MeasureFont(const QLX_Font& font) = 0;

    /// The installed one; without any, one that knows the standard font's Latin advances by heart
    /// and gives every other character its usual share of the em.
    [[nodiscard]] static QLX_TextMeasure& Get() noexcept;
    /// Installs one (not owned, must outlive its use); null brings back the built-in one. Returns
    /// the previous one, null for the built-in.
    static QLX_TextMeasure* Install(QLX_TextMeasure* measure) noexcept;
    /// The built-in one, whatever is installed: the same numbers on every platform.
    [[nodiscard]] static QLX_TextMeasure& GetBuiltIn() noexcept;
};

/// Numbers of the interface's fonts. Hosts may give fonts to any number.
enum EFontNumber : int {
    kFont_Interface = 128,      ///< the standard font of controls and texts
    kFont_InterfaceSmall = 129, ///< captions and rulers
    kFont_InterfaceLarge = 130, ///< headings
    kFont_Counter = 131,        ///< fixed-width digits of counters and numeric fields
    kFont_CounterLarge = 132    ///< the main counter
};

/// Selectors of a style at RetrieveFont.
enum EFontStyleSelector : int {
    kFontSelect_AsRegistered = 0, ///< exactly as the number was registered
    kFontSelect_Plain = 1,        ///< plain, at its own size
    kFontSelect_Bold = 2,
    kFontSelect_Italic = 3,
    kFontSelect_BoldItalic = 4,
    kFontSelect_Underline = 5
};

/// Fonts by number, so that views ask for a part (interface, counter) and not for a face.
class QLX_API QLX_FontMap {
  public:
    /// The font of a number in a style at its own size; 128 with 1 is the standard interface font,
    /// plain. An unknown number gives the interface font, an unknown selector counts as plain.
    [[nodiscard]] static QLX_Font RetrieveFont(int fontNumber, int styleSelector);
    /// Gives a number a font, replacing what it had.
    static void RegisterFont(int fontNumber, const QLX_Font& font);
    [[nodiscard]] static bool HasFont(int fontNumber) noexcept;
    /// Takes back every RegisterFont.
    static void Reset();
};
