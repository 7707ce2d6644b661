#include "qlx/views/umenumanager.h"

#include <algorithm>
#include <utility>

#include "basekit/cmn/cmn_string.h"
#include "newfilelibs/daw/daw_command.h"
#include "newfilelibs/daw/daw_eventmodifiers.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ucommandmanager.h"
#include "qlx/views/ukeybindings.h"

QLX_DEFINE_CLASS(TMenuItem, TObject)
QLX_DEFINE_CLASS(TMenu, TObject)

namespace {

// Never destroyed: menus may be freed by other static destructors.
std::vector<std::unique_ptr<TMenu>>& MenuBar() {
    static auto* const bar = new std::vector<std::unique_ptr<TMenu>>;
    return *bar;
}

std::uint32_t sBarChangeCount = 0;

// Capital letters of the alphabets whose small ones lie a fixed distance behind them.
char32_t Capital(char32_t code) {
    constexpr struct {
        char32_t first, last, distance;
    } kSmall[] = {{'a', 'z', 0x20},     {0xE0, 0xF6, 0x20},   {0xF8, 0xFE, 0x20},
                  {0x3B1, 0x3C1, 0x20}, {0x3C3, 0x3CB, 0x20}, {0x430, 0x44F, 0x20},
                  {0x450, 0x45F, 0x50}};
    for (const auto& range : kSmall)
        if (code >= range.first && code <= range.last)
            return code - range.distance;
    // From here to U+017F, and among the later Cyrillic letters, capital and small ones take turns.
    if ((code >= 0x100 && code <= 0x137) || (code >= 0x14A && code <= 0x177) ||
        (code >= 0x460 && code <= 0x481) || (code >= 0x48A && code <= 0x4BF))
        return code & ~char32_t{1};
    return code;
}

} // namespace

TMenuText QLX_ParseMenuText(const std::string& marked) {
    TMenuText text;
    text.mPlain.reserve(marked.size());
    for (std::size_t i = 0; i < marked.size(); ++i) {
        const bool isMark = marked[i] == '&' && i + 1 < marked.size();
        if (isMark && marked[++i] != '&' && text.mMnemonicSize == 0) {
            std::size_t end = i;
            static_cast<void>(Cmn_DecodeUTF8(marked, end));
            text.mMnemonicAt = text.mPlain.size();
            text.mMnemonicSize = end - i;
        }
        text.mPlain += marked[i];
    }
    return text;
}

bool QLX_IsSameLetter(char32_t a, char32_t b) { return Capital(a) == Capital(b); }

// TMenuItem

TMenuItem::TMenuItem() = default;

TMenuItem::~TMenuItem() { TMenuManager::RemoveItem(this); }

TMenuKey TMenuItem::GetShownKey() const {
    const CKeyBindings* bindings = gApplication ? gApplication->GetKeyBindings() : nullptr;
    const DAW_Command* command =
        bindings && mCommand != 0 ? DAW_CommandRegistry::FindCommandByID(mCommand) : nullptr;
    if (!command)
        return mKey;
    TEventHandler* target = TApplicationData::GetPreMenuLoopTarget();
    const CKeyBinding* binding = bindings->FindOf(command->GetUniquePersistedName(),
                                                  target ? target : gApplication->GetTarget());
    if (!binding)
        return mKey;
    const DAW_EventModifiers& pattern = *binding->mPattern;
    const auto bit = [](bool down, std::uint32_t modifier) { return down ? modifier : 0u; };
    return {binding->mKeyCode, bit(pattern.MenuCommandKeyIsDown(), kQLX_Modifier_Command) |
                                   bit(pattern.AlternateKeyIsDown(), kQLX_Modifier_Option) |
                                   bit(pattern.MetaKeyIsDown(), kQLX_Modifier_Control) |
                                   bit(pattern.ShiftKeyIsDown(), kQLX_Modifier_Shift)};
}

std::unique_ptr<TMenuItem> TMenuItem::NewCommand(std::int32_t command, const std::string& text,
                                                 TMenuKey key) {
    auto item = std::make_unique<TMenuItem>();
    item->mText = text;
    item->mKey = key;
    item->SetCommand(command);
    return item;
}

std::unique_ptr<TMenuItem> TMenuItem::NewSubmenu(std::unique_ptr<TMenu> submenu) {
    auto item = std::make_unique<TMenuItem>();
    if (submenu)
        item->mText = submenu->GetTitle();
    item->SetSubmenu(std::move(submenu));
    return item;
}

std::unique_ptr<TMenuItem> TMenuItem::NewSeparator() {
    auto item = std::make_unique<TMenuItem>();
    item->mSeparator = true;
    item->mEnabled = false;
    return item;
}

