// Fonts of the system as both Windows painters and text layout see them: which face stands in for a
// family that is not installed, linear advances, and device fonts by size.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>

#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/win32/qlx_nativehandles.h"

/// A character as a face draws it.
struct QLX_WinCharacter {
    float advance = 0;     ///< in parts of the em
    bool fallback = false; ///< the face has no such glyph and the standard family stands in
    bool complex = false;  ///< joins or reorders: the line is left to the system's own shaping
};

/// A family in one style.
class QLX_WinFace {
  public:
    QLX_WinFace(const std::wstring& family, bool bold, bool italic, bool underlined);
    [[nodiscard]] const std::wstring& GetFamily() const noexcept { return mFamily; }
    [[nodiscard]] bool IsBold() const noexcept { return mBold; }
    [[nodiscard]] bool IsItalic() const noexcept { return mItalic; }
    [[nodiscard]] bool IsUnderlined() const noexcept { return mUnderlined; }
    /// Parts of the em.
    [[nodiscard]] float GetAscent() const noexcept { return mAscent; }
    [[nodiscard]] float GetDescent() const noexcept { return mDescent; }
    [[nodiscard]] float GetLeading() const noexcept { return mLeading; }
    [[nodiscard]] const QLX_WinCharacter& GetCharacter(char32_t code);
    /// The advance of a line that the system shapes, in parts of the em.
    [[nodiscard]] float MeasureShaped(const std::wstring& line);
    /// A device font; null when there is none. Kept for the next use, the oldest given back when
    /// there are many.
    [[nodiscard]] HFONT GetSized(int pixels);

  private:
    [[nodiscard]] QLX_WinCharacter Look(char32_t code);

    std::wstring mFamily;
    bool mBold;
    bool mItalic;
    bool mUnderlined;
    float mAscent = 0.93F;
    float mDescent = 0.24F;
    float mLeading = 0;
    std::unordered_map<char32_t, QLX_WinCharacter> mCharacters;
};

/// The faces in use. User-interface thread.
class QLX_API QLX_WinFonts {
  public:
    [[nodiscard]] static QLX_WinFace& GetFace(const QLX_Font& font);
    /// The face that stands in for glyphs that a face lacks, in the same style.
    [[nodiscard]] static QLX_WinFace& GetFallback(const QLX_WinFace& face);
    /// The installed family for a name: itself, else the standard family, else what the system's
    /// dialogs use.
    [[nodiscard]] static std::wstring ResolveFamily(std::string_view family);
    /// Makes a font file's faces known to this process. False when the system does not take it.
    static bool AddFontFile(const std::wstring& path);
    /// Forgets everything and gives the device fonts back.
    static void Clear();
    /// Installs linear advances of the system's fonts as what text measures; for the life of the
    /// process. Done by the platform.
    static void InstallMeasure();
};

/// UTF-16; malformed bytes as U+FFFD.
[[nodiscard]] QLX_API std::wstring QLX_ToWide(std::string_view utf8);
/// Lone surrogates as U+FFFD.
[[nodiscard]] QLX_API std::string QLX_FromWide(std::wstring_view wide);

/// Draws one line with its background left alone, in the context's text colour.
void QLX_DrawGDIText(HDC context, std::string_view text, const QLX_Font& font, double pixels,
                     double x, int baseline, const RECT* limit);
