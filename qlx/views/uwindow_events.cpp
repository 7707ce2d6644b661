// TWindow: what becomes of the events of the native window.
#include <algorithm>
#include <cstdlib>
#include <exception>

#include "basekit/cmn/cmn_string.h"
#include "basekit/cmn/cmn_trace.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/uevent.h"
#include "qlx/views/uinspector.h"
#include "qlx/views/utracker.h"
#include "qlx/views/uviewtooltip.h"
#include "qlx/views/uwindowmodal.h"
#include "qlx/views/uwindowstate.h"

namespace {

constexpr double kDoubleClickSeconds = 0.5;
constexpr double kToolTipSeconds = 0.6;
constexpr int kToolTipWidth = 320;
constexpr int kToolTipBelowPointer = 18;

/// Calls a view's code; what it throws is reported and goes no further.
template <class Call>
void Guarded(const char* what, Call&& call) {
    try {
        call();
    } catch (const std::exception& failure) {
        Cmn_TraceWrite("TWindow: exception out of %s: %s", what, failure.what());
    } catch (...) {
        Cmn_TraceWrite("TWindow: exception out of %s", what);
    }
}

} // namespace

namespace {

/// What the user does, as opposed to what becomes of the window. Releases go through, so that a
/// window that was blocked in the middle of a press does not take the button for held.
bool IsUserInput(const QLX_EventID& event) {
    if (event.mClass == kQLX_EventClass_Window)
        return event.mKind == kQLX_EventKind_CloseRequested;
    if (event.mClass == kQLX_EventClass_Mouse)
        return event.mKind != kQLX_EventKind_MouseUp && event.mKind != kQLX_EventKind_MouseLeft &&
               event.mKind != kQLX_EventKind_CaptureLost;
    return event.mClass == kQLX_EventClass_Keyboard && event.mKind != kQLX_EventKind_KeyUp;
}

} // namespace

void TWindow::Deliver(const QLX_EventRef& event) {
    if (event.IsEmpty())
        return;
    const StDispatch dispatch;
    if (IsUserInput(event.GetID()) && QLX_ModalWindows::IsBlocked(this)) {
        TWindow* modal = QLX_ModalWindows::GetInnermost();
        if (event.GetID().mKind == kQLX_EventKind_MouseDown && modal)
            modal->Activate();
        return;
    }
    if (gApplication)
        gApplication->EndIdleTime();
    if (EventListener* listener = GetEventListener())
        listener->WindowEvent(this, event);
    ++mState->delivering;
    Guarded("an event", [&] { Dispatch(event); });
    UpdateTextInput();
    if (--mState->delivering == 0)
        mState->closedPorts.clear();
}

void TWindow::Dispatch(const QLX_EventRef& event) {
    switch (event.GetID().mClass) {
    case kQLX_EventClass_Mouse:
        MouseEvent(event);
        break;
    case kQLX_EventClass_Keyboard:
        KeyboardEvent(event);
        break;
    case kQLX_EventClass_Window:
        WindowEvent(event);
        break;
    default:
        break;
    }
}

void TWindow::MouseEvent(const QLX_EventRef& event) {
    switch (event.GetID().mKind) {
    case kQLX_EventKind_MouseDown:
        MouseDown(event);
        break;
    case kQLX_EventKind_MouseUp:
        MouseUp(event);
        break;
    case kQLX_EventKind_MouseMoved:
        MouseMoved(event);
        break;
    case kQLX_EventKind_MouseWheel:
        Wheel(event);
        break;
    case kQLX_EventKind_MouseLeft:
        MouseLeft();
        break;
    case kQLX_EventKind_CaptureLost:
        CancelTracker();
        mState->pressed = nullptr;
        mState->buttonsDown = 0;
        break;
    default:
        break;
    }
}

void TWindow::KeyboardEvent(const QLX_EventRef& event) {
    switch (event.GetID().mKind) {
    case kQLX_EventKind_KeyDown:
    case kQLX_EventKind_AutoKey:
        KeyDown(event);
        break;
    case kQLX_EventKind_KeyUp:
        KeyUp(event);
        break;
    case kQLX_EventKind_TextInput:
    case kQLX_EventKind_TextComposition:
        Text(event);
        break;
    default:
        break;
    }
}

