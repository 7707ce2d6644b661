#include <bit>
#include <functional>
#include <utility>

#include "qlx/views/udynamicarray.h"

namespace {

// Below this many objects insertion is faster than splitting further.
constexpr int kInsertionSortLimit = 12;

short CompareByList(TObject* first, TObject* second, void* list) {
    return static_cast<TSortedList*>(list)->Compare(first, second);
}

/// Numbers that are scattered well enough to choose places by, the same in every run (splitmix64).
std::uint64_t Scatter(std::uint64_t seed) {
    seed += 0x9E3779B97F4A7C15u;
    seed = (seed ^ seed >> 30) * 0xBF58476D1CE4E5B9u;
    seed = (seed ^ seed >> 27) * 0x94D049BB133111EBu;
    return seed ^ seed >> 31;
}

} // namespace

QLX_DEFINE_CLASS(TSortedList, TSortedDynamicArray)

TSortedList::TSortedList() : TSortedDynamicArray(static_cast<short>(sizeof(void*))) {}

TSortedList::~TSortedList() = default;

TObject* TSortedList::At(int index) {
    return index >= 1 && index <= GetSize() ? Place(index) : nullptr;
}

short TSortedList::Compare(TObject* first, TObject* second) {
    // std::less orders pointers of different objects, which the operators need not do.
    if (std::less<TObject*>()(first, second))
        return -1;
    return first == second ? 0 : 1;
}

short TSortedList::CompareElements(void* first, void* second) {
    return Compare(*static_cast<TObject**>(first), *static_cast<TObject**>(second));
}

TObject* TSortedList::Search(SearchFunction compare, const void* key) {
    return DoSearch(compare, key);
}

TObject* TSortedList::DoSearch(SearchFunction compare, const void* key) {
    int low = 1;
    int high = GetSize() + 1;
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (compare(At(middle), key) < 0)
            low = middle + 1;
        else
            high = middle;
    }
    TObject* const found = At(low);
    return found && compare(found, key) == 0 ? found : nullptr;
}

int TSortedList::GetEqualItemNo(TObject* object) { return object ? DoSearchElement(&object) : 0; }

int TSortedList::GetIdentityItemNo(TObject* object) {
    if (!object)
        return 0;
    for (int i = 1; i <= GetSize(); ++i)
        if (Place(i) == object)
            return i;
    return 0;
}

void TSortedList::AtDelete(int index) { DeleteElementsAt(index, 1); }

void TSortedList::Delete(TObject* object) { AtDelete(GetIdentityItemNo(object)); }

void TSortedList::FreeAll() {
    while (!IsEmpty()) {
        TObject* const object = Last();
        AtDelete(GetSize());
        if (object)
            object->Free();
    }
}

void TSortedList::FreeList() {
    FreeAll();
    Free();
}

// Sorting is quicksort by the median of three scattered places. Splitting may go badly for a
// hostile input all the same, so its depth is bounded, and what is left then is sorted by heap:
// never more than O(n log n) comparisons. Every loop is held by the bounds of its range and not by
// what the comparison answers, so that a comparison that contradicts itself yields some order and
// no more harm.

void TSortedList::Sort() { SortBy(&CompareByList, this); }

void TSortedList::SortBy(SortFunction compare, void* argument) {
    QuickSort(1, GetSize(), compare, argument);
}

void TSortedList::QuickSort(int low, int high, SortFunction compare, void* argument) {
    low = low < 1 ? 1 : low;
    high = high > GetSize() ? GetSize() : high;
    if (low < high)
        SortRange(low, high, compare, argument,
                  2 * std::bit_width(static_cast<unsigned>(high - low + 1)));
}

void TSortedList::SortRange(int low, int high, SortFunction compare, void* argument,
                            int depthLeft) {
    while (high - low >= kInsertionSortLimit) {
        if (depthLeft-- == 0) {
            HeapSort(low, high, compare, argument);
            return;
        }
        const int split = QSRandomPartition(low, high, compare, argument);
        // The smaller side recurses, so the stack stays logarithmic.
        if (split - low < high - split) {
            SortRange(low, split, compare, argument, depthLeft);
            low = split + 1;
        } else {
            SortRange(split + 1, high, compare, argument, depthLeft);
            high = split;
        }
    }
    InsertionSort(low, high, compare, argument);
}

