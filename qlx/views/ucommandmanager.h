// TCommandManager: menu commands by number, without knowing where their items are.
#pragma once

#include <string>

#include "basekit/cmn/cmn_types.h"
#include "qlx/views/umenumanager.h"

/// Enables, checks, names and shows commands. A number stands for its menu item, when it has one;
/// its state as enabled is remembered without one too. User-interface thread.
class QLX_API TCommandManager {
  public:
    /// The item's state when the number has an item that is placed in a menu, else what Enable last
    /// said, else false.
    [[nodiscard]] static bool CommandEnabled(std::int32_t command);
    static void Enable(std::int32_t command, bool enable);
    static void EnableCheck(std::int32_t command, bool enable, bool check);
    static void SetCheckState(std::int32_t command, TMenuItem::ECheckState state);
    /// False, with the state untouched, when the number has no item.
    static bool GetCheckState(std::int32_t command, TMenuItem::ECheckState* state);
    /// The item's text; ignored without an item.
    static void SetCommandName(std::int32_t command, const std::string& name);
    /// False, with the name untouched, when the number has no item.
    static bool GetCommandName(std::int32_t command, std::string* name);
    /// The item's text; empty without an item.
    static void CommandToName(std::int32_t command, std::string* name);
    static void SetCommandIsShown(std::int32_t command, bool shown);
    /// False without an item.
    [[nodiscard]] static bool CommandIsShown(std::int32_t command);

    /// Forgets what Enable said of numbers without an item.
    static void ForgetEnabled();
};
