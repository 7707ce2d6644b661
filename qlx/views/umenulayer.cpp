#include "qlx/views/umenulayer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_string.h"
#include "basekit/sys/sys_clock.h"
#include "newfilelibs/cmn/cmn_polygon.h"
#include "newfilelibs/daw/daw_eventmodifiers.h"
#include "newfilelibs/daw/daw_keynames.h"
#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_statesavers.h"
#include "qlx/imaging/qlx_textcaret.h"
#include "qlx/imaging/qlx_themecolor.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/uevent.h"
#include "qlx/views/ukeybindings.h"
#include "qlx/views/umenubar.h"
#include "qlx/views/utracker.h"
#include "qlx/views/uwindow.h"

QLX_DEFINE_CLASS(TMenuLayer, TView)

namespace {

constexpr int kMarkWidth = 22;  // left of the texts, for check marks
constexpr int kKeyGap = 24;     // between texts and key equivalents
constexpr int kArrowWidth = 18; // right of both, for submenu arrows
constexpr int kItemPadding = 6; // added to the line height
constexpr int kSeparatorHeight = 7;
constexpr int kPanelPadding = 4;
constexpr double kTypeAheadSeconds = 1.0;
constexpr VCoordinate kStickySlop = 4; // a press released this near its place leaves the menu open

TMenuLayer* sOpen = nullptr;

QLX_Font MenuFont() { return QLX_FontMap::RetrieveFont(kFont_Interface, kFontSelect_Plain); }

int HeightOf(const TMenuItem* item) {
    return item->IsSeparator() ? kSeparatorHeight
                               : MenuFont().GetMetrics().GetLineHeight() + kItemPadding;
}

VCoordinate HeightOf(const std::vector<TMenuItem*>& items) {
    VCoordinate height = 2 * kPanelPadding;
    for (const TMenuItem* item : items)
        height += HeightOf(item);
    return height;
}

bool CanBeHilited(const TMenuItem* item) { return !item->IsSeparator(); }

bool CanBeChosen(const TMenuItem* item) {
    return !item->IsSeparator() && item->IsEnabled() && !item->GetSubmenu();
}

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 'a' - 'A') : c; }

bool BeginsWith(const std::string& text, const std::string& typed) {
    return text.size() >= typed.size() &&
           std::equal(typed.begin(), typed.end(), text.begin(),
                      [](char a, char b) { return Lower(a) == Lower(b); });
}

TMenuText TextOf(const TMenuItem* item) {
    const bool isSubmenus = item->GetText().empty() && item->GetSubmenu();
    return QLX_ParseMenuText(isSubmenus ? item->GetSubmenu()->GetTitle() : item->GetText());
}

std::vector<std::string> KeysOf(const std::vector<TMenuItem*>& items) {
    std::vector<std::string> keys;
    keys.reserve(items.size());
    for (const TMenuItem* item : items)
        keys.push_back(QLX_MenuKeyText(item->GetShownKey()));
    return keys;
}

std::map<std::string, std::string>& KeyNames() {
    static std::map<std::string, std::string> names;
    return names;
}

std::string UsersName(const std::string& name) {
    const auto entry = KeyNames().find(name);
    return entry == KeyNames().end() ? name : entry->second;
}

} // namespace

std::map<std::string, std::string> QLX_SetMenuKeyNames(std::map<std::string, std::string> names) {
    return std::exchange(KeyNames(), std::move(names));
}

void QLX_DrawMenuText(const TView::PainterPtr& painter, const Cmn_Rect<int>& rect,
                      const TMenuText& text, QLX_Painter::EJustification justification) {
    painter->DrawStringJustified(rect, text.mPlain, justification, QLX_Painter::kJustify_Middle,
                                 QLX_Painter::kResolution_Logical);
    if (text.mMnemonicSize == 0)
        return;
    const QLX_Font font = painter->GetFont();
    const QLX_FontMetrics metrics = font.GetMetrics();
    auto left = static_cast<float>(rect.left);
    const float spare = static_cast<float>(rect.GetWidth()) -
                        QLX_TextMeasure::Get().MeasureWidth(font, text.mPlain);
    if (justification != QLX_Painter::kJustify_Left)
        left += justification == QLX_Painter::kJustify_Center ? spare / 2 : spare;
    const int top =
        rect.top + (rect.GetHeight() - metrics.GetLineHeight()) / 2 + metrics.GetBaseline() + 1;
    for (const QLX_TextCarets::Span& span : QLX_TextCarets::Get().SpansOf(
             font, text.mPlain, text.mMnemonicAt, text.mMnemonicAt + text.mMnemonicSize)) {
        const auto from = static_cast<int>(std::lround(left + span.left));
        const auto to = static_cast<int>(std::lround(left + span.right));
        painter->FillRect({from, top, std::max(from + 1, to), top + 1});
    }
}

