// Menus as people use them: press and drag, click and click, keys and letters; and menus whose
// window, target or items go away under the hand.
#include <gtest/gtest.h>

#include <random>

#include "newfilelibs/daw/daw_command.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_event.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubuttons.h"
#include "qlx/views/ucommandmanager.h"
#include "qlx/views/uevent.h"
#include "qlx/views/ukeybindings.h"
#include "qlx/views/umenubar.h"
#include "qlx/views/umenulayer.h"
#include "qlx/views/umenumanager.h"
#include "qlx/views/uwindow.h"
#include "tests/support/gallery.h"
#include "tests/support/seeds.h"

namespace {

/// A target that hears menu commands and enables what it is told to.
class Listener : public TButton {
  public:
    void DoMenuCommand(std::int32_t command) override { mHeard.push_back(command); }
    void DoSetupMenus() override {
        for (const std::int32_t command : mEnables)
            TCommandManager::Enable(command, true);
    }
    std::vector<std::int32_t> mHeard;
    std::vector<std::int32_t> mEnables;
};

class Menus : public ::testing::Test {
  protected:
    void SetUp() override {
        SetGalleryMenus();
        mWindow = new TWindow;
        mWindow->IWindow("menus", VPoint(500, 400));
        mBar = new TMenuBar;
        mBar->IView(mWindow, VRect(0, 0, 500, 24));
        mListener = new Listener;
        mListener->IView(mWindow, VRect(200, 300, 300, 330));
        mDriver.OpenWindow(*mWindow);
        mListener->BecomeTarget();
    }
    void TearDown() override {
        if (mWindow)
            mWindow->Free();
        TMenuManager::RemoveAllMenus();
    }
    static Cmn_Point<int> MiddleOf(const VRect& rect) {
        return {static_cast<int>((rect.Left() + rect.Right()) / 2),
                static_cast<int>((rect.Top() + rect.Bottom()) / 2)};
    }
    Cmn_Point<int> TitleOf(int menu) { return MiddleOf(mBar->GetTitleRect(menu)); }
    static Cmn_Point<int> ItemOf(std::int32_t command) {
        return MiddleOf(TMenuLayer::GetOpen()->GetItemRect(TMenuManager::FindItem(command)));
    }

    using Commands = std::vector<std::int32_t>;
    QLX_TestDriver mDriver;
    TWindow* mWindow = nullptr;
    TMenuBar* mBar = nullptr;
    Listener* mListener = nullptr;
};

} // namespace

TEST_F(Menus, AreUsedInOneDragOrByClickAndClick) {
    mDriver.Press(TitleOf(0));
    ASSERT_NE(TMenuLayer::GetOpen(), nullptr);
    mDriver.MoveTo(ItemOf(2002));
    mDriver.Release();
    EXPECT_EQ(mListener->mHeard, Commands{2002});
    EXPECT_TRUE(mListener->IsTarget());
    mDriver.Click(TitleOf(0));
    mDriver.MoveTo(TitleOf(1)); // along the bar
    EXPECT_EQ(mBar->GetOpenMenu(), 1);
    mDriver.Click(ItemOf(2011));
    EXPECT_EQ(mListener->mHeard, (Commands{2002, 2011}));
    // A press outside closes, and pushes nothing behind the menu.
    mDriver.Click(TitleOf(0));
    mDriver.Click(Cmn_Point<int>{250, 315});
    EXPECT_EQ(TMenuLayer::GetOpen(), nullptr);
    EXPECT_EQ(mListener->mHeard.size(), 2u);
}

TEST_F(Menus, SubmenusOpenByPointerAndByKey) {
    mDriver.Click(TitleOf(0));
    TMenuItem* recent = TMenuManager::GetMenu(0)->GetItem(2);
    mDriver.MoveTo(MiddleOf(TMenuLayer::GetOpen()->GetItemRect(recent)));
    EXPECT_EQ(TMenuLayer::GetOpen()->CountPanels(), 2);
    mDriver.Click(ItemOf(2004));
    EXPECT_EQ(mListener->mHeard, Commands{2004});
    mBar->OpenMenu(0);
    for (const char* key : {"Down", "Down", "Down", "Right"})
        mDriver.Chord(key);
    EXPECT_EQ(TMenuLayer::GetOpen()->CountPanels(), 2);
    mDriver.Chord("Left");
    EXPECT_EQ(TMenuLayer::GetOpen()->CountPanels(), 1);
    mDriver.Chord("Right");
    mDriver.Chord("Return");
    EXPECT_EQ(mListener->mHeard, (Commands{2004, 2003}));
}

