// A text being edited, without a view: UTF-8, a caret, an anchor, and what keys do to them.
#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "basekit/cmn/cmn_types.h"

/// How far a caret moves.
enum class ETextMotion { kCharacter, kWord, kLine, kText };

/// A text with caret and anchor, which are byte offsets on character boundaries; the selection lies
/// between them. What is put in is made well-formed first: bytes that are no UTF-8 become U+FFFD,
/// line ends become "\n" (blanks in a one-line text), other control characters go. A character,
/// here, is a code point with the combining marks, joiners and variation selectors behind it.
class QLX_API QLX_TextEditing {
  public:
    void SetMultiline(bool multiline) { mMultiline = multiline; }
    [[nodiscard]] bool IsMultiline() const { return mMultiline; }
    /// In code points; 0 for no limit. A text that is already longer stays.
    void SetMaximumLength(std::size_t codePoints) { mMaximumLength = codePoints; }

    [[nodiscard]] const std::string& GetText() const { return mText; }
    /// Replaces everything; the caret goes to the end. Longer texts are cut to the limit.
    void SetText(std::string_view text);

    [[nodiscard]] std::size_t GetCaret() const { return mCaret; }
    [[nodiscard]] std::size_t GetAnchor() const { return mAnchor; }
    [[nodiscard]] std::size_t GetSelectionStart() const {
        return mCaret < mAnchor ? mCaret : mAnchor;
    }
    [[nodiscard]] std::size_t GetSelectionEnd() const {
        return mCaret < mAnchor ? mAnchor : mCaret;
    }
    [[nodiscard]] bool HasSelection() const { return mCaret != mAnchor; }
    [[nodiscard]] std::string GetSelectedText() const;
    /// Offsets are moved back to character boundaries and held within the text.
    void Select(std::size_t anchor, std::size_t caret);
    void SelectAll() { Select(0, mText.size()); }
    void SelectWordAt(std::size_t offset);
    /// The paragraph around an offset, without its line end.
    void SelectLineAt(std::size_t offset);

    /// Exchanges text, caret and anchor with another one; the settings stay.
    void SwapContent(QLX_TextEditing& other) noexcept;

    // What keys do. Each answers whether the text changed.

    /// Replaces the selection; cut to what the limit leaves room for.
    bool Insert(std::string_view text);
    /// Deletes the selection, or from the caret by a motion.
    bool Delete(ETextMotion motion, bool forward);
    /// Without extend, a motion by a character from a selection goes to its edge.
    void Move(ETextMotion motion, bool forward, bool extend);

    /// What the last change of the text did: so many bytes at an offset became so many others.
    struct Replaced {
        std::size_t mFrom = 0;
        std::size_t mRemoved = 0;
        std::size_t mInserted = 0;
    };
    [[nodiscard]] const Replaced& GetLastReplaced() const { return mLastReplaced; }

    // Boundaries

    /// The word, or the blanks or other characters together, around an offset.
    [[nodiscard]] std::pair<std::size_t, std::size_t> GetWordAt(std::size_t offset) const;
    [[nodiscard]] std::size_t NextCharacter(std::size_t offset) const;
    [[nodiscard]] std::size_t PreviousCharacter(std::size_t offset) const;
    /// The start of the next word, or the end of the text.
    [[nodiscard]] std::size_t NextWord(std::size_t offset) const;
    [[nodiscard]] std::size_t PreviousWord(std::size_t offset) const;
    [[nodiscard]] std::size_t LineStart(std::size_t offset) const;
    [[nodiscard]] std::size_t LineEnd(std::size_t offset) const;
    [[nodiscard]] static std::size_t CountCodePoints(std::string_view text);

  private:
    [[nodiscard]] std::string Clean(std::string_view text) const;
    [[nodiscard]] std::size_t Target(ETextMotion motion, bool forward) const;
    void Replace(std::size_t from, std::size_t to, std::string_view text);

    std::string mText;
    std::size_t mCaret = 0;
    std::size_t mAnchor = 0;
    std::size_t mCodePoints = 0; // of the text
    std::size_t mMaximumLength = 0;
    Replaced mLastReplaced;
    bool mMultiline = false;
};