TObject* TMenuItem::Clone() {
    auto copy = std::make_unique<TMenuItem>();
    copy->mText = mText;
    copy->mKey = mKey;
    copy->mCheckState = mCheckState;
    copy->mEnabled = mEnabled;
    copy->mAlwaysEnabled = mAlwaysEnabled;
    copy->mShown = mShown;
    copy->mSeparator = mSeparator;
    if (mSubmenu)
        copy->SetSubmenu(std::unique_ptr<TMenu>(static_cast<TMenu*>(mSubmenu->Clone())));
    copy->SetCommand(mCommand);
    return copy.release();
}

void TMenuItem::Touch() {
    if (mMenu)
        mMenu->Touch();
}

void TMenuItem::SetCommand(std::int32_t command) {
    if (command == mCommand)
        return;
    TMenuManager::RemoveItem(this);
    mCommand = command;
    TMenuManager::AddItem(this);
    Touch();
}

void TMenuItem::SetText(const std::string& text) {
    if (text == mText)
        return;
    mText = text;
    Touch();
}

std::string TMenuItem::GetPlainText() const { return QLX_ParseMenuText(mText).mPlain; }

std::string TMenuItem::GetMnemonic() const {
    const TMenuText text = QLX_ParseMenuText(mText);
    return text.mPlain.substr(text.mMnemonicAt, text.mMnemonicSize);
}

void TMenuItem::SetEnabled(bool enabled) {
    if (enabled == mEnabled)
        return;
    mEnabled = enabled;
    Touch();
}

void TMenuItem::SetAlwaysEnabled(bool always) {
    mAlwaysEnabled = always;
    if (always)
        SetEnabled(true);
}

void TMenuItem::SetCheckState(ECheckState state) {
    if (state == mCheckState)
        return;
    mCheckState = state;
    Touch();
}

void TMenuItem::SetShown(bool shown) {
    if (shown == mShown)
        return;
    mShown = shown;
    Touch();
}

void TMenuItem::SetKey(const TMenuKey& key) {
    if (key == mKey)
        return;
    mKey = key;
    Touch();
}

void TMenuItem::SetSubmenu(std::unique_ptr<TMenu> submenu) {
    if (mSubmenu)
        mSubmenu->mOwnerItem = nullptr;
    mSubmenu = std::move(submenu);
    if (mSubmenu)
        mSubmenu->mOwnerItem = this;
    Touch();
}

// TMenu

namespace {
TMenu::Watcher sWatcher = nullptr;
}

TMenu::TMenu() = default;
TMenu::TMenu(const std::string& title) : mTitle(title) {}

TMenu::~TMenu() {
    if (sWatcher)
        sWatcher(this, /*gone*/ true);
}

TMenu::Watcher TMenu::SetWatcher(Watcher watcher) { return std::exchange(sWatcher, watcher); }

TObject* TMenu::Clone() {
    auto copy = std::make_unique<TMenu>(mTitle);
    for (const auto& item : mItems)
        copy->AppendItem(std::unique_ptr<TMenuItem>(static_cast<TMenuItem*>(item->Clone())));
    return copy.release();
}

void TMenu::Touch() {
    for (TMenu* menu = this; menu; menu = menu->mOwnerItem ? menu->mOwnerItem->mMenu : nullptr) {
        ++menu->mChangeCount;
        if (sWatcher)
            sWatcher(menu, /*gone*/ false);
    }
}

void TMenu::SetTitle(const std::string& title) {
    if (title == mTitle)
        return;
    mTitle = title;
    Touch();
}

TMenuItem* TMenu::GetItem(std::size_t index) const {
    return index < mItems.size() ? mItems[index].get() : nullptr;
}

std::size_t TMenu::GetIndex(const TMenuItem* item) const {
    const auto at = std::find_if(mItems.begin(), mItems.end(),
                                 [item](const auto& owned) { return owned.get() == item; });
    return static_cast<std::size_t>(at - mItems.begin());
}

TMenuItem* TMenu::AppendItem(std::unique_ptr<TMenuItem> item) {
    return InsertItem(mItems.size(), std::move(item));
}

TMenuItem* TMenu::InsertItem(std::size_t index, std::unique_ptr<TMenuItem> item) {
    if (!item)
        return nullptr;
    item->mMenu = this;
    const auto at = mItems.begin() + static_cast<std::ptrdiff_t>(std::min(index, mItems.size()));
    TMenuItem* const inserted = mItems.insert(at, std::move(item))->get();
    Touch();
    return inserted;
}

std::unique_ptr<TMenuItem> TMenu::RemoveItem(std::size_t index) {
    if (index >= mItems.size())
        return nullptr;
    std::unique_ptr<TMenuItem> item = std::move(mItems[index]);
    mItems.erase(mItems.begin() + static_cast<std::ptrdiff_t>(index));
    item->mMenu = nullptr;
    Touch();
    return item;
}

void TMenu::RemoveAllItems() {
    mItems.clear();
    Touch();
}

