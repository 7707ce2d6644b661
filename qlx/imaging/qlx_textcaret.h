// Where carets and selections stand in a line of text, whichever way it runs.
#pragma once

#include <string_view>
#include <vector>

#include "qlx/imaging/qlx_font.h"

/// The wall between editing and whoever lays scripts out. Places are logical units from the line's
/// left end; offsets are bytes, on character boundaries. User-interface thread.
class QLX_API QLX_TextCarets {
  public:
    /// A stretch of the line from left to right.
    struct Span {
        float left;
        float right;
    };

    virtual ~QLX_TextCarets();
    /// Where a caret before the character at an offset stands: at its right edge when that
    /// character runs to the left.
    [[nodiscard]] virtual float PlaceOf(const QLX_Font& font, std::string_view line,
                                        std::size_t offset) = 0;
    /// The offset whose caret is nearest to a place.
    [[nodiscard]] virtual std::size_t OffsetAt(const QLX_Font& font, std::string_view line,
                                               float place) = 0;
    /// What the characters from one offset to another cover: several stretches where the line runs
    /// both ways.
    [[nodiscard]] virtual std::vector<Span> SpansOf(const QLX_Font& font, std::string_view line,
                                                    std::size_t from, std::size_t to) = 0;
    /// Whether the line as a whole runs from right to left: its first letter says so.
    [[nodiscard]] virtual bool RunsToTheLeft(std::string_view line) = 0;

    /// The installed one; without any, one for text that runs to the right.
    [[nodiscard]] static QLX_TextCarets& Get() noexcept;
    /// The one for text that runs to the right, whatever is installed.
    [[nodiscard]] static QLX_TextCarets& GetBuiltIn() noexcept;
    /// Not owned, must outlive its use; null brings back the built-in one. Returns the previous
    /// one, null for the built-in.
    static QLX_TextCarets* Install(QLX_TextCarets* carets) noexcept;
};
