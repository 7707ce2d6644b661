#include "qlx/views/qlx_eventloop.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

#include "basekit/cmn/cmn_trace.h"
#include "basekit/sys/sys_clock.h"

namespace {

constexpr double kNever = std::numeric_limits<double>::infinity();

QLX_EventLoop* sLoop = nullptr;

struct Timer {
    QLX_EventLoop::TimerID id;
    double due;      // seconds of Sys_Clock_Seconds
    double interval; // 0: once
    std::shared_ptr<const QLX_EventLoop::Function> function;
};

struct ActiveRun {
    bool quit = false;
    int result = 0;
};

/// Calls what must not take the loop down with it; an exception becomes one line of the trace.
template <class Callable>
void CallGuarded(const char* what, Callable&& callable) {
    try {
        callable();
    } catch (const std::exception& failure) {
        Cmn_TraceWrite("QLX_EventLoop: exception out of %s: %s", what, failure.what());
    } catch (...) {
        Cmn_TraceWrite("QLX_EventLoop: exception out of %s", what);
    }
}

} // namespace

struct QLX_EventLoop::State {
    std::vector<QLX_EventLoopClient*> clients; // null while a client removed itself during a round
    std::vector<Timer> timers;                 // unordered; a program has a handful
    std::vector<ActiveRun*> runs;              // innermost last, each on its caller's stack
    std::mutex postedLock;
    std::vector<Function> posted; // guarded by postedLock
    TimerID lastTimer = 0;
    int clientRounds = 0;
    std::uint64_t waits = 0;
    std::uint64_t turns = 0;
};

QLX_EventLoopClient::~QLX_EventLoopClient() = default;

QLX_EventLoop::QLX_EventLoop() : mState(std::make_unique<State>()) {}

QLX_EventLoop::~QLX_EventLoop() {
    if (sLoop == this)
        sLoop = nullptr;
}

QLX_EventLoop* QLX_EventLoop::Get() { return sLoop; }

QLX_EventLoop* QLX_EventLoop::Install(QLX_EventLoop* loop) { return std::exchange(sLoop, loop); }

void QLX_EventLoop::AddClient(QLX_EventLoopClient* client) {
    if (client)
        mState->clients.push_back(client);
}

void QLX_EventLoop::RemoveClient(QLX_EventLoopClient* client) {
    auto& clients = mState->clients;
    if (mState->clientRounds > 0)
        std::replace(clients.begin(), clients.end(), client,
                     static_cast<QLX_EventLoopClient*>(nullptr));
    else
        std::erase(clients, client);
}

QLX_EventLoop::TimerID QLX_EventLoop::StartTimer(double delay, double interval, Function function) {
    TimerID id = ++mState->lastTimer;
    if (id == 0)
        id = ++mState->lastTimer;
    const double wait = std::isfinite(delay) ? std::max(delay, 0.0) : 0.0;
    const double period = std::isfinite(interval) ? std::max(interval, 0.0) : 0.0;
    mState->timers.push_back({id, Sys_Clock_Seconds() + wait, period,
                              std::make_shared<const Function>(std::move(function))});
    return id;
}

void QLX_EventLoop::StopTimer(TimerID timer) {
    std::erase_if(mState->timers, [timer](const Timer& each) { return each.id == timer; });
}

double QLX_EventLoop::GetNextTimer() const {
    double next = kNever;
    for (const Timer& timer : mState->timers)
        next = std::min(next, timer.due);
    return next;
}

void QLX_EventLoop::Wake() { WakeNative(); }

void QLX_EventLoop::Post(Function function) {
    {
        const std::lock_guard lock(mState->postedLock);
        mState->posted.push_back(std::move(function));
    }
    WakeNative();
}

int QLX_EventLoop::Run() {
    ActiveRun run;
    mState->runs.push_back(&run);
    while (!run.quit && RunOnce(kNever)) {
    }
    mState->runs.pop_back();
    return run.result;
}

bool QLX_EventLoop::RunWhile(const std::function<bool()>& wantsMore) {
    ActiveRun run;
    mState->runs.push_back(&run);
    bool held = !wantsMore();
    while (!held && !run.quit && RunOnce(kNever))
        held = !wantsMore();
    mState->runs.pop_back();
    return held;
}

void QLX_EventLoop::Quit(int result) {
    if (mState->runs.empty())
        return;
    mState->runs.back()->quit = true;
    mState->runs.back()->result = result;
    WakeNative();
}

int QLX_EventLoop::GetRunLevel() const { return static_cast<int>(mState->runs.size()); }

bool QLX_EventLoop::RunOnce(double maxWait) {
    bool did = DispatchNative();
    did = FireTimers() || did;
    did = RunPosted() || did;
    did = GiveTurns() || did;
    if (did) {
        ++mState->turns;
        return true;
    }
    const bool quitting = !mState->runs.empty() && mState->runs.back()->quit;
    if (maxWait <= 0 || quitting)
        return true;
    const double next = std::min(GetNextTimer(), GetNextWish());
    const double wait = std::min(maxWait, next - Sys_Clock_Seconds());
    if (wait <= 0)
        return true;
    ++mState->waits;
    return WaitNative(wait);
}

std::uint64_t QLX_EventLoop::GetWaitCount() const { return mState->waits; }

std::uint64_t QLX_EventLoop::GetTurnCount() const { return mState->turns; }

// Fires what was due when the turn began, earliest first. A timer started meanwhile waits for the
// next turn even when it is due at once, so that a function that starts itself again cannot keep
// the loop.
bool QLX_EventLoop::FireTimers() {
    const double now = Sys_Clock_Seconds();
    const TimerID newest = mState->lastTimer;
    bool fired = false;
    for (;;) {
        auto& timers = mState->timers;
        auto next = timers.end();
        for (auto each = timers.begin(); each != timers.end(); ++each) {
            if (each->due <= now && each->id <= newest &&
                (next == timers.end() || each->due < next->due))
                next = each;
        }
        if (next == timers.end())
            return fired;
        const auto function = next->function; // the timer may stop itself
        if (next->interval > 0) {
            next->due += next->interval;
            if (next->due <= now)
                next->due = now + next->interval;
        } else {
            timers.erase(next);
        }
        fired = true;
        CallGuarded("a timer", *function);
    }
}

bool QLX_EventLoop::RunPosted() {
    std::vector<Function> functions;
    {
        const std::lock_guard lock(mState->postedLock);
        functions.swap(mState->posted);
    }
    for (const Function& function : functions)
        CallGuarded("a posted function", function);
    return !functions.empty();
}

bool QLX_EventLoop::GiveTurns() {
    bool did = false;
    ++mState->clientRounds;
    for (std::size_t i = 0; i < mState->clients.size(); ++i) {
        if (QLX_EventLoopClient* client = mState->clients[i])
            CallGuarded("a client", [&] { did = client->DoTurn() || did; });
    }
    if (--mState->clientRounds == 0)
        std::erase(mState->clients, nullptr);
    return did;
}

double QLX_EventLoop::GetNextWish() {
    double next = kNever;
    for (QLX_EventLoopClient* client : mState->clients) {
        if (client)
            next = std::min(next, client->GetNextWish());
    }
    return next;
}
