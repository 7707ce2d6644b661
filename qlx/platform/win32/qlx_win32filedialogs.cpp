#include "qlx/platform/win32/qlx_win32filedialogs.h"

#include <string>
#include <utility>
#include <vector>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/imaging/win32/qlx_winfonts.h"
#include "qlx/platform/win32/qlx_win32state.h"
#include "qlx/platform/win32/qlx_win32window.h"
#include "qlx/views/udialog.h"

#include <shobjidl.h>

namespace {

constexpr UINT kTurnMilliseconds = 10;

/// A counted object of the system, released at the end.
template <class T>
class Held {
  public:
    Held() = default;
    explicit Held(T* object) : mObject(object) {}
    ~Held() {
        if (mObject)
            mObject->Release();
    }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    [[nodiscard]] T* operator->() const { return mObject; }
    [[nodiscard]] T* Get() const { return mObject; }
    [[nodiscard]] T** Out() { return &mObject; }
    [[nodiscard]] void** OutVoid() { return reinterpret_cast<void**>(&mObject); }
    explicit operator bool() const { return mObject != nullptr; }

  private:
    T* mObject = nullptr;
};

/// COM for as long as a dialog is asked for; a host may have begun it already, in its own way.
class StCOM {
  public:
    StCOM() : mResult(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ~StCOM() {
        if (SUCCEEDED(mResult))
            CoUninitialize();
    }
    StCOM(const StCOM&) = delete;
    StCOM& operator=(const StCOM&) = delete;

  private:
    HRESULT mResult;
};

/// The platform inside the dialog's own message loop: its windows take no input, its loop turns.
class StInside {
  public:
    explicit StInside(QLX_Win32Platform::State& platform) {
        sPlatform = &platform;
        for (QLX_Win32Window* window : platform.windows) {
            const HWND handle = static_cast<HWND>(window->GetNativeHandle());
            // A window that another dialog has disabled stays so.
            if (handle && IsWindowEnabled(handle)) {
                EnableWindow(handle, FALSE);
                mDisabled.push_back(handle);
            }
        }
        mTimer = SetTimer(nullptr, 0, kTurnMilliseconds, &StInside::Turn);
    }
    ~StInside() {
        KillTimer(nullptr, mTimer);
        sPlatform = mBefore;
        Enable();
    }
    StInside(const StInside&) = delete;
    StInside& operator=(const StInside&) = delete;

    /// Before the dialog goes away, so that the system activates its owner and not another program.
    void Enable() {
        for (const HWND handle : std::exchange(mDisabled, {}))
            if (IsWindow(handle))
                EnableWindow(handle, TRUE);
    }

  private:
    static void CALLBACK Turn(HWND, UINT, UINT_PTR, DWORD) {
        if (sPlatform)
            sPlatform->loop.TurnInside();
    }
    static QLX_Win32Platform::State* sPlatform;

