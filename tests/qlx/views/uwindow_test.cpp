// Windows driven as a user would: presses, drags, hovering, wheel, keys, text, tool tips,
// activation.
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "basekit/cmn/cmn_trace.h"
#include "basekit/cmn/cmn_types.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/uevent.h"
#include "qlx/views/ulayout.h"
#include "qlx/views/utracker.h"
#include "qlx/views/uwindow.h"

namespace {

using Lines = std::vector<std::string>;
Lines sLog;

constexpr std::uint32_t ID(const char (&text)[5]) { return Cmn_FourChar(text); }

// Notes everything that reaches it.
class Probe : public TView {
  public:
    Probe(TView* superView, std::uint32_t id, const VRect& frame, const std::string& name)
        : mName(name) {
        SetIdentifier(id);
        IView(superView, frame);
    }
    bool DoMouseCommand(const VPoint& local, TToolboxEvent* event) override {
        Note("press " + std::to_string(local.h) + "," + std::to_string(local.v) + " x" +
             std::to_string(QLX_GetClickCount(event)));
        if (mPress)
            mPress(event, local);
        return mTakes;
    }
    bool DoOtherButton(const VPoint&, TToolboxEvent* event) override {
        Note("button " + std::to_string(QLX_GetMouseButton(event)));
        return mTakes;
    }
    bool DoMouseUp(const VPoint&, TToolboxEvent*) override {
        Note("up");
        return true;
    }
    bool DoMouseWheel(const VPoint&, TToolboxEvent* event) override {
        Note("wheel " + std::to_string(QLX_GetWheelDelta(event).y));
        return mTakes;
    }
    void DoMouseEnter(const VPoint&, TToolboxEvent*) override {
        Note("enter");
        if (mEnter)
            mEnter();
    }
    void DoMouseLeave(TToolboxEvent*) override {
        Note("leave");
        if (mLeave)
            mLeave();
    }
    bool WantsToBeTarget() override { return mWantsKeys; }
    void DoKeyEvent(TToolboxEvent* event) override {
        if (event->mKeyCode == kDAW_Key_Tab || !mTakes) {
            TView::DoKeyEvent(event);
            return;
        }
        Note("key " + std::to_string(event->mKeyCode) + " char " +
             std::to_string(event->mCharacterCode) + " state " + std::to_string(event->mKeyState));
        if (mKey)
            mKey();
    }
    void BecameTarget() override {
        Note("target");
        TView::BecameTarget();
    }
    void Note(const std::string& what) { sLog.push_back(mName + " " + what); }

    bool mTakes = true;
    bool mWantsKeys = false;
    std::function<void(TToolboxEvent*, const VPoint&)> mPress;
    std::function<void()> mEnter;
    std::function<void()> mLeave;
    std::function<void()> mKey;

  private:
    std::string mName;
};

class Tracker : public TTracker {
  public:
    std::function<void(TrackPhase)> mStep;
    ~Tracker() override { sLog.push_back("~tracker"); }
    void TrackMouse(TrackPhase phase, const VPoint& anchor, const VPoint& previous,
                    const VPoint& next, TToolboxEvent*) override {
        const VPoint way = next - previous;
        sLog.push_back("track " + std::to_string(phase) + " at " +
                       std::to_string(next.h - anchor.h) + "," + std::to_string(next.v - anchor.v) +
                       " by " + std::to_string(way.h));
        if (mStep)
            mStep(phase);
    }
};

class Window : public testing::Test {
  protected:
    Window() {
        mWindow->IWindow("test", {200, 100});
        mA = new Probe(mWindow, ID("aaaa"), {0, 0, 100, 100}, "a");
        mA1 = new Probe(mA, ID("a1  "), {10, 10, 60, 60}, "a1");
        mB = new Probe(mWindow, ID("bbbb"), {50, 0, 200, 100}, "b"); // over a's right half
        mDriver.OpenWindow(*mWindow);
        sLog.clear();
    }
    ~Window() override {
        if (mWindow)
            mWindow->Free();
    }

