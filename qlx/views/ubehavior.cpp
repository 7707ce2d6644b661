#include "qlx/views/ubehavior.h"

#include "basekit/sys/sys_clock.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ustguard.h"

QLX_DEFINE_CLASS(TBehavior, TObject)

TBehavior::~TBehavior() {
    Unlink();
    StGuard::ObjectIsGone(this);
}

void TBehavior::IBehavior(std::uint32_t identifier) { mIdentifier = identifier; }

void TBehavior::ReadProperties(QLX_RawPropertyContainer* container,
                               const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) {
    TObject::ReadProperties(container, memento);
    if (!container)
        return;
    bool isEnabled = false;
    if (container->GetBoolProperty("Enabled", isEnabled))
        SetEnabled(isEnabled);
    std::uint32_t identifier = 0;
    if (container->GetIDTypeProperty("Identifier", identifier))
        mIdentifier = identifier;
}

TObject* TBehavior::Clone() {
    auto* const copy = static_cast<TBehavior*>(TObject::Clone());
    copy->mOwner = nullptr;
    copy->mPrevious = nullptr;
    copy->mNext = nullptr;
    return copy;
}

void TBehavior::Free() {
    // Iterative, so that a list of any length goes without a call depth of that length.
    while (TBehavior* const next = mNext) {
        next->Unlink();
        next->Free();
    }
    TObject::Free();
}

// Neighbours and owner must not go on pointing here; what follows in the list is bridged over.
void TBehavior::Unlink() {
    if (mOwner && mOwner->mFirstBehavior == this)
        mOwner->mFirstBehavior = mNext;
    if (mPrevious)
        mPrevious->mNext = mNext;
    if (mNext)
        mNext->mPrevious = mPrevious;
    mOwner = nullptr;
    mPrevious = nullptr;
    mNext = nullptr;
}

// Out of a handler's list through its own door, so that subclasses that watch their list notice.
void TBehavior::TakeFromOwner() {
    if (mOwner)
        mOwner->RemoveBehavior(this);
    // A handler may keep behaviours that it did not let go of.
    if (mOwner || mPrevious)
        Unlink();
}

// List

void TBehavior::SetNextBehavior(TBehavior* next) { mNext = next; }

void TBehavior::SetPreviousBehavior(TBehavior* previous) { mPrevious = previous; }

TBehavior* TBehavior::GetNextBehavior() { return mNext; }

void TBehavior::SetOwner(TEventHandler* owner) { mOwner = owner; }

void TBehavior::InsertBefore(TBehavior* behavior, TBehavior* place) {
    if (!behavior || !place || behavior == place)
        return;
    TBehavior* at = this;
    while (at && at != place)
        at = at->mNext;
    if (!at)
        return;
    behavior->TakeFromOwner();
    behavior->mPrevious = place->mPrevious;
    behavior->mNext = place;
    if (place->mPrevious)
        place->mPrevious->mNext = behavior;
    place->mPrevious = behavior;
    behavior->SetOwner(place->mOwner);
    if (place->mOwner && place->mOwner->mFirstBehavior == place)
        place->mOwner->mFirstBehavior = behavior;
}

void TBehavior::InsertAfter(TBehavior* behavior, TBehavior* place) {
    if (!behavior || !place || behavior == place)
        return;
    TBehavior* at = this;
    while (at && at != place)
        at = at->mNext;
    if (!at)
        return;
    behavior->TakeFromOwner();
    behavior->mPrevious = place;
    behavior->mNext = place->mNext;
    if (place->mNext)
        place->mNext->mPrevious = behavior;
    place->mNext = behavior;
    behavior->SetOwner(place->mOwner);
}

void TBehavior::AppendBehavior(TBehavior* behavior) {
    if (!behavior)
        return;
    TBehavior* last = this;
    while (true) {
        if (last == behavior)
            return;
        if (!last->mNext)
            break;
        last = last->mNext;
    }
    last->SetNextBehavior(behavior);
    behavior->SetPreviousBehavior(last);
}

