// TObject, the root of the framework's classes, and the two macros by which a class joins the
// registry.
#pragma once

#include <new>
#include <string>

#include "basekit/cmn/cmn_failure.h"
#include "basekit/cmn/cmn_memory.h"
#include "basekit/cmn/cmn_refcount.h"
#include "qlx/foundation/qlx_fwd.h"
#include "qlx/foundation/uclassdesc.h"

/// Stands in the public part of a concrete class; QLX_DEFINE_CLASS in its source completes it.
#define QLX_DECLARE_CLASS(Class)                                                                   \
    static ClassDesc fgClassDesc;                                                                  \
    static void* _DefaultConstructor();                                                            \
    static const ClassDesc* GetClassDescStatic();                                                  \
    const ClassDesc* GetClassDescDynamic() const override

/// Registers a class that can be made by name. The factory raises -108 when memory runs out.
#define QLX_DEFINE_CLASS(Class, Base)                                                              \
    ClassDesc Class::fgClassDesc(#Class, sizeof(Class), &Class::_DefaultConstructor,               \
                                 &Base::fgClassDesc);                                              \
    void* Class::_DefaultConstructor() { return QLX_MakeDefault<Class>(); }                        \
    const ClassDesc* Class::GetClassDescStatic() { return &fgClassDesc; }                          \
    const ClassDesc* Class::GetClassDescDynamic() const { return &fgClassDesc; }

/// Registers a class that is only a base, or needs arguments: it has no factory.
#define QLX_DEFINE_CLASS_WITHOUT_FACTORY(Class, Base)                                              \
    ClassDesc Class::fgClassDesc(#Class, sizeof(Class), nullptr, &Base::fgClassDesc);              \
    void* Class::_DefaultConstructor() { return nullptr; }                                         \
    const ClassDesc* Class::GetClassDescStatic() { return &fgClassDesc; }                          \
    const ClassDesc* Class::GetClassDescDynamic() const { return &fgClassDesc; }

/// Selects the operator new below.
struct Cmn_AllocateOrFailTag {};
/// Raises -108 instead of throwing std::bad_alloc; the bytes go back through plain operator delete.
QLX_API void* operator new(std::size_t size, Cmn_AllocateOrFailTag);
QLX_API void operator delete(void* bytes, Cmn_AllocateOrFailTag) noexcept;

/// The root of views, handlers, commands, behaviours and containers. Objects are made with new or
/// by class name and ended with Free, which deletes them. User-interface thread only.
class QLX_API TObject {
  public:
    TObject() = default;
    TObject(const TObject&) = default;
    TObject& operator=(const TObject&) = default;

    static ClassDesc fgClassDesc;
    static void* _DefaultConstructor();
    static const ClassDesc* GetClassDescStatic();

    // Slot order is part of the binary interface: append, never move.
    [[nodiscard]] virtual const ClassDesc* GetClassDescDynamic() const;
    virtual ~TObject();
    /// Tells the objects that depend on this one about a change.
    virtual void Changed(int change, TObject* changedBy);
    /// Hears of a change of an object that this one depends on.
    virtual void DoUpdate(int change, TObject* changedObject, TObject* changedBy,
                          TDependencySpace* space);
    /// Drops every dependency in which this object takes part.
    virtual void RemoveAllDependencies();
    /// Whether Free drops the dependencies; true here.
    virtual bool RemoveDependenciesOnFree();
    /// Reads this object on behalf of a view; here it forwards to ReadProperties.
    virtual void ReadContainer(QLX_RawPropertyContainer* container,
                               const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento, TView* view);
    /// Reads the object's own properties; a class calls its base's first.
    virtual void ReadProperties(QLX_RawPropertyContainer* container,
                                const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento);
    /// A copy that the caller ends with Free. A class that owns what it points to overrides this.
    [[nodiscard]] virtual TObject* Clone();
    /// Drops the dependencies and deletes this object.
    virtual void Free();
    /// The object's bytes as they are, in new memory; raises -108.
    [[nodiscard]] virtual TObject* ShallowClone();

    [[nodiscard]] bool DescendsFrom(const ClassDesc* other) const {
        return GetClassDescDynamic()->DescendsFrom(other, false);
    }
    [[nodiscard]] short GetClassID() const { return GetClassDescDynamic()->GetClassID(); }
    void GetClassName(std::string& name) const { name = GetClassDescDynamic()->GetClassName(); }
    [[nodiscard]] std::uint64_t GetClassSize() const {
        return GetClassDescDynamic()->GetClassSize();
    }

    /// The dependent hears of this object's changes until either goes away. Neither owns the other.
    void AddDependent(TObject* dependent);
    void RemoveDependent(TObject* dependent);
    /// The one space that serves all objects; null when there is none.
    [[nodiscard]] TDependencySpace* GetDependencySpace() const;
    void IObject() {}

  private:
    [[maybe_unused]] short mReserved; // copied with the object, set by no one here
};

/// A default instance as an untyped pointer to its TObject; raises -108 when memory runs out for it
/// or for what its constructor makes.
template <class Class>
[[nodiscard]] void* QLX_MakeDefault() {
    try {
        return static_cast<TObject*>(new (Cmn_AllocateOrFailTag{}) Class);
    } catch (const std::bad_alloc&) {
        Cmn_RaiseFailure(kFailure_OutOfMemory);
    }
}

/// The object as T when it is one, else null. T is a registered class.
template <class T>
[[nodiscard]] T* QLX_ObjectCast(TObject* object) {
    return object && object->DescendsFrom(&T::fgClassDesc) ? static_cast<T*>(object) : nullptr;
}
