// The event loop, seen from the framework: one wait for native events, timers, calls from other
// threads and the wishes of clients (posted commands, idle time, windows that want drawing). What a
// platform adds is how it waits and how it is woken; everything about timers, turns and nested runs
// is here, so that every platform behaves the same and a scripted one can stand in for a screen.
#pragma once

#include <functional>
#include <memory>

#include "basekit/cmn/cmn_types.h"

/// Something that does work between native events: the application's posted queues and idle time,
/// the windows' drawing. Not owned by the loop; removes itself before it dies.
class QLX_API QLX_EventLoopClient {
  public:
    virtual ~QLX_EventLoopClient();

    /// Does what is due now. True when something was done, so that the loop takes another turn
    /// before it sleeps. An exception is reported and the loop goes on.
    virtual bool DoTurn() = 0;

    /// The time of Sys_Clock_Seconds at which the client next wants a turn; infinity for "only
    /// after an event", a time in the past for "at once".
    [[nodiscard]] virtual double GetNextWish() = 0;
};

/// The loop of the user-interface thread. Everything but Wake and Post belongs to that thread.
class QLX_API QLX_EventLoop {
  public:
    using TimerID = std::uint32_t; ///< 0 is never a timer
    using Function = std::function<void()>;

    QLX_EventLoop();
    QLX_EventLoop(const QLX_EventLoop&) = delete;
    QLX_EventLoop& operator=(const QLX_EventLoop&) = delete;
    virtual ~QLX_EventLoop();

    /// The loop in use; null before a platform is installed.
    [[nodiscard]] static QLX_EventLoop* Get();
    /// Makes a loop the one in use and returns the previous one. Not owned. Clients registered with
    /// the previous loop stay there.
    static QLX_EventLoop* Install(QLX_EventLoop* loop);

    // Clients, called in the order in which they were added

    void AddClient(QLX_EventLoopClient* client);
    void RemoveClient(QLX_EventLoopClient* client);

    // Timers: times are seconds of Sys_Clock_Seconds

    /// Calls the function after delay seconds, then every interval seconds (0: once). A timer whose
    /// times were missed (the process was stopped) fires once and counts on from now. The function
    /// may start and stop timers, this one included.
    TimerID StartTimer(double delay, double interval, Function function);
    /// Unknown numbers are ignored.
    void StopTimer(TimerID timer);
    /// When the next timer is due; infinity when there is none.
    [[nodiscard]] double GetNextTimer() const;

    // Other threads

    /// Ends a wait early. May be called from any thread.
    void Wake();
    /// Runs the function on the loop's thread, in the order of posting. May be called from any
    /// thread.
    void Post(Function function);

    // Running

    /// Runs until Quit and returns Quit's result. Runs nest: Quit ends the innermost one.
    int Run();
    /// Runs until the condition, asked once a turn, holds; the result says whether it held (false:
    /// Quit came first, or the platform has nothing left that could ever happen).
    bool RunWhile(const std::function<bool()>& wantsMore);
    /// Ends the innermost run after the present turn.
    void Quit(int result = 0);
    /// How many runs are inside each other; 0 outside any.
    [[nodiscard]] int GetRunLevel() const;

    /// One turn: native events that wait, due timers, posted functions, clients. Then, if nothing
    /// was done, sleeps until something may be, at most for maxWait seconds (0: does not sleep).
    /// False when the platform can prove that nothing will ever come.
    bool RunOnce(double maxWait);

    /// How often the loop slept and how often a turn did something, since the loop was made. An
    /// idle program's numbers stand still: that is how a test sees that it uses no time.
    [[nodiscard]] std::uint64_t GetWaitCount() const;
    [[nodiscard]] std::uint64_t GetTurnCount() const;

  protected:
    /// Delivers the native events that have arrived; true when there was one.
    virtual bool DispatchNative() = 0;
    /// Sleeps until a native event, WakeNative or the given number of seconds (infinity: for ever).
    /// False when nothing can come any more (a script that has ended).
    virtual bool WaitNative(double seconds) = 0;
    /// Ends WaitNative early. Called from any thread.
    virtual void WakeNative() = 0;

  private:
    struct State;
    bool FireTimers();
    bool RunPosted();
    bool GiveTurns();
    [[nodiscard]] double GetNextWish();

    std::unique_ptr<State> mState;
};
