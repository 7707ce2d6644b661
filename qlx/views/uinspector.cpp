#include "qlx/views/uinspector.h"

#include <algorithm>
#include <map>

#include "qlx/foundation/qlx_region.h"
#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_painter.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/udebugdump.h"
#include "qlx/views/ueventtrace.h"
#include "qlx/views/uviewserver.h"
#include "qlx/views/uwindow.h"

namespace {

constexpr int kMargin = 4;
constexpr int kPanelWidth = 360;
constexpr double kFlashSeconds = 0.15;

/// In front of everything in the window; draws the outline and the panel, never takes the mouse.
class TInspectorView : public TView {
  public:
    void Inspect(TView* view) {
        const std::string text = view ? TInspector::Describe(view) : std::string();
        VRect outline;
        if (view) {
            outline = view->GetVisibleRect();
            view->LocalToWindowVRect(outline);
        }
        if (view == mInspected && text == mText && outline == mOutline)
            return;
        ForceRedraw();
        mInspected = view;
        mText = text;
        mOutline = outline;
    }
    /// The view went away.
    void Forget(const TView* view) {
        if (mInspected && (mInspected == view || mInspected->IsContainedIn(view)))
            Inspect(nullptr);
    }
    [[nodiscard]] TView* GetInspected() const { return mInspected; }

    void Draw(const VRect&) override {
        const PainterPtr& painter = GetPainter();
        if (!painter || !mInspected)
            return;
        painter->SetForegroundColor(CRGBColor(0xFFFF, 0x4000, 0x8000));
        painter->SetPenSize(2, 2);
        painter->DrawRect(mOutline.ToCmn_Rect());
        DrawPanel(*painter);
    }
    bool ContainsMouse(const VPoint&) const override { return false; }
    void SuperViewChangedSize(const VPoint&, const VPoint& size, bool redraw) override {
        SetFrame({0, 0, size.h, size.v}, redraw, /*layOut*/ false);
    }

  private:
    void DrawPanel(QLX_Painter& painter) {
        painter.SetFont(QLX_FontMap::RetrieveFont(kFont_InterfaceSmall, kFontSelect_Plain));
        const VRect all = GetExtent();
        const int width = static_cast<int>(
            std::min<VCoordinate>(kPanelWidth, std::max<VCoordinate>(all.GetWidth() - 8, 1)));
        const int height =
            painter.MeasureStringHeight(width - 2 * kMargin, mText, QLX_Painter::kWrap_Character) +
            2 * kMargin;
        // Away from what is being looked at.
        const bool right = mOutline.Left() + mOutline.Right() < all.Right();
        const bool below = mOutline.Top() + mOutline.Bottom() < all.Bottom();
        const int left = right ? static_cast<int>(all.Right()) - width - kMargin : kMargin;
        const int top =
            below ? std::max(static_cast<int>(all.Bottom()) - height - kMargin, kMargin) : kMargin;
        const Cmn_Rect<int> panel(left, top, left + width, top + height);
        painter.SetForeground(kThemeColor_ToolTipBackground);
        painter.FillRect(panel);
        painter.SetForeground(kThemeColor_ToolTipText);
        painter.SetPenSize(1, 1);
        painter.DrawRect(panel);
        painter.DrawTextBox({panel.left + kMargin, panel.top + kMargin, panel.right - kMargin,
                             panel.bottom - kMargin + 1},
                            mText, QLX_Painter::kJustify_Left, /*wrap*/ true, /*ellipsis*/ false,
                            /*clip*/ true, /*erase*/ false);
    }

    TView* mInspected = nullptr; // not owned; forgotten when it leaves
    std::string mText;
    VRect mOutline; // window coordinates
};

bool sEnabled = false;
std::uint32_t sKeyCode = 0;
std::uint32_t sModifiers = 0;
TWindow* sWindow = nullptr;
TInspectorView* sView = nullptr; // a subview of sWindow, which owns it

/// Hears when the inspected window or view goes away.
class Watcher : public QLX_AccessibilityListener {
  public:
    void ViewNotified(TView* view, int code, TObject* argument) override {
        if (code == kAccessibility_Destroyed) {
            if (view == sView || view == sWindow) {
                sView = nullptr;
                sWindow = nullptr;
            } else if (sView) {
                sView->Forget(view);
            }
        }
        if (mNext)
            mNext->ViewNotified(view, code, argument);
    }
    QLX_AccessibilityListener* mNext = nullptr; // not owned
};

Watcher sWatcher;
bool sWatching = false;

/// Lines that each begin with a line break and two blanks.
std::string Indented(const std::string& lines) {
    std::string text;
    for (std::size_t start = 0, end = 0; start < lines.size(); start = end + 1) {
        end = std::min(lines.find('\n', start), lines.size());
        text += "\n  " + lines.substr(start, end - start);
    }
    return text;
}

QLX_EventTraceWriter& Writer() {
    static QLX_EventTraceWriter sWriter(QLX_EventTraceWriter::EForm::Lines);
    return sWriter;
}

} // namespace

