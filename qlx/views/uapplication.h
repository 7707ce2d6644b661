// TApplication: the end of every handler chain. It knows the current target, delivers keys to it,
// queues what is posted, hands out idle time, and hears of activities.
#pragma once

#include <exception>
#include <string>
#include <vector>

#include "qlx/views/uactivity.h"
#include "qlx/views/ucommandhandler.h"

class CKeyBindings;
class QLX_EventLoop;

/// What the application remembers apart from itself.
class QLX_API TApplicationData {
  public:
    /// The handler that was the target when the present menu loop began; menu commands go to it.
    /// Null outside a menu loop.
    [[nodiscard]] static TEventHandler* GetPreMenuLoopTarget();
    static void SetPreMenuLoopTarget(TEventHandler* handler);
};

/// The application object. There is one at a time (gApplication): the one that was made last. The
/// host makes it, attaches it to an event loop, and ends it with Free. User-interface thread.
class QLX_API TApplication : public TCommandHandler {
  public:
    QLX_DECLARE_CLASS(TApplication);
    /// Becomes gApplication, and its own target.
    TApplication();
    /// What is still posted is dropped; the application that was there before is gApplication
    /// again.
    ~TApplication() override;

    // Target

    /// Where keys go first; the application itself when nothing else is.
    [[nodiscard]] TEventHandler* GetTarget() { return mTarget ? mTarget : this; }
    /// Tells the old target ResignedTarget, then the new one BecameTarget. Null is the application.
    /// A target that is the target already hears nothing. Asks nobody: see
    /// TEventHandler::BecomeTarget.
    void SetTarget(TEventHandler* handler);

    // Keys

    /// Sends a key down along the target's chain, as a command key when the command key is held.
    /// True when some handler consumed it.
    bool HandleKeyDownEvent(TToolboxEvent* event);
    void HandleKeyUpEvent(TToolboxEvent* event);
    /// The whole road of a key as the event loop sends it: to the target and to the command that
    /// the key is bound to, in the order that the key bindings give. True when somebody took it.
    bool DeliverKeyDown(TToolboxEvent* event);
    /// Ends the command that the key performed, then sends the key up to the target.
    void DeliverKeyUp(TToolboxEvent* event);
    /// Ends the commands whose keys are held: their going up will not be seen here, as after the
    /// application was deactivated.
    void ReleaseAllKeys();
    /// The bindings of the user's keys (not owned); null, the default, for none. Returns the
    /// previous.
    CKeyBindings* SetKeyBindings(CKeyBindings* bindings);
    [[nodiscard]] CKeyBindings* GetKeyBindings() const { return mKeyBindings; }

    /// Writes the handler into the innermost entry of sTargetHandlingEventStack, if there is one.
    static void SetTargetHandlingEvent(TEventHandler* handler) {
        if (!sTargetHandlingEventStack.empty())
            sTargetHandlingEventStack.back() = handler;
    }
    /// Empties the first entry that names the handler.
    static void ClearFromTargetHandlingEventStack(TEventHandler* handler);

    /// The key down under way has come to the end of its chain.
    static void KeyDownIsUnhandled();
    /// Whether the key down under way was consumed; true between keys.
    static bool sMacAppKeyDownHandled;
    /// One entry for each key down under way, innermost last: the last handler that received it as
    /// a command key, null before that.
    static std::vector<TEventHandler*> sTargetHandlingEventStack;

    // Menu commands

    /// Remembers the target for the menu commands of a menu loop.
    void BeginMenuLoop();
    void EndMenuLoop();
    /// Sends a menu command to the target of the menu loop, outside one to the current target.
    void SendMenuCommand(std::int32_t command);

    // Posted commands and events, processed in the order of posting

    void PostCommand(TCommand* command) override;
    void PostAndConsumeEvent(TEvent* event, bool atFront) override;
    /// The first posted event that is ready, which the caller owns now; null when there is none.
    [[nodiscard]] TEvent* RetrieveAnEvent() override;
    /// Processes what is posted now; what is posted meanwhile waits for the next call. An exception
    /// is reported and the rest is processed. Answers how many were processed.
    int ProcessPosted();
    [[nodiscard]] std::size_t CountPosted() const;

    // Idle time

    /// Gives idle time to everyone who is due, and says Begin to everyone when nothing has happened
    /// since the last turn and something had before.
    void GiveIdleTime();
    /// Says that the application is busy again: End to everyone, after a Begin. The event loop
    /// calls it before it delivers a native event.
    void EndIdleTime();
    /// The tick at which somebody next wants idle time, kNoIdle for never.
    [[nodiscard]] std::int32_t GetNextIdle();
    /// Makes idle time due at once.
    void RescheduleTimers();
    /// Enters a handler with the idle time; it leaves when it goes, or when it and its behaviours
    /// turn out to want none any more. Called by whatever sets an idle frequency.
    static void NoteIdleWish(TEventHandler* handler);

