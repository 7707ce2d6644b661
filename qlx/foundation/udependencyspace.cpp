#include "qlx/foundation/udependencyspace.h"

#include <algorithm>
#include <vector>

#include "basekit/cmn/cmn_internal.h"
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

/// One side of an object's relations, in the order of adding. One of them, the usual number, lies
/// in the list itself. Plain data: the table moves lists and ends them.
class RelationList {
  public:
    [[nodiscard]] bool IsEmpty() const noexcept { return mCount == 0; }
    [[nodiscard]] std::size_t GetCount() const noexcept { return mCount; }
    [[nodiscard]] Relation* begin() noexcept { return mCapacity == 1 ? &mOne : mMore; }
    [[nodiscard]] Relation* end() noexcept { return begin() + mCount; }
    [[nodiscard]] bool Has(const TObject* other) noexcept {
        return std::any_of(begin(), end(),
                           [other](const Relation& r) { return r.mOther == other; });
    }
    void MakeRoomForOne() {
        if (mCount == mCapacity)
            Grow();
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

  private:
    void Grow() {
        const std::uint32_t capacity = mCapacity == 1 ? 4 : mCapacity * 2;
        auto* const more = new Relation[capacity];
        std::copy(begin(), end(), more);
        Release();
        mMore = more;
        mCapacity = capacity;
    }

    std::uint32_t mCount = 0;
    std::uint32_t mCapacity = 1; // 1: mOne; more: mMore
    union {
        Relation mOne{};
        Relation* mMore; // owned
    };
};

/// What an object has to do with others. A line of the processor's cache.
struct alignas(64) Entry {
    TObject* mKey = nullptr;
    RelationList mDependents;
    RelationList mNotifiers;

    [[nodiscard]] bool IsIdle() const noexcept {
        return mDependents.IsEmpty() && mNotifiers.IsEmpty();
    }
    void Release() const noexcept {
        mDependents.Release();
        mNotifiers.Release();
    }
};

} // namespace

/// Relations by object, in one block: relations come and go with every command that is performed,
/// and every object that is freed is looked up here. Open addressing with linear probing, at most
/// half full. An object that is freed closes its gap; one that has lost its relations otherwise (a
/// command handler between two commands) keeps its entry until the table would have to grow.
class TDependencySpace::Table {
  public:
    Table() = default;
    ~Table() {
        for (const Entry& entry : mSlots)
            entry.Release();
    }
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    /// Null for an object that is not here. Good until the table changes.
    [[nodiscard]] Entry* Find(const TObject* key) noexcept {
        if (mUsed == 0)
            return nullptr;
        Entry& entry = mSlots[SlotOf(key)];
        return entry.mKey ? &entry : nullptr;
    }
    /// Makes room for further objects, and moves the entries if it must.
    void MakeRoomFor(std::size_t count) {
        if ((mUsed + count) * 2 > mSlots.size())
            SweepOrGrow();
    }
    /// The object's entry, made in the room that there is when it is not here yet. Leaves the other
    /// entries where they are.
    Entry& Need(TObject* key) noexcept {
        Entry& entry = mSlots[SlotOf(key)];
        if (!entry.mKey) {
            entry.mKey = key;
            ++mUsed;
        }
        return entry;
    }
    [[nodiscard]] bool IsEmpty() const noexcept { return mUsed == 0; }
    /// Takes out an object, if it is here, and what others have to do with it. Stands alone for the
    /// many objects that are freed while nothing is here.
    QLX_STANDS_ALONE void EraseWithRelations(TObject* object) noexcept {
        Entry* const entry = Find(object);
        if (!entry)
            return;
        for (const Relation& dependent : entry->mDependents)
            Find(dependent.mOther)->mNotifiers.Remove(object);
        for (const Relation& notifier : entry->mNotifiers)
            Find(notifier.mOther)->mDependents.Remove(object);
        Erase(*entry);
    }

  private:
    static constexpr int kFirstBits = 6;

    /// Takes out an object without relations.
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
        mSlots[gap] = Entry{};
        --mUsed;
    }
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
    // Entries without relations go; the block doubles unless that has made it half empty.
    void SweepOrGrow() {
        const std::size_t live = static_cast<std::size_t>(std::count_if(
            mSlots.begin(), mSlots.end(), [](const Entry& e) { return !e.IsIdle(); }));
        const bool suffices = !mSlots.empty() && live * 4 <= mSlots.size();
        const int bits = mSlots.empty() ? kFirstBits : 64 - mShift + (suffices ? 0 : 1);
        std::vector<Entry> old(std::size_t{1} << bits);
        old.swap(mSlots);
        mShift = 64 - bits;
        mUsed = live;
        for (const Entry& entry : old) {
            if (entry.IsIdle())
                entry.Release();
            else
                mSlots[SlotOf(entry.mKey)] = entry;
        }
    }

    std::vector<Entry> mSlots; // a power of two of them
    std::size_t mUsed = 0;
    int mShift = 64 - kFirstBits;
};

