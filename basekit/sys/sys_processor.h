// What the processor that the program runs on can do beyond what the program was compiled for.
#pragma once

#include "basekit/cmn/cmn_types.h"

/// Whether 256-bit integer instructions (AVX2) may be used: the processor has them and the
/// operating system keeps their registers. Always false on other families of processors.
[[nodiscard]] QLX_API bool Sys_HasAVX2() noexcept;
