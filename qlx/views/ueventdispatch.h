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

/// Calls a receiver's Do as a hop of the trace. Out of line and called last, so that the road
/// without the trace saves no registers for it.
template <class Receiver>
struct QLX_INTERNAL QLX_TracedHop {
    using DoKey = void (Receiver::*)(TToolboxEvent*);
    using DoCommand = void (Receiver::*)(std::int32_t);
    using DoSetup = void (Receiver::*)();
    static void Key(EEventMessage message, TToolboxEvent* event, Receiver* receiver, DoKey call);
    static void Menu(std::int32_t command, Receiver* receiver, DoCommand call);
    static void Setup(Receiver* receiver, DoSetup call);
    static void Event(std::int32_t number, TEventHandler* source, TEvent* event,
                      Receiver* receiver);
};

template <class Receiver>
inline void QLX_DispatchKey(EEventMessage message, TToolboxEvent* event, Receiver* receiver,
                            typename QLX_TracedHop<Receiver>::DoKey call) {
    if (gEventTraceIsOn) [[unlikely]]
        return QLX_TracedHop<Receiver>::Key(message, event, receiver, call);
    (receiver->*call)(event);
}

template <class Receiver>
inline void QLX_DispatchMenuCommand(std::int32_t command, Receiver* receiver) {
    if (gEventTraceIsOn) [[unlikely]]
        return QLX_TracedHop<Receiver>::Menu(command, receiver, &Receiver::DoMenuCommand);
    receiver->DoMenuCommand(command);
}

template <class Receiver>
inline void QLX_DispatchSetupMenus(Receiver* receiver) {
    if (gEventTraceIsOn) [[unlikely]]
        return QLX_TracedHop<Receiver>::Setup(receiver, &Receiver::DoSetupMenus);
    receiver->DoSetupMenus();
}

template <class Receiver>
inline void QLX_DispatchEvent(std::int32_t number, TEventHandler* source, TEvent* event,
                              Receiver* receiver) {
    if (gEventTraceIsOn) [[unlikely]]
        return QLX_TracedHop<Receiver>::Event(number, source, event, receiver);
    receiver->DoEvent(number, source, event);
}

inline void QLX_NoteEndOfChain() {
    if (gEventTraceIsOn) [[unlikely]]
        QLX_EventTrace::NoteEndOfChain();
}

inline void QLX_NoteDropped() {
    if (gEventTraceIsOn) [[unlikely]]
        QLX_EventTrace::NoteDropped();
}
