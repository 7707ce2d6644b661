#include "qlx/views/ucontrol.h"

#include <algorithm>
#include <cmath>

#include "qlx/imaging/qlx_statesavers.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/ucolortable.h"

QLX_DEFINE_CLASS(TControl, TView)

TControl::TControl() = default;
TControl::~TControl() = default;

TObject* TControl::Clone() {
    auto* copy = static_cast<TControl*>(TView::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mChangeCallback, mChangeCallback);
    CopyMember(copy->mControlTheme, mControlTheme);
    return copy;
}

// Value

void TControl::SetRange(std::int32_t minimum, std::int32_t maximum, bool redraw) {
    mMinimum = std::min(minimum, maximum);
    mMaximum = std::max(minimum, maximum);
    const std::int32_t value = std::clamp(mValue, mMinimum, mMaximum);
    if (value != mValue)
        SetValue(value, /*redraw*/ false);
    if (redraw) // all of it: where the old value was shown is not known by the new bounds
        ForceRedraw();
}

void TControl::SetValue(std::int32_t value, bool redraw) {
    const std::int32_t held = std::clamp(value, mMinimum, mMaximum);
    if (held == mValue)
        return;
    mValue = held;
    if (redraw)
        ForceRedraw();
    AccessibilityNotification(kAccessibility_ValueChanged, nullptr);
}

bool TControl::ChangeValue(std::int32_t value, EControlEvent event) {
    const std::int32_t before = GetValue();
    SetValue(value, /*redraw*/ true);
    if (GetValue() == before)
        return false;
    NotifyChange(event);
    return true;
}

std::string TControl::GetValueText() const { return std::to_string(mValue); }

// Who hears of changes

void TControl::SetChangeCallback(ChangeCallback callback) { mChangeCallback = std::move(callback); }

TEventHandler* TControl::GetSupervisor() { return mSupervisor ? mSupervisor : GetNextHandler(); }

void TControl::NotifyChange(EControlEvent event) {
    // Whoever hears of it may free the control: inside the scope it stays readable.
    const StDispatch dispatch;
    if (mChangeCallback) {
        const ChangeCallback callback = mChangeCallback; // it may replace itself
        callback(*this, event);
    }
    if (TEventHandler* supervisor = GetSupervisor())
        supervisor->HandleEvent(event, this, nullptr);
    const bool settled = event == kControlEvent_ValueChanged || event == kControlEvent_Pressed;
    if (settled && mCommandNumber != 0)
        HandleMenuCommand(mCommandNumber);
}

// Look

void TControl::SetHilite(bool hilited, bool redraw) {
    if (hilited == mHilited)
        return;
    mHilited = hilited;
    if (redraw)
        ForceRedraw();
}

void TControl::SetControlTheme(const std::string& name, bool redraw) {
    mControlTheme = name;
    if (redraw)
        ForceRedraw();
}

CRGBColor TControl::GetControlColor(EThemeColor color) const {
    CRGBColor own;
    const CColorTable* table = mControlTheme.empty() ? nullptr : CColorTable::GetPresent();
    if (table && table->Find(mControlTheme + "." + QLX_Theme::GetName(color), own))
        return own;
    return QLX_Theme::GetColor(color);
}

CRGBColor TControl::GetTextColor(EThemeColor color) {
    return GetControlColor(IsEnabled() ? color : kThemeColor_DisabledText);
}

void TControl::SetControlFont(int fontNumber, int styleSelector) {
    mFontNumber = static_cast<std::int16_t>(fontNumber);
    mFontStyle = static_cast<std::int16_t>(styleSelector);
}

QLX_Font TControl::GetControlFont() const {
    const QLX_Font font = QLX_FontMap::RetrieveFont(
        mFontNumber ? mFontNumber : std::int16_t{kFont_Interface}, mFontStyle);
    return mFontSize > 0 ? font.WithSize(mFontSize) : font;
}

void TControl::DoFocus(const PainterPtr& painter) {
    TView::DoFocus(painter);
    if (mFontNumber != 0 || mFontStyle != 0 || mFontSize > 0)
        painter->SetFont(GetControlFont());
}

