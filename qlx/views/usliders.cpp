#include "qlx/views/usliders.h"

#include <algorithm>
#include <cmath>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/imaging/qlx_statesavers.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uevent.h"
#include "qlx/views/utracker.h"

QLX_DEFINE_CLASS(TRangeControl, TControl)
QLX_DEFINE_CLASS(TSlider, TRangeControl)
QLX_DEFINE_CLASS(TKnob, TRangeControl)

namespace {

constexpr double kFineDivisor = 10.0; // with Shift
constexpr double kPi = 3.14159265358979323846;

/// Moves a value by the distance dragged; Shift makes it finer from where it is, without a jump.
class TValueTracker : public TTracker {
  public:
    /// Pixels for the whole range; a thumb under the pointer follows it exactly.
    TValueTracker(double pixels, bool vertical)
        : mPixels(std::max(1.0, pixels)), mVertical(vertical) {}

    void TrackMouse(TrackPhase phase, const VPoint&, const VPoint& previous, const VPoint& next,
                    TToolboxEvent* event) override {
        auto* control = static_cast<TRangeControl*>(GetView());
        if (!control)
            return;
        switch (phase) {
        case kTrack_Begin:
            mBefore = control->GetValue();
            mShare = control->GetShare();
            control->SetHilite(true, /*redraw*/ true);
            break;
        case kTrack_Continue: {
            const double moved =
                static_cast<double>(mVertical ? previous.v - next.v : next.h - previous.h);
            const bool fine = event && event->IsShiftKeyPressed();
            mShare += moved / mPixels / (fine ? kFineDivisor : 1.0);
            control->ChangeValue(control->ValueAtShare(mShare), kControlEvent_ValueChanging);
            break;
        }
        case kTrack_End:
            control->SetHilite(false, /*redraw*/ true);
            if (control->GetValue() != mBefore)
                control->NotifyChange(kControlEvent_ValueChanged);
            break;
        case kTrack_Cancel:
            control->SetHilite(false, /*redraw*/ true);
            control->ChangeValue(mBefore, kControlEvent_Cancelled);
            break;
        }
    }

  private:
    double mPixels;
    bool mVertical;
    double mShare = 0;
    std::int32_t mBefore = 0;
};

} // namespace

// TRangeControl

TRangeControl::TRangeControl() { SetRange(0, 100, /*redraw*/ false); }

TRangeControl::~TRangeControl() = default;

TObject* TRangeControl::Clone() {
    auto* copy = static_cast<TRangeControl*>(TControl::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mValueName, mValueName);
    return copy;
}

void TRangeControl::SetSteps(std::int32_t step, std::int32_t pageStep) {
    mStep = std::max(1, step);
    mPageStep = std::max(1, pageStep);
}

void TRangeControl::SetStandardValue(std::int32_t value) {
    mStandardValue = value;
    mHasStandardValue = true;
}

double TRangeControl::GetShare() const {
    const double range = static_cast<double>(GetMaximum()) - GetMinimum();
    return range > 0 ? (static_cast<double>(GetValue()) - GetMinimum()) / range : 0.0;
}

std::int32_t TRangeControl::ValueAtShare(double share) const {
    const double range = static_cast<double>(GetMaximum()) - GetMinimum();
    const double held = std::isfinite(share) ? std::clamp(share, 0.0, 1.0) : 0.0;
    return static_cast<std::int32_t>(std::llround(GetMinimum() + held * range));
}

void TRangeControl::StepBy(std::int64_t delta) {
    const std::int64_t limited = std::clamp(delta, -(std::int64_t{1} << 33), std::int64_t{1} << 33);
    ChangeValue(Cmn_ClampTo<std::int32_t>(GetValue() + limited), kControlEvent_ValueChanged);
}

void TRangeControl::DoKeyEvent(TToolboxEvent* event) {
    switch (IsEnabled() ? event->mKeyCode : kDAW_Key_None) {
    case kDAW_Key_Up:
    case kDAW_Key_Right:
        return StepBy(mStep);
    case kDAW_Key_Down:
    case kDAW_Key_Left:
        return StepBy(-static_cast<std::int64_t>(mStep));
    case kDAW_Key_PageUp:
        return StepBy(mPageStep);
    case kDAW_Key_PageDown:
        return StepBy(-static_cast<std::int64_t>(mPageStep));
    case kDAW_Key_Home:
        ChangeValue(GetMinimum(), kControlEvent_ValueChanged);
        return;
    case kDAW_Key_End:
        ChangeValue(GetMaximum(), kControlEvent_ValueChanged);
        return;
    default:
        TControl::DoKeyEvent(event);
    }
}

