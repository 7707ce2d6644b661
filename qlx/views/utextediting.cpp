#include "qlx/views/utextediting.h"

#include <algorithm>

#include "qlx/imaging/qlx_utf8.h"

namespace {

constexpr char32_t kZeroWidthJoiner = 0x200D;

// Code points that belong to the character before them. The blocks of marks that texts of a session
// (names, comments) meet; not the whole of the Unicode tables.
bool Extends(char32_t code) {
    constexpr std::pair<char32_t, char32_t> kRanges[] = {
        {0x0300, 0x036F}, {0x0483, 0x0489},   {0x0591, 0x05BD},   {0x05BF, 0x05C7},
        {0x0610, 0x061A}, {0x064B, 0x065F},   {0x0670, 0x0670},   {0x06D6, 0x06DC},
        {0x093A, 0x093C}, {0x093E, 0x094F},   {0x0E31, 0x0E31},   {0x0E34, 0x0E3A},
        {0x0E47, 0x0E4E}, {0x1AB0, 0x1AFF},   {0x1DC0, 0x1DFF},   {0x200C, 0x200D},
        {0x20D0, 0x20FF}, {0x302A, 0x302F},   {0x3099, 0x309A},   {0xFE00, 0xFE0F},
        {0xFE20, 0xFE2F}, {0x1F3FB, 0x1F3FF}, {0xE0020, 0xE007F}, {0xE0100, 0xE01EF}};
    return std::any_of(std::begin(kRanges), std::end(kRanges), [code](const auto& range) {
        return code >= range.first && code <= range.second;
    });
}

enum class EKind { kBlank, kWord, kOther };

EKind KindOf(char32_t code) {
    if (code == ' ' || code == '\t' || code == '\n' || code == 0xA0 || code == 0x3000)
        return EKind::kBlank;
    const bool ascii = code < 0x80;
    const bool letter = (code >= '0' && code <= '9') || (code >= 'A' && code <= 'Z') ||
                        (code >= 'a' && code <= 'z') || code == '_';
    const bool punctuation =
        (code >= 0x2000 && code <= 0x206F) || (code >= 0x3001 && code <= 0x303F);
    return (ascii ? letter : !punctuation) ? EKind::kWord : EKind::kOther;
}

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

void AppendReplacement(std::string& text) { text += "\xEF\xBF\xBD"; }

char32_t CodeAt(std::string_view text, std::size_t offset) {
    return QLX_NextCodePoint(text, offset);
}

} // namespace

std::size_t QLX_TextEditing::CountCodePoints(std::string_view text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return !IsContinuation(byte); }));
}

std::string QLX_TextEditing::Clean(std::string_view text) const {
    std::string clean;
    clean.reserve(text.size());
    for (std::size_t place = 0; place < text.size();) {
        const std::size_t from = place;
        const char32_t code = QLX_NextCodePoint(text, place);
        if (code == '\r' || code == '\n') {
            if (code == '\r' && place < text.size() && text[place] == '\n')
                ++place;
            clean += mMultiline ? '\n' : ' ';
        } else if (code == '\t') {
            clean += mMultiline ? '\t' : ' ';
        } else if (code == kReplacementCharacter) {
            AppendReplacement(clean);
        } else if (code >= 0x20 && code != 0x7F && !(code >= 0x80 && code < 0xA0)) {
            clean += text.substr(from, place - from);
        }
    }
    return clean;
}

void QLX_TextEditing::SetText(std::string_view text) {
    mText.clear();
    mCaret = mAnchor = mCodePoints = 0;
    Insert(text);
}

std::string QLX_TextEditing::GetSelectedText() const {
    return mText.substr(GetSelectionStart(), GetSelectionEnd() - GetSelectionStart());
}

// Boundaries

std::size_t QLX_TextEditing::NextCharacter(std::size_t offset) const {
    if (offset >= mText.size())
        return mText.size();
    char32_t code = QLX_NextCodePoint(mText, offset);
    while (offset < mText.size()) {
        std::size_t next = offset;
        const char32_t following = QLX_NextCodePoint(mText, next);
        if (!Extends(following) && code != kZeroWidthJoiner)
            break;
        code = following;
        offset = next;
    }
    return offset;
}

std::size_t QLX_TextEditing::PreviousCharacter(std::size_t offset) const {
    offset = std::min(offset, mText.size());
    while (offset > 0) {
        do
            --offset;
        while (offset > 0 && IsContinuation(mText[offset]));
        std::size_t before = offset;
        if (before > 0)
            do
                --before;
            while (before > 0 && IsContinuation(mText[before]));
        const bool joined = offset > 0 && CodeAt(mText, before) == kZeroWidthJoiner;
        if (!Extends(CodeAt(mText, offset)) && !joined)
            break;
    }
    return offset;
}

std::size_t QLX_TextEditing::NextWord(std::size_t offset) const {
    if (offset >= mText.size())
        return mText.size();
    const EKind kind = KindOf(CodeAt(mText, offset));
    while (offset < mText.size() && KindOf(CodeAt(mText, offset)) == kind)
        offset = NextCharacter(offset);
    while (offset < mText.size() && KindOf(CodeAt(mText, offset)) == EKind::kBlank)
        offset = NextCharacter(offset);
    return offset;
}

