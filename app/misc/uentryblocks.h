// What typing does to a text of fixed shape: blocks of characters between separators, digits that
// shift through one block or through all of them. Pure functions over text, selection and typed
// count; they know no field and no view.
#pragma once

#include <initializer_list>
#include <string>

#include "app/misc/unumericentrydata.h"

/// A run of characters, end exclusive.
struct CEntryBlock {
    short mStart = 0;
    short mEnd = 0;

    [[nodiscard]] constexpr short Width() const noexcept {
        return static_cast<short>(mEnd - mStart);
    }
    friend constexpr bool operator==(const CEntryBlock&, const CEntryBlock&) noexcept = default;
};

/// What a field edits: its text, the selection and how many characters were typed since the
/// selection was last placed.
struct CEntryState {
    std::string mText;
    CEntryBlock mSelection;
    int mTypedCount = 0;
};

/// Where the blocks of a format lie. Plain data, at most five blocks.
class QLX_API CEntryLayout {
  public:
    CEntryLayout() = default;
    /// Starts and ends in turn, from the left; the last end is the text's length.
    CEntryLayout(std::initializer_list<CEntryBlock> blocks);

    [[nodiscard]] int CountBlocks() const noexcept { return mCount; }
    [[nodiscard]] const CEntryBlock& GetBlock(int index) const noexcept { return mBlocks[index]; }
    [[nodiscard]] short GetLength() const noexcept {
        return mCount == 0 ? short{0} : mBlocks[mCount - 1].mEnd;
    }
    [[nodiscard]] CEntryBlock GetWhole() const noexcept { return {0, GetLength()}; }
    /// All characters of all blocks: how many digits the text holds.
    [[nodiscard]] int CountDigits() const noexcept;

    /// The block that is exactly this selection; -1 for the whole and for anything else.
    [[nodiscard]] int FindBlock(const CEntryBlock& selection) const noexcept;
    /// The block under, or nearest to the left of, a character; the first before all.
    [[nodiscard]] int FindBlockAt(int character) const noexcept;
    /// Whether the selection is one block or the whole text.
    [[nodiscard]] bool IsSelection(const CEntryBlock& selection) const noexcept;

    /// Moves a selection to the neighbouring block. From the whole text it goes to the first block,
    /// in either direction, and answers false. Answers whether it went past an end; without wrap
    /// the selection then stays as it is.
    bool Move(CEntryBlock& selection, EBlockHiliteDirection direction, bool wrap) const noexcept;

    /// A digit into one block, as through a shift register: the block's characters move left, the
    /// oldest drops out, the digit enters at the right. The first digit (typed count 0) fills the
    /// block with padding first. Every later block becomes zeros.
    void TypeIntoBlock(CEntryState& state, int block, char digit, char padding) const;
    /// A digit into the whole text, calculator style: it replaces the last digit; the digits typed
    /// so far move one place left, across separators, to make room. Places not typed into keep what
    /// they hold. Once all places are typed, the oldest digit drops out.
    void TypeIntoWhole(CEntryState& state, char digit) const;
    /// "." in the whole text: two typed zeros. Every block moves one block to the left as far as
    /// typed digits reach, the last becomes zeros.
    void TypePointIntoWhole(CEntryState& state) const;
    /// Zeros in every block from this one on.
    void ZeroFrom(std::string& text, int block) const;

  private:
    static constexpr int kMaxBlocks = 5;
    int mCount = 0;
    CEntryBlock mBlocks[kMaxBlocks];
};
