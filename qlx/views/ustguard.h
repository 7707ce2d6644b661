// StGuard: watches a handler, a behaviour or a command across a call that may free it. Not for
// hosts.
#pragma once

#include "basekit/cmn/cmn_internal.h"
#include "qlx/foundation/qlx_fwd.h"

class StGuard;
/// The guard that was opened last (not owned); null while none is open.
extern QLX_INTERNAL StGuard* gInnermostGuard;

/// Stands on the stack beside a call into code that nobody here controls, and knows afterwards
/// whether the object is still there. Costs nothing while no guard is open: destructors look at one
/// pointer. Guards nest as scopes do. User-interface thread.
class StGuard {
  public:
    explicit StGuard(const TObject* object) noexcept : mObject(object), mOuter(gInnermostGuard) {
        gInnermostGuard = this;
    }
    ~StGuard() { gInnermostGuard = mOuter; }
    StGuard(const StGuard&) = delete;
    StGuard& operator=(const StGuard&) = delete;

    [[nodiscard]] bool IsAlive() const noexcept { return mObject != nullptr; }
    explicit operator bool() const noexcept { return IsAlive(); }

    /// Called by the destructors of what can be guarded.
    static void ObjectIsGone(const TObject* object) noexcept {
        for (StGuard* guard = gInnermostGuard; guard; guard = guard->mOuter)
            if (guard->mObject == object)
                guard->mObject = nullptr;
    }

  private:
    const TObject* mObject; // not owned; null once it is gone
    StGuard* mOuter;        // not owned
};
