// Dialogs under users and programs that do anything: random events to whatever window has the
// input, questions over questions, folders that change below, dialogs closed and freed at any time.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/ubuttons.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/ufiledialog.h"
#include "qlx/views/utextlist.h"
#include "qlx/views/uwindowmodal.h"
#include "tests/support/full_repaint.h"
#include "tests/support/seeds.h"

namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kKeys[] = {
    kDAW_Key_Up,   kDAW_Key_Down,   kDAW_Key_Home,   kDAW_Key_End,       kDAW_Key_Tab, kDAW_Key_Tab,
    kDAW_Key_Left, kDAW_Key_Return, kDAW_Key_Return, kDAW_Key_Backspace, ' ',          'a',
    'b',           kDAW_Key_Delete, kDAW_Key_Escape, kDAW_Key_Right};
constexpr const char* kNames[] = {"", "..", "a", "b.wav", "Audio Files", "new", "a/b", "x\xFF"};

bool IsOpen(const TWindow* window) {
    const auto& open = TWindow::GetWindows();
    return std::find(open.begin(), open.end(), window) != open.end();
}

/// One user before a window of a program that opens dialogs. Every question that was opened has to
/// be answered once, whatever became of it.
class User {
  public:
    User(fs::path folder, std::uint32_t seed) : mFolder(std::move(folder)), mRandom(seed) {
        MakeFolder();
        mWindow.IWindow("behind", VPoint(700, 500));
        mDriver.SetScale(kRepaintScales[seed % std::size(kRepaintScales)]);
        (new TEditText)->IView(&mWindow, VRect(10, 10, 300, 40));
        mDriver.OpenWindow(mWindow);
    }
    ~User() {
        FreeDialogs();
        mWindow.Close();
        std::error_code ignored;
        fs::remove_all(mFolder, ignored);
    }

    void Step() {
        UseWindowWithInput();
        try {
            Act();
        } catch (const QLX_TestDriverError&) { // a window that went between press and release
        }
        StayInFolder();
    }

    /// What holds at any time: input goes to some open window, and no question is answered twice.
    void Check() {
        TWindow* const innermost = QLX_ModalWindows::GetInnermost();
        ASSERT_TRUE(!innermost || IsOpen(innermost));
        ASSERT_FALSE(innermost && QLX_ModalWindows::IsBlocked(innermost));
        ASSERT_EQ(innermost != nullptr, QLX_ModalWindows::IsBlocked(&mWindow));
        for (const int answers : mAnswers)
            ASSERT_LE(answers, 1);
    }

    void CheckPicture() {
        UseWindowWithInput();
        ASSERT_EQ(RepaintComplaint(mDriver, "dialogmisuse"), "");
    }

    /// Everything is closed: each question has its one answer, and the window behind its input.
    void CheckEnd() {
        FreeDialogs();
        while (TWindow* const left = QLX_ModalWindows::GetInnermost())
            left->Close(); // alerts, which free themselves
        mDriver.UseWindow(mWindow);
        mDriver.WaitForIdle();
        EXPECT_EQ(TWindow::GetWindows().size(), 1u);
        EXPECT_FALSE(QLX_ModalWindows::IsBlocked(&mWindow));
        for (std::size_t i = 0; i < mAnswers.size(); ++i)
            EXPECT_EQ(mAnswers[i], 1) << "question " << i;
    }

  private:
    void Act() {
        switch (Pick(20)) {
        case 0:
        case 1:
            return OpenOne();
        case 2:
            return mDriver.Press(Place());
        case 3:
            return mDriver.Release();
        case 4:
            return mDriver.MoveTo(Place());
        case 5:
            return mDriver.DoubleClick(Place());
        case 6:
            return mDriver.Wheel(Place(), static_cast<int>(Pick(9)) - 4);
        case 7:
            return mDriver.Step(0.3);
        case 8:
            return ChangeFolder();
        case 9:
            return ClickSomeButton();
        case 10:
            return GiveName();
        case 11:
            return DoSomethingTo(PickDialog());
        default:
            return mDriver.Key(kKeys[Pick(std::size(kKeys))], Pick(6) == 0 ? Pick(16) : 0);
        }
    }

    std::uint32_t Pick(std::size_t count) { return static_cast<std::uint32_t>(mRandom() % count); }
    Cmn_Point<int> Place() {
        return {static_cast<int>(Pick(600)) - 20, static_cast<int>(Pick(460)) - 20};
    }

    void MakeFolder() {
        fs::remove_all(mFolder);
        fs::create_directories(mFolder / "Audio Files");
        for (const char* name : {"a.wav", "b.wav", "c.txt"})
            std::ofstream(mFolder / name) << "x";
    }

    /// Folders are made where the dialog is, and that is to be here.
    void StayInFolder() {
        for (TDialog* dialog : mDialogs) {
            auto* files = QLX_ObjectCast<TFileDialog>(dialog);
            if (files && files->GetFolder().GetPath().rfind(mFolder.string(), 0) != 0)
                files->GoTo(Sys_FileLoc(mFolder.string()));
        }
    }

