// Menus as a model without a screen: items with text, state, key equivalent and submenu, the menus
// that hold them, and the menu bar with the map from command numbers to items.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/foundation/uobject.h"

class TMenu;

/// A menu's or an item's text as it is shown, and where its mnemonic stands in it.
struct TMenuText {
    std::string mPlain;
    std::size_t mMnemonicAt = 0;   ///< bytes into the plain text
    std::size_t mMnemonicSize = 0; ///< 0 when there is none
};
/// Takes the marks out: '&' before a letter makes it the mnemonic (the first one counts), "&&" is
/// an ampersand.
[[nodiscard]] QLX_API TMenuText QLX_ParseMenuText(const std::string& marked);
/// Whether two code points are one letter apart from its case, in the Latin, Greek and Cyrillic
/// alphabets.
[[nodiscard]] QLX_API bool QLX_IsSameLetter(char32_t a, char32_t b);

/// The key stroke that chooses an item. An item without one has key kDAW_Key_None.
struct TMenuKey {
    DAW_EKeyCode mKey = kDAW_Key_None;
    std::uint32_t mModifiers = 0; ///< bits of QLX_EModifierBits

    [[nodiscard]] friend constexpr bool operator==(const TMenuKey&,
                                                   const TMenuKey&) noexcept = default;
};

/// One line of a menu: a command, a submenu or a separator. Owned by the menu it is placed in. An
/// item with a command number is known to TMenuManager from birth to death, placed or not.
class QLX_API TMenuItem : public TObject {
  public:
    enum ECheckState : std::int32_t { kUnchecked = 0, kChecked = 1, kMixed = 2 };

    QLX_DECLARE_CLASS(TMenuItem);
    TMenuItem();
    ~TMenuItem() override;
    TMenuItem(const TMenuItem&) = delete;
    TMenuItem& operator=(const TMenuItem&) = delete;

    [[nodiscard]] static std::unique_ptr<TMenuItem>
    NewCommand(std::int32_t command, const std::string& text, TMenuKey key = {});
    [[nodiscard]] static std::unique_ptr<TMenuItem> NewSubmenu(std::unique_ptr<TMenu> submenu);
    [[nodiscard]] static std::unique_ptr<TMenuItem> NewSeparator();

    /// Unplaced, with a copy of the submenu.
    [[nodiscard]] TObject* Clone() override;

    [[nodiscard]] std::int32_t GetCommand() const { return mCommand; }
    void SetCommand(std::int32_t command);
    /// UTF-8; '&' before a letter makes it the item's mnemonic, "&&" is an ampersand.
    [[nodiscard]] const std::string& GetText() const { return mText; }
    void SetText(const std::string& text);
    /// The text as it is shown, without mnemonic marks.
    [[nodiscard]] std::string GetPlainText() const;
    /// The mnemonic letter as it stands in the text, the empty string when there is none.
    [[nodiscard]] std::string GetMnemonic() const;
    [[nodiscard]] bool IsEnabled() const { return mEnabled; }
    void SetEnabled(bool enabled);
    /// Whether setting up the menus leaves the item enabled without anyone enabling it.
    [[nodiscard]] bool IsAlwaysEnabled() const { return mAlwaysEnabled; }
    void SetAlwaysEnabled(bool always);
    [[nodiscard]] ECheckState GetCheckState() const { return mCheckState; }
    void SetCheckState(ECheckState state);
    [[nodiscard]] bool IsShown() const { return mShown; }
    void SetShown(bool shown);
    [[nodiscard]] const TMenuKey& GetKey() const { return mKey; }
    void SetKey(const TMenuKey& key);
    /// The key stroke that menus show and that chooses the item: the one that the user has bound to
    /// the named command with the item's number, where there is such a command (DAW_Command) and
    /// such a binding of the application's, else GetKey.
    [[nodiscard]] TMenuKey GetShownKey() const;
    [[nodiscard]] bool IsSeparator() const { return mSeparator; }
    [[nodiscard]] TMenu* GetSubmenu() const { return mSubmenu.get(); }
    void SetSubmenu(std::unique_ptr<TMenu> submenu);

    /// The menu that holds the item; null while it is in none.
    [[nodiscard]] TMenu* GetMenu() const { return mMenu; }
    [[nodiscard]] bool IsPlacedInMenu() const { return mMenu != nullptr; }

  private:
    friend class TMenu;
    friend class TMenuManager;
    void Touch();

    std::int32_t mCommand = 0;
    std::string mText;
    TMenuKey mKey;
    ECheckState mCheckState = kUnchecked;
    bool mEnabled = true;
    bool mAlwaysEnabled = false;
    bool mShown = true;
    bool mSeparator = false;
    TMenu* mMenu = nullptr; // not owned
    std::unique_ptr<TMenu> mSubmenu;
    TMenuItem* mNextOfCommand = nullptr; // not owned; further items of the same command number
};

