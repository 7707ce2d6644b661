#include "qlx/views/ucommandmanager.h"

#include <unordered_map>

namespace {

// What Enable said of numbers without an item in a menu.
std::unordered_map<std::int32_t, bool>& EnabledWithoutItem() {
    static auto* const map = new std::unordered_map<std::int32_t, bool>;
    return *map;
}

template <class Function>
void ForEachItem(std::int32_t command, Function function) {
    TMenuManager::ForEachItem(
        command, [](TMenuItem& item, void* context) { (*static_cast<Function*>(context))(item); },
        &function);
}

} // namespace

bool TCommandManager::CommandEnabled(std::int32_t command) {
    const TMenuItem* const item = TMenuManager::FindItem(command);
    if (item && item->IsPlacedInMenu())
        return item->IsEnabled();
    const auto remembered = EnabledWithoutItem().find(command);
    return remembered != EnabledWithoutItem().end() && remembered->second;
}

void TCommandManager::Enable(std::int32_t command, bool enable) {
    ForEachItem(command, [enable](TMenuItem& item) { item.SetEnabled(enable); });
    const TMenuItem* const item = TMenuManager::FindItem(command);
    if (!item || !item->IsPlacedInMenu())
        EnabledWithoutItem()[command] = enable;
}

void TCommandManager::EnableCheck(std::int32_t command, bool enable, bool check) {
    Enable(command, enable);
    SetCheckState(command, check ? TMenuItem::kChecked : TMenuItem::kUnchecked);
}

void TCommandManager::SetCheckState(std::int32_t command, TMenuItem::ECheckState state) {
    ForEachItem(command, [state](TMenuItem& item) { item.SetCheckState(state); });
}

bool TCommandManager::GetCheckState(std::int32_t command, TMenuItem::ECheckState* state) {
    const TMenuItem* const item = TMenuManager::FindItem(command);
    if (item && state)
        *state = item->GetCheckState();
    return item != nullptr;
}

void TCommandManager::SetCommandName(std::int32_t command, const std::string& name) {
    ForEachItem(command, [&name](TMenuItem& item) { item.SetText(name); });
}

bool TCommandManager::GetCommandName(std::int32_t command, std::string* name) {
    const TMenuItem* const item = TMenuManager::FindItem(command);
    if (item && name)
        *name = item->GetText();
    return item != nullptr;
}

void TCommandManager::CommandToName(std::int32_t command, std::string* name) {
    if (!name)
        return;
    if (const TMenuItem* const item = TMenuManager::FindItem(command))
        *name = item->GetText();
    else
        name->clear();
}

void TCommandManager::SetCommandIsShown(std::int32_t command, bool shown) {
    ForEachItem(command, [shown](TMenuItem& item) { item.SetShown(shown); });
}

bool TCommandManager::CommandIsShown(std::int32_t command) {
    const TMenuItem* const item = TMenuManager::FindItem(command);
    return item && item->IsShown();
}

void TCommandManager::ForgetEnabled() { EnabledWithoutItem().clear(); }
