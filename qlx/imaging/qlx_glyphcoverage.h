// Which characters the fonts in use can show: for tools that look for texts with holes.
#pragma once

#include <string_view>
#include <vector>

#include "basekit/cmn/cmn_types.h"

class QLX_Font;

/// Answers for whoever reads the font files. User-interface thread.
class QLX_API QLX_GlyphCoverage {
  public:
    virtual ~QLX_GlyphCoverage();
    /// Whether the font, or one that stands in for it, has a glyph for the character.
    [[nodiscard]] virtual bool HasGlyph(const QLX_Font& font, char32_t character) = 0;

    /// The installed one; null where nobody can say.
    [[nodiscard]] static QLX_GlyphCoverage* Get() noexcept;
    /// Not owned. Returns the previous one.
    static QLX_GlyphCoverage* Install(QLX_GlyphCoverage* coverage) noexcept;
    /// The characters of a UTF-8 text that would show as holes, each once, in their order. Control
    /// characters show nothing and are none. Empty where nobody can say.
    [[nodiscard]] static std::vector<char32_t> FindMissing(const QLX_Font& font,
                                                           std::string_view text);
};
