#include "qlx/foundation/udependencyspace.h"

#include <algorithm>

#include "qlx/foundation/uobject.h"

namespace {

// Never destroyed: objects may be freed by other static destructors.
TDependencySpace* BuiltIn() {
    static TDependencySpace* const space = new TDependencySpace;
    return space;
}

TDependencySpace* sGlobal = nullptr;
bool sGlobalIsSet = false;

} // namespace

TDependencySpace::~TDependencySpace() = default;

TDependencySpace* TDependencySpace::GetGlobal() { return sGlobalIsSet ? sGlobal : BuiltIn(); }

TDependencySpace* TDependencySpace::SetGlobal(TDependencySpace* space) {
    TDependencySpace* const previous = GetGlobal();
    sGlobal = space;
    sGlobalIsSet = true;
    return previous;
}

void TDependencySpace::AddDependency(TObject* notifier, TObject* dependent, std::int32_t tag) {
    std::vector<Relation>& dependents = Entry(mDependentsByNotifier, notifier);
    const auto isSame = [dependent](const Relation& r) { return r.mOther == dependent; };
    if (std::any_of(dependents.begin(), dependents.end(), isSame))
        return;
    dependents.push_back({dependent, tag});
    Entry(mNotifiersByDependent, dependent).push_back({notifier, tag});
}

// Relations come and go with every command that is performed, so the memory of those that went is
// used again instead of being asked for anew.
std::vector<TDependencySpace::Relation>& TDependencySpace::Entry(Table& table, TObject* key) {
    if (const auto entry = table.find(key); entry != table.end())
        return entry->second;
    if (mSpare.empty())
        return table[key];
    Table::node_type node = std::move(mSpare.back());
    mSpare.pop_back();
    node.key() = key;
    return table.insert(std::move(node)).position->second;
}

void TDependencySpace::Drop(Table& table, Table::iterator entry) {
    constexpr std::size_t kSpares = 8;
    constexpr std::size_t kLargestSpare = 16;
    if (mSpare.capacity() == 0)
        mSpare.reserve(kSpares);
    if (mSpare.size() == kSpares || entry->second.capacity() > kLargestSpare) {
        table.erase(entry);
        return;
    }
    entry->second.clear();
    mSpare.push_back(table.extract(entry));
}

void TDependencySpace::Remove(Table& table, TObject* key, TObject* other) {
    const auto entry = table.find(key);
    if (entry == table.end())
        return;
    std::erase_if(entry->second, [other](const Relation& r) { return r.mOther == other; });
    if (entry->second.empty())
        Drop(table, entry);
}

void TDependencySpace::RemoveDependency(TObject* notifier, TObject* dependent) {
    Remove(mDependentsByNotifier, notifier, dependent);
    Remove(mNotifiersByDependent, dependent, notifier);
}

void TDependencySpace::RemoveAllDependencies(TObject* object) {
    if (const auto entry = mDependentsByNotifier.find(object);
        entry != mDependentsByNotifier.end()) {
        for (const Relation& dependent : entry->second)
            Remove(mNotifiersByDependent, dependent.mOther, object);
        Drop(mDependentsByNotifier, entry);
    }
    if (const auto entry = mNotifiersByDependent.find(object);
        entry != mNotifiersByDependent.end()) {
        for (const Relation& notifier : entry->second)
            Remove(mDependentsByNotifier, notifier.mOther, object);
        Drop(mNotifiersByDependent, entry);
    }
}

void TDependencySpace::Notify(int change, TObject* notifier, TObject* changedBy) {
    const auto entry = mDependentsByNotifier.find(notifier);
    if (entry == mDependentsByNotifier.end())
        return;
    const std::vector<Relation> dependents = entry->second;
    for (const Relation& dependent : dependents) {
        // A dependent called earlier may have removed this one, or freed it.
        const auto now = mDependentsByNotifier.find(notifier);
        if (now == mDependentsByNotifier.end())
            return;
        const auto isSame = [&](const Relation& r) { return r.mOther == dependent.mOther; };
        if (std::any_of(now->second.begin(), now->second.end(), isSame))
            dependent.mOther->DoUpdate(change, notifier, changedBy, this);
    }
}
