#include "newfilelibs/daw/daw_keynames.h"

#include "basekit/cmn/cmn_string.h"

namespace {

struct NamedKey {
    std::uint32_t code;
    const char* name;
};

constexpr NamedKey kNamedKeys[] = {
    {kDAW_Key_Enter, "Enter"},
    {kDAW_Key_Backspace, "Backspace"},
    {kDAW_Key_Tab, "Tab"},
    {kDAW_Key_Return, "Return"},
    {kDAW_Key_Escape, "Escape"},
    {kDAW_Key_Left, "Left"},
    {kDAW_Key_Right, "Right"},
    {kDAW_Key_Up, "Up"},
    {kDAW_Key_Down, "Down"},
    {kDAW_Key_Space, "Space"},
    {kDAW_Key_Delete, "Delete"},
    {kDAW_Key_CapsLock, "CapsLock"},
    {kDAW_Key_PrintScreen, "PrintScreen"},
    {kDAW_Key_ScrollLock, "ScrollLock"},
    {kDAW_Key_Pause, "Pause"},
    {kDAW_Key_Insert, "Insert"},
    {kDAW_Key_Home, "Home"},
    {kDAW_Key_PageUp, "PageUp"},
    {kDAW_Key_End, "End"},
    {kDAW_Key_PageDown, "PageDown"},
    {kDAW_Key_NumLock, "NumLock"},
    {kDAW_Key_Menu, "Menu"},
    {kDAW_Key_LeftControl, "LeftControl"},
    {kDAW_Key_LeftShift, "LeftShift"},
    {kDAW_Key_LeftAlternate, "LeftAlternate"},
    {kDAW_Key_LeftMeta, "LeftMeta"},
    {kDAW_Key_RightControl, "RightControl"},
    {kDAW_Key_RightShift, "RightShift"},
    {kDAW_Key_RightAlternate, "RightAlternate"},
    {kDAW_Key_RightMeta, "RightMeta"},
};

char LowerCase(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool EqualsWithoutCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (LowerCase(a[i]) != LowerCase(b[i]))
            return false;
    return true;
}

/// The number of a function key, 1 to 24; 0 for another key.
std::uint32_t FunctionKeyNumber(std::uint32_t code) {
    if (code >= kDAW_Key_F1 && code <= kDAW_Key_F12)
        return code - kDAW_Key_F1 + 1;
    if (code >= kDAW_Key_F13 && code <= kDAW_Key_F24)
        return code - kDAW_Key_F13 + 13;
    return 0;
}

bool FunctionKeyFromName(std::string_view name, std::uint32_t& code) {
    if (name.size() < 2 || LowerCase(name[0]) != 'f' || name[1] == '0')
        return false;
    std::int32_t number = 0;
    if (!Cmn_ParseInt32(name.substr(1), number) || name[1] == '+' || number < 1 || number > 24)
        return false;
    code = static_cast<std::uint32_t>(number <= 12 ? kDAW_Key_F1 + number - 1
                                                   : kDAW_Key_F13 + number - 13);
    return true;
}

/// Whether a code is that of a character which shows as something and is a key's own form: small
/// letters are named by their key, which has the capital's code.
bool IsCharacterKey(std::uint32_t code) {
    if (code >= 'a' && code <= 'z')
        return false;
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    return (code > 0x20 && code < 0x7F) || (code > 0xA0 && code <= 0x10FFFF && !isSurrogate);
}

bool CharacterKeyFromName(std::string_view name, std::uint32_t& code) {
    if (name.empty())
        return false;
    std::size_t position = 0;
    std::uint32_t character = Cmn_DecodeUTF8(name, position);
    std::string again;
    Cmn_AppendUTF8(again, character);
    if (position != name.size() || again != name)
        return false; // more than one character, or bytes that are none
    if (character >= 'a' && character <= 'z')
        character -= 'a' - 'A';
    if (!IsCharacterKey(character))
        return false;
    code = character;
    return true;
}

bool HexadecimalFromName(std::string_view name, std::uint32_t& code) {
    if (name.size() != 10 || name[0] != '0' || LowerCase(name[1]) != 'x')
        return false;
    std::uint32_t value = 0;
    for (const char c : name.substr(2)) {
        const char digit = LowerCase(c);
        if (digit >= '0' && digit <= '9')
            value = value << 4 | static_cast<std::uint32_t>(digit - '0');
        else if (digit >= 'a' && digit <= 'f')
            value = value << 4 | static_cast<std::uint32_t>(digit - 'a' + 10);
        else
            return false;
    }
    code = value;
    return true;
}

bool FindKey(std::string_view name, std::uint32_t& code) {
    for (const NamedKey& key : kNamedKeys) {
        if (EqualsWithoutCase(key.name, name)) {
            code = key.code;
            return true;
        }
    }
    return CharacterKeyFromName(name, code) || FunctionKeyFromName(name, code) ||
           HexadecimalFromName(name, code);
}

} // namespace

std::string DAW_KeyCodeToName(DAW_EKeyCode keyCode) {
    for (const NamedKey& key : kNamedKeys)
        if (key.code == keyCode)
            return key.name;
    if (const std::uint32_t number = FunctionKeyNumber(keyCode))
        return "F" + std::to_string(number);
    std::string name;
    if (IsCharacterKey(keyCode)) {
        Cmn_AppendUTF8(name, keyCode);
        return name;
    }
    name = "0x";
    for (int shift = 28; shift >= 0; shift -= 4)
        name += "0123456789ABCDEF"[keyCode >> shift & 0xF];
    return name;
}

bool DAW_KeyCodeFromName(std::string_view name, DAW_EKeyCode& keyCode) {
    std::uint32_t code = 0;
    if (!FindKey(name, code))
        return false;
    keyCode = static_cast<DAW_EKeyCode>(code);
    return true;
}
