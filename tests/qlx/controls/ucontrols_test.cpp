// The controls as a user meets them: pressed, dragged, keyed, freed under the hand.
#include <gtest/gtest.h>

#include <random>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_clipboard.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubuttons.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/umeterview.h"
#include "qlx/views/upopup.h"
#include "qlx/views/uscrollbar.h"
#include "qlx/views/usliders.h"
#include "qlx/views/ustatictext.h"
#include "qlx/views/utabs.h"
#include "qlx/views/utextlist.h"
#include "qlx/views/uwindow.h"

namespace {

constexpr std::uint32_t kID = Cmn_FourChar("test");
constexpr std::uint32_t kOther = Cmn_FourChar("othr");

/// A window with room for controls, and a log of what they announce.
class Controls : public ::testing::Test {
  protected:
    void SetUp() override {
        mWindow = new TWindow;
        mWindow->IWindow("controls", VPoint(400, 300));
        mDriver.OpenWindow(*mWindow);
    }
    void TearDown() override {
        if (mWindow)
            mWindow->Free();
    }

    template <class T>
    T& Add(const VRect& frame, std::uint32_t identifier = kID, TView* around = nullptr) {
        auto* control = new T;
        control->SetIdentifier(identifier);
        control->IView(around ? around : mWindow, frame);
        control->SetChangeCallback(
            [this](TControl&, std::int32_t event) { mEvents.push_back(event); });
        mDriver.WaitForIdle();
        mEvents.clear();
        return *control;
    }

    using Events = std::vector<std::int32_t>;
    QLX_TestDriver mDriver;
    TWindow* mWindow = nullptr;
    Events mEvents;
};

} // namespace

TEST_F(Controls, AButtonIsPushedByAReleaseInsideOnly) {
    auto& button = Add<TButton>(VRect(20, 20, 120, 50));
    mDriver.Press({60, 35});
    EXPECT_TRUE(button.IsHilited());
    mDriver.MoveTo(Cmn_Point<int>{300, 200});
    EXPECT_FALSE(button.IsHilited());
    mDriver.Release();
    EXPECT_EQ(mEvents, Events{});
    mDriver.Click(kID);
    EXPECT_EQ(mEvents, Events{kControlEvent_Pressed});
    EXPECT_FALSE(button.IsHilited());
    mEvents.clear();
    button.SetEnable(false);
    mDriver.Click(kID);
    EXPECT_EQ(mEvents, Events{});
}

TEST_F(Controls, SpaceHoldsAButtonAndItsReleasePushesReturnPushesAtOnce) {
    auto& button = Add<TButton>(VRect(20, 20, 120, 50));
    ASSERT_TRUE(button.BecomeTarget());
    mDriver.KeyDown(' ');
    EXPECT_TRUE(button.IsHilited());
    EXPECT_EQ(mEvents, Events{});
    mDriver.KeyDown(' ', 0, /*repeated*/ true);
    mDriver.KeyUp(' ');
    EXPECT_EQ(mEvents, Events{kControlEvent_Pressed});
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(mEvents.size(), 2u);
}

TEST_F(Controls, EscapeDuringAPressPushesNothing) {
    auto& button = Add<TButton>(VRect(20, 20, 120, 50));
    mDriver.Press({60, 35});
    mDriver.Key(kDAW_Key_Escape);
    mDriver.Release();
    EXPECT_EQ(mEvents, Events{});
    EXPECT_FALSE(button.IsHilited());
}

TEST_F(Controls, CheckBoxesTurnAndTheMixedStateIsOnlyTheProgrammes) {
    auto& box = Add<TCheckBox>(VRect(20, 20, 150, 44));
    box.SetRange(0, TCheckBox::kMixed, /*redraw*/ true);
    mDriver.Click(kID);
    EXPECT_EQ(box.GetValue(), 1);
    box.SetValue(TCheckBox::kMixed, /*redraw*/ true);
    mDriver.Click(kID);
    EXPECT_EQ(box.GetValue(), 0);
    EXPECT_EQ(mEvents, (Events{kControlEvent_ValueChanged, kControlEvent_ValueChanged}));
}