void TBehavior::RemoveBehavior(TBehavior* behavior) {
    TBehavior* at = mNext;
    while (at && at != behavior)
        at = at->mNext;
    if (at)
        at->Unlink();
}

// State

bool TBehavior::IsOwnerSelected() { return mOwnerSelected; }

void TBehavior::SelectOwner(bool selected) { mOwnerSelected = selected; }

void TBehavior::SetEnabled(bool enabled) {
    mEnabled = enabled;
    if (enabled && mIdleFreq != kNoIdle && mOwner)
        TApplication::NoteIdleWish(mOwner);
}

// Idle

void TBehavior::SetIdleFreq(std::int32_t ticks) {
    mIdleFreq = ticks;
    if (ticks != kNoIdle && mOwner)
        TApplication::NoteIdleWish(mOwner);
}

bool TBehavior::DoIdle(IdlePhase) { return false; }

std::int32_t TBehavior::NextIdle() {
    if (mIdleFreq == kNoIdle || !mEnabled)
        return kNoIdle;
    if (mLastIdle == 0)
        return static_cast<std::int32_t>(Sys_Clock_Ticks());
    return static_cast<std::int32_t>(mLastIdle + static_cast<std::uint32_t>(mIdleFreq));
}

void TBehavior::HandleIdle(IdlePhase phase) {
    TBehavior* next = mNext;
    const StGuard self(this);
    const StGuard nextGuard(next);
    if (mIdleFreq != kNoIdle && IsEnabled()) {
        const std::uint32_t now = Sys_Clock_Ticks();
        // A last idle time of 0 is none: the first call is due at once, as NextIdle says.
        const bool isDue = phase != kIdlePhase_Continue || mLastIdle == 0 ||
                           now - mLastIdle >= static_cast<std::uint32_t>(mIdleFreq);
        if (isDue && !DoIdle(phase) && self && phase == kIdlePhase_Continue)
            mLastIdle = now;
    }
    // Whatever this one did to itself, those that follow it get their idle time.
    if (self && (mOwner || mNext))
        next = GetNextEnabledBehavior();
    else if (!nextGuard)
        return;
    else if (next && !next->IsEnabled())
        next = next->GetNextEnabledBehavior();
    if (next)
        next->HandleIdle(phase);
}

// Messages that handlers see too are in ueventmessages.cpp. The others end with the behaviours.

void TBehavior::DoBehaviorUpdate(int change, TObject* changedObject, TObject* changedBy,
                                 TDependencySpace* space) {
    if (TBehavior* const next = GetNextEnabledBehavior())
        next->DoBehaviorUpdate(change, changedObject, changedBy, space);
}

bool TBehavior::DoMouseCommand(const VPoint& mouse, TToolboxEvent* event) {
    TBehavior* const next = GetNextEnabledBehavior();
    return next && next->DoMouseCommand(mouse, event);
}

bool TBehavior::DoMouseUp(const VPoint& mouse, TToolboxEvent* event) {
    TBehavior* const next = GetNextEnabledBehavior();
    return next && next->DoMouseUp(mouse, event);
}

bool TBehavior::DoMouseWheel(const VPoint& mouse, TToolboxEvent* event) {
    TBehavior* const next = GetNextEnabledBehavior();
    return next && next->DoMouseWheel(mouse, event);
}

void TBehavior::Draw(const VRect& area) {
    if (TBehavior* const next = GetNextEnabledBehavior())
        next->Draw(area);
}

bool TBehavior::DoSetCursor(const VPoint& mouse) {
    TBehavior* const next = GetNextEnabledBehavior();
    return next && next->DoSetCursor(mouse);
}

bool TBehavior::DoToolboxEvent(TToolboxEvent* event) {
    TBehavior* const next = GetNextEnabledBehavior();
    return next && next->DoToolboxEvent(event);
}
