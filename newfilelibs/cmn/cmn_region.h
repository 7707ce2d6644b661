// Regions: exact sets of pixels as lists of disjoint rectangles. Three layers: Cmn_RegionCore holds
// the list and knows the algorithms, Cmn_RegionImpl shares a core by reference count, and
// Cmn_Region is the value that everybody passes around.
//
// The lists themselves are part of the contract, cuts and order included: two regions that cover
// the same pixels with differently cut lists are unequal, and what draws or saves a list may rely
// on it.
#pragma once

#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_refcount.h"
#include "newfilelibs/cmn/cmn_interval.h"
#include "newfilelibs/cmn/cmn_rectlist.h"

#include <new>
#include <utility>

struct Cmn_UnjoinedRects;

/// A region's value, see the specialisation for int.
template <class T>
class Cmn_RegionCore;
/// A shared core, see the specialisation for int.
template <class T>
class Cmn_RegionImpl;

/// A region's value: plain data, changed in place, one thread at a time (GetBounds of a const core
/// fills its cache). Results go into a core of the caller's that must start empty and be none of
/// the operands.
template <>
class QLX_API Cmn_RegionCore<int> {
  public:
    enum EFlags : std::uint32_t {
        kFlag_BoundsStale = 1, ///< the cached bounds must be computed before use
        kFlag_NoJoining = 2    ///< the joining pass does nothing here
    };

    /// Empty: zero bounds, no flags.
    Cmn_RegionCore() noexcept = default;
    /// One rectangle, or empty for an empty one. The rectangle passes Cmn_Interval::CheckRect
    /// first.
    explicit Cmn_RegionCore(const Cmn_Rect<int>& rect);

    // Binary operations

    /// A copy of the other operand's list when one is empty.
    void Union(Cmn_RegionCore& result, const Cmn_RegionCore& other) const;
    void Intersection(Cmn_RegionCore& result, const Cmn_RegionCore& other) const;
    /// This without the other; with an empty other a copy of this one's list.
    void Difference(Cmn_RegionCore& result, const Cmn_RegionCore& other) const;
    void Xor(Cmn_RegionCore& result, const Cmn_RegionCore& other) const;

    /// Union with one rectangle.
    void Union(Cmn_RegionCore& result, const Cmn_Rect<int>& rect) const;
    /// Union into this core itself, with the same list as those above.
    void UniteWith(const Cmn_RegionCore& other);
    void UniteWith(const Cmn_Rect<int>& rect) {
        if (Cmn_Interval::HasPlainSize(rect))
            Unite(rect);
        else
            UniteUnusual(rect);
    }

    // Changes

    /// Moves every rectangle, each edge held at the type's limits, so rectangles may be flattened
    /// there. Cuts and order stay.
    void Offset(int dx, int dy) noexcept;
    /// Shrinks every rectangle by itself (negative amounts grow it): abutting rectangles come
    /// apart. Edges wrap on overflow.
    void Inset(int dx, int dy) noexcept;
    /// Scrolls what lies inside `within`: it moves by the distance and is clipped to `within`; what
    /// lies outside stays.
    void OffsetWithin(int dx, int dy, const Cmn_Rect<int>& within);
    /// Empties the list and zeroes bounds and flags.
    void Clear() noexcept;
    /// Replaces the list by these rectangles, as they stand: neither joined nor sorted. For lists
    /// that come from outside; the rectangles may even overlap or be empty.
    void AssignRects(const Cmn_Rect<int>* rects, std::size_t count);

    // Queries

    /// All zeros when empty.
    void GetBounds(Cmn_Rect<int>& bounds) const noexcept {
        if ((mFlags & kFlag_BoundsStale) != 0)
            FillBounds();
        bounds = (mFlags & kFlag_BoundsStale) != 0 ? Cmn_Rect<int>() : mBounds;
    }
    [[nodiscard]] bool IsEmpty() const noexcept { return mRects.empty(); }
    /// No rectangle or one.
    [[nodiscard]] bool IsRectangular() const noexcept { return mRects.size() <= 1; }
    /// The same list, not only the same pixels.
    [[nodiscard]] bool IsEqual(const Cmn_RegionCore& other) const noexcept {
        return mRects == other.mRects;
    }
    [[nodiscard]] bool ContainsPoint(const Cmn_Point<int>& point) const noexcept;
    /// Whether the rectangle touches the region: some pixel is in both. False for an empty one.
    [[nodiscard]] bool ContainsRect(const Cmn_Rect<int>& rect) const noexcept;
    /// Whether the bounds overlap; without that the regions have no pixel in common.
    [[nodiscard]] bool BoundsOverlap(const Cmn_RegionCore& other) const noexcept {
        if (mRects.size() == 1 && other.mRects.size() == 1) // nearer in memory than the bounds
            return mRects[0].Overlaps(other.mRects[0]);
        if (((mFlags | other.mFlags) & kFlag_BoundsStale) != 0 &&
            (!HasFreshBounds() || !other.HasFreshBounds()))
            return false;
        return mBounds.Overlaps(other.mBounds);
    }
    /// Whether the difference to the other is seen at once to be this core's list as it stands.
    [[nodiscard]] bool IsLeftAloneBy(const Cmn_RegionCore& other) const noexcept {
        return !BoundsOverlap(other) && IsKnown(kKnown_Joined);
    }

