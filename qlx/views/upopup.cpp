#include "qlx/views/upopup.h"

#include <algorithm>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uevent.h"
#include "qlx/views/umenulayer.h"
#include "qlx/views/uwindow.h"

QLX_DEFINE_CLASS(TPopup, TControl)

namespace {

const std::string kSeparator = "-";

// Choices are plain texts: an ampersand in one marks no mnemonic.
std::string AsItemText(const std::string& choice) {
    std::string text;
    for (const char c : choice)
        text += c == '&' ? std::string("&&") : std::string(1, c);
    return text;
}

} // namespace

TPopup::TPopup() { SetRange(0, 0, /*redraw*/ false); }

TPopup::~TPopup() = default;

TObject* TPopup::Clone() {
    auto* copy = static_cast<TPopup*>(TControl::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mChoices, mChoices);
    CopyMember(copy->mDisabled, mDisabled);
    new (&copy->mMenu) std::unique_ptr<TMenu>();
    return copy;
}

void TPopup::Free() {
    if (mMenu && TMenuLayer::GetOpen())
        TMenuLayer::GetOpen()->Close();
    TControl::Free();
}

void TPopup::SetChoices(const std::vector<std::string>& choices, bool redraw) {
    mChoices = choices;
    mDisabled.assign(choices.size(), false);
    SetRange(0, std::max(0, static_cast<std::int32_t>(choices.size()) - 1), redraw);
    if (redraw)
        ForceRedraw();
}

void TPopup::SetChoiceEnabled(int choice, bool enabled) {
    if (choice >= 0 && choice < static_cast<int>(mDisabled.size()))
        mDisabled[static_cast<std::size_t>(choice)] = !enabled;
}

bool TPopup::CanChoose(int choice) const {
    return choice >= 0 && choice < static_cast<int>(mChoices.size()) &&
           mChoices[static_cast<std::size_t>(choice)] != kSeparator &&
           !mDisabled[static_cast<std::size_t>(choice)];
}

void TPopup::OpenMenu(TToolboxEvent* press) {
    if (mChoices.empty() || mMenu)
        return;
    mMenu = std::make_unique<TMenu>("");
    std::vector<TMenuItem*> items;
    for (int i = 0; i < static_cast<int>(mChoices.size()); ++i) {
        const std::string& text = mChoices[static_cast<std::size_t>(i)];
        auto item = text == kSeparator ? TMenuItem::NewSeparator()
                                       : TMenuItem::NewCommand(0, AsItemText(text));
        item->SetEnabled(CanChoose(i));
        item->SetCheckState(i == GetValue() ? TMenuItem::kChecked : TMenuItem::kUnchecked);
        items.push_back(mMenu->AppendItem(std::move(item)));
    }
    VRect anchor = GetExtent();
    LocalToWindowVRect(anchor);
    const std::vector<TMenuItem*> visible = mMenu->GetVisibleItems();
    // The program may have set bounds, and so a value, that no choice has.
    const bool hasChoice = GetValue() >= 0 && GetValue() < static_cast<int>(items.size());
    const TMenuItem* wanted = hasChoice ? items[static_cast<std::size_t>(GetValue())] : nullptr;
    const auto current = std::find(visible.begin(), visible.end(), wanted);
    const int initial = current == visible.end() ? -1 : static_cast<int>(current - visible.begin());
    TMenuLayer* layer = TMenuLayer::Open(
        GetWindow(), mMenu.get(), anchor, initial, [this, items](TMenuItem* chosen) {
            const auto place = std::find(items.begin(), items.end(), chosen);
            mMenu.reset();
            ForceRedraw();
            if (place != items.end())
                ChangeValue(static_cast<std::int32_t>(place - items.begin()),
                            kControlEvent_ValueChanged);
        });
    if (!layer)
        mMenu.reset();
    else
        ForceRedraw(); // it looks pressed while its menu is open
    if (layer && press)
        layer->FollowPress(press->GetEventWhere(), press);
}

void TPopup::StepChoice(int direction) {
    const int count = static_cast<int>(mChoices.size());
    for (int choice = std::clamp(GetValue(), -1, count) + direction; choice >= 0 && choice < count;
         choice += direction)
        if (CanChoose(choice)) {
            ChangeValue(choice, kControlEvent_ValueChanged);
            return;
        }
}

std::string TPopup::GetValueText() const {
    const auto choice = static_cast<std::size_t>(GetValue());
    return choice < mChoices.size() ? mChoices[choice] : std::string();
}

bool TPopup::DoMouseCommand(const VPoint&, TToolboxEvent* event) {
    if (!IsEnabled())
        return true;
    if (WantsToBeTarget())
        BecomeTarget();
    OpenMenu(event);
    return true;
}

bool TPopup::DoMouseWheel(const VPoint&, TToolboxEvent* event) {
    if (!IsEnabled() || !IsTarget())
        return false;
    const int turned = QLX_GetWheelDelta(event).y;
    if (std::abs(turned) >= kWheel_Notch)
        StepChoice(turned > 0 ? -1 : 1);
    return true;
}

void TPopup::DoKeyEvent(TToolboxEvent* event) {
    switch (IsEnabled() ? event->mKeyCode : kDAW_Key_None) {
    case kDAW_Key_Up:
        return StepChoice(-1);
    case kDAW_Key_Down:
        return event->IsOptionKeyPressed() ? OpenMenu(nullptr) : StepChoice(1);
    case kDAW_Key_Space:
    case kDAW_Key_Return:
        return OpenMenu(nullptr);
    default:
        TControl::DoKeyEvent(event);
    }
}

void TPopup::Draw(const VRect&) {
    const PainterPtr& painter = GetPainter();
    const Cmn_Rect<int> box = GetExtent();
    painter->SetForegroundColor(GetControlColor(IsHilited() || mMenu ? kThemeColor_ControlPressed
                                                                     : kThemeColor_ControlFace));
    painter->FillRoundRect(box, 4, 4, /*antialias*/ true, /*topOnly*/ false);
    painter->SetForegroundColor(GetControlColor(kThemeColor_ControlFrame));
    painter->DrawRoundRect(box, 4, 4, /*antialias*/ true, /*topOnly*/ false);
    painter->SetForegroundColor(GetTextColor(kThemeColor_ControlText));
    painter->DrawSingleLineTextBox({box.left + 8, box.top, box.right - 18, box.bottom},
                                   GetValueText(), /*ellipsis*/ true, nullptr);
    const int middle = (box.top + box.bottom) / 2;
    for (int i = 0; i < 4; ++i) // two arrows of rows, the same at every scale
        for (const int row : {middle - 3 - i, middle + 2 + i})
            painter->FillRect({box.right - 14 + i, row, box.right - 7 - i, row + 1});
    DrawFocusRing(/*inset*/ 0, /*radius*/ 4);
}

void TPopup::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "combobox";
}

void TPopup::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    std::string text;
    if (ReadText(container, memento, "Choices", text)) {
        std::vector<std::string> choices;
        for (std::size_t from = 0; from <= text.size();) {
            const std::size_t to = std::min(text.find('\n', from), text.size());
            choices.push_back(text.substr(from, to - from));
            from = to + 1;
        }
        SetChoices(choices, /*redraw*/ false); // before the value is read, which it bounds
    }
    const std::int32_t last = GetMaximum();
    TControl::ReadProperties(container, memento);
    if (GetMaximum() != last)
        SetRange(0, last, /*redraw*/ false);
}