TEST_F(Controls, AClusterKeepsOneRadioOnAndArrowsGoRound) {
    auto& cluster = Add<TCluster>(VRect(10, 10, 200, 150));
    TRadio* radios[3];
    for (int i = 0; i < 3; ++i)
        radios[i] = &Add<TRadio>(VRect(10, 20 + 30 * i, 150, 44 + 30 * i),
                                 Cmn_FourChar("rad0") + static_cast<std::uint32_t>(i), &cluster);
    mDriver.Click(Cmn_FourChar("rad1"));
    EXPECT_EQ(cluster.GetValue(), 2);
    mDriver.Click(Cmn_FourChar("rad0"));
    EXPECT_EQ(cluster.GetValue(), 1);
    EXPECT_EQ(radios[0]->GetValue() + radios[1]->GetValue() + radios[2]->GetValue(), 1);
    radios[1]->SetEnable(false);
    ASSERT_TRUE(radios[0]->BecomeTarget());
    mDriver.Key(kDAW_Key_Down);
    EXPECT_EQ(cluster.GetValue(), 3) << "a disabled one is passed over";
    mDriver.Key(kDAW_Key_Down);
    EXPECT_EQ(cluster.GetValue(), 1) << "and from the end it goes back to the start";
    EXPECT_TRUE(radios[0]->IsTarget());
}

TEST_F(Controls, ASliderFollowsTheThumbAndEscapeBringsTheValueBack) {
    auto& slider = Add<TSlider>(VRect(20, 20, 232, 44)); // 200 pixels of way for 100 values
    slider.SetValue(50, /*redraw*/ true);
    const VRect thumb = slider.GetThumb();
    const int x = 20 + static_cast<int>(thumb.Left()) + TSlider::kThumbLength / 2;
    mDriver.Press({x, 32});
    EXPECT_EQ(slider.GetValue(), 50) << "a press on the thumb moves nothing";
    mDriver.MoveTo(Cmn_Point<int>{x + 20, 32});
    EXPECT_EQ(slider.GetValue(), 60);
    mDriver.Key(kDAW_Key_Escape);
    EXPECT_EQ(slider.GetValue(), 50);
    EXPECT_EQ(mEvents.back(), kControlEvent_Cancelled);
    mDriver.Release();
    mDriver.Drag({x, 32}, {x - 1000, 32});
    EXPECT_EQ(slider.GetValue(), 0);
    EXPECT_EQ(mEvents.back(), kControlEvent_ValueChanged);
}

TEST_F(Controls, RangeKeysWheelAndDoubleClick) {
    auto& knob = Add<TKnob>(VRect(20, 20, 70, 70));
    knob.SetSteps(5, 25);
    knob.SetStandardValue(40);
    mDriver.Wheel(kID, 1);
    EXPECT_EQ(knob.GetValue(), 0) << "the wheel scrolls the window unless the knob is the target";
    ASSERT_TRUE(knob.BecomeTarget());
    mDriver.Wheel(kID, 1);
    EXPECT_EQ(knob.GetValue(), 5);
    mDriver.Key(kDAW_Key_PageUp);
    EXPECT_EQ(knob.GetValue(), 30);
    mDriver.Key(kDAW_Key_End);
    mDriver.Key(kDAW_Key_Up);
    EXPECT_EQ(knob.GetValue(), 100);
    mDriver.DoubleClick(kID);
    EXPECT_EQ(knob.GetValue(), 40);
}

TEST_F(Controls, BoundsInEitherOrderAndValuesBeyondThemAreHeld) {
    auto& slider = Add<TSlider>(VRect(20, 20, 220, 44));
    slider.SetRange(10, -10, /*redraw*/ true);
    EXPECT_EQ(slider.GetMinimum(), -10);
    slider.SetValue(INT32_MAX, /*redraw*/ true);
    EXPECT_EQ(slider.GetValue(), 10);
    slider.SetRange(INT32_MIN, INT32_MAX, /*redraw*/ true);
    mDriver.Drag({120, 32}, {4000, 32});
    EXPECT_EQ(slider.GetValue(), INT32_MAX);
    EXPECT_FALSE(slider.SetRangeForAccessibility(std::nan("")));
    EXPECT_TRUE(slider.SetRangeForAccessibility(1e300));
}

