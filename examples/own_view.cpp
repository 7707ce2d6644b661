// A view of one's own: described, made by name, dragged by a user who is a program, and looked at.
// Prints what the view was told and what the drag cost, and writes the window's picture.
//
// Usage: own_view PICTURE.png

#include <algorithm>
#include <cstdio>
#include <exception>
#include <utility>

#include "app/misc/qlx_init.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/utracker.h"
#include "qlx/views/uwindow.h"

/// A bar that is as long as its level, which a drag sets. Property: "Level" (int32, pixels).
class TLevelBar : public TView {
  public:
    QLX_DECLARE_CLASS(TLevelBar);

    [[nodiscard]] VCoordinate GetLevel() const { return mLevel; }
    void SetLevel(VCoordinate level) {
        level = std::clamp<VCoordinate>(level, 0, GetSize().h);
        const VCoordinate old = std::exchange(mLevel, level);
        // What changed, and no more.
        InvalidateVRect({std::min(old, level), 0, std::max(old, level), GetSize().v});
    }

    void Draw(const VRect& area) override {
        const PainterPtr& painter = GetPainter();
        painter->SetForeground(kThemeColor_FieldBackground);
        painter->FillRect(area.ToCmn_Rect());
        painter->SetForeground(kThemeColor_MeterLow);
        painter->FillRect((VRect(0, 0, mLevel, GetSize().v) & area).ToCmn_Rect());
    }

    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override;

    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override {
        TView::ReadProperties(container, memento);
        std::int32_t level = 0;
        // Once: a description that is read again leaves the user's level alone.
        if (!IsFromDescription() && container->GetInt32Property("Level", level))
            SetLevel(level);
    }

  private:
    VCoordinate mLevel = 0;
};
QLX_DEFINE_CLASS(TLevelBar, TView);

/// Follows the mouse while the button is held; Escape brings the old level back.
class TLevelTracker : public TTracker {
  public:
    explicit TLevelTracker(TLevelBar* bar) : mBar(bar), mBefore(bar->GetLevel()) {}
    void TrackMouse(TrackPhase phase, const VPoint&, const VPoint&, const VPoint& next,
                    TToolboxEvent*) override {
        if (GetView()) // null when the bar has gone
            mBar->SetLevel(phase == kTrack_Cancel ? mBefore : next.h);
    }

  private:
    TLevelBar* mBar;
    VCoordinate mBefore;
};

bool TLevelBar::DoMouseCommand(const VPoint& local, TToolboxEvent* event) {
    return BeginTracking(new TLevelTracker(this), local, event);
}

namespace {

/// What a description file would hold.
Cmn_AliasedRefCountPtr<QLX_ViewMemento> Describe() {
    const QLX_PropertyFilter& filter = QLX_PropertyFilter::DefaultFilter();
    auto* root = new QLX_RawPropertyContainer("viewhierarchy");
    auto window = std::make_unique<QLX_RawPropertyContainer>("view");
    window->SetStringProperty("class", "TWindow", filter);
    window->SetRectProperty("Frame", {0, 0, 220, 60}, filter);
    auto bar = std::make_unique<QLX_RawPropertyContainer>("view");
    bar->SetStringProperty("class", "TLevelBar", filter);
    bar->SetIDTypeProperty("Identifier", Cmn_FourChar("levl"), filter);
    bar->SetRectProperty("Frame", {10, 20, 210, 40}, filter);
    bar->SetInt32Property("Level", 50, filter);
    window->AddChild(std::move(bar));
    root->AddChild(std::move(window));
    return Cmn_AliasedRefCountPtr<QLX_ViewMemento>(new QLX_ViewMemento(root, "levels"));
}

void Run(const char* picture) {
    QLX_Init::Init();
    QLX_TestDriver driver;
    driver.OpenWindow(Describe());
    auto& bar = driver.FindAs<TLevelBar>(Cmn_FourChar("levl"));
    std::printf("as described: %d\n", static_cast<int>(bar.GetLevel()));
    driver.ResetCosts();
    driver.Drag({60, 30}, {140, 30});
    std::printf("after a drag: %d\n", static_cast<int>(bar.GetLevel()));
    std::printf("pixels painted: %d\n", static_cast<int>(driver.GetCosts().mPixelsPainted));
    driver.Press({30, 30});
    driver.Key(kDAW_Key_Escape);
    driver.Release();
    std::printf("after Escape: %d\n", static_cast<int>(bar.GetLevel()));
    driver.SavePicture(picture);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: own_view PICTURE.png\n");
        return 2;
    }
    try {
        Run(argv[1]);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "own_view: %s\n", failure.what());
        return 1;
    }
    return 0;
}