std::string QLX_MenuKeyText(const TMenuKey& key) {
    if (key.mKey == kDAW_Key_None)
        return {};
    std::string text;
    for (const std::uint32_t modifier :
         {kQLX_Modifier_Command, kQLX_Modifier_Option, kQLX_Modifier_Control, kQLX_Modifier_Shift})
        if (key.mModifiers & modifier)
            text += UsersName(QLX_Keyboard::GetDAWModifiers(static_cast<std::uint16_t>(modifier))
                                  ->GetKeyModifiersShortNameString(
                                      /*macStyle*/ false, /*includeFocus*/ false, "")) +
                    "+";
    return text + UsersName(DAW_KeyCodeToName(key.mKey));
}

/// Follows a press through the menus. A press released at once where it was leaves them open.
class TMenuTracker : public TTracker {
  public:
    explicit TMenuTracker(bool opened) : mOpened(opened) {}

    void TrackMouse(TrackPhase phase, const VPoint& anchor, const VPoint&, const VPoint& next,
                    TToolboxEvent*) override {
        auto* layer = static_cast<TMenuLayer*>(GetView());
        if (!layer || phase == kTrack_Cancel)
            return;
        const VPoint moved = next - anchor;
        mWentAway = mWentAway || std::max(std::abs(moved.h), std::abs(moved.v)) > kStickySlop;
        layer->HoverAt(next);
        if (phase != kTrack_End || (mOpened && !mWentAway))
            return;
        int panel = 0;
        int item = 0;
        if (layer->HitTest(next, panel, item))
            layer->Choose(panel, item);
        else if (mOpened) // dragged off the menu and released there
            layer->Close();
    }

  private:
    bool mOpened; // this very press opened the menu
    bool mWentAway = false;
};

TMenuLayer::TMenuLayer() = default;

TMenuLayer::~TMenuLayer() {
    if (sOpen == this)
        sOpen = nullptr;
}

TMenuLayer* TMenuLayer::GetOpen() { return sOpen; }

// Opening and closing

TMenuLayer* TMenuLayer::Open(TWindow* window, TMenu* menu, const VRect& anchor, int initialItem,
                             ChoiceCallback callback) {
    if (!window || !menu)
        return nullptr;
    const StDispatch dispatch;
    if (sOpen)
        sOpen->Close();
    TMenuManager::SetupMenus();
    if (menu->GetVisibleItems().empty())
        return nullptr;
    auto* layer = new TMenuLayer;
    layer->mCallback = std::move(callback);
    layer->IView(window, window->GetExtent());
    sOpen = layer;
    TMenu::SetWatcher([](TMenu* changed, bool gone) {
        if (sOpen)
            sOpen->MenuChanged(changed, gone);
    });
    CKeyBindings::SetChangeListener([] {
        if (sOpen)
            sOpen->RefreshKeys();
    });
    if (gApplication) {
        gApplication->BeginMenuLoop();
        gApplication->SetTarget(layer);
    }
    layer->PushPanel(menu, anchor, /*beside*/ false, initialItem);
    return layer;
}

void TMenuLayer::Close() { Finish(nullptr); }

void TMenuLayer::Finish(TMenuItem* chosen) {
    if (mFinished)
        return;
    mFinished = true;
    const StDispatch dispatch;
    if (sOpen == this)
        sOpen = nullptr;
    TMenuBar* bar = mBar;
    mPanels.clear();
    if (gApplication) {
        TEventHandler* before = TApplicationData::GetPreMenuLoopTarget();
        if (gApplication->GetTarget() == this)
            gApplication->SetTarget(before);
    }
    const ChoiceCallback callback = std::move(mCallback);
    Free();
    if (bar)
        bar->ForceRedraw();
    if (callback)
        callback(chosen);
    if (gApplication)
        gApplication->EndMenuLoop();
}

