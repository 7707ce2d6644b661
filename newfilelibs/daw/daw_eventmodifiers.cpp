#include "newfilelibs/daw/daw_eventmodifiers.h"

namespace {

/// How the four keys and the focus part are called in one text form.
struct ModifierNames {
    const char* keys[4]; // menu-command, alternate, meta, shift
    const char* focus;
};

constexpr ModifierNames kShortMac = {{"Cmd", "Opt", "Cntrl", "Shift"}, "Focus"};
constexpr ModifierNames kShortWindows = {{"Ctrl", "Alt", "Start", "Shift"}, "Focus"};
constexpr ModifierNames kLongMac = {{"Command", "Option", "Control", "Shift"}, "Commands Focus"};
constexpr ModifierNames kLongWindows = {{"Control", "Alt", "Winkey", "Shift"}, "Commands Focus"};
constexpr ModifierNames kMarkedMac = {{"<Cmd>", "<Opt>", "<Ctrl>", "<Shift>"}, "<Focus>"};
constexpr ModifierNames kMarkedWindows = {{"<Ctrl>", "<Alt>", "<Winkey>", "<Shift>"}, "<Focus>"};
constexpr ModifierNames kEitherMac = {{"[Cmd]", "[Opt]", "[Ctrl]", "[Shift]"}, ""};
constexpr ModifierNames kEitherWindows = {{"[Ctrl]", "[Alt]", "[Winkey]", "[Shift]"}, ""};

/// Joins parts with a separator between them.
class PartList {
  public:
    explicit PartList(const std::string& separator) : mSeparator(separator) {}

    void Add(const char* part) {
        if (!mText.empty())
            mText += mSeparator;
        mText += part;
    }

    /// Adds the names of the keys that are in the given state.
    void AddKeys(const DAW_EventModifiers& modifiers, int state, const ModifierNames& names) {
        const int states[4] = {modifiers.GetMenuCommandKeyState(), modifiers.GetAlternateKeyState(),
                               modifiers.GetMetaKeyState(), modifiers.GetShiftKeyState()};
        for (int key = 0; key < 4; ++key)
            if (states[key] == state)
                Add(names.keys[key]);
    }

    void AddFocus(const DAW_EventModifiers& modifiers, const ModifierNames& names) {
        if (modifiers.UsedByCustomKeyCommandsOnly_TargetsKeyboardFocusMode() == 0)
            Add(names.focus);
    }

    std::string Take() { return std::move(mText); }

  private:
    const std::string& mSeparator;
    std::string mText;
};

std::string PressedKeys(const DAW_EventModifiers& modifiers, const ModifierNames& names,
                        bool includeFocus, const std::string& separator) {
    PartList parts(separator);
    parts.AddKeys(modifiers, 1, names);
    if (includeFocus)
        parts.AddFocus(modifiers, names);
    return parts.Take();
}

} // namespace

Cmn_AliasedRefCountPtr<DAW_EventModifiers> DAW_EventModifiers::New(
    DAW_EMenuCommandKeyState menuCommand, DAW_EAlternateKeyState alternate, DAW_EMetaKeyState meta,
    DAW_EShiftKeyState shift, DAW_ELeftMouseButtonState left, DAW_EMiddleMouseButtonState middle,
    DAW_ERightMouseButtonState right, bool scrollDirectionInverted, DAW_EKeyboardFocusState focus) {
    auto* modifiers = new DAW_EventModifiers;
    modifiers->mMenuCommandKeyState = menuCommand;
    modifiers->mAlternateKeyState = alternate;
    modifiers->mMetaKeyState = meta;
    modifiers->mShiftKeyState = shift;
    modifiers->mLeftMouseButtonState = left;
    modifiers->mMiddleMouseButtonState = middle;
    modifiers->mRightMouseButtonState = right;
    modifiers->mScrollDirectionInverted = scrollDirectionInverted;
    modifiers->mKeyboardFocusState = focus;
    return Cmn_AliasedRefCountPtr<DAW_EventModifiers>(modifiers);
}

Cmn_AliasedRefCountPtr<DAW_EventModifiers>
DAW_EventModifiers::New(const DAW_EventModifiers& other) {
    return Cmn_AliasedRefCountPtr<DAW_EventModifiers>(new DAW_EventModifiers(other));
}

DAW_EventModifiers::~DAW_EventModifiers() = default;

DAW_EModifier DAW_EventModifiers::AsDAW_EModifier(bool excludeFocus) const {
    std::uint32_t bits = 0;
    if (ShiftKeyIsDown())
        bits |= kDAW_Modifier_Shift;
    if (MetaKeyIsDown())
        bits |= kDAW_Modifier_Meta;
    if (AlternateKeyIsDown())
        bits |= kDAW_Modifier_Alternate;
    if (MenuCommandKeyIsDown())
        bits |= kDAW_Modifier_MenuCommand;
    if (!excludeFocus && mKeyboardFocusState != 0)
        bits |= kDAW_Modifier_Focus;
    return static_cast<DAW_EModifier>(bits);
}

std::string DAW_EventModifiers::GetKeyModifiersShortNameString(bool macStyle, bool includeFocus,
                                                               const std::string& separator) const {
    return PressedKeys(*this, macStyle ? kShortMac : kShortWindows, includeFocus, separator);
}

std::string DAW_EventModifiers::GetKeyModifiersLongNameString(bool macStyle, bool includeFocus,
                                                              const std::string& separator) const {
    return PressedKeys(*this, macStyle ? kLongMac : kLongWindows, includeFocus, separator);
}

std::string
DAW_EventModifiers::GetKeyModifiersDescriptiveString(bool macStyle, bool includeEitherStates,
                                                     bool includeFocus,
                                                     const std::string& separator) const {
    PartList parts(separator);
    parts.AddKeys(*this, 1, macStyle ? kMarkedMac : kMarkedWindows);
    if (includeEitherStates)
        parts.AddKeys(*this, 2, macStyle ? kEitherMac : kEitherWindows);
    if (includeFocus)
        parts.AddFocus(*this, kMarkedMac);
    return parts.Take();
}

std::string DAW_EventModifiers::GetKeyModifiersSaveFileString() const {
    return PressedKeys(*this, kMarkedMac, /*includeFocus*/ true, "+");
}

std::string DAW_EventModifiers::GetMouseModifiersDescriptiveString() const { return std::string(); }
