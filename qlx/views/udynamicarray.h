// The framework's growable containers: elements of a fixed size by value, and lists of objects.
// Indices are 1-based throughout.
#pragma once

#include "qlx/foundation/uobject.h"

class CArrayIterator;

/// Elements of one size, stored one behind the other at a stride that is a power of two. Grows by
/// whole chunks and gives room back when a whole chunk is spare. Elements are bytes: they are moved
/// by copying and never constructed or destroyed. User-interface thread.
///
/// Indices are not reported when they are wrong: an operation does what it can for the part of its
/// run that exists. Allocation failure raises -108 and leaves the array as it was.
class QLX_API TDynamicArray : public TObject {
  public:
    QLX_DECLARE_CLASS(TDynamicArray);
    TDynamicArray() = default;
    ~TDynamicArray() override;
    TDynamicArray(const TDynamicArray&) = delete;
    TDynamicArray& operator=(const TDynamicArray&) = delete;

    /// Empties the array, sets the element size in bytes (at least 1) and makes room for
    /// initialSize elements. When that fails, the array is freed and the failure passed on.
    void IDynamicArray(int initialSize, short elementSize);

    // Slot order is part of the binary interface: append, never move.

    /// The number of elements.
    [[nodiscard]] virtual int GetSize();
    [[nodiscard]] virtual bool IsEmpty();
    /// Makes room for n elements, in whole chunks: the capacity becomes the smallest multiple of
    /// the growth increment above n. Does nothing when n fits and less than a chunk is spare.
    /// Elements for which no room is left are dropped.
    virtual void SetArraySize(int n);
    /// Where an element is stored. Not checked; valid until the array changes.
    [[nodiscard]] virtual void* ComputeAddress(int index);
    /// Copies n elements from index on to out, at the array's stride (a single one at its own
    /// size).
    virtual void GetElementsAt(int index, void* out, int n);
    /// Inserts n elements, read at the array's stride (a single one at its own size); an index
    /// beyond the end appends. The elements may come from this very array.
    virtual void InsertElementsBefore(int index, const void* elements, int n);
    virtual void ReplaceElementsAt(int index, const void* elements, int n);
    virtual void DeleteElementsAt(int index, int n);
    virtual void DeleteAll();
    /// Appends the elements of another array of the same element size; others are left out.
    virtual void Merge(TDynamicArray* other);

    /// A copy with storage of its own. Iterators stay with the original.
    [[nodiscard]] TObject* Clone() override;
    void Free() override;

    [[nodiscard]] short GetElementSize() const { return mElementSize; }
    [[nodiscard]] int GetCapacity() const { return mCapacity; }
    [[nodiscard]] int GetGrowthIncrement() const { return mGrowthIncrement; }
    /// How many elements a chunk holds. With 0 the room is always exactly what is needed.
    void SetGrowthIncrement(int increment) { mGrowthIncrement = increment < 0 ? 0 : increment; }

  protected:
    explicit TDynamicArray(short elementSize) { SetElementSize(elementSize); }
    /// The first element's address; null while there is no room.
    [[nodiscard]] char* GetStorage() const { return mStorage; }
    [[nodiscard]] std::size_t GetStride() const { return std::size_t{1} << mElementShift; }

  private:
    friend class CArrayIterator;

    void SetElementSize(short elementSize);
    void SetCapacity(int capacity);
    void InsertRun(int index, const void* elements, int n);
    /// The bytes of a run that an operation copies.
    [[nodiscard]] std::size_t RunBytes(int n) const;
    [[nodiscard]] bool IsInStorage(const void* address) const;
    void DetachIterators();

    // The order of the fields is part of the binary interface.
    CArrayIterator* mIterators = nullptr; // not owned; the first of the live iterators, linked
    std::int32_t mCount = 0;
    std::int16_t mElementSize = 1;
    std::int16_t mElementShift = 0;
    std::int32_t mGrowthIncrement = 6;
    std::int32_t mCapacity = 0;
    char* mStorage = nullptr; // owned; a block of cmn_memory
    std::int64_t mStorageSize = 0;
};

/// A dynamic array that is kept in the order of a comparison, equal elements in the order in which
/// they came.
class QLX_API TSortedDynamicArray : public TDynamicArray {
  public:
    QLX_DECLARE_CLASS(TSortedDynamicArray);
    TSortedDynamicArray() = default;
    ~TSortedDynamicArray() override;

    void ISortedDynamicArray(int initialSize, short elementSize);

    // Slot order is part of the binary interface: append, never move.