bool TRangeControl::DoMouseWheel(const VPoint&, TToolboxEvent* event) {
    if (!IsEnabled() || !IsTarget())
        return false;
    mWheelRest += QLX_GetWheelDelta(event).y;
    const int notches = mWheelRest / kWheel_Notch;
    mWheelRest -= notches * kWheel_Notch;
    StepBy(static_cast<std::int64_t>(notches) * mStep);
    return true;
}

bool TRangeControl::TakeDoubleClick(TToolboxEvent* event) {
    if (QLX_GetClickCount(event) != 2)
        return false;
    ChangeValue(mHasStandardValue ? mStandardValue : GetMinimum(), kControlEvent_ValueChanged);
    return true;
}

void TRangeControl::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "slider";
    if (!mValueName.empty())
        info.mName = mValueName;
}

void TRangeControl::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TControl::ReadProperties(container, memento);
    std::int32_t step = mStep;
    std::int32_t pageStep = mPageStep;
    container->GetInt32Property("Step", step);
    container->GetInt32Property("PageStep", pageStep);
    SetSteps(step, pageStep);
    std::int32_t standard = 0;
    if (container->GetInt32Property("StandardValue", standard))
        SetStandardValue(standard);
    ReadText(container, memento, "ValueName", mValueName);
}

// TSlider

TSlider::TSlider() = default;
TSlider::~TSlider() = default;

namespace {

/// Of the part of the way up to the value.
CRGBColor FillColor(TControl& control) {
    if (control.IsEnabled())
        return control.GetControlColor(kThemeColor_ControlMark);
    return control.GetControlColor(QLX_Theme::IsHighContrast() ? kThemeColor_DisabledText
                                                               : kThemeColor_ControlFrame);
}

/// A thin outline, or the focus ring, around what the user moves.
void OutlineMoved(TControl& control, const TView::PainterPtr& painter) {
    const bool focused = control.ShowsFocus();
    const short thickness = !focused ? 1 : QLX_Theme::IsHighContrast() ? 3 : 2;
    painter->SetPenSize(thickness, thickness);
    painter->SetForegroundColor(
        control.GetControlColor(focused ? kThemeColor_FocusRing : kThemeColor_ControlFrame));
}

} // namespace

bool TSlider::IsVertical() const { return GetSize().v > GetSize().h; }

VRect TSlider::GetThumb() const {
    VRect thumb = GetExtent();
    const VCoordinate length = IsVertical() ? thumb.GetHeight() : thumb.GetWidth();
    const VCoordinate room = std::max<VCoordinate>(0, length - kThumbLength);
    const auto before =
        static_cast<VCoordinate>(std::llround(GetShare() * static_cast<double>(room)));
    if (IsVertical()) {
        thumb.Top() += room - before;
        thumb.Bottom() = thumb.Top() + kThumbLength;
    } else {
        thumb.Left() += before;
        thumb.Right() = thumb.Left() + kThumbLength;
    }
    return thumb;
}

bool TSlider::DoMouseCommand(const VPoint& local, TToolboxEvent* event) {
    if (!IsEnabled() || TakeDoubleClick(event))
        return true;
    if (WantsToBeTarget())
        BecomeTarget();
    const VRect extent = GetExtent();
    const bool vertical = IsVertical();
    const VCoordinate length = vertical ? extent.GetHeight() : extent.GetWidth();
    const double room = static_cast<double>(std::max<VCoordinate>(1, length - kThumbLength));
    if (!GetThumb().Contains(local)) {
        // A press beside the thumb brings the thumb's middle there, and the drag goes on from it.
        const VCoordinate from = vertical ? extent.Bottom() - local.v : local.h - extent.Left();
        ChangeValue(ValueAtShare((static_cast<double>(from) - kThumbLength / 2.0) / room),
                    kControlEvent_ValueChanging);
    }
    return BeginTracking(new TValueTracker(room, vertical), local, event);
}

void TSlider::SetValue(std::int32_t value, bool redraw) {
    const VRect before = GetThumb();
    TRangeControl::SetValue(value, /*redraw*/ false);
    if (redraw && !(GetThumb() == before))
        InvalidateVRect(before | GetThumb()); // the track between both is coloured too
}

