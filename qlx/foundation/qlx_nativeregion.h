// The wall to the platform's own regions: five operations over an opaque handle. One platform side
// defines them; on Win32 a handle is an HRGN, elsewhere a plain list of rectangles.
#pragma once

#include "newfilelibs/cmn/cmn_rect.h"

/// A native region; null is none. Freed with QLX_NativeRegion_Delete.
using QLX_NativeRegionHandle = void*;

/// The head of a block of region data; the rectangles follow it as left, top, right, bottom. The
/// layout is that of Win32's RGNDATAHEADER.
struct QLX_NativeRegionHeader {
    static constexpr std::uint32_t kRectangles = 1;

    std::uint32_t mHeaderSize = sizeof(QLX_NativeRegionHeader);
    std::uint32_t mType = kRectangles;
    std::uint32_t mCount = 0;
    std::uint32_t mDataSize = 0; ///< (count + 2) * 16: header and rectangles, in bytes
    Cmn_Rect<int> mBounds;
};
static_assert(sizeof(QLX_NativeRegionHeader) == 32);

// Each answers null, 0 or false when the platform refuses. User-interface thread.

[[nodiscard]] QLX_API QLX_NativeRegionHandle QLX_NativeRegion_CreateRect(int left, int top,
                                                                         int right, int bottom);
[[nodiscard]] QLX_API QLX_NativeRegionHandle
QLX_NativeRegion_CreateRectIndirect(const Cmn_Rect<int>& rect);
/// From a block of size bytes: a header and its rectangles.
[[nodiscard]] QLX_API QLX_NativeRegionHandle QLX_NativeRegion_CreateFromData(std::uint32_t size,
                                                                             const void* block);
/// With a null block the size in bytes that the data takes; else writes it into the block, which
/// holds size bytes, and returns how many were written, or 0 when they do not fit.
QLX_API std::uint32_t QLX_NativeRegion_GetData(QLX_NativeRegionHandle handle, std::uint32_t size,
                                               void* block);
QLX_API bool QLX_NativeRegion_Delete(QLX_NativeRegionHandle handle);