TEST_F(Menus, KeysGoAroundLettersChooseAndEscapeGivesUp) {
    mBar->OpenMenu(0);
    mDriver.Chord("Up"); // from nothing to the last
    EXPECT_EQ(TMenuLayer::GetOpen()->GetHilited(0)->GetCommand(), 2006);
    mDriver.Chord("Down");
    EXPECT_EQ(TMenuLayer::GetOpen()->GetHilited(0)->GetCommand(), 2001);
    mDriver.Chord("Right"); // the next menu of the bar
    EXPECT_EQ(mBar->GetOpenMenu(), 1);
    mDriver.Chord("Escape");
    EXPECT_EQ(TMenuLayer::GetOpen(), nullptr);
    EXPECT_TRUE(mListener->IsTarget());
    EXPECT_TRUE(mListener->mHeard.empty());
    mBar->OpenMenu(0);
    mDriver.Type("o"); // a mnemonic
    EXPECT_EQ(mListener->mHeard, Commands{2002});
}

TEST_F(Menus, ItemsAreEnabledAlongTheChainOfTheTarget) {
    TMenuItem* video = TMenuManager::FindItem(2012);
    mBar->OpenMenu(1);
    EXPECT_FALSE(video->IsEnabled());
    mDriver.Click(ItemOf(2012)); // nothing to choose: it stays open
    EXPECT_NE(TMenuLayer::GetOpen(), nullptr);
    TMenuLayer::GetOpen()->Close();
    mListener->mEnables = {2012};
    mBar->OpenMenu(1);
    EXPECT_TRUE(video->IsEnabled());
    mDriver.Click(ItemOf(2012));
    EXPECT_EQ(mListener->mHeard, Commands{2012});
}

TEST_F(Menus, KeyTextsAreTheOnesPeopleKnow) {
    EXPECT_EQ(QLX_MenuKeyText(TMenuManager::FindItem(2006)->GetKey()), "Ctrl+Shift+S");
    EXPECT_EQ(QLX_MenuKeyText(TMenuManager::FindItem(2010)->GetKey()), "F5");
    EXPECT_EQ(QLX_MenuKeyText({}), "");
}

TEST_F(Menus, ItemsShowTheKeysThatTheUserHasBoundAndFollowThem) {
    DAW_Command save(2005, "Save", "File.Save");
    DAW_Command open(2002, "Open", "File.Open");
    DAW_CommandRegistry::RegisterCommand(&save);
    DAW_CommandRegistry::RegisterCommand(&open);
    CKeyBindings bindings;
    gApplication->SetKeyBindings(&bindings);
    const auto shown = [](std::int32_t command) {
        return QLX_MenuKeyText(TMenuManager::FindItem(command)->GetShownKey());
    };
    const struct {
        const char* mWhy;
        const char* mBindings;
        const char* mSave;
        const char* mOpen;
    } rows[] = {
        {"no binding: the item's own", "", "Ctrl+S", "Ctrl+O"},
        {"the user's own", "<Cmd>+<Shift> - K File.Save\n", "Ctrl+Shift+K", "Ctrl+O"},
        {"a named key", "- - F7 File.Save\n", "F7", "Ctrl+O"},
        {"the first of two", "<Opt> - K File.Save\n<Opt> - L File.Save\n", "Alt+K", "Ctrl+O"},
        {"a key that may be held is not shown", "<Opt> [Shift] K File.Save\n", "Alt+K", "Ctrl+O"},
        {"a stroke that performs another command", "<Opt> - K File.Open\n<Opt> - K File.Save\n",
         "Ctrl+S", "Alt+K"},
        {"where the target is not", "<Opt> - K File.Save list\n", "Ctrl+S", "Ctrl+O"},
        {"where the target is", "<Opt> - K File.Save here\n", "Alt+K", "Ctrl+O"},
        {"everywhere before somewhere", "<Opt> - K File.Save here\n<Opt> - L File.Save\n", "Alt+L",
         "Ctrl+O"},
        {"a command of no item", "<Opt> - K File.Close\n", "Ctrl+S", "Ctrl+O"},
    };
    mListener->SetIdentifier(Cmn_FourChar("here"));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mWhy);
        ASSERT_TRUE(bindings.ReadText(row.mBindings, "keys"));
        EXPECT_EQ(shown(2005), row.mSave);
        EXPECT_EQ(shown(2002), row.mOpen);
    }

    // An open menu follows; the key that the user took away chooses nothing.
    bindings.ReadText("<Cmd>+<Shift> - K File.Save\n", "keys");
    const auto press = [&](std::uint32_t code, std::uint32_t modifiers) {
        TToolboxEvent event;
        event.IToolboxEvent(mWindow,
                            QLX_MakeKeyEvent(kQLX_EventKind_KeyDown, code, code, modifiers));
        event.mKeyCode = code;
        event.mCharacterCode = code;
        return mBar->HandleMenuKey(&event);
    };
    EXPECT_FALSE(press('S', kQLX_Modifier_Command));
    mBar->OpenMenu(0);
    mDriver.WaitForIdle();
    const auto isDrawn = [&](const char* text) {
        return mDriver.GetDrawing().find(text) != std::string::npos;
    };
    EXPECT_TRUE(isDrawn("Ctrl+Shift+K"));
    const VCoordinate width = TMenuLayer::GetOpen()->GetPanelRect(0).GetWidth();
    bindings.ReadText("<Cmd>+<Opt>+<Ctrl>+<Shift> - Backspace File.Save\n", "keys");
    mDriver.WaitForIdle();
    EXPECT_TRUE(isDrawn("Ctrl+Alt+Start+Shift+Backspace"));
    EXPECT_GT(TMenuLayer::GetOpen()->GetPanelRect(0).GetWidth(), width);
    gApplication->SetKeyBindings(nullptr);
    mDriver.WaitForIdle();
    EXPECT_TRUE(isDrawn("\"Ctrl+S\""));
    TMenuLayer::GetOpen()->Close();
    EXPECT_TRUE(press('S', kQLX_Modifier_Command));
    EXPECT_EQ(mListener->mHeard, Commands{2005});
}

