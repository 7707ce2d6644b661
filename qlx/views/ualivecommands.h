// The commands that are alive: PerformCommand enters them, their destructor takes them out. Not for
// hosts.
#pragma once

#include <functional>
#include <vector>

#include "basekit/cmn/cmn_internal.h"
#include "basekit/cmn/cmn_traceswitch.h"
#include "qlx/foundation/qlx_fwd.h"

/// Sorted by address. A flat list, as there are seldom more commands alive than windows. Null until
/// the first one comes; never destroyed, as commands may be freed by other static destructors.
extern QLX_INTERNAL std::vector<const TCommand*>* gAliveCommands;

/// The general cases of the two operations below, and their lines of trace. They stand alone, as
/// commands mostly come and go at the end of the list.
QLX_INTERNAL bool QLX_InsertAliveCommand(const TCommand* command);
QLX_INTERNAL bool QLX_EraseAliveCommand(const TCommand* command);
QLX_INTERNAL void QLX_TraceAliveCommand(const char* form, const TCommand* command);

/// A command that is there already stays there.
inline void QLX_AddAliveCommand(const TCommand* command) {
    const bool belongsAtEnd =
        gAliveCommands && gAliveCommands->size() != gAliveCommands->capacity() &&
        (gAliveCommands->empty() || std::less<const TCommand*>()(gAliveCommands->back(), command));
    if (belongsAtEnd)
        gAliveCommands->push_back(command);
    else if (!QLX_InsertAliveCommand(command))
        return;
    if (Cmn_TraceIsOn(kTrace_Commands)) [[unlikely]]
        QLX_TraceAliveCommand("TCommandHandler::PerformCommand - adding to AliveCommands %p (%s)",
                              command);
}

/// Of a command that goes, and may not have been performed.
inline void QLX_RemoveAliveCommand(const TCommand* command) {
    if (!gAliveCommands || gAliveCommands->empty())
        return;
    if (gAliveCommands->back() == command)
        gAliveCommands->pop_back();
    else if (!QLX_EraseAliveCommand(command))
        return;
    if (Cmn_TraceIsOn(kTrace_Commands)) [[unlikely]]
        QLX_TraceAliveCommand("TCommand::~TCommand - deleting from AliveCommands %p (%s)", command);
}
