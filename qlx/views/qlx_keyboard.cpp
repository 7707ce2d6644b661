#include "qlx/views/qlx_keyboard.h"

#include "newfilelibs/daw/daw_eventmodifiers.h"
#include "newfilelibs/daw/daw_keyboardstate.h"

namespace {

QLX_KeyboardSource sNothingHeld;
QLX_KeyboardSource* sSource = nullptr; // not owned; null: sNothingHeld

/// Asks the source of the moment, so it stays right while the keys change under it.
class SourceKeyboardState : public DAW_KeyboardState {
  public:
    bool KeyIsDown(DAW_EKeyCode key) const override {
        return DAW_KeyboardState::KeyIsDown(key) || QLX_Keyboard::IsKeyDown(key);
    }
};

template <class State>
State PressedIf(bool pressed) {
    return static_cast<State>(pressed ? 1 : 0);
}

} // namespace

QLX_KeyboardSource::~QLX_KeyboardSource() = default;

std::uint32_t QLX_KeyboardSource::GetModifierBits() const { return 0; }

bool QLX_KeyboardSource::IsKeyDown(DAW_EKeyCode) const { return false; }

std::uint32_t QLX_KeyboardSource::GetMouseButtons() const { return 0; }

bool QLX_KeyboardSource::IsInCommandsFocusMode() const { return false; }

bool QLX_KeyboardSource::IsScrollDirectionInverted() const { return false; }

std::uint32_t QLX_Keyboard::sHWCModifierComposite = 0;

QLX_KeyboardSource* QLX_Keyboard::SetSource(QLX_KeyboardSource* source) {
    QLX_KeyboardSource* const previous = sSource;
    sSource = source;
    return previous;
}

QLX_KeyboardSource& QLX_Keyboard::GetSource() { return sSource ? *sSource : sNothingHeld; }

std::uint32_t QLX_Keyboard::GetModifierBits() {
    return GetSource().GetModifierBits() | sHWCModifierComposite;
}

bool QLX_Keyboard::IsKeyDown(DAW_EKeyCode key) { return GetSource().IsKeyDown(key); }

Cmn_AliasedRefCountPtr<DAW_EventModifiers>
QLX_Keyboard::GetDAWModifiers(std::uint16_t modifierBits) {
    const QLX_KeyboardSource& source = GetSource();
    const std::uint32_t buttons = source.GetMouseButtons();
    return DAW_EventModifiers::New(
        PressedIf<DAW_EMenuCommandKeyState>(modifierBits & kQLX_Modifier_Command),
        PressedIf<DAW_EAlternateKeyState>(modifierBits & kQLX_Modifier_Option),
        PressedIf<DAW_EMetaKeyState>(modifierBits & kQLX_Modifier_Control),
        PressedIf<DAW_EShiftKeyState>(modifierBits & kQLX_Modifier_Shift),
        PressedIf<DAW_ELeftMouseButtonState>(buttons & kQLX_MouseButton_Left),
        PressedIf<DAW_EMiddleMouseButtonState>(buttons & kQLX_MouseButton_Middle),
        PressedIf<DAW_ERightMouseButtonState>(buttons & kQLX_MouseButton_Right),
        source.IsScrollDirectionInverted(),
        source.IsInCommandsFocusMode() ? kDAW_KeyboardFocus_Commands : kDAW_KeyboardFocus_Normal);
}

Cmn_AliasedRefCountPtr<DAW_EventModifiers> QLX_Keyboard::GetDAWModifiers() {
    return GetDAWModifiers(static_cast<std::uint16_t>(GetModifierBits()));
}

Cmn_RefCountPtr<DAW_KeyboardState> QLX_Keyboard::GetDAWKeyboardState() {
    return Cmn_RefCountPtr<DAW_KeyboardState>(new SourceKeyboardState);
}
