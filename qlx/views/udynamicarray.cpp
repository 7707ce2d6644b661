#include "qlx/views/udynamicarray.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

#include "basekit/cmn/cmn_failure.h"
#include "basekit/cmn/cmn_memory.h"
#include "qlx/views/ulistiterator.h"

namespace {

/// A copy of some bytes for as long as the scope lasts; none for a size of 0.
class StBlock {
  public:
    StBlock(std::size_t size, const void* bytes) {
        if (size == 0)
            return;
        mBytes = static_cast<char*>(Cmn_ReallocateOrFail(nullptr, size));
        std::memcpy(mBytes, bytes, size);
    }
    ~StBlock() { Cmn_FreeBlock(mBytes); }
    StBlock(const StBlock&) = delete;
    StBlock& operator=(const StBlock&) = delete;
    const char* Get() const { return mBytes; }

  private:
    char* mBytes = nullptr; // owned
};

/// The bytes that are asked of the allocator for a storage of so many. The capacity follows the
/// growth increment to the element, but a long array that grows by small chunks would move at each
/// of them: its block has room up to the next quarter of a power of two, and moves when that is
/// reached.
std::size_t RoomFor(std::int64_t size) {
    const auto bytes = static_cast<std::size_t>(size);
    if (bytes <= 128)
        return bytes;
    const std::size_t step = std::bit_floor(bytes) / 4; // a power of two
    return (bytes + step - 1) & ~(step - 1);
}

} // namespace

QLX_DEFINE_CLASS(TDynamicArray, TObject)

TDynamicArray::~TDynamicArray() {
    DetachIterators();
    Cmn_FreeBlock(mStorage);
}

void TDynamicArray::DetachIterators() {
    while (mIterators)
        mIterators->Detach();
}

void TDynamicArray::IDynamicArray(int initialSize, short elementSize) {
    DeleteAll();
    SetCapacity(0);
    SetElementSize(elementSize);
    try {
        SetArraySize(initialSize);
    } catch (...) {
        Free();
        throw;
    }
}

void TDynamicArray::SetElementSize(short elementSize) {
    mElementSize = std::max<std::int16_t>(elementSize, 1);
    const auto last = static_cast<unsigned>(mElementSize - 1);
    mElementShift = static_cast<std::int16_t>(std::bit_width(last));
}

int TDynamicArray::GetSize() { return mCount; }

bool TDynamicArray::IsEmpty() { return mCount == 0; }

void TDynamicArray::SetArraySize(int n) {
    n = std::max(n, 0);
    if (n <= mCapacity && mCapacity - n < mGrowthIncrement)
        return;
    std::int64_t capacity = n;
    if (mGrowthIncrement > 0)
        capacity = (std::int64_t{n / mGrowthIncrement} + 1) * mGrowthIncrement;
    if (capacity > std::numeric_limits<std::int32_t>::max())
        Cmn_RaiseFailure(kFailure_OutOfMemory);
    SetCapacity(static_cast<int>(capacity));
}

void TDynamicArray::SetCapacity(int capacity) {
    if (capacity == mCapacity)
        return;
    const std::int64_t size = std::int64_t{capacity} << mElementShift;
    if (capacity == 0) {
        Cmn_FreeBlock(mStorage);
        mStorage = nullptr;
    } else if (const std::size_t room = RoomFor(size); !mStorage || room != RoomFor(mStorageSize)) {
        // Without memory to move to, the array keeps the room it has: giving room back cannot fail.
        void* const moved = capacity < mCapacity ? Cmn_Reallocate(mStorage, room)
                                                 : Cmn_ReallocateOrFail(mStorage, room);
        if (!moved)
            return;
        mStorage = static_cast<char*>(moved);
    }
    mCapacity = capacity;
    mStorageSize = size;
    mCount = std::min(mCount, mCapacity);
}

void* TDynamicArray::ComputeAddress(int index) {
    return mStorage +
           (static_cast<std::ptrdiff_t>(index) - 1) * (std::ptrdiff_t{1} << mElementShift);
}

std::size_t TDynamicArray::RunBytes(int n) const {
    return n == 1 ? static_cast<std::size_t>(mElementSize)
                  : static_cast<std::size_t>(n) * GetStride();
}

bool TDynamicArray::IsInStorage(const void* address) const {
    const auto place = reinterpret_cast<std::uintptr_t>(address);
    const auto start = reinterpret_cast<std::uintptr_t>(mStorage);
    return mStorage && place >= start && place < start + static_cast<std::uintptr_t>(mStorageSize);
}

void TDynamicArray::GetElementsAt(int index, void* out, int n) {
    if (index < 1 || index > mCount || n <= 0)
        return;
    std::memcpy(out, ComputeAddress(index), RunBytes(std::min(n, mCount - index + 1)));
}

void TDynamicArray::ReplaceElementsAt(int index, const void* elements, int n) {
    if (index < 1 || index > mCount || n <= 0)
        return;
    std::memmove(ComputeAddress(index), elements, RunBytes(std::min(n, mCount - index + 1)));
}

