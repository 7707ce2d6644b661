#include "qlx/views/ucommandhandler.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <utility>
#include <vector>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_trace.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ucommand.h"
#include "qlx/views/ucommandmanager.h"
#include "qlx/views/ueventdispatch.h"
#include "qlx/views/ustguard.h"

QLX_DEFINE_CLASS(TCommandHandler, TEventHandler)

namespace {

constexpr char kSource[] = "qlx/views/ucommandhandler";

TCommandHandler::PointerChecker sPointerChecker = nullptr;

/// Which life of a command an address stands for: a freed command's address soon belongs to
/// another.
struct AliveCommand {
    const TCommand* mCommand;
    std::uint64_t mLife;
};

// Sorted by address. A flat list, as there are seldom more commands alive than windows. Never
// destroyed: commands may be freed by other static destructors.
std::vector<AliveCommand>& AliveCommands() {
    static auto* const commands = new std::vector<AliveCommand>;
    return *commands;
}

std::vector<AliveCommand>::iterator FindAlive(const TCommand* command) {
    std::vector<AliveCommand>& commands = AliveCommands();
    const auto before = [](const AliveCommand& entry, const TCommand* c) {
        return std::less<const TCommand*>()(entry.mCommand, c);
    };
    const auto at = std::lower_bound(commands.begin(), commands.end(), command, before);
    return at != commands.end() && at->mCommand == command ? at : commands.end();
}

const char* ClassNameOf(const TObject* object) {
    return object->GetClassDescDynamic()->GetClassName().c_str();
}

// Goes up whenever a command leaves the list: while it stands still, who was alive is alive.
std::uint64_t sDepartures = 0;

/// Answers the command's life, the same one when it is known already.
std::uint64_t AddAlive(const TCommand* command) {
    static std::uint64_t lastLife = 0;
    if (const auto known = FindAlive(command); known != AliveCommands().end())
        return known->mLife;
    std::vector<AliveCommand>& commands = AliveCommands();
    const auto after = [](const TCommand* c, const AliveCommand& entry) {
        return std::less<const TCommand*>()(c, entry.mCommand);
    };
    commands.insert(std::upper_bound(commands.begin(), commands.end(), command, after),
                    {command, ++lastLife});
    if (Cmn_TraceIsEnabled(kTrace_Commands))
        Cmn_Trace(kTrace_Commands,
                  "TCommandHandler::PerformCommand - adding to AliveCommands %p (%s)",
                  static_cast<const void*>(command), ClassNameOf(command));
    return lastLife;
}

/// Adds a command to the list and knows afterwards whether it is still the one that was added. One
/// that has not begun is of a command that is not in the list yet, and takes it to be alive.
class AliveWatch {
  public:
    AliveWatch() = default;
    explicit AliveWatch(const TCommand* command)
        : mCommand(command), mLife(AddAlive(command)), mDepartures(sDepartures) {}

    [[nodiscard]] bool IsAlive() const {
        if (!mCommand || (mDepartures == sDepartures && mLife != 0))
            return true;
        const auto entry = mLife != 0 ? FindAlive(mCommand) : AliveCommands().end();
        if (entry == AliveCommands().end() || entry->mLife != mLife) {
            mLife = 0;
            return false;
        }
        mDepartures = sDepartures;
        return true;
    }

  private:
    const TCommand* mCommand = nullptr;    // not owned, only compared
    mutable std::uint64_t mLife = 0;       // 0 once it was found gone
    mutable std::uint64_t mDepartures = 0; // as of the last look
};

const char* YesOrNo(bool flag) { return flag ? "YES" : "NO"; }

} // namespace

/// Stands around a command's Commit, UndoIt and RedoIt. A busy command is not committed again from
/// inside, and one that loses its place as last command meanwhile is ended by whoever made it busy.
class TCommandHandler::StBusy {
  public:
    explicit StBusy(TCommand* command) : mCommand(command), mWatch(command), mOuter(sInnermost) {
        sInnermost = this;
    }
    ~StBusy() { sInnermost = mOuter; }
    StBusy(const StBusy&) = delete;
    StBusy& operator=(const StBusy&) = delete;

    [[nodiscard]] bool CommandIsAlive() const { return mWatch.IsAlive(); }
    [[nodiscard]] static bool IsBusy(const TCommand* command) {
        const StBusy* busy = sInnermost;
        while (busy && (busy->mCommand != command || !busy->CommandIsAlive()))
            busy = busy->mOuter;
        return busy != nullptr;
    }

