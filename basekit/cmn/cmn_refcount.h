// Intrusive reference counting. An object is born with a count of zero; the first pointer to it
// makes it one, and the last pointer to go deletes it. Counts are atomic, so pointers to one object
// may be copied and dropped on any thread; what the object itself allows is its own matter. Objects
// that never end, such as what all empty values share, are not counted at all.
#pragma once

#include <atomic>
#include <utility>

#include "basekit/cmn/cmn_types.h"

/// The base of what is shared by count. Copies of an object start with a count of their own.
class QLX_API Cmn_RefCountObject {
  public:
    Cmn_RefCountObject() noexcept = default;
    Cmn_RefCountObject(const Cmn_RefCountObject&) noexcept {}
    Cmn_RefCountObject& operator=(const Cmn_RefCountObject&) noexcept { return *this; }
    virtual ~Cmn_RefCountObject();

    void AddReference() const noexcept {
        if (!IsPermanent())
            mCount.fetch_add(1, std::memory_order_relaxed);
    }

    /// AddReference for an object that no other thread knows yet.
    void AddFirstReference() const noexcept { mCount.store(1, std::memory_order_relaxed); }

    /// Drops one reference and deletes the object with the last one.
    void RemoveReference() const noexcept {
        // Whoever holds the only reference is alone with the object, so nothing need be atomic.
        const std::int32_t count = mCount.load(std::memory_order_acquire);
        if (count == 1 ||
            (count < kPermanent && mCount.fetch_sub(1, std::memory_order_acq_rel) == 1))
            Destroy();
    }

    /// Ends counting: the object is there for good. Before any other thread knows it.
    void MakePermanent() noexcept { mCount.store(kPermanent, std::memory_order_relaxed); }
    [[nodiscard]] bool IsPermanent() const noexcept { return GetReferenceCount() >= kPermanent; }

    /// The number of references; negative once the object is being destroyed, and without meaning
    /// for a permanent one.
    [[nodiscard]] std::int32_t GetReferenceCount() const noexcept {
        return mCount.load(std::memory_order_relaxed);
    }

    /// Whether the caller's reference is the only one, so that it alone sees what it changes.
    [[nodiscard]] bool HasOneReference() const noexcept {
        return mCount.load(std::memory_order_acquire) == 1;
    }

    /// Whether the object may be handed to further owners; true at birth.
    [[nodiscard]] bool IsShareable() const noexcept { return mShareable; }
    void SetShareable(bool shareable) noexcept { mShareable = shareable; }

  private:
    static constexpr std::int32_t kPermanent = INT32_MAX / 2;

    void Destroy() const noexcept;

    mutable std::atomic<std::int32_t> mCount{0};
    bool mShareable = true;
};

/// A counted pointer, one pointer wide. T derives from Cmn_RefCountObject and is complete where the
/// pointer is copied or destroyed.
template <class T>
class Cmn_RefCountPtr {
  public:
    constexpr Cmn_RefCountPtr() noexcept = default;
    constexpr Cmn_RefCountPtr(std::nullptr_t) noexcept {}
    /// Adds a reference.
    explicit Cmn_RefCountPtr(T* object) noexcept : mObject(object) { Add(); }
    /// The first pointer to an object that was just made, or null.
    [[nodiscard]] static Cmn_RefCountPtr MakeFirst(T* object) noexcept {
        Cmn_RefCountPtr pointer;
        if (object)
            object->AddFirstReference();
        pointer.mObject = object;
        return pointer;
    }
    Cmn_RefCountPtr(const Cmn_RefCountPtr& other) noexcept : mObject(other.mObject) { Add(); }
    Cmn_RefCountPtr(Cmn_RefCountPtr&& other) noexcept
        : mObject(std::exchange(other.mObject, nullptr)) {}
    template <class U>
    requires std::is_convertible_v<U*, T*> Cmn_RefCountPtr(const Cmn_RefCountPtr<U>& other)
    noexcept : mObject(other.Get()) { Add(); }
    template <class U>
    requires std::is_convertible_v<U*, T*> Cmn_RefCountPtr(Cmn_RefCountPtr<U>&& other)
    noexcept : mObject(other.Detach()) {}
    ~Cmn_RefCountPtr() { Remove(); }

