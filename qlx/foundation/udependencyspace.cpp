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
    std::vector<Relation>& dependents = mDependentsByNotifier[notifier];
    const auto isSame = [dependent](const Relation& r) { return r.mOther == dependent; };
    if (std::any_of(dependents.begin(), dependents.end(), isSame))
        return;
    dependents.push_back({dependent, tag});
    mNotifiersByDependent[dependent].push_back({notifier, tag});
}

void TDependencySpace::Remove(Table& table, TObject* key, TObject* other) {
    const auto entry = table.find(key);
    if (entry == table.end())
        return;
    std::erase_if(entry->second, [other](const Relation& r) { return r.mOther == other; });
    if (entry->second.empty())
        table.erase(entry);
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
        mDependentsByNotifier.erase(object);
    }
    if (const auto entry = mNotifiersByDependent.find(object);
        entry != mNotifiersByDependent.end()) {
        for (const Relation& notifier : entry->second)
            Remove(mDependentsByNotifier, notifier.mOther, object);
        mNotifiersByDependent.erase(object);
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
