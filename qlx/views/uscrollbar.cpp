#include "qlx/views/uscrollbar.h"

#include <algorithm>
#include <cmath>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uevent.h"
#include "qlx/views/uinvalidateview.h"
#include "qlx/views/utracker.h"

QLX_DEFINE_CLASS(TScrollBar, TControl)
QLX_DEFINE_CLASS(TScroller, TControl)

namespace {

constexpr double kRepeatSeconds = 0.1;
constexpr int kLinesPerNotch = 3;

/// Drags the thumb.
class TThumbTracker : public TTracker {
  public:
    void TrackMouse(TrackPhase phase, const VPoint& anchor, const VPoint&, const VPoint& next,
                    TToolboxEvent*) override {
        auto* bar = static_cast<TScrollBar*>(GetView());
        if (!bar)
            return;
        if (phase == kTrack_Begin) {
            mBefore = bar->GetValue();
            bar->SetHilite(true, /*redraw*/ true);
            return;
        }
        const VRect extent = bar->GetExtent();
        const VRect thumb = bar->GetThumb();
        const bool vertical = bar->IsVertical();
        const VCoordinate room = vertical ? extent.GetHeight() - thumb.GetHeight()
                                          : extent.GetWidth() - thumb.GetWidth();
        const VCoordinate moved = vertical ? next.v - anchor.v : next.h - anchor.h;
        const double range = static_cast<double>(bar->GetMaximum()) - bar->GetMinimum();
        const double value =
            room > 0 ? mBefore + static_cast<double>(moved) * range / static_cast<double>(room)
                     : mBefore;
        const double held = std::clamp(value, static_cast<double>(bar->GetMinimum()),
                                       static_cast<double>(bar->GetMaximum()));
        const bool cancelled = phase == kTrack_Cancel;
        if (phase != kTrack_Continue)
            bar->SetHilite(false, /*redraw*/ true);
        bar->ChangeValue(cancelled ? mBefore : static_cast<std::int32_t>(std::lround(held)),
                         kControlEvent_ValueChanging);
    }

  private:
    std::int32_t mBefore = 0;
};

/// Goes pages towards the pointer while the button is held, and stops when the thumb is under it.
class TPageTracker : public TTracker {
  public:
    TPageTracker() { SetRepeat(kRepeatSeconds); }

    void TrackMouse(TrackPhase phase, const VPoint&, const VPoint&, const VPoint& next,
                    TToolboxEvent*) override {
        auto* bar = static_cast<TScrollBar*>(GetView());
        if (!bar || phase == kTrack_End || phase == kTrack_Cancel)
            return;
        const VRect thumb = bar->GetThumb();
        const VCoordinate at = bar->IsVertical() ? next.v : next.h;
        const VCoordinate from = bar->IsVertical() ? thumb.Top() : thumb.Left();
        const VCoordinate to = bar->IsVertical() ? thumb.Bottom() : thumb.Right();
        if (at < from && mDirection <= 0)
            bar->ScrollPage(mDirection = -1);
        else if (at >= to && mDirection >= 0)
            bar->ScrollPage(mDirection = 1);
    }

  private:
    int mDirection = 0; // of the first page; the other way only by another press
};

} // namespace

// TScrollBar

TScrollBar::TScrollBar() {
    SetTakesFocus(false);
    SetRange(0, 0, /*redraw*/ false);
}

TScrollBar::~TScrollBar() = default;

void TScrollBar::SetPageSize(std::int32_t page, bool redraw) {
    mPageSize = std::max(1, page);
    if (redraw)
        ForceRedraw();
}

bool TScrollBar::IsVertical() const { return GetSize().v > GetSize().h; }

VRect TScrollBar::GetThumb() const {
    const VRect extent = GetExtent();
    const double range = static_cast<double>(GetMaximum()) - GetMinimum();
    if (range <= 0)
        return VRect(extent.Left(), extent.Top(), extent.Left(), extent.Top());
    const VCoordinate length = IsVertical() ? extent.GetHeight() : extent.GetWidth();
    const double share = mPageSize / (range + mPageSize);
    const VCoordinate thumbLength = std::min(
        length, std::max<VCoordinate>(
                    kShortestThumb, static_cast<VCoordinate>(share * static_cast<double>(length))));
    const double before = (static_cast<double>(GetValue()) - GetMinimum()) / range *
                          static_cast<double>(length - thumbLength);
    const auto start = static_cast<VCoordinate>(std::llround(before));
    if (IsVertical())
        return VRect(extent.Left(), extent.Top() + start, extent.Right(),
                     extent.Top() + start + thumbLength);
    return VRect(extent.Left() + start, extent.Top(), extent.Left() + start + thumbLength,
                 extent.Bottom());
}

