#include "tests/support/probe_view.h"

#include <cstring>
#include <filesystem>
#include <fstream>

#include "basekit/cmn/cmn_string.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/imaging/qlx_painter.h"
#include "qlx/persistence/qlx_sourceformat.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uevent.h"
#include "qlx/views/utracker.h"
#include "qlx/views/uwindow.h"

QLX_DEFINE_CLASS(TProbeView, TView);

namespace {

class ProbeTracker : public TTracker {
  public:
    explicit ProbeTracker(TProbeView* view) : mProbe(view), mBefore(view->GetDragged()) {}
    void TrackMouse(TrackPhase phase, const VPoint& anchor, const VPoint&, const VPoint& next,
                    TToolboxEvent*) override {
        if (phase == kTrack_Cancel) {
            if (GetView())
                mProbe->SetDragged(mBefore);
            return;
        }
        mProbe->SetDragged(mBefore + (next - anchor));
    }

  private:
    TProbeView* mProbe;
    VPoint mBefore;
};

} // namespace

TProbeView::TProbeView() = default;

TProbeView::~TProbeView() = default;

TObject* TProbeView::Clone() { return TView::Clone(); }

void TProbeView::SetDragged(const VPoint& way) {
    mDragged = way;
    ForceRedraw();
}

void TProbeView::Draw(const VRect&) {
    const PainterPtr& painter = GetPainter();
    if (!painter)
        return;
    const Cmn_Rect<int> all = GetExtent().ToCmn_Rect();
    painter->SetForeground(IsMouseOver() ? kThemeColor_ControlLight : kThemeColor_ControlFace);
    painter->FillRect(all);
    painter->SetForeground(IsTarget() ? kThemeColor_FocusRing : kThemeColor_ControlFrame);
    painter->SetPenSize(2, 2);
    painter->DrawRect(all);
    painter->SetForeground(kThemeColor_ControlMark);
    const int x = static_cast<int>(mDragged.h) + 10;
    const int y = static_cast<int>(mDragged.v) + 40 + mWheel / 12;
    painter->FillOval({x, y, x + 15, y + 15}, /*antialias*/ true);
    painter->SetForeground(kThemeColor_ControlText);
    painter->DrawSingleLineTextBox({all.left + 6, all.top + 6, all.right - 6, all.top + 26}, mText,
                                   /*ellipsis*/ true, nullptr);
}

bool TProbeView::DoMouseCommand(const VPoint& local, TToolboxEvent* event) {
    BecomeTarget();
    return BeginTracking(new ProbeTracker(this), local, event);
}

bool TProbeView::DoMouseWheel(const VPoint&, TToolboxEvent* event) {
    mWheel += QLX_GetWheelDelta(event).y;
    ForceRedraw();
    return true;
}

void TProbeView::DoMouseEnter(const VPoint&, TToolboxEvent*) { ForceRedraw(); }

void TProbeView::DoMouseLeave(TToolboxEvent*) { ForceRedraw(); }

void TProbeView::BecameTarget() {
    ForceRedraw();
    TView::BecameTarget();
}

void TProbeView::ResignedTarget() {
    ForceRedraw();
    TView::ResignedTarget();
}

void TProbeView::DoKeyEvent(TToolboxEvent* event) {
    if (event->mKeyCode == kDAW_Key_Backspace) {
        mText[0] = '\0';
        ForceRedraw();
    } else if (event->mCharacterCode >= 32 && event->mCharacterCode != 127) {
        Typed(event->mCharacterCode);
    } else {
        TView::DoKeyEvent(event);
    }
}

void TProbeView::Typed(std::uint32_t character) {
    std::string text = mText;
    Cmn_AppendUTF8(text, character);
    if (text.size() < sizeof mText)
        std::memcpy(mText, text.c_str(), text.size() + 1);
    ForceRedraw();
}

Cmn_AliasedRefCountPtr<QLX_ViewMemento> ReadDescription(const std::string& name) {
    QLX_SourceViewFormat format(Sys_FileLoc(std::string(QLX_TEST_DATA) + "/" + name));
    return Cmn_AliasedRefCountPtr<QLX_ViewMemento>(format.ReadMemento(nullptr));
}

Cmn_AliasedRefCountPtr<QLX_ViewMemento> DescriptionFromText(const std::string& xml) {
    const std::string path = std::string(QLX_TEST_OUTPUT) + "/description.xml";
    std::filesystem::create_directories(QLX_TEST_OUTPUT);
    std::ofstream(path, std::ios::binary) << xml;
    QLX_SourceViewFormat format{Sys_FileLoc(path)};
    return Cmn_AliasedRefCountPtr<QLX_ViewMemento>(format.ReadMemento(nullptr));
}
