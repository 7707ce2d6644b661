// What holds for any bytes that are read as a key-binding file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "qlx/views/ukeybindings.h"

/// Reads the text and answers which law it breaks; empty when all hold: it is written again byte
/// for byte, every binding of it can be written by itself and reads back equal, and conflicts and
/// problems have a text.
inline std::string BrokenKeyBindingLaw(std::string_view text) {
    CKeyBindings bindings;
    bindings.ReadText(text, "keys.txt");
    if (bindings.WriteText() != text)
        return "the text that was read is not the text that is written";
    std::vector<CKeyBinding> all;
    for (std::size_t i = 0; i < bindings.GetBindingCount(); ++i)
        all.push_back(bindings.GetBinding(i));
    for (std::size_t i = 0; i < all.size(); ++i)
        if (!bindings.ReplaceBinding(i, all[i]))
            return "a binding that was read is refused";
    CKeyBindings again;
    again.ReadText(bindings.WriteText(), "keys.txt");
    if (again.GetBindingCount() != all.size())
        return "bindings are lost or found in writing";
    for (std::size_t i = 0; i < all.size(); ++i)
        if (!(again.GetBinding(i) == all[i]))
            return "a binding changes in writing";
    for (const CKeyBindingConflict& conflict : bindings.FindConflicts())
        if (bindings.ConflictAsText(conflict).empty())
            return "a conflict has no text";
    for (const CKeyBindingProblem& problem : bindings.FindProblems())
        if (problem.mLine < 1 || problem.mColumn < 1 || problem.mReason.empty())
            return "a problem has no place or no reason";
    return std::string();
}
