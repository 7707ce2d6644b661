// Modifier combinations, of actual events and of binding patterns, and their text forms.
#pragma once

#include <string>

#include "basekit/cmn/cmn_refcount.h"
#include "newfilelibs/daw/daw_types.h"

/// Which modifier keys and mouse buttons are pressed, or have to be for a pattern to match. Shared
/// by count; a setter changes it for everybody who holds it, so copy with New before changing what
/// came from elsewhere. User-interface thread.
class QLX_API DAW_EventModifiers : public Cmn_RefCountObject {
  public:
    [[nodiscard]] static Cmn_AliasedRefCountPtr<DAW_EventModifiers>
    New(DAW_EMenuCommandKeyState menuCommand, DAW_EAlternateKeyState alternate,
        DAW_EMetaKeyState meta, DAW_EShiftKeyState shift, DAW_ELeftMouseButtonState left,
        DAW_EMiddleMouseButtonState middle, DAW_ERightMouseButtonState right,
        bool scrollDirectionInverted, DAW_EKeyboardFocusState focus);
    [[nodiscard]] static Cmn_AliasedRefCountPtr<DAW_EventModifiers>
    New(const DAW_EventModifiers& other);

    ~DAW_EventModifiers() override;

    // Fields

    DAW_EMenuCommandKeyState GetMenuCommandKeyState() const { return mMenuCommandKeyState; }
    DAW_EAlternateKeyState GetAlternateKeyState() const { return mAlternateKeyState; }
    DAW_EMetaKeyState GetMetaKeyState() const { return mMetaKeyState; }
    DAW_EShiftKeyState GetShiftKeyState() const { return mShiftKeyState; }
    DAW_ELeftMouseButtonState GetLeftMouseButtonState() const { return mLeftMouseButtonState; }
    DAW_EMiddleMouseButtonState GetMiddleMouseButtonState() const {
        return mMiddleMouseButtonState;
    }
    DAW_ERightMouseButtonState GetRightMouseButtonState() const { return mRightMouseButtonState; }
    bool GetScrollDirectionInverted() const { return mScrollDirectionInverted; }
    DAW_EKeyboardFocusState UsedByCustomKeyCommandsOnly_TargetsKeyboardFocusMode() const {
        return mKeyboardFocusState;
    }

    void SetMenuCommandKeyState(DAW_EMenuCommandKeyState state) { mMenuCommandKeyState = state; }
    void SetAlternateKeyState(DAW_EAlternateKeyState state) { mAlternateKeyState = state; }
    void SetMetaKeyState(DAW_EMetaKeyState state) { mMetaKeyState = state; }
    void SetShiftKeyState(DAW_EShiftKeyState state) { mShiftKeyState = state; }
    void SetLeftMouseButtonState(DAW_ELeftMouseButtonState state) { mLeftMouseButtonState = state; }
    void SetMiddleMouseButtonState(DAW_EMiddleMouseButtonState state) {
        mMiddleMouseButtonState = state;
    }
    void SetRightMouseButtonState(DAW_ERightMouseButtonState state) {
        mRightMouseButtonState = state;
    }
    void SetScrollDirectionInverted(bool inverted) { mScrollDirectionInverted = inverted; }
    void SetUsedByCustomKeyCommandsOnly_TargetsKeyboardFocusMode(DAW_EKeyboardFocusState state) {
        mKeyboardFocusState = state;
    }

    // Questions: true for state 1 only, so a pattern's "either" is not down.

    bool MenuCommandKeyIsDown() const { return mMenuCommandKeyState == 1; }
    bool AlternateKeyIsDown() const { return mAlternateKeyState == 1; }
    bool MetaKeyIsDown() const { return mMetaKeyState == 1; }
    bool ShiftKeyIsDown() const { return mShiftKeyState == 1; }
    bool LeftButtonIsDown() const { return mLeftMouseButtonState == 1; }
    bool MiddleButtonIsDown() const { return mMiddleMouseButtonState == 1; }
    bool RightButtonIsDown() const { return mRightMouseButtonState == 1; }

    /// The pressed keys as bits. The focus bit is set for a focus state that is not 0, unless it is
    /// left out. Deliberate: the text forms write their focus part for state 0; saved files and bit
    /// sets each keep the sense they have always had.
    DAW_EModifier AsDAW_EModifier(bool excludeFocus) const;

    // Text forms. Modifiers come in the order menu-command, alternate, meta, shift; the separator
    // stands between parts only; the focus part comes last and is written for focus state 0.

    /// "Ctrl" "Alt" "Start" "Shift" "Focus"; macOS style "Cmd" "Opt" "Cntrl" "Shift".
    std::string GetKeyModifiersShortNameString(bool macStyle, bool includeFocus,
                                               const std::string& separator) const;
    /// "Control" "Alt" "Winkey" "Shift" "Commands Focus"; macOS style "Command" "Option" and so on.
    std::string GetKeyModifiersLongNameString(bool macStyle, bool includeFocus,
                                              const std::string& separator) const;
    /// Pressed keys as "<Ctrl>", then, when asked for, keys in state 2 as "[Ctrl]", then "<Focus>".
    std::string GetKeyModifiersDescriptiveString(bool macStyle, bool includeEitherStates,
                                                 bool includeFocus,
                                                 const std::string& separator) const;
    /// What key-binding files hold, the same on every platform:
    /// "<Cmd>+<Opt>+<Ctrl>+<Shift>+<Focus>".
    std::string GetKeyModifiersSaveFileString() const;
    /// Empty: mouse buttons have no text form.
    std::string GetMouseModifiersDescriptiveString() const;

  private:
    DAW_EventModifiers() = default;
    DAW_EventModifiers(const DAW_EventModifiers&) = default;

    DAW_EMenuCommandKeyState mMenuCommandKeyState = kDAW_MenuCommandKey_NotPressed;
    DAW_EAlternateKeyState mAlternateKeyState = kDAW_AlternateKey_NotPressed;
    DAW_EMetaKeyState mMetaKeyState = kDAW_MetaKey_NotPressed;
    DAW_EShiftKeyState mShiftKeyState = kDAW_ShiftKey_NotPressed;
    DAW_ELeftMouseButtonState mLeftMouseButtonState = kDAW_LeftButton_NotPressed;
    DAW_EMiddleMouseButtonState mMiddleMouseButtonState = kDAW_MiddleButton_NotPressed;
    DAW_ERightMouseButtonState mRightMouseButtonState = kDAW_RightButton_NotPressed;
    bool mScrollDirectionInverted = false;
    DAW_EKeyboardFocusState mKeyboardFocusState = kDAW_KeyboardFocus_Commands;
};
