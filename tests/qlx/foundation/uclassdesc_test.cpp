#include "qlx/foundation/uclassdesc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>

#include "basekit/cmn/cmn_failure.h"
#include "basekit/cmn/cmn_trace.h"
#include "basekit/sys/sys_file.h"
#include "qlx/foundation/uobject.h"
#include "qlx/views/udynamicarray.h"
#include "tests/support/failing_allocations.h"

// Registered before main like every class of a host; the base comes after the class that names it.
extern ClassDesc gTestBase;
ClassDesc gTestDerived("TestDerived", 24, nullptr, &gTestBase);
ClassDesc gTestBase("TestBase", 16, nullptr);
ClassDesc gTestTwin("TestTwin", 16, nullptr);
ClassDesc gTestTwinAgain("TestTwin", 24, nullptr);

namespace {

/// A class whose constructor allocates twice.
class TestOwner : public TObject {
  public:
    TestOwner() : mFirst(Cmn_AllocateOrFail(1)), mSecond(nullptr) {
        try {
            mSecond = Cmn_AllocateOrFail(1);
        } catch (...) {
            ::operator delete(mFirst);
            throw;
        }
    }
    ~TestOwner() override {
        ::operator delete(mFirst);
        ::operator delete(mSecond);
    }
    void* mFirst;
    void* mSecond;
};

std::vector<std::string> sLines;

} // namespace

TEST(ClassDesc, IdentifiersCountFromOne) {
    // The first class that was registered is the last of the list.
    const ClassDesc* oldest = ClassDesc::fgClassDescList;
    int count = 1;
    for (; oldest->GetNextClassDesc(); oldest = oldest->GetNextClassDesc())
        ++count;
    EXPECT_EQ(oldest->GetClassID(), 1);
    EXPECT_EQ(ClassDesc::fgClassDescList->GetClassID(), ClassDesc::fgNextClassID);
    EXPECT_LE(count, ClassDesc::fgNextClassID);
    EXPECT_FALSE(ClassDesc::IsValidClassID(0));
    EXPECT_TRUE(ClassDesc::IsValidClassID(1));
    EXPECT_TRUE(ClassDesc::IsValidClassID(ClassDesc::fgNextClassID));
    EXPECT_FALSE(ClassDesc::IsValidClassID(static_cast<short>(ClassDesc::fgNextClassID + 1)));
    EXPECT_FALSE(ClassDesc::IsValidClassID(-1));
}

TEST(ClassDesc, BasesAndSubclassesAreWhatWasSaid) {
    EXPECT_EQ(gTestDerived.GetBaseClass(1), &gTestBase);
    EXPECT_EQ(gTestDerived.GetBaseClass(0), nullptr);
    EXPECT_EQ(gTestDerived.GetBaseClass(2), nullptr);
    EXPECT_EQ(gTestBase.GetBaseClass(1), nullptr);

    static ClassDesc sSelf("TestSelf", 8, nullptr, &sSelf);
    EXPECT_EQ(sSelf.GetBaseClass(1), nullptr);
    sSelf.AddBaseClass(&sSelf);
    EXPECT_EQ(sSelf.GetBaseClass(1), nullptr);
    sSelf.AddBaseClass(&gTestDerived);
    sSelf.AddBaseClass(&gTestBase); // there is one
    EXPECT_EQ(sSelf.GetBaseClass(1), &gTestDerived);
    sSelf.AddSubClass(&sSelf);
    EXPECT_EQ(sSelf.GetSubClass(1), nullptr);
    sSelf.AddSubClass(&gTestTwin);
    sSelf.AddSubClass(&gTestTwinAgain);
    sSelf.AddSubClass(&gTestTwin);
    EXPECT_EQ(sSelf.GetSubClass(0), nullptr);
    EXPECT_EQ(sSelf.GetSubClass(1), &gTestTwin);
    EXPECT_EQ(sSelf.GetSubClass(2), &gTestTwinAgain);
    EXPECT_EQ(sSelf.GetSubClass(3), nullptr);

    const short before = sSelf.GetClassID();
    sSelf.Initialize(&gTestBase);
    EXPECT_EQ(sSelf.GetClassID(), before + 1);
    EXPECT_EQ(sSelf.GetBaseClass(1), &gTestBase);
    EXPECT_EQ(sSelf.GetSubClass(1), nullptr);

    static ClassDesc sFilled;
    sFilled.SetFields("TestFilled", 8, nullptr);
    sFilled.Initialize(&sFilled);
    EXPECT_EQ(sFilled.GetBaseClass(1), nullptr);
    EXPECT_EQ(sFilled.GetNameOfClass(), "TestFilled");
    EXPECT_EQ(ClassDesc::fgClassDescList, &sFilled);
    static ClassDesc sRing("TestRing", 8, nullptr, &sFilled);
    sFilled.AddBaseClass(&sRing); // would be its own ancestor
    EXPECT_EQ(sFilled.GetBaseClass(1), nullptr);
}

