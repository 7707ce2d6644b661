#include "qlx/views/udynamicarray.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

#include "qlx/views/ulistiterator.h"
#include "tests/support/failing_allocations.h"
#include "tests/support/seeds.h"

namespace {

struct Freer {
    void operator()(TObject* object) const { object->Free(); }
};
template <class T>
using Owned = std::unique_ptr<T, Freer>;

/// An object with a number, for lists whose order matters.
class Numbered : public TObject {
  public:
    explicit Numbered(int number, int* freed = nullptr) : mNumber(number), mFreed(freed) {}
    ~Numbered() override {
        if (mFreed)
            ++*mFreed;
    }
    int mNumber;
    int* mFreed;
};

int NumberOf(TObject* object) { return static_cast<Numbered*>(object)->mNumber; }

short CompareNumbers(TObject* a, TObject* b, void* comparisons) {
    if (comparisons)
        ++*static_cast<long*>(comparisons);
    return static_cast<short>(NumberOf(a) < NumberOf(b) ? -1 : NumberOf(a) > NumberOf(b));
}

class NumberList : public TSortedList {
  public:
    short Compare(TObject* a, TObject* b) override { return CompareNumbers(a, b, nullptr); }
};

Owned<TDynamicArray> NewArray(int initialSize, short elementSize) {
    auto* array = new TDynamicArray;
    array->IDynamicArray(initialSize, elementSize); // frees it when this fails
    return Owned<TDynamicArray>(array);
}

std::vector<int> Ints(TDynamicArray& array) {
    std::vector<int> all(static_cast<std::size_t>(array.GetSize()));
    array.GetElementsAt(1, all.data(), array.GetSize());
    return all;
}

void Append(TDynamicArray& array, int value) {
    array.InsertElementsBefore(array.GetSize() + 1, &value, 1);
}

} // namespace

TEST(DynamicArray, StartsWithoutStorage) {
    TDynamicArray array;
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_TRUE(array.IsEmpty());
    EXPECT_EQ(array.GetCapacity(), 0);
    EXPECT_EQ(array.GetElementSize(), 1);
    EXPECT_EQ(array.GetGrowthIncrement(), 6);
}

TEST(DynamicArray, CapacityGrowsByWholeChunks) {
    const struct {
        const char* why;
        int increment, size, capacity;
    } rows[] = {
        {"inside the first chunk", 8, 5, 8},
        {"above one chunk", 8, 10, 16},
        {"an exact multiple gets one more", 8, 16, 24},
        {"without an increment exactly what is asked", 0, 7, 7},
        {"nothing asked, nothing made", 6, 0, 0},
        {"a negative size is none", 6, -3, 0},
    };
    for (const auto& row : rows) {
        TDynamicArray array;
        array.SetGrowthIncrement(row.increment);
        array.SetArraySize(row.size);
        EXPECT_EQ(array.GetCapacity(), row.capacity) << row.why;
    }
}

// The capacity says six more at a time; the memory behind it moves far more seldom, on the way up
// and down, and never has much more room than is asked for.
TEST(DynamicArray, AListThatGrowsInSmallChunksSeldomMoves) {
    for (const short elementSize : {short{1}, short{8}, short{24}}) {
        SCOPED_TRACE(elementSize);
        constexpr int kCount = 5000;
        const auto array = NewArray(0, elementSize);
        std::vector<char> element(static_cast<std::size_t>(elementSize));
        const auto expected = [](int count) { return (count / 6 + 1) * 6; };
        Cmn_FailAllocationsAfter(60);
        for (int i = 1; i <= kCount; ++i) {
            element[0] = static_cast<char>(i % 100);
            array->InsertElementsBefore(i, element.data(), 1);
            // A chunk lasts until it is full.
            ASSERT_EQ(array->GetCapacity(), expected(i % 6 == 0 ? i - 1 : i));
        }
        Cmn_FailAllocationsAfter(60);
        for (int i = kCount; i > 1; --i) {
            ASSERT_EQ(*static_cast<char*>(array->ComputeAddress(i)), i % 100);
            array->DeleteElementsAt(i, 1);
        }
        Cmn_FailAllocationsAfter(-1);
        EXPECT_EQ(array->GetCapacity(), 6);
    }
}

