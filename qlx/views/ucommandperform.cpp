// What a command goes through from PerformCommand to its end, and what it answers on the way when
// nobody has overridden it. Both are in one source, so that the compiler can merge the answers into
// the questions: a command asks and is told some thirty things. It does so only as long as no class
// derived from TCommand has its operations here.
#include <ctime>
#include <exception>
#include <optional>
#include <utility>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_traceswitch.h"
#include "basekit/cmn/cmn_virtualtable.h"
#include "newfilelibs/daw/daw_command.h"
#include "qlx/views/uactivitywatch.h"
#include "qlx/views/ualivecommands.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ucommand.h"
#include "qlx/views/ucommandhandler.h"
#include "qlx/views/ueventdispatch.h"
#include "qlx/views/umenumanager.h"
#include "qlx/views/uscratchtext.h"
#include "qlx/views/ustguard.h"

namespace {

constexpr char kSource[] = "qlx/views/ucommandhandler";

TCommandHandler::PointerChecker sPointerChecker = nullptr;

const char* ClassNameOf(const TObject* object) {
    return object->GetClassDescDynamic()->GetClassName().c_str();
}

const char* YesOrNo(bool flag) { return flag ? "YES" : "NO"; }

} // namespace

// What a command answers

namespace {

// TCommand's own, written by its constructor.
constinit Cmn_VirtualTable sPlainCommand;

/// Whether a command makes its name as TCommand does and nobody would get to see it: then it is not
/// made. The operations are those that would be called with it.
template <auto... Operations>
bool IsUnseen(const TCommand* command) {
    return Cmn_VirtualTable(*command).Shares<&TCommand::GetCommandName, Operations...>(
               sPlainCommand) &&
           !QLX_SomebodyWatchesActivities();
}

} // namespace

TCommand::TCommand() : mCreationTime(static_cast<std::int64_t>(std::time(nullptr))) {
    mIsCommand = true;
    sPlainCommand = Cmn_VirtualTable(*this);
}

void TCommand::ICommand(std::int32_t number, TCommandHandler* context, bool canUndo,
                        bool causesChange, TObject* objectToNotify) {
    mContext = context ? context : gApplication;
    IEvent(number, nullptr, mContext);
    mCanUndo = canUndo;
    mCausesChange = causesChange;
    mObjectToNotify = objectToNotify;
}

TCommand::~TCommand() {
    QLX_RemoveAliveCommand(this);
    StGuard::ObjectIsGone(this);
    if (mKeeper)
        mKeeper->mLastCommand = nullptr;
}

void TCommand::Free() {
    if (mUsesClipboard) {
        AbandonClipboardView();
        AbandonUndoClipboardView();
    }
    TEvent::Free();
    if (Cmn_TraceIsOn(kTrace_Commands)) [[unlikely]]
        Cmn_Trace(kTrace_Commands, "done freeing");
}

bool TCommand::ShouldFreeOnCompletion() { return mFreeOnCompletion; }

bool TCommand::CanBeUndone() { return mCanUndo; }

bool TCommand::WillCauseChange() { return mCausesChange; }

bool TCommand::ShouldTraceCommand() { return true; }

bool TCommand::ShouldValidateCommand() { return true; }

void TCommand::GetCommandTracingDetails(std::string* details) {
    if (details)
        details->clear();
}

void TCommand::DoIt() {}

void TCommand::RedoIt() { DoIt(); }

void TCommand::UndoIt() {}
void TCommand::Commit() {}
void TCommand::Completed() {}
void TCommand::NoLongerTopUndo() {}
void TCommand::NowTopUndo() {}

void TCommand::SetupDependencies() {
    if (CanBeUndone() && mContext)
        mContext->AddDependent(this);
}

void TCommand::DoNotification() {
    if (WillCauseChange() && (mObjectToNotify || !mFurtherObjects.empty()))
        NotifyAll();
}

bool TCommand::GetCommandName(std::string* name) {
    if (!name)
        return false;
    const std::string& found = mCommandName.empty() ? FindName() : mCommandName;
    *name = found;
    if (name->find('&') != std::string::npos) [[unlikely]]
        std::erase(*name, '&');
    return !name->empty();
}

// What a command is called that has no name of its own.
const std::string& TCommand::FindName() {
    if (mEventNumber != kCommand_None && mEventNumber != kCommand_Unknown) {
        const TMenuItem* const item = TMenuManager::FindItem(mEventNumber);
        if (item && !item->GetText().empty())
            return item->GetText();
        const DAW_Command* const command = DAW_CommandRegistry::FindCommandByID(mEventNumber);
        if (command && !command->GetName().empty())
            return command->GetName();
    }
    return GetClassDescDynamic()->GetClassName();
}