void TMenuLayer::Free() {
    if (!mFinished) // the window is going away
        Finish(nullptr);
    else
        TView::Free();
}

TObject* TMenuLayer::Clone() {
    // There is one at a time, and no copy of what is open.
    Cmn_Assert("false && \"a menu layer is not cloned\"", "qlx/views/umenulayer", __LINE__);
    return nullptr;
}

void TMenuLayer::Switch(TMenu* menu, const VRect& anchor) {
    PopPanelsAbove(-1);
    PushPanel(menu, anchor, /*beside*/ false, -1);
}

void TMenuLayer::FollowPress(const VPoint& windowPoint, TToolboxEvent* event) {
    VPoint local = windowPoint;
    WindowToLocal(local);
    BeginTracking(new TMenuTracker(/*opened*/ true), local, event);
}

// Panels

void TMenuLayer::PushPanel(TMenu* menu, const VRect& anchor, bool beside, int initialItem) {
    Panel panel{menu, menu->GetVisibleItems(), {}, VRect(), -1, 0};
    if (panel.mItems.empty())
        return;
    panel.mKeys = KeysOf(panel.mItems);
    panel.mRect = PlacePanel(panel, anchor, beside, initialItem);
    mPanels.push_back(std::move(panel));
    const int index = CountPanels() - 1;
    if (initialItem >= 0 && initialItem < static_cast<int>(mPanels.back().mItems.size()))
        Hilite(index, initialItem, /*openSubmenu*/ false);
    InvalidateVRect(mPanels.back().mRect);
    AccessibilityNotification(kAccessibility_ShownChanged, nullptr);
}

void TMenuLayer::PopPanelsAbove(int panel) {
    while (CountPanels() - 1 > panel) {
        InvalidateVRect(mPanels.back().mRect);
        mPanels.pop_back();
    }
}

void TMenuLayer::MenuChanged(const TMenu* menu, bool gone) {
    const StDispatch dispatch; // closing frees the layer
    for (int index = 0; index < CountPanels(); ++index) {
        if (mPanels[static_cast<std::size_t>(index)].mMenu != menu)
            continue;
        if (!gone && !menu->GetVisibleItems().empty())
            RefreshPanel(index);
        else if (index > 0)
            PopPanelsAbove(index - 1);
        else
            Close();
        return;
    }
}

// The items that were shown may be gone: they are compared and not looked at.
void TMenuLayer::RefreshPanel(int index) {
    Panel& panel = mPanels[static_cast<std::size_t>(index)];
    const TMenuItem* hilited = GetHilited(index);
    panel.mItems = panel.mMenu->GetVisibleItems();
    panel.mKeys = KeysOf(panel.mItems);
    const auto place = std::find(panel.mItems.begin(), panel.mItems.end(), hilited);
    panel.mHilited =
        place == panel.mItems.end() ? -1 : static_cast<int>(place - panel.mItems.begin());
    if (CountPanels() > index + 1) {
        const TMenuItem* owner = mPanels[static_cast<std::size_t>(index) + 1].mMenu->GetOwnerItem();
        if (std::find(panel.mItems.begin(), panel.mItems.end(), owner) == panel.mItems.end())
            PopPanelsAbove(index);
    }
    InvalidateVRect(panel.mRect);
    const VRect window = GetExtent();
    const VPoint size = MeasurePanel(panel);
    panel.mRect.Right() = std::min(window.Right(), panel.mRect.Left() + size.h);
    panel.mRect.Bottom() = std::min(window.Bottom(), panel.mRect.Top() + size.v);
    panel.mScroll = 0;
    InvalidateVRect(panel.mRect);
}

void TMenuLayer::RefreshKeys() {
    for (int index = 0; index < CountPanels(); ++index)
        RefreshPanel(index);
}

