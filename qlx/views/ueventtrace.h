// The event trace: a record of which handler or behaviour got which message, who consumed it and
// how long it took, for hosts that debug and for tests. Off at start; while it is off a message
// costs one load and one branch more per receiver.
#pragma once

#include <string>
#include <vector>

#include "basekit/cmn/cmn_types.h"
#include "qlx/foundation/qlx_fwd.h"

/// What travels along the chain.
enum class EEventMessage : std::uint8_t {
    KeyDown,
    CommandKey,
    KeyUp,
    Event,
    MenuCommand,
    SetupMenus,
    MouseDown,
    MouseUp,
    MouseWheel,
    Cursor,
    Toolbox,
    Command ///< a command performed by a command handler
};

/// "key down", "menu command" and so on.
[[nodiscard]] QLX_API const char* QLX_EventMessageName(EEventMessage message);

/// How a receiver left a message.
enum class EHopOutcome : std::uint8_t {
    PassedOn,  ///< the next receiver got it
    Consumed,  ///< nobody after it did
    Unhandled, ///< it passed the message on, and the chain ended here
    Dropped,   ///< it passed the message on after it had been taken out of its handler
    Threw      ///< an exception left it
};

/// One receiver on the message's road.
struct QLX_EventHop {
    std::string mClassName;
    std::uint32_t mIdentifier = 0;
    bool mIsBehavior = false;
    EHopOutcome mOutcome = EHopOutcome::Consumed;
    std::int32_t mDepth = 0;  ///< 0 for the first receiver
    double mSeconds = 0.0;    ///< with everything that happened inside it
    double mOwnSeconds = 0.0; ///< without the receivers after it
};

/// One message from the first receiver to the last.
struct QLX_EventDelivery {
    std::uint64_t mSerial = 0; ///< counted from 1 since the trace was started, in order of arrival
    EEventMessage mMessage = EEventMessage::Event;
    std::int64_t mNumber = 0;        ///< character code, event number or command number
    double mWhen = 0.0;              ///< seconds of Sys_Clock_Seconds
    std::vector<QLX_EventHop> mHops; ///< in the order in which they got it

    /// The receiver that consumed the message; null when nobody did.
    [[nodiscard]] QLX_API const QLX_EventHop* GetConsumer() const;
    /// A line for the message and one for each receiver, each with a line end:
    ///   key down 'a' (61)
    ///     TEditText 'name' passed on 1.2 us
    ///     behaviour TKeyFilter 'filt' consumed 0.8 us
    /// Without times the text depends on the messages alone.
    [[nodiscard]] QLX_API std::string AsLines(bool withTimes = true) const;
    /// One JSON object on one line, without a line end.
    [[nodiscard]] QLX_API std::string AsJSON(bool withTimes = true) const;
};

/// Receives finished deliveries; a message sent from inside another one is finished first. Called
/// on the user-interface thread; messages sent from inside are not traced.
class QLX_API QLX_EventTraceSink {
  public:
    virtual ~QLX_EventTraceSink();
    virtual void Delivered(const QLX_EventDelivery& delivery) = 0;
};

/// Keeps what it receives.
class QLX_API QLX_EventTraceLog : public QLX_EventTraceSink {
  public:
    ~QLX_EventTraceLog() override;
    void Delivered(const QLX_EventDelivery& delivery) override;
    std::vector<QLX_EventDelivery> mDeliveries;
};

/// Writes lines or JSON to the trace output (Cmn_TraceWrite), line by line.
class QLX_API QLX_EventTraceWriter : public QLX_EventTraceSink {
  public:
    enum class EForm : std::uint8_t { Lines, JSON };
    explicit QLX_EventTraceWriter(EForm form, bool withTimes = true);
    ~QLX_EventTraceWriter() override;
    void Delivered(const QLX_EventDelivery& delivery) override;

  private:
    EForm mForm;
    bool mWithTimes;
};

/// The switch.
class QLX_API QLX_EventTrace {
  public:
    /// Sends every delivery that begins from now on to the sink (not owned), in place of the
    /// previous one, which is returned. Null switches the trace off. Deliveries under way are lost.
    static QLX_EventTraceSink* Start(QLX_EventTraceSink* sink);
    static void Stop() { Start(nullptr); }
    [[nodiscard]] static bool IsOn();

    /// The chain has no further handler: says so of the receiver that has the message.
    static void NoteEndOfChain();
    /// A behaviour without an owner has passed the message on.
    static void NoteDropped();
};

/// Stands around the call that gives a message to a receiver. The message joins the delivery under
/// way when that has the same kind and subject (the event object, or null for messages that are
/// only a number, which is then compared), else it begins a new one. Does nothing while the trace
/// is off.
class QLX_API QLX_StEventHop {
  public:
    QLX_StEventHop(EEventMessage message, const void* subject, std::int64_t number,
                   const TEventHandler* receiver);
    QLX_StEventHop(EEventMessage message, const void* subject, std::int64_t number,
                   const TBehavior* receiver);
    ~QLX_StEventHop();
    QLX_StEventHop(const QLX_StEventHop&) = delete;
    QLX_StEventHop& operator=(const QLX_StEventHop&) = delete;

    /// For messages whose receivers answer: says that this one did not consume it.
    void SetPassedOn();

  private:
    friend class QLX_EventTrace;
    void Open(EEventMessage message, const void* subject, std::int64_t number,
              const TObject* receiver, std::uint32_t identifier, bool isBehavior);

    QLX_EventDelivery* mDelivery = nullptr; // owned by the first hop; null while the trace is off
    QLX_StEventHop* mOuter = nullptr;       // not owned; the hop in which this one was opened
    const void* mSubject = nullptr;         // not owned, only compared
    std::size_t mHop = 0;
    std::uint32_t mRun = 0;
    double mStart = 0.0;
    double mInside = 0.0; // seconds of hops of the same delivery inside this one
    int mExceptions = 0;
    bool mIsFirst = false;
    bool mPassedOn = false;
    EHopOutcome mEnd = EHopOutcome::PassedOn;
};
