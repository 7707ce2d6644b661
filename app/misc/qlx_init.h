// The framework's start: what has to be done once before the first view is made.
#pragma once

#include "basekit/cmn/cmn_types.h"

/// The initialisation of the framework.
class QLX_API QLX_Init {
  public:
    QLX_Init() = delete;

    /// Indexes the registered classes and registers the numeric entry helpers of the formats that
    /// the framework knows. A host's own helpers, registered before or after, stay. A second call
    /// does nothing. The platform (event loop, windows, painters) is installed by the program.
    static void Init();
};
