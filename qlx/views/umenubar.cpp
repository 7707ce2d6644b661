#include "qlx/views/umenubar.h"

#include "basekit/cmn/cmn_string.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/uevent.h"
#include "qlx/views/umenulayer.h"
#include "qlx/views/uwindow.h"

QLX_DEFINE_CLASS(TMenuBar, TControl)

namespace {

constexpr int kTitlePadding = 10;

} // namespace

TMenuBar::TMenuBar() { SetTakesFocus(false); }

TMenuBar::~TMenuBar() = default;

void TMenuBar::Free() {
    TMenuLayer* layer = mOpen >= 0 ? TMenuLayer::GetOpen() : nullptr;
    if (layer) {
        layer->SetMenuBar(nullptr);
        layer->Close();
    }
    TControl::Free();
}

VRect TMenuBar::GetTitleRect(int menu) const {
    const VRect extent = GetExtent();
    const QLX_Font font = GetControlFont();
    VCoordinate left = extent.Left() + 4;
    for (int i = 0;; ++i) {
        const TMenu* shown = TMenuManager::GetMenu(static_cast<std::size_t>(i));
        if (!shown)
            return VRect();
        const float text =
            QLX_TextMeasure::Get().MeasureWidth(font, QLX_ParseMenuText(shown->GetTitle()).mPlain);
        const VCoordinate width = static_cast<VCoordinate>(text) + 1 + 2 * kTitlePadding;
        if (i == menu)
            return VRect(left, extent.Top(), left + width, extent.Bottom());
        left += width;
    }
}

int TMenuBar::TitleAt(const VPoint& local) const {
    for (std::size_t i = 0; i < TMenuManager::CountMenus(); ++i)
        if (GetTitleRect(static_cast<int>(i)).Contains(local))
            return static_cast<int>(i);
    return -1;
}

void TMenuBar::OpenMenu(int menu) {
    TMenu* model = TMenuManager::GetMenu(static_cast<std::size_t>(menu));
    if (!model || !IsEnabled())
        return;
    VRect anchor = GetTitleRect(menu);
    LocalToWindowVRect(anchor);
    TMenuLayer* layer = mOpen >= 0 ? TMenuLayer::GetOpen() : nullptr;
    mOpen = menu;
    if (layer) {
        layer->Switch(model, anchor);
    } else {
        layer = TMenuLayer::Open(GetWindow(), model, anchor, -1, [this](TMenuItem* chosen) {
            mOpen = -1;
            ForceRedraw();
            if (chosen && gApplication && chosen->GetCommand() != 0)
                gApplication->SendMenuCommand(chosen->GetCommand());
        });
        if (layer)
            layer->SetMenuBar(this);
        else
            mOpen = -1;
    }
    ForceRedraw();
}

void TMenuBar::OpenNext(int direction) {
    if (const int count = static_cast<int>(TMenuManager::CountMenus()); count > 0)
        OpenMenu((mOpen + direction + count) % count);
}

bool TMenuBar::OpenMnemonic(char32_t letter) {
    for (std::size_t i = 0; i < TMenuManager::CountMenus(); ++i) {
        const TMenuText title = QLX_ParseMenuText(TMenuManager::GetMenu(i)->GetTitle());
        std::size_t at = title.mMnemonicAt;
        if (title.mMnemonicSize == 0 || !QLX_IsSameLetter(Cmn_DecodeUTF8(title.mPlain, at), letter))
            continue;
        OpenMenu(static_cast<int>(i));
        return true;
    }
    return false;
}

bool TMenuBar::HandleMenuKey(TToolboxEvent* event) {
    const StDispatch dispatch;
    if (event->mKeyCode == kDAW_Key_F1 + 9) { // F10
        OpenMenu(0);
        return true;
    }
    if (event->IsOptionKeyPressed() && !event->IsCommandKeyPressed())
        if (OpenMnemonic(event->mCharacterCode))
            return true;
    const TMenuKey key{static_cast<DAW_EKeyCode>(event->mKeyCode), event->GetEventModifiers()};
    TMenuItem* item = TMenuManager::FindItem(key);
    if (!item || !gApplication)
        return false;
    TMenuManager::SetupMenus();
    if (item->IsEnabled())
        gApplication->SendMenuCommand(item->GetCommand());
    return true;
}

bool TMenuBar::DoMouseCommand(const VPoint& local, TToolboxEvent* event) {
    const int title = TitleAt(local);
    if (title < 0)
        return true;
    OpenMenu(title);
    VPoint inWindow = local;
    LocalToWindow(inWindow);
    if (TMenuLayer* layer = TMenuLayer::GetOpen())
        layer->FollowPress(inWindow, event);
    return true;
}

void TMenuBar::Draw(const VRect&) {
    const PainterPtr& painter = GetPainter();
    painter->SetForegroundColor(GetControlColor(kThemeColor_MenuBackground));
    painter->FillRect(GetExtent());
    for (std::size_t i = 0; i < TMenuManager::CountMenus(); ++i) {
        const Cmn_Rect<int> rect = GetTitleRect(static_cast<int>(i));
        const bool open = static_cast<int>(i) == mOpen;
        if (open) {
            painter->SetForegroundColor(GetControlColor(kThemeColor_MenuHighlight));
            painter->FillRect(rect);
        }
        painter->SetForegroundColor(
            GetTextColor(open ? kThemeColor_MenuHighlightText : kThemeColor_MenuText));
        QLX_DrawMenuText(painter, rect, QLX_ParseMenuText(TMenuManager::GetMenu(i)->GetTitle()),
                         QLX_Painter::kJustify_Center);
    }
}

void TMenuBar::GetAccessibleInfo(TAccessibleInfo& info) const {
    TControl::GetAccessibleInfo(info);
    info.mRole = "menubar";
    info.mValue.clear();
}
