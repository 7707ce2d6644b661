#include "qlx/views/utabs.h"

#include <algorithm>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/imaging/qlx_statesavers.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/uevent.h"

QLX_DEFINE_CLASS(TTabs, TControl)

namespace {

const std::string kNoTitle;
constexpr int kTitleMargin = 12;

std::vector<std::string> SplitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t from = 0;
    while (from <= text.size()) {
        const std::size_t to = std::min(text.find('\n', from), text.size());
        lines.push_back(text.substr(from, to - from));
        from = to + 1;
    }
    return lines;
}

} // namespace

TTabs::TTabs() { SetRange(0, 0, /*redraw*/ false); }

TTabs::~TTabs() = default;

TObject* TTabs::Clone() {
    auto* copy = static_cast<TTabs*>(TControl::Clone());
    if (!copy)
        return nullptr;
    CopyMember(copy->mTitles, mTitles);
    return copy;
}

void TTabs::SetTitles(const std::vector<std::string>& titles, bool redraw) {
    mTitles = titles;
    if (redraw)
        ForceRedraw();
}

int TTabs::CountPages() const { return CountSubViews(); }

const std::string& TTabs::GetTitle(int page) const {
    return page < static_cast<int>(mTitles.size()) ? mTitles[static_cast<std::size_t>(page)]
                                                   : kNoTitle;
}

VRect TTabs::GetTab(int page) const {
    const VRect extent = GetExtent();
    const QLX_Font font = GetControlFont();
    VCoordinate left = extent.Left();
    for (int i = 0;; ++i) {
        const float text = QLX_TextMeasure::Get().MeasureWidth(font, GetTitle(i));
        const VCoordinate width = static_cast<VCoordinate>(text) + 1 + 2 * kTitleMargin;
        if (i == page)
            return VRect(left, extent.Top(), left + width, extent.Top() + kRowHeight);
        left += width;
    }
}

void TTabs::ShowPage(bool redraw) {
    for (int page = 0; page < CountPages(); ++page)
        GetSubView(page + 1)->Show(page == GetValue(), redraw);
}

void TTabs::SetValue(std::int32_t value, bool redraw) {
    TControl::SetValue(value, redraw);
    ShowPage(redraw);
}

std::string TTabs::GetValueText() const { return GetTitle(GetValue()); }

void TTabs::AddedASubView(TView* sub) {
    TControl::AddedASubView(sub);
    SetRange(0, std::max(0, CountPages() - 1), /*redraw*/ true);
    ShowPage(/*redraw*/ true);
}

void TTabs::RemovedASubView(TView* sub) {
    TControl::RemovedASubView(sub);
    SetRange(0, std::max(0, CountPages() - 1), /*redraw*/ true);
    ShowPage(/*redraw*/ true);
}

bool TTabs::DoMouseCommand(const VPoint& local, TToolboxEvent*) {
    if (!IsEnabled())
        return true;
    for (int page = 0; page < CountPages(); ++page)
        if (GetTab(page).Contains(local)) {
            if (WantsToBeTarget())
                BecomeTarget();
            ChangeValue(page, kControlEvent_ValueChanged);
            return true;
        }
    return false;
}

void TTabs::Step(int direction) {
    const std::int64_t count = CountPages();
    if (count == 0)
        return;
    // The program may have set any value.
    const std::int64_t next = (std::int64_t{GetValue()} + direction) % count;
    ChangeValue(static_cast<std::int32_t>((next + count) % count), kControlEvent_ValueChanged);
}

void TTabs::DoKeyEvent(TToolboxEvent* event) {
    const std::uint32_t key = IsEnabled() && IsTarget() ? event->mKeyCode : 0u;
    if (key == kDAW_Key_Left)
        Step(-1);
    else if (key == kDAW_Key_Right)
        Step(1);
    else if (key == kDAW_Key_Home)
        ChangeValue(0, kControlEvent_ValueChanged);
    else if (key == kDAW_Key_End)
        ChangeValue(CountPages() - 1, kControlEvent_ValueChanged);
    else
        TControl::DoKeyEvent(event);
}

void TTabs::DoCommandKeyEvent(TToolboxEvent* event) {
    if (event->mKeyCode == kDAW_Key_Tab && IsEnabled())
        Step(event->IsShiftKeyPressed() ? -1 : 1);
    else
        TControl::DoCommandKeyEvent(event);
}

void TTabs::Draw(const VRect&) {
    const PainterPtr& painter = GetPainter();
    const Cmn_Rect<int> box = GetExtent();
    const Cmn_Rect<int> body{box.left, box.top + kRowHeight - 1, box.right, box.bottom};
    painter->SetForegroundColor(GetControlColor(kThemeColor_ControlFrame));
    painter->DrawRect(body);
    for (int page = 0; page < CountPages(); ++page) {
        const bool shown = page == GetValue();
        Cmn_Rect<int> tab = GetTab(page);
        if (!shown)
            tab.top += 3;
        painter->SetForegroundColor(
            GetControlColor(shown ? kThemeColor_WindowBackground : kThemeColor_ControlPressed));
        painter->FillRoundRect(tab, 4, 4, /*antialias*/ true, /*topOnly*/ true);
        painter->SetForegroundColor(GetControlColor(kThemeColor_ControlFrame));
        painter->DrawRoundRect(tab, 4, 4, /*antialias*/ true, /*topOnly*/ true);
        if (shown) { // the shown page's tab opens into the page
            painter->SetForegroundColor(GetControlColor(kThemeColor_WindowBackground));
            painter->FillRect({tab.left + 1, tab.bottom - 1, tab.right - 1, tab.bottom});
        }
        painter->SetForegroundColor(GetTextColor(kThemeColor_Text));
        painter->DrawStringJustified(tab, GetTitle(page), QLX_Painter::kJustify_Center,
                                     QLX_Painter::kJustify_Middle,
                                     QLX_Painter::kResolution_Logical);
        if (shown && ShowsFocus()) {
            painter->SetForegroundColor(GetControlColor(kThemeColor_FocusRing));
            painter->DrawRoundRect({tab.left + 3, tab.top + 3, tab.right - 3, tab.bottom - 3}, 3, 3,
                                   /*antialias*/ true, /*topOnly*/ false);
        }
    }
}

void TTabs::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "tablist";
}

void TTabs::ReadContainer(QLX_RawPropertyContainer* container, const MementoPtr& memento,
                          TView* view) {
    TControl::ReadContainer(container, memento, view);
    // The value could not be held while there were no pages.
    std::int32_t value = GetValue();
    if (container->GetInt32Property("Value", value))
        SetValue(value, /*redraw*/ false);
    ShowPage(/*redraw*/ false);
}

void TTabs::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TControl::ReadProperties(container, memento);
    std::string titles;
    if (ReadText(container, memento, "Titles", titles))
        mTitles = SplitLines(titles);
}
