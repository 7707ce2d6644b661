#include "qlx/views/utextlines.h"

#include <algorithm>

namespace {

// How far behind a change is laid out at first; where its effect reaches further, twice as far.
constexpr std::size_t kFirstPiece = 1024;
// Lines before the change that are laid out again: a word that got shorter, or apart, may go back
// up to the line before, which is one; the second costs little.
constexpr int kLinesBefore = 2;

[[nodiscard]] bool IsContinuation(char byte) noexcept {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

} // namespace

void QLX_TextLines::LayOutAsOneLine() {
    mWraps = false;
    mBegins.assign(1, 0);
    mShiftFrom = mShift = 0;
}

void QLX_TextLines::LayOut(std::string_view text, const QLX_Font& font, float width) {
    LayOutAsOneLine();
    mWraps = true;
    mFont = font;
    mWidth = width;
    mLayout.LayOut(text, font, width, QLX_Painter::kWrap_Word);
    mLaidOutBytes += text.size();
    const std::vector<QLX_TextLayout::Line>& lines = mLayout.GetLines();
    mBegins.resize(std::max<std::size_t>(1, lines.size()));
    for (std::size_t i = 0; i < lines.size(); ++i)
        mBegins[i] = lines[i].begin;
}

std::size_t QLX_TextLines::End(std::size_t line, std::string_view text) const noexcept {
    if (line + 1 >= mBegins.size())
        return text.size();
    const std::size_t next = Begin(line + 1);
    return text[next - 1] == '\n' ? next - 1 : next;
}

std::size_t QLX_TextLines::LineOf(std::size_t offset) const noexcept {
    std::size_t first = 1; // the first line that may begin behind the offset
    std::size_t behind = mBegins.size();
    while (first < behind) {
        const std::size_t middle = first + (behind - first) / 2;
        if (Begin(middle) <= offset)
            first = middle + 1;
        else
            behind = middle;
    }
    return first - 1;
}

void QLX_TextLines::MoveShiftTo(std::size_t line) noexcept {
    for (std::size_t i = mShiftFrom; i < line; ++i)
        mBegins[i] += mShift;
    for (std::size_t i = line; i < std::min(mShiftFrom, mBegins.size()); ++i)
        mBegins[i] -= mShift;
    mShiftFrom = line;
}

// Adds the lines of a piece of the text, which begins with a line, to the fresh ones. True when one
// of them begins, behind the part that is the same as before, where a line began: the rest of the
// lines is as it was.
bool QLX_TextLines::AddLinesOf(std::string_view text, std::size_t begin, std::size_t end,
                               std::size_t same, std::size_t shift, std::size_t& replaced) {
    mLayout.LayOut(text.substr(begin, end - begin), mFont, mWidth, QLX_Painter::kWrap_Word);
    mLaidOutBytes += end - begin;
    mFresh.push_back(begin);
    const std::vector<QLX_TextLayout::Line>& lines = mLayout.GetLines();
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const std::size_t at = begin + lines[i].begin;
        if (at >= same) {
            const std::size_t old = LineOf(at - shift);
            if (Begin(old) == at - shift) {
                replaced = old;
                return true;
            }
        }
        mFresh.push_back(at);
    }
    return false;
}

QLX_TextLines::Change QLX_TextLines::Replace(std::string_view text, std::size_t from,
                                             std::size_t removed, std::size_t inserted) {
    if (!mWraps)
        return {0, 1, 0};
    const std::size_t shift = inserted - removed; // modulo 2^64, as all sums with it
    const std::size_t same = from + inserted;     // from here on the text is what it was
    std::size_t start = LineOf(from);
    for (int back = 0; back < kLinesBefore && start > 0 && text[Begin(start) - 1] != '\n'; ++back)
        --start;
    const std::size_t paragraphEnd = std::min(text.find('\n', same), text.size());
    std::size_t behind = LineOf(paragraphEnd - shift) + 1;

    // Breaking looks at nothing behind the letter that finds no room, so every line that begins in
    // a piece begins there in the whole text too.
    mFresh.clear();
    std::size_t begin = Begin(start);
    for (std::size_t piece = kFirstPiece;; piece *= 2) {
        std::size_t end = std::min(paragraphEnd, std::max(begin, same) + piece);
        while (end < paragraphEnd && IsContinuation(text[end]))
            --end;
        if (AddLinesOf(text, begin, end, same, shift, behind) || end == paragraphEnd)
            break;
        begin = mFresh.back();
        mFresh.pop_back();
    }

    Change change;
    std::size_t unchanged = 0;
    while (unchanged + 1 < mFresh.size() && start + unchanged + 1 < behind &&
           mFresh[unchanged + 1] <= from && mFresh[unchanged + 1] == Begin(start + unchanged + 1))
        ++unchanged;
    change.mFirst = start + unchanged;
    change.mBehind = start + mFresh.size();
    change.mMoved = static_cast<std::ptrdiff_t>(change.mBehind - behind);

    MoveShiftTo(behind);
    const auto at = [this](std::size_t line) {
        return mBegins.begin() + static_cast<std::ptrdiff_t>(line);
    };
    const std::size_t kept = std::min(mFresh.size(), behind - start);
    std::copy_n(mFresh.begin(), kept, at(start));
    if (kept < mFresh.size())
        mBegins.insert(at(start + kept), mFresh.begin() + static_cast<std::ptrdiff_t>(kept),
                       mFresh.end());
    else
        mBegins.erase(at(start + kept), at(behind));
    mShiftFrom = change.mBehind;
    mShift += shift;
    return change;
}