TEST(DynamicArray, InsertingAndDeletingKeepsHalfAChunkOfPeace) {
    const auto array = NewArray(0, sizeof(int));
    std::vector<int> capacities;
    for (int i = 1; i <= 12; ++i) {
        Append(*array, i);
        capacities.push_back(array->GetCapacity());
    }
    // The eleventh needs 11 places: the multiple of 6 above it. So does no other until 12 are full.
    EXPECT_EQ(capacities, (std::vector<int>{6, 6, 6, 6, 6, 6, 12, 12, 12, 12, 12, 12}));
    capacities.clear();
    while (!array->IsEmpty()) {
        array->DeleteElementsAt(array->GetSize(), 1);
        capacities.push_back(array->GetCapacity());
    }
    EXPECT_EQ(capacities, (std::vector<int>{12, 12, 12, 12, 12, 12, 6, 6, 6, 6, 6, 6}));
}

TEST(DynamicArray, StrideIsThePowerOfTwoAboveTheElementSize) {
    const struct {
        short size;
        int stride;
    } rows[] = {{1, 1}, {2, 2},  {3, 4},     {5, 8}, {6, 8},
                {8, 8}, {9, 16}, {257, 512}, {0, 1}, {-4, 1}};
    for (const auto& row : rows) {
        const auto array = NewArray(4, row.size);
        const auto distance = static_cast<char*>(array->ComputeAddress(3)) -
                              static_cast<char*>(array->ComputeAddress(2));
        EXPECT_EQ(distance, row.stride) << "element size " << row.size;
    }
}

TEST(DynamicArray, SingleElementsAreReadAtTheirOwnSize) {
    // Under the sanitizers, a copy of a whole stride would run over the five bytes.
    const auto array = NewArray(0, 5);
    const std::vector<char> five = {'a', 'b', 'c', 'd', 'e'};
    array->InsertElementsBefore(1, five.data(), 1);
    std::vector<char> out(5);
    array->GetElementsAt(1, out.data(), 1);
    EXPECT_EQ(out, five);
    array->ReplaceElementsAt(1, five.data(), 1);
}

TEST(DynamicArray, WrongRunsTouchNothing) {
    const auto array = NewArray(0, sizeof(int));
    for (int i = 1; i <= 4; ++i)
        Append(*array, i);
    const int value = 9;
    array->DeleteElementsAt(0, 1);
    array->DeleteElementsAt(5, 1);
    array->DeleteElementsAt(2, 0);
    array->DeleteElementsAt(2, -1);
    array->InsertElementsBefore(1, &value, 0);
    array->InsertElementsBefore(1, &value, -2);
    array->ReplaceElementsAt(7, &value, 1);
    EXPECT_EQ(Ints(*array), (std::vector<int>{1, 2, 3, 4}));
    array->DeleteElementsAt(3, 100); // the part that exists
    array->InsertElementsBefore(77, &value, 1);
    array->InsertElementsBefore(-5, &value, 1);
    EXPECT_EQ(Ints(*array), (std::vector<int>{9, 1, 2, 9}));
}

TEST(DynamicArray, ElementsMayComeFromTheArrayItself) {
    const auto array = NewArray(0, sizeof(int));
    for (int i = 1; i <= 6; ++i) // full: the next insertion moves the storage
        Append(*array, i);
    array->InsertElementsBefore(2, array->ComputeAddress(5), 1);
    array->InsertElementsBefore(1, array->ComputeAddress(3), 2);
    EXPECT_EQ(Ints(*array), (std::vector<int>{2, 3, 1, 5, 2, 3, 4, 5, 6}));
    array->Merge(array.get());
    EXPECT_EQ(array->GetSize(), 18);
    EXPECT_EQ(Ints(*array)[9], 2);
    const auto bytes = NewArray(0, 1);
    array->Merge(bytes.get()); // another element size
    array->Merge(nullptr);
    EXPECT_EQ(array->GetSize(), 18);
}

