#include "qlx/views/qlx_eventloop.h"

#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "basekit/cmn/cmn_trace.h"
#include "basekit/sys/sys_clock.h"

namespace {

double sNow = 0;
std::vector<std::string> sLines;

// A loop over a clock that only waiting moves, so that every wait is exact and none takes time.
class ScriptedLoop : public QLX_EventLoop {
  public:
    std::vector<Function> mNative; // delivered one a turn
    std::vector<double> mWaits;

  protected:
    bool DispatchNative() override {
        if (mNative.empty())
            return false;
        const Function event = mNative.front();
        mNative.erase(mNative.begin());
        event();
        return true;
    }
    bool WaitNative(double seconds) override {
        mWaits.push_back(seconds);
        if (seconds == std::numeric_limits<double>::infinity())
            return false;
        sNow += seconds;
        return true;
    }
    void WakeNative() override {}
};

class EventLoop : public testing::Test {
  protected:
    EventLoop() : mOldClock(Sys_SetClockSource([] { return sNow; })) { sNow = 100; }
    ~EventLoop() override { Sys_SetClockSource(mOldClock); }

    void Note(const std::string& what) { mNotes.push_back(what); }

    Sys_ClockSource mOldClock;
    ScriptedLoop mLoop;
    std::vector<std::string> mNotes;
};

class NotingClient : public QLX_EventLoopClient {
  public:
    NotingClient(QLX_EventLoop& loop, std::function<bool()> turn)
        : mLoop(loop), mTurn(std::move(turn)) {
        mLoop.AddClient(this);
    }
    ~NotingClient() override { mLoop.RemoveClient(this); }
    bool DoTurn() override { return mTurn(); }
    double GetNextWish() override { return mWish; }
    double mWish = std::numeric_limits<double>::infinity();

  private:
    QLX_EventLoop& mLoop;
    std::function<bool()> mTurn;
};

TEST_F(EventLoop, TimersFireInTheOrderOfTheirTimesAndSleepExactly) {
    mLoop.StartTimer(2, 0, [&] { Note("b"); });
    mLoop.StartTimer(1, 0, [&] { Note("a"); });
    mLoop.StartTimer(1.5, 1, [&] { Note("r"); });
    while (sNow < 103)
        mLoop.RunOnce(10);
    EXPECT_EQ(mNotes, (std::vector<std::string>{"a", "r", "b", "r"}));
    EXPECT_EQ(mLoop.mWaits[0], 1);
    EXPECT_EQ(mLoop.mWaits[1], 0.5);
}

TEST_F(EventLoop, ATimerMayStopItselfAndStartOthersWithoutKeepingTheLoop) {
    QLX_EventLoop::TimerID again = 0;
    again = mLoop.StartTimer(0, 0.1, [&] {
        Note("once");
        mLoop.StopTimer(again);
        mLoop.StartTimer(0, 0, [&] { Note("started"); });
    });
    mLoop.RunOnce(0);
    EXPECT_EQ(mNotes, (std::vector<std::string>{"once"}));
    mLoop.RunOnce(0);
    EXPECT_EQ(mNotes, (std::vector<std::string>{"once", "started"}));
    EXPECT_EQ(mLoop.GetNextTimer(), std::numeric_limits<double>::infinity());
}

TEST_F(EventLoop, AMissedTimerFiresOnceAndCountsOnFromNow) {
    int count = 0;
    mLoop.StartTimer(1, 1, [&] { ++count; });
    sNow += 7.5;
    mLoop.RunOnce(0);
    EXPECT_EQ(count, 1);
    EXPECT_EQ(mLoop.GetNextTimer(), sNow + 1);
}

TEST_F(EventLoop, RunsNestAndQuitEndsTheInnermost) {
    mLoop.mNative = {[&] {
                         Note("outer event at " + std::to_string(mLoop.GetRunLevel()));
                         Note("inner gave " + std::to_string(mLoop.Run()));
                     },
                     [&] {
                         Note("inner event at " + std::to_string(mLoop.GetRunLevel()));
                         mLoop.Quit(7);
                     },
                     [&] { mLoop.Quit(3); }};
    EXPECT_EQ(mLoop.Run(), 3);
    EXPECT_EQ(mNotes,
              (std::vector<std::string>{"outer event at 1", "inner event at 2", "inner gave 7"}));
    EXPECT_EQ(mLoop.GetRunLevel(), 0);
}

TEST_F(EventLoop, AConditionEndsARunAndAnEmptyFutureToo) {
    int count = 0;
    mLoop.StartTimer(1, 1, [&] { ++count; });
    EXPECT_TRUE(mLoop.RunWhile([&] { return count < 3; }));
    EXPECT_EQ(count, 3);
    ScriptedLoop empty;
    EXPECT_FALSE(empty.RunWhile([] { return true; }));
}

TEST_F(EventLoop, AClientsWishEndsTheSleepAndADoneTurnPostponesIt) {
    int left = 2;
    NotingClient client(mLoop, [&] { return left-- > 0; });
    client.mWish = sNow + 0.25;
    mLoop.RunOnce(10);
    mLoop.RunOnce(10);
    EXPECT_TRUE(mLoop.mWaits.empty());
    mLoop.RunOnce(10);
    EXPECT_EQ(mLoop.mWaits, (std::vector<double>{0.25}));
    EXPECT_EQ(mLoop.GetWaitCount(), 1U);
    EXPECT_EQ(mLoop.GetTurnCount(), 2U);
}

TEST_F(EventLoop, AClientMayLeaveDuringItsTurn) {
    std::unique_ptr<NotingClient> second;
    NotingClient first(mLoop, [&] {
        second.reset();
        return false;
    });
    second = std::make_unique<NotingClient>(mLoop, [&] {
        Note("gone");
        return false;
    });
    mLoop.RunOnce(0);
    EXPECT_TRUE(mNotes.empty());
}

TEST_F(EventLoop, FunctionsPostedFromAnotherThreadRunHereInOrder) {
    const auto here = std::this_thread::get_id();
    std::thread other([&] {
        for (int i = 0; i < 100; ++i)
            mLoop.Post([&, i] {
                EXPECT_EQ(std::this_thread::get_id(), here);
                Note(std::to_string(i));
            });
    });
    other.join();
    mLoop.RunOnce(0);
    ASSERT_EQ(mNotes.size(), 100U);
    EXPECT_EQ(mNotes.front(), "0");
    EXPECT_EQ(mNotes.back(), "99");
}

TEST_F(EventLoop, AnExceptionIsReportedAndTheRestStillRuns) {
    sLines.clear();
    const Cmn_TraceSink sink =
        Cmn_SetTraceSink([](const char* line) { sLines.emplace_back(line); });
    mLoop.StartTimer(0, 0, [] { throw std::runtime_error("spilt"); });
    mLoop.StartTimer(0, 0, [&] { Note("second"); });
    mLoop.Post([] { throw 3; });
    mLoop.RunOnce(0);
    Cmn_SetTraceSink(sink);
    EXPECT_EQ(mNotes, (std::vector<std::string>{"second"}));
    EXPECT_EQ(sLines,
              (std::vector<std::string>{"QLX_EventLoop: exception out of a timer: spilt",
                                        "QLX_EventLoop: exception out of a posted function"}));
}

} // namespace
