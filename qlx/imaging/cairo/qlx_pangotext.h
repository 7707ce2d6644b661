// General text: scripts that join, combine or run right to left, laid out by Pango over the
// project's own font configuration. Only where glyphs go is asked of it; they are rendered by the
// glyph cache like all others.
#pragma once

#include <string_view>
#include <vector>

#include "qlx/imaging/cairo/qlx_glyphcache.h"

/// A line of glyphs in visual order, places in logical units from the line's left end and baseline.
struct QLX_ShapedText {
    struct Glyph {
        QLX_GlyphSource source;
        float x = 0;
        float y = 0; ///< downward
    };
    std::vector<Glyph> glyphs;
    float width = 0;
};

/// Lays one line of UTF-8 out; malformed bytes become U+FFFD. The answer is kept for the next time
/// and valid until the next call. User-interface thread.
[[nodiscard]] const QLX_ShapedText& QLX_ShapeText(const QLX_Font& font, std::string_view text);
