#include "qlx/platform/win32/qlx_win32keys.h"

#include <array>

namespace {

struct KeyPair {
    int key;
    std::uint32_t code;
};

/// Keys whose code is neither what they type nor one of the keypad's.
constexpr std::array<KeyPair, 31> kKeys = {{{VK_BACK, kDAW_Key_Backspace},
                                            {VK_TAB, kDAW_Key_Tab},
                                            {VK_RETURN, kDAW_Key_Return},
                                            {VK_ESCAPE, kDAW_Key_Escape},
                                            {VK_SPACE, kDAW_Key_Space},
                                            {VK_LEFT, kDAW_Key_Left},
                                            {VK_RIGHT, kDAW_Key_Right},
                                            {VK_UP, kDAW_Key_Up},
                                            {VK_DOWN, kDAW_Key_Down},
                                            {VK_DELETE, kDAW_Key_Delete},
                                            {VK_INSERT, kDAW_Key_Insert},
                                            {VK_HOME, kDAW_Key_Home},
                                            {VK_END, kDAW_Key_End},
                                            {VK_PRIOR, kDAW_Key_PageUp},
                                            {VK_NEXT, kDAW_Key_PageDown},
                                            {VK_CAPITAL, kDAW_Key_CapsLock},
                                            {VK_SNAPSHOT, kDAW_Key_PrintScreen},
                                            {VK_SCROLL, kDAW_Key_ScrollLock},
                                            {VK_PAUSE, kDAW_Key_Pause},
                                            {VK_NUMLOCK, kDAW_Key_NumLock},
                                            {VK_APPS, kDAW_Key_Menu},
                                            {VK_LSHIFT, kDAW_Key_LeftShift},
                                            {VK_RSHIFT, kDAW_Key_RightShift},
                                            {VK_LCONTROL, kDAW_Key_LeftControl},
                                            {VK_RCONTROL, kDAW_Key_RightControl},
                                            {VK_LMENU, kDAW_Key_LeftAlternate},
                                            {VK_RMENU, kDAW_Key_RightAlternate},
                                            {VK_LWIN, kDAW_Key_LeftMeta},
                                            {VK_RWIN, kDAW_Key_RightMeta},
                                            {VK_SHIFT, kDAW_Key_LeftShift},
                                            {VK_MULTIPLY, '*'}}};

[[nodiscard]] bool IsHeld(int key) noexcept { return (GetKeyState(key) & 0x8000) != 0; }

// The keypad's keys count as what is printed on them, in every language.
[[nodiscard]] std::uint32_t KeypadCode(WPARAM key) noexcept {
    if (key >= VK_NUMPAD0 && key <= VK_NUMPAD9)
        return std::uint32_t('0' + (key - VK_NUMPAD0));
    switch (key) {
    case VK_DECIMAL:
        return '.';
    case VK_ADD:
        return '+';
    case VK_SUBTRACT:
        return '-';
    case VK_DIVIDE:
        return '/';
    default:
        return 0;
    }
}

} // namespace

std::uint32_t QLX_Win32KeyCode(WPARAM key, bool extended) {
    if (key == VK_RETURN && extended)
        return kDAW_Key_Enter;
    if (key == VK_CONTROL)
        return extended ? kDAW_Key_RightControl : kDAW_Key_LeftControl;
    if (key == VK_MENU)
        return extended ? kDAW_Key_RightAlternate : kDAW_Key_LeftAlternate;
    if (const std::uint32_t code = KeypadCode(key))
        return code;
    for (const KeyPair& pair : kKeys)
        if (WPARAM(pair.key) == key)
            return pair.code;
    if (key >= VK_F1 && key <= VK_F12)
        return std::uint32_t(kDAW_Key_F1 + (key - VK_F1));
    if (key >= VK_F13 && key <= VK_F24)
        return std::uint32_t(kDAW_Key_F13 + (key - VK_F13));
    // What the key types without modifiers; the top bit marks dead keys, which keep their accent.
    const UINT character = MapVirtualKeyW(UINT(key), MAPVK_VK_TO_CHAR) & 0x7FFFFFFF;
    if (character >= 32)
        return character >= 'a' && character <= 'z' ? character - 'a' + 'A' : character;
    // Keys nobody has a number for still differ from each other and from the others.
    return kDAW_FirstNamedKeyCode + 0x1000 + std::uint32_t(key);
}

std::uint32_t QLX_Win32KeyCharacter(std::uint32_t keyCode) {
    if (keyCode >= 'A' && keyCode <= 'Z')
        return keyCode - 'A' + 'a';
    return keyCode < kDAW_FirstNamedKeyCode ? keyCode : 0;
}

std::uint32_t QLX_Win32Modifiers() {
    std::uint32_t bits = 0;
    const bool altGr = IsHeld(VK_RMENU) && IsHeld(VK_LCONTROL);
    if (IsHeld(VK_SHIFT))
        bits |= kQLX_Modifier_Shift;
    if (IsHeld(VK_CONTROL) && !altGr)
        bits |= kQLX_Modifier_Command;
    if (IsHeld(VK_MENU) && !altGr)
        bits |= kQLX_Modifier_Option;
    if (IsHeld(VK_LWIN) || IsHeld(VK_RWIN))
        bits |= kQLX_Modifier_Control;
    return bits;
}

bool QLX_Win32SuppressesText() { return (QLX_Win32Modifiers() & ~kQLX_Modifier_Shift) != 0; }

int QLX_Win32VirtualKey(DAW_EKeyCode code) {
    for (const KeyPair& pair : kKeys)
        if (pair.code == code)
            return pair.key;
    if (code == kDAW_Key_Enter)
        return VK_RETURN;
    if (code >= kDAW_Key_F1 && code <= kDAW_Key_F12)
        return int(VK_F1 + (code - kDAW_Key_F1));
    if (code >= kDAW_Key_F13 && code <= kDAW_Key_F24)
        return int(VK_F13 + (code - kDAW_Key_F13));
    if (code >= 32 && code < 0x10000) {
        const SHORT found = VkKeyScanW(wchar_t(QLX_Win32KeyCharacter(code)));
        return found == -1 ? 0 : found & 0xFF;
    }
    return 0;
}
