// The system's own file dialogs. For the Win32 platform's own source files and its tests.
#pragma once

#include "qlx/imaging/win32/qlx_windows.h"
#include "qlx/platform/win32/qlx_win32.h"
#include "qlx/views/qlx_filedialog.h"

struct IFileDialog;

/// Shows IFileOpenDialog and IFileSaveDialog. While one is open the platform's windows take no
/// input, and its loop goes on: timers fire, windows draw. Where the system gives no such dialog
/// the one that the framework draws is shown instead.
class QLX_API QLX_Win32FileDialogs : public QLX_FileDialogs {
  public:
    /// Makes a dialog to open or to save; null with the reason in result. Tests bring their own.
    using Maker = IFileDialog* (*)(bool save, HRESULT& result);

    explicit QLX_Win32FileDialogs(QLX_Win32Platform::State& platform) : mPlatform(platform) {}
    ~QLX_Win32FileDialogs() override;
    bool Run(const QLX_FileDialogSettings& settings, std::vector<Sys_FileLoc>& chosen) override;
    /// Null brings back the system's. Returns the previous one, null for the system's.
    Maker SetMaker(Maker maker);

  private:
    QLX_Win32Platform::State& mPlatform;
    Maker mMaker = nullptr;
};
