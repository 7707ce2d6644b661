#include "qlx/foundation/udependencyspace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <utility>
#include <vector>

#include "qlx/foundation/uobject.h"
#include "tests/support/allocation_counter.h"

namespace {

struct Listener : TObject {
    std::vector<int>* mLog = nullptr;
    TObject* mFreeOnUpdate = nullptr;
    void DoUpdate(int change, TObject*, TObject*, TDependencySpace*) override {
        mLog->push_back(change);
        if (mFreeOnUpdate) {
            mFreeOnUpdate->Free();
            mFreeOnUpdate = nullptr;
        }
    }
};

} // namespace

TEST(DependencySpace, DependentFreedDuringNotificationIsNotCalled) {
    std::vector<int> log;
    TObject notifier;
    auto* first = new Listener;
    auto* second = new Listener;
    first->mLog = second->mLog = &log;
    first->mFreeOnUpdate = second;
    notifier.AddDependent(first);
    notifier.AddDependent(second);
    notifier.AddDependent(first); // a second time adds nothing
    notifier.Changed(7, nullptr);
    EXPECT_EQ(log, std::vector<int>{7});
    first->Free();
    notifier.Changed(8, nullptr);
    EXPECT_EQ(log, std::vector<int>{7});
}

// Each row's step happens while the first of two dependents hears of a change.
TEST(DependencySpace, WhatADependentDoesMeanwhileCountsAtOnce) {
    struct Doer : TObject {
        std::vector<int>* mLog = nullptr;
        int mNumber = 0;
        std::function<void()> mThen;
        void DoUpdate(int, TObject*, TObject*, TDependencySpace*) override {
            mLog->push_back(mNumber);
            if (mThen)
                mThen();
        }
    };
    std::vector<int> log;
    Doer notifier, first, second, third;
    notifier.mLog = first.mLog = second.mLog = third.mLog = &log;
    first.mNumber = 1;
    second.mNumber = 2;
    third.mNumber = 3;
    const struct {
        const char* mWhy;
        std::function<void()> mStep;
        std::vector<int> mNow, mNext;
    } rows[] = {
        {"nothing", [] {}, {1, 2}, {1, 2}},
        {"one more is not told yet", [&] { notifier.AddDependent(&third); }, {1, 2}, {1, 2, 3}},
        {"one less is not told any more", [&] { notifier.RemoveDependent(&second); }, {1}, {1}},
        {"removed and added again is still told",
         [&] {
             notifier.RemoveDependent(&second);
             notifier.AddDependent(&second);
         },
         {1, 2},
         {1, 2}},
        {"the notifier leaves", [&] { notifier.RemoveAllDependencies(); }, {1}, {}},
        {"added twice is told once",
         [&] {
             notifier.AddDependent(&third);
             notifier.AddDependent(&third);
             notifier.AddDependent(&first);
         },
         {1, 2},
         {1, 2, 3}},
        {"a dependent that goes at once is forgotten",
         [&] {
             auto* const brief = new Doer;
             notifier.AddDependent(brief);
             brief->Free();
         },
         {1, 2},
         {1, 2}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mWhy);
        notifier.AddDependent(&first);
        notifier.AddDependent(&second);
        first.mThen = row.mStep;
        notifier.Changed(1, nullptr);
        EXPECT_EQ(std::exchange(log, {}), row.mNow);
        first.mThen = nullptr;
        notifier.Changed(1, nullptr);
        EXPECT_EQ(std::exchange(log, {}), row.mNext);
        notifier.RemoveAllDependencies();
        notifier.Changed(1, nullptr);
        EXPECT_TRUE(log.empty());
    }
}

// Objects that lose their relations without being freed leave nothing behind that would slow the
// rest down or keep memory.
TEST(DependencySpace, RelationsThatComeAndGoTakeNoMoreMemory) {
    TObject notifiers[100];
    TObject dependent, other;
    const auto round = [&] {
        for (TObject& notifier : notifiers) {
            notifier.AddDependent(&dependent);
            notifier.AddDependent(&other);
            notifier.RemoveDependent(&dependent);
            notifier.RemoveDependent(&other);
        }
    };
    for (int i = 0; i < 5; ++i)
        round();
    const AllocationCounter counter;
    round();
    // The table may be swept once.
    EXPECT_LE(counter.GetCount(), 4u);
    dependent.RemoveAllDependencies();
    other.RemoveAllDependencies();
    for (TObject& notifier : notifiers)
        notifier.RemoveAllDependencies();
}

// Random changes against two plain maps: what is told, and in which order, is what they say.
TEST(DependencySpace, FollowsPlainMapsThroughRandomChanges) {
    constexpr int kObjects = 200;
    struct Named : TObject {
        int mNumber = 0;
        std::vector<int>* mLog = nullptr;
        void DoUpdate(int, TObject*, TObject*, TDependencySpace*) override {
            mLog->push_back(mNumber);
        }
    };
    std::mt19937 random(20240611);
    const auto below = [&](int limit) { return static_cast<int>(random() % unsigned(limit)); };
    std::vector<int> told;
    std::vector<Named*> objects;
    for (int i = 0; i < kObjects; ++i) {
        objects.push_back(new Named);
        objects.back()->mNumber = i;
        objects.back()->mLog = &told;
    }
    std::map<int, std::vector<int>> dependents;
    const auto drop = [&](int notifier, int dependent) {
        std::erase(dependents[notifier], dependent);
    };
    for (int step = 0; step < 20000; ++step) {
        const int a = below(step % 3 == 0 ? 10 : kObjects); // some have many dependents
        const int b = below(kObjects);
        switch (below(8)) {
        case 0:
            objects[std::size_t(a)]->RemoveDependent(objects[std::size_t(b)]);
            drop(a, b);
            break;
        case 1:
            objects[std::size_t(b)]->RemoveAllDependencies();
            dependents[b].clear();
            for (auto& [notifier, list] : dependents)
                std::erase(list, b);
            break;
        case 2: {
            told.clear();
            objects[std::size_t(a)]->Changed(1, nullptr);
            ASSERT_EQ(told, dependents[a]) << "step " << step;
            break;
        }
        default:
            objects[std::size_t(a)]->AddDependent(objects[std::size_t(b)]);
            if (std::find(dependents[a].begin(), dependents[a].end(), b) == dependents[a].end())
                dependents[a].push_back(b);
        }
    }
    for (Named* object : objects)
        object->Free();
}
