// The plain words of the key and command layer: key codes, the states that a key or a button can
// have in an event or in a binding pattern, and the enumerations that named commands carry.
#pragma once

#include "basekit/cmn/cmn_types.h"

// Key codes

/// Where the codes of keys without a character begin: above every Unicode code point. Added to it
/// is the key's number on the keyboard page (0x07) of the USB HID Usage Tables.
inline constexpr std::uint32_t kDAW_FirstNamedKeyCode = 0x110000;

/// Which key, as every platform side reports it in a key event. A key that types a character has
/// the code point of that character as its code: the one it types without modifiers, letters in
/// their capital form ('A', '7', ','), so that a binding follows the letter on the user's keyboard
/// layout. The keys of the keypad count as their characters, except for Enter. Editing keys and
/// arrows have the control codes below. Every other key has kDAW_FirstNamedKeyCode plus its USB
/// number. The enumeration is open: any 32-bit value may occur.
enum DAW_EKeyCode : std::uint32_t {
    kDAW_Key_None = 0,
    kDAW_Key_Enter = 3, ///< the keypad's
    kDAW_Key_Backspace = 8,
    kDAW_Key_Tab = 9,
    kDAW_Key_Return = 13,
    kDAW_Key_Escape = 27,
    kDAW_Key_Left = 28,
    kDAW_Key_Right = 29,
    kDAW_Key_Up = 30,
    kDAW_Key_Down = 31,
    kDAW_Key_Space = 32,
    kDAW_Key_Delete = 127, ///< forward delete

    kDAW_Key_CapsLock = kDAW_FirstNamedKeyCode + 0x39,
    kDAW_Key_F1 = kDAW_FirstNamedKeyCode + 0x3A, ///< F1 to F12 follow each other
    kDAW_Key_F12 = kDAW_FirstNamedKeyCode + 0x45,
    kDAW_Key_PrintScreen = kDAW_FirstNamedKeyCode + 0x46,
    kDAW_Key_ScrollLock = kDAW_FirstNamedKeyCode + 0x47,
    kDAW_Key_Pause = kDAW_FirstNamedKeyCode + 0x48,
    kDAW_Key_Insert = kDAW_FirstNamedKeyCode + 0x49,
    kDAW_Key_Home = kDAW_FirstNamedKeyCode + 0x4A,
    kDAW_Key_PageUp = kDAW_FirstNamedKeyCode + 0x4B,
    kDAW_Key_End = kDAW_FirstNamedKeyCode + 0x4D,
    kDAW_Key_PageDown = kDAW_FirstNamedKeyCode + 0x4E,
    kDAW_Key_NumLock = kDAW_FirstNamedKeyCode + 0x53,
    kDAW_Key_Menu = kDAW_FirstNamedKeyCode + 0x65,
    kDAW_Key_F13 = kDAW_FirstNamedKeyCode + 0x68, ///< F13 to F24 follow each other
    kDAW_Key_F24 = kDAW_FirstNamedKeyCode + 0x73,
    kDAW_Key_LeftControl = kDAW_FirstNamedKeyCode + 0xE0,
    kDAW_Key_LeftShift = kDAW_FirstNamedKeyCode + 0xE1,
    kDAW_Key_LeftAlternate = kDAW_FirstNamedKeyCode + 0xE2,
    kDAW_Key_LeftMeta = kDAW_FirstNamedKeyCode + 0xE3,
    kDAW_Key_RightControl = kDAW_FirstNamedKeyCode + 0xE4,
    kDAW_Key_RightShift = kDAW_FirstNamedKeyCode + 0xE5,
    kDAW_Key_RightAlternate = kDAW_FirstNamedKeyCode + 0xE6,
    kDAW_Key_RightMeta = kDAW_FirstNamedKeyCode + 0xE7
};

/// Whether a key down was repeated by the keyboard while the key was held.
enum DAW_EAutoKey : std::int32_t { kDAW_AutoKey_No = 0, kDAW_AutoKey_Yes = 1 };

enum DAW_EKeyState : std::int32_t { kDAW_Key_IsUp = 0, kDAW_Key_IsDown = 1 };

// States of modifiers in events and patterns. In an event a key is pressed or not; in a pattern it
// may also be "either": the pattern does not look at it.