void TScrollBar::ScrollPage(int direction) {
    const std::int64_t page = std::max(1, mPageSize - mLineSize);
    ChangeValue(Cmn_ClampTo<std::int32_t>(GetValue() + direction * page),
                kControlEvent_ValueChanging);
}

bool TScrollBar::DoMouseCommand(const VPoint& local, TToolboxEvent* event) {
    if (!IsEnabled() || GetThumb().Empty())
        return true;
    if (GetThumb().Contains(local))
        return BeginTracking(new TThumbTracker, local, event);
    return BeginTracking(new TPageTracker, local, event);
}

bool TScrollBar::DoMouseWheel(const VPoint&, TToolboxEvent* event) {
    const Cmn_Point<int> delta = QLX_GetWheelDelta(event);
    const std::int64_t turned = delta.y != 0 ? -delta.y : delta.x;
    const std::int64_t lines = turned * kLinesPerNotch / kWheel_Notch;
    return ChangeValue(Cmn_ClampTo<std::int32_t>(GetValue() + lines * mLineSize),
                       kControlEvent_ValueChanging);
}

void TScrollBar::SetValue(std::int32_t value, bool redraw) {
    const VRect before = GetThumb();
    TControl::SetValue(value, /*redraw*/ false);
    const VRect after = GetThumb();
    if (redraw && !(after == before)) {
        InvalidateVRect(before);
        InvalidateVRect(after);
    }
}

void TScrollBar::Draw(const VRect&) {
    const PainterPtr& painter = GetPainter();
    const Cmn_Rect<int> box = GetExtent();
    painter->SetForegroundColor(GetControlColor(kThemeColor_ScrollTrack));
    painter->FillRect(box);
    if (QLX_Theme::IsHighContrast()) { // the track has the ground's colour there
        painter->SetForegroundColor(GetControlColor(kThemeColor_ControlFrame));
        painter->DrawRect(box);
    }
    Cmn_Rect<int> thumb = GetThumb();
    if (thumb.right <= thumb.left || thumb.bottom <= thumb.top)
        return;
    const CRGBColor color = GetControlColor(kThemeColor_ScrollThumb);
    const CRGBColor track = GetControlColor(kThemeColor_ScrollTrack);
    painter->SetForegroundColor(!IsEnabled()  ? track.GetScaledBetween(color, 0.4f)
                                : IsHilited() ? color.GetScaled(/*darken*/ true, 85)
                                              : color);
    (IsVertical() ? thumb.left : thumb.top) += 3;
    (IsVertical() ? thumb.right : thumb.bottom) -= 3;
    painter->FillRoundRect(thumb, 4, 4, /*antialias*/ true, /*topOnly*/ false);
}

void TScrollBar::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "scrollbar";
}

void TScrollBar::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TControl::ReadProperties(container, memento);
    std::int32_t size = mPageSize;
    if (container->GetInt32Property("PageSize", size))
        SetPageSize(size, /*redraw*/ false);
    container->GetInt32Property("LineSize", mLineSize);
}

// TScroller

TScroller::TScroller() { SetTakesFocus(false); }

TScroller::~TScroller() = default;

TObject* TScroller::Clone() {
    auto* copy = static_cast<TScroller*>(TControl::Clone());
    if (!copy)
        return nullptr;
    // The copies of the bars lie at the same places among the copy's subviews.
    copy->mHorizontal = copy->mVertical = nullptr;
    for (int n = 1; n <= CountSubViews(); ++n) {
        if (GetSubView(n) == mHorizontal)
            copy->mHorizontal = QLX_ObjectCast<TScrollBar>(copy->GetSubView(n));
        else if (GetSubView(n) == mVertical)
            copy->mVertical = QLX_ObjectCast<TScrollBar>(copy->GetSubView(n));
    }
    for (TScrollBar* bar : {copy->mHorizontal, copy->mVertical})
        if (bar)
            bar->SetSupervisor(copy);
    return copy;
}

