#include "classschema.h"

#include "app/misc/qlx_init.h"
#include "basekit/cmn/cmn_assert.h"
#include "basekit/cmn/cmn_trace.h"
#include "qlx/foundation/uobject.h"

namespace {
class Listener : public QLX_PropertyReadListener {
  public:
    Listener(const QLX_RawPropertyContainer& container, ReadProperties& into)
        : mContainer(container), mInto(into) {
        mPrevious = SetListener(this);
    }
    ~Listener() override { SetListener(mPrevious); }
    void PropertyRead(const QLX_PropertyRead& read) override {
        if (read.mContainer != &mContainer)
            return;
        ReadProperty& property = mInto[{std::string(read.mName), read.mType}];
        if (!read.mFound && !property.mHasDefault) {
            property.mHasDefault = true;
            property.mDefault = read.mText;
        }
    }

  private:
    const QLX_RawPropertyContainer& mContainer;
    ReadProperties& mInto;
    QLX_PropertyReadListener* mPrevious;
};

/// Objects that are made to be listened to have no window and no application; what they say about
/// that is nobody's concern here.
class Silence {
  public:
    Silence()
        : mAssertions(Cmn_SetAssertionHandler([](const char*, const char*, int) {})),
          mTrace(Cmn_SetTraceSink([](const char*) {})) {}
    ~Silence() {
        Cmn_SetAssertionHandler(mAssertions);
        Cmn_SetTraceSink(mTrace);
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

  private:
    Cmn_AssertionHandler mAssertions;
    Cmn_TraceSink mTrace;
};

void LetRead(const std::string& className, QLX_RawPropertyContainer& container,
             const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento, ReadProperties& into) {
    const Silence silence;
    auto* const object = static_cast<TObject*>(ClassDesc::NewByClassName(className));
    if (!object)
        return;
    {
        const Listener listener(container, into);
        object->ReadProperties(&container, memento);
    }
    object->Free();
}
} // namespace

ClassSchema::ClassSchema() {
    QLX_Init::Init();
    ClassDesc::InitUClassDesc(); // again, for the classes of libraries that were loaded
}

bool ClassSchema::IsKnown(const std::string& className) const {
    for (const ClassDesc* desc = ClassDesc::fgClassDescList; desc; desc = desc->GetNextClassDesc())
        if (desc->GetClassName() == className)
            return true;
    return false;
}

const ReadProperties& ClassSchema::Get(const std::string& className) {
    const auto found = mSchemas.find(className);
    if (found != mSchemas.end())
        return found->second;
    ReadProperties& schema = mSchemas[className];
    const Cmn_AliasedRefCountPtr<QLX_ViewMemento> memento(
        new QLX_ViewMemento(new QLX_RawPropertyContainer("viewhierarchy"), "schema"));
    QLX_RawPropertyContainer container("view");
    container.SetCurrentFilter(QLX_PropertyFilter::RootFilter());
    LetRead(className, container, memento, schema);
    return schema;
}

ReadProperties ClassSchema::GetFor(const std::string& className,
                                   QLX_RawPropertyContainer& container,
                                   const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) {
    ReadProperties reads = Get(className);
    LetRead(className, container, memento, reads);
    return reads;
}