/// Ctrl on Windows and Linux, Cmd on macOS.
enum DAW_EMenuCommandKeyState : std::int32_t {
    kDAW_MenuCommandKey_NotPressed = 0,
    kDAW_MenuCommandKey_Pressed = 1,
    kDAW_MenuCommandKey_Either = 2
};
/// Alt, on macOS Option.
enum DAW_EAlternateKeyState : std::int32_t {
    kDAW_AlternateKey_NotPressed = 0,
    kDAW_AlternateKey_Pressed = 1,
    kDAW_AlternateKey_Either = 2
};
/// The Windows key, on macOS Control.
enum DAW_EMetaKeyState : std::int32_t {
    kDAW_MetaKey_NotPressed = 0,
    kDAW_MetaKey_Pressed = 1,
    kDAW_MetaKey_Either = 2
};
enum DAW_EShiftKeyState : std::int32_t {
    kDAW_ShiftKey_NotPressed = 0,
    kDAW_ShiftKey_Pressed = 1,
    kDAW_ShiftKey_Either = 2
};
enum DAW_ELeftMouseButtonState : std::int32_t {
    kDAW_LeftButton_NotPressed = 0,
    kDAW_LeftButton_Pressed = 1,
    kDAW_LeftButton_Either = 2
};
enum DAW_EMiddleMouseButtonState : std::int32_t {
    kDAW_MiddleButton_NotPressed = 0,
    kDAW_MiddleButton_Pressed = 1,
    kDAW_MiddleButton_Either = 2
};
enum DAW_ERightMouseButtonState : std::int32_t {
    kDAW_RightButton_NotPressed = 0,
    kDAW_RightButton_Pressed = 1,
    kDAW_RightButton_Either = 2
};
/// Whether the keyboard is in commands-focus mode, in which plain keys are commands. The numbers
/// are a file's: state 0 is the one that the text forms write as their focus part.
enum DAW_EKeyboardFocusState : std::int32_t {
    kDAW_KeyboardFocus_Commands = 0, ///< in commands-focus mode
    kDAW_KeyboardFocus_Normal = 1,   ///< not in commands-focus mode
    kDAW_KeyboardFocus_Either = 2
};

/// Bits of a folded modifier combination.
enum DAW_EModifier : std::uint32_t {
    kDAW_Modifier_None = 0,
    kDAW_Modifier_Shift = 1,
    kDAW_Modifier_Meta = 2,
    kDAW_Modifier_Alternate = 4,
    kDAW_Modifier_MenuCommand = 8,
    kDAW_Modifier_Focus = 128 ///< set for a focus state that is not 0
};

/// What an option of a command asks of the keyboard.
enum DAW_EModifierKind : std::int32_t {
    kDAW_ModifierKind_OwnKey = 0, ///< the option's own key is held
    kDAW_ModifierKind_MenuCommand = 1,
    kDAW_ModifierKind_Alternate = 2,
    kDAW_ModifierKind_Meta = 3,
    kDAW_ModifierKind_Shift = 4
};

// Named commands

/// How a command behaves when it is invoked.
enum DAW_ECommandType : std::int32_t {
    kDAW_CommandType_Action = 0,   ///< does something once per invocation
    kDAW_CommandType_Toggle = 1,   ///< switches something on or off
    kDAW_CommandType_Momentary = 2 ///< lasts from DoCommandStart to DoCommandEnd
};

/// How an option's name joins its command's name in menus and lists.
enum ECommandNameAppendMode : std::int32_t {
    kCommandNameAppend_None = 0,        ///< the option is not shown
    kCommandNameAppend_Suffix = 1,      ///< "Bounce to Disk"
    kCommandNameAppend_Parentheses = 2, ///< "Bounce (to Disk)"
    kCommandNameAppend_Prefix = 3,      ///< "Quick Bounce"
    kCommandNameAppend_Replace = 4      ///< the option's name alone
};

/// What a command has to do with, for searching and grouping. Texts: DAW_Command::TagToString.
enum EDAW_CommandTag : std::int32_t {
    kDAW_CommandTag_None = 0,
    kDAW_CommandTag_File,
    kDAW_CommandTag_Edit,
    kDAW_CommandTag_View,
    kDAW_CommandTag_Window,
    kDAW_CommandTag_Transport,
    kDAW_CommandTag_Record,
    kDAW_CommandTag_Playback,
    kDAW_CommandTag_Loop,
    kDAW_CommandTag_Selection,
    kDAW_CommandTag_Navigation,
    kDAW_CommandTag_Zoom,
    kDAW_CommandTag_Tool,
    kDAW_CommandTag_Grid,
    kDAW_CommandTag_Marker,
    kDAW_CommandTag_Tempo,
    kDAW_CommandTag_Track,
    kDAW_CommandTag_Clip,
    kDAW_CommandTag_Fade,
    kDAW_CommandTag_Automation,
    kDAW_CommandTag_Mixer,
    kDAW_CommandTag_Routing,
    kDAW_CommandTag_PlugIn,
    kDAW_CommandTag_Midi,
    kDAW_CommandTag_Video,
    kDAW_CommandTag_Import,
    kDAW_CommandTag_Export,
    kDAW_CommandTag_Controller,
    kDAW_CommandTag_Settings,
    kDAW_CommandTag_Help, ///< 29, the last
    kDAW_CommandTag_Count
};
