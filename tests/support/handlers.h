// Handlers, behaviours and commands that write what happens to them into one list, and the other
// things that tests of the event world need again and again.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "basekit/sys/sys_clock.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/ucommand.h"
#include "qlx/views/uevent.h"
#include "qlx/views/ueventhandler.h"

/// What happened, in order.
using CallLog = std::vector<std::string>;

/// A clock that stands still until the test moves it.
class TestClock {
  public:
    explicit TestClock(double ticks = 1000) {
        sTicks = ticks;
        mPrevious = Sys_SetClockSource([] { return (sTicks + 0.5) / kSys_ClockTicksPerSecond; });
    }
    ~TestClock() { Sys_SetClockSource(mPrevious); }
    TestClock(const TestClock&) = delete;
    TestClock& operator=(const TestClock&) = delete;
    static void Advance(double ticks) { sTicks += ticks; }

  private:
    static inline double sTicks = 0;
    Sys_ClockSource mPrevious;
};

/// A key event as the event loop makes one.
inline void MakeKey(TToolboxEvent& event, std::uint32_t character, std::uint32_t modifiers = 0,
                    std::uint32_t kind = kQLX_EventKind_KeyDown) {
    const QLX_EventRef ref = QLX_EventRef::New({kQLX_EventClass_Keyboard, kind});
    const std::uint32_t characterData[3] = {character, 0, 0};
    const std::uint32_t keyCode = character;
    ref.SetProperty(kQLX_EventProperty_Modifiers, &modifiers, 4);
    ref.SetProperty(kQLX_EventProperty_KeyCode, &keyCode, 4);
    ref.SetProperty(kQLX_EventProperty_Character, characterData, 12);
    event.IToolboxEvent(nullptr, ref);
}

/// Logs "name:message" and passes on, consumes, or does what the test says.
class LogHandler : public TCommandHandler {
  public:
    explicit LogHandler(CallLog& log, std::string name = "h", TEventHandler* next = nullptr)
        : mLog(log), mName(std::move(name)) {
        IEventHandler(next);
    }
    ~LogHandler() override {
        if (mLogsDeath)
            mLog.push_back(mName + ":gone");
    }
    void DoKeyEvent(TToolboxEvent* event) override {
        if (Note("key"))
            TCommandHandler::DoKeyEvent(event);
    }
    void DoCommandKeyEvent(TToolboxEvent* event) override {
        if (Note("commandKey"))
            TCommandHandler::DoCommandKeyEvent(event);
    }
    void DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) override {
        if (Note("event " + std::to_string(number)))
            TCommandHandler::DoEvent(number, source, event);
    }
    void DoMenuCommand(std::int32_t command) override {
        if (Note("menu " + std::to_string(command)))
            TCommandHandler::DoMenuCommand(command);
    }
    void DoSetupMenus() override {
        if (Note("setup"))
            TCommandHandler::DoSetupMenus();
    }
    bool DoIdle(IdlePhase phase) override {
        Note("idle " + std::to_string(phase));
        return mIdleAnswer;
    }
    std::int32_t WillingToResignTarget() override { return mRefusal; }
    void ValidationFailed(std::int32_t code) override {
        mLog.push_back(mName + ":failed " + std::to_string(code));
    }
    void ValidationSucceeded() override {
        mLog.push_back(mName + ":succeeded");
        TCommandHandler::ValidationSucceeded();
    }

    bool mConsumes = false;
    bool mIdleAnswer = false;
    bool mLogsDeath = false;
    std::int32_t mRefusal = 0;
    /// Called after the message was logged; may free this handler.
    std::function<void()> mThen;

  protected:
    /// Whether to pass on. Nothing of this object is read after mThen.
    bool Note(const std::string& message) {
        mLog.push_back(mName + ":" + message);
        const bool passesOn = !mConsumes;
        if (mThen) {
            const std::function<void()> then = mThen;
            then();
        }
        return passesOn;
    }
    CallLog& mLog;
    std::string mName;
};

/// The same with an own DoKeyUp, which LogHandler leaves to its base.
class KeyUpHandler : public LogHandler {
  public:
    using LogHandler::LogHandler;
    void DoKeyUp(TToolboxEvent* event) override {
        if (Note("keyUp"))
            TCommandHandler::DoKeyUp(event);
    }
};

