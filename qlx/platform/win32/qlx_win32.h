// The platform over Win32: native windows, their messages as QLX_Events, the system's clipboard,
// input methods and per-monitor scale, drawn by Direct2D or GDI.
#pragma once

#include <memory>

#include "qlx/platform/qlx_platform.h"

/// One a process at a time, on the thread that makes it. Scale factors come from the monitor that a
/// window is on, or from QLX_SCALE. Windows draw through the painter maker in use: "windows" unless
/// the host chooses another one.
class QLX_API QLX_Win32Platform : public QLX_Platform {
  public:
    /// Throws std::runtime_error with the reason when windows cannot be made.
    QLX_Win32Platform();
    ~QLX_Win32Platform() override;

    const char* GetName() const override { return "win32"; }
    QLX_EventLoop& GetEventLoop() override;
    QLX_WindowPortFactory& GetWindowFactory() override;
    QLX_KeyboardSource& GetKeyboard() override;
    QLX_Clipboard& GetClipboard() override;
    int GetDisplayScale() const override;
    QLX_FileDialogs* GetFileDialogs() override;

    struct State;

  private:
    std::unique_ptr<State> mState;
};
