// Who is about to become the target, for handlers that give the keyboard back when they lose it.
#pragma once

#include "basekit/cmn/cmn_types.h"
#include "qlx/foundation/qlx_fwd.h"

/// The handler whose BecomeTarget is under way and which has made the old target resign; null when
/// the old one resigns for nobody. User-interface thread.
[[nodiscard]] QLX_API TEventHandler* QLX_GetComingTarget();
