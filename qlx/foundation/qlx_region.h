// The region type that painters, clips and invalidation take.
#pragma once

#include "newfilelibs/cmn/cmn_region.h"
#include "qlx/foundation/qlx_nativeregion.h"

/// A region's implementation with the platform's own region beside it, made when first asked for,
/// at most once, and deleted with the implementation.
class QLX_API QLX_RegionImpl_HRGN : public Cmn_RegionImpl<int> {
  public:
    enum ESelector : int {
        /// Makes the handle if there is none yet and stores it through io. It stays owned here.
        /// True
        /// when it is not null.
        kSelector_GetHandle = 0,
        /// Reads the list anew from the held handle, in its order, without joining. False without a
        /// handle; a handle that answers no data empties the list.
        kSelector_ReloadFromHandle = 1,
        /// Takes the handle at io over (the one held before is deleted) and reads the list from it.
        /// All regions that share the implementation change. True.
        kSelector_AdoptHandle = 2
    };

    // Written out, so that making one does not clear the room for its list first.
    QLX_RegionImpl_HRGN() noexcept {} // NOLINT(modernize-use-equals-default)
    explicit QLX_RegionImpl_HRGN(const Cmn_RegionCore<int>& core) : Cmn_RegionImpl<int>(core) {}
    QLX_RegionImpl_HRGN(const QLX_RegionImpl_HRGN&) = delete;
    QLX_RegionImpl_HRGN& operator=(const QLX_RegionImpl_HRGN&) = delete;
    ~QLX_RegionImpl_HRGN() override;

    /// Null when there is no memory.
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept;
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* memory, std::size_t size) noexcept;
    static void operator delete(void* memory, const std::nothrow_t&) noexcept {
        operator delete(memory, sizeof(QLX_RegionImpl_HRGN));
    }

    // Slot order is part of the binary interface: append, never move.

    /// User-interface thread. False for an unknown selector or a null io where one is needed.
    /// Running out of memory raises -108 and changes nothing.
    virtual bool ImplQuery(int selector, void** io);

    /// Whether the core may be changed while nobody shares it: there is no handle to go out of
    /// step.
    [[nodiscard]] bool MayChange() const noexcept { return mHandle == nullptr; }
    [[nodiscard]] bool HasHandle() const noexcept { return mHandle != nullptr; }
    /// What empty regions share; never ends and never holds a handle.
    [[nodiscard]] static QLX_RegionImpl_HRGN* GetSharedEmpty() noexcept;

  private:
    [[nodiscard]] QLX_NativeRegionHandle CreateHandle() const;
    bool ReloadFrom(QLX_NativeRegionHandle handle);
    bool Adopt(QLX_NativeRegionHandle handle);

    QLX_NativeRegionHandle mHandle = nullptr; // owned
};

extern template class QLX_API Cmn_Region<int, QLX_RegionImpl_HRGN>;

/// An immutable set of pixels, see Cmn_Region. Equality compares rectangle lists.
class QLX_API QLX_Region : public Cmn_Region<int, QLX_RegionImpl_HRGN> {
  public:
    using Base = Cmn_Region<int, QLX_RegionImpl_HRGN>;

    QLX_Region() noexcept = default;
    explicit QLX_Region(const Cmn_Rect<int>& rect) : Base(rect) {}
    QLX_Region(const Base& other) noexcept : Base(other) {}
    QLX_Region(Base&& other) noexcept : Base(std::move(other)) {}
    QLX_Region(const QLX_Region&) noexcept = default;
    QLX_Region(QLX_Region&&) noexcept = default;
    QLX_Region& operator=(const QLX_Region&) noexcept = default;
    QLX_Region& operator=(QLX_Region&&) noexcept = default;
    ~QLX_Region() override;
};

// Printer: the list.
QLX_API std::ostream& operator<<(std::ostream& out,
                                 const Cmn_Region<int, QLX_RegionImpl_HRGN>& region);