TEST_F(Controls, AControlMayBeFreedByWhatItAnnounces) {
    for (const bool byKey : {false, true}) {
        auto& button = Add<TButton>(VRect(20, 20, 120, 50));
        button.SetChangeCallback([](TControl& control, std::int32_t) { control.Free(); });
        if (byKey) {
            ASSERT_TRUE(button.BecomeTarget());
            mDriver.Key(kDAW_Key_Return);
        } else {
            mDriver.Click(kID);
        }
        EXPECT_EQ(mWindow->FindSubView(kID, true), nullptr);
    }
    auto& slider = Add<TSlider>(VRect(20, 60, 220, 84));
    slider.SetChangeCallback([](TControl& control, std::int32_t) { control.Free(); });
    mDriver.Drag({30, 70}, {200, 70});
    EXPECT_EQ(mWindow->FindSubView(kID, true), nullptr);
}

TEST_F(Controls, AFreedViewHearsOfItsTargetWhileItIsWhole) {
    struct Panel : TView {
        ~Panel() override { mIsWhole = false; }
        bool mIsWhole = true;
    };
    auto* panel = new Panel;
    panel->IView(mWindow, VRect(10, 10, 300, 100));
    auto& field = Add<TEditText>(VRect(10, 10, 200, 34), kID, panel);
    std::vector<bool> heard;
    field.SetChangeCallback([&heard, panel](TControl&, std::int32_t event) {
        if (event == kControlEvent_ValueChanged)
            heard.push_back(panel->mIsWhole);
    });
    ASSERT_TRUE(field.BecomeTarget());
    mDriver.Type("a");
    panel->Free();
    EXPECT_EQ(heard, std::vector<bool>{true});
}

TEST_F(Controls, ThousandControlsHilitedTouchOnlyTheirOwnPixels) {
    std::vector<TButton*> buttons;
    for (int i = 0; i < 1000; ++i)
        buttons.push_back(&Add<TButton>(
            VRect(i % 40 * 10, i / 40 * 12, i % 40 * 10 + 8, i / 40 * 12 + 10), kOther));
    for (const bool hilited : {true, false}) {
        mDriver.WaitForIdle();
        mDriver.ResetCosts();
        for (TButton* button : buttons)
            button->SetHilite(hilited, /*redraw*/ true);
        EXPECT_EQ(mWindow->GetInvalidRegion().GetRectList().size(), 1000u) << hilited;
        mDriver.WaitForIdle();
        EXPECT_EQ(mDriver.GetCosts().mPixelsPainted, 1000u * 80) << hilited;
        EXPECT_EQ(mDriver.GetCosts().mPixelsShown, 1000u * 80) << hilited;
        EXPECT_LE(mDriver.GetCosts().mViewsDrawn, 1001u) << hilited;
    }
    // One of them pressed and released by the mouse touches itself alone.
    mDriver.MoveTo(Cmn_Point<int>{4, 4});
    for (const bool pressed : {true, false}) {
        mDriver.WaitForIdle();
        mDriver.ResetCosts();
        pressed ? mDriver.Press({4, 4}) : mDriver.Release();
        mDriver.WaitForIdle();
        EXPECT_EQ(mDriver.GetCosts().mPixelsPainted, 80u) << pressed;
    }
}

TEST_F(Controls, TextIsTypedSelectedCutAndUndoneAsOneCommand) {
    auto& field = Add<TEditText>(VRect(20, 20, 220, 44));
    mDriver.Click(kID);
    mDriver.Type("lead vox");
    EXPECT_EQ(field.GetText(), "lead vox");
    mDriver.Chord("Ctrl+Left");
    mDriver.Chord("Shift+End");
    EXPECT_EQ(field.GetEditing().GetSelectedText(), "vox");
    mDriver.Chord("Ctrl+X");
    mDriver.Chord("Ctrl+V");
    mDriver.Chord("Ctrl+V");
    EXPECT_EQ(field.GetText(), "lead voxvox");
    mDriver.Chord("Ctrl+Z");
    EXPECT_EQ(field.GetText(), "");
    mDriver.Chord("Ctrl+Z");
    EXPECT_EQ(field.GetText(), "lead voxvox") << "undo again is redo";
}

