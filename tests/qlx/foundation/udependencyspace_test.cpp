#include "qlx/foundation/udependencyspace.h"

#include <gtest/gtest.h>

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
