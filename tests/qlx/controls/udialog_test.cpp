// Dialogs as a user and a host meet them: keys, buttons, windows behind, closing under the hand.
#include "qlx/views/udialog.h"

#include <gtest/gtest.h>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubuttons.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/usliders.h"
#include "qlx/views/uwindowmodal.h"

namespace {

constexpr std::uint32_t kOK = Cmn_FourChar("ok  ");
constexpr std::uint32_t kCancel = Cmn_FourChar("cncl");
constexpr std::uint32_t kApply = Cmn_FourChar("appl");
constexpr std::uint32_t kField = Cmn_FourChar("name");
constexpr std::uint32_t kSlider = Cmn_FourChar("slid");
constexpr std::uint32_t kBehind = Cmn_FourChar("bhnd");
constexpr std::uint32_t kNotYet = 0xFFFFFFFF;

TButton* AddButton(TView* around, std::uint32_t identifier, TButton::ERole role, int left) {
    auto* button = new TButton;
    button->SetIdentifier(identifier);
    button->SetRole(role, /*redraw*/ false);
    button->IView(around, VRect(left, 100, left + 80, 128));
    return button;
}

/// A window with a button, and a dialog with a field, a slider and three buttons over it.
class Dialogs : public ::testing::Test {
  public:
    void SetUp() override {
        mWindow = new TWindow;
        mWindow->IWindow("behind", VPoint(400, 300));
        AddButton(mWindow, kBehind, TButton::kRole_None, 10)
            ->SetChangeCallback([this](TControl&, std::int32_t) { ++mBehindPushed; });
        mDriver.OpenWindow(*mWindow);
        mDialog = NewDialog();
    }
    void TearDown() override {
        if (mDialog)
            mDialog->Free();
        mWindow->Free();
    }
    void Open() {
        ASSERT_TRUE(mDialog->OpenModal([this](std::uint32_t button) { mEndedWith = button; }));
        mDriver.UseWindow(*mDialog);
        mDriver.WaitForIdle();
    }

    static TDialog* NewDialog() {
        auto* dialog = new TDialog;
        dialog->IWindow("dialog", VPoint(320, 140));
        auto* field = new TEditText;
        field->SetIdentifier(kField);
        field->IView(dialog, VRect(10, 10, 200, 34));
        auto* slider = new TSlider;
        slider->SetIdentifier(kSlider);
        slider->SetRange(0, 100, /*redraw*/ false);
        slider->IView(dialog, VRect(10, 50, 210, 74));
        AddButton(dialog, kOK, TButton::kRole_Default, 10);
        AddButton(dialog, kCancel, TButton::kRole_Cancel, 100);
        AddButton(dialog, kApply, TButton::kRole_None, 190);
        return dialog;
    }

    QLX_TestDriver mDriver;
    TWindow* mWindow = nullptr;
    TDialog* mDialog = nullptr;
    std::uint32_t mEndedWith = kNotYet;
    int mBehindPushed = 0;
};

} // namespace

TEST_F(Dialogs, ReturnEscapeTheButtonsAndTheCloseBoxEndIt) {
    struct Row {
        const char* mName;
        std::function<void(Dialogs&)> mAct;
        std::uint32_t mButton;
    };
    const auto key = [](std::uint32_t code) {
        return [code](Dialogs& test) { test.mDriver.Key(code); };
    };
    const auto click = [](std::uint32_t identifier) {
        return [identifier](Dialogs& test) { test.mDriver.Click(identifier); };
    };
    const Row rows[] = {
        {"Return in the field", key(kDAW_Key_Return), kOK},
        {"Escape in the field", key(kDAW_Key_Escape), kCancel},
        {"the default button", click(kOK), kOK},
        {"the cancel button", click(kCancel), kCancel},
        {"a button without a role", click(kApply), kNotYet},
        {"the window's close box",
         [](Dialogs& test) {
             test.mDialog->Deliver(QLX_MakeWindowEvent(kQLX_EventKind_CloseRequested));
         },
         kCancel},
        {"the program closes it", [](Dialogs& test) { test.mDialog->Close(); }, kDialog_Closed},
        {"Tab to Cancel, then Return",
         [](Dialogs& test) {
             for (int i = 0; i < 3; ++i)
                 test.mDriver.Key(kDAW_Key_Tab);
             test.mDriver.Key(kDAW_Key_Return);
         },
         kCancel},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.mName);
        mEndedWith = kNotYet;
        Open();
        EXPECT_TRUE(mDriver.Find(kField).IsTarget());
        row.mAct(*this);
        mDriver.WaitForIdle();
        EXPECT_EQ(mEndedWith, row.mButton);
        EXPECT_EQ(mDialog->IsOpen(), row.mButton == kNotYet);
        mDialog->Close();
        mDriver.WaitForIdle();
        EXPECT_TRUE(mWindow->IsActive());
    }
}

