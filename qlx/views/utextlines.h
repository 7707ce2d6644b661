// Where the lines of an edited text begin, kept up to date change by change.
#pragma once

#include <string_view>
#include <vector>

#include "qlx/imaging/qlx_textlayout.h"

/// The lines of a text that is edited, as byte offsets of their beginnings. A line reaches to the
/// beginning of the next one, the spaces of a break included and a line end ("\n") not, so every
/// offset lies in one line. A change lays out what it touches and no more: the lines from two
/// before it to the first one that begins where it began before. The text itself is not kept.
class QLX_API QLX_TextLines {
  public:
    /// What a change did to the lines, in their new numbers.
    struct Change {
        std::size_t mFirst = 0;    ///< the first line that is not as it was
        std::size_t mBehind = 0;   ///< the first one behind it that is, though it may have moved
        std::ptrdiff_t mMoved = 0; ///< by how many lines those behind have moved
    };

    QLX_TextLines() : mBegins(1, 0) {}
    /// Lays everything out, wrapped between words.
    void LayOut(std::string_view text, const QLX_Font& font, float width);
    /// Makes a text without line ends one line, however long it is.
    void LayOutAsOneLine();
    /// Follows a change: in the text as it is now, the inserted bytes at an offset stand in for
    /// the removed ones.
    Change Replace(std::string_view text, std::size_t from, std::size_t removed,
                   std::size_t inserted);

    /// One at least.
    [[nodiscard]] std::size_t Count() const noexcept { return mBegins.size(); }
    [[nodiscard]] std::size_t Begin(std::size_t line) const noexcept {
        return mBegins[line] + (line >= mShiftFrom ? mShift : 0);
    }
    [[nodiscard]] std::size_t End(std::size_t line, std::string_view text) const noexcept;
    [[nodiscard]] std::string_view TextOf(std::size_t line, std::string_view text) const noexcept {
        const std::size_t begin = Begin(line);
        return text.substr(begin, End(line, text) - begin);
    }
    [[nodiscard]] std::size_t LineOf(std::size_t offset) const noexcept;

    /// Bytes that were laid out since the start: what the changes cost.
    [[nodiscard]] std::uint64_t GetLaidOutBytes() const noexcept { return mLaidOutBytes; }

  private:
    void MoveShiftTo(std::size_t line) noexcept;
    bool AddLinesOf(std::string_view text, std::size_t begin, std::size_t end, std::size_t same,
                    std::size_t shift, std::size_t& replaced);

    QLX_TextLayout mLayout;
    QLX_Font mFont;
    float mWidth = 0;
    bool mWraps = false;
    std::vector<std::size_t> mBegins;
    // Lines from mShiftFrom on begin this much (modulo 2^64) behind what is written down: typing at
    // one place moves all that follow by changing one number.
    std::size_t mShiftFrom = 0;
    std::size_t mShift = 0;
    std::vector<std::size_t> mFresh; // of the change under way
    std::uint64_t mLaidOutBytes = 0;
};