TEST(ClassDesc, DescendsFromItselfAndItsAncestors) {
    EXPECT_TRUE(gTestDerived.DescendsFrom(&gTestDerived, false));
    EXPECT_TRUE(gTestDerived.DescendsFrom(&gTestBase, true));
    EXPECT_FALSE(gTestBase.DescendsFrom(&gTestDerived, false));
    EXPECT_FALSE(gTestTwin.DescendsFrom(&gTestTwinAgain, false));
    EXPECT_FALSE(gTestTwin.DescendsFrom(nullptr, false));
    TList list;
    EXPECT_TRUE(list.DescendsFrom(&TObject::fgClassDesc));
    EXPECT_EQ(QLX_ObjectCast<TSortedList>(&list), &list);
    TObject object;
    EXPECT_EQ(QLX_ObjectCast<TList>(&object), nullptr);
    EXPECT_EQ(QLX_ObjectCast<TList>(nullptr), nullptr);
}

TEST(ClassDesc, TheIndexNamesEveryClassAndTheOlderOfTwins) {
    ClassDesc::InitUClassDesc();
    EXPECT_EQ(ClassDesc::GetClassDescFromClassName("TestTwin"), &gTestTwin);
    EXPECT_EQ(ClassDesc::GetClassDescFromClassID(gTestTwinAgain.GetClassID()), &gTestTwinAgain);
    EXPECT_EQ(gTestTwin.GetSubClass(1), nullptr);
    const auto countSubclasses = [] {
        int n = 0;
        while (gTestBase.GetSubClass(n + 1))
            ++n;
        return n;
    };
    const int count = countSubclasses();
    EXPECT_GE(count, 1);
    // Subclasses come newest first.
    const ClassDesc& object = TObject::fgClassDesc;
    for (int n = 2; object.GetSubClass(n); ++n)
        EXPECT_GT(object.GetSubClass(n - 1)->GetClassID(), object.GetSubClass(n)->GetClassID());
    ClassDesc::InitUClassDesc(); // once more adds nothing
    EXPECT_EQ(countSubclasses(), count);
}

TEST(ClassDesc, UnknownNamesAnswerNullAndUnknownIdentifiersFail) {
    ClassDesc::InitUClassDesc();
    EXPECT_EQ(ClassDesc::NewByClassName("TNoSuchClass"), nullptr);
    EXPECT_EQ(ClassDesc::GetClassDescFromClassName("TNoSuchClass"), nullptr);
    EXPECT_EQ(ClassDesc::sClassDescListByName.count("TNoSuchClass"), 1u);
    EXPECT_EQ(ClassDesc::NewByClassName("TestBase"), nullptr) << "a class without a factory";
    EXPECT_EQ(ClassDesc::NewByClassID(gTestBase.GetClassID()), nullptr);
    sLines.clear();
    const Cmn_TraceSink previous =
        Cmn_SetTraceSink([](const char* line) { sLines.push_back(line); });
    for (const int id : {0, -5, ClassDesc::fgNextClassID + 1}) {
        try {
            (void)ClassDesc::NewByClassID(static_cast<short>(id));
            ADD_FAILURE() << id;
        } catch (const Cmn_Failure& failure) {
            EXPECT_EQ(failure.GetCode(), -20008);
        }
    }
    Cmn_SetTraceSink(previous);
    ASSERT_EQ(sLines.size(), 3u);
    EXPECT_EQ(sLines[1], "-5");
}