TEST_F(Dialogs, WhatLiesBehindGetsNoInputUntilItHasEnded) {
    Open();
    mDriver.UseWindow(*mWindow);
    mDriver.Click(kBehind);
    EXPECT_EQ(mBehindPushed, 0);
    EXPECT_TRUE(mDialog->IsActive());
    mWindow->Deliver(QLX_MakeWindowEvent(kQLX_EventKind_CloseRequested));
    EXPECT_TRUE(mWindow->IsOpen());
    TWindow later; // what is opened after the dialog is not behind it
    later.IWindow("later", VPoint(100, 100));
    mDriver.OpenWindow(later);
    EXPECT_FALSE(QLX_ModalWindows::IsBlocked(&later));
    later.Close();
    mDialog->Cancel();
    mDriver.UseWindow(*mWindow);
    mDriver.Click(kBehind);
    EXPECT_EQ(mBehindPushed, 1);
}

TEST_F(Dialogs, ARefusedTextOrTheValidatorKeepsItOpenAndCancelAsksNobody) {
    Open();
    auto& field = mDriver.FindAs<TEditText>(kField);
    field.SetValidator([](const std::string& text) { return text == "Vox"; });
    mDriver.Key(kDAW_Key_Return);
    mDriver.Click(kOK);
    EXPECT_EQ(mEndedWith, kNotYet);
    mDriver.Type("Vox");
    bool agrees = false;
    mDialog->SetValidator([&](std::uint32_t) { return agrees; });
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(mEndedWith, kNotYet);
    agrees = true;
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(mEndedWith, kOK);
    Open();
    agrees = false;
    field.SetText("no", /*redraw*/ true);
    mDriver.Key(kDAW_Key_Escape);
    EXPECT_EQ(mEndedWith, kCancel);
}

TEST_F(Dialogs, ClosedOrFreedWhileTrackedItEndsAndTheDragIsGivenUp) {
    for (const bool frees : {false, true}) {
        mDriver.Step(1); // so that the second press is no double click
        mEndedWith = kNotYet;
        Open();
        auto& slider = mDriver.FindAs<TSlider>(kSlider);
        std::int32_t last = 0;
        slider.SetChangeCallback([&](TControl&, std::int32_t event) { last = event; });
        mDriver.Press({20, 62});
        mDriver.MoveTo(Cmn_Point<int>{150, 62});
        EXPECT_EQ(last, kControlEvent_ValueChanging);
        if (frees) {
            mDialog->Free();
            mDialog = nullptr;
        } else {
            mDialog->Close();
        }
        EXPECT_EQ(last, kControlEvent_Cancelled);
        EXPECT_EQ(mEndedWith, kDialog_Closed);
        mDriver.UseWindow(*mWindow);
        mDriver.Release();
        EXPECT_EQ(QLX_ModalWindows::GetInnermost(), nullptr);
    }
}

