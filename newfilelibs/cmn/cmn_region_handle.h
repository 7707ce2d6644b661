// The members of Cmn_Region. Part of cmn_region.h; include that one.
#pragma once

#include "newfilelibs/cmn/cmn_region.h"

inline constexpr const char* kCmn_RegionSource = "newfilelibs/cmn/cmn_region";

template <class T, class Impl>
Cmn_Region<T, Impl>::Cmn_Region(const Cmn_Rect<T>& rect)
    : Cmn_Region(Finish(NewImpl(Cmn_RegionCore<T>(rect)))) {}

template <class T, class Impl>
bool Cmn_Region<T, Impl>::CheckImpl(int line) const noexcept {
    if (HasImpl())
        return true;
    Cmn_TraceAssert("mImpl", kCmn_RegionSource, line);
    return false;
}

template <class T, class Impl>
template <class... Arguments>
Cmn_RefCountPtr<Impl> Cmn_Region<T, Impl>::NewImpl(const Arguments&... arguments) {
    auto impl = Cmn_RefCountPtr<Impl>::MakeFirst(new (std::nothrow) Impl(arguments...));
    if (!impl)
        Cmn_TraceAssert("newCore", kCmn_RegionSource, kNewCoreLine);
    return impl;
}

// What an operation has built, ready to be read on any thread. An empty one gives its
// implementation back.
template <class T, class Impl>
Cmn_Region<T, Impl> Cmn_Region<T, Impl>::Finish(Cmn_RefCountPtr<Impl>&& impl) noexcept {
    if (!impl || impl->GetCore().IsEmpty())
        return Cmn_Region();
    impl->EditCore().FillCaches();
    return Cmn_Region(std::move(impl));
}

template <class T, class Impl>
Cmn_Region<T, Impl> Cmn_Region<T, Impl>::Combine(CoreOperation operation,
                                                 const Cmn_Region& other) const {
    Cmn_RefCountPtr<Impl> impl = NewImpl();
    if (impl)
        (GetCore().*operation)(impl->EditCore(), other.GetCore());
    return Finish(std::move(impl));
}

// A changed copy.
template <class T, class Impl>
template <class Operation>
Cmn_Region<T, Impl> Cmn_Region<T, Impl>::Change(Operation operation) const {
    Cmn_RefCountPtr<Impl> impl = NewImpl(GetCore());
    if (impl)
        operation(impl->EditCore());
    return Finish(std::move(impl));
}

template <class T, class Impl>
Cmn_Region<T, Impl> Cmn_Region<T, Impl>::Union(const Cmn_Region& other) const {
    return Combine(&Cmn_RegionCore<T>::Union, other);
}

template <class T, class Impl>
Cmn_Region<T, Impl> Cmn_Region<T, Impl>::Union(const Cmn_Rect<T>& rect) const {
    return Change([&](Cmn_RegionCore<T>& core) { core.UniteWith(rect); });
}

template <class T, class Impl>
Cmn_Region<T, Impl> Cmn_Region<T, Impl>::Intersection(const Cmn_Region& other) const {
    if (!GetCore().BoundsOverlap(other.GetCore()))
        return Cmn_Region();
    return Combine(&Cmn_RegionCore<T>::Intersection, other);
}

template <class T, class Impl>
Cmn_Region<T, Impl> Cmn_Region<T, Impl>::Difference(const Cmn_Region& other) const {
    if (GetCore().IsLeftAloneBy(other.GetCore()))
        return Copy();
    return Combine(&Cmn_RegionCore<T>::Difference, other);
}

template <class T, class Impl>
Cmn_Region<T, Impl> Cmn_Region<T, Impl>::Xor(const Cmn_Region& other) const {
    return Combine(&Cmn_RegionCore<T>::Xor, other);
}

template <class T, class Impl>
Cmn_Region<T, Impl> Cmn_Region<T, Impl>::Offset(int dx, int dy) const {
    return Change([&](Cmn_RegionCore<T>& core) { core.Offset(dx, dy); });
}

template <class T, class Impl>
Cmn_Region<T, Impl> Cmn_Region<T, Impl>::Inset(int dx, int dy) const {
    return Change([&](Cmn_RegionCore<T>& core) { core.Inset(dx, dy); });
}

template <class T, class Impl>
Cmn_Region<T, Impl> Cmn_Region<T, Impl>::OffsetWithin(int dx, int dy,
                                                      const Cmn_Rect<T>& within) const {
    return Change([&](Cmn_RegionCore<T>& core) { core.OffsetWithin(dx, dy, within); });
}

template <class T, class Impl>
Cmn_Region<T, Impl> Cmn_Region<T, Impl>::Copy() const {
    return Finish(NewImpl(GetCore()));
}

template <class T, class Impl>
bool Cmn_Region<T, Impl>::IsOnlyOwner() const noexcept {
    return mImpl && mImpl->HasOneReference() && mImpl->MayChange();
}

template <class T, class Impl>
Cmn_Region<T, Impl>& Cmn_Region<T, Impl>::UniteWith(const Cmn_Region& other) {
    if (!IsOnlyOwner())
        return *this = Union(other);
    mImpl->EditCore().UniteWith(other.GetCore());
    mImpl->EditCore().FillCaches();
    return *this;
}

template <class T, class Impl>
Cmn_Region<T, Impl>& Cmn_Region<T, Impl>::UniteWith(const Cmn_Rect<T>& rect) {
    if (!IsOnlyOwner())
        return *this = Union(rect);
    mImpl->EditCore().UniteWith(rect);
    mImpl->EditCore().FillCaches();
    return *this;
}

template <class T, class Impl>
bool Cmn_Region<T, Impl>::IsEmpty() const noexcept {
    return !CheckImpl(kIsEmptyLine) || mImpl->GetCore().IsEmpty();
}

template <class T, class Impl>
bool Cmn_Region<T, Impl>::IsRectangular() const noexcept {
    return GetCore().IsRectangular();
}

template <class T, class Impl>
Cmn_Rect<T> Cmn_Region<T, Impl>::GetBounds() const noexcept {
    Cmn_Rect<T> bounds;
    GetCore().GetBounds(bounds);
    return bounds;
}

template <class T, class Impl>
const Cmn_RectList& Cmn_Region<T, Impl>::GetRectList() const noexcept {
    (void)CheckImpl(kGetRectListLine);
    return GetCore().GetRectList();
}

template <class T, class Impl>
bool Cmn_Region<T, Impl>::ContainsPoint(const Cmn_Point<T>& point) const noexcept {
    return GetCore().ContainsPoint(point);
}

template <class T, class Impl>
bool Cmn_Region<T, Impl>::ContainsRect(const Cmn_Rect<T>& rect) const noexcept {
    return GetCore().ContainsRect(rect);
}

// An empty region may share its implementation with every other one; a native handle must not be
// shared in this way. Returns whether the implementation is this region's (and its copies') own.
template <class T, class Impl>
bool Cmn_Region<T, Impl>::OwnImpl() const {
    if (mImpl.Get() != Impl::GetSharedEmpty())
        return true;
    Cmn_RefCountPtr<Impl> impl = NewImpl();
    if (!impl)
        return false;
    mImpl = std::move(impl);
    return true;
}

template <class T, class Impl>
bool Cmn_Region<T, Impl>::ImplQuery(int selector, void** io) const {
    return CheckImpl(kImplQueryLine) && OwnImpl() && mImpl->ImplQuery(selector, io);
}

template <class T, class Impl>
void* Cmn_Region<T, Impl>::ImplQuery(int selector) const {
    void* answer = nullptr;
    return ImplQuery(selector, &answer) ? answer : nullptr;
}
