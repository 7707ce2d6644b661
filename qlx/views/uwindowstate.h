// What a window remembers between events. For the window's own source files.
#pragma once

#include <memory>
#include <vector>

#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uwindow.h"

class TToolTipView;

struct TWindow::State {
    explicit State(TWindow* owner) : client(owner), window(owner) {}

    /// Calls DoMouseLeave for the end of the hover path, innermost first, until count views are
    /// left.
    void LeaveDownTo(std::size_t count, TToolboxEvent* event);

    class Client : public QLX_WindowPortClient {
      public:
        explicit Client(TWindow* owner) : mWindow(owner) {}
        void PortEvent(const QLX_EventRef& event) override { mWindow->Deliver(event); }

      private:
        TWindow* mWindow; // not owned: owns this
    };

    Client client;
    TWindow* window; // not owned: owns this
    QLX_WindowSettings settings;
    std::unique_ptr<QLX_WindowPort> port;
    std::vector<std::unique_ptr<QLX_WindowPort>> closedPorts; // while one of them may be calling
    int delivering = 0;
    bool following = false; // the views are following the native window's size
    bool freeOnClose = false;
    int background = 0; // EThemeColor; -1: backgroundColor
    CRGBColor backgroundColor;
    std::vector<Cmn_Rect<int>> shownRects;

    // Keyboard
    TEventHandler* target = nullptr; // not owned; while the window is not active
    bool offersTextInput = false;
    Cmn_Rect<int> textInputArea{0, 0, 0, 0};

    // Mouse
    VPoint pointer;
    bool pointerInside = false;
    std::uint32_t seenStamp = 0;
    std::vector<TView*> hoverPath; // not owned; outermost first
    TView* pressed = nullptr;      // not owned; took a press and hears of the release
    EMouseButton pressedButton = kMouse_Left;
    int buttonsDown = 0;
    ECursor cursor = kCursor_Arrow;
    bool cursorKnown = false;

    // Clicks
    double lastPressTime = -1;
    VPoint lastPress;
    EMouseButton lastButton = kMouse_Left;
    int clicks = 0;

    // Tracking
    TTracker* tracker = nullptr;          // owned
    std::vector<TTracker*> endedTrackers; // owned; while one of them may be on the stack
    int trackerCalls = 0;
    QLX_EventLoop::TimerID trackerTimer = 0;

    // Tool tip
    QLX_EventLoop::TimerID toolTipTimer = 0;
    TToolTipView* toolTip = nullptr; // a subview while it shows
    TView* toolTipFor = nullptr;     // not owned
    VRect toolTipArea;               // window coordinates
};
