// Memory that raises the out-of-memory failure instead of answering null, and the switch by which
// tests make it run out at a chosen allocation.
#pragma once

#include "basekit/cmn/cmn_types.h"

/// Bytes from operator new, to be given back to operator delete; raises -108 when there are none.
[[nodiscard]] QLX_API void* Cmn_AllocateOrFail(std::size_t size);

/// Whether an allocation may be tried: false while a test makes memory run out. For classes that
/// keep blocks back and hand them out again, which counts as allocating.
[[nodiscard]] QLX_API bool Cmn_MayAllocate() noexcept;

/// Grows or shrinks a block that came from here (null for a first one), keeping its bytes. When
/// there is no room the old block stays as it was and the answer is null. Ended with Cmn_FreeBlock.
[[nodiscard]] QLX_API void* Cmn_Reallocate(void* block, std::size_t size);
/// The same, but raises -108 when there is no room.
[[nodiscard]] QLX_API void* Cmn_ReallocateOrFail(void* block, std::size_t size);
QLX_API void Cmn_FreeBlock(void* block) noexcept;

/// Lets so many further calls of the functions above succeed and fails all later ones; a negative
/// count (the state at start) never fails. For tests; one count for the process.
QLX_API void Cmn_FailAllocationsAfter(std::int64_t count);
