#include "qlx/views/ubuttons.h"

#include <algorithm>

#include "newfilelibs/cmn/cmn_polygon.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/imaging/qlx_statesavers.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/udescribedpicture.h"
#include "qlx/views/uevent.h"
#include "qlx/views/utracker.h"

QLX_DEFINE_CLASS(TButtonBase, TControl)
QLX_DEFINE_CLASS(TButton, TButtonBase)
QLX_DEFINE_CLASS(TCheckBox, TButtonBase)
QLX_DEFINE_CLASS(TRadio, TButtonBase)
QLX_DEFINE_CLASS(TCluster, TControl)

namespace {
constexpr int kBoxSize = 14;   // of check boxes and radio buttons
constexpr int kBoxInset = 4;   // from the left edge, so that the focus ring keeps its distance
constexpr int kBoxAndGap = 24; // from the left edge to the title
} // namespace

/// Hilites the button while the mouse is inside of it and pushes it when it is released there.
class TButtonTracker : public TTracker {
  public:
    void TrackMouse(TrackPhase phase, const VPoint&, const VPoint&, const VPoint& next,
                    TToolboxEvent*) override {
        auto* button = static_cast<TButtonBase*>(GetView());
        if (!button)
            return;
        const bool inside = phase != kTrack_Cancel && button->ContainsMouse(next);
        const bool released = phase == kTrack_End;
        button->SetHilite(inside && !released, /*redraw*/ true);
        if (inside && released)
            button->Push();
    }
};

// TButtonBase

TButtonBase::TButtonBase() = default;
TButtonBase::~TButtonBase() = default;

TObject* TButtonBase::Clone() {
    auto* copy = static_cast<TButtonBase*>(TControl::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mTitle, mTitle);
    return copy;
}

void TButtonBase::SetTitle(const std::string& title, bool redraw) {
    mTitle = title;
    if (redraw)
        ForceRedraw();
    AccessibilityNotification(kAccessibility_NameChanged, nullptr);
}

void TButtonBase::Push() {
    if (IsEnabled())
        Pushed();
}

void TButtonBase::Pushed() { NotifyChange(kControlEvent_Pressed); }

bool TButtonBase::DoMouseCommand(const VPoint& local, TToolboxEvent* event) {
    if (!IsEnabled())
        return true; // a press on a disabled button is not for what lies behind it
    return BeginTracking(new TButtonTracker, local, event);
}

void TButtonBase::DoMouseEnter(const VPoint& local, TToolboxEvent* event) {
    TControl::DoMouseEnter(local, event);
    ForceRedraw();
}

void TButtonBase::DoMouseLeave(TToolboxEvent* event) {
    TControl::DoMouseLeave(event);
    ForceRedraw();
}

void TButtonBase::DoKeyEvent(TToolboxEvent* event) {
    if (event->mCharacterCode != ' ' || !IsEnabled()) {
        TControl::DoKeyEvent(event);
        return;
    }
    mSpaceHeld = true; // held repeats change nothing
    SetHilite(true, /*redraw*/ true);
}

void TButtonBase::DoKeyUp(TToolboxEvent* event) {
    if (!mSpaceHeld || event->mCharacterCode != ' ') {
        TControl::DoKeyUp(event);
        return;
    }
    mSpaceHeld = false;
    SetHilite(false, /*redraw*/ true);
    Push();
}

void TButtonBase::ResignedTarget() {
    mSpaceHeld = false;
    SetHilite(false, /*redraw*/ true);
    TControl::ResignedTarget();
}

CRGBColor TButtonBase::GetFaceColor() {
    const CRGBColor face =
        GetControlColor(IsHilited() ? kThemeColor_ControlPressed : kThemeColor_ControlFace);
    return IsMouseOver() && IsEnabled() && !IsHilited() ? face.GetScaled(QLX_Theme::IsDark(), 92)
                                                        : face;
}

VPoint TButtonBase::GetTitleMargin() const { return VPoint(16, 8); }

VPoint TButtonBase::CalcMinFrame() const {
    const QLX_Font font = GetControlFont();
    const VPoint margin = GetTitleMargin();
    const float width = QLX_TextMeasure::Get().MeasureWidth(font, mTitle);
    const VPoint base = TControl::CalcMinFrame();
    return VPoint(std::max(base.h, margin.h + static_cast<int>(width) + 1),
                  std::max(base.v, margin.v + font.GetMetrics().GetLineHeight()));
}

void TButtonBase::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "button";
    info.mName = mTitle;
}

void TButtonBase::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TControl::ReadProperties(container, memento);
    ReadText(container, memento, "Title", mTitle);
}

// TButton

TButton::TButton() = default;
TButton::~TButton() = default;