void TWindow::WindowEvent(const QLX_EventRef& event) {
    switch (event.GetID().mKind) {
    case kQLX_EventKind_Resized:
    case kQLX_EventKind_ScaleChanged:
        if (mState->port)
            Resized();
        break;
    case kQLX_EventKind_Exposed:
        ForceRedraw();
        break;
    case kQLX_EventKind_CloseRequested:
        CloseRequested();
        break;
    case kQLX_EventKind_Activated:
        SetActive(true);
        break;
    case kQLX_EventKind_Deactivated:
        SetActive(false);
        // The keys that are held go up unseen. The window is not looked at again: what ends with
        // its key may close it.
        if (gApplication)
            gApplication->ReleaseAllKeys();
        break;
    default:
        break;
    }
}

// The mouse

VPoint TWindow::Where(const QLX_EventRef& event) const {
    Cmn_Point<int> where{0, 0};
    event.GetProperty(kQLX_EventProperty_Where, &where, sizeof where);
    return VPoint(where) + GetLocalOffset();
}

int TWindow::CountClick(const QLX_EventRef& event) {
    State& state = *mState;
    const VPoint where = Where(event);
    const EMouseButton button = QLX_GetMouseButton(event);
    const bool again = state.clicks > 0 && button == state.lastButton &&
                       event.GetTimestamp() - state.lastPressTime <= kDoubleClickSeconds &&
                       DoMultiClick(state.lastPress.ToPoint(), where.ToPoint());
    state.clicks = again ? state.clicks + 1 : 1;
    state.lastPressTime = event.GetTimestamp();
    state.lastPress = where;
    state.lastButton = button;
    return state.clicks;
}

void TWindow::MouseDown(const QLX_EventRef& event) {
    State& state = *mState;
    const std::int32_t clicks = CountClick(event);
    event.SetProperty(kQLX_EventProperty_ClickCount, &clicks, sizeof clicks);
    TToolboxEvent toolboxEvent;
    toolboxEvent.IToolboxEvent(this, event);
    state.pointer = Where(event);
    state.pointerInside = true;
    HideToolTip();
    Hover(&toolboxEvent);
    ++state.buttonsDown;
    if (state.tracker)
        return; // a further button during a drag is not a press
    state.pressed = nullptr;
    state.pressedButton = QLX_GetMouseButton(event);
    TEventHandler* target = gApplication ? gApplication->GetTarget() : nullptr;
    if (state.pressedButton == kMouse_Left)
        HandleMouseDown(state.pointer, &toolboxEvent);
    else
        HandleOtherButton(state.pointer, &toolboxEvent);
    // The target may have asked to be left when something else is clicked.
    if (target && gApplication && gApplication->GetTarget() == target &&
        target->WantsToResignTargetFromAnotherClick()) {
        const auto* view = QLX_ObjectCast<TView>(target);
        if (view && view != state.pressed && view->GetWindow() == this)
            target->ResignTarget();
    }
}

void TWindow::PressTaken(TView* view) {
    // Called by every view on the way up; the one that took the press is the first.
    if (!mState->pressed)
        mState->pressed = view;
}

void TWindow::MouseUp(const QLX_EventRef& event) {
    State& state = *mState;
    TToolboxEvent toolboxEvent;
    toolboxEvent.IToolboxEvent(this, event);
    state.pointer = Where(event);
    state.buttonsDown = std::max(state.buttonsDown - 1, 0);
    if (QLX_GetMouseButton(event) == state.pressedButton) {
        if (state.tracker) {
            Track(kTrack_End, state.pointer, &toolboxEvent);
        } else if (state.pressed) {
            TView* view = std::exchange(state.pressed, nullptr);
            VPoint local = state.pointer;
            view->WindowToLocal(local);
            view->HandleMouseUp(local, &toolboxEvent);
        }
    }
    Hover(&toolboxEvent);
}

void TWindow::MouseMoved(const QLX_EventRef& event) {
    State& state = *mState;
    TToolboxEvent toolboxEvent;
    toolboxEvent.IToolboxEvent(this, event);
    state.pointer = Where(event);
    state.pointerInside = GetExtent().Contains(state.pointer);
    if (state.tracker) {
        Track(kTrack_Continue, state.pointer, &toolboxEvent);
        return;
    }
    if (!state.toolTipArea.Contains(state.pointer))
        HideToolTip();
    Hover(&toolboxEvent);
    AwaitToolTip();
}

