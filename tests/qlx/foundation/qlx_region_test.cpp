#include "qlx/foundation/qlx_region.h"

#include <gtest/gtest.h>

#include <random>
#include <thread>
#include <vector>

#include "basekit/cmn/cmn_trace.h"
#include "tests/support/failing_allocations.h"
#include "tests/support/seeds.h"

namespace {

using Rect = Cmn_Rect<int>;
using Rects = std::vector<Rect>;

Rects ListOf(const QLX_Region& region) {
    return {region.GetRectList().begin(), region.GetRectList().end()};
}

QLX_Region RegionOf(const Rects& rects) {
    QLX_Region region;
    for (const Rect& rect : rects)
        region.UniteWith(rect);
    return region;
}

// Trace lines while one lives; the channel of trace assertions is on.
class TraceLines {
  public:
    TraceLines() {
        sLines.clear();
        mPrevious = Cmn_SetTraceSink([](const char* line) { sLines.emplace_back(line); });
        Cmn_TraceEnable(kTrace_Assertions, true);
    }
    ~TraceLines() {
        Cmn_TraceEnable(kTrace_Assertions, false);
        Cmn_SetTraceSink(mPrevious);
    }
    [[nodiscard]] std::vector<std::string> Take() { return std::exchange(sLines, {}); }