TObject* TButton::Clone() {
    auto* copy = static_cast<TButton*>(TButtonBase::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mIcon, mIcon);
    return copy;
}

void TButton::SetRole(ERole role, bool redraw) {
    mRole = role;
    if (redraw)
        ForceRedraw();
}

void TButton::SetIcon(const QLX_Icon& icon, bool redraw) {
    mIcon = icon;
    if (redraw)
        ForceRedraw();
}

TButton* TButton::FindRole(TView* root, ERole role) {
    SubViewWalk walk(root, SubViewWalk::Order::BackToFront);
    while (TView* sub = walk.Next()) {
        TButton* button = QLX_ObjectCast<TButton>(sub);
        if (button && button->mRole == role && button->IsEnabled() && button->IsShown())
            return button;
        if (TButton* found = FindRole(sub, role))
            return found;
    }
    return nullptr;
}

void TButton::Pushed() {
    if (mToggles)
        ChangeValue(GetValue() ? 0 : 1, kControlEvent_ValueChanged);
    else
        NotifyChange(kControlEvent_Pressed);
}

void TButton::DoKeyEvent(TToolboxEvent* event) {
    if (event->mKeyCode == kDAW_Key_Return && IsEnabled()) {
        if (!event->IsAutoKeyEvent()) // a held key pushes once
            Push();
    } else {
        TButtonBase::DoKeyEvent(event);
    }
}

void TButton::Draw(const VRect&) {
    const PainterPtr& painter = GetPainter();
    const Cmn_Rect<int> box = GetExtent();
    const bool down = mToggles && GetValue() != 0;
    // What Return pushes stands out in the theme's accent.
    const bool accented = mRole == kRole_Default && IsEnabled();
    CRGBColor accent = GetControlColor(kThemeColor_MenuHighlight);
    if (IsHilited())
        accent = accent.GetScaled(/*darken*/ true, 75);
    const bool lit = down && IsEnabled() && !IsHilited();
    painter->SetForegroundColor(accented ? accent
                                : lit    ? GetControlColor(kThemeColor_Highlight)
                                : down   ? GetControlColor(kThemeColor_ControlPressed)
                                         : GetFaceColor());
    painter->FillRoundRect(box, 4, 4, /*antialias*/ true, /*topOnly*/ false);
    painter->SetForegroundColor(accented ? accent : GetControlColor(kThemeColor_ControlFrame));
    painter->DrawRoundRect(box, 4, 4, /*antialias*/ true, /*topOnly*/ false);

    Cmn_Rect<int> titleBox{box.left + 4, box.top, box.right - 4, box.bottom};
    if (!mIcon.IsEmpty()) {
        const int side = std::min(16, box.bottom - box.top - 4);
        const int top = box.top + (box.bottom - box.top - side) / 2;
        const int left =
            GetTitle().empty() ? box.left + (box.right - box.left - side) / 2 : titleBox.left + 2;
        painter->SetAlpha(IsEnabled() ? 1.0f : 0.4f);
        painter->DrawIcon(mIcon, {left, top, left + side, top + side});
        painter->SetAlpha(1.0f);
        titleBox.left = left + side + 2;
    }
    painter->SetForegroundColor(GetTextColor(accented ? kThemeColor_MenuHighlightText
                                             : lit    ? kThemeColor_HighlightText
                                                      : kThemeColor_ControlText));
    painter->DrawStringJustified(titleBox, GetTitle(), QLX_Painter::kJustify_Center,
                                 QLX_Painter::kJustify_Middle, QLX_Painter::kResolution_Logical);
    DrawFocusRing(/*inset*/ 0, /*radius*/ 4);
    if (accented && ShowsFocus()) { // the ring is too near to the accent to be seen by itself
        painter->SetForegroundColor(GetControlColor(kThemeColor_MenuHighlightText));
        painter->DrawRoundRect({box.left + 3, box.top + 3, box.right - 3, box.bottom - 3}, 3, 3,
                               /*antialias*/ true, /*topOnly*/ false);
    }
}

void TButton::GetAccessibleInfo(TAccessibleInfo& info) const {
    TButtonBase::GetAccessibleInfo(info);
    info.mValue = mToggles ? (GetValue() ? "pressed" : "not pressed") : "";
}

void TButton::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TButtonBase::ReadProperties(container, memento);
    std::string text;
    if (container->GetStringProperty("Role", text))
        mRole = text == "default" ? kRole_Default : text == "cancel" ? kRole_Cancel : kRole_None;
    container->GetBoolProperty("Toggles", mToggles);
    // Without its icon the title still says what the button does.
    if (container->GetStringProperty("Icon", text))
        if (const QLX_Image::Ptr image = QLX_ReadDescribedPicture(container, memento, text))
            mIcon = QLX_Icon(image);
}