VPoint TMenuLayer::MeasurePanel(const Panel& panel) const {
    const QLX_Font font = MenuFont();
    QLX_TextMeasure& measure = QLX_TextMeasure::Get();
    float widestText = 60;
    float widestKey = 0;
    for (const TMenuItem* item : panel.mItems)
        widestText = std::max(widestText, measure.MeasureWidth(font, TextOf(item).mPlain));
    for (const std::string& key : panel.mKeys)
        if (!key.empty())
            widestKey = std::max(widestKey, measure.MeasureWidth(font, key) + kKeyGap);
    return VPoint(kMarkWidth + static_cast<int>(widestText + widestKey) + 1 + kArrowWidth,
                  HeightOf(panel.mItems));
}

// Below the anchor (or beside it, for submenus), moved into the window; a panel higher than the
// window is cut and scrolls.
VRect TMenuLayer::PlacePanel(const Panel& panel, const VRect& anchor, bool beside,
                             int initialItem) const {
    const VRect window = GetExtent();
    VPoint size = MeasurePanel(panel);
    if (!beside)
        size.h = std::max(size.h, anchor.GetWidth());
    size.v = std::min(size.v, window.GetHeight());
    VCoordinate left = beside ? anchor.Right() - 3 : anchor.Left();
    VCoordinate top = beside ? anchor.Top() - kPanelPadding : anchor.Bottom();
    if (beside && left + size.h > window.Right())
        left = anchor.Left() - size.h + 3;
    if (!beside && initialItem >= 0) {
        top = anchor.Top() - kPanelPadding;
        for (int item = 0; item < initialItem && item < static_cast<int>(panel.mItems.size());
             ++item)
            top -= HeightOf(panel.mItems[static_cast<std::size_t>(item)]);
    } else if (!beside && top + size.v > window.Bottom() && anchor.Top() - size.v >= window.Top()) {
        top = anchor.Top() - size.v;
    }
    left = std::max(window.Left(), std::min(left, window.Right() - size.h));
    top = std::max(window.Top(), std::min(top, window.Bottom() - size.v));
    return VRect(left, top, left + size.h, top + size.v);
}

VRect TMenuLayer::GetItemRect(const Panel& panel, int item) const {
    VCoordinate top = panel.mRect.Top() + kPanelPadding - panel.mScroll;
    for (int i = 0; i < item; ++i)
        top += HeightOf(panel.mItems[static_cast<std::size_t>(i)]);
    const VCoordinate height = HeightOf(panel.mItems[static_cast<std::size_t>(item)]);
    return VRect(panel.mRect.Left() + 1, top, panel.mRect.Right() - 1, top + height);
}

VRect TMenuLayer::GetPanelRect(int panel) const {
    return mPanels[static_cast<std::size_t>(panel)].mRect;
}

VRect TMenuLayer::GetItemRect(const TMenuItem* item) const {
    for (const Panel& panel : mPanels)
        for (int i = 0; i < static_cast<int>(panel.mItems.size()); ++i)
            if (panel.mItems[static_cast<std::size_t>(i)] == item)
                return GetItemRect(panel, i) & panel.mRect;
    return VRect();
}

TMenuItem* TMenuLayer::GetHilited(int index) const {
    const Panel& panel = mPanels[static_cast<std::size_t>(index)];
    return panel.mHilited < 0 ? nullptr : panel.mItems[static_cast<std::size_t>(panel.mHilited)];
}

bool TMenuLayer::HitTest(const VPoint& local, int& panelFound, int& itemFound) const {
    for (int index = CountPanels() - 1; index >= 0; --index) {
        const Panel& panel = mPanels[static_cast<std::size_t>(index)];
        if (!panel.mRect.Contains(local))
            continue;
        panelFound = index;
        for (itemFound = 0; itemFound < static_cast<int>(panel.mItems.size()); ++itemFound)
            if (GetItemRect(panel, itemFound).Contains(local))
                return true;
        itemFound = -1;
        return true;
    }
    return false;
}

void TMenuLayer::ScrollPanel(Panel& panel, VCoordinate scroll) {
    const VCoordinate most =
        std::max<VCoordinate>(0, HeightOf(panel.mItems) - panel.mRect.GetHeight());
    const VCoordinate held = std::clamp<VCoordinate>(scroll, 0, most);
    if (held == panel.mScroll)
        return;
    panel.mScroll = held;
    InvalidateVRect(panel.mRect);
}

