#include "qlx/views/ukeybindings.h"

#include <algorithm>
#include <utility>

#include "newfilelibs/daw/daw_keynames.h"
#include "qlx/views/ukeybindingpattern.h"

namespace {

bool Overlap(const DAW_EventModifiers& a, const DAW_EventModifiers& b) {
    const CKeyPatternStates first(a), second(b);
    for (int i = 0; i < 5; ++i)
        if (first.states[i] != 2 && second.states[i] != 2 && first.states[i] != second.states[i])
            return false;
    return true;
}

} // namespace

bool operator==(const CKeyBinding& a, const CKeyBinding& b) {
    if (a.mKeyCode != b.mKeyCode || a.mContext != b.mContext || a.mCommandName != b.mCommandName)
        return false;
    if (!a.mPattern || !b.mPattern)
        return !a.mPattern && !b.mPattern;
    const CKeyPatternStates first(*a.mPattern), second(*b.mPattern);
    return std::equal(std::begin(first.states), std::end(first.states), second.states);
}

CKeyBindings::CKeyBindings() = default;
CKeyBindings::~CKeyBindings() = default;

// Bindings

std::string CKeyBindings::GetRefusal(const CKeyBinding& binding) {
    if (binding.mKeyCode == kDAW_Key_None)
        return "there is no key";
    if (binding.mCommandName.empty())
        return "the command has no name";
    if (!binding.mPattern)
        return "there is no modifier pattern";
    const DAW_EventModifiers& pattern = *binding.mPattern;
    const CKeyPatternStates p(pattern);
    for (const int state : p.states)
        if (state < 0 || state > 2)
            return "a modifier's state is none of not pressed, pressed and either";
    if (p.states[4] == kDAW_KeyboardFocus_Normal)
        return "a binding for outside of commands-focus mode only has no text form";
    if (pattern.GetLeftMouseButtonState() != 0 || pattern.GetMiddleMouseButtonState() != 0 ||
        pattern.GetRightMouseButtonState() != 0)
        return "a key binding holds no mouse button";
    if (pattern.GetScrollDirectionInverted())
        return "a key binding has no scroll direction";
    return std::string();
}

const CKeyBinding& CKeyBindings::GetBinding(std::size_t index) const { return mBindings[index]; }

std::size_t CKeyBindings::LineIndex(std::size_t binding) const {
    for (std::size_t line = 0; line < mLines.size(); ++line)
        if (mLines[line].mIsBinding && binding-- == 0)
            return line;
    return mLines.size();
}

int CKeyBindings::GetLine(std::size_t index) const {
    return static_cast<int>(LineIndex(index)) + 1;
}

void CKeyBindings::RemoveAll() {
    mLines.clear();
    mBindings.clear();
    mByKeyCode.clear();
    mHasByteOrderMark = false;
    TellOfChange();
}

void CKeyBindings::RemoveBinding(std::size_t index) {
    if (index >= mBindings.size())
        return;
    mLines.erase(mLines.begin() + static_cast<std::ptrdiff_t>(LineIndex(index)));
    mBindings.erase(mBindings.begin() + static_cast<std::ptrdiff_t>(index));
    Reindex();
}

void CKeyBindings::Append(CKeyBinding binding) {
    mByKeyCode[binding.mKeyCode].push_back(mBindings.size());
    mBindings.push_back(std::move(binding));
    TellOfChange();
}

void CKeyBindings::Reindex() {
    mByKeyCode.clear();
    for (std::size_t i = 0; i < mBindings.size(); ++i)
        mByKeyCode[mBindings[i].mKeyCode].push_back(i);
    TellOfChange();
}

namespace {
CKeyBindings::ChangeListener sChangeListener = nullptr;
}

CKeyBindings::ChangeListener CKeyBindings::SetChangeListener(ChangeListener listener) {
    return std::exchange(sChangeListener, listener);
}

void CKeyBindings::TellOfChange() {
    if (sChangeListener)
        sChangeListener();
}

// Contexts

bool CKeyBindings::IsInside(std::uint32_t inner, std::uint32_t outer) const {
    const auto [first, last] = mOuterOfInner.equal_range(inner);
    return std::any_of(first, last, [this, outer](const auto& nesting) {
        return nesting.second == outer || IsInside(nesting.second, outer);
    });
}

bool CKeyBindings::DeclareNesting(std::uint32_t inner, std::uint32_t outer) {
    if (inner == outer || IsInside(outer, inner))
        return false;
    if (!IsInside(inner, outer))
        mOuterOfInner.emplace(inner, outer);
    return true;
}

bool CKeyBindings::CanBeLiveTogether(std::uint32_t a, std::uint32_t b) const {
    return a == b || a == CKeyBinding::kEverywhere || b == CKeyBinding::kEverywhere ||
           IsInside(a, b) || IsInside(b, a);
}

CKeyBindingConflict CKeyBindings::Decide(std::size_t earlier, std::size_t later) const {
    using EDecision = CKeyBindingConflict::EDecision;
    const CKeyBinding& first = mBindings[earlier];
    const CKeyBinding& second = mBindings[later];
    if (first.mContext != second.mContext) {
        const bool firstIsInner = second.mContext == CKeyBinding::kEverywhere ||
                                  (first.mContext != CKeyBinding::kEverywhere &&
                                   IsInside(first.mContext, second.mContext));
        return firstIsInner ? CKeyBindingConflict{earlier, later, EDecision::InnerContext}
                            : CKeyBindingConflict{later, earlier, EDecision::InnerContext};
    }
    const int firstOpen = CKeyPatternStates(*first.mPattern).CountOpen();
    const int secondOpen = CKeyPatternStates(*second.mPattern).CountOpen();
    if (firstOpen == secondOpen)
        return {earlier, later, EDecision::EarlierPlace};
    return firstOpen < secondOpen ? CKeyBindingConflict{earlier, later, EDecision::NarrowerPattern}
                                  : CKeyBindingConflict{later, earlier, EDecision::NarrowerPattern};
}

std::vector<CKeyBindingConflict> CKeyBindings::FindConflicts() const {
    std::vector<CKeyBindingConflict> conflicts;
    for (std::size_t i = 0; i < mBindings.size(); ++i) {
        const CKeyBinding& binding = mBindings[i];
        for (const std::size_t j : mByKeyCode.at(binding.mKeyCode)) {
            const CKeyBinding& other = mBindings[j];
            if (j > i && binding.mCommandName != other.mCommandName &&
                CanBeLiveTogether(binding.mContext, other.mContext) &&
                Overlap(*binding.mPattern, *other.mPattern))
                conflicts.push_back(Decide(i, j));
        }
    }
    return conflicts;
}

std::string CKeyBindings::ConflictAsText(const CKeyBindingConflict& conflict) const {
    const CKeyBinding& winner = mBindings[conflict.mWinner];
    const CKeyBinding& loser = mBindings[conflict.mLoser];
    const char* const decisions[] = {"inner context", "narrower pattern", "earlier line"};
    std::string stroke = winner.mPattern->GetKeyModifiersDescriptiveString(
        /*macStyle*/ true, /*includeEitherStates*/ true, /*includeFocus*/ true, "+");
    if (!stroke.empty())
        stroke += ' ';
    stroke += DAW_KeyCodeToName(winner.mKeyCode);
    return mFileName + ":" + std::to_string(GetLine(conflict.mWinner)) + ": " + stroke +
           " performs " + winner.mCommandName + ", not " + loser.mCommandName + " of line " +
           std::to_string(GetLine(conflict.mLoser)) + " (" +
           decisions[static_cast<int>(conflict.mDecision)] + ")";
}
