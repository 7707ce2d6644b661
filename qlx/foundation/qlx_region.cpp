#include "qlx/foundation/qlx_region.h"

#include <atomic>
#include <cstring>
#include <ostream>

#include "basekit/cmn/cmn_memory.h"

namespace {

// Deliberate: one buffer for all regions, grown when too small and never shrunk, so that reading
// many handles in a row allocates once. Made on first use; part of the user-interface thread's
// state.
Cmn_Rect<int>* sReadBuffer = nullptr;
std::size_t sReadBufferSize = 0;

constexpr std::size_t kHeaderRects = sizeof(QLX_NativeRegionHeader) / sizeof(Cmn_Rect<int>);
static_assert(kHeaderRects * sizeof(Cmn_Rect<int>) == sizeof(QLX_NativeRegionHeader));

// Room for at least that many bytes, aligned for rectangles.
Cmn_Rect<int>* GetReadBuffer(std::size_t size) {
    if (sReadBufferSize < size) {
        sReadBuffer = static_cast<Cmn_Rect<int>*>(Cmn_ReallocateOrFail(sReadBuffer, size));
        sReadBufferSize = size;
    }
    return sReadBuffer;
}

// The block of the implementation that ended last, for the next one: where regions are accumulated
// by value, each step makes one and ends one. Threads take it and put it back whole.
constinit std::atomic<void*> sSpare{nullptr};

// The address sanitizer is to see every end.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kKeepsSpare = false;
#else
constexpr bool kKeepsSpare = true;
#endif

void* TakeSpare() noexcept {
    return sSpare.load(std::memory_order_relaxed)
               ? sSpare.exchange(nullptr, std::memory_order_acquire)
               : nullptr;
}

bool KeepSpare(void* memory) noexcept {
    void* none = nullptr;
    return kKeepsSpare && !sSpare.load(std::memory_order_relaxed) &&
           sSpare.compare_exchange_strong(none, memory, std::memory_order_release,
                                          std::memory_order_relaxed);
}

QLX_NativeRegionHeader MakeHeader(std::size_t count, const Cmn_Rect<int>& bounds) {
    QLX_NativeRegionHeader header;
    header.mCount = static_cast<std::uint32_t>(count);
    header.mDataSize = static_cast<std::uint32_t>((count + kHeaderRects) * sizeof(Cmn_Rect<int>));
    header.mBounds = bounds;
    return header;
}

} // namespace

QLX_RegionImpl_HRGN::~QLX_RegionImpl_HRGN() {
    if (mHandle)
        QLX_NativeRegion_Delete(mHandle);
}

void* QLX_RegionImpl_HRGN::operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (!Cmn_MayAllocate())
        return nullptr;
    void* spare = size == sizeof(QLX_RegionImpl_HRGN) ? TakeSpare() : nullptr;
    return spare ? spare : ::operator new(size, std::nothrow);
}

void QLX_RegionImpl_HRGN::operator delete(void* memory, std::size_t size) noexcept {
    if (size != sizeof(QLX_RegionImpl_HRGN) || !KeepSpare(memory))
        ::operator delete(memory);
}

QLX_RegionImpl_HRGN* QLX_RegionImpl_HRGN::GetSharedEmpty() noexcept {
    // Never destroyed: static regions of hosts may outlive any static object here.
    alignas(QLX_RegionImpl_HRGN) static std::byte sStorage[sizeof(QLX_RegionImpl_HRGN)];
    static QLX_RegionImpl_HRGN* const sEmpty = [] {
        auto* empty = new (static_cast<void*>(sStorage)) QLX_RegionImpl_HRGN;
        empty->MakePermanent();
        return empty;
    }();
    return sEmpty;
}

bool QLX_RegionImpl_HRGN::ImplQuery(int selector, void** io) {
    switch (selector) {
    case kSelector_GetHandle:
        if (!io)
            return false;
        if (!mHandle)
            mHandle = CreateHandle();
        *io = mHandle;
        return mHandle != nullptr;
    case kSelector_ReloadFromHandle:
        return mHandle && ReloadFrom(mHandle);
    case kSelector_AdoptHandle:
        return io && Adopt(*io);
    default:
        return false;
    }
}

QLX_NativeRegionHandle QLX_RegionImpl_HRGN::CreateHandle() const {
    const Cmn_RectList& rects = mCore.GetRectList();
    if (rects.empty())
        return QLX_NativeRegion_CreateRect(0, 0, 0, 0);
    if (rects.size() == 1)
        return QLX_NativeRegion_CreateRectIndirect(rects[0]);
    Cmn_Rect<int> bounds;
    mCore.GetBounds(bounds);
    const QLX_NativeRegionHeader header = MakeHeader(rects.size(), bounds);
    Cmn_RectList block;
    block.Resize(kHeaderRects + rects.size());
    std::memcpy(static_cast<void*>(block.Edit()), &header, sizeof header);
    std::copy(rects.begin(), rects.end(), block.Edit() + kHeaderRects);
    return QLX_NativeRegion_CreateFromData(header.mDataSize, block.data());
}

bool QLX_RegionImpl_HRGN::ReloadFrom(QLX_NativeRegionHandle handle) {
    const std::uint32_t size = QLX_NativeRegion_GetData(handle, 0, nullptr);
    if (size == 0) {
        mCore.Clear();
        return true;
    }
    Cmn_Rect<int>* buffer = GetReadBuffer(size);
    if (QLX_NativeRegion_GetData(handle, size, buffer) == 0) {
        mCore.Clear();
        return true;
    }
    QLX_NativeRegionHeader header;
    std::memcpy(&header, static_cast<const void*>(buffer), sizeof header);
    mCore.AssignRects(buffer + kHeaderRects, header.mCount);
    return true;
}

bool QLX_RegionImpl_HRGN::Adopt(QLX_NativeRegionHandle handle) {
    if (handle)
        ReloadFrom(handle); // first: when it raises, nothing has changed
    if (mHandle && mHandle != handle)
        QLX_NativeRegion_Delete(mHandle);
    mHandle = handle;
    return true;
}

template class Cmn_Region<int, QLX_RegionImpl_HRGN>;

QLX_Region::~QLX_Region() = default;

std::ostream& operator<<(std::ostream& out, const Cmn_Region<int, QLX_RegionImpl_HRGN>& region) {
    return out << region.GetRectList();
}
