#include "basekit/cmn/cmn_refcount.h"

Cmn_RefCountObject::~Cmn_RefCountObject() = default;

void Cmn_RefCountObject::Destroy() const noexcept {
    // A count below zero marks an object that is going away, so a late look at it can tell.
    mCount.store(INT32_MIN / 2, std::memory_order_relaxed);
    delete this;
}