// Performing

TCommandHandler::PointerChecker TCommandHandler::SetPointerChecker(PointerChecker checker) {
    return std::exchange(sPointerChecker, checker);
}

namespace {

QLX_STANDS_ALONE void ReportUnusable(const TCommand* command) {
    Cmn_Assert(command ? "TCommandHandler::PerformCommand - volatileCommand is bogus"
                       : "TCommandHandler::PerformCommand - volatileCommand is NULL",
               kSource, __LINE__);
}

bool CanBeUsed(const TCommand* command) {
    const bool isAligned = reinterpret_cast<std::uintptr_t>(command) % 8 == 0;
    const bool isUsable =
        command && isAligned && (!sPointerChecker || sPointerChecker(command, sizeof(TCommand)));
    if (!isUsable) [[unlikely]]
        ReportUnusable(command);
    return isUsable;
}

} // namespace

/// Stands around a command's Commit, UndoIt and RedoIt. A busy command is not committed again from
/// inside, and one that loses its place as last command meanwhile is ended by whoever made it busy.
class TCommandHandler::StBusy {
  public:
    /// The guard watches the command and outlives this.
    StBusy(TCommand* command, const StGuard& alive)
        : mCommand(command), mAlive(alive), mOuter(sInnermost) {
        sInnermost = this;
    }
    ~StBusy() { sInnermost = mOuter; }
    StBusy(const StBusy&) = delete;
    StBusy& operator=(const StBusy&) = delete;

    [[nodiscard]] static bool IsBusy(const TCommand* command) {
        const StBusy* busy = sInnermost;
        while (busy && (busy->mCommand != command || !busy->mAlive))
            [[unlikely]] busy = busy->mOuter;
        return busy != nullptr;
    }

  private:
    TCommand* mCommand; // not owned, only compared
    const StGuard& mAlive;
    StBusy* mOuter; // not owned
    QLX_INTERNAL static constinit StBusy* sInnermost;
};

constinit TCommandHandler::StBusy* TCommandHandler::StBusy::sInnermost = nullptr;

/// One command on its way through PerformCommand. Everything is said in the class, as each part of
/// the way is gone in one place only.
class TCommandHandler::Run {
  public:
    Run(TCommandHandler* performer, TCommand* command)
        : mPerformer(performer), mCommand(command), mHandler(performer), mAlive(command) {}

    void Perform() {
        try {
            if (mCommand->ShouldTraceCommand() && NameMayBeSeen())
                PerformNamed();
            else
                PerformPlain();
        } catch (const std::exception& x) {
            Discard(x.what());
            throw;
        } catch (...) {
            Discard(nullptr);
            throw;
        }
    }

  private:
    [[nodiscard]] bool NameMayBeSeen() const {
        return Cmn_TraceIsOn(kTrace_Commands) ||
               !IsUnseen<&TCommand::GetCommandTracingDetails, &TCommand::ShouldValidateCommand>(
                   mCommand);
    }

    QLX_STANDS_ALONE void PerformNamed() {
        StScratchText name;
        StScratchText details;
        mCommand->GetCommandName(&*name);
        mCommand->GetCommandTracingDetails(&*details);
        if (Cmn_TraceIsOn(kTrace_Commands)) [[unlikely]]
            Cmn_Trace(kTrace_Commands, "Performing TCommand: %s %s %s", name->c_str(),
                      details->empty() ? "" : "-", details->c_str());
        std::optional<TApplication::StActivity> activity;
        if (mCommand->ShouldValidateCommand())
            activity.emplace("performing ", *name);
        PerformPlain();
        if (Cmn_TraceIsOn(kTrace_Commands)) [[unlikely]]
            Cmn_Trace(kTrace_Commands, "Completed TCommand: %s", name->c_str());
        if (activity)
            activity->End();
    }

    void PerformPlain() {
        if (mAlive)
            TakeFromKeeper();
        if (mAlive && mHandler && (mCommand->WillCauseChange() || mCommand->CanBeUndone()))
            CommitOneBefore();
        if (mAlive) [[likely]] {
            QLX_AddAliveCommand(mCommand);
            if (mHandler)
                DoIt();
        }
        if (mAlive)
            Finish();
        else
            Cmn_TraceAssert("TCommandHandler::PerformCommand - command destroyed itself in DoIt",
                            kSource, __LINE__);
    }