void TMenuLayer::Hilite(int index, int item, bool openSubmenu) {
    Panel& panel = mPanels[static_cast<std::size_t>(index)];
    if (item >= 0 && !CanBeHilited(panel.mItems[static_cast<std::size_t>(item)]))
        item = -1;
    if (panel.mHilited == item && (!openSubmenu || CountPanels() - 1 > index))
        return;
    for (const int changed : {panel.mHilited, item})
        if (changed >= 0)
            InvalidateVRect(GetItemRect(panel, changed) & panel.mRect);
    panel.mHilited = item;
    PopPanelsAbove(index);
    if (item < 0)
        return;
    const VRect rect = GetItemRect(panel, item);
    if (rect.Top() < panel.mRect.Top() + kPanelPadding)
        ScrollPanel(panel, panel.mScroll - (panel.mRect.Top() + kPanelPadding - rect.Top()));
    else if (rect.Bottom() > panel.mRect.Bottom() - kPanelPadding)
        ScrollPanel(panel, panel.mScroll + rect.Bottom() - panel.mRect.Bottom() + kPanelPadding);
    TMenu* submenu = panel.mItems[static_cast<std::size_t>(item)]->GetSubmenu();
    if (openSubmenu && submenu)
        PushPanel(submenu, GetItemRect(panel, item), /*beside*/ true, -1);
    AccessibilityNotification(kAccessibility_SelectionChanged, nullptr);
}

// The mouse

void TMenuLayer::HoverAt(const VPoint& local) {
    int panel = 0;
    int item = -1;
    if (HitTest(local, panel, item)) {
        Hilite(panel, item, /*openSubmenu*/ true);
        return;
    }
    if (!mPanels.empty() && mPanels.back().mHilited >= 0)
        Hilite(CountPanels() - 1, -1, /*openSubmenu*/ false);
    if (mBar) {
        VPoint inBar = local;
        mBar->ConvertVPointFromOtherView(this, inBar);
        const int title = mBar->TitleAt(inBar);
        if (title >= 0 && title != mBar->GetOpenMenu())
            mBar->OpenMenu(title);
    }
}

bool TMenuLayer::DoMouseCommand(const VPoint& local, TToolboxEvent* event) {
    int panel = 0;
    int item = 0;
    if (HitTest(local, panel, item))
        return BeginTracking(new TMenuTracker(/*opened*/ false), local, event);
    Close(); // the press is used up: nothing behind the menu is pushed by closing it
    return true;
}

bool TMenuLayer::DoOtherButton(const VPoint&, TToolboxEvent*) {
    Close();
    return true;
}

bool TMenuLayer::DoMouseWheel(const VPoint& local, TToolboxEvent* event) {
    int panel = 0;
    int item = 0;
    if (HitTest(local, panel, item)) {
        Panel& hit = mPanels[static_cast<std::size_t>(panel)];
        ScrollPanel(hit, hit.mScroll - QLX_GetWheelDelta(event).y * 60 / kWheel_Notch);
        HoverAt(local);
    }
    return true;
}

void TMenuLayer::DoMouseMove(const VPoint& local, TToolboxEvent* event) {
    TView::DoMouseMove(local, event);
    HoverAt(local);
}

// Keys

void TMenuLayer::GoTo(int from, int direction) {
    if (mPanels.empty())
        return;
    const int index = CountPanels() - 1;
    const std::vector<TMenuItem*>& items = mPanels.back().mItems;
    const int count = static_cast<int>(items.size());
    for (int step = 0; step < count; ++step) {
        const int item = (from + step * direction % count + 2 * count) % count;
        if (CanBeHilited(items[static_cast<std::size_t>(item)]))
            return Hilite(index, item, /*openSubmenu*/ false);
    }
}

void TMenuLayer::Step(int direction) {
    const int now = mPanels.empty() ? -1 : mPanels.back().mHilited;
    GoTo(now < 0 ? (direction > 0 ? 0 : -1) : now + direction, direction);
}