int TSortedList::QSRandomPartition(int low, int high, SortFunction compare, void* argument) {
    const auto size = static_cast<std::uint64_t>(std::int64_t{high} - low + 1);
    std::uint64_t random = static_cast<std::uint64_t>(low) << 32 | static_cast<unsigned>(high);
    int places[3];
    for (int& place : places) {
        random = Scatter(random);
        place = low + static_cast<int>(random % size);
    }
    const auto isBefore = [&](int a, int b) { return compare(Place(a), Place(b), argument) < 0; };
    if (isBefore(places[1], places[0]))
        std::swap(places[0], places[1]);
    if (isBefore(places[2], places[1]))
        std::swap(places[1], places[2]);
    if (isBefore(places[1], places[0]))
        std::swap(places[0], places[1]);
    std::swap(Place(low), Place(places[1]));
    return QSPartition(low, high, compare, argument);
}

int TSortedList::QSPartition(int low, int high, SortFunction compare, void* argument) {
    TObject* const pivot = Place(low);
    int up = low;
    int down = high;
    // The first pass begins at the pivot itself, which therefore may change sides.
    for (;;) {
        while (up < high && compare(Place(up), pivot, argument) < 0)
            ++up;
        while (down > low && compare(Place(down), pivot, argument) > 0)
            --down;
        if (up >= down)
            return down < high ? down : high - 1;
        std::swap(Place(up), Place(down));
        ++up;
        --down;
    }
}

void TSortedList::InsertionSort(int low, int high, SortFunction compare, void* argument) {
    for (int i = low + 1; i <= high; ++i) {
        TObject* const object = Place(i);
        int hole = i;
        for (; hole > low && compare(Place(hole - 1), object, argument) > 0; --hole)
            Place(hole) = Place(hole - 1);
        Place(hole) = object;
    }
}

void TSortedList::HeapSort(int low, int high, SortFunction compare, void* argument) {
    const int count = high - low + 1;
    const auto place = [this, low](int node) -> TObject*& { return Place(low + node); };
    const auto siftDown = [&](int node, int size) {
        for (int child = 2 * node + 1; child < size; child = 2 * node + 1) {
            if (child + 1 < size && compare(place(child), place(child + 1), argument) < 0)
                ++child;
            if (compare(place(node), place(child), argument) >= 0)
                return;
            std::swap(place(node), place(child));
            node = child;
        }
    };
    for (int node = count / 2; node-- > 0;)
        siftDown(node, count);
    for (int size = count - 1; size > 0; --size) {
        std::swap(place(0), place(size));
        siftDown(0, size);
    }
}

QLX_DEFINE_CLASS(TList, TSortedList)

TList::~TList() = default;

void TList::IList() { IDynamicArray(0, static_cast<short>(sizeof(void*))); }

void TList::AtPut(int index, TObject* object) { ReplaceElementsAt(index, &object, 1); }

int TList::DoSearchElement(const void* element) {
    for (int i = 1; i <= GetSize(); ++i)
        if (CompareElements(ComputeAddress(i), const_cast<void*>(element)) == 0)
            return i;
    return 0;
}

int TList::InsertElementInOrder(const void* element) {
    int index = 1;
    while (index <= GetSize() &&
           CompareElements(ComputeAddress(index), const_cast<void*>(element)) <= 0)
        ++index;
    InsertElementsBefore(index, element, 1);
    return index;
}

void TList::InsertFirst(TObject* object) { InsertElementsBefore(1, &object, 1); }

void TList::Push(TObject* object) { InsertLast(object); }

TObject* TList::Pop() {
    TObject* const object = Last();
    AtDelete(GetSize());
    return object;
}

TObject* TList::Dequeue() {
    TObject* const object = First();
    AtDelete(1);
    return object;
}

// Lists keep the order they were given, so not by sorting.
// NOLINTNEXTLINE(bugprone-parent-virtual-call)
void TList::Merge(TDynamicArray* other) { TDynamicArray::Merge(other); }

TObject* TList::DoSearch(SearchFunction compare, const void* key) {
    for (int i = 1; i <= GetSize(); ++i)
        if (TObject* const object = At(i); compare(object, key) == 0)
            return object;
    return nullptr;
}