class LogBehavior : public TBehavior {
  public:
    LogBehavior(CallLog& log, std::string name, std::uint32_t identifier = kNoIdentifier)
        : mLog(log), mName(std::move(name)) {
        IBehavior(identifier);
    }
    ~LogBehavior() override {
        if (mLogsDeath)
            mLog.push_back(mName + ":gone");
    }
    void DoKeyEvent(TToolboxEvent* event) override {
        if (Note("key"))
            TBehavior::DoKeyEvent(event);
    }
    void DoKeyUp(TToolboxEvent* event) override {
        if (Note("keyUp"))
            TBehavior::DoKeyUp(event);
    }
    void DoCommandKeyEvent(TToolboxEvent* event) override {
        if (Note("commandKey"))
            TBehavior::DoCommandKeyEvent(event);
    }
    void DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) override {
        if (Note("event " + std::to_string(number)))
            TBehavior::DoEvent(number, source, event);
    }
    void DoMenuCommand(std::int32_t command) override {
        if (Note("menu " + std::to_string(command)))
            TBehavior::DoMenuCommand(command);
    }
    void DoSetupMenus() override {
        if (Note("setup"))
            TBehavior::DoSetupMenus();
    }
    void DoBehaviorUpdate(int change, TObject* object, TObject* by,
                          TDependencySpace* space) override {
        if (Note("update " + std::to_string(change)))
            TBehavior::DoBehaviorUpdate(change, object, by, space);
    }
    void SelectOwner(bool selected) override {
        TBehavior::SelectOwner(selected);
        Note(selected ? "select" : "deselect");
    }
    bool DoToolboxEvent(TToolboxEvent* event) override {
        return Note("toolbox") ? TBehavior::DoToolboxEvent(event) : true;
    }
    bool DoIdle(IdlePhase phase) override {
        const bool answer = mIdleAnswer;
        Note("idle " + std::to_string(phase));
        return answer;
    }

    bool mConsumes = false;
    bool mIdleAnswer = false;
    bool mLogsDeath = false;
    /// Called after the message was logged; may free this behaviour.
    std::function<void()> mThen;

  private:
    bool Note(const std::string& message) {
        mLog.push_back(mName + ":" + message);
        const bool passesOn = !mConsumes;
        if (mThen) {
            const std::function<void()> then = mThen;
            then();
        }
        return passesOn;
    }
    CallLog& mLog;
    std::string mName;
};

/// Logs the steps of its life.
class LogCommand : public TCommand {
  public:
    explicit LogCommand(CallLog& log, std::string name = "c") : mLog(log), mName(std::move(name)) {}
    ~LogCommand() override {
        if (mLogsDeath)
            mLog.push_back(mName + ":gone");
    }
    void DoIt() override { Note("do", mInDoIt); }
    void UndoIt() override { Note("undo", mInUndoIt); }
    void RedoIt() override { Note("redo", mInRedoIt); }
    void Commit() override { Note("commit", mInCommit); }
    void Completed() override { Note("completed", nullptr); }
    void DoNotification() override {
        TCommand::DoNotification();
        mLog.push_back(mName + (IsDone() ? ":notify done" : ":notify undone"));
    }

    bool mLogsDeath = true;
    std::function<void()> mInDoIt, mInUndoIt, mInRedoIt, mInCommit;

  private:
    void Note(const char* what, const std::function<void()>& then) {
        mLog.push_back(mName + ":" + what);
        if (then) {
            const std::function<void()> copy = then;
            copy();
        }
    }
    CallLog& mLog;
    std::string mName;
};

/// Logs activities and reported exceptions.
class LogApplication : public TApplication {
  public:
    explicit LogApplication(CallLog& log) : mLog(log) {}
    void ActivityStarted(const CActivity& activity) override {
        if (mLogsActivities)
            mLog.push_back("start " + activity.GetText());
    }
    void ActivityEnded(const CActivity& activity) override {
        if (mLogsActivities)
            mLog.push_back("end " + activity.GetText());
    }
    void ReportException(const char* where, std::exception_ptr exception) override {
        try {
            std::rethrow_exception(exception);
        } catch (const std::exception& x) {
            mLog.push_back(std::string("exception in ") + where + ": " + x.what());
        } catch (...) {
            mLog.push_back(std::string("exception in ") + where);
        }
    }
    bool mLogsActivities = false;

  private:
    CallLog& mLog;
};