void TMenuLayer::Choose(int index, int item) {
    Panel& panel = mPanels[static_cast<std::size_t>(index)];
    if (item < 0 || item >= static_cast<int>(panel.mItems.size()))
        return;
    TMenuItem* chosen = panel.mItems[static_cast<std::size_t>(item)];
    if (CanBeChosen(chosen)) {
        Finish(chosen);
    } else if (chosen->GetSubmenu() && chosen->IsEnabled()) {
        Hilite(index, item, /*openSubmenu*/ true);
        GoTo(0, 1);
    }
}

void TMenuLayer::DoKeyEvent(TToolboxEvent* event) {
    const StDispatch dispatch;
    if (mPanels.empty())
        return;
    const int top = CountPanels() - 1;
    TMenuItem* hilited = GetHilited(top);
    switch (event->mKeyCode) {
    case kDAW_Key_Escape:
        return top > 0 ? PopPanelsAbove(top - 1) : Close();
    case kDAW_Key_Up:
        return Step(-1);
    case kDAW_Key_Down:
        return Step(1);
    case kDAW_Key_Home:
        return GoTo(0, 1);
    case kDAW_Key_End:
        return GoTo(-1, -1);
    case kDAW_Key_Left:
        if (top > 0)
            return PopPanelsAbove(top - 1);
        return mBar ? mBar->OpenNext(-1) : void();
    case kDAW_Key_Right:
        if (hilited && hilited->GetSubmenu())
            return Choose(top, mPanels.back().mHilited);
        return mBar ? mBar->OpenNext(1) : void();
    case kDAW_Key_Return:
    case kDAW_Key_Enter:
        return Choose(top, mPanels.back().mHilited);
    case kDAW_Key_Space:
        if (mTyped.empty() || Sys_Clock_Seconds() - mTypedAt >= kTypeAheadSeconds)
            return Choose(top, mPanels.back().mHilited);
        break;
    default:
        break;
    }
    const std::uint32_t character = event->mCharacterCode;
    const bool isText = character >= 0x20 && character != 0x7F && character < 0x110000 &&
                        event->mKeyCode < kDAW_FirstNamedKeyCode;
    if (!isText)
        return;
    if (event->IsOptionKeyPressed()) { // a mnemonic of this menu, else of the bar
        if (!ChooseMnemonic(character) && mBar)
            mBar->OpenMnemonic(character);
        return;
    }
    std::string typed;
    Cmn_AppendUTF8(typed, character);
    TypeAhead(typed);
}

bool TMenuLayer::ChooseMnemonic(char32_t letter) {
    const std::vector<TMenuItem*>& items = mPanels.back().mItems;
    for (int i = 0; i < static_cast<int>(items.size()); ++i) {
        const std::string mnemonic = items[static_cast<std::size_t>(i)]->GetMnemonic();
        std::size_t at = 0;
        if (mnemonic.empty() || !QLX_IsSameLetter(Cmn_DecodeUTF8(mnemonic, at), letter))
            continue;
        Hilite(CountPanels() - 1, i, /*openSubmenu*/ false);
        Choose(CountPanels() - 1, i);
        return true;
    }
    return false;
}

void TMenuLayer::DoCommandKeyEvent(TToolboxEvent*) {
    Close(); // a command key belongs to no menu; the user gave the menu up
}

bool TMenuLayer::DoTextInput(const std::string& text) {
    const StDispatch dispatch;
    TypeAhead(text);
    return true;
}

void TMenuLayer::TypeAhead(const std::string& typed) {
    if (mPanels.empty())
        return;
    const std::vector<TMenuItem*>& items = mPanels.back().mItems;
    const double now = Sys_Clock_Seconds();
    if (now - mTypedAt >= kTypeAheadSeconds)
        mTyped.clear();
    mTypedAt = now;
    std::size_t at = 0;
    if (mTyped.empty() && !typed.empty() && ChooseMnemonic(Cmn_DecodeUTF8(typed, at)))
        return;
    mTyped += typed;
    for (int i = 0; i < static_cast<int>(items.size()); ++i)
        if (BeginsWith(TextOf(items[static_cast<std::size_t>(i)]).mPlain, mTyped))
            return Hilite(CountPanels() - 1, i, /*openSubmenu*/ false);
}