    Lines Take() { return std::exchange(sLog, {}); }

    QLX_TestDriver mDriver;
    TWindow* mWindow = new TWindow;
    Probe* mA;
    Probe* mA1;
    Probe* mB;
};

TEST_F(Window, TheViewDrawnOnTopTakesThePress) {
    mDriver.Click({55, 20});
    EXPECT_EQ(Take(), (Lines{"b enter", "b press 5,20 x1", "b up"}));
    mB->mTakes = false;
    mDriver.Click({55, 20});
    EXPECT_EQ(Take(), (Lines{"b press 5,20 x1", "a1 press 45,10 x1", "a1 up"}));
    mA->SetSubViewsTakePresses(false);
    mDriver.Click({20, 20});
    EXPECT_EQ(Take(), (Lines{"b leave", "a enter", "a1 enter", "a press 20,20 x1", "a up"}));
}

TEST_F(Window, ABehaviourSeesThePressBetweenSubviewsAndView) {
    class Taking : public TBehavior {
      public:
        bool DoMouseCommand(const VPoint&, TToolboxEvent*) override {
            sLog.push_back("behaviour");
            return true;
        }
    };
    mA->AddBehavior(new Taking);
    mDriver.Click({20, 20});
    mDriver.Click({5, 5});
    EXPECT_EQ(Take(), (Lines{"a enter", "a1 enter", "a1 press 10,10 x1", "a1 up", "a1 leave",
                             "behaviour", "a up"}));
}

TEST_F(Window, ClicksAreCountedWithinTimeAndPlace) {
    mDriver.DoubleClick({120, 20});
    mDriver.Step(1.0);
    mDriver.Press({120, 20});
    mDriver.Release();
    mDriver.Step(0.1);
    mDriver.Press({124, 24});
    mDriver.Release();
    mDriver.Step(0.1);
    mDriver.Press({129, 24});
    mDriver.Release();
    Lines presses;
    for (const std::string& line : Take()) {
        if (line.find("press") != std::string::npos)
            presses.push_back(line.substr(line.rfind('x')));
    }
    EXPECT_EQ(presses, (Lines{"x1", "x2", "x1", "x2", "x1"}));
}

TEST_F(Window, OtherButtonsPushNothing) {
    mDriver.Click({120, 20}, 0, kMouse_Right);
    EXPECT_EQ(Take(), (Lines{"b enter", "b button 2"}));
}

TEST_F(Window, TheWheelGoesToWhatLiesUnderThePointer) {
    mA1->mTakes = false;
    mDriver.Wheel({20, 20}, -1.5);
    EXPECT_EQ(Take(), (Lines{"a enter", "a1 enter", "a1 wheel -180", "a wheel -180"}));
}

TEST_F(Window, HoverEntersOutsideInAndLeavesInsideOut) {
    mDriver.MoveTo({20, 20});
    mDriver.MoveTo({25, 25});
    mDriver.MoveTo({5, 5});
    mDriver.MoveTo({150, 5});
    mDriver.LeaveWindow();
    EXPECT_EQ(Take(), (Lines{"a enter", "a1 enter", "a1 leave", "a leave", "b enter", "b leave"}));
    EXPECT_EQ(mWindow->GetHovered(), nullptr);
}

TEST_F(Window, HoverFollowsViewsThatMoveUnderARestingPointer) {
    mDriver.MoveTo({20, 20});
    Take();
    mA1->Locate({60, 60}, true);
    mDriver.WaitForIdle();
    EXPECT_EQ(Take(), (Lines{"a1 leave"}));
    mA1->Show(false, true);
    mA1->Locate({10, 10}, true);
    mA1->Show(true, true);
    mDriver.WaitForIdle();
    EXPECT_EQ(Take(), (Lines{"a1 enter"}));
    mA1->Free();
    EXPECT_EQ(Take(), (Lines{"a1 leave"}));
    EXPECT_EQ(mWindow->GetHovered(), mA);
}

TEST_F(Window, AViewMayEndInItsOwnEnter) {
    mA->mEnter = [this] { mA->Free(); };
    mDriver.MoveTo({20, 20});
    EXPECT_EQ(Take(), (Lines{"a enter", "a leave"}));
}

TEST_F(Window, WhatAViewDoesWhenItIsLeftStands) {
    mDriver.MoveTo({20, 20});
    mA1->mLeave = [this] { mA1->Free(); };
    mB->AddSubView(mA1);
    EXPECT_EQ(mA->CountSubViews(), 0);
    EXPECT_EQ(mB->CountSubViews(), 0) << "it ended on the way";
    mDriver.WaitForIdle();
    mA->mLeave = [this] { mB->AddSubView(mA); };
    mWindow->RemoveSubView(mA);
    EXPECT_EQ(mA->GetSuperView(), mB);
    mDriver.WaitForIdle();
    mDriver.MoveTo({60, 20});
    mA->mLeave = [this] { mB->Free(); };
    mB->Show(false, true);
    EXPECT_EQ(mWindow->CountSubViews(), 0);
}

TEST_F(Window, ADragIsTrackedFromPressToRelease) {
    mB->mPress = [this](TToolboxEvent* event, const VPoint& local) {
        mB->BeginTracking(new Tracker, local, event);
    };
    mDriver.Drag({100, 10}, {120, 30}, 2);
    EXPECT_EQ(Take(),
              (Lines{"b enter", "b press 50,10 x1", "track 0 at 0,0 by 0", "track 1 at 10,10 by 10",
                     "track 1 at 20,20 by 10", "track 2 at 20,20 by 0", "~tracker"}));
    EXPECT_EQ(mWindow->GetTracker(), nullptr);
    EXPECT_FALSE(mDriver.GetPlatform().GetWindows()[0]->IsCaptured());
}

TEST_F(Window, ADragEndsCleanlyWheneverItCannotGoOn) {
    struct Row {
        const char* why;
        std::function<void()> stop;
    };
    const Row rows[] = {
        {"Escape", [this] { mDriver.Key(kDAW_Key_Escape); }},
        {"the system takes the mouse", [this] { mDriver.LoseCapture(); }},
        {"the view is hidden", [this] { mA1->Show(false, true); }},
        {"a superview goes away", [this] { mA->RemoveSubView(mA1); }},
        {"the tracker asks for it", [this] { mWindow->CancelTracker(); }},
    };
    for (const Row& row : rows) {
        if (!mA1->GetSuperView())
            mA->AddSubView(mA1);
        mA1->Show(true, true);
        mA1->mPress = [this](TToolboxEvent* event, const VPoint& local) {
            mA1->BeginTracking(new Tracker, local, event);
        };
        mDriver.Press({20, 20});
        ASSERT_NE(mWindow->GetTracker(), nullptr) << row.why;
        Take();
        row.stop();
        EXPECT_EQ(mWindow->GetTracker(), nullptr) << row.why;
        const Lines lines = Take();
        EXPECT_NE(std::find(lines.begin(), lines.end(), "track 3 at 0,0 by 0"), lines.end())
            << row.why;
        EXPECT_EQ(std::count(lines.begin(), lines.end(), "~tracker"), 1) << row.why;
        mDriver.Release();
        Take();
    }
    mA->AddSubView(mA1);
}

TEST_F(Window, TheTrackedViewMayEndInsideAStep) {
    mA1->mPress = [this](TToolboxEvent* event, const VPoint& local) {
        auto* tracker = new Tracker;
        tracker->mStep = [this](TrackPhase phase) {
            if (phase == kTrack_Continue)
                mA1->Free();
        };
        mA1->BeginTracking(tracker, local, event);
    };
    mDriver.Drag({20, 20}, {30, 30}, 3);
    const Lines lines = Take();
    EXPECT_EQ(lines[lines.size() - 1], "~tracker");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "track 3 at 3,3 by 0"), 1);
}

