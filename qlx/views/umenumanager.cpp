#include "qlx/views/umenumanager.h"

#include <algorithm>
#include <utility>

#include "qlx/views/uapplication.h"
#include "qlx/views/ucommandmanager.h"

QLX_DEFINE_CLASS(TMenuItem, TObject)
QLX_DEFINE_CLASS(TMenu, TObject)

namespace {

// Never destroyed: menus may be freed by other static destructors.
std::vector<std::unique_ptr<TMenu>>& MenuBar() {
    static auto* const bar = new std::vector<std::unique_ptr<TMenu>>;
    return *bar;
}

std::uint32_t sBarChangeCount = 0;

} // namespace

// TMenuItem

TMenuItem::TMenuItem() = default;

TMenuItem::~TMenuItem() { TMenuManager::RemoveItem(this); }

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

std::string TMenuItem::GetPlainText() const {
    std::string plain;
    plain.reserve(mText.size());
    for (std::size_t i = 0; i < mText.size(); ++i) {
        if (mText[i] == '&' && i + 1 < mText.size())
            ++i;
        plain += mText[i];
    }
    return plain;
}

std::string TMenuItem::GetMnemonic() const {
    for (std::size_t i = 0; i + 1 < mText.size(); ++i) {
        if (mText[i] != '&')
            continue;
        if (mText[i + 1] == '&') {
            ++i;
            continue;
        }
        std::size_t end = i + 2;
        while (end < mText.size() && (static_cast<unsigned char>(mText[end]) & 0xC0) == 0x80)
            ++end;
        return mText.substr(i + 1, end - i - 1);
    }
    return {};
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
        if (item->mKey == key)
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
