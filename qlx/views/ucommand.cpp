#include "qlx/views/ucommand.h"

#include <new>

#include "qlx/views/uapplication.h"
#include "qlx/views/ucommandhandler.h"

QLX_DEFINE_CLASS(TCommand, TEvent)
QLX_DEFINE_CLASS(TUndoRedoCommand, TCommand)

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

// TEvent

TEventHandler* TCommand::GetHandler() { return TEvent::GetHandler(); }

bool TCommand::Merge(TEvent*) { return true; }

// What subclasses fill in; what performing asks is in ucommandperform.cpp, what the
// queue asks in uapplicationqueue.cpp

void TCommand::AbandonClipboardView() {}
void TCommand::AbandonUndoClipboardView() {}

bool TCommand::NeedsToUnloadAllSegments() { return true; }

void TCommand::NewCommandWasPosted() {}
void TCommand::FileRefTagOp(EFileRefTagOp) {}

bool TCommand::AllowedOverFrozenPlaylist() { return false; }

void TCommand::ClaimClipboard(TView*) {}
void TCommand::UndoRedoClipboard() {}

bool TCommand::DeferCommitUntilAfterTracking() { return false; }

std::int32_t TCommand::GetChangeID() { return mEventNumber; }

bool TCommand::GetCanNotBeUndoReason(std::string* reason) {
    if (reason)
        reason->clear();
    return false;
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

void TCommand::NotifyAll() {
    const std::int32_t change = mDone ? GetChangeID() : kCommand_Undo;
    // Whoever hears of the change may end this command, so the list is not read from here
    // meanwhile.
    const std::vector<TObject*> further = mFurtherObjects;
    if (mObjectToNotify)
        mObjectToNotify->Changed(change, this);
    for (TObject* const object : further)
        object->Changed(change, this);
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
