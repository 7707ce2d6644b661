// Numeric entry fields in a window: clicks, drags, the wheel, drawing and descriptions.
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/misc/qlx_init.h"
#include "app/misc/unumericentrytext.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/uwindow.h"

namespace {

constexpr std::uint32_t cField = Cmn_FourChar("fld1");
constexpr std::uint32_t cSecond = Cmn_FourChar("fld2");

class Editor : public TView {
  public:
    bool WantsToBeTarget() override { return true; }
};

class Dependent : public TObject {
  public:
    void DoUpdate(int change, TObject*, TObject*, TDependencySpace*) override {
        mChanges.push_back(change);
    }
    std::vector<int> mChanges;
};

class FieldWindow : public testing::Test {
  protected:
    FieldWindow() {
        QLX_Init::Init();
        Time_Session::SetTimeCodeFormat(ETimeCodeFormat::F30);
        mWindow = new TWindow;
        mWindow->IWindow("fields", VPoint(300, 200));
        mEditor = new Editor;
        mEditor->IView(mWindow, VRect(0, 150, 300, 200));
        mField = MakeField(cField, 10);
        mSecond = MakeField(cSecond, 60);
        mDriver.OpenWindow(*mWindow);
        mEditor->BecomeTarget();
        mDriver.WaitForIdle();
    }
    ~FieldWindow() override {
        if (mWindow != nullptr)
            mWindow->Free();
    }
    TNumericEntryText* MakeField(std::uint32_t identifier, int top) {
        auto* field = new TNumericEntryText;
        field->IView(mWindow, VRect(10, top, 160, top + 30));
        field->SetIdentifier(identifier);
        field->SetLocalFormat(kNumericEntry_TimeCode, false, false);
        field->SetText("01:02:03:04", true, true);
        field->SetCallback(&FieldWindow::OnClient, this);
        return field;
    }
    // Over the characters of a block of the centred text.
    Cmn_Point<int> Over(TNumericEntryText* field, int character) {
        const float width = field->GetStringWidth(field->GetText());
        const float left = (10.0F + 160.0F - width) / 2;
        const std::string before = field->GetText().substr(0, static_cast<std::size_t>(character));
        return {static_cast<int>(left + field->GetStringWidth(before)) + 3,
                static_cast<int>(field->GetFrame().Top()) + 15};
    }
    std::string Selection(TNumericEntryText* field) {
        short start = 0;
        short end = 0;
        field->GetSelection(start, end);
        return std::to_string(start) + ".." + std::to_string(end);
    }
    static void OnClient(void* context, CNumericEntryCallbackInfo& info, int key) {
        auto* test = static_cast<FieldWindow*>(context);
        test->mCalls.push_back(info.mFromTracking ? "track " + std::to_string(info.mTrackPhase) +
                                                        " " + std::to_string(key)
                                                  : "key " + std::to_string(key));
        if (test->mOnClient)
            test->mOnClient(info);
    }

    QLX_TestDriver mDriver;
    TWindow* mWindow;
    Editor* mEditor;
    TNumericEntryText* mField;
    TNumericEntryText* mSecond;
    std::vector<std::string> mCalls;
    std::function<void(CNumericEntryCallbackInfo&)> mOnClient;
};

} // namespace

TEST_F(FieldWindow, TheFirstClickSelectsAllOfATimeCodeTheNextABlock) {
    mDriver.Click(Over(mField, 3));
    EXPECT_TRUE(mField->IsTarget());
    EXPECT_EQ(Selection(mField), "0..11");
    mDriver.Step(2);
    mDriver.Click(Over(mField, 3));
    EXPECT_EQ(Selection(mField), "3..5");
    mDriver.Type("45");
    EXPECT_EQ(mField->GetText(), "01:45:00:00");
    mDriver.Step(2);
    mDriver.Click(Over(mField, 9));
    EXPECT_EQ(Selection(mField), "9..11");
    EXPECT_EQ(mField->GetTypedCount(), 0);
    mDriver.DoubleClick(Over(mField, 9));
    EXPECT_EQ(Selection(mField), "0..11") << "a double click on a block widens to the whole";

    mSecond->SetLocalFormat(kNumericEntry_FeetFrames, false, false);
    mDriver.Step(2);
    mDriver.Click(Over(mSecond, 8));
    EXPECT_EQ(Selection(mSecond), "7..9") << "other formats select the block at once";
}

