#include "qlx/views/uwindow.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_trace.h"
#include "qlx/imaging/qlx_painter.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/uevent.h"
#include "qlx/views/uinspector.h"
#include "qlx/views/utracker.h"
#include "qlx/views/uviewserver.h"
#include "qlx/views/uviewtooltip.h"
#include "qlx/views/uwindowmodal.h"
#include "qlx/views/uwindowstate.h"

QLX_DEFINE_CLASS(TWindow, TInvalidateView);

namespace {

std::vector<TWindow*> sWindows; // open, the one activated last at the end
TWindow* sActive = nullptr;
TWindow::EventListener* sListener = nullptr;

/// Draws the open windows once a turn, and lets the pointer notice that views moved under it.
class WindowUpdater : public QLX_EventLoopClient {
  public:
    bool DoTurn() override {
        bool did = false;
        const TView::StDispatch dispatch;
        // A turn inside a turn finds the list taken and makes one of its own.
        std::vector<TWindow*> windows;
        windows.swap(mTurnWindows);
        windows = sWindows;
        for (TWindow* window : windows) {
            if (std::find(sWindows.begin(), sWindows.end(), window) == sWindows.end())
                continue;
            window->NoticeChanges();
            if (!window->NeedsDrawing() || !window->GetDrawingPainter())
                continue;
            window->DrawInvalid();
            did = true;
        }
        windows.swap(mTurnWindows);
        return did;
    }

    double GetNextWish() override {
        for (TWindow* window : sWindows) {
            if (window->NeedsDrawing() && window->GetDrawingPainter())
                return 0;
        }
        return std::numeric_limits<double>::infinity();
    }

    /// A test may install one loop after the other; the one that is gone is not touched.
    void JoinLoop() {
        QLX_EventLoop* loop = QLX_EventLoop::Get();
        if (loop == mLoop)
            return;
        mLoop = loop;
        if (loop)
            loop->AddClient(this);
    }

    void LeaveLoop() {
        if (mLoop && mLoop == QLX_EventLoop::Get())
            mLoop->RemoveClient(this);
        mLoop = nullptr;
    }

  private:
    QLX_EventLoop* mLoop = nullptr;     // not owned
    std::vector<TWindow*> mTurnWindows; // its memory is kept from turn to turn
};

WindowUpdater sUpdater;

} // namespace

TWindow::EventListener::~EventListener() = default;

TWindow::EventListener* TWindow::SetEventListener(EventListener* listener) {
    return std::exchange(sListener, listener);
}

TWindow::EventListener* TWindow::GetEventListener() { return sListener; }

// Life

TWindow::TWindow() : mState(std::make_unique<State>(this)) {
    TView::SetFrame({0, 0, mState->settings.mSize.x, mState->settings.mSize.y}, false, false);
}

TWindow::~TWindow() {
    mState->freeOnClose = false;
    Close();
    HideToolTip(); // a window that was never opened may have been driven by hand
    CancelTracker();
}

void TWindow::IWindow(const std::string& title, const VPoint& size) {
    SetTitle(title);
    Resize(size, /*redraw*/ false);
}

TObject* TWindow::Clone() {
    Cmn_Assert("false && \"a window is not cloned\"", "qlx/views/uwindow", __LINE__);
    return nullptr;
}

// The native window goes at once, even where the object's memory has to wait.
void TWindow::Free() {
    mState->freeOnClose = false;
    Close();
    TInvalidateView::Free();
}

TWindow* TWindow::GetWindow() { return this; }

const TWindow* TWindow::GetWindow() const { return this; }

const std::vector<TWindow*>& TWindow::GetWindows() { return sWindows; }

TWindow* TWindow::GetActiveWindow() { return sActive; }

void TWindow::RedrawAll() {
    for (TWindow* window : sWindows)
        window->ForceRedraw();
}

// The native window

