// The listener inside the getters of containers. Not for hosts.
#pragma once

#include "qlx/persistence/qlx_persistence.h"

/// Null while nobody listens; not owned.
extern QLX_PropertyReadListener* gQLX_ReadListener;