    void ChangeFolder() {
        std::error_code ignored;
        switch (Pick(4)) {
        case 0:
            fs::remove_all(mFolder, ignored);
            return;
        case 1:
            fs::remove(mFolder / "b.wav", ignored);
            fs::create_directories(mFolder / "b.wav", ignored);
            return;
        default:
            return MakeFolder();
        }
    }

    void UseWindowWithInput() {
        TWindow* const innermost = QLX_ModalWindows::GetInnermost();
        mDriver.UseWindow(innermost ? *innermost : mWindow);
    }

    TDialog* NewDialog() {
        if (Pick(3) == 0) {
            auto* question = new TTextEntryDialog;
            question->ITextEntryDialog("title", "prompt", "text", 20);
            question->SetTextValidator(
                [](const std::string& text) { return text.size() % 2 == 0; });
            return question;
        }
        QLX_FileDialogSettings settings;
        settings.mKind = static_cast<EFileDialogKind>(Pick(3));
        settings.mFolder = Sys_FileLoc(mFolder.string());
        settings.mName = kNames[Pick(std::size(kNames))];
        settings.mMultiple = Pick(2) != 0;
        settings.mAllFiles = Pick(2) != 0;
        if (Pick(2) != 0)
            settings.mTypes = {{"Wave", "wav"}, {"Text", "txt"}};
        auto* dialog = new TFileDialog;
        dialog->IFileDialog(settings);
        return dialog;
    }

    void OpenOne() {
        if (mDialogs.size() >= 4)
            return;
        TDialog* const dialog = NewDialog();
        // Looks at more than the user's answer, and now and then frees the asker from inside.
        dialog->SetValidator([this, dialog](std::uint32_t) {
            if (Pick(16) == 0)
                FreeDialog(dialog);
            return Pick(3) != 0;
        });
        mDialogs.push_back(dialog);
        Ask(dialog);
    }

    void Ask(TDialog* dialog) {
        const std::size_t question = mAnswers.size();
        mAnswers.push_back(0);
        const bool opened = dialog->OpenModal([this, question, dialog](std::uint32_t) {
            ++mAnswers[question];
            if (Pick(8) == 0)
                FreeDialog(dialog);
        });
        if (!opened)
            mAnswers.pop_back();
    }

    TDialog* PickDialog() { return mDialogs.empty() ? nullptr : mDialogs[Pick(mDialogs.size())]; }

    void DoSomethingTo(TDialog* dialog) {
        if (!dialog)
            return;
        switch (Pick(6)) {
        case 0:
            return FreeDialog(dialog);
        case 1:
            return dialog->Close();
        case 2:
            return dialog->Deliver(QLX_MakeWindowEvent(kQLX_EventKind_CloseRequested));
        case 3:
            return Ask(dialog);
        default:
            if (auto* files = QLX_ObjectCast<TFileDialog>(dialog)) {
                files->GoTo(Sys_FileLoc((mFolder / (Pick(2) ? "Audio Files" : "gone")).string()));
                static_cast<void>(files->GetChosen());
            }
        }
    }

    void ClickSomeButton() {
        constexpr std::uint32_t kButtons[] = {TFileDialog::kConfirm,   TFileDialog::kUp,
                                              TFileDialog::kNewFolder, TFileDialog::kCancelButton,
                                              TAlert::kFirst,          TAlert::kSecond};
        const std::uint32_t button = kButtons[Pick(std::size(kButtons))];
        if (mDriver.GetWindow()->FindSubView(button, true))
            mDriver.Click(button);
    }

    void GiveName() {
        TWindow* const window = mDriver.GetWindow();
        if (auto* field = QLX_ObjectCast<TEditText>(window->FindSubView(TFileDialog::kName, true)))
            field->SetText(kNames[Pick(std::size(kNames))], /*redraw*/ true);
    }

    void FreeDialog(TDialog* dialog) {
        if (std::erase(mDialogs, dialog) != 0)
            dialog->Free();
    }
    void FreeDialogs() {
        while (!mDialogs.empty())
            FreeDialog(mDialogs.back());
    }

    fs::path mFolder;
    std::minstd_rand mRandom;
    QLX_TestDriver mDriver;
    TWindow mWindow;
    std::vector<TDialog*> mDialogs; // owned
    std::vector<int> mAnswers;      // by question, how many there were
};

} // namespace

TEST(DialogMisuse, EveryQuestionIsAnsweredOnceAndTheWindowBehindHasItsInputBack) {
    for (std::uint32_t seed = 1; seed <= SeedsToTry(12); ++seed) {
        User user(fs::path(QLX_TEST_OUTPUT) / "dialogmisuse", seed);
        for (int step = 0; step < 300; ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + " step " + std::to_string(step));
            user.Step();
            user.Check();
            if (step % 16 == 0)
                user.CheckPicture();
            if (HasFatalFailure())
                return;
        }
        user.CheckEnd();
    }
}
