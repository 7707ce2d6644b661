// The messages that handlers and their behaviours see: how each is handed on along a handler's
// behaviours and from handler to handler. All of it is in one source, so that the compiler can
// merge the questions that nobody has overridden into the hops: a key on its way through a deep
// window asks hundreds of them.
#include "basekit/cmn/cmn_internal.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/ueventdispatch.h"
#include "qlx/views/ueventhandler.h"

// Who is next

TEventHandler* TEventHandler::GetNextHandler() { return mNextHandler; }

namespace {

QLX_STANDS_ALONE TBehavior* FirstEnabledFrom(TBehavior* first) {
    return first->IsEnabled() ? first : first->GetNextEnabledBehavior();
}

} // namespace

// Small, so that it is merged into the Handle operations where nobody overrides it.
TBehavior* TEventHandler::GetFirstEnabledBehavior() {
    return mFirstBehavior ? FirstEnabledFrom(mFirstBehavior) : nullptr;
}

bool TBehavior::IsEnabled() { return mEnabled; }

TBehavior* TBehavior::GetNextEnabledBehavior() {
    return mNext ? mNext->ThisOrNextEnabled() : nullptr;
}

TBehavior* TBehavior::ThisOrNextEnabled() {
    TBehavior* behavior = this;
    while (behavior && !behavior->IsEnabled())
        behavior = behavior->mNext;
    return behavior;
}

// Keys in general. The operations below take the usual cases themselves and leave the others to
// these, which stand alone so that the usual cases save no registers for them.
namespace {

QLX_STANDS_ALONE void SendKey(TBehavior* behavior, TToolboxEvent* event) {
    QLX_DispatchKey(EEventMessage::KeyDown, event, behavior, &TBehavior::DoKeyEvent);
}

QLX_STANDS_ALONE void HandleKeyWithBehaviors(TEventHandler* handler, TToolboxEvent* event) {
    if (TBehavior* const behavior = handler->GetFirstEnabledBehavior())
        QLX_DispatchKey(EEventMessage::KeyDown, event, behavior, &TBehavior::DoKeyEvent);
    else
        QLX_DispatchKey(EEventMessage::KeyDown, event, handler, &TEventHandler::DoKeyEvent);
}

QLX_STANDS_ALONE void PassKeyOn(TBehavior* from, TToolboxEvent* event) {
    if (TBehavior* const next = from->GetNextEnabledBehavior())
        QLX_DispatchKey(EEventMessage::KeyDown, event, next, &TBehavior::DoKeyEvent);
    else if (TEventHandler* const owner = from->GetOwner())
        QLX_DispatchKey(EEventMessage::KeyDown, event, owner, &TEventHandler::DoKeyEvent);
    else
        QLX_NoteDropped();
}

} // namespace

// Handlers: each Handle gives the message to the first enabled behaviour, else to the handler's own
// Do; each Do passes it to the next handler's Handle. None of them touches this object after the
// call.

void TEventHandler::HandleEvent(std::int32_t number, TEventHandler* source, TEvent* event) {
    if (TBehavior* const behavior = GetFirstEnabledBehavior())
        QLX_DispatchEvent(number, source, event, behavior);
    else
        QLX_DispatchEvent(number, source, event, this);
}

void TEventHandler::DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) {
    if (TEventHandler* const next = GetNextHandler())
        next->HandleEvent(number, source, event);
    else
        QLX_NoteEndOfChain();
}

void TEventHandler::HandleKeyCommand(TToolboxEvent* event) {
    if (mFirstBehavior || gEventTraceIsOn) {
        HandleKeyWithBehaviors(this, event);
        return;
    }
    // Asked all the same: a subclass may have behaviours from elsewhere.
    if (TBehavior* const behavior = GetFirstEnabledBehavior()) [[unlikely]]
        SendKey(behavior, event);
    else
        DoKeyEvent(event);
}

QLX_MERGES_CALLS void TEventHandler::DoKeyEvent(TToolboxEvent* event) {
    if (TEventHandler* const next = GetNextHandler())
        next->HandleKeyCommand(event);
    else
        TApplication::KeyDownIsUnhandled();
}

void TEventHandler::HandleCommandKey(TToolboxEvent* event) {
    TApplication::SetTargetHandlingEvent(this);
    if (TBehavior* const behavior = GetFirstEnabledBehavior())
        QLX_DispatchKey(EEventMessage::CommandKey, event, behavior, &TBehavior::DoCommandKeyEvent);
    else
        QLX_DispatchKey(EEventMessage::CommandKey, event, this, &TEventHandler::DoCommandKeyEvent);
}

