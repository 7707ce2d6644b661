// What CKeyBindings compares in modifier patterns, shared by its sources.
#pragma once

#include <algorithm>
#include <iterator>

#include "newfilelibs/daw/daw_eventmodifiers.h"

/// The five states of a pattern that a file can hold: the four keys and the focus.
struct CKeyPatternStates {
    explicit CKeyPatternStates(const DAW_EventModifiers& m)
        : states{m.GetMenuCommandKeyState(), m.GetAlternateKeyState(), m.GetMetaKeyState(),
                 m.GetShiftKeyState(), m.UsedByCustomKeyCommandsOnly_TargetsKeyboardFocusMode()} {}
    /// How many of them may be either way.
    [[nodiscard]] int CountOpen() const {
        return static_cast<int>(std::count(std::begin(states), std::end(states), 2));
    }
    int states[5];
};
