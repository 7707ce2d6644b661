// Menus as people use them: press and drag, click and click, keys and letters; and menus whose
// window, target or items go away under the hand.
#include <gtest/gtest.h>

#include <random>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubuttons.h"
#include "qlx/views/ucommandmanager.h"
#include "qlx/views/umenubar.h"
#include "qlx/views/umenulayer.h"
#include "qlx/views/umenumanager.h"
#include "qlx/views/uwindow.h"
#include "tests/support/gallery.h"

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
    const char* keys[] = {"Up", "Down", "Left", "Right", "Home", "End", "Escape", "Return", "s"};
    for (int step = 0; step < 600; ++step) {
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
