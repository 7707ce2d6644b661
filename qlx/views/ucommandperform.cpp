// What a command goes through from PerformCommand to its end, and what it answers on the way when
// nobody has overridden it. Both are in one source, so that the compiler can merge the answers into
// the questions: a command asks and is told some thirty things.
#include <algorithm>
#include <exception>
#include <optional>
#include <utility>
#include <vector>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_traceswitch.h"
#include "newfilelibs/daw/daw_command.h"
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

// Sorted by address. A flat list, as there are seldom more commands alive than windows. Null until
// the first one comes; never destroyed, as commands may be freed by other static destructors.
using AliveCommandList = std::vector<const TCommand*>;
constinit AliveCommandList* sAliveCommands = nullptr;

AliveCommandList::iterator FindPlace(const TCommand* command) {
    return std::lower_bound(sAliveCommands->begin(), sAliveCommands->end(), command,
                            std::less<const TCommand*>());
}

const char* ClassNameOf(const TObject* object) {
    return object->GetClassDescDynamic()->GetClassName().c_str();
}

/// A command that is there already stays there.
void AddAliveCommand(const TCommand* command) {
    if (!sAliveCommands)
        sAliveCommands = new AliveCommandList;
    if (sAliveCommands->empty() || std::less<const TCommand*>()(sAliveCommands->back(), command)) {
        sAliveCommands->push_back(command);
    } else {
        const auto place = FindPlace(command);
        if (*place == command)
            return;
        sAliveCommands->insert(place, command);
    }
    if (Cmn_TraceIsOn(kTrace_Commands)) [[unlikely]]
        Cmn_Trace(kTrace_Commands,
                  "TCommandHandler::PerformCommand - adding to AliveCommands %p (%s)",
                  static_cast<const void*>(command), ClassNameOf(command));
}

/// Whether the command was there.
bool RemoveAliveCommand(const TCommand* command) {
    if (!sAliveCommands || sAliveCommands->empty())
        return false;
    if (sAliveCommands->back() == command) {
        sAliveCommands->pop_back();
        return true;
    }
    const auto place = FindPlace(command);
    if (place == sAliveCommands->end() || *place != command)
        return false;
    sAliveCommands->erase(place);
    return true;
}

const char* YesOrNo(bool flag) { return flag ? "YES" : "NO"; }

} // namespace

// What a command answers

