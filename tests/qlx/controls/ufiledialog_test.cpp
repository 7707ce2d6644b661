// The file dialog that the framework draws, on real folders.
#include "qlx/views/ufiledialog.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/upopup.h"
#include "qlx/views/ustatictext.h"
#include "qlx/views/utextlist.h"
#include "qlx/views/uwindowmodal.h"

namespace {

namespace fs = std::filesystem;

class FileDialog : public ::testing::Test {
  public:
    void SetUp() override {
        const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
        mFolder = fs::path(QLX_TEST_OUTPUT) / (std::string("filedialog-") + test->name());
        fs::remove_all(mFolder);
        fs::create_directories(mFolder / "Audio Files");
        fs::create_directories(mFolder / u8"\u00DCbung");
        for (const char* name : {"b.wav", "A.wav", "notes.txt", ".hidden"})
            std::ofstream(mFolder / name) << "x";
        mSettings.mFolder = Sys_FileLoc(mFolder.string());
        mSettings.mTypes = {{"Wave", "wav"}, {"Text", "txt"}};
    }
    void TearDown() override {
        if (mDialog)
            mDialog->Free();
        fs::remove_all(mFolder);
    }
    void Open(EFileDialogKind kind) {
        mSettings.mKind = kind;
        mDialog = new TFileDialog;
        mDialog->IFileDialog(mSettings);
        ASSERT_TRUE(mDialog->OpenModal([this](std::uint32_t button) { mEndedWith = button; }));
        mDriver.UseWindow(*mDialog);
        mDriver.WaitForIdle();
    }
    std::vector<std::string> Rows() {
        auto& list = mDriver.FindAs<TTextList>(TFileDialog::kList);
        std::vector<std::string> rows;
        for (std::int64_t row = 0; row < list.GetRowCount(); ++row)
            rows.push_back(list.GetRowText(row));
        return rows;
    }
    std::string Chosen() {
        std::string names;
        for (const Sys_FileLoc& loc : mDialog->GetChosen())
            names += loc.GetName() + ";";
        return names;
    }

    using Strings = std::vector<std::string>;
    QLX_TestDriver mDriver;
    fs::path mFolder;
    QLX_FileDialogSettings mSettings;
    TFileDialog* mDialog = nullptr;
    std::uint32_t mEndedWith = 0xFFFFFFFF;
};

} // namespace

TEST_F(FileDialog, FoldersComeFirstAndTheTypeChoosesTheFiles) {
    Open(EFileDialogKind::kOpen);
    EXPECT_EQ(Rows(), (Strings{"Audio Files/",
                               "\xC3\x9C"
                               "bung/",
                               "A.wav", "b.wav"}));
    ASSERT_TRUE(mDriver.Find(TFileDialog::kType).BecomeTarget());
    mDriver.Key(kDAW_Key_Down);
    EXPECT_EQ(Rows(), (Strings{"Audio Files/",
                               "\xC3\x9C"
                               "bung/",
                               "notes.txt"}));
}

TEST_F(FileDialog, KeysGoInAndOutOfFoldersAndOpenAFile) {
    Open(EFileDialogKind::kOpen);
    mDriver.Key(kDAW_Key_Return); // into the first folder
    EXPECT_EQ(mDialog->GetFolder().GetName(), "Audio Files");
    EXPECT_TRUE(Rows().empty());
    mDriver.Key(kDAW_Key_Return); // nothing there to open
    EXPECT_TRUE(mDialog->IsOpen());
    mDriver.Key(kDAW_Key_Backspace);
    mDriver.Type("b");
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(mEndedWith, TFileDialog::kConfirm);
    EXPECT_EQ(Chosen(), "b.wav;");
}

TEST_F(FileDialog, SeveralFilesAreOpenedAtOnce) {
    mSettings.mMultiple = true;
    Open(EFileDialogKind::kOpen);
    mDriver.Chord("Ctrl+A");
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(mEndedWith, TFileDialog::kConfirm);
    EXPECT_EQ(Chosen(), "A.wav;b.wav;");
}

TEST_F(FileDialog, SavingAddsTheExtensionAndAsksBeforeItReplaces) {
    mSettings.mName = "mix";
    Open(EFileDialogKind::kSave);
    mDriver.Type("b");
    EXPECT_EQ(Chosen(), "b.wav;");
    mDriver.Key(kDAW_Key_Return);
    TWindow* question = QLX_ModalWindows::GetInnermost();
    ASSERT_NE(question, mDialog);
    mDriver.UseWindow(*question);
    mDriver.Key(kDAW_Key_Escape);
    EXPECT_TRUE(mDialog->IsOpen());
    mDriver.UseWindow(*mDialog);
    mDriver.Key(kDAW_Key_Return);
    mDriver.UseWindow(*QLX_ModalWindows::GetInnermost());
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(mEndedWith, TFileDialog::kConfirm);
}

