// Iterators over the framework's containers that stay right while elements come and go.
#pragma once

#include "qlx/foundation/uiterator.h"
#include "qlx/views/udynamicarray.h"

/// Walks the indices of an array, or of a part of it, forwards or backwards:
///
///     CArrayIterator i(array);
///     for (int index = i.FirstIndex(); i.More(); index = i.NextIndex()) ...
///
/// The array adjusts its iterators with every insertion and deletion. An iterator stays with its
/// element wherever that moves. Elements inserted between the bounds are met when the walk gets
/// there; those added before the first or after the last element of the walk are not, so a loop
/// that appends ends. When the current element is deleted, there is no current one until the walk
/// advances to the next that is left. An iterator that outlives its array has nothing more to
/// visit.
class QLX_API CArrayIterator : public CIterator {
  public:
    /// Walks the whole array; null is an empty one.
    explicit CArrayIterator(TDynamicArray* array, bool forward = true);
    /// Walks from index low to high, both included.
    CArrayIterator(TDynamicArray* array, int low, int high, bool forward = true);
    ~CArrayIterator() override;
    CArrayIterator(const CArrayIterator&) = delete;
    CArrayIterator& operator=(const CArrayIterator&) = delete;

    [[nodiscard]] bool More() override;
    /// Starts again, over the whole array as it is now or over what the bounds have become.
    void Reset() override;
    void Advance() override;

    // Each answers the index it arrives at, 0 when there is none.
    int FirstIndex();
    int NextIndex();
    [[nodiscard]] int CurrentIndex();

  protected:
    [[nodiscard]] TDynamicArray* GetArray() const { return mArray; }

  private:
    friend class TDynamicArray;

    void Attach();
    void Detach();
    void ElementsInserted(int index, int n);
    void ElementsDeleted(int index, int n);

    TDynamicArray* mArray;               // not owned; null once the array is gone
    CArrayIterator* mNext = nullptr;     // not owned; the array's list of iterators
    CArrayIterator* mPrevious = nullptr; // not owned
    int mLow;
    int mHigh;
    int mCurrent = 0;
    bool mForward;
    bool mWholeArray;
    bool mCurrentIsGone = false; // deleted; advancing from mCurrent reaches the next that is left
};

/// Walks the objects of a list.
class QLX_API CObjectIterator : public CArrayIterator {
  public:
    explicit CObjectIterator(TSortedList* list, bool forward = true);
    CObjectIterator(TSortedList* list, int low, int high, bool forward = true);
    ~CObjectIterator() override;

    // Each answers null when there is no object.
    TObject* FirstObject();
    TObject* NextObject();
    [[nodiscard]] TObject* CurrentObject();
};