TEST_F(Controls, ATextThatIsRefusedKeepsTheTarget) {
    auto& field = Add<TEditText>(VRect(20, 20, 220, 44));
    auto& other = Add<TButton>(VRect(20, 60, 120, 84), kOther);
    field.SetValidator([](const std::string& text) { return text == "yes"; });
    mDriver.Click(kID);
    mDriver.Type("no");
    EXPECT_FALSE(other.BecomeTarget());
    EXPECT_TRUE(field.IsTarget());
    mDriver.Chord("Ctrl+A");
    mDriver.Type("yes");
    mEvents.clear();
    EXPECT_TRUE(other.BecomeTarget());
    EXPECT_EQ(mEvents, Events{kControlEvent_ValueChanged});
}

TEST_F(Controls, ACompositionIsShownInPlaceAndIsNoPartOfTheValue) {
    auto& field = Add<TEditText>(VRect(20, 20, 220, 44));
    mDriver.Click(kID);
    mDriver.Compose("\xE3\x81\x8B\xE3\x81\xAA", "\xE4\xBB\xAE\xE5\x90\x8D");
    EXPECT_EQ(field.GetText(), "\xE4\xBB\xAE\xE5\x90\x8D");
    EXPECT_EQ(field.GetComposition(), "");
}

TEST_F(Controls, MegabytesAndBrokenBytesArePastedWithoutHarm) {
    auto& field = Add<TEditText>(VRect(20, 20, 220, 44));
    field.SetMaximumLength(1000);
    mDriver.Click(kID);
    QLX_Clipboard::Get().SetText(std::string(8 << 20, '\xFF') + "x");
    mDriver.Chord("Ctrl+V");
    EXPECT_EQ(field.GetText().size(), 3000u); // U+FFFD is three bytes
}

