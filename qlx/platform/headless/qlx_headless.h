// The platform without a display: windows in memory, a clock that only waiting moves, events that
// the caller injects. The same program, the same inputs, the same pictures, on every machine.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "qlx/imaging/qlx_image.h"
#include "qlx/platform/qlx_platform.h"
#include "qlx/views/qlx_clipboard.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/qlx_windowport.h"

class QLX_HeadlessPlatform;
class QLX_HeadlessWindow;

/// The loop: injected events one a turn, in order; a wait moves the clock on instead of sleeping.
/// When neither an event nor a timer nor a wish is left, the wait says that nothing can come any
/// more, which ends runs.
class QLX_API QLX_HeadlessLoop : public QLX_EventLoop {
  public:
    explicit QLX_HeadlessLoop(QLX_HeadlessPlatform& platform);
    ~QLX_HeadlessLoop() override;

    /// With true a wait without end sleeps, in real time, until another thread posts or wakes, for
    /// at most that many seconds.
    void SetWaitForThreads(double realSeconds);

  protected:
    bool DispatchNative() override;
    bool WaitNative(double seconds) override;
    void WakeNative() override;

  private:
    struct Sleep;
    QLX_HeadlessPlatform& mPlatform;
    std::unique_ptr<Sleep> mSleep;
};

/// The keyboard: what the caller says is held.
class QLX_API QLX_HeadlessKeyboard : public QLX_KeyboardSource {
  public:
    ~QLX_HeadlessKeyboard() override;
    std::uint32_t GetModifierBits() const override { return mModifiers; }
    bool IsKeyDown(DAW_EKeyCode key) const override;
    std::uint32_t GetMouseButtons() const override { return mButtons; }

    void SetModifierBits(std::uint32_t bits) { mModifiers = bits; }
    void SetKeyDown(DAW_EKeyCode key, bool down);
    void SetMouseButtons(std::uint32_t bits) { mButtons = bits; }

  private:
    std::uint32_t mModifiers = 0;
    std::uint32_t mButtons = 0;
    std::vector<DAW_EKeyCode> mKeys;
};

/// A window in memory. Drawing goes to a surface, and presenting copies from there to what counts
/// as the screen: a part that is drawn and not presented is missing from the picture, as it would
/// be.
class QLX_API QLX_HeadlessWindow : public QLX_WindowPort {
  public:
    QLX_HeadlessWindow(QLX_HeadlessPlatform& platform, const QLX_WindowSettings& settings,
                       QLX_WindowPortClient* client);
    ~QLX_HeadlessWindow() override;

    Cmn_Point<int> GetSize() const override { return mSize; }
    void SetSize(Cmn_Point<int> size) override;
    void SetMinimumSize(Cmn_Point<int> size) override;
    Cmn_Point<int> GetPlace() const override { return mPlace; }
    void SetPlace(Cmn_Point<int> place) override;
    int GetScale() const override { return mScale; }
    void SetTitle(const std::string& title) override { mTitle = title; }
    void Show(bool shown) override;
    void Activate() override;
    const PainterPtr& GetPainter() override;
    void Present(const std::vector<Cmn_Rect<int>>& rects) override;
    void SetCursor(ECursor cursor) override { mCursor = cursor; }
    void SetCapture(bool capture) override { mCaptured = capture; }
    void SetTextInput(const Cmn_Rect<int>* caret) override;
    void* GetNativeHandle() const override { return nullptr; }

    // For the one who drives it

    /// Queues an event for the window.
    void Inject(const QLX_EventRef& event);
    /// As when the window moves to a display of another scale.
    void SetScale(int scale);
    /// The user's size: held at the window's minimum.
    void UserResize(Cmn_Point<int> size);
    [[nodiscard]] QLX_WindowPortClient* GetClient() const { return mClient; }
    [[nodiscard]] const std::string& GetTitle() const { return mTitle; }
    [[nodiscard]] bool IsShown() const { return mShown; }
    [[nodiscard]] ECursor GetCursor() const { return mCursor; }
    [[nodiscard]] bool IsCaptured() const { return mCaptured; }
    /// Null while the window offers no input methods.
    [[nodiscard]] const Cmn_Rect<int>* GetTextInput() const {
        return mTextInput ? &mTextInputArea : nullptr;
    }
    /// What is on the screen, in device pixels; null for a window without size, or where the
    /// painters in use do not draw into memory.
    [[nodiscard]] QLX_Image::Ptr GetPicture() const;
    /// What was presented last, in device pixels.
    [[nodiscard]] const std::vector<Cmn_Rect<int>>& GetPresented() const { return mPresented; }

