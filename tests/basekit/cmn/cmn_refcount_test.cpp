#include "basekit/cmn/cmn_refcount.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

class Undefined; // stays declared only

namespace {

struct Counted : Cmn_RefCountObject {
    explicit Counted(int* alive) : mAlive(alive) { ++*mAlive; }
    Counted(const Counted& other) : Cmn_RefCountObject(other), mAlive(other.mAlive) { ++*mAlive; }
    Counted& operator=(const Counted&) = default;
    ~Counted() override { --*mAlive; }
    int* mAlive;
    int mPart = 5;
};
struct Derived : Counted {
    using Counted::Counted;
};

static_assert(sizeof(Cmn_RefCountPtr<Counted>) == sizeof(void*));
static_assert(sizeof(Cmn_AliasedRefCountPtr<Counted>) == 2 * sizeof(void*));
static_assert(std::is_nothrow_move_constructible_v<Cmn_RefCountPtr<Counted>>);
static_assert(std::is_nothrow_move_constructible_v<Cmn_AliasedRefCountPtr<Undefined>>);

} // namespace

TEST(RefCountPtr, LastPointerEndsTheObject) {
    int alive = 0;
    Cmn_RefCountPtr<Counted> first(new Counted(&alive));
    {
        Cmn_RefCountPtr<Counted> second = first;
        EXPECT_EQ(first->GetReferenceCount(), 2);
        Cmn_RefCountPtr<Counted> third = std::move(second);
        EXPECT_EQ(first->GetReferenceCount(), 2);
        EXPECT_FALSE(second); // NOLINT: a moved-from pointer is empty
        third = *&third;      // to itself
        EXPECT_EQ(first->GetReferenceCount(), 2);
    }
    EXPECT_EQ(first->GetReferenceCount(), 1);
    first.Reset();
    EXPECT_EQ(alive, 0);
}

TEST(RefCountPtr, ConvertsToBasesWithoutTouchingTheCountTwice) {
    int alive = 0;
    Cmn_RefCountPtr<Derived> derived(new Derived(&alive));
    Cmn_RefCountPtr<Counted> base = derived;
    EXPECT_EQ(base->GetReferenceCount(), 2);
    Cmn_RefCountPtr<Counted> moved = std::move(derived);
    EXPECT_EQ(moved->GetReferenceCount(), 2);
    Cmn_AliasedRefCountPtr<Counted> aliased = std::move(moved);
    EXPECT_EQ(aliased->GetReferenceCount(), 2);
    base.Reset();
    aliased.Reset();
    EXPECT_EQ(alive, 0);
}

TEST(RefCountPtr, ACopiedObjectHasACountOfItsOwn) {
    int alive = 0;
    Cmn_RefCountPtr<Counted> original(new Counted(&alive));
    Cmn_RefCountPtr<Counted> copy(new Counted(*original));
    EXPECT_EQ(copy->GetReferenceCount(), 1);
    *copy = *original;
    EXPECT_EQ(copy->GetReferenceCount(), 1);
}

TEST(RefCountPtr, APermanentObjectOutlivesItsPointers) {
    int alive = 0;
    Counted object(&alive);
    object.MakePermanent();
    {
        const Cmn_RefCountPtr<Counted> first(&object);
        const Cmn_RefCountPtr<Counted> second = first;
        EXPECT_FALSE(object.HasOneReference());
    }
    EXPECT_EQ(alive, 1);
    EXPECT_TRUE(object.IsPermanent());
}

TEST(RefCountPtr, TheFirstPointerOwnsTheObjectAlone) {
    int alive = 0;
    Cmn_RefCountPtr<Counted> first = Cmn_RefCountPtr<Counted>::MakeFirst(new Counted(&alive));
    EXPECT_TRUE(first->HasOneReference());
    {
        const Cmn_RefCountPtr<Counted> second = first;
        EXPECT_FALSE(first->HasOneReference());
    }
    EXPECT_TRUE(first->HasOneReference());
    first.Reset();
    EXPECT_EQ(alive, 0);
    EXPECT_FALSE(Cmn_RefCountPtr<Counted>::MakeFirst(nullptr));
}

TEST(AliasedRefCountPtr, APartKeepsTheWholeAlive) {
    int alive = 0;
    Cmn_AliasedRefCountPtr<Counted> whole(new Counted(&alive));
    Cmn_AliasedRefCountPtr<int> part(&whole->mPart, whole.Get());
    whole.Reset();
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(*part, 5);
    // Copied, assigned and destroyed where the type is only declared.
    Cmn_AliasedRefCountPtr<Undefined> opaque(reinterpret_cast<Undefined*>(part.Get()),
                                             part.GetOwner());
    part = nullptr;
    Cmn_AliasedRefCountPtr<Undefined> copy = opaque;
    opaque = std::move(copy);
    EXPECT_EQ(alive, 1);
    opaque.Reset();
    EXPECT_EQ(alive, 0);
}

TEST(RefCountPtr, PointersMayBeCopiedOnAnyThread) {
    int alive = 0;
    {
        const Cmn_RefCountPtr<Counted> shared(new Counted(&alive));
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&shared] {
                for (int n = 0; n < 20000; ++n)
                    Cmn_RefCountPtr<Counted> copy = shared;
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(shared->GetReferenceCount(), 1);
    }
    EXPECT_EQ(alive, 0);
}
