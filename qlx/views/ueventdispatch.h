// How a message is handed to its next receiver, with the event trace around it when that is on. Not
// for hosts: the flag below is not exported.
#pragma once

#include "basekit/cmn/cmn_internal.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/uevent.h"
#include "qlx/views/ueventhandler.h"
#include "qlx/views/ueventtrace.h"

// Not exported, so that reading it is one load without a look-up in the library's table of
// addresses.
extern QLX_INTERNAL bool gEventTraceIsOn;

/// Calls; with the trace on, as a hop of the message.
template <class Receiver, class Call>
inline void QLX_Dispatch(EEventMessage message, const void* subject, std::int64_t number,
                         Receiver* receiver, Call&& call) {
    if (!gEventTraceIsOn) [[likely]] {
        call();
        return;
    }
    const QLX_StEventHop hop(message, subject, number, receiver);
    call();
}

/// The same for a key, whose number is its character code.
template <class Receiver, class Call>
inline void QLX_DispatchKey(EEventMessage message, TToolboxEvent* event, Receiver* receiver,
                            Call&& call) {
    if (!gEventTraceIsOn) [[likely]] {
        call();
        return;
    }
    const QLX_StEventHop hop(message, event, event ? event->mCharacterCode : 0, receiver);
    call();
}

inline void QLX_NoteEndOfChain() {
    if (gEventTraceIsOn) [[unlikely]]
        QLX_EventTrace::NoteEndOfChain();
}

inline void QLX_NoteDropped() {
    if (gEventTraceIsOn) [[unlikely]]
        QLX_EventTrace::NoteDropped();
}
