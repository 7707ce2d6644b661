// Text cut into lines: the wrapping, cutting and placing that every painter's text boxes share, so
// that a box breaks at the same letters in a window, in a picture, on Win32 and in a recording.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_painter.h"

/// Lines of one text in one font. Lines break in logical order: at line ends, behind spaces and
/// hyphens, between ideographs (not before closing punctuation), else where a word must be cut.
/// Meant to be kept and used again: it allocates only when a text needs more room than any before.
class QLX_API QLX_TextLayout {
  public:
    struct Line {
        std::size_t begin = 0;
        std::size_t end = 0;       ///< spaces at the break are left out
        float width = 0;           ///< logical units
        bool paragraphEnd = false; ///< followed by a line end or the text's end
    };
    /// A piece of a line where it is to be drawn: left end and baseline in logical units.
    struct Placed {
        std::string_view text; ///< into the laid-out text or the layout; valid until either changes
        float x = 0;
        int baseline = 0;
    };

    /// Cuts the text. The text is not kept: it must be there still when lines are placed.
    void LayOut(std::string_view text, const QLX_Font& font, float width,
                QLX_Painter::EWrapKind wrap);

    [[nodiscard]] const std::vector<Line>& GetLines() const noexcept { return mLines; }
    [[nodiscard]] int GetLineHeight() const noexcept { return mLineHeight; }
    /// Of all lines; a text of no characters has none. Held at INT_MAX.
    [[nodiscard]] int GetHeight() const noexcept;

    /// Places the lines in a rectangle from its top. With ellipsis, lines beyond the height are
    /// left out (the first one stays) and a line that is too wide, or the last one when more
    /// follow, ends in "…".
    void Place(const Cmn_Rect<int>& rect, QLX_Painter::EJustification justification, bool ellipsis);
    [[nodiscard]] const std::vector<Placed>& GetPlaced() const noexcept { return mPlaced; }

    /// The longest beginning of one line that fits into a width together with "…", and the "…"; the
    /// text itself when it fits as it is. Valid until the layout is used again.
    [[nodiscard]] std::string_view CutToWidth(std::string_view text, const QLX_Font& font,
                                              float width);

  private:
    void BreakParagraph(std::size_t begin, std::size_t end, float width,
                        QLX_Painter::EWrapKind wrap);
    void AddLine(std::size_t begin, std::size_t end, bool paragraphEnd);
    void PlaceJustified(const Line& line, std::string_view text, float left, float width,
                        int baseline);
    [[nodiscard]] std::string_view Shorten(std::string_view text, float width, bool force,
                                           std::string& buffer);

    std::string_view mText;
    QLX_Font mFont;
    int mLineHeight = 0;
    int mBaseline = 0;
    std::vector<Line> mLines;
    std::vector<Placed> mPlaced;
    std::vector<std::string> mCut; // texts that end in "…", reused
    std::string mSingle;
};
