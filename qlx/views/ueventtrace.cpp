#include "qlx/views/ueventtrace.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <exception>

#include "basekit/cmn/cmn_string.h"
#include "basekit/cmn/cmn_trace.h"
#include "basekit/sys/sys_clock.h"
#include "qlx/views/ueventdispatch.h"

bool gEventTraceIsOn = false;

namespace {

QLX_EventTraceSink* sSink = nullptr;     // not owned
QLX_StEventHop* sInnermostHop = nullptr; // not owned
std::uint64_t sNextSerial = 1;
// Counts the starts of the trace, so that a hop opened before one does not close into it.
std::uint32_t sRun = 0;

void AppendEscaped(std::string& text, const std::string& raw) {
    for (const char c : raw) {
        if (c == '"' || c == '\\') {
            text += '\\';
            text += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char code[8];
            std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(c));
            text += code;
        } else {
            text += c;
        }
    }
}

bool IsKey(EEventMessage message) {
    return message == EEventMessage::KeyDown || message == EEventMessage::CommandKey ||
           message == EEventMessage::KeyUp;
}

bool HasNumber(EEventMessage message) {
    return IsKey(message) || message == EEventMessage::Event ||
           message == EEventMessage::MenuCommand || message == EEventMessage::Command;
}

const char* OutcomeName(EHopOutcome outcome) {
    switch (outcome) {
    case EHopOutcome::PassedOn:
        return "passed on";
    case EHopOutcome::Consumed:
        return "consumed";
    case EHopOutcome::Unhandled:
        return "unhandled";
    case EHopOutcome::Dropped:
        return "dropped";
    case EHopOutcome::Threw:
        return "threw";
    }
    return "";
}

} // namespace

const char* QLX_EventMessageName(EEventMessage message) {
    switch (message) {
    case EEventMessage::KeyDown:
        return "key down";
    case EEventMessage::CommandKey:
        return "command key";
    case EEventMessage::KeyUp:
        return "key up";
    case EEventMessage::Event:
        return "event";
    case EEventMessage::MenuCommand:
        return "menu command";
    case EEventMessage::SetupMenus:
        return "set up menus";
    case EEventMessage::MouseDown:
        return "mouse down";
    case EEventMessage::MouseUp:
        return "mouse up";
    case EEventMessage::MouseWheel:
        return "mouse wheel";
    case EEventMessage::Cursor:
        return "cursor";
    case EEventMessage::Toolbox:
        return "toolbox event";
    case EEventMessage::Command:
        return "command";
    }
    return "";
}

// QLX_EventDelivery

const QLX_EventHop* QLX_EventDelivery::GetConsumer() const {
    const auto hop = std::find_if(mHops.begin(), mHops.end(), [](const QLX_EventHop& h) {
        return h.mOutcome == EHopOutcome::Consumed;
    });
    return hop == mHops.end() ? nullptr : &*hop;
}

std::string QLX_EventDelivery::AsLines(bool withTimes) const {
    std::string text = QLX_EventMessageName(mMessage);
    char buffer[64];
    if (IsKey(mMessage)) {
        if (mNumber > 0x20 && mNumber < 0x7F)
            std::snprintf(buffer, sizeof buffer, " '%c' (%" PRIx64 ")", static_cast<int>(mNumber),
                          static_cast<std::uint64_t>(mNumber));
        else
            std::snprintf(buffer, sizeof buffer, " (%" PRIx64 ")",
                          static_cast<std::uint64_t>(mNumber));
        text += buffer;
    } else if (HasNumber(mMessage)) {
        std::snprintf(buffer, sizeof buffer, " %" PRId64, mNumber);
        text += buffer;
    }
    text += '\n';
    for (const QLX_EventHop& hop : mHops) {
        text += hop.mIsBehavior ? "  behaviour " : "  ";
        text += hop.mClassName;
        text += " '";
        text += Cmn_IDToString(hop.mIdentifier);
        text += "' ";
        text += OutcomeName(hop.mOutcome);
        if (withTimes) {
            std::snprintf(buffer, sizeof buffer, " %.1f us", hop.mOwnSeconds * 1e6);
            text += buffer;
        }
        text += '\n';
    }
    return text;
}