TEST_F(Window, AViewMayEndInItsOwnPress) {
    mA1->mPress = [this](TToolboxEvent*, const VPoint&) { mA1->Free(); };
    mDriver.Click({20, 20});
    EXPECT_EQ(mA->CountSubViews(), 0);
    EXPECT_EQ(Take(), (Lines{"a enter", "a1 enter", "a1 press 10,10 x1", "a1 leave"}));
}

TEST_F(Window, PressesBeyondThirtyTwoBitsArriveWhereTheyWereMade) {
    // A timeline of ten hours at 192 kHz, scrolled to its last pixels.
    constexpr VCoordinate kLength = 6'912'000'000;
    auto* line = new Probe(mWindow, ID("line"), {100 - kLength, 0, 100, 50}, "line");
    VPoint seen;
    line->mPress = [&](TToolboxEvent*, const VPoint& local) { seen = local; };
    mDriver.Click({99, 10});
    EXPECT_EQ(seen, VPoint(kLength - 1, 10));
    mDriver.ResetCosts();
    line->InvalidateVRect({kLength - 5, 0, kLength + 5, 10});
    EXPECT_EQ(mDriver.GetCosts().mPixelsPainted, 50U);
    line->InvalidateVRect({0, 0, kLength - 100, 10});
    EXPECT_EQ(mDriver.GetCosts().mFrames, 1U) << "out of sight costs nothing";
    VPoint there(kLength - 1, 10);
    line->LocalToWindow(there);
    EXPECT_EQ(there, VPoint(99, 10));
}

