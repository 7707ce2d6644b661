// The inspector that every host gets for free: what the view under the pointer is, where it is, who
// hears its keys, and which line of the description each of its properties came from; which parts
// of the window were drawn; which messages went where.
#pragma once

#include <string>

#include "qlx/views/uview.h"

/// The switches, for the whole process. Everything is off until the host turns it on, and costs one
/// test of a static flag until then.
class QLX_API TInspector {
  public:
    /// Turns the inspector on: the chord shows and hides it in the window that has the keyboard,
    /// and with Shift held besides switches that window's paint flashing. Modifiers are bits of
    /// QLX_EModifierBits. Views made from now on remember their descriptions.
    static void Enable(std::uint32_t keyCode, std::uint32_t modifiers);
    /// Hides it everywhere and stops listening to the chord.
    static void Disable();
    [[nodiscard]] static bool IsEnabled();

    /// Outlines the view under the pointer and shows Describe's text in a panel, in the corner that
    /// the pointer is furthest from.
    static void Show(TWindow* window);
    static void Hide();
    /// The window that is being inspected; null for none.
    [[nodiscard]] static TWindow* GetWindow();
    /// The view that is outlined; null for none.
    [[nodiscard]] static TView* GetInspected();

    /// Class, identifier, frame, marks; then the handler chain with behaviours; then the properties
    /// with the filter each came from, where the view's description is remembered.
    [[nodiscard]] static std::string Describe(TView* view);

    /// Shows every rectangle that a window draws in a colour for a moment.
    static void SetPaintFlashing(TWindow* window, bool on);
    /// Writes every message of the handler chain to the trace output.
    static void SetEventTrace(bool on);

    // For TWindow

    /// Whether the key was the chord.
    static bool TakeKey(TWindow* window, std::uint32_t keyCode, std::uint32_t modifiers);
    static void PointerMoved(TWindow* window);
    static void SubViewAdded(TWindow* window, TView* sub);
    /// Colours what was drawn, and asks for it to be drawn again a moment later.
    static void Flash(TWindow* window, const QLX_Region& region);
};
