#include "qlx/foundation/udependencyspace.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <vector>

#include "qlx/foundation/uobject.h"

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
