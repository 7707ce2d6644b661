#include "qlx/views/ulistiterator.h"

#include <algorithm>

CArrayIterator::CArrayIterator(TDynamicArray* array, bool forward)
    : mArray(array), mLow(1), mHigh(0), mForward(forward), mWholeArray(true) {
    Attach();
    Reset();
}

CArrayIterator::CArrayIterator(TDynamicArray* array, int low, int high, bool forward)
    : mArray(array), mLow(std::max(low, 1)), mHigh(array ? std::min(high, array->GetSize()) : 0),
      mForward(forward), mWholeArray(false) {
    Attach();
    Reset();
}

CArrayIterator::~CArrayIterator() { Detach(); }

void CArrayIterator::Attach() {
    if (!mArray)
        return;
    mNext = mArray->mIterators;
    if (mNext)
        mNext->mPrevious = this;
    mArray->mIterators = this;
}

void CArrayIterator::Detach() {
    if (!mArray)
        return;
    if (mNext)
        mNext->mPrevious = mPrevious;
    if (mPrevious)
        mPrevious->mNext = mNext;
    else
        mArray->mIterators = mNext;
    mArray = nullptr;
    mNext = mPrevious = nullptr;
}

bool CArrayIterator::More() {
    if (!mArray)
        return false;
    const int place = mCurrentIsGone ? mCurrent + (mForward ? 1 : -1) : mCurrent;
    return place >= mLow && place <= mHigh;
}

void CArrayIterator::Reset() {
    if (mWholeArray) {
        mLow = 1;
        mHigh = mArray ? mArray->GetSize() : 0;
    }
    mCurrent = mForward ? mLow : mHigh;
    mCurrentIsGone = false;
}

void CArrayIterator::Advance() {
    if (!More())
        return;
    mCurrent += mForward ? 1 : -1;
    mCurrentIsGone = false;
}

int CArrayIterator::FirstIndex() {
    Reset();
    return CurrentIndex();
}

int CArrayIterator::NextIndex() {
    Advance();
    return CurrentIndex();
}

int CArrayIterator::CurrentIndex() { return More() && !mCurrentIsGone ? mCurrent : 0; }

void CArrayIterator::ElementsInserted(int index, int n) {
    // The bounds stay with their elements: what is put before the first one is outside of the walk.
    if (index <= mLow)
        mLow += n;
    if (index <= mHigh)
        mHigh += n;
    // Of a backward walk whose element is gone, mCurrent is the place behind the gap.
    const bool isBehindGap = mCurrentIsGone && !mForward;
    if (isBehindGap ? index < mCurrent : index <= mCurrent)
        mCurrent += n;
}

void CArrayIterator::ElementsDeleted(int index, int n) {
    const int last = index + n - 1;
    const auto isInRun = [index, last](int place) { return place >= index && place <= last; };
    const auto isInWalk = [this](int place) { return place >= mLow && place <= mHigh; };
    if (isInRun(mCurrent)) {
        if (isInWalk(mCurrent))
            mCurrentIsGone = true;
        // A walk that is over stays outside its bounds; one that goes on stops just before what it
        // meets next.
        const bool isBeforeRun = mCurrentIsGone ? mForward : !mForward;
        mCurrent = isBeforeRun ? index - 1 : index;
    } else if (mCurrent > last) {
        mCurrent -= n;
    }
    mLow = isInRun(mLow) ? index : mLow > last ? mLow - n : mLow;
    mHigh = isInRun(mHigh) ? index - 1 : mHigh > last ? mHigh - n : mHigh;
}

CObjectIterator::CObjectIterator(TSortedList* list, bool forward) : CArrayIterator(list, forward) {}

CObjectIterator::CObjectIterator(TSortedList* list, int low, int high, bool forward)
    : CArrayIterator(list, low, high, forward) {}

CObjectIterator::~CObjectIterator() = default;

TObject* CObjectIterator::FirstObject() {
    Reset();
    return CurrentObject();
}

TObject* CObjectIterator::NextObject() {
    Advance();
    return CurrentObject();
}

TObject* CObjectIterator::CurrentObject() {
    const int index = CurrentIndex();
    return index ? static_cast<TSortedList*>(GetArray())->At(index) : nullptr;
}