    // One that is not freed on completion stays. One that its Commit performed takes its place, and
    // is committed when this one takes that.
    void CommitOneBefore() {
        TCommand* const before = mPerformer->mLastCommand;
        mPerformer->CommitLastCommand();
        if (mHandler && mPerformer->mLastCommand == before)
            mCommitted = before;
    }

    // A command that is performed while a handler keeps it becomes final first, and is not freed by
    // that.
    void TakeFromKeeper() {
        TCommandHandler* const keeper = std::exchange(mCommand->mKeeper, nullptr);
        if (!keeper)
            return;
        keeper->mLastCommand = nullptr;
        if (std::exchange(mCommand->mDone, false))
            mCommand->Commit();
    }

    void DoIt() {
        struct RestoreFlag {
            TCommandHandler* mPerformer;
            const StGuard& mGuard;
            bool mWasInCommand;
            ~RestoreFlag() {
                if (mGuard)
                    mPerformer->mInCommand = mWasInCommand;
            }
        } const restore{mPerformer, mHandler, std::exchange(mPerformer->mInCommand, true)};
        mIsInDoIt = true;
        mCommand->DoIt();
        mIsInDoIt = false;
    }

    // The handler may have gone in DoIt or DoNotification (a command that closes its own window):
    // nobody can keep the command then, so it ends like one that cannot be undone.
    void Finish() {
        if (mHandler) {
            mCommand->mDone = true;
            mCommand->DoNotification();
            if (!mAlive)
                return;
        }
        if (mHandler && mCommand->CanBeUndone())
            Keep();
        else
            End(mCommand, mAlive);
    }

    void Keep() {
        TCommand* const last = mPerformer->mLastCommand;
        if (last && last != mCommand) [[unlikely]] {
            Displace();
            if (!mHandler || !mAlive)
                return;
        }
        mPerformer->mLastCommand = mCommand;
        mCommand->mKeeper = mPerformer;
        mCommand->SetupDependencies();
        if (mAlive)
            mCommand->NowTopUndo();
    }

    // The command performed another one from its DoIt, or the one before it did from its Commit, or
    // that one stays.
    QLX_STANDS_ALONE void Displace() {
        if (mPerformer->mLastCommand != mCommitted)
            mPerformer->CommitLastCommand();
        if (!mHandler || !mAlive)
            return;
        TCommand* const last = mPerformer->mLastCommand;
        if (last && last != mCommand) {
            last->mKeeper = nullptr;
            last->NoLongerTopUndo();
        }
    }

    void Discard(const char* text);

    TCommandHandler* mPerformer; // not owned; only to be used while mHandler is alive
    TCommand* mCommand;          // not owned; only to be used while mAlive is
    StGuard mHandler;
    StGuard mAlive;
    TCommand* mCommitted = nullptr; // stayed the last command when it was committed for this one
    bool mIsInDoIt = false;
};

QLX_STANDS_ALONE void TCommandHandler::Run::Discard(const char* text) {
    const bool isAlive = mAlive.IsAlive();
    const bool frees = isAlive && mCommand->ShouldFreeOnCompletion();
    const bool isLast = isAlive && mCommand->mKeeper;
    const bool isInCommand = mIsInDoIt || (mHandler && mPerformer->mInCommand);
    if (Cmn_TraceIsOn(kTrace_Commands))
        Cmn_Trace(kTrace_Commands,
                  "TCommandHandler::PerformCommand - EXCEPTION command=%p (%s), CommandNumber=%d, "
                  "ShouldFreeOnCompletion=%s, fInURMCommand=%s, IsLastCommand=%s%s%s",
                  static_cast<void*>(mCommand), isAlive ? ClassNameOf(mCommand) : "gone",
                  isAlive ? static_cast<int>(mCommand->mEventNumber) : 0, YesOrNo(frees),
                  YesOrNo(isInCommand), YesOrNo(isLast), text ? ", x.what()=" : "",
                  text ? text : "");
    if (!frees || isLast)
        return;
    if (Cmn_TraceIsOn(kTrace_Commands))
        Cmn_Trace(kTrace_Commands,
                  "TCommandHandler::PerformCommand - EXCEPTION - deleting command %p (%s)",
                  static_cast<void*>(mCommand), ClassNameOf(mCommand));
    mCommand->Free();
}