TEST(ClassDesc, LostMemoryRaisesAndLeavesNothingHalfDone) {
    ClassDesc::InitUClassDesc();
    // Leaks show under the address sanitizer.
    EXPECT_EQ(FailEachAllocation(
                  [] { static_cast<TObject*>(ClassDesc::NewByClassName("TList"))->Free(); }, [] {}),
              1);
    EXPECT_EQ(FailEachAllocation(
                  [] { static_cast<TObject*>(QLX_MakeDefault<TestOwner>())->Free(); }, [] {}),
              3);
    TObject object;
    EXPECT_EQ(FailEachAllocation([&] { object.Clone()->Free(); }, [] {}), 1);
    static ClassDesc sBase("TestBaseOfOne", 8, nullptr);
    EXPECT_EQ(FailEachAllocation([&] { sBase.AddSubClass(&gTestTwin); },
                                 [&] { EXPECT_EQ(sBase.GetSubClass(1), nullptr); }),
              1);
    EXPECT_EQ(sBase.GetSubClass(1), &gTestTwin);
}

TEST(ClassIterator, WalksTheRegistryNewestFirstAndUpTheBases) {
    CClassIterator all(ClassDesc::fgClassDescList);
    int count = 0;
    for (all.Reset(); all.More(); all.Advance())
        ++count;
    EXPECT_GE(count, 4);
    EXPECT_EQ(all.NextClassDesc(), nullptr); // at the end it stays there
    EXPECT_EQ(all.FirstClassDesc(), ClassDesc::fgClassDescList);

    CBaseClassIterator bases(&TList::fgClassDesc, true);
    std::vector<std::string> names;
    for (const ClassDesc* d = bases.FirstClassDesc(); bases.More(); d = bases.NextClassDesc())
        names.push_back(d->GetClassName());
    EXPECT_EQ(names, (std::vector<std::string>{"TList", "TSortedList", "TSortedDynamicArray",
                                               "TDynamicArray", "TObject"}));
    CBaseClassIterator nothing(nullptr);
    EXPECT_FALSE(nothing.More());
}

TEST(ClassDesc, TheHierarchyIsALineAClass) {
    ClassDesc::DumpClassHierarchy();
    const std::string text =
        Sys_File::ReadAll(Sys_FileLoc::ApplicationFolder().GetChild("class_hierarchy.txt"));
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    EXPECT_EQ(lines.size(), static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')));
    const auto has = [&](const char* line) {
        return std::find(lines.begin(), lines.end(), line) != lines.end();
    };
    EXPECT_TRUE(has("TObject"));
    EXPECT_TRUE(has("TestDerived:TestBase"));
    EXPECT_TRUE(has("TList:TSortedList,TSortedDynamicArray,TDynamicArray,TObject"));
    std::size_t count = 0;
    for (const ClassDesc* d = ClassDesc::fgClassDescList; d; d = d->GetNextClassDesc(), ++count)
        EXPECT_EQ(lines[count].substr(0, lines[count].find(':')), d->GetClassName());
}

// TObject

namespace {

class Listener : public TObject {
  public:
    explicit Listener(std::vector<std::string>* calls, bool dropsOnFree = true)
        : mCalls(calls), mDropsOnFree(dropsOnFree) {}
    ~Listener() override { mCalls->push_back("destroyed"); }
    void RemoveAllDependencies() override {
        mCalls->push_back("drop");
        TObject::RemoveAllDependencies();
    }
    bool RemoveDependenciesOnFree() override { return mDropsOnFree; }

  private:
    std::vector<std::string>* mCalls; // not owned
    bool mDropsOnFree;
};

} // namespace

TEST(Object, FreeDropsDependenciesUnlessTheClassDoesItself) {
    std::vector<std::string> calls;
    (new Listener(&calls))->Free();
    (new Listener(&calls, /*dropsOnFree*/ false))->Free();
    EXPECT_EQ(calls, (std::vector<std::string>{"drop", "destroyed", "destroyed"}));
}

TEST(Object, CloneIsAnotherObjectWithTheSameBytes) {
    TObject object;
    TObject* const copy = object.Clone();
    EXPECT_NE(copy, &object);
    EXPECT_EQ(copy->GetClassDescDynamic(), object.GetClassDescDynamic());
    EXPECT_EQ(std::memcmp(static_cast<void*>(copy), static_cast<void*>(&object), sizeof object), 0);
    std::string name;
    copy->GetClassName(name);
    EXPECT_EQ(name, "TObject");
    EXPECT_EQ(copy->GetClassSize(), sizeof(TObject));
    copy->Free();
}