TEST_F(FieldWindow, ClickTypeReturnAndTheKeyboardIsWhereItWas) {
    mDriver.Click(cField);
    mDriver.Type("5");
    mDriver.Step(2);
    mDriver.Click(cSecond);
    EXPECT_TRUE(mSecond->IsTarget());
    mDriver.Type("7");
    mDriver.Key(kDAW_Key_Return);
    EXPECT_TRUE(mEditor->IsTarget()) << "not the field clicked first";
    EXPECT_EQ(mSecond->GetText(), "01:02:03:07");
    EXPECT_EQ(mCalls.back(), "key 13");
    mDriver.Click(cSecond);
    mDriver.Type("99");
    mDriver.Key(kDAW_Key_Escape);
    EXPECT_EQ(mSecond->GetText(), "01:02:03:07") << "a real Escape takes the edit back";
    EXPECT_EQ(Selection(mSecond), "0..11");
    EXPECT_TRUE(mSecond->IsTarget());
}

TEST_F(FieldWindow, DragsStepTheBlockOncePastFivePixels) {
    Dependent dependent;
    mField->AddDependent(&dependent);
    mDriver.Click(Over(mField, 6));
    mDriver.Step(2);
    mDriver.Click(Over(mField, 6));
    ASSERT_EQ(Selection(mField), "6..8");
    mDriver.Step(2);
    mCalls.clear();
    dependent.mChanges.clear();
    const Cmn_Point<int> at = Over(mField, 6);
    mDriver.Press(at);
    mDriver.MoveTo({at.x, at.y - 5});
    EXPECT_EQ(mField->GetText(), "01:02:03:04") << "five pixels are not a drag";
    mDriver.MoveTo({at.x, at.y - 7});
    EXPECT_EQ(mField->GetText(), "01:02:05:04") << "the movement that crosses counts two";
    mDriver.MoveTo({at.x + 40, at.y - 7});
    mDriver.MoveTo({at.x, at.y + 1});
    EXPECT_EQ(mField->GetText(), "01:01:57:04");
    mDriver.Release();
    EXPECT_EQ(mCalls,
              (std::vector<std::string>{"track 0 0", "track 1 1", "track 1 -1", "track 2 0"}));
    EXPECT_EQ(dependent.mChanges, (std::vector<int>{0x1200000, 0x1200001}));
    EXPECT_TRUE(mField->IsTarget()) << "it was the target before the press";

    mField->SetResignTargetAfterTracking(true);
    mDriver.Step(2);
    mDriver.Drag(at, {at.x, at.y - 20}, 4);
    EXPECT_TRUE(mEditor->IsTarget());
    mDriver.Step(2);
    mCalls.clear();
    mDriver.Click(at);
    EXPECT_EQ(mCalls, std::vector<std::string>{"track 0 0"}) << "a click alone ends quietly";
    mDriver.Key(kDAW_Key_Return);
    mDriver.Step(2);
    mDriver.Drag(at, {at.x, at.y - 20}, 4);
    EXPECT_TRUE(mEditor->IsTarget()) << "a drag that made the field the target gives it back";
    mField->RemoveDependent(&dependent);
}

TEST_F(FieldWindow, WhatChangesAfterADragIsToldWhenTheFieldResigns) {
    mField->SetUpdateClientWhenResigningTarget(true);
    mDriver.Click(cField);
    const Cmn_Point<int> at = Over(mField, 6);
    mDriver.Drag(at, {at.x, at.y - 20}, 4);
    ASSERT_TRUE(mField->PasteText("00:00:07:00"));
    mCalls.clear();
    mEditor->BecomeTarget();
    EXPECT_EQ(mCalls, std::vector<std::string>{"key 0"});
    EXPECT_EQ(mField->GetText(), "00:00:07:00");
}

