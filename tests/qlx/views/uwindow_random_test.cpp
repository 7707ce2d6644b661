// Windows under random users and views that add, free, hide, move and target each other from inside
// every call they get. Nothing is expected but that the tree stays a tree, that whatever the window
// remembers is in it, and that the sanitizers stay quiet. QLX_LONG_TESTS=1 tries many more seeds.
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/uadorner.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/utracker.h"
#include "qlx/views/uwindow.h"
#include "tests/support/seeds.h"

namespace {

std::mt19937 sRandom;
TWindow* sWindow = nullptr;
int sAlive = 0;
int sDepth = 0;

int Any(int low, int high) { return std::uniform_int_distribution<int>(low, high)(sRandom); }

class Chaos;
Chaos* AnyView();
void Meddle(TView* self);

class ChaosTracker : public TTracker {
  public:
    void TrackMouse(TrackPhase phase, const VPoint&, const VPoint&, const VPoint&,
                    TToolboxEvent*) override {
        if (phase != kTrack_Cancel)
            Meddle(GetView());
        if (Any(0, 15) == 0)
            Cancel();
    }
};

class Chaos : public TView {
  public:
    Chaos() { ++sAlive; }
    ~Chaos() override { --sAlive; }
    void Draw(const VRect& area) override {
        const PainterPtr& painter = GetPainter();
        if (Any(0, 30) == 0)
            Meddle(this);
        painter->FillRect(area.ToCmn_Rect()); // on a painter that may have lost its window
    }
    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override {
        Meddle(this);
        if (Any(0, 2) == 0)
            BecomeTarget();
        return Any(0, 2) == 0 || BeginTracking(new ChaosTracker, local, event);
    }
    bool DoMouseUp(const VPoint&, TToolboxEvent*) override {
        Meddle(this);
        return true;
    }
    bool DoMouseWheel(const VPoint&, TToolboxEvent*) override {
        Meddle(this);
        return Any(0, 1) == 0;
    }
    void DoMouseEnter(const VPoint&, TToolboxEvent*) override { Meddle(this); }
    void DoMouseLeave(TToolboxEvent*) override { Meddle(this); }
    void DoMouseMove(const VPoint&, TToolboxEvent*) override { Meddle(this); }
    bool WantsToBeTarget() override { return true; }
    void DoKeyEvent(TToolboxEvent* event) override {
        Meddle(this);
        if (Any(0, 1) == 0)
            TView::DoKeyEvent(event);
    }
    bool GetToolTip(const VPoint&, std::string& text, VRect& area) const override {
        text = "tip";
        area = GetExtent();
        return true;
    }
};

Chaos* AnyView() {
    TView* view = sWindow;
    for (int depth = Any(1, 4); depth > 0 && view->CountSubViews() > 0; --depth)
        view = view->GetSubView(Any(1, view->CountSubViews()));
    return dynamic_cast<Chaos*>(view);
}

void Add(TView* superView) {
    if (sAlive > 60)
        return;
    auto* view = new Chaos;
    const int left = Any(-20, 180);
    const int top = Any(-20, 130);
    view->IView(superView, {left, top, left + Any(0, 120), top + Any(0, 90)});
    view->SetTabOrder(Any(-1, 2));
}

void Meddle(TView* self) {
    if (sDepth > 3 || Any(0, 2) != 0)
        return;
    ++sDepth;
    Chaos* view = AnyView();
    TView* subject = Any(0, 1) == 0 && self ? self : view;
    switch (Any(0, 13)) {
    case 10:
        if (Any(0, 19) == 0)
            sWindow->Close(); // the user of the test opens it again
        break;
    case 11:
        if (subject)
            subject->AddAdorner(new TFrameAdorner);
        break;
    case 12:
        if (subject && subject->CountAdorners() > 0) {
            TAdorner* adorner = subject->GetAdorner(1);
            subject->RemoveAdorner(adorner);
            adorner->Free();
        }
        break;
    case 0:
        Add(subject ? subject : static_cast<TView*>(sWindow));
        break;
    case 1:
        if (subject)
            subject->Free();
        break;
    case 2:
        if (subject)
            subject->Show(Any(0, 1) == 0, true);
        break;
    case 3:
        if (subject)
            subject->Locate({Any(-50, 200), Any(-50, 150)}, true);
        break;
    case 4:
        if (subject)
            subject->ScrollTo({Any(-30, 30), Any(-30, 30)});
        break;
    case 5:
        if (view && self && view != self && !self->IsContainedIn(view))
            self->AddSubView(view); // moves it from wherever it is
        break;
    case 6:
        if (subject && subject->GetSuperView())
            subject->GetSuperView()->MakeFirstSubView(subject);
        break;
    case 7:
        sWindow->SetWindowTarget(view);
        break;
    case 8:
        sWindow->UpdateNow();
        break;
    case 9:
        --sDepth;
        throw std::runtime_error("on purpose");
    default:
        if (subject)
            subject->SetEnable(Any(0, 3) != 0);
        break;
    }
    --sDepth;
}

void CheckTree(const TView* view) {
    for (int i = 1; i <= view->CountSubViews(); ++i) {
        ASSERT_EQ(view->GetSubView(i)->GetSuperView(), view);
        CheckTree(view->GetSubView(i));
    }
}

void CheckWindow() {
    CheckTree(sWindow);
    const auto isInside = [](const TView* view) {
        return !view || view == sWindow || view->IsContainedIn(sWindow);
    };
    ASSERT_TRUE(isInside(sWindow->GetHovered()));
    if (sWindow->GetTracker()) {
        ASSERT_TRUE(isInside(sWindow->GetTracker()->GetView()));
    }
    if (const auto* target = dynamic_cast<TView*>(gApplication->GetTarget())) {
        ASSERT_TRUE(isInside(target));
    }
    ASSERT_FALSE(sWindow->IsDrawing());
    ASSERT_EQ(TView::GetDrawNesting(), 0);
}

// A view that meddles whenever it is drawn or moved never lets the loop come to rest, so the
// driver's patience is not used here.
void Turn(QLX_TestDriver& driver, const QLX_EventRef& event) {
    driver.GetPlatform().GetWindows().front()->Inject(event);
    driver.GetPlatform().GetHeadlessLoop().RunOnce(0);
    if (Any(0, 9) == 0)
        driver.GetPlatform().GetHeadlessLoop().RunOnce(0.7);
}

QLX_EventRef AnyEvent() {
    const Cmn_Point<int> where{Any(-10, 210), Any(-10, 160)};
    switch (Any(0, 11)) {
    case 0:
    case 1:
        return QLX_MakeMouseEvent(kQLX_EventKind_MouseDown, where, 0,
                                  static_cast<EMouseButton>(Any(0, 5) == 0 ? 2 : 0));
    case 2:
    case 3:
        return QLX_MakeMouseEvent(kQLX_EventKind_MouseUp, where, 0);
    case 4:
        return QLX_MakeWheelEvent(where, {0, Any(-240, 240)}, 0);
    case 5:
        return QLX_MakeKeyEvent(kQLX_EventKind_KeyDown, kDAW_Key_Tab, 9,
                                Any(0, 1) == 0 ? kQLX_Modifier_Shift : 0U);
    case 6:
        return QLX_MakeKeyEvent(kQLX_EventKind_KeyDown, kDAW_Key_Escape, 27, 0);
    case 7:
        return QLX_MakeKeyEvent(kQLX_EventKind_KeyDown, 'A', 'a', 0);
    case 8:
        return QLX_MakeMouseEvent(
            Any(0, 1) == 0 ? kQLX_EventKind_CaptureLost : kQLX_EventKind_MouseLeft, where, 0);
    case 9:
        return QLX_MakeWindowEvent(Any(0, 1) == 0 ? kQLX_EventKind_Deactivated
                                                  : kQLX_EventKind_Activated);
    default:
        return QLX_MakeMouseEvent(kQLX_EventKind_MouseMoved, where, 0);
    }
}

TEST(WindowRandom, NothingThatViewsDoToEachOtherBreaksTheWindow) {
    const Cmn_TraceSink sink = Cmn_SetTraceSink([](const char*) {}); // exceptions are reported
    for (unsigned seed = 1; seed <= SeedsToTry(24); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        sRandom.seed(seed);
        QLX_TestDriver driver;
        sWindow = new TWindow;
        sWindow->IWindow("chaos", {200, 150});
        for (int i = 0; i < 8; ++i)
            Add(sWindow);
        ASSERT_TRUE(sWindow->Open());
        for (int step = 0; step < 400; ++step) {
            if (sWindow->CountSubViews() < 3)
                Add(sWindow);
            ASSERT_TRUE(sWindow->Open()); // a view may have closed it
            Turn(driver, AnyEvent());
            CheckWindow();
            if (HasFatalFailure())
                break;
        }
        sWindow->Free();
        EXPECT_EQ(sAlive, 0) << "every view has ended";
    }
    Cmn_SetTraceSink(sink);
}

} // namespace