TEST_F(Window, TheTargetMayEndInItsOwnKey) {
    mA1->mWantsKeys = true;
    mA1->BecomeTarget();
    mA1->mKey = [this] { mA1->Free(); };
    mDriver.Type("x");
    EXPECT_EQ(mA->CountSubViews(), 0);
    EXPECT_EQ(gApplication->GetTarget(), mA) << "the next handler";
    Take();
    mDriver.Type("y");
    EXPECT_EQ(Take(), (Lines{"a key 89 char 121 state 0"}));
}

TEST_F(Window, TheWindowMayCloseInAPress) {
    mB->mPress = [this](TToolboxEvent*, const VPoint&) { mWindow->Close(); };
    mDriver.Click({120, 20});
    EXPECT_FALSE(mWindow->IsOpen());
    EXPECT_EQ(mDriver.GetWindow(), nullptr);
    EXPECT_THROW(mDriver.Click({1, 1}), QLX_TestDriverError);
    EXPECT_TRUE(mWindow->Open());
}

TEST_F(Window, TheWindowMayEndInAKeyAndItsEventsAreDropped) {
    mB->mWantsKeys = true;
    mWindow->SetWindowTarget(mB);
    mB->mKey = [this] { std::exchange(mWindow, nullptr)->Free(); };
    QLX_HeadlessWindow* port = mDriver.GetPlatform().GetWindows()[0];
    port->Inject(QLX_MakeKeyEvent(kQLX_EventKind_KeyDown, 'X', 'x', 0));
    port->Inject(QLX_MakeKeyEvent(kQLX_EventKind_KeyDown, 'Y', 'y', 0));
    mDriver.WaitForIdle();
    EXPECT_TRUE(mDriver.GetPlatform().GetWindows().empty());
    EXPECT_EQ(gApplication->GetTarget(), gApplication);
    EXPECT_EQ(Take(), (Lines{"b target", "b key 88 char 120 state 0"}));
}

