// The platform-neutral event record: what a native key, mouse or application message becomes before
// the framework looks at it, and the counted reference by which it is passed around.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "basekit/cmn/cmn_types.h"

/// What an event is: a class and a kind within it.
struct QLX_EventID {
    std::uint32_t mClass = 0;
    std::uint32_t mKind = 0;

    [[nodiscard]] friend constexpr bool operator==(const QLX_EventID&,
                                                   const QLX_EventID&) noexcept = default;
};

enum QLX_EEventClass : std::uint32_t {
    kQLX_EventClass_Mouse = 1,
    kQLX_EventClass_Keyboard = 2,
    kQLX_EventClass_Application = 4
};

/// Kinds; each belongs to one class.
enum QLX_EEventKind : std::uint32_t {
    kQLX_EventKind_MouseUp = 1,
    kQLX_EventKind_MouseDown = 3, ///< also double clicks and presses outside the client area
    kQLX_EventKind_MouseMoved = 6,
    kQLX_EventKind_MouseWheel = 7,
    kQLX_EventKind_KeyDown = 8,    ///< also characters and system keys
    kQLX_EventKind_AutoKey = 9,    ///< a key down that the keyboard repeated
    kQLX_EventKind_KeyUp = 10,     ///< also system keys
    kQLX_EventKind_Activation = 12 ///< the application became active or inactive
};

/// Keys of the properties that the framework reads. Sizes are in bytes.
enum QLX_EEventProperty : std::uint32_t {
    kQLX_EventProperty_Modifiers = 0x4161616C,    ///< 4: modifier bits, QLX_EModifierBits
    kQLX_EventProperty_Where = 0x41616162,        ///< 8: Cmn_Point<int>, window coordinates
    kQLX_EventProperty_KeyCode = 0x4161616A,      ///< 4: key code
    kQLX_EventProperty_Character = 0x41616185,    ///< 12: the first 4 are the character code
    kQLX_EventProperty_NativeMessage = 0x41616183 ///< 48: the native message that made the event
};

/// One event, with properties as blocks of bytes under 32-bit keys. Born with a count of zero; the
/// first QLX_EventRef makes it one and the last one deletes it. The count is plain: events belong
/// to the user-interface thread. The properties that the framework uses lie inside the record, so
/// an ordinary event is one allocation.
class QLX_API QLX_Event final {
  public:
    explicit QLX_Event(QLX_EventID id, double timestamp = 0.0) noexcept;
    /// The same record with a count of its own.
    QLX_Event(const QLX_Event& other);
    QLX_Event& operator=(const QLX_Event&) = delete;
    ~QLX_Event();

    [[nodiscard]] const QLX_EventID& GetID() const noexcept { return mID; }
    void SetID(const QLX_EventID& id) noexcept { mID = id; }
    /// Seconds of Sys_Clock_Seconds.
    [[nodiscard]] double GetTimestamp() const noexcept { return mTimestamp; }
    void SetTimestamp(double seconds) noexcept { mTimestamp = seconds; }
    [[nodiscard]] std::int32_t GetPriority() const noexcept { return mPriority; }
    void SetPriority(std::int32_t priority) noexcept { mPriority = priority; }

    /// Copies the first size bytes of a property. False, with the buffer untouched, when there is
    /// no such property or it is shorter than that.
    bool GetProperty(std::uint32_t key, void* buffer, std::size_t size) const noexcept;
    /// Stores size bytes in place of what the key had. False, with nothing changed, for a null
    /// buffer with a size.
    bool SetProperty(std::uint32_t key, const void* buffer, std::size_t size);
    /// The size of a property in bytes; false when there is none.
    bool GetPropertySize(std::uint32_t key, std::size_t& size) const noexcept;

    void AddReference() noexcept { ++mCount; }
    void RemoveReference() noexcept;
    /// Negative once the event has been released.
    [[nodiscard]] std::int32_t GetReferenceCount() const noexcept { return mCount; }

    /// Ends the event's life as an event while references are still held, as a loop does whose
    /// native message is over: those references read as empty from now on, and the last one gives
    /// the memory back.
    void Release() noexcept;

  private:
    struct Slot {
        std::uint32_t mKey;
        std::uint16_t mOffset; // into mBytes
        std::uint16_t mSize;
    };
    struct Further {
        std::uint32_t mKey;
        std::vector<unsigned char> mBytes;
    };
    static constexpr std::size_t kSlots = 8;
    static constexpr std::size_t kInlineBytes = 112;

    [[nodiscard]] bool Find(std::uint32_t key, const unsigned char*& bytes,
                            std::size_t& size) const noexcept;
    void RemoveInline(std::size_t slot) noexcept;
    void AddFurther(std::uint32_t key, const void* buffer, std::size_t size);
    bool SetInline(std::uint32_t key, const void* buffer, std::size_t size) noexcept;

    QLX_EventID mID;
    double mTimestamp;
    std::int32_t mPriority = 0;
    std::int32_t mCount = 0;
    std::uint16_t mSlotCount = 0;
    std::uint16_t mUsedBytes = 0;
    Slot mSlots[kSlots];
    unsigned char mBytes[kInlineBytes];
    std::unique_ptr<std::vector<Further>> mFurther; // what does not fit; null almost always
};

/// A counted reference to an event, with the event's accessors. A reference is empty when it has no
/// event or its event has been released: it then reads as zeros, answers false and ignores changes.
class QLX_API QLX_EventRef {
  public:
    QLX_EventRef() noexcept = default;
    /// Adds a reference; null makes an empty one.
    explicit QLX_EventRef(QLX_Event* event) noexcept : mEvent(event) { Add(); }
    QLX_EventRef(const QLX_EventRef& other) noexcept : mEvent(other.mEvent) { Add(); }
    QLX_EventRef(QLX_EventRef&& other) noexcept : mEvent(other.mEvent) { other.mEvent = nullptr; }
    ~QLX_EventRef() {
        if (mEvent)
            mEvent->RemoveReference();
    }
    QLX_EventRef& operator=(QLX_EventRef other) noexcept {
        std::swap(mEvent, other.mEvent);
        return *this;
    }

    /// A new event with its first reference.
    [[nodiscard]] static QLX_EventRef New(QLX_EventID id, double timestamp = 0.0);
    /// An independent copy of the event; empty for an empty reference.
    [[nodiscard]] QLX_EventRef NewCopy() const;

    [[nodiscard]] bool IsEmpty() const noexcept { return Get() == nullptr; }
    /// The event, null when the reference is empty.
    [[nodiscard]] QLX_Event* Get() const noexcept {
        return mEvent && mEvent->GetReferenceCount() >= 0 ? mEvent : nullptr;
    }

    [[nodiscard]] QLX_EventID GetID() const noexcept;
    void SetID(const QLX_EventID& id) const noexcept;
    [[nodiscard]] double GetTimestamp() const noexcept;
    void SetTimestamp(double seconds) const noexcept;
    [[nodiscard]] std::int32_t GetPriority() const noexcept;
    void SetPriority(std::int32_t priority) const noexcept;
    bool GetProperty(std::uint32_t key, void* buffer, std::size_t size) const noexcept;
    bool SetProperty(std::uint32_t key, const void* buffer, std::size_t size) const;

    /// Whether both refer to the same record.
    [[nodiscard]] friend bool operator==(const QLX_EventRef& a, const QLX_EventRef& b) noexcept {
        return a.mEvent == b.mEvent;
    }

  private:
    void Add() const noexcept {
        if (mEvent)
            mEvent->AddReference();
    }

    QLX_Event* mEvent = nullptr; // counted
};
