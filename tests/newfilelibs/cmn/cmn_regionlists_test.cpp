#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <sstream>

#include "newfilelibs/cmn/cmn_region.h"
#include "tests/support/literal_region.h"

// Seeded sequences of operations, done by the library and by the pairwise algorithms written out;
// every list must be equal, cuts and order included. QLX_LONG_TESTS=1 runs many more rounds.

namespace {

using Rect = Cmn_Rect<int>;
using Core = Cmn_RegionCore<int>;
using literal::Rects;

constexpr int kLow = std::numeric_limits<int>::min();
constexpr int kHigh = std::numeric_limits<int>::max();

Rects ToRects(const Core& core) { return {core.GetRectList().begin(), core.GetRectList().end()}; }

struct Pair {
    Core mCore;
    Rects mRects;
};

// Where the rectangles of a sequence come from.
enum class Shape { kLattice, kRandom, kSlivers, kExtremes, kTiny };
constexpr Shape kShapes[] = {Shape::kLattice, Shape::kRandom, Shape::kSlivers, Shape::kExtremes,
                             Shape::kTiny};

class Player {
  public:
    Player(std::uint64_t seed, Shape shape, int count)
        : mRandom(seed), mShape(shape), mCount(count) {}

    // Plays one sequence over a few registers; returns what went wrong, or nothing.
    std::string Play(int steps) {
        for (Pair& pair : mPairs)
            pair = Gather();
        for (int step = 0; step < steps; ++step) {
            const std::string wrong = Step();
            if (!wrong.empty())
                return "step " + std::to_string(step) + ": " + wrong;
        }
        return {};
    }

  private:
    int Below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(mRandom); }
    int Between(int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(mRandom);
    }

    Rect MakeRect() {
        switch (mShape) {
        case Shape::kLattice: {
            const int x = Below(20) * 8;
            const int y = Below(20) * 8;
            return {x, y, x + 8 * Between(1, 3), y + 8 * Between(1, 2)};
        }
        case Shape::kRandom: {
            const int x = Below(400);
            const int y = Below(400);
            return {x, y, x + Between(1, 60), y + Between(1, 60)};
        }
        case Shape::kSlivers: {
            const int x = Below(200);
            const int y = Below(200);
            return Below(2) ? Rect(x, y, x + 1, y + Between(1, 150))
                            : Rect(x, y, x + Between(1, 150), y + 1);
        }
        case Shape::kExtremes: {
            const int edges[] = {kLow, kLow + 1, kLow + 5, -1, 0, 1, kHigh - 5, kHigh - 1, kHigh};
            return {edges[Below(9)], edges[Below(9)], edges[Below(9)], edges[Below(9)]};
        }
        case Shape::kTiny: {
            const int x = Below(6);
            const int y = Below(6);
            return {x, y, x + Between(0, 3), y + Between(0, 3)};
        }
        }
        return {};
    }

    Pair Single() {
        const Rect rect = MakeRect();
        return {Core(rect), rect.Empty() ? Rects{} : Rects{rect}};
    }

    Pair Combine(const Pair& a, const Pair& b, int operation) {
        Pair result;
        switch (operation) {
        case 0:
            a.mCore.Union(result.mCore, b.mCore);
            result.mRects = literal::Union(a.mRects, b.mRects);
            break;
        case 1:
            a.mCore.Intersection(result.mCore, b.mCore);
            result.mRects = literal::Intersection(a.mRects, b.mRects);
            break;
        case 2:
            a.mCore.Difference(result.mCore, b.mCore);
            result.mRects = literal::Difference(a.mRects, b.mRects);
            break;
        default:
            a.mCore.Xor(result.mCore, b.mCore);
            result.mRects = literal::Xor(a.mRects, b.mRects);
        }
        return result;
    }

    // By one of the doors that a single rectangle may take.
    Pair AddOne(const Pair& to) {
        const Rect rect = MakeRect();
        Pair result = to;
        result.mRects = literal::Union(to.mRects, rect.Empty() ? Rects{} : Rects{rect});
        if (Below(2)) {
            result.mCore.UniteWith(rect);
        } else {
            result.mCore = Core();
            to.mCore.Union(result.mCore, rect);
        }
        return result;
    }