void TEventHandler::DoCommandKeyEvent(TToolboxEvent* event) {
    if (TEventHandler* const next = GetNextHandler())
        next->HandleCommandKey(event);
    else
        TApplication::KeyDownIsUnhandled();
}

// The walk stops at the first handler that overrides DoKeyUp: the default, called through the slot,
// is the step to the next handler, so no question about overriding has to be asked.
void TEventHandler::HandleKeyUp(TToolboxEvent* event) {
    if (TBehavior* const behavior = GetFirstEnabledBehavior())
        QLX_DispatchKey(EEventMessage::KeyUp, event, behavior, &TBehavior::DoKeyUp);
    else
        QLX_DispatchKey(EEventMessage::KeyUp, event, this, &TEventHandler::DoKeyUp);
}

void TEventHandler::DoKeyUp(TToolboxEvent* event) {
    if (TEventHandler* const next = GetNextHandler())
        next->HandleKeyUp(event);
    else
        QLX_NoteEndOfChain();
}

void TEventHandler::HandleMenuCommand(std::int32_t command) {
    if (TBehavior* const behavior = GetFirstEnabledBehavior())
        QLX_DispatchMenuCommand(command, behavior);
    else
        QLX_DispatchMenuCommand(command, this);
}

void TEventHandler::DoMenuCommand(std::int32_t command) {
    if (TEventHandler* const next = GetNextHandler())
        next->HandleMenuCommand(command);
    else
        QLX_NoteEndOfChain();
}

void TEventHandler::HandleSetupMenus() {
    if (TBehavior* const behavior = GetFirstEnabledBehavior())
        QLX_DispatchSetupMenus(behavior);
    else
        QLX_DispatchSetupMenus(this);
}

void TEventHandler::DoSetupMenus() {
    if (TEventHandler* const next = GetNextHandler())
        next->HandleSetupMenus();
    else
        QLX_NoteEndOfChain();
}

// Behaviours: on to the next enabled behaviour, after the last one to the owner's own Do.

void TBehavior::DoCommandKeyEvent(TToolboxEvent* event) {
    if (TBehavior* const next = GetNextEnabledBehavior())
        QLX_DispatchKey(EEventMessage::CommandKey, event, next, &TBehavior::DoCommandKeyEvent);
    else if (TEventHandler* const owner = mOwner)
        QLX_DispatchKey(EEventMessage::CommandKey, event, owner, &TEventHandler::DoCommandKeyEvent);
    else
        QLX_NoteDropped();
}

void TBehavior::DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) {
    if (TBehavior* const next = GetNextEnabledBehavior())
        QLX_DispatchEvent(number, source, event, next);
    else if (TEventHandler* const owner = mOwner)
        QLX_DispatchEvent(number, source, event, owner);
    else
        QLX_NoteDropped();
}

void TBehavior::DoKeyEvent(TToolboxEvent* event) {
    if (mNext || !mOwner || gEventTraceIsOn) {
        PassKeyOn(this, event);
        return;
    }
    if (TBehavior* const next = GetNextEnabledBehavior()) [[unlikely]]
        SendKey(next, event);
    else
        mOwner->DoKeyEvent(event);
}

void TBehavior::DoKeyUp(TToolboxEvent* event) {
    if (TBehavior* const next = GetNextEnabledBehavior())
        QLX_DispatchKey(EEventMessage::KeyUp, event, next, &TBehavior::DoKeyUp);
    else if (TEventHandler* const owner = mOwner)
        QLX_DispatchKey(EEventMessage::KeyUp, event, owner, &TEventHandler::DoKeyUp);
    else
        QLX_NoteDropped();
}

void TBehavior::DoMenuCommand(std::int32_t command) {
    if (TBehavior* const next = GetNextEnabledBehavior())
        QLX_DispatchMenuCommand(command, next);
    else if (TEventHandler* const owner = mOwner)
        QLX_DispatchMenuCommand(command, owner);
    else
        QLX_NoteDropped();
}

void TBehavior::DoSetupMenus() {
    if (TBehavior* const next = GetNextEnabledBehavior())
        QLX_DispatchSetupMenus(next);
    else if (TEventHandler* const owner = mOwner)
        QLX_DispatchSetupMenus(owner);
    else
        QLX_NoteDropped();
}