std::string QLX_EventDelivery::AsJSON(bool withTimes) const {
    char buffer[96];
    std::snprintf(buffer, sizeof buffer, "{\"serial\":%" PRIu64 ",\"message\":\"", mSerial);
    std::string text = buffer;
    text += QLX_EventMessageName(mMessage);
    text += '"';
    if (HasNumber(mMessage)) {
        std::snprintf(buffer, sizeof buffer, ",\"number\":%" PRId64, mNumber);
        text += buffer;
    }
    if (withTimes) {
        std::snprintf(buffer, sizeof buffer, ",\"when\":%.6f", mWhen);
        text += buffer;
    }
    text += ",\"hops\":[";
    for (const QLX_EventHop& hop : mHops) {
        if (&hop != mHops.data())
            text += ',';
        text += "{\"class\":\"";
        AppendEscaped(text, hop.mClassName);
        text += "\",\"id\":\"";
        AppendEscaped(text, Cmn_IDToString(hop.mIdentifier));
        text += hop.mIsBehavior ? "\",\"behaviour\":true" : "\",\"behaviour\":false";
        text += ",\"outcome\":\"";
        text += OutcomeName(hop.mOutcome);
        text += '"';
        if (withTimes) {
            std::snprintf(buffer, sizeof buffer, ",\"us\":%.3f,\"ownUs\":%.3f", hop.mSeconds * 1e6,
                          hop.mOwnSeconds * 1e6);
            text += buffer;
        }
        text += '}';
    }
    text += "]}";
    return text;
}

// Sinks

QLX_EventTraceSink::~QLX_EventTraceSink() = default;

QLX_EventTraceLog::~QLX_EventTraceLog() = default;

void QLX_EventTraceLog::Delivered(const QLX_EventDelivery& delivery) {
    mDeliveries.push_back(delivery);
}

QLX_EventTraceWriter::QLX_EventTraceWriter(EForm form, bool withTimes)
    : mForm(form), mWithTimes(withTimes) {}

QLX_EventTraceWriter::~QLX_EventTraceWriter() = default;

void QLX_EventTraceWriter::Delivered(const QLX_EventDelivery& delivery) {
    if (mForm == EForm::JSON) {
        Cmn_TraceWrite("%s", delivery.AsJSON(mWithTimes).c_str());
        return;
    }
    const std::string lines = delivery.AsLines(mWithTimes);
    std::size_t start = 0;
    while (start < lines.size()) {
        const std::size_t end = lines.find('\n', start);
        Cmn_TraceWrite("%s", lines.substr(start, end - start).c_str());
        start = end + 1;
    }
}

// QLX_EventTrace

QLX_EventTraceSink* QLX_EventTrace::Start(QLX_EventTraceSink* sink) {
    QLX_EventTraceSink* const previous = sSink;
    sSink = sink;
    gEventTraceIsOn = sink != nullptr;
    sNextSerial = 1;
    ++sRun;
    return previous;
}

bool QLX_EventTrace::IsOn() { return gEventTraceIsOn; }

void QLX_EventTrace::NoteEndOfChain() {
    if (sInnermostHop && sInnermostHop->mDelivery) {
        sInnermostHop->mPassedOn = true;
        sInnermostHop->mEnd = EHopOutcome::Unhandled;
    }
}

void QLX_EventTrace::NoteDropped() {
    if (sInnermostHop && sInnermostHop->mDelivery) {
        sInnermostHop->mPassedOn = true;
        sInnermostHop->mEnd = EHopOutcome::Dropped;
    }
}

// QLX_StEventHop

QLX_StEventHop::QLX_StEventHop(EEventMessage message, const void* subject, std::int64_t number,
                               const TEventHandler* receiver) {
    if (gEventTraceIsOn && receiver)
        Open(message, subject, number, receiver,
             const_cast<TEventHandler*>(receiver)->GetIdentifier(), false);
}

QLX_StEventHop::QLX_StEventHop(EEventMessage message, const void* subject, std::int64_t number,
                               const TBehavior* receiver) {
    if (gEventTraceIsOn && receiver)
        Open(message, subject, number, receiver, receiver->GetIdentifier(), true);
}