bool TControl::ShowsFocus() { return mAlwaysShowsFocus || IsTarget(); }

int TControl::GetFocusRingWidth() { return QLX_Theme::IsHighContrast() ? 3 : 2; }

void TControl::DrawFocusRing(int inset, int radius) {
    if (!ShowsFocus())
        return;
    const PainterPtr& painter = GetPainter();
    VRect ring = GetExtent();
    ring.Inset(VPoint(inset, inset));
    QLX_StPaintState saver(painter);
    painter->SetForegroundColor(GetControlColor(kThemeColor_FocusRing));
    const auto thickness = static_cast<short>(GetFocusRingWidth());
    painter->SetPenSize(thickness, thickness);
    painter->DrawRoundRect(ring, radius, radius, /*antialias*/ true, /*topOnly*/ false);
}

// Target and enabling

bool TControl::WantsToBeTarget() { return mTakesFocus && IsEnabled() && IsShown(); }

void TControl::BecameTarget() {
    TView::BecameTarget();
    ForceRedraw();
    AccessibilityNotification(kAccessibility_TargetChanged, nullptr);
}

void TControl::ResignedTarget() {
    TView::ResignedTarget();
    ForceRedraw();
    AccessibilityNotification(kAccessibility_TargetChanged, nullptr);
}

void TControl::SetEnable(bool enable) {
    if (enable == TView::IsEnabled())
        return;
    const StDispatch dispatch; // who hears that it is the target no longer may free it
    TView::SetEnable(enable);
    if (!enable && IsTarget())
        ResignTarget();
    ForceRedraw();
}

// Accessibility

void TControl::GetAccessibleInfo(TAccessibleInfo& info) const {
    TView::GetAccessibleInfo(info);
    info.mValue = GetValueText();
}

bool TControl::GetRangeForAccessibility(double& minimum, double& maximum, double& value) {
    minimum = mMinimum;
    maximum = mMaximum;
    value = mValue;
    return true;
}

bool TControl::SetRangeForAccessibility(double value) {
    if (!IsEnabled() || !std::isfinite(value))
        return false;
    const double held =
        std::clamp(value, static_cast<double>(mMinimum), static_cast<double>(mMaximum));
    ChangeValue(static_cast<std::int32_t>(std::lround(held)), kControlEvent_ValueChanged);
    return true;
}

// Description

bool TControl::ReadText(QLX_RawPropertyContainer* container, const MementoPtr& memento,
                        const char* name, std::string& text) {
    std::string key;
    if (memento && container->GetStringKeyProperty(name, key)) {
        const std::string localized = memento->GetLocalizedStringProperty(container, name);
        // A key that no table has shows itself, so that the gap is seen and not a blank button.
        text = localized.empty() ? key : localized;
        return true;
    }
    return container->GetStringProperty(name, text);
}

void TControl::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TView::ReadProperties(container, memento);
    std::int32_t minimum = mMinimum;
    std::int32_t maximum = mMaximum;
    std::int32_t value = mValue;
    container->GetInt32Property("Minimum", minimum);
    container->GetInt32Property("Maximum", maximum);
    SetRange(minimum, maximum, /*redraw*/ false);
    // A description that is read again must not undo what the user has set since.
    if (container->GetInt32Property("Value", value) && !mHasReadValue)
        SetValue(value, /*redraw*/ false);
    mHasReadValue = true;
    container->GetStringProperty("ControlTheme", mControlTheme);
    container->GetInt32Property("CommandNumber", mCommandNumber);
    std::int32_t number = mFontNumber;
    if (container->GetInt32Property("FontNumber", number))
        mFontNumber = Cmn_ClampTo<std::int16_t>(number);
    if (container->GetInt32Property("FontStyle", number))
        mFontStyle = Cmn_ClampTo<std::int16_t>(number);
    if (container->GetInt32Property("FontSize", number))
        mFontSize = Cmn_ClampTo<std::int16_t>(number);
    container->GetBoolProperty("TakesFocus", mTakesFocus);
    container->GetBoolProperty("Hilited", mHilited);
    container->GetBoolProperty("ShowsFocus", mAlwaysShowsFocus);
}