void TWindow::MouseLeft() {
    mState->pointerInside = false;
    HideToolTip();
    if (!mState->tracker)
        mState->LeaveDownTo(0, nullptr);
}

void TWindow::Wheel(const QLX_EventRef& event) {
    TToolboxEvent toolboxEvent;
    toolboxEvent.IToolboxEvent(this, event);
    mState->pointer = Where(event);
    HideToolTip();
    if (!mState->tracker)
        HandleMouseWheel(mState->pointer, &toolboxEvent);
}

// Hovering

void TWindow::State::LeaveDownTo(std::size_t count, TToolboxEvent* event) {
    while (hoverPath.size() > count) {
        TView* view = hoverPath.back();
        hoverPath.pop_back();
        view->mMouseOver = false;
        Guarded("DoMouseLeave", [&] { view->DoMouseLeave(event); });
    }
}

// Enters and leaves so that the path holds the views under the pointer. Every call may change the
// tree; what has left it meanwhile is not entered.
void TWindow::Hover(TToolboxEvent* event) {
    State& state = *mState;
    if (state.tracker)
        return;
    state.seenStamp = sCoordinateStamp;
    std::vector<TView*> path;
    if (state.pointerInside) {
        for (TView* view = FindViewAt(state.pointer); view; view = view->GetSuperView())
            path.push_back(view);
        std::reverse(path.begin(), path.end());
    }
    const auto apart =
        std::mismatch(path.begin(), path.end(), state.hoverPath.begin(), state.hoverPath.end());
    const auto common = static_cast<std::size_t>(apart.first - path.begin());
    state.LeaveDownTo(common, event);
    for (std::size_t i = common; i < path.size() && state.hoverPath.size() == i; ++i) {
        TView* view = path[i];
        if (i > 0 && view->GetSuperView() != state.hoverPath.back())
            break;
        state.hoverPath.push_back(view);
        view->mMouseOver = true;
        VPoint local = state.pointer;
        view->WindowToLocal(local);
        Guarded("DoMouseEnter", [&] { view->DoMouseEnter(local, event); });
    }
    if (event && !state.hoverPath.empty()) {
        TView* view = state.hoverPath.back();
        VPoint local = state.pointer;
        view->WindowToLocal(local);
        Guarded("DoMouseMove", [&] { view->DoMouseMove(local, event); });
    }
    TInspector::PointerMoved(this);
    UpdateCursor();
}

TView* TWindow::GetHovered() const {
    return mState->hoverPath.empty() ? nullptr : mState->hoverPath.back();
}

VPoint TWindow::GetPointer() const { return mState->pointer; }

void TWindow::NoticeChanges() {
    State& state = *mState;
    if (state.pointerInside && state.seenStamp != sCoordinateStamp && !state.tracker)
        Hover(nullptr);
    UpdateTextInput();
}

void TWindow::ShowCursor(ECursor cursor) {
    State& state = *mState;
    if (!state.port || (state.cursorKnown && state.cursor == cursor))
        return;
    state.cursor = cursor;
    state.cursorKnown = true;
    state.port->SetCursor(cursor);
}

void TWindow::UpdateCursor() {
    if (mState->pointerInside && !HandleSetCursor(mState->pointer))
        ShowCursor(kCursor_Arrow);
}

// Tracking

void TWindow::StartTracker(TTracker* tracker, TView* view, const VPoint& local,
                           TToolboxEvent* event) {
    CancelTracker();
    State& state = *mState;
    state.tracker = tracker;
    tracker->mView = view;
    tracker->mAnchor = local;
    tracker->mPrevious = local;
    if (state.port)
        state.port->SetCapture(true);
    VPoint where = local;
    view->LocalToWindow(where);
    state.pointer = where;
    Track(kTrack_Begin, where, event);
    QLX_EventLoop* loop = QLX_EventLoop::Get();
    if (state.tracker == tracker && tracker->mRepeat > 0 && loop) {
        state.trackerTimer = loop->StartTimer(tracker->mRepeat, tracker->mRepeat, [this] {
            const StDispatch dispatch;
            if (mState->tracker)
                Track(kTrack_Continue, mState->pointer, nullptr);
        });
    }
}

