#include "basekit/cmn/cmn_virtualtable.h"

#include <gtest/gtest.h>

namespace {

struct Base {
    virtual ~Base() = default;
    virtual int First() { return 1; }
    virtual int Second() { return 2; }
    virtual int Third(int) { return 3; }
};
struct Same : Base {};
struct TakesSecond : Same {
    int Second() override { return 22; }
};
struct Below : TakesSecond {
    virtual int Fourth() { return 4; }
};
struct Other {
    virtual ~Other() = default;
    virtual int Own() { return 0; }
};
struct BehindAnother : Other, Base {
    int Third(int) override { return 33; }
};

template <auto... Operations>
bool SharesWithBase(const Base& object) {
    return Cmn_VirtualTable(object).Shares<Operations...>(Cmn_VirtualTable(Base()));
}

TEST(VirtualTable, KnowsWhatAClassHasTakenOver) {
    if (!kCmn_KnowsVirtualTables)
        GTEST_SKIP() << "everything counts as taken over here";
    EXPECT_TRUE((SharesWithBase<&Base::First, &Base::Second, &Base::Third>(Same())));
    EXPECT_FALSE((SharesWithBase<&Base::First, &Base::Second>(TakesSecond())));
    EXPECT_TRUE((SharesWithBase<&Base::First, &Base::Third>(Below())));
    EXPECT_FALSE(SharesWithBase<&Base::Second>(Below()));
    // An override in a class whose Base is not its first base stands in the table as a detour.
    EXPECT_TRUE((SharesWithBase<&Base::First, &Base::Second>(BehindAnother())));
    EXPECT_FALSE(SharesWithBase<&Base::Third>(BehindAnother()));
}

TEST(VirtualTable, IsEqualForObjectsOfOneClassOnly) {
    EXPECT_EQ(Cmn_VirtualTable(Base()) == Cmn_VirtualTable(Base()), kCmn_KnowsVirtualTables);
    EXPECT_FALSE(Cmn_VirtualTable(Base()) == Cmn_VirtualTable(Same()));
    EXPECT_FALSE(Cmn_VirtualTable() == Cmn_VirtualTable(Same()));
}

} // namespace