bool TWindow::Open(bool show) {
    if (mState->port)
        return true;
    QLX_WindowPortFactory* factory = QLX_WindowPortFactory::Get();
    if (!factory) {
        Cmn_TraceWrite("TWindow: no platform is installed, the window cannot be opened");
        return false;
    }
    QLX_WindowSettings& settings = mState->settings;
    settings.mSize = {Cmn_ClampTo<int>(GetSize().h), Cmn_ClampTo<int>(GetSize().v)};
    mState->port = factory->MakePort(settings, &mState->client);
    if (!mState->port)
        return false;
    if (!GetNextHandler())
        IEventHandler(gApplication);
    const VPoint minimum = CalcMinFrame();
    mState->port->SetMinimumSize({Cmn_ClampTo<int>(minimum.h), Cmn_ClampTo<int>(minimum.v)});
    sWindows.push_back(this);
    sUpdater.JoinLoop();
    Resized();
    if (show)
        ShowWindow(true);
    return true;
}

void TWindow::Close() {
    if (!mState->port)
        return;
    const StDispatch dispatch;
    HideToolTip();
    CancelTracker();
    MouseLeft();
    SetActive(false);
    if (!mState->port)
        return; // a view that was left has closed it
    SetDrawingPainter(nullptr);
    std::erase(sWindows, this);
    if (sWindows.empty())
        sUpdater.LeaveLoop();
    // The port may be what is calling: it is deleted when the event it delivers is over.
    mState->closedPorts.push_back(std::move(mState->port));
    mState->closedPorts.back()->Show(false);
    if (mState->delivering == 0)
        mState->closedPorts.clear();
    QLX_ModalWindows::WindowClosed(this);
    if (mState->freeOnClose)
        Free();
}

bool TWindow::IsOpen() const { return mState->port != nullptr; }

void TWindow::ShowWindow(bool show) {
    if (mState->port)
        mState->port->Show(show);
}

void TWindow::Activate() {
    if (mState->port)
        mState->port->Activate();
}

QLX_WindowPort* TWindow::GetPort() const { return mState->port.get(); }

void TWindow::SetTitle(const std::string& title) {
    mState->settings.mTitle = title;
    if (mState->port)
        mState->port->SetTitle(title);
}

const std::string& TWindow::GetTitle() const { return mState->settings.mTitle; }

QLX_WindowSettings& TWindow::GetSettings() { return mState->settings; }

void TWindow::SetFreeOnClose(bool free) { mState->freeOnClose = free; }

bool TWindow::IsActive() const { return sActive == this; }

QLX_DeviceScale TWindow::GetScale() const {
    return mState->port ? QLX_DeviceScale::From120ths(mState->port->GetScale()) : QLX_DeviceScale();
}

// Size

void TWindow::SetFrame(const VRect& frame, bool redraw, bool layOut) {
    TInvalidateView::SetFrame(frame, redraw, layOut);
    if (!mState->port || mState->following)
        return;
    const Cmn_Point<int> size{Cmn_ClampTo<int>(GetSize().h), Cmn_ClampTo<int>(GetSize().v)};
    if (size != mState->port->GetSize())
        mState->port->SetSize(size);
}

void TWindow::Resized() {
    const Cmn_Point<int> size = mState->port->GetSize();
    mState->following = true;
    TInvalidateView::SetFrame({GetLocation(), GetLocation() + VPoint(size.x, size.y)},
                              /*redraw*/ false, /*layOut*/ true);
    mState->following = false;
    SetDrawingPainter(mState->port->GetPainter());
    ForceRedraw();
    PortChanged();
}

void TWindow::PortChanged() {}

void TWindow::CloseRequested() { Close(); }

void TWindow::AddedASubView(TView* sub) {
    TInvalidateView::AddedASubView(sub);
    if (mState->toolTip && sub != mState->toolTip)
        MakeLastSubView(mState->toolTip);
    TInspector::SubViewAdded(this, sub);
}

// Drawing

void TWindow::Draw(const VRect& area) {
    const PainterPtr& painter = GetPainter();
    if (!painter)
        return;
    if (mState->background >= 0)
        painter->SetForeground(static_cast<EThemeColor>(mState->background));
    else
        painter->SetForegroundColor(mState->backgroundColor);
    painter->FillRect(area.ToCmn_Rect());
}

