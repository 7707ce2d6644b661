#include "qlx/foundation/udependencyspace.h"

#include <algorithm>
#include <vector>

#include "newfilelibs/cmn/cmn_scratch.h"
#include "qlx/foundation/uobject.h"

namespace {

// Never destroyed: objects may be freed by other static destructors.
TDependencySpace* BuiltIn() {
    static TDependencySpace* const space = new TDependencySpace;
    return space;
}

TDependencySpace* sGlobal = nullptr;
bool sGlobalIsSet = false;

struct Relation {
    TObject* mOther;
    std::int32_t mTag;
};

/// The relations of one object in the order of adding. One of them, the usual number, lies in the
/// entry itself. Plain data: the table moves entries and ends them.
struct Entry {
    TObject* mKey;
    std::uint32_t mCount;
    std::uint32_t mCapacity; // 1: mOne; more: mMore
    union {
        Relation mOne;
        Relation* mMore; // owned
    };

    [[nodiscard]] Relation* begin() noexcept { return mCapacity == 1 ? &mOne : mMore; }
    [[nodiscard]] Relation* end() noexcept { return begin() + mCount; }
    [[nodiscard]] bool Has(const TObject* other) noexcept {
        return std::any_of(begin(), end(),
                           [other](const Relation& r) { return r.mOther == other; });
    }
    void MakeRoomForOne() {
        if (mCount < mCapacity)
            return;
        const std::uint32_t capacity = mCapacity == 1 ? 4 : mCapacity * 2;
        auto* const more = new Relation[capacity];
        std::copy(begin(), end(), more);
        Release();
        mMore = more;
        mCapacity = capacity;
    }
    void Append(const Relation& relation) noexcept { begin()[mCount++] = relation; }
    void Remove(const TObject* other) noexcept {
        Relation* const kept = std::remove_if(
            begin(), end(), [other](const Relation& r) { return r.mOther == other; });
        mCount = static_cast<std::uint32_t>(kept - begin());
    }
    void Release() const noexcept {
        if (mCapacity > 1)
            delete[] mMore;
    }
};

} // namespace

/// Relations by object, in one block: relations come and go with every command that is performed,
/// and every object that is freed is looked up here. Open addressing with linear probing, at most
/// half full; what is removed closes its gap, so that nothing but living entries is ever met.
class TDependencySpace::Table {
  public:
    Table() = default;
    ~Table() {
        for (const Entry& entry : mSlots)
            if (entry.mKey)
                entry.Release();
    }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    /// Null when the object has no relations. Good until the table changes.
    [[nodiscard]] Entry* Find(const TObject* key) noexcept {
        if (mUsed == 0)
            return nullptr;
        Entry& entry = mSlots[SlotOf(key)];
        return entry.mKey ? &entry : nullptr;
    }
    /// The object's entry, made when there is none, with room for one more relation.
    Entry& Need(TObject* key) {
        if ((mUsed + 1) * 2 > mSlots.size())
            Grow();
        Entry& entry = mSlots[SlotOf(key)];
        if (!entry.mKey) {
            entry = Entry{key, 0, 1, {}};
            ++mUsed;
        }
        entry.MakeRoomForOne();
        return entry;
    }
    void RemoveRelation(const TObject* key, const TObject* other) noexcept {
        Entry* const entry = Find(key);
        if (!entry)
            return;
        entry->Remove(other);
        if (entry->mCount == 0)
            Erase(*entry);
    }
    void Erase(Entry& entry) noexcept {
        entry.Release();
        const std::size_t mask = mSlots.size() - 1;
        std::size_t gap = static_cast<std::size_t>(&entry - mSlots.data());
        for (std::size_t slot = (gap + 1) & mask; mSlots[slot].mKey; slot = (slot + 1) & mask) {
            // What was pushed past the gap, or to it, moves up into it.
            const std::size_t home = HomeOf(mSlots[slot].mKey);
            if (((slot - home) & mask) < ((slot - gap) & mask))
                continue;
            mSlots[gap] = mSlots[slot];
            gap = slot;
        }
        mSlots[gap].mKey = nullptr;
        --mUsed;
    }

