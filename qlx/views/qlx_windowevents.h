// The events that a native window sends, as QLX_Events: those of the mouse and the keyboard with
// what the handler chain does not name (wheel distance, button, clicks, typed text), and those
// about the window itself. Every platform side makes its events here, so all of them look the same;
// tests and recorded scripts make theirs here too.
#pragma once

#include <string>

#include "newfilelibs/cmn/cmn_rect.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/foundation/qlx_fwd.h"
#include "qlx/views/qlx_event.h"

// Classes and kinds beside those of qlx_event.h. The numbers are ours.

inline constexpr std::uint32_t kQLX_EventClass_Window = 3;

inline constexpr std::uint32_t kQLX_EventKind_MouseLeft = 20;   ///< mouse: out of the window
inline constexpr std::uint32_t kQLX_EventKind_CaptureLost = 21; ///< mouse: the system took it
inline constexpr std::uint32_t kQLX_EventKind_TextInput = 22; ///< keyboard: typed or composed text
inline constexpr std::uint32_t kQLX_EventKind_TextComposition =
    23;                                                     ///< keyboard: text being composed
inline constexpr std::uint32_t kQLX_EventKind_Resized = 30; ///< window: ask the port for the size
inline constexpr std::uint32_t kQLX_EventKind_ScaleChanged =
    31;                                                     ///< window: ask the port for the scale
inline constexpr std::uint32_t kQLX_EventKind_Exposed = 32; ///< window: present it again
inline constexpr std::uint32_t kQLX_EventKind_CloseRequested = 33;
inline constexpr std::uint32_t kQLX_EventKind_Activated = 34;
inline constexpr std::uint32_t kQLX_EventKind_Deactivated = 35;
inline constexpr std::uint32_t kQLX_EventKind_Moved = 36;

// Properties

inline constexpr std::uint32_t kQLX_EventProperty_WheelDelta =
    Cmn_FourChar("whel");                                                        ///< Cmn_Point<int>
inline constexpr std::uint32_t kQLX_EventProperty_Button = Cmn_FourChar("butn"); ///< int32
inline constexpr std::uint32_t kQLX_EventProperty_ClickCount = Cmn_FourChar("clik"); ///< int32
inline constexpr std::uint32_t kQLX_EventProperty_TextLength =
    Cmn_FourChar("txtl");                                                      ///< int32, bytes
inline constexpr std::uint32_t kQLX_EventProperty_Text = Cmn_FourChar("text"); ///< UTF-8, no zero
inline constexpr std::uint32_t kQLX_EventProperty_Caret =
    Cmn_FourChar("care"); ///< int32, characters
inline constexpr std::uint32_t kQLX_EventProperty_Selected =
    Cmn_FourChar("sele"); ///< int32, characters

/// The numbers of mouse buttons.
enum EMouseButton : std::int32_t { kMouse_Left = 0, kMouse_Middle = 1, kMouse_Right = 2 };

/// One notch of a common wheel. Finer wheels and touch pads send parts of it.
inline constexpr int kWheel_Notch = 120;

/// The third field of a toolbox event that stands for a real press of the Escape key, as opposed to
/// other keys with the same code.
inline constexpr std::uint32_t kKeyState_RealEscape = 6;

// Makers. Time stamps are Sys_Clock_Seconds; modifiers are the bits of the modifier property;
// places are in window coordinates.

/// A press, release or movement (down, up, moved, left the window, capture lost).
[[nodiscard]] QLX_API QLX_EventRef QLX_MakeMouseEvent(std::uint32_t kind, Cmn_Point<int> where,
                                                      std::uint32_t modifiers,
                                                      EMouseButton button = kMouse_Left);
/// A turn of the wheel: delta.y above 0 is away from the user (contents go down), delta.x above 0
/// is to the right; kWheel_Notch a notch.
[[nodiscard]] QLX_API QLX_EventRef QLX_MakeWheelEvent(Cmn_Point<int> where, Cmn_Point<int> delta,
                                                      std::uint32_t modifiers);
/// A key down, repeated key down or key up. The character is the code point that the key types with
/// the modifiers given, or the key code of a key that types none.
[[nodiscard]] QLX_API QLX_EventRef QLX_MakeKeyEvent(std::uint32_t kind, std::uint32_t keyCode,
                                                    std::uint32_t character,
                                                    std::uint32_t modifiers);
[[nodiscard]] QLX_API QLX_EventRef QLX_MakeTextEvent(const std::string& text);
[[nodiscard]] QLX_API QLX_EventRef QLX_MakeCompositionEvent(const std::string& text, int caret,
                                                            int selected);
[[nodiscard]] QLX_API QLX_EventRef QLX_MakeWindowEvent(std::uint32_t kind);

// Readers: what is absent reads as zero or empty.

[[nodiscard]] QLX_API Cmn_Point<int> QLX_GetWheelDelta(const QLX_EventRef& event);
[[nodiscard]] QLX_API EMouseButton QLX_GetMouseButton(const QLX_EventRef& event);
/// 1 for a single click, 2 for a double click and so on; set by the window.
[[nodiscard]] QLX_API int QLX_GetClickCount(const QLX_EventRef& event);
[[nodiscard]] QLX_API std::string QLX_GetEventText(const QLX_EventRef& event);
/// The same of a toolbox event's event; null gives zero.
[[nodiscard]] QLX_API Cmn_Point<int> QLX_GetWheelDelta(TToolboxEvent* event);
[[nodiscard]] QLX_API EMouseButton QLX_GetMouseButton(TToolboxEvent* event);
[[nodiscard]] QLX_API int QLX_GetClickCount(TToolboxEvent* event);