// TCheckBox

TCheckBox::TCheckBox() = default;
TCheckBox::~TCheckBox() = default;

void TCheckBox::Pushed() { ChangeValue(GetValue() == 0 ? 1 : 0, kControlEvent_ValueChanged); }

VPoint TCheckBox::GetTitleMargin() const { return VPoint(kBoxAndGap + 4, 4); }

void TCheckBox::Draw(const VRect&) {
    const PainterPtr& painter = GetPainter();
    const Cmn_Rect<int> all = GetExtent();
    const int top = all.top + (all.bottom - all.top - kBoxSize) / 2;
    const Cmn_Rect<int> box{all.left + kBoxInset, top, all.left + kBoxInset + kBoxSize,
                            top + kBoxSize};
    painter->SetForegroundColor(
        GetControlColor(IsHilited() ? kThemeColor_ControlPressed : kThemeColor_FieldBackground));
    painter->FillRoundRect(box, 2, 2, /*antialias*/ true, /*topOnly*/ false);
    painter->SetForegroundColor(GetControlColor(kThemeColor_FieldFrame));
    painter->DrawRoundRect(box, 2, 2, /*antialias*/ true, /*topOnly*/ false);
    painter->SetForegroundColor(GetTextColor(kThemeColor_ControlMark));
    if (GetValue() == kMixed) {
        painter->FillRect({box.left + 3, box.top + 6, box.right - 3, box.bottom - 6});
    } else if (GetValue() != 0) {
        const QLX_StPenState saver(painter);
        painter->SetPenSize(2, 2);
        painter->MoveTo(box.left + 3.0f, box.top + 6.0f, QLX_Painter::kResolution_Logical);
        painter->LineTo(box.left + 5.0f, box.top + 9.0f, true, QLX_Painter::kResolution_Logical, 0);
        painter->LineTo(box.left + 10.0f, box.top + 3.0f, true, QLX_Painter::kResolution_Logical,
                        0);
    }
    painter->SetForegroundColor(GetTextColor(kThemeColor_Text));
    painter->DrawSingleLineTextBox({all.left + kBoxAndGap, all.top, all.right, all.bottom},
                                   GetTitle(), /*ellipsis*/ true, nullptr);
    DrawFocusRing();
}

void TCheckBox::GetAccessibleInfo(TAccessibleInfo& info) const {
    TButtonBase::GetAccessibleInfo(info);
    info.mRole = "checkbox";
    info.mValue = GetValue() == kMixed ? "mixed" : GetValue() ? "checked" : "not checked";
}

// TRadio

namespace {

TCluster* ClusterAround(TView* view) {
    for (TView* around = view->GetSuperView(); around; around = around->GetSuperView())
        if (TCluster* cluster = QLX_ObjectCast<TCluster>(around))
            return cluster;
    return nullptr;
}

} // namespace

TRadio::TRadio() = default;
TRadio::~TRadio() = default;

void TRadio::Pushed() {
    if (TCluster* cluster = ClusterAround(this))
        cluster->Choose(this);
    else
        ChangeValue(1, kControlEvent_ValueChanged);
}

void TRadio::DoKeyEvent(TToolboxEvent* event) {
    const std::uint32_t key = event->mKeyCode;
    const bool back = key == kDAW_Key_Up || key == kDAW_Key_Left;
    const bool on = key == kDAW_Key_Down || key == kDAW_Key_Right;
    TCluster* cluster = back || on ? ClusterAround(this) : nullptr;
    if (cluster)
        cluster->ChooseNext(this, on ? 1 : -1);
    else
        TButtonBase::DoKeyEvent(event);
}

VPoint TRadio::GetTitleMargin() const { return VPoint(kBoxAndGap + 4, 4); }

void TRadio::Draw(const VRect&) {
    const PainterPtr& painter = GetPainter();
    const Cmn_Rect<int> all = GetExtent();
    const int top = all.top + (all.bottom - all.top - kBoxSize) / 2;
    const Cmn_Rect<int> box{all.left + kBoxInset, top, all.left + kBoxInset + kBoxSize,
                            top + kBoxSize};
    painter->SetForegroundColor(
        GetControlColor(IsHilited() ? kThemeColor_ControlPressed : kThemeColor_FieldBackground));
    painter->FillOval(box, /*antialias*/ true);
    painter->SetForegroundColor(GetControlColor(kThemeColor_FieldFrame));
    painter->DrawOval(box);
    if (GetValue() != 0) {
        painter->SetForegroundColor(GetTextColor(kThemeColor_ControlMark));
        painter->FillOval({box.left + 4, box.top + 4, box.right - 4, box.bottom - 4},
                          /*antialias*/ true);
    }
    painter->SetForegroundColor(GetTextColor(kThemeColor_Text));
    painter->DrawSingleLineTextBox({all.left + kBoxAndGap, all.top, all.right, all.bottom},
                                   GetTitle(), /*ellipsis*/ true, nullptr);
    DrawFocusRing();
}