EHighlight TWindow::GetCurrentHL() const { return IsActive() ? kHighlight_On : kHighlight_Dim; }

// Nothing to do: the loop asks every open window in every turn.
void TWindow::BecameInvalid() {}

void TWindow::Drawn(const QLX_Region& region) {
    const Cmn_RectList& list = region.GetRectList();
    if (ShowRects(list.data(), list.size()) && IsPaintFlashing())
        TInspector::Flash(this, region);
    PresentShown();
}

void TWindow::DrawnRect(const Cmn_Rect<int>& rect) {
    if (ShowRects(&rect, 1) && IsPaintFlashing())
        TInspector::Flash(this, QLX_Region(rect));
    PresentShown();
}

// Collects what of the rectangles lies on the surface, in device pixels. False when nothing does.
bool TWindow::ShowRects(const Cmn_Rect<int>* drawn, std::size_t count) {
    std::vector<Cmn_Rect<int>>& rects = mState->shownRects;
    rects.clear();
    const QLX_WindowPort* port = mState->port.get();
    if (!port)
        return false;
    const QLX_DeviceScale scale = GetScale();
    const VPoint corner = GetLocalOffset();
    const Cmn_Point<int> size = port->GetSize();
    const Cmn_Rect<int> surface = scale.RectToDevice({0, 0, size.x, size.y});
    for (std::size_t i = 0; i < count; ++i) {
        Cmn_Rect<int> device = scale.RectToDevice((VRect(drawn[i]) - corner).ToCmn_Rect());
        device.left = std::max(device.left, surface.left);
        device.top = std::max(device.top, surface.top);
        device.right = std::min(device.right, surface.right);
        device.bottom = std::min(device.bottom, surface.bottom);
        if (device.left >= device.right || device.top >= device.bottom)
            continue;
        rects.push_back(device);
        GetCosts().mPixelsShown += static_cast<std::uint64_t>(device.right - device.left) *
                                   static_cast<std::uint64_t>(device.bottom - device.top);
    }
    GetCosts().mRectsShown += rects.size();
    return !rects.empty();
}

void TWindow::PresentShown() {
    if (!mState->shownRects.empty() && mState->port)
        mState->port->Present(mState->shownRects);
}

// Activation and target

void TWindow::SetActive(bool active) {
    if (active == (sActive == this))
        return;
    if (active && sActive)
        sActive->SetActive(false);
    const StDispatch dispatch;
    if (active) {
        sActive = this;
        if (mState->port) {
            std::erase(sWindows, this);
            sWindows.push_back(this);
        }
        TEventHandler* target = mState->target ? mState->target : this;
        mState->target = nullptr;
        if (gApplication) {
            gApplication->SetTarget(target);
            target->BecameWindowTarget();
        }
    } else {
        TEventHandler* target = gApplication ? gApplication->GetTarget() : nullptr;
        sActive = nullptr;
        if (target && target->GetWindow() == this) {
            // Only views tell the window when they go.
            mState->target = target == this ? nullptr : QLX_ObjectCast<TView>(target);
            target->ResignedWindowTarget();
            if (gApplication->GetTarget() == target)
                gApplication->SetTarget(gApplication);
        }
        CancelTracker();
        HideToolTip();
    }
    DoActivate(active);
    UpdateTextInput();
}

void TWindow::DoActivate(bool) {
    if (HasAdorners())
        ForceRedraw();
}

TEventHandler* TWindow::GetWindowTarget() const {
    if (sActive != this || !gApplication)
        return mState->target;
    TEventHandler* target = gApplication->GetTarget();
    return target && target != this && target->GetWindow() == this ? target : nullptr;
}

bool TWindow::SetWindowTarget(TEventHandler* target) {
    if (sActive != this || !gApplication) {
        mState->target = target == this ? nullptr : QLX_ObjectCast<TView>(target);
        return true;
    }
    const bool done = (target ? target : this)->BecomeTarget();
    UpdateTextInput();
    return done;
}

bool TWindow::WantsToBeTarget() { return false; }

