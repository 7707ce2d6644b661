// The system's file dialogs: what they are asked, what comes back, that the loop goes on while one
// is open, and the framework's own where there is none.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/imaging/win32/qlx_winfonts.h"
#include "qlx/platform/win32/qlx_win32.h"
#include "qlx/platform/win32/qlx_win32filedialogs.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/qlx_filedialog.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/udialog.h"
#include "qlx/views/ufiledialog.h"
#include "qlx/views/uwindowmodal.h"

#include <shobjidl.h>

namespace {

const std::string kName = "\xC3\x9C"
                          "bung \xE6\x97\xA5.wav"; // beyond any code page

struct Asked {
    std::wstring title, name, extension, types;
    DWORD options = 0;
    bool save = false;
    bool folder = false;
    int turns = 0; // of the platform's loop while the dialog was open
    bool enabled = true;
};
Asked* sAsked = nullptr;
HRESULT sAnswer = S_OK;
HWND sWatched = nullptr;

/// A dialog that writes down what it is told. Two files stand for what the user chooses.
class RecordingDialog final : public IFileOpenDialog {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool isOurs = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IModalWindow) ||
                            IsEqualIID(id, IID_IFileDialog) ||
                            (IsEqualIID(id, IID_IFileOpenDialog) && !sAsked->save);
        *object = isOurs ? static_cast<IFileOpenDialog*>(this) : nullptr;
        if (isOurs)
            AddRef();
        return isOurs ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++mCount; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --mCount;
        if (left == 0)
            delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE Show(HWND) override {
        // The message loop of the dialog's own, until it has turned often enough.
        MSG message;
        for (int i = 0; i < 400 && sAsked->turns < 3 && GetMessageW(&message, nullptr, 0, 0); ++i)
            DispatchMessageW(&message);
        sAsked->enabled = !sWatched || IsWindowEnabled(sWatched);
        return sAnswer;
    }
    HRESULT STDMETHODCALLTYPE SetFileTypes(UINT count, const COMDLG_FILTERSPEC* types) override {
        for (UINT i = 0; i < count; ++i)
            sAsked->types += std::wstring(types[i].pszName) + L"=" + types[i].pszSpec + L";";
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetOptions(FILEOPENDIALOGOPTIONS options) override {
        sAsked->options = options;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetOptions(FILEOPENDIALOGOPTIONS* options) override {
        *options = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetFolder(IShellItem* folder) override {
        sAsked->folder = folder != nullptr;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetFileName(LPCWSTR name) override {
        sAsked->name = name;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetTitle(LPCWSTR title) override {
        sAsked->title = title;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetDefaultExtension(LPCWSTR extension) override {
        sAsked->extension = extension;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetResult(IShellItem** item) override {
        return SHCreateItemFromParsingName(QLX_ToWide(sFile).c_str(), nullptr, IID_IShellItem,
                                           reinterpret_cast<void**>(item));
    }
    HRESULT STDMETHODCALLTYPE SetFileTypeIndex(UINT) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetFileTypeIndex(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Advise(IFileDialogEvents*, DWORD*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Unadvise(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetDefaultFolder(IShellItem*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetFolder(IShellItem**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetCurrentSelection(IShellItem**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetFileName(LPWSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetOkButtonLabel(LPCWSTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetFileNameLabel(LPCWSTR) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE AddPlace(IShellItem*, FDAP) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Close(HRESULT) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetClientGuid(REFGUID) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE ClearClientData() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE SetFilter(IShellItemFilter*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetResults(IShellItemArray**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSelectedItems(IShellItemArray**) override { return E_NOTIMPL; }

    static std::string sFile;

  private:
    ~RecordingDialog() = default;
    ULONG mCount = 1;
};
std::string RecordingDialog::sFile;

class Win32FileDialogs : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(QLX_PainterFactory::Choose("gdi"));
        mApplication = new TApplication;
        mPlatform = std::make_unique<QLX_Win32Platform>();
        mPlatform->Install();
        mFolder = std::filesystem::temp_directory_path() / "qlx-file-dialogs";
        std::error_code error;
        std::filesystem::remove_all(mFolder, error);
        std::filesystem::create_directories(mFolder);
        mSettings.mFolder = Sys_FileLoc(QLX_FromWide(mFolder.wstring()));
        RecordingDialog::sFile = QLX_FromWide((mFolder / QLX_ToWide(kName)).wstring());
        Sys_File(Sys_FileLoc(RecordingDialog::sFile), Sys_FileMode::Create).Write("x");
        sAsked = &mAsked;
        sAnswer = S_OK;
        sWatched = nullptr;
    }
    void TearDown() override {
        mPlatform->Uninstall();
        mPlatform.reset();
        mApplication->Free();
        QLX_PainterFactory::Choose("windows");
        std::error_code error;
        std::filesystem::remove_all(mFolder, error);
    }
    QLX_Win32FileDialogs& Dialogs() {
        return static_cast<QLX_Win32FileDialogs&>(QLX_FileDialogs::Get());
    }
    bool RunRecorded() {
        Dialogs().SetMaker([](bool save, HRESULT& result) -> IFileDialog* {
            sAsked->save = save;
            result = S_OK;
            return new RecordingDialog;
        });
        QLX_EventLoop& loop = mPlatform->GetEventLoop();
        const auto timer = loop.StartTimer(0.01, 0.01, [this] { ++mAsked.turns; });
        const bool chosen = Dialogs().Run(mSettings, mChosen);
        loop.StopTimer(timer);
        Dialogs().SetMaker(nullptr);
        return chosen;
    }

    TApplication* mApplication = nullptr;
    std::unique_ptr<QLX_Win32Platform> mPlatform;
    std::filesystem::path mFolder;
    QLX_FileDialogSettings mSettings;
    std::vector<Sys_FileLoc> mChosen;
    Asked mAsked;
};

} // namespace

TEST_F(Win32FileDialogs, AreAskedForWhatTheHostWants) {
    mSettings.mKind = EFileDialogKind::kSave;
    mSettings.mTitle = "Sichern \xC3\xBC";
    mSettings.mName = kName;
    mSettings.mTypes = {Sys_FileType("Sound", "wav"), Sys_FileType("Session", "vses")};
    mSettings.mAllFiles = true;
    EXPECT_TRUE(RunRecorded());
    EXPECT_TRUE(mAsked.save);
    EXPECT_TRUE(mAsked.folder);
    EXPECT_EQ(QLX_FromWide(mAsked.title), mSettings.mTitle);
    EXPECT_EQ(QLX_FromWide(mAsked.name), kName);
    EXPECT_EQ(QLX_FromWide(mAsked.extension), "wav");
    EXPECT_EQ(QLX_FromWide(mAsked.types), "Sound=*.wav;Session=*.vses;All files=*.*;");
    EXPECT_TRUE(mAsked.options & FOS_OVERWRITEPROMPT);
    EXPECT_TRUE(mAsked.options & FOS_FORCEFILESYSTEM);
    EXPECT_TRUE(mAsked.options & FOS_NOCHANGEDIR);
    EXPECT_FALSE(mAsked.options & (FOS_PICKFOLDERS | FOS_ALLOWMULTISELECT | FOS_FILEMUSTEXIST));
    ASSERT_EQ(mChosen.size(), 1u);
    EXPECT_EQ(mChosen.front().GetName(), kName);
    EXPECT_TRUE(mChosen.front().IsFile());
    EXPECT_GE(mAsked.turns, 3) << "timers fire while it is open";

    mAsked = {};
    mSettings = {};
    mSettings.mMultiple = true;
    EXPECT_TRUE(RunRecorded());
    EXPECT_FALSE(mAsked.save);
    EXPECT_TRUE(mAsked.types.empty());
    EXPECT_TRUE(mAsked.options & FOS_ALLOWMULTISELECT);
    EXPECT_TRUE(mAsked.options & FOS_FILEMUSTEXIST);
    EXPECT_FALSE(mAsked.options & FOS_OVERWRITEPROMPT);

    mAsked = {};
    mSettings = {};
    mSettings.mKind = EFileDialogKind::kFolder;
    mSettings.mTypes = {Sys_FileType("Sound", "wav")};
    EXPECT_TRUE(RunRecorded());
    EXPECT_TRUE(mAsked.options & FOS_PICKFOLDERS);
    EXPECT_TRUE(mAsked.types.empty()) << "folders have no type";
}

TEST_F(Win32FileDialogs, GivingUpLeavesWhatWasChosenBefore) {
    mChosen = {Sys_FileLoc("before")};
    sAnswer = HRESULT_FROM_WIN32(ERROR_CANCELLED);
    EXPECT_FALSE(RunRecorded());
    ASSERT_EQ(mChosen.size(), 1u);
    EXPECT_EQ(mChosen.front().GetPath(), "before");
}

TEST_F(Win32FileDialogs, WindowsTakeNoInputMeanwhile) {
    TWindow window;
    window.IWindow("behind", VPoint(200, 100));
    ASSERT_TRUE(window.Open());
    sWatched = static_cast<HWND>(window.GetPort()->GetNativeHandle());
    EXPECT_TRUE(RunRecorded());
    EXPECT_FALSE(mAsked.enabled);
    EXPECT_TRUE(IsWindowEnabled(sWatched));
    window.Close();
}

TEST_F(Win32FileDialogs, WhereTheSystemHasNoneTheFrameworksIsShown) {
    for (const bool fails : {true, false}) { // to be made, or to be shown
        sAnswer = E_FAIL;
        Dialogs().SetMaker(fails ? [](bool, HRESULT& result) -> IFileDialog* {
            result = REGDB_E_CLASSNOTREG;
            return nullptr;
        } : [](bool save, HRESULT& result) -> IFileDialog* {
            sAsked->save = save;
            sAsked->turns = 3;
            result = S_OK;
            return new RecordingDialog;
        });
        bool seen = false;
        mPlatform->GetEventLoop().StartTimer(0.05, 0, [&] {
            TWindow* dialog = QLX_ModalWindows::GetInnermost();
            seen = QLX_ObjectCast<TFileDialog>(static_cast<TObject*>(dialog)) != nullptr;
            if (dialog)
                dialog->Close();
        });
        EXPECT_FALSE(Dialogs().Run(mSettings, mChosen));
        EXPECT_TRUE(seen) << fails;
    }
    Dialogs().SetMaker(nullptr);
}

namespace {

// Gives up whatever dialog this thread has open.
BOOL CALLBACK CancelDialog(HWND window, LPARAM found) {
    wchar_t name[16] = {};
    GetClassNameW(window, name, 15);
    if (std::wstring(name) == L"#32770") {
        *reinterpret_cast<bool*>(found) = true;
        PostMessageW(window, WM_COMMAND, IDCANCEL, 0);
    }
    return TRUE;
}

} // namespace

TEST_F(Win32FileDialogs, TheSystemsOpensAndIsGivenUp) {
    for (const EFileDialogKind kind : {EFileDialogKind::kOpen, EFileDialogKind::kSave}) {
        mSettings.mKind = kind;
        mSettings.mTitle = "System's own";
        mSettings.mTypes = {Sys_FileType("Sound", "wav")};
        bool found = false;
        QLX_EventLoop& loop = mPlatform->GetEventLoop();
        const auto timer = loop.StartTimer(0.3, 0.1, [&] {
            EnumThreadWindows(GetCurrentThreadId(), &CancelDialog,
                              reinterpret_cast<LPARAM>(&found));
            if (!found && QLX_ModalWindows::GetInnermost()) // the fallback
                QLX_ModalWindows::GetInnermost()->Close();
        });
        EXPECT_FALSE(Dialogs().Run(mSettings, mChosen));
        loop.StopTimer(timer);
        EXPECT_TRUE(found) << static_cast<int>(kind);
    }
}