    /// Computes what queries would compute or do without, so that from now on reading changes
    /// nothing and any thread may do it.
    void FillCaches() noexcept {
        if ((mFlags & kFlag_BoundsStale) != 0)
            FillBounds();
        mRects.FillReach();
    }

    [[nodiscard]] const Cmn_RectList& GetRectList() const noexcept { return mRects; }
    [[nodiscard]] std::uint32_t GetFlags() const noexcept { return mFlags; }
    void SetNoJoining(bool noJoining) noexcept {
        mFlags = noJoining ? mFlags | kFlag_NoJoining : mFlags & ~std::uint32_t{kFlag_NoJoining};
    }

  protected:
    /// Merges rectangles that share a whole edge, until none is left to merge, and sorts; marks the
    /// bounds stale. Nothing more for fewer than two rectangles or with kFlag_NoJoining.
    void Pass_Join();
    /// By top, then left.
    void Pass_SortRects();

    // The order is a promise to hosts.
    Cmn_RectList mRects;
    mutable Cmn_Rect<int> mBounds;
    mutable std::uint32_t mFlags = 0;

  private:
    // What is known of the list besides, so that operations need not find it out again.
    enum EKnown : std::uint32_t {
        kKnown_Disjoint = 1, // no two rectangles overlap and none is empty
        kKnown_Joined = 2    // and no two are to be merged, and they are sorted
    };

    [[nodiscard]] bool IsKnown(EKnown what) const noexcept { return (mKnown & what) != 0; }
    void FillBounds() const noexcept;
    // Fills stale ones; those of an empty list stay stale.
    [[nodiscard]] bool HasFreshBounds() const noexcept {
        if ((mFlags & kFlag_BoundsStale) != 0)
            FillBounds();
        return (mFlags & kFlag_BoundsStale) == 0;
    }
    void CopyFrom(const Cmn_RegionCore& other);
    // One that is not flat.
    [[nodiscard]] bool IsOneRectangle() const noexcept {
        return mRects.size() == 1 && !mRects[0].Empty();
    }
    void Unite(const Cmn_Rect<int>& rect);
    void UniteUnusual(const Cmn_Rect<int>& rect);
    void UniteSlowly(const Cmn_Rect<int>& rect);
    void UniteLists(Cmn_RegionCore& result, const Cmn_RegionCore& other) const;
    void FinishFrom(Cmn_UnjoinedRects& unjoined);
    void FinishJoined() noexcept;
    friend struct Cmn_RectOperand;

    std::uint32_t mKnown = kKnown_Disjoint | kKnown_Joined;
};

/// A shared core. Not changed any more once the operation that built it has returned.
template <>
class QLX_API Cmn_RegionImpl<int> : public Cmn_RefCountObject {
  public:
    Cmn_RegionImpl() noexcept = default;
    explicit Cmn_RegionImpl(const Cmn_Rect<int>& rect) : mCore(rect) {}
    explicit Cmn_RegionImpl(const Cmn_RegionCore<int>& core) : mCore(core) {}
    ~Cmn_RegionImpl() override;

    [[nodiscard]] const Cmn_RegionCore<int>& GetCore() const noexcept { return mCore; }
    /// For the operation that builds the implementation.
    [[nodiscard]] Cmn_RegionCore<int>& EditCore() noexcept { return mCore; }

  protected:
    Cmn_RegionCore<int> mCore;
};

/// A region value. Copies share one implementation; every operation makes a new region. Regions may
/// be read, copied and ended on any thread; one and the same object is assigned to by one thread at
/// a time, like any value.
///
/// A region without an implementation (moved from, or made when memory ran out) acts as an empty
/// one, and its queries report it as a trace assertion.
///
/// Impl derives from Cmn_RegionImpl<T>, is made empty or from a core, and offers
/// `bool ImplQuery(int selector, void** io)`, `bool MayChange()` (nothing beside the core would
/// have to follow) and a static `Impl* GetSharedEmpty()`.
template <class T, class Impl>
class Cmn_Region {
  public:
    Cmn_Region() noexcept : mImpl(Impl::GetSharedEmpty()) {}
    explicit Cmn_Region(const Cmn_Rect<T>& rect);
    Cmn_Region(const Cmn_Region&) noexcept = default;
    Cmn_Region(Cmn_Region&&) noexcept = default;
    Cmn_Region& operator=(const Cmn_Region&) noexcept = default;
    Cmn_Region& operator=(Cmn_Region&&) noexcept = default;
    virtual ~Cmn_Region() = default;

