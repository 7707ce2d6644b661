// StGuard: watches a handler or behaviour across a call that may free it.
#pragma once

#include "basekit/cmn/cmn_types.h"
#include "qlx/foundation/qlx_fwd.h"

/// Stands on the stack beside a call into code that nobody here controls, and knows afterwards
/// whether the object is still there. Costs nothing while no guard is open: destructors look at one
/// pointer. Guards nest as scopes do. User-interface thread.
class QLX_API StGuard {
  public:
    explicit StGuard(const TObject* object) noexcept;
    ~StGuard();
    StGuard(const StGuard&) = delete;
    StGuard& operator=(const StGuard&) = delete;

    [[nodiscard]] bool IsAlive() const noexcept { return mObject != nullptr; }
    explicit operator bool() const noexcept { return IsAlive(); }

    /// Called by the destructors of what can be guarded.
    static void ObjectIsGone(const TObject* object) noexcept;

  private:
    const TObject* mObject; // not owned; null once it is gone
    StGuard* mOuter;        // not owned
};