QLX_MERGES_CALLS void TCommandHandler::PerformCommand(TCommand* command) {
    if (gEventTraceIsOn) [[unlikely]]
        PerformTraced(command);
    else if (CanBeUsed(command))
        Run(this, command).Perform();
}

QLX_STANDS_ALONE void TCommandHandler::PerformTraced(TCommand* command) {
    if (!CanBeUsed(command))
        return;
    const QLX_StEventHop hop(EEventMessage::Command, command, command->GetCommandNumber(), this);
    Run(this, command).Perform();
}

// Committing

void TCommandHandler::End(TCommand* command, const StGuard& alive) {
    const bool frees = command->ShouldFreeOnCompletion();
    command->Completed();
    if (frees && alive)
        command->Free();
}

void TCommandHandler::LetGo(TCommand* command, bool frees) {
    if (TCommandHandler* const keeper = std::exchange(command->mKeeper, nullptr))
        keeper->mLastCommand = nullptr;
    if (frees && !StBusy::IsBusy(command))
        command->Free();
}

QLX_MERGES_CALLS void TCommandHandler::CommitLastCommand() {
    TCommand* const command = mLastCommand;
    if (!command || StBusy::IsBusy(command))
        return;
    if (IsUnseen(command))
        Commit(command);
    else
        CommitNamed(command);
}

QLX_STANDS_ALONE void TCommandHandler::CommitNamed(TCommand* command) {
    const StGuard alive(command);
    StScratchText name;
    command->GetCommandName(&*name);
    TApplication::StActivity activity("committing ", *name);
    // The hook is the host's code and may have ended the command.
    if (alive)
        Commit(command);
    activity.End();
}

void TCommandHandler::Commit(TCommand* command) {
    const StGuard alive(command);
    try {
        const StBusy busy(command, alive);
        command->NoLongerTopUndo();
        if (command->mDone)
            command->Commit();
        if (alive)
            command->Completed();
    } catch (...) {
        // Kept, it would throw again at every further command and block them all.
        if (alive)
            LetGo(command, command->ShouldFreeOnCompletion());
        throw;
    }
    if (alive && command->ShouldFreeOnCompletion())
        LetGo(command, true);
}

// Undo and redo

TCommand* TCommandHandler::GetLastCommand() { return mLastCommand; }

void TCommandHandler::DoMenuCommand(std::int32_t command) {
    TCommand* const last = command == kCommand_Undo ? GetLastCommand() : nullptr;
    if (last && last->mContext == this)
        PostUndoRedo();
    else
        TEventHandler::DoMenuCommand(command);
}

QLX_MERGES_CALLS void TCommandHandler::UndoOrRedo() {
    TCommand* const command = GetLastCommand();
    if (!command || StBusy::IsBusy(command))
        return;
    const StGuard alive(command);
    const bool wasDone = command->mDone;
    const bool wasKept = command->mKeeper != nullptr;
    try {
        if (IsUnseen(command))
            UndoOrRedoBusy(command, wasDone, alive);
        else
            UndoOrRedoNamed(command, wasDone, alive);
        if (!alive)
            return;
        command->mDone = !wasDone;
        command->DoNotification();
    } catch (...) {
        if (alive && wasKept && !command->mKeeper)
            EndDisplaced(command, alive);
        throw;
    }
    if (alive && wasKept && !command->mKeeper)
        EndDisplaced(command, alive);
}

QLX_STANDS_ALONE void TCommandHandler::UndoOrRedoNamed(TCommand* command, bool wasDone,
                                                       const StGuard& alive) {
    StScratchText name;
    command->GetCommandName(&*name);
    TApplication::StActivity activity(wasDone ? "undoing " : "redoing ", *name);
    // The hook is the host's code and may have ended the command.
    if (alive)
        UndoOrRedoBusy(command, wasDone, alive);
    activity.End();
}

void TCommandHandler::UndoOrRedoBusy(TCommand* command, bool wasDone, const StGuard& alive) {
    const StBusy busy(command, alive);
    if (wasDone)
        command->UndoIt();
    else
        command->RedoIt();
    if (alive && command->mUsesClipboard)
        command->UndoRedoClipboard();
}

// Its UndoIt performed another command, which is the last one now and could not end this one.
QLX_STANDS_ALONE void TCommandHandler::EndDisplaced(TCommand* command, const StGuard& alive) {
    if (command->mDone)
        command->Commit();
    if (alive)
        End(command, alive);
}

bool TCommandHandler::IsBusy(const TCommand* command) { return StBusy::IsBusy(command); }
