// Every class of the library that can be made by name is made, cloned and freed. Under the
// sanitizers this shows an owning member that Clone forgot, a size that is not the class's own, and
// memory that nobody gives back.

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "qlx/foundation/uobject.h"
#include "tests/support/assertion_catcher.h"

namespace {

/// The classes that refuse Clone: they report an assertion and answer null. A class that is added
/// here says so in its header.
const std::set<std::string> kRefuseClone = {
    "TAlert",           // a window
    "TDialog",          // a window
    "TFileDialog",      // a window
    "TMenuLayer",       // the menus that are open, one at a time
    "TPreviewEvent",    // works on the preview that posted it
    "TTextEntryDialog", // a window
    "TToolboxEvent",    // made for one delivery, not to be kept
    "TViewServer",      // belongs to its description
    "TWindow",          // stands for a native window
};

struct Freer {
    void operator()(TObject* object) const { object->Free(); }
};
using Owned = std::unique_ptr<TObject, Freer>;

std::vector<std::string> NamesWithFactory() {
    std::vector<std::string> names;
    for (const ClassDesc* d = ClassDesc::fgClassDescList; d; d = d->GetNextClassDesc())
        names.push_back(d->GetClassName());
    std::sort(names.begin(), names.end());
    return names;
}

void CheckClone(TObject* original) {
    const std::string name = original->GetClassDescDynamic()->GetClassName();
    AssertionCatcher caught;
    const Owned copy(original->Clone());
    const bool refused = kRefuseClone.count(name) != 0;
    EXPECT_EQ(copy == nullptr, refused);
    EXPECT_EQ(!caught.GetFailures().empty(), refused);
    if (!copy)
        return;
    EXPECT_NE(copy.get(), original);
    EXPECT_EQ(copy->GetClassDescDynamic(), original->GetClassDescDynamic());
    // A copy of the copy, so that what the first one left half done shows too.
    const Owned second(copy->Clone());
    EXPECT_NE(second, nullptr);
}

} // namespace

TEST(EveryClass, IsMadeClonedAndFreed) {
    ClassDesc::InitUClassDesc();
    for (const std::string& name : NamesWithFactory()) {
        SCOPED_TRACE(name);
        const Owned object(static_cast<TObject*>(ClassDesc::NewByClassName(name)));
        if (!object)
            continue; // a class without a factory
        const ClassDesc* const d = object->GetClassDescDynamic();
        EXPECT_EQ(d->GetClassName(), name);
        EXPECT_TRUE(object->DescendsFrom(&TObject::fgClassDesc));
        if (const ClassDesc* base = d->GetBaseClass(1)) {
            EXPECT_GE(d->GetClassSize(), base->GetClassSize());
        }
        CheckClone(object.get());
    }
}

TEST(EveryClass, CopiesOutliveTheirOriginals) {
    ClassDesc::InitUClassDesc();
    for (const std::string& name : NamesWithFactory()) {
        SCOPED_TRACE(name);
        Owned object(static_cast<TObject*>(ClassDesc::NewByClassName(name)));
        if (!object || kRefuseClone.count(name) != 0)
            continue;
        const Owned copy(object->Clone());
        object.reset();
        ASSERT_NE(copy, nullptr);
        std::string copied;
        copy->GetClassName(copied);
        EXPECT_EQ(copied, name);
    }
}
