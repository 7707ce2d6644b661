#include "qlx/platform/sdl/qlx_sdlkeys.h"

#include <array>

#include "qlx/platform/sdl/qlx_sdlapi.h"

namespace {

struct KeyPair {
    SDL_Scancode scan;
    std::uint32_t code;
};

/// Keys whose code is neither their character nor their USB number.
constexpr std::array<KeyPair, 27> kKeys = {
    {{SDL_SCANCODE_RETURN, kDAW_Key_Return},
     {SDL_SCANCODE_RETURN2, kDAW_Key_Return},
     {SDL_SCANCODE_KP_ENTER, kDAW_Key_Enter},
     {SDL_SCANCODE_BACKSPACE, kDAW_Key_Backspace},
     {SDL_SCANCODE_DELETE, kDAW_Key_Delete},
     {SDL_SCANCODE_TAB, kDAW_Key_Tab},
     {SDL_SCANCODE_ESCAPE, kDAW_Key_Escape},
     {SDL_SCANCODE_LEFT, kDAW_Key_Left},
     {SDL_SCANCODE_RIGHT, kDAW_Key_Right},
     {SDL_SCANCODE_UP, kDAW_Key_Up},
     {SDL_SCANCODE_DOWN, kDAW_Key_Down},
     {SDL_SCANCODE_KP_0, '0'},
     {SDL_SCANCODE_KP_1, '1'},
     {SDL_SCANCODE_KP_2, '2'},
     {SDL_SCANCODE_KP_3, '3'},
     {SDL_SCANCODE_KP_4, '4'},
     {SDL_SCANCODE_KP_5, '5'},
     {SDL_SCANCODE_KP_6, '6'},
     {SDL_SCANCODE_KP_7, '7'},
     {SDL_SCANCODE_KP_8, '8'},
     {SDL_SCANCODE_KP_9, '9'},
     // The keypad's decimal key is a point in every language.
     {SDL_SCANCODE_KP_PERIOD, '.'},
     {SDL_SCANCODE_KP_PLUS, '+'},
     {SDL_SCANCODE_KP_MINUS, '-'},
     {SDL_SCANCODE_KP_MULTIPLY, '*'},
     {SDL_SCANCODE_KP_DIVIDE, '/'},
     {SDL_SCANCODE_KP_EQUALS, '='}}};

bool IsKeypad(SDL_Scancode scan) {
    return (scan >= SDL_SCANCODE_KP_DIVIDE && scan <= SDL_SCANCODE_KP_PERIOD) ||
           scan == SDL_SCANCODE_KP_EQUALS;
}

bool IsKeypadNumber(SDL_Scancode scan) {
    return scan >= SDL_SCANCODE_KP_1 && scan <= SDL_SCANCODE_KP_PERIOD;
}

/// What the keypad's number keys are while Num Lock is off.
std::uint32_t KeypadMotion(SDL_Scancode scan) {
    switch (scan) {
    case SDL_SCANCODE_KP_4:
        return kDAW_Key_Left;
    case SDL_SCANCODE_KP_6:
        return kDAW_Key_Right;
    case SDL_SCANCODE_KP_8:
        return kDAW_Key_Up;
    case SDL_SCANCODE_KP_2:
        return kDAW_Key_Down;
    case SDL_SCANCODE_KP_7:
        return kDAW_Key_Home;
    case SDL_SCANCODE_KP_1:
        return kDAW_Key_End;
    case SDL_SCANCODE_KP_9:
        return kDAW_Key_PageUp;
    case SDL_SCANCODE_KP_3:
        return kDAW_Key_PageDown;
    case SDL_SCANCODE_KP_0:
        return kDAW_Key_Insert;
    case SDL_SCANCODE_KP_PERIOD:
        return kDAW_Key_Delete;
    default:
        return kDAW_Key_None;
    }
}

bool IsPrintable(SDL_Keycode sym) {
    return sym >= 32 && sym != 127 && (sym & SDLK_SCANCODE_MASK) == 0;
}

} // namespace

std::uint32_t QLX_SDLKeyCode(const SDL_Keysym& key) {
    if (IsKeypadNumber(key.scancode) && (key.mod & KMOD_NUM) == 0)
        return KeypadMotion(key.scancode);
    for (const KeyPair& pair : kKeys) {
        if (pair.scan == key.scancode)
            return pair.code;
    }
    if (IsPrintable(key.sym)) {
        const auto character = static_cast<std::uint32_t>(key.sym);
        return character >= 'a' && character <= 'z' ? character - 'a' + 'A' : character;
    }
    return kDAW_FirstNamedKeyCode + static_cast<std::uint32_t>(key.scancode);
}

std::uint32_t QLX_SDLKeyCharacter(const SDL_Keysym& key) {
    const std::uint32_t code = QLX_SDLKeyCode(key);
    if (IsKeypad(key.scancode) || code < 32 || code == kDAW_Key_Delete)
        return code < kDAW_FirstNamedKeyCode ? code : 0;
    return IsPrintable(key.sym) ? static_cast<std::uint32_t>(key.sym) : 0;
}

bool QLX_SDLTypesText(const SDL_Keysym& key) {
    if (IsKeypad(key.scancode))
        return (key.mod & KMOD_NUM) != 0 || !IsKeypadNumber(key.scancode);
    return IsPrintable(key.sym);
}

std::uint32_t QLX_SDLModifiers(std::uint16_t modifiers) {
    std::uint32_t bits = 0;
    if (modifiers & KMOD_SHIFT)
        bits |= kQLX_Modifier_Shift;
    if (modifiers & KMOD_CTRL)
        bits |= kQLX_Modifier_Command;
    if (modifiers & KMOD_ALT)
        bits |= kQLX_Modifier_Option;
    if (modifiers & KMOD_GUI)
        bits |= kQLX_Modifier_Control;
    return bits;
}

SDL_Scancode QLX_SDLScanCode(DAW_EKeyCode key) {
    for (const KeyPair& pair : kKeys) {
        if (pair.code == key && !IsKeypad(pair.scan))
            return pair.scan;
    }
    if (key >= kDAW_FirstNamedKeyCode)
        return static_cast<SDL_Scancode>(key - kDAW_FirstNamedKeyCode);
    const bool capital = key >= 'A' && key <= 'Z';
    return QLX_SDL().GetScancodeFromKey(static_cast<SDL_Keycode>(capital ? key - 'A' + 'a' : key));
}
