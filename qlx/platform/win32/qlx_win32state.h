// What the Win32 platform's parts share. For the Win32 platform's own source files and its tests.
#pragma once

#include <array>
#include <exception>
#include <string>
#include <vector>

#include "qlx/imaging/win32/qlx_windows.h"
#include "qlx/platform/win32/qlx_win32.h"
#include "qlx/platform/win32/qlx_win32filedialogs.h"
#include "qlx/views/qlx_clipboard.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/qlx_windowport.h"

class QLX_Win32Window;

class QLX_Win32Loop : public QLX_EventLoop {
  public:
    explicit QLX_Win32Loop(QLX_Win32Platform::State& platform) : mPlatform(platform) {}
    ~QLX_Win32Loop() override;
    /// A turn from inside a loop of the system's own (moving, sizing, menus): timers, posted calls
    /// and drawing go on, the messages stay that loop's.
    void TurnInside();

  protected:
    bool DispatchNative() override;
    bool WaitNative(double seconds) override;
    void WakeNative() override;

  private:
    QLX_Win32Platform::State& mPlatform;
    bool mInside = false;
};

class QLX_Win32Factory : public QLX_WindowPortFactory {
  public:
    explicit QLX_Win32Factory(QLX_Win32Platform::State& platform) : mPlatform(platform) {}
    ~QLX_Win32Factory() override;
    std::unique_ptr<QLX_WindowPort> MakePort(const QLX_WindowSettings& settings,
                                             QLX_WindowPortClient* client) override;

  private:
    QLX_Win32Platform::State& mPlatform;
};

class QLX_Win32Keyboard : public QLX_KeyboardSource {
  public:
    ~QLX_Win32Keyboard() override;
    std::uint32_t GetModifierBits() const override;
    bool IsKeyDown(DAW_EKeyCode key) const override;
    std::uint32_t GetMouseButtons() const override;
};

class QLX_Win32Clipboard : public QLX_Clipboard {
  public:
    explicit QLX_Win32Clipboard(QLX_Win32Platform::State& platform) : mPlatform(platform) {}
    ~QLX_Win32Clipboard() override;
    bool GetText(std::string& text) override;
    void SetText(const std::string& text) override;

  private:
    [[nodiscard]] bool Open() const;
    QLX_Win32Platform::State& mPlatform;
};

/// Where a window's composed text comes from: the system's input methods, or a test.
class QLX_API QLX_CompositionSource {
  public:
    virtual ~QLX_CompositionSource();
    /// Part of the composition (GCS_COMPSTR, GCS_RESULTSTR); false when there is none. caret is in
    /// UTF-16 units.
    virtual bool GetText(HWND window, DWORD part, std::wstring& text, int& caret) = 0;
    [[nodiscard]] static QLX_CompositionSource& Get();
    /// Not owned; null brings back the system's.
    static void Install(QLX_CompositionSource* source);
};

struct QLX_Win32Platform::State {
    State();
    ~State();

    /// Keeps what was thrown in a window procedure until the loop can throw it on: nothing may pass
    /// through the system's own frames.
    void KeepException() noexcept;
    void ThrowKept();

    QLX_Win32Loop loop;
    QLX_Win32Factory factory;
    QLX_Win32Keyboard keyboard;
    QLX_Win32Clipboard clipboard;
    QLX_Win32FileDialogs fileDialogs;
    std::vector<QLX_Win32Window*> windows; // not owned
    HWND waker = nullptr;                  // owned; a window for messages only
    DWORD thread = 0;
    std::exception_ptr thrown;
    bool active = false; // whether one of the process's windows has the keyboard
};