TEST_F(Controls, AMillionRowsCostWhatIsSeen) {
    auto& scroller = Add<TScroller>(VRect(0, 0, 200, 200));
    auto& list = Add<TTextList>(VRect(0, 0, 186, 200), kOther, &scroller);
    list.SetMultiple(true);
    list.SetRows(1'000'000, [](std::int64_t row) { return "row " + std::to_string(row); });
    mDriver.WaitForIdle();
    const int rows = 200 / list.GetRowHeight();
    const std::uint64_t before = list.GetDrawnRows();
    scroller.ScrollContentTo(VPoint(0, list.GetRowHeight() * 3), /*redraw*/ true);
    mDriver.WaitForIdle();
    EXPECT_LE(list.GetDrawnRows() - before, 5u) << "three rows came into sight";
    // A page: the rows that were not there, no pixel of another one, and the bar.
    const int page = 200 / list.GetRowHeight() * list.GetRowHeight() - list.GetRowHeight();
    for (const int pages : {1, 2, 30'000}) {
        const std::uint64_t rowsBefore = list.GetDrawnRows();
        mDriver.ResetCosts();
        scroller.ScrollContentTo(VPoint(0, VCoordinate{pages} * page), /*redraw*/ true);
        mDriver.WaitForIdle();
        const bool stays = pages == 2; // a row of the page before is still in sight
        EXPECT_LE(list.GetDrawnRows() - rowsBefore, static_cast<unsigned>(rows + (stays ? 0 : 2)))
            << pages;
        if (stays) {
            EXPECT_LE(mDriver.GetCosts().mPixelsPainted,
                      static_cast<unsigned>(186 * page + 14 * 200));
        }
    }
    ASSERT_TRUE(list.BecomeTarget());
    mDriver.Key(kDAW_Key_End);
    EXPECT_EQ(list.GetFocusRow(), 999'999);
    mDriver.Chord("Ctrl+A");
    EXPECT_EQ(list.GetSelection().Count(), 1'000'000);
    EXPECT_EQ(list.GetSelection().GetRanges().size(), 1u);
    mDriver.Type("row 77");
    EXPECT_EQ(list.GetFocusRow(), 77);
    EXPECT_LE(list.GetDrawnRows() - before, 40u * static_cast<unsigned>(rows));
}

TEST_F(Controls, RowsAreEditedInPlace) {
    auto& list = Add<TTextList>(VRect(0, 0, 200, 200), kOther);
    std::vector<std::string> rows{"Kick", "Snare", "Vox"};
    bool accepts = true;
    int asked = 0;
    list.SetRows(3, [&](std::int64_t row) { return rows[static_cast<std::size_t>(row)]; });
    list.SetEditCallback([&](std::int64_t row, const std::string& text) {
        ++asked;
        if (accepts)
            rows[static_cast<std::size_t>(row)] = text;
        return accepts;
    });
    ASSERT_TRUE(list.BecomeTarget());
    mDriver.Key(kDAW_Key_Down);
    mDriver.Chord("F2");
    ASSERT_NE(list.GetEditor(), nullptr);
    mDriver.Type("Kick In");
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(rows[0], "Kick In");
    EXPECT_TRUE(list.IsTarget());
    EXPECT_EQ(list.GetEditedRow(), -1);

    mDriver.Chord("F2");
    mDriver.Type("gone");
    mDriver.Key(kDAW_Key_Escape);
    EXPECT_EQ(rows[0], "Kick In");

    accepts = false;
    mDriver.Chord("F2");
    mDriver.Type("refused");
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(list.GetEditedRow(), 0) << "what is refused stays to be put right";
    accepts = true;
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(rows[0], "refused");

    // A second, slow click edits; a double click does not. Leaving the field keeps the text.
    const VRect second = list.GetRowRect(1);
    const Cmn_Point<int> place{20, static_cast<int>(second.Top()) + 5};
    mDriver.DoubleClick(place);
    mDriver.Step(2);
    EXPECT_EQ(list.GetEditedRow(), -1);
    mDriver.Click(place);
    mDriver.Step(1);
    ASSERT_EQ(list.GetEditedRow(), 1);
    mDriver.Type("Snare Top");
    mDriver.Click(Cmn_Point<int>{20, static_cast<int>(list.GetRowRect(2).Top()) + 5});
    EXPECT_EQ(rows[1], "Snare Top");
    EXPECT_EQ(list.GetFocusRow(), 2);

    // What frees the list or its rows under the field.
    asked = 0;
    ASSERT_TRUE(list.EditRow(2));
    list.SetRows(2, [](std::int64_t) { return "x"; });
    EXPECT_EQ(list.GetEditor(), nullptr);
    EXPECT_EQ(asked, 0);
    list.SetEditCallback([&](std::int64_t, const std::string&) {
        list.Free();
        return true;
    });
    ASSERT_TRUE(list.EditRow(0));
    mDriver.Type("y");
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(mWindow->FindSubView(kOther, true), nullptr);
}

TEST_F(Controls, APopupIsChosenFromByMouseKeysAndTyping) {
    auto& popup = Add<TPopup>(VRect(20, 100, 160, 124));
    popup.SetChoices({"Bars", "Minutes", "-", "Time code", "Feet & frames"}, /*redraw*/ true);
    mDriver.Click(kID); // opens; released on the spot it stays open
    mDriver.Key(kDAW_Key_Down);
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(popup.GetValueText(), "Minutes");
    mDriver.Click(kID);
    mDriver.Type("ti");
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(popup.GetValueText(), "Time code");
    mDriver.Click(kID);
    mDriver.Key(kDAW_Key_Escape);
    EXPECT_EQ(popup.GetValueText(), "Time code");
    EXPECT_EQ(mEvents.size(), 2u);
    ASSERT_TRUE(popup.BecomeTarget());
    mDriver.Key(kDAW_Key_Up);
    EXPECT_EQ(popup.GetValueText(), "Minutes") << "a separator is passed over";
    mDriver.Click(kID);
    popup.Free();
    mDriver.WaitForIdle();
    mDriver.Key(kDAW_Key_Return);
}

TEST_F(Controls, TabsShowOnePage) {
    auto& tabs = Add<TTabs>(VRect(0, 0, 300, 200));
    tabs.SetTitles({"Edit", "Mix", "Bus"}, /*redraw*/ true);
    TStaticText* pages[3];
    for (int i = 0; i < 3; ++i)
        pages[i] = &Add<TStaticText>(VRect(0, 30, 300, 200), kOther, &tabs);
    EXPECT_TRUE(pages[0]->IsShown());
    EXPECT_FALSE(pages[1]->IsShown());
    const VRect second = tabs.GetTab(1);
    mDriver.Click({static_cast<int>(second.Left()) + 5, 10});
    EXPECT_EQ(tabs.GetValue(), 1);
    EXPECT_TRUE(pages[1]->IsShown());
    mDriver.Key(kDAW_Key_Right);
    mDriver.Key(kDAW_Key_Right);
    EXPECT_EQ(tabs.GetValue(), 0) << "and around";
    pages[0]->Free();
    EXPECT_TRUE(pages[1]->IsShown());
}

TEST_F(Controls, AMeterDrawsOnlyTheStripThatChangedAndRestsWhenItIsQuiet) {
    auto& meter = Add<TMeterView>(VRect(20, 20, 60, 220));
    mDriver.WaitForIdle();
    mDriver.ResetCosts();
    meter.Feed(0, 0.5f, 0.25f);
    mDriver.WaitForIdle();
    const std::uint64_t first = mDriver.GetCosts().mPixelsPainted;
    EXPECT_GT(first, 0u);
    EXPECT_LT(first, 40u * 200 / 2);
    mDriver.ResetCosts();
    mDriver.Step(0.05);
    EXPECT_LT(mDriver.GetCosts().mPixelsPainted, first / 4);
    mDriver.Step(20);
    EXPECT_TRUE(meter.GetBallistics(0).IsAtRest());
    EXPECT_EQ(meter.GetIdleFreq(), kNoIdle);
}

TEST_F(Controls, RandomEventsLeaveEveryControlInOrder) {
    auto& scroller = Add<TScroller>(VRect(200, 0, 400, 140), Cmn_FourChar("scrl"));
    auto& list = Add<TTextList>(VRect(0, 0, 186, 140), Cmn_FourChar("list"), &scroller);
    list.SetRows(500, [](std::int64_t row) { return std::to_string(row); });
    auto& slider = Add<TSlider>(VRect(0, 0, 190, 24), Cmn_FourChar("slid"));
    Add<TKnob>(VRect(0, 30, 50, 80), Cmn_FourChar("knob"));
    Add<TEditText>(VRect(0, 90, 190, 140), Cmn_FourChar("edit")).SetMultiline(true, true);
    Add<TPopup>(VRect(0, 150, 150, 174), Cmn_FourChar("popu"))
        .SetChoices({"a", "b", "-", "c"}, true);
    Add<TCheckBox>(VRect(0, 180, 150, 204), Cmn_FourChar("chec"));
    Add<TButton>(VRect(200, 150, 300, 180), Cmn_FourChar("butt"));
    std::minstd_rand random(21);
    const auto point = [&] {
        return Cmn_Point<int>{static_cast<int>(random() % 440) - 20,
                              static_cast<int>(random() % 340) - 20};
    };
    const std::uint32_t keys[] = {
        kDAW_Key_Up,  kDAW_Key_Down,     kDAW_Key_Left,   kDAW_Key_Right,    kDAW_Key_Home,
        kDAW_Key_End, kDAW_Key_PageDown, kDAW_Key_Escape, kDAW_Key_Tab,      ' ',
        'a',          kDAW_Key_Return,   kDAW_Key_Delete, kDAW_Key_Backspace};
    for (int step = 0; step < 1500; ++step) {
        switch (random() % 7) {
        case 0:
            mDriver.Press(point(), random() % 16);
            break;
        case 1:
            mDriver.Release();
            break;
        case 2:
            mDriver.MoveTo(point());
            break;
        case 3:
            mDriver.Wheel(point(), static_cast<int>(random() % 5) - 2);
            break;
        case 4:
            mDriver.Step(0.05);
            break;
        default:
            mDriver.Key(keys[random() % std::size(keys)], random() % 3 == 0 ? random() % 16 : 0);
        }
        ASSERT_GE(slider.GetValue(), slider.GetMinimum());
        ASSERT_LE(slider.GetValue(), slider.GetMaximum());
        ASSERT_LT(list.GetFocusRow(), 500);
        ASSERT_NE(gApplication->GetTarget(), nullptr);
    }
}
