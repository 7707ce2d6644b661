// Drives windows as a user would, without a screen: press, drag, wheel, type, wait, look. For the
// tests of hosts and for ours; every step runs the event loop until nothing is left to do, at a
// clock that stands still unless it is stepped.
//
//     QLX_TestDriver driver;
//     driver.OpenWindow(*window);
//     driver.Click(Cmn_FourChar("play"));
//     driver.Type("1.3");
//     driver.Key(kDAW_Key_Return);
//     EXPECT_EQ(driver.GetConsumer(), "TNumericEntryText 'main'");
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "qlx/platform/headless/qlx_headless.h"
#include "qlx/views/ueventtrace.h"
#include "qlx/views/uinvalidateview.h"

class TApplication;
class TWindow;

/// What a driver could not do: no such view, a view that is out of sight, a chord that is none.
class QLX_API QLX_TestDriverError : public std::exception {
  public:
    explicit QLX_TestDriverError(std::string text) : mText(std::move(text)) {}
    ~QLX_TestDriverError() override;
    [[nodiscard]] const char* what() const noexcept override { return mText.c_str(); }

  private:
    std::string mText;
};

/// One user. Makes and installs a headless platform for as long as it lives, and an application
/// object when there is none. Points are window coordinates (logical pixels of the window in use);
/// views are named by identifier and searched through the whole window. Operations that cannot be
/// done throw QLX_TestDriverError with the reason.
class QLX_API QLX_TestDriver {
  public:
    QLX_TestDriver();
    /// Closes the windows that it opened and frees those it was given to own.
    ~QLX_TestDriver();
    QLX_TestDriver(const QLX_TestDriver&) = delete;
    QLX_TestDriver& operator=(const QLX_TestDriver&) = delete;

    [[nodiscard]] QLX_HeadlessPlatform& GetPlatform();

    // Windows

    /// Display scale of windows opened from now on; 120 is 1.
    void SetScale(int scale);
    /// Opens a window and makes it the one in use. Not owned.
    void OpenWindow(TWindow& window);
    /// Makes the views of a description, opens the window, owns it.
    TWindow& OpenWindow(const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento);
    /// Makes an open window the one in use.
    void UseWindow(TWindow& window);
    /// The window in use; null before one was opened and after it was closed.
    [[nodiscard]] TWindow* GetWindow();
    /// As a user who drags the window's corner.
    void ResizeWindow(int width, int height);

    // Views

    /// Throws when there is none.
    [[nodiscard]] TView& Find(std::uint32_t identifier);
    /// As the class; throws when the view is of another.
    template <class T>
    [[nodiscard]] T& FindAs(std::uint32_t identifier) {
        TView& view = Find(identifier);
        if (!view.DescendsFrom(&T::fgClassDesc))
            throw QLX_TestDriverError("the view is of another class");
        return static_cast<T&>(view);
    }
    /// The middle of what is visible of a view; throws when nothing is.
    [[nodiscard]] Cmn_Point<int> GetMiddle(std::uint32_t identifier);

    // The mouse. Modifiers are bits of QLX_EModifierBits and hold for the one action.

    void MoveTo(Cmn_Point<int> where);
    void MoveTo(std::uint32_t identifier) { MoveTo(GetMiddle(identifier)); }
    void Press(Cmn_Point<int> where, std::uint32_t modifiers = 0,
               EMouseButton button = kMouse_Left);
    /// Where the pointer is.
    void Release(EMouseButton button = kMouse_Left);
    void Click(Cmn_Point<int> where, std::uint32_t modifiers = 0,
               EMouseButton button = kMouse_Left);
    void Click(std::uint32_t identifier, std::uint32_t modifiers = 0);
    void DoubleClick(Cmn_Point<int> where);
    void DoubleClick(std::uint32_t identifier) { DoubleClick(GetMiddle(identifier)); }
    /// Press, movement in equal steps, release.
    void Drag(Cmn_Point<int> from, Cmn_Point<int> to, int steps = 8, std::uint32_t modifiers = 0);
    /// Notches: above 0 away from the user.
    void Wheel(Cmn_Point<int> where, double notches, std::uint32_t modifiers = 0);
    void Wheel(std::uint32_t identifier, double notches) { Wheel(GetMiddle(identifier), notches); }
    /// As when the system takes the mouse away during a drag.
    void LoseCapture();
    void LeaveWindow();

    // The keyboard

    /// A key down and up for every character of a UTF-8 text.
    void Type(const std::string& text);
    /// A key down and up.
    void Key(std::uint32_t keyCode, std::uint32_t modifiers = 0);
    void KeyDown(std::uint32_t keyCode, std::uint32_t modifiers = 0, bool repeated = false);
    void KeyUp(std::uint32_t keyCode, std::uint32_t modifiers = 0);
    /// "Ctrl+Shift+Z", "Alt+F4", "Return": modifiers Ctrl, Alt, Win and Shift before a character or
    /// a key's name.
    void Chord(const std::string& chord);
    /// A text composed by an input method, then entered.
    void Compose(const std::string& composing, const std::string& entered);

    // Time

    /// Runs the loop until nothing is left to do at the present time.
    void WaitForIdle();
    /// Moves the clock on, with everything that is due on the way at its time.
    void Step(double seconds);

    // Looking

    /// What is on the screen, in device pixels; throws where painters do not draw into memory.
    [[nodiscard]] QLX_Image::Ptr GetPicture();
    /// The part of it that shows a view.
    [[nodiscard]] QLX_Image::Ptr GetPicture(std::uint32_t identifier);
    /// Writes GetPicture as a PNG. Throws std::runtime_error "path: reason".
    void SavePicture(const std::string& path);
    /// The calls by which a view and what is inside it draw themselves, one a line.
    [[nodiscard]] std::string GetDrawing(std::uint32_t identifier);
    /// The whole window's.
    [[nodiscard]] std::string GetDrawing();
    /// Pictures of equal size and pixels.
    [[nodiscard]] static bool IsSamePicture(const QLX_Image::Ptr& a, const QLX_Image::Ptr& b);

    // Costs and routes, since the last reset

    void ResetCosts();
    [[nodiscard]] const TDrawCosts& GetCosts();
    /// The views that were drawn, in order, as "TButton 'play'".
    [[nodiscard]] std::vector<std::string> GetDrawnViews() const;
    /// What the handler chain was sent, with every receiver.
    [[nodiscard]] const std::vector<QLX_EventDelivery>& GetRoutes() const;
    /// Who consumed the key sent last, as "TEditText 'name'"; empty when nobody did or no key was
    /// sent.
    [[nodiscard]] std::string GetConsumer() const;

  private:
    [[nodiscard]] TWindow& NeedWindow();
    [[nodiscard]] QLX_HeadlessWindow& NeedPort();
    void Send(const QLX_EventRef& event);
    void SendMouse(std::uint32_t kind, std::uint32_t modifiers, EMouseButton button);

    void StepPastDoubleClick();
    struct State;
    std::unique_ptr<State> mState;
};