TEST_F(Menus, KeysHaveTheNamesOfTheUsersLanguage) {
    const auto before =
        QLX_SetMenuKeyNames({{"Ctrl", "Strg"}, {"Shift", "Umschalt"}, {"Return", "Eingabe"}});
    EXPECT_EQ(QLX_MenuKeyText(TMenuManager::FindItem(2006)->GetKey()), "Strg+Umschalt+S");
    EXPECT_EQ(QLX_MenuKeyText({kDAW_Key_Return, kQLX_Modifier_Option}), "Alt+Eingabe");
    QLX_SetMenuKeyNames(before);
}

TEST_F(Menus, MnemonicsAreReadUnderlinedAndTyped) {
    const struct {
        const char* mMarked;
        const char* mPlain;
        std::size_t mAt;
        std::size_t mSize;
    } rows[] = {{"&File", "File", 0, 1},
                {"Save &As...", "Save As...", 5, 1},
                {"R && B", "R & B", 0, 0},
                {"R && &B", "R & B", 4, 1},
                {"&a and &b", "a and b", 0, 1},
                {"A &", "A &", 0, 0},
                {"&&", "&", 0, 0},
                {"", "", 0, 0},
                {"&\xC3\x84ndern", "\xC3\x84ndern", 0, 2},
                {"&\xFF", "\xFF", 0, 1}};
    for (const auto& row : rows) {
        const TMenuText text = QLX_ParseMenuText(row.mMarked);
        EXPECT_EQ(text.mPlain, row.mPlain) << row.mMarked;
        EXPECT_EQ(text.mMnemonicAt, row.mAt) << row.mMarked;
        EXPECT_EQ(text.mMnemonicSize, row.mSize) << row.mMarked;
    }
    for (const auto& [a, b, same] : {std::tuple{U'a', U'A', true},
                                     {U'\u00E4', U'\u00C4', true},
                                     {U'\u0436', U'\u0416', true},
                                     {U'\u03C3', U'\u03A3', true},
                                     {U'\u0161', U'\u0160', true},
                                     {U'a', U'b', false},
                                     {U'\u00F7', U'\u00D7', false},
                                     {U'1', U'1', true}})
        EXPECT_EQ(QLX_IsSameLetter(a, b), same) << static_cast<std::uint32_t>(a);

    TMenuManager::GetMenu(1)->SetTitle("\xC3\x84ndern &\xC3\x84");
    const auto press = [&](std::uint32_t character) {
        TToolboxEvent event;
        event.IToolboxEvent(mWindow, QLX_MakeKeyEvent(kQLX_EventKind_KeyDown, character, character,
                                                      kQLX_Modifier_Option));
        event.mKeyCode = character;
        event.mCharacterCode = character;
        return mBar->HandleMenuKey(&event);
    };
    EXPECT_FALSE(press('q'));
    EXPECT_TRUE(press('f'));
    EXPECT_EQ(mBar->GetOpenMenu(), 0);
    mDriver.Key(0xE4, kQLX_Modifier_Option); // of the bar, as the open menu has none
    EXPECT_EQ(mBar->GetOpenMenu(), 1);
    mDriver.Key('F', kQLX_Modifier_Option); // of the menu
    EXPECT_EQ(TMenuLayer::GetOpen(), nullptr);
    EXPECT_EQ(mListener->mHeard, Commands{2010});
}

