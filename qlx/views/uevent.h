// The two event objects that handlers meet: TToolboxEvent, which wraps a platform event for the
// handlers it visits, and TEvent, which can be posted and processed later.
#pragma once

#include "qlx/foundation/uobject.h"
#include "qlx/views/qlx_event.h"

class DAW_EventModifiers;
template <class T>
struct Cmn_Point;

/// What a handler receives for a key, the mouse or a native message. Made by the event loop for one
/// delivery; a handler that wants to keep it keeps the event (GetEvent), not this object.
class QLX_API TToolboxEvent : public TObject {
  public:
    QLX_DECLARE_CLASS(TToolboxEvent);
    TToolboxEvent();
    ~TToolboxEvent() override;

    // Slot order is part of the binary interface: append, never move.
    // Each of the four tests one modifier bit and is false for an event without modifiers.
    [[nodiscard]] virtual bool IsCommandKeyPressed();
    [[nodiscard]] virtual bool IsShiftKeyPressed();
    [[nodiscard]] virtual bool IsOptionKeyPressed();
    [[nodiscard]] virtual bool IsControlKeyPressed();
    [[nodiscard]] virtual bool IsAutoKeyEvent();
    /// Not supported: an assertion, and null.
    [[nodiscard]] TObject* Clone() override;

    /// Takes a reference to the event, copies its kind, adds the modifiers held on a hardware
    /// controller to the event's own and clears the other fields. The handler is not kept.
    void IToolboxEvent(TEventHandler* handler, const QLX_EventRef& event);

    [[nodiscard]] const QLX_EventRef& GetEvent() const { return mEvent; }
    /// Seconds of Sys_Clock_Seconds.
    [[nodiscard]] double GetEventWhen() const { return mEvent.GetTimestamp(); }
    /// Bits of QLX_EModifierBits; 0 when the event has none.
    [[nodiscard]] std::uint16_t GetEventModifiers() const;
    /// The same as a new value for the key-binding layer.
    [[nodiscard]] Cmn_AliasedRefCountPtr<DAW_EventModifiers> GetDAWEventModifiers() const;
    [[nodiscard]] QLX_EventID GetEventWhat() const { return mEvent.GetID(); }
    /// Window coordinates; (0, 0) when the event has no place.
    [[nodiscard]] Cmn_Point<int> GetEventWhere() const;

    // The order of the fields is part of the binary interface.
    QLX_EventRef mEvent;
    std::uint32_t mCharacterCode = 0; ///< set by KeyEventToComponents
    std::uint32_t mKeyCode = 0;       ///< set by KeyEventToComponents
    /// What state of the key the platform reports; 6 is a real press of Escape, as against a
    /// character 27 from elsewhere. 0 unless the platform sets it.
    std::uint32_t mKeyState = 0;
    std::uint32_t mEventKind = 0;

  private:
    [[nodiscard]] bool HasModifier(std::uint32_t bit) const;
};

/// An event that is posted to the application and processed in a later turn of the loop: a number
/// and its source, delivered to a handler. Owned by the queue from posting on.
class QLX_API TEvent : public TObject {
  public:
    QLX_DECLARE_CLASS(TEvent);
    TEvent() = default;
    ~TEvent() override = default;

    void IEvent(std::int32_t number, TEventHandler* source, TEventHandler* handler) {
        mEventNumber = number;
        mSource = source;
        mHandler = handler;
    }

    [[nodiscard]] std::int32_t GetEventNumber() const { return mEventNumber; }
    [[nodiscard]] TEventHandler* GetSource() const { return mSource; }

    // Slot order is part of the binary interface: append, never move.
    virtual bool ShouldFreeOnCompletion();
    /// Whether the event may be queued now; one that may not is dropped as if it were completed.
    virtual bool IsReadyToPost();
    /// Whether it may be processed now; one that may not keeps its place and is asked again next
    /// turn.
    virtual bool IsReadyToExecute();
    /// Whether it is queued again after it was processed.
    virtual bool IsRecurring();
    /// Where Process delivers: the handler, or the application when there is none.
    virtual TEventHandler* GetHandler();
    virtual void Process();
    /// Asked of the event that is last in the queue when another is posted behind it: true keeps
    /// both, false says that this one has taken the other in, which is then dropped.
    virtual bool Merge(TEvent* posted);

    /// Whether this is a TCommand.
    [[nodiscard]] bool IsCommand() const { return mIsCommand; }

  protected:
    friend class TApplication;
    // The order of the fields is part of the binary interface.
    std::int32_t mEventNumber = 0;
    TEventHandler* mSource = nullptr;  // not owned
    TEventHandler* mHandler = nullptr; // not owned
    bool mIsCommand = false;
    std::int16_t mPriority = 64; // for hosts; the queue keeps the order of posting
};