TMenuItem* TMenu::FindItem(std::int32_t command) const {
    for (const auto& item : mItems) {
        if (item->mCommand == command && command != 0)
            return item.get();
        if (item->mSubmenu)
            if (TMenuItem* const found = item->mSubmenu->FindItem(command))
                return found;
    }
    return nullptr;
}

TMenuItem* TMenu::FindItem(const TMenuKey& key) const {
    if (key.mKey == kDAW_Key_None)
        return nullptr;
    for (const auto& item : mItems) {
        if (!item->mShown)
            continue;
        if (item->mKey == key && item->GetShownKey() == key)
            return item.get();
        if (item->mSubmenu)
            if (TMenuItem* const found = item->mSubmenu->FindItem(key))
                return found;
    }
    return nullptr;
}

std::vector<TMenuItem*> TMenu::GetVisibleItems() const {
    std::vector<TMenuItem*> visible;
    for (const auto& item : mItems) {
        if (!item->mShown)
            continue;
        if (item->mSeparator && (visible.empty() || visible.back()->mSeparator))
            continue;
        visible.push_back(item.get());
    }
    if (!visible.empty() && visible.back()->mSeparator)
        visible.pop_back();
    return visible;
}

// TMenuManager

std::map<std::int32_t, TMenuItem*> TMenuManager::sCommandIDToMenuMap;

void TMenuManager::AddItem(TMenuItem* item) {
    if (item->mCommand == 0)
        return;
    TMenuItem*& first = sCommandIDToMenuMap[item->mCommand];
    if (!first) {
        first = item;
        return;
    }
    TMenuItem* last = first;
    while (last->mNextOfCommand)
        last = last->mNextOfCommand;
    last->mNextOfCommand = item;
}

void TMenuManager::RemoveItem(TMenuItem* item) {
    const auto entry = sCommandIDToMenuMap.find(item->mCommand);
    if (item->mCommand == 0 || entry == sCommandIDToMenuMap.end())
        return;
    TMenuItem* before = nullptr;
    TMenuItem* at = entry->second;
    for (; at && at != item; at = at->mNextOfCommand)
        before = at;
    if (!at)
        return;
    if (before)
        before->mNextOfCommand = item->mNextOfCommand;
    else if (item->mNextOfCommand)
        entry->second = item->mNextOfCommand;
    else
        sCommandIDToMenuMap.erase(entry);
    item->mNextOfCommand = nullptr;
}

TMenuItem* TMenuManager::FindItem(std::int32_t command) {
    const auto entry = sCommandIDToMenuMap.find(command);
    return entry == sCommandIDToMenuMap.end() ? nullptr : entry->second;
}

TMenuItem* TMenuManager::FindItem(const TMenuKey& key) {
    for (const auto& menu : MenuBar())
        if (TMenuItem* const item = menu->FindItem(key))
            return item;
    return nullptr;
}

void TMenuManager::ForEachItem(std::int32_t command,
                               void (*function)(TMenuItem& item, void* context), void* context) {
    for (TMenuItem* item = FindItem(command); item; item = item->mNextOfCommand)
        function(*item, context);
}

void TMenuManager::SetupMenus(TEventHandler* target) {
    for (const auto& [command, first] : sCommandIDToMenuMap)
        for (TMenuItem* item = first; item; item = item->mNextOfCommand)
            item->SetEnabled(item->mAlwaysEnabled || item->mSubmenu);
    TCommandManager::ForgetEnabled();
    if (!target && gApplication)
        target = gApplication->GetTarget();
    if (target)
        target->HandleSetupMenus();
}

std::size_t TMenuManager::CountMenus() { return MenuBar().size(); }

TMenu* TMenuManager::GetMenu(std::size_t index) {
    return index < MenuBar().size() ? MenuBar()[index].get() : nullptr;
}

TMenu* TMenuManager::AppendMenu(std::unique_ptr<TMenu> menu) {
    return InsertMenu(MenuBar().size(), std::move(menu));
}

TMenu* TMenuManager::InsertMenu(std::size_t index, std::unique_ptr<TMenu> menu) {
    if (!menu)
        return nullptr;
    auto& bar = MenuBar();
    ++sBarChangeCount;
    return bar
        .insert(bar.begin() + static_cast<std::ptrdiff_t>(std::min(index, bar.size())),
                std::move(menu))
        ->get();
}

std::unique_ptr<TMenu> TMenuManager::RemoveMenu(std::size_t index) {
    auto& bar = MenuBar();
    if (index >= bar.size())
        return nullptr;
    std::unique_ptr<TMenu> menu = std::move(bar[index]);
    bar.erase(bar.begin() + static_cast<std::ptrdiff_t>(index));
    ++sBarChangeCount;
    return menu;
}

void TMenuManager::RemoveAllMenus() {
    MenuBar().clear();
    ++sBarChangeCount;
}

std::uint32_t TMenuManager::GetChangeCount() { return sBarChangeCount; }
