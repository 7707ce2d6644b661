// A window of the Win32 platform. For the Win32 platform's own source files.
#pragma once

#include <memory>
#include <vector>

#include "qlx/imaging/qlx_devicescale.h"
#include "qlx/imaging/qlx_painter.h"
#include "qlx/platform/win32/qlx_win32state.h"
#include "qlx/views/qlx_event.h"
#include "qlx/views/uview.h"

class QLX_Win32Window : public QLX_WindowPort {
  public:
    QLX_Win32Window(QLX_Win32Platform::State& platform, const QLX_WindowSettings& settings,
                    QLX_WindowPortClient* client);
    ~QLX_Win32Window() override;
    [[nodiscard]] bool IsMade() const { return mWindow != nullptr; }

    Cmn_Point<int> GetSize() const override;
    void SetSize(Cmn_Point<int> size) override;
    void SetMinimumSize(Cmn_Point<int> size) override;
    Cmn_Point<int> GetPlace() const override;
    void SetPlace(Cmn_Point<int> place) override;
    int GetScale() const override { return mScale.Get120ths(); }
    void SetTitle(const std::string& title) override;
    void Show(bool shown) override;
    void Activate() override;
    const PainterPtr& GetPainter() override;
    void Present(const std::vector<Cmn_Rect<int>>& rects) override;
    void SetCursor(ECursor cursor) override;
    void SetCapture(bool capture) override;
    void SetTextInput(const Cmn_Rect<int>* caret) override;
    void* GetNativeHandle() const override { return mWindow; }

    /// The window class, registered on first use and for the life of the process.
    [[nodiscard]] static bool RegisterClasses();
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

  private:
    struct Message {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
    };

    /// Answers a message; false when the system's own answer is wanted. The window may be gone
    /// afterwards.
    [[nodiscard]] bool Answer(const Message& message, LRESULT& result);
    [[nodiscard]] bool AnswerKey(const Message& message, LRESULT& result);
    [[nodiscard]] bool AnswerMouse(const Message& message, LRESULT& result);
    [[nodiscard]] bool AnswerWindow(const Message& message, LRESULT& result);
    [[nodiscard]] bool AnswerComposition(const Message& message, LRESULT& result);
    void KeyDown(const Message& message);
    void Character(const Message& message);
    void Wheel(const Message& message, bool sideways);
    void Button(const Message& message, std::uint32_t kind, int button);
    void PressOutside(const Message& message);
    void Paint();
    void ScaleChanged(const Message& message);
    void StartInsideTurns();
    void StopInsideTurns();

    /// Gives an event to the client with the message that made it.
    void Deliver(const QLX_EventRef& event, const Message& message);
    [[nodiscard]] Cmn_Point<int> ToLogical(int x, int y) const;
    [[nodiscard]] Cmn_Point<int> ToDevice(Cmn_Point<int> point) const;
    /// The outer size for contents of this many pixels.
    [[nodiscard]] SIZE OuterSize(Cmn_Point<int> contents, POINT* corner) const;

    QLX_Win32Platform::State& mPlatform;
    QLX_WindowPortClient* mClient; // not owned
    HWND mWindow = nullptr;        // owned
    DWORD mStyle = 0;
    DWORD mExtendedStyle = 0;
    bool mNeverActive = false;
    QLX_DeviceScale mScale;
    PainterPtr mPainter;
    bool mSurfaceIsStale = true;
    Cmn_Point<int> mMinimum; // logical
    ECursor mCursor = kCursor_Arrow;
    bool mCaptured = false;
    bool mTracksLeave = false;
    wchar_t mHighSurrogate = 0;
    int mInsideLevel = 0;
};