TEST_F(FileDialog, AnAgreementToReplaceIsForOneFileAndOneAnswer) {
    mSettings.mName = "b";
    Open(EFileDialogKind::kSave);
    std::ofstream(mFolder / "Audio Files" / "b.wav") << "x";
    mDialog->SetValidator([](std::uint32_t) { return false; });
    const auto agree = [this] {
        mDriver.Key(kDAW_Key_Return);
        TWindow* const question = QLX_ModalWindows::GetInnermost();
        ASSERT_NE(question, mDialog);
        mDriver.UseWindow(*question);
        mDriver.Key(kDAW_Key_Return);
        mDriver.UseWindow(*mDialog);
        EXPECT_TRUE(mDialog->IsModal()) << "the program would not have it";
    };
    agree();
    agree(); // asked again, as the file may have become another
    mDialog->GoTo(Sys_FileLoc((mFolder / "Audio Files").string()));
    agree();
}

TEST_F(FileDialog, MayBeFreedWhileItAsks) {
    for (const std::uint32_t asking : {TFileDialog::kConfirm, TFileDialog::kNewFolder}) {
        mSettings.mName = "b";
        mSettings.mTypes = {{"Wave", "wav"}};
        Open(EFileDialogKind::kSave);
        mDriver.Click(asking);
        TWindow* const question = QLX_ModalWindows::GetInnermost();
        ASSERT_NE(question, mDialog);
        mDialog->Free();
        mDialog = nullptr;
        mDriver.UseWindow(*question);
        mDriver.Type("Takes");
        mDriver.Key(kDAW_Key_Return);
        EXPECT_EQ(QLX_ModalWindows::GetInnermost(), nullptr);
        EXPECT_EQ(mEndedWith, kDialog_Closed);
    }
}

TEST_F(FileDialog, NamesThatLeadElsewhereAreRefused) {
    Open(EFileDialogKind::kSave);
    for (const char* name : {"", "..", "a/b", "a\\b"}) {
        mDriver.FindAs<TEditText>(TFileDialog::kName).SetText(name, /*redraw*/ true);
        mSettings.mTypes.clear();
        mDriver.Key(kDAW_Key_Return);
        EXPECT_TRUE(mDialog->IsOpen()) << name;
        EXPECT_EQ(QLX_ModalWindows::GetInnermost(), mDialog) << name;
    }
}

TEST_F(FileDialog, AFolderThatIsGoneIsShownEmptyWithTheReason) {
    Open(EFileDialogKind::kOpen);
    mDialog->GoTo(Sys_FileLoc((mFolder / "no such folder").string()));
    EXPECT_TRUE(Rows().empty());
    const std::string shown = mDriver.FindAs<TStaticText>(TFileDialog::kFolder).GetText();
    EXPECT_NE(shown.find("no such folder: "), std::string::npos) << shown;
    mDriver.Click(TFileDialog::kUp);
    EXPECT_EQ(Rows().size(), 4u);
}

TEST_F(FileDialog, AFolderIsMadeAndChosen) {
    Open(EFileDialogKind::kFolder);
    mDriver.Click(TFileDialog::kNewFolder);
    mDriver.UseWindow(*QLX_ModalWindows::GetInnermost());
    mDriver.WaitForIdle();
    mDriver.Type("Takes");
    mDriver.Key(kDAW_Key_Return);
    EXPECT_TRUE(fs::is_directory(mFolder / "Takes"));
    mDriver.UseWindow(*mDialog);
    mDriver.Key(kDAW_Key_Return);
    EXPECT_EQ(Chosen(), "Takes;");
    mDialog->MakeFolder("."); // says why not
    EXPECT_NE(QLX_ModalWindows::GetInnermost(), nullptr);
    QLX_ModalWindows::GetInnermost()->Close();
}

TEST_F(FileDialog, ThePlatformsDialogsStandInWhereThereAreSome) {
    struct Native : QLX_FileDialogs {
        bool Run(const QLX_FileDialogSettings&, std::vector<Sys_FileLoc>& chosen) override {
            chosen = {Sys_FileLoc("/native")};
            return true;
        }
    } native;
    QLX_FileDialogs* before = QLX_FileDialogs::Install(&native);
    std::vector<Sys_FileLoc> chosen;
    EXPECT_TRUE(QLX_FileDialogs::Get().Run(mSettings, chosen));
    EXPECT_EQ(chosen.front().GetPath(), "/native");
    QLX_FileDialogs::Install(before);
    QLX_EventLoop::Get()->StartTimer(0.1, 0, [this] {
        mDriver.UseWindow(*QLX_ModalWindows::GetInnermost());
        mDriver.Key(kDAW_Key_Escape);
    });
    EXPECT_FALSE(QLX_FileDialogs::Get().Run(mSettings, chosen));
    EXPECT_EQ(chosen.size(), 1u);
}