  private:
    static inline std::vector<std::string> sLines;
    Cmn_TraceSink mPrevious;
};

TEST(QLXRegion, AnEmptyRectangleMakesAnEmptyRegion) {
    for (const Rect& rect : {Rect(), Rect(5, 5, 5, 9), Rect(9, 0, 3, 8)}) {
        const QLX_Region region(rect);
        EXPECT_TRUE(region.IsEmpty()) << rect;
        EXPECT_TRUE(region.IsRectangular());
        EXPECT_EQ(region.GetBounds(), Rect());
        EXPECT_EQ(region, QLX_Region());
    }
}

TEST(QLXRegion, SetOperations) {
    struct Row {
        const char* why;
        QLX_Region result;
        Rects list;
    };
    const QLX_Region square(Rect(0, 0, 10, 10));
    const QLX_Region beside(Rect(10, 0, 20, 10));
    const QLX_Region hole(Rect(3, 3, 6, 6));
    const Row rows[] = {
        {"abutting side by side", square.Union(beside), {{0, 0, 20, 10}}},
        {"one above the other", square.Union(Rect(0, 10, 10, 20)), {{0, 0, 10, 20}}},
        {"nothing in common", square.Intersection(beside), {}},
        {"a hole",
         square.Difference(hole),
         {{0, 0, 10, 3}, {0, 3, 3, 6}, {6, 3, 10, 6}, {0, 6, 10, 10}}},
        {"with itself", square.Xor(square), {}},
        {"xor with nothing", square.Xor(QLX_Region()), {{0, 0, 10, 10}}},
        {"xor of abutting ones stays in two: nothing is taken away, so nothing is joined",
         square.Xor(beside),
         {{10, 0, 20, 10}, {0, 0, 10, 10}}},
        {"nothing minus something", QLX_Region().Difference(square), {}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(ListOf(row.result), row.list) << row.why;
}

TEST(QLXRegion, OverlappingSquaresCoverEveryPixelOnce) {
    const QLX_Region both = QLX_Region(Rect(0, 0, 10, 10)).Union(QLX_Region(Rect(5, 5, 15, 15)));
    int pixels = 0;
    const Rect* previous = nullptr;
    for (const Rect& rect : both.GetRectList()) {
        pixels += rect.GetWidth() * rect.GetHeight();
        if (previous) {
            EXPECT_TRUE(previous->top < rect.top ||
                        (previous->top == rect.top && previous->left < rect.left));
        }
        previous = &rect;
    }
    EXPECT_EQ(pixels, 175);
}

TEST(QLXRegion, QueriesAskForTouching) {
    const QLX_Region region(Rect(0, 0, 10, 10));
    EXPECT_TRUE(region.ContainsRect({5, 5, 50, 50}));
    EXPECT_FALSE(region.ContainsRect({10, 0, 20, 10}));
    EXPECT_FALSE(region.ContainsRect({5, 5, 5, 9})) << "an empty one touches nothing";
    const QLX_Region ring = region.Difference(QLX_Region(Rect(3, 3, 6, 6)));
    EXPECT_FALSE(ring.ContainsPoint({3, 3}));
    EXPECT_TRUE(ring.ContainsPoint({2, 3}));
    EXPECT_TRUE(ring.ContainsPoint({6, 3}));
    EXPECT_FALSE(ring.IsRectangular());
}

TEST(QLXRegion, TheSamePixelsCutDifferentlyAreUnequal) {
    const QLX_Region tall = RegionOf({{0, 0, 10, 20}, {10, 0, 20, 10}});
    const QLX_Region wide = RegionOf({{0, 0, 20, 10}, {0, 10, 10, 20}});
    EXPECT_TRUE(tall.Xor(wide).IsEmpty());
    EXPECT_NE(tall, wide);
}

TEST(QLXRegion, OffsetHoldsAtTheLimits) {
    constexpr int low = std::numeric_limits<int>::min();
    constexpr int high = std::numeric_limits<int>::max();
    const QLX_Region right(Rect(2147483640, 0, 2147483645, 5));
    EXPECT_EQ(ListOf(right.Offset(100, 1)), Rects({{high, 1, high, 6}}));
    EXPECT_EQ(right.Offset(100, 1).GetBounds(), Rect(high, 1, high, 6));
    EXPECT_EQ(ListOf(QLX_Region(Rect(low, low, 0, 0)).Offset(low, low)),
              Rects({{low, low, low, low}}));
}

TEST(QLXRegion, InsetShrinksEveryRectangleByItself) {
    // As a list, not as a union, which would join the two.
    QLX_RegionImpl_HRGN unused;
    Cmn_RegionCore<int> core;
    const Rects abutting = {{0, 0, 10, 10}, {10, 0, 20, 10}};
    core.AssignRects(abutting.data(), abutting.size());
    core.Inset(1, 1);
    EXPECT_EQ(Rects(core.GetRectList().begin(), core.GetRectList().end()),
              Rects({{1, 1, 9, 9}, {11, 1, 19, 9}}));
    const QLX_Region vanishing = RegionOf({{0, 0, 10, 10}, {0, 20, 2, 30}, {0, 40, 10, 50}});
    EXPECT_EQ(ListOf(vanishing.Inset(1, 1)), Rects({{1, 1, 9, 9}, {0, 40, 10, 50}}))
        << "the one after a vanished one keeps its size";
}

TEST(QLXRegion, OffsetWithinScrollsAWindow) {
    const QLX_Region region = RegionOf({{0, 0, 10, 10}, {0, 50, 10, 60}});
    EXPECT_EQ(ListOf(region.OffsetWithin(0, 15, {0, 0, 100, 20})),
              Rects({{0, 15, 10, 20}, {0, 50, 10, 60}}));
    EXPECT_EQ(region.OffsetWithin(5, 5, {200, 200, 300, 300}), region) << "nothing inside";
    EXPECT_TRUE(QLX_Region(Rect(0, 0, 5, 5)).OffsetWithin(100, 0, {0, 0, 50, 50}).IsEmpty());
}

// Operations on pixels: every region operation against the same on a bitmap.
TEST(QLXRegion, PixelsFollowTheSetOperations) {
    constexpr int side = 24;
    using Bitmap = std::vector<bool>;
    const auto paint = [](const QLX_Region& region) {
        Bitmap bitmap(side * side);
        for (int y = 0; y < side; ++y)
            for (int x = 0; x < side; ++x)
                bitmap[static_cast<std::size_t>(y) * static_cast<std::size_t>(side) +
                       static_cast<std::size_t>(x)] = region.ContainsPoint({x, y});
        return bitmap;
    };
    for (unsigned seed = 0; seed < SeedsToTry(40); ++seed) {
        std::mt19937 random(seed);
        const auto below = [&](int limit) {
            return std::uniform_int_distribution<int>(0, limit - 1)(random);
        };
        const auto make = [&] {
            Rects rects;
            for (int i = 0, count = 1 + below(12); i < count; ++i) {
                const int x = below(side - 2);
                const int y = below(side - 2);
                rects.emplace_back(x, y, std::min(side, x + 1 + below(9)),
                                   std::min(side, y + 1 + below(9)));
            }
            return RegionOf(rects);
        };
        const QLX_Region a = make();
        const QLX_Region b = make();
        const Bitmap first = paint(a);
        const Bitmap second = paint(b);
        const Bitmap either = paint(a.Union(b));
        const Bitmap both = paint(a.Intersection(b));
        const Bitmap less = paint(a.Difference(b));
        const Bitmap one = paint(a.Xor(b));
        for (std::size_t i = 0; i < first.size(); ++i) {
            ASSERT_EQ(either[i], first[i] || second[i]) << "seed " << seed << " pixel " << i;
            ASSERT_EQ(both[i], first[i] && second[i]) << "seed " << seed << " pixel " << i;
            ASSERT_EQ(less[i], first[i] && !second[i]) << "seed " << seed << " pixel " << i;
            ASSERT_EQ(one[i], first[i] != second[i]) << "seed " << seed << " pixel " << i;
        }
    }
}

TEST(QLXRegion, AccumulatingLeavesCopiesAlone) {
    QLX_Region region(Rect(0, 0, 10, 10));
    const QLX_Region copy = region;
    region.UniteWith(Rect(20, 0, 30, 10));
    EXPECT_EQ(copy, QLX_Region(Rect(0, 0, 10, 10)));
    EXPECT_EQ(region.GetBounds(), Rect(0, 0, 30, 10));
    region.UniteWith(region);
    EXPECT_EQ(region, RegionOf({{0, 0, 10, 10}, {20, 0, 30, 10}}));
    QLX_Region empty;
    empty.UniteWith(Rect(1, 1, 2, 2));
    EXPECT_EQ(empty.GetBounds(), Rect(1, 1, 2, 2));
    EXPECT_TRUE(QLX_Region().IsEmpty()) << "the shared empty one has not changed";
}

// Native handles

TEST(QLXRegion, TheHandleIsMadeOnceAndFollowsTheList) {
    const Rects lists[] = {{}, {{1, 2, 3, 4}}, {{0, 0, 10, 5}, {20, 0, 30, 5}, {0, 10, 5, 20}}};
    for (const Rects& list : lists) {
        const QLX_Region region = RegionOf(list);
        void* handle = region.ImplQuery(QLX_RegionImpl_HRGN::kSelector_GetHandle);
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(region.ImplQuery(QLX_RegionImpl_HRGN::kSelector_GetHandle), handle);
        EXPECT_TRUE(region.ImplQuery(QLX_RegionImpl_HRGN::kSelector_ReloadFromHandle, nullptr));
        EXPECT_EQ(ListOf(region), list);
    }
}

TEST(QLXRegion, AHandleGivesAnEmptyRegionItsOwnImplementation) {
    const QLX_Region first;
    const QLX_Region second;
    void* handle = first.ImplQuery(QLX_RegionImpl_HRGN::kSelector_GetHandle);
    EXPECT_NE(second.ImplQuery(QLX_RegionImpl_HRGN::kSelector_GetHandle), handle);
    void* adopted = QLX_NativeRegion_CreateRect(1, 1, 4, 4);
    const QLX_Region third;
    EXPECT_TRUE(third.ImplQuery(QLX_RegionImpl_HRGN::kSelector_AdoptHandle, &adopted));
    EXPECT_EQ(ListOf(third), Rects({{1, 1, 4, 4}}));
    EXPECT_TRUE(QLX_Region().IsEmpty());
}

TEST(QLXRegion, AdoptingReplacesListAndHandle) {
    const QLX_Region region = RegionOf({{0, 0, 10, 10}, {20, 0, 30, 10}});
    const QLX_Region copy = region;
    void* old = region.ImplQuery(QLX_RegionImpl_HRGN::kSelector_GetHandle);
    ASSERT_NE(old, nullptr);
    void* adopted = QLX_NativeRegion_CreateRect(1, 1, 4, 4);
    ASSERT_TRUE(region.ImplQuery(QLX_RegionImpl_HRGN::kSelector_AdoptHandle, &adopted));
    EXPECT_EQ(ListOf(region), Rects({{1, 1, 4, 4}}));
    EXPECT_EQ(region.GetBounds(), Rect(1, 1, 4, 4));
    EXPECT_EQ(copy, region) << "copies share the implementation";
    EXPECT_EQ(region.ImplQuery(QLX_RegionImpl_HRGN::kSelector_GetHandle), adopted);
    ASSERT_TRUE(region.ImplQuery(QLX_RegionImpl_HRGN::kSelector_AdoptHandle, &adopted))
        << "its own once more";
    EXPECT_EQ(ListOf(region), Rects({{1, 1, 4, 4}}));
}

TEST(QLXRegion, AnAccumulatedRegionGetsAnOwnHandle) {
    QLX_Region region(Rect(0, 0, 10, 10));
    ASSERT_NE(region.ImplQuery(QLX_RegionImpl_HRGN::kSelector_GetHandle), nullptr);
    region.UniteWith(Rect(20, 0, 30, 10));
    void* handle = region.ImplQuery(QLX_RegionImpl_HRGN::kSelector_GetHandle);
    EXPECT_EQ(QLX_NativeRegion_GetData(handle, 0, nullptr),
              sizeof(QLX_NativeRegionHeader) + 2 * sizeof(Rect));
}

TEST(QLXRegion, QueriesThatCannotBeAnswered) {
    const QLX_Region region(Rect(0, 0, 1, 1));
    void* io = nullptr;
    EXPECT_FALSE(region.ImplQuery(3, &io));
    EXPECT_FALSE(region.ImplQuery(-1, &io));
    EXPECT_FALSE(region.ImplQuery(QLX_RegionImpl_HRGN::kSelector_ReloadFromHandle, &io))
        << "no handle yet";
    EXPECT_FALSE(region.ImplQuery(QLX_RegionImpl_HRGN::kSelector_GetHandle, nullptr));
    EXPECT_FALSE(region.ImplQuery(QLX_RegionImpl_HRGN::kSelector_AdoptHandle, nullptr));
    EXPECT_EQ(region.ImplQuery(7), nullptr);
}

TEST(QLXNativeRegion, RefusesBlocksThatAreNoRegionData) {
    struct Row {
        const char* why;
        std::uint32_t size;
        std::uint32_t headerSize;
        std::uint32_t type;
        std::uint32_t count;
    };
    const Row rows[] = {
        {"shorter than its header", 31, 32, 1, 0},
        {"another header", 64, 24, 1, 2},
        {"not rectangles", 64, 32, 2, 2},
        {"more rectangles than bytes", 64, 32, 1, 3},
    };
    for (const Row& row : rows) {
        QLX_NativeRegionHeader block[2];
        block[0].mHeaderSize = row.headerSize;
        block[0].mType = row.type;
        block[0].mCount = row.count;
        EXPECT_EQ(QLX_NativeRegion_CreateFromData(row.size, block), nullptr) << row.why;
    }
    EXPECT_EQ(QLX_NativeRegion_CreateFromData(64, nullptr), nullptr);
    EXPECT_EQ(QLX_NativeRegion_GetData(nullptr, 0, nullptr), 0U);
    EXPECT_FALSE(QLX_NativeRegion_Delete(nullptr));
}

// Regions without an implementation, and memory that runs out

TEST(QLXRegion, AMissingImplementationIsReportedAndActsAsEmpty) {
    QLX_Region region(Rect(0, 0, 10, 10));
    const QLX_Region taken = std::move(region);
    TraceLines trace;
    EXPECT_TRUE(region.IsEmpty()); // NOLINT(bugprone-use-after-move): what this test is about
    EXPECT_TRUE(region.GetRectList().empty());
    EXPECT_FALSE(region.ImplQuery(0, nullptr));
    EXPECT_EQ(trace.Take(), (std::vector<std::string>{
                                "CMN_TRACEASSERT mImpl newfilelibs/cmn/cmn_region line 921",
                                "CMN_TRACEASSERT mImpl newfilelibs/cmn/cmn_region line 906",
                                "CMN_TRACEASSERT mImpl newfilelibs/cmn/cmn_region line 1003"}));
    EXPECT_EQ(region.Union(taken), taken);
    EXPECT_EQ(region.GetBounds(), Rect());
    EXPECT_EQ(region, QLX_Region());
    region.UniteWith(taken);
    EXPECT_EQ(region, taken);
}

TEST(QLXRegion, WithoutMemoryForTheImplementationTheResultIsEmpty) {
    const QLX_Region region(Rect(0, 0, 10, 10));
    TraceLines trace;
    Cmn_FailAllocationsAfter(0);
    const QLX_Region moved = region.Offset(1, 1);
    Cmn_FailAllocationsAfter(-1);
    EXPECT_TRUE(moved.IsEmpty());
    EXPECT_EQ(trace.Take(), std::vector<std::string>{
                                "CMN_TRACEASSERT newCore newfilelibs/cmn/cmn_region line 850"});
}

TEST(QLXRegion, RunningOutOfMemoryInsideAnOperationChangesNothing) {
    Rects first;
    Rects second;
    for (int i = 0; i < 150; ++i) {
        first.emplace_back(i % 15 * 10, i / 15 * 10, i % 15 * 10 + 7, i / 15 * 10 + 7);
        second.emplace_back(i % 15 * 10 + 4, i / 15 * 10 + 4, i % 15 * 10 + 9, i / 15 * 10 + 9);
    }
    QLX_Region a = RegionOf(first);
    const QLX_Region b = RegionOf(second);
    const QLX_Region kept = a.Copy();
    const QLX_Region expected = a.Union(b);
    int failed = 0;
    Cmn_RegionCore<int> result;
    failed += FailEachAllocation([&] { a.UniteWith(b); }, [&] { EXPECT_EQ(a, kept); });
    EXPECT_EQ(a, expected);
    EXPECT_GT(failed, 3);
}

TEST(QLXRegion, CopyingEmptyingAndAskingAllocateNothing) {
    Rects rects;
    for (int i = 0; i < 60; ++i)
        rects.emplace_back(i % 10 * 20, i / 10 * 20, i % 10 * 20 + 9, i / 10 * 20 + 9);
    const QLX_Region region = RegionOf(rects);
    Cmn_FailAllocationsAfter(0);
    const QLX_Region copy = region;
    QLX_Region empty;
    empty = copy;
    empty = QLX_Region();
    const bool answers[] = {copy == region,
                            empty.IsEmpty(),
                            copy.ContainsPoint({21, 21}),
                            !copy.ContainsPoint({15, 15}),
                            copy.ContainsRect({0, 0, 500, 1}),
                            copy.GetBounds() == Rect(0, 0, 189, 109)};
    Cmn_FailAllocationsAfter(-1);
    for (const bool answer : answers)
        EXPECT_TRUE(answer);
}

TEST(QLXRegion, AShortListGrowsAndAnEmptyResultComesWithoutAllocating) {
    struct Row {
        const char* why;
        Rect rect;
    };
    const Row rows[] = {
        {"comes in beside the others", {100, 0, 110, 10}},
        {"is there already", {0, 0, 10, 10}},
        {"lies inside one", {2, 2, 4, 4}},
        {"grows one", {10, 0, 20, 10}},
        {"is cut", {5, 5, 30, 30}},
        {"covers several", {0, 0, 60, 60}},
        {"is empty", {5, 5, 5, 9}},
    };
    for (const Row& row : rows) {
        QLX_Region region = RegionOf({{0, 0, 10, 10}, {40, 0, 50, 10}, {0, 40, 10, 50}});
        const QLX_Region expected = region.Union(QLX_Region(row.rect));
        Cmn_FailAllocationsAfter(0);
        region.UniteWith(row.rect);
        Cmn_FailAllocationsAfter(-1);
        EXPECT_EQ(region, expected) << row.why;
    }
    const QLX_Region square(Rect(0, 0, 10, 10));
    const QLX_Region beside(Rect(10, 0, 20, 10));
    Cmn_FailAllocationsAfter(0);
    const bool isEmpty = square.Intersection(beside).IsEmpty();
    Cmn_FailAllocationsAfter(-1);
    EXPECT_TRUE(isEmpty);
}

TEST(QLXRegion, WhatTurnsOutEmptyTakesAHandleOfItsOwn) {
    const QLX_Region square(Rect(0, 0, 10, 10));
    const QLX_Region none = square.Difference(square);
    void* handle = none.ImplQuery(QLX_RegionImpl_HRGN::kSelector_GetHandle);
    ASSERT_NE(handle, nullptr);
    EXPECT_NE(QLX_Region().ImplQuery(QLX_RegionImpl_HRGN::kSelector_GetHandle), handle);
}

TEST(QLXRegion, IsReadFromSeveralThreads) {
    Rects rects;
    for (int i = 0; i < 100; ++i)
        rects.emplace_back(i % 10 * 20, i / 10 * 20, i % 10 * 20 + 9, i / 10 * 20 + 9);
    const QLX_Region region = RegionOf(rects);
    const QLX_Region expected = region.Difference(QLX_Region(Rect(0, 0, 100, 100)));
    std::vector<int> wrong(4);
    std::vector<std::thread> threads;
    for (int& count : wrong) {
        threads.emplace_back([&region, &expected, &count] {
            for (int i = 0; i < 300; ++i) {
                const QLX_Region copy = region;
                count += copy.GetBounds() != Rect(0, 0, 189, 189);
                count += !copy.ContainsPoint({i % 10 * 20, 0});
                count += copy.Difference(QLX_Region(Rect(0, 0, 100, 100))) != expected;
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, std::vector<int>(4));
}

} // namespace
