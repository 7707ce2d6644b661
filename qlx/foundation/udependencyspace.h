// Who is told when an object changes. One space serves all objects of the process.
#pragma once

#include <cstdint>
#include <memory>

#include "basekit/cmn/cmn_types.h"
#include "qlx/foundation/qlx_fwd.h"

/// Relations between objects, found from either side: each object's dependents and each object's
/// notifiers, always in step. Owns none of the objects. User-interface thread only.
class QLX_API TDependencySpace {
  public:
    /// The tag of a relation made by TObject::AddDependent.
    static constexpr std::int32_t kDefaultTag = 2147483646;

    TDependencySpace();
    TDependencySpace(const TDependencySpace&) = delete;
    TDependencySpace& operator=(const TDependencySpace&) = delete;
    virtual ~TDependencySpace();
    /// Records the pair once; a pair that is there already is left alone, and so are nulls.
    virtual void AddDependency(TObject* notifier, TObject* dependent, std::int32_t tag);
    virtual void RemoveDependency(TObject* notifier, TObject* dependent);
    /// Drops every pair in which the object stands on either side.
    virtual void RemoveAllDependencies(TObject* object);
    /// Calls DoUpdate of each dependent, in the order in which they were added. Dependents that are
    /// removed while this runs are not called any more; those that are added are not called yet.
    virtual void Notify(int change, TObject* notifier, TObject* changedBy);

    /// The space in use; null when the host took it away.
    [[nodiscard]] static TDependencySpace* GetGlobal();
    /// Replaces the space and returns the previous one, which the caller then owns (unless it is
    /// the built-in one, which is static). Null switches dependencies off.
    static TDependencySpace* SetGlobal(TDependencySpace* space);

  private:
    class Table;
    void File(TObject* notifier, TObject* dependent, std::int32_t tag);
    void FileNewest();
    std::unique_ptr<Table> mTable;
    TObject* mNewestNotifier = nullptr;  // not owned; null when the newest relation is in the table
    TObject* mNewestDependent = nullptr; // not owned
    std::int32_t mNewestTag = 0;
};