// One step. The tracker may cancel itself, and the view may go, while it runs.
void TWindow::Track(int phase, const VPoint& where, TToolboxEvent* event) {
    State& state = *mState;
    TTracker* tracker = state.tracker;
    VPoint next = where;
    tracker->mView->WindowToLocal(next);
    const bool ends = phase == kTrack_End;
    ++state.trackerCalls;
    Guarded("TTracker", [&] {
        tracker->TrackConstrain(tracker->mAnchor, tracker->mPrevious, next);
        const VPoint way = next - tracker->mAnchor;
        if (std::abs(way.h) > tracker->mHysteresis || std::abs(way.v) > tracker->mHysteresis)
            tracker->mMoved = true;
        const bool counts =
            phase != kTrack_Continue || tracker->mMoved || tracker->mHysteresis == 0;
        if (counts && state.tracker == tracker) {
            const VPoint previous = tracker->mPrevious;
            tracker->mPrevious = next;
            if (ends)
                state.tracker = nullptr; // what it does at the end may begin another
            tracker->TrackMouse(static_cast<TrackPhase>(phase), tracker->mAnchor, previous, next,
                                event);
        }
    });
    --state.trackerCalls;
    if (ends && (!state.tracker || state.tracker == tracker)) {
        state.tracker = nullptr;
        FinishTracker(tracker);
    } else if (ends) {
        state.endedTrackers.push_back(tracker);
    } else if (state.tracker == tracker && tracker->mCancelled) {
        CancelTracker();
    }
    if (state.trackerCalls == 0) {
        for (TTracker* ended : std::exchange(state.endedTrackers, {}))
            ended->Free();
    }
}

void TWindow::FinishTracker(TTracker* tracker) {
    State& state = *mState;
    if (QLX_EventLoop* loop = QLX_EventLoop::Get(); loop && state.trackerTimer != 0)
        loop->StopTimer(state.trackerTimer);
    state.trackerTimer = 0;
    if (state.port)
        state.port->SetCapture(false);
    if (state.trackerCalls > 0)
        state.endedTrackers.push_back(tracker);
    else
        tracker->Free();
}

void TWindow::CancelTracker() {
    State& state = *mState;
    TTracker* tracker = std::exchange(state.tracker, nullptr);
    if (!tracker)
        return;
    const StDispatch dispatch;
    state.pressed = nullptr;
    tracker->mCancelled = true;
    ++state.trackerCalls;
    Guarded("TTracker", [&] {
        tracker->TrackMouse(kTrack_Cancel, tracker->mAnchor, tracker->mPrevious, tracker->mPrevious,
                            nullptr);
    });
    --state.trackerCalls;
    tracker->mView = nullptr;
    FinishTracker(tracker);
}

TTracker* TWindow::GetTracker() const { return mState->tracker; }

// The keyboard

void TWindow::KeyDown(const QLX_EventRef& event) {
    TToolboxEvent toolboxEvent;
    toolboxEvent.IToolboxEvent(this, event);
    std::uint32_t keyCode = 0;
    event.GetProperty(kQLX_EventProperty_KeyCode, &keyCode, sizeof keyCode);
    if (keyCode == kDAW_Key_Escape)
        toolboxEvent.mKeyState = kKeyState_RealEscape;
    HideToolTip();
    if (event.GetID().mKind == kQLX_EventKind_KeyDown &&
        TInspector::TakeKey(this, keyCode, toolboxEvent.GetEventModifiers()))
        return;
    if (mState->tracker) {
        if (keyCode == kDAW_Key_Escape) {
            CancelTracker();
            return;
        }
        bool taken = false;
        Guarded("TTracker", [&] {
            KeyEventToComponents(&toolboxEvent);
            taken = mState->tracker->TrackKey(&toolboxEvent);
        });
        if (taken)
            return;
    }
    if (gApplication) {
        gApplication->DeliverKeyDown(&toolboxEvent);
        return;
    }
    TEventHandler* target = mState->target ? mState->target : this;
    target->KeyEventToComponents(&toolboxEvent);
    if (toolboxEvent.IsCommandKeyPressed())
        target->HandleCommandKey(&toolboxEvent);
    else
        target->HandleKeyCommand(&toolboxEvent);
}

void TWindow::KeyUp(const QLX_EventRef& event) {
    TToolboxEvent toolboxEvent;
    toolboxEvent.IToolboxEvent(this, event);
    if (gApplication)
        gApplication->DeliverKeyUp(&toolboxEvent);
}