TView* TScroller::GetContent() {
    SubViewWalk walk(this, SubViewWalk::Order::BackToFront);
    while (TView* sub = walk.Next())
        if (sub != mHorizontal && sub != mVertical)
            return sub;
    return nullptr;
}

VRect TScroller::GetViewport() {
    VRect viewport = GetExtent();
    if (mVertical && mVertical->GetShownFlag())
        viewport.Right() -= TScrollBar::kThickness;
    if (mHorizontal && mHorizontal->GetShownFlag())
        viewport.Bottom() -= TScrollBar::kThickness;
    return viewport;
}

VPoint TScroller::GetContentPlace() {
    TView* content = GetContent();
    return content ? GetExtent().GetTopLeft() - content->GetLocation() : VPoint();
}

void TScroller::ScrollContentTo(const VPoint& place, bool redraw) {
    TView* content = GetContent();
    if (!content)
        return;
    const VRect viewport = GetViewport();
    const VPoint size = content->GetSize();
    const VPoint held(
        std::clamp<VCoordinate>(place.h, 0, std::max<VCoordinate>(0, size.h - viewport.GetWidth())),
        std::clamp<VCoordinate>(place.v, 0,
                                std::max<VCoordinate>(0, size.v - viewport.GetHeight())));
    const VPoint moved = GetContentPlace() - held;
    if (!(moved == VPoint())) {
        content->Locate(GetExtent().GetTopLeft() - held, /*redraw*/ false);
        AccessibilityNotification(kAccessibility_ScrollChanged, nullptr);
        if (redraw)
            MovePixels(content, viewport & GetVisibleRect(), moved);
    }
    if (mHorizontal)
        mHorizontal->SetValue(Cmn_ClampTo<std::int32_t>(held.h), redraw);
    if (mVertical)
        mVertical->SetValue(Cmn_ClampTo<std::int32_t>(held.v), redraw);
}

// What is on the screen already moves; only what comes into sight is drawn.
void TScroller::MovePixels(TView* content, const VRect& visible, const VPoint& moved) {
    TInvalidateView* invalidateView = GetInvalidateView();
    if (!invalidateView || !IsShown())
        return;
    if (visible.Empty())
        return ForceRedraw(); // smaller than its bars, the content may show beside them
    VRect rect = visible;
    LocalToWindowVRect(rect);
    invalidateView->WindowToLocalVRect(rect);
    if (!invalidateView->ScrollPixels(content, rect, moved))
        InvalidateVRect(visible);
}

void TScroller::RevealInContent(const VRect& rect) {
    TView* content = GetContent();
    if (!content)
        return;
    const VRect local = rect - content->GetLocalOffset();
    const VPoint visible = GetViewport().GetSize();
    VPoint place = GetContentPlace();
    for (const PointSelector axis : {kVertical, kHorizontal}) {
        if (local[kBottomRight][axis] > place[axis] + visible[axis])
            place[axis] = local[kBottomRight][axis] - visible[axis];
        if (local[kTopLeft][axis] < place[axis])
            place[axis] = local[kTopLeft][axis];
    }
    ScrollContentTo(place, /*redraw*/ true);
}

TScroller* TScroller::Around(TView* content) {
    TScroller* scroller = QLX_ObjectCast<TScroller>(content->GetSuperView());
    return scroller && scroller->GetContent() == content ? scroller : nullptr;
}

void TScroller::ContentChanged(bool redraw) { PlaceBars(redraw); }

void TScroller::PlaceBars(bool redraw) {
    TView* content = GetContent();
    if (!content || mPlacing)
        return;
    mPlacing = true; // adding a bar comes back here
    const VRect extent = GetExtent();
    const VPoint size = content->GetSize();
    // One bar takes room from the other direction, which may then need its bar too.
    bool vertical = mMayHaveVertical && size.v > extent.GetHeight();
    const bool horizontal =
        mMayHaveHorizontal && size.h > extent.GetWidth() - (vertical ? TScrollBar::kThickness : 0);
    vertical =
        mMayHaveVertical && size.v > extent.GetHeight() - (horizontal ? TScrollBar::kThickness : 0);
    const VCoordinate right = extent.Right() - (vertical ? TScrollBar::kThickness : 0);
    const VCoordinate bottom = extent.Bottom() - (horizontal ? TScrollBar::kThickness : 0);
    PlaceBar(mHorizontal, horizontal, VRect(extent.Left(), bottom, right, extent.Bottom()), size.h,
             right - extent.Left(), redraw);
    PlaceBar(mVertical, vertical, VRect(right, extent.Top(), extent.Right(), bottom), size.v,
             bottom - extent.Top(), redraw);
    mPlacing = false;
    ScrollContentTo(GetContentPlace(), redraw);
}

