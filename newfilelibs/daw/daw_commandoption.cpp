#include "newfilelibs/daw/daw_commandoption.h"

#include "basekit/cmn/cmn_assert.h"

namespace {

constexpr const char* kSource = "newfilelibs/daw/daw_commandoption";
// The lines under which kinds that are none have always been reported; logs are searched for them.
constexpr int kRequiredKindLine = 47;
constexpr int kExcludedKindLine = 70;

bool IsModifierKey(DAW_EModifierKind kind) {
    return kind >= kDAW_ModifierKind_MenuCommand && kind <= kDAW_ModifierKind_Shift;
}

/// Whether one of the four modifier keys is pressed; without modifiers none is.
bool IsPressed(DAW_EModifierKind kind, const DAW_EventModifiers* modifiers) {
    if (!modifiers)
        return false;
    switch (kind) {
    case kDAW_ModifierKind_MenuCommand:
        return modifiers->MenuCommandKeyIsDown();
    case kDAW_ModifierKind_Alternate:
        return modifiers->AlternateKeyIsDown();
    case kDAW_ModifierKind_Meta:
        return modifiers->MetaKeyIsDown();
    case kDAW_ModifierKind_Shift:
        return modifiers->ShiftKeyIsDown();
    default:
        return false;
    }
}

} // namespace

Cmn_RefCountPtr<DAW_CommandOption>
DAW_CommandOption::New(std::int32_t ownerCommandID, const std::string& name,
                       std::vector<DAW_EModifierKind> required, bool defaultState, DAW_EKeyCode key,
                       ECommandNameAppendMode mode, std::vector<DAW_EModifierKind> excluded) {
    Cmn_RefCountPtr<DAW_CommandOption> option(new DAW_CommandOption);
    option->mOwnerCommandID = ownerCommandID;
    option->mOptionName = name;
    option->mRequired = std::move(required);
    option->mDefaultState = defaultState;
    option->mKeyCode = key;
    option->mCommandNameAppendMode = mode;
    option->mExcluded = std::move(excluded);
    return option;
}

Cmn_RefCountPtr<DAW_CommandOption>
DAW_CommandOption::New(std::int32_t ownerCommandID, const std::string& name,
                       DAW_EModifierKind required, bool defaultState, DAW_EKeyCode key,
                       ECommandNameAppendMode mode, std::vector<DAW_EModifierKind> excluded) {
    return New(ownerCommandID, name, std::vector<DAW_EModifierKind>{required}, defaultState, key,
               mode, std::move(excluded));
}

DAW_CommandOption::~DAW_CommandOption() = default;

bool DAW_CommandOption::GetOptionState(Cmn_AliasedRefCountPtr<DAW_EventModifiers> modifiers,
                                       Cmn_RefCountPtr<DAW_KeyboardState> keyboard) const {
    bool matched = true;
    for (const DAW_EModifierKind kind : mRequired) {
        if (IsModifierKey(kind))
            matched = matched && IsPressed(kind, modifiers.Get());
        else if (kind == kDAW_ModifierKind_OwnKey)
            matched = matched && keyboard && keyboard->KeyIsDown(mKeyCode);
        else
            Cmn_Assert("required modifier kind", kSource, kRequiredKindLine);
    }
    for (const DAW_EModifierKind kind : mExcluded) {
        // Deliberate: the option's own key cannot be excluded; it is reported like an unknown kind.
        if (IsModifierKey(kind))
            matched = matched && !IsPressed(kind, modifiers.Get());
        else
            Cmn_Assert("excluded modifier kind", kSource, kExcludedKindLine);
    }
    return matched ? !mDefaultState : mDefaultState;
}

Cmn_AliasedRefCountPtr<DAW_EventModifiers> DAW_CommandOption::BuildModifiersFromOption() const {
    Cmn_AliasedRefCountPtr<DAW_EventModifiers> modifiers = DAW_EventModifiers::New(
        kDAW_MenuCommandKey_NotPressed, kDAW_AlternateKey_NotPressed, kDAW_MetaKey_NotPressed,
        kDAW_ShiftKey_NotPressed, kDAW_LeftButton_NotPressed, kDAW_MiddleButton_NotPressed,
        kDAW_RightButton_NotPressed, /*scrollDirectionInverted*/ false, kDAW_KeyboardFocus_Either);
    for (const DAW_EModifierKind kind : mRequired) {
        if (kind == kDAW_ModifierKind_MenuCommand)
            modifiers->SetMenuCommandKeyState(kDAW_MenuCommandKey_Pressed);
        else if (kind == kDAW_ModifierKind_Alternate)
            modifiers->SetAlternateKeyState(kDAW_AlternateKey_Pressed);
        else if (kind == kDAW_ModifierKind_Meta)
            modifiers->SetMetaKeyState(kDAW_MetaKey_Pressed);
        else if (kind == kDAW_ModifierKind_Shift)
            modifiers->SetShiftKeyState(kDAW_ShiftKey_Pressed);
    }
    return modifiers;
}

std::string DAW_CommandOption::AppendToCommandName(const std::string& commandName) const {
    switch (mCommandNameAppendMode) {
    case kCommandNameAppend_Suffix:
        return commandName + " " + mOptionName;
    case kCommandNameAppend_Parentheses:
        return commandName + " (" + mOptionName + ")";
    case kCommandNameAppend_Prefix:
        return mOptionName + " " + commandName;
    case kCommandNameAppend_Replace:
        return mOptionName;
    default:
        return commandName;
    }
}
