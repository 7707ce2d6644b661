// The application's idle time: who wants it, when it is due, and the application's turns in the
// loop.
#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "basekit/sys/sys_clock.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/ustguard.h"

namespace {

// Handlers that have said that they want idle time, or whose behaviours have, in that order. Null
// where one left during a pass.
std::vector<TEventHandler*>& IdleHandlers() {
    static auto* const handlers = new std::vector<TEventHandler*>;
    return *handlers;
}

int sPasses = 0; // passes over the list under way

bool CanWantIdle(TEventHandler* handler) {
    return handler->GetIdleFreq() != kNoIdle || handler->GetFirstBehavior();
}

} // namespace

void TApplication::NoteIdleWish(TEventHandler* handler) {
    std::vector<TEventHandler*>& handlers = IdleHandlers();
    if (std::find(handlers.begin(), handlers.end(), handler) == handlers.end())
        handlers.push_back(handler);
    if (gApplication)
        gApplication->RescheduleTimers();
}

void TApplication::ForgetIdleWish(TEventHandler* handler) {
    std::vector<TEventHandler*>& handlers = IdleHandlers();
    const auto entry = std::find(handlers.begin(), handlers.end(), handler);
    if (entry == handlers.end())
        return;
    if (sPasses > 0)
        *entry = nullptr;
    else
        handlers.erase(entry);
}

void TApplication::GiveIdlePhase(IdlePhase phase) {
    std::vector<TEventHandler*>& handlers = IdleHandlers();
    struct Pass {
        Pass() { ++sPasses; }
        ~Pass() {
            if (--sPasses == 0)
                std::erase(IdleHandlers(), nullptr);
        }
    } const pass;
    // By index, as handlers may come while it runs; those that come get their time in the next
    // pass.
    const std::size_t count = handlers.size();
    for (std::size_t i = 0; i < count && i < handlers.size(); ++i) {
        TEventHandler* const handler = handlers[i];
        if (!handler)
            continue;
        if (!CanWantIdle(handler)) {
            handlers[i] = nullptr;
            continue;
        }
        try {
            handler->HandleIdle(phase);
        } catch (...) {
            ReportSafely("idle time");
        }
    }
}

std::int32_t TApplication::GetNextIdle() {
    std::int32_t next = kNoIdle;
    for (TEventHandler* const handler : IdleHandlers())
        if (handler)
            next = std::min(next, handler->NextIdle());
    return next;
}

void TApplication::GiveIdleTime() {
    if (IdleHandlers().empty()) {
        mIdleIsDueNow = false;
        mIdleDeadline = kNoIdle;
        return;
    }
    const StGuard self(this);
    if (!mIsIdle) {
        mIsIdle = true;
        GiveIdlePhase(kIdlePhase_Begin);
        if (!self)
            return;
    }
    if (!mIdleIsDueNow && !IsIdleDue(Sys_Clock_Ticks()))
        return;
    mIdleIsDueNow = false;
    GiveIdlePhase(kIdlePhase_Continue);
    if (!self)
        return;
    // A handler counts its wish from now, so one that was not due yet has just put it off. The wish
    // that it made before still stands.
    const std::int32_t next = GetNextIdle();
    const bool isStillToCome = mIdleDeadline != kNoIdle && !IsIdleDue(Sys_Clock_Ticks());
    mIdleDeadline = isStillToCome ? std::min(mIdleDeadline, next) : next;
}

bool TApplication::IsIdleDue(std::uint32_t now) const {
    return mIdleDeadline != kNoIdle &&
           static_cast<std::int32_t>(static_cast<std::uint32_t>(mIdleDeadline) - now) <= 0;
}

void TApplication::EndIdleTime() {
    if (!mIsIdle)
        return;
    mIsIdle = false;
    GiveIdlePhase(kIdlePhase_End);
}

void TApplication::RescheduleTimers() { mIdleIsDueNow = true; }

bool TApplication::TakeTurn() {
    const StGuard self(this);
    const bool didSomething = ProcessPosted() != 0;
    if (self)
        GiveIdleTime();
    return didSomething;
}

double TApplication::GetNextWish() {
    constexpr double kNever = std::numeric_limits<double>::infinity();
    for (std::size_t i = mPostedHead; i < mPosted.size(); ++i)
        if (mPosted[i].mAskedInTurn < mPostTurn || mPosted[i].mTurn == mPostTurn)
            return 0.0;
    const bool hasIdlers = !IdleHandlers().empty();
    if (hasIdlers && mIdleIsDueNow)
        return 0.0;
    if (!hasIdlers || mIdleDeadline == kNoIdle)
        return kNever;
    const double now = Sys_Clock_Seconds();
    const auto ticks =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(mIdleDeadline) - Sys_Clock_Ticks());
    if (ticks <= 0)
        return now;
    // The tick begins when the clock's seconds reach it; a little after that is surely inside it.
    const double thisTick = std::floor(now * kSys_ClockTicksPerSecond);
    return (thisTick + ticks + 0.01) / kSys_ClockTicksPerSecond;
}

// The event loop

/// The application's place in a loop.
class TApplication::LoopClient : public QLX_EventLoopClient {
  public:
    LoopClient(TApplication* application, QLX_EventLoop* loop)
        : mApplication(application), mLoop(loop) {
        mLoop->AddClient(this);
    }
    ~LoopClient() override { mLoop->RemoveClient(this); }
    LoopClient(const LoopClient&) = delete;
    LoopClient& operator=(const LoopClient&) = delete;
    bool DoTurn() override { return mApplication->TakeTurn(); }
    double GetNextWish() override { return mApplication->GetNextWish(); }

  private:
    TApplication* mApplication; // not owned
    QLX_EventLoop* mLoop;       // not owned
};

void TApplication::AttachToLoop(QLX_EventLoop* loop) {
    LeaveLoop();
    if (loop)
        mLoopClient = new LoopClient(this, loop);
}

void TApplication::LeaveLoop() { delete std::exchange(mLoopClient, nullptr); }