void TDynamicArray::InsertElementsBefore(int index, const void* elements, int n) {
    // A list that is filled: one pointer at the end, where there is room.
    const bool isSimple = n == 1 && mElementSize == sizeof(void*) && index > mCount &&
                          mCount < mCapacity && !mIterators;
    if (!isSimple) {
        InsertRun(index, elements, n);
        return;
    }
    std::memmove(mStorage + static_cast<std::size_t>(mCount) * sizeof(void*), elements,
                 sizeof(void*));
    ++mCount;
}

void TDynamicArray::InsertRun(int index, const void* elements, int n) {
    if (n <= 0)
        return;
    index = std::clamp(index, 1, mCount + 1);
    if (n > std::numeric_limits<std::int32_t>::max() - mCount)
        Cmn_RaiseFailure(kFailure_OutOfMemory);
    // Making room moves the storage, so elements of this very array are set aside first.
    const StBlock aside(IsInStorage(elements) ? RunBytes(n) : 0, elements);
    if (aside.Get())
        elements = aside.Get();
    if (mCount + n > mCapacity)
        SetArraySize(mCount + n);
    const std::size_t stride = GetStride();
    if (index <= mCount)
        std::memmove(ComputeAddress(index + n), ComputeAddress(index),
                     static_cast<std::size_t>(mCount - index + 1) * stride);
    std::memcpy(ComputeAddress(index), elements, RunBytes(n));
    mCount += n;
    for (CArrayIterator* iterator = mIterators; iterator; iterator = iterator->mNext)
        iterator->ElementsInserted(index, n);
}

void TDynamicArray::DeleteElementsAt(int index, int n) {
    if (index < 1 || index > mCount || n <= 0)
        return;
    n = std::min(n, mCount - index + 1);
    const int count = mCount - n;
    if (index <= count)
        std::memmove(ComputeAddress(index), ComputeAddress(index + n),
                     static_cast<std::size_t>(count - index + 1) * GetStride());
    // Deliberate: the count follows after the room has been given back.
    SetArraySize(count);
    mCount = count;
    for (CArrayIterator* iterator = mIterators; iterator; iterator = iterator->mNext)
        iterator->ElementsDeleted(index, n);
}

void TDynamicArray::DeleteAll() { DeleteElementsAt(1, mCount); }

void TDynamicArray::Merge(TDynamicArray* other) {
    if (!other || other->mElementSize != mElementSize || other->IsEmpty())
        return;
    InsertElementsBefore(mCount + 1, other->ComputeAddress(1), other->GetSize());
}

TObject* TDynamicArray::Clone() {
    auto* copy = static_cast<TDynamicArray*>(TObject::Clone());
    copy->mIterators = nullptr;
    copy->mStorage = nullptr;
    copy->mStorageSize = 0;
    copy->mCapacity = 0;
    copy->mCount = 0;
    try {
        copy->SetCapacity(mCapacity);
    } catch (...) {
        copy->Free();
        throw;
    }
    copy->mCount = mCount;
    if (copy->mStorage)
        std::memcpy(copy->mStorage, mStorage, static_cast<std::size_t>(mCount) * GetStride());
    return copy;
}

void TDynamicArray::Free() {
    // Iterators are let go first: what the dependencies tell others may walk on.
    DetachIterators();
    TObject::Free();
}

// Here, where the compiler can merge the question for the size into it.
void TList::InsertLast(TObject* object) { InsertElementsBefore(GetSize() + 1, &object, 1); }

QLX_DEFINE_CLASS(TSortedDynamicArray, TDynamicArray)

TSortedDynamicArray::~TSortedDynamicArray() = default;

void TSortedDynamicArray::ISortedDynamicArray(int initialSize, short elementSize) {
    IDynamicArray(initialSize, elementSize);
}

short TSortedDynamicArray::CompareElements(void* first, void* second) {
    const int order = std::memcmp(first, second, static_cast<std::size_t>(GetElementSize()));
    return static_cast<short>(order < 0 ? -1 : order > 0 ? 1 : 0);
}

int TSortedDynamicArray::DoSearchElement(const void* element) {
    int low = 1;
    int high = GetSize() + 1; // the first index that is not below the element lies in low..high
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (CompareElements(ComputeAddress(middle), const_cast<void*>(element)) < 0)
            low = middle + 1;
        else
            high = middle;
    }
    const bool found =
        low <= GetSize() && CompareElements(ComputeAddress(low), const_cast<void*>(element)) == 0;
    return found ? low : 0;
}

int TSortedDynamicArray::InsertElementInOrder(const void* element) {
    int low = 1;
    int high = GetSize() + 1; // the first index above the element lies in low..high
    while (low < high) {
        const int middle = low + (high - low) / 2;
        if (CompareElements(ComputeAddress(middle), const_cast<void*>(element)) > 0)
            high = middle;
        else
            low = middle + 1;
    }
    InsertElementsBefore(low, element, 1);
    return low;
}

void TSortedDynamicArray::Merge(TDynamicArray* other) {
    if (!other || other->GetElementSize() != GetElementSize())
        return;
    // The elements are copied first: the other array may be this one.
    const int count = other->GetSize();
    if (count == 0)
        return;
    const StBlock elements(static_cast<std::size_t>(count) * GetStride(), other->ComputeAddress(1));
    for (int i = 0; i < count; ++i)
        InsertElementInOrder(elements.Get() + static_cast<std::size_t>(i) * GetStride());
}
