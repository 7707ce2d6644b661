#include "qlx/views/ualivecommands.h"

#include <algorithm>

#include "qlx/views/ucommand.h"
#include "qlx/views/ucommandhandler.h"

constinit std::vector<const TCommand*>* gAliveCommands = nullptr;

namespace {

auto FindPlace(const TCommand* command) {
    return std::lower_bound(gAliveCommands->begin(), gAliveCommands->end(), command,
                            std::less<const TCommand*>());
}

} // namespace

/// Whether the command was not there yet.
bool QLX_InsertAliveCommand(const TCommand* command) {
    if (!gAliveCommands)
        gAliveCommands = new std::vector<const TCommand*>;
    const auto place = FindPlace(command);
    if (place != gAliveCommands->end() && *place == command)
        return false;
    gAliveCommands->insert(place, command);
    return true;
}

/// Whether the command was there.
bool QLX_EraseAliveCommand(const TCommand* command) {
    const auto place = FindPlace(command);
    if (place == gAliveCommands->end() || *place != command)
        return false;
    gAliveCommands->erase(place);
    return true;
}

void QLX_TraceAliveCommand(const char* form, const TCommand* command) {
    Cmn_Trace(kTrace_Commands, form, static_cast<const void*>(command),
              command->GetClassDescDynamic()->GetClassName().c_str());
}

bool TCommandHandler::IsAlive(const TCommand* command) {
    return gAliveCommands && std::binary_search(gAliveCommands->begin(), gAliveCommands->end(),
                                                command, std::less<const TCommand*>());
}

std::size_t TCommandHandler::CountAliveCommands() {
    return gAliveCommands ? gAliveCommands->size() : 0;
}

void TCommandHandler::ForgetContext(const TCommandHandler* context) {
    if (!gAliveCommands)
        return;
    for (const TCommand* const alive : *gAliveCommands) {
        auto* const command = const_cast<TCommand*>(alive);
        if (command->mContext == context) {
            command->mContext = nullptr;
            command->mHandler = nullptr;
        }
    }
}