void TInspector::Enable(std::uint32_t keyCode, std::uint32_t modifiers) {
    sEnabled = true;
    sKeyCode = keyCode;
    sModifiers = modifiers;
    TViewServer::SetRememberSources(true);
}

void TInspector::Disable() {
    Hide();
    sEnabled = false;
    TViewServer::SetRememberSources(false);
}

bool TInspector::IsEnabled() { return sEnabled; }

void TInspector::Show(TWindow* window) {
    if (!window || window == sWindow)
        return;
    Hide();
    if (!sWatching) {
        sWatcher.mNext = QLX_AccessibilityListener::Install(&sWatcher);
        sWatching = true;
    }
    sWindow = window;
    auto* view = new TInspectorView;
    view->SetFrame({0, 0, window->GetSize().h, window->GetSize().v}, false, false);
    view->SetAccessibilityDetached(true);
    window->AddSubView(view);
    sView = view;
    PointerMoved(window);
}

void TInspector::Hide() {
    if (sView)
        sView->Free();
    sView = nullptr;
    sWindow = nullptr;
    // Taken out only when nobody was put in front of it since.
    if (sWatching && QLX_AccessibilityListener::Get() == &sWatcher) {
        QLX_AccessibilityListener::Install(sWatcher.mNext);
        sWatching = false;
    }
}

TWindow* TInspector::GetWindow() { return sWindow; }

TView* TInspector::GetInspected() { return sView ? sView->GetInspected() : nullptr; }

std::string TInspector::Describe(TView* view) {
    if (!view)
        return {};
    std::string text = QLX_DumpView(view) + "\nhandlers:" + Indented(QLX_DumpHandlerChain(view));
    const std::string properties = QLX_DumpProperties(TViewServer::GetSource(view));
    if (!properties.empty())
        text += "\nproperties:" + Indented(properties);
    return text;
}

void TInspector::SetPaintFlashing(TWindow* window, bool on) {
    if (window)
        window->SetPaintFlashing(on);
}

void TInspector::SetEventTrace(bool on) { QLX_EventTrace::Start(on ? &Writer() : nullptr); }

bool TInspector::TakeKey(TWindow* window, std::uint32_t keyCode, std::uint32_t modifiers) {
    if (!sEnabled || keyCode != sKeyCode)
        return false;
    if (modifiers == sModifiers) {
        if (sWindow == window)
            Hide();
        else
            Show(window);
        return true;
    }
    if (modifiers == (sModifiers | kQLX_Modifier_Shift)) {
        SetPaintFlashing(window, !window->IsPaintFlashing());
        return true;
    }
    return false;
}

void TInspector::PointerMoved(TWindow* window) {
    if (sView && window == sWindow)
        sView->Inspect(window->GetHovered());
}

void TInspector::SubViewAdded(TWindow* window, TView* sub) {
    if (sView && window == sWindow && sub != sView)
        window->MakeLastSubView(sView);
}

void TInspector::Flash(TWindow* window, const QLX_Region& region) {
    static std::map<TWindow*, bool> sClearing; // being drawn again after a flash
    QLX_EventLoop* loop = QLX_EventLoop::Get();
    if (!loop || std::exchange(sClearing[window], false))
        return;
    const TView::PainterPtr& painter = window->GetDrawingPainter();
    painter->SetWindowOrigin(window->GetLocalOffset().ToCmn_Point());
    painter->SetClip(region);
    painter->BlendRegion(region, CRGBColor(0xFFFF, 0xC000, 0, 0x6000), QLX_Painter::kBlend_Normal);
    window->DropFocus();
    loop->StartTimer(kFlashSeconds, 0, [window, region] {
        const auto& open = TWindow::GetWindows();
        if (std::find(open.begin(), open.end(), window) == open.end()) {
            sClearing.erase(window);
            return;
        }
        sClearing[window] = true;
        window->InvalidateRegion(region);
    });
}