TDependencySpace::TDependencySpace() : mTable(std::make_unique<Table>()) {}

TDependencySpace::~TDependencySpace() = default;

namespace {

QLX_STANDS_ALONE void UseBuiltIn() { TDependencySpace::SetGlobal(BuiltIn()); }

} // namespace

TDependencySpace* TDependencySpace::GetGlobal() {
    if (!sGlobalIsSet) [[unlikely]]
        UseBuiltIn();
    return sGlobal;
}

TDependencySpace* TDependencySpace::SetGlobal(TDependencySpace* space) {
    TDependencySpace* const previous = sGlobalIsSet ? sGlobal : BuiltIn();
    sGlobal = space;
    sGlobalIsSet = true;
    return previous;
}

// The newest relation waits outside the table until another one comes or somebody is told of a
// change: that of a command goes again with the next command, and most never get into the table.
void TDependencySpace::AddDependency(TObject* notifier, TObject* dependent, std::int32_t tag) {
    if (!notifier || !dependent)
        return;
    FileNewest();
    mNewestNotifier = notifier;
    mNewestDependent = dependent;
    mNewestTag = tag;
}

void TDependencySpace::FileNewest() {
    if (!mNewestNotifier)
        return;
    File(mNewestNotifier, mNewestDependent, mNewestTag);
    mNewestNotifier = nullptr;
}

void TDependencySpace::File(TObject* notifier, TObject* dependent, std::int32_t tag) {
    // Room on both sides comes first, so that they stay in step when memory runs out. An entry that
    // was made for nothing is an object without relations.
    mTable->MakeRoomFor(2);
    RelationList& dependents = mTable->Need(notifier).mDependents;
    RelationList& notifiers = mTable->Need(dependent).mNotifiers;
    const bool isThere = dependents.GetCount() <= notifiers.GetCount() ? dependents.Has(dependent)
                                                                       : notifiers.Has(notifier);
    if (isThere)
        return;
    dependents.MakeRoomForOne();
    notifiers.MakeRoomForOne();
    dependents.Append({dependent, tag});
    notifiers.Append({notifier, tag});
}

void TDependencySpace::RemoveDependency(TObject* notifier, TObject* dependent) {
    if (mNewestNotifier == notifier && mNewestDependent == dependent)
        mNewestNotifier = nullptr;
    Entry* const notifierEntry = mTable->Find(notifier);
    Entry* const dependentEntry = mTable->Find(dependent);
    if (!notifierEntry || !dependentEntry)
        return;
    notifierEntry->mDependents.Remove(dependent);
    dependentEntry->mNotifiers.Remove(notifier);
}

void TDependencySpace::RemoveAllDependencies(TObject* object) {
    if (mNewestNotifier == object || mNewestDependent == object)
        mNewestNotifier = nullptr;
    if (!mTable->IsEmpty())
        mTable->EraseWithRelations(object);
}

void TDependencySpace::Notify(int change, TObject* notifier, TObject* changedBy) {
    FileNewest();
    Entry* const entry = mTable->Find(notifier);
    if (!entry || entry->mDependents.IsEmpty())
        return;
    Cmn_Scratch<Relation, 16> dependents;
    dependents.Append(entry->mDependents.begin(), entry->mDependents.GetCount());
    for (const Relation& dependent : dependents) {
        // A dependent called earlier may have removed this one, or freed it, or added it again.
        FileNewest();
        Entry* const now = mTable->Find(notifier);
        if (!now)
            return;
        if (now->mDependents.Has(dependent.mOther))
            dependent.mOther->DoUpdate(change, notifier, changedBy, this);
    }
}

// An object's own part, here so that the compiler can merge what the built-in space does into it.

void TObject::Changed(int change, TObject* changedBy) {
    if (TDependencySpace* space = GetDependencySpace())
        space->Notify(change, this, changedBy);
}

void TObject::RemoveAllDependencies() {
    if (TDependencySpace* space = GetDependencySpace())
        space->RemoveAllDependencies(this);
}

bool TObject::RemoveDependenciesOnFree() { return true; }

QLX_MERGES_CALLS void TObject::Free() {
    if (RemoveDependenciesOnFree())
        RemoveAllDependencies();
    delete this;
}

void TObject::AddDependent(TObject* dependent) {
    if (TDependencySpace* space = GetDependencySpace())
        space->AddDependency(this, dependent, TDependencySpace::kDefaultTag);
}

void TObject::RemoveDependent(TObject* dependent) {
    if (TDependencySpace* space = GetDependencySpace())
        space->RemoveDependency(this, dependent);
}

TDependencySpace* TObject::GetDependencySpace() const { return TDependencySpace::GetGlobal(); }
