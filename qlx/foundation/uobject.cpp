#include "qlx/foundation/uobject.h"

#include <cstring>

void* operator new(std::size_t size, Cmn_AllocateOrFailTag) { return Cmn_AllocateOrFail(size); }

void operator delete(void* bytes, Cmn_AllocateOrFailTag) noexcept { ::operator delete(bytes); }

ClassDesc TObject::fgClassDesc("TObject", sizeof(TObject), &TObject::_DefaultConstructor);

void* TObject::_DefaultConstructor() { return QLX_MakeDefault<TObject>(); }

const ClassDesc* TObject::GetClassDescStatic() { return &fgClassDesc; }

const ClassDesc* TObject::GetClassDescDynamic() const { return &fgClassDesc; }

TObject::~TObject() = default;

void TObject::DoUpdate(int, TObject*, TObject*, TDependencySpace*) {}

void TObject::ReadContainer(QLX_RawPropertyContainer* container,
                            const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento, TView*) {
    ReadProperties(container, memento);
}

void TObject::ReadProperties(QLX_RawPropertyContainer*,
                             const Cmn_AliasedRefCountPtr<QLX_ViewMemento>&) {}

TObject* TObject::Clone() { return ShallowClone(); }

TObject* TObject::ShallowClone() {
    const std::size_t size = static_cast<std::size_t>(GetClassSize());
    void* copy = Cmn_AllocateOrFail(size);
    std::memcpy(copy, static_cast<const void*>(this), size);
    return static_cast<TObject*>(copy);
}