void TScroller::PlaceBar(TScrollBar*& bar, bool wanted, const VRect& frame, VCoordinate content,
                         VCoordinate visible, bool redraw) {
    if (!bar && !wanted)
        return;
    if (!bar) {
        bar = new TScrollBar;
        bar->SetSupervisor(this);
        bar->IView(this, frame);
        bar->SetLineSize(16);
    }
    bar->SetEnable(IsEnabled());
    bar->SetFrame(frame, redraw, /*layOut*/ true);
    bar->SetPageSize(Cmn_ClampTo<std::int32_t>(std::max<VCoordinate>(1, visible)), redraw);
    bar->SetRange(0, Cmn_ClampTo<std::int32_t>(std::max<VCoordinate>(0, content - visible)),
                  redraw);
    bar->Show(wanted, redraw);
}

void TScroller::SetEnable(bool enable) {
    TControl::SetEnable(enable);
    for (TScrollBar* bar : {mHorizontal, mVertical})
        if (bar)
            bar->SetEnable(enable);
}

void TScroller::SetFrame(const VRect& frame, bool redraw, bool layOut) {
    TControl::SetFrame(frame, redraw, layOut);
    PlaceBars(redraw);
}

void TScroller::AddedASubView(TView* sub) {
    TControl::AddedASubView(sub);
    if (sub == mHorizontal || sub == mVertical)
        return;
    sub->SuperViewChangedSize(GetSize(), GetSize(), /*redraw*/ false); // fits what follows the size
    PlaceBars(/*redraw*/ true);
}

void TScroller::DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) {
    const bool moved =
        number == kControlEvent_ValueChanging || number == kControlEvent_ValueChanged;
    if (!moved || (source != mHorizontal && source != mVertical)) {
        TControl::DoEvent(number, source, event);
        return;
    }
    VPoint place = GetContentPlace();
    if (source == mHorizontal)
        place.h = mHorizontal->GetValue();
    else
        place.v = mVertical->GetValue();
    ScrollContentTo(place, /*redraw*/ true);
}

void TScroller::DoKeyEvent(TToolboxEvent* event) {
    VPoint place = GetContentPlace();
    const VCoordinate page = std::max<VCoordinate>(1, GetViewport().GetHeight() - 16);
    switch (event->mKeyCode) {
    case kDAW_Key_PageUp:
        place.v -= page;
        break;
    case kDAW_Key_PageDown:
        place.v += page;
        break;
    case kDAW_Key_Home:
        place.v = 0;
        break;
    case kDAW_Key_End:
        place.v = kView_MaxCoordinate;
        break;
    default:
        TControl::DoKeyEvent(event);
        return;
    }
    ScrollContentTo(place, /*redraw*/ true);
}

bool TScroller::DoMouseWheel(const VPoint&, TToolboxEvent* event) {
    const Cmn_Point<int> delta = QLX_GetWheelDelta(event);
    const VPoint before = GetContentPlace();
    const bool sideways = event->IsShiftKeyPressed();
    const VCoordinate down = -static_cast<VCoordinate>(delta.y) * 48 / kWheel_Notch;
    const VCoordinate across = static_cast<VCoordinate>(delta.x) * 48 / kWheel_Notch;
    ScrollContentTo(before + (sideways ? VPoint(down, across) : VPoint(across, down)),
                    /*redraw*/ true);
    return !(GetContentPlace() == before); // at an end the scroller around this one goes on
}

void TScroller::ReadContainer(QLX_RawPropertyContainer* container, const MementoPtr& memento,
                              TView* view) {
    TControl::ReadContainer(container, memento, view);
    PlaceBars(/*redraw*/ false);
}

void TScroller::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TControl::ReadProperties(container, memento);
    container->GetBoolProperty("HorizontalBar", mMayHaveHorizontal);
    container->GetBoolProperty("VerticalBar", mMayHaveVertical);
}
