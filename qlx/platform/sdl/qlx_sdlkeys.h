// SDL's keys and modifiers in the framework's numbers. For the SDL platform's own source files.
#pragma once

#include <SDL_keyboard.h>

#include "qlx/views/qlx_keyboard.h"

/// The key code of a key event; see DAW_EKeyCode.
[[nodiscard]] std::uint32_t QLX_SDLKeyCode(const SDL_Keysym& key);
/// The character that a key types by itself, without a text event: keypad digits and signs; for
/// keys with a control code that code; 0 for the others.
[[nodiscard]] std::uint32_t QLX_SDLKeyCharacter(const SDL_Keysym& key);
/// Whether the key types a character whose text event follows when the modifiers let it.
[[nodiscard]] bool QLX_SDLTypesText(const SDL_Keysym& key);
/// Bits of QLX_EModifierBits.
[[nodiscard]] std::uint32_t QLX_SDLModifiers(std::uint16_t modifiers);
/// SDL's scan code of a key; SDL_SCANCODE_UNKNOWN where there is none.
[[nodiscard]] SDL_Scancode QLX_SDLScanCode(DAW_EKeyCode key);
