#include "qlx/views/ueventhandler.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "basekit/cmn/cmn_internal.h"
#include "basekit/sys/sys_clock.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/qlx_comingtarget.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/uevent.h"
#include "qlx/views/ugeometry.h"
#include "qlx/views/ustguard.h"

QLX_DEFINE_CLASS(TEventHandler, TObject)

_CPoint gStdHysteresis{4, 4};

namespace {

TObject* MakeByClassName(QLX_RawPropertyContainer* container,
                         const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento, TView* view) {
    std::string className;
    if (!container->GetStringProperty("class", className))
        return nullptr;
    auto* const object = static_cast<TObject*>(ClassDesc::NewByClassName(className));
    if (!object)
        return nullptr;
    try {
        object->ReadContainer(container, memento, view);
    } catch (...) {
        object->Free();
        throw;
    }
    return object;
}

TEventHandler::ObjectMaker sObjectMaker = &MakeByClassName;

} // namespace

TEventHandler::~TEventHandler() {
    // Free has done this already; an object that lives in a scope or a member has only its
    // destructor.
    LeaveApplication();
    if (mFirstBehavior)
        FreeBehaviors();
    StGuard::ObjectIsGone(this);
}

void TEventHandler::IEventHandler(TEventHandler* next) { mNextHandler = next; }

// TObject

void TEventHandler::DoUpdate(int change, TObject* changedObject, TObject* changedBy,
                             TDependencySpace* space) {
    if (TBehavior* const behavior = GetFirstEnabledBehavior())
        behavior->DoBehaviorUpdate(change, changedObject, changedBy, space);
}

void TEventHandler::ReadContainer(QLX_RawPropertyContainer* container,
                                  const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento,
                                  TView* view) {
    TObject::ReadContainer(container, memento, view);
    if (!container)
        return;
    for (QLX_RawPropertyContainer* const child : container->GetChildren("behavior")) {
        TObject* const object = sObjectMaker(child, memento, view);
        if (TBehavior* const behavior = QLX_ObjectCast<TBehavior>(object))
            AddBehavior(behavior);
        else if (object)
            object->Free();
    }
}

void TEventHandler::ReadProperties(QLX_RawPropertyContainer* container,
                                   const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) {
    TObject::ReadProperties(container, memento);
    if (!container)
        return;
    bool isEnabled = false;
    if (container->GetBoolProperty("Enabled", isEnabled))
        SetEnable(isEnabled);
    std::uint32_t identifier = 0;
    if (container->GetIDTypeProperty("Identifier", identifier))
        SetIdentifier(identifier);
}

TEventHandler::ObjectMaker TEventHandler::SetObjectMaker(ObjectMaker maker) {
    return std::exchange(sObjectMaker, maker ? maker : &MakeByClassName);
}

TObject* TEventHandler::Clone() {
    auto* const copy = static_cast<TEventHandler*>(TObject::Clone());
    copy->mFirstBehavior = nullptr;
    try {
        for (TBehavior* behavior = mFirstBehavior; behavior; behavior = behavior->mNext)
            copy->AddBehavior(static_cast<TBehavior*>(behavior->Clone()));
    } catch (...) {
        copy->Free();
        throw;
    }
    if (copy->mIdleFreq != kNoIdle)
        TApplication::NoteIdleWish(copy);
    return copy;
}

void TEventHandler::Free() {
    if (gApplication && gApplication->GetTarget() == this && gApplication != this)
        gApplication->SetTarget(mNextHandler ? mNextHandler : gApplication);
    LeaveApplication();
    FreeBehaviors();
    TObject::Free();
}

void TEventHandler::LeaveApplication() { TApplication::ForgetHandler(this); }

void TEventHandler::FreeBehaviors() {
    // From the front and one at a time: whatever a behaviour does while it goes meets a list in
    // order. It still knows its owner, as it may have something to take back there.
    while (TBehavior* const behavior = mFirstBehavior) {
        mFirstBehavior = behavior->mNext;
        if (mFirstBehavior)
            mFirstBehavior->mPrevious = nullptr;
        behavior->mNext = nullptr;
        behavior->Free();
    }
}

// Chain