  private:
    TCommand* mCommand; // not owned
    AliveWatch mWatch;
    StBusy* mOuter; // not owned
    static StBusy* sInnermost;
};

TCommandHandler::StBusy* TCommandHandler::StBusy::sInnermost = nullptr;

/// One command on its way through PerformCommand.
struct TCommandHandler::Run {
    TCommandHandler* mPerformer; // not owned; only to be used while mHandler is alive
    TCommand* mCommand;
    const StGuard& mHandler;
    TCommand* mCommitted = nullptr; // stayed the last command when it was committed for this one
    AliveWatch mWatch{};
    bool mIsInDoIt = false;

    [[nodiscard]] bool CommandIsAlive() const { return mWatch.IsAlive(); }
};

TCommandHandler::TCommandHandler() = default;

TCommandHandler::~TCommandHandler() {
    // What is left here belongs to a handler that was not ended with Free. Its command is not
    // committed: it would meet a context that is half gone.
    if (mLastCommand)
        LetGo(mLastCommand);
    for (const AliveCommand& alive : AliveCommands()) {
        auto* const command = const_cast<TCommand*>(alive.mCommand);
        if (command->mContext == this) {
            command->mContext = nullptr;
            command->mHandler = nullptr;
        }
    }
}

void TCommandHandler::ICommandHandler(TEventHandler* next) { IEventHandler(next); }

TObject* TCommandHandler::Clone() {
    // The bytes are copied without the command, so that a copy that fails half way does not free
    // it.
    struct Restore {
        TCommandHandler* mHandler;
        TCommand* mLastCommand;
        bool mInCommand;
        ~Restore() {
            mHandler->mLastCommand = mLastCommand;
            mHandler->mInCommand = mInCommand;
        }
    } const restore{this, std::exchange(mLastCommand, nullptr), std::exchange(mInCommand, false)};
    return TEventHandler::Clone();
}

void TCommandHandler::Free() {
    try {
        CommitLastCommand();
    } catch (const std::exception& x) {
        Cmn_TraceWrite("TCommandHandler::Free - EXCEPTION in commit, x.what()=%s", x.what());
    } catch (...) {
        Cmn_TraceWrite("TCommandHandler::Free - EXCEPTION in commit");
    }
    if (TCommand* const last = std::exchange(mLastCommand, nullptr)) {
        last->mKeeper = nullptr;
        // One that is in its Commit or UndoIt is ended when it comes back from there.
        if (!StBusy::IsBusy(last))
            last->Free();
    }
    TEventHandler::Free();
}

// Menus

void TCommandHandler::DoMenuCommand(std::int32_t command) {
    TCommand* const last = command == kCommand_Undo ? GetLastCommand() : nullptr;
    if (!last || last->mContext != this) {
        TEventHandler::DoMenuCommand(command);
        return;
    }
    auto* const undoRedo = new TUndoRedoCommand;
    undoRedo->IUndoRedoCommand(kCommand_Undo, this);
    PostCommand(undoRedo);
}

void TCommandHandler::HandleSetupMenus() {
    const StGuard self(this);
    TEventHandler::HandleSetupMenus();
    if (self)
        SetupUndoMenu();
}

void TCommandHandler::SetupUndoMenu() {
    TCommand* const last = GetLastCommand();
    if (!last || !last->CanBeUndone())
        return;
    TCommandManager::Enable(kCommand_Undo, true);
    if (gApplication)
        gApplication->SetUndoText(last->mDone, last);
}

TCommandHandler* TCommandHandler::GetContext(int) { return this; }

TCommand* TCommandHandler::GetLastCommand() { return mLastCommand; }

// Live commands

bool TCommandHandler::IsAlive(const TCommand* command) {
    return FindAlive(command) != AliveCommands().end();
}

std::size_t TCommandHandler::CountAliveCommands() { return AliveCommands().size(); }

void TCommandHandler::RemoveAliveCommand(const TCommand* command) {
    const auto entry = FindAlive(command);
    if (entry == AliveCommands().end())
        return;
    AliveCommands().erase(entry);
    ++sDepartures;
    if (Cmn_TraceIsEnabled(kTrace_Commands))
        Cmn_Trace(kTrace_Commands, "TCommand::~TCommand - deleting from AliveCommands %p (%s)",
                  static_cast<const void*>(command), ClassNameOf(command));
}