  private:
    void DropSurface();

    QLX_HeadlessPlatform& mPlatform;
    QLX_WindowPortClient* mClient; // not owned
    std::string mTitle;
    Cmn_Point<int> mSize;
    Cmn_Point<int> mMinimum{0, 0};
    Cmn_Point<int> mPlace;
    int mScale;
    bool mPopup;
    bool mShown = false;
    bool mCaptured = false;
    bool mTextInput = false;
    ECursor mCursor;
    Cmn_Rect<int> mTextInputArea{0, 0, 0, 0};
    int mWidth = 0; // device pixels of the surface
    int mHeight = 0;
    std::vector<std::uint32_t> mSurface; // what is drawn into
    std::vector<std::uint32_t> mScreen;  // what was presented of it
    std::vector<Cmn_Rect<int>> mPresented;
    PainterPtr mPainter;
};

/// The platform. Its clock stands at 1000 seconds when it is made and is the process's clock while
/// the platform is installed.
class QLX_API QLX_HeadlessPlatform : public QLX_Platform {
  public:
    QLX_HeadlessPlatform();
    ~QLX_HeadlessPlatform() override;

    const char* GetName() const override { return "headless"; }
    QLX_EventLoop& GetEventLoop() override { return mLoop; }
    QLX_WindowPortFactory& GetWindowFactory() override { return mFactory; }
    QLX_KeyboardSource& GetKeyboard() override { return mKeyboard; }
    QLX_Clipboard& GetClipboard() override { return *mClipboard; }
    int GetDisplayScale() const override { return mScale; }

    [[nodiscard]] QLX_HeadlessLoop& GetHeadlessLoop() { return mLoop; }
    [[nodiscard]] QLX_HeadlessKeyboard& GetHeadlessKeyboard() { return mKeyboard; }
    /// For windows made from now on.
    void SetDisplayScale(int scale) { mScale = scale; }
    /// The windows there are, in the order they were made.
    [[nodiscard]] const std::vector<QLX_HeadlessWindow*>& GetWindows() const { return mWindows; }

    // The clock, in seconds

    [[nodiscard]] static double GetNow();
    static void SetNow(double seconds);

    // Events

    void Inject(QLX_HeadlessWindow* window, const QLX_EventRef& event);
    [[nodiscard]] bool HasEvents() const { return !mEvents.empty(); }

  private:
    friend class QLX_HeadlessLoop;
    friend class QLX_HeadlessWindow;
    bool DeliverOne();
    void WindowGone(QLX_HeadlessWindow* window);
    void MakeActive(QLX_HeadlessWindow* window);

    class Factory : public QLX_WindowPortFactory {
      public:
        explicit Factory(QLX_HeadlessPlatform& platform) : mPlatform(platform) {}
        std::unique_ptr<QLX_WindowPort> MakePort(const QLX_WindowSettings& settings,
                                                 QLX_WindowPortClient* client) override;

      private:
        QLX_HeadlessPlatform& mPlatform;
    };
    struct Waiting {
        QLX_HeadlessWindow* window; // not owned
        QLX_EventRef event;
    };
    QLX_HeadlessLoop mLoop;
    Factory mFactory;
    QLX_HeadlessKeyboard mKeyboard;
    std::unique_ptr<QLX_Clipboard> mClipboard;
    std::vector<QLX_HeadlessWindow*> mWindows; // not owned
    QLX_HeadlessWindow* mActive = nullptr;     // not owned
    std::deque<Waiting> mEvents;
    int mScale = kWindow_ScaleUnit;
    double (*mOldClock)() = nullptr;
};