TEST(DynamicArray, CloneHasStorageOfItsOwn) {
    const auto array = NewArray(0, sizeof(int));
    for (int i = 1; i <= 7; ++i)
        Append(*array, i);
    CArrayIterator walk(array.get());
    const Owned<TDynamicArray> copy(static_cast<TDynamicArray*>(array->Clone()));
    array->DeleteAll();
    EXPECT_EQ(Ints(*copy), (std::vector<int>{1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(copy->GetCapacity(), 12);
}

TEST(DynamicArray, OutOfMemoryLeavesTheArrayAsItWas) {
    const auto array = NewArray(0, sizeof(int));
    for (int i = 1; i <= 6; ++i)
        Append(*array, i);
    const auto unchanged = [&] {
        EXPECT_EQ(Ints(*array), (std::vector<int>{1, 2, 3, 4, 5, 6}));
        EXPECT_EQ(array->GetCapacity(), 6);
    };
    EXPECT_EQ(FailEachAllocation([&] { Owned<TObject>(array->Clone()); }, unchanged), 2);
    // Setting aside, then growing.
    EXPECT_EQ(FailEachAllocation(
                  [&] { array->InsertElementsBefore(1, array->ComputeAddress(2), 2); }, unchanged),
              2);
    EXPECT_EQ(Ints(*array), (std::vector<int>{2, 3, 1, 2, 3, 4, 5, 6}));
    Cmn_FailAllocationsAfter(0);
    array->DeleteElementsAt(2, 7); // giving room back cannot fail
    Cmn_FailAllocationsAfter(-1);
    EXPECT_EQ(Ints(*array), std::vector<int>{2});
    // An array that cannot be made at its size is freed on the way.
    EXPECT_EQ(FailEachAllocation([] { NewArray(10, 8).release()->Free(); }, [] {}), 1);
    EXPECT_THROW(array->SetArraySize(0x7FFFFFFF), Cmn_Failure);
}

TEST(SortedDynamicArray, KeepsOrderAndFindsTheFirstEqual) {
    Owned<TSortedDynamicArray> array(new TSortedDynamicArray);
    array->ISortedDynamicArray(0, 1);
    for (const char c : std::string("banana"))
        array->InsertElementInOrder(&c);
    EXPECT_EQ(std::memcmp(array->ComputeAddress(1), "aaabnn", 6), 0);
    EXPECT_EQ(array->DoSearchElement("n"), 5);
    EXPECT_EQ(array->DoSearchElement("a"), 1);
    EXPECT_EQ(array->DoSearchElement("c"), 0);
    array->Merge(array.get());
    EXPECT_EQ(std::memcmp(array->ComputeAddress(1), "aaaaaabbnnnn", 12), 0);
}

// Lists

TEST(SortedList, SearchesByKeyEqualityAndIdentity) {
    std::vector<std::unique_ptr<Numbered>> objects;
    NumberList list;
    for (const int number : {5, 1, 3, 3, 9}) {
        objects.push_back(std::make_unique<Numbered>(number));
        TObject* const object = objects.back().get();
        list.InsertElementInOrder(&object);
    }
    const auto byKey = [](TObject* object, const void* key) {
        const int wanted = *static_cast<const int*>(key);
        return static_cast<short>(NumberOf(object) < wanted ? -1 : NumberOf(object) > wanted);
    };
    const int three = 3, four = 4;
    EXPECT_EQ(list.Search(byKey, &three), objects[2].get());
    EXPECT_EQ(list.Search(byKey, &four), nullptr);
    EXPECT_EQ(list.GetEqualItemNo(objects[3].get()), 2); // the first equal one
    EXPECT_EQ(list.GetIdentityItemNo(objects[3].get()), 3);
    EXPECT_EQ(list.GetEqualItemNo(nullptr), 0);
    EXPECT_EQ(list.GetIdentityItemNo(nullptr), 0);
    list.Delete(objects[3].get());
    list.Delete(objects[3].get()); // not there any more
    list.AtDelete(0);
    EXPECT_EQ(list.GetSize(), 4);
    EXPECT_EQ(list.At(5), nullptr);
}

namespace {

/// Inputs that lead one or the other quicksort into quadratic time.
std::vector<int> SortInput(const std::string& shape, int size) {
    std::vector<int> numbers(static_cast<std::size_t>(size));
    std::iota(numbers.begin(), numbers.end(), 0);
    std::mt19937 random(7);
    if (shape == "random")
        std::shuffle(numbers.begin(), numbers.end(), random);
    else if (shape == "falling")
        std::reverse(numbers.begin(), numbers.end());
    else if (shape == "equal")
        std::fill(numbers.begin(), numbers.end(), 4);
    else if (shape == "few values")
        for (int& number : numbers)
            number = static_cast<int>(random() % 3);
    else if (shape == "organ pipe")
        for (int i = 0; i < size; ++i)
            numbers[static_cast<std::size_t>(i)] = std::min(i, size - i);
    return numbers;
}

/// The adversary of M. D. McIlroy, "A Killer Adversary for Quicksort" (1999): decides the order of
/// the objects while they are being compared, always to the sort's disadvantage.
class Adversary {
  public:
    explicit Adversary(int size) : mValues(static_cast<std::size_t>(size), size) {}
    static short Compare(TObject* a, TObject* b, void* self) {
        return static_cast<Adversary*>(self)->Answer(NumberOf(a), NumberOf(b));
    }
    long mComparisons = 0;

  private:
    short Answer(int a, int b) {
        ++mComparisons;
        const int gas = static_cast<int>(mValues.size());
        int& valueA = mValues[static_cast<std::size_t>(a)];
        int& valueB = mValues[static_cast<std::size_t>(b)];
        if (valueA == gas && valueB == gas)
            (a == mCandidate ? valueA : valueB) = mNextSolid++;
        if (valueA == gas)
            mCandidate = a;
        else if (valueB == gas)
            mCandidate = b;
        return static_cast<short>(valueA < valueB ? -1 : valueA > valueB);
    }
    std::vector<int> mValues; // the size itself while undecided
    int mCandidate = 0;
    int mNextSolid = 0;
};

} // namespace

TEST(SortedList, SortingNeedsFewComparisonsForEveryInput) {
    constexpr int kSize = 5000;
    const double limit = 3.0 * kSize * std::log2(kSize);
    for (const char* shape : {"rising", "falling", "random", "equal", "few values", "organ pipe"}) {
        std::vector<int> numbers = SortInput(shape, kSize);
        TList list;
        for (const int number : numbers)
            list.InsertLast(new Numbered(number));
        long comparisons = 0;
        list.SortBy(&CompareNumbers, &comparisons);
        std::sort(numbers.begin(), numbers.end());
        for (int i = 1; i <= kSize; ++i)
            ASSERT_EQ(NumberOf(list.At(i)), numbers[static_cast<std::size_t>(i - 1)]) << shape;
        EXPECT_LT(comparisons, limit) << shape;
        list.FreeAll();
    }
    TList list;
    for (int i = 0; i < kSize; ++i)
        list.InsertLast(new Numbered(i));
    Adversary adversary(kSize);
    list.SortBy(&Adversary::Compare, &adversary);
    EXPECT_LT(adversary.mComparisons, 4.0 * kSize * std::log2(kSize));
    list.FreeAll();
}

TEST(SortedList, AComparisonThatContradictsItselfLosesNoObject) {
    std::mt19937 random(11);
    for (int round = 0; round < 50; ++round) {
        TList list;
        const int size = static_cast<int>(random() % 200);
        for (int i = 0; i < size; ++i)
            list.InsertLast(new Numbered(i));
        list.SortBy(
            [](TObject*, TObject*, void* r) {
                return static_cast<short>(static_cast<int>((*static_cast<std::mt19937*>(r))() % 3) -
                                          1);
            },
            &random);
        std::vector<int> seen;
        for (int i = 1; i <= size; ++i)
            seen.push_back(NumberOf(list.At(i)));
        std::sort(seen.begin(), seen.end());
        for (int i = 0; i < size; ++i)
            ASSERT_EQ(seen[static_cast<std::size_t>(i)], i);
        list.FreeAll();
    }
}

TEST(List, IsAStackAndAQueue) {
    Numbered one(1), two(2), three(3);
    TList list;
    list.IList();
    list.Push(&one);
    list.Push(&two);
    list.InsertFirst(&three);
    EXPECT_EQ(list.Pop(), &two);
    EXPECT_EQ(list.Dequeue(), &three);
    list.AtPut(1, &two);
    list.AtPut(2, &one); // no such place
    EXPECT_EQ(list.Pop(), &two);
    EXPECT_EQ(list.Pop(), nullptr);
    EXPECT_EQ(list.Dequeue(), nullptr);
}

TEST(List, FreeAllSurvivesObjectsThatLeaveOnTheirOwn) {
    static TList* sList = nullptr;
    static int sFreed = 0;
    // Freeing one takes its neighbour out and frees it, as a view does with what belongs to it.
    class Leaver : public TObject {
      public:
        ~Leaver() override { ++sFreed; }
        void Free() override {
            if (TObject* const neighbour = sList->First()) {
                sList->Delete(neighbour);
                neighbour->TObject::Free();
            }
            TObject::Free();
        }
    };
    sList = new TList;
    for (int i = 0; i < 9; ++i)
        sList->InsertLast(new Leaver);
    sList->Push(nullptr);
    sList->FreeList();
    EXPECT_EQ(sFreed, 9);
}

// Iterators against a walk over a copy: for every step some elements are inserted or deleted, and
// the walk must meet exactly those that a slow reference says.

namespace {

struct Reference {
    std::vector<int> mValues; // in order
    std::vector<int> mAhead;  // values still to be met
};

} // namespace

TEST(ArrayIterator, StaysRightWhileElementsComeAndGo) {
    for (unsigned seed = 1; seed <= SeedsToTry(400); ++seed) {
        std::mt19937 random(seed);
        const bool forward = seed % 2 == 0;
        const auto below = [&](int n) { return static_cast<int>(random() % unsigned(n)); };
        const auto array = NewArray(0, sizeof(int));
        Reference expected;
        int next = 0;
        for (int size = below(12); next < size; ++next) {
            Append(*array, next);
            expected.mValues.push_back(next);
        }
        // A walk of part of the array, named by its first and last value.
        const int size = array->GetSize();
        int low = 1, high = size;
        if (size > 2 && seed % 3 == 0) {
            low = 1 + below(size);
            high = low + below(size - low + 1);
        }
        CArrayIterator walk(array.get(), low, high, forward);
        CArrayIterator witness(array.get()); // registered too, and never in the way
        auto& values = expected.mValues;
        expected.mAhead.assign(values.begin() + (low - 1), values.begin() + high);
        if (!forward)
            std::reverse(expected.mAhead.begin(), expected.mAhead.end());

        std::vector<int> met, wanted;
        int guard = 0;
        for (walk.Reset(); walk.More(); walk.Advance()) {
            ASSERT_LT(++guard, 200) << "seed " << seed;
            ASSERT_NE(walk.CurrentIndex(), 0);
            int value = -1;
            array->GetElementsAt(walk.CurrentIndex(), &value, 1);
            met.push_back(value);
            ASSERT_FALSE(expected.mAhead.empty()) << "seed " << seed;
            wanted.push_back(expected.mAhead.front());
            ASSERT_EQ(met, wanted) << "seed " << seed;
            const int current = value;
            bool currentIsThere = true;
            expected.mAhead.erase(expected.mAhead.begin());

            for (int edits = below(3); edits > 0; --edits) {
                const int count = static_cast<int>(values.size());
                if (below(2) == 0 && count > 0) {
                    const int index = 1 + below(count);
                    const int n = 1 + below(std::min(3, count - index + 1));
                    for (int i = 0; i < n; ++i) {
                        const int gone = values[static_cast<std::size_t>(index - 1)];
                        values.erase(values.begin() + (index - 1));
                        std::erase(expected.mAhead, gone);
                        currentIsThere = currentIsThere && gone != current;
                    }
                    array->DeleteElementsAt(index, n);
                } else if (!expected.mAhead.empty() && next < 40) {
                    // Before an element that is still ahead, so that the reference is sure where
                    // the new one belongs: met just before it (forwards) or just after (backwards).
                    const int at = below(static_cast<int>(expected.mAhead.size()));
                    const int neighbour = expected.mAhead[static_cast<std::size_t>(at)];
                    const auto place = std::find(values.begin(), values.end(), neighbour);
                    const int index = static_cast<int>(place - values.begin()) + 1;
                    if (forward && at == 0 && !currentIsThere)
                        continue; // into the gap of the deleted element: either answer would do
                    values.insert(place, next);
                    array->InsertElementsBefore(index, &next, 1);
                    // Before the lowest element of a backward walk is outside of the walk.
                    const bool isLowest = at + 1 == static_cast<int>(expected.mAhead.size());
                    if (forward)
                        expected.mAhead.insert(expected.mAhead.begin() + at, next);
                    else if (!isLowest)
                        expected.mAhead.insert(expected.mAhead.begin() + at + 1, next);
                    ++next;
                }
            }
        }
        EXPECT_TRUE(expected.mAhead.empty()) << "seed " << seed;
        EXPECT_EQ(Ints(*array), values) << "seed " << seed;
    }
}

TEST(ArrayIterator, ALoopThatAddsOutsideOfItsWalkEnds) {
    for (const bool forward : {true, false}) {
        const auto array = NewArray(0, sizeof(int));
        for (int i = 1; i <= 3; ++i)
            Append(*array, i);
        int steps = 0;
        CArrayIterator walk(array.get(), forward);
        for (walk.Reset(); walk.More() && steps < 100; walk.Advance()) {
            Append(*array, 7);
            const int value = 8;
            array->InsertElementsBefore(1, &value, 1);
            ++steps;
        }
        EXPECT_EQ(steps, 3);
        int index = walk.FirstIndex(); // a new walk of the whole array takes them all
        EXPECT_EQ(index, forward ? 1 : 9);
        for (steps = 0; walk.More(); walk.Advance())
            ++steps;
        EXPECT_EQ(steps, 9);
    }
}

TEST(ArrayIterator, OutlivesItsArray) {
    auto array = NewArray(0, sizeof(int));
    Append(*array, 1);
    CArrayIterator walk(array.get());
    CArrayIterator nothing(nullptr);
    EXPECT_EQ(walk.FirstIndex(), 1);
    array.reset();
    EXPECT_FALSE(walk.More());
    EXPECT_EQ(walk.FirstIndex(), 0);
    EXPECT_FALSE(nothing.More());
}

TEST(ObjectIterator, WalksAListThatIsEmptiedMeanwhile) {
    int freed = 0;
    TList list;
    for (int i = 0; i < 5; ++i)
        list.InsertLast(new Numbered(i, &freed));
    std::vector<int> met;
    CObjectIterator walk(&list, 2, 4, /*forward*/ false);
    for (TObject* object = walk.FirstObject(); walk.More(); object = walk.NextObject()) {
        met.push_back(NumberOf(object));
        list.Delete(object);
        EXPECT_EQ(walk.CurrentObject(), nullptr);
        object->Free();
    }
    EXPECT_EQ(met, (std::vector<int>{3, 2, 1}));
    list.FreeAll();
    EXPECT_EQ(freed, 5);
}
