// Virtual keys and the keyboard's state in the framework's numbers. For the Win32 platform's own
// source files.
#pragma once

#include "qlx/imaging/win32/qlx_windows.h"
#include "qlx/views/qlx_keyboard.h"

/// The key code of a key message; see DAW_EKeyCode. extended is bit 24 of the message's lParam.
[[nodiscard]] QLX_API std::uint32_t QLX_Win32KeyCode(WPARAM key, bool extended);
/// The character that a key types by itself: small letters, keypad digits; for keys with a control
/// code that code; 0 for the others.
[[nodiscard]] std::uint32_t QLX_Win32KeyCharacter(std::uint32_t keyCode);
/// Bits of QLX_EModifierBits, as the thread's messages have left the keys.
[[nodiscard]] std::uint32_t QLX_Win32Modifiers();
/// Whether what a key types now is a command and no text: Ctrl or Alt is held, and not as Alt Gr.
[[nodiscard]] bool QLX_Win32SuppressesText();
/// The virtual key of a key code; 0 where there is none.
[[nodiscard]] QLX_API int QLX_Win32VirtualKey(DAW_EKeyCode code);