TEventHandler* TEventHandler::AddHandler(TEventHandler* handler) {
    if (!handler)
        return this;
    TEventHandler* last = this;
    while (true) {
        if (last == handler)
            return this;
        if (!last->mNextHandler)
            break;
        last = last->mNextHandler;
    }
    last->mNextHandler = handler;
    return this;
}

TEventHandler* TEventHandler::RemoveHandler(TEventHandler* head) {
    if (head == this) {
        TEventHandler* const next = mNextHandler;
        mNextHandler = nullptr;
        return next;
    }
    for (TEventHandler* before = head; before; before = before->mNextHandler) {
        if (before->mNextHandler == this) {
            before->mNextHandler = mNextHandler;
            mNextHandler = nullptr;
            break;
        }
    }
    return head;
}

// Messages that behaviours see first are in ueventmessages.cpp.

void TEventHandler::DoHelp(TToolboxEvent* event, std::string& result) {
    if (TEventHandler* const next = GetNextHandler())
        next->DoHelp(event, result);
}

bool TEventHandler::DoMultiClick(const _CPoint& first, const _CPoint& second) {
    if (TEventHandler* const next = GetNextHandler())
        return next->DoMultiClick(first, second);
    return std::abs(first.v - second.v) <= gStdHysteresis.v &&
           std::abs(first.h - second.h) <= gStdHysteresis.h;
}

TEvent* TEventHandler::RetrieveAnEvent() {
    TEventHandler* const next = GetNextHandler();
    return next ? next->RetrieveAnEvent() : nullptr;
}

// Hooks

void TEventHandler::BecameWindowTarget() {}
void TEventHandler::SetTargetSelection(bool) {}
void TEventHandler::Terminate() {}
void TEventHandler::DoKeySelection(const std::string&) {}

TWindow* TEventHandler::GetWindow() { return nullptr; }

const TWindow* TEventHandler::GetWindow() const { return nullptr; }

// State

void TEventHandler::SetEnable(bool enable) {
    mEnabled = enable;
    if (enable && mIdleFreq != kNoIdle)
        TApplication::NoteIdleWish(this);
}

bool TEventHandler::IsEnabled() { return mEnabled; }

std::uint32_t TEventHandler::GetIdentifier() { return mIdentifier; }

void TEventHandler::SetIdentifier(std::uint32_t identifier) { mIdentifier = identifier; }

// Target

bool TEventHandler::WantsToBeTarget() { return false; }

std::int32_t TEventHandler::WillingToResignTarget() { return 0; }

bool TEventHandler::WantsToResignTargetFromAnotherClick() { return false; }

TEventHandler::ValidationCallback
TEventHandler::SetValidationCallback(ValidationCallback callback) {
    const ValidationCallback previous = mValidationCallback;
    mValidationCallback = callback;
    return previous;
}

void TEventHandler::ValidationSucceeded() {
    if (mValidationCallback)
        mValidationCallback(this);
}

void TEventHandler::ValidationFailed(std::int32_t) {}

void TEventHandler::ResignedWindowTarget() {
    HandleEvent(kEvent_ResignedWindowTarget, this, nullptr);
}

void TEventHandler::BecameTarget() { HandleEvent(kEvent_BecameTarget, this, nullptr); }

void TEventHandler::ResignedTarget() { HandleEvent(kEvent_ResignedTarget, this, nullptr); }

bool TEventHandler::IsTarget() { return gApplication && gApplication->GetTarget() == this; }

namespace {

constinit TEventHandler* sComingTarget = nullptr; // only compared with null

class StComingTarget {
  public:
    explicit StComingTarget(TEventHandler* coming) : mOuter(sComingTarget) {
        sComingTarget = coming;
    }
    ~StComingTarget() { sComingTarget = mOuter; }
    StComingTarget(const StComingTarget&) = delete;
    StComingTarget& operator=(const StComingTarget&) = delete;

  private:
    TEventHandler* mOuter;
};

} // namespace

TEventHandler* QLX_GetComingTarget() { return sComingTarget; }

bool TEventHandler::BecomeTarget() {
    if (!gApplication || gApplication->GetTarget() == this)
        return true;
    const StGuard self(this);
    {
        const StComingTarget coming(this);
        if (!gApplication->GetTarget()->ResignTarget())
            return false;
    }
    // Validating and resigning are the host's code: it may have freed this handler or the
    // application.
    if (!self || !gApplication)
        return false;
    gApplication->SetTarget(this);
    return true;
}

