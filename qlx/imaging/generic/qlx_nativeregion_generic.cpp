#include <cstring>
#include <new>
#include <vector>

#include "qlx/foundation/qlx_nativeregion.h"

// The native region of platforms that have none: the rectangles as they were given.

namespace {

using Rects = std::vector<Cmn_Rect<int>>;

QLX_NativeRegionHandle Create(const Cmn_Rect<int>* rects, std::size_t count) {
    try {
        return new Rects(rects, rects + count);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

QLX_NativeRegionHeader MakeHeader(const Rects& rects) {
    QLX_NativeRegionHeader header;
    header.mCount = static_cast<std::uint32_t>(rects.size());
    header.mDataSize =
        static_cast<std::uint32_t>(sizeof header + rects.size() * sizeof(Cmn_Rect<int>));
    if (!rects.empty())
        header.mBounds = rects.front();
    for (const Cmn_Rect<int>& rect : rects)
        header.mBounds |= rect;
    return header;
}

} // namespace

QLX_NativeRegionHandle QLX_NativeRegion_CreateRect(int left, int top, int right, int bottom) {
    return QLX_NativeRegion_CreateRectIndirect({left, top, right, bottom});
}

QLX_NativeRegionHandle QLX_NativeRegion_CreateRectIndirect(const Cmn_Rect<int>& rect) {
    return Create(&rect, rect.Empty() ? 0 : 1);
}

QLX_NativeRegionHandle QLX_NativeRegion_CreateFromData(std::uint32_t size, const void* block) {
    QLX_NativeRegionHeader header;
    if (!block || size < sizeof header)
        return nullptr;
    std::memcpy(&header, block, sizeof header);
    if (header.mHeaderSize != sizeof header ||
        header.mType != QLX_NativeRegionHeader::kRectangles ||
        header.mCount > (size - sizeof header) / sizeof(Cmn_Rect<int>))
        return nullptr;
    Rects rects;
    try {
        rects.resize(header.mCount);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    if (!rects.empty())
        std::memcpy(static_cast<void*>(rects.data()),
                    static_cast<const char*>(block) + sizeof header,
                    rects.size() * sizeof(Cmn_Rect<int>));
    return Create(rects.data(), rects.size());
}

std::uint32_t QLX_NativeRegion_GetData(QLX_NativeRegionHandle handle, std::uint32_t size,
                                       void* block) {
    if (!handle)
        return 0;
    const Rects& rects = *static_cast<const Rects*>(handle);
    const QLX_NativeRegionHeader header = MakeHeader(rects);
    if (!block)
        return header.mDataSize;
    if (size < header.mDataSize)
        return 0;
    std::memcpy(block, &header, sizeof header);
    if (!rects.empty())
        std::memcpy(static_cast<char*>(block) + sizeof header, rects.data(),
                    rects.size() * sizeof(Cmn_Rect<int>));
    return header.mDataSize;
}

bool QLX_NativeRegion_Delete(QLX_NativeRegionHandle handle) {
    delete static_cast<Rects*>(handle);
    return handle != nullptr;
}