/// A list of items with a title. Owned by its item, by the menu bar or by whoever pops it up.
class QLX_API TMenu : public TObject {
  public:
    QLX_DECLARE_CLASS(TMenu);
    TMenu();
    explicit TMenu(const std::string& title);
    ~TMenu() override;
    TMenu(const TMenu&) = delete;
    TMenu& operator=(const TMenu&) = delete;

    /// With copies of the items.
    [[nodiscard]] TObject* Clone() override;

    [[nodiscard]] const std::string& GetTitle() const { return mTitle; }
    void SetTitle(const std::string& title);

    [[nodiscard]] std::size_t CountItems() const { return mItems.size(); }
    /// The index-th item from 0; null when out of range.
    [[nodiscard]] TMenuItem* GetItem(std::size_t index) const;
    /// The index of an item, CountItems when it is not here.
    [[nodiscard]] std::size_t GetIndex(const TMenuItem* item) const;
    TMenuItem* AppendItem(std::unique_ptr<TMenuItem> item);
    /// At the end when the index is out of range.
    TMenuItem* InsertItem(std::size_t index, std::unique_ptr<TMenuItem> item);
    /// The item, which the caller owns now; null when out of range.
    std::unique_ptr<TMenuItem> RemoveItem(std::size_t index);
    void RemoveAllItems();
    /// The first item of a command, submenus included, depth first.
    [[nodiscard]] TMenuItem* FindItem(std::int32_t command) const;
    /// The first shown item with this key equivalent, submenus included. One that shows a key of
    /// the user's has lost its own.
    [[nodiscard]] TMenuItem* FindItem(const TMenuKey& key) const;
    /// What is to be seen: the shown items, without separators at either end or next to each other.
    [[nodiscard]] std::vector<TMenuItem*> GetVisibleItems() const;

    /// Goes up whenever something in the menu or below it changes, so that a view knows when to
    /// draw.
    [[nodiscard]] std::uint32_t GetChangeCount() const { return mChangeCount; }
    /// Hears of every change of a menu or of one below it and, with gone, of a menu's end while its
    /// items are still there. For menus that are open on a screen; null for nobody. Returns the
    /// previous one.
    using Watcher = void (*)(TMenu* menu, bool gone);
    static Watcher SetWatcher(Watcher watcher);
    /// The item whose submenu this is; null for others.
    [[nodiscard]] TMenuItem* GetOwnerItem() const { return mOwnerItem; }

  private:
    friend class TMenuItem;
    friend class TMenuManager;
    void Touch();

    std::string mTitle;
    std::vector<std::unique_ptr<TMenuItem>> mItems;
    TMenuItem* mOwnerItem = nullptr; // not owned
    std::uint32_t mChangeCount = 0;
};

/// The menu bar and the items by command number. All of it is class-wide. User-interface thread.
class QLX_API TMenuManager {
  public:
    // The menu bar, left to right

    [[nodiscard]] static std::size_t CountMenus();
    [[nodiscard]] static TMenu* GetMenu(std::size_t index);
    static TMenu* AppendMenu(std::unique_ptr<TMenu> menu);
    static TMenu* InsertMenu(std::size_t index, std::unique_ptr<TMenu> menu);
    static std::unique_ptr<TMenu> RemoveMenu(std::size_t index);
    static void RemoveAllMenus();
    /// Goes up when the menu bar itself changes.
    [[nodiscard]] static std::uint32_t GetChangeCount();

    // Items

    /// The item that stands for a command number; null when there is none. Of several items with
    /// one number it is the oldest.
    [[nodiscard]] static TMenuItem* FindItem(std::int32_t command);
    /// The first shown item of the menu bar with this key equivalent.
    [[nodiscard]] static TMenuItem* FindItem(const TMenuKey& key);
    /// Calls for every item of a number, the one of the map first.
    static void ForEachItem(std::int32_t command, void (*function)(TMenuItem& item, void* context),
                            void* context);

    /// Brings all items up to date before they are shown or asked: disables and unchecks every item
    /// with a command (except those that are always enabled), then lets the chain that begins at
    /// the target enable what it can do now (HandleSetupMenus). Items with a submenu are enabled.
    /// Without a target the application's is taken.
    static void SetupMenus(TEventHandler* target = nullptr);

    /// The oldest item of each command number. Kept by the items themselves.
    static std::map<std::int32_t, TMenuItem*> sCommandIDToMenuMap;

  private:
    friend class TMenuItem;
    static void AddItem(TMenuItem* item);
    static void RemoveItem(TMenuItem* item);
};