    QLX_Win32Platform::State* mBefore = sPlatform;
    std::vector<HWND> mDisabled;
    UINT_PTR mTimer = 0;
};

QLX_Win32Platform::State* StInside::sPlatform = nullptr;

IFileDialog* MakeSystems(bool save, HRESULT& result) {
    IFileDialog* dialog = nullptr;
    result =
        CoCreateInstance(save ? CLSID_FileSaveDialog : CLSID_FileOpenDialog, nullptr,
                         CLSCTX_INPROC_SERVER, IID_IFileDialog, reinterpret_cast<void**>(&dialog));
    return SUCCEEDED(result) ? dialog : nullptr;
}

/// The types as the system wants them: names and patterns that outlive the call.
void SetTypes(IFileDialog& dialog, const QLX_FileDialogSettings& settings) {
    std::vector<std::wstring> texts;
    for (const Sys_FileType& type : settings.mTypes) {
        texts.push_back(QLX_ToWide(type.GetName()));
        texts.push_back(QLX_ToWide("*." + type.GetExtension()));
    }
    if (settings.mAllFiles && !texts.empty()) {
        texts.push_back(QLX_ToWide(QLX_DialogTexts::Get().mAllFiles));
        texts.emplace_back(L"*.*");
    }
    std::vector<COMDLG_FILTERSPEC> types;
    for (std::size_t i = 0; i < texts.size(); i += 2)
        types.push_back({texts[i].c_str(), texts[i + 1].c_str()});
    if (types.empty())
        return;
    dialog.SetFileTypes(static_cast<UINT>(types.size()), types.data());
    dialog.SetFileTypeIndex(1); // counted from 1
    if (!settings.mTypes.empty())
        dialog.SetDefaultExtension(QLX_ToWide(settings.mTypes.front().GetExtension()).c_str());
}

void SetFolder(IFileDialog& dialog, const Sys_FileLoc& folder) {
    if (folder.IsEmpty() || !folder.IsFolder())
        return;
    std::wstring path = QLX_ToWide(folder.GetPath());
    for (wchar_t& unit : path)
        if (unit == L'/')
            unit = L'\\';
    Held<IShellItem> item;
    if (SUCCEEDED(
            SHCreateItemFromParsingName(path.c_str(), nullptr, IID_IShellItem, item.OutVoid())))
        dialog.SetFolder(item.Get());
}

void Prepare(IFileDialog& dialog, const QLX_FileDialogSettings& settings) {
    DWORD options = 0;
    dialog.GetOptions(&options);
    options |= FOS_FORCEFILESYSTEM | FOS_NOCHANGEDIR | FOS_PATHMUSTEXIST;
    if (settings.mKind == EFileDialogKind::kSave)
        options |= FOS_OVERWRITEPROMPT;
    else
        options |= FOS_FILEMUSTEXIST;
    if (settings.mKind == EFileDialogKind::kFolder)
        options |= FOS_PICKFOLDERS;
    if (settings.mKind == EFileDialogKind::kOpen && settings.mMultiple)
        options |= FOS_ALLOWMULTISELECT;
    dialog.SetOptions(options);
    if (!settings.mTitle.empty())
        dialog.SetTitle(QLX_ToWide(settings.mTitle).c_str());
    if (settings.mKind != EFileDialogKind::kFolder)
        SetTypes(dialog, settings);
    if (settings.mKind == EFileDialogKind::kSave && !settings.mName.empty())
        dialog.SetFileName(QLX_ToWide(settings.mName).c_str());
    SetFolder(dialog, settings.mFolder);
}

bool AddPath(IShellItem* item, std::vector<Sys_FileLoc>& chosen) {
    wchar_t* path = nullptr;
    if (!item || FAILED(item->GetDisplayName(SIGDN_FILESYSPATH, &path)))
        return false;
    chosen.emplace_back(QLX_FromWide(path));
    CoTaskMemFree(path);
    return true;
}

/// What was chosen: several files are an open dialog's only.
std::vector<Sys_FileLoc> ResultsOf(IFileDialog& dialog, bool multiple) {
    std::vector<Sys_FileLoc> chosen;
    Held<IFileOpenDialog> open;
    Held<IShellItemArray> items;
    if (multiple && SUCCEEDED(dialog.QueryInterface(IID_IFileOpenDialog, open.OutVoid())) &&
        SUCCEEDED(open->GetResults(items.Out()))) {
        DWORD count = 0;
        items->GetCount(&count);
        for (DWORD i = 0; i < count; ++i) {
            Held<IShellItem> item;
            if (SUCCEEDED(items->GetItemAt(i, item.Out())))
                AddPath(item.Get(), chosen);
        }
        return chosen;
    }
    Held<IShellItem> item;
    if (SUCCEEDED(dialog.GetResult(item.Out())))
        AddPath(item.Get(), chosen);
    return chosen;
}

/// The dialog belongs to the window that the user works in.
HWND OwnerOf(const QLX_Win32Platform::State& platform) {
    const HWND active = GetActiveWindow();
    for (QLX_Win32Window* window : platform.windows)
        if (active && window->GetNativeHandle() == active)
            return active;
    return nullptr;
}

} // namespace

QLX_Win32FileDialogs::~QLX_Win32FileDialogs() = default;

QLX_Win32FileDialogs::Maker QLX_Win32FileDialogs::SetMaker(Maker maker) {
    return std::exchange(mMaker, maker);
}

bool QLX_Win32FileDialogs::Run(const QLX_FileDialogSettings& settings,
                               std::vector<Sys_FileLoc>& chosen) {
    const StCOM com;
    HRESULT result = S_OK;
    const Held<IFileDialog> dialog(
        (mMaker ? mMaker : &MakeSystems)(settings.mKind == EFileDialogKind::kSave, result));
    if (dialog) {
        Prepare(*dialog.Get(), settings);
        const HWND owner = OwnerOf(mPlatform);
        StInside inside(mPlatform);
        result = dialog->Show(owner);
        inside.Enable();
        if (owner)
            SetActiveWindow(owner);
    }
    mPlatform.ThrowKept();
    if (result == HRESULT_FROM_WIN32(ERROR_CANCELLED))
        return false;
    if (!dialog || FAILED(result)) {
        Cmn_TraceWrite("no file dialog of the system's (error 0x%08lX)",
                       static_cast<unsigned long>(result));
        return GetDrawn().Run(settings, chosen);
    }
    std::vector<Sys_FileLoc> results = ResultsOf(*dialog.Get(), settings.mMultiple);
    if (results.empty())
        return false;
    chosen = std::move(results);
    return true;
}
