// What an input method composes, in a field of text and in a numeric one: where it is shown, where
// the candidates are to appear, and what entering and giving up leave.
#include <gtest/gtest.h>

#include "app/misc/qlx_init.h"
#include "app/misc/unumericentrytext.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/imaging/qlx_themecolor.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_clipboard.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/uwindow.h"
#include "tests/support/picture_compare.h"

namespace {

const std::string kKana = "\xE3\x81\x8B\xE3\x81\xAA";       // two letters, three bytes each
const std::string kEntered = "\xE4\xBB\xAE\xE5\x90\x8D";    // what they are converted to
const std::string kWideDigits = "\xEF\xBC\x91\xEF\xBC\x92"; // full-width 1 and 2

class Composition : public ::testing::Test {
  protected:
    void SetUp() override {
        QLX_Init::Init();
        mWindow.IWindow("composition", VPoint(300, 150));
        mField = new TEditText;
        mField->IView(&mWindow, VRect(20, 10, 280, 34));
        mNote = new TEditText;
        mNote->SetMultiline(true, /*redraw*/ false);
        mNote->IView(&mWindow, VRect(20, 40, 280, 100));
        mNumber = new TNumericEntryText;
        mNumber->EnableTextCompositing(true);
        mNumber->IView(&mWindow, VRect(20, 110, 140, 134));
        mDriver.OpenWindow(mWindow);
        mField->SetText("Take keeper", /*redraw*/ true);
        mNote->SetText("A note of two lines or so, with room\nfor more.", /*redraw*/ true);
        mNumber->SetTextFromIntegerValue(120);
    }
    void TearDown() override {
        mWindow.Close();
        QLX_Theme::Reset();
    }
    QLX_HeadlessWindow& Port() { return *static_cast<QLX_HeadlessWindow*>(mWindow.GetPort()); }
    void Compose(const std::string& text, int caret) {
        Port().Inject(QLX_MakeCompositionEvent(text, caret, 0));
        mDriver.WaitForIdle();
    }
    void Enter(const std::string& text) {
        Compose("", 0);
        Port().Inject(QLX_MakeTextEvent(text));
        mDriver.WaitForIdle();
    }
    /// Where the candidates go, in coordinates of a view of the window.
    VRect Candidates(const TView& view) {
        const Cmn_Rect<int>* area = Port().GetTextInput();
        if (!area)
            return VRect();
        VRect local(*area);
        const_cast<TView&>(view).WindowToLocalVRect(local);
        return local;
    }

    QLX_TestDriver mDriver;
    TWindow mWindow;
    TEditText* mField = nullptr;
    TEditText* mNote = nullptr;
    TNumericEntryText* mNumber = nullptr;
};

} // namespace

TEST_F(Composition, LooksAsItDidWhenItWasLookedAt) {
    const std::pair<EThemeVariant, const char*> looks[] = {{kTheme_Light, "light"},
                                                           {kTheme_Dark, "dark"}};
    for (const auto& [variant, name] : looks) {
        QLX_Theme::SetVariant(variant);
        mWindow.ForceRedraw();
        mField->BecomeTarget();
        mField->Select(5, 5);
        Compose(kKana, 1);
        EXPECT_TRUE(
            MatchesGolden(*mDriver.GetPicture(), std::string("composition-text-") + name, 1));
        Compose("", 0);
        mNote->BecomeTarget();
        mNote->Select(2, 2);
        Compose("nihongonihongonihongonihongo", 28); // wraps the line that it stands in
        EXPECT_TRUE(
            MatchesGolden(*mDriver.GetPicture(), std::string("composition-note-") + name, 1));
        Compose("", 0);
        mNumber->BecomeTarget();
        Compose(kWideDigits, 2);
        EXPECT_TRUE(
            MatchesGolden(*mDriver.GetPicture(), std::string("composition-number-") + name, 1));
        Compose("", 0);
    }
}

TEST_F(Composition, StandsInTheTextAndIsNoPartOfIt) {
    mField->BecomeTarget();
    mField->Select(5, 5);
    mDriver.WaitForIdle();
    const VCoordinate place = mField->CaretRect(5).Left();
    const VCoordinate behind = mField->CaretRect(11).Left();
    EXPECT_EQ(Candidates(*mField), mField->CaretRect(5));
    Compose(kKana, 1);
    EXPECT_EQ(mField->GetText(), "Take keeper");
    EXPECT_EQ(mField->GetComposition(), kKana);
    const VCoordinate caret = mField->CaretRect(5).Left();
    const VCoordinate moved = mField->CaretRect(11).Left() - behind;
    EXPECT_GT(caret, place + 5) << "behind its first letter";
    EXPECT_GT(moved, caret - place) << "the rest makes room for both letters";
    EXPECT_EQ(Candidates(*mField), mField->CaretRect(5)) << "the system is told where";
    // A click within it is its place, one behind it the letter that is seen there.
    EXPECT_EQ(mField->OffsetAt(VPoint(place + 3, 12)), 5u);
    EXPECT_EQ(mField->OffsetAt(VPoint(behind + moved, 12)), 11u);
    Compose(kKana + kKana, 4);
    EXPECT_GT(Candidates(*mField).Left(), caret);
    // Keys are the input method's meanwhile.
    mDriver.Key(kDAW_Key_Left);
    mDriver.Chord("Ctrl+A");
    EXPECT_FALSE(mField->GetEditing().HasSelection());
    Enter(kEntered);
    EXPECT_EQ(mField->GetText(), "Take " + kEntered + "keeper");
    EXPECT_EQ(mField->GetEditing().GetCaret(), 5 + kEntered.size());
    EXPECT_EQ(mField->GetComposition(), "");
}

