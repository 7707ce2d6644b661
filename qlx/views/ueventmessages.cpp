// The messages that handlers and their behaviours see: how each is handed on along a handler's
// behaviours and from handler to handler. All of it is in one source, so that the compiler can
// merge the questions that nobody has overridden into the hops: a key on its way through a deep
// window asks hundreds of them.
#include <utility>

#include "basekit/cmn/cmn_internal.h"
#include "basekit/cmn/cmn_virtualtable.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/ucommand.h"
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

// Most handlers of a chain, and most behaviours, do nothing with a message but pass it on. The walk
// passes a message over all of them at once: they need not be called as long as their class answers
// every question on the way as its base does. Nobody's code runs meanwhile, so that no chain and no
// list can change under the walk.

namespace {

// Written by the constructors, which see it in their objects. Nobody walks before.
constinit Cmn_VirtualTable sPlainHandler;
constinit Cmn_VirtualTable sPlainBehavior;

/// The classes that a walk has found quiet, as far as it remembers them.
class QuietClasses {
  public:
    explicit QuietClasses(const Cmn_VirtualTable& plain) : mPlain(plain) {}
    template <auto... Operations>
    [[nodiscard]] bool Have(const Cmn_VirtualTable& table) {
        if (table == mLast || table == mOther)
            return true;
        if (!table.Shares<Operations...>(mPlain))
            return false;
        mOther = std::exchange(mLast, table);
        return true;
    }

  private:
    const Cmn_VirtualTable mPlain;
    Cmn_VirtualTable mLast = mPlain;
    Cmn_VirtualTable mOther = mPlain;
};

} // namespace

TEventHandler::TEventHandler() { sPlainHandler = Cmn_VirtualTable(*this); }

TBehavior::TBehavior() { sPlainBehavior = Cmn_VirtualTable(*this); }

class TEventHandler::QuietWalk {
  public:
    /// The first handler from this one on that may do more with a message than pass it on by these
    /// operations, null when there is none. The first operation is that of behaviours. The trace
    /// wants to see everyone.
    template <auto BehaviorOperation, auto... Operations>
    [[nodiscard]] static TEventHandler* Over(TEventHandler* handler) {
        if (gEventTraceIsOn) [[unlikely]]
            return handler;
        QuietClasses classes(sPlainHandler);
        while (handler && IsQuiet<Operations...>(handler, classes) &&
               (!handler->mFirstBehavior || BehaviorsAreQuiet<BehaviorOperation>(handler)))
            handler = handler->mNextHandler;
        return handler;
    }
    /// The same, but stops at the first handler with behaviours: a loop without a call.
    template <auto... Operations>
    [[nodiscard]] static TEventHandler* ToBehaviors(TEventHandler* handler) {
        if (gEventTraceIsOn) [[unlikely]]
            return handler;
        QuietClasses classes(sPlainHandler);
        while (handler && IsQuiet<Operations...>(handler, classes) && !handler->mFirstBehavior)
            handler = handler->mNextHandler;
        return handler;
    }
    /// The same for what neither behaviours nor the trace get to see.
    template <auto Operation>
    [[nodiscard]] static TEventHandler* OverAnyBehaviors(TEventHandler* handler) {
        QuietClasses classes(sPlainHandler);
        while (handler &&
               classes.Have<&TEventHandler::GetNextHandler, Operation>(Cmn_VirtualTable(*handler)))
            handler = handler->mNextHandler;
        return handler;
    }

  private:
    template <auto... Operations>
    [[nodiscard]] static bool IsQuiet(const TEventHandler* handler, QuietClasses& classes) {
        return classes.Have<&TEventHandler::GetNextHandler, &TEventHandler::GetFirstEnabledBehavior,
                            Operations...>(Cmn_VirtualTable(*handler));
    }
    template <auto Operation>
    [[nodiscard]] static bool BehaviorsAreQuiet(const TEventHandler* owner) {
        QuietClasses classes(sPlainBehavior);
        const TBehavior* behavior = owner->mFirstBehavior;
        while (behavior && behavior->mOwner == owner &&
               classes.Have<&TBehavior::IsEnabled, &TBehavior::GetNextEnabledBehavior, Operation>(
                   Cmn_VirtualTable(*behavior)))
            behavior = behavior->mNext;
        return !behavior;
    }
};

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
    if (TEventHandler* const next =
            QuietWalk::Over<&TBehavior::DoEvent, &TEventHandler::HandleEvent,
                            &TEventHandler::DoEvent>(GetNextHandler()))
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