    Pair Gather() {
        Pair pair;
        for (int i = 0, count = Between(0, mCount); i < count; ++i)
            pair = Below(2) ? AddOne(pair) : Combine(pair, Single(), Below(4) == 0 ? 3 : 0);
        return pair;
    }

    int Distance() {
        switch (mShape) {
        case Shape::kExtremes: {
            const int distances[] = {kLow, kLow + 3, -7, -1, 0, 1, 7, kHigh - 3, kHigh};
            return distances[Below(9)];
        }
        case Shape::kLattice:
            return Between(-3, 3) * 8;
        default:
            return Between(-9, 9);
        }
    }

    std::string Step() {
        Pair& target = mPairs[Below(kPairs)];
        const Pair a = mPairs[Below(kPairs)];
        const Pair b = Below(3) == 0 ? Single() : mPairs[Below(kPairs)];
        const int operation = Below(13);
        std::ostringstream what;
        what << "operation " << operation << " on\n"
             << a.mCore.GetRectList() << "\nwith\n"
             << b.mCore.GetRectList();
        target = Perform(a, b, operation, what);
        if (Below(2) == 0)
            target.mCore.FillCaches(); // as regions do, so that operations find the list's reach
        // Lists grow without end under xor and holes: begin anew now and then.
        if (target.mRects.size() > kLargest || Below(25) == 0)
            target = Gather();
        return Compare(target, what.str());
    }

    Pair Perform(const Pair& a, const Pair& b, int operation, std::ostream& what) {
        Pair result = a;
        const int dx = Distance();
        const int dy = Distance();
        const Rect within = MakeRect();
        what << "\nby " << dx << ", " << dy << " within " << within;
        switch (operation) {
        case 8:
            result.mCore.Offset(dx, dy);
            result.mRects = literal::Offset(a.mRects, dx, dy);
            return result;
        case 9:
            result.mCore.Inset(dx, dy);
            result.mRects = literal::Inset(a.mRects, dx, dy);
            return result;
        case 10:
            result.mCore.Inset(Between(0, 2), 0);
            result.mRects = ToRects(result.mCore);
            return result;
        case 11:
            result.mCore.OffsetWithin(dx, dy, within);
            result.mRects = literal::OffsetWithin(a.mRects, dx, dy, within);
            return result;
        case 12:
            return AddOne(a);
        default:
            return Combine(a, b, operation % 4);
        }
    }

    std::string Compare(const Pair& pair, const std::string& what) {
        if (ToRects(pair.mCore) != pair.mRects) {
            Core expected;
            expected.AssignRects(pair.mRects.data(), pair.mRects.size());
            std::ostringstream text;
            text << what << "\nexpected\n"
                 << expected.GetRectList() << "\ngot\n"
                 << pair.mCore.GetRectList();
            return text.str();
        }
        return CompareQueries(pair);
    }

    std::string CompareQueries(const Pair& pair) {
        const Rect probe = MakeRect();
        const Cmn_Point<int> point(probe.left, probe.bottom);
        bool touches = false;
        bool contains = false;
        Rect bounds;
        for (const Rect& rect : pair.mRects) {
            touches = touches || rect.Overlaps(probe);
            contains = contains || rect.Contains(point);
            bounds = &rect == &pair.mRects.front() ? rect : bounds | rect;
        }
        Rect cached;
        pair.mCore.GetBounds(cached);
        if (pair.mCore.ContainsRect(probe) != touches)
            return "ContainsRect";
        if (pair.mCore.ContainsPoint(point) != contains)
            return "ContainsPoint";
        // Flattened lists keep the bounds they had before, moved the same way.
        if (mShape != Shape::kExtremes && cached != bounds)
            return "GetBounds";
        return {};
    }