TEST_F(Window, AnExceptionOutOfAPressIsReportedOnce) {
    static Lines sTrace;
    sTrace.clear();
    const Cmn_TraceSink sink =
        Cmn_SetTraceSink([](const char* line) { sTrace.emplace_back(line); });
    mB->mPress = [](TToolboxEvent*, const VPoint&) { throw std::runtime_error("ouch"); };
    mDriver.Click({120, 20});
    mDriver.Click({120, 20});
    Cmn_SetTraceSink(sink);
    EXPECT_EQ(sTrace, (Lines{"TView: exception out of TView::DoMouseCommand: ouch"}));
    mB->mPress = nullptr;
    Take();
    mDriver.Click({120, 20});
    EXPECT_EQ(Take(), (Lines{"b press 70,20 x1", "b up"}));
}

// Keys

TEST_F(Window, TabGoesRoundByOrderAndSkipsWhatCannotBeUsed) {
    for (Probe* probe : {mA, mA1, mB})
        probe->mWantsKeys = true;
    mA->SetTabOrder(1);
    auto* disabled = new Probe(mWindow, ID("dddd"), {0, 0, 5, 5}, "d");
    disabled->mWantsKeys = true;
    disabled->SetEnable(false);
    auto* hidden = new Probe(mWindow, ID("hhhh"), {0, 0, 5, 5}, "h");
    hidden->mWantsKeys = true;
    hidden->Show(false, true);
    for (int i = 0; i < 4; ++i)
        mDriver.Key(kDAW_Key_Tab);
    mDriver.Key(kDAW_Key_Tab, kQLX_Modifier_Shift);
    EXPECT_EQ(Take(), (Lines{"a1 target", "b target", "a target", "a1 target", "a target"}));
}

TEST_F(Window, KeysReachTheTargetWithCodesAndStates) {
    mB->mWantsKeys = true;
    mWindow->SetWindowTarget(mB);
    Take();
    mDriver.Type("a1É");
    mDriver.Key(kDAW_Key_Escape);
    mDriver.Key(kDAW_Key_Enter);
    EXPECT_EQ(Take(), (Lines{"b key 65 char 97 state 0", "b key 49 char 49 state 0",
                             "b key 201 char 201 state 0", "b key 27 char 27 state 6",
                             "b key 3 char 3 state 0"}));
    EXPECT_EQ(mDriver.GetConsumer(), "TView 'bbbb'");
    // Text without a key comes as keys where the target takes no text.
    mDriver.Compose("に", "2");
    EXPECT_EQ(Take(), (Lines{"b key 50 char 50 state 0"}));
}

TEST_F(Window, TheTargetGoesWithItsViewAndComesBackWithItsWindow) {
    mA1->mWantsKeys = true;
    mWindow->SetWindowTarget(mA1);
    auto* other = new TWindow;
    other->IWindow("other", {50, 50});
    mDriver.OpenWindow(*other);
    EXPECT_EQ(TWindow::GetActiveWindow(), other);
    EXPECT_EQ(gApplication->GetTarget(), other);
    EXPECT_EQ(mWindow->GetWindowTarget(), mA1);
    other->Free();
    mWindow->Activate();
    mDriver.UseWindow(*mWindow);
    mDriver.WaitForIdle();
    EXPECT_EQ(gApplication->GetTarget(), mA1);
    mA->Show(false, true);
    EXPECT_EQ(gApplication->GetTarget(), mWindow);
    mA->Show(true, true);
    mWindow->SetWindowTarget(mA1);
    mA1->Free();
    EXPECT_EQ(gApplication->GetTarget(), mA);
}

// Tool tips

TEST_F(Window, AToolTipComesWhenThePointerRests) {
    mA1->SetToolTip("what this is");
    mDriver.MoveTo({20, 20});
    EXPECT_FALSE(mWindow->IsToolTipShown());
    mDriver.Step(0.3);
    mDriver.MoveTo({22, 22});
    mDriver.Step(0.5);
    EXPECT_FALSE(mWindow->IsToolTipShown());
    mDriver.Step(0.2);
    EXPECT_TRUE(mWindow->IsToolTipShown());
    mDriver.MoveTo({24, 24});
    EXPECT_TRUE(mWindow->IsToolTipShown()) << "within the same view it stays";
    mDriver.MoveTo({5, 5});
    EXPECT_FALSE(mWindow->IsToolTipShown());
    mDriver.MoveTo({20, 20});
    mDriver.Step(1);
    mA1->Free();
    EXPECT_FALSE(mWindow->IsToolTipShown());
}

