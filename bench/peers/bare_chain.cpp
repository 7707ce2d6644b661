#include "bench/peers/bare_chain.h"

BareBehavior::~BareBehavior() = default;

bool BareBehavior::IsEnabled() { return mEnabled; }

BareBehavior* BareBehavior::Next() { return mNext; }

void BareBehavior::Do(int* event) {
    if (BareBehavior* const next = Next())
        next->Do(event);
    else
        mOwner->Do(event);
}

BareHandler::~BareHandler() = default;

BareHandler* BareHandler::Next() { return mNext; }

BareBehavior* BareHandler::FirstBehavior() {
    return mBehavior && mBehavior->IsEnabled() ? mBehavior : nullptr;
}

void BareHandler::Handle(int* event) {
    if (BareBehavior* const behavior = FirstBehavior())
        behavior->Do(event);
    else
        Do(event);
}

void BareHandler::Do(int* event) {
    if (BareHandler* const next = Next())
        next->Handle(event);
    else
        *event = 0;
}