void QLX_StEventHop::Open(EEventMessage message, const void* subject, std::int64_t number,
                          const TObject* receiver, std::uint32_t identifier, bool isBehavior) {
    mOuter = sInnermostHop;
    sInnermostHop = this;
    mRun = sRun;
    mSubject = subject;
    mExceptions = std::uncaught_exceptions();
    const bool isNext = mOuter && mOuter->mDelivery && mOuter->mRun == sRun &&
                        mOuter->mDelivery->mMessage == message && mOuter->mSubject == subject &&
                        mOuter->mDelivery->mNumber == number;
    if (isNext) {
        mDelivery = mOuter->mDelivery;
        mOuter->mPassedOn = true;
    } else {
        mIsFirst = true;
        mDelivery = new QLX_EventDelivery;
        mDelivery->mSerial = sNextSerial++;
        mDelivery->mMessage = message;
        mDelivery->mNumber = number;
        mDelivery->mWhen = Sys_Clock_Seconds();
    }
    mHop = mDelivery->mHops.size();
    QLX_EventHop& hop = mDelivery->mHops.emplace_back();
    hop.mClassName = receiver->GetClassDescDynamic()->GetClassName();
    hop.mIdentifier = identifier;
    hop.mIsBehavior = isBehavior;
    hop.mDepth = mIsFirst ? 0 : mDelivery->mHops[mOuter->mHop].mDepth + 1;
    mStart = Sys_Clock_Seconds();
}

void QLX_StEventHop::SetPassedOn() { mPassedOn = true; }

QLX_StEventHop::~QLX_StEventHop() {
    if (!mDelivery)
        return;
    QLX_EventHop& hop = mDelivery->mHops[mHop];
    hop.mSeconds = Sys_Clock_Seconds() - mStart;
    hop.mOwnSeconds = hop.mSeconds - mInside;
    if (std::uncaught_exceptions() > mExceptions)
        hop.mOutcome =
            mPassedOn && mEnd == EHopOutcome::PassedOn ? EHopOutcome::PassedOn : EHopOutcome::Threw;
    else
        hop.mOutcome = mPassedOn ? mEnd : EHopOutcome::Consumed;
    sInnermostHop = mOuter;
    if (!mIsFirst) {
        mOuter->mInside += hop.mSeconds;
        return;
    }
    if (mRun == sRun && sSink) {
        // What the sink does is not part of the record.
        gEventTraceIsOn = false;
        try {
            sSink->Delivered(*mDelivery);
        } catch (const std::exception& x) {
            Cmn_TraceWrite("event trace: the sink threw: %s", x.what());
        } catch (...) {
            Cmn_TraceWrite("event trace: the sink threw");
        }
        gEventTraceIsOn = sSink != nullptr;
    }
    delete mDelivery;
}

// Traced dispatch

template <class Receiver>
void QLX_TracedHop<Receiver>::Key(EEventMessage message, TToolboxEvent* event, Receiver* receiver,
                                  DoKey call) {
    const QLX_StEventHop hop(message, event, event ? event->mCharacterCode : 0, receiver);
    (receiver->*call)(event);
}

template <class Receiver>
void QLX_TracedHop<Receiver>::Menu(std::int32_t command, Receiver* receiver, DoCommand call) {
    const QLX_StEventHop hop(EEventMessage::MenuCommand, nullptr, command, receiver);
    (receiver->*call)(command);
}

template <class Receiver>
void QLX_TracedHop<Receiver>::Setup(Receiver* receiver, DoSetup call) {
    const QLX_StEventHop hop(EEventMessage::SetupMenus, nullptr, 0, receiver);
    (receiver->*call)();
}

template <class Receiver>
void QLX_TracedHop<Receiver>::Event(std::int32_t number, TEventHandler* source, TEvent* event,
                                    Receiver* receiver) {
    const QLX_StEventHop hop(EEventMessage::Event, event, number, receiver);
    receiver->DoEvent(number, source, event);
}

template struct QLX_TracedHop<TEventHandler>;
template struct QLX_TracedHop<TBehavior>;
