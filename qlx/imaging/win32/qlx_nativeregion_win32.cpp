#include "qlx/foundation/qlx_nativeregion.h"

#include <windows.h>

#include <cstring>

static_assert(sizeof(RECT) == sizeof(Cmn_Rect<int>));
static_assert(sizeof(RGNDATAHEADER) == sizeof(QLX_NativeRegionHeader));
static_assert(RDH_RECTANGLES == QLX_NativeRegionHeader::kRectangles);

QLX_NativeRegionHandle QLX_NativeRegion_CreateRect(int left, int top, int right, int bottom) {
    return CreateRectRgn(left, top, right, bottom);
}

QLX_NativeRegionHandle QLX_NativeRegion_CreateRectIndirect(const Cmn_Rect<int>& rect) {
    const RECT native = {rect.left, rect.top, rect.right, rect.bottom};
    return CreateRectRgnIndirect(&native);
}

QLX_NativeRegionHandle QLX_NativeRegion_CreateFromData(std::uint32_t size, const void* block) {
    // Looked at here, because not every system refuses what does not hold together.
    RGNDATAHEADER header;
    if (!block || size < sizeof header)
        return nullptr;
    std::memcpy(&header, block, sizeof header);
    if (header.dwSize != sizeof header || header.iType != RDH_RECTANGLES ||
        header.nCount > (size - sizeof header) / sizeof(RECT))
        return nullptr;
    return ExtCreateRegion(nullptr, size, static_cast<const RGNDATA*>(block));
}

std::uint32_t QLX_NativeRegion_GetData(QLX_NativeRegionHandle handle, std::uint32_t size,
                                       void* block) {
    return handle ? GetRegionData(static_cast<HRGN>(handle), size, static_cast<RGNDATA*>(block))
                  : 0;
}

bool QLX_NativeRegion_Delete(QLX_NativeRegionHandle handle) {
    return handle && DeleteObject(static_cast<HRGN>(handle)) != 0;
}