void TRadio::GetAccessibleInfo(TAccessibleInfo& info) const {
    TButtonBase::GetAccessibleInfo(info);
    info.mRole = "radio";
    info.mValue = GetValue() ? "checked" : "not checked";
}

// TCluster

TCluster::TCluster() {
    SetTakesFocus(false);
    SetRange(0, INT32_MAX, /*redraw*/ false);
}

TCluster::~TCluster() = default;

TObject* TCluster::Clone() {
    auto* copy = static_cast<TCluster*>(TControl::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mTitle, mTitle);
    return copy;
}

namespace {

void CollectRadios(TView* view, std::vector<TRadio*>& radios) {
    TView::SubViewWalk walk(view, TView::SubViewWalk::Order::BackToFront);
    while (TView* sub = walk.Next()) {
        if (TRadio* radio = QLX_ObjectCast<TRadio>(sub))
            radios.push_back(radio);
        else if (!QLX_ObjectCast<TCluster>(sub)) // an inner cluster keeps its own
            CollectRadios(sub, radios);
    }
}

} // namespace

std::vector<TRadio*> TCluster::GetRadios() {
    std::vector<TRadio*> radios;
    CollectRadios(this, radios);
    return radios;
}

void TCluster::ShowChoice(bool redraw) {
    const std::vector<TRadio*> radios = GetRadios();
    for (std::size_t i = 0; i < radios.size(); ++i)
        radios[i]->SetValue(static_cast<std::int32_t>(i) + 1 == GetValue() ? 1 : 0, redraw);
}

void TCluster::SetValue(std::int32_t value, bool redraw) {
    TControl::SetValue(value, /*redraw*/ false);
    ShowChoice(redraw);
}

void TCluster::Choose(TRadio* radio) {
    const std::vector<TRadio*> radios = GetRadios();
    const auto place = std::find(radios.begin(), radios.end(), radio);
    if (place != radios.end())
        ChangeValue(static_cast<std::int32_t>(place - radios.begin()) + 1,
                    kControlEvent_ValueChanged);
}

void TCluster::ChooseNext(TRadio* from, int direction) {
    const std::vector<TRadio*> radios = GetRadios();
    const auto place = std::find(radios.begin(), radios.end(), from);
    if (place == radios.end())
        return;
    const std::size_t count = radios.size();
    std::size_t index = static_cast<std::size_t>(place - radios.begin());
    for (std::size_t steps = 1; steps < count; ++steps) {
        index = (index + count + static_cast<std::size_t>(direction)) % count;
        TRadio* next = radios[index];
        if (!next->IsEnabled() || !next->IsShown())
            continue;
        const StDispatch dispatch; // choosing may free the buttons
        next->BecomeTarget();
        Choose(next);
        return;
    }
}

void TCluster::Draw(const VRect&) {
    if (mTitle.empty())
        return;
    const PainterPtr& painter = GetPainter();
    Cmn_Rect<int> box = GetExtent();
    const int lineHeight = GetControlFont().GetMetrics().GetLineHeight();
    const int titleWidth = painter->MeasureStringWidth(mTitle);
    // The frame leaves room for the title, so whatever lies behind shows through there.
    const int left = box.left + 8;
    const QLX_StClipRgnState clip(painter);
    const Cmn_Rect<int> caption{left, box.top, std::min(box.right, left + titleWidth + 8),
                                box.top + lineHeight};
    {
        QLX_StClipRgnState frameClip(painter);
        frameClip.DiffWithCurrent(caption);
        painter->SetForegroundColor(GetControlColor(kThemeColor_ControlFrame));
        painter->DrawRoundRect({box.left, box.top + lineHeight / 2, box.right, box.bottom}, 4, 4,
                               /*antialias*/ true, /*topOnly*/ false);
    }
    painter->SetForegroundColor(GetTextColor(kThemeColor_Text));
    painter->DrawSingleLineTextBox({caption.left + 4, caption.top, caption.right, caption.bottom},
                                   mTitle, /*ellipsis*/ true, nullptr);
}

void TCluster::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "radiogroup";
    info.mName = mTitle;
}

void TCluster::ReadContainer(QLX_RawPropertyContainer* container, const MementoPtr& memento,
                             TView* view) {
    TControl::ReadContainer(container, memento, view);
    ShowChoice(/*redraw*/ false); // the buttons are there only now
}

void TCluster::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TControl::ReadProperties(container, memento);
    ReadText(container, memento, "Title", mTitle);
}