TEST_F(FieldWindow, EscapeTakesADragBack) {
    mDriver.Click(cField);
    mDriver.Step(2);
    const Cmn_Point<int> at = Over(mField, 6);
    mDriver.Press(at);
    mDriver.MoveTo({at.x, at.y - 30});
    EXPECT_EQ(mField->GetText(), "01:02:33:04");
    mDriver.KeyDown(kDAW_Key_Escape);
    EXPECT_EQ(mField->GetText(), "01:02:03:04");
    mDriver.Release();
    EXPECT_EQ(mCalls.back(), "track 2 0");
}

TEST_F(FieldWindow, AFieldThatLosesTheKeyboardKeepsWhatWasDraggedAndNoMore) {
    for (const bool bySystem : {false, true}) {
        mField->SetText("01:02:03:04", true, true);
        mDriver.Click(cField);
        mDriver.Step(2);
        const Cmn_Point<int> at = Over(mField, 6);
        mDriver.Press(at);
        mDriver.MoveTo({at.x, at.y - 30});
        ASSERT_EQ(mField->GetText(), "01:02:33:04");
        mSecond->BecomeTarget();
        mDriver.MoveTo({at.x, at.y - 40});
        bySystem ? mDriver.LoseCapture() : mDriver.Release();
        EXPECT_EQ(mField->GetText(), "01:02:33:04");
        EXPECT_EQ(mField->GetBackup(), "01:02:33:04");
        EXPECT_TRUE(mSecond->IsTarget());
        mDriver.Step(2);
    }
}

TEST_F(FieldWindow, TheWheelStepsTheTargetAndScrollsPastTheOthers) {
    mDriver.Wheel(cField, 3);
    EXPECT_EQ(mField->GetText(), "01:02:03:04");
    mDriver.Click(cField);
    mDriver.Step(2);
    mDriver.Click(Over(mField, 3));
    mField->SetUpdateClientAfterArrow(true);
    mCalls.clear();
    mDriver.Wheel(cField, 2);
    EXPECT_EQ(mField->GetText(), "01:04:03:04");
    mDriver.Wheel(cField, -0.5);
    mDriver.Wheel(cField, -0.5);
    EXPECT_EQ(mField->GetText(), "01:03:03:04") << "parts of a notch add up";
    EXPECT_EQ(mCalls, (std::vector<std::string>{"key 30", "key 30", "key 31"}));
    mDriver.Wheel(cSecond, 2);
    EXPECT_EQ(mSecond->GetText(), "01:02:03:04");
}

TEST_F(FieldWindow, ClientsMayFreeTheFieldInTheMiddleOfADrag) {
    for (const int phase : {0, 1, 2}) {
        auto* field = MakeField(Cmn_FourChar("temp"), 110);
        mOnClient = [phase](CNumericEntryCallbackInfo& info) {
            if (info.mFromTracking && info.mTrackPhase == phase)
                info.GetField()->Free();
        };
        const Cmn_Point<int> at = Over(field, 6);
        mDriver.Press(at);
        mDriver.MoveTo({at.x, at.y - 20});
        mDriver.MoveTo({at.x, at.y - 30});
        mDriver.Release();
        EXPECT_EQ(mWindow->FindSubView(Cmn_FourChar("temp"), true), nullptr) << phase;
        mOnClient = nullptr;
        mDriver.Step(2);
    }
}

TEST_F(FieldWindow, MouseEnterAndLeaveAreTold) {
    static std::vector<bool> overs;
    overs.clear();
    mField->SetMouseEnterExitCallback([](bool over, void*) { overs.push_back(over); });
    mDriver.MoveTo(cField);
    mDriver.MoveTo({290, 5});
    EXPECT_EQ(overs, (std::vector<bool>{true, false}));
}