TCommandHandler::PointerChecker TCommandHandler::SetPointerChecker(PointerChecker checker) {
    return std::exchange(sPointerChecker, checker);
}

bool TCommandHandler::CanBeUsed(const TCommand* command) {
    if (!command) {
        Cmn_Assert("TCommandHandler::PerformCommand - volatileCommand is NULL", kSource, __LINE__);
        return false;
    }
    const bool isAligned = reinterpret_cast<std::uintptr_t>(command) % 8 == 0;
    if (!isAligned || (sPointerChecker && !sPointerChecker(command, sizeof(TCommand)))) {
        Cmn_Assert("TCommandHandler::PerformCommand - volatileCommand is bogus", kSource, __LINE__);
        return false;
    }
    return true;
}

// Performing

void TCommandHandler::PerformCommand(TCommand* command) {
    if (!CanBeUsed(command))
        return;
    if (!gEventTraceIsOn) [[likely]] {
        PerformGuarded(command);
        return;
    }
    const QLX_StEventHop hop(EEventMessage::Command, command, command->GetCommandNumber(), this);
    PerformGuarded(command);
}

void TCommandHandler::PerformGuarded(TCommand* command) {
    const StGuard self(this);
    Run run{this, command, self};
    try {
        if (command->ShouldTraceCommand())
            PerformNamed(run);
        else
            Perform(run);
    } catch (const std::exception& x) {
        Discard(run, x.what());
        throw;
    } catch (...) {
        Discard(run, nullptr);
        throw;
    }
}

void TCommandHandler::PerformNamed(Run& run) {
    TApplication::StScratchText name;
    TApplication::StScratchText details;
    run.mCommand->GetCommandName(&*name);
    run.mCommand->GetCommandTracingDetails(&*details);
    if (Cmn_TraceIsEnabled(kTrace_Commands))
        Cmn_Trace(kTrace_Commands, "Performing TCommand: %s %s %s", name->c_str(),
                  details->empty() ? "" : "-", details->c_str());
    std::optional<TApplication::StActivity> activity;
    if (run.mCommand->ShouldValidateCommand())
        activity.emplace("performing ", *name);
    Perform(run);
    if (Cmn_TraceIsEnabled(kTrace_Commands))
        Cmn_Trace(kTrace_Commands, "Completed TCommand: %s", name->c_str());
    if (activity)
        activity->End();
}

void TCommandHandler::Perform(Run& run) {
    TCommand* const command = run.mCommand;
    TakeFromKeeper(command);
    if (command->WillCauseChange() || command->CanBeUndone())
        CommitLastCommand();
    run.mWatch = AliveWatch(command);
    if (run.mHandler) {
        run.mCommitted = mLastCommand;
        struct RestoreFlag {
            TCommandHandler* mHandler;
            const StGuard& mGuard;
            bool mWasInCommand;
            ~RestoreFlag() {
                if (mGuard)
                    mHandler->mInCommand = mWasInCommand;
            }
        } const restore{this, run.mHandler, std::exchange(mInCommand, true)};
        run.mIsInDoIt = true;
        command->DoIt();
        run.mIsInDoIt = false;
    }
    if (run.CommandIsAlive())
        Finish(run);
    else
        Cmn_TraceAssert("TCommandHandler::PerformCommand - command destroyed itself in DoIt",
                        kSource, __LINE__);
}

// The handler may have gone in DoIt or DoNotification (a command that closes its own window):
// nobody can keep the command then, so it ends like one that cannot be undone.
void TCommandHandler::Finish(Run& run) {
    TCommand* const command = run.mCommand;
    if (run.mHandler) {
        command->mDone = true;
        command->DoNotification();
        if (!run.CommandIsAlive())
            return;
    }
    if (run.mHandler && command->CanBeUndone()) {
        run.mPerformer->KeepCommand(command, run.mCommitted);
        return;
    }
    const bool frees = command->ShouldFreeOnCompletion();
    command->Completed();
    if (frees && run.CommandIsAlive())
        command->Free();
}

// A command that is performed while a handler keeps it becomes final first, and is not freed by
// that.
void TCommandHandler::TakeFromKeeper(TCommand* command) {
    TCommandHandler* const keeper = std::exchange(command->mKeeper, nullptr);
    if (!keeper)
        return;
    keeper->mLastCommand = nullptr;
    if (std::exchange(command->mDone, false))
        command->Commit();
}

