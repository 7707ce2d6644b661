// Whether anybody watches the application's activities. Most programs never do; what is made for
// the eyes of the hooks only is then not made at all. Not for hosts.
#pragma once

#include "basekit/cmn/cmn_internal.h"
#include "basekit/cmn/cmn_virtualtable.h"
#include "qlx/views/uapplication.h"

/// The application's class that was last found to take over none of the activity hooks; none after
/// another application was made.
extern QLX_INTERNAL Cmn_VirtualTable gUnwatchedApplication;

QLX_INTERNAL bool QLX_TakesOverActivityHooks(const TApplication& application);

[[nodiscard]] inline bool QLX_SomebodyWatchesActivities() {
    return gApplication && !(Cmn_VirtualTable(*gApplication) == gUnwatchedApplication) &&
           QLX_TakesOverActivityHooks(*gApplication);
}