TEST_F(FieldWindow, VolatileUpdateDrawsOnlyTheCharactersThatChanged) {
    mField->SetUseVolatileUpdate(true);
    mDriver.WaitForIdle();
    mDriver.ResetCosts();
    mField->SetTextFromSample(Time_Sample(48000 * 3723 + 1600 * 5), true);
    mDriver.WaitForIdle();
    EXPECT_EQ(mField->GetText(), "01:02:03:05");
    const std::vector<std::string> drawn = mDriver.GetDrawnViews();
    EXPECT_EQ(std::count(drawn.begin(), drawn.end(), "TNumericEntryText 'fld1'"), 1);
    EXPECT_EQ(std::count(drawn.begin(), drawn.end(), "TNumericEntryText 'fld2'"), 0);
    const std::uint64_t pixels = mDriver.GetCosts().mPixelsPainted;
    EXPECT_LT(pixels, 30U * 30U) << "a digit, not the field";
    mDriver.ResetCosts();
    mField->SetTextFromSample(Time_Sample(48000 * 3723 + 1600 * 5 + 7), true);
    mDriver.WaitForIdle();
    EXPECT_TRUE(mDriver.GetDrawnViews().empty()) << "the same text draws nothing";
}

TEST_F(FieldWindow, PrefixValueAndSuffixFollowTheReadingDirection) {
    mField->SetPrefixText("in ");
    mField->SetSuffixText(" TC");
    const std::string leftToRight = mDriver.GetDrawing(cField);
    mField->SetRightToLeft(true);
    const std::string rightToLeft = mDriver.GetDrawing(cField);
    EXPECT_NE(leftToRight, rightToLeft);
    for (const std::string& drawing : {leftToRight, rightToLeft})
        for (const char* text : {"in ", " TC", "01:02:03:04"})
            EXPECT_NE(drawing.find(text), std::string::npos) << text;
}

TEST_F(FieldWindow, DescriptionsSetTheField) {
    QLX_RawPropertyContainer container("view");
    const QLX_PropertyFilter filter;
    container.SetInt32Property("FormatOverride", kNumericEntry_FeetFrames, filter);
    container.SetBoolProperty("FormatOverrideUseSubframes", true, filter);
    container.SetBoolProperty("NormalArrowMode", true, filter);
    container.SetBoolProperty("UpdateClientAfterArrow", true, filter);
    container.SetBoolProperty("IsDurationText", true, filter);
    container.SetInt32Property("MinValue", -3, filter);
    container.SetInt32Property("MaxValue", 12, filter);
    container.SetStringProperty("PrefixText", "at ", filter);
    container.SetStringProperty("Background_Image", "plate", filter);
    container.SetCurrentFilter(filter);
    mField->ReadProperties(&container, {});
    EXPECT_EQ(mField->GetLocalFormat(), kNumericEntry_FeetFrames);
    EXPECT_EQ(mField->GetText().size(), 12u) << mField->GetText();
    EXPECT_TRUE(mField->IsDurationText());
    EXPECT_EQ(mField->GetMinIntegerValue(), -3);
    EXPECT_EQ(mField->GetMaxFloatValue(), 12);
    EXPECT_EQ(mField->GetPrefixText(), "at ");
    EXPECT_EQ(mField->GetBackgroundImageName(), "plate");
    mDriver.Click(cField);
    mDriver.Key(kDAW_Key_Up);
    EXPECT_EQ(mCalls.back(), "key 30");
}

TEST_F(FieldWindow, AFrameHandsItsPressToTheFieldInside) {
    auto* frame = new TNumericEntryFrame;
    frame->IView(mWindow, VRect(170, 10, 290, 100));
    auto* field = new TNumericEntryText;
    field->IView(frame, VRect(10, 40, 110, 70));
    mDriver.WaitForIdle();
    mDriver.Click({180, 20});
    EXPECT_TRUE(field->IsTarget());
    EXPECT_EQ(mDriver.FindAs<TNumericEntryText>(cField).IsTarget(), false);
}