    // Operations: each returns a new region

    [[nodiscard]] Cmn_Region Union(const Cmn_Region& other) const;
    [[nodiscard]] Cmn_Region Union(const Cmn_Rect<T>& rect) const;
    [[nodiscard]] Cmn_Region Intersection(const Cmn_Region& other) const;
    /// This without the other.
    [[nodiscard]] Cmn_Region Difference(const Cmn_Region& other) const;
    [[nodiscard]] Cmn_Region Xor(const Cmn_Region& other) const;
    /// Edges hold at the limits of the coordinates.
    [[nodiscard]] Cmn_Region Offset(int dx, int dy) const;
    /// Every rectangle of the list shrinks by itself, so abutting ones come apart.
    [[nodiscard]] Cmn_Region Inset(int dx, int dy) const;
    /// What lies inside `within` moves and is clipped to it; what lies outside stays.
    [[nodiscard]] Cmn_Region OffsetWithin(int dx, int dy, const Cmn_Rect<T>& within) const;
    /// An own copy of the list.
    [[nodiscard]] Cmn_Region Copy() const;

    // Accumulating: the same as assigning the result, without a new implementation where this
    // region's is not shared and has no native handle.

    Cmn_Region& UniteWith(const Cmn_Region& other);
    Cmn_Region& UniteWith(const Cmn_Rect<T>& rect);

    // Queries

    [[nodiscard]] bool IsEmpty() const noexcept;
    /// No rectangle or one.
    [[nodiscard]] bool IsRectangular() const noexcept;
    [[nodiscard]] Cmn_Rect<T> GetBounds() const noexcept;
    /// Disjoint rectangles by top, then left. Lives as long as some copy of this region.
    [[nodiscard]] const Cmn_RectList& GetRectList() const noexcept;
    [[nodiscard]] bool ContainsPoint(const Cmn_Point<T>& point) const noexcept;
    /// Whether the rectangle touches the region: some pixel is in both. False for an empty one.
    [[nodiscard]] bool ContainsRect(const Cmn_Rect<T>& rect) const noexcept;
    /// Compares lists: the same pixels cut differently are unequal.
    [[nodiscard]] friend bool operator==(const Cmn_Region& a, const Cmn_Region& b) noexcept {
        return a.mImpl == b.mImpl || a.GetCore().IsEqual(b.GetCore());
    }

    // Native form: user-interface thread only

    /// See QLX_RegionImpl_HRGN for the selectors. False for an unknown one.
    bool ImplQuery(int selector, void** io) const;
    /// The pointer that the query answers with, or null.
    void* ImplQuery(int selector) const;

  protected:
    /// Shares an implementation.
    explicit Cmn_Region(Cmn_RefCountPtr<Impl> impl) noexcept : mImpl(std::move(impl)) {}

  private:
    // The lines that hosts' trace readers know these reports by.
    static constexpr int kNewCoreLine = 850;
    static constexpr int kGetRectListLine = 906;
    static constexpr int kIsEmptyLine = 921;
    static constexpr int kImplQueryLine = 1003;

    [[nodiscard]] bool HasImpl() const noexcept { return mImpl && mImpl->GetReferenceCount() >= 0; }
    [[nodiscard]] bool CheckImpl(int line) const noexcept;
    [[nodiscard]] const Cmn_RegionCore<T>& GetCore() const noexcept {
        return HasImpl() ? mImpl->GetCore() : Impl::GetSharedEmpty()->GetCore();
    }
    template <class... Arguments>
    [[nodiscard]] static Cmn_RefCountPtr<Impl> NewImpl(const Arguments&... arguments);
    [[nodiscard]] bool OwnImpl() const;
    [[nodiscard]] bool IsOnlyOwner() const noexcept;
    [[nodiscard]] static Cmn_Region Finish(Cmn_RefCountPtr<Impl>&& impl) noexcept;
    using CoreOperation = void (Cmn_RegionCore<T>::*)(Cmn_RegionCore<T>& result,
                                                      const Cmn_RegionCore<T>& other) const;
    [[nodiscard]] Cmn_Region Combine(CoreOperation operation, const Cmn_Region& other) const;
    template <class Operation>
    [[nodiscard]] Cmn_Region Change(Operation operation) const;

    mutable Cmn_RefCountPtr<Impl>
        mImpl; // counted; mutable for the first native query of an empty region
};

#include "newfilelibs/cmn/cmn_region_handle.h"