    static constexpr int kPairs = 3;
    static constexpr std::size_t kLargest = 400;
    std::mt19937_64 mRandom;
    Shape mShape;
    int mCount;
    Pair mPairs[kPairs];
};

int Rounds(int quick) { return std::getenv("QLX_LONG_TESTS") ? quick * 50 : quick; }

void PlayAll(int rounds, int count, int steps) {
    for (int round = 0; round < rounds; ++round) {
        for (const Shape shape : kShapes) {
            const auto seed = static_cast<std::uint64_t>(round);
            Player player(seed, shape, count);
            ASSERT_EQ(player.Play(steps), "")
                << "seed " << seed << ", shape " << static_cast<int>(shape) << ", count " << count;
        }
    }
}

// Every rectangle of a small grid with every other one, alone in the list: all the ways in which
// one can lie inside the other.
TEST(CmnRegionLists, TwoRectanglesOfASmallGrid) {
    constexpr int side = 5;
    Rects all;
    for (int top = 0; top < side; ++top)
        for (int left = 0; left < side; ++left)
            for (int bottom = top + 1; bottom <= side; ++bottom)
                for (int right = left + 1; right <= side; ++right)
                    all.emplace_back(left, top, right, bottom);
    for (const Rect& first : all) {
        for (const Rect& second : all) {
            const Core a(first);
            const Core b(second);
            Core inPlace(first);
            inPlace.UniteWith(second);
            ASSERT_EQ(ToRects(inPlace), literal::Union({first}, {second})) << first << second;
            Core either;
            a.Union(either, b);
            ASSERT_EQ(ToRects(either), literal::Union({first}, {second})) << first << second;
            Core both;
            a.Intersection(both, b);
            ASSERT_EQ(ToRects(both), literal::Intersection({first}, {second})) << first << second;
            Core rest;
            a.Difference(rest, b);
            ASSERT_EQ(ToRects(rest), literal::Difference({first}, {second})) << first << second;
        }
    }
}

// Lists about as long as what lies in the list itself, what has boxes and what is joined on the
// stack; one more rectangle overlaps more and more of them.
TEST(CmnRegionLists, OneRectangleOverManyAtTheLimitsOfLength) {
    for (const int count : {15, 16, 17, 23, 24, 25, 30, 31, 32, 33, 34, 50}) {
        Rects rects;
        for (int i = 0; i < count; ++i)
            rects.emplace_back(i % 7 * 10, i / 7 * 10, i % 7 * 10 + 6, i / 7 * 10 + 6 + i % 3);
        Core joined;
        for (const Rect& rect : rects)
            joined.UniteWith(rect);
        ASSERT_EQ(ToRects(joined), rects);
        for (int right = 1; right <= 70; right += 4) {
            for (int bottom = 1; bottom <= 80; bottom += 7) {
                const Rect rect(-2, 3, right, 3 + bottom);
                Core one = joined;
                one.UniteWith(rect);
                ASSERT_EQ(ToRects(one), literal::Union(ToRects(joined), {rect}))
                    << count << " with " << rect;
                Core bounds;
                bounds.AssignRects(one.GetRectList().data(), one.GetRectList().size());
                Rect expected;
                Rect kept;
                bounds.GetBounds(expected);
                one.GetBounds(kept);
                ASSERT_EQ(kept, expected) << count << " with " << rect;
            }
        }
    }
}

// Overlaps are looked for in 16-bit coordinates: drawings that just fit them and just do not, with
// one rectangle as large as the drawing.
TEST(CmnRegionLists, OverlapsInDrawingsOfEverySize) {
    for (int bits = 10; bits <= 32; ++bits) {
        for (int less = 1; less <= 5; ++less) {
            const std::int64_t side = (std::int64_t{1} << bits) - less;
            const int end = static_cast<int>(kLow + side);
            Core list(Rect(kLow + 1, kLow, end, end));
            Core built;
            for (int i = 0; i < 21; ++i) {
                list.UniteWith(Rect(kLow, kLow + 2 * i, kLow + 1, kLow + 2 * i + 1));
                const int left = static_cast<int>(kLow + side * i / 21);
                built.UniteWith(Rect(left, kLow + i, left + 3, end - i));
            }
            const Core others = built; // with no more memory than it needs
            Core both;
            list.Intersection(both, others);
            ASSERT_EQ(ToRects(both), literal::Intersection(ToRects(list), ToRects(others))) << side;
            Core cut;
            list.Difference(cut, others);
            ASSERT_EQ(ToRects(cut), literal::Difference(ToRects(list), ToRects(others))) << side;
        }
    }
}