bool TMenuLayer::WantsToBeTarget() { return true; }

// Drawing

void TMenuLayer::DrawItem(const Panel& panel, int index) {
    const PainterPtr& painter = GetPainter();
    const TMenuItem* item = panel.mItems[static_cast<std::size_t>(index)];
    const Cmn_Rect<int> rect = GetItemRect(panel, index);
    if (item->IsSeparator()) {
        const int middle = (rect.top + rect.bottom) / 2;
        painter->SetForegroundColor(QLX_Theme::GetColor(kThemeColor_ControlFrame));
        painter->FillRect({rect.left + 4, middle, rect.right - 4, middle + 1});
        return;
    }
    const bool hilited = index == panel.mHilited;
    if (hilited) {
        painter->SetForegroundColor(QLX_Theme::GetColor(kThemeColor_MenuHighlight));
        painter->FillRect(rect);
    }
    painter->SetForegroundColor(QLX_Theme::GetColor(!item->IsEnabled() ? kThemeColor_DisabledText
                                                    : hilited ? kThemeColor_MenuHighlightText
                                                              : kThemeColor_MenuText));
    if (item->GetCheckState() == TMenuItem::kChecked) {
        const int middle = (rect.top + rect.bottom) / 2;
        const QLX_StPenState pen(painter);
        painter->SetPenSize(2, 2);
        painter->MoveTo(rect.left + 6.0f, middle - 1.0f, QLX_Painter::kResolution_Logical);
        painter->LineTo(rect.left + 8.0f, middle + 2.0f, true, QLX_Painter::kResolution_Logical, 0);
        painter->LineTo(rect.left + 13.0f, middle - 4.0f, true, QLX_Painter::kResolution_Logical,
                        0);
    } else if (item->GetCheckState() == TMenuItem::kMixed) {
        const int middle = (rect.top + rect.bottom) / 2;
        painter->FillRect({rect.left + 6, middle - 1, rect.left + 14, middle + 1});
    }
    const Cmn_Rect<int> text{rect.left + kMarkWidth, rect.top, rect.right - kArrowWidth,
                             rect.bottom};
    QLX_DrawMenuText(painter, text, TextOf(item), QLX_Painter::kJustify_Left);
    const std::string& key = panel.mKeys[static_cast<std::size_t>(index)];
    if (!key.empty())
        painter->DrawStringJustified(text, key, QLX_Painter::kJustify_Right,
                                     QLX_Painter::kJustify_Middle,
                                     QLX_Painter::kResolution_Logical);
    if (item->GetSubmenu()) {
        const int middle = (rect.top + rect.bottom) / 2;
        for (int i = 0; i < 4; ++i) // an arrow of columns, the same at every scale
            painter->FillRect(
                {rect.right - 12 + i, middle - 4 + i, rect.right - 11 + i, middle + 4 - i});
    }
}

void TMenuLayer::DrawPanel(const Panel& panel, const VRect& area) {
    const PainterPtr& painter = GetPainter();
    painter->SetForegroundColor(QLX_Theme::GetColor(kThemeColor_MenuBackground));
    painter->FillRect(panel.mRect);
    QLX_StClipRgnState clip(painter);
    clip.SectWithCurrent(panel.mRect);
    for (int item = 0; item < static_cast<int>(panel.mItems.size()); ++item)
        if (!(GetItemRect(panel, item) & area & panel.mRect).Empty())
            DrawItem(panel, item);
    painter->SetForegroundColor(QLX_Theme::GetColor(kThemeColor_ControlFrame));
    painter->DrawRect(panel.mRect);
}

void TMenuLayer::Draw(const VRect& area) {
    GetPainter()->SetFont(MenuFont());
    for (const Panel& panel : mPanels)
        if (!(panel.mRect & area).Empty())
            DrawPanel(panel, area);
}

void TMenuLayer::GetAccessibleInfo(TAccessibleInfo& info) const {
    TView::GetAccessibleInfo(info);
    info.mRole = "menu";
    if (mPanels.empty())
        return;
    info.mName = mPanels.back().mMenu->GetTitle();
    if (const TMenuItem* item = GetHilited(CountPanels() - 1))
        info.mValue = item->GetPlainText();
}