TEST_F(Composition, GivenUpItLeavesNoTrace) {
    mField->BecomeTarget();
    mField->Select(5, 5);
    mDriver.WaitForIdle();
    const QLX_Image::Ptr before = mDriver.GetPicture();
    Compose(kKana, 2);
    EXPECT_FALSE(QLX_TestDriver::IsSamePicture(before, mDriver.GetPicture()));
    Compose("", 0);
    EXPECT_TRUE(SamePictures(*mDriver.GetPicture(), *before, "composition-given-up"));
    EXPECT_EQ(mField->GetText(), "Take keeper");
    // So does what takes the field away from the input method.
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"a click",
         [&] {
             mDriver.Click(Cmn_Point<int>{60, 22});
         }},
        {"the program's selection", [&] { mField->Select(0, 4); }},
        {"another target", [&] { mNote->BecomeTarget(); }},
        {"the program's text", [&] { mField->SetText("Other", true); }},
        {"pasting", [&] {
             QLX_Clipboard::Get().SetText("x");
             mField->Paste();
         }}};
    for (const auto& [name, way] : ways) {
        SCOPED_TRACE(name);
        mField->BecomeTarget();
        Compose(kKana, 1);
        ASSERT_EQ(mField->GetComposition(), kKana);
        way();
        mDriver.WaitForIdle();
        EXPECT_EQ(mField->GetComposition(), "");
        EXPECT_EQ(mField->GetText().find(kKana), std::string::npos);
    }
}

TEST_F(Composition, TakesTheSelectionsPlaceAndIsUndoneWithIt) {
    mField->BecomeTarget();
    mField->Select(5, 11);
    Compose(kKana, 2);
    EXPECT_EQ(mField->GetText(), "Take ");
    Enter(kEntered);
    EXPECT_EQ(mField->GetText(), "Take " + kEntered);
    mDriver.Chord("Ctrl+Z");
    EXPECT_EQ(mField->GetText(), "Take keeper");
}

TEST_F(Composition, WhatAnInputMethodShouldNotSendDoesNoHarm) {
    mNote->BecomeTarget();
    const std::string whole = mNote->GetText();
    const std::tuple<std::string, int> sent[] = {{"\xFF\xFE", 1},
                                                 {"two\nlines", 3},
                                                 {std::string(5000, 'w'), 9999},
                                                 {"x", -4},
                                                 {std::string("a\0b", 3), 2}};
    for (const auto& [text, caret] : sent)
        for (const std::size_t at : {std::size_t{0}, std::size_t{10}, whole.size()}) {
            mNote->Select(at, at);
            Compose(text, caret);
            Compose(text + "more", caret);
            EXPECT_EQ(mNote->GetText(), whole);
            Compose("", 0);
        }
    mNote->SetReadOnly(true);
    Compose(kKana, 1);
    EXPECT_EQ(mNote->GetComposition(), "");
    EXPECT_EQ(Candidates(*mNote), VRect());
}

TEST_F(Composition, ANumericFieldTakesItsDigitsWhenTheyAreEntered) {
    mNumber->BecomeTarget();
    mDriver.WaitForIdle();
    const std::string before = mNumber->GetText();
    const VRect block = Candidates(*mNumber);
    EXPECT_TRUE(mNumber->GetExtent().Contains(block));
    Compose(kWideDigits, 1);
    EXPECT_EQ(mNumber->GetText(), before);
    EXPECT_EQ(mNumber->GetComposition(), kWideDigits);
    const VRect candidates = Candidates(*mNumber);
    EXPECT_TRUE(mNumber->GetExtent().Contains(candidates));
    EXPECT_EQ(candidates.GetWidth(), 1);
    Compose("", 0);
    EXPECT_EQ(mNumber->GetText(), before);
    Compose(kWideDigits, 2);
    Enter(kWideDigits);
    EXPECT_EQ(mNumber->GetComposition(), "");
    EXPECT_NE(mNumber->GetText().find("12"), std::string::npos) << mNumber->GetText();
    Compose(kKana, 1);
    mField->BecomeTarget();
    EXPECT_EQ(mNumber->GetComposition(), "");
}
