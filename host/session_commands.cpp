#include "host/session_commands.h"

void SessionCommand::ISessionCommand(std::int32_t number, TCommandHandler* context,
                                     SessionModel* model, const SessionState& before,
                                     const SessionState& after, int change,
                                     const std::string& name) {
    ICommand(number, context, /*canUndo*/ true, /*causesChange*/ true, nullptr);
    SetCommandName(name);
    mModel = model;
    mBefore = before;
    mAfter = after;
    mChange = change;
}
