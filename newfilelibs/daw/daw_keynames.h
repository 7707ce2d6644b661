// Key codes as text, for files and menus.
#pragma once

#include <string>
#include <string_view>

#include "newfilelibs/daw/daw_types.h"

/// The name of a key: "Return", "F5", the character itself in UTF-8 for a key that types one ("S",
/// ","), else "0x" and eight hexadecimal digits. Every code has a name of its own.
[[nodiscard]] QLX_API std::string DAW_KeyCodeToName(DAW_EKeyCode keyCode);

/// The inverse. Names are taken in any letter case, and so is a single letter ("s" is the key S).
/// Returns false and leaves keyCode untouched for a text that is no key's name.
[[nodiscard]] QLX_API bool DAW_KeyCodeFromName(std::string_view name, DAW_EKeyCode& keyCode);