    Cmn_RefCountPtr& operator=(Cmn_RefCountPtr other) noexcept {
        std::swap(mObject, other.mObject);
        return *this;
    }

    [[nodiscard]] T* Get() const noexcept { return mObject; }
    T* operator->() const noexcept { return mObject; }
    T& operator*() const noexcept { return *mObject; }
    explicit operator bool() const noexcept { return mObject != nullptr; }
    void Reset() noexcept { *this = Cmn_RefCountPtr(); }
    /// Hands the object over together with this pointer's reference, and points at nothing.
    [[nodiscard]] T* Detach() noexcept { return std::exchange(mObject, nullptr); }

    friend bool operator==(const Cmn_RefCountPtr& a, const Cmn_RefCountPtr& b) noexcept {
        return a.mObject == b.mObject;
    }

  private:
    void Add() const noexcept {
        if (mObject)
            mObject->AddReference();
    }
    void Remove() const noexcept {
        if (mObject)
            mObject->RemoveReference();
    }

    T* mObject = nullptr; // counted
};

/// A counted pointer that keeps the object and, apart from it, the counted owner, so it can be
/// copied and destroyed where T is only declared. Two pointers wide.
template <class T>
class Cmn_AliasedRefCountPtr {
  public:
    constexpr Cmn_AliasedRefCountPtr() noexcept = default;
    constexpr Cmn_AliasedRefCountPtr(std::nullptr_t) noexcept {}
    /// Adds a reference to an object that is counted itself.
    explicit Cmn_AliasedRefCountPtr(T* object) noexcept : mObject(object), mOwner(object) { Add(); }
    /// Points at a part of something counted; adds a reference to the whole.
    Cmn_AliasedRefCountPtr(T* object, const Cmn_RefCountObject* owner) noexcept
        : mObject(object), mOwner(owner) {
        Add();
    }
    Cmn_AliasedRefCountPtr(const Cmn_AliasedRefCountPtr& other) noexcept
        : mObject(other.mObject), mOwner(other.mOwner) {
        Add();
    }
    Cmn_AliasedRefCountPtr(Cmn_AliasedRefCountPtr&& other) noexcept
        : mObject(std::exchange(other.mObject, nullptr)),
          mOwner(std::exchange(other.mOwner, nullptr)) {}
    template <class U>
    requires std::is_convertible_v<U*, T*>
    Cmn_AliasedRefCountPtr(const Cmn_AliasedRefCountPtr<U>& other)
    noexcept : mObject(other.Get()), mOwner(other.GetOwner()) { Add(); }
    template <class U>
    requires std::is_convertible_v<U*, T*> Cmn_AliasedRefCountPtr(const Cmn_RefCountPtr<U>& other)
    noexcept : mObject(other.Get()), mOwner(other.Get()) { Add(); }
    template <class U>
    requires std::is_convertible_v<U*, T*> Cmn_AliasedRefCountPtr(Cmn_RefCountPtr<U>&& other)
    noexcept : mObject(other.Get()), mOwner(other.Detach()) {}
    ~Cmn_AliasedRefCountPtr() {
        if (mOwner)
            mOwner->RemoveReference();
    }

    Cmn_AliasedRefCountPtr& operator=(Cmn_AliasedRefCountPtr other) noexcept {
        std::swap(mObject, other.mObject);
        std::swap(mOwner, other.mOwner);
        return *this;
    }

    [[nodiscard]] T* Get() const noexcept { return mObject; }
    [[nodiscard]] const Cmn_RefCountObject* GetOwner() const noexcept { return mOwner; }
    T* operator->() const noexcept { return mObject; }
    T& operator*() const noexcept { return *mObject; }
    explicit operator bool() const noexcept { return mObject != nullptr; }
    void Reset() noexcept { *this = Cmn_AliasedRefCountPtr(); }

    friend bool operator==(const Cmn_AliasedRefCountPtr& a,
                           const Cmn_AliasedRefCountPtr& b) noexcept {
        return a.mObject == b.mObject;
    }

  private:
    void Add() const noexcept {
        if (mOwner)
            mOwner->AddReference();
    }

    T* mObject = nullptr;                       // kept alive by mOwner
    const Cmn_RefCountObject* mOwner = nullptr; // counted
};