bool TEventHandler::ResignTarget() {
    if (!gApplication)
        return true;
    TEventHandler* const target = gApplication->GetTarget();
    const StGuard guard(target);
    const std::int32_t refusal = target->WillingToResignTarget();
    if (refusal != 0) {
        if (guard)
            target->ValidationFailed(refusal);
        return false;
    }
    if (guard)
        target->ValidationSucceeded();
    if (gApplication)
        gApplication->SetTarget(gApplication);
    return true;
}

// Idle

std::int32_t TEventHandler::GetIdleFreq() { return mIdleFreq; }

void TEventHandler::SetIdleFreq(std::int32_t ticks) {
    mIdleFreq = ticks;
    if (ticks != kNoIdle)
        TApplication::NoteIdleWish(this);
}

bool TEventHandler::DoIdle(IdlePhase) { return false; }

std::int32_t TEventHandler::NextIdle() {
    std::int32_t next = kNoIdle;
    if (mIdleFreq != kNoIdle && mEnabled) {
        const std::uint32_t now = Sys_Clock_Ticks();
        next = static_cast<std::int32_t>(
            mLastIdle == 0 ? now : now + static_cast<std::uint32_t>(mIdleFreq));
    }
    for (TBehavior* behavior = mFirstBehavior; behavior; behavior = behavior->GetNextBehavior())
        next = std::min(next, behavior->NextIdle());
    return next;
}

void TEventHandler::HandleIdle(IdlePhase phase) {
    if (mFirstBehavior) {
        const StGuard self(this);
        mFirstBehavior->HandleIdle(phase);
        if (!self)
            return;
    }
    if (mIdleFreq == kNoIdle || !IsEnabled())
        return;
    const std::uint32_t now = Sys_Clock_Ticks();
    // A last idle time of 0 is none: the first call is due at once, as NextIdle says.
    if (phase == kIdlePhase_Continue && mLastIdle != 0 &&
        now - mLastIdle < static_cast<std::uint32_t>(mIdleFreq))
        return;
    const StGuard self(this);
    if (!DoIdle(phase) && self && phase == kIdlePhase_Continue)
        mLastIdle = now;
}

// Behaviours

TBehavior* TEventHandler::GetFirstBehavior() { return mFirstBehavior; }

TBehavior* TEventHandler::GetBehaviorWithIdentifier(std::uint32_t identifier) {
    TBehavior* behavior = mFirstBehavior;
    while (behavior && behavior->GetIdentifier() != identifier)
        behavior = behavior->GetNextBehavior();
    return behavior;
}

void TEventHandler::AddBehavior(TBehavior* behavior) {
    if (!behavior)
        return;
    behavior->TakeFromOwner();
    if (mFirstBehavior) {
        mFirstBehavior->AppendBehavior(behavior);
    } else {
        mFirstBehavior = behavior;
        behavior->SetPreviousBehavior(nullptr);
    }
    // A behaviour that brings followers of its own brings them into this handler.
    for (TBehavior* added = behavior; added; added = added->GetNextBehavior())
        added->SetOwner(this);
    if (NextIdle() != kNoIdle)
        TApplication::NoteIdleWish(this);
}

void TEventHandler::RemoveBehavior(TBehavior* behavior) {
    if (!behavior || !mFirstBehavior)
        return;
    if (behavior != mFirstBehavior) {
        mFirstBehavior->RemoveBehavior(behavior);
        return;
    }
    mFirstBehavior = behavior->GetNextBehavior();
    if (mFirstBehavior)
        mFirstBehavior->SetPreviousBehavior(nullptr);
    behavior->SetNextBehavior(nullptr);
    behavior->SetPreviousBehavior(nullptr);
    behavior->SetOwner(nullptr);
}

void TEventHandler::SelectOwner(bool selected) {
    for (TBehavior* behavior = mFirstBehavior; behavior;) {
        TBehavior* const next = behavior->GetNextBehavior();
        const StGuard nextGuard(next);
        behavior->SelectOwner(selected);
        // One that takes itself out of the list does not keep the rest from hearing; one that frees
        // the rest does.
        behavior = nextGuard ? next : nullptr;
    }
}
