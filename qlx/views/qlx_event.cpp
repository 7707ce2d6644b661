#include "qlx/views/qlx_event.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

// A released event counts from the bottom of the range up, so that its count is negative and still
// says how many references are left.
constexpr std::int32_t kReleased = std::numeric_limits<std::int32_t>::min();

} // namespace

// QLX_Event

QLX_Event::QLX_Event(QLX_EventID id, double timestamp) noexcept : mID(id), mTimestamp(timestamp) {}

QLX_Event::QLX_Event(const QLX_Event& other)
    : mID(other.mID), mTimestamp(other.mTimestamp), mPriority(other.mPriority),
      mSlotCount(other.mSlotCount), mUsedBytes(other.mUsedBytes) {
    std::copy_n(other.mSlots, mSlotCount, mSlots);
    std::copy_n(other.mBytes, mUsedBytes, mBytes);
    if (other.mFurther)
        mFurther = std::make_unique<std::vector<Further>>(*other.mFurther);
}

QLX_Event::~QLX_Event() = default;

bool QLX_Event::Find(std::uint32_t key, const unsigned char*& bytes,
                     std::size_t& size) const noexcept {
    for (std::size_t i = 0; i < mSlotCount; ++i) {
        if (mSlots[i].mKey == key) {
            bytes = mBytes + mSlots[i].mOffset;
            size = mSlots[i].mSize;
            return true;
        }
    }
    if (!mFurther)
        return false;
    for (const Further& further : *mFurther) {
        if (further.mKey == key) {
            bytes = further.mBytes.data();
            size = further.mBytes.size();
            return true;
        }
    }
    return false;
}

bool QLX_Event::GetPropertySize(std::uint32_t key, std::size_t& size) const noexcept {
    const unsigned char* bytes = nullptr;
    std::size_t found = 0;
    if (!Find(key, bytes, found))
        return false;
    size = found;
    return true;
}

bool QLX_Event::GetProperty(std::uint32_t key, void* buffer, std::size_t size) const noexcept {
    const unsigned char* bytes = nullptr;
    std::size_t stored = 0;
    if (!Find(key, bytes, stored) || stored < size || (!buffer && size != 0))
        return false;
    if (size != 0)
        std::memcpy(buffer, bytes, size);
    return true;
}

void QLX_Event::RemoveInline(std::size_t slot) noexcept {
    const Slot gone = mSlots[slot];
    std::memmove(mBytes + gone.mOffset, mBytes + gone.mOffset + gone.mSize,
                 static_cast<std::size_t>(mUsedBytes - gone.mOffset - gone.mSize));
    mUsedBytes = static_cast<std::uint16_t>(mUsedBytes - gone.mSize);
    --mSlotCount;
    for (std::size_t i = slot; i < mSlotCount; ++i) {
        mSlots[i] = mSlots[i + 1];
        mSlots[i].mOffset = static_cast<std::uint16_t>(mSlots[i].mOffset - gone.mSize);
    }
}

bool QLX_Event::SetInline(std::uint32_t key, const void* buffer, std::size_t size) noexcept {
    if (mSlotCount == kSlots || size > kInlineBytes - mUsedBytes)
        return false;
    mSlots[mSlotCount++] = {key, mUsedBytes, static_cast<std::uint16_t>(size)};
    if (size != 0)
        std::memcpy(mBytes + mUsedBytes, buffer, size);
    mUsedBytes = static_cast<std::uint16_t>(mUsedBytes + size);
    return true;
}

bool QLX_Event::SetProperty(std::uint32_t key, const void* buffer, std::size_t size) {
    if (!buffer && size != 0)
        return false;
    const unsigned char* bytes = nullptr;
    std::size_t stored = 0;
    if (!Find(key, bytes, stored)) {
        if (!SetInline(key, buffer, size))
            AddFurther(key, buffer, size);
        return true;
    }
    if (stored == size) {
        if (size != 0)
            std::memmove(const_cast<unsigned char*>(bytes), buffer, size);
        return true;
    }
    // The new value is in place before the old one goes, so that a failed allocation changes
    // nothing and the buffer may lie inside the old value. Find would still see the old one first,
    // in either store.
    AddFurther(key, buffer, size);
    for (std::size_t i = 0; i < mSlotCount; ++i) {
        if (mSlots[i].mKey == key) {
            RemoveInline(i);
            return true;
        }
    }
    mFurther->erase(std::find_if(mFurther->begin(), mFurther->end(),
                                 [key](const Further& further) { return further.mKey == key; }));
    return true;
}

void QLX_Event::AddFurther(std::uint32_t key, const void* buffer, std::size_t size) {
    const auto* const first = static_cast<const unsigned char*>(buffer);
    Further further{key, std::vector<unsigned char>(first, first + size)};
    if (!mFurther)
        mFurther = std::make_unique<std::vector<Further>>();
    mFurther->push_back(std::move(further));
}

void QLX_Event::RemoveReference() noexcept {
    --mCount;
    if (mCount == 0 || mCount == kReleased)
        delete this;
}

void QLX_Event::Release() noexcept {
    if (mCount < 0)
        return;
    if (mCount == 0) {
        delete this;
        return;
    }
    mCount += kReleased;
    mSlotCount = 0;
    mUsedBytes = 0;
    mFurther.reset();
}

// QLX_EventRef

QLX_EventRef QLX_EventRef::New(QLX_EventID id, double timestamp) {
    return QLX_EventRef(new QLX_Event(id, timestamp));
}

QLX_EventRef QLX_EventRef::NewCopy() const {
    const QLX_Event* const event = Get();
    return event ? QLX_EventRef(new QLX_Event(*event)) : QLX_EventRef();
}

QLX_EventID QLX_EventRef::GetID() const noexcept {
    const QLX_Event* const event = Get();
    return event ? event->GetID() : QLX_EventID();
}

void QLX_EventRef::SetID(const QLX_EventID& id) const noexcept {
    if (QLX_Event* const event = Get())
        event->SetID(id);
}

double QLX_EventRef::GetTimestamp() const noexcept {
    const QLX_Event* const event = Get();
    return event ? event->GetTimestamp() : 0.0;
}

void QLX_EventRef::SetTimestamp(double seconds) const noexcept {
    if (QLX_Event* const event = Get())
        event->SetTimestamp(seconds);
}

std::int32_t QLX_EventRef::GetPriority() const noexcept {
    const QLX_Event* const event = Get();
    return event ? event->GetPriority() : 0;
}

void QLX_EventRef::SetPriority(std::int32_t priority) const noexcept {
    if (QLX_Event* const event = Get())
        event->SetPriority(priority);
}

bool QLX_EventRef::GetProperty(std::uint32_t key, void* buffer, std::size_t size) const noexcept {
    const QLX_Event* const event = Get();
    return event && event->GetProperty(key, buffer, size);
}

bool QLX_EventRef::SetProperty(std::uint32_t key, const void* buffer, std::size_t size) const {
    QLX_Event* const event = Get();
    return event && event->SetProperty(key, buffer, size);
}