TEST_F(Menus, AContextMenuOpensWhereItIsAskedForAndStaysInTheWindow) {
    TMenu menu("context");
    for (int i = 0; i < 200; ++i)
        menu.AppendItem(TMenuItem::NewCommand(0, "Item " + std::to_string(i)));
    TMenuItem* chosen = nullptr;
    TMenuLayer* layer = TMenuLayer::Open(mWindow, &menu, VRect(480, 390, 480, 390), -1,
                                         [&](TMenuItem* item) { chosen = item; });
    ASSERT_NE(layer, nullptr);
    EXPECT_TRUE(mWindow->GetExtent().Contains(layer->GetPanelRect(0)));
    mDriver.Chord("End");
    EXPECT_FALSE(layer->GetItemRect(menu.GetItem(199)).Empty()) << "it has scrolled there";
    EXPECT_TRUE(layer->GetItemRect(menu.GetItem(0)).Empty());
    mDriver.Chord("Return");
    EXPECT_EQ(chosen, menu.GetItem(199));
}

TEST_F(Menus, WhatGoesAwayWhileOneIsOpenDoesNoHarm) {
    mBar->OpenMenu(0);
    mListener->Free(); // the target of the menu loop
    mDriver.Chord("Down");
    mDriver.Chord("Return");
    EXPECT_EQ(TMenuLayer::GetOpen(), nullptr);

    mBar->OpenMenu(0);
    mBar->Free();
    mDriver.Chord("Right");
    if (TMenuLayer::GetOpen())
        mDriver.Chord("Escape");

    bool closed = false;
    auto menu = std::make_unique<TMenu>("gone");
    menu->AppendItem(TMenuItem::NewCommand(0, "one"));
    TMenuLayer::Open(mWindow, menu.get(), VRect(0, 0, 10, 10), -1,
                     [&](TMenuItem* item) { closed = item == nullptr; });
    mWindow->Free();
    mWindow = nullptr;
    EXPECT_TRUE(closed);
    EXPECT_EQ(TMenuLayer::GetOpen(), nullptr);
}

TEST_F(Menus, AMenuThatChangesOrDiesWhileItIsOpenClosesOrFollows) {
    auto menu = std::make_unique<TMenu>("changing");
    for (int i = 0; i < 5; ++i)
        menu->AppendItem(TMenuItem::NewCommand(0, "Item " + std::to_string(i)));
    TMenuLayer::Open(mWindow, menu.get(), VRect(50, 50, 60, 60), -1, nullptr);
    mDriver.Chord("End");
    menu->RemoveAllItems();
    mDriver.WaitForIdle();
    mDriver.Chord("Up");
    mDriver.Chord("Return");
    EXPECT_EQ(TMenuLayer::GetOpen(), nullptr);
    menu->AppendItem(TMenuItem::NewCommand(0, "one"));
    TMenuLayer::Open(mWindow, menu.get(), VRect(50, 50, 60, 60), -1, nullptr);
    mDriver.Chord("Down");
    menu.reset();
    mDriver.WaitForIdle();
    mDriver.MoveTo(Cmn_Point<int>{60, 70});
    mDriver.Chord("Return");
    EXPECT_EQ(TMenuLayer::GetOpen(), nullptr);
}

TEST_F(Menus, RandomUseLeavesTheTargetInItsPlace) {
    std::minstd_rand random(7);
    const unsigned steps = SeedsToTry(600);
    const char* keys[] = {"Up", "Down", "Left", "Right", "Home", "End", "Escape", "Return", "s"};
    for (unsigned step = 0; step < steps; ++step) {
        const Cmn_Point<int> where{static_cast<int>(random() % 500),
                                   static_cast<int>(random() % 400)};
        switch (random() % 5) {
        case 0:
            mDriver.Press(random() % 2 ? TitleOf(static_cast<int>(random() % 2)) : where);
            break;
        case 1:
            mDriver.MoveTo(where);
            break;
        case 2:
            mDriver.Release();
            break;
        default:
            mDriver.Chord(keys[random() % std::size(keys)]);
        }
        ASSERT_TRUE(TMenuLayer::GetOpen() || gApplication->GetTarget() == mListener);
    }
}