std::size_t QLX_TextEditing::PreviousWord(std::size_t offset) const {
    offset = std::min(offset, mText.size());
    const auto kindBefore = [this](std::size_t at) {
        return KindOf(CodeAt(mText, PreviousCharacter(at)));
    };
    while (offset > 0 && kindBefore(offset) == EKind::kBlank)
        offset = PreviousCharacter(offset);
    if (offset == 0)
        return 0;
    const EKind kind = kindBefore(offset);
    while (offset > 0 && kindBefore(offset) == kind)
        offset = PreviousCharacter(offset);
    return offset;
}

std::size_t QLX_TextEditing::LineStart(std::size_t offset) const {
    offset = std::min(offset, mText.size());
    const std::size_t end = offset == 0 ? std::string::npos : mText.rfind('\n', offset - 1);
    return end == std::string::npos ? 0 : end + 1;
}

std::size_t QLX_TextEditing::LineEnd(std::size_t offset) const {
    return std::min(mText.find('\n', std::min(offset, mText.size())), mText.size());
}

// Selection

void QLX_TextEditing::Select(std::size_t anchor, std::size_t caret) {
    const auto held = [this](std::size_t offset) {
        offset = std::min(offset, mText.size());
        while (offset > 0 && offset < mText.size() && IsContinuation(mText[offset]))
            --offset;
        return offset;
    };
    mAnchor = held(anchor);
    mCaret = held(caret);
}

std::pair<std::size_t, std::size_t> QLX_TextEditing::GetWordAt(std::size_t offset) const {
    offset = std::min(offset, mText.size());
    if (mText.empty())
        return {0, 0};
    const std::size_t inside = offset < mText.size() ? offset : PreviousCharacter(offset);
    const EKind kind = KindOf(CodeAt(mText, inside));
    std::size_t from = inside;
    while (from > 0 && KindOf(CodeAt(mText, PreviousCharacter(from))) == kind)
        from = PreviousCharacter(from);
    std::size_t to = inside;
    while (to < mText.size() && KindOf(CodeAt(mText, to)) == kind)
        to = NextCharacter(to);
    return {from, to};
}

void QLX_TextEditing::SelectWordAt(std::size_t offset) {
    const auto [from, to] = GetWordAt(offset);
    Select(from, to);
}

void QLX_TextEditing::SelectLineAt(std::size_t offset) {
    Select(LineStart(offset), LineEnd(offset));
}

// Changes

void QLX_TextEditing::Replace(std::size_t from, std::size_t to, std::string_view text) {
    mCodePoints -= CountCodePoints(std::string_view(mText).substr(from, to - from));
    mCodePoints += CountCodePoints(text);
    mText.replace(from, to - from, text);
    mCaret = mAnchor = from + text.size();
    mLastReplaced = {from, to - from, text.size()};
}

void QLX_TextEditing::SwapContent(QLX_TextEditing& other) noexcept {
    mText.swap(other.mText);
    std::swap(mCaret, other.mCaret);
    std::swap(mAnchor, other.mAnchor);
    std::swap(mCodePoints, other.mCodePoints);
}

bool QLX_TextEditing::Insert(std::string_view text) {
    std::string clean = Clean(text);
    if (mMaximumLength > 0) {
        const std::size_t kept =
            mCodePoints - CountCodePoints(std::string_view(mText).substr(
                              GetSelectionStart(), GetSelectionEnd() - GetSelectionStart()));
        std::size_t room = mMaximumLength > kept ? mMaximumLength - kept : 0;
        std::size_t place = 0;
        for (; place < clean.size() && room > 0; --room)
            static_cast<void>(QLX_NextCodePoint(clean, place));
        clean.resize(place);
    }
    if (clean.empty() && !HasSelection())
        return false;
    // A text that finds no room must not cost the selection.
    if (clean.empty() && !text.empty())
        return false;
    Replace(GetSelectionStart(), GetSelectionEnd(), clean);
    return true;
}

std::size_t QLX_TextEditing::Target(ETextMotion motion, bool forward) const {
    switch (motion) {
    case ETextMotion::kCharacter:
        return forward ? NextCharacter(mCaret) : PreviousCharacter(mCaret);
    case ETextMotion::kWord:
        return forward ? NextWord(mCaret) : PreviousWord(mCaret);
    case ETextMotion::kLine:
        return forward ? LineEnd(mCaret) : LineStart(mCaret);
    case ETextMotion::kText:
        break;
    }
    return forward ? mText.size() : 0;
}

bool QLX_TextEditing::Delete(ETextMotion motion, bool forward) {
    if (!HasSelection())
        mAnchor = Target(motion, forward);
    if (!HasSelection())
        return false;
    Replace(GetSelectionStart(), GetSelectionEnd(), {});
    return true;
}

void QLX_TextEditing::Move(ETextMotion motion, bool forward, bool extend) {
    if (!extend && HasSelection() && motion == ETextMotion::kCharacter)
        mCaret = forward ? GetSelectionEnd() : GetSelectionStart();
    else
        mCaret = Target(motion, forward);
    if (!extend)
        mAnchor = mCaret;
}