// Text that no key brought: an input method's, or pasted by the system. A target that does not take
// text gets it as keys, one a character.
void TWindow::Text(const QLX_EventRef& event) {
    const std::string text = QLX_GetEventText(event);
    TEventHandler* target = gApplication ? gApplication->GetTarget() : mState->target;
    TView* view = QLX_ObjectCast<TView>(target);
    if (!view)
        view = this;
    if (event.GetID().mKind == kQLX_EventKind_TextComposition) {
        std::int32_t caret = 0;
        std::int32_t selected = 0;
        event.GetProperty(kQLX_EventProperty_Caret, &caret, sizeof caret);
        event.GetProperty(kQLX_EventProperty_Selected, &selected, sizeof selected);
        view->DoTextComposition(text, caret, selected);
        return;
    }
    if (view->DoTextInput(text))
        return;
    for (std::size_t position = 0; position < text.size();) {
        const std::uint32_t character = Cmn_DecodeUTF8(text, position);
        KeyDown(QLX_MakeKeyEvent(kQLX_EventKind_KeyDown, character, character, 0));
    }
}

void TWindow::UpdateTextInput() {
    State& state = *mState;
    if (!state.port)
        return;
    TView* view = QLX_ObjectCast<TView>(GetWindowTarget());
    VRect caret;
    const bool offers = IsActive() && view && view->GetTextInputArea(caret);
    if (!offers) {
        if (state.offersTextInput)
            state.port->SetTextInput(nullptr);
        state.offersTextInput = false;
        return;
    }
    view->LocalToWindowVRect(caret);
    const Cmn_Rect<int> area = (caret - GetLocalOffset()).ToCmn_Rect();
    if (state.offersTextInput && area == state.textInputArea)
        return;
    state.offersTextInput = true;
    state.textInputArea = area;
    state.port->SetTextInput(&state.textInputArea);
}

// Tool tips

void TWindow::AwaitToolTip() {
    State& state = *mState;
    QLX_EventLoop* loop = QLX_EventLoop::Get();
    if (!loop || state.toolTip || state.buttonsDown > 0)
        return;
    if (state.toolTipTimer != 0)
        loop->StopTimer(state.toolTipTimer);
    state.toolTipTimer = 0;
    std::string text;
    VRect area;
    const TView* view = GetHovered();
    VPoint local = state.pointer;
    if (view)
        view->WindowToLocal(local);
    if (view && view->GetToolTip(local, text, area))
        state.toolTipTimer = loop->StartTimer(kToolTipSeconds, 0, [this] {
            mState->toolTipTimer = 0;
            ShowToolTip();
        });
}

void TWindow::ShowToolTip() {
    State& state = *mState;
    TView* view = GetHovered();
    const PainterPtr& painter = GetDrawingPainter();
    if (!view || !painter || state.toolTip)
        return;
    std::string text;
    VRect area;
    VPoint local = state.pointer;
    view->WindowToLocal(local);
    if (!view->GetToolTip(local, text, area))
        return;
    view->LocalToWindowVRect(area);
    state.toolTipArea = area;
    state.toolTipFor = view;
    auto* tip = new TToolTipView;
    tip->SetText(text, painter, kToolTipWidth);
    const VRect extent = GetExtent();
    VPoint place = state.pointer + VPoint(0, kToolTipBelowPointer);
    if (place.v + tip->GetSize().v > extent.Bottom())
        place.v = state.pointer.v - tip->GetSize().v - 4;
    place.h = std::min(place.h, extent.Right() - tip->GetSize().h);
    place.v = std::max(place.v, extent.Top());
    place.h = std::max(place.h, extent.Left());
    tip->Locate(place, /*redraw*/ false);
    state.toolTip = tip;
    AddSubView(tip);
}

void TWindow::HideToolTip() {
    State& state = *mState;
    if (QLX_EventLoop* loop = QLX_EventLoop::Get(); loop && state.toolTipTimer != 0)
        loop->StopTimer(state.toolTipTimer);
    state.toolTipTimer = 0;
    state.toolTipFor = nullptr;
    state.toolTipArea = VRect();
    if (TToolTipView* tip = std::exchange(state.toolTip, nullptr))
        tip->Free();
}

bool TWindow::IsToolTipShown() const { return mState->toolTip != nullptr; }