TEST_F(Dialogs, ADialogMayBeFreedByItsOwnButtonOrCompletion) {
    Open();
    mDriver.FindAs<TButton>(kApply).SetChangeCallback([this](TControl&, std::int32_t) {
        mDialog->Free();
        mDialog = nullptr;
    });
    mDriver.Click(kApply);
    EXPECT_EQ(mEndedWith, kDialog_Closed);
    mDialog = NewDialog();
    ASSERT_TRUE(mDialog->OpenModal([this](std::uint32_t) {
        mDialog->Free();
        mDialog = nullptr;
    }));
    mDriver.UseWindow(*mDialog);
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(mDialog, nullptr);
}

TEST_F(Dialogs, TimersFireAndWindowsDrawWhileOneRuns) {
    QLX_EventLoop* loop = QLX_EventLoop::Get();
    int ticks = 0;
    mDriver.ResetCosts();
    const auto timer = loop->StartTimer(0.1, 0.1, [&] {
        mWindow->ForceRedraw();
        if (++ticks == 5)
            mDialog->Deliver(QLX_MakeKeyEvent(kQLX_EventKind_KeyDown, kDAW_Key_Return, '\r', 0));
    });
    EXPECT_EQ(mDialog->RunModal(), kOK);
    loop->StopTimer(timer);
    EXPECT_EQ(ticks, 5);
    EXPECT_GE(mDriver.GetCosts().mFrames, 4u);
    // A loop that quits ends the dialog too.
    loop->StartTimer(0.1, 0, [loop] { loop->Quit(); });
    EXPECT_EQ(mDialog->RunModal(), kDialog_Closed);
}

TEST_F(Dialogs, AReturnHeldFromBeforeDoesNotAnswerIt) {
    Open();
    mDriver.KeyDown(kDAW_Key_Return, 0, /*repeated*/ true);
    EXPECT_EQ(mEndedWith, kNotYet);
    mDialog->Cancel();
}

TEST_F(Dialogs, AlertsNestAndAnswerWithTheButton) {
    std::vector<int> answers;
    const auto hear = [&](int button) { answers.push_back(button); };
    TAlert::Show(kAlert_Caution, "Delete 3 tracks?", "This cannot be undone.",
                 {"Delete", "Keep Files", "Cancel"}, hear);
    TWindow* first = QLX_ModalWindows::GetInnermost();
    ASSERT_NE(first, nullptr);
    TAlert::Show(kAlert_Note, "Nothing was deleted.", "", {}, hear);
    mDriver.UseWindow(*first);
    mDriver.Click(TAlert::kSecond); // it is behind the second one now
    EXPECT_TRUE(answers.empty());
    mDriver.UseWindow(*QLX_ModalWindows::GetInnermost());
    mDriver.Key(kDAW_Key_Escape);
    EXPECT_EQ(answers, std::vector<int>{0});
    mDriver.UseWindow(*first);
    mDriver.Click(TAlert::kSecond);
    EXPECT_EQ(answers, (std::vector<int>{0, 1}));
    TAlert::Show(kAlert_Stop, std::string(5000, 'x') + "\xFF", std::string(100, '\n'),
                 {"One", "Two", "Three", "Four"}, hear);
    mDriver.UseWindow(*QLX_ModalWindows::GetInnermost());
    mDriver.Key(kDAW_Key_Escape);
    EXPECT_EQ(answers.back(), 2);
}

TEST_F(Dialogs, ATextIsAskedFor) {
    auto* dialog = new TTextEntryDialog;
    dialog->ITextEntryDialog("Rename", "New name of the track:", "Vox", 12);
    dialog->SetTextValidator([](const std::string& text) { return !text.empty(); });
    ASSERT_TRUE(dialog->OpenModal([this](std::uint32_t button) { mEndedWith = button; }));
    mDriver.UseWindow(*dialog);
    mDriver.WaitForIdle();
    mDriver.Key(kDAW_Key_Delete); // the whole text is selected
    EXPECT_FALSE(dialog->FindSubView(TTextEntryDialog::kOK, true)->IsEnabled());
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(mEndedWith, kNotYet);
    mDriver.Type("Lead Vocal Double");
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(mEndedWith, TTextEntryDialog::kOK);
    EXPECT_EQ(dialog->GetText(), "Lead Vocal D");
    dialog->Free();
}