// Fields of a chessboard, or any, against others: lists about as long as what is joined on the
// stack and what is sorted in other ways, close together and so far apart that their corners take
// more than one word.
TEST(CmnRegionLists, FieldsOfBoardsOfAnyLengthAndSpread) {
    std::mt19937_64 random(11);
    const auto gather = [](int side, int width, auto isIn) {
        Core core;
        for (int i = 0; i < side * side; ++i) {
            const int x = (i % side - side / 2) * width;
            const int y = (i / side - side / 2) * width;
            if (isIn(i % side, i / side))
                core.UniteWith(Rect(x, y, x + width, y + width));
        }
        return core;
    };
    const auto black = [](int x, int y) { return (x + y) % 2 == 0; };
    const auto white = [](int x, int y) { return (x + y) % 2 != 0; };
    const auto any = [&](int, int) { return random() % 2 == 0; };
    for (const int side : {5, 6, 7, 8, 9, 12, 27}) {
        for (const int width : {1, 10, 300, 70'000, 50'000'000}) {
            const Core first[] = {gather(side, width, black), gather(side, width, any)};
            const Core second[] = {gather(side, width, white), gather(side, width + 1, any)};
            for (int i = 0; i < 2; ++i) {
                Core joined;
                first[i].Union(joined, second[i]);
                ASSERT_EQ(ToRects(joined), literal::Union(ToRects(first[i]), ToRects(second[i])))
                    << side << " fields of " << width << ", " << (i ? "any" : "chessboard");
            }
        }
    }
}

// Queries do not rely on lists that come from outside being sorted or disjoint.
TEST(CmnRegionLists, QueriesOfListsInAnyOrder) {
    std::mt19937_64 random(7);
    const auto below = [&](int limit) {
        return std::uniform_int_distribution<int>(0, limit - 1)(random);
    };
    for (const int count : {1, 7, 23, 24, 32, 33, 64, 65, 300}) {
        Rects rects;
        for (int i = 0; i < count; ++i) {
            const int x = below(200);
            const int y = below(200);
            const int height =
                i % 40 == 3 ? 150 : below(9); // a tall one now and then, and flat ones
            rects.emplace_back(x, y, x + below(9), y + height);
        }
        Core core;
        core.AssignRects(rects.data(), rects.size());
        for (const bool boxed : {false, true}) {
            if (boxed)
                core.FillCaches();
            for (int i = 0; i < 400; ++i) {
                const Cmn_Point<int> point(below(220) - 5, below(220) - 5);
                const Rect probe(point.x, point.y, point.x + below(30), point.y + below(90));
                const auto holds = [&](const Rect& rect) { return rect.Contains(point); };
                const auto touches = [&](const Rect& rect) { return rect.Overlaps(probe); };
                ASSERT_EQ(core.ContainsPoint(point), std::any_of(rects.begin(), rects.end(), holds))
                    << count << " rectangles at " << point;
                ASSERT_EQ(core.ContainsRect(probe),
                          std::any_of(rects.begin(), rects.end(), touches))
                    << count << " rectangles at " << probe;
            }
        }
    }
}

TEST(CmnRegionLists, FewRectanglesAreCutAsWrittenOut) { PlayAll(Rounds(400), 8, 16); }

TEST(CmnRegionLists, DozensOfRectanglesAreCutAsWrittenOut) { PlayAll(Rounds(25), 40, 12); }

TEST(CmnRegionLists, HundredsOfRectanglesAreCutAsWrittenOut) { PlayAll(Rounds(1), 250, 5); }

} // namespace