    /// One turn of the event loop: what is posted, then idle time. True when something posted was
    /// processed.
    bool TakeTurn();
    /// When the next turn is wanted: seconds of Sys_Clock_Seconds, in the past for at once,
    /// infinity for never. Between turns nothing needs to run.
    [[nodiscard]] double GetNextWish();
    /// Takes its turns in a loop from now on, and no longer in the previous one; null leaves that
    /// one only. The loop outlives the application, or is left first.
    void AttachToLoop(QLX_EventLoop* loop);

    /// Forgets a handler that goes away: as target, in the stack, in menu loops, in idle time and
    /// in what is posted. Posted events for it are dropped.
    static void ForgetHandler(TEventHandler* handler);

    // Slot order is part of the binary interface: append, never move.

    /// Something that takes its time begins or ends, as "performing Cut". Does nothing here.
    virtual void ActivityStarted(const CActivity& activity);
    virtual void ActivityEnded(const CActivity& activity);
    /// Names the Undo item after the command: "Undo Cut" for one that is done, "Redo Cut" else.
    virtual void SetUndoText(bool done, TCommand* command);
    /// An exception came out of something posted or out of idle time. Traces it here.
    virtual void ReportException(const char* where, std::exception_ptr exception);

    /// Brackets the validation of a command: the outermost scope starts and ends the activity
    /// "performing" and the command's name.
    class QLX_API StCommandValidator {
      public:
        explicit StCommandValidator(const std::string& commandName);
        ~StCommandValidator();
        StCommandValidator(const StCommandValidator&) = delete;
        StCommandValidator& operator=(const StCommandValidator&) = delete;
        /// The command is posted and not performed here: the scopes that are open end no activity.
        static void PostingCommand() { sValidateCount = 0; }

        static std::int32_t sValidateCount;
        static std::string sCmdName;
    };

    /// An activity: started by the constructor, ended by End, or by the destructor when an
    /// exception came between. Verb and name stay as they are meanwhile.
    class QLX_API StActivity {
      public:
        StActivity(const char* verb, const std::string& name);
        StActivity(const char* verb, std::string&& name) = delete;
        ~StActivity();
        StActivity(const StActivity&) = delete;
        StActivity& operator=(const StActivity&) = delete;
        void End();

      private:
        void Abandon() noexcept;
        CActivity mActivity;
        bool mIsOpen = false;
    };

  private:
    class LoopClient;
    class StKeyDown;
    /// An entry of the queue, with the turns of processing in which it came and was last asked.
    struct Posted {
        Posted(TEvent* event, std::uint64_t turn) noexcept : mEvent(event), mTurn(turn) {}
        TEvent* mEvent; // owned
        std::uint64_t mTurn;
        std::uint64_t mAskedInTurn = 0;
    };
    void Enqueue(TEvent* event, bool atFront);
    void EnqueueAmongOthers(TEvent* event, bool atFront);
    [[nodiscard]] Posted* FirstPosted();
    [[nodiscard]] Posted* EndOfPosted();
    [[nodiscard]] bool HasPosted();
    [[nodiscard]] Posted* FindPosted(const TEvent* event);
    TEvent* TakePosted(Posted* posted);
    TEvent* TakeIfReady(TEvent* event);
    TEvent* TakeReady(std::uint64_t turn);
    void ProcessOne(TEvent* event, const StGuard& self);
    void DropPosted();
    void LeaveLoop();
    void ForgetPosted(TEventHandler* handler);
    static void ForgetIdleWish(TEventHandler* handler);
    static void GiveIdlePhase(IdlePhase phase);
    [[nodiscard]] bool IsIdleDue(std::uint32_t now) const;
    static void LogCommandKey(const TToolboxEvent& event);
    static void ReportSafely(const char* where);

    TEventHandler* mTarget = nullptr;     // not owned; null: this
    TApplication* mPrevious;              // not owned
    CKeyBindings* mKeyBindings = nullptr; // not owned
    LoopClient* mLoopClient = nullptr;    // owned; null while attached to no loop
    std::vector<Posted> mPosted;          // waiting from mPostedHead on
    std::size_t mPostedHead = 0;
    std::uint64_t mPostTurn = 1;
    bool mIsIdle = false;
    bool mIdleIsDueNow = false;
    std::int32_t mIdleDeadline =
        kNoIdle; // tick of the earliest wish that was heard and not met yet
};

/// The application object; null when there is none.
extern QLX_API TApplication* gApplication;

inline TApplication::StActivity::StActivity(const char* verb, const std::string& name)
    : mActivity(verb, name) {
    if (!gApplication)
        return;
    gApplication->ActivityStarted(mActivity);
    mIsOpen = true;
}

inline TApplication::StActivity::~StActivity() {
    if (mIsOpen)
        Abandon();
}

inline void TApplication::StActivity::End() {
    if (!mIsOpen)
        return;
    mIsOpen = false;
    if (gApplication)
        gApplication->ActivityEnded(mActivity);
}
