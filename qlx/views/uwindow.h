// TWindow, the root view of a window: it owns the native window, turns its events into presses,
// keys, hovering and text for the views inside, gathers what is to be drawn and shows it once a
// frame.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qlx/imaging/qlx_devicescale.h"
#include "qlx/views/qlx_windowport.h"
#include "qlx/views/uinvalidateview.h"

/// A window. Made by a description (class "TWindow") or by code, opened, and ended by Close or
/// Free. Its local coordinates are window coordinates: logical pixels from the contents' top-left
/// corner. Its next handler is the application.
///
/// Properties besides TView's: "Title" (localised or plain string), "Resizable", "HasFrame",
/// "IsDialog", "IsPopup", "FreeOnClose" (bools), "Background" (string, a theme colour's name;
/// "WindowBackground" unless set) or "BackgroundColor" (rgbcolor).
class QLX_API TWindow : public TInvalidateView {
  public:
    QLX_DECLARE_CLASS(TWindow);
    TWindow();
    ~TWindow() override;

    void IWindow(const std::string& title, const VPoint& size);

    // The native window

    /// Makes the native window through the platform that is installed and shows it; with false it
    /// stays hidden until ShowWindow. False when there is no platform or it refuses. A window that
    /// is open stays as it is.
    bool Open(bool show = true);
    /// Closes the native window. The views live on, and the window may be opened again, unless it
    /// is to be freed on closing.
    void Close();
    [[nodiscard]] bool IsOpen() const;
    void ShowWindow(bool show);
    /// Brings the window to the front and gives it the keyboard.
    void Activate();
    /// Null while closed.
    [[nodiscard]] QLX_WindowPort* GetPort() const;
    void SetTitle(const std::string& title);
    [[nodiscard]] const std::string& GetTitle() const;
    [[nodiscard]] QLX_WindowSettings& GetSettings();
    void SetFreeOnClose(bool free);
    [[nodiscard]] bool IsActive() const;
    /// Device pixels for logical ones; 1 while closed.
    [[nodiscard]] QLX_DeviceScale GetScale() const;

    /// The open windows, the one activated last in front (at the end).
    [[nodiscard]] static const std::vector<TWindow*>& GetWindows();
    /// The window that has the keyboard; null when none has.
    [[nodiscard]] static TWindow* GetActiveWindow();
    /// Marks every window for drawing, as after a change of theme.
    static void RedrawAll();

    // Events. A platform's events come through here; tests and scripts may call it too.

    /// Delivers one event to the views. An exception that a view lets out is reported, never passed
    /// on.
    void Deliver(const QLX_EventRef& event);
    /// Hears every event before it is delivered: recorders. Null for none. Not owned.
    class QLX_API EventListener {
      public:
        virtual ~EventListener();
        virtual void WindowEvent(TWindow* window, const QLX_EventRef& event) = 0;
    };
    static EventListener* SetEventListener(EventListener* listener);
    [[nodiscard]] static EventListener* GetEventListener();

    // The mouse

    /// Gives the mouse to a tracker until the button is released. Owned from here on; one that is
    /// tracking already is cancelled.
    void StartTracker(TTracker* tracker, TView* view, const VPoint& local, TToolboxEvent* event);
    [[nodiscard]] TTracker* GetTracker() const;
    void CancelTracker();
    /// The deepest view under the pointer; null when it is outside.
    [[nodiscard]] TView* GetHovered() const;
    /// Where the pointer was last, window coordinates.
    [[nodiscard]] VPoint GetPointer() const;
    void ShowCursor(ECursor cursor);
    /// Makes the view that took a press the one that hears of the release.
    void PressTaken(TView* view);
    [[nodiscard]] bool IsToolTipShown() const;
    void HideToolTip();

    // The keyboard

    /// The view that is the target while this window is active; null for the window itself.
    [[nodiscard]] TEventHandler* GetWindowTarget() const;
    /// Makes a view of this window the target, now or when the window becomes active. Null: the
    /// window. False when the present target refuses to resign.
    bool SetWindowTarget(TEventHandler* target);
    /// Moves the target to the next view that wants it, by tab order, around the end; false when
    /// there is none or the present one refuses.
    bool AdvanceTarget(bool forward);
    /// The views that Tab goes through, in order.
    [[nodiscard]] std::vector<TView*> GetTabViews();

    // For TView

    /// A view is about to leave the tree or be hidden: whatever the window does with it or with
    /// what is inside it ends.
    void SubTreeLeaves(TView* view);
    /// Once a turn: views that moved under a resting pointer are entered and left, input methods
    /// follow the caret.
    void NoticeChanges();

    // Overrides

    TWindow* GetWindow() override;
    const TWindow* GetWindow() const override;
    void SetFrame(const VRect& frame, bool redraw, bool layOut) override;
    void Draw(const VRect& area) override;
    [[nodiscard]] EHighlight GetCurrentHL() const override;
    /// Tab and Shift-Tab move the target; the rest goes on to the application.
    void DoKeyEvent(TToolboxEvent* event) override;
    bool WantsToBeTarget() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;
    void AddedASubView(TView* sub) override;
    /// Not supported: an assertion, and null.
    [[nodiscard]] TObject* Clone() override;
    void Free() override;
    void BecameInvalid() override;
    void Drawn(const QLX_Region& region) override;
    void DrawnRect(const Cmn_Rect<int>& rect) override;

    // Slot order is part of the binary interface: append, never move.

    /// The user wants the window closed. The base closes it; an override may ask first.
    virtual void CloseRequested();
    /// The window became, or no longer is, the one with the keyboard.
    virtual void DoActivate(bool active);
    /// The native window's size or scale changed; the views have followed.
    virtual void PortChanged();

  private:
    struct State;
    friend struct State;

    void Dispatch(const QLX_EventRef& event);
    void MouseEvent(const QLX_EventRef& event);
    void KeyboardEvent(const QLX_EventRef& event);
    void WindowEvent(const QLX_EventRef& event);
    void MouseDown(const QLX_EventRef& event);
    void MouseUp(const QLX_EventRef& event);
    void MouseMoved(const QLX_EventRef& event);
    void MouseLeft();
    void Wheel(const QLX_EventRef& event);
    void KeyDown(const QLX_EventRef& event);
    void KeyUp(const QLX_EventRef& event);
    void Text(const QLX_EventRef& event);
    void Resized();
    void SetActive(bool active);
    void Hover(TToolboxEvent* event);
    void Track(int phase, const VPoint& where, TToolboxEvent* event);
    void FinishTracker(TTracker* tracker);
    void UpdateCursor();
    void AwaitToolTip();
    void ShowToolTip();
    void UpdateTextInput();
    bool ShowRects(const Cmn_Rect<int>* drawn, std::size_t count);
    void PresentShown();
    [[nodiscard]] VPoint Where(const QLX_EventRef& event) const;
    [[nodiscard]] int CountClick(const QLX_EventRef& event);

    std::unique_ptr<State> mState;
};