// The native window

TEST_F(Window, TheViewsFollowTheWindowsSizeAndHoldItsMinimum) {
    mB->SetLayout({kEdge_Near, kEdge_Near, kEdge_Far, kEdge_Far});
    mB->SetMinimumSize({100, 80});
    mWindow->Close();
    mWindow->Open();
    mDriver.WaitForIdle();
    mDriver.ResizeWindow(300, 150);
    EXPECT_EQ(mWindow->GetSize(), VPoint(300, 150));
    EXPECT_EQ(mB->GetFrame(), VRect(50, 0, 300, 150));
    mDriver.ResizeWindow(10, 10);
    EXPECT_EQ(mWindow->GetSize(), VPoint(150, 80));
    mWindow->Resize({0, 0}, true);
    mDriver.WaitForIdle();
    mDriver.MoveTo({5, 5}); // nothing to hit, nothing to draw on
    mWindow->Resize({200, 100}, true);
    mDriver.WaitForIdle();
    EXPECT_NE(mWindow->GetDrawingPainter().Get(), nullptr);
}

TEST_F(Window, AnIdleWindowTakesNoTurns) {
    mDriver.WaitForIdle();
    QLX_HeadlessLoop& loop = mDriver.GetPlatform().GetHeadlessLoop();
    const std::uint64_t turns = loop.GetTurnCount();
    const std::uint64_t waits = loop.GetWaitCount();
    EXPECT_FALSE(loop.RunOnce(std::numeric_limits<double>::infinity()))
        << "nothing can come any more";
    EXPECT_EQ(loop.GetTurnCount(), turns);
    EXPECT_EQ(loop.GetWaitCount(), waits + 1);
}

TEST_F(Window, CostsSayWhatWasDrawn) {
    mDriver.ResetCosts();
    mA1->InvalidateVRect({0, 0, 4, 4});
    EXPECT_EQ(mDriver.GetCosts().mFrames, 1U);
    EXPECT_EQ(mDriver.GetCosts().mPixelsPainted, 16U);
    EXPECT_EQ(mDriver.GetCosts().mPixelsShown, 16U);
    const std::string window = "TWindow '" + std::string("    ") + "'";
    EXPECT_EQ(mDriver.GetDrawnViews(), (Lines{window, "TView 'aaaa'", "TView 'a1  '"}));
}

TEST_F(Window, ItCannotBeOpenedWithoutAPlatformOrCopied) {
    QLX_WindowPortFactory* factory = QLX_WindowPortFactory::Install(nullptr);
    const Cmn_TraceSink sink = Cmn_SetTraceSink([](const char*) {});
    auto* window = new TWindow;
    EXPECT_FALSE(window->Open());
    Cmn_SetTraceSink(sink);
    QLX_WindowPortFactory::Install(factory);
    window->Free();
}

TEST_F(Window, MistakesOfTheDriverAreSaid) {
    const auto what = [](const std::function<void()>& action) {
        try {
            action();
        } catch (const QLX_TestDriverError& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    EXPECT_EQ(what([this] { mDriver.Click(ID("none")); }), "no view 'none' in window \"test\"");
    mA1->Show(false, true);
    EXPECT_EQ(what([this] { mDriver.Click(ID("a1  ")); }), "view 'a1  ' is not visible");
    EXPECT_EQ(what([this] { mDriver.Chord("Ctrl+Nonsense"); }),
              "\"Ctrl+Nonsense\" is no key chord");
}

} // namespace