namespace {

void GatherTabViews(TView* view, std::vector<TView*>& views) {
    for (int i = 1; i <= view->CountSubViews(); ++i) {
        TView* sub = view->GetSubView(i);
        if (!sub->GetShownFlag() || !sub->IsEnabled())
            continue;
        if (sub->WantsToBeTarget() && sub->GetTabOrder() >= 0)
            views.push_back(sub);
        GatherTabViews(sub, views);
    }
}

} // namespace

std::vector<TView*> TWindow::GetTabViews() {
    std::vector<TView*> views;
    GatherTabViews(this, views);
    std::stable_sort(views.begin(), views.end(), [](const TView* a, const TView* b) {
        return a->GetTabOrder() < b->GetTabOrder();
    });
    return views;
}

bool TWindow::AdvanceTarget(bool forward) {
    const std::vector<TView*> views = GetTabViews();
    if (views.empty())
        return false;
    const auto now = std::find(views.begin(), views.end(), GetWindowTarget());
    const auto count = static_cast<std::ptrdiff_t>(views.size());
    std::ptrdiff_t next = forward ? 0 : count - 1;
    if (now != views.end())
        next = (now - views.begin() + (forward ? 1 : count - 1)) % count;
    TView* view = views[static_cast<std::size_t>(next)];
    if (!SetWindowTarget(view))
        return false;
    view->RevealRect(view->GetExtent());
    return true;
}

void TWindow::DoKeyEvent(TToolboxEvent* event) {
    const bool plain = !event->IsCommandKeyPressed() && !event->IsOptionKeyPressed() &&
                       !event->IsControlKeyPressed();
    if (plain && event->mKeyCode == kDAW_Key_Tab && AdvanceTarget(!event->IsShiftKeyPressed()))
        return;
    TInvalidateView::DoKeyEvent(event);
}

// Leaving

void TWindow::SubTreeLeaves(TView* view) {
    const StDispatch dispatch;
    const auto isInside = [view](TView* each) {
        return each && (each == view || each->IsContainedIn(view));
    };
    State& state = *mState;
    const auto hovered = std::find(state.hoverPath.begin(), state.hoverPath.end(), view);
    if (hovered != state.hoverPath.end())
        state.LeaveDownTo(static_cast<std::size_t>(hovered - state.hoverPath.begin()), nullptr);
    if (state.tracker && isInside(state.tracker->GetView()))
        CancelTracker();
    if (isInside(state.pressed))
        state.pressed = nullptr;
    if (isInside(state.toolTipFor))
        HideToolTip();
    if (isInside(QLX_ObjectCast<TView>(state.target)))
        state.target = nullptr;
    if (gApplication && isInside(QLX_ObjectCast<TView>(gApplication->GetTarget()))) {
        TView* next = view->GetSuperView() ? view->GetSuperView() : this;
        gApplication->SetTarget(next);
    }
    DropFocus();
}

// Description

void TWindow::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TInvalidateView::ReadProperties(container, memento);
    QLX_WindowSettings& settings = mState->settings;
    std::string text;
    if (memento && container->GetStringKeyProperty("Title", text))
        SetTitle(memento->GetLocalizedStringProperty(container, "Title"));
    else if (container->GetStringProperty("Title", text))
        SetTitle(text);
    container->GetBoolProperty("Resizable", settings.mResizable);
    container->GetBoolProperty("HasFrame", settings.mFrame);
    container->GetBoolProperty("IsDialog", settings.mDialog);
    container->GetBoolProperty("IsPopup", settings.mPopup);
    container->GetBoolProperty("FreeOnClose", mState->freeOnClose);
    if (container->GetColorProperty("BackgroundColor", mState->backgroundColor)) {
        mState->background = -1;
        ForceRedraw();
    }
    if (!container->GetStringProperty("Background", text))
        return;
    EThemeColor color = kThemeColor_WindowBackground;
    if (QLX_Theme::FindByName(text, color)) {
        mState->background = color;
        ForceRedraw();
    } else {
        TViewServer::Get()->AddProblem(container, memento, GetClassDescDynamic()->GetClassName(),
                                       "Background is no theme colour: \"" + text + "\"");
    }
}