  private:
    static constexpr int kFirstBits = 6;

    [[nodiscard]] std::size_t HomeOf(const TObject* key) const noexcept {
        // The multiplier is 2 to the 64 over the golden ratio, which spreads what allocators align.
        return static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(key)) *
                   0x9E3779B97F4A7C15U >>
               mShift;
    }
    // Where the object stands or would stand.
    [[nodiscard]] std::size_t SlotOf(const TObject* key) const noexcept {
        std::size_t slot = HomeOf(key);
        while (mSlots[slot].mKey && mSlots[slot].mKey != key)
            slot = (slot + 1) & (mSlots.size() - 1);
        return slot;
    }
    void Grow() {
        const int bits = mSlots.empty() ? kFirstBits : 64 - mShift + 1;
        std::vector<Entry> old(std::size_t{1} << bits, Entry{nullptr, 0, 1, {}});
        old.swap(mSlots);
        mShift = 64 - bits;
        for (const Entry& entry : old)
            if (entry.mKey)
                mSlots[SlotOf(entry.mKey)] = entry;
    }

    std::vector<Entry> mSlots; // a power of two of them
    std::size_t mUsed = 0;
    int mShift = 64 - kFirstBits;
};

TDependencySpace::TDependencySpace()
    : mDependentsByNotifier(std::make_unique<Table>()),
      mNotifiersByDependent(std::make_unique<Table>()) {}

TDependencySpace::~TDependencySpace() = default;

TDependencySpace* TDependencySpace::GetGlobal() { return sGlobalIsSet ? sGlobal : BuiltIn(); }

TDependencySpace* TDependencySpace::SetGlobal(TDependencySpace* space) {
    TDependencySpace* const previous = GetGlobal();
    sGlobal = space;
    sGlobalIsSet = true;
    return previous;
}

void TDependencySpace::AddDependency(TObject* notifier, TObject* dependent, std::int32_t tag) {
    // Room on both sides comes first, so that they stay in step when memory runs out. An entry that
    // was made for nothing is an object without relations.
    Entry& dependents = mDependentsByNotifier->Need(notifier);
    Entry& notifiers = mNotifiersByDependent->Need(dependent);
    const bool isThere =
        dependents.mCount <= notifiers.mCount ? dependents.Has(dependent) : notifiers.Has(notifier);
    if (isThere)
        return;
    dependents.Append({dependent, tag});
    notifiers.Append({notifier, tag});
}

void TDependencySpace::RemoveDependency(TObject* notifier, TObject* dependent) {
    mDependentsByNotifier->RemoveRelation(notifier, dependent);
    mNotifiersByDependent->RemoveRelation(dependent, notifier);
}

void TDependencySpace::RemoveAllDependencies(TObject* object) {
    if (Entry* const entry = mDependentsByNotifier->Find(object)) {
        for (const Relation& dependent : *entry)
            mNotifiersByDependent->RemoveRelation(dependent.mOther, object);
        mDependentsByNotifier->Erase(*entry);
    }
    if (Entry* const entry = mNotifiersByDependent->Find(object)) {
        for (const Relation& notifier : *entry)
            mDependentsByNotifier->RemoveRelation(notifier.mOther, object);
        mNotifiersByDependent->Erase(*entry);
    }
}

void TDependencySpace::Notify(int change, TObject* notifier, TObject* changedBy) {
    Entry* const entry = mDependentsByNotifier->Find(notifier);
    if (!entry)
        return;
    Cmn_Scratch<Relation, 16> dependents;
    dependents.Append(entry->begin(), entry->mCount);
    for (const Relation& dependent : dependents) {
        // A dependent called earlier may have removed this one, or freed it.
        Entry* const now = mDependentsByNotifier->Find(notifier);
        if (!now)
            return;
        if (now->Has(dependent.mOther))
            dependent.mOther->DoUpdate(change, notifier, changedBy, this);
    }
}
