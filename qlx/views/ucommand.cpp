#include "qlx/views/ucommand.h"

#include <algorithm>
#include <ctime>
#include <new>

#include "basekit/cmn/cmn_trace.h"
#include "newfilelibs/daw/daw_command.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ucommandhandler.h"
#include "qlx/views/ucommandmanager.h"

QLX_DEFINE_CLASS(TCommand, TEvent)
QLX_DEFINE_CLASS(TUndoRedoCommand, TCommand)

TCommand::TCommand() : mCreationTime(static_cast<std::int64_t>(std::time(nullptr))) {
    mIsCommand = true;
}

TCommand::~TCommand() {
    TCommandHandler::RemoveAliveCommand(this);
    if (mKeeper)
        mKeeper->mLastCommand = nullptr;
}

void TCommand::ICommand(std::int32_t number, TCommandHandler* context, bool canUndo,
                        bool causesChange, TObject* objectToNotify) {
    mContext = context ? context : gApplication;
    IEvent(number, nullptr, mContext);
    mCanUndo = canUndo;
    mCausesChange = causesChange;
    mObjectToNotify = objectToNotify;
}

// TObject

void TCommand::DoUpdate(int change, TObject* changedObject, TObject*, TDependencySpace*) {
    const bool commits = change == kChange_CommitEverything ||
                         (change == kChange_ContextGoesAway && changedObject == mContext);
    if (commits && mContext)
        mContext->CommitLastCommand();
}

TObject* TCommand::Clone() {
    auto* const copy = static_cast<TCommand*>(TEvent::Clone());
    // The bytes of the members that own memory are still the original's.
    ::new (&copy->mFurtherObjects) std::vector<TObject*>();
    ::new (&copy->mCommandName) std::string();
    copy->mKeeper = nullptr;
    try {
        copy->mFurtherObjects = mFurtherObjects;
        copy->mCommandName = mCommandName;
    } catch (...) {
        copy->Free();
        throw;
    }
    return copy;
}

void TCommand::Free() {
    if (mUsesClipboard) {
        AbandonClipboardView();
        AbandonUndoClipboardView();
    }
    TEvent::Free();
    Cmn_Trace(kTrace_Commands, "done freeing");
}

// TEvent

bool TCommand::ShouldFreeOnCompletion() { return mFreeOnCompletion; }

bool TCommand::IsReadyToPost() { return true; }

bool TCommand::IsReadyToExecute() { return mReadyToExecute; }

bool TCommand::IsRecurring() { return mRecurring; }

TEventHandler* TCommand::GetHandler() { return TEvent::GetHandler(); }

void TCommand::Process() {
    if (mContext)
        mContext->PerformCommand(this);
}

bool TCommand::Merge(TEvent*) { return true; }

// What subclasses fill in

void TCommand::AbandonClipboardView() {}
void TCommand::AbandonUndoClipboardView() {}

bool TCommand::NeedsToUnloadAllSegments() { return true; }

void TCommand::Commit() {}
void TCommand::DoIt() {}

void TCommand::RedoIt() { DoIt(); }

void TCommand::UndoIt() {}
void TCommand::Completed() {}
void TCommand::NewCommandWasPosted() {}
void TCommand::NoLongerTopUndo() {}
void TCommand::NowTopUndo() {}
void TCommand::FileRefTagOp(EFileRefTagOp) {}

bool TCommand::AllowedOverFrozenPlaylist() { return false; }

void TCommand::ClaimClipboard(TView*) {}
void TCommand::UndoRedoClipboard() {}

bool TCommand::CanBeUndone() { return mCanUndo; }

bool TCommand::WillCauseChange() { return mCausesChange; }

bool TCommand::DeferCommitUntilAfterTracking() { return false; }

std::int32_t TCommand::GetChangeID() { return mEventNumber; }

bool TCommand::GetCanNotBeUndoReason(std::string* reason) {
    if (reason)
        reason->clear();
    return false;
}

bool TCommand::ShouldTraceCommand() { return true; }

bool TCommand::ShouldValidateCommand() { return true; }

void TCommand::GetCommandTracingDetails(std::string* details) {
    if (details)
        details->clear();
}

bool TCommand::GetCommandDetails(std::string* details) {
    if (details)
        details->clear();
    return false;
}

void TCommand::SetCommandName(const std::string& name) { mCommandName = name; }

std::int64_t TCommand::GetMemoryFootPrint() { return 160; }

// Notification

void TCommand::AddObjectToNotify(TObject* object) {
    if (object)
        mFurtherObjects.push_back(object);
}

void TCommand::DoNotification() {
    if (!WillCauseChange())
        return;
    if (mFurtherObjects.empty()) {
        if (mObjectToNotify)
            mObjectToNotify->Changed(mDone ? GetChangeID() : kCommand_Undo, this);
        return;
    }
    // Whoever hears of the change may end this command, so the list is not read from here
    // meanwhile.
    const std::vector<TObject*> further = mFurtherObjects;
    const std::int32_t change = mDone ? GetChangeID() : kCommand_Undo;
    if (mObjectToNotify)
        mObjectToNotify->Changed(change, this);
    for (TObject* const object : further)
        object->Changed(change, this);
}

void TCommand::SetupDependencies() {
    if (CanBeUndone() && mContext)
        mContext->AddDependent(this);
}

// Name

bool TCommand::GetCommandName(std::string* name) {
    if (!name)
        return false;
    *name = mCommandName;
    if (name->empty() && mEventNumber != kCommand_None && mEventNumber != kCommand_Unknown) {
        TCommandManager::CommandToName(mEventNumber, name);
        if (name->empty())
            if (const DAW_Command* const command =
                    DAW_CommandRegistry::FindCommandByID(mEventNumber))
                *name = command->GetName();
    }
    if (name->empty())
        *name = GetClassDescDynamic()->GetClassName();
    std::erase(*name, '&');
    return !name->empty();
}

// TUndoRedoCommand

TUndoRedoCommand::TUndoRedoCommand() = default;
TUndoRedoCommand::~TUndoRedoCommand() = default;

void TUndoRedoCommand::IUndoRedoCommand(std::int32_t number, TCommandHandler* handler) {
    ICommand(number, handler, false, false, nullptr);
}

void TUndoRedoCommand::DoIt() {
    if (mContext)
        mContext->UndoOrRedo();
}