QLX_STANDS_ALONE void TEventHandler::PassKeyFrom(TEventHandler* handler, TToolboxEvent* event) {
    if (TEventHandler* const next =
            QuietWalk::Over<&TBehavior::DoKeyEvent, &TEventHandler::HandleKeyCommand,
                            &TEventHandler::DoKeyEvent>(handler))
        next->HandleKeyCommand(event);
    else
        TApplication::KeyDownIsUnhandled();
}

QLX_MERGES_CALLS void TEventHandler::DoKeyEvent(TToolboxEvent* event) {
    TEventHandler* const next =
        QuietWalk::ToBehaviors<&TEventHandler::HandleKeyCommand, &TEventHandler::DoKeyEvent>(
            GetNextHandler());
    if (!next)
        TApplication::KeyDownIsUnhandled();
    else if (next->mFirstBehavior)
        PassKeyFrom(next, event);
    else
        next->HandleKeyCommand(event);
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
    if (TEventHandler* const next =
            QuietWalk::Over<&TBehavior::DoKeyUp, &TEventHandler::DoKeyUp>(GetNextHandler()))
        next->HandleKeyUp(event);
    else
        QLX_NoteEndOfChain();
}

namespace {

QLX_STANDS_ALONE void HandleMenuWithBehaviors(TEventHandler* handler, std::int32_t command) {
    if (TBehavior* const behavior = handler->GetFirstEnabledBehavior())
        QLX_DispatchMenuCommand(command, behavior);
    else
        QLX_DispatchMenuCommand(command, handler);
}

} // namespace

void TEventHandler::HandleMenuCommand(std::int32_t command) {
    const bool isAlone =
        !mFirstBehavior && !gEventTraceIsOn &&
        Cmn_VirtualTable(*this).Shares<&TEventHandler::GetFirstEnabledBehavior>(sPlainHandler);
    if (isAlone)
        DoMenuCommand(command);
    else
        HandleMenuWithBehaviors(this, command);
}

void TEventHandler::DoMenuCommand(std::int32_t command) {
    if (TEventHandler* const next =
            QuietWalk::Over<&TBehavior::DoMenuCommand, &TEventHandler::DoMenuCommand>(
                GetNextHandler()))
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
    if (TEventHandler* const next =
            QuietWalk::Over<&TBehavior::DoSetupMenus, &TEventHandler::HandleSetupMenus,
                            &TEventHandler::DoSetupMenus>(GetNextHandler()))
        next->HandleSetupMenus();
    else
        QLX_NoteEndOfChain();
}

// Decoding a key

namespace {

// On its own, so that the way to the end of the chain saves no registers for it.
QLX_STANDS_ALONE void DecodeKey(TToolboxEvent& event) {
    const std::uint32_t kind = event.mEventKind;
    if (kind != kQLX_EventKind_KeyDown && kind != kQLX_EventKind_KeyUp &&
        kind != kQLX_EventKind_AutoKey)
        return;
    const QLX_EventRef& record = event.GetEvent();
    record.GetProperty(kQLX_EventProperty_KeyCode, &event.mKeyCode, sizeof event.mKeyCode);
    record.GetProperty(kQLX_EventProperty_Character, &event.mCharacterCode,
                       sizeof event.mCharacterCode);
}

} // namespace

void TEventHandler::KeyEventToComponents(TToolboxEvent* event) {
    if (TEventHandler* const next =
            QuietWalk::OverAnyBehaviors<&TEventHandler::KeyEventToComponents>(GetNextHandler()))
        next->KeyEventToComponents(event);
    else if (event)
        DecodeKey(*event);
}

// What is posted goes to the end of the chain, where an application queues it.

namespace {

void DropEvent(TEvent* event) {
    if (event->ShouldFreeOnCompletion())
        event->Free();
}

} // namespace

void TEventHandler::PostCommand(TCommand* command) {
    if (!command)
        return;
    if (TEventHandler* const next = GetNextHandler())
        next->PostCommand(command);
    else
        DropEvent(command);
}

void TEventHandler::PostAndConsumeEvent(TEvent* event, bool atFront) {
    if (!event)
        return;
    if (TEventHandler* const next = GetNextHandler())
        next->PostAndConsumeEvent(event, atFront);
    else
        DropEvent(event);
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