TCommand::~TCommand() {
    if (RemoveAliveCommand(this) && Cmn_TraceIsOn(kTrace_Commands)) [[unlikely]]
        Cmn_Trace(kTrace_Commands, "TCommand::~TCommand - deleting from AliveCommands %p (%s)",
                  static_cast<const void*>(this), ClassNameOf(this));
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
    if (!WillCauseChange())
        return;
    if (!mFurtherObjects.empty()) [[unlikely]]
        NotifyAll();
    else if (mObjectToNotify)
        mObjectToNotify->Changed(mDone ? GetChangeID() : kCommand_Undo, this);
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

// Live commands

bool TCommandHandler::IsAlive(const TCommand* command) {
    if (!sAliveCommands)
        return false;
    const auto place = FindPlace(command);
    return place != sAliveCommands->end() && *place == command;
}

std::size_t TCommandHandler::CountAliveCommands() {
    return sAliveCommands ? sAliveCommands->size() : 0;
}

void TCommandHandler::ForgetContext(const TCommandHandler* context) {
    if (!sAliveCommands)
        return;
    for (const TCommand* const alive : *sAliveCommands) {
        auto* const command = const_cast<TCommand*>(alive);
        if (command->mContext == context) {
            command->mContext = nullptr;
            command->mHandler = nullptr;
        }
    }
}

TCommandHandler::PointerChecker TCommandHandler::SetPointerChecker(PointerChecker checker) {
    return std::exchange(sPointerChecker, checker);
}

namespace {

bool CanBeUsed(const TCommand* command) {
    if (!command) [[unlikely]] {
        Cmn_Assert("TCommandHandler::PerformCommand - volatileCommand is NULL", kSource, __LINE__);
        return false;
    }
    const bool isAligned = reinterpret_cast<std::uintptr_t>(command) % 8 == 0;
    if (!isAligned || (sPointerChecker && !sPointerChecker(command, sizeof(TCommand))))
        [[unlikely]] {
        Cmn_Assert("TCommandHandler::PerformCommand - volatileCommand is bogus", kSource, __LINE__);
        return false;
    }
    return true;
}

} // namespace

/// Stands around a command's Commit, UndoIt and RedoIt. A busy command is not committed again from
/// inside, and one that loses its place as last command meanwhile is ended by whoever made it busy.
class TCommandHandler::StBusy {
  public:
    explicit StBusy(TCommand* command) : mCommand(command), mAlive(command), mOuter(sInnermost) {
        sInnermost = this;
    }
    ~StBusy() { sInnermost = mOuter; }
    StBusy(const StBusy&) = delete;
    StBusy& operator=(const StBusy&) = delete;

    [[nodiscard]] bool CommandIsAlive() const { return mAlive.IsAlive(); }
    [[nodiscard]] static bool IsBusy(const TCommand* command) {
        const StBusy* busy = sInnermost;
        while (busy && (busy->mCommand != command || !busy->CommandIsAlive()))
            [[unlikely]] busy = busy->mOuter;
        return busy != nullptr;
    }

  private:
    TCommand* mCommand; // not owned, only compared
    StGuard mAlive;
    StBusy* mOuter; // not owned
    static constinit StBusy* sInnermost;
};

constinit TCommandHandler::StBusy* TCommandHandler::StBusy::sInnermost = nullptr;

// Performing

/// One command on its way through PerformCommand. Everything is said in the class, as each part of
/// the way is gone in one place only.
class TCommandHandler::Run {
  public:
    Run(TCommandHandler* performer, TCommand* command)
        : mPerformer(performer), mCommand(command), mHandler(performer), mAlive(command) {}

    void Perform() {
        try {
            if (mCommand->ShouldTraceCommand())
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
    void PerformNamed() {
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
        TakeFromKeeper();
        if (mAlive && mHandler && (mCommand->WillCauseChange() || mCommand->CanBeUndone()))
            mPerformer->CommitLastCommand();
        if (mAlive) [[likely]] {
            AddAliveCommand(mCommand);
            if (mHandler)
                DoIt();
        }
        if (mAlive)
            Finish();
        else
            Cmn_TraceAssert("TCommandHandler::PerformCommand - command destroyed itself in DoIt",
                            kSource, __LINE__);
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
        mCommitted = mPerformer->mLastCommand;
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
        TCommand*& last = mPerformer->mLastCommand;
        if (last && last != mCommand) [[unlikely]] {
            // The command performed another one from its DoIt, or the one before it stays.
            if (last != mCommitted)
                mPerformer->CommitLastCommand();
            if (!mHandler || !mAlive)
                return;
            if (last && last != mCommand) {
                last->mKeeper = nullptr;
                last->NoLongerTopUndo();
            }
        }
        last = mCommand;
        mCommand->mKeeper = mPerformer;
        mCommand->SetupDependencies();
        if (mAlive)
            mCommand->NowTopUndo();
    }

    void Discard(const char* text);

    TCommandHandler* mPerformer; // not owned; only to be used while mHandler is alive
    TCommand* mCommand;          // not owned; only to be used while mAlive is
    StGuard mHandler;
    StGuard mAlive;
    TCommand* mCommitted = nullptr; // stayed the last command when it was committed for this one
    bool mIsInDoIt = false;
};

void TCommandHandler::Run::Discard(const char* text) {
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

void TCommandHandler::PerformCommand(TCommand* command) {
    if (!CanBeUsed(command))
        return;
    if (!gEventTraceIsOn) [[likely]] {
        Run(this, command).Perform();
        return;
    }
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

void TCommandHandler::CommitLastCommand() {
    TCommand* const command = mLastCommand;
    if (!command || StBusy::IsBusy(command))
        return;
    StScratchText name;
    command->GetCommandName(&*name);
    TApplication::StActivity activity("committing ", *name);
    const StGuard alive(command);
    try {
        const StBusy busy(command);
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
    activity.End();
}

// Undo and redo

void TCommandHandler::UndoOrRedo() {
    TCommand* const command = GetLastCommand();
    if (!command || StBusy::IsBusy(command))
        return;
    const StGuard alive(command);
    const bool wasDone = command->mDone;
    const bool wasKept = command->mKeeper != nullptr;
    try {
        UndoOrRedoBusy(command, wasDone);
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

void TCommandHandler::UndoOrRedoBusy(TCommand* command, bool wasDone) {
    StScratchText name;
    command->GetCommandName(&*name);
    TApplication::StActivity activity(wasDone ? "undoing " : "redoing ", *name);
    const StBusy busy(command);
    if (wasDone)
        command->UndoIt();
    else
        command->RedoIt();
    if (busy.CommandIsAlive() && command->mUsesClipboard)
        command->UndoRedoClipboard();
    activity.End();
}

// Its UndoIt performed another command, which is the last one now and could not end this one.
void TCommandHandler::EndDisplaced(TCommand* command, const StGuard& alive) {
    if (command->mDone)
        command->Commit();
    if (alive)
        End(command, alive);
}

bool TCommandHandler::IsBusy(const TCommand* command) { return StBusy::IsBusy(command); }