    /// Below 0 when the first element comes before the second, 0 when they are equal, above 0
    /// otherwise. Both arguments point at elements. Here elements are compared bytewise.
    virtual short CompareElements(void* first, void* second);
    /// The index of an element that compares equal, the first of several; 0 when there is none. A
    /// binary search.
    [[nodiscard]] virtual int DoSearchElement(const void* element);
    /// Inserts behind the elements that are not greater; answers the new element's index.
    virtual int InsertElementInOrder(const void* element);

    /// Inserts each element of the other array in its place.
    void Merge(TDynamicArray* other) override;

  protected:
    explicit TSortedDynamicArray(short elementSize) : TDynamicArray(elementSize) {}
};

/// Pointers to objects, kept in order. The list does not own the objects unless it is ended with
/// FreeList or emptied with FreeAll.
class QLX_API TSortedList : public TSortedDynamicArray {
  public:
    QLX_DECLARE_CLASS(TSortedList);
    TSortedList();
    ~TSortedList() override;

    /// Compares an object with a key: below 0 when the object comes before the key.
    using SearchFunction = short (*)(TObject* object, const void* key);
    /// Compares two objects; the argument is the one given to the sort.
    using SortFunction = short (*)(TObject* first, TObject* second, void* argument);

    // Slot order is part of the binary interface: append, never move.

    /// Compares the two objects that the arguments point at (each is a place of the list), by
    /// Compare.
    short CompareElements(void* first, void* second) override;
    /// The first object that compares equal to the key, or null. The list has to be in the order of
    /// the comparison.
    [[nodiscard]] virtual TObject* Search(SearchFunction compare, const void* key);
    [[nodiscard]] virtual TObject* DoSearch(SearchFunction compare, const void* key);
    /// The index of an object that compares equal; 0 for null or none.
    [[nodiscard]] virtual int GetEqualItemNo(TObject* object);
    /// The index of that very object; 0 for null or none.
    [[nodiscard]] virtual int GetIdentityItemNo(TObject* object);
    /// Puts the list into the order of Compare. Equal objects may change places. Sorting takes
    /// O(n log n) comparisons whatever the input; the comparison must not change the list.
    virtual void Sort();
    virtual void SortBy(SortFunction compare, void* argument);
    /// Sorts the places from low to high.
    virtual void QuickSort(int low, int high, SortFunction compare, void* argument);
    /// Splits low to high by the object at low; answers an index below high such that nothing up to
    /// it is greater than anything after it.
    virtual int QSPartition(int low, int high, SortFunction compare, void* argument);
    /// The same, with the median of three places chosen at random as the object to split by.
    virtual int QSRandomPartition(int low, int high, SortFunction compare, void* argument);
    /// Takes the object out of the list; the object lives on.
    virtual void AtDelete(int index);
    virtual void Delete(TObject* object);
    /// Empties the list, freeing every object, the last one first. Each has left the list before it
    /// is freed, so an object may look at the list, or take others out of it, meanwhile.
    virtual void FreeAll();
    /// FreeAll, then Free of the list itself.
    virtual void FreeList();
    /// Orders two objects; here by address.
    virtual short Compare(TObject* first, TObject* second);

    /// Null when the index is out of range.
    [[nodiscard]] TObject* At(int index);
    [[nodiscard]] TObject* First() { return At(1); }
    [[nodiscard]] TObject* Last() { return At(GetSize()); }

  private:
    [[nodiscard]] TObject*& Place(int index) {
        return reinterpret_cast<TObject**>(GetStorage())[index - 1];
    }
    void SortRange(int low, int high, SortFunction compare, void* argument, int depthLeft);
    void InsertionSort(int low, int high, SortFunction compare, void* argument);
    void HeapSort(int low, int high, SortFunction compare, void* argument);
};

/// The general list of objects, in the order that its users give it. Searches walk it from the
/// first object to the last.
class QLX_API TList : public TSortedList {
  public:
    QLX_DECLARE_CLASS(TList);
    TList() = default;
    ~TList() override;

    /// An empty list.
    void IList();

    // Slot order is part of the binary interface: append, never move.

    /// Puts an object into the place of another one, which lives on; ignored when there is no such
    /// place.
    virtual void AtPut(int index, TObject* object);
    [[nodiscard]] int DoSearchElement(const void* element) override;
    /// Inserts before the first object that is greater.
    int InsertElementInOrder(const void* element) override;
    virtual void InsertFirst(TObject* object);
    virtual void InsertLast(TObject* object);
    /// Appends.
    virtual void Push(TObject* object);
    /// Takes the last object out and answers it: with Push, a stack. Null when the list is empty.
    virtual TObject* Pop();
    /// Takes the first object out and answers it: with Push, a queue. Null when the list is empty.
    virtual TObject* Dequeue();

    /// Appends the other list's objects.
    void Merge(TDynamicArray* other) override;
    [[nodiscard]] TObject* DoSearch(SearchFunction compare, const void* key) override;
};