void TCommandHandler::KeepCommand(TCommand* command, const TCommand* committed) {
    const StGuard self(this);
    // There is a last command here when the command performed another one from its DoIt.
    const AliveWatch watch(command);
    if (mLastCommand && mLastCommand != command && mLastCommand != committed)
        CommitLastCommand();
    if (!self || !watch.IsAlive())
        return;
    if (mLastCommand && mLastCommand != command) {
        mLastCommand->mKeeper = nullptr;
        mLastCommand->NoLongerTopUndo();
    }
    mLastCommand = command;
    command->mKeeper = this;
    command->SetupDependencies();
    if (watch.IsAlive())
        command->NowTopUndo();
}

void TCommandHandler::Discard(Run& run, const char* text) {
    TCommand* const command = run.mCommand;
    const bool isAlive = run.CommandIsAlive();
    const bool frees = isAlive && command->ShouldFreeOnCompletion();
    const bool isLast = isAlive && command->mKeeper;
    const bool isInCommand = run.mIsInDoIt || (run.mHandler && run.mPerformer->mInCommand);
    if (Cmn_TraceIsEnabled(kTrace_Commands))
        Cmn_Trace(kTrace_Commands,
                  "TCommandHandler::PerformCommand - EXCEPTION command=%p (%s), CommandNumber=%d, "
                  "ShouldFreeOnCompletion=%s, fInURMCommand=%s, IsLastCommand=%s%s%s",
                  static_cast<void*>(command), isAlive ? ClassNameOf(command) : "gone",
                  isAlive ? static_cast<int>(command->mEventNumber) : 0, YesOrNo(frees),
                  YesOrNo(isInCommand), YesOrNo(isLast), text ? ", x.what()=" : "",
                  text ? text : "");
    if (!frees || isLast)
        return;
    if (Cmn_TraceIsEnabled(kTrace_Commands))
        Cmn_Trace(kTrace_Commands,
                  "TCommandHandler::PerformCommand - EXCEPTION - deleting command %p (%s)",
                  static_cast<void*>(command), ClassNameOf(command));
    command->Free();
}

// Committing

void TCommandHandler::LetGo(TCommand* command) {
    if (TCommandHandler* const keeper = std::exchange(command->mKeeper, nullptr))
        keeper->mLastCommand = nullptr;
    if (command->ShouldFreeOnCompletion() && !StBusy::IsBusy(command))
        command->Free();
}

void TCommandHandler::CommitLastCommand() {
    TCommand* const command = mLastCommand;
    if (!command || StBusy::IsBusy(command))
        return;
    TApplication::StScratchText name;
    command->GetCommandName(&*name);
    TApplication::StActivity activity("committing ", *name);
    std::optional<StBusy> busy(std::in_place, command);
    try {
        command->NoLongerTopUndo();
        if (command->mDone)
            command->Commit();
        if (busy->CommandIsAlive())
            command->Completed();
    } catch (...) {
        // Kept, it would throw again at every further command and block them all.
        const bool isAlive = busy->CommandIsAlive();
        busy.reset();
        if (isAlive)
            LetGo(command);
        throw;
    }
    const bool ends = busy->CommandIsAlive() && command->ShouldFreeOnCompletion();
    busy.reset();
    if (ends)
        LetGo(command);
    activity.End();
}

// Undo and redo

void TCommandHandler::UndoOrRedo() {
    TCommand* const command = GetLastCommand();
    if (!command || StBusy::IsBusy(command))
        return;
    const AliveWatch watch(command);
    const bool wasDone = command->mDone;
    const bool wasKept = command->mKeeper != nullptr;
    try {
        UndoOrRedoBusy(command, wasDone);
        if (!watch.IsAlive())
            return;
        command->mDone = !wasDone;
        command->DoNotification();
    } catch (...) {
        if (watch.IsAlive() && wasKept && !command->mKeeper)
            EndDisplaced(command);
        throw;
    }
    if (watch.IsAlive() && wasKept && !command->mKeeper)
        EndDisplaced(command);
}

void TCommandHandler::UndoOrRedoBusy(TCommand* command, bool wasDone) {
    TApplication::StScratchText name;
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
void TCommandHandler::EndDisplaced(TCommand* command) {
    const AliveWatch watch(command);
    if (command->mDone)
        command->Commit();
    if (!watch.IsAlive())
        return;
    const bool frees = command->ShouldFreeOnCompletion();
    command->Completed();
    if (frees && watch.IsAlive())
        command->Free();
}