void TSlider::Draw(const VRect&) {
    const PainterPtr& painter = GetPainter();
    const Cmn_Rect<int> box = GetExtent();
    const Cmn_Rect<int> thumb = GetThumb();
    Cmn_Rect<int> track = box;
    Cmn_Rect<int> filled;
    if (IsVertical()) {
        const int middle = (box.left + box.right) / 2;
        track = {middle - 2, box.top + kThumbLength / 2, middle + 2, box.bottom - kThumbLength / 2};
        filled = {track.left, thumb.bottom, track.right, track.bottom};
    } else {
        const int middle = (box.top + box.bottom) / 2;
        track = {box.left + kThumbLength / 2, middle - 2, box.right - kThumbLength / 2, middle + 2};
        filled = {track.left, track.top, thumb.left, track.bottom};
    }
    painter->SetForegroundColor(GetControlColor(kThemeColor_ScrollTrack));
    painter->FillRoundRect(track, 2, 2, /*antialias*/ true, /*topOnly*/ false);
    if (QLX_Theme::IsHighContrast()) { // the track has the ground's colour there
        painter->SetForegroundColor(GetControlColor(kThemeColor_ControlFrame));
        painter->DrawRect(track);
    }
    painter->SetForegroundColor(FillColor(*this));
    painter->FillRect(filled);
    painter->SetForegroundColor(
        GetControlColor(IsHilited() ? kThemeColor_ControlPressed : kThemeColor_ControlFace));
    painter->FillRoundRect(thumb, 3, 3, /*antialias*/ true, /*topOnly*/ false);
    const QLX_StPenState pen(painter);
    OutlineMoved(*this, painter);
    painter->DrawRoundRect(thumb, 3, 3, /*antialias*/ true, /*topOnly*/ false);
}

// TKnob

TKnob::TKnob() = default;
TKnob::~TKnob() = default;

bool TKnob::DoMouseCommand(const VPoint& local, TToolboxEvent* event) {
    if (!IsEnabled() || TakeDoubleClick(event))
        return true;
    if (WantsToBeTarget())
        BecomeTarget();
    return BeginTracking(new TValueTracker(kDragLength, /*vertical*/ true), local, event);
}

void TKnob::Draw(const VRect&) {
    const PainterPtr& painter = GetPainter();
    const Cmn_Rect<int> all = GetExtent();
    const int side = std::min(all.right - all.left, all.bottom - all.top);
    const int left = all.left + (all.right - all.left - side) / 2;
    const int top = all.top + (all.bottom - all.top - side) / 2;
    const Cmn_Rect<int> box{left + 1, top + 1, left + side - 1, top + side - 1};
    const Cmn_Rect<int> face{box.left + 4, box.top + 4, box.right - 4, box.bottom - 4};
    const int swept = static_cast<int>(std::lround(GetShare() * kSweepDegrees));
    const int start = 180 + (360 - kSweepDegrees) / 2;

    const QLX_StPenState pen(painter);
    painter->SetPenSize(3, 3);
    painter->SetForegroundColor(GetControlColor(kThemeColor_ScrollTrack));
    painter->DrawArc(box, start, kSweepDegrees, /*antialias*/ true);
    painter->SetForegroundColor(FillColor(*this));
    painter->DrawArc(box, start, swept, /*antialias*/ true);

    painter->SetForegroundColor(
        GetControlColor(IsHilited() ? kThemeColor_ControlPressed : kThemeColor_ControlFace));
    painter->FillOval(face, /*antialias*/ true);
    OutlineMoved(*this, painter);
    painter->DrawOval(face);

    const double angle = (start + swept) * kPi / 180.0;
    const double radius = (face.right - face.left) / 2.0;
    const double middleX = (face.left + face.right) / 2.0;
    const double middleY = (face.top + face.bottom) / 2.0;
    painter->SetPenSize(2, 2);
    painter->SetForegroundColor(GetTextColor(kThemeColor_ControlMark));
    const auto pointer = [&](double share) {
        return std::pair(static_cast<float>(middleX - 1 + std::sin(angle) * radius * share),
                         static_cast<float>(middleY - 1 - std::cos(angle) * radius * share));
    };
    const auto [fromX, fromY] = pointer(0.35);
    const auto [toX, toY] = pointer(0.85);
    painter->MoveTo(fromX, fromY, QLX_Painter::kResolution_Logical);
    painter->LineTo(toX, toY, /*includeEnd*/ true, QLX_Painter::kResolution_Logical, 0);
}
