// The modifier keys: their bits in an event, their form in the key-binding layer, and where their
// present state comes from.
#pragma once

#include "basekit/cmn/cmn_refcount.h"
#include "newfilelibs/daw/daw_types.h"

class DAW_EventModifiers;
class DAW_KeyboardState;

/// Bits of the modifier property of an event. The Ctrl key of Windows and Linux is the command key.
enum QLX_EModifierBits : std::uint32_t {
    kQLX_Modifier_Shift = 1,
    kQLX_Modifier_Control = 2, ///< the Windows key; on macOS Control
    kQLX_Modifier_Option = 4,  ///< Alt
    kQLX_Modifier_Command = 8  ///< Ctrl; on macOS Cmd
};

/// Bits of the mouse buttons that are held.
enum QLX_EMouseButtonBits : std::uint32_t {
    kQLX_MouseButton_Left = 1,
    kQLX_MouseButton_Middle = 2,
    kQLX_MouseButton_Right = 4
};

/// The keyboard and mouse as they are now, as a platform or a test answers it. The base class is
/// the keyboard of no platform: nothing is held. User-interface thread.
class QLX_API QLX_KeyboardSource {
  public:
    virtual ~QLX_KeyboardSource();

    // Slot order is part of the binary interface: append, never move.

    /// Bits of QLX_EModifierBits.
    [[nodiscard]] virtual std::uint32_t GetModifierBits() const;
    [[nodiscard]] virtual bool IsKeyDown(DAW_EKeyCode key) const;
    /// Bits of QLX_EMouseButtonBits.
    [[nodiscard]] virtual std::uint32_t GetMouseButtons() const;
    /// Whether the host is in the mode in which plain keys are commands; false unless overridden.
    [[nodiscard]] virtual bool IsInCommandsFocusMode() const;
    /// Whether the user's system scrolls the other way.
    [[nodiscard]] virtual bool IsScrollDirectionInverted() const;
};

/// Questions about the keyboard. All of it belongs to the user-interface thread.
class QLX_API QLX_Keyboard {
  public:
    /// Puts a source in place and returns the previous one; null brings back the one with nothing
    /// held. Not owned.
    static QLX_KeyboardSource* SetSource(QLX_KeyboardSource* source);
    [[nodiscard]] static QLX_KeyboardSource& GetSource();

    /// The modifier keys held now, those on an attached hardware controller included.
    [[nodiscard]] static std::uint32_t GetModifierBits();
    [[nodiscard]] static bool IsKeyDown(DAW_EKeyCode key);

    /// The bits of an event in the form of the key-binding layer: command is the menu-command key,
    /// option the alternate key, control the meta key. What the bits do not say (mouse buttons,
    /// scroll direction, keyboard focus) is asked of the source.
    [[nodiscard]] static Cmn_AliasedRefCountPtr<DAW_EventModifiers>
    GetDAWModifiers(std::uint16_t modifierBits);
    /// The same for the keys held now.
    [[nodiscard]] static Cmn_AliasedRefCountPtr<DAW_EventModifiers> GetDAWModifiers();

    /// A keyboard state that asks the source whenever it is asked.
    [[nodiscard]] static Cmn_RefCountPtr<DAW_KeyboardState> GetDAWKeyboardState();

    /// Modifier bits held on an attached hardware controller. Every toolbox event takes them in.
    static std::uint32_t sHWCModifierComposite;
};
